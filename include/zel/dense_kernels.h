/* Zelmath core: one-matrix dense kernels with BLAS and LAPACK semantics.
 * Integers are 64-bit, scalars are passed by reference, matrices are column-major,
 * and every character option is followed by its hidden length argument (1). */
#ifndef ZEL_DENSE_KERNELS_H
#define ZEL_DENSE_KERNELS_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

#define ZEL_DECLARE_DENSE_KERNELS(p, T)                                                                   \
    /* LU with partial pivoting (LAPACK getrf). */                                                        \
    ZEL_API void zel_lapack_x##p##getrf(const int64_t *m, const int64_t *n, T *a, const int64_t *lda,     \
                                        int64_t *ipiv, int64_t *info);                                    \
    /* LU without pivoting: A = L*U, L unit lower; info > 0 at the first zero pivot. */                   \
    ZEL_API void zel_lapack_##p##getrfnp(const int64_t *m, const int64_t *n, T *a, const int64_t *lda,    \
                                         int64_t *info);                                                  \
    /* Solve op(A)*X = B with the factors of getrf. */                                                    \
    ZEL_API void zel_lapack_##p##getrs(const char *trans, const int64_t *n, const int64_t *nrhs,          \
                                       const T *a, const int64_t *lda, const int64_t *ipiv, T *b,          \
                                       const int64_t *ldb, int64_t *info, size_t trans_len);               \
    /* In-place inverse from the factors of getrf; lwork = -1 queries the workspace size. */              \
    ZEL_API void zel_lapack_##p##getri(const int64_t *n, T *a, const int64_t *lda, const int64_t *ipiv,   \
                                       T *work, const int64_t *lwork, int64_t *info);                      \
    /* The inverse from the factors of getrf written to ainv, A left as it is: the same result as     \
     * laset + laswp + two trsm, fused for small n. info > 0 names a zero diagonal entry of U. */      \
    ZEL_API void zel_lapack_##p##getri_oop(const int64_t *n, const T *a, const int64_t *lda,             \
                                           const int64_t *ipiv, T *ainv, const int64_t *ldainv,         \
                                           int64_t *info);                                               \
    /* Cholesky factorisation of the uplo triangle. */                                                    \
    ZEL_API void zel_lapack_##p##potrf(const char *uplo, const int64_t *n, T *a, const int64_t *lda,      \
                                       int64_t *info, size_t uplo_len);                                    \
    /* Off-diagonal entries of the uplo part to alpha, diagonal to beta. */                               \
    ZEL_API void zel_lapack_##p##laset(const char *uplo, const int64_t *m, const int64_t *n,              \
                                       const T *alpha, const T *beta, T *a, const int64_t *lda,            \
                                       size_t uplo_len);                                                   \
    /* Row interchanges k1..k2 of ipiv applied to the n columns of A. */                                  \
    ZEL_API void zel_lapack_##p##laswp(const int64_t *n, T *a, const int64_t *lda, const int64_t *k1,     \
                                       const int64_t *k2, const int64_t *ipiv, const int64_t *incx);      \
    /* Least squares or minimum norm by QR or LQ; lwork = -1 queries the workspace size. */               \
    ZEL_API void zel_lapack_##p##gels(const char *trans, const int64_t *m, const int64_t *n,              \
                                      const int64_t *nrhs, T *a, const int64_t *lda, T *b,                 \
                                      const int64_t *ldb, T *work, const int64_t *lwork, int64_t *info,    \
                                      size_t trans_len);                                                   \
    /* B = alpha*op(A)^-1*B or alpha*B*op(A)^-1 with triangular A. */                                     \
    ZEL_API void zel_blas_##p##trsm(const char *side, const char *uplo, const char *transa,               \
                                    const char *diag, const int64_t *m, const int64_t *n, const T *alpha,  \
                                    const T *a, const int64_t *lda, T *b, const int64_t *ldb,              \
                                    size_t side_len, size_t uplo_len, size_t transa_len, size_t diag_len); \
    /* y = alpha*x + y and y = x on one vector: the kernels behind the layer's axpy and copy. */         \
    ZEL_API void zel_blas_x##p##axpy(const int64_t *n, const T *alpha, const T *x, const int64_t *incx,   \
                                     T *y, const int64_t *incy);                                           \
    ZEL_API void zel_blas_x##p##copy(const int64_t *n, const T *x, const int64_t *incx, T *y,             \
                                     const int64_t *incy);

ZEL_DECLARE_DENSE_KERNELS(s, float)
ZEL_DECLARE_DENSE_KERNELS(d, double)
ZEL_DECLARE_DENSE_KERNELS(c, zel_complex8)
ZEL_DECLARE_DENSE_KERNELS(z, zel_complex16)

#undef ZEL_DECLARE_DENSE_KERNELS

ZEL_END_DECLS

#endif
