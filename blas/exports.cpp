// The exported level-1 entries: one-vector forms over the core's kernels and their strided batches.
#include "batch_strided.hpp"
#include "zel/blas.h"
#include "zel/core_imports.h"
#include "zel_internal/members.hpp"

#define ZEL_BLAS_EXPORTS(P, C, T)                                                                            \
    ZEL_API void zel_blas_##P##axpy(const int64_t *n, const C *alpha, const C *x, const int64_t *incx, C *y, \
                                    const int64_t *incy)                                                   \
    {                                                                                                      \
        zel_blas_x##P##axpy(n, alpha, x, incx, y, incy);                                                   \
    }                                                                                                      \
    ZEL_API void zel_blas_##P##copy(const int64_t *n, const C *x, const int64_t *incx, C *y,               \
                                    const int64_t *incy)                                                   \
    {                                                                                                      \
        zel_blas_x##P##copy(n, x, incx, y, incy);                                                          \
    }                                                                                                      \
    ZEL_API void zel_blas_##P##axpy_batch_strided(const int64_t *n, const C *alpha, const C *x,            \
                                                  const int64_t *incx, const int64_t *stridex, C *y,        \
                                                  const int64_t *incy, const int64_t *stridey,              \
                                                  const int64_t *batch_size)                                \
    {                                                                                                      \
        zel::blas::axpy_batch_strided(zel_blas_##P##axpy, n, alpha, x, incx, stridex, y, incy, stridey,     \
                                      batch_size);                                                         \
    }                                                                                                      \
    ZEL_API void zel_blas_##P##copy_batch_strided(const int64_t *n, const C *x, const int64_t *incx,       \
                                                  const int64_t *stridex, C *y, const int64_t *incy,        \
                                                  const int64_t *stridey, const int64_t *batch_size)        \
    {                                                                                                      \
        zel::blas::copy_batch_strided(zel_blas_##P##copy, n, x, incx, stridex, y, incy, stridey,            \
                                      batch_size);                                                         \
    }

extern "C" {
ZEL_DENSE_MEMBERS(ZEL_BLAS_EXPORTS)
}
