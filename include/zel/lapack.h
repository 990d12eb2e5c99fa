/* Zelmath sequential layer: batched LAPACK drivers, in strided form (matrix i of the batch at
 * a + i*stride_a) and group form (matrix k of all groups at a[k]; group g holds group_size[g]
 * matrices of m[g] x n[g] with leading dimension lda[g]).
 *
 * Members: every routine comes in four precisions, s (float), d (double), c (zel_complex8),
 * z (zel_complex16), and three entries:
 *   zel_lapack_<p><op>_omp_internal64  integer arguments, pivots and statuses are int64_t;
 *   zel_lapack_<p><op>_omp_internal32  the same as int32_t;
 *   zel_lapack_<p><op>(..., selector)  the width-neutral entry: every integer argument is an
 *       untyped pointer (const void * in, void * out) to int32_t data when `selector` is
 *       non-zero and to int64_t data when it is zero; the selector is passed by value.
 * The group entries take ipiv as the address of an array of pivot-vector pointers: int32_t *[]
 * or int64_t *[] as the selector says (the typed workers: int32_t *const *, int64_t *const *).
 * Conventions: scalars are passed by reference, matrices are column-major, pivots are 1-based,
 * character options are one letter compared without regard to case (no hidden length).
 * Statuses: info holds one status per matrix. Argument errors set the status array and are
 * reported through zel_serv_xerbla with the 1-based position; code 1000 means that a workspace
 * could not be allocated. Nothing is handed back for the caller to free.
 * Defined by libzel_sequential.so.2; see docs/lapack_batch.md for positions and statuses. */
#ifndef ZEL_LAPACK_H
#define ZEL_LAPACK_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* LU with partial pivoting of A_i = A + i*stride_a; pivots at ipiv + i*stride_ipiv. */
ZEL_API void zel_lapack_sgetrf_batch_strided(const void *m, const void *n, float *a, const void *lda,
                                             const void *stride_a, void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_sgetrf_batch_strided_omp_internal32(
    const int32_t *m, const int32_t *n, float *a, const int32_t *lda, const int32_t *stride_a, int32_t *ipiv,
    const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_sgetrf_batch_strided_omp_internal64(
    const int64_t *m, const int64_t *n, float *a, const int64_t *lda, const int64_t *stride_a, int64_t *ipiv,
    const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_dgetrf_batch_strided(const void *m, const void *n, double *a, const void *lda,
                                             const void *stride_a, void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_dgetrf_batch_strided_omp_internal32(
    const int32_t *m, const int32_t *n, double *a, const int32_t *lda, const int32_t *stride_a, int32_t *ipiv,
    const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgetrf_batch_strided_omp_internal64(
    const int64_t *m, const int64_t *n, double *a, const int64_t *lda, const int64_t *stride_a, int64_t *ipiv,
    const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgetrf_batch_strided(const void *m, const void *n, zel_complex8 *a, const void *lda,
                                             const void *stride_a, void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgetrf_batch_strided_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex8 *a, const int32_t *lda, const int32_t *stride_a,
    int32_t *ipiv, const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgetrf_batch_strided_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex8 *a, const int64_t *lda, const int64_t *stride_a,
    int64_t *ipiv, const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgetrf_batch_strided(const void *m, const void *n, zel_complex16 *a, const void *lda,
                                             const void *stride_a, void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgetrf_batch_strided_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex16 *a, const int32_t *lda, const int32_t *stride_a,
    int32_t *ipiv, const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgetrf_batch_strided_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex16 *a, const int64_t *lda, const int64_t *stride_a,
    int64_t *ipiv, const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

/* LU without pivoting of each A_i. */
ZEL_API void zel_lapack_sgetrfnp_batch_strided(const void *m, const void *n, float *a, const void *lda,
                                               const void *stride_a, const void *batch_size, void *info,
                                               int64_t selector);
ZEL_API void zel_lapack_sgetrfnp_batch_strided_omp_internal32(const int32_t *m, const int32_t *n, float *a,
                                                              const int32_t *lda, const int32_t *stride_a,
                                                              const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_sgetrfnp_batch_strided_omp_internal64(const int64_t *m, const int64_t *n, float *a,
                                                              const int64_t *lda, const int64_t *stride_a,
                                                              const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_dgetrfnp_batch_strided(const void *m, const void *n, double *a, const void *lda,
                                               const void *stride_a, const void *batch_size, void *info,
                                               int64_t selector);
ZEL_API void zel_lapack_dgetrfnp_batch_strided_omp_internal32(const int32_t *m, const int32_t *n, double *a,
                                                              const int32_t *lda, const int32_t *stride_a,
                                                              const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgetrfnp_batch_strided_omp_internal64(const int64_t *m, const int64_t *n, double *a,
                                                              const int64_t *lda, const int64_t *stride_a,
                                                              const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgetrfnp_batch_strided(const void *m, const void *n, zel_complex8 *a, const void *lda,
                                               const void *stride_a, const void *batch_size, void *info,
                                               int64_t selector);
ZEL_API void zel_lapack_cgetrfnp_batch_strided_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex8 *a, const int32_t *lda, const int32_t *stride_a,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgetrfnp_batch_strided_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex8 *a, const int64_t *lda, const int64_t *stride_a,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgetrfnp_batch_strided(const void *m, const void *n, zel_complex16 *a,
                                               const void *lda, const void *stride_a, const void *batch_size,
                                               void *info, int64_t selector);
ZEL_API void zel_lapack_zgetrfnp_batch_strided_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex16 *a, const int32_t *lda, const int32_t *stride_a,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgetrfnp_batch_strided_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex16 *a, const int64_t *lda, const int64_t *stride_a,
    const int64_t *batch_size, int64_t *info);

/* op(A_i)*X_i = B_i from the factors of getrf; X_i overwrites B_i. */
ZEL_API void zel_lapack_sgetrs_batch_strided(
    const char *trans, const void *n, const void *nrhs, const float *a, const void *lda, const void *stride_a,
    const void *ipiv, const void *stride_ipiv, float *b, const void *ldb, const void *stride_b,
    const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_sgetrs_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const float *a, const int32_t *lda,
    const int32_t *stride_a, const int32_t *ipiv, const int32_t *stride_ipiv, float *b, const int32_t *ldb,
    const int32_t *stride_b, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_sgetrs_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const float *a, const int64_t *lda,
    const int64_t *stride_a, const int64_t *ipiv, const int64_t *stride_ipiv, float *b, const int64_t *ldb,
    const int64_t *stride_b, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_dgetrs_batch_strided(
    const char *trans, const void *n, const void *nrhs, const double *a, const void *lda,
    const void *stride_a, const void *ipiv, const void *stride_ipiv, double *b, const void *ldb,
    const void *stride_b, const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_dgetrs_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const double *a, const int32_t *lda,
    const int32_t *stride_a, const int32_t *ipiv, const int32_t *stride_ipiv, double *b, const int32_t *ldb,
    const int32_t *stride_b, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgetrs_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const double *a, const int64_t *lda,
    const int64_t *stride_a, const int64_t *ipiv, const int64_t *stride_ipiv, double *b, const int64_t *ldb,
    const int64_t *stride_b, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgetrs_batch_strided(
    const char *trans, const void *n, const void *nrhs, const zel_complex8 *a, const void *lda,
    const void *stride_a, const void *ipiv, const void *stride_ipiv, zel_complex8 *b, const void *ldb,
    const void *stride_b, const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgetrs_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const zel_complex8 *a, const int32_t *lda,
    const int32_t *stride_a, const int32_t *ipiv, const int32_t *stride_ipiv, zel_complex8 *b,
    const int32_t *ldb, const int32_t *stride_b, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgetrs_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const zel_complex8 *a, const int64_t *lda,
    const int64_t *stride_a, const int64_t *ipiv, const int64_t *stride_ipiv, zel_complex8 *b,
    const int64_t *ldb, const int64_t *stride_b, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgetrs_batch_strided(
    const char *trans, const void *n, const void *nrhs, const zel_complex16 *a, const void *lda,
    const void *stride_a, const void *ipiv, const void *stride_ipiv, zel_complex16 *b, const void *ldb,
    const void *stride_b, const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgetrs_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const zel_complex16 *a, const int32_t *lda,
    const int32_t *stride_a, const int32_t *ipiv, const int32_t *stride_ipiv, zel_complex16 *b,
    const int32_t *ldb, const int32_t *stride_b, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgetrs_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const zel_complex16 *a, const int64_t *lda,
    const int64_t *stride_a, const int64_t *ipiv, const int64_t *stride_ipiv, zel_complex16 *b,
    const int64_t *ldb, const int64_t *stride_b, const int64_t *batch_size, int64_t *info);

/* op(A_i)*X_i = B_i from the factors of getrfnp; X_i overwrites B_i. */
ZEL_API void zel_lapack_sgetrsnp_batch_strided(
    const char *trans, const void *n, const void *nrhs, const float *a, const void *lda, const void *stride_a,
    float *b, const void *ldb, const void *stride_b, const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_sgetrsnp_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const float *a, const int32_t *lda,
    const int32_t *stride_a, float *b, const int32_t *ldb, const int32_t *stride_b, const int32_t *batch_size,
    int32_t *info);
ZEL_API void zel_lapack_sgetrsnp_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const float *a, const int64_t *lda,
    const int64_t *stride_a, float *b, const int64_t *ldb, const int64_t *stride_b, const int64_t *batch_size,
    int64_t *info);

ZEL_API void zel_lapack_dgetrsnp_batch_strided(const char *trans, const void *n, const void *nrhs,
                                               const double *a, const void *lda, const void *stride_a,
                                               double *b, const void *ldb, const void *stride_b,
                                               const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_dgetrsnp_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const double *a, const int32_t *lda,
    const int32_t *stride_a, double *b, const int32_t *ldb, const int32_t *stride_b,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgetrsnp_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const double *a, const int64_t *lda,
    const int64_t *stride_a, double *b, const int64_t *ldb, const int64_t *stride_b,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgetrsnp_batch_strided(const char *trans, const void *n, const void *nrhs,
                                               const zel_complex8 *a, const void *lda, const void *stride_a,
                                               zel_complex8 *b, const void *ldb, const void *stride_b,
                                               const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgetrsnp_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const zel_complex8 *a, const int32_t *lda,
    const int32_t *stride_a, zel_complex8 *b, const int32_t *ldb, const int32_t *stride_b,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgetrsnp_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const zel_complex8 *a, const int64_t *lda,
    const int64_t *stride_a, zel_complex8 *b, const int64_t *ldb, const int64_t *stride_b,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgetrsnp_batch_strided(const char *trans, const void *n, const void *nrhs,
                                               const zel_complex16 *a, const void *lda, const void *stride_a,
                                               zel_complex16 *b, const void *ldb, const void *stride_b,
                                               const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgetrsnp_batch_strided_omp_internal32(
    const char *trans, const int32_t *n, const int32_t *nrhs, const zel_complex16 *a, const int32_t *lda,
    const int32_t *stride_a, zel_complex16 *b, const int32_t *ldb, const int32_t *stride_b,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgetrsnp_batch_strided_omp_internal64(
    const char *trans, const int64_t *n, const int64_t *nrhs, const zel_complex16 *a, const int64_t *lda,
    const int64_t *stride_a, zel_complex16 *b, const int64_t *ldb, const int64_t *stride_b,
    const int64_t *batch_size, int64_t *info);

/* Ainv_i = A_i^-1 from the factors of getrf, A_i untouched. */
ZEL_API void zel_lapack_sgetri_oop_batch_strided(
    const void *n, const float *a, const void *lda, const void *stride_a, const void *ipiv,
    const void *stride_ipiv, float *ainv, const void *ldainv, const void *stride_ainv, const void *batch_size,
    void *info, int64_t selector);
ZEL_API void zel_lapack_sgetri_oop_batch_strided_omp_internal32(
    const int32_t *n, const float *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, float *ainv, const int32_t *ldainv, const int32_t *stride_ainv,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_sgetri_oop_batch_strided_omp_internal64(
    const int64_t *n, const float *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, float *ainv, const int64_t *ldainv, const int64_t *stride_ainv,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_dgetri_oop_batch_strided(
    const void *n, const double *a, const void *lda, const void *stride_a, const void *ipiv,
    const void *stride_ipiv, double *ainv, const void *ldainv, const void *stride_ainv,
    const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_dgetri_oop_batch_strided_omp_internal32(
    const int32_t *n, const double *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, double *ainv, const int32_t *ldainv, const int32_t *stride_ainv,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgetri_oop_batch_strided_omp_internal64(
    const int64_t *n, const double *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, double *ainv, const int64_t *ldainv, const int64_t *stride_ainv,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgetri_oop_batch_strided(
    const void *n, const zel_complex8 *a, const void *lda, const void *stride_a, const void *ipiv,
    const void *stride_ipiv, zel_complex8 *ainv, const void *ldainv, const void *stride_ainv,
    const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgetri_oop_batch_strided_omp_internal32(
    const int32_t *n, const zel_complex8 *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, zel_complex8 *ainv, const int32_t *ldainv, const int32_t *stride_ainv,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgetri_oop_batch_strided_omp_internal64(
    const int64_t *n, const zel_complex8 *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, zel_complex8 *ainv, const int64_t *ldainv, const int64_t *stride_ainv,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgetri_oop_batch_strided(
    const void *n, const zel_complex16 *a, const void *lda, const void *stride_a, const void *ipiv,
    const void *stride_ipiv, zel_complex16 *ainv, const void *ldainv, const void *stride_ainv,
    const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgetri_oop_batch_strided_omp_internal32(
    const int32_t *n, const zel_complex16 *a, const int32_t *lda, const int32_t *stride_a,
    const int32_t *ipiv, const int32_t *stride_ipiv, zel_complex16 *ainv, const int32_t *ldainv,
    const int32_t *stride_ainv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgetri_oop_batch_strided_omp_internal64(
    const int64_t *n, const zel_complex16 *a, const int64_t *lda, const int64_t *stride_a,
    const int64_t *ipiv, const int64_t *stride_ipiv, zel_complex16 *ainv, const int64_t *ldainv,
    const int64_t *stride_ainv, const int64_t *batch_size, int64_t *info);

/* A_i = A_i^-1 in place from the factors of getrf. */
ZEL_API void zel_lapack_sgetri_batch_strided(const void *n, float *a, const void *lda, const void *stride_a,
                                             const void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_sgetri_batch_strided_omp_internal32(
    const int32_t *n, float *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_sgetri_batch_strided_omp_internal64(
    const int64_t *n, float *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_dgetri_batch_strided(const void *n, double *a, const void *lda, const void *stride_a,
                                             const void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_dgetri_batch_strided_omp_internal32(
    const int32_t *n, double *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgetri_batch_strided_omp_internal64(
    const int64_t *n, double *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgetri_batch_strided(const void *n, zel_complex8 *a, const void *lda,
                                             const void *stride_a, const void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgetri_batch_strided_omp_internal32(
    const int32_t *n, zel_complex8 *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgetri_batch_strided_omp_internal64(
    const int64_t *n, zel_complex8 *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgetri_batch_strided(const void *n, zel_complex16 *a, const void *lda,
                                             const void *stride_a, const void *ipiv, const void *stride_ipiv,
                                             const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgetri_batch_strided_omp_internal32(
    const int32_t *n, zel_complex16 *a, const int32_t *lda, const int32_t *stride_a, const int32_t *ipiv,
    const int32_t *stride_ipiv, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgetri_batch_strided_omp_internal64(
    const int64_t *n, zel_complex16 *a, const int64_t *lda, const int64_t *stride_a, const int64_t *ipiv,
    const int64_t *stride_ipiv, const int64_t *batch_size, int64_t *info);

/* Cholesky factor of the uplo triangle of each A_i. */
ZEL_API void zel_lapack_spotrf_batch_strided(const char *uplo, const void *n, float *a, const void *lda,
                                             const void *stride_a, const void *batch_size, void *info,
                                             int64_t selector);
ZEL_API void zel_lapack_spotrf_batch_strided_omp_internal32(const char *uplo, const int32_t *n, float *a,
                                                            const int32_t *lda, const int32_t *stride_a,
                                                            const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_spotrf_batch_strided_omp_internal64(const char *uplo, const int64_t *n, float *a,
                                                            const int64_t *lda, const int64_t *stride_a,
                                                            const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_dpotrf_batch_strided(const char *uplo, const void *n, double *a, const void *lda,
                                             const void *stride_a, const void *batch_size, void *info,
                                             int64_t selector);
ZEL_API void zel_lapack_dpotrf_batch_strided_omp_internal32(const char *uplo, const int32_t *n, double *a,
                                                            const int32_t *lda, const int32_t *stride_a,
                                                            const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dpotrf_batch_strided_omp_internal64(const char *uplo, const int64_t *n, double *a,
                                                            const int64_t *lda, const int64_t *stride_a,
                                                            const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cpotrf_batch_strided(const char *uplo, const void *n, zel_complex8 *a,
                                             const void *lda, const void *stride_a, const void *batch_size,
                                             void *info, int64_t selector);
ZEL_API void zel_lapack_cpotrf_batch_strided_omp_internal32(
    const char *uplo, const int32_t *n, zel_complex8 *a, const int32_t *lda, const int32_t *stride_a,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cpotrf_batch_strided_omp_internal64(
    const char *uplo, const int64_t *n, zel_complex8 *a, const int64_t *lda, const int64_t *stride_a,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zpotrf_batch_strided(const char *uplo, const void *n, zel_complex16 *a,
                                             const void *lda, const void *stride_a, const void *batch_size,
                                             void *info, int64_t selector);
ZEL_API void zel_lapack_zpotrf_batch_strided_omp_internal32(
    const char *uplo, const int32_t *n, zel_complex16 *a, const int32_t *lda, const int32_t *stride_a,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zpotrf_batch_strided_omp_internal64(
    const char *uplo, const int64_t *n, zel_complex16 *a, const int64_t *lda, const int64_t *stride_a,
    const int64_t *batch_size, int64_t *info);

/* Least squares or minimum norm solution of op(A_i)*X_i = B_i by QR or LQ. */
ZEL_API void zel_lapack_sgels_batch_strided(const char *trans, const void *m, const void *n, const void *nrhs,
                                            float *a, const void *lda, const void *stride_a, float *b,
                                            const void *ldb, const void *stride_b, const void *batch_size,
                                            void *info, int64_t selector);
ZEL_API void zel_lapack_sgels_batch_strided_omp_internal32(
    const char *trans, const int32_t *m, const int32_t *n, const int32_t *nrhs, float *a, const int32_t *lda,
    const int32_t *stride_a, float *b, const int32_t *ldb, const int32_t *stride_b, const int32_t *batch_size,
    int32_t *info);
ZEL_API void zel_lapack_sgels_batch_strided_omp_internal64(
    const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs, float *a, const int64_t *lda,
    const int64_t *stride_a, float *b, const int64_t *ldb, const int64_t *stride_b, const int64_t *batch_size,
    int64_t *info);

ZEL_API void zel_lapack_dgels_batch_strided(const char *trans, const void *m, const void *n, const void *nrhs,
                                            double *a, const void *lda, const void *stride_a, double *b,
                                            const void *ldb, const void *stride_b, const void *batch_size,
                                            void *info, int64_t selector);
ZEL_API void zel_lapack_dgels_batch_strided_omp_internal32(
    const char *trans, const int32_t *m, const int32_t *n, const int32_t *nrhs, double *a, const int32_t *lda,
    const int32_t *stride_a, double *b, const int32_t *ldb, const int32_t *stride_b,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_dgels_batch_strided_omp_internal64(
    const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs, double *a, const int64_t *lda,
    const int64_t *stride_a, double *b, const int64_t *ldb, const int64_t *stride_b,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_cgels_batch_strided(const char *trans, const void *m, const void *n, const void *nrhs,
                                            zel_complex8 *a, const void *lda, const void *stride_a,
                                            zel_complex8 *b, const void *ldb, const void *stride_b,
                                            const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgels_batch_strided_omp_internal32(
    const char *trans, const int32_t *m, const int32_t *n, const int32_t *nrhs, zel_complex8 *a,
    const int32_t *lda, const int32_t *stride_a, zel_complex8 *b, const int32_t *ldb, const int32_t *stride_b,
    const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_cgels_batch_strided_omp_internal64(
    const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs, zel_complex8 *a,
    const int64_t *lda, const int64_t *stride_a, zel_complex8 *b, const int64_t *ldb, const int64_t *stride_b,
    const int64_t *batch_size, int64_t *info);

ZEL_API void zel_lapack_zgels_batch_strided(const char *trans, const void *m, const void *n, const void *nrhs,
                                            zel_complex16 *a, const void *lda, const void *stride_a,
                                            zel_complex16 *b, const void *ldb, const void *stride_b,
                                            const void *batch_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgels_batch_strided_omp_internal32(
    const char *trans, const int32_t *m, const int32_t *n, const int32_t *nrhs, zel_complex16 *a,
    const int32_t *lda, const int32_t *stride_a, zel_complex16 *b, const int32_t *ldb,
    const int32_t *stride_b, const int32_t *batch_size, int32_t *info);
ZEL_API void zel_lapack_zgels_batch_strided_omp_internal64(
    const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs, zel_complex16 *a,
    const int64_t *lda, const int64_t *stride_a, zel_complex16 *b, const int64_t *ldb,
    const int64_t *stride_b, const int64_t *batch_size, int64_t *info);

/* Group form: LU with partial pivoting of every matrix of every group; pivots of matrix k at ipiv[k]. */
ZEL_API void zel_lapack_sgetrf_batch(const void *m, const void *n, float *const *a, const void *lda,
                                     const void *ipiv, const void *group_count, const void *group_size,
                                     void *info, int64_t selector);
ZEL_API void zel_lapack_sgetrf_batch_omp_internal32(
    const int32_t *m, const int32_t *n, float *const *a, const int32_t *lda, int32_t *const *ipiv,
    const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_sgetrf_batch_omp_internal64(
    const int64_t *m, const int64_t *n, float *const *a, const int64_t *lda, int64_t *const *ipiv,
    const int64_t *group_count, const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_dgetrf_batch(const void *m, const void *n, double *const *a, const void *lda,
                                     const void *ipiv, const void *group_count, const void *group_size,
                                     void *info, int64_t selector);
ZEL_API void zel_lapack_dgetrf_batch_omp_internal32(
    const int32_t *m, const int32_t *n, double *const *a, const int32_t *lda, int32_t *const *ipiv,
    const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_dgetrf_batch_omp_internal64(
    const int64_t *m, const int64_t *n, double *const *a, const int64_t *lda, int64_t *const *ipiv,
    const int64_t *group_count, const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_cgetrf_batch(const void *m, const void *n, zel_complex8 *const *a, const void *lda,
                                     const void *ipiv, const void *group_count, const void *group_size,
                                     void *info, int64_t selector);
ZEL_API void zel_lapack_cgetrf_batch_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex8 *const *a, const int32_t *lda, int32_t *const *ipiv,
    const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_cgetrf_batch_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex8 *const *a, const int64_t *lda, int64_t *const *ipiv,
    const int64_t *group_count, const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_zgetrf_batch(const void *m, const void *n, zel_complex16 *const *a, const void *lda,
                                     const void *ipiv, const void *group_count, const void *group_size,
                                     void *info, int64_t selector);
ZEL_API void zel_lapack_zgetrf_batch_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex16 *const *a, const int32_t *lda, int32_t *const *ipiv,
    const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_zgetrf_batch_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex16 *const *a, const int64_t *lda, int64_t *const *ipiv,
    const int64_t *group_count, const int64_t *group_size, int64_t *info);

/* Group form: LU without pivoting of every matrix of every group. */
ZEL_API void zel_lapack_sgetrfnp_batch(const void *m, const void *n, float *const *a, const void *lda,
                                       const void *group_count, const void *group_size, void *info,
                                       int64_t selector);
ZEL_API void zel_lapack_sgetrfnp_batch_omp_internal32(const int32_t *m, const int32_t *n, float *const *a,
                                                      const int32_t *lda, const int32_t *group_count,
                                                      const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_sgetrfnp_batch_omp_internal64(const int64_t *m, const int64_t *n, float *const *a,
                                                      const int64_t *lda, const int64_t *group_count,
                                                      const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_dgetrfnp_batch(const void *m, const void *n, double *const *a, const void *lda,
                                       const void *group_count, const void *group_size, void *info,
                                       int64_t selector);
ZEL_API void zel_lapack_dgetrfnp_batch_omp_internal32(const int32_t *m, const int32_t *n, double *const *a,
                                                      const int32_t *lda, const int32_t *group_count,
                                                      const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_dgetrfnp_batch_omp_internal64(const int64_t *m, const int64_t *n, double *const *a,
                                                      const int64_t *lda, const int64_t *group_count,
                                                      const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_cgetrfnp_batch(const void *m, const void *n, zel_complex8 *const *a, const void *lda,
                                       const void *group_count, const void *group_size, void *info,
                                       int64_t selector);
ZEL_API void zel_lapack_cgetrfnp_batch_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex8 *const *a, const int32_t *lda,
    const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_cgetrfnp_batch_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex8 *const *a, const int64_t *lda,
    const int64_t *group_count, const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_zgetrfnp_batch(const void *m, const void *n, zel_complex16 *const *a, const void *lda,
                                       const void *group_count, const void *group_size, void *info,
                                       int64_t selector);
ZEL_API void zel_lapack_zgetrfnp_batch_omp_internal32(
    const int32_t *m, const int32_t *n, zel_complex16 *const *a, const int32_t *lda,
    const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_zgetrfnp_batch_omp_internal64(
    const int64_t *m, const int64_t *n, zel_complex16 *const *a, const int64_t *lda,
    const int64_t *group_count, const int64_t *group_size, int64_t *info);

/* Group form: ainv[k] = a[k]^-1 from the factors of getrf; a[k] and the pivot vectors are read only. */
ZEL_API void zel_lapack_sgetri_oop_batch(const void *n, float *const *a, const void *lda, const void *ipiv,
                                         float *const *ainv, const void *ldainv, const void *group_count,
                                         const void *group_size, void *info, int64_t selector);
ZEL_API void zel_lapack_sgetri_oop_batch_omp_internal32(
    const int32_t *n, float *const *a, const int32_t *lda, int32_t *const *ipiv, float *const *ainv,
    const int32_t *ldainv, const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_sgetri_oop_batch_omp_internal64(
    const int64_t *n, float *const *a, const int64_t *lda, int64_t *const *ipiv, float *const *ainv,
    const int64_t *ldainv, const int64_t *group_count, const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_dgetri_oop_batch(const void *n, double *const *a, const void *lda, const void *ipiv,
                                         double *const *ainv, const void *ldainv, const void *group_count,
                                         const void *group_size, void *info, int64_t selector);
ZEL_API void zel_lapack_dgetri_oop_batch_omp_internal32(
    const int32_t *n, double *const *a, const int32_t *lda, int32_t *const *ipiv, double *const *ainv,
    const int32_t *ldainv, const int32_t *group_count, const int32_t *group_size, int32_t *info);
ZEL_API void zel_lapack_dgetri_oop_batch_omp_internal64(
    const int64_t *n, double *const *a, const int64_t *lda, int64_t *const *ipiv, double *const *ainv,
    const int64_t *ldainv, const int64_t *group_count, const int64_t *group_size, int64_t *info);

ZEL_API void zel_lapack_cgetri_oop_batch(
    const void *n, zel_complex8 *const *a, const void *lda, const void *ipiv, zel_complex8 *const *ainv,
    const void *ldainv, const void *group_count, const void *group_size, void *info, int64_t selector);
ZEL_API void zel_lapack_cgetri_oop_batch_omp_internal32(
    const int32_t *n, zel_complex8 *const *a, const int32_t *lda, int32_t *const *ipiv,
    zel_complex8 *const *ainv, const int32_t *ldainv, const int32_t *group_count, const int32_t *group_size,
    int32_t *info);
ZEL_API void zel_lapack_cgetri_oop_batch_omp_internal64(
    const int64_t *n, zel_complex8 *const *a, const int64_t *lda, int64_t *const *ipiv,
    zel_complex8 *const *ainv, const int64_t *ldainv, const int64_t *group_count, const int64_t *group_size,
    int64_t *info);

ZEL_API void zel_lapack_zgetri_oop_batch(
    const void *n, zel_complex16 *const *a, const void *lda, const void *ipiv, zel_complex16 *const *ainv,
    const void *ldainv, const void *group_count, const void *group_size, void *info, int64_t selector);
ZEL_API void zel_lapack_zgetri_oop_batch_omp_internal32(
    const int32_t *n, zel_complex16 *const *a, const int32_t *lda, int32_t *const *ipiv,
    zel_complex16 *const *ainv, const int32_t *ldainv, const int32_t *group_count, const int32_t *group_size,
    int32_t *info);
ZEL_API void zel_lapack_zgetri_oop_batch_omp_internal64(
    const int64_t *n, zel_complex16 *const *a, const int64_t *lda, int64_t *const *ipiv,
    zel_complex16 *const *ainv, const int64_t *ldainv, const int64_t *group_count, const int64_t *group_size,
    int64_t *info);

ZEL_END_DECLS

#endif
