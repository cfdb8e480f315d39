// Opens a region whose functions are compiled for the set of the unit; everything outside stays plain code, which any
// machine can run. Nothing may be included inside. Closed by CloseSet.h. Emulated, 512 bits are plain code of any machine.
#include "frame/simd/UnitSet.h"

#if defined(__clang__)
#if defined(ORVIK_UNIT_AVX512) && !defined(ORVIK_EMULATE_AVX512)
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx512dq,avx512vl"))), apply_to = function)
#elif defined(ORVIK_UNIT_FMA3_AVX2)
#pragma clang attribute push(__attribute__((target("avx2,fma"))), apply_to = function)
#elif defined(ORVIK_UNIT_AVX2)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#elif defined(ORVIK_UNIT_AVX)
#pragma clang attribute push(__attribute__((target("avx"))), apply_to = function)
#else
#pragma clang attribute push(__attribute__((target("sse2"))), apply_to = function)
#endif
#else
#pragma GCC push_options
#if defined(ORVIK_UNIT_AVX512) && !defined(ORVIK_EMULATE_AVX512)
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl,prefer-vector-width=512")
#elif defined(ORVIK_UNIT_FMA3_AVX2)
#pragma GCC target("avx2,fma")
#elif defined(ORVIK_UNIT_AVX2)
#pragma GCC target("avx2")
#elif defined(ORVIK_UNIT_AVX)
#pragma GCC target("avx")
#elif defined(ORVIK_UNIT_SSE2)
#pragma GCC target("sse2")
#endif
#endif
