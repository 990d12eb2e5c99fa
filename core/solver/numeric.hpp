// Supernodal numeric Cholesky factorisation, left-looking: each supernode gathers the updates
// of the descendants that touch its columns (a rank-k product into a buffer, scattered through
// a relative map), then factors its diagonal block and solves for the rows below it. Works
// in place in the factor's panels; real symmetric and complex Hermitian values alike.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "../dense/openblas.hpp"
#include "kept_matrix.hpp"
#include "symbolic.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// A supernode's place in the factor: first column, columns, rows, panel and row list.
template <class T, class I> struct supernode_view {
    I first, cols, rows;
    T *panel;       // rows × cols, leading dimension rows
    const I *index; // rows entries, 1-based
};

template <class T, class I> supernode_view<T, I> supernode_at(const symbolic_factor<I> &f, T *values, I s)
{
    const I first = f.super_ptr[s] - 1;
    const I rows = f.col_ptr[size_t(first) + 1] - f.col_ptr[size_t(first)];
    return {first, f.super_ptr[s + 1] - 1 - first, rows, values + (f.col_ptr[size_t(first)] - 1),
            f.row_index.get() + (f.row_ptr[s] - 1)};
}

// Where the kept values go: the panels, and the blocks of U12ᵀ of an LU (u null otherwise, when
// a negative destination is a mirrored panel position, conjugated for Hermitian values).
template <class T> struct value_targets {
    T *l;
    int64_t l_count;
    T *u;
    int64_t u_count;
    bool conjugate_mirror;
    const double *row_scale, *col_scale; // D_r·A·D_c by the kept numbering, or null
};

// The factor's values before factorising: zero, then each kept value at its destination.
template <class T, class I> void scatter_values(const kept_matrix<I> &m, const T *values, const value_targets<T> &to)
{
    std::fill(to.l, to.l + to.l_count, T(0));
    if (to.u)
        std::fill(to.u, to.u + to.u_count, T(0));
    for (I i = 0; i < m.n; ++i)
        for (I p = m.row_ptr[i]; p < m.row_ptr[size_t(i) + 1]; ++p) {
            const int64_t at = m.destination[size_t(p)];
            const T v = to.row_scale ? values[size_t(p)] * real_t<T>(to.row_scale[i] * to.col_scale[m.col_idx[size_t(p)]])
                                     : values[size_t(p)];
            if (at >= 0)
                to.l[at] += v;
            else if (at < -1 && to.u)
                to.u[-(at + 2)] += v;
            else if (at < -1)
                to.l[-(at + 2)] += conj_if(v, to.conjugate_mirror);
        }
}

// Bookkeeping of the left-looking sweep: for each finished supernode d, the position in its
// row list of the next row still to be used, and the list of supernodes waiting for s.
template <class I> struct update_links {
    scratch_array<I> next_row; // per supernode
    scratch_array<I> head;     // per supernode: first descendant waiting for it, -1 none
    scratch_array<I> next;     // per supernode: the next one in the same list
    scratch_array<I> of_column;
    scratch_array<I> relative; // per factored row: its position in the current supernode's rows
};

template <class I> int prepare_links(const symbolic_factor<I> &f, update_links<I> &u)
{
    if (!allocate(u.next_row, f.nsuper) || !allocate(u.head, f.nsuper) || !allocate(u.next, f.nsuper) ||
        !allocate(u.of_column, f.n) || !allocate(u.relative, f.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(u.head.get(), u.head.get() + f.nsuper, I(-1));
    supernode_of_columns(f, u.of_column.get());
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Files supernode d under the supernode holding its next row, if any is left.
template <class T, class I> void link_forward(update_links<I> &u, const supernode_view<T, I> &d, I id)
{
    const I at = u.next_row[id];
    if (at >= d.rows)
        return;
    const I target = u.of_column[d.index[at] - 1];
    u.next[id] = u.head[target];
    u.head[target] = id;
}

// C = X·Xᴴ over the rows of d from `at` on, where X's first k rows lie in s's columns:
// the lower k × k square by a rank-k update, the rows below by a product.
template <class T, class I> void descendant_product(const supernode_view<T, I> &d, I at, I k, T *c)
{
    using R = real_t<T>;
    using blas = dense::openblas<T>;
    const int64_t m = d.rows - at, kk = k, w = d.cols, ld = d.rows;
    const T *x = d.panel + at;
    const R one = 1, zero = 0;
    blas::herk("L", "N", &kk, &w, &one, x, &ld, &zero, c, &m, 1, 1);
    if (m > kk) {
        const int64_t below = m - kk;
        const T t_one = 1, t_zero = 0;
        blas::gemm("N", "C", &below, &kk, &w, &t_one, x + kk, &ld, x, &ld, &t_zero, c + kk, &m, 1, 1);
    }
}

// Subtracts C (rows of d from `at`, k columns, lower part of the square) from s's panel.
template <class T, class I>
void scatter_update(const supernode_view<T, I> &s, const supernode_view<T, I> &d, I at, I k, const T *c,
                    const I *relative)
{
    const I m = d.rows - at;
    const I *rows = d.index + at;
    for (I jj = 0; jj < k; ++jj) {
        T *column = s.panel + size_t(rows[jj] - 1 - s.first) * s.rows;
        const T *from = c + size_t(jj) * m;
        for (I i = jj; i < m; ++i)
            column[relative[rows[i] - 1]] -= from[i];
    }
}

// Calls apply(d, at, end) for every descendant d waiting for supernode s (id), where rows
// at … end−1 of d lie in s's columns, with u.relative mapping each row of s to its position;
// then refiles d under the supernode of its next row.
template <class T, class I, class Apply>
void for_each_descendant(const symbolic_factor<I> &f, T *values, update_links<I> &u, const supernode_view<T, I> &s,
                         I id, Apply apply)
{
    for (I r = 0; r < s.rows; ++r)
        u.relative[s.index[r] - 1] = r;
    const I last = s.first + s.cols; // first column beyond s, 0-based
    I d_id = u.head[id];
    u.head[id] = -1;
    while (d_id != -1) {
        const I following = u.next[d_id];
        const supernode_view<T, I> d = supernode_at(f, values, d_id);
        const I at = u.next_row[d_id];
        I end = at;
        while (end < d.rows && d.index[end] - 1 < last)
            ++end;
        apply(d, d_id, at, end);
        u.next_row[d_id] = end;
        link_forward(u, d, d_id);
        d_id = following;
    }
}

// Applies every pending descendant update to supernode s (id).
template <class T, class I>
void gather_updates(const symbolic_factor<I> &f, T *values, update_links<I> &u, const supernode_view<T, I> &s, I id,
                    T *buffer)
{
    for_each_descendant(f, values, u, s, id, [&](const supernode_view<T, I> &d, I, I at, I end) {
        descendant_product(d, at, end - at, buffer);
        scatter_update(s, d, at, end - at, buffer, u.relative.get());
    });
}

// Factors s's diagonal block, solves for its rows below and mirrors L11ᴴ above the diagonal.
// Returns 0, or the 1-based column of the block whose pivot was not positive.
template <class T, class I> int64_t factor_supernode(const supernode_view<T, I> &s)
{
    using blas = dense::openblas<T>;
    const int64_t n = s.cols, ld = s.rows, below = s.rows - s.cols;
    int64_t info = 0;
    blas::potrf("L", &n, s.panel, &ld, &info, 1);
    if (info != 0)
        return info;
    if (below > 0) {
        const T one = 1;
        blas::trsm("R", "L", "C", "N", &below, &n, &one, s.panel, &ld, s.panel + n, &ld, 1, 1, 1, 1);
    }
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = j + 1; i < n; ++i)
            s.panel[j + i * ld] = conj_if(s.panel[i + j * ld], true);
    return 0;
}

// L·Lᴴ of the permuted matrix whose lower triangle has been scattered into l_values.
// Returns a sparse status; on a pivot that is not positive, failed_column receives the
// factored column (0-based) and the status is INVALID_VALUE.
template <class T, class I> int numeric_cholesky(const symbolic_factor<I> &f, T *l_values, int64_t &failed_column)
{
    failed_column = -1;
    update_links<I> u;
    scratch_array<T> buffer;
    if (int status = prepare_links(f, u); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    if (!allocate_large(buffer, f.stats.max_panel))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I id = 0; id < f.nsuper; ++id) {
        const supernode_view<T, I> s = supernode_at(f, l_values, id);
        gather_updates(f, l_values, u, s, id, buffer.get());
        if (const int64_t bad = factor_supernode(s); bad != 0) {
            failed_column = s.first + bad - 1;
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
        }
        u.next_row[id] = s.cols;
        link_forward(u, s, id);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::solver
