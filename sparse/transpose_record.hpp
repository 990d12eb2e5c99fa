// The transposed record cached in a handle: built once, shared by every op(A) request.
#pragma once

#include "transpose_kernel.hpp"

namespace zel::sparse {

// Parts for the kernel: one per thread, never more than there are rows, at least one.
template <class I> I part_count(I n_in)
{
    const I threads = static_cast<I>(std::max(zel_serv_get_max_threads(), 1));
    return std::max<I>(std::min(threads, n_in), 1);
}

// Stored entries of a compressed record: the end of its last row.
template <class I> I stored_entries(const csr_t<I> &record, I n_in)
{
    return n_in > 0 ? record.rows_end[n_in - 1] - record.index_base : I(0);
}

// A later request on a complex handle's existing record: adds the missing one of values
// (operation 11) and aux (operation 12) by conjugating the other; the structure stays.
template <class T, class I> int add_missing_values(const handle_t<I> *handle, int operation)
{
    csr_t<I> *t = handle->transposed;
    if (operation != ZEL_SPARSE_OPERATION_TRANSPOSE && operation != ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE)
        return ZEL_SPARSE_STATUS_SUCCESS;
    const bool want_values = operation == ZEL_SPARSE_OPERATION_TRANSPOSE;
    void *&missing = want_values ? t->values : t->aux;
    const T *other = static_cast<const T *>(want_values ? t->aux : t->values);
    const csr_t<I> *source = csr_record<I>(handle);
    if (missing != nullptr || source == nullptr || source->values == nullptr || other == nullptr)
        return ZEL_SPARSE_STATUS_SUCCESS;
    const size_t count = static_cast<size_t>(t->nnz) * t->block_size * t->block_size;
    T *added = alloc_array<T>(count);
    if (added == nullptr)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (size_t k = 0; k < count; ++k)
        added[k] = conjugated(other[k]);
    missing = added;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Builds handle->transposed for op(A) (operation 11 or 12) unless it exists.
template <class T, class I> int transpose_handle(handle_t<I> *handle, int operation)
{
    if (handle == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    const int32_t format = handle->format;
    if (format < ZEL_SPARSE_FORMAT_CSR || format > ZEL_SPARSE_FORMAT_BSR)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (handle->transposed != nullptr) {
        if constexpr (is_complex_v<T>)
            return add_missing_values<T, I>(handle, operation);
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    const csr_t<I> *source = csr_record<I>(handle);
    if (source == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;

    const I n_in = compressed_length<I>(format, *source);
    const I n_out = other_length<I>(format, *source);
    const I bs = block_edge<I>(format, *source);
    const I nnz = stored_entries<I>(*source, n_in);
    const I nparts = part_count<I>(n_in);
    const T *values = static_cast<const T *>(source->values);

    scratch_array<I> work(static_cast<size_t>(nparts) * n_out, page_alignment);
    compressed_arrays<T, I> out{scratch_array<I>(static_cast<size_t>(n_out) + 1, page_alignment),
                                scratch_array<I>(nnz, page_alignment), scratch_array<T>()};
    if (values != nullptr)
        out.values = scratch_array<T>(static_cast<size_t>(nnz) * bs * bs, page_alignment);
    if (!work || !out.offsets || !out.indices || (values != nullptr && !out.values))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    csr_t<I> *t = new_record<I>();
    if (t == nullptr)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;

    const int status = transpose_matrix<T, I>(n_out, n_in, nnz, nparts, operation, source->index_base, bs,
                                              source->rows_start, source->rows_end, source->col_indx, values,
                                              out.offsets.get(), out.indices.get(), out.values.get(), work.get());
    if (status != ZEL_SPARSE_STATUS_SUCCESS) {
        release_record<I>(t);
        return status;
    }
    t->sorted = 1;
    t->rows = source->cols;
    t->cols = source->rows;
    t->nnz = out.offsets[n_out] - source->index_base;
    t->index_base = source->index_base;
    t->block_size = format == ZEL_SPARSE_FORMAT_BSR ? source->block_size : 1;
    t->block_layout = format == ZEL_SPARSE_FORMAT_BSR ? source->block_layout : 0;
    t->inplace_copy = 1;
    adopt_arrays<T, I>(t, out);
    // Complex handles keep op 11 values in values and the conjugated ones in aux.
    if (is_complex_v<T> && operation != ZEL_SPARSE_OPERATION_TRANSPOSE)
        std::swap(t->values, t->aux);
    handle->transposed = t;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The member chosen by data_type (0 d, 1 s, 2 z, 3 c), for op 11.
template <class I> int transpose_dispatch(handle_t<I> *handle)
{
    constexpr int op = ZEL_SPARSE_OPERATION_TRANSPOSE;
    switch (handle->data_type) {
    case ZEL_SPARSE_DATA_D: return transpose_handle<double, I>(handle, op);
    case ZEL_SPARSE_DATA_S: return transpose_handle<float, I>(handle, op);
    case ZEL_SPARSE_DATA_Z: return transpose_handle<std::complex<double>, I>(handle, op);
    case ZEL_SPARSE_DATA_C: return transpose_handle<std::complex<float>, I>(handle, op);
    default: return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    }
}

} // namespace zel::sparse
