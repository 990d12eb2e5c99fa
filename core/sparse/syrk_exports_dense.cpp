// Exported kernels of the dense A·Aᵀ / Aᵀ·A results: one-line shells over the templates.
#include "syrk_dense.hpp"
#include "syrk_exports.hpp"

namespace zel::sparse_syrk::exports {
namespace {

// C(i, i:m) += ... for rows [row_first, row_end) of L·R.
template <bool ColMajor, bool WithAlpha, class C, class I>
void dense_n(I row_first, I row_end, I rows, I l_base, const C *l_values, const I *l_col_indx,
             const I *l_rows_start, const I *l_rows_end, I r_base, const C *r_values, const I *r_col_indx,
             const I *r_rows_start, const I *r_rows_end, I *start_offset, C *c, I ldc, C alpha, C beta)
{
    syrkd_n<ColMajor, WithAlpha>(row_chunk<I>{row_first, row_end},
                                 left_rows(rows, l_base, l_values, l_col_indx, l_rows_start, l_rows_end),
                                 right_rows(rows, r_base, r_values, r_col_indx, r_rows_start, r_rows_end),
                                 start_offset, dense_target<cpp<C>>{as_cpp(c), ldc, value(alpha), value(beta)});
}

// C += rows [row_first, row_end) of Aᵀ·A.
template <bool ColMajor, bool WithAlpha, class C, class I>
void dense_t(I row_first, I row_end, I rows, I cols, I base, const C *values, const I *col_indx,
             const I *rows_start, const I *rows_end, C *c, I ldc, C alpha, C beta)
{
    const operand_rows<cpp<C>, I> a{rows, cols, base, 1, rows_start, rows_end, col_indx, as_cpp(values)};
    syrkd_t<ColMajor, WithAlpha>(row_chunk<I>{row_first, row_end}, a,
                                 dense_target<cpp<C>>{as_cpp(c), ldc, value(alpha), value(beta)});
}

} // namespace
} // namespace zel::sparse_syrk::exports

using namespace zel::sparse_syrk::exports;

#define ZEL_SYRK_N_PARAMS(C, I)                                                                               \
    I r0, I r1, I m, I lb, const C *lv, const I *lc, const I *lrs, const I *lre, I rb, const C *rv, const I *rc, \
        const I *rrs, const I *rre, I *so, C *c, I ldc
#define ZEL_SYRK_N_ARGS r0, r1, m, lb, lv, lc, lrs, lre, rb, rv, rc, rrs, rre, so, c, ldc
#define ZEL_SYRK_T_PARAMS(C, I) I r0, I r1, I m, I n, I b, const C *v, const I *ci, const I *rs, const I *re, C *c, I ldc
#define ZEL_SYRK_T_ARGS r0, r1, m, n, b, v, ci, rs, re, c, ldc

#define ZEL_SYRK_DENSE_SHELLS(P, C, T, W, I)                                                                  \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_c_ker_##W(ZEL_SYRK_N_PARAMS(C, I), C beta)                   \
    { dense_n<false, false>(ZEL_SYRK_N_ARGS, one<C>(), beta); }                                               \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_f_ker_##W(ZEL_SYRK_N_PARAMS(C, I), C beta)                   \
    { dense_n<true, false>(ZEL_SYRK_N_ARGS, one<C>(), beta); }                                                \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_alf_c_ker_##W(ZEL_SYRK_N_PARAMS(C, I), C alpha, C beta)      \
    { dense_n<false, true>(ZEL_SYRK_N_ARGS, alpha, beta); }                                                   \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_alf_f_ker_##W(ZEL_SYRK_N_PARAMS(C, I), C alpha, C beta)      \
    { dense_n<true, true>(ZEL_SYRK_N_ARGS, alpha, beta); }                                                    \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_c_ker_##W(ZEL_SYRK_T_PARAMS(C, I), C beta)                   \
    { dense_t<false, false>(ZEL_SYRK_T_ARGS, one<C>(), beta); }                                               \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_f_ker_##W(ZEL_SYRK_T_PARAMS(C, I), C beta)                   \
    { dense_t<true, false>(ZEL_SYRK_T_ARGS, one<C>(), beta); }                                                \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_alf_c_ker_##W(ZEL_SYRK_T_PARAMS(C, I), C alpha, C beta)      \
    { dense_t<false, true>(ZEL_SYRK_T_ARGS, alpha, beta); }                                                   \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_alf_f_ker_##W(ZEL_SYRK_T_PARAMS(C, I), C alpha, C beta)      \
    { dense_t<true, true>(ZEL_SYRK_T_ARGS, alpha, beta); }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_DENSE_SHELLS)
}
