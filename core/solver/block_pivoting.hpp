// Factorisations of one supernode's panel with pivots confined to its diagonal block: LU with
// row interchanges, and L·D·Lᵀ (Lᴴ for Hermitian values) with Bunch–Kaufman 1×1/2×2 pivots or
// with 1×1 diagonal pivots. A pivot below the rule's threshold is replaced by one of that size
// (its sign or phase kept), so that the factorisation always finishes: refinement then repairs
// the perturbation.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "../dense/openblas.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

template <class T> struct pivot_rule {
    real_t<T> tiny = 0;   // pivots of smaller magnitude are replaced
    bool replace = true;  // false: no replacement; a zero pivot fails
    bool hermitian = false;
};

// What the pivots of a factorisation were: replaced ones, and the inertia of D for the real
// symmetric and Hermitian types (a replaced pivot counts as zero; a 2×2 block as one of each).
struct pivot_counts {
    int64_t replaced = 0, positive = 0, negative = 0, zero = 0, two_by_two = 0;
};

// The panel: rows × cols, column-major, leading dimension rows, the diagonal block on top.
template <class T> struct dense_panel {
    T *a;
    int64_t rows, cols;
    T &operator()(int64_t i, int64_t j) const { return a[i + j * rows]; }
};

namespace detail {

template <class T> real_t<T> magnitude(T v) { return std::abs(v); }

// Makes a pivot usable: a tiny one is replaced. False when it is zero and replacement is off.
template <class T> bool settle_pivot(T &pivot, const pivot_rule<T> &rule, pivot_counts &counts)
{
    if (rule.hermitian)
        pivot = T(std::real(pivot));
    const real_t<T> size = magnitude(pivot);
    if (size >= rule.tiny && size != 0)
        return true;
    if (!rule.replace)
        return size != 0;
    pivot = size == 0 ? T(rule.tiny) : pivot * (rule.tiny / size);
    ++counts.replaced;
    return true;
}

template <class T> void count_sign(T pivot, bool replaced, pivot_counts &counts)
{
    if (replaced)
        ++counts.zero;
    else if (std::real(pivot) > 0)
        ++counts.positive;
    else
        ++counts.negative;
}

// Unblocked LU of block columns j0 … j0+jb−1 over the block's rows j0 … cols−1; interchanges
// swap whole block rows. Returns 0, or the 1-based column of a zero pivot left unreplaced.
template <class T, class I>
int64_t lu_columns(const dense_panel<T> &p, int64_t j0, int64_t jb, I *pivots, const pivot_rule<T> &rule,
                   pivot_counts &counts)
{
    const int64_t nc = p.cols;
    for (int64_t j = j0; j < j0 + jb; ++j) {
        int64_t best = j;
        for (int64_t i = j + 1; i < nc; ++i)
            if (magnitude(p(i, j)) > magnitude(p(best, j)))
                best = i;
        if (best != j)
            for (int64_t c = 0; c < nc; ++c)
                std::swap(p(j, c), p(best, c));
        pivots[j] = I(best + 1);
        if (!settle_pivot(p(j, j), rule, counts))
            return j + 1;
        const T inverse = T(1) / p(j, j);
        for (int64_t i = j + 1; i < nc; ++i)
            p(i, j) *= inverse;
        for (int64_t c = j + 1; c < j0 + jb; ++c) {
            const T u = p(j, c);
            for (int64_t i = j + 1; i < nc; ++i)
                p(i, c) -= p(i, j) * u;
        }
    }
    return 0;
}

} // namespace detail

// P·A11 = L11·U11 in place, blocked: unblocked panels of 32 columns, then the block row of U
// and the trailing square through the dense kernels.
template <class T, class I>
int64_t block_lu(const dense_panel<T> &p, I *pivots, const pivot_rule<T> &rule, pivot_counts &counts)
{
    using blas = dense::openblas<T>;
    constexpr int64_t width = 32;
    const int64_t nc = p.cols, ld = p.rows;
    const T one = 1, minus_one = -1;
    for (int64_t j0 = 0; j0 < nc; j0 += width) {
        const int64_t jb = std::min(width, nc - j0), rest = nc - j0 - jb;
        if (const int64_t bad = detail::lu_columns(p, j0, jb, pivots, rule, counts); bad != 0)
            return bad;
        if (rest == 0)
            continue;
        blas::trsm("L", "L", "N", "U", &jb, &rest, &one, &p(j0, j0), &ld, &p(j0, j0 + jb), &ld, 1, 1, 1, 1);
        blas::gemm("N", "N", &rest, &rest, &jb, &minus_one, &p(j0 + jb, j0), &ld, &p(j0, j0 + jb), &ld, &one,
                   &p(j0 + jb, j0 + jb), &ld, 1, 1);
    }
    return 0;
}

// LU of a supernode: the block, then L21 = A21·U11⁻¹ and U12ᵀ = (P·A12)ᵀ·L11⁻ᵀ, where ut
// holds A12ᵀ (rows − cols by cols, leading dimension rows − cols).
template <class T, class I>
int64_t lu_supernode(const dense_panel<T> &p, T *ut, I *pivots, const pivot_rule<T> &rule, pivot_counts &counts)
{
    using blas = dense::openblas<T>;
    if (const int64_t bad = block_lu(p, pivots, rule, counts); bad != 0)
        return bad;
    const int64_t nc = p.cols, ld = p.rows, below = p.rows - p.cols;
    if (below == 0)
        return 0;
    const T one = 1;
    blas::trsm("R", "U", "N", "N", &below, &nc, &one, p.a, &ld, p.a + nc, &ld, 1, 1, 1, 1);
    for (int64_t k = 0; k < nc; ++k)
        if (const int64_t q = int64_t(pivots[k]) - 1; q != k)
            std::swap_ranges(ut + k * below, ut + (k + 1) * below, ut + q * below);
    blas::trsm("R", "L", "T", "U", &below, &nc, &one, p.a, &ld, ut, &below, 1, 1, 1, 1);
    return 0;
}

namespace detail {

// Exchanges rows and columns a < b of the symmetric block held in its lower triangle, from
// column `from` on, and columns a and b of the rows below the block.
template <class T> void symmetric_swap(const dense_panel<T> &p, int64_t from, int64_t a, int64_t b, bool herm)
{
    for (int64_t i = b + 1; i < p.rows; ++i)
        std::swap(p(i, a), p(i, b));
    for (int64_t j = a + 1; j < b; ++j) {
        const T t = p(j, a);
        p(j, a) = conj_if(p(b, j), herm);
        p(b, j) = conj_if(t, herm);
    }
    p(b, a) = conj_if(p(b, a), herm);
    std::swap(p(a, a), p(b, b));
    for (int64_t j = from; j < a; ++j)
        std::swap(p(a, j), p(b, j));
}

// A 1×1 pivot at k: the trailing columns of the block (all rows below them) lose the pivot
// column's contribution, and the column becomes L's.
template <class T> void eliminate_one(const dense_panel<T> &p, int64_t k, bool herm)
{
    const T r = T(1) / p(k, k);
    for (int64_t j = k + 1; j < p.cols; ++j) {
        const T t = conj_if(p(j, k), herm) * r;
        for (int64_t i = j; i < p.rows; ++i)
            p(i, j) -= p(i, k) * t;
        if (herm)
            p(j, j) = T(std::real(p(j, j)));
    }
    for (int64_t i = k + 1; i < p.rows; ++i)
        p(i, k) *= r;
}

// A 2×2 pivot at k, k+1 (D = [d11 ē; e d22], ē = e for complex symmetric values); saved holds
// 2·cols values for the block rows' original pivot columns.
template <class T> void eliminate_two(const dense_panel<T> &p, int64_t k, bool herm, T *saved)
{
    const T d11 = p(k, k), d22 = p(k + 1, k + 1), e = p(k + 1, k), ec = conj_if(e, herm);
    const T det = d11 * d22 - ec * e;
    const T i11 = d22 / det, i12 = -ec / det, i21 = -e / det, i22 = d11 / det;
    for (int64_t j = k + 2; j < p.cols; ++j) {
        saved[2 * j] = conj_if(p(j, k), herm);
        saved[2 * j + 1] = conj_if(p(j, k + 1), herm);
    }
    for (int64_t i = k + 2; i < p.rows; ++i) {
        const T w1 = p(i, k), w2 = p(i, k + 1);
        p(i, k) = w1 * i11 + w2 * i21;
        p(i, k + 1) = w1 * i12 + w2 * i22;
    }
    for (int64_t j = k + 2; j < p.cols; ++j) {
        const T s1 = saved[2 * j], s2 = saved[2 * j + 1];
        for (int64_t i = j; i < p.rows; ++i)
            p(i, j) -= p(i, k) * s1 + p(i, k + 1) * s2;
        if (herm)
            p(j, j) = T(std::real(p(j, j)));
    }
}

template <class T> real_t<T> diagonal_size(const dense_panel<T> &p, int64_t i, bool herm)
{
    return herm ? std::abs(std::real(p(i, i))) : magnitude(p(i, i));
}

// The Bunch–Kaufman choice at column k among the block's rows: the pivot row and 1 or 2.
template <class T>
std::pair<int64_t, int> bunch_kaufman_choice(const dense_panel<T> &p, int64_t k, const pivot_rule<T> &rule)
{
    const bool herm = rule.hermitian;
    using R = real_t<T>;
    const R alpha = R((1 + std::sqrt(17.0)) / 8);
    const R diagonal = diagonal_size(p, k, herm);
    int64_t imax = k;
    R colmax = 0;
    for (int64_t i = k + 1; i < p.cols; ++i)
        if (magnitude(p(i, k)) > colmax)
            colmax = magnitude(p(i, k)), imax = i;
    if (diagonal >= alpha * colmax || colmax < rule.tiny)
        return {k, 1}; // a tiny column: its pivot is replaced
    R rowmax = 0;
    for (int64_t j = k; j < imax; ++j)
        rowmax = std::max(rowmax, magnitude(p(imax, j)));
    for (int64_t i = imax + 1; i < p.cols; ++i)
        rowmax = std::max(rowmax, magnitude(p(i, imax)));
    if (diagonal * rowmax >= alpha * colmax * colmax)
        return {k, 1};
    if (diagonal_size(p, imax, herm) >= alpha * rowmax)
        return {imax, 1};
    return {imax, 2};
}

// Settles the 1×1 pivot at k and counts it.
template <class T> bool one_by_one(const dense_panel<T> &p, int64_t k, const pivot_rule<T> &rule, pivot_counts &c)
{
    const int64_t before = c.replaced;
    if (!settle_pivot(p(k, k), rule, c))
        return false;
    count_sign(p(k, k), c.replaced != before, c);
    eliminate_one(p, k, rule.hermitian);
    return true;
}

} // namespace detail

// L·D·Lᵀ (Lᴴ) of a supernode with Bunch–Kaufman pivots inside its block, in the layout of the
// reference lower-triangle routines (pivots in their convention, relative to the block);
// saved: 2·cols values. Returns 0, or the 1-based column of a zero pivot left unreplaced.
template <class T, class I>
int64_t bunch_kaufman_supernode(const dense_panel<T> &p, I *pivots, const pivot_rule<T> &rule, pivot_counts &counts,
                                T *saved)
{
    for (int64_t k = 0; k < p.cols;) {
        const auto [row, step] = detail::bunch_kaufman_choice(p, k, rule);
        const int64_t kk = k + step - 1;
        if (row != kk)
            detail::symmetric_swap(p, k, kk, row, rule.hermitian);
        if (step == 1) {
            pivots[k] = I(row + 1);
            if (!detail::one_by_one(p, k, rule, counts))
                return k + 1;
        } else {
            pivots[k] = pivots[k + 1] = I(-(row + 1));
            detail::eliminate_two(p, k, rule.hermitian, saved);
            ++counts.two_by_two, ++counts.positive, ++counts.negative;
        }
        k += step;
    }
    return 0;
}

// L·D·Lᵀ (Lᴴ) of a supernode with 1×1 pivots, the largest remaining diagonal of the block
// first, interchanges applied to the whole block rows (the order of the reference LU's pivots);
// d receives D.
template <class T, class I>
int64_t diagonal_pivoting_supernode(const dense_panel<T> &p, I *pivots, T *d, const pivot_rule<T> &rule,
                                    pivot_counts &counts)
{
    for (int64_t k = 0; k < p.cols; ++k) {
        int64_t best = k;
        for (int64_t i = k + 1; i < p.cols; ++i)
            if (detail::diagonal_size(p, i, rule.hermitian) > detail::diagonal_size(p, best, rule.hermitian))
                best = i;
        if (best != k)
            detail::symmetric_swap(p, 0, k, best, rule.hermitian);
        pivots[k] = I(best + 1);
        if (!detail::one_by_one(p, k, rule, counts))
            return k + 1;
        d[k] = p(k, k);
    }
    return 0;
}

} // namespace zel::solver
