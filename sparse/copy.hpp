// Library-owned copies of a handle's compressed arrays.
#pragma once

#include "layer_records.hpp"

namespace zel::sparse {

// Turns the record (four- or three-array) into the owned three-array form.
template <class T, class I> int convert_to_three_arrays(handle_t<I> *handle)
{
    if (int status = check_compressed_handle<I>(handle))
        return status;
    csr_t<I> *record = csr_record<I>(handle);
    owned_arrays<T, I> out;
    if (int status = pack_slices(view_of_record<T, I>(*record, handle->format), out))
        return status;
    record->nnz = out.stored();
    adopt_arrays(*record, out);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Replaces the record's arrays by library-owned copies. The library's own previous copies (a
// second call) are released; a caller's never are.
template <class T, class I> int copy_sparse_matrix(handle_t<I> *handle)
{
    if (int status = check_compressed_handle<I>(handle))
        return status;
    csr_t<I> *record = csr_record<I>(handle);
    if (record->inplace_copy == 0)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (record->three_array == 0)
        return convert_to_three_arrays<T, I>(handle);
    owned_arrays<T, I> out;
    if (int status = pack_slices(view_of_record<T, I>(*record, handle->format), out))
        return status;
    adopt_arrays(*record, out);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
