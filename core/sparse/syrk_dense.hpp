// Dense result of the A·Aᵀ products, one chunk of rows a call.
//
// Routes of L·R (syrkd_n: C(i, i:m) = beta·C(i, i:m) + alpha·Σ_k L(i,k)·R(k, i:m)):
//   blocked     the usual one. The chunk goes in blocks of rows whose L entries are chained by
//               column k (rows ascending in every chain), so an R row is fetched once per block
//               rather than once per referencing row, and the block's rows of C stay in cache. A
//               column-major C is summed in a buffer of the block's rows and written back column
//               by column.
//   row by row  when the chains' scratch cannot be had. Each row adds its products into C; a
//               column-major C, whose row i is spread over m cache lines, is summed in a dense
//               row buffer first (straight into C, stepping by ldc, when even that is short).
// Aᵀ·A (syrkd_t) has one route: the whole upper triangle is scaled by beta, then every row of A
// adds its outer product A(i,:)ᴴ·A(i,:).
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "syrk_common.hpp"
#include "zel_internal/scratch.hpp"

namespace zel::sparse_syrk {

// The caller's array C and the factors of C = beta·C + alpha·(product).
template <class T> struct dense_target {
    T *c;
    int64_t ld;
    T alpha, beta;
};

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

// cij = beta·cij + sum, with beta = 0 not reading cij.
template <class T> inline void add_scaled(T &cij, T sum, bool beta_zero, bool beta_one, T beta)
{
    cij = beta_zero ? sum : beta_one ? cij + sum : mul(cij, beta) + sum;
}

// Working arrays of the blocked route: per column k of L the head of its chain, per chained entry
// its successor, row and value, the columns that have a chain, and for column-major C the block's
// rows summed densely.
template <class T, class I> struct block_chains {
    scratch_array<I> head, next, entry_row, chain;
    scratch_array<T> entry_value, buffer;
    size_t capacity = 0; // entries a block may chain
    I chains = 0;

    // False when any of the arrays cannot be had.
    bool take(I columns, size_t entries, size_t buffer_values)
    {
        capacity = entries;
        head = scratch_array<I>(size_t(columns) + 1, alignment);
        next = scratch_array<I>(entries, alignment);
        entry_row = scratch_array<I>(entries, alignment);
        chain = scratch_array<I>(entries, alignment);
        entry_value = scratch_array<T>(entries, alignment);
        if (buffer_values > 0)
            buffer = scratch_array<T>(buffer_values, alignment);
        if (!head || !next || !entry_row || !chain || !entry_value || (buffer_values > 0 && !buffer))
            return false;
        std::fill(head.get(), head.get() + columns + 1, I(-1));
        std::fill(buffer.get(), buffer.get() + buffer_values, T(0));
        return true;
    }
};

// The columns the chunk's L rows reach (one past the largest) and its longest row.
template <class T, class I> std::pair<I, I> chunk_reach(const operand_rows<T, I> &L, row_chunk<I> chunk)
{
    I columns = 0, longest = 0;
    for (I i = chunk.first; i < chunk.end; ++i) {
        longest = std::max(longest, L.length(i));
        for (I p = L.begin(i); p < L.end(i); ++p)
            columns = std::max(columns, L.index[p] - L.base + 1);
    }
    return {columns, longest};
}

// End of the block from row i0: at most block_rows rows and `capacity` entries, at least one row.
template <class T, class I> I block_end(const operand_rows<T, I> &L, I i0, I row_end, I block_rows, size_t capacity)
{
    I i1 = i0;
    for (size_t used = 0; i1 < row_end && i1 - i0 < block_rows; ++i1) {
        used += size_t(L.length(i1));
        if (used > capacity)
            break;
    }
    return std::max<I>(i1, i0 + 1);
}

// Chains the entries of rows [i0, i1) by column, built from the last row back so that each chain
// lists its rows ascending.
template <bool WithAlpha, class T, class I>
void chain_block(block_chains<T, I> &w, const operand_rows<T, I> &L, I i0, I i1, T alpha)
{
    I e = 0;
    w.chains = 0;
    for (I i = i1 - 1; i >= i0; --i)
        for (I p = L.begin(i); p < L.end(i); ++p, ++e) {
            const I k = L.index[p] - L.base;
            w.entry_row[e] = i;
            w.entry_value[e] = WithAlpha ? mul(alpha, L.values[p]) : L.values[p];
            w.next[e] = w.head[k];
            if (w.head[k] < 0)
                w.chain[w.chains++] = k;
            w.head[k] = e;
        }
}

// Adds every chained entry's products: into C's row for row-major C, into the buffer's row of
// the block otherwise. Leaves every chain head empty again.
template <bool ColMajor, class T, class I>
[[gnu::always_inline]] inline void add_chains(block_chains<T, I> &w, const operand_rows<T, I> &R, I *start_offset,
                                              I i0, const dense_target<T> &C)
{
    const I rows = R.extent;
    for (I t = 0; t < w.chains; ++t) {
        const I k = w.chain[t];
        for (I f = w.head[k]; f >= 0; f = w.next[f]) {
            const I i = w.entry_row[f];
            const T a = w.entry_value[f];
            I end;
            const I q0 = advance_cursor(R, start_offset, k, i, end);
            T *target = ColMajor ? w.buffer.get() + int64_t(i - i0) * rows : C.c + i * C.ld;
            for (I q = q0; q < end; ++q)
                mul_add(target[R.index[q] - R.base], a, R.values[q]);
        }
        w.head[k] = -1;
    }
}

// Column-major C: the block's buffered rows [i0, i1) go into C column by column and are cleared.
template <class T, class I> void write_block(T *buffer, I i0, I i1, I rows, const dense_target<T> &C)
{
    const bool beta_zero = C.beta == T(0), beta_one = is_one(C.beta);
    for (int64_t j = i0; j < rows; ++j) {
        const I last = static_cast<I>(std::min<int64_t>(i1 - 1, j));
        for (I i = i0; i <= last; ++i) {
            T &sum = buffer[int64_t(i - i0) * rows + j];
            add_scaled(C.c[i + j * C.ld], sum, beta_zero, beta_one, C.beta);
            sum = T(0);
        }
    }
}

// The blocked route; false, with nothing written, when its scratch is short.
template <bool ColMajor, bool WithAlpha, class T, class I>
bool syrkd_n_blocked(row_chunk<I> chunk, const operand_rows<T, I> &L, const operand_rows<T, I> &R, I *start_offset,
                     const dense_target<T> &C)
{
    const I rows = R.extent;
    const auto [columns, longest] = chunk_reach(L, chunk);
    const I block_rows =
        static_cast<I>(std::clamp<int64_t>((int64_t(1) << 20) / (int64_t(rows) * sizeof(T) + 1), 1, 128));
    const size_t capacity = std::max<size_t>(size_t(longest), size_t(1) << 16);
    block_chains<T, I> w;
    if (!w.take(columns, capacity, ColMajor ? size_t(block_rows) * size_t(rows) : 0))
        return false;
    for (I i0 = chunk.first; i0 < chunk.end;) {
        const I i1 = block_end(L, i0, chunk.end, block_rows, capacity);
        if constexpr (!ColMajor)
            for (I i = i0; i < i1; ++i)
                scale(C.c + i * C.ld + i, rows - i, 1, C.beta);
        chain_block<WithAlpha>(w, L, i0, i1, C.alpha);
        add_chains<ColMajor>(w, R, start_offset, i0, C);
        if constexpr (ColMajor)
            write_block(w.buffer.get(), i0, i1, rows, C);
        i0 = i1;
    }
    return true;
}

// Row i's products added into target[column · step].
template <bool WithAlpha, class T, class I>
[[gnu::always_inline]] inline void add_row(const operand_rows<T, I> &L, const operand_rows<T, I> &R, I *start_offset,
                                           I i, T alpha, T *target, int64_t step)
{
    for (I p = L.begin(i); p < L.end(i); ++p) {
        const I k = L.index[p] - L.base;
        const T a = WithAlpha ? mul(alpha, L.values[p]) : L.values[p];
        I end;
        const I q0 = advance_cursor(R, start_offset, k, i, end);
        const I *cols = R.index + q0;
        const T *vals = R.values + q0;
        const I len = end - q0;
        if (step == 1) {
            for (I t = 0; t < len; ++t)
                mul_add(target[cols[t] - R.base], a, vals[t]);
        } else {
            for (I t = 0; t < len; ++t)
                mul_add(target[(cols[t] - R.base) * step], a, vals[t]);
        }
    }
}

// The row-by-row route.
template <bool ColMajor, bool WithAlpha, class T, class I>
void syrkd_n_by_rows(row_chunk<I> chunk, const operand_rows<T, I> &L, const operand_rows<T, I> &R, I *start_offset,
                     const dense_target<T> &C)
{
    const I rows = R.extent;
    scratch_array<T> buffer;
    if constexpr (ColMajor)
        buffer = scratch_array<T>(static_cast<size_t>(rows), alignment);
    T *row = buffer.get();
    if (row != nullptr)
        std::fill(row, row + rows, T(0));
    const bool beta_zero = C.beta == T(0), beta_one = is_one(C.beta);
    for (I i = chunk.first; i < chunk.end; ++i) {
        if (row != nullptr) {
            add_row<WithAlpha>(L, R, start_offset, i, C.alpha, row, 1);
            for (int64_t j = i; j < rows; ++j) { // column-major C(i, j) from the buffer
                add_scaled(C.c[i + j * C.ld], row[j], beta_zero, beta_one, C.beta);
                row[j] = T(0);
            }
        } else if constexpr (ColMajor) {
            scale(C.c + i + i * C.ld, rows - i, C.ld, C.beta);
            add_row<WithAlpha>(L, R, start_offset, i, C.alpha, C.c + i, C.ld);
        } else {
            scale(C.c + i * C.ld + i, rows - i, 1, C.beta);
            add_row<WithAlpha>(L, R, start_offset, i, C.alpha, C.c + i * C.ld, 1);
        }
    }
}

// C(i, i:m) = beta·C(i, i:m) + alpha·L(i,:)·R(:, i:m) for the chunk's rows (m = R.extent).
template <bool ColMajor, bool WithAlpha, class T, class I>
void syrkd_n(row_chunk<I> chunk, operand_rows<T, I> L, operand_rows<T, I> R, I *start_offset, dense_target<T> C)
{
    if (!syrkd_n_blocked<ColMajor, WithAlpha>(chunk, L, R, start_offset, C))
        syrkd_n_by_rows<ColMajor, WithAlpha>(chunk, L, R, start_offset, C);
}

// Upper triangle of C = beta·C + alpha·Σ_i A(i,:)ᴴ·A(i,:) over the chunk's rows of A (order
// n = A.extent).
template <bool ColMajor, bool WithAlpha, class T, class I>
void syrkd_t(row_chunk<I> chunk, operand_rows<T, I> A, dense_target<T> C)
{
    const int64_t n = A.extent;
    if (!is_one(C.beta))
        for (int64_t j = 0; j < n; ++j) {
            if constexpr (ColMajor)
                scale(C.c + j * C.ld, j + 1, 1, C.beta); // column j, rows 0..j
            else
                scale(C.c + j * C.ld + j, n - j, 1, C.beta);
        }
    for (I i = chunk.first; i < chunk.end; ++i) {
        const I begin = A.begin(i), end = A.end(i);
        for (I p = begin; p < end; ++p) {
            const int64_t j = A.index[p] - A.base;
            T a = conj_if(A.values[p], true);
            if constexpr (WithAlpha)
                a = mul(C.alpha, a);
            for (I q = begin; q < end; ++q) {
                const int64_t k = A.index[q] - A.base;
                if (k < j)
                    continue;
                if constexpr (ColMajor)
                    mul_add(C.c[j + k * C.ld], a, A.values[q]);
                else
                    mul_add(C.c[j * C.ld + k], a, A.values[q]);
            }
        }
    }
}

} // namespace zel::sparse_syrk
