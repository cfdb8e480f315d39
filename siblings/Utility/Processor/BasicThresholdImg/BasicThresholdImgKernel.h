// Marks the samples of one run whose value lies within, or outside, two thresholds. Compiled once per instruction set.

#include "frame/simd/Simd.h"

namespace orvik { namespace imaproc { namespace util {
namespace {

/// The thresholds in the type that samples are compared in. Whole numbers between two thresholds are those between the
/// nearest whole numbers inside, so integers need no floating point.
template<class Sample>
struct Bounds
{
    typedef typename std::conditional<std::is_same<Sample, float>::value, double, Sample>::type T;
    T min, max;
    bool empty;
};

template<class Sample>
Bounds<Sample> boundsOf(double min, double max)
{
    if constexpr (std::is_same<Sample, float>::value) {
        return {min, max, false};
    } else {
        const double lowest = NumericLimits<Sample>::s_min, highest = NumericLimits<Sample>::s_max;
        min = std::ceil(min);
        max = std::floor(max);
        if (!(min <= max) || min > highest || max < lowest)
            return {0, 0, true};
        return {static_cast<Sample>(min < lowest ? lowest : min), static_cast<Sample>(max > highest ? highest : max), false};
    }
}

/// Blocks go through room of their own: input and result may be the same samples, which loops over both must not know.
template<class Sample, class Result>
void mark(const Sample* from, Result* to, unsigned long n, const Bounds<Sample>& bounds, bool outside)
{
    const typename Bounds<Sample>::T min = bounds.min, max = bounds.max;
    const Result in = bounds.empty ? outside : !outside, out = outside;
    for (unsigned long i = 0; i < n; i += kBlock) {
        Sample samples[kBlock];
        Result marks[kBlock];
        std::memcpy(samples, from + i, sizeof samples);
        for (unsigned long j = 0; j < kBlock; ++j) {
            const Sample v = samples[j];
            Result r = (v >= min) & (v <= max) ? in : out;
            if constexpr (std::is_same<Sample, float>::value)
                r = v == v ? r : Result(0);
            marks[j] = r;
        }
        std::memcpy(to + i, marks, sizeof marks);
    }
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult BasicThresholdImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const in = parser<attr::InYStrip2d, Sample>();
    if (!in)
        return wrongSampleType();
    const Bounds<Sample> bounds = boundsOf<Sample>(value<attr::InThresholdMin>(), value<attr::InThresholdMax>());
    const bool outside = value<attr::InOptOutside>() != 0;
    const bool served = withParser<attr::OutYStrip2d>([&](const auto& out) {
        mark(in->accessBuffer(), out.accessBuffer(), info.nbAlignedData, bounds, outside);
    });
    return served ? success() : wrongSampleType();
}

}}}  // namespace orvik::imaproc::util
