// Strided batches of level-1 operations, each member run by the layer's one-vector entry.
#pragma once

#include <cstdint>

#include "zel/serv.h"
#include "zel_internal/scratch.hpp"

namespace zel::blas {

// Member addresses x + i*stridex and y + i*stridey, in arrays from the allocator (alignment 64).
template <class C> struct member_addresses {
    scratch_array<const C *> x;
    scratch_array<C *> y;

    member_addresses(int64_t count, const C *first_x, int64_t stridex, C *first_y, int64_t stridey)
        : x(static_cast<size_t>(count), 64), y(static_cast<size_t>(count), 64)
    {
        if (!x || !y)
            return;
        for (int64_t i = 0; i < count; ++i) {
            x[i] = first_x + i * stridex;
            y[i] = first_y + i * stridey;
        }
    }
    bool ready() const { return x && y; }
};

// The thread query that the threaded layers make for short vectors; one thread here, unused.
inline void ask_blas_threads(int64_t n)
{
    if (n < 4096)
        static_cast<void>(zel_serv_domain_get_max_threads(1));
}

// y_i = alpha*x_i + y_i for i = 0..batch_size-1 in order. Failing to get the address arrays
// changes only the path, not the result.
template <class C, class Axpy>
void axpy_batch_strided(Axpy axpy, const int64_t *n, const C *alpha, const C *x, const int64_t *incx,
                        const int64_t *stridex, C *y, const int64_t *incy, const int64_t *stridey,
                        const int64_t *batch_size)
{
    const int64_t count = *batch_size;
    if (count <= 0)
        return;
    member_addresses<C> members(count, x, *stridex, y, *stridey);
    if (!members.ready()) {
        for (int64_t i = 0; i < count; ++i)
            axpy(n, alpha, x + i * *stridex, incx, y + i * *stridey, incy);
        return;
    }
    const int64_t length = *n, step_x = *incx, step_y = *incy;
    ask_blas_threads(length);
    for (int64_t i = 0; i < count; ++i)
        axpy(&length, alpha, members.x[i], &step_x, members.y[i], &step_y);
}

// y_i = x_i for i = 0..batch_size-1 in order.
template <class C, class Copy>
void copy_batch_strided(Copy copy, const int64_t *n, const C *x, const int64_t *incx, const int64_t *stridex, C *y,
                        const int64_t *incy, const int64_t *stridey, const int64_t *batch_size)
{
    const int64_t count = *batch_size;
    if (count <= 0)
        return;
    member_addresses<C> members(count, x, *stridex, y, *stridey);
    if (!members.ready()) {
        for (int64_t i = 0; i < count; ++i)
            copy(n, x + i * *stridex, incx, y + i * *stridey, incy);
        return;
    }
    const int64_t length = *n, step_x = *incx, step_y = *incy;
    ask_blas_threads(length);
    for (int64_t i = 0; i < count; ++i)
        copy(&length, members.x[i], &step_x, members.y[i], &step_y);
}

} // namespace zel::blas
