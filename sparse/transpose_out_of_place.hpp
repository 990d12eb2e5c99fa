// Conversions that replace a handle's matrix by op(A), or make a new handle holding it.
#pragma once

#include "copy.hpp"
#include "transpose_record.hpp"

namespace zel::sparse {

// Owned arrays of op(A) in A's format: a packed copy for 10, the transposition otherwise.
template <class T, class I>
int op_arrays(const csr_t<I> &source, int32_t format, int operation, owned_arrays<T, I> &out)
{
    if (operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE)
        return pack_slices(view_of_record<T, I>(source, format), out);
    return transposed_arrays<T, I>(source, format, operation, out);
}

// Record fields of op(A) from A's: dimensions swap unless operation is 10.
template <class I> void describe_op(csr_t<I> &target, const csr_t<I> &source, int operation, I nnz)
{
    const bool swap = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    target.sorted = swap ? 1 : source.sorted;
    target.rows = swap ? source.cols : source.rows;
    target.cols = swap ? source.rows : source.cols;
    target.nnz = nnz;
}

// The handle's matrix becomes op(A), in the same format, on owned arrays.
template <class T, class I> int transpose_out_of_place(handle_t<I> *handle, int operation)
{
    if (int status = check_compressed_handle<I>(handle))
        return status;
    if (!is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    csr_t<I> *record = csr_record<I>(handle);
    owned_arrays<T, I> out;
    if (int status = op_arrays<T, I>(*record, handle->format, operation, out))
        return status;
    const csr_t<I> before = *record;
    describe_op<I>(*record, before, operation, out.stored());
    adopt_arrays(*record, out);
    if (operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE) {
        std::swap(handle->rows, handle->cols);
        // The cached transpose described the old matrix.
        free_record<I>(handle->transposed);
        handle->transposed = nullptr;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// *result = a new handle holding op(A), with its own record and owned arrays.
template <class T, class I>
int create_and_transpose_out_of_place(const handle_t<I> *handle, int operation, handle_t<I> **result)
{
    if (result == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (int status = check_compressed_handle<I>(handle))
        return status;
    if (!is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const csr_t<I> &source = *csr_record<I>(handle);
    owned_arrays<T, I> out;
    if (int status = op_arrays<T, I>(source, handle->format, operation, out))
        return status;
    csr_t<I> *record = new_record_with_opt_records<I>();
    if (record == nullptr)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    describe_op<I>(*record, source, operation, out.stored());
    record->index_base = source.index_base;
    record->block_size = source.block_size;
    record->block_layout = source.block_layout;
    record->inplace_copy = 1;
    adopt_arrays(*record, out);
    const bool swap = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    if (int status = install_record<I>(result, handle->data_type, handle->format, swap ? handle->cols : handle->rows,
                                       swap ? handle->rows : handle->cols, record)) {
        free_record<I>(record);
        return status;
    }
    (*result)->block_layout_request = handle->block_layout_request;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Same BSR matrix with every block stored in the other order (block_layout 0 <-> 1).
template <class T, class I> int convert_bsr_transpose(handle_t<I> *handle)
{
    if (int status = check_compressed_handle<I>(handle))
        return status;
    if (handle->format != ZEL_SPARSE_FORMAT_BSR)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    csr_t<I> *record = csr_record<I>(handle);
    owned_arrays<T, I> out;
    if (int status = pack_slices(view_of_record<T, I>(*record, handle->format), out))
        return status;
    const int64_t bs = record->block_size;
    const I nnz = out.stored();
    if (T *blocks = out.values.get())
        for (int64_t b = 0; b < nnz; ++b) {
            T *block = blocks + b * bs * bs;
            for (int64_t r = 0; r < bs; ++r)
                for (int64_t s = r + 1; s < bs; ++s)
                    std::swap(block[r * bs + s], block[s * bs + r]);
        }
    record->nnz = nnz;
    record->block_layout = record->block_layout == 0 ? 1 : 0;
    adopt_arrays(*record, out);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
