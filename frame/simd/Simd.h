#pragma once

// Vectors as wide as the set of the unit, for kernels. Operators and ?: are the compiler's own on vector types.

#include "frame/core/InstructionSet.h"

#include <immintrin.h>
#if defined(ORVIK_UNIT_AVX512) && defined(ORVIK_EMULATE_AVX512)
#include "frame/simd/Emulated512.h"
#endif

#include <cstring>
#include <type_traits>

#include "frame/simd/OpenSet.h"

namespace {  // internal linkage: two sets must never share a compiled function

/// Vector of lanes of type T, and how many lanes it has.
template<class T>
struct Lanes
{
    typedef T type __attribute__((vector_size(ORVIK_SET_BYTES)));
    static constexpr unsigned long count = ORVIK_SET_BYTES / sizeof(T);
};

/// Samples that kernels take at once where they leave the vectors to the compiler.
constexpr unsigned long kBlock = 64;

template<class T>
inline typename Lanes<T>::type load(const T* from)
{
    typename Lanes<T>::type v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

template<class T>
inline void store(T* to, typename Lanes<T>::type v)
{
    std::memcpy(to, &v, sizeof v);
}

/// A block of samples in the type that they are computed in; those that are of that type are used where they lie.
template<class To, class From>
const To* widened(const From* from, To* room)
{
    if constexpr (std::is_same<To, From>::value) {
        return from;
    } else {
        for (unsigned long i = 0; i < kBlock; ++i)
            room[i] = static_cast<To>(from[i]);
        return room;
    }
}

/// As many doubles as a vector has, from floats. The compiler's own conversion goes by halves of the vector.
inline Lanes<double>::type loadWide(const float* from)
{
#if ORVIK_SET_BYTES == 64
    return _mm512_maskz_cvtps_pd(0xff, _mm256_loadu_ps(from));  // g++ 12 warns of the form without a mask
#elif ORVIK_SET_BYTES == 32
    return _mm256_cvtps_pd(_mm_loadu_ps(from));
#else
    return Lanes<double>::type{from[0], from[1]};
#endif
}

/// A vector of doubles as floats, each rounded to nearest.
inline void storeNarrow(float* to, Lanes<double>::type v)
{
#if ORVIK_SET_BYTES == 64
    _mm256_storeu_ps(to, _mm512_maskz_cvtpd_ps(0xff, v));
#elif ORVIK_SET_BYTES == 32
    _mm_storeu_ps(to, _mm256_cvtpd_ps(v));
#else
    to[0] = static_cast<float>(v[0]);
    to[1] = static_cast<float>(v[1]);
#endif
}

/// The whole numbers at or below, of values that fit into 32 bits.
inline Lanes<float>::type floorOf(Lanes<float>::type v)
{
#if ORVIK_SET_BYTES == 64
    return _mm512_maskz_roundscale_ps(0xffff, v, 0x09);  // towards -infinity, without exceptions
#elif ORVIK_SET_BYTES == 32
    return _mm256_floor_ps(v);
#else
    const Lanes<float>::type whole =
        __builtin_convertvector(__builtin_convertvector(v, Lanes<int>::type), Lanes<float>::type);
    return whole - (whole > v ? Lanes<float>::type{} + 1.0f : Lanes<float>::type{});
#endif
}

inline Lanes<float>::type squareRoot(Lanes<float>::type v)
{
#if ORVIK_SET_BYTES == 64
    return _mm512_maskz_sqrt_ps(0xffff, v);
#elif ORVIK_SET_BYTES == 32
    return _mm256_sqrt_ps(v);
#else
    return _mm_sqrt_ps(v);
#endif
}

inline Lanes<double>::type squareRoot(Lanes<double>::type v)
{
#if ORVIK_SET_BYTES == 64
    return _mm512_maskz_sqrt_pd(0xff, v);
#elif ORVIK_SET_BYTES == 32
    return _mm256_sqrt_pd(v);
#else
    return _mm_sqrt_pd(v);
#endif
}

/// A vector with one NaN for all: of two NaNs x86 hands on the first, and compilers swap operands.
inline Lanes<float>::type withOneNan(Lanes<float>::type v)
{
    return v == v ? v : Lanes<float>::type{} + __builtin_nanf("");
}

/// Whether any lane of a comparison's result, all ones or all zeros, is set.
template<class V>
inline bool anyOf(V mask)
{
#if ORVIK_SET_BYTES == 64
    return _mm512_test_epi64_mask((__m512i)mask, (__m512i)mask) != 0;
#elif ORVIK_SET_BYTES == 32
    return !_mm256_testz_si256((__m256i)mask, (__m256i)mask);
#else
    return _mm_movemask_epi8((__m128i)mask) != 0;
#endif
}

/// The lanes of a comparison of T as bits, the first one lowest.
template<class T, class V>
inline unsigned long bitsOf(V mask)
{
#if ORVIK_SET_BYTES == 64
    if constexpr (sizeof(T) == 1)
        return _mm512_movepi8_mask((__m512i)mask);
    else if constexpr (sizeof(T) == 2)
        return _mm512_movepi16_mask((__m512i)mask);
    else
        return _mm512_movepi32_mask((__m512i)mask);
#elif ORVIK_SET_BYTES == 32
    if constexpr (sizeof(T) == 1) {
        return (unsigned int)_mm256_movemask_epi8((__m256i)mask);
    } else if constexpr (sizeof(T) == 2) {
        const __m256i bytes = _mm256_packs_epi16((__m256i)mask, (__m256i)mask);  // by halves
        return (unsigned int)_mm256_movemask_epi8(_mm256_permute4x64_epi64(bytes, 8)) & 0xffffu;
    } else {
        return (unsigned int)_mm256_movemask_ps((__m256)mask);
    }
#else
    if constexpr (sizeof(T) == 1)
        return (unsigned int)_mm_movemask_epi8((__m128i)mask);
    else if constexpr (sizeof(T) == 2)
        return (unsigned int)_mm_movemask_epi8(_mm_packs_epi16((__m128i)mask, _mm_setzero_si128()));
    else
        return (unsigned int)_mm_movemask_ps((__m128)mask);
#endif
}

/// a[0], b[0], a[1], b[1] and so on, of values of four bytes.
template<class T, class V>
inline void storePairs(T* to, V a, V b)
{
    static_assert(sizeof(T) == 4, "pairs of four bytes");
#if ORVIK_SET_BYTES == 64
    store(to, __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    store(to + 16, __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31));
#elif ORVIK_SET_BYTES == 32
    store(to, __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11));
    store(to + 8, __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15));
#else
    store(to, __builtin_shufflevector(a, b, 0, 4, 1, 5));
    store(to + 4, __builtin_shufflevector(a, b, 2, 6, 3, 7));
#endif
}

/// Four floats that follow one another at each of these places, which count fours.
template<class Index>
inline Lanes<float>::type loadQuads(const float* from, const Index* places)
{
    const auto quad = [&](unsigned int i) { return _mm_loadu_ps(from + 4ul * places[i]); };
#if ORVIK_SET_BYTES == 64
    const __m512 two = _mm512_insertf32x4(_mm512_castps128_ps512(quad(0)), quad(1), 1);
    return _mm512_insertf32x4(_mm512_insertf32x4(two, quad(2), 2), quad(3), 3);
#elif ORVIK_SET_BYTES == 32
    return _mm256_insertf128_ps(_mm256_castps128_ps256(quad(0)), quad(1), 1);
#else
    return quad(0);
#endif
}

/// a[0], a[2] and so on, then those of b; floats.
inline Lanes<float>::type evenOf(Lanes<float>::type a, Lanes<float>::type b)
{
#if ORVIK_SET_BYTES == 64
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
#elif ORVIK_SET_BYTES == 32
    return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
#else
    return __builtin_shufflevector(a, b, 0, 2, 4, 6);
#endif
}

/// a[1], a[3] and so on, then those of b; floats.
inline Lanes<float>::type oddOf(Lanes<float>::type a, Lanes<float>::type b)
{
#if ORVIK_SET_BYTES == 64
    return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
#elif ORVIK_SET_BYTES == 32
    return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
#else
    return __builtin_shufflevector(a, b, 1, 3, 5, 7);
#endif
}

/// a * b + c, rounded once. Only where a kernel is told to fuse; nothing else ever is.
inline Lanes<float>::type fma(Lanes<float>::type a, Lanes<float>::type b, Lanes<float>::type c)
{
#if ORVIK_SET_BYTES == 64 && !defined(ORVIK_EMULATE_AVX512)  // emulated it would round twice
    return _mm512_fmadd_ps(a, b, c);
#elif defined(ORVIK_UNIT_FMA3_AVX2)
    return _mm256_fmadd_ps(a, b, c);
#else
    Lanes<float>::type r;
    for (unsigned long i = 0; i < Lanes<float>::count; ++i)
        r[i] = __builtin_fmaf(a[i], b[i], c[i]);
    return r;
#endif
}

/// a * b + c, rounded once where the unit has fused operations beside its set, and otherwise twice.
inline Lanes<float>::type multiplyAdd(Lanes<float>::type a, Lanes<float>::type b, Lanes<float>::type c)
{
#if defined(ORVIK_UNIT_FMA3_AVX2)
    return fma(a, b, c);
#else
    return a * b + c;
#endif
}

}  // namespace

#include "frame/simd/CloseSet.h"
