// Exported members of the copy and transpose family: one-line shells over the templates.
#include "zel/sparse_transpose.h"
#include "zel_internal/members.hpp"

#include "transpose_out_of_place.hpp"

namespace zs = zel::sparse;

#define ZEL_SPARSE_TRANSPOSE_SHELLS(P, C, T, W, I)                                                        \
    ZEL_API int zel_sparse_##P##_copy_sparse_matrix_##W(zel_sparse_matrix_##W *handle)                   \
    {                                                                                                      \
        return zs::copy_sparse_matrix<T, I>(handle);                                                       \
    }                                                                                                      \
    ZEL_API int zel_sparse_##P##_transposeMatrix_##W(zel_sparse_matrix_##W *handle, int operation)       \
    {                                                                                                      \
        return zs::transpose_handle<T, I>(handle, operation);                                              \
    }                                                                                                      \
    ZEL_API int zel_sparse_##P##_transpose_matrix_##W(                                                    \
        I n_out, I n_in, I nnz, I nparts, int operation, I index_base, I block_size, const I *rows_start, \
        const I *rows_end, const I *col_indx, const C *values, I *out_rows_start, I *out_col_indx,       \
        C *out_values, I *work)                                                                            \
    {                                                                                                      \
        return zs::transpose_matrix<T, I>({n_in, n_out, index_base, block_size, rows_start, rows_end,      \
                                           col_indx, zel::as_cpp(values)}, nnz, nparts,                    \
                                          operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE,           \
                                          {out_rows_start, out_col_indx, zel::as_cpp(out_values)}, work);  \
    }                                                                                                      \
    ZEL_API int zel_sparse_##P##_convert_to_3_arrays_in_place_##W(zel_sparse_matrix_##W *handle)         \
    {                                                                                                      \
        return zs::convert_to_three_arrays<T, I>(handle);                                                  \
    }                                                                                                      \
    ZEL_API int zel_sparse_##P##_transpose_out_of_place_##W(zel_sparse_matrix_##W *handle, int operation) \
    {                                                                                                      \
        return zs::transpose_out_of_place<T, I>(handle, operation);                                        \
    }                                                                                                      \
    ZEL_API int zel_sparse_##P##_create_and_transpose_out_of_place_##W(                                   \
        const zel_sparse_matrix_##W *handle, int operation, zel_sparse_matrix_##W **result)              \
    {                                                                                                      \
        return zs::create_and_transpose_out_of_place<T, I>(handle, operation, result);                     \
    }                                                                                                      \
    ZEL_API int zel_sparse_##P##_convert_bsr_transpose_##W(zel_sparse_matrix_##W *handle)                \
    {                                                                                                      \
        return zs::convert_bsr_transpose<T, I>(handle);                                                    \
    }

extern "C" {

ZEL_SPARSE_MEMBERS(ZEL_SPARSE_TRANSPOSE_SHELLS)

#define ZEL_SPARSE_TRANSPOSE_WIDTH_SHELLS(W, I)                                                           \
    ZEL_API int zel_sparse_transposeMatrix_##W(zel_sparse_matrix_##W *handle) { return zs::transpose_dispatch<I>(handle); }
ZEL_SPARSE_WIDTHS(ZEL_SPARSE_TRANSPOSE_WIDTH_SHELLS)

} // extern "C"
