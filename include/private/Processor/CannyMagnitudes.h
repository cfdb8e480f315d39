#pragma once

// Squared magnitudes of gradients, and thresholds for them.

#include "frame/simd/Simd.h"
#include "frame/util/NumericLimits.h"

#include <cmath>
#include <limits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

/// What squared magnitudes are kept in: the narrowest unsigned type that the sum of squares may wrap in.
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

/// row[i] = gx[i]^2 + gy[i]^2, wrapping in integer types.
template<class Sample, class Magnitude>
void computeGradientMagnitudeSquare(const Sample* gx, const Sample* gy, Magnitude* row, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) {
        // In 32 bits at least: shorter products would be formed as int, where they may overflow.
        const unsigned int x = static_cast<unsigned int>(gx[i]), y = static_cast<unsigned int>(gy[i]);
        row[i] = static_cast<Magnitude>(x * x + y * y);
    }
}

/// row[i] = gx[i]^2 + gy[i]^2 + gz[i]^2, wrapping in integer types.
template<class Sample, class Magnitude>
void computeGradientMagnitudeSquare(const Sample* gx, const Sample* gy, const Sample* gz, Magnitude* row, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) {
        const unsigned int x = static_cast<unsigned int>(gx[i]), y = static_cast<unsigned int>(gy[i]);
        const unsigned int z = static_cast<unsigned int>(gz[i]);
        row[i] = static_cast<Magnitude>(x * x + y * y + z * z);
    }
}

/// The same of floats, in double: of whole vectors, of which the last one may reach beyond `n`.
inline void computeGradientMagnitudeSquare(const float* gx, const float* gy, const float* gz, double* row, unsigned long n)
{
    for (unsigned long i = 0; i < n; i += Lanes<double>::count) {
        const Lanes<double>::type x = loadWide(gx + i), y = loadWide(gy + i), z = loadWide(gz + i);
        store(row + i, x * x + y * y + z * z);
    }
}

/// Of floats the magnitudes are double. Rows of them would not fit the first cache, so rows hold them rounded to float:
/// nearly all comparisons come out the same, and the few that may not are made once more in double.
template<>
struct MagnitudeOf<float>
{
    typedef float type;
};

/// Infinity stands for NaN, so that no comparison with a neighbour passes it over.
inline void computeGradientMagnitudeSquare(const float* gx, const float* gy, float* row, unsigned long n)
{
    for (unsigned long i = 0; i < n; ++i) {
        const float m = gx[i] * gx[i] + gy[i] * gy[i];
        row[i] = m == m ? m : std::numeric_limits<float>::infinity();
    }
}

/// Both thresholds, squared, for whole numbers. A magnitude m is a candidate unless low >= m, and strong if m > high.
template<class Sample>
struct SquaredThresholds
{
    SquaredThresholds(double lowThreshold, double highThreshold)
        : low(lowThreshold * lowThreshold), high(highThreshold * highThreshold),
          hasCandidates(leastAbove(low, leastCandidate) || low != low), hasStrong(leastAbove(high, leastStrong))
    {
    }

    double low, high;
    // The same as whole numbers: from the least one on. All are candidates where the low threshold is NaN.
    unsigned int leastCandidate = 0, leastStrong = 0;
    bool hasCandidates, hasStrong;

private:
    /// The least whole number above a squared threshold; false when it is beyond 32 bits or the threshold is NaN.
    static bool leastAbove(double squared, unsigned int& least)
    {
        if (!(squared < 4294967295.0))
            return false;
        least = static_cast<unsigned int>(std::floor(squared)) + 1;
        return true;
    }
};

/// For floats: a rounded magnitude that is not between `below` and `above` is on the same side of the threshold as the
/// exact one.
template<>
struct SquaredThresholds<float>
{
    SquaredThresholds(double lowThreshold, double highThreshold)
        : low(lowThreshold * lowThreshold), high(highThreshold * highThreshold), belowLow(below(low)), aboveLow(above(low)),
          belowHigh(below(high)), aboveHigh(above(high))
    {
    }

    double low, high;
    float belowLow, aboveLow, belowHigh, aboveHigh;

private:
    static float below(double squared) { return rounded(squared * (1 - 1e-6) - 1e-42); }
    static float above(double squared) { return rounded(squared * (1 + 1e-6) + 1e-42); }
    static float rounded(double value)
    {
        const double highest = NumericLimits<float>::s_max;
        return static_cast<float>(value > highest ? highest : value);
    }
};

/// Whether a block holds a candidate: most hold none, and are done with.
template<class Sample, class Magnitude>
bool mayHaveCandidate(const Magnitude* m, const SquaredThresholds<Sample>& thresholds)
{
    if (!thresholds.hasCandidates || thresholds.leastCandidate > NumericLimits<Magnitude>::s_max)
        return false;
    const auto least = typename Lanes<Magnitude>::type{} + static_cast<Magnitude>(thresholds.leastCandidate);
    auto any = load(m) >= least;
    for (unsigned long i = Lanes<Magnitude>::count; i < kBlock; i += Lanes<Magnitude>::count)
        any |= load(m + i) >= least;
    return anyOf(any);
}

inline bool mayHaveCandidate(const float* m, const SquaredThresholds<float>& thresholds)
{
    auto none = load(m) < thresholds.belowLow;
    for (unsigned long i = Lanes<float>::count; i < kBlock; i += Lanes<float>::count)
        none &= load(m + i) < thresholds.belowLow;
    return anyOf(~none);
}

/// Magnitudes in double are compared with the threshold as it is, so that NaN is told.
inline bool mayHaveCandidate(const double* m, const SquaredThresholds<float>& thresholds)
{
    auto none = thresholds.low >= load(m);
    for (unsigned long i = Lanes<double>::count; i < kBlock; i += Lanes<double>::count)
        none &= thresholds.low >= load(m + i);
    return anyOf(~none);
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
