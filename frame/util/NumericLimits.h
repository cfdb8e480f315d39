#pragma once

#include <limits>

namespace orvik {

namespace details {

template<class T>
constexpr T g_sqrtEps = 0;
template<>
inline constexpr float g_sqrtEps<float> = 3.4526698e-4f;  // 2^-11.5
template<>
inline constexpr double g_sqrtEps<double> = 1.0 / 67108864.0;  // 2^-26

}  // namespace details

/// Limits of a sample type. `s_min` is the lowest finite value, also for floating point, where the standard library's
/// `min()` is the smallest positive one: a running maximum starts from `s_min`.
template<class T>
struct NumericLimits
{
    static constexpr T s_min = std::numeric_limits<T>::lowest();
    static constexpr T s_max = std::numeric_limits<T>::max();
    static constexpr T s_eps = std::numeric_limits<T>::epsilon();  // 2^-23, 2^-52; 0 for integers
    static constexpr T s_sqrt_eps = details::g_sqrtEps<T>;         // the square root of s_eps; 0 for integers
};

}  // namespace orvik
