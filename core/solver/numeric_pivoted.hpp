// Supernodal left-looking factorisations with pivots inside the diagonal blocks: L·U of the
// unsymmetric types (U12 kept transposed beside the panels) and L·D·Lᵀ (Lᴴ) of the symmetric
// indefinite ones. The sweep over supernodes and the descendant lists are the Cholesky's; what
// differs is each descendant's update and each supernode's own factorisation.
#pragma once

#include <cstdint>
#include <optional>

#include "block_pivoting.hpp"
#include "numeric.hpp"

namespace zel::solver {

// Where a pivoted factorisation writes, besides the panels (all 1-based as the solve reads them;
// the arrays a kind does not use are null).
template <class T, class I> struct pivoted_factor {
    T *l_values;
    T *u_values;       // LU: U12ᵀ of each supernode
    const I *u_col_ptr; // LU: n + 1
    I *row_pivots;     // LU and diagonal pivoting
    I *col_pivots;     // LU (identity) and diagonal pivoting (the row pivots again)
    I *bk_pivots;      // Bunch–Kaufman
    T *diagonal;       // diagonal pivoting: D
};

enum class pivoted_kind { lu, bunch_kaufman, diagonal };

// The rows × cols panel and, for LU, the (rows − cols) × cols block of U12ᵀ.
template <class T, class I> struct pivoted_node {
    supernode_view<T, I> l;
    T *ut;
    int64_t below;
};

template <class T, class I> pivoted_node<T, I> pivoted_at(const symbolic_factor<I> &f, const pivoted_factor<T, I> &x, I s)
{
    const supernode_view<T, I> l = supernode_at(f, x.l_values, s);
    T *ut = x.u_values ? x.u_values + (x.u_col_ptr[l.first] - 1) : nullptr;
    return {l, ut, int64_t(l.rows - l.cols)};
}

// Subtracts from s the update of descendant d (rows at … end−1 of d lie in s's columns): the
// L part L_d(at:, :)·U_d(:, at:end) into s's panel, the U part L_d(at:end, :)·U_d(:, end:) into
// s's U12ᵀ.
template <class T, class I>
void lu_update(const pivoted_node<T, I> &s, const pivoted_node<T, I> &d, I at, I end, T *c, const I *relative)
{
    using blas = dense::openblas<T>;
    const int64_t m = d.l.rows - at, k = end - at, w = d.l.cols, ld = d.l.rows, ldu = d.below;
    const T one = 1, zero = 0;
    const T *lx = d.l.panel + at, *ux = d.ut + (at - d.l.cols);
    const I *rows = d.l.index + at;
    blas::gemm("N", "T", &m, &k, &w, &one, lx, &ld, ux, &ldu, &zero, c, &m, 1, 1);
    for (int64_t jj = 0; jj < k; ++jj) {
        T *column = s.l.panel + size_t(rows[jj] - 1 - s.l.first) * s.l.rows;
        for (int64_t i = 0; i < m; ++i)
            column[relative[rows[i] - 1]] -= c[i + jj * m];
    }
    const int64_t beyond = m - k;
    if (beyond == 0)
        return;
    blas::gemm("N", "T", &beyond, &k, &w, &one, ux + k, &ldu, lx, &ld, &zero, c, &beyond, 1, 1);
    for (int64_t jj = 0; jj < k; ++jj) {
        T *column = s.ut + size_t(rows[jj] - 1 - s.l.first) * s.below - s.l.cols;
        for (int64_t i = 0; i < beyond; ++i)
            column[relative[rows[k + i] - 1]] -= c[i + jj * beyond];
    }
}

// w = L_d(at:, :)·D_d, D_d of 1×1 blocks and (where pivots marks them) 2×2 blocks.
template <class T, class I> void times_d(const supernode_view<T, I> &d, const I *pivots, I at, bool herm, T *w)
{
    const int64_t m = d.rows - at, ld = d.rows;
    const T *l = d.panel + at;
    for (int64_t t = 0; t < d.cols; ++t) {
        const T *p = d.panel + t * (ld + 1); // D(t, t)
        if (pivots != nullptr && pivots[t] < 0) {
            const T d11 = p[0], e = p[1], d22 = p[ld + 1], ec = conj_if(e, herm);
            for (int64_t i = 0; i < m; ++i) {
                const T a = l[i + t * ld], b = l[i + (t + 1) * ld];
                w[i + t * m] = a * d11 + b * e;
                w[i + (t + 1) * m] = a * ec + b * d22;
            }
            ++t;
        } else {
            for (int64_t i = 0; i < m; ++i)
                w[i + t * m] = l[i + t * ld] * p[0];
        }
    }
}

// The update L_d(at:, :)·D_d·L_d(at:end, :)ᵀ (ᴴ) of descendant d, subtracted from s's lower part.
template <class T, class I>
void ldlt_update(const supernode_view<T, I> &s, const supernode_view<T, I> &d, const I *pivots, I at, I end,
                 bool herm, T *buffers, const I *relative)
{
    using blas = dense::openblas<T>;
    const int64_t m = d.rows - at, k = end - at, w = d.cols, ld = d.rows;
    T *wd = buffers, *c = buffers + m * w;
    const T one = 1, zero = 0;
    times_d(d, pivots, at, herm, wd);
    blas::gemm("N", herm ? "C" : "T", &m, &k, &w, &one, wd, &m, d.panel + at, &ld, &zero, c, &m, 1, 1);
    scatter_update(s, d, at, I(k), c, relative);
}

// Factors supernode s once its updates are in; returns 0 or the block's 1-based failing column.
template <class T, class I>
int64_t factor_pivoted_node(const pivoted_node<T, I> &s, const pivoted_factor<T, I> &x, pivoted_kind kind,
                            const pivot_rule<T> &rule, pivot_counts &counts, T *scratch)
{
    const dense_panel<T> p{s.l.panel, s.l.rows, s.l.cols};
    const I f = s.l.first;
    switch (kind) {
    case pivoted_kind::lu:
        for (I k = 0; k < s.l.cols; ++k)
            x.col_pivots[f + k] = k + 1;
        return lu_supernode(p, s.ut, x.row_pivots + f, rule, counts);
    case pivoted_kind::bunch_kaufman:
        return bunch_kaufman_supernode(p, x.bk_pivots + f, rule, counts, scratch);
    default:
        if (const int64_t bad = diagonal_pivoting_supernode(p, x.row_pivots + f, x.diagonal + f, rule, counts))
            return bad;
        std::copy(x.row_pivots + f, x.row_pivots + f + s.l.cols, x.col_pivots + f);
        return 0;
    }
}

// The whole factorisation over values already scattered into the panels (and, for LU, into
// U12ᵀ). Returns a sparse status; on a zero pivot left unreplaced, failed_column receives the
// factored column (0-based) and the status is INVALID_VALUE.
template <class T, class I>
int numeric_pivoted(const symbolic_factor<I> &f, const pivoted_factor<T, I> &x, pivoted_kind kind,
                    const pivot_rule<T> &rule, pivot_counts &counts, int64_t &failed_column)
{
    failed_column = -1;
    update_links<I> u;
    scratch_array<T> buffer;
    if (int status = prepare_links(f, u); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    const auto twice = checked_mul(f.stats.max_panel, int64_t(2));
    const auto size = twice ? checked_add(*twice, 2 * int64_t(f.n)) : std::nullopt;
    if (!size || !allocate_large(buffer, *size))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    const I *bk = kind == pivoted_kind::bunch_kaufman ? x.bk_pivots : nullptr;
    for (I id = 0; id < f.nsuper; ++id) {
        const pivoted_node<T, I> s = pivoted_at(f, x, id);
        for_each_descendant(f, x.l_values, u, s.l, id, [&](const supernode_view<T, I> &d, I d_id, I at, I end) {
            if (kind == pivoted_kind::lu)
                lu_update(s, pivoted_at(f, x, d_id), at, end, buffer.get(), u.relative.get());
            else
                ldlt_update(s.l, d, bk ? bk + d.first : nullptr, at, end, rule.hermitian, buffer.get(),
                            u.relative.get());
        });
        if (const int64_t bad = factor_pivoted_node(s, x, kind, rule, counts, buffer.get()); bad != 0) {
            failed_column = s.l.first + bad - 1;
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
        }
        u.next_row[id] = s.l.cols;
        link_forward(u, s.l, id);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::solver
