/* Zelmath sparse BLAS: products of a sparse matrix with its own transpose, C = op(A)·op(A)ᵀ
 * (complex: the conjugate transpose), into a dense array or into a new sparse matrix.
 * Only the upper triangle (diagonal included) of the symmetric (Hermitian) result is formed.
 *
 * Members: one per value letter and index width, s_i4 d_i4 c_i4 z_i4 s_i8 d_i8 c_i8 z_i8; the
 * letter gives the value type T (s float, d double, c zel_complex8, z zel_complex16), the width
 * the index type I (i4 int32_t, i8 int64_t). Scalars alpha and beta are passed by value.
 * Operation codes: 10 A·Aᵀ (complex A·Aᴴ); 11 and 12 both Aᵀ·A (complex Aᴴ·A).
 * Index base: results carry A's; the kernels take each operand's base (l_base, r_base, base) and
 * the base of the arrays they write (out_base).
 * Statuses: every function returns a status of sparse_types.h unless it returns void.
 * Ownership: a sparse result is a new handle, or arrays, from zel_serv_malloc; see each entry.
 * Defined by libzel_core.so.2 (the kernels and the handle products zel_sparse_syrk*) and
 * libzel_sequential.so.2 (the drivers); see docs/sparse_syrk.md. */
#ifndef ZEL_SPARSE_SYRK_H
#define ZEL_SPARSE_SYRK_H

#include "zel/platform.h"
#include "zel/sparse_types.h"

ZEL_BEGIN_DECLS

/* ==== Core kernels ====
 * The left operand L (rows of the result) is multiplied by the right operand R whose rows are
 * indexed by L's columns and whose rows hold their column indices in increasing order.
 * start_offset[k] is, on entry, the position in R's row k of its first entry at or right of the
 * chunk's first row; the kernels advance it as they walk the chunk's rows (it is the chunk's
 * scratch). */

/* Dense result, C = A·Aᵀ for rows [row_first, row_end) of C (m = rows):
 * C(i, i:m) = beta·C(i, i:m) + alpha·Σ_k L(i,k)·R(k, i:m); _c_ row-major, _f_ column-major C;
 * without _alf_ alpha is 1. */
ZEL_API void zel_sparse_s_csr__g_n_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const float *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const float *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, float *c, int32_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const double *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const double *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, double *c, int32_t ldc, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex8 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex8 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex8 *c, int32_t ldc, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex16 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex16 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex16 *c, int32_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const float *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const float *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, float *c, int64_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const double *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const double *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, double *c, int64_t ldc, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex8 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex8 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex8 *c, int64_t ldc, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex16 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex16 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex16 *c, int64_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const float *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const float *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, float *c, int32_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const double *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const double *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, double *c, int32_t ldc, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex8 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex8 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex8 *c, int32_t ldc, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex16 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex16 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex16 *c, int32_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const float *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const float *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, float *c, int64_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const double *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const double *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, double *c, int64_t ldc, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex8 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex8 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex8 *c, int64_t ldc, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex16 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex16 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex16 *c, int64_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const float *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const float *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, float *c, int32_t ldc, float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const double *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const double *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, double *c, int32_t ldc, double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex8 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex8 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex8 *c, int32_t ldc, zel_complex8 alpha,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex16 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex16 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex16 *c, int32_t ldc, zel_complex16 alpha,
    zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const float *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const float *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, float *c, int64_t ldc, float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const double *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const double *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, double *c, int64_t ldc, double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex8 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex8 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex8 *c, int64_t ldc, zel_complex8 alpha,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex16 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex16 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex16 *c, int64_t ldc, zel_complex16 alpha,
    zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const float *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const float *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, float *c, int32_t ldc, float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const double *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const double *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, double *c, int32_t ldc, double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex8 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex8 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex8 *c, int32_t ldc, zel_complex8 alpha,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex16 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex16 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, zel_complex16 *c, int32_t ldc, zel_complex16 alpha,
    zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_n_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const float *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const float *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, float *c, int64_t ldc, float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_n_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const double *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const double *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, double *c, int64_t ldc, double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_n_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex8 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex8 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex8 *c, int64_t ldc, zel_complex8 alpha,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_n_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex16 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex16 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, zel_complex16 *c, int64_t ldc, zel_complex16 alpha,
    zel_complex16 beta);

/* Dense result, C = Aᵀ·A (complex Aᴴ·A, n = cols): when beta is not 1 the whole upper triangle
 * of C is scaled by beta (zeroed for 0) first, then the rows [row_first, row_end) of A add
 * alpha·A(i,:)ᴴ·A(i,:) to it; _c_ row-major, _f_ column-major C; without _alf_ alpha is 1. */
ZEL_API void zel_sparse_s_csr__g_t_syrkd_c_ker_i4(int32_t row_first, int32_t row_end, int32_t rows,
                                                  int32_t cols, int32_t base, const float *values,
                                                  const int32_t *col_indx, const int32_t *rows_start,
                                                  const int32_t *rows_end, float *c, int32_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const double *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, double *c, int32_t ldc,
    double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex8 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex8 *c, int32_t ldc,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex16 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex16 *c,
    int32_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_c_ker_i8(int64_t row_first, int64_t row_end, int64_t rows,
                                                  int64_t cols, int64_t base, const float *values,
                                                  const int64_t *col_indx, const int64_t *rows_start,
                                                  const int64_t *rows_end, float *c, int64_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const double *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, double *c, int64_t ldc,
    double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex8 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex8 *c, int64_t ldc,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex16 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex16 *c,
    int64_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_f_ker_i4(int32_t row_first, int32_t row_end, int32_t rows,
                                                  int32_t cols, int32_t base, const float *values,
                                                  const int32_t *col_indx, const int32_t *rows_start,
                                                  const int32_t *rows_end, float *c, int32_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const double *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, double *c, int32_t ldc,
    double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex8 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex8 *c, int32_t ldc,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex16 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex16 *c,
    int32_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_f_ker_i8(int64_t row_first, int64_t row_end, int64_t rows,
                                                  int64_t cols, int64_t base, const float *values,
                                                  const int64_t *col_indx, const int64_t *rows_start,
                                                  const int64_t *rows_end, float *c, int64_t ldc, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const double *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, double *c, int64_t ldc,
    double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex8 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex8 *c, int64_t ldc,
    zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex16 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex16 *c,
    int64_t ldc, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const float *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, float *c, int32_t ldc,
    float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const double *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, double *c, int32_t ldc,
    double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex8 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex8 *c, int32_t ldc,
    zel_complex8 alpha, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_alf_c_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex16 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex16 *c,
    int32_t ldc, zel_complex16 alpha, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const float *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, float *c, int64_t ldc,
    float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const double *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, double *c, int64_t ldc,
    double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex8 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex8 *c, int64_t ldc,
    zel_complex8 alpha, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_alf_c_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex16 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex16 *c,
    int64_t ldc, zel_complex16 alpha, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const float *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, float *c, int32_t ldc,
    float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const double *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, double *c, int32_t ldc,
    double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex8 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex8 *c, int32_t ldc,
    zel_complex8 alpha, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_alf_f_ker_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t cols, int32_t base, const zel_complex16 *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, zel_complex16 *c,
    int32_t ldc, zel_complex16 alpha, zel_complex16 beta);
ZEL_API void zel_sparse_s_csr__g_t_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const float *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, float *c, int64_t ldc,
    float alpha, float beta);
ZEL_API void zel_sparse_d_csr__g_t_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const double *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, double *c, int64_t ldc,
    double alpha, double beta);
ZEL_API void zel_sparse_c_csr__g_t_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex8 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex8 *c, int64_t ldc,
    zel_complex8 alpha, zel_complex8 beta);
ZEL_API void zel_sparse_z_csr__g_t_syrkd_alf_f_ker_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t cols, int64_t base, const zel_complex16 *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, zel_complex16 *c,
    int64_t ldc, zel_complex16 alpha, zel_complex16 beta);

/* Symbolic pass of the sparse result for rows [row_first, row_end): counts[i+1] = number of
 * distinct columns j >= i of row i, row_work[i+1] = products walked for it. marker has one entry
 * per column (values >= 0 are overwritten freely). */
ZEL_API void zel_sparse_s_csr__g_n_syrk_notr_struct_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const int32_t *l_col_indx,
    const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base, const int32_t *r_col_indx,
    const int32_t *r_rows_start, const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker,
    int32_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_d_csr__g_n_syrk_notr_struct_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const int32_t *l_col_indx,
    const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base, const int32_t *r_col_indx,
    const int32_t *r_rows_start, const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker,
    int32_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_c_csr__g_n_syrk_notr_struct_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const int32_t *l_col_indx,
    const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base, const int32_t *r_col_indx,
    const int32_t *r_rows_start, const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker,
    int32_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_z_csr__g_n_syrk_notr_struct_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const int32_t *l_col_indx,
    const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base, const int32_t *r_col_indx,
    const int32_t *r_rows_start, const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker,
    int32_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_s_csr__g_n_syrk_notr_struct_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const int64_t *l_col_indx,
    const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base, const int64_t *r_col_indx,
    const int64_t *r_rows_start, const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker,
    int64_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_d_csr__g_n_syrk_notr_struct_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const int64_t *l_col_indx,
    const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base, const int64_t *r_col_indx,
    const int64_t *r_rows_start, const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker,
    int64_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_c_csr__g_n_syrk_notr_struct_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const int64_t *l_col_indx,
    const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base, const int64_t *r_col_indx,
    const int64_t *r_rows_start, const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker,
    int64_t *counts, uint64_t *row_work);
ZEL_API void zel_sparse_z_csr__g_n_syrk_notr_struct_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const int64_t *l_col_indx,
    const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base, const int64_t *r_col_indx,
    const int64_t *r_rows_start, const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker,
    int64_t *counts, uint64_t *row_work);

/* Numeric pass of the sparse result: writes the sorted columns (with out_base) and values of
 * rows [row_first, row_end) at the places rows_start (carrying out_base) gives them. */
ZEL_API void zel_sparse_s_csr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const float *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const float *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, int32_t *marker, const int32_t *rows_start, int32_t out_base, int32_t *col_indx,
    float *values);
ZEL_API void zel_sparse_d_csr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const double *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const double *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, int32_t *marker, const int32_t *rows_start, int32_t out_base, int32_t *col_indx,
    double *values);
ZEL_API void zel_sparse_c_csr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex8 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex8 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker, const int32_t *rows_start,
    int32_t out_base, int32_t *col_indx, zel_complex8 *values);
ZEL_API void zel_sparse_z_csr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex16 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex16 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker, const int32_t *rows_start,
    int32_t out_base, int32_t *col_indx, zel_complex16 *values);
ZEL_API void zel_sparse_s_csr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const float *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const float *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, int64_t *marker, const int64_t *rows_start, int64_t out_base, int64_t *col_indx,
    float *values);
ZEL_API void zel_sparse_d_csr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const double *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const double *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, int64_t *marker, const int64_t *rows_start, int64_t out_base, int64_t *col_indx,
    double *values);
ZEL_API void zel_sparse_c_csr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex8 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex8 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker, const int64_t *rows_start,
    int64_t out_base, int64_t *col_indx, zel_complex8 *values);
ZEL_API void zel_sparse_z_csr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex16 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex16 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker, const int64_t *rows_start,
    int64_t out_base, int64_t *col_indx, zel_complex16 *values);

/* Numeric pass of the block result: as above on the block pattern; every block is block_size²
 * values, row-major inside the block when block_layout is 0, column-major when 1. */
ZEL_API void zel_sparse_s_bsr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const float *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const float *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, int32_t *marker, const int32_t *rows_start, int32_t out_base, int32_t *col_indx,
    float *values, int32_t block_size, int32_t block_layout);
ZEL_API void zel_sparse_d_bsr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const double *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const double *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start, const int32_t *r_rows_end,
    int32_t *start_offset, int32_t *marker, const int32_t *rows_start, int32_t out_base, int32_t *col_indx,
    double *values, int32_t block_size, int32_t block_layout);
ZEL_API void zel_sparse_c_bsr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex8 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex8 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker, const int32_t *rows_start,
    int32_t out_base, int32_t *col_indx, zel_complex8 *values, int32_t block_size, int32_t block_layout);
ZEL_API void zel_sparse_z_bsr__g_n_syrk_notr_row_i4(
    int32_t row_first, int32_t row_end, int32_t rows, int32_t l_base, const zel_complex16 *l_values,
    const int32_t *l_col_indx, const int32_t *l_rows_start, const int32_t *l_rows_end, int32_t r_base,
    const zel_complex16 *r_values, const int32_t *r_col_indx, const int32_t *r_rows_start,
    const int32_t *r_rows_end, int32_t *start_offset, int32_t *marker, const int32_t *rows_start,
    int32_t out_base, int32_t *col_indx, zel_complex16 *values, int32_t block_size, int32_t block_layout);
ZEL_API void zel_sparse_s_bsr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const float *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const float *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, int64_t *marker, const int64_t *rows_start, int64_t out_base, int64_t *col_indx,
    float *values, int64_t block_size, int64_t block_layout);
ZEL_API void zel_sparse_d_bsr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const double *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const double *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start, const int64_t *r_rows_end,
    int64_t *start_offset, int64_t *marker, const int64_t *rows_start, int64_t out_base, int64_t *col_indx,
    double *values, int64_t block_size, int64_t block_layout);
ZEL_API void zel_sparse_c_bsr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex8 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex8 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker, const int64_t *rows_start,
    int64_t out_base, int64_t *col_indx, zel_complex8 *values, int64_t block_size, int64_t block_layout);
ZEL_API void zel_sparse_z_bsr__g_n_syrk_notr_row_i8(
    int64_t row_first, int64_t row_end, int64_t rows, int64_t l_base, const zel_complex16 *l_values,
    const int64_t *l_col_indx, const int64_t *l_rows_start, const int64_t *l_rows_end, int64_t r_base,
    const zel_complex16 *r_values, const int64_t *r_col_indx, const int64_t *r_rows_start,
    const int64_t *r_rows_end, int64_t *start_offset, int64_t *marker, const int64_t *rows_start,
    int64_t out_base, int64_t *col_indx, zel_complex16 *values, int64_t block_size, int64_t block_layout);

/* ==== Sequential layer: the public dense product and the drivers. ==== */

/* Public dense product C = alpha·op(A)·op(A)ᵀ + beta·C, upper triangle of C only; layout 102
 * column-major, anything else row-major. */
ZEL_API int zel_sparse_s_syrkd_i4(int operation, zel_sparse_matrix_i4 *A, float alpha, float beta, float *C,
                                  int layout, int32_t ldc);
ZEL_API int zel_sparse_d_syrkd_i4(int operation, zel_sparse_matrix_i4 *A, double alpha, double beta,
                                  double *C, int layout, int32_t ldc);
ZEL_API int zel_sparse_c_syrkd_i4(int operation, zel_sparse_matrix_i4 *A, zel_complex8 alpha,
                                  zel_complex8 beta, zel_complex8 *C, int layout, int32_t ldc);
ZEL_API int zel_sparse_z_syrkd_i4(int operation, zel_sparse_matrix_i4 *A, zel_complex16 alpha,
                                  zel_complex16 beta, zel_complex16 *C, int layout, int32_t ldc);
ZEL_API int zel_sparse_s_syrkd_i8(int operation, zel_sparse_matrix_i8 *A, float alpha, float beta, float *C,
                                  int layout, int64_t ldc);
ZEL_API int zel_sparse_d_syrkd_i8(int operation, zel_sparse_matrix_i8 *A, double alpha, double beta,
                                  double *C, int layout, int64_t ldc);
ZEL_API int zel_sparse_c_syrkd_i8(int operation, zel_sparse_matrix_i8 *A, zel_complex8 alpha,
                                  zel_complex8 beta, zel_complex8 *C, int layout, int64_t ldc);
ZEL_API int zel_sparse_z_syrkd_i8(int operation, zel_sparse_matrix_i8 *A, zel_complex16 alpha,
                                  zel_complex16 beta, zel_complex16 *C, int layout, int64_t ldc);

/* Dense drivers. The non-transposed one takes A and its (conjugate) transposed copy. */
ZEL_API int zel_sparse_s_csr__g_n_syrkd_i4(
    float alpha, float beta, int32_t rows, int32_t cols, int32_t base, const float *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, int32_t t_base,
    const float *t_values, const int32_t *t_col_indx, const int32_t *t_rows_start, const int32_t *t_rows_end,
    float *c, int layout, int32_t ldc);
ZEL_API int zel_sparse_d_csr__g_n_syrkd_i4(
    double alpha, double beta, int32_t rows, int32_t cols, int32_t base, const double *values,
    const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end, int32_t t_base,
    const double *t_values, const int32_t *t_col_indx, const int32_t *t_rows_start, const int32_t *t_rows_end,
    double *c, int layout, int32_t ldc);
ZEL_API int zel_sparse_c_csr__g_n_syrkd_i4(
    zel_complex8 alpha, zel_complex8 beta, int32_t rows, int32_t cols, int32_t base,
    const zel_complex8 *values, const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end,
    int32_t t_base, const zel_complex8 *t_values, const int32_t *t_col_indx, const int32_t *t_rows_start,
    const int32_t *t_rows_end, zel_complex8 *c, int layout, int32_t ldc);
ZEL_API int zel_sparse_z_csr__g_n_syrkd_i4(
    zel_complex16 alpha, zel_complex16 beta, int32_t rows, int32_t cols, int32_t base,
    const zel_complex16 *values, const int32_t *col_indx, const int32_t *rows_start, const int32_t *rows_end,
    int32_t t_base, const zel_complex16 *t_values, const int32_t *t_col_indx, const int32_t *t_rows_start,
    const int32_t *t_rows_end, zel_complex16 *c, int layout, int32_t ldc);
ZEL_API int zel_sparse_s_csr__g_n_syrkd_i8(
    float alpha, float beta, int64_t rows, int64_t cols, int64_t base, const float *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, int64_t t_base,
    const float *t_values, const int64_t *t_col_indx, const int64_t *t_rows_start, const int64_t *t_rows_end,
    float *c, int layout, int64_t ldc);
ZEL_API int zel_sparse_d_csr__g_n_syrkd_i8(
    double alpha, double beta, int64_t rows, int64_t cols, int64_t base, const double *values,
    const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end, int64_t t_base,
    const double *t_values, const int64_t *t_col_indx, const int64_t *t_rows_start, const int64_t *t_rows_end,
    double *c, int layout, int64_t ldc);
ZEL_API int zel_sparse_c_csr__g_n_syrkd_i8(
    zel_complex8 alpha, zel_complex8 beta, int64_t rows, int64_t cols, int64_t base,
    const zel_complex8 *values, const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end,
    int64_t t_base, const zel_complex8 *t_values, const int64_t *t_col_indx, const int64_t *t_rows_start,
    const int64_t *t_rows_end, zel_complex8 *c, int layout, int64_t ldc);
ZEL_API int zel_sparse_z_csr__g_n_syrkd_i8(
    zel_complex16 alpha, zel_complex16 beta, int64_t rows, int64_t cols, int64_t base,
    const zel_complex16 *values, const int64_t *col_indx, const int64_t *rows_start, const int64_t *rows_end,
    int64_t t_base, const zel_complex16 *t_values, const int64_t *t_col_indx, const int64_t *t_rows_start,
    const int64_t *t_rows_end, zel_complex16 *c, int layout, int64_t ldc);

ZEL_API int zel_sparse_s_csr__g_t_syrkd_i4(int32_t rows, int32_t cols, int32_t base, const float *values,
                                           const int32_t *col_indx, const int32_t *rows_start,
                                           const int32_t *rows_end, float *c, int layout, int32_t ldc,
                                           float alpha, float beta);
ZEL_API int zel_sparse_d_csr__g_t_syrkd_i4(int32_t rows, int32_t cols, int32_t base, const double *values,
                                           const int32_t *col_indx, const int32_t *rows_start,
                                           const int32_t *rows_end, double *c, int layout, int32_t ldc,
                                           double alpha, double beta);
ZEL_API int zel_sparse_c_csr__g_t_syrkd_i4(
    int32_t rows, int32_t cols, int32_t base, const zel_complex8 *values, const int32_t *col_indx,
    const int32_t *rows_start, const int32_t *rows_end, zel_complex8 *c, int layout, int32_t ldc,
    zel_complex8 alpha, zel_complex8 beta);
ZEL_API int zel_sparse_z_csr__g_t_syrkd_i4(
    int32_t rows, int32_t cols, int32_t base, const zel_complex16 *values, const int32_t *col_indx,
    const int32_t *rows_start, const int32_t *rows_end, zel_complex16 *c, int layout, int32_t ldc,
    zel_complex16 alpha, zel_complex16 beta);
ZEL_API int zel_sparse_s_csr__g_t_syrkd_i8(int64_t rows, int64_t cols, int64_t base, const float *values,
                                           const int64_t *col_indx, const int64_t *rows_start,
                                           const int64_t *rows_end, float *c, int layout, int64_t ldc,
                                           float alpha, float beta);
ZEL_API int zel_sparse_d_csr__g_t_syrkd_i8(int64_t rows, int64_t cols, int64_t base, const double *values,
                                           const int64_t *col_indx, const int64_t *rows_start,
                                           const int64_t *rows_end, double *c, int layout, int64_t ldc,
                                           double alpha, double beta);
ZEL_API int zel_sparse_c_csr__g_t_syrkd_i8(
    int64_t rows, int64_t cols, int64_t base, const zel_complex8 *values, const int64_t *col_indx,
    const int64_t *rows_start, const int64_t *rows_end, zel_complex8 *c, int layout, int64_t ldc,
    zel_complex8 alpha, zel_complex8 beta);
ZEL_API int zel_sparse_z_csr__g_t_syrkd_i8(
    int64_t rows, int64_t cols, int64_t base, const zel_complex16 *values, const int64_t *col_indx,
    const int64_t *rows_start, const int64_t *rows_end, zel_complex16 *c, int layout, int64_t ldc,
    zel_complex16 alpha, zel_complex16 beta);

/* Sparse-result stage function (stage 90 full, 91 count, 92 finalize, 93 as 90). The second
 * operand is the (conjugate) transposed copy of the first, with sorted rows. */
ZEL_API int zel_sparse_s_csr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const float *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const float *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2, const int32_t *rows_end_2,
    int32_t one_based, float **values, int32_t **col_indx, int32_t **rows_start);
ZEL_API int zel_sparse_d_csr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const double *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const double *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2, const int32_t *rows_end_2,
    int32_t one_based, double **values, int32_t **col_indx, int32_t **rows_start);
ZEL_API int zel_sparse_c_csr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const zel_complex8 *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const zel_complex8 *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2,
    const int32_t *rows_end_2, int32_t one_based, zel_complex8 **values, int32_t **col_indx,
    int32_t **rows_start);
ZEL_API int zel_sparse_z_csr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const zel_complex16 *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const zel_complex16 *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2,
    const int32_t *rows_end_2, int32_t one_based, zel_complex16 **values, int32_t **col_indx,
    int32_t **rows_start);
ZEL_API int zel_sparse_s_csr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const float *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const float *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2, const int64_t *rows_end_2,
    int64_t one_based, float **values, int64_t **col_indx, int64_t **rows_start);
ZEL_API int zel_sparse_d_csr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const double *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const double *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2, const int64_t *rows_end_2,
    int64_t one_based, double **values, int64_t **col_indx, int64_t **rows_start);
ZEL_API int zel_sparse_c_csr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const zel_complex8 *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const zel_complex8 *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2,
    const int64_t *rows_end_2, int64_t one_based, zel_complex8 **values, int64_t **col_indx,
    int64_t **rows_start);
ZEL_API int zel_sparse_z_csr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const zel_complex16 *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const zel_complex16 *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2,
    const int64_t *rows_end_2, int64_t one_based, zel_complex16 **values, int64_t **col_indx,
    int64_t **rows_start);

/* The same over a block pattern (rows and cols in blocks); the block edges come last. */
ZEL_API int zel_sparse_s_bsr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const float *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const float *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2, const int32_t *rows_end_2,
    int32_t one_based, float **values, int32_t **col_indx, int32_t **rows_start, int32_t block_size_1,
    int32_t block_size_2);
ZEL_API int zel_sparse_d_bsr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const double *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const double *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2, const int32_t *rows_end_2,
    int32_t one_based, double **values, int32_t **col_indx, int32_t **rows_start, int32_t block_size_1,
    int32_t block_size_2);
ZEL_API int zel_sparse_c_bsr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const zel_complex8 *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const zel_complex8 *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2,
    const int32_t *rows_end_2, int32_t one_based, zel_complex8 **values, int32_t **col_indx,
    int32_t **rows_start, int32_t block_size_1, int32_t block_size_2);
ZEL_API int zel_sparse_z_bsr__g_n_syrk_i4(
    int stage, int operation, int32_t rows, int32_t cols, int32_t base_1, const zel_complex16 *values_1,
    const int32_t *col_indx_1, const int32_t *rows_start_1, const int32_t *rows_end_1, int32_t base_2,
    const zel_complex16 *values_2, const int32_t *col_indx_2, const int32_t *rows_start_2,
    const int32_t *rows_end_2, int32_t one_based, zel_complex16 **values, int32_t **col_indx,
    int32_t **rows_start, int32_t block_size_1, int32_t block_size_2);
ZEL_API int zel_sparse_s_bsr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const float *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const float *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2, const int64_t *rows_end_2,
    int64_t one_based, float **values, int64_t **col_indx, int64_t **rows_start, int64_t block_size_1,
    int64_t block_size_2);
ZEL_API int zel_sparse_d_bsr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const double *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const double *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2, const int64_t *rows_end_2,
    int64_t one_based, double **values, int64_t **col_indx, int64_t **rows_start, int64_t block_size_1,
    int64_t block_size_2);
ZEL_API int zel_sparse_c_bsr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const zel_complex8 *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const zel_complex8 *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2,
    const int64_t *rows_end_2, int64_t one_based, zel_complex8 **values, int64_t **col_indx,
    int64_t **rows_start, int64_t block_size_1, int64_t block_size_2);
ZEL_API int zel_sparse_z_bsr__g_n_syrk_i8(
    int stage, int operation, int64_t rows, int64_t cols, int64_t base_1, const zel_complex16 *values_1,
    const int64_t *col_indx_1, const int64_t *rows_start_1, const int64_t *rows_end_1, int64_t base_2,
    const zel_complex16 *values_2, const int64_t *col_indx_2, const int64_t *rows_start_2,
    const int64_t *rows_end_2, int64_t one_based, zel_complex16 **values, int64_t **col_indx,
    int64_t **rows_start, int64_t block_size_1, int64_t block_size_2);

/* ==== Core object: the products of a handle. ==== */

/* The upper triangle of op(A)·op(A)ᵀ (complex: conjugate transpose) as a new handle *C,
 * CSR for a CSR A, BSR (same block size and block layout) for a BSR A, with A's value type and
 * index base and sorted column indices. *C owns its arrays; release it with zel_sparse_destroy_i4/_i8.
 * Builds and caches A's transposed record. Returns 0, 1 (A or C null), 3 (operation),
 * 6 (format, or no values), 5 (no storage record, failed transposition), 2 (allocation). */
ZEL_API int zel_sparse_syrk_i4(int operation, zel_sparse_matrix_i4 *A, zel_sparse_matrix_i4 **C);
ZEL_API int zel_sparse_syrk_i8(int operation, zel_sparse_matrix_i8 *A, zel_sparse_matrix_i8 **C);

/* The same product into arrays the caller owns, in two calls.
 * count: rows_start (R + 1 entries, R = A's rows for operation 10 and A's cols otherwise, in blocks
 *        for BSR) receives the result's row pointer carrying A's index base; *nnz the entry count.
 * fill:  with that rows_start, writes col_indx (nnz entries, sorted in each row, with A's base) and
 *        values (nnz values, or nnz·block_size² for BSR, of A's value type).
 * Statuses as for zel_sparse_syrk; nnz or rows_start null gives 1, and so do col_indx or values
 * null while the result has entries. */
ZEL_API int zel_sparse_syrk_count_i4(int operation, zel_sparse_matrix_i4 *A, int32_t *rows_start,
                                     int32_t *nnz);
ZEL_API int zel_sparse_syrk_count_i8(int operation, zel_sparse_matrix_i8 *A, int64_t *rows_start,
                                     int64_t *nnz);
ZEL_API int zel_sparse_syrk_fill_i4(int operation, zel_sparse_matrix_i4 *A, const int32_t *rows_start,
                                    int32_t *col_indx, void *values);
ZEL_API int zel_sparse_syrk_fill_i8(int operation, zel_sparse_matrix_i8 *A, const int64_t *rows_start,
                                    int64_t *col_indx, void *values);

ZEL_END_DECLS

#endif
