// Exported members of the copy and transpose family: one-line shells over the templates.
#include "zel/sparse_transpose.h"
#include "zel_internal/members.hpp"

#include "transpose_out_of_place.hpp"

namespace sp = zel::sparse;

#define ZEL_SPARSE_TRANSPOSE_SHELLS(L, C, T, W, I)                                                        \
    ZEL_API int zel_sparse_##L##_copy_sparse_matrix_##W(zel_sparse_matrix_##W *handle)                   \
    {                                                                                                      \
        return sp::copy_sparse_matrix<T, I>(handle);                                                       \
    }                                                                                                      \
    ZEL_API int zel_sparse_##L##_transposeMatrix_##W(zel_sparse_matrix_##W *handle, int operation)       \
    {                                                                                                      \
        return sp::transpose_handle<T, I>(handle, operation);                                              \
    }                                                                                                      \
    ZEL_API int zel_sparse_##L##_transpose_matrix_##W(                                                    \
        I n_out, I n_in, I nnz, I nparts, int operation, I index_base, I block_size, const I *rows_start, \
        const I *rows_end, const I *col_indx, const C *values, I *out_rows_start, I *out_col_indx,       \
        C *out_values, I *work)                                                                            \
    {                                                                                                      \
        return sp::transpose_matrix<T, I>(n_out, n_in, nnz, nparts, operation, index_base, block_size,    \
                                          rows_start, rows_end, col_indx, zel::as_cpp(values),            \
                                          out_rows_start, out_col_indx, zel::as_cpp(out_values), work);   \
    }                                                                                                      \
    ZEL_API int zel_sparse_##L##_convert_to_3_arrays_in_place_##W(zel_sparse_matrix_##W *handle)         \
    {                                                                                                      \
        return sp::convert_to_three_arrays<T, I>(handle);                                                  \
    }                                                                                                      \
    ZEL_API int zel_sparse_##L##_transpose_out_of_place_##W(zel_sparse_matrix_##W *handle, int operation) \
    {                                                                                                      \
        return sp::transpose_out_of_place<T, I>(handle, operation);                                        \
    }                                                                                                      \
    ZEL_API int zel_sparse_##L##_create_and_transpose_out_of_place_##W(                                   \
        const zel_sparse_matrix_##W *handle, int operation, zel_sparse_matrix_##W **result)              \
    {                                                                                                      \
        return sp::create_and_transpose_out_of_place<T, I>(handle, operation, result);                     \
    }                                                                                                      \
    ZEL_API int zel_sparse_##L##_convert_bsr_transpose_##W(zel_sparse_matrix_##W *handle)                \
    {                                                                                                      \
        return sp::convert_bsr_transpose<T, I>(handle);                                                    \
    }

extern "C" {

ZEL_SPARSE_MEMBERS(ZEL_SPARSE_TRANSPOSE_SHELLS)

ZEL_API int zel_sparse_transposeMatrix_i4(zel_sparse_matrix_i4 *handle) { return sp::transpose_dispatch<int32_t>(handle); }
ZEL_API int zel_sparse_transposeMatrix_i8(zel_sparse_matrix_i8 *handle) { return sp::transpose_dispatch<int64_t>(handle); }

} // extern "C"
