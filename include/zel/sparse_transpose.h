/* Zelmath sparse BLAS: copies of a handle's arrays and its cached transposed structure.
 * One member per value type (s, d, c, z) and index width (i4, i8); each returns a status
 * value of sparse_types.h. */
#ifndef ZEL_SPARSE_TRANSPOSE_H
#define ZEL_SPARSE_TRANSPOSE_H

#include "zel/sparse_types.h"

ZEL_BEGIN_DECLS

#define ZEL_SPARSE_TRANSPOSE_DECLARE(L, T, W, I)                                                          \
    /* Replaces the record's arrays by library-owned copies (three-array form, owns_arrays 1);         \
     * 5 for a null handle, a missing record or inplace_copy 0, 6 for COO, 2 when out of memory. */    \
    ZEL_API int zel_sparse_##L##_copy_sparse_matrix_##W(zel_sparse_matrix_##W *handle);                 \
    /* Builds once and caches the transposed record in handle->transposed for operation 11 or 12;     \
     * the complex members keep the transposed values in values and the conjugated ones in aux. */    \
    ZEL_API int zel_sparse_##L##_transposeMatrix_##W(zel_sparse_matrix_##W *handle, int operation);     \
    /* out = op(source) of compressed arrays by a stable counting sort in nparts parts; work holds    \
     * nparts * n_out indices, out_rows_start n_out + 1; values may be null (structure only). */      \
    ZEL_API int zel_sparse_##L##_transpose_matrix_##W(                                                  \
        I n_out, I n_in, I nnz, I nparts, int operation, I index_base, I block_size, const I *rows_start, \
        const I *rows_end, const I *col_indx, const T *values, I *out_rows_start, I *out_col_indx,     \
        T *out_values, I *work);                                                                       \
    /* Turns a four-array record into the library-owned three-array form (owns_arrays 1). */          \
    ZEL_API int zel_sparse_##L##_convert_to_3_arrays_in_place_##W(zel_sparse_matrix_##W *handle);       \
    /* Replaces the handle's matrix by op(A) in the same format, owning the new arrays; a cached      \
     * transposed record describes the old matrix and is released. */                                 \
    ZEL_API int zel_sparse_##L##_transpose_out_of_place_##W(zel_sparse_matrix_##W *handle, int operation); \
    /* *result = a new handle holding op(A) in A's format with library-owned arrays. */              \
    ZEL_API int zel_sparse_##L##_create_and_transpose_out_of_place_##W(                                 \
        const zel_sparse_matrix_##W *handle, int operation, zel_sparse_matrix_##W **result);           \
    /* Transposes every block of a BSR handle in place of its arrays (owning copies), switching      \
     * block_layout between 0 and 1: the same matrix in the other block order. */                     \
    ZEL_API int zel_sparse_##L##_convert_bsr_transpose_##W(zel_sparse_matrix_##W *handle);

ZEL_SPARSE_TRANSPOSE_DECLARE(s, float, i4, int32_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(d, double, i4, int32_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(c, zel_complex8, i4, int32_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(z, zel_complex16, i4, int32_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(s, float, i8, int64_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(d, double, i8, int64_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(c, zel_complex8, i8, int64_t)
ZEL_SPARSE_TRANSPOSE_DECLARE(z, zel_complex16, i8, int64_t)

#undef ZEL_SPARSE_TRANSPOSE_DECLARE

/* Builds the transposed record (operation 11) of the member chosen by data_type; 6 for an
 * unknown data_type. The handle is not tested for null. */
ZEL_API int zel_sparse_transposeMatrix_i4(zel_sparse_matrix_i4 *handle);
ZEL_API int zel_sparse_transposeMatrix_i8(zel_sparse_matrix_i8 *handle);

ZEL_END_DECLS

#endif
