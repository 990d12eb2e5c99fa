// Numeric pass of the sparse result: sorted columns and values of every row of a chunk, written at
// the places the row pointer of the symbolic pass gives them (never past a row's end, whatever
// the operands say).
//
// Routes of row i (CSR):
//   repeated     at most short_row_entries L entries and the shape of the row before it
//                (syrk_row_shapes.hpp): joins the block of rows formed together from the shape.
//   sorted       short, columns more than stamped_span apart, at most sort_capacity products, a
//                vector sorter on this processor: each product added at its column's rank.
//   merged       short otherwise: the tails are merged (syrk_short_rows.hpp).
//   accumulated  more L entries: products add into a dense accumulator indexed by column, taken at
//                the first such row of the chunk, while the row's new columns are listed (without
//                branches up to 256 of them); the list is sorted, gathered from the accumulator
//                into the output and cleared.
//   long         more L entries and no memory for the accumulator: the columns are collected and
//                sorted first, each column's marker then holds its place in the output, and the
//                products add straight into it.
// Block rows (BSR) all take the long route, block by block.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "row_sort.hpp"
#include "syrk_common.hpp"
#include "syrk_row_shapes.hpp"
#include "syrk_short_rows.hpp"
#include "zel_internal/scratch.hpp"

namespace zel::sparse_syrk {

// Longest row whose column list the accumulated route sorts by rank_sort.
constexpr int ranked_row = 256;

// Sorts a row's columns: insertion sort for the short rows that dominate, introsort beyond.
template <class K, class I> inline void sort_columns(K *cols, I n)
{
    if (n > 32) {
        std::sort(cols, cols + n);
        return;
    }
    for (I t = 1; t < n; ++t) {
        const K v = cols[t];
        I s = t;
        for (; s > 0 && cols[s - 1] > v; --s)
            cols[s] = cols[s - 1];
        cols[s] = v;
    }
}

// Sorts n distinct keys into out by counting, for each key, the keys below it: no branches, and
// the counting loop runs over whole vectors (keys is padded to a multiple of 8 with the maximum).
template <class I> inline void rank_sort(I *keys, I n, I *out)
{
    const I padded = (n + 7) & ~I(7);
    for (I t = n; t < padded; ++t)
        keys[t] = std::numeric_limits<I>::max();
    for (I t = 0; t < n; ++t) {
        const I v = keys[t];
        I rank = 0;
        for (I s = 0; s < padded; ++s)
            rank += keys[s] < v;
        out[rank] = v;
    }
}

// What the numeric pass carries from one short row to the next.
template <class T, class I> struct numeric_rows {
    row_tails<T, I> tails;
    row_shape<I> shape;
    repeated_rows<T, I> repeats;
    bool fetch_ahead = true; // while the rows are scattered
    const row_sorter *sorter = row_sorter_active;
};

// Rows from i on that repeat the recorded shape join the block, up to the first whose place in
// the output is too short for the shape; returns how many did (0: none).
template <class T, class I>
[[gnu::always_inline]] inline I numeric_repeated(numeric_rows<T, I> &s, const operand_rows<T, I> &L,
                                                 const operand_rows<T, I> &R, I i, I row_end,
                                                 const result_rows<T, I> &out)
{
    const I run = s.shape.repeat_run(L, R, i, std::min<I>(row_end - i, s.repeats.room()));
    I taken = 0;
    for (; taken < run; ++taken) {
        const I r = i + taken, at = out.begin(r);
        if (s.shape.distinct > out.room(r))
            break;
        s.repeats.add(s.shape, L, R, r, out.columns + at, out.values + at);
    }
    if (taken > 0) {
        s.shape.row = i + taken - 1;
        if (s.repeats.full())
            s.repeats.flush(s.shape, out.base);
    }
    return taken;
}

// A short row from its tails, by the sorter or by merging; its shape is recorded.
template <class T, class I>
[[gnu::always_inline]] inline void numeric_short_row(numeric_rows<T, I> &s, const operand_rows<T, I> &L,
                                                     const operand_rows<T, I> &R, I *start_offset, I i, I row_end,
                                                     const result_rows<T, I> &out)
{
    s.repeats.flush(s.shape, out.base);
    if (s.fetch_ahead)
        prefetch_ahead<1, true>(L, R, start_offset, i, row_end);
    uint64_t work = 0;
    s.tails.template gather<true>(L, R, start_offset, i, work);
    const I room = out.room(i);
    const row_slot<T, I> slot{out.columns + out.begin(i), out.values + out.begin(i), room, out.base,
                              s.shape.record(s.tails, L, R, i, work) ? s.shape.place : nullptr};
    const bool spread = scattered(s.tails, R, i);
    s.fetch_ahead = spread;
    const I sorted = spread && s.sorter != nullptr ? sorted_row(*s.sorter, s.tails, R, i, slot) : -1;
    if (sorted >= 0) {
        s.shape.record_columns(slot.columns, sorted, i, out.base, sorted <= room);
    } else {
        const I n = merged_row(s.tails, R, slot);
        s.shape.record_columns(slot.columns, n, i, out.base, s.tails.count == 0);
    }
}

// Row i's products added into the accumulator x, its new columns listed in cols (at most room of
// them); returns how many. Fits: the list is the caller's buffer of ranked_row (+ spares), whose
// slot is written before it is known to be needed, so that the loop has no branch.
template <bool Fits, class T, class I>
[[gnu::always_inline]] inline I accumulate_row(const operand_rows<T, I> &L, const operand_rows<T, I> &R,
                                               const chunk_scratch<I> &scratch, I i, T *x, I *cols, I room)
{
    const I stamp = numeric_stamp(i), r_base = R.base;
    const I *r_col = R.index;
    I *marker = scratch.marker;
    I n = 0;
    for (I p = L.begin(i); p < L.end(i); ++p) {
        const I k = L.index[p] - L.base;
        const T a = L.values[p];
        I end;
        const I q0 = advance_cursor(R, scratch.start_offset, k, i, end);
        for (I q = q0; q < end; ++q) {
            const I j = r_col[q] - r_base;
            mul_add(x[j], a, R.values[q]);
            if constexpr (Fits) {
                cols[n < ranked_row ? n : ranked_row] = j;
                n += marker[j] != stamp;
                marker[j] = stamp;
            } else if (marker[j] != stamp && n < room) {
                marker[j] = stamp;
                cols[n++] = j;
            }
        }
    }
    return n;
}

// The accumulated route: the row's columns listed, sorted and gathered from x, which is cleared.
template <class T, class I>
[[gnu::always_inline]] inline void accumulated_row(const operand_rows<T, I> &L, const operand_rows<T, I> &R,
                                                   const chunk_scratch<I> &scratch, I i, T *x,
                                                   const result_rows<T, I> &out)
{
    I list[ranked_row + 8]; // spares: a slot is written before it is known to be needed; rank_sort pads
    I sorted[ranked_row];
    const I room = out.room(i);
    I *out_cols = out.columns + out.begin(i);
    T *out_vals = out.values + out.begin(i);
    I *cols = out_cols;
    I n;
    if (room <= ranked_row) {
        n = std::min(accumulate_row<true>(L, R, scratch, i, x, list, room), room); // the row pointer bounds the row
        rank_sort(list, n, sorted);
        cols = sorted;
    } else {
        n = accumulate_row<false>(L, R, scratch, i, x, out_cols, room);
        sort_columns(out_cols, n);
    }
    for (I t = 0; t < n; ++t) {
        const I j = cols[t];
        out_vals[t] = x[j];
        x[j] = T(0);
        out_cols[t] = j + out.base;
    }
}

// Collects row i's distinct columns into out (unsorted, at most room: the row's counted length,
// so that a row pointer inconsistent with the operands cannot write past the row), marking them
// with the numeric stamp.
template <class T, class I>
inline I collect_row(const operand_rows<T, I> &L, const operand_rows<T, I> &R, const chunk_scratch<I> &scratch, I i,
                     I *out, I room)
{
    const I stamp = numeric_stamp(i), r_base = R.base;
    const I *r_col = R.index;
    I *marker = scratch.marker;
    I n = 0;
    for (I p = L.begin(i); p < L.end(i); ++p) {
        const I k = L.index[p] - L.base;
        I end;
        const I q0 = advance_cursor(R, scratch.start_offset, k, i, end);
        for (I q = q0; q < end; ++q) {
            const I j = r_col[q] - r_base;
            if (marker[j] != stamp && n < room) {
                marker[j] = stamp;
                out[n++] = j;
            }
        }
    }
    return n;
}

// Row i's columns collected and sorted into the output; each column's marker then holds its
// place there. Returns how many.
template <class T, class I>
inline I place_columns(const operand_rows<T, I> &L, const operand_rows<T, I> &R, const chunk_scratch<I> &scratch, I i,
                       const result_rows<T, I> &out)
{
    const I first = out.begin(i);
    I *cols = out.columns + first;
    const I n = collect_row(L, R, scratch, i, cols, out.room(i));
    sort_columns(cols, n);
    for (I t = 0; t < n; ++t)
        scratch.marker[cols[t]] = first + t;
    return n;
}

// The long route of a CSR row: columns placed first, products added straight into the output.
template <class T, class I>
void long_row(const operand_rows<T, I> &L, const operand_rows<T, I> &R, const chunk_scratch<I> &scratch, I i,
              const result_rows<T, I> &out)
{
    const I first = out.begin(i);
    const I n = place_columns(L, R, scratch, i, out);
    std::fill(out.values + first, out.values + first + n, T(0));
    for (I p = L.begin(i); p < L.end(i); ++p) {
        const I k = L.index[p] - L.base;
        const T a = L.values[p];
        const I end = R.end(k);
        for (I q = cursor_position(R, scratch.start_offset, k, i); q < end; ++q) {
            const I place = scratch.marker[R.index[q] - R.base];
            if (place >= first) // only a column cut off by the room has none
                mul_add(out.values[place], a, R.values[q]);
        }
    }
    for (I t = 0; t < n; ++t)
        out.columns[first + t] += out.base;
}

// The dense accumulator of the chunk's long rows, taken at the first one.
template <class T> struct row_accumulator {
    scratch_array<T> x;
    bool tried = false;

    // Null when the memory cannot be had.
    T *get(size_t columns)
    {
        if (!tried) {
            tried = true;
            x = scratch_array<T>(columns, alignment);
            if (x)
                std::fill(x.get(), x.get() + columns, T(0));
        }
        return x.get();
    }
};

// The chunk's CSR rows, each by its route (m = R.extent columns).
template <class T, class I>
void syrk_numeric(row_chunk<I> chunk, operand_rows<T, I> L, operand_rows<T, I> R, chunk_scratch<I> scratch,
                  result_rows<T, I> out)
{
    numeric_rows<T, I> s;
    row_accumulator<T> accumulator;
    for (I i = chunk.first; i < chunk.end; ++i) {
        if (L.length(i) <= short_row_entries) {
            const I taken = numeric_repeated(s, L, R, i, chunk.end, out);
            if (taken > 0)
                i += taken - 1;
            else
                numeric_short_row(s, L, R, scratch.start_offset, i, chunk.end, out);
            continue;
        }
        s.repeats.flush(s.shape, out.base);
        if (T *x = accumulator.get(static_cast<size_t>(R.extent)))
            accumulated_row(L, R, scratch, i, x, out);
        else
            long_row(L, R, scratch, i, out);
    }
    s.repeats.flush(s.shape, out.base);
}

// c += a·b for bs×bs blocks stored row-major or column-major.
template <class T, class I> inline void block_mul_add(T *c, const T *a, const T *b, I bs, bool col_major)
{
    for (I r = 0; r < bs; ++r)
        for (I t = 0; t < bs; ++t) {
            const T art = col_major ? a[t * bs + r] : a[r * bs + t];
            for (I s = 0; s < bs; ++s) {
                if (col_major)
                    mul_add(c[s * bs + r], art, b[s * bs + t]);
                else
                    mul_add(c[r * bs + s], art, b[t * bs + s]);
            }
        }
}

// The chunk's block rows: block (I, J) = Σ_K L(I,K)·R(K,J), J >= I, blocks of L.block² values in
// the order col_major gives.
template <class T, class I>
void syrk_block_numeric(row_chunk<I> chunk, operand_rows<T, I> L, operand_rows<T, I> R, chunk_scratch<I> scratch,
                        result_rows<T, I> out, bool col_major)
{
    const I bs = L.block;
    const int64_t bb = L.block_area();
    for (I i = chunk.first; i < chunk.end; ++i) {
        const I first = out.begin(i);
        const I n = place_columns(L, R, scratch, i, out);
        std::fill(out.values + first * bb, out.values + (first + n) * bb, T(0));
        for (I p = L.begin(i); p < L.end(i); ++p) {
            const I k = L.index[p] - L.base;
            const I end = R.end(k);
            for (I q = cursor_position(R, scratch.start_offset, k, i); q < end; ++q) {
                const I place = scratch.marker[R.index[q] - R.base];
                if (place >= first)
                    block_mul_add(out.values + place * bb, L.values + p * bb, R.values + q * bb, bs, col_major);
            }
        }
        for (I t = 0; t < n; ++t)
            out.columns[first + t] += out.base;
    }
}

} // namespace zel::sparse_syrk
