/* Zelmath sparse BLAS: the matrix handle's lifecycle (core object) and its accessors,
 * conversions, ordering and checks (sequential layer).
 *
 * Members: one per value letter and index width, s_i4 d_i4 c_i4 z_i4 s_i8 d_i8 c_i8 z_i8; the
 * letter gives the value type T (s float, d double, c zel_complex8, z zel_complex16), the width
 * the index type I (i4 int32_t, i8 int64_t) and the handle type (zel_sparse_matrix_i4, _i8).
 * Entries without a letter serve every value type of their width.
 * Conventions: index_base is 0 or 1, fixed at creation and kept by every copy and conversion;
 * operation is 10 (A), 11 (Aᵀ) or 12 (Aᴴ); BSR block orders are given as layout codes, 101
 * row-major and 102 column-major blocks (the record stores 0 and 1).
 * Statuses: every function returns a status of sparse_types.h (a null handle or out-pointer
 * gives 1), except the procedure lookups, which return a node or null.
 * Ownership: handles, records, procedure nodes and library-owned arrays come from zel_serv_malloc
 * and are released by zel_sparse_destroy_i4 / _i8; creation keeps the caller's arrays
 * (owns_arrays 0) and export hands back the record's own arrays (never free them).
 * Defined by libzel_core.so.2 (lifecycle) and libzel_sequential.so.2 (the rest); see
 * docs/sparse_handle.md. */
#ifndef ZEL_SPARSE_HANDLE_H
#define ZEL_SPARSE_HANDLE_H

#include "zel/platform.h"
#include "zel/sparse_types.h"

ZEL_BEGIN_DECLS

/* Memory hint policies. */
#define ZEL_SPARSE_MEMORY_NONE 80
#define ZEL_SPARSE_MEMORY_AGGRESSIVE 81

/* hint_flags bits of the handle. */
#define ZEL_SPARSE_HINT_MV 1
#define ZEL_SPARSE_HINT_MM 2
#define ZEL_SPARSE_HINT_MEMORY 4

/* ==== Core object: creation, export, copy, conversion, hints, destruction. ==== */

/* *A = a new COO handle over the caller's arrays (nnz entries). */
ZEL_API int zel_sparse_s_create_coo_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t nnz, int32_t *row_indx, int32_t *col_indx, float *values);
ZEL_API int zel_sparse_d_create_coo_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t nnz, int32_t *row_indx, int32_t *col_indx, double *values);
ZEL_API int zel_sparse_c_create_coo_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t nnz, int32_t *row_indx, int32_t *col_indx,
                                       zel_complex8 *values);
ZEL_API int zel_sparse_z_create_coo_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t nnz, int32_t *row_indx, int32_t *col_indx,
                                       zel_complex16 *values);
ZEL_API int zel_sparse_s_create_coo_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t nnz, int64_t *row_indx, int64_t *col_indx, float *values);
ZEL_API int zel_sparse_d_create_coo_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t nnz, int64_t *row_indx, int64_t *col_indx, double *values);
ZEL_API int zel_sparse_c_create_coo_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t nnz, int64_t *row_indx, int64_t *col_indx,
                                       zel_complex8 *values);
ZEL_API int zel_sparse_z_create_coo_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t nnz, int64_t *row_indx, int64_t *col_indx,
                                       zel_complex16 *values);

/* *A = a new CSR handle over the caller's arrays: start and end offsets of each row
 * (rows_end == rows_start + 1 gives the three-array form). */
ZEL_API int zel_sparse_s_create_csr_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *rows_start, int32_t *rows_end, int32_t *col_indx,
                                       float *values);
ZEL_API int zel_sparse_d_create_csr_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *rows_start, int32_t *rows_end, int32_t *col_indx,
                                       double *values);
ZEL_API int zel_sparse_c_create_csr_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *rows_start, int32_t *rows_end, int32_t *col_indx,
                                       zel_complex8 *values);
ZEL_API int zel_sparse_z_create_csr_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *rows_start, int32_t *rows_end, int32_t *col_indx,
                                       zel_complex16 *values);
ZEL_API int zel_sparse_s_create_csr_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *rows_start, int64_t *rows_end, int64_t *col_indx,
                                       float *values);
ZEL_API int zel_sparse_d_create_csr_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *rows_start, int64_t *rows_end, int64_t *col_indx,
                                       double *values);
ZEL_API int zel_sparse_c_create_csr_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *rows_start, int64_t *rows_end, int64_t *col_indx,
                                       zel_complex8 *values);
ZEL_API int zel_sparse_z_create_csr_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *rows_start, int64_t *rows_end, int64_t *col_indx,
                                       zel_complex16 *values);

/* *A = a new CSC handle over the caller's arrays: start and end offsets of each column. */
ZEL_API int zel_sparse_s_create_csc_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *cols_start, int32_t *cols_end, int32_t *row_indx,
                                       float *values);
ZEL_API int zel_sparse_d_create_csc_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *cols_start, int32_t *cols_end, int32_t *row_indx,
                                       double *values);
ZEL_API int zel_sparse_c_create_csc_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *cols_start, int32_t *cols_end, int32_t *row_indx,
                                       zel_complex8 *values);
ZEL_API int zel_sparse_z_create_csc_i4(zel_sparse_matrix_i4 **A, int index_base, int32_t rows, int32_t cols,
                                       int32_t *cols_start, int32_t *cols_end, int32_t *row_indx,
                                       zel_complex16 *values);
ZEL_API int zel_sparse_s_create_csc_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *cols_start, int64_t *cols_end, int64_t *row_indx,
                                       float *values);
ZEL_API int zel_sparse_d_create_csc_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *cols_start, int64_t *cols_end, int64_t *row_indx,
                                       double *values);
ZEL_API int zel_sparse_c_create_csc_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *cols_start, int64_t *cols_end, int64_t *row_indx,
                                       zel_complex8 *values);
ZEL_API int zel_sparse_z_create_csc_i8(zel_sparse_matrix_i8 **A, int index_base, int64_t rows, int64_t cols,
                                       int64_t *cols_start, int64_t *cols_end, int64_t *row_indx,
                                       zel_complex16 *values);

/* *A = a new BSR handle over the caller's arrays: rows and cols in blocks, the block edge and
 * the block order (101 row-major, 102 column-major). */
ZEL_API int zel_sparse_s_create_bsr_i4(zel_sparse_matrix_i4 **A, int index_base, int block_layout,
                                       int32_t rows, int32_t cols, int32_t block_size, int32_t *rows_start,
                                       int32_t *rows_end, int32_t *col_indx, float *values);
ZEL_API int zel_sparse_d_create_bsr_i4(zel_sparse_matrix_i4 **A, int index_base, int block_layout,
                                       int32_t rows, int32_t cols, int32_t block_size, int32_t *rows_start,
                                       int32_t *rows_end, int32_t *col_indx, double *values);
ZEL_API int zel_sparse_c_create_bsr_i4(zel_sparse_matrix_i4 **A, int index_base, int block_layout,
                                       int32_t rows, int32_t cols, int32_t block_size, int32_t *rows_start,
                                       int32_t *rows_end, int32_t *col_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_create_bsr_i4(zel_sparse_matrix_i4 **A, int index_base, int block_layout,
                                       int32_t rows, int32_t cols, int32_t block_size, int32_t *rows_start,
                                       int32_t *rows_end, int32_t *col_indx, zel_complex16 *values);
ZEL_API int zel_sparse_s_create_bsr_i8(zel_sparse_matrix_i8 **A, int index_base, int block_layout,
                                       int64_t rows, int64_t cols, int64_t block_size, int64_t *rows_start,
                                       int64_t *rows_end, int64_t *col_indx, float *values);
ZEL_API int zel_sparse_d_create_bsr_i8(zel_sparse_matrix_i8 **A, int index_base, int block_layout,
                                       int64_t rows, int64_t cols, int64_t block_size, int64_t *rows_start,
                                       int64_t *rows_end, int64_t *col_indx, double *values);
ZEL_API int zel_sparse_c_create_bsr_i8(zel_sparse_matrix_i8 **A, int index_base, int block_layout,
                                       int64_t rows, int64_t cols, int64_t block_size, int64_t *rows_start,
                                       int64_t *rows_end, int64_t *col_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_create_bsr_i8(zel_sparse_matrix_i8 **A, int index_base, int block_layout,
                                       int64_t rows, int64_t cols, int64_t block_size, int64_t *rows_start,
                                       int64_t *rows_end, int64_t *col_indx, zel_complex16 *values);

/* Export hands back the record's arrays and sizes (BSR: block rows and columns); 3 when the
 * handle's format or value type is not the function's. */
ZEL_API int zel_sparse_s_export_coo_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t *nnz, int32_t **row_indx, int32_t **col_indx,
                                       float **values);
ZEL_API int zel_sparse_d_export_coo_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t *nnz, int32_t **row_indx, int32_t **col_indx,
                                       double **values);
ZEL_API int zel_sparse_c_export_coo_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t *nnz, int32_t **row_indx, int32_t **col_indx,
                                       zel_complex8 **values);
ZEL_API int zel_sparse_z_export_coo_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t *nnz, int32_t **row_indx, int32_t **col_indx,
                                       zel_complex16 **values);
ZEL_API int zel_sparse_s_export_coo_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t *nnz, int64_t **row_indx, int64_t **col_indx,
                                       float **values);
ZEL_API int zel_sparse_d_export_coo_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t *nnz, int64_t **row_indx, int64_t **col_indx,
                                       double **values);
ZEL_API int zel_sparse_c_export_coo_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t *nnz, int64_t **row_indx, int64_t **col_indx,
                                       zel_complex8 **values);
ZEL_API int zel_sparse_z_export_coo_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t *nnz, int64_t **row_indx, int64_t **col_indx,
                                       zel_complex16 **values);

ZEL_API int zel_sparse_s_export_csr_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **rows_start, int32_t **rows_end,
                                       int32_t **col_indx, float **values);
ZEL_API int zel_sparse_d_export_csr_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **rows_start, int32_t **rows_end,
                                       int32_t **col_indx, double **values);
ZEL_API int zel_sparse_c_export_csr_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **rows_start, int32_t **rows_end,
                                       int32_t **col_indx, zel_complex8 **values);
ZEL_API int zel_sparse_z_export_csr_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **rows_start, int32_t **rows_end,
                                       int32_t **col_indx, zel_complex16 **values);
ZEL_API int zel_sparse_s_export_csr_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **rows_start, int64_t **rows_end,
                                       int64_t **col_indx, float **values);
ZEL_API int zel_sparse_d_export_csr_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **rows_start, int64_t **rows_end,
                                       int64_t **col_indx, double **values);
ZEL_API int zel_sparse_c_export_csr_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **rows_start, int64_t **rows_end,
                                       int64_t **col_indx, zel_complex8 **values);
ZEL_API int zel_sparse_z_export_csr_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **rows_start, int64_t **rows_end,
                                       int64_t **col_indx, zel_complex16 **values);

ZEL_API int zel_sparse_s_export_csc_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **cols_start, int32_t **cols_end,
                                       int32_t **row_indx, float **values);
ZEL_API int zel_sparse_d_export_csc_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **cols_start, int32_t **cols_end,
                                       int32_t **row_indx, double **values);
ZEL_API int zel_sparse_c_export_csc_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **cols_start, int32_t **cols_end,
                                       int32_t **row_indx, zel_complex8 **values);
ZEL_API int zel_sparse_z_export_csc_i4(const zel_sparse_matrix_i4 *A, int *index_base, int32_t *rows,
                                       int32_t *cols, int32_t **cols_start, int32_t **cols_end,
                                       int32_t **row_indx, zel_complex16 **values);
ZEL_API int zel_sparse_s_export_csc_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **cols_start, int64_t **cols_end,
                                       int64_t **row_indx, float **values);
ZEL_API int zel_sparse_d_export_csc_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **cols_start, int64_t **cols_end,
                                       int64_t **row_indx, double **values);
ZEL_API int zel_sparse_c_export_csc_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **cols_start, int64_t **cols_end,
                                       int64_t **row_indx, zel_complex8 **values);
ZEL_API int zel_sparse_z_export_csc_i8(const zel_sparse_matrix_i8 *A, int *index_base, int64_t *rows,
                                       int64_t *cols, int64_t **cols_start, int64_t **cols_end,
                                       int64_t **row_indx, zel_complex16 **values);

ZEL_API int zel_sparse_s_export_bsr_i4(
    const zel_sparse_matrix_i4 *A, int *index_base, int *block_layout, int32_t *rows, int32_t *cols,
    int32_t *block_size, int32_t **rows_start, int32_t **rows_end, int32_t **col_indx, float **values);
ZEL_API int zel_sparse_d_export_bsr_i4(
    const zel_sparse_matrix_i4 *A, int *index_base, int *block_layout, int32_t *rows, int32_t *cols,
    int32_t *block_size, int32_t **rows_start, int32_t **rows_end, int32_t **col_indx, double **values);
ZEL_API int zel_sparse_c_export_bsr_i4(
    const zel_sparse_matrix_i4 *A, int *index_base, int *block_layout, int32_t *rows, int32_t *cols,
    int32_t *block_size, int32_t **rows_start, int32_t **rows_end, int32_t **col_indx, zel_complex8 **values);
ZEL_API int zel_sparse_z_export_bsr_i4(const zel_sparse_matrix_i4 *A, int *index_base, int *block_layout,
                                       int32_t *rows, int32_t *cols, int32_t *block_size,
                                       int32_t **rows_start, int32_t **rows_end, int32_t **col_indx,
                                       zel_complex16 **values);
ZEL_API int zel_sparse_s_export_bsr_i8(
    const zel_sparse_matrix_i8 *A, int *index_base, int *block_layout, int64_t *rows, int64_t *cols,
    int64_t *block_size, int64_t **rows_start, int64_t **rows_end, int64_t **col_indx, float **values);
ZEL_API int zel_sparse_d_export_bsr_i8(
    const zel_sparse_matrix_i8 *A, int *index_base, int *block_layout, int64_t *rows, int64_t *cols,
    int64_t *block_size, int64_t **rows_start, int64_t **rows_end, int64_t **col_indx, double **values);
ZEL_API int zel_sparse_c_export_bsr_i8(
    const zel_sparse_matrix_i8 *A, int *index_base, int *block_layout, int64_t *rows, int64_t *cols,
    int64_t *block_size, int64_t **rows_start, int64_t **rows_end, int64_t **col_indx, zel_complex8 **values);
ZEL_API int zel_sparse_z_export_bsr_i8(const zel_sparse_matrix_i8 *A, int *index_base, int *block_layout,
                                       int64_t *rows, int64_t *cols, int64_t *block_size,
                                       int64_t **rows_start, int64_t **rows_end, int64_t **col_indx,
                                       zel_complex16 **values);

/* A new handle owning copies of source's arrays (three-array form), same format. */
ZEL_API int zel_sparse_copy_i4(const zel_sparse_matrix_i4 *source, zel_sparse_matrix_i4 **dest);
ZEL_API int zel_sparse_copy_i8(const zel_sparse_matrix_i8 *source, zel_sparse_matrix_i8 **dest);

/* A new handle holding op(source) in CSR, or in BSR with the given block edge and order. */
ZEL_API int zel_sparse_convert_csr_i4(const zel_sparse_matrix_i4 *source, int operation,
                                      zel_sparse_matrix_i4 **dest);
ZEL_API int zel_sparse_convert_csr_i8(const zel_sparse_matrix_i8 *source, int operation,
                                      zel_sparse_matrix_i8 **dest);

ZEL_API int zel_sparse_convert_bsr_i4(const zel_sparse_matrix_i4 *source, int32_t block_size,
                                      int block_layout, int operation, zel_sparse_matrix_i4 **dest);
ZEL_API int zel_sparse_convert_bsr_i8(const zel_sparse_matrix_i8 *source, int64_t block_size,
                                      int block_layout, int operation, zel_sparse_matrix_i8 **dest);

/* Frees the handle and everything it owns. */
ZEL_API int zel_sparse_destroy_i4(zel_sparse_matrix_i4 *A);
ZEL_API int zel_sparse_destroy_i8(zel_sparse_matrix_i8 *A);

/* Records a hint in the handle (hint_flags and the hint words); bad values give 3 and change
 * nothing. */
ZEL_API int zel_sparse_set_mv_hint_i4(zel_sparse_matrix_i4 *A, int operation, zel_sparse_matrix_descr descr,
                                      int32_t expected_calls);
ZEL_API int zel_sparse_set_mv_hint_i8(zel_sparse_matrix_i8 *A, int operation, zel_sparse_matrix_descr descr,
                                      int64_t expected_calls);

ZEL_API int zel_sparse_set_mm_hint_i4(zel_sparse_matrix_i4 *A, int operation, zel_sparse_matrix_descr descr,
                                      int layout, int32_t expected_calls);
ZEL_API int zel_sparse_set_mm_hint_i8(zel_sparse_matrix_i8 *A, int operation, zel_sparse_matrix_descr descr,
                                      int layout, int64_t expected_calls);

ZEL_API int zel_sparse_set_memory_hint_i4(zel_sparse_matrix_i4 *A, int policy);
ZEL_API int zel_sparse_set_memory_hint_i8(zel_sparse_matrix_i8 *A, int policy);

/* ==== Sequential layer: accessors, conversions, ordering, operand checks. ==== */

/* Record flags and the sorted property of the handle's storage record. */
ZEL_API int zel_sparse_s_do_set_inplace_copy_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_d_do_set_inplace_copy_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_c_do_set_inplace_copy_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_z_do_set_inplace_copy_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_s_do_set_inplace_copy_i8(zel_sparse_matrix_i8 *A, int64_t flag);
ZEL_API int zel_sparse_d_do_set_inplace_copy_i8(zel_sparse_matrix_i8 *A, int64_t flag);
ZEL_API int zel_sparse_c_do_set_inplace_copy_i8(zel_sparse_matrix_i8 *A, int64_t flag);
ZEL_API int zel_sparse_z_do_set_inplace_copy_i8(zel_sparse_matrix_i8 *A, int64_t flag);

ZEL_API int zel_sparse_s_do_set_is_sycl_cpu_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_d_do_set_is_sycl_cpu_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_c_do_set_is_sycl_cpu_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_z_do_set_is_sycl_cpu_i4(zel_sparse_matrix_i4 *A, int32_t flag);
ZEL_API int zel_sparse_s_do_set_is_sycl_cpu_i8(zel_sparse_matrix_i8 *A, int64_t flag);
ZEL_API int zel_sparse_d_do_set_is_sycl_cpu_i8(zel_sparse_matrix_i8 *A, int64_t flag);
ZEL_API int zel_sparse_c_do_set_is_sycl_cpu_i8(zel_sparse_matrix_i8 *A, int64_t flag);
ZEL_API int zel_sparse_z_do_set_is_sycl_cpu_i8(zel_sparse_matrix_i8 *A, int64_t flag);

ZEL_API int zel_sparse_s_do_get_sorted_property_i4(const zel_sparse_matrix_i4 *A, int32_t *sorted);
ZEL_API int zel_sparse_d_do_get_sorted_property_i4(const zel_sparse_matrix_i4 *A, int32_t *sorted);
ZEL_API int zel_sparse_c_do_get_sorted_property_i4(const zel_sparse_matrix_i4 *A, int32_t *sorted);
ZEL_API int zel_sparse_z_do_get_sorted_property_i4(const zel_sparse_matrix_i4 *A, int32_t *sorted);
ZEL_API int zel_sparse_s_do_get_sorted_property_i8(const zel_sparse_matrix_i8 *A, int64_t *sorted);
ZEL_API int zel_sparse_d_do_get_sorted_property_i8(const zel_sparse_matrix_i8 *A, int64_t *sorted);
ZEL_API int zel_sparse_c_do_get_sorted_property_i8(const zel_sparse_matrix_i8 *A, int64_t *sorted);
ZEL_API int zel_sparse_z_do_get_sorted_property_i8(const zel_sparse_matrix_i8 *A, int64_t *sorted);

/* Install arrays and their properties in the handle's storage record (the BSR setter ignores
 * its block_size argument). */
ZEL_API int zel_sparse_s_set_coo_data_arrays_i4(zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu,
                                                int32_t owns_arrays, int32_t sorted, int32_t index_base,
                                                int32_t *row_indx, int32_t *col_indx, float *values);
ZEL_API int zel_sparse_d_set_coo_data_arrays_i4(zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu,
                                                int32_t owns_arrays, int32_t sorted, int32_t index_base,
                                                int32_t *row_indx, int32_t *col_indx, double *values);
ZEL_API int zel_sparse_c_set_coo_data_arrays_i4(zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu,
                                                int32_t owns_arrays, int32_t sorted, int32_t index_base,
                                                int32_t *row_indx, int32_t *col_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_coo_data_arrays_i4(zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu,
                                                int32_t owns_arrays, int32_t sorted, int32_t index_base,
                                                int32_t *row_indx, int32_t *col_indx, zel_complex16 *values);
ZEL_API int zel_sparse_s_set_coo_data_arrays_i8(zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu,
                                                int64_t owns_arrays, int64_t sorted, int64_t index_base,
                                                int64_t *row_indx, int64_t *col_indx, float *values);
ZEL_API int zel_sparse_d_set_coo_data_arrays_i8(zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu,
                                                int64_t owns_arrays, int64_t sorted, int64_t index_base,
                                                int64_t *row_indx, int64_t *col_indx, double *values);
ZEL_API int zel_sparse_c_set_coo_data_arrays_i8(zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu,
                                                int64_t owns_arrays, int64_t sorted, int64_t index_base,
                                                int64_t *row_indx, int64_t *col_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_coo_data_arrays_i8(zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu,
                                                int64_t owns_arrays, int64_t sorted, int64_t index_base,
                                                int64_t *row_indx, int64_t *col_indx, zel_complex16 *values);

ZEL_API int zel_sparse_s_set_csr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, float *values);
ZEL_API int zel_sparse_d_set_csr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, double *values);
ZEL_API int zel_sparse_c_set_csr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_csr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, zel_complex16 *values);
ZEL_API int zel_sparse_s_set_csr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, float *values);
ZEL_API int zel_sparse_d_set_csr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, double *values);
ZEL_API int zel_sparse_c_set_csr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_csr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, zel_complex16 *values);

ZEL_API int zel_sparse_s_set_csc_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *cols_start, int32_t *cols_end, int32_t *row_indx, float *values);
ZEL_API int zel_sparse_d_set_csc_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *cols_start, int32_t *cols_end, int32_t *row_indx, double *values);
ZEL_API int zel_sparse_c_set_csc_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *cols_start, int32_t *cols_end, int32_t *row_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_csc_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *cols_start, int32_t *cols_end, int32_t *row_indx, zel_complex16 *values);
ZEL_API int zel_sparse_s_set_csc_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *cols_start, int64_t *cols_end, int64_t *row_indx, float *values);
ZEL_API int zel_sparse_d_set_csc_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *cols_start, int64_t *cols_end, int64_t *row_indx, double *values);
ZEL_API int zel_sparse_c_set_csc_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *cols_start, int64_t *cols_end, int64_t *row_indx, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_csc_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *cols_start, int64_t *cols_end, int64_t *row_indx, zel_complex16 *values);

ZEL_API int zel_sparse_s_set_bsr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, int32_t block_size, float *values);
ZEL_API int zel_sparse_d_set_bsr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, int32_t block_size, double *values);
ZEL_API int zel_sparse_c_set_bsr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, int32_t block_size, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_bsr_data_arrays_i4(
    zel_sparse_matrix_i4 *A, int32_t is_sycl_cpu, int32_t owns_arrays, int32_t sorted, int32_t index_base,
    int32_t *rows_start, int32_t *rows_end, int32_t *col_indx, int32_t block_size, zel_complex16 *values);
ZEL_API int zel_sparse_s_set_bsr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, int64_t block_size, float *values);
ZEL_API int zel_sparse_d_set_bsr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, int64_t block_size, double *values);
ZEL_API int zel_sparse_c_set_bsr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, int64_t block_size, zel_complex8 *values);
ZEL_API int zel_sparse_z_set_bsr_data_arrays_i8(
    zel_sparse_matrix_i8 *A, int64_t is_sycl_cpu, int64_t owns_arrays, int64_t sorted, int64_t index_base,
    int64_t *rows_start, int64_t *rows_end, int64_t *col_indx, int64_t block_size, zel_complex16 *values);

/* Sorts the indices inside each row (column for CSC; COO by row, then column). */
ZEL_API int zel_sparse_s_do_order_i4(zel_sparse_matrix_i4 *A);
ZEL_API int zel_sparse_d_do_order_i4(zel_sparse_matrix_i4 *A);
ZEL_API int zel_sparse_c_do_order_i4(zel_sparse_matrix_i4 *A);
ZEL_API int zel_sparse_z_do_order_i4(zel_sparse_matrix_i4 *A);
ZEL_API int zel_sparse_s_do_order_i8(zel_sparse_matrix_i8 *A);
ZEL_API int zel_sparse_d_do_order_i8(zel_sparse_matrix_i8 *A);
ZEL_API int zel_sparse_c_do_order_i8(zel_sparse_matrix_i8 *A);
ZEL_API int zel_sparse_z_do_order_i8(zel_sparse_matrix_i8 *A);

/* Operand check of two-matrix operations. */
ZEL_API int zel_sparse_s_check_input_data_i4(const zel_sparse_matrix_i4 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i4 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_d_check_input_data_i4(const zel_sparse_matrix_i4 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i4 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_c_check_input_data_i4(const zel_sparse_matrix_i4 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i4 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_z_check_input_data_i4(const zel_sparse_matrix_i4 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i4 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_s_check_input_data_i8(const zel_sparse_matrix_i8 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i8 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_d_check_input_data_i8(const zel_sparse_matrix_i8 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i8 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_c_check_input_data_i8(const zel_sparse_matrix_i8 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i8 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);
ZEL_API int zel_sparse_z_check_input_data_i8(const zel_sparse_matrix_i8 *A, int type_a, int mode_a,
                                             int diag_a, const zel_sparse_matrix_i8 *B, int type_b,
                                             int mode_b, int diag_b, int allow_rectangular);

/* Conversions: op(A) (operation 10, 11, 12) into new arrays from zel_serv_malloc that the caller
 * owns, described by a record the caller provides (owns_arrays 1, three-array form, the source's
 * index base, no optimisation sub-records). The source form is coo, csr, csc or bsr (3 when the
 * handle is in another format) or any (the handle's own format). */

/* op(A) into a CSR record. */
ZEL_API int zel_sparse_s_convert_coo_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_coo_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_coo_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_coo_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_coo_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_coo_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_coo_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_coo_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csc_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csc_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csc_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csc_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csc_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csc_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csc_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csc_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_any_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_any_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_any_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_any_to_csr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_any_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_any_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_any_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_any_to_csr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);

/* op(A) into a CSC record (offsets per column). */
ZEL_API int zel_sparse_s_convert_coo_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_coo_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_coo_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_coo_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_coo_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_coo_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_coo_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_coo_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csc_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csc_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csc_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csc_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csc_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csc_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csc_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csc_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_any_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_any_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_any_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_any_to_csc_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_any_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_any_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_any_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_any_to_csc_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_csr_record_i8 *out);

/* op(A) into a COO record. */
ZEL_API int zel_sparse_s_convert_coo_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_d_convert_coo_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_c_convert_coo_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_z_convert_coo_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_s_convert_coo_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_d_convert_coo_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_c_convert_coo_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_z_convert_coo_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csc_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csc_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csc_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csc_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csc_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csc_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csc_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csc_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_s_convert_any_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_d_convert_any_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_c_convert_any_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_z_convert_any_to_coo_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               zel_sparse_coo_record_i4 *out);
ZEL_API int zel_sparse_s_convert_any_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_d_convert_any_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_c_convert_any_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);
ZEL_API int zel_sparse_z_convert_any_to_coo_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               zel_sparse_coo_record_i8 *out);

/* op(A) into a BSR record with the given block edge and order (101/102); op(A)'s dimensions must be
 * multiples of the edge. */
ZEL_API int zel_sparse_s_convert_coo_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_coo_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_coo_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_coo_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_coo_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_coo_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_coo_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_coo_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_csc_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_csc_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_csc_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_csc_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_csc_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_csc_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_csc_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_csc_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_bsr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_bsr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_bsr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_bsr_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_s_convert_any_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_d_convert_any_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_c_convert_any_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_z_convert_any_to_bsr_i4(const zel_sparse_matrix_i4 *A, int operation,
                                               int32_t block_size, int block_layout,
                                               zel_sparse_csr_record_i4 *out);
ZEL_API int zel_sparse_s_convert_any_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_d_convert_any_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_c_convert_any_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);
ZEL_API int zel_sparse_z_convert_any_to_bsr_i8(const zel_sparse_matrix_i8 *A, int operation,
                                               int64_t block_size, int block_layout,
                                               zel_sparse_csr_record_i8 *out);

/* Calls the typed do_order by data_type: 1 for a null handle, 5 for an unknown type. */
ZEL_API int zel_sparse_order_i4(zel_sparse_matrix_i4 *A);
ZEL_API int zel_sparse_order_i8(zel_sparse_matrix_i8 *A);

/* First node of a procedure list that serves the request (null: run the default). */
ZEL_API zel_sparse_proc_node_i4 *zel_sparse_find_procedure_i4(zel_sparse_proc_node_i4 *head, int operation,
                                                              zel_sparse_matrix_descr descr);
ZEL_API zel_sparse_proc_node_i8 *zel_sparse_find_procedure_i8(zel_sparse_proc_node_i8 *head, int operation,
                                                              zel_sparse_matrix_descr descr);

ZEL_API zel_sparse_proc_node_i4 *zel_sparse_find_mm_procedure_i4(
    zel_sparse_proc_node_i4 *head, int operation, zel_sparse_matrix_descr descr, int dense_layout);
ZEL_API zel_sparse_proc_node_i8 *zel_sparse_find_mm_procedure_i8(
    zel_sparse_proc_node_i8 *head, int operation, zel_sparse_matrix_descr descr, int dense_layout);

/* Descriptor rule of the executors: 0, or 3 for a bad operation or descriptor. */
ZEL_API int zel_sparse_check_descriptor(int operation, zel_sparse_matrix_descr descr);
/* 0 for layout 101 or 102, else 3. */
ZEL_API int zel_sparse_check_dense_layout(int layout);

ZEL_END_DECLS

#endif
