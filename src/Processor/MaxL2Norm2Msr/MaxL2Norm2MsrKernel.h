#pragma once

// The largest squared norm of one run. Compiled once per instruction set.

#include "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl3.h"

#include "frame/attr/StripAttributes.h"
#include "frame/attr/ValueAttributes.h"
#include "frame/processor/KernelRegistrator.h"
#include "frame/simd/Simd.h"

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// The measure as it is defined: in order, `m` replaced by whatever it is not greater than.
template<class Sample>
float largestInOrder(const Sample* a, const Sample* b, unsigned long n)
{
    float m = 0;
    for (unsigned long i = 0; i < n; ++i) {
        const float x = static_cast<float>(a[i]), y = static_cast<float>(b[i]), s = y * y + x * x;
        m = (m > s) ? m : s;
    }
    return m;
}

/// The same in whole blocks, four running maxima per lane to break the chain of dependencies. A NaN makes the order
/// matter, so a run that holds one is left to the loop above.
template<class Sample>
float largest(const Sample* a, const Sample* b, unsigned long n)
{
    typedef typename Lanes<float>::type F;
    constexpr unsigned long lanes = Lanes<float>::count, step = 4 * lanes;
    constexpr unsigned long cacheLine = 64 / sizeof(Sample), ahead = 2048 / sizeof(Sample);
    F m[4] = {};
    auto ordered = m[0] == m[0];
    float roomA[kBlock], roomB[kBlock];
    for (unsigned long i = 0; i < n; i += kBlock) {
        // The measure costs what its memory costs, and the machine alone asks for it too late at each page. Into the second
        // cache: some machines lose more by what comes into the first one too early.
        for (unsigned long j = 0; j < kBlock; j += cacheLine) {
            __builtin_prefetch(a + i + j + ahead, 0, 2);
            __builtin_prefetch(b + i + j + ahead, 0, 2);
        }
        const float* const blockA = widened(a + i, roomA);
        const float* const blockB = widened(b + i, roomB);
        for (unsigned long j = 0; j < kBlock; j += step)
            for (unsigned long k = 0; k < 4; ++k) {
                const F x = load(blockA + j + k * lanes), y = load(blockB + j + k * lanes);
                // The one place where the widest set rounds once instead of twice.
                const F s = ORVIK_UNIT_SET == core::eIS_Avx512 ? fma(x, x, y * y) : y * y + x * x;
                ordered &= s == s;
                m[k] = m[k] > s ? m[k] : s;
            }
    }
    if (anyOf(~ordered))
        return largestInOrder(a, b, n);
    for (unsigned long k = 1; k < 4; ++k)
        m[0] = m[0] > m[k] ? m[0] : m[k];
    float result = 0;
    for (unsigned long l = 0; l < lanes; ++l)
        result = result > m[0][l] ? result : m[0][l];
    return result;
}

/// What the kernel works with on one strip.
template<class In>
struct Strip
{
    const In *a, *b;
    attr::StatsResult& result;
};
template<class I>
Strip(const I*, const I*, attr::StatsResult&) -> Strip<I>;

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult MaxL2Norm2MsrLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    auto* const strip = onceAStrip(info, [&] {
        return Strip{parser<attr::InYStrip2d1, Sample>(), parser<attr::InYStrip2d2, Sample>(),
                     *value<attr::OutStatsResult>()};
    });
    if (!strip)
        return wrongSampleType();
    const Sample* const a = strip->a->accessBuffer();
    const Sample* const b = strip->b->accessBuffer();
    const bool wholeBlocks = Set != core::eIS_Generic && info.nbAlignedData == info.nbData;
    const float m = wholeBlocks ? largest(a, b, info.nbData) : largestInOrder(a, b, info.nbData);
    const double l = __builtin_sqrt(static_cast<double>(m)), current = strip->result.template get<attr::StatsResult::Max>();
    strip->result.template set<attr::StatsResult::Max>((current > l) ? current : l);
    return success();
}

}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"

namespace orvik { namespace imaproc { namespace fd {

ORVIK_REGISTER_KERNELS(MaxL2Norm2MsrLvl3, AllKernelTypes)

}}}  // namespace orvik::imaproc::fd
