// Exported A·Aᵀ / Aᵀ·A drivers: one-line shells over the templates, from one member list.
#include "syrk_drivers.hpp"
#include "zel_internal/members.hpp"

namespace zel::sparse_syrk {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_MEMBER_TABLE)
}

#define ZEL_SYRK_DRIVER_SHELLS(P, C, Cpp, W, I)                                                                    \
    ZEL_API int zel_sparse_##P##_syrkd_##W(int op, zel_sparse_matrix_##W *A, C alpha, C beta, C *c, int layout, \
                                           I ldc)                                                             \
    {                                                                                                         \
        return zel::sparse_syrk::syrkd_entry<C, I>(op, A, alpha, beta, c, layout, ldc);                       \
    }                                                                                                         \
    ZEL_API int zel_sparse_##P##_csr__g_n_syrkd_##W(C alpha, C beta, I m, I n, I b, const C *v, const I *ci,    \
                                                    const I *rs, const I *re, I tb, const C *tv, const I *tci,  \
                                                    const I *trs, const I *tre, C *c, int layout, I ldc)        \
    {                                                                                                         \
        return zel::sparse_syrk::syrkd_n_driver<C, I>(alpha, beta, m, n, b, v, ci, rs, re, tb, tv, tci, trs, tre, \
                                                      c, layout, ldc);                                        \
    }                                                                                                         \
    ZEL_API int zel_sparse_##P##_csr__g_t_syrkd_##W(I m, I n, I b, const C *v, const I *ci, const I *rs,        \
                                                    const I *re, C *c, int layout, I ldc, C alpha, C beta)      \
    {                                                                                                         \
        return zel::sparse_syrk::syrkd_t_driver<C, I>(m, n, b, v, ci, rs, re, c, layout, ldc, alpha, beta);    \
    }                                                                                                         \
    ZEL_API int zel_sparse_##P##_csr__g_n_syrk_##W(int stage, int op, I m, I n, I b1, const C *v1, const I *c1, \
                                                   const I *rs1, const I *re1, I b2, const C *v2, const I *c2,  \
                                                   const I *rs2, const I *re2, I one_based, C **v, I **ci,      \
                                                   I **rs)                                                    \
    {                                                                                                         \
        return zel::sparse_syrk::syrk_stage_driver<C, I>(stage, op, m, n, {b1, v1, c1, rs1, re1},             \
                                                         {b2, v2, c2, rs2, re2}, one_based, v, ci, rs, 0);    \
    }                                                                                                         \
    ZEL_API int zel_sparse_##P##_bsr__g_n_syrk_##W(int stage, int op, I m, I n, I b1, const C *v1, const I *c1, \
                                                   const I *rs1, const I *re1, I b2, const C *v2, const I *c2,  \
                                                   const I *rs2, const I *re2, I one_based, C **v, I **ci,      \
                                                   I **rs, I bs1, I bs2)                                      \
    {                                                                                                         \
        if (bs1 < 1 || bs1 != bs2)                                                                            \
            return ZEL_SPARSE_STATUS_INVALID_VALUE;                                                           \
        return zel::sparse_syrk::syrk_stage_driver<C, I>(stage, op, m, n, {b1, v1, c1, rs1, re1},             \
                                                         {b2, v2, c2, rs2, re2}, one_based, v, ci, rs, bs1);  \
    }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_DRIVER_SHELLS)
}
