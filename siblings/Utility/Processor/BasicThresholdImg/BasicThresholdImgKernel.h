#pragma once

// Marks the samples of one run whose value lies within, or outside, two thresholds. Compiled once per instruction set.

#include "siblings/Utility/Processor/BasicThresholdImg/BasicThresholdImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"
#include "frame/util/NumericLimits.h"

#include <cmath>
#include <cstring>
#include <type_traits>

#include "frame/simd/OpenSet.h"

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
void mark(const Sample* from, void* result, unsigned long n, const Bounds<Sample>& bounds, bool outside)
{
    Result* const to = static_cast<Result*>(result);
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

template<class Sample>
using Mark = void (*)(const Sample*, void*, unsigned long, const Bounds<Sample>&, bool);

/// `mark` for a type of result; null for no type.
template<class Sample>
Mark<Sample> markFor(image::eImageBufferType type)
{
    Mark<Sample> found = nullptr;
    image::withSampleType(image::toDataType(type), [&](auto zero) {
        typedef decltype(zero) Result;
        if constexpr (!std::is_same<Result, double>::value)
            found = &mark<Sample, Result>;
    });
    return found;
}

/// What the kernel works with on one strip.
template<class In, class Sample>
struct Strip
{
    const In* in;
    const PlainStripParser* out;
    Mark<Sample> mark;
    Bounds<Sample> bounds;
    bool outside;
};
template<class I, class S>
Strip(const I*, const PlainStripParser*, Mark<S>, Bounds<S>, bool) -> Strip<I, S>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult BasicThresholdImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const strip = onceAStrip(info, [&] {
        return Strip{parser<attr::InYStrip2d, Sample>(), plainParser<attr::OutYStrip2d>(),
                     markFor<Sample>(attribute<attr::OutYStrip2d>()->getImageBufferType()),
                     boundsOf<Sample>(value<attr::InThresholdMin>(), value<attr::InThresholdMax>()),
                     value<attr::InOptOutside>() != 0};
    });
    if (!strip || !strip->out)
        return wrongSampleType();
    strip->mark(strip->in->accessBuffer(), strip->out->accessSamples(), info.nbAlignedData, strip->bounds, strip->outside);
    return success();
}

}}}  // namespace orvik::imaproc::util

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace util {

ORVIK_REGISTER_KERNELS(BasicThresholdImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::util
