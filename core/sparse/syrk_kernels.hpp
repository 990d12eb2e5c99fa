// Numeric kernels of the products of a sparse matrix with its own transpose, one chunk of rows
// per call. L is the left operand, R the right one (rows indexed by L's columns, sorted rows).
#pragma once

#include <algorithm>
#include <bit>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "repeat_rows.hpp"
#include "row_sort.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse_syrk {

// c += a·b without the library's NaN-recovery path for complex operands.
template <class T> inline void mul_add(T &c, T a, T b)
{
    if constexpr (is_complex_v<T>) {
        using R = real_t<T>;
        R cr = c.real() + (a.real() * b.real() - a.imag() * b.imag());
        R ci = c.imag() + (a.real() * b.imag() + a.imag() * b.real());
        c = T(cr, ci);
    } else {
        c += a * b;
    }
}

template <class T> inline T mul(T a, T b)
{
    if constexpr (is_complex_v<T>)
        return T(a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real());
    else
        return a * b;
}

template <class T> inline bool is_one(T v) { return v == T(1); }

// Scales n values spaced by `step` by beta; beta = 0 clears them (NaN and Inf included).
template <class T> inline void scale(T *c, int64_t n, int64_t step, T beta)
{
    if (is_one(beta))
        return;
    if (beta == T(0)) {
        for (int64_t t = 0; t < n; ++t)
            c[t * step] = T(0);
    } else {
        for (int64_t t = 0; t < n; ++t)
            c[t * step] = mul(c[t * step], beta);
    }
}

// First position of R's row k holding a column >= i. The row's cursor moves there, or one
// further when that entry is i itself: rows of the chunk come in increasing order, and with R the
// transpose of L the next row to reference k is R's next entry, so the cursor rarely has to walk.
template <class I> inline I advance_cursor(I k, I i, I r_base, const I *r_col, const I *r_rows_start,
                                           const I *r_rows_end, I *start_offset, I &end)
{
    const I begin = r_rows_start[k] - r_base;
    end = r_rows_end[k] - r_base;
    I q = begin + start_offset[k];
    while (q < end && r_col[q] - r_base < i)
        ++q;
    start_offset[k] = q - begin + (q < end && r_col[q] - r_base == i);
    return q;
}

// The position advance_cursor returned for row i, from the cursor it left.
template <class I> inline I cursor_position(I k, I i, I r_base, const I *r_col, const I *r_rows_start,
                                            const I *start_offset)
{
    const I begin = r_rows_start[k] - r_base;
    const I q = begin + start_offset[k];
    return q > begin && r_col[q - 1] - r_base == i ? q - 1 : q;
}

// Blocked form of syrkd_n: the chunk's rows go in blocks whose L entries are chained by column k
// (rows ascending in every chain), so a right-hand row is fetched once per block rather than once
// per referencing row, and the block's rows of C stay in cache. Column-major C is summed in a
// buffer of the block's rows and written back column by column. False when scratch is short.
template <bool ColMajor, bool WithAlpha, class T, class I>
bool syrkd_n_blocked(I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col,
                     const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col,
                     const I *r_rows_start, const I *r_rows_end, I *start_offset, T *c, I ldc, T alpha, T beta)
{
    const int64_t ld = ldc;
    I columns = 0, longest = 0;
    for (I i = row_first; i < row_end; ++i) {
        longest = std::max(longest, l_rows_end[i] - l_rows_start[i]);
        for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p)
            columns = std::max(columns, l_col[p] - l_base + 1);
    }
    const I block_rows = static_cast<I>(std::clamp<int64_t>((int64_t(1) << 20) / (int64_t(rows) * sizeof(T) + 1), 1, 128));
    const size_t capacity = std::max<size_t>(size_t(longest), size_t(1) << 16);
    scratch_array<I> head(size_t(columns) + 1, 4096), next(capacity, 4096), entry_row(capacity, 4096),
        chain(capacity, 4096);
    scratch_array<T> entry_value(capacity, 4096), buffer;
    if constexpr (ColMajor)
        buffer = scratch_array<T>(size_t(block_rows) * size_t(rows), 4096);
    if (!head || !next || !entry_row || !chain || !entry_value || (ColMajor && !buffer))
        return false;
    std::fill(head.get(), head.get() + columns + 1, I(-1));
    if constexpr (ColMajor)
        std::fill(buffer.get(), buffer.get() + size_t(block_rows) * rows, T(0));
    const bool beta_zero = beta == T(0), beta_one = is_one(beta);
    for (I i0 = row_first; i0 < row_end;) {
        I i1 = i0;
        for (size_t used = 0; i1 < row_end && i1 - i0 < block_rows; ++i1) {
            used += size_t(l_rows_end[i1] - l_rows_start[i1]);
            if (used > capacity)
                break;
        }
        i1 = std::max<I>(i1, i0 + 1);
        if constexpr (!ColMajor)
            for (I i = i0; i < i1; ++i)
                scale(c + i * ld + i, rows - i, 1, beta);
        // Chains by k, built from the last row back so that each chain lists rows ascending.
        I chains = 0, e = 0;
        for (I i = i1 - 1; i >= i0; --i)
            for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p, ++e) {
                const I k = l_col[p] - l_base;
                entry_row[e] = i;
                entry_value[e] = WithAlpha ? mul(alpha, l_values[p]) : l_values[p];
                next[e] = head[k];
                if (head[k] < 0)
                    chain[chains++] = k;
                head[k] = e;
            }
        for (I t = 0; t < chains; ++t) {
            const I k = chain[t];
            for (I f = head[k]; f >= 0; f = next[f]) {
                const I i = entry_row[f];
                const T a = entry_value[f];
                I end;
                const I q0 = advance_cursor(k, i, r_base, r_col, r_rows_start, r_rows_end, start_offset, end);
                T *target = ColMajor ? buffer.get() + int64_t(i - i0) * rows : c + i * ld;
                for (I q = q0; q < end; ++q)
                    mul_add(target[r_col[q] - r_base], a, r_values[q]);
            }
            head[k] = -1;
        }
        if constexpr (ColMajor) {
            T *buf = buffer.get();
            for (int64_t j = i0; j < rows; ++j) {
                const I last = static_cast<I>(std::min<int64_t>(i1 - 1, j));
                for (I i = i0; i <= last; ++i) {
                    T &cij = c[i + j * ld];
                    T &sum = buf[int64_t(i - i0) * rows + j];
                    cij = beta_zero ? sum : beta_one ? cij + sum : mul(cij, beta) + sum;
                    sum = T(0);
                }
            }
        }
        i0 = i1;
    }
    return true;
}

// C(i, i:m) = beta·C(i, i:m) + alpha·L(i,:)·R(:, i:m) for the chunk's rows. A column-major C
// has its row i spread over m cache lines, so there the row is summed in a dense buffer first and
// C touched once per entry (straight into C when the buffer cannot be had).
template <bool ColMajor, bool WithAlpha, class T, class I>
void syrkd_n(I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col, const I *l_rows_start,
             const I *l_rows_end, I r_base, const T *r_values, const I *r_col, const I *r_rows_start,
             const I *r_rows_end, I *start_offset, T *c, I ldc, T alpha, T beta)
{
    if (syrkd_n_blocked<ColMajor, WithAlpha>(row_first, row_end, rows, l_base, l_values, l_col, l_rows_start,
                                             l_rows_end, r_base, r_values, r_col, r_rows_start, r_rows_end,
                                             start_offset, c, ldc, alpha, beta))
        return;
    const int64_t ld = ldc;
    scratch_array<T> buffer;
    if constexpr (ColMajor)
        buffer = scratch_array<T>(static_cast<size_t>(rows), 4096);
    T *row = buffer.get();
    if (row != nullptr)
        std::fill(row, row + rows, T(0));
    for (I i = row_first; i < row_end; ++i) {
        T *target = row;
        int64_t step = 1;
        if (row == nullptr) {
            if constexpr (ColMajor) {
                scale(c + i + i * ld, rows - i, ld, beta);
                target = c + i;
                step = ld;
            } else {
                scale(c + i * ld + i, rows - i, 1, beta);
                target = c + i * ld;
            }
        }
        for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p) {
            const I k = l_col[p] - l_base;
            const T a = WithAlpha ? mul(alpha, l_values[p]) : l_values[p];
            I end;
            const I q0 = advance_cursor(k, i, r_base, r_col, r_rows_start, r_rows_end, start_offset, end);
            const I *cols = r_col + q0;
            const T *vals = r_values + q0;
            const I len = end - q0;
            if (step == 1) {
                for (I t = 0; t < len; ++t)
                    mul_add(target[cols[t] - r_base], a, vals[t]);
            } else {
                for (I t = 0; t < len; ++t)
                    mul_add(target[(cols[t] - r_base) * step], a, vals[t]);
            }
        }
        if (row != nullptr) { // C(i, j) = beta·C(i, j) + row[j], column-major
            const bool zero = beta == T(0), unit = is_one(beta);
            for (int64_t j = i; j < rows; ++j) {
                T &cij = c[i + j * ld];
                cij = zero ? row[j] : unit ? cij + row[j] : mul(cij, beta) + row[j];
                row[j] = T(0);
            }
        }
    }
}

// Upper triangle of C = beta·C + alpha·Σ_i A(i,:)ᴴ·A(i,:) over rows [row_first, row_end) of A.
template <bool ColMajor, bool WithAlpha, class T, class I>
void syrkd_t(I row_first, I row_end, I cols, I base, const T *values, const I *col_indx, const I *rows_start,
             const I *rows_end, T *c, I ldc, T alpha, T beta)
{
    const int64_t ld = ldc;
    if (!is_one(beta))
        for (int64_t j = 0; j < cols; ++j) {
            if constexpr (ColMajor)
                scale(c + j * ld, j + 1, 1, beta); // column j, rows 0..j
            else
                scale(c + j * ld + j, cols - j, 1, beta);
        }
    for (I i = row_first; i < row_end; ++i) {
        const I begin = rows_start[i] - base, end = rows_end[i] - base;
        for (I p = begin; p < end; ++p) {
            const int64_t j = col_indx[p] - base;
            T a = conj_if(values[p], true);
            if constexpr (WithAlpha)
                a = mul(alpha, a);
            for (I q = begin; q < end; ++q) {
                const int64_t k = col_indx[q] - base;
                if (k < j)
                    continue;
                if constexpr (ColMajor)
                    mul_add(c[j + k * ld], a, values[q]);
                else
                    mul_add(c[j * ld + k], a, values[q]);
            }
        }
    }
}

// Marks of the passes over the marker array, all below the chunk preparation's -1 and -2 and
// below every position in the output (>= 0), which the numeric pass stores there.
template <class I> constexpr I symbolic_stamp(I i) { return -(2 * i + 3); }
template <class I> constexpr I numeric_stamp(I i) { return -(2 * i + 4); }

// Fetches ahead what the rows after i will read: the row headers and cursors of R rows that row
// i + 2·Ahead references, and the tails (at their cursors, fetched for it Ahead rows earlier) for
// row i + Ahead, first and last line. With scattered columns every one of them is a cache miss
// that would otherwise stall the row. The symbolic pass's rows take less time, so it looks further
// ahead. Always inlined: out of line, the compiler finds the function free of effects and drops
// the call, fetches and all.
template <int Ahead, bool Values, class T, class I>
[[gnu::always_inline]] inline void prefetch_ahead(I i, I row_end, I l_base, const I *l_col, const I *l_rows_start,
                                                  const I *l_rows_end, I r_base, const T *r_values, const I *r_col,
                                                  const I *r_rows_start, const I *r_rows_end, const I *start_offset)
{
    if (i + 2 * Ahead < row_end)
        for (I p = l_rows_start[i + 2 * Ahead] - l_base; p < l_rows_end[i + 2 * Ahead] - l_base; ++p) {
            const I k = l_col[p] - l_base;
            __builtin_prefetch(r_rows_start + k);
            __builtin_prefetch(start_offset + k);
        }
    if (i + Ahead < row_end)
        for (I p = l_rows_start[i + Ahead] - l_base; p < l_rows_end[i + Ahead] - l_base; ++p) {
            const I k = l_col[p] - l_base;
            const I q = r_rows_start[k] - r_base + start_offset[k], last = r_rows_end[k] - r_base - 1;
            __builtin_prefetch(r_col + q);
            __builtin_prefetch(r_col + last);
            if constexpr (Values) {
                __builtin_prefetch(r_values + q);
                __builtin_prefetch(r_values + last);
            }
        }
}

// Rows with at most this many L entries are formed by merging the tails of their R rows.
constexpr int few_lists = 16;
static_assert(few_lists <= repeat_tails);

// Most rows of a repeating shape that the symbolic pass takes in one test.
constexpr int repeat_span = 64;

// The non-empty tails (columns >= i) of the R rows that L's row i references, each with its
// current head column and L's factor. Merging them yields row i's columns sorted and distinct
// without touching anything indexed by column, which for scattered columns is a cache miss each.
template <class T, class I> struct row_tails {
    I pos[few_lists], end[few_lists], head[few_lists];
    I first[few_lists]; // the product at position q of tail t is product first[t] + q of the row
    int entry[few_lists]; // the tail's L entry, counted from the row's first (as gathered: merging drops it)
    T factor[few_lists];
    int count = 0;

    template <bool Values>
    void gather(I i, I l_base, const T *l_values, const I *l_col, I l_begin, I l_end, I r_base, const I *r_col,
                const I *r_rows_start, const I *r_rows_end, I *start_offset, uint64_t &work)
    {
        count = 0;
        I products = 0;
        for (I p = l_begin; p < l_end; ++p) {
            const I k = l_col[p] - l_base;
            I e;
            const I q = advance_cursor(k, i, r_base, r_col, r_rows_start, r_rows_end, start_offset, e);
            if (q >= e)
                continue;
            work += static_cast<uint64_t>(e - q);
            pos[count] = q;
            end[count] = e;
            first[count] = products - q;
            products += e - q;
            head[count] = r_col[q] - r_base;
            entry[count] = static_cast<int>(p - l_begin);
            if constexpr (Values)
                factor[count] = l_values[p];
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
    template <class F> I pop(I j, I r_base, const I *r_col, F take)
    {
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
template <class I> I merged_count(row_tails<char, I> &tails, I r_base, const I *r_col)
{
    I n = 0;
    for (I j = tails.smallest(); tails.count > 1; ++n)
        j = tails.pop(j, r_base, r_col, [](int, I) {});
    if (tails.count == 1)
        n += tails.end[0] - tails.pos[0];
    return n;
}

// Number of distinct columns in the tails by stamping them in the marker: quicker than merging
// while the row's columns lie close together, so that the marker entries it touches stay in cache.
template <class I> I stamped_count(const row_tails<char, I> &tails, I stamp, I r_base, const I *r_col, I *marker)
{
    I n = 0;
    for (int t = 0; t < tails.count; ++t)
        for (I q = tails.pos[t]; q < tails.end[t]; ++q) {
            const I j = r_col[q] - r_base;
            n += marker[j] != stamp;
            marker[j] = stamp;
        }
    return n;
}

// Widest spread of columns (from the row itself) that the symbolic pass still counts by stamping.
constexpr int64_t stamped_span = int64_t(1) << 15;

// Whether the tails' columns reach further than stamped_span past row i.
template <class T, class I> bool scattered(const row_tails<T, I> &tails, I i, I r_base, const I *r_col)
{
    I last = i;
    for (int t = 0; t < tails.count; ++t)
        last = std::max<I>(last, r_col[tails.end[t] - 1] - r_base);
    return int64_t(last) - i >= stamped_span;
}

// Row i of the product from its merged tails: sorted columns (with out_base) and values, at most
// cap of them. Returns the number written; place, when given, receives each product's place in the row.
template <class T, class I>
I merged_row(row_tails<T, I> &tails, I r_base, const T *r_values, const I *r_col, I out_base, I *cols, T *vals,
             I cap, uint8_t *place)
{
    I n = 0;
    for (I j = tails.smallest(); tails.count > 1 && n < cap; ++n) {
        T sum{};
        const I next = tails.pop(j, r_base, r_col, [&](int t, I q) {
            mul_add(sum, tails.factor[t], r_values[q]);
            if (place != nullptr)
                place[tails.first[t] + q] = static_cast<uint8_t>(n);
        });
        cols[n] = j + out_base;
        vals[n] = sum;
        j = next;
    }
    if (tails.count == 1) { // the last tail is copied out
        const T a = tails.factor[0];
        const I q0 = tails.pos[0];
        const I last = std::min<I>(tails.end[0] - q0, cap - n);
        for (I t = 0; t < last; ++t) {
            cols[n + t] = r_col[q0 + t] - r_base + out_base;
            vals[n + t] = mul(a, r_values[q0 + t]);
            if (place != nullptr)
                place[tails.first[0] + q0 + t] = static_cast<uint8_t>(n + t);
        }
        n += last;
        tails.pos[0] += last;
        if (tails.pos[0] == tails.end[0])
            tails.count = 0;
    }
    return n;
}

// Whether R's row k holds the columns of row k - 1, each one further on (same length).
template <class I> bool follows(I k, I r_base, const I *r_col, const I *r_rows_start, const I *r_rows_end)
{
    if (k == 0)
        return false;
    const I before = r_rows_start[k - 1] - r_base, begin = r_rows_start[k] - r_base;
    const I length = r_rows_end[k] - r_base - begin;
    if (length != r_rows_end[k - 1] - r_base - before)
        return false;
    for (I t = 0; t < length; ++t)
        if (r_col[begin + t] - r_col[before + t] != 1)
            return false;
    return true;
}

// The first row in [from, to) that does not hold the columns of the row before it, each one
// further on (same length); `to` when all do. Rows stored end to end with one length, as a
// stencil's are, take one flat sweep over their columns, which the compiler runs in vectors.
template <class I>
I first_unfollowing(I from, I to, I base, const I *col, const I *rows_start, const I *rows_end)
{
    if (from >= to)
        return to;
    if (from == 0)
        return 0;
    if (rows_end != rows_start + 1) {
        for (I r = from; r < to; ++r)
            if (!follows(r, base, col, rows_start, rows_end))
                return r;
        return to;
    }
    const I first = rows_start[from - 1], length = rows_start[from] - first;
    I last = from; // rows [from, last) have the length of row from - 1
    while (last < to && rows_start[last + 1] - rows_start[last] == length)
        ++last;
    const I *c = col + (first - base);
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
    I next_break(I from, I to, I r_base, const I *r_col, const I *r_rows_start, const I *r_rows_end)
    {
        if ((to > high_ && !extend(from, to, r_base, r_col, r_rows_start, r_rows_end)) || from < low_)
            return first_unfollowing(from, to, r_base, r_col, r_rows_start, r_rows_end);
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
    bool extend(I from, I to, I r_base, const I *r_col, const I *r_rows_start, const I *r_rows_end)
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
            const I b = first_unfollowing(high_, to, r_base, r_col, r_rows_start, r_rows_end);
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

// The shape of the last short row, relative to its index: where each non-empty tail starts in its
// R row and how long it is, its count and work; for the numeric pass also each product's place in
// the row and the row's columns less the row index. The next row repeats the shape when its L
// columns are those of the row before shifted by one, and so is every R row they reference: each
// tail then starts one column further, at the same place in its row. Stencil matrices do so on
// every row away from the grid edges. The test reads no tail: each R row is compared with the row
// before it once (follows_window), and each L entry keeps how far along its chain of R rows that
// holds.
template <class I> struct row_pattern {
    static constexpr int capacity = int(sort_capacity);
    I row = -1; // the row recorded or last matched; -1: none
    unsigned recorded = 0; // counts the shapes recorded
    int entries = 0;
    int tails = 0;
    int tail_entry[few_lists];
    I tail_offset[few_lists], tail_length[few_lists];
    I distinct = 0;
    uint64_t work = 0;
    I column[capacity];
    uint8_t place[capacity];
    follows_window<I> window;
    // Per L entry: every R row from the one it references up to this one (exclusive) follows the
    // row before it. Cleared when a row is recorded.
    I followed_until[few_lists];

    // How many rows from i on, at most limit, repeat the shape, each shifted by one from the row
    // before it; 0 unless row i - 1 holds the shape. The L rows are compared first: where they do
    // not repeat, the test fails without touching R.
    I repeat_run(I i, I limit, I l_base, const I *l_col, const I *l_rows_start, const I *l_rows_end, I r_base,
                 const I *r_col, const I *r_rows_start, const I *r_rows_end)
    {
        if (row < 0 || row != i - 1)
            return 0;
        I run = first_unfollowing(i, i + limit, l_base, l_col, l_rows_start, l_rows_end) - i;
        const I *cols = l_col + (l_rows_start[i] - l_base);
        for (int t = 0; t < entries && run > 0; ++t) { // the chain of R rows each L entry walks along
            const I k = cols[t] - l_base;
            if (followed_until[t] < k + run)
                followed_until[t] = window.next_break(std::max(followed_until[t], k), k + run, r_base, r_col,
                                                      r_rows_start, r_rows_end);
            run = std::min(run, followed_until[t] - k);
        }
        if (run > 0)
            row = i + run - 1;
        return run;
    }

    // Takes row i's shape from its gathered tails; false, with nothing recorded, when they hold more
    // products than the numeric pass can place.
    template <class T>
    bool record(const row_tails<T, I> &gathered, I i, I l_base, const I *l_col, I l_begin, I l_end, I r_base,
                const I *r_rows_start, uint64_t row_work)
    {
        row = -1;
        I products = 0;
        for (int t = 0; t < gathered.count; ++t) {
            const I k = l_col[l_begin + gathered.entry[t]] - l_base;
            tail_entry[t] = gathered.entry[t];
            tail_offset[t] = gathered.pos[t] - (r_rows_start[k] - r_base);
            tail_length[t] = gathered.end[t] - gathered.pos[t];
            products += tail_length[t];
        }
        if (products > capacity)
            return false;
        entries = static_cast<int>(l_end - l_begin);
        std::fill(followed_until, followed_until + entries, I(0));
        tails = gathered.count;
        work = row_work;
        row = i;
        ++recorded;
        return true;
    }

    // The numeric pass's part, from the row just written: cols (with out_base) holds n columns, and
    // complete says whether every product found its place.
    void record_columns(const I *cols, I n, I i, I out_base, bool complete)
    {
        if (row != i)
            return;
        if (!complete) {
            row = -1;
            return;
        }
        distinct = n;
        for (I s = 0; s < n; ++s)
            column[s] = cols[s] - out_base - i;
    }
};

// Rows of the numeric pass that repeat the recorded shape, formed a block at a time: every
// product of the shape is taken for all the block's rows at once, so that walking the shape's
// tails and places, whose short and varying trip counts cost more than the arithmetic, is paid
// once per block, and the block's sums build up side by side with no add waiting on another.
template <class T, class I> class pattern_rows {
public:
    static constexpr int block = 8;

    // Takes row i, whose shape matched, with its place in the output. The rows' L values, the R
    // rows of the last tail (the furthest, read here for the first time in a stencil) and the
    // output are streams that the processor does not fetch ahead well enough by itself.
    void add(const row_pattern<I> &pattern, I i, I l_base, const T *l_values, const I *l_col, I l_begin, I r_base,
             const T *r_values, const I *r_rows_start, I *cols, T *vals)
    {
        __builtin_prefetch(l_values + l_begin + 64);
        for (int t = 0; t < pattern.tails; ++t) {
            const I p = l_begin + pattern.tail_entry[t];
            factor_[t][rows_] = l_values[p];
            values_[t][rows_] = r_values + (r_rows_start[l_col[p] - l_base] - r_base + pattern.tail_offset[t]);
        }
        if (pattern.tails > 0)
            __builtin_prefetch(values_[pattern.tails - 1][rows_] + 64);
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
    void flush(const row_pattern<I> &pattern, I out_base)
    {
        if (rows_ == 0)
            return;
        if (!formed_in_lanes(pattern))
            sum_block(pattern);
        for (int r = 0; r < rows_; ++r) {
            const I shift = row_[r] + out_base;
            for (I s = 0; s < pattern.distinct; ++s)
                cols_[r][s] = pattern.column[s] + shift;
        }
        rows_ = 0;
    }

private:
    // The vector former's lane tables, for real values.
    using lanes_t = std::conditional_t<std::is_same_v<T, double>, repeat_lanes_f64,
                                       std::conditional_t<std::is_same_v<T, float>, repeat_lanes_f32, void>>;
    static constexpr bool has_lanes = !std::is_void_v<lanes_t>;
    static constexpr int lane_width = std::is_same_v<T, float> ? 16 : 8;

    // The block's sums by the vector former, when there is one and the shape fits its lanes.
    bool formed_in_lanes(const row_pattern<I> &pattern)
    {
        if constexpr (has_lanes) {
            if (repeat_former_active == nullptr)
                return false;
            if (lanes_shape_ != pattern.recorded) {
                lanes_shape_ = pattern.recorded;
                lanes_fit_ = fill_lanes(pattern);
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
    bool fill_lanes(const row_pattern<I> &pattern)
    {
        if constexpr (has_lanes) {
            if (pattern.distinct > 16)
                return false;
            lanes_ = {};
            lanes_.tails = pattern.tails;
            lanes_.distinct = static_cast<int>(pattern.distinct);
            const uint8_t *place = pattern.place;
            for (int t = 0; t < pattern.tails; ++t) {
                const I length = pattern.tail_length[t];
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
    void sum_block(const row_pattern<I> &pattern)
    {
        for (int r = rows_; r < block; ++r) // unused lanes repeat the first row and are not written
            for (int t = 0; t < pattern.tails; ++t) {
                factor_[t][r] = factor_[t][0];
                values_[t][r] = values_[t][0];
            }
        T sum[row_pattern<I>::capacity][block];
        for (I s = 0; s < pattern.distinct; ++s)
            for (int r = 0; r < block; ++r)
                sum[s][r] = T(0);
        const uint8_t *place = pattern.place;
        for (int t = 0; t < pattern.tails; ++t)
            for (I q = 0; q < pattern.tail_length[t]; ++q) {
                T *to = sum[*place++];
                for (int r = 0; r < block; ++r)
                    to[r] += mul(factor_[t][r], values_[t][r][q]);
            }
        for (int r = 0; r < rows_; ++r)
            for (I s = 0; s < pattern.distinct; ++s)
                vals_[r][s] = sum[s][r];
    }

    int rows_ = 0;
    T factor_[few_lists][block];
    const T *values_[few_lists][block];
    I row_[block];
    I *cols_[block];
    T *vals_[block];
    struct no_lanes {};
    std::conditional_t<has_lanes, lanes_t, no_lanes> lanes_;
    unsigned lanes_shape_ = ~0u; // the shape the lane tables were filled for
    bool lanes_fit_ = false;
};

// The tails' columns as keys relative to row i (padded for the sorter), with the products when
// Values. False when they are more than sort_capacity or a key leaves the 32-bit range.
template <bool Values, class T, class I>
bool tail_keys(const row_tails<T, I> &tails, I i, I r_base, const I *r_col, int32_t *keys, uint32_t &n,
               const T *r_values = nullptr, T *products = nullptr)
{
    n = 0;
    for (int t = 0; t < tails.count; ++t) {
        if (tails.end[t] - tails.pos[t] > I(sort_capacity - n))
            return false;
        for (I q = tails.pos[t]; q < tails.end[t]; ++q, ++n) {
            const int64_t key = int64_t(r_col[q] - r_base) - int64_t(i);
            if (key <= -int64_t(sort_pad) || key >= int64_t(sort_pad))
                return false;
            keys[n] = static_cast<int32_t>(key);
            if constexpr (Values)
                products[n] = mul(tails.factor[t], r_values[q]);
        }
    }
    pad_keys(keys, n);
    return true;
}

// Row i from its tails by the vector sorter: every product lands at the rank of its column among
// the row's distinct columns (at most cap of them are written), which place, when given, receives.
// Returns the number of distinct columns, -1 when the tails do not fit. Kept out of line so that
// the merge loop around it keeps its registers.
template <class T, class I>
[[gnu::noinline]] I sorted_row(const row_sorter &sorter, const row_tails<T, I> &tails, I i, I r_base,
                               const T *r_values, const I *r_col, I out_base, I *cols, T *vals, I cap,
                               uint8_t *place)
{
    alignas(64) int32_t keys[sort_capacity];
    alignas(64) T products[sort_capacity];
    uint32_t rank[sort_capacity], n;
    if (!tail_keys<true>(tails, i, r_base, r_col, keys, n, r_values, products))
        return -1;
    const uint32_t distinct = sorter.ranks(keys, n, rank);
    std::fill(vals, vals + std::min<int64_t>(distinct, std::max<I>(cap, 0)), T(0));
    for (uint32_t e = 0; e < n; ++e)
        if (I(rank[e]) < cap) {
            cols[rank[e]] = I(keys[e]) + i + out_base;
            vals[rank[e]] += products[e];
        }
    if (place != nullptr)
        for (uint32_t e = 0; e < n; ++e)
            place[e] = static_cast<uint8_t>(rank[e]);
    return static_cast<I>(distinct);
}

// Symbolic pass: counts of distinct columns j >= i per row; short rows from the shape of the row
// before them when they repeat it, else by stamping the marker while their columns lie close, else
// by the vector sorter, else by merging.
template <class I>
void syrk_struct(I row_first, I row_end, I l_base, const I *l_col, const I *l_rows_start, const I *l_rows_end,
                 I r_base, const I *r_col, const I *r_rows_start, const I *r_rows_end, I *start_offset, I *marker,
                 I *counts, uint64_t *row_work)
{
    row_tails<char, I> tails;
    row_pattern<I> pattern;
    bool fetch_ahead = true; // while the rows are scattered
    const row_sorter *sorter = row_sorter_active;
    for (I i = row_first; i < row_end; ++i) {
        const I l_begin = l_rows_start[i] - l_base, l_end = l_rows_end[i] - l_base;
        if (l_end - l_begin <= few_lists) {
            const I run = pattern.repeat_run(i, std::min<I>(row_end - i, repeat_span), l_base, l_col, l_rows_start,
                                             l_rows_end, r_base, r_col, r_rows_start, r_rows_end);
            if (run > 0) {
                std::fill(counts + i + 1, counts + i + 1 + run, pattern.distinct);
                std::fill(row_work + i + 1, row_work + i + 1 + run, pattern.work);
                i += run - 1;
                continue;
            }
            if (fetch_ahead)
                prefetch_ahead<3, false, char>(i, row_end, l_base, l_col, l_rows_start, l_rows_end, r_base, nullptr,
                                               r_col, r_rows_start, r_rows_end, start_offset);
            uint64_t work = 0;
            tails.template gather<false>(i, l_base, nullptr, l_col, l_begin, l_end, r_base, r_col, r_rows_start,
                                         r_rows_end, start_offset, work);
            row_work[i + 1] = work;
            pattern.record(tails, i, l_base, l_col, l_begin, l_end, r_base, r_rows_start, work);
            alignas(64) int32_t keys[sort_capacity];
            uint32_t n;
            I count;
            const bool spread = scattered(tails, i, r_base, r_col);
            fetch_ahead = spread;
            if (!spread)
                count = stamped_count(tails, symbolic_stamp(i), r_base, r_col, marker);
            else if (sorter != nullptr && tail_keys<false>(tails, i, r_base, r_col, keys, n))
                count = static_cast<I>(sorter->count(keys, n));
            else
                count = merged_count(tails, r_base, r_col);
            counts[i + 1] = count;
            pattern.distinct = count;
            continue;
        }
        const I stamp = symbolic_stamp(i);
        I count = 0;
        uint64_t work = 0;
        for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p) {
            const I k = l_col[p] - l_base;
            I end;
            const I q0 = advance_cursor(k, i, r_base, r_col, r_rows_start, r_rows_end, start_offset, end);
            work += static_cast<uint64_t>(end - q0);
            for (I q = q0; q < end; ++q) {
                const I j = r_col[q] - r_base;
                count += marker[j] != stamp;
                marker[j] = stamp;
            }
        }
        counts[i + 1] = count;
        row_work[i + 1] = work;
    }
}

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

// Collects row i's distinct columns into out (unsorted, at most cap: the row's counted length, so
// that a row pointer inconsistent with the operands cannot write past the row), marking them with
// the numeric stamp.
template <class I>
inline I collect_row(I i, I l_base, const I *l_col, I l_begin, I l_end, I r_base, const I *r_col,
                     const I *r_rows_start, const I *r_rows_end, I *start_offset, I *marker, I *out, I cap)
{
    const I stamp = numeric_stamp(i);
    I n = 0;
    for (I p = l_begin; p < l_end; ++p) {
        const I k = l_col[p] - l_base;
        I end;
        const I q0 = advance_cursor(k, i, r_base, r_col, r_rows_start, r_rows_end, start_offset, end);
        for (I q = q0; q < end; ++q) {
            const I j = r_col[q] - r_base;
            if (marker[j] != stamp && n < cap) {
                marker[j] = stamp;
                out[n++] = j;
            }
        }
    }
    return n;
}

// Numeric pass of one long row: the columns are gathered and sorted first; each column's marker
// then holds its final place, so the products accumulate straight into the output.
template <class T, class I>
void long_row(I i, I l_base, const T *l_values, const I *l_col, const I *l_rows_start, const I *l_rows_end,
              I r_base, const T *r_values, const I *r_col, const I *r_rows_start, const I *r_rows_end,
              I *start_offset, I *marker, const I *rows_start, I out_base, I *col_indx, T *values)
{
    const I l_begin = l_rows_start[i] - l_base, l_end = l_rows_end[i] - l_base;
    const I first = rows_start[i] - out_base;
    I *cols = col_indx + first;
    T *vals = values + first;
    const I n = collect_row(i, l_base, l_col, l_begin, l_end, r_base, r_col, r_rows_start, r_rows_end, start_offset,
                            marker, cols, rows_start[i + 1] - out_base - first);
    sort_columns(cols, n);
    for (I t = 0; t < n; ++t) {
        marker[cols[t]] = first + t;
        vals[t] = T(0);
    }
    for (I p = l_begin; p < l_end; ++p) {
        const I k = l_col[p] - l_base;
        const T a = l_values[p];
        const I end = r_rows_end[k] - r_base;
        for (I q = cursor_position(k, i, r_base, r_col, r_rows_start, start_offset); q < end; ++q) {
            const I place = marker[r_col[q] - r_base];
            if (place >= first) // only a column cut off by the cap has none
                mul_add(values[place], a, r_values[q]);
        }
    }
    for (I t = 0; t < n; ++t)
        cols[t] += out_base;
}

// Numeric pass: sorted columns and values of the chunk's rows. Rows with few L entries that repeat
// the shape of the row before them (row_pattern) are formed eight at a time (pattern_rows); others
// merge their tails (row_tails), or rank them with the vector sorter when they reach far: a merge
// over scattered columns mispredicts nearly every step, while close columns merge in regular
// patterns that the branch predictor learns from row to row. Longer rows add their products into a
// dense accumulator x indexed by column, taken at the first such row, while the row's new columns
// are listed without branches (the list slot is always written, its count advances only for a new
// column); the list is then sorted and x gathered into the output and cleared. Without memory for
// x, long_row does the work.
template <class T, class I>
void syrk_row(I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col, const I *l_rows_start,
              const I *l_rows_end, I r_base, const T *r_values, const I *r_col, const I *r_rows_start,
              const I *r_rows_end, I *start_offset, I *marker, const I *rows_start, I out_base, I *col_indx,
              T *values)
{
    scratch_array<T> accumulator;
    bool accumulator_tried = false;
    constexpr I short_row = 256;
    I list[short_row + 8]; // spares: a slot is written before it is known to be needed; rank_sort pads
    I sorted[short_row];
    row_tails<T, I> tails;
    row_pattern<I> pattern;
    pattern_rows<T, I> repeats;
    bool fetch_ahead = true; // while the rows are scattered
    const row_sorter *sorter = row_sorter_active;
    for (I i = row_first; i < row_end; ++i) {
        const I first = rows_start[i] - out_base, count = rows_start[i + 1] - out_base - first;
        const I l_begin = l_rows_start[i] - l_base, l_end = l_rows_end[i] - l_base;
        if (l_end - l_begin <= few_lists) {
            I *cols = col_indx + first;
            T *vals = values + first;
            const I run = pattern.repeat_run(i, std::min<I>(row_end - i, repeats.room()), l_base, l_col,
                                             l_rows_start, l_rows_end, r_base, r_col, r_rows_start, r_rows_end);
            I taken = 0; // the run's rows up to the first whose place in the output is too short
            for (; taken < run; ++taken) {
                const I r = i + taken, at = rows_start[r] - out_base;
                if (pattern.distinct > rows_start[r + 1] - out_base - at)
                    break;
                repeats.add(pattern, r, l_base, l_values, l_col, l_rows_start[r] - l_base, r_base, r_values,
                            r_rows_start, col_indx + at, values + at);
            }
            if (taken > 0) {
                pattern.row = i + taken - 1;
                if (repeats.full())
                    repeats.flush(pattern, out_base);
                i += taken - 1;
                continue;
            }
            repeats.flush(pattern, out_base);
            if (fetch_ahead)
                prefetch_ahead<1, true>(i, row_end, l_base, l_col, l_rows_start, l_rows_end, r_base, r_values, r_col,
                                        r_rows_start, r_rows_end, start_offset);
            uint64_t work = 0;
            tails.template gather<true>(i, l_base, l_values, l_col, l_begin, l_end, r_base, r_col, r_rows_start,
                                        r_rows_end, start_offset, work);
            uint8_t *place = pattern.record(tails, i, l_base, l_col, l_begin, l_end, r_base, r_rows_start, work)
                                 ? pattern.place
                                 : nullptr;
            const bool spread = scattered(tails, i, r_base, r_col);
            fetch_ahead = spread;
            const I sorted = spread && sorter != nullptr ? sorted_row(*sorter, tails, i, r_base, r_values, r_col,
                                                                      out_base, cols, vals, count, place)
                                                         : -1;
            if (sorted >= 0) {
                pattern.record_columns(cols, sorted, i, out_base, sorted <= count);
            } else {
                const I n = merged_row(tails, r_base, r_values, r_col, out_base, cols, vals, count, place);
                pattern.record_columns(cols, n, i, out_base, tails.count == 0);
            }
            continue;
        }
        repeats.flush(pattern, out_base);
        if (!accumulator_tried) {
            accumulator_tried = true;
            accumulator = scratch_array<T>(static_cast<size_t>(rows), 4096);
            if (accumulator)
                std::fill(accumulator.get(), accumulator.get() + rows, T(0));
        }
        T *x = accumulator.get();
        if (x == nullptr) {
            long_row(i, l_base, l_values, l_col, l_rows_start, l_rows_end, r_base, r_values, r_col, r_rows_start,
                     r_rows_end, start_offset, marker, rows_start, out_base, col_indx, values);
            continue;
        }
        const I stamp = numeric_stamp(i);
        const bool fits = count <= short_row;
        I *cols = fits ? list : col_indx + first;
        I n = 0;
        for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p) {
            const I k = l_col[p] - l_base;
            const T a = l_values[p];
            I end;
            const I q0 = advance_cursor(k, i, r_base, r_col, r_rows_start, r_rows_end, start_offset, end);
            if (fits) {
                for (I q = q0; q < end; ++q) {
                    const I j = r_col[q] - r_base;
                    mul_add(x[j], a, r_values[q]);
                    cols[n < short_row ? n : short_row] = j;
                    n += marker[j] != stamp;
                    marker[j] = stamp;
                }
            } else {
                for (I q = q0; q < end; ++q) {
                    const I j = r_col[q] - r_base;
                    mul_add(x[j], a, r_values[q]);
                    if (marker[j] != stamp && n < count) {
                        marker[j] = stamp;
                        cols[n++] = j;
                    }
                }
            }
        }
        n = std::min(n, count); // the row pointer bounds the row, whatever the operands say
        if (fits) {
            rank_sort(cols, n, sorted);
            cols = sorted;
        } else {
            sort_columns(cols, n);
        }
        I *out_cols = col_indx + first;
        T *out_vals = values + first;
        for (I t = 0; t < n; ++t) {
            const I j = cols[t];
            out_vals[t] = x[j];
            x[j] = T(0);
            out_cols[t] = j + out_base;
        }
    }
    repeats.flush(pattern, out_base);
}

// c += a·b for bs×bs blocks stored row-major (ColMajor false) or column-major.
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

// Numeric pass over the block pattern: block (I, J) = Σ_K L(I,K)·R(K,J), J >= I.
template <class T, class I>
void syrk_block_row(I row_first, I row_end, I l_base, const T *l_values, const I *l_col, const I *l_rows_start,
                    const I *l_rows_end, I r_base, const T *r_values, const I *r_col, const I *r_rows_start,
                    const I *r_rows_end, I *start_offset, I *marker, const I *rows_start, I out_base, I *col_indx,
                    T *values, I bs, I layout)
{
    const int64_t bb = static_cast<int64_t>(bs) * bs;
    const bool col_major = layout != 0;
    for (I i = row_first; i < row_end; ++i) {
        const I l_begin = l_rows_start[i] - l_base, l_end = l_rows_end[i] - l_base;
        const I first = rows_start[i] - out_base;
        I *cols = col_indx + first;
        const I n = collect_row(i, l_base, l_col, l_begin, l_end, r_base, r_col, r_rows_start, r_rows_end,
                                start_offset, marker, cols, rows_start[i + 1] - out_base - first);
        sort_columns(cols, n);
        for (I t = 0; t < n; ++t)
            marker[cols[t]] = first + t;
        std::fill(values + first * bb, values + (first + n) * bb, T(0));
        for (I p = l_begin; p < l_end; ++p) {
            const I k = l_col[p] - l_base;
            const I end = r_rows_end[k] - r_base;
            for (I q = cursor_position(k, i, r_base, r_col, r_rows_start, start_offset); q < end; ++q) {
                const I place = marker[r_col[q] - r_base];
                if (place >= first)
                    block_mul_add(values + place * bb, l_values + p * bb, r_values + q * bb, bs, col_major);
            }
        }
        for (I t = 0; t < n; ++t)
            cols[t] += out_base;
    }
}

} // namespace zel::sparse_syrk
