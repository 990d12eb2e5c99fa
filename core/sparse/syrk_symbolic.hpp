// Symbolic pass of the sparse result: the number of distinct columns j >= i of every row i of a
// chunk, and the products walked for it.
//
// Routes of row i:
//   repeated  at most short_row_entries L entries and the shape of the row before it
//             (syrk_row_shapes.hpp): the shape's count, for a run of rows at once.
//   stamped   short, columns within stamped_span of the row: the tails stamp the marker.
//   sorted    short, columns further apart, at most sort_capacity products, a vector sorter on
//             this processor: distinct columns counted by vector compares.
//   merged    short otherwise: the tails are merged (syrk_short_rows.hpp).
//   long      more L entries: every product stamps the marker with the row's stamp.
#pragma once

#include <algorithm>
#include <cstdint>

#include "row_sort.hpp"
#include "syrk_common.hpp"
#include "syrk_row_shapes.hpp"
#include "syrk_short_rows.hpp"

namespace zel::sparse_syrk {

// What the symbolic pass carries from one short row to the next.
template <class I> struct symbolic_rows {
    row_tails<char, I> tails;
    row_shape<I> shape;
    bool fetch_ahead = true; // while the rows are scattered
    const row_sorter *sorter = row_sorter_active;
};

// Rows from i on that repeat the recorded shape take its count; returns how many did (0: none).
template <class I>
[[gnu::always_inline]] inline I symbolic_repeated(symbolic_rows<I> &s, const operand_rows<char, I> &L,
                                                  const operand_rows<char, I> &R, I i, I row_end,
                                                  const row_counts<I> &out)
{
    const I run = s.shape.repeat_run(L, R, i, std::min<I>(row_end - i, symbolic_repeat_run));
    if (run > 0) {
        std::fill(out.counts + i + 1, out.counts + i + 1 + run, s.shape.distinct);
        std::fill(out.work + i + 1, out.work + i + 1 + run, s.shape.work);
    }
    return run;
}

// A short row from its tails, by stamping, the sorter or merging; its shape is recorded.
template <class I>
[[gnu::always_inline]] inline void symbolic_short_row(symbolic_rows<I> &s, const operand_rows<char, I> &L,
                                                      const operand_rows<char, I> &R,
                                                      const chunk_scratch<I> &scratch, I i, I row_end,
                                                      const row_counts<I> &out)
{
    if (s.fetch_ahead)
        prefetch_ahead<3, false>(L, R, scratch.start_offset, i, row_end);
    uint64_t work = 0;
    s.tails.template gather<false>(L, R, scratch.start_offset, i, work);
    out.work[i + 1] = work;
    s.shape.record(s.tails, L, R, i, work);
    const bool spread = scattered(s.tails, R, i);
    s.fetch_ahead = spread;
    I count = -1;
    if (!spread)
        count = stamped_count(s.tails, R, symbolic_stamp(i), scratch.marker);
    else if (s.sorter != nullptr)
        count = sorted_count(*s.sorter, s.tails, R, i);
    if (count < 0)
        count = merged_count(s.tails, R);
    out.counts[i + 1] = count;
    s.shape.distinct = count;
}

// A long row: every product stamps its column's marker, new columns counted.
template <class I>
[[gnu::always_inline]] inline void symbolic_long_row(const operand_rows<char, I> &L, const operand_rows<char, I> &R,
                                                     const chunk_scratch<I> &scratch, I i, const row_counts<I> &out)
{
    const I stamp = symbolic_stamp(i), r_base = R.base;
    const I *r_col = R.index;
    I *marker = scratch.marker;
    I count = 0;
    uint64_t work = 0;
    for (I p = L.begin(i); p < L.end(i); ++p) {
        const I k = L.index[p] - L.base;
        I end;
        const I q0 = advance_cursor(R, scratch.start_offset, k, i, end);
        work += static_cast<uint64_t>(end - q0);
        for (I q = q0; q < end; ++q) {
            const I j = r_col[q] - r_base;
            count += marker[j] != stamp;
            marker[j] = stamp;
        }
    }
    out.counts[i + 1] = count;
    out.work[i + 1] = work;
}

// The chunk's rows, each by its route.
template <class I>
void syrk_symbolic(row_chunk<I> chunk, operand_rows<char, I> L, operand_rows<char, I> R, chunk_scratch<I> scratch,
                   row_counts<I> out)
{
    symbolic_rows<I> s;
    for (I i = chunk.first; i < chunk.end; ++i) {
        if (L.length(i) > short_row_entries) {
            symbolic_long_row(L, R, scratch, i, out);
            continue;
        }
        const I run = symbolic_repeated(s, L, R, i, chunk.end, out);
        if (run > 0)
            i += run - 1;
        else
            symbolic_short_row(s, L, R, scratch, i, chunk.end, out);
    }
}

} // namespace zel::sparse_syrk
