/* Zelmath core: one-matrix dense kernels with BLAS and LAPACK semantics, the work behind the
 * layer's batched drivers.
 *
 * Members: one per precision, s (float), d (double), c (zel_complex8), z (zel_complex16).
 * Conventions: they follow the BLAS and LAPACK routines of the same names with 64-bit integers:
 * scalars are passed by reference, matrices are column-major, pivots are 1-based, and every
 * character option is followed by its hidden length argument (pass 1). Errors come back in info
 * as in LAPACK (negative: the argument at that position). Nothing the caller must free is returned.
 * Defined by libzel_core.so.2 (imported by name by the layer); see docs/dense_kernels.md. */
#ifndef ZEL_DENSE_KERNELS_H
#define ZEL_DENSE_KERNELS_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* LU with partial pivoting (LAPACK getrf). */
ZEL_API void zel_lapack_xsgetrf(const int64_t *m, const int64_t *n, float *a, const int64_t *lda,
                                int64_t *ipiv, int64_t *info);
ZEL_API void zel_lapack_xdgetrf(const int64_t *m, const int64_t *n, double *a, const int64_t *lda,
                                int64_t *ipiv, int64_t *info);
ZEL_API void zel_lapack_xcgetrf(const int64_t *m, const int64_t *n, zel_complex8 *a, const int64_t *lda,
                                int64_t *ipiv, int64_t *info);
ZEL_API void zel_lapack_xzgetrf(const int64_t *m, const int64_t *n, zel_complex16 *a, const int64_t *lda,
                                int64_t *ipiv, int64_t *info);

/* LU without pivoting: A = L*U, L unit lower; info > 0 at the first zero pivot. */
ZEL_API void zel_lapack_sgetrfnp(const int64_t *m, const int64_t *n, float *a, const int64_t *lda,
                                 int64_t *info);
ZEL_API void zel_lapack_dgetrfnp(const int64_t *m, const int64_t *n, double *a, const int64_t *lda,
                                 int64_t *info);
ZEL_API void zel_lapack_cgetrfnp(const int64_t *m, const int64_t *n, zel_complex8 *a, const int64_t *lda,
                                 int64_t *info);
ZEL_API void zel_lapack_zgetrfnp(const int64_t *m, const int64_t *n, zel_complex16 *a, const int64_t *lda,
                                 int64_t *info);

/* Solve op(A)*X = B with the factors of getrf. */
ZEL_API void zel_lapack_sgetrs(const char *trans, const int64_t *n, const int64_t *nrhs, const float *a,
                               const int64_t *lda, const int64_t *ipiv, float *b, const int64_t *ldb,
                               int64_t *info, size_t trans_len);
ZEL_API void zel_lapack_dgetrs(const char *trans, const int64_t *n, const int64_t *nrhs, const double *a,
                               const int64_t *lda, const int64_t *ipiv, double *b, const int64_t *ldb,
                               int64_t *info, size_t trans_len);
ZEL_API void zel_lapack_cgetrs(const char *trans, const int64_t *n, const int64_t *nrhs,
                               const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv,
                               zel_complex8 *b, const int64_t *ldb, int64_t *info, size_t trans_len);
ZEL_API void zel_lapack_zgetrs(const char *trans, const int64_t *n, const int64_t *nrhs,
                               const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv,
                               zel_complex16 *b, const int64_t *ldb, int64_t *info, size_t trans_len);

/* In-place inverse from the factors of getrf; lwork = -1 queries the workspace size. */
ZEL_API void zel_lapack_sgetri(const int64_t *n, float *a, const int64_t *lda, const int64_t *ipiv,
                               float *work, const int64_t *lwork, int64_t *info);
ZEL_API void zel_lapack_dgetri(const int64_t *n, double *a, const int64_t *lda, const int64_t *ipiv,
                               double *work, const int64_t *lwork, int64_t *info);
ZEL_API void zel_lapack_cgetri(const int64_t *n, zel_complex8 *a, const int64_t *lda, const int64_t *ipiv,
                               zel_complex8 *work, const int64_t *lwork, int64_t *info);
ZEL_API void zel_lapack_zgetri(const int64_t *n, zel_complex16 *a, const int64_t *lda, const int64_t *ipiv,
                               zel_complex16 *work, const int64_t *lwork, int64_t *info);

/* The inverse from the factors of getrf written to ainv, A left as it is: the same result as
 * laset + laswp + two trsm, fused for small n. info > 0 names a zero diagonal entry of U. */
ZEL_API void zel_lapack_sgetri_oop(const int64_t *n, const float *a, const int64_t *lda, const int64_t *ipiv,
                                   float *ainv, const int64_t *ldainv, int64_t *info);
ZEL_API void zel_lapack_dgetri_oop(const int64_t *n, const double *a, const int64_t *lda, const int64_t *ipiv,
                                   double *ainv, const int64_t *ldainv, int64_t *info);
ZEL_API void zel_lapack_cgetri_oop(const int64_t *n, const zel_complex8 *a, const int64_t *lda,
                                   const int64_t *ipiv, zel_complex8 *ainv, const int64_t *ldainv,
                                   int64_t *info);
ZEL_API void zel_lapack_zgetri_oop(const int64_t *n, const zel_complex16 *a, const int64_t *lda,
                                   const int64_t *ipiv, zel_complex16 *ainv, const int64_t *ldainv,
                                   int64_t *info);

/* Cholesky factorisation of the uplo triangle. */
ZEL_API void zel_lapack_spotrf(const char *uplo, const int64_t *n, float *a, const int64_t *lda,
                               int64_t *info, size_t uplo_len);
ZEL_API void zel_lapack_dpotrf(const char *uplo, const int64_t *n, double *a, const int64_t *lda,
                               int64_t *info, size_t uplo_len);
ZEL_API void zel_lapack_cpotrf(const char *uplo, const int64_t *n, zel_complex8 *a, const int64_t *lda,
                               int64_t *info, size_t uplo_len);
ZEL_API void zel_lapack_zpotrf(const char *uplo, const int64_t *n, zel_complex16 *a, const int64_t *lda,
                               int64_t *info, size_t uplo_len);

/* Off-diagonal entries of the uplo part to alpha, diagonal to beta. */
ZEL_API void zel_lapack_slaset(const char *uplo, const int64_t *m, const int64_t *n, const float *alpha,
                               const float *beta, float *a, const int64_t *lda, size_t uplo_len);
ZEL_API void zel_lapack_dlaset(const char *uplo, const int64_t *m, const int64_t *n, const double *alpha,
                               const double *beta, double *a, const int64_t *lda, size_t uplo_len);
ZEL_API void zel_lapack_claset(const char *uplo, const int64_t *m, const int64_t *n,
                               const zel_complex8 *alpha, const zel_complex8 *beta, zel_complex8 *a,
                               const int64_t *lda, size_t uplo_len);
ZEL_API void zel_lapack_zlaset(const char *uplo, const int64_t *m, const int64_t *n,
                               const zel_complex16 *alpha, const zel_complex16 *beta, zel_complex16 *a,
                               const int64_t *lda, size_t uplo_len);

/* Row interchanges k1..k2 of ipiv applied to the n columns of A. */
ZEL_API void zel_lapack_slaswp(const int64_t *n, float *a, const int64_t *lda, const int64_t *k1,
                               const int64_t *k2, const int64_t *ipiv, const int64_t *incx);
ZEL_API void zel_lapack_dlaswp(const int64_t *n, double *a, const int64_t *lda, const int64_t *k1,
                               const int64_t *k2, const int64_t *ipiv, const int64_t *incx);
ZEL_API void zel_lapack_claswp(const int64_t *n, zel_complex8 *a, const int64_t *lda, const int64_t *k1,
                               const int64_t *k2, const int64_t *ipiv, const int64_t *incx);
ZEL_API void zel_lapack_zlaswp(const int64_t *n, zel_complex16 *a, const int64_t *lda, const int64_t *k1,
                               const int64_t *k2, const int64_t *ipiv, const int64_t *incx);

/* Least squares or minimum norm by QR or LQ; lwork = -1 queries the workspace size. */
ZEL_API void zel_lapack_sgels(const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs,
                              float *a, const int64_t *lda, float *b, const int64_t *ldb, float *work,
                              const int64_t *lwork, int64_t *info, size_t trans_len);
ZEL_API void zel_lapack_dgels(const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs,
                              double *a, const int64_t *lda, double *b, const int64_t *ldb, double *work,
                              const int64_t *lwork, int64_t *info, size_t trans_len);
ZEL_API void zel_lapack_cgels(const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs,
                              zel_complex8 *a, const int64_t *lda, zel_complex8 *b, const int64_t *ldb,
                              zel_complex8 *work, const int64_t *lwork, int64_t *info, size_t trans_len);
ZEL_API void zel_lapack_zgels(const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs,
                              zel_complex16 *a, const int64_t *lda, zel_complex16 *b, const int64_t *ldb,
                              zel_complex16 *work, const int64_t *lwork, int64_t *info, size_t trans_len);

/* B = alpha*op(A)^-1*B or alpha*B*op(A)^-1 with triangular A. */
ZEL_API void zel_blas_strsm(const char *side, const char *uplo, const char *transa, const char *diag,
                            const int64_t *m, const int64_t *n, const float *alpha, const float *a,
                            const int64_t *lda, float *b, const int64_t *ldb, size_t side_len,
                            size_t uplo_len, size_t transa_len, size_t diag_len);
ZEL_API void zel_blas_dtrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                            const int64_t *m, const int64_t *n, const double *alpha, const double *a,
                            const int64_t *lda, double *b, const int64_t *ldb, size_t side_len,
                            size_t uplo_len, size_t transa_len, size_t diag_len);
ZEL_API void zel_blas_ctrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                            const int64_t *m, const int64_t *n, const zel_complex8 *alpha,
                            const zel_complex8 *a, const int64_t *lda, zel_complex8 *b, const int64_t *ldb,
                            size_t side_len, size_t uplo_len, size_t transa_len, size_t diag_len);
ZEL_API void zel_blas_ztrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                            const int64_t *m, const int64_t *n, const zel_complex16 *alpha,
                            const zel_complex16 *a, const int64_t *lda, zel_complex16 *b, const int64_t *ldb,
                            size_t side_len, size_t uplo_len, size_t transa_len, size_t diag_len);

/* y = alpha*x + y on one vector: the kernel behind the layer's zel_blas_?axpy. */
ZEL_API void zel_blas_xsaxpy(const int64_t *n, const float *alpha, const float *x, const int64_t *incx,
                             float *y, const int64_t *incy);
ZEL_API void zel_blas_xdaxpy(const int64_t *n, const double *alpha, const double *x, const int64_t *incx,
                             double *y, const int64_t *incy);
ZEL_API void zel_blas_xcaxpy(const int64_t *n, const zel_complex8 *alpha, const zel_complex8 *x,
                             const int64_t *incx, zel_complex8 *y, const int64_t *incy);
ZEL_API void zel_blas_xzaxpy(const int64_t *n, const zel_complex16 *alpha, const zel_complex16 *x,
                             const int64_t *incx, zel_complex16 *y, const int64_t *incy);

/* y = x on one vector: the kernel behind the layer's zel_blas_?copy. */
ZEL_API void zel_blas_xscopy(const int64_t *n, const float *x, const int64_t *incx, float *y,
                             const int64_t *incy);
ZEL_API void zel_blas_xdcopy(const int64_t *n, const double *x, const int64_t *incx, double *y,
                             const int64_t *incy);
ZEL_API void zel_blas_xccopy(const int64_t *n, const zel_complex8 *x, const int64_t *incx, zel_complex8 *y,
                             const int64_t *incy);
ZEL_API void zel_blas_xzcopy(const int64_t *n, const zel_complex16 *x, const int64_t *incx, zel_complex16 *y,
                             const int64_t *incy);

/* The same triangular solve for the solver's one-right-hand-side kernels (n = 1 on the left
 * with alpha 1 runs as a triangular matrix-vector solve). */
ZEL_API void zel_blas_xstrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                             const int64_t *m, const int64_t *n, const float *alpha, const float *a,
                             const int64_t *lda, float *b, const int64_t *ldb, size_t side_len,
                             size_t uplo_len, size_t transa_len, size_t diag_len);
ZEL_API void zel_blas_xdtrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                             const int64_t *m, const int64_t *n, const double *alpha, const double *a,
                             const int64_t *lda, double *b, const int64_t *ldb, size_t side_len,
                             size_t uplo_len, size_t transa_len, size_t diag_len);
ZEL_API void zel_blas_xctrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                             const int64_t *m, const int64_t *n, const zel_complex8 *alpha, const zel_complex8 *a,
                             const int64_t *lda, zel_complex8 *b, const int64_t *ldb, size_t side_len,
                             size_t uplo_len, size_t transa_len, size_t diag_len);
ZEL_API void zel_blas_xztrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                             const int64_t *m, const int64_t *n, const zel_complex16 *alpha, const zel_complex16 *a,
                             const int64_t *lda, zel_complex16 *b, const int64_t *ldb, size_t side_len,
                             size_t uplo_len, size_t transa_len, size_t diag_len);

/* y = alpha*op(A)*x + beta*y (trans "N", "T" or "C"). */
ZEL_API void zel_blas_xsgemv(const char *trans, const int64_t *m, const int64_t *n, const float *alpha,
                             const float *a, const int64_t *lda, const float *x, const int64_t *incx,
                             const float *beta, float *y, const int64_t *incy, size_t trans_len);
ZEL_API void zel_blas_xdgemv(const char *trans, const int64_t *m, const int64_t *n, const double *alpha,
                             const double *a, const int64_t *lda, const double *x, const int64_t *incx,
                             const double *beta, double *y, const int64_t *incy, size_t trans_len);
ZEL_API void zel_blas_xcgemv(const char *trans, const int64_t *m, const int64_t *n, const zel_complex8 *alpha,
                             const zel_complex8 *a, const int64_t *lda, const zel_complex8 *x, const int64_t *incx,
                             const zel_complex8 *beta, zel_complex8 *y, const int64_t *incy, size_t trans_len);
ZEL_API void zel_blas_xzgemv(const char *trans, const int64_t *m, const int64_t *n, const zel_complex16 *alpha,
                             const zel_complex16 *a, const int64_t *lda, const zel_complex16 *x, const int64_t *incx,
                             const zel_complex16 *beta, zel_complex16 *y, const int64_t *incy, size_t trans_len);

ZEL_END_DECLS

#endif
