// C = op(A) of compressed arrays by a stable counting sort: the one transposition of the sparse
// family. The layer's transpositions and the core's row sorting (a transposition done twice)
// both run it.
//
// Routes: several parts or blocks -> part-wise counting and reverse scatter (transpose_in_parts);
// one part of scalars -> a square pattern equal to its transpose keeps its offsets and indices
// and only swaps values (transpose_symmetric_pattern); otherwise direct scatter through the
// offsets (transpose_one_part), or, for wide scattered patterns, a scatter staged by ranges of
// output rows (transpose_by_ranges).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

#include "zel_internal/sparse_records.hpp"

namespace zel::sparse {

// Where a transposition writes: offsets of the output slices (extent + 1), indices, values.
template <class T, class I> struct compressed_output {
    I *starts = nullptr;
    I *index = nullptr;
    T *values = nullptr;
};

// Splits the source slices into nparts ranges of about nnz / nparts entries each: part p is
// slices parts[p] .. parts[p + 1] - 1. A slice longer than a chunk swallows the boundaries it
// spans, leaving empty parts.
template <class T, class I> void partition_by_entries(I *parts, I nparts, const compressed_view<T, I> &a, I nnz)
{
    std::fill(parts, parts + nparts + 1, I(-1));
    const int64_t chunk = nnz / nparts + (nnz % nparts != 0);
    I k = 1;
    for (I i = 0; i < a.slices; ++i) {
        if (a.starts[i] > chunk * k) {
            parts[k] = i;
            if (k == nparts)
                break;
            ++k;
        }
    }
    parts[nparts] = a.slices;
    parts[0] = 0;
    for (I j = nparts - 1; j >= 1; --j)
        if (parts[j] == -1)
            parts[j] = parts[j + 1];
}

// Moves one value or one bs x bs block to its transposed place, conjugated on request.
template <class T, class I> inline void move_entry(T *out, const T *in, I bs, bool conjugate)
{
    if (bs == 1) {
        *out = conj_if(*in, conjugate);
        return;
    }
    for (I r = 0; r < bs; ++r)
        for (I s = 0; s < bs; ++s)
            out[r * bs + s] = conj_if(in[s * bs + r], conjugate);
}

// Counting pass and reverse scatter part by part; each part owns a slice of every output row
// (work row p holds, per output row, the entries that parts 0..p put there).
template <class T, class I>
void transpose_in_parts(const compressed_view<T, I> &a, I nparts, const I *parts, bool conjugate,
                        const compressed_output<T, I> &out, I *work)
{
    const I n_out = a.extent, base = a.base;
    for (I p = 0; p < nparts; ++p) {
        I *w = work + static_cast<int64_t>(p) * n_out;
        for (I i = parts[p]; i < parts[p + 1]; ++i)
            for (I e = a.begin(i); e < a.end(i); ++e) {
                const I j = a.index[e] - base;
                w[j] = ++out.starts[j + 1];
            }
    }
    out.starts[0] = base;
    for (I j = 1; j <= n_out; ++j)
        out.starts[j] += out.starts[j - 1];
    const int64_t area = a.block_area();
    for (I p = nparts - 1; p >= 0; --p) {
        I *w = work + static_cast<int64_t>(p) * n_out;
        for (I i = parts[p + 1] - 1; i >= parts[p]; --i)
            for (I e = a.end(i) - 1; e >= a.begin(i); --e) {
                const I j = a.index[e] - base;
                const I q = out.starts[j] - base + --w[j];
                out.index[q] = i + base;
                if (a.values != nullptr)
                    move_entry(out.values + q * area, a.values + e * area, a.block, conjugate);
            }
    }
}

inline constexpr int transpose_prefetch_bytes = 256;

// One part of scalar entries: a histogram of the output rows, then a forward scatter that
// uses the offsets themselves as cursors (starts[j + 1] walks through row j and ends at the
// start of row j + 1). It yields the arrays of the reverse scatter: both keep the source order
// inside every output row.
template <class T, class I, bool Values, bool Conjugate>
void transpose_one_part(const compressed_view<T, I> &a, const compressed_output<T, I> &out)
{
    const I n_in = a.slices, n_out = a.extent, base = a.base;
    const I *__restrict index = a.index;
    const T *__restrict values = a.values;
    I *__restrict out_index = out.index;
    T *__restrict out_values = out.values;
    I *const next = out.starts + 1; // next[j] is output row j's cursor
    if (a.three_array() && n_in > 0) {
        // Three-array form: the entries lie end to end, one flat loop counts them all.
        const I end = a.starts[n_in] - base;
        for (I e = a.starts[0] - base; e < end; ++e)
            ++next[index[e] - base];
    } else {
        for (I i = 0; i < n_in; ++i)
            for (I e = a.begin(i), end = a.end(i); e < end; ++e)
                ++next[index[e] - base];
    }
    I running = base;
    for (I j = 1; j <= n_out; ++j)
        running += std::exchange(out.starts[j], running);
    out.starts[0] = base;
    for (I i = 0; i < n_in; ++i) {
        const I row = i + base;
        for (I e = a.begin(i), end = a.end(i); e < end; ++e) {
            const I q = next[index[e] - base]++ - base;
            // Each output row fills front to back: fetch its lines a little ahead of the writes.
            __builtin_prefetch(reinterpret_cast<const char *>(out_index + q) + transpose_prefetch_bytes, 1);
            out_index[q] = row;
            if constexpr (Values) {
                __builtin_prefetch(reinterpret_cast<const char *>(out_values + q) + transpose_prefetch_bytes, 1);
                out_values[q] = Conjugate ? conj_if(values[e], true) : values[e];
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

inline constexpr int transpose_max_buckets = 512;

// True when consecutive source rows send their entries to many distant output rows, so that
// the direct scatter would miss the cache at almost every entry: in sampled windows of
// source rows, most entries land in a 64-row output block that the window has not touched.
template <class T, class I> bool scattered_pattern(const compressed_view<T, I> &a)
{
    constexpr int windows = 16, span = 64, capacity = 2048;
    if (a.slices < windows * span)
        return false;
    I blocks[capacity];
    int64_t entries = 0, distinct = 0;
    for (int w = 0; w < windows; ++w) {
        const I first = static_cast<I>(static_cast<int64_t>(a.slices - span) * w / (windows - 1));
        int count = 0;
        for (I i = first; i < first + span; ++i)
            for (I e = a.begin(i); e < a.end(i) && count < capacity; ++e)
                blocks[count++] = (a.index[e] - a.base) >> 6;
        std::sort(blocks, blocks + count);
        entries += count;
        distinct += std::unique(blocks, blocks + count) - blocks;
    }
    return 4 * distinct > entries;
}

// Buckets of output rows for the staged scatter: 2^shift rows each, at most max_buckets.
struct row_buckets {
    int shift = 0, count = 0;
    explicit row_buckets(int64_t rows)
    {
        while (((rows - 1) >> shift) + 1 > transpose_max_buckets)
            ++shift;
        count = static_cast<int>(((rows - 1) >> shift) + 1);
    }
};

// Counts and scatters the staged entries of one bucket (output rows lo..hi-1) while they sit
// in cache; starts[lo] comes from the bucket's first staged place.
template <class T, class I, class Staged, bool Conjugate>
void scatter_bucket(const Staged *first, const Staged *last, I lo, I hi, I base, const compressed_output<T, I> &out,
                    I *cursor)
{
    for (const Staged *s = first; s != last; ++s)
        ++out.starts[s->col + 1];
    for (I j = lo; j < hi; ++j) {
        out.starts[j + 1] += out.starts[j];
        cursor[j] = out.starts[j] - base;
    }
    for (const Staged *s = first; s != last; ++s) {
        const I q = cursor[s->col]++;
        out.index[q] = s->row + base;
        if constexpr (requires { s->value; })
            out.values[q] = Conjugate ? conj_if(s->value, true) : s->value;
    }
}

// The scatter in two cache-sized passes: entries are first staged by ranges of output rows
// (few write streams), then each range is counted and scattered while it sits in cache.
// Staging keeps the source order, so the arrays equal those of the direct scatter. Returns
// false, having written nothing, when the staging buffer cannot be had.
template <class T, class I, bool Values, bool Conjugate>
bool transpose_by_ranges(const compressed_view<T, I> &a, const compressed_output<T, I> &out, I *cursor)
{
    const row_buckets buckets(a.extent);
    I start[transpose_max_buckets + 1] = {};
    for (I i = 0; i < a.slices; ++i)
        for (I e = a.begin(i); e < a.end(i); ++e)
            ++start[((a.index[e] - a.base) >> buckets.shift) + 1];
    for (int b = 0; b < buckets.count; ++b)
        start[b + 1] += start[b];
    using staged_t = staged_entry<T, I, Values>;
    scratch_array<staged_t> staged(static_cast<size_t>(start[buckets.count]), alignment);
    if (!staged)
        return false;

    I fill[transpose_max_buckets];
    std::copy(start, start + buckets.count, fill);
    for (I i = 0; i < a.slices; ++i)
        for (I e = a.begin(i); e < a.end(i); ++e) {
            const I j = a.index[e] - a.base;
            auto &s = staged[fill[j >> buckets.shift]++];
            s.row = i;
            s.col = j;
            if constexpr (Values)
                s.value = a.values[e];
        }
    for (int b = 0; b < buckets.count; ++b) {
        const I lo = static_cast<I>(int64_t(b) << buckets.shift);
        const I hi = static_cast<I>(std::min<int64_t>(a.extent, int64_t(b + 1) << buckets.shift));
        out.starts[lo] = start[b] + a.base;
        scatter_bucket<T, I, staged_t, Conjugate>(staged.get() + start[b], staged.get() + start[b + 1], lo, hi, a.base,
                                                  out, cursor);
    }
    return true;
}

// Stores v at *out past the cache when the processor can: a result written once, in order,
// and far larger than the cache has no reason to evict what the reads still need.
template <class T> inline void store_streaming(T *out, const T &v)
{
#if defined(__x86_64__)
    if constexpr (sizeof(T) % 8 == 0) {
        for (size_t w = 0; w < sizeof(T) / 8; ++w) {
            long long word;
            std::memcpy(&word, reinterpret_cast<const char *>(&v) + 8 * w, 8);
            _mm_stream_si64(reinterpret_cast<long long *>(out) + w, word);
        }
        return;
    } else if constexpr (sizeof(T) == 4) {
        int word;
        std::memcpy(&word, &v, 4);
        _mm_stream_si32(reinterpret_cast<int *>(out), word);
        return;
    }
#endif
    *out = v;
}

inline void streaming_stores_done()
{
#if defined(__x86_64__)
    _mm_sfence();
#endif
}

inline constexpr int symmetric_prefetch_entries = 48;

// A packed square pattern with sorted rows that equals its own transpose keeps its offsets and
// indices: only the values move, and they move in pairs. Entry (i, j) above the diagonal
// trades values with the next unread entry below the diagonal of row j, which must lie in
// column i; by the time row j is reached its part below the diagonal must be read exactly.
// Then the arrays are the stable counting sort's, with a third of the scattered traffic: row i
// is written in order except for its partners ahead. Returns false at the first mismatch: the
// offsets are untouched and the general path overwrites whatever was written.
template <class T, class I, bool Values, bool Conjugate>
bool transpose_symmetric_pattern(const compressed_view<T, I> &a, const compressed_output<T, I> &out, I *cursor)
{
    const I n = a.slices, base = a.base;
    if (n < 1 || a.extent != n || !a.three_array())
        return false;
    const I *__restrict starts = a.starts;
    const I first = starts[0], total = starts[n] - first;
    const I *__restrict index = a.index + (first - base); // entries from 0, as the output's
    const T *__restrict values = a.values + (a.values != nullptr ? first - base : 0);
    I *__restrict out_index = out.index;
    T *__restrict out_values = out.values;
    auto moved = [](const T &v) { return Conjugate ? conj_if(v, true) : v; };
    for (I j = 0; j < n; ++j)
        cursor[j] = starts[j] - first;
    for (I i = 0; i < n; ++i) {
        const I row = i + base, end = starts[i + 1] - first;
        I e = starts[i] - first, previous = base;
        for (; e < end && index[e] < row; ++e) { // filled by their partners already
            if (index[e] < previous) [[unlikely]]
                return false;
            previous = index[e];
            store_streaming(out_index + e, previous);
        }
        if (cursor[i] != e) [[unlikely]]
            return false;
        for (; e < end && index[e] == row; ++e) {
            store_streaming(out_index + e, row);
            if constexpr (Values)
                out_values[e] = moved(values[e]);
        }
        for (previous = row; e < end; ++e) {
            const I col = index[e];
            const I p = cursor[col - base]++;
            if (col < previous || p >= total || index[p] != row) [[unlikely]]
                return false;
            previous = col;
            store_streaming(out_index + e, col);
            // The partners lie in rows not yet reached: fetch ahead of each one's cursor.
            __builtin_prefetch(index + p + symmetric_prefetch_entries);
            if constexpr (Values) {
                __builtin_prefetch(values + p + symmetric_prefetch_entries);
                __builtin_prefetch(out_values + p + symmetric_prefetch_entries, 1);
                out_values[e] = moved(values[p]);
                out_values[p] = moved(values[e]);
            }
        }
    }
    streaming_stores_done();
    for (I j = 0; j <= n; ++j)
        out.starts[j] = starts[j] - first + base;
    return true;
}

// Scalar entries in one part: the two-pass scatter for scattered patterns of more than a
// cache's worth of output, the direct one otherwise.
template <class T, class I, bool Values, bool Conjugate>
void transpose_one_part_auto(const compressed_view<T, I> &a, const compressed_output<T, I> &out, I *cursor)
{
    constexpr I wide = I(1) << 16;
    if (transpose_symmetric_pattern<T, I, Values, Conjugate>(a, out, cursor))
        return;
    std::fill(out.starts, out.starts + a.extent + 1, I(0)); // the scatters count from zero
    if (a.extent >= wide && scattered_pattern(a) && transpose_by_ranges<T, I, Values, Conjugate>(a, out, cursor))
        return;
    transpose_one_part<T, I, Values, Conjugate>(a, out);
}

template <class T, class I>
void transpose_scalar(const compressed_view<T, I> &a, bool conjugate, const compressed_output<T, I> &out, I *work)
{
    if (a.values == nullptr)
        transpose_one_part_auto<T, I, false, false>(a, out, work);
    else if (is_complex_v<T> && conjugate)
        transpose_one_part_auto<T, I, true, is_complex_v<T>>(a, out, work);
    else
        transpose_one_part_auto<T, I, true, false>(a, out, work);
}

// out = op(a) by a stable counting sort over a's extent, split into nparts parts of about
// nnz / nparts entries; work holds nparts * a.extent indices.
template <class T, class I>
int transpose_matrix(const compressed_view<T, I> &a, I nnz, I nparts, bool conjugate,
                     const compressed_output<T, I> &out, I *work)
{
    if (nparts < 1 || a.slices < 0 || a.extent < 0 || nnz < 0 || a.block < 1)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    scratch_array<I> parts(static_cast<size_t>(nparts) + 1, alignment);
    if (!parts)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    conjugate = conjugate && is_complex_v<T>;
    if (nparts == 1 && a.block == 1) { // one part is all rows: no partition walk needed
        transpose_scalar(a, conjugate, out, work);
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    std::fill(out.starts, out.starts + a.extent + 1, I(0));
    partition_by_entries(parts.get(), nparts, a, nnz);
    transpose_in_parts(a, nparts, parts.get(), conjugate, out, work);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// out = op(a) into new owned arrays, in one part: the work the layer's callers and the core's
// row sorting need.
template <class T, class I>
int transpose_into(const compressed_view<T, I> &a, I nparts, bool conjugate, owned_arrays<T, I> &out)
{
    const int64_t nnz = a.stored();
    const auto work_count = checked_mul<int64_t>(nparts, std::max<int64_t>(a.extent, 1));
    if (!work_count || !out.allocate(a.extent, nnz, a.block_area(), a.values != nullptr))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    scratch_array<I> work(size_t(*work_count), alignment);
    if (!work)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    return transpose_matrix<T, I>(a, I(nnz), nparts, conjugate, {out.starts.get(), out.index.get(), out.values.get()},
                                  work.get());
}

// sorted = a with the indices of every slice in increasing order, ties in stored order: the
// transposition done twice (blocks come back in their own order), values travelling along.
template <class T, class I> int sort_slices(const compressed_view<T, I> &a, owned_arrays<T, I> &sorted)
{
    owned_arrays<T, I> transposed;
    if (int status = transpose_into(a, I(1), false, transposed))
        return status;
    const compressed_view<T, I> t{a.extent, a.slices, a.base, a.block, transposed.starts.get(),
                                  transposed.starts.get() + 1, transposed.index.get(), transposed.values.get()};
    return transpose_into(t, I(1), false, sorted);
}

} // namespace zel::sparse
