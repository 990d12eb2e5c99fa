// Forward and backward sweeps of the supernodal factor L (A = P·L·Lᴴ·Pᵀ) over a block of
// right-hand sides, in place: forward L·Y = W, backward Lᴴ·X = Y. Small panels are swept by
// loops that read each panel once; large ones go to trsv and gemv (one right-hand side) or
// trsm and gemm (several).
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "../dense/openblas.hpp"
#include "zel/pds_solve.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// The factor as the frame hands it over: 1-based pointers and row numbers.
template <class T, class I> struct sweep_factor {
    I nsuper;
    const I *super_ptr, *col_ptr, *row_ptr, *row_index;
    const T *values;
};

template <class T, class I> sweep_factor<T, I> factor_of(const zel_pds_frame &frame)
{
    return {I(frame.nsuper), static_cast<const I *>(frame.super_ptr), static_cast<const I *>(frame.col_ptr),
            static_cast<const I *>(frame.row_ptr), static_cast<const I *>(frame.row_index),
            static_cast<const T *>(frame.l_values)};
}

// One supernode: its first column (0-based), columns and rows, its panel (column-major,
// leading dimension rows, the diagonal block on top) and its row list (1-based).
template <class T, class I> struct sweep_panel {
    int64_t first, cols, rows;
    const T *l;
    const I *index;
};

template <class T, class I> inline sweep_panel<T, I> panel_of(const sweep_factor<T, I> &f, I s)
{
    const int64_t first = int64_t(f.super_ptr[s]) - 1, at = f.col_ptr[first];
    return {first, int64_t(f.super_ptr[s + 1]) - 1 - first, int64_t(f.col_ptr[first + 1]) - at, f.values + (at - 1),
            f.row_index + (f.row_ptr[s] - 1)};
}

template <class T, class I> int64_t largest_panel_rows(const sweep_factor<T, I> &f)
{
    int64_t rows = 1;
    for (I s = 0; s < f.nsuper; ++s)
        rows = std::max(rows, int64_t(f.col_ptr[f.super_ptr[s]]) - f.col_ptr[f.super_ptr[s] - 1]);
    return rows;
}

// k right-hand sides of the factor's order at leading dimension ld.
template <class T> struct rhs_block {
    T *x;
    int64_t ld, k;
};

// a·b and conj(a)·b, written out: std::complex's product guards against infinities with a
// library call on every operation.
template <class T> inline T mul(T a, T b)
{
    if constexpr (is_complex_v<T>)
        return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
    else
        return a * b;
}
template <class T> inline T cmul(T a, T b)
{
    if constexpr (is_complex_v<T>)
        return {a.real() * b.real() + a.imag() * b.imag(), a.real() * b.imag() - a.imag() * b.real()};
    else
        return a * b;
}

// Σ conj(a[i])·b[i] in four interleaved sums, so that the additions overlap.
template <class T> inline T dot_c(const T *a, const T *b, int64_t n)
{
    T s0 = 0, s1 = 0, s2 = 0, s3 = 0;
    int64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        s0 += cmul(a[i], b[i]);
        s1 += cmul(a[i + 1], b[i + 1]);
        s2 += cmul(a[i + 2], b[i + 2]);
        s3 += cmul(a[i + 3], b[i + 3]);
    }
    for (; i < n; ++i)
        s0 += cmul(a[i], b[i]);
    return (s0 + s1) + (s2 + s3);
}

// Whether a panel is swept by the loops below rather than by the dense kernels, whose calls
// cost more than small panels' arithmetic.
template <class T, class I> inline bool small_panel(const sweep_panel<T, I> &p)
{
    return p.cols <= 16 && p.rows * p.cols <= 4096;
}

// ---- One right-hand side ----

// Forward over a small panel, column by column: x1 = L11⁻¹·x1, then x(below) -= L21·x1
// accumulated in t and scattered once.
template <class T, class I> void forward_small_one(const sweep_panel<T, I> &p, T *x, T *t)
{
    T *x1 = x + p.first;
    const int64_t off = p.rows - p.cols;
    const I *below = p.index + p.cols;
    if (p.cols == 1) {
        const T v = x1[0] / p.l[0];
        x1[0] = v;
        for (int64_t i = 0; i < off; ++i)
            x[below[i] - 1] -= mul(p.l[1 + i], v);
        return;
    }
    std::fill(t, t + off, T(0));
    for (int64_t j = 0; j < p.cols; ++j) {
        const T *col = p.l + j * p.rows;
        const T v = x1[j] / col[j];
        x1[j] = v;
        for (int64_t i = j + 1; i < p.cols; ++i)
            x1[i] -= mul(col[i], v);
        const T *low = col + p.cols;
        for (int64_t i = 0; i < off; ++i)
            t[i] += mul(low[i], v);
    }
    for (int64_t i = 0; i < off; ++i)
        x[below[i] - 1] -= t[i];
}

// Backward over a small panel: gather x(below) into t, then per column from the last,
// x1[j] = (x1[j] − L(j+1:, j)ᴴ·(x1; t)) / conj(L(j, j)).
template <class T, class I> void backward_small_one(const sweep_panel<T, I> &p, T *x, T *t)
{
    T *x1 = x + p.first;
    const int64_t off = p.rows - p.cols;
    const I *below = p.index + p.cols;
    if (p.cols == 1) {
        T s = x1[0];
        for (int64_t i = 0; i < off; ++i)
            s -= cmul(p.l[1 + i], x[below[i] - 1]);
        x1[0] = s / conj_if(p.l[0], true);
        return;
    }
    for (int64_t i = 0; i < off; ++i)
        t[i] = x[below[i] - 1];
    for (int64_t j = p.cols - 1; j >= 0; --j) {
        const T *col = p.l + j * p.rows;
        T s = x1[j] - dot_c(col + p.cols, t, off);
        for (int64_t i = j + 1; i < p.cols; ++i)
            s -= cmul(col[i], x1[i]);
        x1[j] = s / conj_if(col[j], true);
    }
}

template <class T, class I> void forward_large_one(const sweep_panel<T, I> &p, T *x, T *t)
{
    using blas = dense::openblas<T>;
    const int64_t cols = p.cols, ld = p.rows, off = p.rows - p.cols, one_step = 1;
    T *x1 = x + p.first;
    blas::trsv("L", "N", "N", &cols, p.l, &ld, x1, &one_step, 1, 1, 1);
    if (off == 0)
        return;
    const T one = 1, zero = 0;
    blas::gemv("N", &off, &cols, &one, p.l + cols, &ld, x1, &one_step, &zero, t, &one_step, 1);
    const I *below = p.index + cols;
    for (int64_t i = 0; i < off; ++i)
        x[below[i] - 1] -= t[i];
}

template <class T, class I> void backward_large_one(const sweep_panel<T, I> &p, T *x, T *t)
{
    using blas = dense::openblas<T>;
    const int64_t cols = p.cols, ld = p.rows, off = p.rows - p.cols, one_step = 1;
    T *x1 = x + p.first;
    if (off > 0) {
        const I *below = p.index + cols;
        for (int64_t i = 0; i < off; ++i)
            t[i] = x[below[i] - 1];
        const T minus_one = -1, one = 1;
        blas::gemv("C", &off, &cols, &minus_one, p.l + cols, &ld, t, &one_step, &one, x1, &one_step, 1);
    }
    blas::trsv("L", "C", "N", &cols, p.l, &ld, x1, &one_step, 1, 1, 1);
}

// ---- Several right-hand sides ----

// Right-hand sides a small panel takes at once: its rows of them, gathered row by row into t
// (rows × chunk), stay in the first-level cache while the panel passes over them.
inline constexpr int64_t small_chunk = 16;

// t(r, c) = x(index[r], c0 + c) for the panel's rows and kc right-hand sides from c0.
template <class T, class I> void gather_rows(const sweep_panel<T, I> &p, const rhs_block<T> &b, int64_t c0, int64_t kc, T *t)
{
    for (int64_t c = 0; c < kc; ++c) {
        const T *xc = b.x + (c0 + c) * b.ld;
        for (int64_t r = 0; r < p.rows; ++r)
            t[r * kc + c] = xc[p.index[r] - 1];
    }
}

// The inverse of gather_rows over the panel's first `rows` rows.
template <class T, class I>
void scatter_rows(const sweep_panel<T, I> &p, const rhs_block<T> &b, int64_t c0, int64_t kc, const T *t, int64_t rows)
{
    for (int64_t c = 0; c < kc; ++c) {
        T *xc = b.x + (c0 + c) * b.ld;
        for (int64_t r = 0; r < rows; ++r)
            xc[p.index[r] - 1] = t[r * kc + c];
    }
}

// Forward over a small panel for kc gathered right-hand sides (t row by row): each column of
// the panel updates every row below its own.
template <class T, class I> void forward_small_rows(const sweep_panel<T, I> &p, T *t, int64_t kc)
{
    for (int64_t j = 0; j < p.cols; ++j) {
        const T *col = p.l + j * p.rows;
        T *tj = t + j * kc;
        const T d = col[j];
        for (int64_t c = 0; c < kc; ++c)
            tj[c] /= d;
        for (int64_t i = j + 1; i < p.rows; ++i) {
            const T lij = col[i];
            T *ti = t + i * kc;
            for (int64_t c = 0; c < kc; ++c)
                ti[c] -= mul(lij, tj[c]);
        }
    }
}

// Backward over a small panel for kc gathered right-hand sides, from the last column.
template <class T, class I> void backward_small_rows(const sweep_panel<T, I> &p, T *t, int64_t kc)
{
    for (int64_t j = p.cols - 1; j >= 0; --j) {
        const T *col = p.l + j * p.rows;
        T *tj = t + j * kc;
        for (int64_t i = j + 1; i < p.rows; ++i) {
            const T lij = conj_if(col[i], true);
            const T *ti = t + i * kc;
            for (int64_t c = 0; c < kc; ++c)
                tj[c] -= mul(lij, ti[c]);
        }
        const T d = conj_if(col[j], true);
        for (int64_t c = 0; c < kc; ++c)
            tj[c] /= d;
    }
}

template <class T, class I> void forward_small_block(const sweep_panel<T, I> &p, const rhs_block<T> &b, T *t)
{
    for (int64_t c0 = 0; c0 < b.k; c0 += small_chunk) {
        const int64_t kc = std::min(small_chunk, b.k - c0);
        gather_rows(p, b, c0, kc, t);
        forward_small_rows(p, t, kc);
        scatter_rows(p, b, c0, kc, t, p.rows);
    }
}

template <class T, class I> void backward_small_block(const sweep_panel<T, I> &p, const rhs_block<T> &b, T *t)
{
    for (int64_t c0 = 0; c0 < b.k; c0 += small_chunk) {
        const int64_t kc = std::min(small_chunk, b.k - c0);
        gather_rows(p, b, c0, kc, t);
        backward_small_rows(p, t, kc);
        scatter_rows(p, b, c0, kc, t, p.cols);
    }
}

// X1 = L11⁻¹·X1 in place, T = L21·X1 (off × k), X(below) -= T.
template <class T, class I> void forward_large_block(const sweep_panel<T, I> &p, const rhs_block<T> &b, T *t)
{
    using blas = dense::openblas<T>;
    const int64_t cols = p.cols, ld = p.rows, off = p.rows - p.cols;
    T *x1 = b.x + p.first;
    const T one = 1, zero = 0;
    blas::trsm("L", "L", "N", "N", &cols, &b.k, &one, p.l, &ld, x1, &b.ld, 1, 1, 1, 1);
    if (off == 0)
        return;
    blas::gemm("N", "N", &off, &b.k, &cols, &one, p.l + cols, &ld, x1, &b.ld, &zero, t, &off, 1, 1);
    const I *below = p.index + cols;
    for (int64_t c = 0; c < b.k; ++c) {
        T *xc = b.x + c * b.ld;
        const T *tc = t + c * off;
        for (int64_t i = 0; i < off; ++i)
            xc[below[i] - 1] -= tc[i];
    }
}

// T = X(below), X1 -= L21ᴴ·T, X1 = L11⁻ᴴ·X1.
template <class T, class I> void backward_large_block(const sweep_panel<T, I> &p, const rhs_block<T> &b, T *t)
{
    using blas = dense::openblas<T>;
    const int64_t cols = p.cols, ld = p.rows, off = p.rows - p.cols;
    T *x1 = b.x + p.first;
    const T one = 1, minus_one = -1;
    if (off > 0) {
        const I *below = p.index + cols;
        for (int64_t c = 0; c < b.k; ++c) {
            const T *xc = b.x + c * b.ld;
            T *tc = t + c * off;
            for (int64_t i = 0; i < off; ++i)
                tc[i] = xc[below[i] - 1];
        }
        blas::gemm("C", "N", &cols, &b.k, &off, &minus_one, p.l + cols, &ld, t, &off, &one, x1, &b.ld, 1, 1);
    }
    blas::trsm("L", "L", "C", "N", &cols, &b.k, &one, p.l, &ld, x1, &b.ld, 1, 1, 1, 1);
}

// ---- Sweeps ----

// t: largest_panel_rows(f)·k values.
template <class T, class I> void forward_sweep(const sweep_factor<T, I> &f, const rhs_block<T> &b, T *t)
{
    for (I s = 0; s < f.nsuper; ++s) {
        const sweep_panel<T, I> p = panel_of(f, s);
        const bool small = small_panel(p);
        if (b.k == 1)
            small ? forward_small_one(p, b.x, t) : forward_large_one(p, b.x, t);
        else
            small ? forward_small_block(p, b, t) : forward_large_block(p, b, t);
    }
}

template <class T, class I> void backward_sweep(const sweep_factor<T, I> &f, const rhs_block<T> &b, T *t)
{
    for (I s = f.nsuper - 1; s >= 0; --s) {
        const sweep_panel<T, I> p = panel_of(f, s);
        const bool small = small_panel(p);
        if (b.k == 1)
            small ? backward_small_one(p, b.x, t) : backward_large_one(p, b.x, t);
        else
            small ? backward_small_block(p, b, t) : backward_large_block(p, b, t);
    }
}

enum class sweep_direction { forward, backward };

// The exported kernels: error 0, 1 (no work block, or no memory), or 2 (a frame of other
// value or index types, or a block narrower than the factor).
template <sweep_direction D, class T, class I>
void sweep_entry(const zel_pds_frame *frame, int64_t nrhs, T *work, int64_t ldw, int64_t *error)
{
    if (error == nullptr)
        return;
    if (frame == nullptr || (nrhs > 0 && frame->n > 0 && work == nullptr)) {
        *error = 1;
        return;
    }
    if (!pds::frame_holds<T, I>(*frame) || nrhs < 0 || frame->n < 0 || (nrhs > 1 && ldw < frame->n)) {
        *error = 2;
        return;
    }
    *error = 0;
    if (nrhs == 0 || frame->n == 0 || frame->nsuper <= 0)
        return;
    const sweep_factor<T, I> f = factor_of<T, I>(*frame);
    const auto count = checked_mul(largest_panel_rows(f), nrhs);
    scratch_array<T> t;
    if (count)
        t = scratch_array<T>(size_t(*count), 128);
    if (!t) {
        *error = 1;
        return;
    }
    const rhs_block<T> b{work, std::max<int64_t>(ldw, frame->n), nrhs};
    if constexpr (D == sweep_direction::forward)
        forward_sweep(f, b, t.get());
    else
        backward_sweep(f, b, t.get());
}

} // namespace zel::solver
