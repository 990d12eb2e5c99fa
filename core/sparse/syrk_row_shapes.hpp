// Short rows that repeat the shape of the row before them, formed without reading their tails.
//
// The shape of a short row (row_shape), relative to its index: where each non-empty tail starts
// in its R row and how long it is, the row's count, and in the numeric pass each product's place
// in the row and the row's columns less the row index. Row i repeats the shape of row i - 1 when
// its L columns are those of row i - 1 shifted by one and every R row k it references holds the
// columns of row k - 1 shifted by one (same length); each tail then starts one column further, at
// the same place in its row. Stencil matrices repeat it on every row away from the grid edges;
// scattered patterns fail the test at the first L column.
//
// Route of a row that repeats the shape:
//   symbolic  takes the count of the shape, for a run of up to symbolic_repeat_run rows at once.
//   numeric   joins the block of repeated_rows::block rows formed together (repeated_rows): each
//             product of the shape for all the block's rows at once, in 512-bit lanes for real
//             values when the processor has them and the shape fits (repeat_rows.hpp), else in
//             portable code, with the same additions in the same order.
// Whether an R row follows the one before it is found once, as the rows asked for move forward,
// and kept as bits (follows_window); each L entry keeps how far along its chain of R rows the
// answer is yes.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "repeat_rows.hpp"
#include "row_sort.hpp"
#include "syrk_short_rows.hpp"
#include "zel_internal/scratch.hpp"

namespace zel::sparse_syrk {

// Most rows of a repeating shape that the symbolic pass takes in one test.
constexpr int symbolic_repeat_run = 64;

// Whether row k of `rows` holds the columns of row k - 1, each one further on (same length).
template <class T, class I> bool follows(const operand_rows<T, I> &rows, I k)
{
    if (k == 0)
        return false;
    const I before = rows.begin(k - 1), begin = rows.begin(k);
    const I length = rows.end(k) - begin;
    if (length != rows.end(k - 1) - before)
        return false;
    for (I t = 0; t < length; ++t)
        if (rows.index[begin + t] - rows.index[before + t] != 1)
            return false;
    return true;
}

// The first row in [from, to) that does not follow the row before it; `to` when all do. Rows
// stored end to end with one length, as a stencil's are, take one flat sweep over their columns,
// which the compiler runs in vectors.
template <class T, class I> I first_unfollowing(const operand_rows<T, I> &rows, I from, I to)
{
    if (from >= to)
        return to;
    if (from == 0)
        return 0;
    if (!rows.three_array()) {
        for (I r = from; r < to; ++r)
            if (!follows(rows, r))
                return r;
        return to;
    }
    const I first = rows.starts[from - 1], length = rows.starts[from] - first;
    I last = from; // rows [from, last) have the length of row from - 1
    while (last < to && rows.starts[last + 1] - rows.starts[last] == length)
        ++last;
    const I *c = rows.index + (first - rows.base);
    const int64_t n = int64_t(last - from) * length;
    I differ = 0; // zero while every difference is 1: a plain loop, so that it vectorizes
    for (int64_t p = 0; p < n; ++p)
        differ |= (c[p + length] - c[p]) ^ 1;
    if (differ == 0)
        return last;
    int64_t p = 0;
    while (c[p + length] - c[p] == 1)
        ++p;
    return from + static_cast<I>(p / length);
}

// follows() over a window of consecutive R rows, as bits, found in order as the rows asked for
// move forward: a stencil's rows reference each R row from several rows apart, and each is compared
// with the row before it once. No row past the furthest one asked for is read (R's extent is not
// known here). A jump forward starts the window afresh rather than compare the gap; rows behind
// the window, or all rows when the bits cannot be had, are compared each time they are asked for.
template <class I> class follows_window {
public:
    // A row b >= from such that rows [from, b) all follow the row before them, and either b >= to
    // or row b does not.
    template <class T> I next_break(const operand_rows<T, I> &R, I from, I to)
    {
        if ((to > high_ && !extend(R, from, to)) || from < low_)
            return first_unfollowing(R, from, to);
        // Beyond `to` as far as the bits reach, so that the entries behind the leading one ask rarely.
        const I end = std::max(to, static_cast<I>(std::min<int64_t>(high_, int64_t(from) + 128)));
        I r = from;
        while (r < end) {
            const int offset = static_cast<int>(r & 63);
            const int run = std::min(std::countr_zero(~(word(r) >> offset)), 64 - offset);
            r += run;
            if (run < 64 - offset)
                break;
        }
        return std::min(r, high_);
    }

private:
    // Compares the rows up to `to`; false when there are no bits to keep the answers in.
    template <class T> bool extend(const operand_rows<T, I> &R, I from, I to)
    {
        if (!started_) {
            started_ = true;
            bits_ = scratch_array<uint64_t>(size_t(words), 64);
        }
        if (!bits_)
            return false;
        if (int64_t(from) - high_ > gap)
            low_ = high_ = from;
        while (high_ < to) {
            const I b = first_unfollowing(R, high_, to);
            for (; high_ < b; ++high_)
                word(high_) |= uint64_t(1) << (high_ & 63);
            if (high_ < to) {
                word(high_) &= ~(uint64_t(1) << (high_ & 63));
                ++high_;
            }
        }
        if (int64_t(high_) - low_ > window)
            low_ = static_cast<I>(high_ - window);
        return true;
    }

    uint64_t &word(I r) const { return bits_[size_t(r >> 6) % words]; }

    static constexpr int64_t window = int64_t(1) << 20, words = window / 64, gap = 4096;
    scratch_array<uint64_t> bits_;
    bool started_ = false;
    I low_ = 0, high_ = 0; // bits held for rows [low_, high_)
};

// The shape of the last short row recorded, and the test whether the rows after it repeat it.
template <class I> struct row_shape {
    static constexpr int capacity = int(sort_capacity);
    I row = -1; // the row recorded or last matched; -1: none
    unsigned recorded = 0; // counts the shapes recorded
    int entries = 0;
    int tails = 0;
    int tail_entry[short_row_entries];
    I tail_offset[short_row_entries], tail_length[short_row_entries];
    I distinct = 0;
    uint64_t work = 0;
    I column[capacity];
    uint8_t place[capacity];
    follows_window<I> window;
    // Per L entry: every R row from the one it references up to this one (exclusive) follows the
    // row before it. Cleared when a row is recorded.
    I followed_until[short_row_entries];

    // How many rows from i on, at most limit, repeat the shape, each shifted by one from the row
    // before it; 0 unless row i - 1 holds the shape. The L rows are compared first: where they do
    // not repeat, the test fails without touching R.
    template <class T> I repeat_run(const operand_rows<T, I> &L, const operand_rows<T, I> &R, I i, I limit)
    {
        if (row < 0 || row != i - 1)
            return 0;
        I run = first_unfollowing(L, i, i + limit) - i;
        const I *cols = L.index + L.begin(i);
        for (int t = 0; t < entries && run > 0; ++t) { // the chain of R rows each L entry walks along
            const I k = cols[t] - L.base;
            if (followed_until[t] < k + run)
                followed_until[t] = window.next_break(R, std::max(followed_until[t], k), k + run);
            run = std::min(run, followed_until[t] - k);
        }
        if (run > 0)
            row = i + run - 1;
        return run;
    }

    // Takes row i's shape from its gathered tails; false, with nothing recorded, when they hold more
    // products than the numeric pass can place.
    template <class T>
    bool record(const row_tails<T, I> &gathered, const operand_rows<T, I> &L, const operand_rows<T, I> &R, I i,
                uint64_t row_work)
    {
        row = -1;
        I products = 0;
        for (int t = 0; t < gathered.count; ++t) {
            const I k = L.index[L.begin(i) + gathered.entry[t]] - L.base;
            tail_entry[t] = gathered.entry[t];
            tail_offset[t] = gathered.pos[t] - R.begin(k);
            tail_length[t] = gathered.end[t] - gathered.pos[t];
            products += tail_length[t];
        }
        if (products > capacity)
            return false;
        entries = static_cast<int>(L.length(i));
        std::fill(followed_until, followed_until + entries, I(0));
        tails = gathered.count;
        work = row_work;
        row = i;
        ++recorded;
        return true;
    }

    // The numeric pass's part, from the row just written: cols (carrying base) holds n columns, and
    // complete says whether every product found its place.
    void record_columns(const I *cols, I n, I i, I base, bool complete)
    {
        if (row != i)
            return;
        if (!complete) {
            row = -1;
            return;
        }
        distinct = n;
        for (I s = 0; s < n; ++s)
            column[s] = cols[s] - base - i;
    }
};

// Rows of the numeric pass that repeat the recorded shape, formed a block at a time: walking the
// shape's tails and places, whose short and varying trip counts cost more than the arithmetic, is
// paid once per block, and the block's sums build up side by side with no add waiting on another.
template <class T, class I> class repeated_rows {
public:
    static constexpr int block = 8;

    // Takes row i, whose shape matched, with its place in the output. The rows' L values, the R
    // rows of the last tail (the furthest, read here for the first time in a stencil) and the
    // output are streams that the processor does not fetch ahead well enough by itself.
    void add(const row_shape<I> &shape, const operand_rows<T, I> &L, const operand_rows<T, I> &R, I i, I *cols,
             T *vals)
    {
        // In locals: the stores below may reach wherever the views live, as far as the compiler knows.
        const T *l_values = L.values, *r_values = R.values;
        const I *l_col = L.index, *r_starts = R.starts;
        const I l_base = L.base, r_base = R.base, l_begin = L.begin(i);
        __builtin_prefetch(l_values + l_begin + 64);
        for (int t = 0; t < shape.tails; ++t) {
            const I p = l_begin + shape.tail_entry[t];
            factor_[t][rows_] = l_values[p];
            values_[t][rows_] = r_values + (r_starts[l_col[p] - l_base] - r_base + shape.tail_offset[t]);
        }
        if (shape.tails > 0)
            __builtin_prefetch(values_[shape.tails - 1][rows_] + 64);
        __builtin_prefetch(cols + 64, 1);
        __builtin_prefetch(vals + 64, 1);
        row_[rows_] = i;
        cols_[rows_] = cols;
        vals_[rows_] = vals;
        ++rows_;
    }

    bool full() const { return rows_ == block; }
    int room() const { return block - rows_; }

    // Writes the rows taken so far; the shape may be recorded anew after this.
    void flush(const row_shape<I> &shape, I base)
    {
        if (rows_ == 0)
            return;
        if (!formed_in_lanes(shape))
            sum_block(shape);
        for (int r = 0; r < rows_; ++r)
            shifted_columns(cols_[r], shape.column, shape.distinct, row_[r] + base);
        rows_ = 0;
    }

private:
    // to[s] = column[s] + shift. Restricted: otherwise each store through `to` may change the
    // shape's count and columns, as far as the compiler knows, and the loop runs a column at a time.
    static void shifted_columns(I *__restrict to, const I *__restrict column, I n, I shift)
    {
        for (I s = 0; s < n; ++s)
            to[s] = column[s] + shift;
    }

    // The vector former's lane tables, for real values.
    using lanes_t = std::conditional_t<std::is_same_v<T, double>, repeat_lanes_f64,
                                       std::conditional_t<std::is_same_v<T, float>, repeat_lanes_f32, void>>;
    static constexpr bool has_lanes = !std::is_void_v<lanes_t>;
    static constexpr int lane_width = std::is_same_v<T, float> ? 16 : 8;

    // The block's sums by the vector former, when there is one and the shape fits its lanes.
    bool formed_in_lanes(const row_shape<I> &shape)
    {
        if constexpr (has_lanes) {
            if (repeat_former_active == nullptr)
                return false;
            if (lanes_shape_ != shape.recorded) {
                lanes_shape_ = shape.recorded;
                lanes_fit_ = fill_lanes(shape);
            }
            if (!lanes_fit_)
                return false;
            if constexpr (std::is_same_v<T, double>)
                repeat_former_active->f64(lanes_, rows_, block, &factor_[0][0], &values_[0][0], vals_);
            else
                repeat_former_active->f32(lanes_, rows_, block, &factor_[0][0], &values_[0][0], vals_);
            return true;
        }
        return false;
    }

    // Which product of each tail lands on which of the row's places; false when a tail or the row
    // is wider than the lanes.
    bool fill_lanes(const row_shape<I> &shape)
    {
        if constexpr (has_lanes) {
            if (shape.distinct > 16)
                return false;
            lanes_ = {};
            lanes_.tails = shape.tails;
            lanes_.distinct = static_cast<int>(shape.distinct);
            const uint8_t *place = shape.place;
            for (int t = 0; t < shape.tails; ++t) {
                const I length = shape.tail_length[t];
                if (length > lane_width)
                    return false;
                lanes_.load[t] = static_cast<std::remove_reference_t<decltype(lanes_.load[t])>>((1u << length) - 1u);
                for (I q = 0; q < length; ++q) {
                    const int at = *place++;
                    if constexpr (std::is_same_v<T, double>) {
                        lanes_.index[t][at / 8][at % 8] = q;
                        lanes_.mask[t][at / 8] |= static_cast<uint8_t>(1u << (at % 8));
                    } else {
                        lanes_.index[t][at] = static_cast<int32_t>(q);
                        lanes_.mask[t] |= static_cast<uint16_t>(1u << at);
                    }
                }
            }
            return true;
        }
        return false;
    }

    // The block's sums, lane by lane in portable code.
    void sum_block(const row_shape<I> &shape)
    {
        for (int r = rows_; r < block; ++r) // unused lanes repeat the first row and are not written
            for (int t = 0; t < shape.tails; ++t) {
                factor_[t][r] = factor_[t][0];
                values_[t][r] = values_[t][0];
            }
        T sum[row_shape<I>::capacity][block];
        for (I s = 0; s < shape.distinct; ++s)
            for (int r = 0; r < block; ++r)
                sum[s][r] = T(0);
        const uint8_t *place = shape.place;
        for (int t = 0; t < shape.tails; ++t)
            for (I q = 0; q < shape.tail_length[t]; ++q) {
                T *to = sum[*place++];
                for (int r = 0; r < block; ++r)
                    to[r] += mul(factor_[t][r], values_[t][r][q]);
            }
        for (int r = 0; r < rows_; ++r)
            for (I s = 0; s < shape.distinct; ++s)
                vals_[r][s] = sum[s][r];
    }

    int rows_ = 0;
    T factor_[short_row_entries][block];
    const T *values_[short_row_entries][block];
    I row_[block];
    I *cols_[block];
    T *vals_[block];
    struct no_lanes {};
    std::conditional_t<has_lanes, lanes_t, no_lanes> lanes_;
    unsigned lanes_shape_ = ~0u; // the shape the lane tables were filled for
    bool lanes_fit_ = false;
};

} // namespace zel::sparse_syrk
