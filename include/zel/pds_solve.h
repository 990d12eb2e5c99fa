/* Zelmath direct sparse solver: the solve phase over a stored supernodal factor.
 *
 * What it holds: the solve frame (the factor's arrays, the permutation, the scaling and the
 * solve's settings, as the solver object hands them to the solve phase); the layer's solve
 * driver and iterative refinement; the core's multi-right-hand-side sweep kernels, residual,
 * scaled norm, phase dispatch and partition count that the driver and refinement call.
 * Members: drivers and refinement in _real and _cmplx (double or single values and 32- or
 * 64-bit indices, as the frame says); sweep kernels under zel_pds_[lp64_][sp_]…_<real|cmplx>.
 * Conventions: factor arrays are 1-based as zel/pds.h describes; perm is 0-based; right-hand
 * side and solution blocks are column-major with the frame's leading dimensions; work blocks
 * have leading dimension n. Results come back through the integer error slot: 0 success,
 * 1 a failed allocation (or a missing block), 2 a solve the factor cannot do.
 * Ownership: nothing here keeps or frees a caller's array; scratch memory is returned before
 * each call returns. The drivers and refinement are defined by libzel_sequential.so.2, the
 * kernels and the dispatch by libzel_core.so.2. */
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
 * driver for the frame's nrhs columns (b and x with the frame's ldb and ldx). Any other phase
 * sets error 2. */
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
 * with leading dimension ldw: forward solves L·Y = W, backward Lᴴ·X = Y (for the transposed
 * solves of the complex types, the conjugate factors). The _par_ kernels are the same sweeps as
 * a threaded build schedules them; here they run on the calling thread. */
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

ZEL_END_DECLS

#endif
