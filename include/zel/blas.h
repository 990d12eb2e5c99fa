/* Zelmath sequential layer: level-1 BLAS, one-vector entries and their strided batched forms.
 *
 * Members: one per precision, s (float), d (double), c (zel_complex8), z (zel_complex16).
 * Conventions: integers are int64_t and every argument, scalars included, is passed by reference
 * (BLAS semantics: nothing happens when n <= 0). Batch member i works on x + i*stridex and
 * y + i*stridey, i = 0 .. batch_size-1, in that order; nothing happens when batch_size <= 0.
 * Nothing is reported and nothing is handed back to free: the batched forms may take scratch
 * from zel_serv_malloc, and failing to get it changes only the path, never the result. The
 * one-vector entries run the core's kernels (zel_blas_x?axpy, zel_blas_x?copy).
 * Defined by libzel_sequential.so.2; see docs/lapack_batch.md. */
#ifndef ZEL_BLAS_H
#define ZEL_BLAS_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* y = alpha*x + y on one vector. */
ZEL_API void zel_blas_saxpy(const int64_t *n, const float *alpha, const float *x, const int64_t *incx,
                            float *y, const int64_t *incy);
ZEL_API void zel_blas_daxpy(const int64_t *n, const double *alpha, const double *x, const int64_t *incx,
                            double *y, const int64_t *incy);
ZEL_API void zel_blas_caxpy(const int64_t *n, const zel_complex8 *alpha, const zel_complex8 *x,
                            const int64_t *incx, zel_complex8 *y, const int64_t *incy);
ZEL_API void zel_blas_zaxpy(const int64_t *n, const zel_complex16 *alpha, const zel_complex16 *x,
                            const int64_t *incx, zel_complex16 *y, const int64_t *incy);

/* y = x on one vector. */
ZEL_API void zel_blas_scopy(const int64_t *n, const float *x, const int64_t *incx, float *y,
                            const int64_t *incy);
ZEL_API void zel_blas_dcopy(const int64_t *n, const double *x, const int64_t *incx, double *y,
                            const int64_t *incy);
ZEL_API void zel_blas_ccopy(const int64_t *n, const zel_complex8 *x, const int64_t *incx, zel_complex8 *y,
                            const int64_t *incy);
ZEL_API void zel_blas_zcopy(const int64_t *n, const zel_complex16 *x, const int64_t *incx, zel_complex16 *y,
                            const int64_t *incy);

/* y_i = alpha*x_i + y_i over the batch (a stridey of 0 accumulates every member into one y). */
ZEL_API void zel_blas_saxpy_batch_strided(
    const int64_t *n, const float *alpha, const float *x, const int64_t *incx, const int64_t *stridex,
    float *y, const int64_t *incy, const int64_t *stridey, const int64_t *batch_size);
ZEL_API void zel_blas_daxpy_batch_strided(
    const int64_t *n, const double *alpha, const double *x, const int64_t *incx, const int64_t *stridex,
    double *y, const int64_t *incy, const int64_t *stridey, const int64_t *batch_size);
ZEL_API void zel_blas_caxpy_batch_strided(const int64_t *n, const zel_complex8 *alpha, const zel_complex8 *x,
                                          const int64_t *incx, const int64_t *stridex, zel_complex8 *y,
                                          const int64_t *incy, const int64_t *stridey,
                                          const int64_t *batch_size);
ZEL_API void zel_blas_zaxpy_batch_strided(const int64_t *n, const zel_complex16 *alpha,
                                          const zel_complex16 *x, const int64_t *incx, const int64_t *stridex,
                                          zel_complex16 *y, const int64_t *incy, const int64_t *stridey,
                                          const int64_t *batch_size);

/* y_i = x_i over the batch. */
ZEL_API void zel_blas_scopy_batch_strided(const int64_t *n, const float *x, const int64_t *incx,
                                          const int64_t *stridex, float *y, const int64_t *incy,
                                          const int64_t *stridey, const int64_t *batch_size);
ZEL_API void zel_blas_dcopy_batch_strided(const int64_t *n, const double *x, const int64_t *incx,
                                          const int64_t *stridex, double *y, const int64_t *incy,
                                          const int64_t *stridey, const int64_t *batch_size);
ZEL_API void zel_blas_ccopy_batch_strided(const int64_t *n, const zel_complex8 *x, const int64_t *incx,
                                          const int64_t *stridex, zel_complex8 *y, const int64_t *incy,
                                          const int64_t *stridey, const int64_t *batch_size);
ZEL_API void zel_blas_zcopy_batch_strided(const int64_t *n, const zel_complex16 *x, const int64_t *incx,
                                          const int64_t *stridex, zel_complex16 *y, const int64_t *incy,
                                          const int64_t *stridey, const int64_t *batch_size);

ZEL_END_DECLS

#endif
