// Solves with one diagonal block factored by Bunch–Kaufman pivoting in the lower form of the
// reference ?sytrf: D's 1×1 and 2×2 blocks on the diagonal and first subdiagonal, the unit
// multipliers below them, ipiv 1-based and relative to the block (p > 0: rows k and p
// exchanged; −p at k and k+1: a 2×2 pivot, rows k+1 and p exchanged). The solve with
// L·D·Lᵀ (L·D·Lᴴ) comes in three steps so that a supernodal sweep can update the rows below
// the block between them: the forward half L⁻¹ (interchanges included), D⁻¹, and the
// backward half L⁻ᵀ (L⁻ᴴ). Right-hand sides are column-major.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// How the block's factor is transposed: Lᵀ (real and complex symmetric) or Lᴴ with a Hermitian D.
enum class bk_symmetry { symmetric, hermitian };

// The factored block: n × n at leading dimension lda, with its pivots.
template <class T, class P> struct bk_block {
    int64_t n;
    const T *a;
    int64_t lda;
    const P *ipiv;

    T at(int64_t i, int64_t j) const { return a[i + j * lda]; }
};

// nrhs columns of the block's n rows at leading dimension ld, and the row operations the
// forward and backward halves are written in (a sweep supplies the same operations on rows it
// has gathered).
template <class T> struct bk_rhs {
    T *b;
    int64_t ld, nrhs;

    T *col(int64_t c) const { return b + c * ld; }

    void swap(int64_t i, int64_t j) const
    {
        if (i != j)
            for (int64_t c = 0; c < nrhs; ++c)
                std::swap(col(c)[i], col(c)[j]);
    }

    // Rows i0 … i1−1 −= Σ_q l[q][i]·row(k + q), q < width (1 or 2).
    void eliminate(const T *const *l, int width, int64_t k, int64_t i0, int64_t i1) const
    {
        for (int64_t c = 0; c < nrhs; ++c) {
            T *x = col(c);
            const T y0 = x[k], y1 = width == 2 ? x[k + 1] : T(0);
            if (width == 2)
                for (int64_t i = i0; i < i1; ++i)
                    x[i] -= l[0][i] * y0 + l[1][i] * y1;
            else
                for (int64_t i = i0; i < i1; ++i)
                    x[i] -= l[0][i] * y0;
        }
    }

    // Row j −= Σ_i op(l[i])·row(i) over i0 … i1−1, op conjugating when Conj.
    template <bool Conj> void subtract_dot(const T *l, int64_t j, int64_t i0, int64_t i1) const
    {
        for (int64_t c = 0; c < nrhs; ++c) {
            T *x = col(c), s(0);
            for (int64_t i = i0; i < i1; ++i)
                s += conj_if(l[i], Conj) * x[i];
            x[j] -= s;
        }
    }
};

// Whether ipiv describes 1×1 and 2×2 pivots of an n × n block: every target in 1 … n, and
// every negative entry one of an equal pair that starts a 2×2 block.
template <class P> bool bk_pivots_valid(const P *ipiv, int64_t n)
{
    for (int64_t k = 0; k < n;) {
        const int64_t p = ipiv[k];
        if (p > 0 && p <= n) {
            k += 1;
        } else if (p < 0 && -p <= n && k + 1 < n && ipiv[k + 1] == ipiv[k]) {
            k += 2;
        } else {
            return false;
        }
    }
    return true;
}

// x ← L⁻¹·x: at each pivot the interchange, then the multipliers of its column(s). Rows: any
// type with bk_rhs's row operations.
template <class T, class P, class Rows> void bk_forward(const bk_block<T, P> &a, const Rows &x)
{
    for (int64_t k = 0; k < a.n;) {
        const bool pair = a.ipiv[k] < 0;
        const int64_t width = pair ? 2 : 1, p = (pair ? -a.ipiv[k] : a.ipiv[k]) - 1;
        x.swap(k + width - 1, p);
        const T *l[2] = {a.a + k * a.lda, a.a + (k + 1) * a.lda};
        x.eliminate(l, int(width), k, k + width, a.n);
        k += width;
    }
}

// x ← D⁻¹·x. A 2×2 block [d0 e'; e d1] (e' = e, or conj(e) when Hermitian) is solved after
// dividing its rows by e' and e, which keeps the arithmetic in the scale of e, the block's
// largest entry when the pivot was chosen.
template <bk_symmetry S, class T, class P> void bk_diagonal(const bk_block<T, P> &a, const bk_rhs<T> &x)
{
    constexpr bool herm = S == bk_symmetry::hermitian;
    for (int64_t k = 0; k < a.n;) {
        if (a.ipiv[k] > 0) {
            const T d = herm ? T(std::real(a.at(k, k))) : a.at(k, k);
            for (int64_t c = 0; c < x.nrhs; ++c)
                x.col(c)[k] /= d;
            k += 1;
            continue;
        }
        const T e = a.at(k + 1, k), e_up = conj_if(e, herm);
        const T d0 = a.at(k, k) / e_up, d1 = a.at(k + 1, k + 1) / e;
        const T denominator = d0 * d1 - T(1);
        for (int64_t c = 0; c < x.nrhs; ++c) {
            T *b = x.col(c);
            const T u = b[k] / e_up, v = b[k + 1] / e;
            b[k] = (d1 * u - v) / denominator;
            b[k + 1] = (d0 * v - u) / denominator;
        }
        k += 2;
    }
}

// x ← L⁻ᵀ·x (L⁻ᴴ·x): from the last pivot back, the products with the multipliers below it,
// then its interchange.
template <bk_symmetry S, class T, class P, class Rows> void bk_backward(const bk_block<T, P> &a, const Rows &x)
{
    constexpr bool herm = S == bk_symmetry::hermitian;
    for (int64_t k = a.n - 1; k >= 0;) {
        const bool pair = a.ipiv[k] < 0;
        const int64_t first = pair ? k - 1 : k, p = (pair ? -a.ipiv[k] : a.ipiv[k]) - 1;
        for (int64_t j = first; j <= k; ++j)
            x.template subtract_dot<herm>(a.a + j * a.lda, j, k + 1, a.n);
        x.swap(k, p);
        k = first - 1;
    }
}

// The exported routines' argument checks, in the reference routines' order: 0, or minus the
// position of the first bad argument. Only the lower form ("L") is provided.
template <class T, class P>
int64_t bk_arguments(const char *uplo, int64_t n, int64_t nrhs, const T *a, int64_t lda, const P *ipiv,
                     const T *b, int64_t ldb)
{
    if (uplo == nullptr || (*uplo != 'L' && *uplo != 'l'))
        return -1;
    if (n < 0)
        return -2;
    if (nrhs < 0)
        return -3;
    if (n > 0 && a == nullptr)
        return -4;
    if (lda < std::max<int64_t>(1, n))
        return -5;
    if (n > 0 && (ipiv == nullptr || !bk_pivots_valid(ipiv, n)))
        return -6;
    if (n > 0 && nrhs > 0 && b == nullptr)
        return -7;
    if (ldb < std::max<int64_t>(1, n))
        return -8;
    return 0;
}

// The three steps of the block solve behind the exported routines.
enum class bk_step { forward, diagonal, backward };

template <bk_step Step, bk_symmetry S, class T>
void bk_entry(const char *uplo, const int64_t *n, const int64_t *nrhs, const T *a, const int64_t *lda,
              const int64_t *ipiv, T *b, const int64_t *ldb, int64_t *info)
{
    if (info == nullptr)
        return;
    if (n == nullptr || nrhs == nullptr || lda == nullptr || ldb == nullptr) {
        *info = n == nullptr ? -2 : nrhs == nullptr ? -3 : lda == nullptr ? -5 : -8;
        return;
    }
    if ((*info = bk_arguments(uplo, *n, *nrhs, a, *lda, ipiv, b, *ldb)) != 0 || *n == 0 || *nrhs == 0)
        return;
    const bk_block<T, int64_t> block{*n, a, *lda, ipiv};
    const bk_rhs<T> x{b, *ldb, *nrhs};
    if constexpr (Step == bk_step::forward)
        bk_forward(block, x);
    else if constexpr (Step == bk_step::diagonal)
        bk_diagonal<S>(block, x);
    else
        bk_backward<S>(block, x);
}

} // namespace zel::solver
