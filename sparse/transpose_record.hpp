// The transposed record cached in a handle: built once, shared by every op(A) request.
#pragma once

#include "layer_records.hpp"

namespace zel::sparse {

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
    const auto area = checked_mul(t->block_size, t->block_size);
    const auto count = area ? checked_mul(t->nnz, *area) : std::nullopt;
    scratch_array<T> added;
    if (count)
        added = scratch_array<T>(size_t(*count), alignment);
    if (!added)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (int64_t k = 0; k < *count; ++k)
        added[k] = conj_if(other[k], true);
    missing = added.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Builds handle->transposed for op(A) unless it exists. Complex handles keep the op 11 values
// in values and the conjugated ones in aux.
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
    owned_arrays<T, I> out;
    if (int status = transposed_arrays<T, I>(*source, format, operation, out))
        return status;
    csr_t<I> *t = new_record_with_opt_records<I>();
    if (t == nullptr)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    t->sorted = 1;
    t->rows = source->cols;
    t->cols = source->rows;
    t->nnz = out.stored();
    t->index_base = source->index_base;
    t->block_size = block_edge<I>(format, *source);
    t->block_layout = format == ZEL_SPARSE_FORMAT_BSR ? source->block_layout : 0;
    t->inplace_copy = 1;
    adopt_arrays(*t, out);
    if (is_complex_v<T> && operation != ZEL_SPARSE_OPERATION_TRANSPOSE)
        std::swap(t->values, t->aux);
    handle->transposed = t;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The member chosen by data_type, for op 11.
template <class I> int transpose_dispatch(handle_t<I> *handle)
{
    return with_value_type(handle->data_type, ZEL_SPARSE_STATUS_NOT_SUPPORTED, [&](auto value) {
        return transpose_handle<decltype(value), I>(handle, ZEL_SPARSE_OPERATION_TRANSPOSE);
    });
}

} // namespace zel::sparse
