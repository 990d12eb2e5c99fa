// The parameter lists of the batched LAPACK entries, one macro a routine named after it: T the
// value type, I the integer type, IP the type of the group forms' array of pivot-vector
// pointers (unused by the routines without one). The drivers and the exported shells are
// written against them; the shells' definitions meet the written-out prototypes of
// zel/lapack.h, so a list that drifts from its prototype fails the build.
#pragma once

#define ZEL_LAPACK_PARAMS_getrf_batch_strided(T, I, IP)                                                          \
    const I *m, const I *n, T *a, const I *lda, const I *stride_a, I *ipiv, const I *stride_ipiv,            \
        const I *batch_size, I *info
#define ZEL_LAPACK_PARAMS_getrfnp_batch_strided(T, I, IP)                                                        \
    const I *m, const I *n, T *a, const I *lda, const I *stride_a, const I *batch_size, I *info
#define ZEL_LAPACK_PARAMS_getrs_batch_strided(T, I, IP)                                                          \
    const char *trans, const I *n, const I *nrhs, const T *a, const I *lda, const I *stride_a,               \
        const I *ipiv, const I *stride_ipiv, T *b, const I *ldb, const I *stride_b, const I *batch_size,     \
        I *info
#define ZEL_LAPACK_PARAMS_getrsnp_batch_strided(T, I, IP)                                                        \
    const char *trans, const I *n, const I *nrhs, const T *a, const I *lda, const I *stride_a, T *b,         \
        const I *ldb, const I *stride_b, const I *batch_size, I *info
#define ZEL_LAPACK_PARAMS_getri_oop_batch_strided(T, I, IP)                                                      \
    const I *n, const T *a, const I *lda, const I *stride_a, const I *ipiv, const I *stride_ipiv, T *ainv,   \
        const I *ldainv, const I *stride_ainv, const I *batch_size, I *info
#define ZEL_LAPACK_PARAMS_getri_batch_strided(T, I, IP)                                                          \
    const I *n, T *a, const I *lda, const I *stride_a, const I *ipiv, const I *stride_ipiv,                  \
        const I *batch_size, I *info
#define ZEL_LAPACK_PARAMS_potrf_batch_strided(T, I, IP)                                                          \
    const char *uplo, const I *n, T *a, const I *lda, const I *stride_a, const I *batch_size, I *info
#define ZEL_LAPACK_PARAMS_gels_batch_strided(T, I, IP)                                                           \
    const char *trans, const I *m, const I *n, const I *nrhs, T *a, const I *lda, const I *stride_a, T *b,   \
        const I *ldb, const I *stride_b, const I *batch_size, I *info

#define ZEL_LAPACK_PARAMS_getrf_batch(T, I, IP)                                                              \
    const I *m, const I *n, T *const *a, const I *lda, IP ipiv, const I *group_count, const I *group_size,   \
        I *info
#define ZEL_LAPACK_PARAMS_getrfnp_batch(T, I, IP)                                                                \
    const I *m, const I *n, T *const *a, const I *lda, const I *group_count, const I *group_size, I *info
#define ZEL_LAPACK_PARAMS_getri_oop_batch(T, I, IP)                                                          \
    const I *n, T *const *a, const I *lda, IP ipiv, T *const *ainv, const I *ldainv, const I *group_count,   \
        const I *group_size, I *info
