// The ILP64 BLAS and LAPACK routines the core forwards to. They are linked in privately:
// these names never leave the core.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

#define ZEL_OPENBLAS_DECLARE(p, T)                                                                        \
    void p##getrf_(const int64_t *, const int64_t *, T *, const int64_t *, int64_t *, int64_t *);         \
    void p##getrs_(const char *, const int64_t *, const int64_t *, const T *, const int64_t *,             \
                   const int64_t *, T *, const int64_t *, int64_t *, size_t);                              \
    void p##getri_(const int64_t *, T *, const int64_t *, const int64_t *, T *, const int64_t *,          \
                   int64_t *);                                                                             \
    void p##potrf_(const char *, const int64_t *, T *, const int64_t *, int64_t *, size_t);               \
    void p##laset_(const char *, const int64_t *, const int64_t *, const T *, const T *, T *,             \
                   const int64_t *, size_t);                                                               \
    void p##laswp_(const int64_t *, T *, const int64_t *, const int64_t *, const int64_t *,               \
                   const int64_t *, const int64_t *);                                                      \
    void p##gels_(const char *, const int64_t *, const int64_t *, const int64_t *, T *, const int64_t *,  \
                  T *, const int64_t *, T *, const int64_t *, int64_t *, size_t);                          \
    void p##trsm_(const char *, const char *, const char *, const char *, const int64_t *,                \
                  const int64_t *, const T *, const T *, const int64_t *, T *, const int64_t *, size_t,    \
                  size_t, size_t, size_t);                                                                 \
    void p##gemm_(const char *, const char *, const int64_t *, const int64_t *, const int64_t *,          \
                  const T *, const T *, const int64_t *, const T *, const int64_t *, const T *, T *,       \
                  const int64_t *, size_t, size_t);                                                        \
    void p##axpy_(const int64_t *, const T *, const T *, const int64_t *, T *, const int64_t *);          \
    void p##copy_(const int64_t *, const T *, const int64_t *, T *, const int64_t *);

extern "C" {
ZEL_OPENBLAS_DECLARE(s, float)
ZEL_OPENBLAS_DECLARE(d, double)
ZEL_OPENBLAS_DECLARE(c, std::complex<float>)
ZEL_OPENBLAS_DECLARE(z, std::complex<double>)
}

namespace zel::dense {

// The routine of each name for value type T.
template <class T> struct openblas;

#define ZEL_OPENBLAS_TABLE(p, T)                                                                          \
    template <> struct openblas<T> {                                                                      \
        static constexpr auto getrf = p##getrf_;                                                          \
        static constexpr auto getrs = p##getrs_;                                                          \
        static constexpr auto getri = p##getri_;                                                          \
        static constexpr auto potrf = p##potrf_;                                                          \
        static constexpr auto laset = p##laset_;                                                          \
        static constexpr auto laswp = p##laswp_;                                                          \
        static constexpr auto gels = p##gels_;                                                            \
        static constexpr auto trsm = p##trsm_;                                                            \
        static constexpr auto gemm = p##gemm_;                                                            \
        static constexpr auto axpy = p##axpy_;                                                            \
        static constexpr auto copy = p##copy_;                                                            \
    };

ZEL_OPENBLAS_TABLE(s, float)
ZEL_OPENBLAS_TABLE(d, double)
ZEL_OPENBLAS_TABLE(c, std::complex<float>)
ZEL_OPENBLAS_TABLE(z, std::complex<double>)

#undef ZEL_OPENBLAS_TABLE
#undef ZEL_OPENBLAS_DECLARE

} // namespace zel::dense
