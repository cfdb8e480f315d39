#pragma once

// Lines as extrema are looked for in them: what is looked for is high, what does not count is low.

#include "frame/simd/Simd.h"
#include "frame/util/NumericLimits.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace orvik { namespace imaproc { namespace fd { namespace {

template<class V>
inline V larger(V a, V b)
{
    return a > b ? a : b;
}

/// Of vectors, what `oriented` does to each of their lanes for minima.
inline Lanes<float>::type complement(Lanes<float>::type v)
{
    return -v;
}
template<class V>
inline V complement(V v)
{
    return ~v;
}

/// Samples so mapped that what is looked for is high: minima are the maxima of the negative, in whole numbers of the
/// complement, which never overflows.
template<class T>
T oriented(T value, bool minima)
{
    if constexpr (std::is_same<T, float>::value)
        return minima ? -value : value;
    else
        return minima ? static_cast<T>(~value) : value;
}

/// The lowest oriented value that is listed: above the type's limit, and past the threshold, which is compared in float.
/// False when there is none.
template<class T>
bool getLowestListed(bool minima, float threshold, T& lowest)
{
    if constexpr (std::is_same<T, float>::value) {
        lowest = std::max(oriented(threshold, minima), std::nextafter(NumericLimits<float>::s_min, 0.0f));
        return threshold == threshold;
    } else {
        const auto passes = [&](long value) {
            const float v = static_cast<float>(oriented(static_cast<T>(value), minima));
            return minima ? v <= threshold : v >= threshold;
        };
        // Rounding to float keeps the order, so all that pass lie above all that do not.
        long fails = NumericLimits<T>::s_min, pass = NumericLimits<T>::s_max;
        if (!passes(pass))
            return false;
        while (pass - fails > 1) {
            const long middle = fails + (pass - fails) / 2;
            (passes(middle) ? pass : fails) = middle;
        }
        lowest = static_cast<T>(pass);
        return true;
    }
}

/// Whether samples are as the fold wants them: no NaN, nothing lower than the lowest finite value.
template<class T>
bool isFoldable(const T* from, unsigned long n)
{
    if constexpr (std::is_same<T, float>::value) {
        unsigned int odd = 0;
        for (unsigned long i = 0; i < n; ++i)
            odd |= !(from[i] >= NumericLimits<T>::s_min);
        return odd == 0;
    } else {
        return true;
    }
}

/// Oriented samples; what is lower than the lowest finite value, or no number, becomes that one.
template<class T>
void orientLine(const T* from, unsigned long n, bool minima, T* to)
{
    for (unsigned long i = 0; i < n; ++i) {
        to[i] = oriented(from[i], minima);
        if constexpr (std::is_same<T, float>::value)
            to[i] = NumericLimits<T>::s_min < to[i] ? to[i] : NumericLimits<T>::s_min;
    }
}

/// to[i] = the largest of from[i] to from[i + length - 1], by doubling. Whole vectors; both are readable and `to` holds
/// lowest values `length` beyond them.
template<class T>
void foldAlong(const T* from, unsigned long n, unsigned long length, T* to)
{
    unsigned long folded = 1;
    while (folded < length) {
        const unsigned long step = std::min(folded, length - folded);
        for (unsigned long i = 0; i < n; i += Lanes<T>::count)
            store(to + i, larger(load(from + i), load(from + i + step)));
        folded += step;
        from = to;
    }
}

}  // namespace
}}}  // namespace orvik::imaproc::fd

#include "frame/simd/CloseSet.h"
