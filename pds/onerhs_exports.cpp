// Exported one-right-hand-side solve kernels: one-line shells over onerhs_ll.hpp, generated
// from the member lists (precision and width) and the stem tables below (a name's tokens to the
// template arguments).
#include "onerhs_ll.hpp"
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
#define ZEL_ONERHS_LL_REAL(P, C, T, W, I) ZEL_ONERHS_LL_REAL_STEMS(ZEL_ONERHS_LL_SHELLS, P, C, T, W, I)
#define ZEL_ONERHS_LL_CMPLX(P, C, T, W, I) ZEL_ONERHS_LL_CMPLX_STEMS(ZEL_ONERHS_LL_SHELLS, P, C, T, W, I)

extern "C" {

ZEL_PDS_REAL_MEMBERS(ZEL_ONERHS_LL_REAL)
ZEL_PDS_CMPLX_MEMBERS(ZEL_ONERHS_LL_CMPLX)

} // extern "C"
