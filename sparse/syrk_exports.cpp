// Exported A·Aᵀ / Aᵀ·A drivers: one-line shells over the templates, from one member list. The raw
// argument lists are unpacked here, into the views the drivers take.
#include "syrk_drivers.hpp"
#include "zel_internal/members.hpp"

namespace zel::sparse_syrk {

ZEL_SPARSE_MEMBERS(ZEL_SYRK_MEMBER_TABLE)

namespace {

// A by rows (rows × cols) and its transposed record At (cols × rows).
template <class C, class I>
operand_view<C, I> rows_of(I rows, I cols, I base, const C *values, const I *col_indx, const I *rows_start,
                           const I *rows_end, I block = 1)
{
    return {rows, cols, base, block, rows_start, rows_end, col_indx, values};
}

template <class C, class I>
int dense_n(C alpha, C beta, I rows, I cols, I base, const C *values, const I *col_indx, const I *rows_start,
            const I *rows_end, I t_base, const C *t_values, const I *t_col_indx, const I *t_rows_start,
            const I *t_rows_end, C *c, int layout, I ldc)
{
    return syrkd_n_driver<C, I>(alpha, beta, rows_of(rows, cols, base, values, col_indx, rows_start, rows_end),
                                rows_of(cols, rows, t_base, t_values, t_col_indx, t_rows_start, t_rows_end),
                                {c, layout, ldc});
}

template <class C, class I>
int dense_t(I rows, I cols, I base, const C *values, const I *col_indx, const I *rows_start, const I *rows_end, C *c,
            int layout, I ldc, C alpha, C beta)
{
    return syrkd_t_driver<C, I>(rows_of(rows, cols, base, values, col_indx, rows_start, rows_end), {c, layout, ldc},
                                alpha, beta);
}

// The stage function; block_size 0 for CSR.
template <class C, class I>
int sparse_stage(int stage, int operation, I rows, I cols, I base_1, const C *values_1, const I *col_indx_1,
                 const I *rows_start_1, const I *rows_end_1, I base_2, const C *values_2, const I *col_indx_2,
                 const I *rows_start_2, const I *rows_end_2, I one_based, C **values, I **col_indx,
                 I **rows_start, I block_size)
{
    const I block = std::max<I>(block_size, 1);
    return syrk_stage_driver<C, I>(
        {stage, operation, one_based, block_size},
        rows_of(rows, cols, base_1, values_1, col_indx_1, rows_start_1, rows_end_1, block),
        rows_of(cols, rows, base_2, values_2, col_indx_2, rows_start_2, rows_end_2, block),
        {values, col_indx, rows_start});
}

// The block form takes two block edges, which must agree.
template <class C, class I>
int block_stage(int stage, int operation, I rows, I cols, I base_1, const C *values_1, const I *col_indx_1,
                const I *rows_start_1, const I *rows_end_1, I base_2, const C *values_2, const I *col_indx_2,
                const I *rows_start_2, const I *rows_end_2, I one_based, C **values, I **col_indx, I **rows_start,
                I block_size_1, I block_size_2)
{
    if (block_size_1 < 1 || block_size_1 != block_size_2)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    return sparse_stage(stage, operation, rows, cols, base_1, values_1, col_indx_1, rows_start_1, rows_end_1,
                        base_2, values_2, col_indx_2, rows_start_2, rows_end_2, one_based, values, col_indx,
                        rows_start, block_size_1);
}

} // namespace
} // namespace zel::sparse_syrk

namespace zs = zel::sparse_syrk;

#define ZEL_SYRK_STAGE_PARAMS(C, I)                                                                           \
    int stage, int op, I m, I n, I b1, const C *v1, const I *c1, const I *rs1, const I *re1, I b2, const C *v2, \
        const I *c2, const I *rs2, const I *re2, I one_based, C **v, I **ci, I **rs
#define ZEL_SYRK_STAGE_ARGS stage, op, m, n, b1, v1, c1, rs1, re1, b2, v2, c2, rs2, re2, one_based, v, ci, rs

#define ZEL_SYRK_DRIVER_SHELLS(P, C, T, W, I)                                                                 \
    ZEL_API int zel_sparse_##P##_syrkd_##W(int op, zel_sparse_matrix_##W *A, C alpha, C beta, C *c, int layout, \
                                           I ldc)                                                             \
    { return zs::syrkd_entry<C, I>(op, A, alpha, beta, {c, layout, ldc}); }                                   \
    ZEL_API int zel_sparse_##P##_csr__g_n_syrkd_##W(C alpha, C beta, I m, I n, I b, const C *v, const I *ci,  \
                                                    const I *rs, const I *re, I tb, const C *tv, const I *tci, \
                                                    const I *trs, const I *tre, C *c, int layout, I ldc)      \
    { return zs::dense_n(alpha, beta, m, n, b, v, ci, rs, re, tb, tv, tci, trs, tre, c, layout, ldc); }       \
    ZEL_API int zel_sparse_##P##_csr__g_t_syrkd_##W(I m, I n, I b, const C *v, const I *ci, const I *rs,      \
                                                    const I *re, C *c, int layout, I ldc, C alpha, C beta)    \
    { return zs::dense_t(m, n, b, v, ci, rs, re, c, layout, ldc, alpha, beta); }                              \
    ZEL_API int zel_sparse_##P##_csr__g_n_syrk_##W(ZEL_SYRK_STAGE_PARAMS(C, I))                               \
    { return zs::sparse_stage(ZEL_SYRK_STAGE_ARGS, I(0)); }                                                   \
    ZEL_API int zel_sparse_##P##_bsr__g_n_syrk_##W(ZEL_SYRK_STAGE_PARAMS(C, I), I bs1, I bs2)                 \
    { return zs::block_stage(ZEL_SYRK_STAGE_ARGS, bs1, bs2); }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_DRIVER_SHELLS)
}
