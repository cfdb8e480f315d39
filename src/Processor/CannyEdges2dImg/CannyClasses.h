#pragma once

// Classes of the pixels of one block: 0 no candidate, 1 weak, 2 strong.

#include "Processor/BlockLanes.h"
#include "Processor/CannyMagnitudes.h"

#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// A block of a line, and the lines above and below, each from the pixel left of the block.
template<class Sample, class Magnitude>
struct Neighbourhood
{
    const Magnitude* rows[3];
    const Sample *gx[3], *gy[3];
};

/// A block of whole numbers with every array of one lane width, so that the loops over it become vectors on every set.
template<class T>
struct WholeBlock
{
    template<class Sample, class Magnitude>
    explicit WholeBlock(const Neighbourhood<Sample, Magnitude>& at)
        : m_gx(inLanes(at.gx[1] + 1, m_gradientRoom[0], kBlock)), m_gy(inLanes(at.gy[1] + 1, m_gradientRoom[1], kBlock))
    {
        for (unsigned long r = 0; r < 3; ++r)
            m_rows[r] = inLanes(at.rows[r], m_room[r], kBlock + 2);
    }

    typename Lanes<T>::type magnitudes(int row, unsigned long i) const { return load(m_rows[row] + i); }
    typename Lanes<T>::type x(unsigned long i) const { return load(m_gx + i); }
    typename Lanes<T>::type y(unsigned long i) const { return load(m_gy + i); }

private:
    alignas(64) T m_room[3][kBlock + 2];
    alignas(64) T m_gradientRoom[2][kBlock];
    const T* m_rows[3];
    const T *m_gx, *m_gy;
};

/// The same of floats, widened when they are asked for.
struct FloatBlock
{
    const Neighbourhood<float, float>& at;

    Lanes<double>::type magnitudes(int row, unsigned long i) const
    {
        const Lanes<double>::type x = loadWide(at.gx[row] + i), y = loadWide(at.gy[row] + i);
        return x * x + y * y;
    }
    Lanes<double>::type x(unsigned long i) const { return loadWide(at.gx[1] + i + 1); }
    Lanes<double>::type y(unsigned long i) const { return loadWide(at.gy[1] + i + 1); }
};

// In each sector the pixel must beat the neighbour that comes before it in scan order. It may tie with the one after it
// along x and y, so that the first of two equal ones stays, but not along a diagonal, where none does: deliberate.

/// Sectors of whole numbers: with a = |gx|, b = |gy|, the angle is below 22.5 degrees when a * tan(22.5) > b. The
/// tangent is sqrt(2) - 1, so that is a^2 - b^2 > 2ab; rounding cannot turn it, for 16 bits lie too far from equality.
template<class Sample>
void classify(const WholeBlock<int>& block, const SquaredThresholds<Sample>& thresholds, int* classes)
{
    typedef Lanes<int>::type I;
    typedef Lanes<unsigned int>::type U;
    const auto magnitudes = [&](int row, unsigned long i) { return reinterpret_cast<U>(block.magnitudes(row, i)); };
    const U low = U{} + thresholds.leastCandidate, high = U{} + thresholds.leastStrong;
    for (unsigned long i = 0; i < kBlock; i += Lanes<int>::count) {
        const U m = magnitudes(1, i + 1);
        const I candidate = reinterpret_cast<I>(m >= low);
        if (!anyOf(candidate)) {
            store(classes + i, I{});
            continue;
        }
        const I x = block.x(i), y = block.y(i), xy = x * y;
        const I p = xy < 0 ? -xy : xy, d = x * x - y * y;
        // d > 2p and -d > 2p, so written that 2p cannot overflow.
        const I horizontal = d - p > p, vertical = -d - p > p;
        const I opposite = std::is_signed<Sample>::value ? (x ^ y) < 0 : I{};
        const U before = horizontal ? magnitudes(1, i)
                         : vertical ? magnitudes(0, i + 1)
                         : opposite ? magnitudes(0, i + 2)
                                    : magnitudes(0, i);
        const U after = horizontal ? magnitudes(1, i + 2)
                        : vertical ? magnitudes(2, i + 1)
                        : opposite ? magnitudes(2, i)
                                   : magnitudes(2, i + 2);
        const I kept = candidate & reinterpret_cast<I>(m > before)
                       & (reinterpret_cast<I>(m > after) | ((horizontal | vertical) & reinterpret_cast<I>(m == after)));
        const I strong = thresholds.hasStrong ? reinterpret_cast<I>(m >= high) : I{};
        store(classes + i, kept & (1 - strong));
    }
}

/// Sectors by the tangents, in double, of `n` pixels from `begin` on. Thresholds are compared as they are, so that NaN is
/// told.
template<class Sample, class AnyBlock>
void classify(const AnyBlock& block, unsigned long begin, unsigned long n, const SquaredThresholds<Sample>& thresholds,
              long* classes)
{
    typedef Lanes<double>::type D;
    typedef Lanes<long>::type L;
    const double tanLow = 0.41421356237309503, tanHigh = 2.414213562373095;  // of 22.5 and 67.5 degrees
    const L magnitudeBits = L{} + 0x7fffffffffffffffL;
    for (unsigned long i = begin; i < begin + n; i += Lanes<double>::count, classes += Lanes<double>::count) {
        const D m = block.magnitudes(1, i + 1);
        const L candidate = ~(thresholds.low >= m);
        if (!anyOf(candidate)) {
            store(classes, L{});
            continue;
        }
        const D x = block.x(i), y = block.y(i);
        const D ax = reinterpret_cast<D>(reinterpret_cast<L>(x) & magnitudeBits);
        const D ay = reinterpret_cast<D>(reinterpret_cast<L>(y) & magnitudeBits);
        const L horizontal = ax * tanLow > ay, vertical = ay > ax * tanHigh;
        const L opposite = std::is_signed<Sample>::value ? (0.0 > x) ^ (0.0 > y) : L{};  // minus zero counts as positive
        const D before = horizontal ? block.magnitudes(1, i)
                         : vertical ? block.magnitudes(0, i + 1)
                         : opposite ? block.magnitudes(0, i + 2)
                                    : block.magnitudes(0, i);
        const D after = horizontal ? block.magnitudes(1, i + 2)
                        : vertical ? block.magnitudes(2, i + 1)
                        : opposite ? block.magnitudes(2, i)
                                   : block.magnitudes(2, i + 2);
        const L kept = (m > before) & ((m > after) | ((horizontal | vertical) & (m == after)));
        const L strong = m > thresholds.high;
        store(classes, kept & candidate & (1 - strong));
    }
}

/// Floats by their rounded magnitudes; vectors in which a comparison is too close for them, by the exact ones.
inline void classify(const Neighbourhood<float, float>& at, const SquaredThresholds<float>& thresholds, int* classes)
{
    typedef Lanes<float>::type F;
    typedef Lanes<int>::type I;
    // From `tiny` to `huge`, roundings to float take less than 2^-21 of a magnitude and of a product with a tangent.
    const float up = 1.0f + 1.0f / (1 << 20), tiny = 1e-30f, huge = 1e37f;
    const float tanBelow = 0.4142131f, tanAbove = 0.4142140f;  // 1e-6 about that of 22.5 degrees
    for (unsigned long i = 0; i < kBlock; i += Lanes<float>::count) {
        const F m = load(at.rows[1] + i + 1);
        const I possible = ~(m < thresholds.belowLow);
        if (!anyOf(possible)) {
            store(classes + i, I{});
            continue;
        }
        const F x = load(at.gx[1] + i + 1), y = load(at.gy[1] + i + 1);
        const F ax = x < 0 ? -x : x, ay = y < 0 ? -y : y;
        const I horizontal = ax * tanBelow > ay, vertical = ay * tanBelow > ax;
        const I diagonal = (ax * tanAbove < ay) & (ay * tanAbove < ax);
        const auto larger = [&](int row, unsigned long before, unsigned long after) {
            const F a = load(at.rows[row] + before), b = load(at.rows[2 - row] + after);
            return a > b ? a : b;
        };
        const F neighbour = horizontal          ? larger(1, i, i + 2)
                            : vertical          ? larger(0, i + 1, i + 1)
                            : (x < 0) ^ (y < 0) ? larger(0, i + 2, i)
                                                : larger(0, i, i + 2);
        const I kept = (m > neighbour * up) & (m > thresholds.aboveLow), strong = m > thresholds.aboveHigh;
        const I settled = (horizontal | vertical | diagonal) & (m > tiny) & (m < huge)
                          & ((neighbour > m * up) | (kept & (strong | (m < thresholds.belowHigh))));
        if (anyOf(possible & ~settled)) {
            alignas(64) long exact[Lanes<float>::count];
            classify(FloatBlock{at}, i, Lanes<float>::count, thresholds, exact);
            copyBlock(exact, classes + i, Lanes<float>::count);
        } else {
            store(classes + i, kept & (1 - strong));
        }
    }
}

template<class Sample, class Magnitude>
void classifyBlock(const Neighbourhood<Sample, Magnitude>& at, const SquaredThresholds<Sample>& thresholds,
                   unsigned char* to)
{
    // The sectors of types up to 16 bits with sign are decided exactly in 32 bits; the others need doubles.
    constexpr bool isNarrow = sizeof(Sample) == 1 || std::is_same<Sample, short>::value;
    typedef typename std::conditional<isNarrow || std::is_same<Sample, float>::value, int, long>::type Class;
    alignas(64) Class classes[kBlock];
    if constexpr (std::is_same<Sample, float>::value)
        classify(at, thresholds, classes);
    else if constexpr (isNarrow)
        classify(WholeBlock<int>(at), thresholds, classes);
    else
        classify(WholeBlock<double>(at), 0, kBlock, thresholds, classes);
    copyBlock(classes, to, kBlock);
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
