// The residual r = b − op(A)·x of a solution and its two measures, for iterative refinement.
// A is the frame's CSR; a stored upper triangle stands for the whole matrix. Sums run in
// double precision whatever the values' precision, so that refinement of a single-precision
// factor converges past that precision.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>

#include "zel/pds_solve.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// The wide type the sums run in.
template <class T> using wide_t = std::conditional_t<is_complex_v<T>, std::complex<double>, double>;

// op(A) as the frame describes it (0-based CSR).
template <class T, class I> struct frame_operator {
    int64_t n;
    const I *row_ptr, *col_idx;
    const T *values;
    bool upper, hermitian;
    int64_t op; // 0: A, 1: Aᵀ, 2: Aᴴ
};

template <class T, class I> frame_operator<T, I> operator_of(const zel_pds_frame &frame)
{
    return {frame.n, static_cast<const I *>(frame.a_row_ptr), static_cast<const I *>(frame.a_col_idx),
            static_cast<const T *>(frame.a_values), frame.a_upper != 0, pds::hermitian_type(frame.matrix_type),
            frame.transposed};
}

// Calls visit(i, j, v) once for each entry v = op(A)(i, j) that the stored entries stand for.
template <class T, class I, class Visit> void for_each_entry(const frame_operator<T, I> &a, Visit visit)
{
    auto emit = [&](I i, I j, T v) {
        if (a.op == 0)
            visit(i, j, v);
        else
            visit(j, i, conj_if(v, a.op == 2));
    };
    for (I i = 0; i < I(a.n); ++i)
        for (I p = a.row_ptr[i]; p < a.row_ptr[i + 1]; ++p) {
            const I j = a.col_idx[p];
            const T v = a.values[p];
            if (!a.upper) {
                emit(i, j, v);
            } else if (j >= i) {
                emit(i, j, v);
                if (j != i)
                    emit(j, i, conj_if(v, a.hermitian));
            }
        }
}

// A block of the frame's nrhs columns at leading dimension ld.
template <class T> struct frame_block {
    T *x;
    int64_t ld;
};

// r(:, c) = b(:, c) − op(A)·x(:, c); acc: n wide values.
template <class T, class I>
void residual(const frame_operator<T, I> &a, int64_t nrhs, frame_block<const T> b, frame_block<const T> x, T *r,
              wide_t<T> *acc)
{
    using W = wide_t<T>;
    for (int64_t c = 0; c < nrhs; ++c) {
        const T *xc = x.x + c * x.ld, *bc = b.x + c * b.ld;
        std::fill(acc, acc + a.n, W(0));
        for_each_entry(a, [&](I i, I j, T v) { acc[i] += W(v) * W(xc[j]); });
        T *rc = r + c * a.n;
        for (int64_t i = 0; i < a.n; ++i)
            rc[i] = T(W(bc[i]) - acc[i]);
    }
}

// The two measures of a residual, worst column of each.
struct residual_measures {
    double backward_error = 0; // max_i |r_i| / (|op(A)|·|x| + |b|)_i
    double residual_norm = 0;  // ‖r‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞)
};

template <class T> double max_abs(const T *v, int64_t n)
{
    double m = 0;
    for (int64_t i = 0; i < n; ++i)
        m = std::max(m, double(std::abs(v[i])));
    return m;
}

// den: n doubles. A row whose |op(A)|·|x| + |b| is zero has a zero residual (every product in
// it is an exact zero) and is skipped.
template <class T, class I>
residual_measures measure(const frame_operator<T, I> &a, int64_t nrhs, frame_block<const T> b, frame_block<const T> x,
                          const T *r, double *den)
{
    residual_measures m;
    std::fill(den, den + a.n, 0.0);
    for_each_entry(a, [&](I i, I, T v) { den[i] += double(std::abs(v)); });
    const double norm_a = max_abs(den, a.n);
    for (int64_t c = 0; c < nrhs; ++c) {
        const T *xc = x.x + c * x.ld, *bc = b.x + c * b.ld, *rc = r + c * a.n;
        for (int64_t i = 0; i < a.n; ++i)
            den[i] = double(std::abs(bc[i]));
        for_each_entry(a, [&](I i, I j, T v) { den[i] += double(std::abs(v)) * double(std::abs(xc[j])); });
        for (int64_t i = 0; i < a.n; ++i)
            if (den[i] > 0)
                m.backward_error = std::max(m.backward_error, double(std::abs(rc[i])) / den[i]);
        const double scale = norm_a * max_abs(xc, a.n) + max_abs(bc, a.n), top = max_abs(rc, a.n);
        if (top > 0)
            m.residual_norm = std::max(m.residual_norm, scale > 0 ? top / scale : HUGE_VAL);
    }
    return m;
}

// Checks shared by both entries: 0 to go on, else the error to report.
inline int64_t frame_check(const zel_pds_frame *frame, bool complex, const void *b, const void *x, const void *r)
{
    if (frame == nullptr)
        return 1;
    if (complex != pds::complex_type(frame->matrix_type) || frame->n < 0 || frame->nrhs < 0 ||
        (frame->nrhs > 1 && (frame->ldb < frame->n || frame->ldx < frame->n)))
        return 2;
    if (frame->n > 0 && frame->nrhs > 0 &&
        (b == nullptr || x == nullptr || r == nullptr || frame->a_row_ptr == nullptr || frame->a_col_idx == nullptr ||
         frame->a_values == nullptr))
        return 1;
    return 0;
}

template <class T, class I> int64_t residual_entry(const zel_pds_frame &frame, const void *b, const void *x, void *r)
{
    if (frame.n == 0 || frame.nrhs == 0)
        return 0;
    scratch_array<wide_t<T>> acc(size_t(frame.n), 128);
    if (!acc)
        return 1;
    residual(operator_of<T, I>(frame), frame.nrhs, frame_block<const T>{static_cast<const T *>(b), frame.ldb},
             frame_block<const T>{static_cast<const T *>(x), frame.ldx}, static_cast<T *>(r), acc.get());
    return 0;
}

template <class T, class I>
int64_t measure_entry(const zel_pds_frame &frame, const void *b, const void *x, const void *r, residual_measures &m)
{
    m = residual_measures{};
    if (frame.n == 0 || frame.nrhs == 0)
        return 0;
    scratch_array<double> den(size_t(frame.n), 128);
    if (!den)
        return 1;
    m = measure(operator_of<T, I>(frame), frame.nrhs, frame_block<const T>{static_cast<const T *>(b), frame.ldb},
                frame_block<const T>{static_cast<const T *>(x), frame.ldx}, static_cast<const T *>(r), den.get());
    return 0;
}

} // namespace zel::solver
