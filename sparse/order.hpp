// Index ordering of a handle's record: indices increasing inside each row, values following.
#pragma once

#include <algorithm>

#include "zel/sparse_handle.h"
#include "zel_internal/sparse_formats.hpp"

namespace zel::sparse {

// Puts positions [0, length) in the order `before` gives, ties by position, then moves each
// index and its group of `group` values accordingly.
template <class T, class I, class Before>
void permute_slice(I length, I *perm, I *index, I *index_tmp, T *values, T *values_tmp, int64_t group, Before before)
{
    if (length <= 0)
        return;
    for (I k = 0; k < length; ++k)
        perm[k] = k;
    std::sort(perm, perm + length, [&](I x, I y) { return before(x, y) || (!before(y, x) && x < y); });
    std::copy(index, index + length, index_tmp);
    for (I k = 0; k < length; ++k)
        index[k] = index_tmp[perm[k]];
    if (values == nullptr)
        return;
    std::copy(values, values + length * group, values_tmp);
    for (I k = 0; k < length; ++k)
        std::copy(values_tmp + perm[k] * group, values_tmp + (perm[k] + 1) * group, values + k * group);
}

// Sorts the indices of every slice of a compressed record (blocks move whole in BSR).
template <class T, class I> int order_compressed(csr_t<I> &r, int32_t format)
{
    const I n = format == ZEL_SPARSE_FORMAT_CSC ? r.cols : r.rows, base = r.index_base;
    const int64_t group = format == ZEL_SPARSE_FORMAT_BSR ? int64_t(r.block_size) * r.block_size : 1;
    I longest = 0;
    for (I i = 0; i < n; ++i)
        longest = std::max<I>(longest, r.rows_end[i] - r.rows_start[i]);
    scratch_array<I> perm(std::max<I>(longest, 1), alignment), index_tmp(std::max<I>(longest, 1), alignment);
    scratch_array<T> values_tmp;
    if (r.values != nullptr)
        values_tmp = scratch_array<T>(std::max<int64_t>(longest * group, 1), alignment);
    if (!perm || !index_tmp || (r.values != nullptr && !values_tmp))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I i = 0; i < n; ++i) {
        const I first = r.rows_start[i] - base;
        I *index = r.col_indx + first;
        T *values = r.values ? static_cast<T *>(r.values) + first * group : nullptr;
        permute_slice<T, I>(r.rows_end[i] - r.rows_start[i], perm.get(), index, index_tmp.get(), values,
                            values_tmp.get(), group, [&](I x, I y) { return index[x] < index[y]; });
    }
    r.sorted = 1;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Sorts coordinate pairs by row, then column.
template <class T, class I> int order_coo(coo_t<I> &r)
{
    const I nnz = r.nnz;
    if (nnz <= 0) {
        r.sorted = 1;
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    const size_t length = static_cast<size_t>(nnz);
    scratch_array<I> perm(length, alignment), keys(length, alignment), index_tmp(length, alignment);
    scratch_array<T> values_tmp;
    if (r.values != nullptr)
        values_tmp = scratch_array<T>(length, alignment);
    if (!perm || !keys || !index_tmp || (r.values != nullptr && !values_tmp))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    // Sort by row with columns riding along, using a copy of the rows as the key of both moves.
    std::copy(r.row_indx, r.row_indx + nnz, keys.get());
    const I *row = keys.get(), *col = r.col_indx;
    auto before = [&](I x, I y) { return row[x] < row[y] || (row[x] == row[y] && col[x] < col[y]); };
    for (I k = 0; k < nnz; ++k)
        perm[k] = k;
    std::sort(perm.get(), perm.get() + nnz, [&](I x, I y) { return before(x, y) || (!before(y, x) && x < y); });
    std::copy(r.col_indx, r.col_indx + nnz, index_tmp.get());
    for (I k = 0; k < nnz; ++k) {
        r.row_indx[k] = keys[perm[k]];
        r.col_indx[k] = index_tmp[perm[k]];
    }
    if (r.values != nullptr) {
        T *values = static_cast<T *>(r.values);
        std::copy(values, values + nnz, values_tmp.get());
        for (I k = 0; k < nnz; ++k)
            values[k] = values_tmp[perm[k]];
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
    if (coo)
        return order_coo<T, I>(*static_cast<coo_t<I> *>(A->data));
    return order_compressed<T, I>(*static_cast<csr_t<I> *>(A->data), A->format);
}

template <class I> int order_any(handle_t<I> *A)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    switch (A->data_type) {
    case ZEL_SPARSE_DATA_D: return do_order<double, I>(A);
    case ZEL_SPARSE_DATA_S: return do_order<float, I>(A);
    case ZEL_SPARSE_DATA_Z: return do_order<std::complex<double>, I>(A);
    case ZEL_SPARSE_DATA_C: return do_order<std::complex<float>, I>(A);
    default: return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    }
}

} // namespace zel::sparse
