// Transposition of compressed arrays by a stable counting sort over the output rows.
#pragma once

#include <utility>

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

// One part of scalar entries: a histogram of the output rows, then a forward scatter that
// uses the offsets themselves as cursors (out_rows_start[j + 1] walks through row j and ends
// at the start of row j + 1). It yields the arrays of the reverse scatter: both keep the
// source order inside every output row.
inline constexpr int prefetch_bytes = 256;

template <class T, class I, bool Values, bool Conjugate>
void transpose_one_part(I n_out, I n_in, I base, const I *rows_start, const I *rows_end,
                        const I *__restrict col_indx, const T *__restrict values, I *__restrict out_rows_start,
                        I *__restrict out_col_indx, T *__restrict out_values)
{
    I *const next = out_rows_start + 1; // next[j] is output row j's cursor
    if (rows_end == rows_start + 1 && n_in > 0) {
        // Three-array form: the entries lie end to end, one flat loop counts them all.
        const I end = rows_start[n_in] - base;
        for (I e = rows_start[0] - base; e < end; ++e)
            ++next[col_indx[e] - base];
    } else {
        for (I i = 0; i < n_in; ++i) {
            const I end = rows_end[i] - base;
            for (I e = rows_start[i] - base; e < end; ++e)
                ++next[col_indx[e] - base];
        }
    }
    I running = base;
    for (I j = 1; j <= n_out; ++j)
        running += std::exchange(out_rows_start[j], running);
    out_rows_start[0] = base;
    for (I i = 0; i < n_in; ++i) {
        const I end = rows_end[i] - base;
        const I row = i + base;
        for (I e = rows_start[i] - base; e < end; ++e) {
            const I q = next[col_indx[e] - base]++ - base;
            // Each output row fills front to back: fetch its lines a little ahead of the writes.
            __builtin_prefetch(reinterpret_cast<const char *>(out_col_indx + q) + prefetch_bytes, 1);
            out_col_indx[q] = row;
            if constexpr (Values) {
                __builtin_prefetch(reinterpret_cast<const char *>(out_values + q) + prefetch_bytes, 1);
                out_values[q] = Conjugate ? conjugated(values[e]) : values[e];
            }
        }
    }
}

// Staged entry of the two-pass scatter: source row, output row, value.
template <class T, class I, bool Values> struct staged_entry {
    I row;
    I col;
    T value;
};
template <class T, class I> struct staged_entry<T, I, false> {
    I row;
    I col;
};

inline constexpr int max_buckets = 512;

// True when consecutive source rows send their entries to many distant output rows, so that
// the direct scatter would miss the cache at almost every entry: in sampled windows of
// source rows, most entries land in a 64-row output block that the window has not touched.
template <class I> bool scattered_pattern(I n_in, I base, const I *rows_start, const I *rows_end, const I *col_indx)
{
    constexpr int windows = 16, span = 64, capacity = 2048;
    if (n_in < windows * span)
        return false;
    I blocks[capacity];
    int64_t entries = 0, distinct = 0;
    for (int w = 0; w < windows; ++w) {
        const I first = static_cast<I>(static_cast<int64_t>(n_in - span) * w / (windows - 1));
        int count = 0;
        for (I i = first; i < first + span; ++i)
            for (I e = rows_start[i] - base; e < rows_end[i] - base && count < capacity; ++e)
                blocks[count++] = (col_indx[e] - base) >> 6;
        std::sort(blocks, blocks + count);
        entries += count;
        distinct += std::unique(blocks, blocks + count) - blocks;
    }
    return 4 * distinct > entries;
}

// The scatter in two cache-sized passes: entries are first staged by ranges of output rows
// (few write streams), then each range is counted and scattered while it sits in cache.
// Staging keeps the source order, so the arrays equal those of the direct scatter. Returns
// false, having written nothing, when the staging buffer cannot be had.
template <class T, class I, bool Values, bool Conjugate>
bool transpose_by_ranges(I n_out, I n_in, I base, const I *rows_start, const I *rows_end, const I *col_indx,
                         const T *values, I *out_rows_start, I *out_col_indx, T *out_values, I *cursor)
{
    int shift = 0;
    while (((static_cast<int64_t>(n_out) - 1) >> shift) + 1 > max_buckets)
        ++shift;
    const int buckets = static_cast<int>(((static_cast<int64_t>(n_out) - 1) >> shift) + 1);
    I start[max_buckets + 1] = {};
    for (I i = 0; i < n_in; ++i)
        for (I e = rows_start[i] - base; e < rows_end[i] - base; ++e)
            ++start[((col_indx[e] - base) >> shift) + 1];
    for (int b = 0; b < buckets; ++b)
        start[b + 1] += start[b];
    scratch_array<staged_entry<T, I, Values>> staged(static_cast<size_t>(start[buckets]), page_alignment);
    if (!staged)
        return false;

    I fill[max_buckets];
    for (int b = 0; b < buckets; ++b)
        fill[b] = start[b];
    for (I i = 0; i < n_in; ++i)
        for (I e = rows_start[i] - base; e < rows_end[i] - base; ++e) {
            const I j = col_indx[e] - base;
            auto &s = staged[fill[j >> shift]++];
            s.row = i;
            s.col = j;
            if constexpr (Values)
                s.value = values[e];
        }

    for (int b = 0; b < buckets; ++b) {
        const I lo = static_cast<I>(int64_t(b) << shift);
        const I hi = static_cast<I>(std::min<int64_t>(n_out, int64_t(b + 1) << shift));
        const auto *first = staged.get() + start[b], *last = staged.get() + start[b + 1];
        for (const auto *s = first; s != last; ++s)
            ++out_rows_start[s->col + 1];
        out_rows_start[lo] = start[b] + base;
        for (I j = lo; j < hi; ++j) {
            out_rows_start[j + 1] += out_rows_start[j];
            cursor[j] = out_rows_start[j] - base;
        }
        for (const auto *s = first; s != last; ++s) {
            const I q = cursor[s->col]++;
            out_col_indx[q] = s->row + base;
            if constexpr (Values)
                out_values[q] = Conjugate ? conjugated(s->value) : s->value;
        }
    }
    return true;
}

// Scalar entries in one part: the two-pass scatter for scattered patterns of more than a
// cache's worth of output, the direct one otherwise.
template <class T, class I, bool Values, bool Conjugate>
void transpose_one_part_auto(I n_out, I n_in, I base, const I *rows_start, const I *rows_end, const I *col_indx,
                             const T *values, I *out_rows_start, I *out_col_indx, T *out_values, I *cursor)
{
    constexpr I wide = I(1) << 16;
    if (n_out >= wide && scattered_pattern(n_in, base, rows_start, rows_end, col_indx) &&
        transpose_by_ranges<T, I, Values, Conjugate>(n_out, n_in, base, rows_start, rows_end, col_indx, values,
                                                     out_rows_start, out_col_indx, out_values, cursor))
        return;
    transpose_one_part<T, I, Values, Conjugate>(n_out, n_in, base, rows_start, rows_end, col_indx, values,
                                                out_rows_start, out_col_indx, out_values);
}

template <class T, class I>
void transpose_scalar(I n_out, I n_in, I base, bool conjugate, const I *rows_start, const I *rows_end,
                      const I *col_indx, const T *values, I *out_rows_start, I *out_col_indx, T *out_values, I *work)
{
    if (values == nullptr)
        transpose_one_part_auto<T, I, false, false>(n_out, n_in, base, rows_start, rows_end, col_indx, values,
                                               out_rows_start, out_col_indx, out_values, work);
    else if (is_complex_v<T> && conjugate)
        transpose_one_part_auto<T, I, true, is_complex_v<T>>(n_out, n_in, base, rows_start, rows_end, col_indx, values,
                                                        out_rows_start, out_col_indx, out_values, work);
    else
        transpose_one_part_auto<T, I, true, false>(n_out, n_in, base, rows_start, rows_end, col_indx, values,
                                              out_rows_start, out_col_indx, out_values, work);
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
    std::fill(out_rows_start, out_rows_start + n_out + 1, I(0));
    const bool conjugate = is_complex_v<T> && operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE;
    if (nparts == 1 && block_size == 1) // one part is all rows: no partition walk needed
        transpose_scalar(n_out, n_in, index_base, conjugate, rows_start, rows_end, col_indx, values, out_rows_start,
                         out_col_indx, out_values, work);
    else {
        partition_by_entries(parts.get(), nparts, n_in, nnz, rows_start);
        transpose_in_parts(n_out, nparts, parts.get(), index_base, block_size, conjugate, rows_start, rows_end,
                           col_indx, values, out_rows_start, out_col_indx, out_values, work);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
