#pragma once

// The intrinsics of 512 bits that kernels use, for machines without them: a build for tests alone, which are slow. Vector
// types and their operators are the compiler's own on any machine.

// First the real ones, whose names the emulation takes over.
#include <immintrin.h>

#define SIMDE_ENABLE_NATIVE_ALIASES
#include <simde/x86/avx512/mov_mask.h>
#include <simde/x86/avx512/roundscale.h>
#include <simde/x86/avx512/sqrt.h>
#include <simde/x86/avx512/test.h>

// Forms that SIMDe does not have; kernels keep all lanes.
#define _mm512_maskz_cvtps_pd(mask, from) emulatedToDouble(from)
#define _mm512_maskz_cvtpd_ps(mask, from) emulatedToFloat(from)
#define _mm512_maskz_sqrt_ps(mask, from) _mm512_sqrt_ps(from)

namespace {

inline __m512d emulatedToDouble(__m256 from)
{
    __m512d to;
    for (int i = 0; i < 8; ++i)
        to[i] = static_cast<double>(from[i]);
    return to;
}

inline __m256 emulatedToFloat(__m512d from)
{
    __m256 to;
    for (int i = 0; i < 8; ++i)
        to[i] = static_cast<float>(from[i]);
    return to;
}

}  // namespace
