// Transposition of compressed arrays by a stable counting sort over the output rows.
#pragma once

#include "transpose_internal.hpp"

namespace zel::sparse {

// Splits the source rows into nparts ranges of about nnz / nparts entries each: part p is
// rows parts[p] .. parts[p + 1] - 1. A row longer than a chunk swallows the boundaries it
// spans, leaving empty parts.
template <class I> void partition_by_entries(I *parts, I nparts, I n_in, I nnz, const I *rows_start)
{
    std::fill(parts, parts + nparts + 1, I(-1));
    const int64_t chunk = nnz / nparts + (nnz % nparts != 0);
    I k = 1;
    for (I i = 0; i < n_in; ++i) {
        if (rows_start[i] > chunk * k) {
            parts[k] = i;
            if (k == nparts)
                break;
            ++k;
        }
    }
    parts[nparts] = n_in;
    parts[0] = 0;
    for (I j = nparts - 1; j >= 1; --j)
        if (parts[j] == -1)
            parts[j] = parts[j + 1];
}

// Moves one value or one bs x bs block to its transposed place, conjugated on request.
template <class T, class I> inline void move_entry(T *out, const T *in, I bs, bool conjugate)
{
    if (bs == 1) {
        *out = conjugate ? conjugated(*in) : *in;
        return;
    }
    for (I r = 0; r < bs; ++r)
        for (I s = 0; s < bs; ++s)
            out[r * bs + s] = conjugate ? conjugated(in[s * bs + r]) : in[s * bs + r];
}

// Offsets from per-row counts stored at [j + 1]: prefix sums carrying the index base.
template <class I> void counts_to_offsets(I *offsets, I n_out, I index_base)
{
    offsets[0] = index_base;
    for (I j = 1; j <= n_out; ++j)
        offsets[j] += offsets[j - 1];
}

// Counting pass and reverse scatter part by part; each part owns a slice of every output row
// (work row p holds, per output row, the entries that parts 0..p put there).
template <class T, class I>
void transpose_in_parts(I n_out, I nparts, const I *parts, I index_base, I bs, bool conjugate,
                        const I *rows_start, const I *rows_end, const I *col_indx, const T *values,
                        I *out_rows_start, I *out_col_indx, T *out_values, I *work)
{
    for (I p = 0; p < nparts; ++p) {
        I *w = work + static_cast<int64_t>(p) * n_out;
        for (I i = parts[p]; i < parts[p + 1]; ++i)
            for (I e = rows_start[i] - index_base; e < rows_end[i] - index_base; ++e) {
                const I j = col_indx[e] - index_base;
                w[j] = ++out_rows_start[j + 1];
            }
    }
    counts_to_offsets(out_rows_start, n_out, index_base);
    const int64_t bs2 = static_cast<int64_t>(bs) * bs;
    for (I p = nparts - 1; p >= 0; --p) {
        I *w = work + static_cast<int64_t>(p) * n_out;
        for (I i = parts[p + 1] - 1; i >= parts[p]; --i)
            for (I e = rows_end[i] - index_base - 1; e >= rows_start[i] - index_base; --e) {
                const I j = col_indx[e] - index_base;
                const I q = out_rows_start[j] - index_base + --w[j];
                out_col_indx[q] = i + index_base;
                if (values != nullptr)
                    move_entry(out_values + q * bs2, values + e * bs2, bs, conjugate);
            }
    }
}

// C = op(A) of compressed arrays by a stable counting sort, split into nparts parts.
template <class T, class I>
int transpose_matrix(I n_out, I n_in, I nnz, I nparts, int operation, I index_base, I block_size,
                     const I *rows_start, const I *rows_end, const I *col_indx, const T *values,
                     I *out_rows_start, I *out_col_indx, T *out_values, I *work)
{
    if (nparts < 1 || n_in < 0 || n_out < 0 || nnz < 0 || block_size < 1)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    scratch_array<I> parts(static_cast<size_t>(nparts) + 1, page_alignment);
    if (!parts)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    partition_by_entries(parts.get(), nparts, n_in, nnz, rows_start);
    std::fill(out_rows_start, out_rows_start + n_out + 1, I(0));
    const bool conjugate = is_complex_v<T> && operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE;
    transpose_in_parts(n_out, nparts, parts.get(), index_base, block_size, conjugate, rows_start, rows_end,
                       col_indx, values, out_rows_start, out_col_indx, out_values, work);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
