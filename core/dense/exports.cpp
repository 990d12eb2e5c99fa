// Exported dense kernels: one-line shells over the templates and the private OpenBLAS.
#include "zel/dense_kernels.h"
#include "zel_internal/members.hpp"

#include "kernels.hpp"
#include "openblas.hpp"
#include "zel_internal/value_traits.hpp"

using zel::as_cpp;
using zel::dense::openblas;

#define ZEL_DENSE_EXPORTS(P, C, T)                                                                        \
    ZEL_API void zel_lapack_x##P##getrf(const int64_t *m, const int64_t *n, C *a, const int64_t *lda,     \
                                        int64_t *ipiv, int64_t *info)                                     \
    { zel::dense::getrf(m, n, as_cpp(a), lda, ipiv, info); }                                              \
    ZEL_API void zel_lapack_##P##getrfnp(const int64_t *m, const int64_t *n, C *a, const int64_t *lda,    \
                                         int64_t *info)                                                   \
    { zel::dense::getrfnp(m, n, as_cpp(a), lda, info); }                                                  \
    ZEL_API void zel_lapack_##P##getrs(const char *trans, const int64_t *n, const int64_t *nrhs,          \
                                       const C *a, const int64_t *lda, const int64_t *ipiv, C *b,          \
                                       const int64_t *ldb, int64_t *info, size_t)                          \
    { zel::dense::getrs(trans, n, nrhs, as_cpp(a), lda, ipiv, as_cpp(b), ldb, info); }                    \
    ZEL_API void zel_lapack_##P##getri(const int64_t *n, C *a, const int64_t *lda, const int64_t *ipiv,   \
                                       C *work, const int64_t *lwork, int64_t *info)                       \
    { zel::dense::getri(n, as_cpp(a), lda, ipiv, as_cpp(work), lwork, info); }                            \
    ZEL_API void zel_lapack_##P##getri_oop(const int64_t *n, const C *a, const int64_t *lda,              \
                                           const int64_t *ipiv, C *ainv, const int64_t *ldainv,          \
                                           int64_t *info)                                                 \
    { zel::dense::getri_oop(n, as_cpp(a), lda, ipiv, as_cpp(ainv), ldainv, info); }                       \
    ZEL_API void zel_lapack_##P##potrf(const char *uplo, const int64_t *n, C *a, const int64_t *lda,      \
                                       int64_t *info, size_t)                                              \
    { zel::dense::potrf(uplo, n, as_cpp(a), lda, info); }                                                 \
    ZEL_API void zel_lapack_##P##laset(const char *uplo, const int64_t *m, const int64_t *n,              \
                                       const C *alpha, const C *beta, C *a, const int64_t *lda, size_t)    \
    { openblas<T>::laset(uplo, m, n, as_cpp(alpha), as_cpp(beta), as_cpp(a), lda, 1); }                   \
    ZEL_API void zel_lapack_##P##laswp(const int64_t *n, C *a, const int64_t *lda, const int64_t *k1,     \
                                       const int64_t *k2, const int64_t *ipiv, const int64_t *incx)       \
    { openblas<T>::laswp(n, as_cpp(a), lda, k1, k2, ipiv, incx); }                                        \
    ZEL_API void zel_lapack_##P##gels(const char *trans, const int64_t *m, const int64_t *n,              \
                                      const int64_t *nrhs, C *a, const int64_t *lda, C *b,                 \
                                      const int64_t *ldb, C *work, const int64_t *lwork, int64_t *info,    \
                                      size_t)                                                              \
    { openblas<T>::gels(trans, m, n, nrhs, as_cpp(a), lda, as_cpp(b), ldb, as_cpp(work), lwork, info, 1); } \
    ZEL_API void zel_blas_##P##trsm(const char *side, const char *uplo, const char *transa,               \
                                    const char *diag, const int64_t *m, const int64_t *n, const C *alpha,  \
                                    const C *a, const int64_t *lda, C *b, const int64_t *ldb, size_t,      \
                                    size_t, size_t, size_t)                                                \
    { openblas<T>::trsm(side, uplo, transa, diag, m, n, as_cpp(alpha), as_cpp(a), lda, as_cpp(b), ldb,    \
                        1, 1, 1, 1); }                                                                     \
    ZEL_API void zel_blas_x##P##axpy(const int64_t *n, const C *alpha, const C *x, const int64_t *incx,   \
                                     C *y, const int64_t *incy)                                            \
    { openblas<T>::axpy(n, as_cpp(alpha), as_cpp(x), incx, as_cpp(y), incy); }                            \
    ZEL_API void zel_blas_x##P##copy(const int64_t *n, const C *x, const int64_t *incx, C *y,             \
                                     const int64_t *incy)                                                  \
    { openblas<T>::copy(n, as_cpp(x), incx, as_cpp(y), incy); }

extern "C" {
ZEL_DENSE_MEMBERS(ZEL_DENSE_EXPORTS)
}
