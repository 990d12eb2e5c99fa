/* Zelmath sequential layer: level-1 BLAS entries and their strided batched forms.
 * Integers are int64_t, every scalar is passed by reference. */
#ifndef ZEL_BLAS_H
#define ZEL_BLAS_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

#define ZEL_BLAS_DECLARE_LEVEL1(p, T)                                                                      \
    /* y = alpha*x + y on one vector (BLAS semantics: nothing happens when n <= 0). */                     \
    ZEL_API void zel_blas_##p##axpy(const int64_t *n, const T *alpha, const T *x, const int64_t *incx,     \
                                    T *y, const int64_t *incy);                                             \
    /* y = x on one vector. */                                                                              \
    ZEL_API void zel_blas_##p##copy(const int64_t *n, const T *x, const int64_t *incx, T *y,               \
                                    const int64_t *incy);                                                   \
    /* y_i = alpha*x_i + y_i for x_i = x + i*stridex, y_i = y + i*stridey, i = 0 .. batch_size-1, */        \
    /* in that order (a stridey of 0 accumulates every member into one y). */                               \
    ZEL_API void zel_blas_##p##axpy_batch_strided(const int64_t *n, const T *alpha, const T *x,            \
                                                  const int64_t *incx, const int64_t *stridex, T *y,        \
                                                  const int64_t *incy, const int64_t *stridey,              \
                                                  const int64_t *batch_size);                               \
    /* y_i = x_i over the batch. */                                                                         \
    ZEL_API void zel_blas_##p##copy_batch_strided(const int64_t *n, const T *x, const int64_t *incx,       \
                                                  const int64_t *stridex, T *y, const int64_t *incy,        \
                                                  const int64_t *stridey, const int64_t *batch_size);

ZEL_BLAS_DECLARE_LEVEL1(s, float)
ZEL_BLAS_DECLARE_LEVEL1(d, double)
ZEL_BLAS_DECLARE_LEVEL1(c, zel_complex8)
ZEL_BLAS_DECLARE_LEVEL1(z, zel_complex16)

#undef ZEL_BLAS_DECLARE_LEVEL1

ZEL_END_DECLS

#endif
