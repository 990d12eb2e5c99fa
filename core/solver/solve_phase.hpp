// The core's solve phase: the layer's driver, wrapped in the matching and scaling of the
// factor when it has them (docs/solver.md, "Matching and scaling around the driver"). The
// driver solves with C = Πᵀ·Dr·A·Dc through the ordering and scales its output by one vector
// of frame.scaling (Dc, then s2[j] = Dr[matching[j]]); around it:
//   A·x = b:        c[j] = s2[j]·b[matching[j]], then the driver's x = Dc·z;
//   Aᵀ·x = b (Aᴴ):  c = Dc·b, the driver's s2·v, then x[matching[j]] = (s2·v)[j].
#pragma once

#include <cstdint>

#include "zel/pds_solve.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// x = op(A)⁻¹·b for the frame's nrhs columns (x may equal b); the driver's error code. Used by
// the public solve and, through zel_pds_kernel_dispatch, by every refinement step.
int64_t solve_phase(zel_pds_frame &frame, const void *b, void *x, int64_t message_level);

// The matching and the two scaling vectors, each the identity when absent.
template <class T, class I> struct matched_view {
    int64_t n;
    const I *matching;
    const real_t<T> *dc, *s2;

    int64_t row(int64_t j) const { return matching != nullptr ? int64_t(matching[j]) : j; }
    real_t<T> column_scale(int64_t j) const { return dc != nullptr ? dc[j] : real_t<T>(1); }
    real_t<T> row_scale(int64_t j) const { return s2 != nullptr ? s2[j] : real_t<T>(1); }
};

template <class T, class I> matched_view<T, I> matched_of(const zel_pds_frame &f)
{
    const auto *s = static_cast<const real_t<T> *>(f.scaling);
    return {f.n, static_cast<const I *>(f.matching), s, s != nullptr ? s + f.n : nullptr};
}

// c(:, k) for the driver, leading dimension n: the right-hand side moved into C's rows.
template <class T, class I> void matched_rhs(const zel_pds_frame &f, const matched_view<T, I> &m, const T *b, T *c)
{
    for (int64_t k = 0; k < f.nrhs; ++k) {
        const T *bk = b + k * f.ldb;
        T *ck = c + k * f.n;
        if (f.transposed == 0)
            for (int64_t j = 0; j < f.n; ++j)
                ck[j] = bk[m.row(j)] * m.row_scale(j);
        else
            for (int64_t j = 0; j < f.n; ++j)
                ck[j] = bk[j] * m.column_scale(j);
    }
}

// x(matching[j], k) = w(j, k): a transposed solve's result moved back to A's rows.
template <class T, class I> void matched_solution(const zel_pds_frame &f, const matched_view<T, I> &m, const T *w, T *x)
{
    for (int64_t k = 0; k < f.nrhs; ++k) {
        const T *wk = w + k * f.n;
        T *xk = x + k * f.ldx;
        for (int64_t j = 0; j < f.n; ++j)
            xk[m.row(j)] = wk[j];
    }
}

// The driver of the frame's value kind.
void run_driver(zel_pds_frame &frame, const void *b, void *x, int64_t message_level, int64_t *error);

// The wrapped solve of a frame with a matching or scaling; x is written only by a driver that
// succeeded.
template <class T, class I> int64_t matched_solve(zel_pds_frame &frame, const T *b, T *x, int64_t message_level)
{
    const auto count = checked_mul(frame.n, frame.nrhs);
    scratch_array<T> c;
    if (count)
        c = scratch_array<T>(size_t(*count), 128);
    if (!c)
        return 1;
    const matched_view<T, I> m = matched_of<T, I>(frame);
    matched_rhs(frame, m, b, c.get());
    zel_pds_frame inner = frame;
    inner.matching = nullptr;
    inner.ldb = inner.ldx = frame.n;
    // The driver scales by the second vector itself only for 11 and 13.
    if (frame.transposed != 0 && m.s2 != nullptr && (frame.matrix_type == 1 || frame.matrix_type == 3))
        inner.scaling = m.s2;
    int64_t error = 0;
    if (frame.transposed == 0) {
        inner.ldx = frame.ldx;
        run_driver(inner, c.get(), x, message_level, &error);
    } else {
        run_driver(inner, c.get(), c.get(), message_level, &error);
        if (error == 0)
            matched_solution(frame, m, c.get(), x);
    }
    frame.solve_seconds = inner.solve_seconds;
    return error;
}

} // namespace zel::solver
