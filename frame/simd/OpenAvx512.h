// Opens a region whose functions are compiled for the set; everything outside stays plain code. Closed by CloseSet.h.
#define ORVIK_SET ::orvik::core::eIS_Avx512
#define ORVIK_SET_BYTES 64
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx512dq,avx512vl"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl,prefer-vector-width=512")
#endif
