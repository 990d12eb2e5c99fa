/* Zelmath sparse BLAS: handle lifecycle (core object) and the handle's accessors, conversions,
 * ordering and checks (sequential layer). Every typed entry exists for the value letters
 * s, d, c, z and the widths i4 (32-bit indices) and i8 (64-bit); see docs/sparse_handle.md. */
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

/* ---- Core object: creation, export, copy, conversion, hints, destruction. ----
 * Creation keeps the caller's arrays (owns_arrays 0). CSR/CSC take start and end offsets of the
 * compressed dimension: rows_end == rows_start + 1 gives the three-array form. BSR takes rows and
 * cols in blocks, the block edge and the block order (101 row-major, 102 column-major).
 * Export hands back the record's arrays and sizes (BSR: block rows and columns). */
#define ZEL_SPARSE_DECLARE_LIFECYCLE(p, T, W, I)                                                          \
    ZEL_API int zel_sparse_##p##_create_coo_##W(zel_sparse_matrix_##W **A, int index_base, I rows, I cols, \
                                                I nnz, I *row_indx, I *col_indx, T *values);               \
    ZEL_API int zel_sparse_##p##_create_csr_##W(zel_sparse_matrix_##W **A, int index_base, I rows, I cols, \
                                                I *rows_start, I *rows_end, I *col_indx, T *values);       \
    ZEL_API int zel_sparse_##p##_create_csc_##W(zel_sparse_matrix_##W **A, int index_base, I rows, I cols, \
                                                I *cols_start, I *cols_end, I *row_indx, T *values);       \
    ZEL_API int zel_sparse_##p##_create_bsr_##W(zel_sparse_matrix_##W **A, int index_base,                 \
                                                int block_layout, I rows, I cols, I block_size,            \
                                                I *rows_start, I *rows_end, I *col_indx, T *values);       \
    ZEL_API int zel_sparse_##p##_export_coo_##W(const zel_sparse_matrix_##W *A, int *index_base, I *rows,  \
                                                I *cols, I *nnz, I **row_indx, I **col_indx, T **values);  \
    ZEL_API int zel_sparse_##p##_export_csr_##W(const zel_sparse_matrix_##W *A, int *index_base, I *rows,  \
                                                I *cols, I **rows_start, I **rows_end, I **col_indx,       \
                                                T **values);                                               \
    ZEL_API int zel_sparse_##p##_export_csc_##W(const zel_sparse_matrix_##W *A, int *index_base, I *rows,  \
                                                I *cols, I **cols_start, I **cols_end, I **row_indx,       \
                                                T **values);                                               \
    ZEL_API int zel_sparse_##p##_export_bsr_##W(const zel_sparse_matrix_##W *A, int *index_base,           \
                                                int *block_layout, I *rows, I *cols, I *block_size,        \
                                                I **rows_start, I **rows_end, I **col_indx, T **values);

#define ZEL_SPARSE_DECLARE_LIFECYCLE_WIDTH(W, I)                                                          \
    /* A new handle owning copies of source's arrays (three-array form), same format. */                  \
    ZEL_API int zel_sparse_copy_##W(const zel_sparse_matrix_##W *source, zel_sparse_matrix_##W **dest);    \
    /* A new handle holding op(source) in CSR (or BSR with the given block edge and order). */            \
    ZEL_API int zel_sparse_convert_csr_##W(const zel_sparse_matrix_##W *source, int operation,             \
                                           zel_sparse_matrix_##W **dest);                                  \
    ZEL_API int zel_sparse_convert_bsr_##W(const zel_sparse_matrix_##W *source, I block_size,              \
                                           int block_layout, int operation, zel_sparse_matrix_##W **dest); \
    /* Frees the handle and everything it owns. */                                                        \
    ZEL_API int zel_sparse_destroy_##W(zel_sparse_matrix_##W *A);                                          \
    ZEL_API int zel_sparse_set_mv_hint_##W(zel_sparse_matrix_##W *A, int operation,                        \
                                           zel_sparse_matrix_descr descr, I expected_calls);              \
    ZEL_API int zel_sparse_set_mm_hint_##W(zel_sparse_matrix_##W *A, int operation,                        \
                                           zel_sparse_matrix_descr descr, int layout, I expected_calls);  \
    ZEL_API int zel_sparse_set_memory_hint_##W(zel_sparse_matrix_##W *A, int policy);

ZEL_SPARSE_DECLARE_LIFECYCLE(s, float, i4, int32_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(d, double, i4, int32_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(c, zel_complex8, i4, int32_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(z, zel_complex16, i4, int32_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(s, float, i8, int64_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(d, double, i8, int64_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(c, zel_complex8, i8, int64_t)
ZEL_SPARSE_DECLARE_LIFECYCLE(z, zel_complex16, i8, int64_t)
ZEL_SPARSE_DECLARE_LIFECYCLE_WIDTH(i4, int32_t)
ZEL_SPARSE_DECLARE_LIFECYCLE_WIDTH(i8, int64_t)

/* ---- Sequential layer: accessors, conversions, ordering, operand checks. ----
 * Conversions build op(A) (operation 10, 11, 12) into new arrays from zel_serv_malloc that the
 * caller owns, described by a record the caller provides (owns_arrays 1, three-array form, the
 * source's index base, no optimisation sub-records). The to_bsr family takes the block edge and
 * block order (101/102) of the result; op(A)'s dimensions must be multiples of the edge. */
#define ZEL_SPARSE_DECLARE_CONVERSIONS(p, T, W, I, to, Out, ...)                                          \
    ZEL_API int zel_sparse_##p##_convert_coo_to_##to##_##W(const zel_sparse_matrix_##W *A,                 \
                                                           int operation __VA_ARGS__, Out *out);          \
    ZEL_API int zel_sparse_##p##_convert_csr_to_##to##_##W(const zel_sparse_matrix_##W *A,                 \
                                                           int operation __VA_ARGS__, Out *out);          \
    ZEL_API int zel_sparse_##p##_convert_csc_to_##to##_##W(const zel_sparse_matrix_##W *A,                 \
                                                           int operation __VA_ARGS__, Out *out);          \
    ZEL_API int zel_sparse_##p##_convert_bsr_to_##to##_##W(const zel_sparse_matrix_##W *A,                 \
                                                           int operation __VA_ARGS__, Out *out);          \
    ZEL_API int zel_sparse_##p##_convert_any_to_##to##_##W(const zel_sparse_matrix_##W *A,                 \
                                                           int operation __VA_ARGS__, Out *out);

#define ZEL_SPARSE_DECLARE_HANDLE(p, T, W, I)                                                             \
    ZEL_API int zel_sparse_##p##_do_set_inplace_copy_##W(zel_sparse_matrix_##W *A, I flag);                \
    ZEL_API int zel_sparse_##p##_do_set_is_sycl_cpu_##W(zel_sparse_matrix_##W *A, I flag);                 \
    ZEL_API int zel_sparse_##p##_do_get_sorted_property_##W(const zel_sparse_matrix_##W *A, I *sorted);    \
    ZEL_API int zel_sparse_##p##_set_coo_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *row_indx, I *col_indx, T *values);            \
    ZEL_API int zel_sparse_##p##_set_csr_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *rows_start, I *rows_end, I *col_indx,         \
                                                         T *values);                                      \
    ZEL_API int zel_sparse_##p##_set_csc_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *cols_start, I *cols_end, I *row_indx,         \
                                                         T *values);                                      \
    ZEL_API int zel_sparse_##p##_set_bsr_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *rows_start, I *rows_end, I *col_indx,         \
                                                         I block_size, T *values);                        \
    /* Sorts the indices inside each row (column for CSC; COO by row, then column). */                    \
    ZEL_API int zel_sparse_##p##_do_order_##W(zel_sparse_matrix_##W *A);                                   \
    /* Operand check of two-matrix operations. */                                                         \
    ZEL_API int zel_sparse_##p##_check_input_data_##W(const zel_sparse_matrix_##W *A, int type_a,          \
                                                      int mode_a, int diag_a,                             \
                                                      const zel_sparse_matrix_##W *B, int type_b,         \
                                                      int mode_b, int diag_b, int allow_rectangular);     \
    ZEL_SPARSE_DECLARE_CONVERSIONS(p, T, W, I, csr, zel_sparse_csr_record_##W, )                            \
    ZEL_SPARSE_DECLARE_CONVERSIONS(p, T, W, I, csc, zel_sparse_csr_record_##W, )                            \
    ZEL_SPARSE_DECLARE_CONVERSIONS(p, T, W, I, coo, zel_sparse_coo_record_##W, )                            \
    ZEL_SPARSE_DECLARE_CONVERSIONS(p, T, W, I, bsr, zel_sparse_csr_record_##W, , I block_size,            \
                                   int block_layout)

#define ZEL_SPARSE_DECLARE_HANDLE_WIDTH(W, I)                                                             \
    /* Calls the typed do_order by data_type: 1 for a null handle, 5 for an unknown type. */              \
    ZEL_API int zel_sparse_order_##W(zel_sparse_matrix_##W *A);                                            \
    /* First node of a procedure list that serves the request (null: run the default). */                 \
    ZEL_API zel_sparse_proc_node_##W *zel_sparse_find_procedure_##W(zel_sparse_proc_node_##W *head,        \
                                                                    int operation,                        \
                                                                    zel_sparse_matrix_descr descr);        \
    ZEL_API zel_sparse_proc_node_##W *zel_sparse_find_mm_procedure_##W(zel_sparse_proc_node_##W *head,     \
                                                                       int operation,                     \
                                                                       zel_sparse_matrix_descr descr,     \
                                                                       int dense_layout);

ZEL_SPARSE_DECLARE_HANDLE(s, float, i4, int32_t)
ZEL_SPARSE_DECLARE_HANDLE(d, double, i4, int32_t)
ZEL_SPARSE_DECLARE_HANDLE(c, zel_complex8, i4, int32_t)
ZEL_SPARSE_DECLARE_HANDLE(z, zel_complex16, i4, int32_t)
ZEL_SPARSE_DECLARE_HANDLE(s, float, i8, int64_t)
ZEL_SPARSE_DECLARE_HANDLE(d, double, i8, int64_t)
ZEL_SPARSE_DECLARE_HANDLE(c, zel_complex8, i8, int64_t)
ZEL_SPARSE_DECLARE_HANDLE(z, zel_complex16, i8, int64_t)
ZEL_SPARSE_DECLARE_HANDLE_WIDTH(i4, int32_t)
ZEL_SPARSE_DECLARE_HANDLE_WIDTH(i8, int64_t)

/* Descriptor rule of the executors: 0, or 3 for a bad operation or descriptor. */
ZEL_API int zel_sparse_check_descriptor(int operation, zel_sparse_matrix_descr descr);
/* 0 for layout 101 or 102, else 3. */
ZEL_API int zel_sparse_check_dense_layout(int layout);

#undef ZEL_SPARSE_DECLARE_LIFECYCLE
#undef ZEL_SPARSE_DECLARE_LIFECYCLE_WIDTH
#undef ZEL_SPARSE_DECLARE_CONVERSIONS
#undef ZEL_SPARSE_DECLARE_HANDLE
#undef ZEL_SPARSE_DECLARE_HANDLE_WIDTH

ZEL_END_DECLS

#endif
