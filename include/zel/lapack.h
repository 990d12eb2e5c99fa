/* Zelmath sequential layer: batched LAPACK drivers.
 *
 * Every routine comes in four precisions (s, d, c, z) and three entries:
 *   zel_lapack_<p><op>_omp_internal64  integer arguments, pivots and statuses are int64_t;
 *   zel_lapack_<p><op>_omp_internal32  the same as int32_t;
 *   zel_lapack_<p><op>(..., selector)  the width-neutral entry: every integer argument is an
 *       untyped pointer (const void * in, void * out) to int32_t data when `selector` is
 *       non-zero and to int64_t data when it is zero; the selector is passed by value.
 * Scalars are passed by reference, matrices are column-major, character options are one
 * letter compared without regard to case. Argument errors set the status array and are
 * reported through zel_serv_xerbla with the 1-based position; code 1000 means that a
 * workspace could not be allocated. See docs/lapack_batch.md for positions and statuses. */
#ifndef ZEL_LAPACK_H
#define ZEL_LAPACK_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* Parameter lists shared by the three entries of a routine: T is the value type, I the
 * integer type (int32_t, int64_t, or void for the width-neutral entry), IP the type of a
 * group driver's array of pivot-vector pointers. */

/* LU with partial pivoting of A_i = A + i*stride_a; pivots at ipiv + i*stride_ipiv. */
#define ZEL_LAPACK_GETRF_BATCH_STRIDED_PARAMS(T, I)                                                       \
    const I *m, const I *n, T *a, const I *lda, const I *stride_a, I *ipiv, const I *stride_ipiv,         \
        const I *batch_size, I *info
/* LU without pivoting. */
#define ZEL_LAPACK_GETRFNP_BATCH_STRIDED_PARAMS(T, I)                                                     \
    const I *m, const I *n, T *a, const I *lda, const I *stride_a, const I *batch_size, I *info
/* op(A_i)*X_i = B_i from the factors of getrf. */
#define ZEL_LAPACK_GETRS_BATCH_STRIDED_PARAMS(T, I)                                                       \
    const char *trans, const I *n, const I *nrhs, const T *a, const I *lda, const I *stride_a,            \
        const I *ipiv, const I *stride_ipiv, T *b, const I *ldb, const I *stride_b, const I *batch_size,  \
        I *info
/* op(A_i)*X_i = B_i from the factors of getrfnp. */
#define ZEL_LAPACK_GETRSNP_BATCH_STRIDED_PARAMS(T, I)                                                     \
    const char *trans, const I *n, const I *nrhs, const T *a, const I *lda, const I *stride_a, T *b,      \
        const I *ldb, const I *stride_b, const I *batch_size, I *info
/* Ainv_i = A_i^-1 from the factors of getrf, A_i untouched. */
#define ZEL_LAPACK_GETRI_OOP_BATCH_STRIDED_PARAMS(T, I)                                                   \
    const I *n, const T *a, const I *lda, const I *stride_a, const I *ipiv, const I *stride_ipiv,         \
        T *ainv, const I *ldainv, const I *stride_ainv, const I *batch_size, I *info
/* A_i = A_i^-1 in place from the factors of getrf. */
#define ZEL_LAPACK_GETRI_BATCH_STRIDED_PARAMS(T, I)                                                       \
    const I *n, T *a, const I *lda, const I *stride_a, const I *ipiv, const I *stride_ipiv,               \
        const I *batch_size, I *info
/* Cholesky factor of the uplo triangle of each A_i. */
#define ZEL_LAPACK_POTRF_BATCH_STRIDED_PARAMS(T, I)                                                       \
    const char *uplo, const I *n, T *a, const I *lda, const I *stride_a, const I *batch_size, I *info
/* Least squares or minimum norm solution of op(A_i)*X_i = B_i by QR or LQ. */
#define ZEL_LAPACK_GELS_BATCH_STRIDED_PARAMS(T, I)                                                        \
    const char *trans, const I *m, const I *n, const I *nrhs, T *a, const I *lda, const I *stride_a,      \
        T *b, const I *ldb, const I *stride_b, const I *batch_size, I *info

/* Group form: matrix k of all groups is a[k]; group g holds group_size[g] matrices of
 * m[g] x n[g] with leading dimension lda[g]. */
#define ZEL_LAPACK_GETRF_BATCH_PARAMS(T, I, IP)                                                           \
    const I *m, const I *n, T *const *a, const I *lda, IP ipiv, const I *group_count,                     \
        const I *group_size, I *info
#define ZEL_LAPACK_GETRFNP_BATCH_PARAMS(T, I)                                                             \
    const I *m, const I *n, T *const *a, const I *lda, const I *group_count, const I *group_size, I *info
/* a[k] and the pivot vectors are read only; the inverse goes to ainv[k]. */
#define ZEL_LAPACK_GETRI_OOP_BATCH_PARAMS(T, I, IP)                                                       \
    const I *n, T *const *a, const I *lda, IP ipiv, T *const *ainv, const I *ldainv,                      \
        const I *group_count, const I *group_size, I *info

#define ZEL_LAPACK_DECLARE_STRIDED(p, T, op, PARAMS)                                                      \
    ZEL_API void zel_lapack_##p##op##_batch_strided(PARAMS(T, void), int64_t selector);                  \
    ZEL_API void zel_lapack_##p##op##_batch_strided_omp_internal32(PARAMS(T, int32_t));                   \
    ZEL_API void zel_lapack_##p##op##_batch_strided_omp_internal64(PARAMS(T, int64_t));

#define ZEL_LAPACK_DECLARE_BATCH(p, T)                                                                    \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, getrf, ZEL_LAPACK_GETRF_BATCH_STRIDED_PARAMS)                       \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, getrfnp, ZEL_LAPACK_GETRFNP_BATCH_STRIDED_PARAMS)                   \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, getrs, ZEL_LAPACK_GETRS_BATCH_STRIDED_PARAMS)                       \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, getrsnp, ZEL_LAPACK_GETRSNP_BATCH_STRIDED_PARAMS)                   \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, getri_oop, ZEL_LAPACK_GETRI_OOP_BATCH_STRIDED_PARAMS)               \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, getri, ZEL_LAPACK_GETRI_BATCH_STRIDED_PARAMS)                       \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, potrf, ZEL_LAPACK_POTRF_BATCH_STRIDED_PARAMS)                       \
    ZEL_LAPACK_DECLARE_STRIDED(p, T, gels, ZEL_LAPACK_GELS_BATCH_STRIDED_PARAMS)                         \
    /* Group entries: ipiv is the address of the array of pivot-vector pointers */                       \
    /* (int32_t *[] when selector is non-zero, int64_t *[] when it is zero). */                          \
    ZEL_API void zel_lapack_##p##getrf_batch(ZEL_LAPACK_GETRF_BATCH_PARAMS(T, void, const void *),        \
                                             int64_t selector);                                           \
    ZEL_API void zel_lapack_##p##getrf_batch_omp_internal32(                                              \
        ZEL_LAPACK_GETRF_BATCH_PARAMS(T, int32_t, int32_t *const *));                                     \
    ZEL_API void zel_lapack_##p##getrf_batch_omp_internal64(                                              \
        ZEL_LAPACK_GETRF_BATCH_PARAMS(T, int64_t, int64_t *const *));                                     \
    ZEL_API void zel_lapack_##p##getrfnp_batch(ZEL_LAPACK_GETRFNP_BATCH_PARAMS(T, void), int64_t selector); \
    ZEL_API void zel_lapack_##p##getrfnp_batch_omp_internal32(ZEL_LAPACK_GETRFNP_BATCH_PARAMS(T, int32_t)); \
    ZEL_API void zel_lapack_##p##getrfnp_batch_omp_internal64(ZEL_LAPACK_GETRFNP_BATCH_PARAMS(T, int64_t)); \
    ZEL_API void zel_lapack_##p##getri_oop_batch(ZEL_LAPACK_GETRI_OOP_BATCH_PARAMS(T, void, const void *), \
                                                 int64_t selector);                                       \
    ZEL_API void zel_lapack_##p##getri_oop_batch_omp_internal32(                                          \
        ZEL_LAPACK_GETRI_OOP_BATCH_PARAMS(T, int32_t, int32_t *const *));                           \
    ZEL_API void zel_lapack_##p##getri_oop_batch_omp_internal64(                                          \
        ZEL_LAPACK_GETRI_OOP_BATCH_PARAMS(T, int64_t, int64_t *const *));

ZEL_LAPACK_DECLARE_BATCH(s, float)
ZEL_LAPACK_DECLARE_BATCH(d, double)
ZEL_LAPACK_DECLARE_BATCH(c, zel_complex8)
ZEL_LAPACK_DECLARE_BATCH(z, zel_complex16)

#undef ZEL_LAPACK_DECLARE_BATCH
#undef ZEL_LAPACK_DECLARE_STRIDED

ZEL_END_DECLS

#endif
