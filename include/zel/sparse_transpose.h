/* Zelmath sparse BLAS: library-owned copies of a handle's arrays and its cached transposed
 * structure, and out-of-place transposition.
 *
 * Members: one per value letter and index width, s_i4 d_i4 c_i4 z_i4 s_i8 d_i8 c_i8 z_i8; the
 * letter gives the value type T (s float, d double, c zel_complex8, z zel_complex16), the width
 * the index type I (i4 int32_t, i8 int64_t) and the handle type (zel_sparse_matrix_i4, _i8).
 * Conventions: results keep the handle's index base and (BSR) block size; operation is 10 (A),
 * 11 (Aᵀ) or 12 (Aᴴ, the conjugate transpose; Aᵀ for real members).
 * Statuses: every function returns a status of sparse_types.h; a failing call writes nothing into
 * the handle and leaves nothing allocated.
 * Ownership: the copies, transposed records and new handles built here come from zel_serv_malloc,
 * are owned by their handle (owns_arrays 1) and are released with it by zel_sparse_destroy_i4 /
 * _i8; the kernel zel_sparse_?_transpose_matrix_* writes only into the caller's arrays.
 * Defined by libzel_sequential.so.2; see docs/sparse_transpose.md. */
#ifndef ZEL_SPARSE_TRANSPOSE_H
#define ZEL_SPARSE_TRANSPOSE_H

#include "zel/sparse_types.h"

ZEL_BEGIN_DECLS

/* Replaces the record's arrays by library-owned copies (three-array form, owns_arrays 1);
 * 5 for a null handle, a missing record or inplace_copy 0, 6 for COO, 2 when out of memory. */
ZEL_API int zel_sparse_s_copy_sparse_matrix_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_d_copy_sparse_matrix_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_c_copy_sparse_matrix_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_z_copy_sparse_matrix_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_s_copy_sparse_matrix_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_d_copy_sparse_matrix_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_c_copy_sparse_matrix_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_z_copy_sparse_matrix_i8(zel_sparse_matrix_i8 *handle);

/* Builds once and caches the transposed record in handle->transposed for operation 11 or 12;
 * the complex members keep the transposed values in values and the conjugated ones in aux. */
ZEL_API int zel_sparse_s_transposeMatrix_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_d_transposeMatrix_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_c_transposeMatrix_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_z_transposeMatrix_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_s_transposeMatrix_i8(zel_sparse_matrix_i8 *handle, int operation);
ZEL_API int zel_sparse_d_transposeMatrix_i8(zel_sparse_matrix_i8 *handle, int operation);
ZEL_API int zel_sparse_c_transposeMatrix_i8(zel_sparse_matrix_i8 *handle, int operation);
ZEL_API int zel_sparse_z_transposeMatrix_i8(zel_sparse_matrix_i8 *handle, int operation);

/* out = op(source) of compressed arrays by a stable counting sort in nparts parts; work holds
 * nparts * n_out indices, out_rows_start n_out + 1; values may be null (structure only). */
ZEL_API int zel_sparse_s_transpose_matrix_i4(
    int32_t n_out, int32_t n_in, int32_t nnz, int32_t nparts, int operation, int32_t index_base,
    int32_t block_size, const int32_t *rows_start, const int32_t *rows_end, const int32_t *col_indx,
    const float *values, int32_t *out_rows_start, int32_t *out_col_indx, float *out_values, int32_t *work);
ZEL_API int zel_sparse_d_transpose_matrix_i4(
    int32_t n_out, int32_t n_in, int32_t nnz, int32_t nparts, int operation, int32_t index_base,
    int32_t block_size, const int32_t *rows_start, const int32_t *rows_end, const int32_t *col_indx,
    const double *values, int32_t *out_rows_start, int32_t *out_col_indx, double *out_values, int32_t *work);
ZEL_API int zel_sparse_c_transpose_matrix_i4(
    int32_t n_out, int32_t n_in, int32_t nnz, int32_t nparts, int operation, int32_t index_base,
    int32_t block_size, const int32_t *rows_start, const int32_t *rows_end, const int32_t *col_indx,
    const zel_complex8 *values, int32_t *out_rows_start, int32_t *out_col_indx, zel_complex8 *out_values,
    int32_t *work);
ZEL_API int zel_sparse_z_transpose_matrix_i4(
    int32_t n_out, int32_t n_in, int32_t nnz, int32_t nparts, int operation, int32_t index_base,
    int32_t block_size, const int32_t *rows_start, const int32_t *rows_end, const int32_t *col_indx,
    const zel_complex16 *values, int32_t *out_rows_start, int32_t *out_col_indx, zel_complex16 *out_values,
    int32_t *work);
ZEL_API int zel_sparse_s_transpose_matrix_i8(
    int64_t n_out, int64_t n_in, int64_t nnz, int64_t nparts, int operation, int64_t index_base,
    int64_t block_size, const int64_t *rows_start, const int64_t *rows_end, const int64_t *col_indx,
    const float *values, int64_t *out_rows_start, int64_t *out_col_indx, float *out_values, int64_t *work);
ZEL_API int zel_sparse_d_transpose_matrix_i8(
    int64_t n_out, int64_t n_in, int64_t nnz, int64_t nparts, int operation, int64_t index_base,
    int64_t block_size, const int64_t *rows_start, const int64_t *rows_end, const int64_t *col_indx,
    const double *values, int64_t *out_rows_start, int64_t *out_col_indx, double *out_values, int64_t *work);
ZEL_API int zel_sparse_c_transpose_matrix_i8(
    int64_t n_out, int64_t n_in, int64_t nnz, int64_t nparts, int operation, int64_t index_base,
    int64_t block_size, const int64_t *rows_start, const int64_t *rows_end, const int64_t *col_indx,
    const zel_complex8 *values, int64_t *out_rows_start, int64_t *out_col_indx, zel_complex8 *out_values,
    int64_t *work);
ZEL_API int zel_sparse_z_transpose_matrix_i8(
    int64_t n_out, int64_t n_in, int64_t nnz, int64_t nparts, int operation, int64_t index_base,
    int64_t block_size, const int64_t *rows_start, const int64_t *rows_end, const int64_t *col_indx,
    const zel_complex16 *values, int64_t *out_rows_start, int64_t *out_col_indx, zel_complex16 *out_values,
    int64_t *work);

/* Turns a four-array record into the library-owned three-array form (owns_arrays 1). */
ZEL_API int zel_sparse_s_convert_to_3_arrays_in_place_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_d_convert_to_3_arrays_in_place_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_c_convert_to_3_arrays_in_place_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_z_convert_to_3_arrays_in_place_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_s_convert_to_3_arrays_in_place_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_d_convert_to_3_arrays_in_place_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_c_convert_to_3_arrays_in_place_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_z_convert_to_3_arrays_in_place_i8(zel_sparse_matrix_i8 *handle);

/* Replaces the handle's matrix by op(A) in the same format, owning the new arrays; a cached
 * transposed record describes the old matrix and is released. */
ZEL_API int zel_sparse_s_transpose_out_of_place_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_d_transpose_out_of_place_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_c_transpose_out_of_place_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_z_transpose_out_of_place_i4(zel_sparse_matrix_i4 *handle, int operation);
ZEL_API int zel_sparse_s_transpose_out_of_place_i8(zel_sparse_matrix_i8 *handle, int operation);
ZEL_API int zel_sparse_d_transpose_out_of_place_i8(zel_sparse_matrix_i8 *handle, int operation);
ZEL_API int zel_sparse_c_transpose_out_of_place_i8(zel_sparse_matrix_i8 *handle, int operation);
ZEL_API int zel_sparse_z_transpose_out_of_place_i8(zel_sparse_matrix_i8 *handle, int operation);

/* *result = a new handle holding op(A) in A's format with library-owned arrays; release it with
 * zel_sparse_destroy_i4 / _i8. */
ZEL_API int zel_sparse_s_create_and_transpose_out_of_place_i4(const zel_sparse_matrix_i4 *handle,
                                                              int operation, zel_sparse_matrix_i4 **result);
ZEL_API int zel_sparse_d_create_and_transpose_out_of_place_i4(const zel_sparse_matrix_i4 *handle,
                                                              int operation, zel_sparse_matrix_i4 **result);
ZEL_API int zel_sparse_c_create_and_transpose_out_of_place_i4(const zel_sparse_matrix_i4 *handle,
                                                              int operation, zel_sparse_matrix_i4 **result);
ZEL_API int zel_sparse_z_create_and_transpose_out_of_place_i4(const zel_sparse_matrix_i4 *handle,
                                                              int operation, zel_sparse_matrix_i4 **result);
ZEL_API int zel_sparse_s_create_and_transpose_out_of_place_i8(const zel_sparse_matrix_i8 *handle,
                                                              int operation, zel_sparse_matrix_i8 **result);
ZEL_API int zel_sparse_d_create_and_transpose_out_of_place_i8(const zel_sparse_matrix_i8 *handle,
                                                              int operation, zel_sparse_matrix_i8 **result);
ZEL_API int zel_sparse_c_create_and_transpose_out_of_place_i8(const zel_sparse_matrix_i8 *handle,
                                                              int operation, zel_sparse_matrix_i8 **result);
ZEL_API int zel_sparse_z_create_and_transpose_out_of_place_i8(const zel_sparse_matrix_i8 *handle,
                                                              int operation, zel_sparse_matrix_i8 **result);

/* Transposes every block of a BSR handle in place of its arrays (owning copies), switching
 * block_layout between 0 and 1: the same matrix in the other block order. */
ZEL_API int zel_sparse_s_convert_bsr_transpose_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_d_convert_bsr_transpose_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_c_convert_bsr_transpose_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_z_convert_bsr_transpose_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_s_convert_bsr_transpose_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_d_convert_bsr_transpose_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_c_convert_bsr_transpose_i8(zel_sparse_matrix_i8 *handle);
ZEL_API int zel_sparse_z_convert_bsr_transpose_i8(zel_sparse_matrix_i8 *handle);

/* Builds the transposed record (operation 11) of the member chosen by data_type; 6 for an
 * unknown data_type. The handle is not tested for null. */
ZEL_API int zel_sparse_transposeMatrix_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_transposeMatrix_i8(zel_sparse_matrix_i8 *handle);

ZEL_END_DECLS

#endif
