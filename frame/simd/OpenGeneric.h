// Opens plain code: what follows runs on any machine. Closed by CloseSet.h.
#define ORVIK_SET ::orvik::core::eIS_Generic
#define ORVIK_SET_BYTES 16
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("sse2"))), apply_to = function)
#else
#pragma GCC push_options
#endif
