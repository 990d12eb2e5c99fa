/* Zelmath direct sparse solver: the one-right-hand-side solve kernels over a supernodal factor.
 *
 * What it holds: the layer's kernels that solve with one right-hand side over a range of
 * supernodes of the factor zel_pds_export_factor_* hands out (docs/pds_onerhs.md gives every
 * argument), and the core's helpers they import.
 * Members: zel_pds_[lp64_][sp_]<kernel>_<real|cmplx>: lp64_ takes 32-bit integers in every
 * index array and scalar (64-bit otherwise), sp_ single-precision values (double otherwise),
 * cmplx pairs of them. blkslv_ll_[bsr_|vbsr_]<stem>: the steps over a supernode range in one
 * pass (scalar entries, fixed bs × bs blocks, variable blocks through block_start);
 * blkslv_tl_…: the same by partitions run one after another (real stems); fwd_omp_mic,
 * bwd_omp_mic: one sweep over a range, the forward one sending updates past the range to an
 * outside accumulator; blkslv_omp_mic: a whole solve by partitions over them; fwd_nrhs,
 * bwd_nrhs: a sweep on each of nrhs columns; fwd_perm_sol, bwd_perm_sol: the permutation into
 * and out of the factor's order.
 * Conventions: positions in the index arrays are 1-based; x holds the right-hand side on entry
 * and the result of the selected steps on return; step 0 runs every step, 1 the forward sweep,
 * 2 the diagonal step, 3 the backward sweep; control[1] 3 (2) widens the forward (backward)
 * sweep to every supernode. error: 0, 1 (no x, or no memory: x unchanged), 2 (a block the
 * core's Bunch–Kaufman routines refuse, or a bad block geometry).
 * Ownership: nothing here keeps or frees a caller's array; scratch memory is returned before
 * each call returns. The kernels are defined by libzel_sequential.so.2, the helpers at the end
 * by libzel_core.so.2. */
#ifndef ZEL_PDS_ONERHS_H
#define ZEL_PDS_ONERHS_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* ---- Layer (libzel_sequential.so.2) ---- */

/* blkslv_ll, 64-bit integers, double values. */
ZEL_API void zel_pds_blkslv_ll_unsym_n_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_unsym_t_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_posdef_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_undef_bk_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_undef_di_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_unsym_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_unsym_t_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_unsym_ct_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_posdef_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_posdef_t_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_undef_bk_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_undef_di_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_sym_bk_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_sym_bk_ct_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_sym_di_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_sym_di_ct_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_unsym_n_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_unsym_t_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_posdef_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_undef_bk_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_undef_di_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_unsym_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_unsym_t_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_unsym_ct_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_posdef_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_posdef_t_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_undef_bk_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_undef_di_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_sym_bk_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_sym_bk_ct_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_sym_di_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_bsr_sym_di_ct_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_unsym_n_real(int64_t n, const int64_t *block_start, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_unsym_t_real(int64_t n, const int64_t *block_start, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_posdef_real(int64_t n, const int64_t *block_start, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_undef_bk_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const double *l_values, const int64_t *u_col_ptr, const double *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, double *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_undef_di_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const double *l_values, const int64_t *u_col_ptr, const double *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, double *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_unsym_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_unsym_t_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_unsym_ct_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_posdef_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_posdef_t_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_undef_bk_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_undef_di_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_sym_bk_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_sym_bk_ct_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_sym_di_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_blkslv_ll_vbsr_sym_di_ct_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex16 *x, const int64_t *control, int64_t step,
    int64_t *error);
/* blkslv_tl (real stems), 64-bit integers, double values. */
ZEL_API void zel_pds_blkslv_tl_unsym_n_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_unsym_t_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_posdef_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_undef_bk_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_undef_di_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_bsr_unsym_n_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_bsr_unsym_t_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_bsr_posdef_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_bsr_undef_bk_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_bsr_undef_di_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_vbsr_unsym_n_real(int64_t n, const int64_t *block_start, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_vbsr_unsym_t_real(int64_t n, const int64_t *block_start, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_vbsr_posdef_real(int64_t n, const int64_t *block_start, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_vbsr_undef_bk_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const double *l_values, const int64_t *u_col_ptr, const double *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, double *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
ZEL_API void zel_pds_blkslv_tl_vbsr_undef_di_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const double *l_values, const int64_t *u_col_ptr, const double *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, double *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
/* Partitioned sweeps, their driver, nrhs and perm_sol, 64-bit integers. */
ZEL_API void zel_pds_fwd_omp_mic_real(int64_t n, int64_t bs, int64_t first, int64_t last, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const double *l_values,
    const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots, double *x,
    double *outside, double *work, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_bwd_omp_mic_real(int64_t n, int64_t bs, int64_t first, int64_t last, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const double *l_values,
    const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots, double *x,
    int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_blkslv_omp_mic_real(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const double *l_values,
    const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots, double *x,
    int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t partitions,
    int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_fwd_omp_mic_vbsr_real(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, double *outside, double *work, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_bwd_omp_mic_vbsr_real(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_blkslv_omp_mic_vbsr_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, double *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_fwd_nrhs_real(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const double *l_values, const int64_t *u_col_ptr,
    const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs, double *x,
    int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine,
    int64_t *error);
ZEL_API void zel_pds_fwd_nrhs_bsr_real(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const double *l_values,
    const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, double *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_fwd_nrhs_vbsr_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, double *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_bwd_nrhs_real(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const double *l_values, const int64_t *u_col_ptr,
    const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs, double *x,
    int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine,
    int64_t *error);
ZEL_API void zel_pds_bwd_nrhs_bsr_real(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const double *l_values,
    const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, double *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_bwd_nrhs_vbsr_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const double *l_values, const int64_t *u_col_ptr, const double *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, double *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_fwd_perm_sol_real(int64_t n, int64_t nrhs, const int64_t *perm, const double *b, int64_t ldb,
    double *x, int64_t ldx, int64_t *error);
ZEL_API void zel_pds_bwd_perm_sol_real(int64_t n, int64_t nrhs, const int64_t *perm, const double *b, int64_t ldb,
    double *x, int64_t ldx, int64_t *error);
ZEL_API void zel_pds_fwd_omp_mic_cmplx(int64_t n, int64_t bs, int64_t first, int64_t last, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values,
    const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    zel_complex16 *x, zel_complex16 *outside, zel_complex16 *work, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_bwd_omp_mic_cmplx(int64_t n, int64_t bs, int64_t first, int64_t last, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values,
    const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    zel_complex16 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_blkslv_omp_mic_cmplx(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values,
    const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    zel_complex16 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t partitions, int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_fwd_omp_mic_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, zel_complex16 *outside, zel_complex16 *work, int64_t matrix_kind,
    int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_bwd_omp_mic_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_blkslv_omp_mic_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex16 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_fwd_nrhs_cmplx(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr,
    const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs,
    zel_complex16 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_fwd_nrhs_bsr_cmplx(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values,
    const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, zel_complex16 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_fwd_nrhs_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, zel_complex16 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_bwd_nrhs_cmplx(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values, const int64_t *u_col_ptr,
    const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs,
    zel_complex16 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_bwd_nrhs_bsr_cmplx(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex16 *l_values,
    const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, zel_complex16 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_bwd_nrhs_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex16 *l_values, const int64_t *u_col_ptr, const zel_complex16 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, zel_complex16 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_fwd_perm_sol_cmplx(int64_t n, int64_t nrhs, const int64_t *perm, const zel_complex16 *b,
    int64_t ldb, zel_complex16 *x, int64_t ldx, int64_t *error);
ZEL_API void zel_pds_bwd_perm_sol_cmplx(int64_t n, int64_t nrhs, const int64_t *perm, const zel_complex16 *b,
    int64_t ldb, zel_complex16 *x, int64_t ldx, int64_t *error);

/* blkslv_ll, 64-bit integers, float values. */
ZEL_API void zel_pds_sp_blkslv_ll_unsym_n_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_unsym_t_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_posdef_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_undef_bk_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_undef_di_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_unsym_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_unsym_t_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_unsym_ct_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_posdef_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_posdef_t_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_undef_bk_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_undef_di_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_sym_bk_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_sym_bk_ct_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_sym_di_n_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_sym_di_ct_cmplx(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_unsym_n_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_unsym_t_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_posdef_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_undef_bk_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_undef_di_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_unsym_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_unsym_t_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_unsym_ct_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_posdef_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_posdef_t_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_undef_bk_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_undef_di_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_sym_bk_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_sym_bk_ct_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_sym_di_n_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_bsr_sym_di_ct_cmplx(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_unsym_n_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_unsym_t_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_posdef_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_undef_bk_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_undef_di_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_unsym_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_unsym_t_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_unsym_ct_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_posdef_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_posdef_t_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_undef_bk_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_undef_di_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_sym_bk_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_sym_bk_ct_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_sym_di_n_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
ZEL_API void zel_pds_sp_blkslv_ll_vbsr_sym_di_ct_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, zel_complex8 *x, const int64_t *control, int64_t step,
    int64_t *error);
/* blkslv_tl (real stems), 64-bit integers, float values. */
ZEL_API void zel_pds_sp_blkslv_tl_unsym_n_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_unsym_t_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_posdef_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_undef_bk_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_undef_di_real(int64_t n, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_bsr_unsym_n_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_bsr_unsym_t_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_bsr_posdef_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_bsr_undef_bk_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_bsr_undef_di_real(int64_t n, int64_t bs, int64_t nsuper, int64_t first,
    int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, const int64_t *control, int64_t step, int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_vbsr_unsym_n_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_vbsr_unsym_t_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_vbsr_posdef_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_vbsr_undef_bk_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_tl_vbsr_undef_di_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    int64_t first, int64_t last, const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr,
    const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr, const float *u_values,
    const int64_t *row_pivots, const int64_t *col_pivots, float *x, const int64_t *control, int64_t step,
    int64_t partitions, int64_t *error);
/* Partitioned sweeps, their driver, nrhs and perm_sol, 64-bit integers. */
ZEL_API void zel_pds_sp_fwd_omp_mic_real(int64_t n, int64_t bs, int64_t first, int64_t last, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const float *l_values,
    const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots, float *x,
    float *outside, float *work, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_sp_bwd_omp_mic_real(int64_t n, int64_t bs, int64_t first, int64_t last, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const float *l_values,
    const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots, float *x,
    int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_omp_mic_real(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const float *l_values,
    const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots, float *x,
    int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t partitions,
    int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_fwd_omp_mic_vbsr_real(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, float *outside, float *work, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_sp_bwd_omp_mic_vbsr_real(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_omp_mic_vbsr_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, float *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t partitions, int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_fwd_nrhs_real(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr,
    const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs, float *x, int64_t ldx,
    int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_fwd_nrhs_bsr_real(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const float *l_values,
    const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, float *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_fwd_nrhs_vbsr_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, float *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_bwd_nrhs_real(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const float *l_values, const int64_t *u_col_ptr,
    const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs, float *x, int64_t ldx,
    int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_bwd_nrhs_bsr_real(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const float *l_values,
    const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, float *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed,
    int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_bwd_nrhs_vbsr_real(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const float *l_values, const int64_t *u_col_ptr, const float *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, float *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_fwd_perm_sol_real(int64_t n, int64_t nrhs, const int64_t *perm, const float *b, int64_t ldb,
    float *x, int64_t ldx, int64_t *error);
ZEL_API void zel_pds_sp_bwd_perm_sol_real(int64_t n, int64_t nrhs, const int64_t *perm, const float *b, int64_t ldb,
    float *x, int64_t ldx, int64_t *error);
ZEL_API void zel_pds_sp_fwd_omp_mic_cmplx(int64_t n, int64_t bs, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, zel_complex8 *outside, zel_complex8 *work, int64_t matrix_kind,
    int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_sp_bwd_omp_mic_cmplx(int64_t n, int64_t bs, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_omp_mic_cmplx(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex8 *l_values,
    const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    zel_complex8 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t partitions,
    int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_fwd_omp_mic_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, zel_complex8 *outside, zel_complex8 *work, int64_t matrix_kind,
    int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t *info);
ZEL_API void zel_pds_sp_bwd_omp_mic_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t first, int64_t last,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_blkslv_omp_mic_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, zel_complex8 *x, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t partitions, int64_t bk_routine, int64_t step, int64_t *error);
ZEL_API void zel_pds_sp_fwd_nrhs_cmplx(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr,
    const zel_complex8 *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs, zel_complex8 *x,
    int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine,
    int64_t *error);
ZEL_API void zel_pds_sp_fwd_nrhs_bsr_cmplx(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex8 *l_values,
    const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, zel_complex8 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_fwd_nrhs_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, zel_complex8 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_bwd_nrhs_cmplx(int64_t n, int64_t nsuper, const int64_t *super_ptr, const int64_t *col_ptr,
    const int64_t *row_ptr, const int64_t *row_index, const zel_complex8 *l_values, const int64_t *u_col_ptr,
    const zel_complex8 *u_values, const int64_t *row_pivots, const int64_t *col_pivots, int64_t nrhs, zel_complex8 *x,
    int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym, int64_t transposed, int64_t bk_routine,
    int64_t *error);
ZEL_API void zel_pds_sp_bwd_nrhs_bsr_cmplx(int64_t n, int64_t bs, int64_t nsuper, const int64_t *super_ptr,
    const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index, const zel_complex8 *l_values,
    const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots, const int64_t *col_pivots,
    int64_t nrhs, zel_complex8 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots, int64_t unsym,
    int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_bwd_nrhs_vbsr_cmplx(int64_t n, const int64_t *block_start, int64_t nsuper,
    const int64_t *super_ptr, const int64_t *col_ptr, const int64_t *row_ptr, const int64_t *row_index,
    const zel_complex8 *l_values, const int64_t *u_col_ptr, const zel_complex8 *u_values, const int64_t *row_pivots,
    const int64_t *col_pivots, int64_t nrhs, zel_complex8 *x, int64_t ldx, int64_t matrix_kind, int64_t plain_pivots,
    int64_t unsym, int64_t transposed, int64_t bk_routine, int64_t *error);
ZEL_API void zel_pds_sp_fwd_perm_sol_cmplx(int64_t n, int64_t nrhs, const int64_t *perm, const zel_complex8 *b,
    int64_t ldb, zel_complex8 *x, int64_t ldx, int64_t *error);
ZEL_API void zel_pds_sp_bwd_perm_sol_cmplx(int64_t n, int64_t nrhs, const int64_t *perm, const zel_complex8 *b,
    int64_t ldb, zel_complex8 *x, int64_t ldx, int64_t *error);

/* blkslv_ll, 32-bit integers, double values. */
ZEL_API void zel_pds_lp64_blkslv_ll_unsym_n_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_unsym_t_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_posdef_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_undef_bk_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_undef_di_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_unsym_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_unsym_t_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_unsym_ct_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_posdef_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_posdef_t_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_undef_bk_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_undef_di_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_sym_bk_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_sym_bk_ct_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_sym_di_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_sym_di_ct_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_unsym_n_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_unsym_t_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_posdef_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_undef_bk_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_undef_di_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_unsym_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_unsym_t_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_unsym_ct_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_posdef_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_posdef_t_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_undef_bk_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_undef_di_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_sym_bk_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_sym_bk_ct_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_sym_di_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_bsr_sym_di_ct_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_unsym_n_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_unsym_t_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_posdef_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_undef_bk_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_undef_di_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_unsym_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_unsym_t_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_unsym_ct_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_posdef_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_posdef_t_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_undef_bk_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_undef_di_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_sym_bk_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_sym_bk_ct_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_sym_di_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_ll_vbsr_sym_di_ct_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex16 *x, const int32_t *control, int32_t step,
    int32_t *error);
/* blkslv_tl (real stems), 32-bit integers, double values. */
ZEL_API void zel_pds_lp64_blkslv_tl_unsym_n_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_unsym_t_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_posdef_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_undef_bk_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_undef_di_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_bsr_unsym_n_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_bsr_unsym_t_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_bsr_posdef_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_bsr_undef_bk_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_bsr_undef_di_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_vbsr_unsym_n_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_vbsr_unsym_t_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_vbsr_posdef_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_vbsr_undef_bk_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_tl_vbsr_undef_di_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr, const double *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, double *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
/* Partitioned sweeps, their driver, nrhs and perm_sol, 32-bit integers. */
ZEL_API void zel_pds_lp64_fwd_omp_mic_real(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, double *outside, double *work, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_bwd_omp_mic_real(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_omp_mic_real(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const double *l_values,
    const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots, const int32_t *col_pivots, double *x,
    int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions,
    int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_omp_mic_vbsr_real(int32_t n, const int32_t *block_start, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, double *outside, double *work, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_bwd_omp_mic_vbsr_real(int32_t n, const int32_t *block_start, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_omp_mic_vbsr_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, double *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_nrhs_real(int32_t n, int32_t nsuper, const int32_t *super_ptr, const int32_t *col_ptr,
    const int32_t *row_ptr, const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr,
    const double *u_values, const int32_t *row_pivots, const int32_t *col_pivots, int32_t nrhs, double *x,
    int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t bk_routine,
    int32_t *error);
ZEL_API void zel_pds_lp64_fwd_nrhs_bsr_real(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const double *l_values,
    const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, double *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_nrhs_vbsr_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, double *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_nrhs_real(int32_t n, int32_t nsuper, const int32_t *super_ptr, const int32_t *col_ptr,
    const int32_t *row_ptr, const int32_t *row_index, const double *l_values, const int32_t *u_col_ptr,
    const double *u_values, const int32_t *row_pivots, const int32_t *col_pivots, int32_t nrhs, double *x,
    int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t bk_routine,
    int32_t *error);
ZEL_API void zel_pds_lp64_bwd_nrhs_bsr_real(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const double *l_values,
    const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, double *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_nrhs_vbsr_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const double *l_values, const int32_t *u_col_ptr, const double *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, double *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_perm_sol_real(int32_t n, int32_t nrhs, const int32_t *perm, const double *b,
    int32_t ldb, double *x, int32_t ldx, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_perm_sol_real(int32_t n, int32_t nrhs, const int32_t *perm, const double *b,
    int32_t ldb, double *x, int32_t ldx, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_omp_mic_cmplx(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, zel_complex16 *outside, zel_complex16 *work, int32_t matrix_kind,
    int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_bwd_omp_mic_cmplx(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_omp_mic_cmplx(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex16 *l_values,
    const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    zel_complex16 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t partitions, int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_omp_mic_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, zel_complex16 *outside, zel_complex16 *work, int32_t matrix_kind,
    int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_bwd_omp_mic_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_blkslv_omp_mic_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex16 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_nrhs_cmplx(int32_t n, int32_t nsuper, const int32_t *super_ptr, const int32_t *col_ptr,
    const int32_t *row_ptr, const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr,
    const zel_complex16 *u_values, const int32_t *row_pivots, const int32_t *col_pivots, int32_t nrhs,
    zel_complex16 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_nrhs_bsr_cmplx(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex16 *l_values,
    const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, zel_complex16 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_nrhs_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, zel_complex16 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_nrhs_cmplx(int32_t n, int32_t nsuper, const int32_t *super_ptr, const int32_t *col_ptr,
    const int32_t *row_ptr, const int32_t *row_index, const zel_complex16 *l_values, const int32_t *u_col_ptr,
    const zel_complex16 *u_values, const int32_t *row_pivots, const int32_t *col_pivots, int32_t nrhs,
    zel_complex16 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_nrhs_bsr_cmplx(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex16 *l_values,
    const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, zel_complex16 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_nrhs_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex16 *l_values, const int32_t *u_col_ptr, const zel_complex16 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, zel_complex16 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_fwd_perm_sol_cmplx(int32_t n, int32_t nrhs, const int32_t *perm, const zel_complex16 *b,
    int32_t ldb, zel_complex16 *x, int32_t ldx, int32_t *error);
ZEL_API void zel_pds_lp64_bwd_perm_sol_cmplx(int32_t n, int32_t nrhs, const int32_t *perm, const zel_complex16 *b,
    int32_t ldb, zel_complex16 *x, int32_t ldx, int32_t *error);

/* blkslv_ll, 32-bit integers, float values. */
ZEL_API void zel_pds_lp64_sp_blkslv_ll_unsym_n_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_unsym_t_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_posdef_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_undef_bk_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_undef_di_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_unsym_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_unsym_t_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_unsym_ct_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_posdef_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_posdef_t_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_undef_bk_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_undef_di_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_sym_bk_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_sym_bk_ct_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_sym_di_n_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_sym_di_ct_cmplx(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_unsym_n_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_unsym_t_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_posdef_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_undef_bk_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_undef_di_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_unsym_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_unsym_t_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_unsym_ct_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_posdef_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_posdef_t_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_undef_bk_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_undef_di_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_sym_bk_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_sym_bk_ct_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_sym_di_n_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_bsr_sym_di_ct_cmplx(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_unsym_n_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_unsym_t_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_posdef_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_undef_bk_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_undef_di_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_unsym_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_unsym_t_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_unsym_ct_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_posdef_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_posdef_t_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_undef_bk_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_undef_di_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_sym_bk_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_sym_bk_ct_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_sym_di_n_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_ll_vbsr_sym_di_ct_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, zel_complex8 *x, const int32_t *control, int32_t step,
    int32_t *error);
/* blkslv_tl (real stems), 32-bit integers, float values. */
ZEL_API void zel_pds_lp64_sp_blkslv_tl_unsym_n_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_unsym_t_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_posdef_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_undef_bk_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_undef_di_real(int32_t n, int32_t nsuper, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_bsr_unsym_n_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_bsr_unsym_t_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_bsr_posdef_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_bsr_undef_bk_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_bsr_undef_di_real(int32_t n, int32_t bs, int32_t nsuper, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, const int32_t *control, int32_t step, int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_vbsr_unsym_n_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_vbsr_unsym_t_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_vbsr_posdef_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_vbsr_undef_bk_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_tl_vbsr_undef_di_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    int32_t first, int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr,
    const int32_t *row_index, const float *l_values, const int32_t *u_col_ptr, const float *u_values,
    const int32_t *row_pivots, const int32_t *col_pivots, float *x, const int32_t *control, int32_t step,
    int32_t partitions, int32_t *error);
/* Partitioned sweeps, their driver, nrhs and perm_sol, 32-bit integers. */
ZEL_API void zel_pds_lp64_sp_fwd_omp_mic_real(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, float *outside, float *work, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_sp_bwd_omp_mic_real(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_omp_mic_real(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const float *l_values,
    const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots, const int32_t *col_pivots, float *x,
    int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions,
    int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_omp_mic_vbsr_real(int32_t n, const int32_t *block_start, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, float *outside, float *work, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_sp_bwd_omp_mic_vbsr_real(int32_t n, const int32_t *block_start, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_omp_mic_vbsr_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, float *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t partitions, int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_nrhs_real(int32_t n, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const float *l_values,
    const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, float *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_nrhs_bsr_real(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const float *l_values,
    const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, float *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_nrhs_vbsr_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, float *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_nrhs_real(int32_t n, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const float *l_values,
    const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, float *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_nrhs_bsr_real(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const float *l_values,
    const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, float *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed,
    int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_nrhs_vbsr_real(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const float *l_values, const int32_t *u_col_ptr, const float *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, float *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_perm_sol_real(int32_t n, int32_t nrhs, const int32_t *perm, const float *b,
    int32_t ldb, float *x, int32_t ldx, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_perm_sol_real(int32_t n, int32_t nrhs, const int32_t *perm, const float *b,
    int32_t ldb, float *x, int32_t ldx, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_omp_mic_cmplx(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, zel_complex8 *outside, zel_complex8 *work, int32_t matrix_kind,
    int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_sp_bwd_omp_mic_cmplx(int32_t n, int32_t bs, int32_t first, int32_t last,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_omp_mic_cmplx(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex8 *l_values,
    const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    zel_complex8 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions,
    int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_omp_mic_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, zel_complex8 *outside, zel_complex8 *work, int32_t matrix_kind,
    int32_t plain_pivots, int32_t unsym, int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t *info);
ZEL_API void zel_pds_lp64_sp_bwd_omp_mic_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t first,
    int32_t last, const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_blkslv_omp_mic_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, zel_complex8 *x, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t partitions, int32_t bk_routine, int32_t step, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_nrhs_cmplx(int32_t n, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex8 *l_values,
    const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, zel_complex8 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_nrhs_bsr_cmplx(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex8 *l_values,
    const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, zel_complex8 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_nrhs_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, zel_complex8 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_nrhs_cmplx(int32_t n, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex8 *l_values,
    const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, zel_complex8 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_nrhs_bsr_cmplx(int32_t n, int32_t bs, int32_t nsuper, const int32_t *super_ptr,
    const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index, const zel_complex8 *l_values,
    const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots, const int32_t *col_pivots,
    int32_t nrhs, zel_complex8 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots, int32_t unsym,
    int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_nrhs_vbsr_cmplx(int32_t n, const int32_t *block_start, int32_t nsuper,
    const int32_t *super_ptr, const int32_t *col_ptr, const int32_t *row_ptr, const int32_t *row_index,
    const zel_complex8 *l_values, const int32_t *u_col_ptr, const zel_complex8 *u_values, const int32_t *row_pivots,
    const int32_t *col_pivots, int32_t nrhs, zel_complex8 *x, int32_t ldx, int32_t matrix_kind, int32_t plain_pivots,
    int32_t unsym, int32_t transposed, int32_t bk_routine, int32_t *error);
ZEL_API void zel_pds_lp64_sp_fwd_perm_sol_cmplx(int32_t n, int32_t nrhs, const int32_t *perm, const zel_complex8 *b,
    int32_t ldb, zel_complex8 *x, int32_t ldx, int32_t *error);
ZEL_API void zel_pds_lp64_sp_bwd_perm_sol_cmplx(int32_t n, int32_t nrhs, const int32_t *perm, const zel_complex8 *b,
    int32_t ldb, zel_complex8 *x, int32_t ldx, int32_t *error);

/* ---- Core (libzel_core.so.2) ---- */

/* Undoes the interchanges ipiv[0 … n−1] (1-based, relative to the segment) on a vector
 * segment, the last first: the column interchanges of a diagonal block after its backward
 * solve. luspxm: double; c_: complex double; sp_, sp_c_: their single-precision forms. */
ZEL_API void zel_pds_luspxm_varisol(const int64_t *n, double *x, const int64_t *ipiv);
ZEL_API void zel_pds_c_luspxm_varisol(const int64_t *n, zel_complex16 *x, const int64_t *ipiv);
ZEL_API void zel_pds_sp_luspxm_varisol(const int64_t *n, float *x, const int64_t *ipiv);
ZEL_API void zel_pds_sp_c_luspxm_varisol(const int64_t *n, zel_complex8 *x, const int64_t *ipiv);

/* x[i] ← x[perm[i] − 1] for i < n, through work (n values); a null perm leaves x as it is. */
ZEL_API void zel_pds_fdb_perm_mic_real(const int64_t *n, const int64_t *perm, double *x, double *work);
ZEL_API void zel_pds_fdb_perm_mic_cmplx(const int64_t *n, const int64_t *perm, zel_complex16 *x,
                                        zel_complex16 *work);

/* x += partial over n values, and partial cleared: a partition's updates merged. */
ZEL_API void zel_pds_copy_rhs_omp_to_rhs_real(const int64_t *n, double *partial, double *x);
ZEL_API void zel_pds_sp_copy_rhs_omp_to_rhs_real(const int64_t *n, float *partial, float *x);

/* The supernodes first … last (1-based, inclusive) of partition part (0-based) of parts: runs
 * in order, as even as the count allows; an empty range has first = last + 1. */
ZEL_API void zel_pds_get_ddist_bounds(const int64_t *nsuper, const int64_t *parts, const int64_t *part,
                                      int64_t *first, int64_t *last);

/* Gives up the processor for a moment (a partition waiting on another). */
ZEL_API void zel_serv_thread_yield(void);

ZEL_END_DECLS

#endif
