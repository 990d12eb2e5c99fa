/* Zelmath direct sparse solver: the solve phase over a stored supernodal factor.
 *
 * What it holds: the solve frame (the factor's arrays, the permutation, the scaling and the
 * solve's settings, as the solver object hands them to the solve phase); the layer's solve
 * driver and iterative refinement; the core's multi-right-hand-side sweep kernels for every
 * kind of factor, Bunch–Kaufman block routines, residual, scaled norm, phase dispatch and
 * partition count that the driver and refinement call.
 * Members: drivers and refinement in _real and _cmplx (double or single values and 32- or
 * 64-bit indices, as the frame says); sweep kernels under zel_pds_[lp64_][sp_]…_<real|cmplx>;
 * block routines zel_pds_<s|d|c|z>sytrs_… and zel_pds_<c|z>hetrs_… (64-bit integers).
 * Conventions: factor arrays are 1-based as zel/pds.h describes; perm is 0-based; right-hand
 * side and solution blocks are column-major with the frame's leading dimensions; work blocks
 * have leading dimension n. Results come back through the integer error slot: 0 success,
 * 1 a failed allocation (or a missing block), 2 a solve the factor cannot do.
 * Ownership: nothing here keeps or frees a caller's array; scratch memory is returned before
 * each call returns (the frame's lent sweep scratch stays its lender's). The drivers and
 * refinement are defined by libzel_sequential.so.2, the kernels and the dispatch by
 * libzel_core.so.2. */
#ifndef ZEL_PDS_SOLVE_H
#define ZEL_PDS_SOLVE_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* Phase code of zel_pds_kernel_dispatch: solve with the stored factor. */
#define ZEL_PDS_PHASE_SOLVE 33

typedef struct zel_pds_frame {
    /* The factor: index arrays are int32_t when lp64 is 1, int64_t otherwise; values are float
     * (single = 1) or double, in pairs for the complex types. */
    int64_t n;
    int64_t nsuper;
    int32_t lp64;
    int32_t single;
    const void *super_ptr;
    const void *col_ptr;
    const void *row_ptr;
    const void *row_index;
    const void *l_values;
    const void *u_col_ptr;
    const void *u_values;
    const void *row_pivots;
    const void *col_pivots;
    const void *diagonal;  /* indefinite types with diagonal pivoting: d, n values */
    const void *bk_pivots; /* indefinite types with 1×1 and 2×2 pivots */
    const void *perm;      /* n entries, 0-based: row i of the factor is row perm[i] of A */
    const void *scaling;   /* null, or 2n reals: the first vector, then the second */
    const void *matching;  /* null, or n entries, 0-based: row matching[j] of A is matched to
                            * column j (the core applies it around the driver) */
    /* The solve. */
    int64_t matrix_type;   /* the solver's type code (2: real positive definite, ...) */
    int64_t pivoting;      /* pivoting mode of the indefinite types */
    int64_t transposed;    /* 0: A, 1: Aᵀ, 2: Aᴴ */
    int64_t nrhs;
    int64_t ldb, ldx;      /* leading dimensions of the right-hand-side and solution blocks */
    int64_t partitions;    /* partitions the solver may use (the thread count of the solve) */
    /* Refinement: settings in, results out. */
    int64_t refinement_exponent;  /* k: tolerance 10^-k; 0: no tolerance test */
    int64_t refinement_max_steps;
    int64_t refinement_steps;     /* out */
    double backward_error;        /* out: last measured, worst column */
    double residual_norm;         /* out: last measured, worst column */
    double solve_seconds;         /* out: the last driver run */
    double refinement_history[11];/* out: backward error before refinement ([0]) and after each
                                   * step */
    /* A itself, for the residual: CSR, 0-based, index width and values as the factor's; with
     * a_upper 1 only the upper triangle and the diagonal are stored and the rest follows by
     * symmetry (Hermitian symmetry for the Hermitian types). */
    int64_t a_upper;
    const void *a_row_ptr;
    const void *a_col_idx;
    const void *a_values;
    /* Scratch the sweep kernels use in place of their own when it is large enough and aligned
     * to 64 bytes (null: they allocate theirs), one kernel call at a time. The solver object
     * lends it for solves of several right-hand sides and keeps it for its next solves; the
     * kernels never free it. */
    void *sweep_scratch;
    int64_t sweep_scratch_bytes;
} zel_pds_frame;

/* ---- Layer (libzel_sequential.so.2) ---- */

/* X = op(A)⁻¹·B for the frame's nrhs columns: permute into a work block, forward sweep,
 * diagonal step (indefinite types), backward sweep, scatter back through the permutation with
 * the output scaling. Message level 1 prints the solve's timing line. b and x are blocks of
 * the frame's value type; x may equal b. */
ZEL_API void zel_pds_pds_slv_nrhs_seq_real(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                           int64_t *error);
ZEL_API void zel_pds_pds_slv_nrhs_par_real(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                           int64_t *error);
ZEL_API void zel_pds_pds_slv_nrhs_seq_cmplx(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                            int64_t *error);
ZEL_API void zel_pds_pds_slv_nrhs_par_cmplx(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                            int64_t *error);

/* Iterative refinement of x (a solution of op(A)·x = b from the driver): residual, backward
 * error, correction through the solve phase, until the tolerance, stagnation or the step cap.
 * Steps, backward error and residual measure go to the frame; message level 1 prints the
 * three report lines after at least one step. */
ZEL_API void zel_pds_iter_ref_real(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                   int64_t *error);
ZEL_API void zel_pds_iter_ref_cmplx(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                    int64_t *error);

/* ---- Core (libzel_core.so.2) ---- */

/* The partition count of the frame's solve (at least 1). */
ZEL_API int64_t zel_pds_pds_get_num_threads(const zel_pds_frame *handle);

/* Runs a phase of the solver on the frame; ZEL_PDS_PHASE_SOLVE: x = op(A)⁻¹·b through the
 * driver for the frame's nrhs columns (b and x with the frame's ldb and ldx), with the
 * frame's matching and scaling applied around it (docs/solver.md). Any other phase sets
 * error 2. */
ZEL_API void zel_pds_kernel_dispatch(zel_pds_frame *handle, int64_t phase, const void *b, void *x, int64_t *error);

/* r = b − op(A)·x for the frame's nrhs columns (r with leading dimension n). */
ZEL_API void zel_pds_pds_compute_residual_iter_ref_real(const zel_pds_frame *handle, const void *b, const void *x,
                                                        void *r, int64_t *error);
ZEL_API void zel_pds_pds_compute_residual_iter_ref_cmplx(const zel_pds_frame *handle, const void *b, const void *x,
                                                         void *r, int64_t *error);
/* Worst column's componentwise backward error max_i |r_i| / (|op(A)|·|x| + |b|)_i and residual
 * measure ‖r‖∞ / (‖A‖∞‖x‖∞ + ‖b‖∞) of a residual from the routine above. */
ZEL_API void zel_pds_pds_compute_scaled_norm_real(const zel_pds_frame *handle, const void *b, const void *x,
                                                  const void *r, double *backward_error, double *residual_norm,
                                                  int64_t *error);
ZEL_API void zel_pds_pds_compute_scaled_norm_cmplx(const zel_pds_frame *handle, const void *b, const void *x,
                                                   const void *r, double *backward_error, double *residual_norm,
                                                   int64_t *error);

/* Multi-right-hand-side sweeps over the whole factor, in place on a work block of nrhs columns
 * (in the factor's order) with leading dimension ldw. The _par_ kernels are the same sweeps as
 * a threaded build schedules them; here they run on the calling thread. Error 0, 1 (no work
 * block, no memory), 2 (a frame of other value or index types, ldw < n with several columns,
 * or a factor without the arrays of its kind or with pivots outside their blocks).
 * sym_pos (types 2, 4): forward L·Y = W, backward Lᴴ·X = Y. */
ZEL_API void zel_pds_pds_sym_pos_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_pos_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_pos_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_pos_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_pos_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);

/* unsym (types 1, 3, 11, 13: L·U with row interchanges inside each diagonal block): forward
 * applies each block's interchanges, L11⁻¹ and the update through L21; backward the update
 * through U12 and U11⁻¹. The _t pair solves with Aᵀ: forward U11⁻ᵀ and U12ᵀ, backward L21ᵀ,
 * L11⁻ᵀ and the interchanges undone; with frame->transposed 2 the complex ones solve with Aᴴ
 * (conjugated values).
 * sym_indef_diag (types -2, -4, 6 with 1×1 pivots): forward as unsym; backward L21ᵀ, L11⁻ᵀ and
 * the interchanges undone (L21ᴴ, L11⁻ᴴ for the Hermitian type -4). The diagonal D is the
 * caller's step, between the two.
 * sym_indef_bk (the same types with Bunch–Kaufman 1×1 and 2×2 pivots): forward the forward
 * half of each block (zel_pds_?sytrs_bklfw_noscal_varisol) and the update through L21;
 * backward L21ᵀ (L21ᴴ) and the backward half; D is again the caller's. */
ZEL_API void zel_pds_pds_unsym_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_t_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_t_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_fwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_fwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, double *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs, float *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    double *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_bwd_ker_seq_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_bwd_ker_par_nrhs_real(const zel_pds_frame *handle, int64_t nrhs,
    float *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex8 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_fwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_fwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_fwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_fwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_unsym_bwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs, zel_complex16 *work,
    int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_unsym_bwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_unsym_bwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_t_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_unsym_bwd_ker_t_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_diag_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_diag_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_diag_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_diag_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_fwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_fwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_pds_sym_indef_bk_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_sp_pds_sym_indef_bk_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_pds_sym_indef_bk_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex16 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_bwd_ker_seq_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);
ZEL_API void zel_pds_lp64_sp_pds_sym_indef_bk_bwd_ker_par_nrhs_cmplx(const zel_pds_frame *handle, int64_t nrhs,
    zel_complex8 *work, int64_t ldw, int64_t *error);

/* Bunch–Kaufman solves on one diagonal block factored in the lower form of the reference
 * ?sytrf / ?hetrf (1×1 and 2×2 pivot blocks of D on the diagonal and first subdiagonal, unit
 * multipliers below them, 1-based ipiv: p > 0 exchanges rows k and p; -p at k and k+1 marks a
 * 2×2 block whose second row is exchanged with p), with the reference ?sytrs arguments on
 * nrhs columns of b: bklfw_noscal applies the interchanges and L⁻¹ without D; bkl_scal D⁻¹;
 * bklbw L⁻ᵀ (L⁻ᴴ for hetrs) and the interchanges undone. The three in turn solve A·X = B.
 * sytrs: real symmetric and complex symmetric (no conjugation); hetrs: Hermitian (D's 2×2
 * blocks hold e at (k+1, k) and conj(e) above it). Only uplo "L" is provided: any other gives
 * info -1; other info values as the reference's argument checks (-6 also for pivots that do
 * not describe 1×1 and 2×2 blocks of the n rows). */
ZEL_API void zel_pds_dsytrs_bklfw_noscal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const double *a, const int64_t *lda, const int64_t *ipiv, double *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_dsytrs_bkl_scal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs, const double *a,
    const int64_t *lda, const int64_t *ipiv, double *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_dsytrs_bklbw_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs, const double *a,
    const int64_t *lda, const int64_t *ipiv, double *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_ssytrs_bklfw_noscal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const float *a, const int64_t *lda, const int64_t *ipiv, float *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_ssytrs_bkl_scal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs, const float *a,
    const int64_t *lda, const int64_t *ipiv, float *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_ssytrs_bklbw_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs, const float *a,
    const int64_t *lda, const int64_t *ipiv, float *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_zsytrs_bklfw_noscal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv, zel_complex16 *b, const int64_t *ldb,
    int64_t *info);
ZEL_API void zel_pds_zsytrs_bkl_scal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv, zel_complex16 *b, const int64_t *ldb,
    int64_t *info);
ZEL_API void zel_pds_zsytrs_bklbw_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv, zel_complex16 *b, const int64_t *ldb,
    int64_t *info);
ZEL_API void zel_pds_csytrs_bklfw_noscal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv, zel_complex8 *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_csytrs_bkl_scal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv, zel_complex8 *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_csytrs_bklbw_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv, zel_complex8 *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_zhetrs_bklfw_noscal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv, zel_complex16 *b, const int64_t *ldb,
    int64_t *info);
ZEL_API void zel_pds_zhetrs_bkl_scal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv, zel_complex16 *b, const int64_t *ldb,
    int64_t *info);
ZEL_API void zel_pds_zhetrs_bklbw_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex16 *a, const int64_t *lda, const int64_t *ipiv, zel_complex16 *b, const int64_t *ldb,
    int64_t *info);
ZEL_API void zel_pds_chetrs_bklfw_noscal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv, zel_complex8 *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_chetrs_bkl_scal_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv, zel_complex8 *b, const int64_t *ldb, int64_t *info);
ZEL_API void zel_pds_chetrs_bklbw_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,
    const zel_complex8 *a, const int64_t *lda, const int64_t *ipiv, zel_complex8 *b, const int64_t *ldb, int64_t *info);

ZEL_END_DECLS

#endif
