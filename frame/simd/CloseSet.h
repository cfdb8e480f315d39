// Closes the region that one of the Open files of this folder opened.
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#undef ORVIK_SET
#undef ORVIK_SET_BYTES
