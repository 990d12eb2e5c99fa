// Sparse handle accessors, the operand check of two-matrix operations and the procedure lookup.
#pragma once

#include "zel/sparse_handle.h"
#include "zel_internal/sparse_formats.hpp"

namespace zel::sparse {

// The record's flag word picked by the handle's format (the two record kinds differ in layout).
template <class I> I *coo_or_csr_field(handle_t<I> *A, I coo_t<I>::*coo_field, I csr_t<I>::*csr_field)
{
    if (A->format == ZEL_SPARSE_FORMAT_COO)
        return &(static_cast<coo_t<I> *>(A->data)->*coo_field);
    return &(static_cast<csr_t<I> *>(A->data)->*csr_field);
}

template <class I> int set_inplace_copy(handle_t<I> *A, I flag)
{
    if (A == nullptr || A->data == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    *coo_or_csr_field<I>(A, &coo_t<I>::inplace_copy, &csr_t<I>::inplace_copy) = flag;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class I> int set_is_sycl_cpu(handle_t<I> *A, I flag)
{
    if (A == nullptr || A->data == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    *coo_or_csr_field<I>(A, &coo_t<I>::is_sycl_cpu, &csr_t<I>::is_sycl_cpu) = flag;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class I> int get_sorted_property(const handle_t<I> *A, I *sorted)
{
    if (A == nullptr || A->data == nullptr || sorted == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    *sorted = *coo_or_csr_field<I>(const_cast<handle_t<I> *>(A), &coo_t<I>::sorted, &csr_t<I>::sorted);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The flag words a data-array setter stores beside the arrays.
template <class I> struct record_flags {
    I is_sycl_cpu;
    I owns_arrays;
    I sorted;
    I index_base;
};

template <class I, class Record> void store_flags(Record &r, const record_flags<I> &flags)
{
    r.is_sycl_cpu = flags.is_sycl_cpu;
    r.owns_arrays = flags.owns_arrays;
    r.sorted = flags.sorted;
    r.index_base = flags.index_base;
}

template <class I>
int set_coo_data_arrays(handle_t<I> *A, const record_flags<I> &flags, I *row_indx, I *col_indx, void *values)
{
    if (A == nullptr || A->data == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    coo_t<I> &r = *static_cast<coo_t<I> *>(A->data);
    store_flags(r, flags);
    r.row_indx = row_indx;
    r.col_indx = col_indx;
    r.values = values;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Stores compressed arrays; the entry count follows the end offsets only for is_sycl_cpu.
template <class I>
void store_compressed(csr_t<I> &r, bool by_column, const record_flags<I> &flags, const caller_compressed<I> &arrays)
{
    store_flags(r, flags);
    r.rows_start = arrays.starts;
    r.rows_end = arrays.ends;
    r.col_indx = arrays.index;
    r.values = arrays.values;
    r.three_array = arrays.ends == arrays.starts + 1;
    const I n = by_column ? r.cols : r.rows;
    if (flags.is_sycl_cpu != 0 && arrays.ends != nullptr)
        r.nnz = arrays.index != nullptr && n > 0 ? arrays.ends[n - 1] - flags.index_base : 0;
}

template <class I>
int set_compressed_data_arrays(handle_t<I> *A, bool by_column, const record_flags<I> &flags,
                               const caller_compressed<I> &arrays)
{
    if (A == nullptr || A->data == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    store_compressed(*static_cast<csr_t<I> *>(A->data), by_column, flags, arrays);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// As the CSR setter, but a missing record reports 2; block size and layout stay as they are.
template <class I>
int set_bsr_data_arrays(handle_t<I> *A, const record_flags<I> &flags, const caller_compressed<I> &arrays)
{
    if (A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (A->data == nullptr)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    store_compressed(*static_cast<csr_t<I> *>(A->data), false, flags, arrays);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Operand check of two-matrix operations, in its fixed order.
template <class I>
int check_input_data(const handle_t<I> *A, zel_sparse_matrix_descr a_descr, const handle_t<I> *B,
                     zel_sparse_matrix_descr b_descr, int allow_rectangular)
{
    const int type_a = a_descr.type, mode_a = a_descr.mode, diag_a = a_descr.diag;
    const int type_b = b_descr.type, mode_b = b_descr.mode, diag_b = b_descr.diag;
    if (A == nullptr || B == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    const bool compressed_rows = A->format == ZEL_SPARSE_FORMAT_CSR || A->format == ZEL_SPARSE_FORMAT_BSR;
    if (!compressed_rows || A->format != B->format)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (allow_rectangular == 0 && (A->rows != A->cols || B->rows != B->cols || A->rows != B->rows))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (type_a != type_b)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (type_a != ZEL_SPARSE_MATRIX_TYPE_GENERAL &&
        (mode_a != mode_b || diag_a != ZEL_SPARSE_DIAG_NON_UNIT || diag_b != ZEL_SPARSE_DIAG_NON_UNIT))
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (A->data == nullptr || B->data == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    const csr_t<I> &a = *static_cast<const csr_t<I> *>(A->data), &b = *static_cast<const csr_t<I> *>(B->data);
    if (a.index_base != b.index_base)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (A->format == ZEL_SPARSE_FORMAT_BSR && (a.block_layout != a.index_base || b.block_layout != a.index_base))
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Does a node built for (operation, type, mode, diag) serve the request? The keys beyond the
// matrix type are those the type depends on.
template <class Node> bool serves(const Node &node, int operation, zel_sparse_matrix_descr descr)
{
    if (node.operation != operation || node.matrix_type != descr.type)
        return false;
    switch (descr.type) {
    case ZEL_SPARSE_MATRIX_TYPE_GENERAL:
    case ZEL_SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL: return true;
    case ZEL_SPARSE_MATRIX_TYPE_DIAGONAL: return node.diag == descr.diag;
    case ZEL_SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR: return node.fill_mode == descr.mode;
    default: return node.fill_mode == descr.mode && node.diag == descr.diag;
    }
}

template <class I>
node_t<I> *find_procedure(node_t<I> *head, int operation, zel_sparse_matrix_descr descr, bool mm, int layout)
{
    for (; head != nullptr; head = head->next)
        if (serves(*head, operation, descr) && (!mm || head->dense_layout == layout))
            return head;
    return nullptr;
}

} // namespace zel::sparse
