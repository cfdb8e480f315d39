#pragma once

// Roots and angles of many numbers at once, within some units in the last place, after the single-precision functions and the
// arc sine of S. L. Moshier, "Methods and Programs for Mathematical Functions", 1989. Compiled once per instruction set.

#include "frame/simd/Simd.h"

#include <limits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

inline Lanes<float>::type all(float value)
{
    return Lanes<float>::type{} + value;
}

/// The coefficient of the highest power comes first.
template<class... Coefficients>
inline Lanes<float>::type polynomial(Lanes<float>::type x, float highest, Coefficients... others)
{
    Lanes<float>::type sum = all(highest);
    ((sum = multiplyAdd(sum, x, all(others))), ...);
    return sum;
}

/// Of finite numbers above 0 that are no denormal ones.
inline Lanes<float>::type logarithm(Lanes<float>::type x)
{
    typedef Lanes<float>::type Vector;
    typedef Lanes<int>::type Whole;
    // x = m * 2^e with m from the square root of 1/2 to that of 2; then m less 1.
    const Whole bits = reinterpret_cast<Whole>(x);
    const Vector half = reinterpret_cast<Vector>((bits & 0x7fffff) | 0x3f000000);
    const auto isLow = half < all(0.70710678118654752440f);
    const Vector m = (isLow ? half + half : half) - 1.0f;
    const Vector e = __builtin_convertvector((bits >> 23) - 126 + isLow, Vector);
    const Vector z = m * m;
    const Vector series = polynomial(m, 7.0376836292e-2f, -1.1514610310e-1f, 1.1676998740e-1f, -1.2420140846e-1f,
                                     1.4249322787e-1f, -1.6668057665e-1f, 2.0000714765e-1f, -2.4999993993e-1f,
                                     3.3333331174e-1f)
                          * m * z;
    const Vector rest = multiplyAdd(all(-0.5f), z, multiplyAdd(all(-2.12194440e-4f), e, series));
    return multiplyAdd(all(0.693359375f), e, m + rest);
}

/// Where the result is no denormal number and finite.
inline Lanes<float>::type exponential(Lanes<float>::type x)
{
    typedef Lanes<float>::type Vector;
    const Vector n = floorOf(multiplyAdd(all(1.44269504088896341f), x, all(0.5f)));
    const Vector r = multiplyAdd(all(2.12194440e-4f), n, multiplyAdd(all(-0.693359375f), n, x));
    const Vector series = polynomial(r, 1.9875691500e-4f, 1.3981999507e-3f, 8.3334519073e-3f, 4.1665795894e-2f,
                                     1.6666665459e-1f, 5.0000001201e-1f);
    const auto power = (__builtin_convertvector(n, Lanes<int>::type) + 127) << 23;
    return (multiplyAdd(series, r * r, r) + 1.0f) * reinterpret_cast<Vector>(power);
}

/// Of x from -1 to 1.
inline Lanes<float>::type arcCosine(Lanes<float>::type x)
{
    typedef Lanes<float>::type Vector;
    const auto isNegative = x < Vector{};
    const Vector a = isNegative ? -x : x;
    const auto isOuter = a > all(0.625f);
    // Beyond the split from the distance to 1, whose root the angle is close to; within it from the arc sine.
    const Vector z = isOuter ? 1.0f - a : x * x;
    const Vector above =
        isOuter ? polynomial(z, 2.967721961301243206100e-3f, -5.634242780008963776856e-1f, 6.968710824104713396794f,
                             -2.556901049652824852289e1f, 2.853665548261061424989e1f)
                : polynomial(z, 4.253011369004428248960e-3f, -6.019598008014123785661e-1f, 5.444622390564711410273f,
                             -1.626247967210700244449e1f, 1.956261983317594739197e1f, -8.198089802484824371615f);
    const Vector below = isOuter ? polynomial(z, 1.0f, -2.194779531642920639778e1f, 1.470656354026814941758e2f,
                                              -3.838770957603691357202e2f, 3.424398657913078477438e2f)
                                 : polynomial(z, 1.0f, -1.474091372988853791896e1f, 7.049610280856842141659e1f,
                                              -1.471791292232726029859e2f, 1.395105614657485689735e2f,
                                              -4.918853881490881290097e1f);
    const Vector first = isOuter ? squareRoot(z + z) : x;
    const Vector angle = multiplyAdd(first, z * above / below, first);
    const Vector acute = isNegative ? 3.14159265358979f - angle : angle;
    return isOuter ? acute : 1.57079632679490f - angle;
}

/// Of angles from -3/4 pi to 3/4 pi.
inline Lanes<float>::type cosine(Lanes<float>::type angle)
{
    typedef Lanes<float>::type Vector;
    const Vector a = angle < Vector{} ? -angle : angle;
    // In the quarter about pi / 2 the sine of what is beyond it; pi / 2 in three parts.
    const auto isSine = a * 1.27323954473516f >= all(1.0f);
    const Vector nbEighths = isSine ? all(2.0f) : Vector{};
    const Vector r =
        multiplyAdd(all(-3.77489497744594108e-8f), nbEighths,
                    multiplyAdd(all(-2.4187564849853515625e-4f), nbEighths, multiplyAdd(all(-0.78515625f), nbEighths, a)));
    const Vector z = r * r;
    const Vector sine = multiplyAdd(polynomial(z, -1.9515295891e-4f, 8.3321608736e-3f, -1.6666654611e-1f) * z, r, r);
    const Vector series = polynomial(z, 2.443315711809948e-5f, -1.388731625493765e-3f, 4.166664568298827e-2f) * z * z;
    return isSine ? -sine : multiplyAdd(all(-0.5f), z, series) + 1.0f;
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
