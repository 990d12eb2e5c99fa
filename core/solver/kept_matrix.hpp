// The matrix as the solver keeps it between phases: the caller's CSR entries that describe it
// (all of a full CSR, the upper triangle of an upper one), 0-based, and where each value goes
// in the factor's panels.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "pattern.hpp"
#include "symbolic.hpp"

namespace zel::solver {

template <class I> struct kept_matrix {
    I n = 0;
    bool upper = false;          // only the upper triangle (diagonal included) is stored
    scratch_array<I> row_ptr;    // n + 1
    scratch_array<I> col_idx;    // row_ptr[n]
    scratch_array<I> source;     // position of each kept entry among the caller's values
    int64_t caller_entries = 0;  // entries of the caller's CSR
    // Where each kept entry's value lands in the factor's values (0-based): p ≥ 0 as it is,
    // -(p + 2) conjugated (it lands in the mirrored position), -1 not used (its mirror is).
    scratch_array<int64_t> destination;

    I entries() const { return n > 0 ? row_ptr[size_t(n)] : 0; }
};

namespace detail {

// Status of the rows beyond what validate_csr checks: no column twice in a row, and (when
// asked) a diagonal entry in every row.
template <class I> int check_rows(const csr_pattern<I> &a, bool need_diagonal)
{
    scratch_array<I> seen;
    if (!allocate(seen, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(seen.get(), seen.get() + a.n, I(-1));
    for (I i = 0; i < a.n; ++i) {
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p) {
            const I j = a.col_idx[p] - a.base;
            if (seen[j] == i)
                return ZEL_SPARSE_STATUS_INVALID_VALUE;
            seen[j] = i;
        }
        if (need_diagonal && seen[i] != i)
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace detail

// Copies the kept entries of a validated CSR. An upper CSR keeps j ≥ i only.
template <class I> int keep_matrix(const csr_pattern<I> &a, csr_part part, bool need_diagonal, kept_matrix<I> &m)
{
    if (int status = validate_csr(a); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    if (int status = detail::check_rows(a, need_diagonal); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    m = kept_matrix<I>();
    m.n = a.n;
    m.upper = part == csr_part::upper;
    m.caller_entries = a.n > 0 ? int64_t(a.row_ptr[a.n] - a.base) : 0;
    auto kept = [&](I i, I j) { return !m.upper || j >= i; };
    int64_t count = 0;
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            count += kept(i, a.col_idx[p] - a.base);
    if (!allocate(m.row_ptr, int64_t(a.n) + 1) || !allocate(m.col_idx, count) || !allocate(m.source, count))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    I q = 0;
    m.row_ptr[0] = 0;
    for (I i = 0; i < a.n; ++i) {
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            if (const I j = a.col_idx[p] - a.base; kept(i, j)) {
                m.col_idx[size_t(q)] = j;
                m.source[size_t(q++)] = p;
            }
        m.row_ptr[size_t(i) + 1] = q;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

namespace detail {

// Position (0-based) of entry (row, col), row ≥ col, factored numbering, in the factor's values.
template <class I> int64_t panel_position(const symbolic_factor<I> &f, const I *of_column, I row, I col)
{
    const I s = of_column[col];
    const I first = f.super_ptr[s] - 1, cols = f.super_ptr[s + 1] - 1 - first;
    I local = row - first;
    if (local >= cols) {
        const I *rows = f.row_index.get() + (f.row_ptr[s] - 1);
        const I count = f.col_ptr[size_t(first) + 1] - f.col_ptr[size_t(first)];
        local = I(std::lower_bound(rows + cols, rows + count, row + 1) - rows);
    }
    return int64_t(f.col_ptr[size_t(col)]) - 1 + local;
}

} // namespace detail

// Destinations of the kept entries in the factor: a full CSR contributes its lower triangle
// (by the caller's numbering), an upper CSR all of its entries; an entry that lands above the
// diagonal of the permuted matrix goes to its mirror, conjugated.
template <class I> int map_values(const symbolic_factor<I> &f, kept_matrix<I> &m)
{
    scratch_array<I> of_column;
    if (!allocate(of_column, f.n) || !allocate(m.destination, m.entries()))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    supernode_of_columns(f, of_column.get());
    for (I i = 0; i < m.n; ++i)
        for (I p = m.row_ptr[i]; p < m.row_ptr[size_t(i) + 1]; ++p) {
            const I j = m.col_idx[size_t(p)];
            if (!m.upper && j > i) {
                m.destination[size_t(p)] = -1;
                continue;
            }
            const I r = f.inv_perm[i], c = f.inv_perm[j];
            m.destination[size_t(p)] = r >= c ? detail::panel_position(f, of_column.get(), r, c)
                                              : -(detail::panel_position(f, of_column.get(), c, r) + 2);
        }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Whether every diagonal value among the caller's (kept entries) is real.
template <class T, class I> bool real_diagonal(const kept_matrix<I> &m, const T *values)
{
    for (I i = 0; i < m.n; ++i)
        for (I p = m.row_ptr[i]; p < m.row_ptr[size_t(i) + 1]; ++p)
            if (m.col_idx[size_t(p)] == i && std::imag(values[size_t(m.source[size_t(p)])]) != 0)
                return false;
    return true;
}

// Whether a full CSR's pattern is symmetric: its union with its transpose (sym, without the
// diagonal) has as many entries as it has entries off the diagonal.
template <class I> bool pattern_is_symmetric(const csr_pattern<I> &a, const sym_pattern<I> &sym)
{
    int64_t off_diagonal = 0;
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            off_diagonal += a.col_idx[p] - a.base != i;
    return off_diagonal == int64_t(sym.entries());
}

// Positions of U12ᵀ: column j of supernode s starts (j − first)·(rows − cols) after the start of
// s's block, the blocks one after another; returns the value count, or -1 when a position does
// not fit I.
template <class I> int64_t unsymmetric_layout(const symbolic_factor<I> &f, I *u_col_ptr)
{
    int64_t at = 0;
    for (I s = 0; s < f.nsuper; ++s) {
        const I first = f.super_ptr[s] - 1, cols = f.super_ptr[s + 1] - 1 - first;
        const int64_t below = int64_t(f.col_ptr[size_t(first) + 1] - f.col_ptr[size_t(first)]) - cols;
        for (I j = 0; j < cols; ++j) {
            if (!fits_in<I>(at + 1))
                return -1;
            u_col_ptr[first + j] = I(at + 1);
            at += below;
        }
    }
    if (!fits_in<I>(at + 1))
        return -1;
    u_col_ptr[f.n] = I(at + 1);
    return at;
}

// Destinations of an unsymmetric matrix's entries: entry (i, j) of A is entry (c_row[i], j) of C
// (the matched matrix) and lands, after the ordering, in a panel (p ≥ 0: l_values[p]) or in a
// block of U12ᵀ (-(p + 2): u_values[p]).
template <class I>
int map_unsymmetric_values(const symbolic_factor<I> &f, const I *u_col_ptr, const I *c_row, kept_matrix<I> &m)
{
    scratch_array<I> of_column;
    if (!allocate(of_column, f.n) || !allocate(m.destination, m.entries()))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    supernode_of_columns(f, of_column.get());
    for (I i = 0; i < m.n; ++i)
        for (I p = m.row_ptr[i]; p < m.row_ptr[size_t(i) + 1]; ++p) {
            const I r = f.inv_perm[c_row ? c_row[i] : i], c = f.inv_perm[m.col_idx[size_t(p)]];
            const I s = of_column[r];
            if (r >= c || c < f.super_ptr[s + 1] - 1) {
                m.destination[size_t(p)] = r >= c ? detail::panel_position(f, of_column.get(), r, c)
                                                  : int64_t(f.col_ptr[size_t(c)]) - 1 + (r - (f.super_ptr[s] - 1));
                continue;
            }
            const I first = f.super_ptr[s] - 1, cols = f.super_ptr[s + 1] - 1 - first;
            const I *rows = f.row_index.get() + (f.row_ptr[s] - 1);
            const I count = f.col_ptr[size_t(first) + 1] - f.col_ptr[size_t(first)];
            const I at = I(std::lower_bound(rows + cols, rows + count, c + 1) - (rows + cols));
            m.destination[size_t(p)] = -(int64_t(u_col_ptr[r]) - 1 + at + 2);
        }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::solver
