// Exported handle accessors, checks, ordering and conversions of the layer: one-line shells over
// sparse/handle.hpp, sparse/order.hpp and sparse/convert.hpp.
#include "zel/sparse_handle.h"

#include "convert.hpp"
#include "zel_internal/members.hpp"
#include "handle.hpp"
#include "order.hpp"

namespace zs = zel::sparse;

// The four conversions out of one source format (code -1: the handle's own, for convert_any).
#define ZEL_SPARSE_CONVERT_SHELLS(P, T, W, I, from, code)                                               \
    ZEL_API int zel_sparse_##P##_convert_##from##_to_csr_##W(const zel_sparse_matrix_##W *A, int operation, \
                                                             zel_sparse_csr_record_##W *out)              \
    { return zs::convert_to_csr<T, I>(A, code, operation, out); }                                        \
    ZEL_API int zel_sparse_##P##_convert_##from##_to_csc_##W(const zel_sparse_matrix_##W *A, int operation, \
                                                             zel_sparse_csr_record_##W *out)              \
    { return zs::convert_to_csc<T, I>(A, code, operation, out); }                                        \
    ZEL_API int zel_sparse_##P##_convert_##from##_to_coo_##W(const zel_sparse_matrix_##W *A, int operation, \
                                                             zel_sparse_coo_record_##W *out)              \
    { return zs::convert_to_coo<T, I>(A, code, operation, out); }                                        \
    ZEL_API int zel_sparse_##P##_convert_##from##_to_bsr_##W(const zel_sparse_matrix_##W *A, int operation, \
                                                             I block_size, int block_layout,              \
                                                             zel_sparse_csr_record_##W *out)              \
    { return zs::convert_to_bsr<T, I>(A, code, operation, block_size, block_layout, out); }

#define ZEL_SPARSE_HANDLE_SHELLS(P, C, T, W, I)                                                         \
    ZEL_API int zel_sparse_##P##_do_set_inplace_copy_##W(zel_sparse_matrix_##W *A, I flag)                 \
    { return zs::set_inplace_copy<I>(A, flag); }                                                           \
    ZEL_API int zel_sparse_##P##_do_set_is_sycl_cpu_##W(zel_sparse_matrix_##W *A, I flag)                  \
    { return zs::set_is_sycl_cpu<I>(A, flag); }                                                            \
    ZEL_API int zel_sparse_##P##_do_get_sorted_property_##W(const zel_sparse_matrix_##W *A, I *sorted)     \
    { return zs::get_sorted_property<I>(A, sorted); }                                                      \
    ZEL_API int zel_sparse_##P##_set_coo_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *row_indx, I *col_indx, C *values)             \
    { return zs::set_coo_data_arrays<I>(A, {is_sycl_cpu, owns_arrays, sorted, index_base}, row_indx,      \
                                        col_indx, values); }                                               \
    ZEL_API int zel_sparse_##P##_set_csr_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *rows_start, I *rows_end, I *col_indx,         \
                                                         C *values)                                       \
    { return zs::set_compressed_data_arrays<I>(A, false, {is_sycl_cpu, owns_arrays, sorted, index_base},   \
                                               {rows_start, rows_end, col_indx, values}); }                  \
    ZEL_API int zel_sparse_##P##_set_csc_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *cols_start, I *cols_end, I *row_indx,         \
                                                         C *values)                                       \
    { return zs::set_compressed_data_arrays<I>(A, true, {is_sycl_cpu, owns_arrays, sorted, index_base},    \
                                               {cols_start, cols_end, row_indx, values}); }                  \
    ZEL_API int zel_sparse_##P##_set_bsr_data_arrays_##W(zel_sparse_matrix_##W *A, I is_sycl_cpu,          \
                                                         I owns_arrays, I sorted, I index_base,           \
                                                         I *rows_start, I *rows_end, I *col_indx, I,      \
                                                         C *values)                                       \
    { return zs::set_bsr_data_arrays<I>(A, {is_sycl_cpu, owns_arrays, sorted, index_base},                \
                                        {rows_start, rows_end, col_indx, values}); }                                     \
    ZEL_API int zel_sparse_##P##_do_order_##W(zel_sparse_matrix_##W *A) { return zs::do_order<T, I>(A); } \
    ZEL_API int zel_sparse_##P##_check_input_data_##W(const zel_sparse_matrix_##W *A, int type_a,          \
                                                      int mode_a, int diag_a,                             \
                                                      const zel_sparse_matrix_##W *B, int type_b,         \
                                                      int mode_b, int diag_b, int allow_rectangular)      \
    { return zs::check_input_data<I>(A, {type_a, mode_a, diag_a}, B, {type_b, mode_b, diag_b},             \
                                     allow_rectangular); }                                                 \
    ZEL_SPARSE_CONVERT_SHELLS(P, T, W, I, coo, ZEL_SPARSE_FORMAT_COO)                                   \
    ZEL_SPARSE_CONVERT_SHELLS(P, T, W, I, csr, ZEL_SPARSE_FORMAT_CSR)                                   \
    ZEL_SPARSE_CONVERT_SHELLS(P, T, W, I, csc, ZEL_SPARSE_FORMAT_CSC)                                   \
    ZEL_SPARSE_CONVERT_SHELLS(P, T, W, I, bsr, ZEL_SPARSE_FORMAT_BSR)                                   \
    ZEL_SPARSE_CONVERT_SHELLS(P, T, W, I, any, zs::any_format)

#define ZEL_SPARSE_HANDLE_WIDTH_SHELLS(W, I)                                                              \
    ZEL_API int zel_sparse_order_##W(zel_sparse_matrix_##W *A) { return zs::order_any<I>(A); }             \
    ZEL_API zel_sparse_proc_node_##W *zel_sparse_find_procedure_##W(zel_sparse_proc_node_##W *head,        \
                                                                    int operation,                        \
                                                                    zel_sparse_matrix_descr descr)         \
    { return zs::find_procedure<I>(head, operation, descr, false, 0); }                                    \
    ZEL_API zel_sparse_proc_node_##W *zel_sparse_find_mm_procedure_##W(zel_sparse_proc_node_##W *head,     \
                                                                       int operation,                     \
                                                                       zel_sparse_matrix_descr descr,     \
                                                                       int dense_layout)                  \
    { return zs::find_procedure<I>(head, operation, descr, true, dense_layout); }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SPARSE_HANDLE_SHELLS)
ZEL_SPARSE_WIDTHS(ZEL_SPARSE_HANDLE_WIDTH_SHELLS)

ZEL_API int zel_sparse_check_descriptor(int operation, zel_sparse_matrix_descr descr)
{
    return zs::check_descriptor(operation, descr);
}

ZEL_API int zel_sparse_check_dense_layout(int layout) { return zs::check_dense_layout(layout); }
}
