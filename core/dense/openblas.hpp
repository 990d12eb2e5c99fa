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
    void P##copy_(const int64_t *, const T *, const int64_t *, T *, const int64_t *);                    \
    void P##gemv_(const char *, const int64_t *, const int64_t *, const T *, const T *, const int64_t *,  \
                  const T *, const int64_t *, const T *, T *, const int64_t *, size_t);                    \
    void P##trsv_(const char *, const char *, const char *, const int64_t *, const T *, const int64_t *,  \
                  T *, const int64_t *, size_t, size_t, size_t);                                           \
    void P##syrk_(const char *, const char *, const int64_t *, const int64_t *, const T *, const T *,      \
                  const int64_t *, const T *, T *, const int64_t *, size_t, size_t);

extern "C" {
void cherk_(const char *, const char *, const int64_t *, const int64_t *, const float *, const std::complex<float> *,
            const int64_t *, const float *, std::complex<float> *, const int64_t *, size_t, size_t);
void zherk_(const char *, const char *, const int64_t *, const int64_t *, const double *,
            const std::complex<double> *, const int64_t *, const double *, std::complex<double> *, const int64_t *,
            size_t, size_t);
ZEL_OPENBLAS_DECLARE(s, float)
ZEL_OPENBLAS_DECLARE(d, double)
ZEL_OPENBLAS_DECLARE(c, std::complex<float>)
ZEL_OPENBLAS_DECLARE(z, std::complex<double>)
}

namespace zel::dense {

// The routine of each name for value type T.
template <class T> struct openblas;

// herk: the Hermitian rank-k update (syrk for real values, whose scalars are of the same type).
#define ZEL_OPENBLAS_TABLE(P, T, H)                                                                          \
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
        static constexpr auto gemv = P##gemv_;                                                            \
        static constexpr auto trsv = P##trsv_;                                                            \
        static constexpr auto syrk = P##syrk_;                                                            \
        static constexpr auto herk = H;                                                                   \
    };

ZEL_OPENBLAS_TABLE(s, float, ssyrk_)
ZEL_OPENBLAS_TABLE(d, double, dsyrk_)
ZEL_OPENBLAS_TABLE(c, std::complex<float>, cherk_)
ZEL_OPENBLAS_TABLE(z, std::complex<double>, zherk_)

#undef ZEL_OPENBLAS_TABLE
#undef ZEL_OPENBLAS_DECLARE

} // namespace zel::dense
