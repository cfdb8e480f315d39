#pragma once

// The set that the kernels of a unit are compiled for: the one that its first line names, such as
// `#define ORVIK_UNIT_AVX2`, and plain code where it names none.
//
// ORVIK_UNIT_SET: the set's number, ORVIK_SET_BYTES: bytes of the vectors of kernels. ORVIK_UNIT_FIRST_SET: the first of two
// sets, for classes whose kernels are registered by pairs: the same one, unless the unit has fused operations besides.

#if defined(ORVIK_UNIT_AVX512)
#define ORVIK_UNIT_SET ::orvik::core::eIS_Avx512
#define ORVIK_SET_BYTES 64
#elif defined(ORVIK_UNIT_AVX2) || defined(ORVIK_UNIT_FMA3_AVX2)
#define ORVIK_UNIT_SET ::orvik::core::eIS_Avx2
#define ORVIK_SET_BYTES 32
#elif defined(ORVIK_UNIT_AVX)
#define ORVIK_UNIT_SET ::orvik::core::eIS_Avx
#define ORVIK_SET_BYTES 32
#elif defined(ORVIK_UNIT_SSE2)
#define ORVIK_UNIT_SET ::orvik::core::eIS_Sse2
#define ORVIK_SET_BYTES 16
#else
#define ORVIK_UNIT_PLAIN
#define ORVIK_UNIT_SET ::orvik::core::eIS_Generic
#define ORVIK_SET_BYTES 16
#endif

#if defined(ORVIK_UNIT_FMA3_AVX2)
#define ORVIK_UNIT_FIRST_SET ::orvik::core::eIS_Fma
#else
#define ORVIK_UNIT_FIRST_SET ORVIK_UNIT_SET
#endif
