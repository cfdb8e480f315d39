// The corner response of one run, from the structure tensor. Compiled once per instruction set.

#include "frame/simd/Simd.h"

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
            store(to + j, response(load(blockXx + j), load(blockYy + j), load(blockXy + j)));
        if constexpr (!std::is_same<Sample, float>::value)
            wrapBlock(out + i, responses);
    }
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult HarrisCorner2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const xx = parser<attr::InXXYStrip2d, Sample>();
    const auto* const yy = parser<attr::InYYYStrip2d, Sample>();
    const auto* const xy = parser<attr::InXYYStrip2d, Sample>();
    const auto* const out = parser<attr::OutYStrip2d, Sample>();
    if (!xx || !yy || !xy || !out)
        return wrongSampleType();
    const attr::CornerDetectionParams& params = *value<attr::InCornerDetectionParams>();
    const auto run = [&](const auto& response) {
        respond(response, xx->accessBuffer(), yy->accessBuffer(), xy->accessBuffer(), out->accessBuffer(),
                info.nbAlignedData);
    };
    if (params.template get<attr::CornerDetectionParams::CornerResponseType>() == attr::eCRT_Harris)
        run(HarrisMeasure{params.template get<attr::CornerDetectionParams::HarrisK>()});
    else
        run(MinEigenvalue{});
    return success();
}

}}}  // namespace orvik::imaproc::fd
