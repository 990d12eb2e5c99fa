// Index ordering of a handle's record: indices increasing inside each row, values following,
// ties in stored order. Both forms run the shared counting sort.
#pragma once

#include <algorithm>

#include "zel/sparse_handle.h"
#include "zel_internal/sparse_formats.hpp"
#include "zel_internal/sparse_transpose.hpp"

namespace zel::sparse {

// Sorts the indices of every slice of a compressed record in place (blocks move whole in BSR).
template <class T, class I> int order_compressed(csr_t<I> &r, int32_t format)
{
    const compressed_view<T, I> a = view_of_record<T, I>(r, format);
    owned_arrays<T, I> sorted;
    if (int status = sort_slices(a, sorted))
        return status;
    const int64_t area = a.block_area();
    T *values = static_cast<T *>(r.values);
    for (I i = 0; i < a.slices; ++i) {
        const int64_t from = sorted.starts[i] - a.base, length = a.length(i), to = a.begin(i);
        std::copy(sorted.index.get() + from, sorted.index.get() + from + length, r.col_indx + to);
        if (values != nullptr)
            std::copy(sorted.values.get() + from * area, sorted.values.get() + (from + length) * area,
                      values + to * area);
    }
    r.sorted = 1;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Sorts coordinate pairs by row, then column: compressed by columns, then by rows.
template <class T, class I> int order_coo(coo_t<I> &r, const source_view<I> &view)
{
    csr_t<I> by_columns;
    if (int status = build_compressed<T, I>(view, ZEL_SPARSE_OPERATION_NON_TRANSPOSE, true, by_columns))
        return status;
    const owned_arrays_guard<I> release{by_columns};
    owned_arrays<T, I> by_rows;
    if (int status = transpose_into(view_of_record<T, I>(by_columns, ZEL_SPARSE_FORMAT_CSC), I(1), false, by_rows))
        return status;
    T *values = static_cast<T *>(r.values);
    for (I i = 0; i < by_rows.slices; ++i)
        for (I k = by_rows.starts[i] - view.base; k < by_rows.starts[i + 1] - view.base; ++k) {
            r.row_indx[k] = i + view.base;
            r.col_indx[k] = by_rows.index[k];
            if (values != nullptr)
                values[k] = by_rows.values[k];
        }
    r.sorted = 1;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class T, class I> int do_order(handle_t<I> *A)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (A->data == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    const bool coo = A->format == ZEL_SPARSE_FORMAT_COO;
    if ((coo ? static_cast<coo_t<I> *>(A->data)->sorted : static_cast<csr_t<I> *>(A->data)->sorted) != 0)
        return ZEL_SPARSE_STATUS_SUCCESS;
    source_view<I> view;
    if (!view_of(A, view))
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (coo && view.nnz <= 0) {
        static_cast<coo_t<I> *>(A->data)->sorted = 1;
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    if (coo)
        return order_coo<T, I>(*static_cast<coo_t<I> *>(A->data), view);
    return order_compressed<T, I>(*static_cast<csr_t<I> *>(A->data), A->format);
}

template <class I> int order_any(handle_t<I> *A)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    return with_value_type(A->data_type, ZEL_SPARSE_STATUS_INTERNAL_ERROR,
                           [&](auto value) { return do_order<decltype(value), I>(A); });
}

} // namespace zel::sparse
