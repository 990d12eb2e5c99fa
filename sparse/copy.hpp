// Library-owned copies of a handle's compressed arrays.
#pragma once

#include "transpose_internal.hpp"

namespace zel::sparse {

// dst = src, count elements: one block move, or strictly forward when the regions overlap.
template <class T> void copy_forward(T *dst, const T *src, size_t count)
{
    const auto *d = reinterpret_cast<const char *>(dst);
    const auto *s = reinterpret_cast<const char *>(src);
    const size_t bytes = count * sizeof(T);
    if (d + bytes <= s || s + bytes <= d) {
        if (bytes != 0)
            std::memcpy(dst, src, bytes);
        return;
    }
    for (size_t k = 0; k < count; ++k)
        dst[k] = src[k];
}

// Checks shared by copy and conversion: 5 for a missing handle or record, 6 for COO.
template <class I> int check_compressed_handle(const handle_t<I> *handle)
{
    if (handle == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (handle->format == ZEL_SPARSE_FORMAT_COO)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (handle->data == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Owned three-array copy of a record's rows_start/rows_end ranges, rows packed end to end.
template <class T, class I>
int compact_arrays(const csr_t<I> &record, int32_t format, compressed_arrays<T, I> &out)
{
    const I n = compressed_length<I>(format, record);
    const int64_t bs2 = static_cast<int64_t>(block_edge<I>(format, record)) * block_edge<I>(format, record);
    const I base = record.index_base;
    I total = 0;
    for (I i = 0; i < n; ++i)
        total += record.rows_end[i] - record.rows_start[i];

    const T *values = static_cast<const T *>(record.values);
    out.offsets = scratch_array<I>(static_cast<size_t>(n) + 1, page_alignment);
    out.indices = scratch_array<I>(total, page_alignment);
    if (!out.offsets || !out.indices)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (values != nullptr) {
        out.values = scratch_array<T>(static_cast<size_t>(total * bs2), page_alignment);
        if (!out.values)
            return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    }
    out.offsets[0] = base;
    for (I i = 0; i < n; ++i) {
        const I begin = record.rows_start[i] - base;
        const I length = record.rows_end[i] - record.rows_start[i];
        const I at = out.offsets[i] - base;
        copy_forward(out.indices.get() + at, record.col_indx + begin, length);
        if (values != nullptr)
            copy_forward(out.values.get() + at * bs2, values + begin * bs2, length * bs2);
        out.offsets[i + 1] = out.offsets[i] + length;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Turns the record (four- or three-array) into the owned three-array form.
template <class T, class I> int convert_to_three_arrays(handle_t<I> *handle)
{
    if (int status = check_compressed_handle<I>(handle))
        return status;
    csr_t<I> *record = csr_record<I>(handle);
    compressed_arrays<T, I> out;
    if (int status = compact_arrays<T, I>(*record, handle->format, out))
        return status;
    record->nnz = out.offsets[compressed_length<I>(handle->format, *record)] - record->index_base;
    adopt_arrays<T, I>(record, out);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Replaces the record's arrays by library-owned copies.
template <class T, class I> int copy_sparse_matrix(handle_t<I> *handle)
{
    if (int status = check_compressed_handle<I>(handle))
        return status;
    csr_t<I> *record = csr_record<I>(handle);
    if (record->inplace_copy == 0)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (record->three_array == 0)
        return convert_to_three_arrays<T, I>(handle);

    const I n = compressed_length<I>(handle->format, *record);
    const I bs = block_edge<I>(handle->format, *record);
    const I nnz = record->rows_start[n] - record->index_base;
    const T *values = static_cast<const T *>(record->values);
    compressed_arrays<T, I> out{scratch_array<I>(static_cast<size_t>(n) + 1, page_alignment),
                                scratch_array<I>(nnz, page_alignment), scratch_array<T>()};
    if (!out.offsets || !out.indices)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    const size_t count = static_cast<size_t>(nnz) * bs * bs;
    if (values != nullptr) {
        out.values = scratch_array<T>(count, page_alignment);
        if (!out.values)
            return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    }
    copy_forward(out.offsets.get(), record->rows_start, static_cast<size_t>(n) + 1);
    copy_forward(out.indices.get(), record->col_indx, static_cast<size_t>(nnz));
    if (values != nullptr)
        copy_forward(out.values.get(), values, count);
    // The library's own previous copies (a second call) are released; a caller's never are.
    adopt_arrays<T, I>(record, out);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
