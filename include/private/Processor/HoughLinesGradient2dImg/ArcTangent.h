#pragma once

// Directions of vectors, many at once. Compiled once per instruction set.

#include "frame/simd/Simd.h"
#include "frame/util/NumericLimits.h"

#include <limits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

inline Lanes<float>::type all(float value)
{
    return Lanes<float>::type{} + value;
}

/// The angle of (x, y) from -pi to pi, as atan2 has it but for its last bits, for what is no NaN. After the rational
/// approximation of the arc tangent in S. L. Moshier, "Methods and Programs for Mathematical Functions", 1989.
inline Lanes<float>::type angleOf(Lanes<float>::type y, Lanes<float>::type x)
{
    typedef Lanes<float>::type Vector;
    typedef Lanes<int>::type Whole;
    const Whole sign = Whole{} + std::numeric_limits<int>::min();
    const Whole bitsX = reinterpret_cast<Whole>(x), bitsY = reinterpret_cast<Whole>(y);
    const Vector absX = reinterpret_cast<Vector>(bitsX & ~sign), absY = reinterpret_cast<Vector>(bitsY & ~sign);
    const auto isNone = (absX < all(NumericLimits<float>::s_sqrt_eps)) & (absY == Vector{});
    const auto isDiagonal = (absX > all(NumericLimits<float>::s_max)) & (absY > all(NumericLimits<float>::s_max));
    const Vector slope = isNone ? Vector{} : isDiagonal ? all(1.0f) : absY / absX;

    const auto isSteep = slope > all(2.4142137f);  // tan(3 pi / 8)
    const auto isMiddle = slope > all(0.66f);
    const Vector reduced = isSteep ? all(-1.0f) / slope : isMiddle ? (slope - all(1.0f)) / (slope + all(1.0f)) : slope;
    const Vector base = isSteep ? all(1.5707964f) : isMiddle ? all(0.78539819f) : Vector{};
    const Vector z = reduced * reduced;
    const Vector above = (((all(-0.87506086f) * z + all(-16.157537f)) * z + all(-75.00856f)) * z + all(-122.886665f)) * z
                         + all(-64.85022f);
    const Vector below = ((((z + all(24.858465f)) * z + all(165.02701f)) * z + all(432.88107f)) * z + all(485.3904f)) * z
                         + all(194.55066f);
    const Vector acute = base + (reduced * (z * above / below) + reduced);
    const Vector angle = bitsX < Whole{} ? all(3.1415927f) - acute : acute;
    return reinterpret_cast<Vector>(reinterpret_cast<Whole>(angle) | (bitsY & sign));
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
