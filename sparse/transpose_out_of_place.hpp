// Conversions that replace a handle's matrix by op(A), or make a new handle holding it.
#pragma once

#include "copy.hpp"
#include "transpose_record.hpp"

namespace zel::sparse {

inline bool valid_operation(int operation)
{
    return operation >= ZEL_SPARSE_OPERATION_NON_TRANSPOSE && operation <= ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE;
}

// Owned arrays of op(A) in A's format: a packed copy for 10, the kernel's output otherwise.
template <class T, class I>
int op_arrays(const csr_t<I> &source, int32_t format, int operation, compressed_arrays<T, I> &out)
{
    if (operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE)
        return compact_arrays<T, I>(source, format, out);
    const I n_in = compressed_length<I>(format, source);
    const I n_out = other_length<I>(format, source);
    const I bs = block_edge<I>(format, source);
    const I nnz = stored_entries<I>(source, n_in);
    const I nparts = part_count<I>(n_in);
    const T *values = static_cast<const T *>(source.values);
    scratch_array<I> work(static_cast<size_t>(nparts) * n_out, page_alignment);
    out.offsets = scratch_array<I>(static_cast<size_t>(n_out) + 1, page_alignment);
    out.indices = scratch_array<I>(nnz, page_alignment);
    if (values != nullptr)
        out.values = scratch_array<T>(static_cast<size_t>(nnz) * bs * bs, page_alignment);
    if (!work || !out.offsets || !out.indices || (values != nullptr && !out.values))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    return transpose_matrix<T, I>(n_out, n_in, nnz, nparts, operation, source.index_base, bs, source.rows_start,
                                  source.rows_end, source.col_indx, values, out.offsets.get(), out.indices.get(),
                                  out.values.get(), work.get());
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
    if (!valid_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    csr_t<I> *record = csr_record<I>(handle);
    compressed_arrays<T, I> out;
    if (int status = op_arrays<T, I>(*record, handle->format, operation, out))
        return status;
    const I n = operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE ? compressed_length<I>(handle->format, *record)
                                                                : other_length<I>(handle->format, *record);
    const csr_t<I> before = *record;
    describe_op<I>(*record, before, operation, out.offsets[n] - record->index_base);
    adopt_arrays<T, I>(record, out);
    if (operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE) {
        std::swap(handle->rows, handle->cols);
        // The cached transpose described the old matrix.
        release_record<I>(handle->transposed);
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
    if (!valid_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const csr_t<I> &source = *csr_record<I>(handle);
    compressed_arrays<T, I> out;
    if (int status = op_arrays<T, I>(source, handle->format, operation, out))
        return status;
    scratch_array<handle_t<I>> created(1, page_alignment);
    if (!created)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    csr_t<I> *record = new_record<I>();
    if (record == nullptr)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;

    const bool swap = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    const I n = swap ? other_length<I>(handle->format, source) : compressed_length<I>(handle->format, source);
    describe_op<I>(*record, source, operation, out.offsets[n] - source.index_base);
    record->index_base = source.index_base;
    record->block_size = source.block_size;
    record->block_layout = source.block_layout;
    record->inplace_copy = 1;
    adopt_arrays<T, I>(record, out);

    handle_t<I> *target = created.get();
    std::memset(target, 0, sizeof *target);
    target->data_type = handle->data_type;
    target->format = handle->format;
    target->block_layout_request = handle->block_layout_request;
    target->rows = swap ? handle->cols : handle->rows;
    target->cols = swap ? handle->rows : handle->cols;
    target->data = record;
    *result = created.release();
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
    compressed_arrays<T, I> out;
    if (int status = compact_arrays<T, I>(*record, handle->format, out))
        return status;
    const I bs = record->block_size;
    const I nnz = out.offsets[record->rows] - record->index_base;
    if (T *blocks = out.values.get())
        for (int64_t b = 0; b < nnz; ++b) {
            T *block = blocks + b * bs * bs;
            for (I r = 0; r < bs; ++r)
                for (I s = r + 1; s < bs; ++s)
                    std::swap(block[r * bs + s], block[s * bs + r]);
        }
    record->nnz = nnz;
    record->block_layout = record->block_layout == 0 ? 1 : 0;
    adopt_arrays<T, I>(record, out);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
