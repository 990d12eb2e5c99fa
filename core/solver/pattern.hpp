// Symmetric sparsity patterns for the direct solver's analysis: built from a caller's CSR,
// permuted, and symmetrised for unsymmetric matrices.
#pragma once

#include <algorithm>
#include <cstdint>

#include "zel/sparse_types.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"

namespace zel::solver {

inline constexpr int scratch_alignment = 64;

// Allocates `count` (at least one, so that an empty array is still a valid block) elements.
template <class T> bool allocate(scratch_array<T> &array, int64_t count)
{
    if (count < 0)
        return false;
    array = scratch_array<T>(size_t(std::max<int64_t>(count, 1)), scratch_alignment);
    return bool(array);
}

// The same for the large arrays (the factor's values, the update buffer), on huge pages.
template <class T> bool allocate_large(scratch_array<T> &array, int64_t count)
{
    if (count < 0)
        return false;
    array = large_scratch<T>(size_t(std::max<int64_t>(count, 1)), scratch_alignment);
    return bool(array);
}

// The off-diagonal pattern of a symmetric n × n matrix, 0-based, by columns: both triangles,
// rows ascending in each column, no duplicates, no diagonal.
template <class I> struct sym_pattern {
    I n = 0;
    scratch_array<I> col_ptr; // n + 1
    scratch_array<I> row_idx; // col_ptr[n]

    I entries() const { return n > 0 ? col_ptr[size_t(n)] : 0; }
    I begin(I j) const { return col_ptr[size_t(j)]; }
    I end(I j) const { return col_ptr[size_t(j) + 1]; }
};

// A caller's square CSR pattern: n + 1 row pointers and the column indices, 0- or 1-based.
template <class I> struct csr_pattern {
    I n = 0;
    I base = 0;
    const I *row_ptr = nullptr;
    const I *col_idx = nullptr;
};

// Which entries of the CSR describe the matrix: all of them, or those above the diagonal.
enum class csr_part { full, upper };

// Status of a CSR: row pointers start at the base and never decrease, indices lie in range.
template <class I> int validate_csr(const csr_pattern<I> &a)
{
    if (a.n < 0 || (a.base != 0 && a.base != 1) || (a.n > 0 && (a.row_ptr == nullptr || a.col_idx == nullptr)))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (a.n == 0)
        return ZEL_SPARSE_STATUS_SUCCESS;
    if (a.row_ptr[0] != a.base)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    for (I i = 0; i < a.n; ++i)
        if (a.row_ptr[i + 1] < a.row_ptr[i])
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const I stored = a.row_ptr[a.n] - a.base;
    for (I p = 0; p < stored; ++p)
        if (a.col_idx[p] < a.base || a.col_idx[p] - a.base >= a.n)
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

namespace detail {

// The kept entries of the CSR, by columns (their rows ascending): kept are the off-diagonal
// entries of a full CSR, the strictly upper ones of an upper CSR.
template <class I> int kept_by_columns(const csr_pattern<I> &a, csr_part part, sym_pattern<I> &t)
{
    t.n = a.n;
    if (!allocate(t.col_ptr, int64_t(a.n) + 1) || !allocate(t.row_idx, int64_t(a.row_ptr[a.n] - a.base)))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    I *count = t.col_ptr.get();
    std::fill(count, count + a.n + 1, I(0));
    auto kept = [&](I i, I j) { return part == csr_part::full ? i != j : j > i; };
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            if (I j = a.col_idx[p] - a.base; kept(i, j))
                ++count[j + 1];
    for (I j = 0; j < a.n; ++j)
        count[j + 1] += count[j];
    scratch_array<I> next;
    if (!allocate(next, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::copy(count, count + a.n, next.get());
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            if (I j = a.col_idx[p] - a.base; kept(i, j))
                t.row_idx[size_t(next[j]++)] = i;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// One sweep over the rows r of B + Bᵀ in ascending order (B: the kept entries, given by rows
// in `a` and by columns in `t`), calling visit(c, r) once per entry (r, c) of the union.
// Because r ascends, each column receives its rows in order; `mark` drops repeats.
template <class I, class Visit>
void sweep_union(const csr_pattern<I> &a, csr_part part, const sym_pattern<I> &t, I *mark, Visit visit)
{
    std::fill(mark, mark + a.n, I(-1));
    for (I r = 0; r < a.n; ++r) {
        for (I p = a.row_ptr[r] - a.base; p < a.row_ptr[r + 1] - a.base; ++p) {
            const I c = a.col_idx[p] - a.base;
            if ((part == csr_part::full ? c != r : c > r) && mark[c] != r) {
                mark[c] = r;
                visit(c, r);
            }
        }
        for (I p = t.begin(r); p < t.end(r); ++p)
            if (const I c = t.row_idx[size_t(p)]; mark[c] != r) {
                mark[c] = r;
                visit(c, r);
            }
    }
}

// Column pointers from per-column counts held in ptr[1..n]; 3 when the total does not fit I.
template <class I> int counts_to_pointers(I n, int64_t *count, I *ptr)
{
    int64_t total = 0;
    ptr[0] = 0;
    for (I j = 0; j < n; ++j) {
        total += count[j]; // at most n per column, n·n fits int64_t
        if (!fits_in<I>(total))
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
        ptr[j + 1] = I(total);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace detail

// The symmetric pattern of a CSR: of B + Bᵀ where B is the kept part (see csr_part). With
// csr_part::full this is also the symmetrised pattern A + Aᵀ of an unsymmetric matrix.
template <class I> int pattern_from_csr(const csr_pattern<I> &a, csr_part part, sym_pattern<I> &out)
{
    if (const int status = validate_csr(a); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    sym_pattern<I> t;
    scratch_array<I> mark;
    scratch_array<int64_t> count;
    if (int status = detail::kept_by_columns(a, part, t); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    if (!allocate(mark, a.n) || !allocate(count, a.n) || !allocate(out.col_ptr, int64_t(a.n) + 1))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(count.get(), count.get() + a.n, int64_t(0));
    detail::sweep_union(a, part, t, mark.get(), [&](I c, I) { ++count[size_t(c)]; });
    if (int status = detail::counts_to_pointers(a.n, count.get(), out.col_ptr.get()); status != 0)
        return status;
    if (!allocate(out.row_idx, out.col_ptr[size_t(a.n)]))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I c = 0; c < a.n; ++c)
        count[size_t(c)] = out.col_ptr[size_t(c)];
    detail::sweep_union(a, part, t, mark.get(), [&](I c, I r) { out.row_idx[size_t(count[size_t(c)]++)] = r; });
    out.n = a.n;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The symmetrised pattern A + Aᵀ (without the diagonal) of an unsymmetric square CSR.
template <class I> int symmetrised_pattern(const csr_pattern<I> &a, sym_pattern<I> &out)
{
    return pattern_from_csr(a, csr_part::full, out);
}

// C = P·A·Pᵀ, where row and column k of C are row and column perm[k] of A (pinv: its inverse).
// Row r of C is column r (symmetry), so sweeping r in order fills every column sorted.
template <class I> int permute_pattern(const sym_pattern<I> &a, const I *perm, const I *pinv, sym_pattern<I> &out)
{
    if (!allocate(out.col_ptr, int64_t(a.n) + 1) || !allocate(out.row_idx, a.entries()))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    scratch_array<I> next;
    if (!allocate(next, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    out.n = a.n;
    out.col_ptr[0] = 0;
    for (I k = 0; k < a.n; ++k)
        out.col_ptr[size_t(k) + 1] = out.col_ptr[size_t(k)] + (a.end(perm[k]) - a.begin(perm[k]));
    std::copy(out.col_ptr.get(), out.col_ptr.get() + a.n, next.get());
    for (I r = 0; r < a.n; ++r)
        for (I p = a.begin(perm[r]); p < a.end(perm[r]); ++p)
            out.row_idx[size_t(next[size_t(pinv[a.row_idx[size_t(p)]])]++)] = r;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::solver
