// Exported sparse handle lifecycle of the core: one-line shells over core/sparse/lifecycle.hpp.
#include "zel/sparse_handle.h"

#include "lifecycle.hpp"
#include "zel_internal/members.hpp"

namespace zs = zel::sparse;

#define ZEL_SPARSE_LIFECYCLE_SHELLS(P, C, T, W, I)                                                      \
    ZEL_API int zel_sparse_##P##_create_coo_##W(zel_sparse_matrix_##W **A, int index_base, I rows, I cols, \
                                                I nnz, I *row_indx, I *col_indx, C *values)                \
    { return zs::create_coo<T, I>(A, index_base, rows, cols, nnz, row_indx, col_indx, values); }          \
    ZEL_API int zel_sparse_##P##_create_csr_##W(zel_sparse_matrix_##W **A, int index_base, I rows, I cols, \
                                                I *rows_start, I *rows_end, I *col_indx, C *values)        \
    { return zs::create_compressed<T, I>(A, ZEL_SPARSE_FORMAT_CSR, index_base, rows, cols, 1, 0,        \
                                         {rows_start, rows_end, col_indx, values}); }                      \
    ZEL_API int zel_sparse_##P##_create_csc_##W(zel_sparse_matrix_##W **A, int index_base, I rows, I cols, \
                                                I *cols_start, I *cols_end, I *row_indx, C *values)        \
    { return zs::create_compressed<T, I>(A, ZEL_SPARSE_FORMAT_CSC, index_base, rows, cols, 1, 0,        \
                                         {cols_start, cols_end, row_indx, values}); }                      \
    ZEL_API int zel_sparse_##P##_create_bsr_##W(zel_sparse_matrix_##W **A, int index_base,                 \
                                                int block_layout, I rows, I cols, I block_size,            \
                                                I *rows_start, I *rows_end, I *col_indx, C *values)        \
    { return zs::create_compressed<T, I>(A, ZEL_SPARSE_FORMAT_BSR, index_base, rows, cols, block_size,  \
                                         block_layout, {rows_start, rows_end, col_indx, values}); }        \
    ZEL_API int zel_sparse_##P##_export_coo_##W(const zel_sparse_matrix_##W *A, int *index_base, I *rows,  \
                                                I *cols, I *nnz, I **row_indx, I **col_indx, C **values)   \
    { return zs::export_coo<T, I>(A, index_base, rows, cols, nnz, row_indx, col_indx,                   \
                                    reinterpret_cast<void **>(values)); }                                  \
    ZEL_API int zel_sparse_##P##_export_csr_##W(const zel_sparse_matrix_##W *A, int *index_base, I *rows,  \
                                                I *cols, I **rows_start, I **rows_end, I **col_indx,       \
                                                C **values)                                                \
    { return zs::export_compressed<T, I>(A, ZEL_SPARSE_FORMAT_CSR,                                     \
        {index_base, nullptr, rows, cols, nullptr, rows_start, rows_end, col_indx,                         \
         reinterpret_cast<void **>(values)}); }                           \
    ZEL_API int zel_sparse_##P##_export_csc_##W(const zel_sparse_matrix_##W *A, int *index_base, I *rows,  \
                                                I *cols, I **cols_start, I **cols_end, I **row_indx,       \
                                                C **values)                                                \
    { return zs::export_compressed<T, I>(A, ZEL_SPARSE_FORMAT_CSC,                                     \
        {index_base, nullptr, rows, cols, nullptr, cols_start, cols_end, row_indx,                         \
         reinterpret_cast<void **>(values)}); }                           \
    ZEL_API int zel_sparse_##P##_export_bsr_##W(const zel_sparse_matrix_##W *A, int *index_base,           \
                                                int *block_layout, I *rows, I *cols, I *block_size,        \
                                                I **rows_start, I **rows_end, I **col_indx, C **values)    \
    { return zs::export_compressed<T, I>(A, ZEL_SPARSE_FORMAT_BSR,                                     \
        {index_base, block_layout, rows, cols, block_size, rows_start, rows_end, col_indx,                 \
         reinterpret_cast<void **>(values)}); }

#define ZEL_SPARSE_LIFECYCLE_WIDTH_SHELLS(W, I)                                                           \
    ZEL_API int zel_sparse_copy_##W(const zel_sparse_matrix_##W *source, zel_sparse_matrix_##W **dest)     \
    { return zs::copy_any<I>(source, dest); }                                                              \
    ZEL_API int zel_sparse_convert_csr_##W(const zel_sparse_matrix_##W *source, int operation,             \
                                           zel_sparse_matrix_##W **dest)                                   \
    { return zs::convert_any<I>(source, false, 1, 0, operation, dest); }                                   \
    ZEL_API int zel_sparse_convert_bsr_##W(const zel_sparse_matrix_##W *source, I block_size,              \
                                           int block_layout, int operation, zel_sparse_matrix_##W **dest)  \
    { return zs::convert_any<I>(source, true, block_size, block_layout, operation, dest); }                \
    ZEL_API int zel_sparse_destroy_##W(zel_sparse_matrix_##W *A) { return zs::destroy<I>(A); }             \
    ZEL_API int zel_sparse_set_mv_hint_##W(zel_sparse_matrix_##W *A, int operation,                        \
                                           zel_sparse_matrix_descr descr, I expected_calls)               \
    { return zs::set_mv_hint<I>(A, operation, descr, expected_calls); }                                    \
    ZEL_API int zel_sparse_set_mm_hint_##W(zel_sparse_matrix_##W *A, int operation,                        \
                                           zel_sparse_matrix_descr descr, int layout, I expected_calls)   \
    { return zs::set_mm_hint<I>(A, operation, descr, layout, expected_calls); }                            \
    ZEL_API int zel_sparse_set_memory_hint_##W(zel_sparse_matrix_##W *A, int policy)                       \
    { return zs::set_memory_hint<I>(A, policy); }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SPARSE_LIFECYCLE_SHELLS)
ZEL_SPARSE_WIDTHS(ZEL_SPARSE_LIFECYCLE_WIDTH_SHELLS)
}
