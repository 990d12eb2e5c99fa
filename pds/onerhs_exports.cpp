// Exported one-right-hand-side solve kernels: one-line shells over onerhs_ll.hpp, generated
// from the member lists (precision and width) and the stem tables below (a name's tokens to the
// template arguments).
#include "onerhs_omp.hpp"
#include "zel/pds_onerhs.h"

namespace zo = zel::pds::onerhs;
using zo::ll_factor;

namespace zel::pds::onerhs {
namespace {

template <class I> void store(I *error, int64_t value)
{
    if (error != nullptr)
        *error = I(value);
}

} // namespace
} // namespace zel::pds::onerhs

// blkslv_ll stems: name, factor, Conj, Herm.
#define ZEL_ONERHS_LL_REAL_STEMS(X, P, C, T, W, I)                                                            \
    X(P, C, T, W, I, real, unsym_n, lu, false, false)                                                         \
    X(P, C, T, W, I, real, unsym_t, lu_transposed, false, false)                                              \
    X(P, C, T, W, I, real, posdef, cholesky, false, false)                                                    \
    X(P, C, T, W, I, real, undef_bk, bunch_kaufman, false, false)                                             \
    X(P, C, T, W, I, real, undef_di, diagonal, false, false)
#define ZEL_ONERHS_LL_CMPLX_STEMS(X, P, C, T, W, I)                                                           \
    X(P, C, T, W, I, cmplx, unsym_n, lu, false, false)                                                        \
    X(P, C, T, W, I, cmplx, unsym_t, lu_transposed, false, false)                                             \
    X(P, C, T, W, I, cmplx, unsym_ct, lu_transposed, true, false)                                             \
    X(P, C, T, W, I, cmplx, posdef_n, cholesky, false, true)                                                  \
    X(P, C, T, W, I, cmplx, posdef_t, cholesky, true, true)                                                   \
    X(P, C, T, W, I, cmplx, undef_bk, bunch_kaufman, false, true)                                             \
    X(P, C, T, W, I, cmplx, undef_di, diagonal, false, true)                                                  \
    X(P, C, T, W, I, cmplx, sym_bk_n, bunch_kaufman, false, false)                                            \
    X(P, C, T, W, I, cmplx, sym_bk_ct, bunch_kaufman, true, false)                                            \
    X(P, C, T, W, I, cmplx, sym_di_n, diagonal, false, false)                                                 \
    X(P, C, T, W, I, cmplx, sym_di_ct, diagonal, true, false)

// The factor's arrays after the geometry's own arguments, then x and the step's arguments.
#define ZEL_ONERHS_FACTOR_PARAMS(C, I)                                                                         \
    I nsuper, I first, I last, const I *super_ptr, const I *col_ptr, const I *row_ptr, const I *row_index,    \
        const C *l_values, const I *u_col_ptr, const C *u_values, const I *row_pivots, const I *col_pivots,   \
        C *x, const I *control, I step, I *error
#define ZEL_ONERHS_VIEW(T, I)                                                                                  \
    zo::factor_view<T, I>{n, nsuper, super_ptr, col_ptr, row_ptr, row_index, zel::as_cpp(l_values), u_col_ptr, \
                          zel::as_cpp(u_values), row_pivots, col_pivots}
#define ZEL_ONERHS_LL_CALL(T, I, F, CONJ, HERM, GEOMETRY)                                                      \
    zo::store(error, zo::blkslv_ll<zo::ll_kind<ll_factor::F, CONJ, HERM>>(ZEL_ONERHS_VIEW(T, I), GEOMETRY,     \
                                                                          first, last, zel::as_cpp(x), control, \
                                                                          step))

#define ZEL_ONERHS_LL_SHELLS(P, C, T, W, I, K, STEM, F, CONJ, HERM)                                             \
    ZEL_API void zel_pds_##W##P##blkslv_ll_##STEM##_##K(I n, ZEL_ONERHS_FACTOR_PARAMS(C, I))                    \
    { ZEL_ONERHS_LL_CALL(T, I, F, CONJ, HERM, zo::scalar_blocks{}); }                                          \
    ZEL_API void zel_pds_##W##P##blkslv_ll_bsr_##STEM##_##K(I n, I bs, ZEL_ONERHS_FACTOR_PARAMS(C, I))          \
    { ZEL_ONERHS_LL_CALL(T, I, F, CONJ, HERM, zo::fixed_blocks{bs}); }                                         \
    ZEL_API void zel_pds_##W##P##blkslv_ll_vbsr_##STEM##_##K(I n, const I *block_start,                         \
                                                             ZEL_ONERHS_FACTOR_PARAMS(C, I))                   \
    { ZEL_ONERHS_LL_CALL(T, I, F, CONJ, HERM, zo::variable_blocks<I>{block_start}); }
// blkslv_tl: the same arguments with the partition count before error.
#define ZEL_ONERHS_TL_PARAMS(C, I)                                                                             \
    I nsuper, I first, I last, const I *super_ptr, const I *col_ptr, const I *row_ptr, const I *row_index,    \
        const C *l_values, const I *u_col_ptr, const C *u_values, const I *row_pivots, const I *col_pivots,   \
        C *x, const I *control, I step, I partitions, I *error
#define ZEL_ONERHS_TL_CALL(T, I, F, CONJ, HERM, GEOMETRY)                                                      \
    zo::store(error, zo::blkslv_tl<zo::ll_kind<ll_factor::F, CONJ, HERM>>(ZEL_ONERHS_VIEW(T, I), GEOMETRY,     \
                                                                          first, last, zel::as_cpp(x), control, \
                                                                          step, partitions))
#define ZEL_ONERHS_TL_SHELLS(P, C, T, W, I, K, STEM, F, CONJ, HERM)                                             \
    ZEL_API void zel_pds_##W##P##blkslv_tl_##STEM##_##K(I n, ZEL_ONERHS_TL_PARAMS(C, I))                        \
    { ZEL_ONERHS_TL_CALL(T, I, F, CONJ, HERM, zo::scalar_blocks{}); }                                          \
    ZEL_API void zel_pds_##W##P##blkslv_tl_bsr_##STEM##_##K(I n, I bs, ZEL_ONERHS_TL_PARAMS(C, I))              \
    { ZEL_ONERHS_TL_CALL(T, I, F, CONJ, HERM, zo::fixed_blocks{bs}); }                                         \
    ZEL_API void zel_pds_##W##P##blkslv_tl_vbsr_##STEM##_##K(I n, const I *block_start,                         \
                                                             ZEL_ONERHS_TL_PARAMS(C, I))                       \
    { ZEL_ONERHS_TL_CALL(T, I, F, CONJ, HERM, zo::variable_blocks<I>{block_start}); }

#define ZEL_ONERHS_LL_REAL(P, C, T, W, I)                                                                      \
    ZEL_ONERHS_LL_REAL_STEMS(ZEL_ONERHS_LL_SHELLS, P, C, T, W, I)                                              \
    ZEL_ONERHS_LL_REAL_STEMS(ZEL_ONERHS_TL_SHELLS, P, C, T, W, I)
#define ZEL_ONERHS_LL_CMPLX(P, C, T, W, I) ZEL_ONERHS_LL_CMPLX_STEMS(ZEL_ONERHS_LL_SHELLS, P, C, T, W, I)

// The sweep kernels of the partitioned solve, their driver, the nrhs forms and perm_sol. A
// geometry argument GARG travels in parentheses (its comma inside) and is unwrapped where used.
#define ZEL_ONERHS_ARG(...) __VA_ARGS__
#define ZEL_ONERHS_ARRAYS(C, I)                                                                                \
    const I *super_ptr, const I *col_ptr, const I *row_ptr, const I *row_index, const C *l_values,            \
        const I *u_col_ptr, const C *u_values, const I *row_pivots, const I *col_pivots
#define ZEL_ONERHS_FLAGS(I) I matrix_kind, I plain_pivots, I unsym, I transposed
#define ZEL_ONERHS_FLAG_VALUES(PARTS) zo::sweep_flags{matrix_kind, plain_pivots, unsym, transposed, PARTS, bk_routine}
#define ZEL_ONERHS_OMP_SHELLS(P, C, T, W, I, K, G, GARG, GEOMETRY)                                             \
    ZEL_API void zel_pds_##W##P##fwd_omp_mic##G##_##K(I n, ZEL_ONERHS_ARG GARG I first, I last,               \
                                                      ZEL_ONERHS_ARRAYS(C, I), C *x, C *outside, C *work,      \
                                                      ZEL_ONERHS_FLAGS(I), I partitions, I bk_routine, I *info) \
    { const I nsuper = last;                                                                                   \
      zo::store(info, zo::fwd_omp_mic(ZEL_ONERHS_VIEW(T, I), GEOMETRY, first, last, zel::as_cpp(x),            \
                                      zel::as_cpp(outside), zel::as_cpp(work), ZEL_ONERHS_FLAG_VALUES(partitions))); } \
    ZEL_API void zel_pds_##W##P##bwd_omp_mic##G##_##K(I n, ZEL_ONERHS_ARG GARG I first, I last,               \
                                                      ZEL_ONERHS_ARRAYS(C, I), C *x, ZEL_ONERHS_FLAGS(I),      \
                                                      I bk_routine, I *error)                                  \
    { const I nsuper = last;                                                                                   \
      zo::store(error, zo::bwd_omp_mic(ZEL_ONERHS_VIEW(T, I), GEOMETRY, first, last, zel::as_cpp(x),           \
                                       ZEL_ONERHS_FLAG_VALUES(1))); }                                          \
    ZEL_API void zel_pds_##W##P##blkslv_omp_mic##G##_##K(I n, ZEL_ONERHS_ARG GARG I nsuper,                   \
                                                         ZEL_ONERHS_ARRAYS(C, I), C *x, ZEL_ONERHS_FLAGS(I),   \
                                                         I partitions, I bk_routine, I step, I *error)        \
    { zo::store(error, zo::blkslv_omp_mic(ZEL_ONERHS_VIEW(T, I), GEOMETRY, zel::as_cpp(x),                     \
                                          ZEL_ONERHS_FLAG_VALUES(partitions), step)); }
#define ZEL_ONERHS_NRHS_SHELL(P, C, T, W, I, K, DIR, BACKWARD, G, GARG, GEOMETRY)                              \
    ZEL_API void zel_pds_##W##P##DIR##_nrhs##G##_##K(I n, ZEL_ONERHS_ARG GARG I nsuper,                       \
                                                     ZEL_ONERHS_ARRAYS(C, I), I nrhs, C *x, I ldx,             \
                                                     ZEL_ONERHS_FLAGS(I), I bk_routine, I *error)              \
    { zo::store(error, zo::sweep_nrhs<BACKWARD>(ZEL_ONERHS_VIEW(T, I), GEOMETRY, nrhs, zel::as_cpp(x), ldx,    \
                                                ZEL_ONERHS_FLAG_VALUES(1))); }
#define ZEL_ONERHS_NRHS_SHELLS(P, C, T, W, I, K, G, GARG, GEOMETRY)                                             \
    ZEL_ONERHS_NRHS_SHELL(P, C, T, W, I, K, fwd, false, G, GARG, GEOMETRY)                                     \
    ZEL_ONERHS_NRHS_SHELL(P, C, T, W, I, K, bwd, true, G, GARG, GEOMETRY)
#define ZEL_ONERHS_PERM_SHELL(P, C, T, W, I, K, DIR, SCATTER)                                                   \
    ZEL_API void zel_pds_##W##P##DIR##_perm_sol_##K(I n, I nrhs, const I *perm, const C *b, I ldb, C *x,        \
                                                    I ldx, I *error)                                           \
    { zo::store(error, zo::perm_sol<SCATTER>(n, nrhs, perm, zel::as_cpp(b), ldb, zel::as_cpp(x), ldx)); }
#define ZEL_ONERHS_DRIVER_SHELLS(P, C, T, W, I, K)                                                              \
    ZEL_ONERHS_OMP_SHELLS(P, C, T, W, I, K, , (I bs, ), zo::fixed_blocks{bs})                                  \
    ZEL_ONERHS_OMP_SHELLS(P, C, T, W, I, K, _vbsr, (const I *block_start, ), zo::variable_blocks<I>{block_start}) \
    ZEL_ONERHS_NRHS_SHELLS(P, C, T, W, I, K, , (), zo::scalar_blocks{})                                        \
    ZEL_ONERHS_NRHS_SHELLS(P, C, T, W, I, K, _bsr, (I bs, ), zo::fixed_blocks{bs})                             \
    ZEL_ONERHS_NRHS_SHELLS(P, C, T, W, I, K, _vbsr, (const I *block_start, ), zo::variable_blocks<I>{block_start}) \
    ZEL_ONERHS_PERM_SHELL(P, C, T, W, I, K, fwd, false)                                                        \
    ZEL_ONERHS_PERM_SHELL(P, C, T, W, I, K, bwd, true)
#define ZEL_ONERHS_DRIVER_REAL(P, C, T, W, I) ZEL_ONERHS_DRIVER_SHELLS(P, C, T, W, I, real)
#define ZEL_ONERHS_DRIVER_CMPLX(P, C, T, W, I) ZEL_ONERHS_DRIVER_SHELLS(P, C, T, W, I, cmplx)

extern "C" {

ZEL_PDS_REAL_MEMBERS(ZEL_ONERHS_LL_REAL)
ZEL_PDS_CMPLX_MEMBERS(ZEL_ONERHS_LL_CMPLX)
ZEL_PDS_REAL_MEMBERS(ZEL_ONERHS_DRIVER_REAL)
ZEL_PDS_CMPLX_MEMBERS(ZEL_ONERHS_DRIVER_CMPLX)

} // extern "C"
