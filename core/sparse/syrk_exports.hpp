// What the exports files of the A·Aᵀ kernels share: the raw argument lists of the exported
// kernels unpacked into the views the templates take. Included by the syrk_exports_*.cpp files
// only, which split the instantiations so that they build in parallel.
#pragma once

#include <bit>
#include <cstdint>

#include "syrk_common.hpp"
#include "zel/sparse_syrk.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse_syrk::exports {

template <class C> using cpp = cpp_value_t<C>;

template <class C> inline cpp<C> value(C v) { return std::bit_cast<cpp<C>>(v); }
template <class C> inline C one() { return std::bit_cast<C>(cpp<C>(1)); }

// L: the result's m rows; the kernels are not told its column count.
template <class C, class I>
operand_rows<cpp<C>, I> left_rows(I m, I base, const C *values, const I *col_indx, const I *rows_start,
                                  const I *rows_end, I block = 1)
{
    return {m, 0, base, block, rows_start, rows_end, col_indx, as_cpp(values)};
}

// R: rows indexed by L's columns, holding columns of the result (m of them).
template <class C, class I>
operand_rows<cpp<C>, I> right_rows(I m, I base, const C *values, const I *col_indx, const I *rows_start,
                                   const I *rows_end, I block = 1)
{
    return {0, m, base, block, rows_start, rows_end, col_indx, as_cpp(values)};
}

// The numeric kernels' output arrays.
template <class C, class I> result_rows<cpp<C>, I> output_rows(const I *rows_start, I base, I *col_indx, C *values)
{
    return {rows_start, base, col_indx, as_cpp(values)};
}

} // namespace zel::sparse_syrk::exports
