// What every A·Aᵀ kernel shares: its operands and outputs as small views, the value arithmetic,
// the cursors into the right-hand rows and the marks the passes leave in the marker array.
//
// A kernel takes one chunk of the result's rows and two operands: L, whose row i gives row i of
// the result, and R, whose row k is indexed by L's column k and holds its columns in increasing
// order (R is Lᵀ, conjugated for complex values). Row i of the upper triangle is
// Σ_k L(i,k)·R(k, i:m), so a kernel reads only the tail of each R row k from column i on.
//
// Files, by role:
//   syrk_dense.hpp        dense result: C(i, i:m) and Aᵀ·A into a caller's array
//   syrk_symbolic.hpp     sparse result, first pass: distinct columns per row
//   syrk_numeric.hpp      sparse result, second pass: sorted columns and values (CSR and BSR)
//   syrk_short_rows.hpp   rows of few L entries, formed from their tails without a column index
//   syrk_row_shapes.hpp   short rows that repeat the shape of the row before them
#pragma once

#include <cstdint>

#include "zel_internal/compressed_view.hpp"
#include "zel_internal/sparse_records.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse_syrk {

using sparse::alignment;

// Views go to helpers by reference, out-of-line ones included. A view passed by value is built
// anew in memory at each call from the registers the kernel kept its fields in, and the copy reads
// it back in wider loads than the stores just made, which stall until they complete (several percent
// on stencils, where the repeated-row test calls out once per block of rows). A field that a loop
// reads after stores through index arrays goes into a local first: once a view's address has left
// the kernel, the compiler must assume such a store may change it.
//
// An operand by rows. The kernels know the result's order m (L.slices, R.extent) but not L's
// column count, so L.extent and R.slices are left 0. Pattern-only operands use T = char.
template <class T, class I> using operand_rows = sparse::compressed_view<T, I>;

// The chunk of result rows a call forms: [first, end).
template <class I> struct row_chunk {
    I first, end;
};

// The driver's scratch for a chunk, both indexed by R row (= result column).
template <class I> struct chunk_scratch {
    // Position in R's row k of its first entry at or right of the row being formed; the chunk
    // preparation sets it for the chunk's first row and the kernels advance it row by row.
    I *start_offset;
    // -2/-1 from the chunk preparation, negative stamps of the passes, output places (>= 0).
    I *marker;
};

// Output of the symbolic pass: counts[i + 1] distinct columns j >= i of row i, work[i + 1]
// products walked for it.
template <class I> struct row_counts {
    I *counts;
    uint64_t *work;
};

// Output of the numeric pass: row i owns entries [rows_start[i], rows_start[i + 1]) (carrying
// base) of columns and values (block² values an entry for block rows).
template <class T, class I> struct result_rows {
    const I *rows_start;
    I base;
    I *columns;
    T *values;

    I begin(I i) const { return rows_start[i] - base; }
    I room(I i) const { return rows_start[i + 1] - rows_start[i]; }
};

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

// First position of R's row k holding a column >= i; end receives the row's end. The cursor
// moves there, or one further when that entry is i itself: rows of the chunk come in increasing
// order, and with R the transpose of L the next row to reference k is R's next entry, so the
// cursor rarely has to walk.
template <class T, class I>
inline I advance_cursor(const operand_rows<T, I> &R, I *start_offset, I k, I i, I &end)
{
    const I begin = R.begin(k);
    end = R.end(k);
    I q = begin + start_offset[k];
    while (q < end && R.index[q] - R.base < i)
        ++q;
    start_offset[k] = q - begin + (q < end && R.index[q] - R.base == i);
    return q;
}

// The position advance_cursor returned for row i, from the cursor it left.
template <class T, class I> inline I cursor_position(const operand_rows<T, I> &R, const I *start_offset, I k, I i)
{
    const I begin = R.begin(k);
    const I q = begin + start_offset[k];
    return q > begin && R.index[q - 1] - R.base == i ? q - 1 : q;
}

// Marks of the passes over the marker array, all below the chunk preparation's -1 and -2 and
// below every position in the output (>= 0), which the numeric pass stores there.
template <class I> constexpr I symbolic_stamp(I i) { return -(2 * i + 3); }
template <class I> constexpr I numeric_stamp(I i) { return -(2 * i + 4); }

} // namespace zel::sparse_syrk
