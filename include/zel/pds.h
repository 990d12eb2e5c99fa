/* Zelmath direct sparse solver: the phase interface.
 *
 * What it holds: an opaque solver object created for one matrix type and precision, its options,
 * and the three phases: analyse (the pattern: ordering and symbolic factorisation), factorise
 * (the values, again and again on one analysis) and solve (a block of right-hand sides, with
 * iterative refinement); statistics, the factor's arrays, and destroy.
 * Members: create, factorise and solve in s, d, c and z; the pattern entries in _i4 (32-bit
 * indices) and _i8 (64-bit). The factor keeps the index width of the analysis that built it.
 * Conventions: every entry returns a ZEL_PDS_STATUS_* value. A failed call leaves the solver as
 * it was before the call (a failed analyse or factorise drops the phases that depended on it:
 * see docs/solver.md), never half-writes a caller's array, and prints nothing unless the message
 * level is 1.
 * Ownership: the solver owns copies of everything it keeps; arrays handed back by
 * zel_pds_export_factor_* belong to the solver and stay valid until its next analyse, factorise
 * or destroy. Defined by libzel_core.so.2; the solve runs through libzel_sequential.so.2. */
#ifndef ZEL_PDS_H
#define ZEL_PDS_H

#include "zel/platform.h"
#include "zel/sparse_types.h"

ZEL_BEGIN_DECLS

/* Status values. */
#define ZEL_PDS_STATUS_SUCCESS 0
#define ZEL_PDS_STATUS_ALLOC_FAILED 1          /* memory could not be obtained */
#define ZEL_PDS_STATUS_INVALID_VALUE 2         /* a bad argument or an invalid matrix */
#define ZEL_PDS_STATUS_NOT_SUPPORTED 3         /* a matrix type this version cannot factor yet */
#define ZEL_PDS_STATUS_WRONG_PHASE 4           /* factorise before analyse, solve before factorise */
#define ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE 5 /* statistics.failed_column names the column */
#define ZEL_PDS_STATUS_TOO_LARGE 6             /* the factor's sizes do not fit the index width */
#define ZEL_PDS_STATUS_STRUCTURALLY_SINGULAR 7 /* no matching puts an entry on every diagonal
                                                * position: statistics.structural_rank < n */
#define ZEL_PDS_STATUS_SINGULAR 8              /* a zero pivot while pivot replacement is off:
                                                * statistics.failed_column names the column */
#define ZEL_PDS_STATUS_NOT_ACCURATE 9          /* the solve's backward error stayed above
                                                * ZEL_PDS_ACCURACY_GOAL after refinement; x
                                                * holds the best iterate found */

/* The backward error below which a solve counts as accurate (double, and single precision). */
#define ZEL_PDS_ACCURACY_GOAL 1e-10
#define ZEL_PDS_ACCURACY_GOAL_SINGLE 1e-5

/* The name of a status value ("ZEL_PDS_STATUS_WRONG_PHASE"), or "unknown"; never null. */
ZEL_API const char *zel_pds_status_name(int status);

/* Matrix types. */
#define ZEL_PDS_REAL_STRUCTURALLY_SYMMETRIC 1
#define ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE 2
#define ZEL_PDS_REAL_SYMMETRIC_INDEFINITE (-2)
#define ZEL_PDS_COMPLEX_STRUCTURALLY_SYMMETRIC 3
#define ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE 4
#define ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE (-4)
#define ZEL_PDS_COMPLEX_SYMMETRIC 6
#define ZEL_PDS_REAL_UNSYMMETRIC 11
#define ZEL_PDS_COMPLEX_UNSYMMETRIC 13

/* Fill-reducing orderings. */
#define ZEL_PDS_ORDERING_AUTOMATIC 0 /* minimum degree, or nested dissection when it saves flops */
#define ZEL_PDS_ORDERING_AMD 1       /* approximate minimum degree */
#define ZEL_PDS_ORDERING_NESTED_DISSECTION 2 /* falls back to AMD beyond 32-bit sizes */
#define ZEL_PDS_ORDERING_GIVEN 3     /* the caller's, from zel_pds_set_permutation_* */
#define ZEL_PDS_ORDERING_NATURAL 4   /* no reordering */

/* Matching and scaling (options.matching, options.scaling). */
#define ZEL_PDS_AUTOMATIC 0 /* matching: on for 11, 13 and (as grouping) -2, -4, 6; scaling:
                             * on for every type but 2 and 4 */
#define ZEL_PDS_ON 1
#define ZEL_PDS_OFF 2

/* Pivoting inside the diagonal blocks of the indefinite types -2, -4 and 6. */
#define ZEL_PDS_PIVOTING_DIAGONAL 0      /* 1×1 pivots, the largest diagonal of the block first */
#define ZEL_PDS_PIVOTING_BUNCH_KAUFMAN 1 /* 1×1 and 2×2 pivots */

/* Which operator a solve applies: A, Aᵀ or Aᴴ. */
#define ZEL_PDS_SOLVE_N 0
#define ZEL_PDS_SOLVE_T 1
#define ZEL_PDS_SOLVE_C 2

/* Which entries of a CSR describe the matrix: all of them, or its upper triangle with the
 * diagonal (entries below the diagonal are then ignored). */
#define ZEL_PDS_STORAGE_FULL 0
#define ZEL_PDS_STORAGE_UPPER 1

typedef struct zel_pds_solver zel_pds_solver;

typedef struct {
    int ordering;              /* ZEL_PDS_ORDERING_*; default automatic */
    int refinement_max_steps;  /* at most this many correction steps, 0 to 10; default 2 */
    int refinement_exponent;   /* k: stop once the backward error is below 10^-k; 0: no
                                * tolerance test (only stagnation and the step cap stop);
                                * default 14 */
    int message_level;         /* 1: the solve's timing and refinement lines on standard
                                * output; default 0 (silent) */
    int operation;             /* ZEL_PDS_SOLVE_*; default N */
    int partitions;            /* right-hand sides are split into at most this many blocks,
                                * solved one after another; default 1 */
    int amalgamation;          /* 1: relaxed supernodes (default); 0: fundamental ones only */
    int matching;              /* ZEL_PDS_AUTOMATIC / ON / OFF: a maximum-product matching
                                * moves large entries to the diagonal before the ordering
                                * (needs values at analysis; see zel_pds_?_analyse_csr_values_*) */
    int scaling;               /* ZEL_PDS_AUTOMATIC / ON / OFF: row and column scaling
                                * (automatic: on for every type but 2 and 4) */
    int pivoting;              /* ZEL_PDS_PIVOTING_*; default Bunch–Kaufman */
    double pivot_threshold;    /* a pivot smaller than this times the largest entry of the
                                * scaled matrix is replaced by ±(this times that entry); 0: the
                                * type's default (1e-10 unsymmetric, 1e-8 symmetric indefinite);
                                * negative: never replaced (a zero pivot stops factorise with
                                * ZEL_PDS_STATUS_SINGULAR) */
} zel_pds_options;

typedef struct {
    int64_t n;
    int64_t matrix_entries;    /* stored entries of the analysed pattern (both triangles) */
    int ordering;              /* the ordering used (automatic resolved) */
    int64_t supernodes;
    int64_t factor_entries;    /* entries of L, explicit zeros of the supernodes included */
    int64_t max_supernode_rows, max_supernode_cols;
    double factor_flops;       /* floating-point operations of the factorisation */
    double solve_flops;        /* per right-hand side */
    int64_t memory_estimate;   /* bytes the factorisation holds, known after the analysis */
    int64_t memory_used;       /* bytes held now by the solver */
    double analyse_seconds, factorise_seconds, solve_seconds; /* last run of each phase */
    int refinement_steps;      /* of the last solve */
    double backward_error;     /* componentwise, of the last solve (its worst column) */
    double residual_norm;      /* ‖b − A·x‖∞ / (‖A‖∞‖x‖∞ + ‖b‖∞), last solve, worst column */
    int64_t failed_column;     /* after ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE: the caller's
                                * column (in the analysed CSR's base) whose pivot was not
                                * positive; after ZEL_PDS_STATUS_SINGULAR the column of the
                                * zero pivot; otherwise -1 */
    int64_t structural_rank;   /* the largest number of entries a matching can put on the
                                * diagonal (n for a structurally nonsingular matrix) */
    int matching_used;         /* 1 when the analysis applied a matching */
    int scaling_used;          /* 1 when the factorisation scaled the matrix */
    int64_t replaced_pivots;   /* pivots the last factorise replaced (refinement then runs at
                                * least two steps) */
    int64_t positive_pivots, negative_pivots, zero_pivots; /* inertia of the last factor, types
                                * -2 and -4 (a 2×2 pivot counts one of each) */
    int64_t two_by_two_pivots; /* 2×2 pivot blocks of the last factor */
    double refinement_history[11]; /* backward error before refinement ([0]) and after each of
                                * the last solve's refinement_steps steps */
} zel_pds_statistics;

/* The factor L (A = P·L·Lᴴ·Pᵀ for the positive definite types), 1-based, as the solve kernels
 * take it: supernode s (1 … nsuper) holds columns super_ptr[s-1] … super_ptr[s]-1; its panel
 * of nrows × ncols values starts at l_values[col_ptr[f-1]-1] (f its first column), column-
 * major with leading dimension nrows; its rows are row_index[row_ptr[s-1]-1 …], own columns
 * first, then the rest ascending. The diagonal block holds L11 below and on the diagonal and
 * L11ᴴ above it. perm is 0-based: row k of the factored matrix is row perm[k] of the caller's.
 * The unsymmetric and pivoting arrays are null for the positive definite types; docs/solver.md
 * describes the factor of every type (L·U with row interchanges, L·D·Lᵀ with 1×1 or 2×2
 * pivots), the scaling and the matching. */
#define ZEL_PDS_FACTOR_FIELDS(I)                                                                  \
    I n;                                                                                          \
    I nsuper;                                                                                     \
    const I *super_ptr;                                                                           \
    const I *col_ptr;                                                                             \
    const I *row_ptr;                                                                             \
    const I *row_index;                                                                           \
    const void *l_values; /* float, double, zel_complex8 or zel_complex16 */                      \
    const I *u_col_ptr;                                                                           \
    const void *u_values;                                                                         \
    const I *row_pivots;                                                                          \
    const I *col_pivots;                                                                          \
    const I *bk_pivots;                                                                           \
    const void *diagonal; /* d of a diagonally pivoted L·D·Lᵀ, n values in the factor's order */  \
    const I *perm;                                                                                \
    const I *matching;    /* null, or 0-based: row matching[j] of A is matched to column j */     \
    const void *scaling;  /* null, or 2n reals: column scaling, then row scaling by matching */   \
    int pivoting;

typedef struct { ZEL_PDS_FACTOR_FIELDS(int32_t) } zel_pds_factor_i4;
typedef struct { ZEL_PDS_FACTOR_FIELDS(int64_t) } zel_pds_factor_i8;

/* A solver for one matrix type (ZEL_PDS_*) in the precision of the name; real types go with s
 * and d, complex ones with c and z. *solver is null on failure. */
ZEL_API int zel_pds_s_create(zel_pds_solver **solver, int matrix_type);
ZEL_API int zel_pds_d_create(zel_pds_solver **solver, int matrix_type);
ZEL_API int zel_pds_c_create(zel_pds_solver **solver, int matrix_type);
ZEL_API int zel_pds_z_create(zel_pds_solver **solver, int matrix_type);
/* Frees the solver and everything it holds; null is allowed. */
ZEL_API int zel_pds_destroy(zel_pds_solver *solver);

ZEL_API void zel_pds_default_options(zel_pds_options *options);
/* Takes effect from the next phase that uses each option; INVALID_VALUE leaves them as they were. */
ZEL_API int zel_pds_set_options(zel_pds_solver *solver, const zel_pds_options *options);
ZEL_API int zel_pds_get_options(const zel_pds_solver *solver, zel_pds_options *options);
/* The caller's ordering (0-based; perm[k] is the column eliminated k-th), used by the next
 * analyse when options.ordering is ZEL_PDS_ORDERING_GIVEN; the solver keeps a copy. */
ZEL_API int zel_pds_set_permutation_i4(zel_pds_solver *solver, int32_t n, const int32_t *perm);
ZEL_API int zel_pds_set_permutation_i8(zel_pds_solver *solver, int64_t n, const int64_t *perm);

/* Analyse the pattern of an n × n matrix in CSR (row_ptr[n+1], col_idx; base 0 or 1; storage
 * ZEL_PDS_STORAGE_*). Columns may come in any order within a row; duplicates, indices out of
 * range, decreasing row pointers, (for positive definite types) a missing diagonal entry and
 * (for the symmetric and Hermitian types with full storage) a pattern that is not symmetric are
 * INVALID_VALUE; a structurally singular matrix is STRUCTURALLY_SINGULAR. Unsymmetric types
 * factor the pattern of A + Aᵀ (after the matching, when there is one). The solver keeps a copy
 * of the pattern. */
ZEL_API int zel_pds_analyse_csr_i4(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr,
                                   const int32_t *col_idx, int base, int storage);
ZEL_API int zel_pds_analyse_csr_i8(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr,
                                   const int64_t *col_idx, int base, int storage);
/* The same with the values too, for a matching and scaling that depend on them (options.matching;
 * without values, a matching is structural only). The values are not kept. */
ZEL_API int zel_pds_s_analyse_csr_values_i4(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr,
                                            const int32_t *col_idx, const float *values, int base, int storage);
ZEL_API int zel_pds_d_analyse_csr_values_i4(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr,
                                            const int32_t *col_idx, const double *values, int base, int storage);
ZEL_API int zel_pds_c_analyse_csr_values_i4(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr,
                                            const int32_t *col_idx, const zel_complex8 *values, int base,
                                            int storage);
ZEL_API int zel_pds_z_analyse_csr_values_i4(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr,
                                            const int32_t *col_idx, const zel_complex16 *values, int base,
                                            int storage);
ZEL_API int zel_pds_s_analyse_csr_values_i8(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr,
                                            const int64_t *col_idx, const float *values, int base, int storage);
ZEL_API int zel_pds_d_analyse_csr_values_i8(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr,
                                            const int64_t *col_idx, const double *values, int base, int storage);
ZEL_API int zel_pds_c_analyse_csr_values_i8(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr,
                                            const int64_t *col_idx, const zel_complex8 *values, int base,
                                            int storage);
ZEL_API int zel_pds_z_analyse_csr_values_i8(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr,
                                            const int64_t *col_idx, const zel_complex16 *values, int base,
                                            int storage);
/* The same from a CSR sparse handle of the solver's precision (its values feed the matching). */
ZEL_API int zel_pds_analyse_sparse_i4(zel_pds_solver *solver, const zel_sparse_matrix_i4 *matrix, int storage);
ZEL_API int zel_pds_analyse_sparse_i8(zel_pds_solver *solver, const zel_sparse_matrix_i8 *matrix, int storage);

/* Factorise with the values of the analysed CSR, one per entry in its order. A matrix that is
 * not positive definite returns NOT_POSITIVE_DEFINITE (types 2 and 4), a zero pivot with
 * replacement off returns SINGULAR; both keep no factor. Replaced pivots are counted in the
 * statistics. */
ZEL_API int zel_pds_s_factorise(zel_pds_solver *solver, const float *values);
ZEL_API int zel_pds_d_factorise(zel_pds_solver *solver, const double *values);
ZEL_API int zel_pds_c_factorise(zel_pds_solver *solver, const zel_complex8 *values);
ZEL_API int zel_pds_z_factorise(zel_pds_solver *solver, const zel_complex16 *values);
/* The same with the values of the analysed sparse handle (same pattern). */
ZEL_API int zel_pds_factorise_sparse_i4(zel_pds_solver *solver, const zel_sparse_matrix_i4 *matrix);
ZEL_API int zel_pds_factorise_sparse_i8(zel_pds_solver *solver, const zel_sparse_matrix_i8 *matrix);

/* Solve op(A)·X = B for nrhs right-hand sides, column-major (ldb, ldx ≥ n); x may equal b
 * (then ldx must equal ldb). With refinement the statistics hold the steps and backward error;
 * after replaced pivots refinement runs at least two steps, and a backward error left above
 * ZEL_PDS_ACCURACY_GOAL returns NOT_ACCURATE (x holds the best iterate). */
ZEL_API int zel_pds_s_solve(zel_pds_solver *solver, int64_t nrhs, const float *b, int64_t ldb, float *x,
                            int64_t ldx);
ZEL_API int zel_pds_d_solve(zel_pds_solver *solver, int64_t nrhs, const double *b, int64_t ldb, double *x,
                            int64_t ldx);
ZEL_API int zel_pds_c_solve(zel_pds_solver *solver, int64_t nrhs, const zel_complex8 *b, int64_t ldb,
                            zel_complex8 *x, int64_t ldx);
ZEL_API int zel_pds_z_solve(zel_pds_solver *solver, int64_t nrhs, const zel_complex16 *b, int64_t ldb,
                            zel_complex16 *x, int64_t ldx);

ZEL_API int zel_pds_get_statistics(const zel_pds_solver *solver, zel_pds_statistics *statistics);

/* The factor's arrays (after factorise; WRONG_PHASE before). The width must be the analysis's
 * (INVALID_VALUE otherwise). */
ZEL_API int zel_pds_export_factor_i4(const zel_pds_solver *solver, zel_pds_factor_i4 *factor);
ZEL_API int zel_pds_export_factor_i8(const zel_pds_solver *solver, zel_pds_factor_i8 *factor);

ZEL_END_DECLS

#endif
