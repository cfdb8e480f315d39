// The largest squared norm of one run. Compiled once per instruction set.

#include "frame/simd/Simd.h"

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

/// A block of samples as floats; floats themselves are used where they lie.
template<class Sample>
const float* widened(const Sample* from, float* room)
{
    if constexpr (std::is_same<Sample, float>::value) {
        return from;
    } else {
        for (unsigned long i = 0; i < kBlock; ++i)
            room[i] = static_cast<float>(from[i]);
        return room;
    }
}

/// The same in whole blocks, four running maxima per lane to break the chain of dependencies. A NaN makes the order
/// matter, so a run that holds one is left to the loop above.
template<class Sample>
float largest(const Sample* a, const Sample* b, unsigned long n)
{
    typedef typename Lanes<float>::type F;
    constexpr unsigned long lanes = Lanes<float>::count, step = 4 * lanes;
    F m[4] = {};
    auto unordered = m[0] != m[0];
    float roomA[kBlock], roomB[kBlock];
    for (unsigned long i = 0; i < n; i += kBlock) {
        const float* const blockA = widened(a + i, roomA);
        const float* const blockB = widened(b + i, roomB);
        for (unsigned long j = 0; j < kBlock; j += step)
            for (unsigned long k = 0; k < 4; ++k) {
                const F x = load(blockA + j + k * lanes), y = load(blockB + j + k * lanes);
                // The one place where the widest set rounds once instead of twice.
                const F s = ORVIK_SET == core::eIS_Avx512 ? fma(x, x, y * y) : y * y + x * x;
                unordered |= s != s;
                m[k] = m[k] > s ? m[k] : s;
            }
    }
    float result = 0;
    bool anyUnordered = false;
    for (unsigned long l = 0; l < lanes; ++l) {
        anyUnordered = anyUnordered || unordered[l] != 0;
        for (unsigned long k = 0; k < 4; ++k)
            result = result > m[k][l] ? result : m[k][l];
    }
    return anyUnordered ? largestInOrder(a, b, n) : result;
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult MaxL2Norm2MsrLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    const auto* const a = parser<attr::InYStrip2d1, Sample>();
    const auto* const b = parser<attr::InYStrip2d2, Sample>();
    if (!a || !b)
        return wrongSampleType();
    const bool wholeBlocks = Set != core::eIS_Generic && info.nbAlignedData == info.nbData;
    const float m = wholeBlocks ? largest(a->accessBuffer(), b->accessBuffer(), info.nbData)
                                : largestInOrder(a->accessBuffer(), b->accessBuffer(), info.nbData);
    const double l = __builtin_sqrt(static_cast<double>(m));
    attr::StatsResult& result = *value<attr::OutStatsResult>();
    const double current = result.get<attr::StatsResult::Max>();
    result.set<attr::StatsResult::Max>((current > l) ? current : l);
    return success();
}

}}}  // namespace orvik::imaproc::fd
