#pragma once

// The corner response of one run, from the structure tensor. Compiled once per instruction set.

#include "Processor/HarrisCorner2dImg/HarrisCorner2dImgLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

typedef Lanes<float>::type Floats;

struct MinEigenvalue
{
    Floats operator()(Floats xx, Floats yy, Floats xy) const
    {
        const Floats d = xx - yy, s = d * d + 4.0f * (xy * xy);
        return (xx + yy - squareRoot(s)) * 0.5f;
    }
};

/// Compressed by a root that keeps the sign.
struct HarrisMeasure
{
    const float k;

    Floats operator()(Floats xx, Floats yy, Floats xy) const
    {
        const Floats t = xx + yy, r = xx * yy - xy * xy - k * (t * t);
        const Lanes<int>::type magnitude = Lanes<int>::type{} + 0x7fffffff;
        const Floats root = squareRoot(reinterpret_cast<Floats>(reinterpret_cast<Lanes<int>::type>(r) & magnitude));
        return 0.0f <= r ? root : -root;
    }
};

/// The low bits of the number without its fraction; of what 64 bits do not hold, and of NaN, 0.
template<class Sample>
void wrapBlock(Sample* to, const float* from)
{
    const float limit32 = 2147483648.0f, limit64 = 9223372036854775808.0f;
    auto small = Lanes<float>::type{} == 0.0f;
    for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
        const Floats v = load(from + i);
        small &= (v > -limit32) & (v < limit32);
    }
    if (anyOf(~small)) {
        for (unsigned long i = 0; i < kBlock; ++i)
            to[i] = from[i] >= -limit64 && from[i] < limit64 ? static_cast<Sample>(static_cast<long>(from[i])) : Sample(0);
        return;
    }
    for (unsigned long i = 0; i < kBlock; ++i)
        to[i] = static_cast<Sample>(static_cast<int>(from[i]));
}

/// Block by block; the result may lie where a component does.
template<class Sample, class Response>
void respond(const Response& response, const Sample* xx, const Sample* yy, const Sample* xy, Sample* out, unsigned long n)
{
    constexpr unsigned long cacheLine = 64 / sizeof(Sample), ahead = 1024 / sizeof(Sample);
    alignas(64) float room[3][kBlock], responses[kBlock];
    for (unsigned long i = 0; i < n; i += kBlock) {
        // The response costs what its memory costs, and the machine alone asks for it too late at each page.
        for (unsigned long j = 0; j < kBlock; j += cacheLine) {
            __builtin_prefetch(xx + i + j + ahead);
            __builtin_prefetch(yy + i + j + ahead);
            __builtin_prefetch(xy + i + j + ahead);
        }
        const float* const blockXx = widened(xx + i, room[0]);
        const float* const blockYy = widened(yy + i, room[1]);
        const float* const blockXy = widened(xy + i, room[2]);
        float* const to = std::is_same<Sample, float>::value ? reinterpret_cast<float*>(out + i) : responses;
        for (unsigned long j = 0; j < kBlock; j += Lanes<float>::count)
            store(to + j, withOneNan(response(load(blockXx + j), load(blockYy + j), load(blockXy + j))));
        if constexpr (!std::is_same<Sample, float>::value)
            wrapBlock(out + i, responses);
    }
}

/// What the kernel works with on one strip.
template<class In, class Out>
struct Strip
{
    const In *xx, *yy, *xy;
    const Out* out;
    bool isHarris;
    HarrisMeasure harris;
};
template<class I, class O>
Strip(const I*, const I*, const I*, const O*, bool, HarrisMeasure) -> Strip<I, O>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult HarrisCorner2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    typedef attr::CornerDetectionParams Params;
    const auto* const strip = onceAStrip(info, [&] {
        const Params& params = *value<attr::InCornerDetectionParams>();
        return Strip{parser<attr::InXXYStrip2d, Sample>(),
                     parser<attr::InYYYStrip2d, Sample>(),
                     parser<attr::InXYYStrip2d, Sample>(),
                     parser<attr::OutYStrip2d, Sample>(),
                     params.get<Params::CornerResponseType>() == attr::eCRT_Harris,
                     HarrisMeasure{params.get<Params::HarrisK>()}};
    });
    if (!strip)
        return wrongSampleType();
    const auto run = [&](const auto& response) {
        respond(response, strip->xx->accessBuffer(), strip->yy->accessBuffer(), strip->xy->accessBuffer(),
                strip->out->accessBuffer(), info.nbAlignedData);
    };
    strip->isHarris ? run(strip->harris) : run(MinEigenvalue{});
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(HarrisCorner2dImgLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
