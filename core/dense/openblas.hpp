// The ILP64 BLAS and LAPACK routines the core forwards to. They are linked in privately:
// these names never leave the core.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

#define ZEL_OPENBLAS_DECLARE(P, T)                                                                        \
    void P##getrf_(const int64_t *, const int64_t *, T *, const int64_t *, int64_t *, int64_t *);         \
    void P##getrs_(const char *, const int64_t *, const int64_t *, const T *, const int64_t *,             \
                   const int64_t *, T *, const int64_t *, int64_t *, size_t);                              \
    void P##getri_(const int64_t *, T *, const int64_t *, const int64_t *, T *, const int64_t *,          \
                   int64_t *);                                                                             \
    void P##potrf_(const char *, const int64_t *, T *, const int64_t *, int64_t *, size_t);               \
    void P##laset_(const char *, const int64_t *, const int64_t *, const T *, const T *, T *,             \
                   const int64_t *, size_t);                                                               \
    void P##laswp_(const int64_t *, T *, const int64_t *, const int64_t *, const int64_t *,               \
                   const int64_t *, const int64_t *);                                                      \
    void P##gels_(const char *, const int64_t *, const int64_t *, const int64_t *, T *, const int64_t *,  \
                  T *, const int64_t *, T *, const int64_t *, int64_t *, size_t);                          \
    void P##trsm_(const char *, const char *, const char *, const char *, const int64_t *,                \
                  const int64_t *, const T *, const T *, const int64_t *, T *, const int64_t *, size_t,    \
                  size_t, size_t, size_t);                                                                 \
    void P##gemm_(const char *, const char *, const int64_t *, const int64_t *, const int64_t *,          \
                  const T *, const T *, const int64_t *, const T *, const int64_t *, const T *, T *,       \
                  const int64_t *, size_t, size_t);                                                        \
    void P##axpy_(const int64_t *, const T *, const T *, const int64_t *, T *, const int64_t *);          \
    void P##copy_(const int64_t *, const T *, const int64_t *, T *, const int64_t *);

extern "C" {
ZEL_OPENBLAS_DECLARE(s, float)
ZEL_OPENBLAS_DECLARE(d, double)
ZEL_OPENBLAS_DECLARE(c, std::complex<float>)
ZEL_OPENBLAS_DECLARE(z, std::complex<double>)
}

namespace zel::dense {

// The routine of each name for value type T.
template <class T> struct openblas;

#define ZEL_OPENBLAS_TABLE(P, T)                                                                          \
    template <> struct openblas<T> {                                                                      \
        static constexpr auto getrf = P##getrf_;                                                          \
        static constexpr auto getrs = P##getrs_;                                                          \
        static constexpr auto getri = P##getri_;                                                          \
        static constexpr auto potrf = P##potrf_;                                                          \
        static constexpr auto laset = P##laset_;                                                          \
        static constexpr auto laswp = P##laswp_;                                                          \
        static constexpr auto gels = P##gels_;                                                            \
        static constexpr auto trsm = P##trsm_;                                                            \
        static constexpr auto gemm = P##gemm_;                                                            \
        static constexpr auto axpy = P##axpy_;                                                            \
        static constexpr auto copy = P##copy_;                                                            \
    };

ZEL_OPENBLAS_TABLE(s, float)
ZEL_OPENBLAS_TABLE(d, double)
ZEL_OPENBLAS_TABLE(c, std::complex<float>)
ZEL_OPENBLAS_TABLE(z, std::complex<double>)

#undef ZEL_OPENBLAS_TABLE
#undef ZEL_OPENBLAS_DECLARE

} // namespace zel::dense
