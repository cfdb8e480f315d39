// Classes of the pixels of one line: 0 no candidate, 1 weak, 2 strong. Compiled once per instruction set.

#include "frame/simd/Simd.h"

namespace orvik { namespace imaproc { namespace fd {
namespace {

/// What squared magnitudes are kept in: the narrowest type that the sum of squares may wrap in.
template<class Sample>
struct MagnitudeOf
{
    typedef unsigned int type;
};
template<>
struct MagnitudeOf<signed char>
{
    typedef unsigned short type;
};
template<>
struct MagnitudeOf<unsigned char>
{
    typedef unsigned short type;
};
template<>
struct MagnitudeOf<float>
{
    typedef double type;
};

/// row[i] = gx[i]^2 + gy[i]^2, wrapping in integer types.
template<class Sample, class Magnitude>
void computeGradientMagnitudeSquare(const Sample* gx, const Sample* gy, Magnitude* row, unsigned long n)
{
    // In 32 bits at least: shorter products would be formed as int, where they may overflow.
    typedef typename std::conditional<std::is_same<Magnitude, double>::value, double, unsigned int>::type Wide;
    for (unsigned long i = 0; i < n; ++i) {
        const Wide x = static_cast<Wide>(gx[i]), y = static_cast<Wide>(gy[i]);
        row[i] = static_cast<Magnitude>(x * x + y * y);
    }
}

/// Thresholds for whole numbers.
/// A magnitude m is a candidate unless low >= m, and strong if m > high, with both thresholds squared in double.
struct Limits
{
    unsigned int low, high;  // candidate from `low` on, strong from `high` on
    bool candidates;         // false: there are none
    bool strong;
};

/// The least whole number above a squared threshold; false when it is beyond 32 bits or the threshold is NaN.
inline bool leastAbove(double squared, unsigned int& least)
{
    if (!(squared < 4294967295.0))
        return false;
    least = static_cast<unsigned int>(std::floor(squared)) + 1;
    return true;
}

/// Whether magnitudes are compared as whole numbers of 32 bits. The sectors of these types are decided exactly there as
/// well; the others need doubles.
template<class Sample>
constexpr bool isNarrow = sizeof(Sample) == 1 || std::is_same<Sample, short>::value;

/// A block with its neighbourhood, every array of one lane width, so that the loops over it become vectors on every set.
/// Magnitudes that have that width already are used where they lie.
template<class T, class Gradient, class Class>
struct Block
{
    const T* rows[3];  // magnitudes above, at and below the line, from the pixel left of the block
    const Gradient *gx, *gy;
    alignas(64) T room[3][kBlock + 2];
    alignas(64) Gradient gradientRoom[2][kBlock];
    alignas(64) Class classes[kBlock];
};
typedef Block<int, int, int> NarrowBlock;
/// Floats are widened when they are loaded, other samples before.
template<class Sample>
using WideBlock = Block<double, typename std::conditional<std::is_same<Sample, float>::value, float, double>::type, long>;

inline Lanes<double>::type loadWide(const double* from)
{
    return load(from);
}

inline Lanes<double>::type loadWide(const float* from)
{
    float narrow __attribute__((vector_size(ORVIK_SET_BYTES / 2)));
    std::memcpy(&narrow, from, sizeof narrow);
    return __builtin_convertvector(narrow, Lanes<double>::type);
}

// In each sector the pixel must beat the neighbour that comes before it in scan order. It may tie with the one after it
// along x and y, so that the first of two equal ones stays, but not along a diagonal, where none does: deliberate.

/// Sectors of whole numbers: with a = |gx|, b = |gy|, the angle is below 22.5 degrees when a * tan(22.5) > b. The
/// tangent is sqrt(2) - 1, so that is a^2 - b^2 > 2ab; rounding cannot turn it, for 16 bits lie too far from equality.
inline void classify(NarrowBlock& block, const Limits& limits, bool isSigned)
{
    typedef Lanes<int>::type I;
    typedef Lanes<unsigned int>::type U;
    const auto magnitudes = [&](int row, unsigned long i) {
        return reinterpret_cast<U>(load(block.rows[row] + i));
    };
    const U low = U{} + limits.low, high = U{} + limits.high;
    for (unsigned long i = 0; i < kBlock; i += Lanes<int>::count) {
        const U m = magnitudes(1, i + 1);
        const I candidate = reinterpret_cast<I>(m >= low);
        if (!anyOf(candidate)) {
            store(block.classes + i, I{});
            continue;
        }
        const I x = load(block.gx + i), y = load(block.gy + i), xy = x * y;
        const I p = xy < 0 ? -xy : xy, d = x * x - y * y;
        // d > 2p and -d > 2p, so written that 2p cannot overflow.
        const I horizontal = d - p > p, vertical = -d - p > p;
        const I opposite = isSigned ? (x ^ y) < 0 : I{};
        const U before = horizontal ? magnitudes(1, i) : vertical ? magnitudes(0, i + 1)
                         : opposite ? magnitudes(0, i + 2) : magnitudes(0, i);
        const U after = horizontal ? magnitudes(1, i + 2) : vertical ? magnitudes(2, i + 1)
                        : opposite ? magnitudes(2, i) : magnitudes(2, i + 2);
        const I kept = candidate & reinterpret_cast<I>(m > before)
                       & (reinterpret_cast<I>(m > after) | ((horizontal | vertical) & reinterpret_cast<I>(m == after)));
        const I strong = limits.strong ? reinterpret_cast<I>(m >= high) : I{};
        store(block.classes + i, kept & (1 - strong));
    }
}

/// Sectors by the tangents, in double. `lowSquared` and `highSquared` are compared as they are, so that NaN is told.
template<class Gradient>
void classify(Block<double, Gradient, long>& block, double lowSquared, double highSquared, bool isSigned)
{
    typedef Lanes<double>::type D;
    typedef Lanes<long>::type L;
    const double tanLow = 0.41421356237309503, tanHigh = 2.414213562373095;  // of 22.5 and 67.5 degrees
    const L magnitudeBits = L{} + 0x7fffffffffffffffL;
    for (unsigned long i = 0; i < kBlock; i += Lanes<double>::count) {
        const D m = load(block.rows[1] + i + 1);
        const L candidate = ~(lowSquared >= m);
        if (!anyOf(candidate)) {
            store(block.classes + i, L{});
            continue;
        }
        const D x = loadWide(block.gx + i), y = loadWide(block.gy + i);
        const D ax = reinterpret_cast<D>(reinterpret_cast<L>(x) & magnitudeBits);
        const D ay = reinterpret_cast<D>(reinterpret_cast<L>(y) & magnitudeBits);
        const L horizontal = ax * tanLow > ay, vertical = ay > ax * tanHigh;
        const L opposite = isSigned ? (0.0 > x) ^ (0.0 > y) : L{};  // minus zero counts as positive
        const auto magnitudes = [&](int row, unsigned long j) { return load(block.rows[row] + j); };
        const D before = horizontal ? magnitudes(1, i) : vertical ? magnitudes(0, i + 1)
                         : opposite ? magnitudes(0, i + 2) : magnitudes(0, i);
        const D after = horizontal ? magnitudes(1, i + 2) : vertical ? magnitudes(2, i + 1)
                        : opposite ? magnitudes(2, i) : magnitudes(2, i + 2);
        const L kept = (m > before) & ((m > after) | ((horizontal | vertical) & (m == after)));
        const L strong = m > highSquared;
        store(block.classes + i, kept & candidate & (1 - strong));
    }
}

template<class T, class From>
void copyBlock(const From* from, T* to, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i)
        to[i] = static_cast<T>(from[i]);
}

/// Values in the lanes that a block is compared in: where they lie, when they are that wide and of that kind (whole
/// numbers with or without sign), else in room of the block's own.
template<class T, class From>
const T* inLanes(const From* from, T* room, unsigned long n)
{
    if constexpr (sizeof(T) == sizeof(From) && std::is_floating_point<T>::value == std::is_floating_point<From>::value) {
        return reinterpret_cast<const T*>(from);
    } else {
        copyBlock(from, room, n);
        return room;
    }
}

/// Whether a block holds a candidate: most hold none, and are done with.
template<class Magnitude>
bool hasCandidate(const Magnitude* m, Magnitude low)
{
    const auto limit = typename Lanes<Magnitude>::type{} + low;
    auto any = load(m) >= limit;
    for (unsigned long i = Lanes<Magnitude>::count; i < kBlock; i += Lanes<Magnitude>::count)
        any |= load(m + i) >= limit;
    return anyOf(any);
}

inline bool hasCandidate(const double* m, double lowSquared)
{
    auto any = ~(lowSquared >= load(m));
    for (unsigned long i = Lanes<double>::count; i < kBlock; i += Lanes<double>::count)
        any |= ~(lowSquared >= load(m + i));
    return anyOf(any);
}

}  // namespace

template<class Sample, core::eInstructionSet Set>
BoolResult CannyEdges2dImgLvl3::genericProcessFunction(const processor::ProcessingInfo& info)
{
    return processFunction<Sample, typename MagnitudeOf<Sample>::type, Set>(info);
}

template<class Sample, class Magnitude, core::eInstructionSet Set>
BoolResult CannyEdges2dImgLvl3::processFunction(const processor::ProcessingInfo& info)
{
    const auto* const gx = parser<attr::InGxKnlYStrip2d, Sample>();
    const auto* const gy = parser<attr::InGyKnlYStrip2d, Sample>();
    const auto* const out = parser<attr::OutYStrip2d, unsigned char>();
    if (!gx || !gy || !out)
        return wrongSampleType();

    // The lines are readable to the end of the last whole block and its margins.
    const unsigned long n = info.nbAlignedData;
    image::FragHybridBuffer& rows = *m_magnitudes[info.partIndex];
    const auto computeRow = [&](unsigned long r) {
        computeGradientMagnitudeSquare(gx->accessBuffer(r), gy->accessBuffer(r),
                                       static_cast<Magnitude*>(rows.getDataPtr(r)), n + 2);
    };
    if (info.lineIndex == 0) {
        rows.init(DataTypeOf<Magnitude>::value, n + 2, 3);
        computeRow(0);
        computeRow(1);
    } else {
        rows.rollUpFragments();
    }
    computeRow(2);

    const attr::CannyThresholds& thresholds = *value<attr::InCannyThresholds>();
    const double low = thresholds.template get<attr::CannyThresholds::LowThreshold>();
    const double high = thresholds.template get<attr::CannyThresholds::HighThreshold>();
    const double lowSquared = low * low, highSquared = high * high;
    const Magnitude* const magnitudes[3] = {static_cast<const Magnitude*>(rows.getDataPtr(0)),
                                            static_cast<const Magnitude*>(rows.getDataPtr(1)),
                                            static_cast<const Magnitude*>(rows.getDataPtr(2))};
    const Sample* const lineX = gx->accessBuffer(1) + 1;
    const Sample* const lineY = gy->accessBuffer(1) + 1;
    unsigned char* const classes = out->accessBuffer();

    typename std::conditional<isNarrow<Sample>, NarrowBlock, WideBlock<Sample> >::type block;
    Limits limits = {0, 0, true, false};
    limits.candidates = leastAbove(lowSquared, limits.low) || lowSquared != lowSquared;
    limits.strong = leastAbove(highSquared, limits.high);
    for (unsigned long i = 0; i < n; i += kBlock) {
        gx->prefetchNext(i, kBlock);
        gy->prefetchNext(i, kBlock);
        bool any;
        if constexpr (std::is_same<Magnitude, double>::value) {
            any = hasCandidate(magnitudes[1] + i + 1, lowSquared);
        } else {
            any = limits.candidates && limits.low <= NumericLimits<Magnitude>::s_max
                  && hasCandidate(magnitudes[1] + i + 1, static_cast<Magnitude>(limits.low));
        }
        if (!any) {
            std::memset(classes + i, 0, kBlock);
            continue;
        }
        for (unsigned long r = 0; r < 3; ++r)
            block.rows[r] = inLanes(magnitudes[r] + i, block.room[r], kBlock + 2);
        block.gx = inLanes(lineX + i, block.gradientRoom[0], kBlock);
        block.gy = inLanes(lineY + i, block.gradientRoom[1], kBlock);
        if constexpr (isNarrow<Sample>)
            classify(block, limits, std::is_signed<Sample>::value);
        else
            classify(block, lowSquared, highSquared, std::is_signed<Sample>::value);
        copyBlock(block.classes, classes + i, kBlock);
    }
    return success();
}

}}}  // namespace orvik::imaproc::fd
