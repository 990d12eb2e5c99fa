// Sparse handle lifecycle: creation from caller arrays, export, copy, conversion, hints and
// destruction. Handles and records come from zel_serv_malloc; destroy frees what they own.
#pragma once

#include <cstring>
#include <type_traits>
#include <utility>

#include "zel/sparse_handle.h"
#include "zel_internal/sparse_formats.hpp"

namespace zel::sparse {

// Offsets of a compressed dimension of length n and indices into a dimension of length other.
template <class I> int check_compressed(I n, I other, int base, const caller_compressed<I> &arrays)
{
    const I *starts = arrays.starts, *ends = arrays.ends, *index = arrays.index;
    if (n < 0 || other < 0 || (base != 0 && base != 1) || starts == nullptr || ends == nullptr)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (n == 0)
        return ZEL_SPARSE_STATUS_SUCCESS;
    if (starts[0] != base)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    for (I i = 0; i < n; ++i)
        if (ends[i] < starts[i] || (i + 1 < n && starts[i + 1] < ends[i]))
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (ends[n - 1] > base && (index == nullptr || arrays.values == nullptr))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    for (I i = 0; i < n; ++i)
        for (I p = starts[i] - base; p < ends[i] - base; ++p)
            if (index[p] < base || index[p] - base >= other)
                return ZEL_SPARSE_STATUS_INVALID_VALUE;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// CSR (format 1), CSC (2) or BSR (3) handle over the caller's arrays; rows and cols are the
// record's (blocks for BSR), block_layout a layout argument (BSR only).
template <class T, class I>
int create_compressed(handle_t<I> **A, int32_t format, int base, I rows, I cols, I block, int block_layout,
                      const caller_compressed<I> &arrays)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    const int32_t layout = format == ZEL_SPARSE_FORMAT_BSR ? block_layout_record_code(block_layout) : 0;
    // Dimensions in scalars, and one block's bytes, must be addressable.
    const auto scalar_rows = checked_mul(rows, block), scalar_cols = checked_mul(cols, block);
    const auto area = checked_mul(block, block);
    if (block < 1 || layout < 0 || !scalar_rows || !scalar_cols || !fits_in<I>(*scalar_rows) ||
        !fits_in<I>(*scalar_cols) || !area || !checked_bytes<T>(*area))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const I n = format == ZEL_SPARSE_FORMAT_CSC ? cols : rows, other = format == ZEL_SPARSE_FORMAT_CSC ? rows : cols;
    if (int status = check_compressed(n, other, base, arrays))
        return status;

    scratch_array<csr_t<I>> record = zeroed_record<csr_t<I>>();
    if (!record)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    csr_t<I> &r = *record.get();
    r.sorted = slices_sorted(compressed_view<T, I>{n, other, I(base), 1, arrays.starts, arrays.ends, arrays.index});
    r.rows = rows;
    r.cols = cols;
    r.nnz = n > 0 ? arrays.ends[n - 1] - base : 0;
    r.index_base = base;
    r.block_size = block;
    r.block_layout = layout;
    r.inplace_copy = 1;
    r.three_array = arrays.ends == arrays.starts + 1;
    r.rows_start = arrays.starts;
    r.rows_end = arrays.ends;
    r.col_indx = arrays.index;
    r.values = arrays.values;
    if (int status = install_record<I>(A, data_type_code<T>(), format, *scalar_rows, *scalar_cols, record.get()))
        return status;
    record.release();
    if (format == ZEL_SPARSE_FORMAT_BSR)
        (*A)->block_layout_request = block_layout;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class T, class I>
int create_coo(handle_t<I> **A, int base, I rows, I cols, I nnz, I *row_indx, I *col_indx, void *values)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (rows < 0 || cols < 0 || nnz < 0 || (base != 0 && base != 1))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (nnz > 0 && (row_indx == nullptr || col_indx == nullptr || values == nullptr))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    for (I k = 0; k < nnz; ++k)
        if (row_indx[k] < base || row_indx[k] - base >= rows || col_indx[k] < base || col_indx[k] - base >= cols)
            return ZEL_SPARSE_STATUS_INVALID_VALUE;

    scratch_array<coo_t<I>> record = zeroed_record<coo_t<I>>();
    if (!record)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    coo_t<I> &r = *record.get();
    r.sorted = pairs_sorted(row_indx, col_indx, nnz);
    r.rows = rows;
    r.cols = cols;
    r.nnz = nnz;
    r.index_base = base;
    r.inplace_copy = 1;
    r.row_indx = row_indx;
    r.col_indx = col_indx;
    r.values = values;
    if (int status = install_record<I>(A, data_type_code<T>(), ZEL_SPARSE_FORMAT_COO, rows, cols, record.get()))
        return status;
    record.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Status of an export before anything is handed back: the handle must hold a record of this
// value type and format.
template <class T, class I> int check_export(const handle_t<I> *A, int32_t format)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (A->data == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (A->format != format || A->data_type != data_type_code<T>())
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class T, class I> int export_compressed(const handle_t<I> *A, int32_t format, const compressed_export<I> &out)
{
    if (out.base == nullptr || out.rows == nullptr || out.cols == nullptr || out.starts == nullptr ||
        out.ends == nullptr || out.index == nullptr || out.values == nullptr ||
        (format == ZEL_SPARSE_FORMAT_BSR && (out.block_layout == nullptr || out.block == nullptr)))
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (int status = check_export<T, I>(A, format))
        return status;
    const csr_t<I> *r = static_cast<const csr_t<I> *>(A->data);
    *out.base = int(r->index_base);
    *out.rows = r->rows;
    *out.cols = r->cols;
    *out.starts = r->rows_start;
    *out.ends = r->rows_end;
    *out.index = r->col_indx;
    *out.values = r->values;
    if (format == ZEL_SPARSE_FORMAT_BSR) {
        *out.block_layout = block_layout_argument(r->block_layout);
        *out.block = r->block_size;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class T, class I>
int export_coo(const handle_t<I> *A, int *base, I *rows, I *cols, I *nnz, I **row_indx, I **col_indx, void **values)
{
    if (base == nullptr || rows == nullptr || cols == nullptr || nnz == nullptr || row_indx == nullptr ||
        col_indx == nullptr || values == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (int status = check_export<T, I>(A, ZEL_SPARSE_FORMAT_COO))
        return status;
    const coo_t<I> *r = static_cast<const coo_t<I> *>(A->data);
    *base = int(r->index_base);
    *rows = r->rows;
    *cols = r->cols;
    *nnz = r->nnz;
    *row_indx = r->row_indx;
    *col_indx = r->col_indx;
    *values = r->values;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// ---- destruction ----

template <class I> int destroy(handle_t<I> *A)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (A->format == ZEL_SPARSE_FORMAT_COO)
        free_record<I>(static_cast<coo_t<I> *>(A->data));
    else
        free_record<I>(static_cast<csr_t<I> *>(A->data));
    free_record<I>(A->transposed);
    for (node_t<I> *head : {A->trsv_list, A->trsm_list, A->mv_list, A->dotmv_list, A->mm_list, A->symgs_list,
                            A->reserved_list, A->sorv_list})
        while (head != nullptr)
            zel_serv_free(std::exchange(head, head->next));
    zel_serv_free(A);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// ---- copy and conversion ----

// A copy of a compressed record with its slices packed back to back (three-array form).
template <class T, class I> int copy_compressed(const csr_t<I> &source, int32_t format, csr_t<I> &out)
{
    owned_arrays<T, I> arrays;
    if (int status = pack_slices(view_of_record<T, I>(source, format), arrays))
        return status;
    out = source;
    out.nnz = arrays.stored();
    out.owns_arrays = 0;
    out.inplace_copy = 1;
    out.opt_record = nullptr;
    out.opt_words = nullptr;
    adopt_arrays(out, arrays);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class T, class I> int copy_coo(const coo_t<I> &source, coo_t<I> &out)
{
    owned_pairs<T, I> pairs;
    if (!pairs.allocate(source.nnz, source.values != nullptr))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::copy(source.row_indx, source.row_indx + source.nnz, pairs.rows.get());
    std::copy(source.col_indx, source.col_indx + source.nnz, pairs.cols.get());
    if (pairs.values)
        std::copy(static_cast<const T *>(source.values), static_cast<const T *>(source.values) + source.nnz,
                  pairs.values.get());
    out = source;
    out.owns_arrays = 0;
    out.inplace_copy = 1;
    adopt_pairs(out, pairs);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Builds a record with `fill` and hangs it on a new handle of the given shape; frees the
// record's arrays when the handle cannot be made.
template <class T, class I, class Record, class Fill>
int new_handle_with(handle_t<I> **dest, int32_t format, Fill fill, handle_t<I> *&made)
{
    scratch_array<Record> record = zeroed_record<Record>();
    if (!record)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (int status = fill(*record.get()))
        return status;
    Record &r = *record.get();
    int64_t block = 1;
    if constexpr (std::is_same_v<Record, csr_t<I>>)
        block = r.block_size;
    const auto rows = checked_mul(r.rows, block), cols = checked_mul(r.cols, block);
    int status = rows && cols ? install_record<I>(dest, data_type_code<T>(), format, *rows, *cols, &r)
                              : ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (status != ZEL_SPARSE_STATUS_SUCCESS) {
        free_owned_arrays<I>(r);
        return status;
    }
    record.release();
    made = *dest;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class T, class I> int copy(const handle_t<I> *source, handle_t<I> **dest)
{
    handle_t<I> *made = nullptr;
    int status;
    if (source->format == ZEL_SPARSE_FORMAT_COO)
        status = new_handle_with<T, I, coo_t<I>>(dest, source->format, [&](coo_t<I> &out) {
            return copy_coo<T, I>(*static_cast<const coo_t<I> *>(source->data), out);
        }, made);
    else
        status = new_handle_with<T, I, csr_t<I>>(dest, source->format, [&](csr_t<I> &out) {
            return copy_compressed<T, I>(*static_cast<const csr_t<I> *>(source->data), source->format, out);
        }, made);
    if (status == ZEL_SPARSE_STATUS_SUCCESS) {
        made->rows = source->rows;
        made->cols = source->cols;
        made->block_layout_request = source->block_layout_request;
        made->hint_flags = source->hint_flags;
        std::copy(source->mv_hint, source->mv_hint + 3, made->mv_hint);
        std::copy(source->mm_hint, source->mm_hint + 4, made->mm_hint);
        made->memory_hint = source->memory_hint;
    }
    return status;
}

// A new CSR handle, or BSR handle of the given block edge and order, holding op(source).
template <class T, class I>
int convert(const handle_t<I> *source, bool to_bsr, I block, int block_layout, int operation, handle_t<I> **dest)
{
    source_view<I> view;
    if (!view_of(source, view))
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    handle_t<I> *made = nullptr;
    if (!to_bsr)
        return new_handle_with<T, I, csr_t<I>>(dest, ZEL_SPARSE_FORMAT_CSR, [&](csr_t<I> &out) {
            return build_compressed<T, I>(view, operation, false, out);
        }, made);
    const int32_t layout = block_layout_record_code(block_layout);
    if (block < 1 || layout < 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    int status = new_handle_with<T, I, csr_t<I>>(dest, ZEL_SPARSE_FORMAT_BSR, [&](csr_t<I> &out) {
        return build_bsr<T, I>(view, operation, block, layout, out);
    }, made);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        made->block_layout_request = block_layout;
    return status;
}

template <class I> int copy_any(const handle_t<I> *source, handle_t<I> **dest)
{
    if (source == nullptr || dest == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    source_view<I> view;
    if (!view_of(source, view))
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    return with_value_type(source->data_type, ZEL_SPARSE_STATUS_INTERNAL_ERROR,
                           [&](auto value) { return copy<decltype(value), I>(source, dest); });
}

template <class I>
int convert_any(const handle_t<I> *source, bool to_bsr, I block, int block_layout, int operation, handle_t<I> **dest)
{
    if (source == nullptr || dest == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (!is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    return with_value_type(source->data_type, ZEL_SPARSE_STATUS_INTERNAL_ERROR, [&](auto value) {
        return convert<decltype(value), I>(source, to_bsr, block, block_layout, operation, dest);
    });
}

// ---- hints ----

template <class I> int set_mv_hint(handle_t<I> *A, int operation, zel_sparse_matrix_descr descr, I calls)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (check_descriptor(operation, descr) != ZEL_SPARSE_STATUS_SUCCESS || calls <= 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    A->mv_hint[0] = operation;
    A->mv_hint[1] = descr.type;
    A->mv_hint[2] = calls;
    A->hint_flags |= ZEL_SPARSE_HINT_MV;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class I>
int set_mm_hint(handle_t<I> *A, int operation, zel_sparse_matrix_descr descr, int layout, I calls)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (check_descriptor(operation, descr) != ZEL_SPARSE_STATUS_SUCCESS ||
        check_dense_layout(layout) != ZEL_SPARSE_STATUS_SUCCESS || calls <= 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    A->mm_hint[0] = operation;
    A->mm_hint[1] = descr.type;
    A->mm_hint[2] = layout;
    A->mm_hint[3] = calls;
    A->hint_flags |= ZEL_SPARSE_HINT_MM;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class I> int set_memory_hint(handle_t<I> *A, int policy)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (policy != ZEL_SPARSE_MEMORY_NONE && policy != ZEL_SPARSE_MEMORY_AGGRESSIVE)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    A->memory_hint = policy;
    A->hint_flags |= ZEL_SPARSE_HINT_MEMORY;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
