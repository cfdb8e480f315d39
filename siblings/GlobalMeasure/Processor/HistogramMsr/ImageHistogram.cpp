#include "siblings/GlobalMeasure/Processor/HistogramMsr/ImageHistogram.h"

#include "siblings/GlobalMeasure/ImageSamples.h"

#include "frame/attr/Records.h"
#include "frame/util/NumericLimits.h"

#include <algorithm>

namespace orvik { namespace imaproc { namespace glbmsr {

using namespace attr;

namespace {

constexpr unsigned long g_maxNbBins = 65536;

/// The finite values that bins are made for; low above high where there are no samples.
template<class Sample>
struct Range
{
    Sample low = NumericLimits<Sample>::s_max, high = NumericLimits<Sample>::s_min;
};

template<class Sample>
Range<Sample> findRange(const image::BaseImage& image)
{
    typedef NumericLimits<Sample> Limits;
    const unsigned long sizeX = image.getSizeX();
    Range<Sample> range;
    bool below = false, above = false;  // infinite samples
    forEachSampleLine<Sample>(image, [&](const Sample* line) {
        Range<Sample> found = range;
        for (unsigned long x = 0; x < sizeX; ++x) {
            const Sample v = line[x];  // NaN is below nothing and above nothing
            if constexpr (std::is_floating_point<Sample>::value) {
                const bool isBelow = v<Limits::s_min, isAbove = v> Limits::s_max;
                below |= isBelow;
                above |= isAbove;
                found.low = v < found.low && !isBelow ? v : found.low;
                found.high = v > found.high && !isAbove ? v : found.high;
            } else {
                found.low = v < found.low ? v : found.low;
                found.high = v > found.high ? v : found.high;
            }
        }
        range = found;
    });
    if (range.low > range.high) {
        range.low = below ? Limits::s_min : Limits::s_max;
        range.high = above ? Limits::s_max : Limits::s_min;
    }
    return range;
}

/// One more in bin `binOf(v)` for each sample v of the range.
template<class Sample, class BinOf>
std::vector<unsigned long> count(const image::BaseImage& image, const Range<Sample>& range, unsigned long nbBins,
                                 BinOf&& binOf)
{
    const unsigned long sizeX = image.getSizeX();
    std::vector<unsigned long> counts(nbBins);
    forEachSampleLine<Sample>(image, [&](const Sample* line) {
        for (unsigned long x = 0; x < sizeX; ++x)
            if (line[x] == line[x])
                ++counts[binOf(std::clamp(line[x], range.low, range.high))];
    });
    return counts;
}

template<class Sample>
void measure(const image::BaseImage& image, HistogramResult& histogram)
{
    const Range<Sample> range = findRange<Sample>(image);
    histogram = HistogramResult();
    if (range.low > range.high)
        return;
    const double first = static_cast<double>(range.low), last = static_cast<double>(range.high), span = last - first;
    const bool whole = !std::is_floating_point<Sample>::value && span < static_cast<double>(g_maxNbBins);
    histogram.set<HistogramResult::ValuePerBin>(whole);
    histogram.set<HistogramResult::FirstValue>(first);
    histogram.set<HistogramResult::LastValue>(last);
    histogram.set<HistogramResult::BinWidth>(whole ? 1.0 : span / static_cast<double>(g_maxNbBins));
    if (whole)
        histogram.set<HistogramResult::Counts>(count(image, range, static_cast<unsigned long>(span) + 1, [&](Sample v) {
            return static_cast<unsigned long>(static_cast<long>(v) - static_cast<long>(range.low));
        }));
    else if (span == 0.0)
        histogram.set<HistogramResult::Counts>(count(image, range, 1, [](Sample) { return 0ul; }));
    else  // multiplying is exact, so that whole numbers fall into their bins without rounding
        histogram.set<HistogramResult::Counts>(count(image, range, g_maxNbBins, [&](Sample v) {
            const double bin = (static_cast<double>(v) - first) * static_cast<double>(g_maxNbBins) / span;
            return std::min(static_cast<unsigned long>(static_cast<long>(bin)), g_maxNbBins - 1);
        }));
}

}  // namespace

void measureHistogram(const image::BaseImage& image, HistogramResult& histogram)
{
    image::withSampleType(image::toDataType(image.getBufferType()),
                          [&](auto zero) { measure<decltype(zero)>(image, histogram); });
}

}}}  // namespace orvik::imaproc::glbmsr
