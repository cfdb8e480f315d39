#include "siblings/GlobalMeasure/CumulativeHistogramData.h"

#include "frame/util/FrameMessages.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvik { namespace imaproc { namespace glbmsr {

using attr::HistogramResult;

namespace {

void checkRange(const HistogramResult& histogram)
{
    const double first = histogram.get<HistogramResult::FirstValue>(), last = histogram.get<HistogramResult::LastValue>();
    const std::size_t nbBins = histogram.get<HistogramResult::Counts>().size();
    const std::string range = std::to_string(first) + " to " + std::to_string(last);
    if (!std::isfinite(first) || !std::isfinite(last) || first > last)
        ORVIK_THROW_TEXT(ORVIKImageProcessingException, g_imageProcessingLogSource,
                         "HistogramResult: values from " + range + " are no range of bins");
    if (histogram.get<HistogramResult::ValuePerBin>() && last - first + 1.0 != static_cast<double>(nbBins))
        ORVIK_THROW_TEXT(ORVIKImageProcessingException, g_imageProcessingLogSource,
                         "HistogramResult: values from " + range + " need a bin each, there are " + std::to_string(nbBins));
}

}  // namespace

CumulativeHistogramData::CumulativeHistogramData(const HistogramResult& histogram)
    : m_valuePerBin(histogram.get<HistogramResult::ValuePerBin>()), m_first(histogram.get<HistogramResult::FirstValue>()),
      m_last(histogram.get<HistogramResult::LastValue>()), m_cumulated(histogram.get<HistogramResult::Counts>())
{
    if (!m_cumulated.empty())
        checkRange(histogram);
    std::partial_sum(m_cumulated.begin(), m_cumulated.end(), m_cumulated.begin());
}

double CumulativeHistogramData::getQuantile(double percent) const
{
    if (percent != percent)
        return percent;
    if (m_cumulated.empty() || m_cumulated.back() == 0)
        return 0.0;
    // Dividing last keeps whole percentages exact: 70 % of 10 samples are 7.
    const double wanted = std::clamp(percent, 0.0, 100.0) * static_cast<double>(m_cumulated.back()) / 100.0;
    // At least one sample: bins that have none are not what is lowest in the image.
    const auto bin = std::lower_bound(m_cumulated.begin(), m_cumulated.end(), std::max(wanted, 1.0),
                                      [](unsigned long n, double limit) { return static_cast<double>(n) < limit; });
    const double index = static_cast<double>(bin - m_cumulated.begin());
    if (m_valuePerBin)
        return m_first + index;
    const double before = bin == m_cumulated.begin() ? 0.0 : static_cast<double>(bin[-1]);
    const double part = (wanted - before) / (static_cast<double>(*bin) - before);
    const double position = (index + part) / static_cast<double>(m_cumulated.size());
    // Weighing both ends meets them exactly, and does not lose a small end beside a large one.
    return std::clamp(m_first * (1.0 - position) + m_last * position, m_first, m_last);
}

boost::shared_ptr<const CumulativeHistogramData> createCumulativeHistogramData(const HistogramResult& histogram)
{
    return boost::make_shared<CumulativeHistogramData>(histogram);
}

}}}  // namespace orvik::imaproc::glbmsr
