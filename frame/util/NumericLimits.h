#pragma once

#include <limits>

namespace orvik {

/// Limits of a sample type. `s_min` is the lowest finite value, also for floating point, where the standard library's
/// `min()` is the smallest positive one: a running maximum starts from `s_min`.
template<class T>
struct NumericLimits
{
    static constexpr T s_min = std::numeric_limits<T>::lowest();
    static constexpr T s_max = std::numeric_limits<T>::max();
    static constexpr T s_eps = std::numeric_limits<T>::epsilon();  // 2^-23, 2^-52; 0 for integers
};

}  // namespace orvik
