// Vectors as wide as the set that is open, for kernels; included inside the region, once per unit. Operators and ?: are
// the compiler's own on vector types.

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

/// a * b + c, rounded once. Only where a kernel is told to fuse; nothing else ever is.
inline Lanes<float>::type fma(Lanes<float>::type a, Lanes<float>::type b, Lanes<float>::type c)
{
#if ORVIK_SET_BYTES == 64
    return _mm512_fmadd_ps(a, b, c);
#else
    Lanes<float>::type r;
    for (unsigned long i = 0; i < Lanes<float>::count; ++i)
        r[i] = __builtin_fmaf(a[i], b[i], c[i]);
    return r;
#endif
}

}  // namespace
