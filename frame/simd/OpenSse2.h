// Opens a region whose functions are compiled for the set; everything outside stays plain code. Closed by CloseSet.h.
#define ORVIK_SET ::orvik::core::eIS_Sse2
#define ORVIK_SET_BYTES 16
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("sse2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("sse2")
#endif
