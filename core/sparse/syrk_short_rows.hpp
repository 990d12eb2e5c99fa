// Rows of few L entries (at most short_row_entries), formed from the sorted tails (columns >= i)
// of the R rows they reference, with nothing indexed by column, which for scattered columns is a
// cache miss per product.
//
// Routes of a short row that does not repeat the shape of the row before it (syrk_row_shapes.hpp):
//   stamped  its columns lie within stamped_span of the row (symbolic pass only): count them by
//            stamping the marker, whose entries then stay in cache.
//   merged   columns close together (numeric pass), or no vector sorter: merge the tails; close
//            columns merge in regular patterns that the branch predictor learns from row to row.
//   sorted   columns reach further, up to sort_capacity products: the vector sorter compares every
//            product's column with all the others' at once, counting the distinct columns
//            (symbolic) or placing each product at its column's rank (numeric). A merge over
//            scattered columns mispredicts nearly every step.
//   merged   again for longer scattered tails, or keys out of the sorter's 32-bit range.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "repeat_rows.hpp"
#include "row_sort.hpp"
#include "syrk_common.hpp"

namespace zel::sparse_syrk {

// Rows with at most this many L entries are short.
constexpr int short_row_entries = 16;
static_assert(short_row_entries <= repeat_tails);

// Widest spread of columns (from the row itself) that the symbolic pass still counts by stamping.
constexpr int64_t stamped_span = int64_t(1) << 15;

// Where a short row goes: its columns (carrying base) and values, room for `room` of them, and,
// when place is not null, each product's place in the row (for the shape record).
template <class T, class I> struct row_slot {
    I *columns;
    T *values;
    I room;
    I base;
    uint8_t *place;
};

// The non-empty tails of the R rows that L's row i references, each with its current head column
// and L's factor. Merging them yields row i's columns sorted and distinct.
template <class T, class I> struct row_tails {
    I pos[short_row_entries], end[short_row_entries], head[short_row_entries];
    I first[short_row_entries]; // the product at position q of tail t is product first[t] + q of the row
    int entry[short_row_entries]; // the tail's L entry, from the row's first (as gathered: merging drops it)
    T factor[short_row_entries];
    int count = 0;

    // Takes row i's tails, advancing the cursors; work receives the products they hold.
    template <bool Values>
    void gather(const operand_rows<T, I> &L, const operand_rows<T, I> &R, I *start_offset, I i, uint64_t &work)
    {
        count = 0;
        I products = 0;
        const I l_begin = L.begin(i);
        for (I p = l_begin; p < L.end(i); ++p) {
            const I k = L.index[p] - L.base;
            I e;
            const I q = advance_cursor(R, start_offset, k, i, e);
            if (q >= e)
                continue;
            work += static_cast<uint64_t>(e - q);
            pos[count] = q;
            end[count] = e;
            first[count] = products - q;
            products += e - q;
            head[count] = R.index[q] - R.base;
            entry[count] = static_cast<int>(p - l_begin);
            if constexpr (Values)
                factor[count] = L.values[p];
            ++count;
        }
    }

    I smallest() const
    {
        I j = std::numeric_limits<I>::max();
        for (int t = 0; t < count; ++t)
            j = std::min(j, head[t]);
        return j;
    }

    // Steps every tail whose head is j past it, dropping tails that run out; `take` sees each
    // (tail, position) pair before the step. Returns the smallest head left (the next column).
    template <class F> I pop(I j, const operand_rows<T, I> &R, F take)
    {
        const I *r_col = R.index, r_base = R.base; // kept out of memory that take may write
        I next = std::numeric_limits<I>::max();
        for (int t = 0; t < count;) {
            if (head[t] != j) {
                next = std::min(next, head[t]);
                ++t;
                continue;
            }
            take(t, pos[t]);
            if (++pos[t] < end[t]) {
                head[t] = r_col[pos[t]] - r_base;
                next = std::min(next, head[t]);
                ++t;
                continue;
            }
            --count; // the last tail moves into slot t, which is looked at again
            pos[t] = pos[count];
            end[t] = end[count];
            head[t] = head[count];
            first[t] = first[count];
            factor[t] = factor[count];
        }
        return next;
    }
};

// Number of distinct columns in the tails, merged.
template <class I> I merged_count(row_tails<char, I> &tails, const operand_rows<char, I> &R)
{
    I n = 0;
    for (I j = tails.smallest(); tails.count > 1; ++n)
        j = tails.pop(j, R, [](int, I) {});
    if (tails.count == 1)
        n += tails.end[0] - tails.pos[0];
    return n;
}

// Number of distinct columns in the tails by stamping them in the marker.
template <class I>
I stamped_count(const row_tails<char, I> &tails, const operand_rows<char, I> &R, I stamp, I *marker)
{
    const I *r_col = R.index, r_base = R.base; // kept out of memory that the marker's stores may reach
    I n = 0;
    for (int t = 0; t < tails.count; ++t)
        for (I q = tails.pos[t]; q < tails.end[t]; ++q) {
            const I j = r_col[q] - r_base;
            n += marker[j] != stamp;
            marker[j] = stamp;
        }
    return n;
}

// Whether the tails' columns reach further than stamped_span past row i.
template <class T, class I> bool scattered(const row_tails<T, I> &tails, const operand_rows<T, I> &R, I i)
{
    I last = i;
    for (int t = 0; t < tails.count; ++t)
        last = std::max<I>(last, R.index[tails.end[t] - 1] - R.base);
    return int64_t(last) - i >= stamped_span;
}

// Row i of the product from its merged tails, at most slot.room columns. Returns the number written.
template <class T, class I>
I merged_row(row_tails<T, I> &tails, const operand_rows<T, I> &R, const row_slot<T, I> &slot)
{
    // Copies of its own: the stores through out.place may reach anything whose address is known.
    const row_slot<T, I> out = slot;
    const T *r_values = R.values;
    const I *r_col = R.index, r_base = R.base;
    I n = 0;
    for (I j = tails.smallest(); tails.count > 1 && n < out.room; ++n) {
        T sum{};
        const I next = tails.pop(j, R, [&](int t, I q) {
            mul_add(sum, tails.factor[t], r_values[q]);
            if (out.place != nullptr)
                out.place[tails.first[t] + q] = static_cast<uint8_t>(n);
        });
        out.columns[n] = j + out.base;
        out.values[n] = sum;
        j = next;
    }
    if (tails.count == 1) { // the last tail is copied out
        const T a = tails.factor[0];
        const I q0 = tails.pos[0];
        const I last = std::min<I>(tails.end[0] - q0, out.room - n);
        for (I t = 0; t < last; ++t) {
            out.columns[n + t] = r_col[q0 + t] - r_base + out.base;
            out.values[n + t] = mul(a, r_values[q0 + t]);
            if (out.place != nullptr)
                out.place[tails.first[0] + q0 + t] = static_cast<uint8_t>(n + t);
        }
        n += last;
        tails.pos[0] += last;
        if (tails.pos[0] == tails.end[0])
            tails.count = 0;
    }
    return n;
}

// The tails' columns as keys relative to row i (padded for the sorter), with the products when
// Values. False when they are more than sort_capacity or a key leaves the 32-bit range.
template <bool Values, class T, class I>
bool tail_keys(const row_tails<T, I> &tails, const operand_rows<T, I> &R, I i, int32_t *keys, uint32_t &n,
               T *products = nullptr)
{
    n = 0;
    for (int t = 0; t < tails.count; ++t) {
        if (tails.end[t] - tails.pos[t] > I(sort_capacity - n))
            return false;
        for (I q = tails.pos[t]; q < tails.end[t]; ++q, ++n) {
            const int64_t key = int64_t(R.index[q] - R.base) - int64_t(i);
            if (key <= -int64_t(sort_pad) || key >= int64_t(sort_pad))
                return false;
            keys[n] = static_cast<int32_t>(key);
            if constexpr (Values)
                products[n] = mul(tails.factor[t], R.values[q]);
        }
    }
    pad_keys(keys, n);
    return true;
}

// Distinct columns of the tails by the vector sorter; -1 when they do not fit it.
template <class I>
I sorted_count(const row_sorter &sorter, const row_tails<char, I> &tails, const operand_rows<char, I> &R, I i)
{
    alignas(64) int32_t keys[sort_capacity];
    uint32_t n;
    if (!tail_keys<false>(tails, R, i, keys, n))
        return -1;
    return static_cast<I>(sorter.count(keys, n));
}

// Row i from its tails by the vector sorter: every product lands at the rank of its column among
// the row's distinct columns (at most out.room of them are written), which out.place, when given,
// receives. Returns the number of distinct columns, -1 when the tails do not fit. Kept out of line
// so that the merge loop around it keeps its registers.
template <class T, class I>
[[gnu::noinline]] I sorted_row(const row_sorter &sorter, const row_tails<T, I> &tails, const operand_rows<T, I> &R, I i,
                               const row_slot<T, I> &slot)
{
    const row_slot<T, I> out = slot; // a copy of its own, as in merged_row
    alignas(64) int32_t keys[sort_capacity];
    alignas(64) T products[sort_capacity];
    uint32_t rank[sort_capacity], n;
    if (!tail_keys<true>(tails, R, i, keys, n, products))
        return -1;
    const uint32_t distinct = sorter.ranks(keys, n, rank);
    std::fill(out.values, out.values + std::min<int64_t>(distinct, std::max<I>(out.room, 0)), T(0));
    for (uint32_t e = 0; e < n; ++e)
        if (I(rank[e]) < out.room) {
            out.columns[rank[e]] = I(keys[e]) + i + out.base;
            out.values[rank[e]] += products[e];
        }
    if (out.place != nullptr)
        for (uint32_t e = 0; e < n; ++e)
            out.place[e] = static_cast<uint8_t>(rank[e]);
    return static_cast<I>(distinct);
}

// Fetches ahead what the rows after i will read: the row headers and cursors of R rows that row
// i + 2·Ahead references, and the tails (at their cursors, fetched for it Ahead rows earlier) for
// row i + Ahead, first and last line. With scattered columns every one of them is a cache miss
// that would otherwise stall the row. The symbolic pass's rows take less time, so it looks further
// ahead. Always inlined: out of line, the compiler finds the function free of effects and drops
// the call, fetches and all.
template <int Ahead, bool Values, class T, class I>
[[gnu::always_inline]] inline void prefetch_ahead(const operand_rows<T, I> &L, const operand_rows<T, I> &R,
                                                  const I *start_offset, I i, I row_end)
{
    if (i + 2 * Ahead < row_end)
        for (I p = L.begin(i + 2 * Ahead); p < L.end(i + 2 * Ahead); ++p) {
            const I k = L.index[p] - L.base;
            __builtin_prefetch(R.starts + k);
            __builtin_prefetch(start_offset + k);
        }
    if (i + Ahead < row_end)
        for (I p = L.begin(i + Ahead); p < L.end(i + Ahead); ++p) {
            const I k = L.index[p] - L.base;
            const I q = R.begin(k) + start_offset[k], last = R.end(k) - 1;
            __builtin_prefetch(R.index + q);
            __builtin_prefetch(R.index + last);
            if constexpr (Values) {
                __builtin_prefetch(R.values + q);
                __builtin_prefetch(R.values + last);
            }
        }
}

} // namespace zel::sparse_syrk
