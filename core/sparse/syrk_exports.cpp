// Exported kernels of the A·Aᵀ / Aᵀ·A products: one-line shells over the templates.
#include <bit>

#include "syrk_kernels.hpp"
#include "zel/sparse_syrk.h"
#include "zel_internal/members.hpp"

namespace {

using namespace zel::sparse_syrk;

template <class C> inline zel::cpp_value_t<C> val(C v) { return std::bit_cast<zel::cpp_value_t<C>>(v); }
template <class C> inline const zel::cpp_value_t<C> *arr(const C *p) { return zel::as_cpp(p); }
template <class C> inline zel::cpp_value_t<C> *arr(C *p) { return zel::as_cpp(p); }
template <class C> inline zel::cpp_value_t<C> one() { return zel::cpp_value_t<C>(1); }

} // namespace

#define ZEL_SYRK_N_ARGS(C, I)                                                                                 \
    I r0, I r1, I m, I lb, const C *lv, const I *lc, const I *lrs, const I *lre, I rb, const C *rv, const I *rc, \
        const I *rrs, const I *rre, I *so, C *c, I ldc
#define ZEL_SYRK_N_PASS r0, r1, m, lb, arr(lv), lc, lrs, lre, rb, arr(rv), rc, rrs, rre, so, arr(c), ldc
#define ZEL_SYRK_T_ARGS(C, I)                                                                                 \
    I r0, I r1, I m, I n, I b, const C *v, const I *ci, const I *rs, const I *re, C *c, I ldc
#define ZEL_SYRK_T_PASS r0, r1, n, b, arr(v), ci, rs, re, arr(c), ldc

#define ZEL_SYRK_KERNEL_SHELLS(P, C, Cpp, W, I)                                                                    \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_c_ker_##W(ZEL_SYRK_N_ARGS(C, I), C beta)                     \
    {                                                                                                         \
        syrkd_n<false, false>(ZEL_SYRK_N_PASS, one<C>(), val(beta));                                          \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_f_ker_##W(ZEL_SYRK_N_ARGS(C, I), C beta)                     \
    {                                                                                                         \
        syrkd_n<true, false>(ZEL_SYRK_N_PASS, one<C>(), val(beta));                                           \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_alf_c_ker_##W(ZEL_SYRK_N_ARGS(C, I), C alpha, C beta)        \
    {                                                                                                         \
        syrkd_n<false, true>(ZEL_SYRK_N_PASS, val(alpha), val(beta));                                         \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_alf_f_ker_##W(ZEL_SYRK_N_ARGS(C, I), C alpha, C beta)        \
    {                                                                                                         \
        syrkd_n<true, true>(ZEL_SYRK_N_PASS, val(alpha), val(beta));                                          \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_c_ker_##W(ZEL_SYRK_T_ARGS(C, I), C beta)                     \
    {                                                                                                         \
        (void)m;                                                                                              \
        syrkd_t<false, false>(ZEL_SYRK_T_PASS, one<C>(), val(beta));                                          \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_f_ker_##W(ZEL_SYRK_T_ARGS(C, I), C beta)                     \
    {                                                                                                         \
        (void)m;                                                                                              \
        syrkd_t<true, false>(ZEL_SYRK_T_PASS, one<C>(), val(beta));                                           \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_alf_c_ker_##W(ZEL_SYRK_T_ARGS(C, I), C alpha, C beta)        \
    {                                                                                                         \
        (void)m;                                                                                              \
        syrkd_t<false, true>(ZEL_SYRK_T_PASS, val(alpha), val(beta));                                         \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_alf_f_ker_##W(ZEL_SYRK_T_ARGS(C, I), C alpha, C beta)        \
    {                                                                                                         \
        (void)m;                                                                                              \
        syrkd_t<true, true>(ZEL_SYRK_T_PASS, val(alpha), val(beta));                                          \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrk_notr_struct_##W(                                              \
        I r0, I r1, I m, I lb, const I *lc, const I *lrs, const I *lre, I rb, const I *rc, const I *rrs,      \
        const I *rre, I *so, I *marker, I *counts, uint64_t *work)                                            \
    {                                                                                                         \
        (void)m;                                                                                              \
        syrk_struct(r0, r1, lb, lc, lrs, lre, rb, rc, rrs, rre, so, marker, counts, work);                    \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrk_notr_row_##W(                                                 \
        I r0, I r1, I m, I lb, const C *lv, const I *lc, const I *lrs, const I *lre, I rb, const C *rv,       \
        const I *rc, const I *rrs, const I *rre, I *so, I *marker, const I *rs, I ob, I *ci, C *v)            \
    {                                                                                                         \
        syrk_row(r0, r1, m, lb, arr(lv), lc, lrs, lre, rb, arr(rv), rc, rrs, rre, so, marker, rs, ob, ci, arr(v)); \
    }                                                                                                         \
    ZEL_API void zel_sparse_##P##_bsr__g_n_syrk_notr_row_##W(                                                 \
        I r0, I r1, I m, I lb, const C *lv, const I *lc, const I *lrs, const I *lre, I rb, const C *rv,       \
        const I *rc, const I *rrs, const I *rre, I *so, I *marker, const I *rs, I ob, I *ci, C *v, I bs,      \
        I layout)                                                                                             \
    {                                                                                                         \
        (void)m;                                                                                              \
        syrk_block_row(r0, r1, lb, arr(lv), lc, lrs, lre, rb, arr(rv), rc, rrs, rre, so, marker, rs, ob, ci,  \
                       arr(v), bs, layout);                                                                   \
    }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_KERNEL_SHELLS)
}
