/* Zelmath sparse BLAS: products of a sparse matrix with its own transpose, C = op(A)·op(A)ᵀ
 * (complex: the conjugate transpose), into a dense array or into a new sparse matrix.
 * Only the upper triangle (diagonal included) of the symmetric (Hermitian) result is formed.
 *
 * Names carry the value type (s d c z) and the index width (i4: 32-bit, i8: 64-bit).
 * Operation codes: 10 A·Aᵀ (complex A·Aᴴ); 11 and 12 both Aᵀ·A (complex Aᴴ·A).
 * Every function returns a status of sparse_types.h unless it returns void. */
#ifndef ZEL_SPARSE_SYRK_H
#define ZEL_SPARSE_SYRK_H

#include "zel/platform.h"
#include "zel/sparse_types.h"

ZEL_BEGIN_DECLS

/* Declarations of one value type P/T and index width W/I. In the kernels the left operand L
 * (rows of the result) is multiplied by the right operand R whose rows are indexed by L's
 * columns and whose rows hold their column indices in increasing order. start_offset[k] is,
 * on entry, the position in R's row k of its first entry at or right of the chunk's first
 * row; the kernels advance it as they walk the chunk's rows (it is the chunk's scratch). */
#define ZEL_SPARSE_SYRK_DECLARE(P, T, W, I)                                                                  \
    /* Core kernels, dense result, C = A·Aᵀ for rows [row_first, row_end) of C (m = rows):             \
     * C(i, i:m) = beta·C(i, i:m) + alpha·Σ_k L(i,k)·R(k, i:m); _c_ row-major, _f_ column-major. */         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_c_ker_##W(                                                 \
        I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col_indx,                    \
        const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col_indx,        \
        const I *r_rows_start, const I *r_rows_end, I *start_offset, T *c, I ldc, T beta);                  \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_f_ker_##W(                                                 \
        I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col_indx,                    \
        const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col_indx,        \
        const I *r_rows_start, const I *r_rows_end, I *start_offset, T *c, I ldc, T beta);                  \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_alf_c_ker_##W(                                             \
        I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col_indx,                    \
        const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col_indx,        \
        const I *r_rows_start, const I *r_rows_end, I *start_offset, T *c, I ldc, T alpha, T beta);         \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrkd_alf_f_ker_##W(                                             \
        I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col_indx,                    \
        const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col_indx,        \
        const I *r_rows_start, const I *r_rows_end, I *start_offset, T *c, I ldc, T alpha, T beta);         \
    /* Core kernels, dense result, C = Aᵀ·A (complex Aᴴ·A, n = cols): when beta is not 1 the whole     \
     * upper triangle of C is scaled by beta (zeroed for 0) first, then the rows [row_first, row_end)  \
     * of A add alpha·A(i,:)ᴴ·A(i,:) to it. */                                                               \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_c_ker_##W(                                                 \
        I row_first, I row_end, I rows, I cols, I base, const T *values, const I *col_indx,                  \
        const I *rows_start, const I *rows_end, T *c, I ldc, T beta);                                       \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_f_ker_##W(                                                 \
        I row_first, I row_end, I rows, I cols, I base, const T *values, const I *col_indx,                  \
        const I *rows_start, const I *rows_end, T *c, I ldc, T beta);                                       \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_alf_c_ker_##W(                                             \
        I row_first, I row_end, I rows, I cols, I base, const T *values, const I *col_indx,                  \
        const I *rows_start, const I *rows_end, T *c, I ldc, T alpha, T beta);                              \
    ZEL_API void zel_sparse_##P##_csr__g_t_syrkd_alf_f_ker_##W(                                             \
        I row_first, I row_end, I rows, I cols, I base, const T *values, const I *col_indx,                  \
        const I *rows_start, const I *rows_end, T *c, I ldc, T alpha, T beta);                              \
    /* Core kernel, symbolic pass of the sparse result for rows [row_first, row_end): counts[i+1] =     \
     * number of distinct columns j >= i of row i, row_work[i+1] = products walked for it. marker has   \
     * one entry per column (values >= 0 are overwritten freely). */                                        \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrk_notr_struct_##W(                                            \
        I row_first, I row_end, I rows, I l_base, const I *l_col_indx, const I *l_rows_start,                \
        const I *l_rows_end, I r_base, const I *r_col_indx, const I *r_rows_start, const I *r_rows_end,     \
        I *start_offset, I *marker, I *counts, uint64_t *row_work);                                         \
    /* Core kernel, numeric pass of the sparse result: writes the sorted columns (with out_base) and     \
     * values of rows [row_first, row_end) at the places rows_start (carrying out_base) gives them. */      \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrk_notr_row_##W(                                               \
        I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col_indx,                    \
        const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col_indx,        \
        const I *r_rows_start, const I *r_rows_end, I *start_offset, I *marker, const I *rows_start,       \
        I out_base, I *col_indx, T *values);                                                                \
    /* Core kernel, numeric pass of the block result: as above on the block pattern; every block is       \
     * block_size² values, row-major inside the block when block_layout is 0, column-major when 1. */       \
    ZEL_API void zel_sparse_##P##_bsr__g_n_syrk_notr_row_##W(                                               \
        I row_first, I row_end, I rows, I l_base, const T *l_values, const I *l_col_indx,                    \
        const I *l_rows_start, const I *l_rows_end, I r_base, const T *r_values, const I *r_col_indx,        \
        const I *r_rows_start, const I *r_rows_end, I *start_offset, I *marker, const I *rows_start,       \
        I out_base, I *col_indx, T *values, I block_size, I block_layout);                                  \
                                                                                                              \
    /* Layer: public dense product C = alpha·op(A)·op(A)ᵀ + beta·C, upper triangle of C only;             \
     * layout 102 column-major, anything else row-major. */                                                 \
    ZEL_API int zel_sparse_##P##_syrkd_##W(int operation, zel_sparse_matrix_##W *A, T alpha, T beta, T *C, \
                                           int layout, I ldc);                                               \
    /* Layer: dense drivers. The non-transposed one takes A and its (conjugate) transposed copy. */        \
    ZEL_API int zel_sparse_##P##_csr__g_n_syrkd_##W(                                                        \
        T alpha, T beta, I rows, I cols, I base, const T *values, const I *col_indx, const I *rows_start,    \
        const I *rows_end, I t_base, const T *t_values, const I *t_col_indx, const I *t_rows_start,          \
        const I *t_rows_end, T *c, int layout, I ldc);                                                       \
    ZEL_API int zel_sparse_##P##_csr__g_t_syrkd_##W(I rows, I cols, I base, const T *values,                \
                                                     const I *col_indx, const I *rows_start,                 \
                                                     const I *rows_end, T *c, int layout, I ldc, T alpha,    \
                                                     T beta);                                                \
    /* Layer: sparse-result stage function (stage 90 full, 91 count, 92 finalize, 93 as 90). The           \
     * second operand is the (conjugate) transposed copy of the first, with sorted rows. */                 \
    ZEL_API int zel_sparse_##P##_csr__g_n_syrk_##W(                                                         \
        int stage, int operation, I rows, I cols, I base_1, const T *values_1, const I *col_indx_1,          \
        const I *rows_start_1, const I *rows_end_1, I base_2, const T *values_2, const I *col_indx_2,        \
        const I *rows_start_2, const I *rows_end_2, I one_based, T **values, I **col_indx,                   \
        I **rows_start);                                                                                     \
    /* Layer: the same over a block pattern (rows and cols in blocks); the block edges come last. */       \
    ZEL_API int zel_sparse_##P##_bsr__g_n_syrk_##W(                                                         \
        int stage, int operation, I rows, I cols, I base_1, const T *values_1, const I *col_indx_1,          \
        const I *rows_start_1, const I *rows_end_1, I base_2, const T *values_2, const I *col_indx_2,        \
        const I *rows_start_2, const I *rows_end_2, I one_based, T **values, I **col_indx, I **rows_start,    \
        I block_size_1, I block_size_2);

ZEL_SPARSE_SYRK_DECLARE(s, float, i4, int32_t)
ZEL_SPARSE_SYRK_DECLARE(d, double, i4, int32_t)
ZEL_SPARSE_SYRK_DECLARE(c, zel_complex8, i4, int32_t)
ZEL_SPARSE_SYRK_DECLARE(z, zel_complex16, i4, int32_t)
ZEL_SPARSE_SYRK_DECLARE(s, float, i8, int64_t)
ZEL_SPARSE_SYRK_DECLARE(d, double, i8, int64_t)
ZEL_SPARSE_SYRK_DECLARE(c, zel_complex8, i8, int64_t)
ZEL_SPARSE_SYRK_DECLARE(z, zel_complex16, i8, int64_t)

#undef ZEL_SPARSE_SYRK_DECLARE

/* Core: the upper triangle of op(A)·op(A)ᵀ (complex: conjugate transpose) as a new handle *C,
 * CSR for a CSR A, BSR (same block size and block layout) for a BSR A, with A's value type and
 * index base and sorted column indices. *C owns its arrays; release it with zel_sparse_destroy.
 * Builds and caches A's transposed record. Returns 0, 1 (A or C null), 3 (operation),
 * 6 (format, or no values), 5 (no storage record, failed transposition), 2 (allocation). */
ZEL_API int zel_sparse_syrk_i4(int operation, zel_sparse_matrix_i4 *A, zel_sparse_matrix_i4 **C);
ZEL_API int zel_sparse_syrk_i8(int operation, zel_sparse_matrix_i8 *A, zel_sparse_matrix_i8 **C);

/* Core: the same product into arrays the caller owns, in two calls.
 * count: rows_start (R + 1 entries, R = A's rows for operation 10 and A's cols otherwise, in blocks
 *        for BSR) receives the result's row pointer carrying A's index base; *nnz the entry count.
 * fill:  with that rows_start, writes col_indx (nnz entries, sorted in each row, with A's base) and
 *        values (nnz values, or nnz·block_size² for BSR, of A's value type).
 * Statuses as for zel_sparse_syrk; nnz or rows_start null gives 1, and so do col_indx or values
 * null while the result has entries. */
ZEL_API int zel_sparse_syrk_count_i4(int operation, zel_sparse_matrix_i4 *A, int32_t *rows_start, int32_t *nnz);
ZEL_API int zel_sparse_syrk_count_i8(int operation, zel_sparse_matrix_i8 *A, int64_t *rows_start, int64_t *nnz);
ZEL_API int zel_sparse_syrk_fill_i4(int operation, zel_sparse_matrix_i4 *A, const int32_t *rows_start,
                                    int32_t *col_indx, void *values);
ZEL_API int zel_sparse_syrk_fill_i8(int operation, zel_sparse_matrix_i8 *A, const int64_t *rows_start,
                                    int64_t *col_indx, void *values);

ZEL_END_DECLS

#endif
