// Exported kernels of the numeric pass of the sparse A·Aᵀ result (CSR and BSR): one-line shells
// over the templates.
#include "syrk_exports.hpp"
#include "syrk_numeric.hpp"

namespace zel::sparse_syrk::exports {
namespace {

template <class C, class I>
void numeric(I row_first, I row_end, I rows, I l_base, const C *l_values, const I *l_col_indx,
             const I *l_rows_start, const I *l_rows_end, I r_base, const C *r_values, const I *r_col_indx,
             const I *r_rows_start, const I *r_rows_end, I *start_offset, I *marker, const I *rows_start,
             I out_base, I *col_indx, C *values)
{
    syrk_numeric(row_chunk<I>{row_first, row_end},
                 left_rows(rows, l_base, l_values, l_col_indx, l_rows_start, l_rows_end),
                 right_rows(rows, r_base, r_values, r_col_indx, r_rows_start, r_rows_end),
                 chunk_scratch<I>{start_offset, marker}, output_rows(rows_start, out_base, col_indx, values));
}

template <class C, class I>
void block_numeric(I row_first, I row_end, I rows, I l_base, const C *l_values, const I *l_col_indx,
                   const I *l_rows_start, const I *l_rows_end, I r_base, const C *r_values, const I *r_col_indx,
                   const I *r_rows_start, const I *r_rows_end, I *start_offset, I *marker, const I *rows_start,
                   I out_base, I *col_indx, C *values, I block_size, I block_layout)
{
    syrk_block_numeric(row_chunk<I>{row_first, row_end},
                       left_rows(rows, l_base, l_values, l_col_indx, l_rows_start, l_rows_end, block_size),
                       right_rows(rows, r_base, r_values, r_col_indx, r_rows_start, r_rows_end, block_size),
                       chunk_scratch<I>{start_offset, marker}, output_rows(rows_start, out_base, col_indx, values),
                       block_layout != 0);
}

} // namespace
} // namespace zel::sparse_syrk::exports

using namespace zel::sparse_syrk::exports;

#define ZEL_SYRK_ROW_PARAMS(C, I)                                                                             \
    I r0, I r1, I m, I lb, const C *lv, const I *lc, const I *lrs, const I *lre, I rb, const C *rv, const I *rc, \
        const I *rrs, const I *rre, I *so, I *marker, const I *rs, I ob, I *ci, C *v
#define ZEL_SYRK_ROW_ARGS r0, r1, m, lb, lv, lc, lrs, lre, rb, rv, rc, rrs, rre, so, marker, rs, ob, ci, v

#define ZEL_SYRK_NUMERIC_SHELLS(P, C, T, W, I)                                                                \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrk_notr_row_##W(ZEL_SYRK_ROW_PARAMS(C, I))                       \
    { numeric(ZEL_SYRK_ROW_ARGS); }                                                                           \
    ZEL_API void zel_sparse_##P##_bsr__g_n_syrk_notr_row_##W(ZEL_SYRK_ROW_PARAMS(C, I), I bs, I layout)       \
    { block_numeric(ZEL_SYRK_ROW_ARGS, bs, layout); }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_NUMERIC_SHELLS)
}
