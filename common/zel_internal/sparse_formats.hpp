// Sparse storage formats: record traits, descriptor rules and the format conversions shared by
// the core's handle lifecycle and the layer's conversion entry points.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "zel/sparse_types.h"
#include "zel_internal/scratch.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse {

constexpr int alignment = 4096;

template <class I> struct records;
template <> struct records<int32_t> {
    using handle = zel_sparse_matrix_i4;
    using csr = zel_sparse_csr_record_i4;
    using coo = zel_sparse_coo_record_i4;
    using node = zel_sparse_proc_node_i4;
};
template <> struct records<int64_t> {
    using handle = zel_sparse_matrix_i8;
    using csr = zel_sparse_csr_record_i8;
    using coo = zel_sparse_coo_record_i8;
    using node = zel_sparse_proc_node_i8;
};
template <class I> using handle_t = typename records<I>::handle;
template <class I> using csr_t = typename records<I>::csr;
template <class I> using coo_t = typename records<I>::coo;
template <class I> using node_t = typename records<I>::node;

// The handle's data_type code of a C++ value type (d, s, z, c = 0, 1, 2, 3).
template <class T> constexpr int32_t data_type_code()
{
    if constexpr (std::is_same_v<T, double>)
        return ZEL_SPARSE_DATA_D;
    else if constexpr (std::is_same_v<T, float>)
        return ZEL_SPARSE_DATA_S;
    else if constexpr (std::is_same_v<T, std::complex<double>>)
        return ZEL_SPARSE_DATA_Z;
    else
        return ZEL_SPARSE_DATA_C;
}

// Bytes of one value of a data_type code, 0 for an unknown code.
inline size_t value_size(int32_t data_type)
{
    switch (data_type) {
    case ZEL_SPARSE_DATA_D: return sizeof(double);
    case ZEL_SPARSE_DATA_S: return sizeof(float);
    case ZEL_SPARSE_DATA_Z: return 2 * sizeof(double);
    case ZEL_SPARSE_DATA_C: return 2 * sizeof(float);
    default: return 0;
    }
}

inline bool is_operation(int operation) { return operation >= 10 && operation <= 12; }

// Block order inside a BSR block: layout argument 101 (row-major) is stored as 0, 102 as 1.
inline int32_t block_layout_record_code(int layout)
{
    return layout == ZEL_SPARSE_LAYOUT_ROW_MAJOR ? 0 : layout == ZEL_SPARSE_LAYOUT_COLUMN_MAJOR ? 1 : -1;
}
inline int block_layout_argument(int64_t record_code)
{
    return record_code == 0 ? ZEL_SPARSE_LAYOUT_ROW_MAJOR : ZEL_SPARSE_LAYOUT_COLUMN_MAJOR;
}

// Descriptor rule of every executor: operation, then the keys the matrix type needs.
inline int check_descriptor(int operation, zel_sparse_matrix_descr descr)
{
    if (!is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const bool diag_ok = descr.diag == ZEL_SPARSE_DIAG_NON_UNIT || descr.diag == ZEL_SPARSE_DIAG_UNIT;
    const bool mode_ok = descr.mode >= ZEL_SPARSE_FILL_MODE_LOWER && descr.mode <= ZEL_SPARSE_FILL_MODE_FULL;
    switch (descr.type) {
    case ZEL_SPARSE_MATRIX_TYPE_GENERAL: return ZEL_SPARSE_STATUS_SUCCESS;
    case ZEL_SPARSE_MATRIX_TYPE_SYMMETRIC:
    case ZEL_SPARSE_MATRIX_TYPE_HERMITIAN:
    case ZEL_SPARSE_MATRIX_TYPE_TRIANGULAR:
    case ZEL_SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR:
        return mode_ok && diag_ok ? ZEL_SPARSE_STATUS_SUCCESS : ZEL_SPARSE_STATUS_INVALID_VALUE;
    case ZEL_SPARSE_MATRIX_TYPE_DIAGONAL:
    case ZEL_SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL:
        return diag_ok ? ZEL_SPARSE_STATUS_SUCCESS : ZEL_SPARSE_STATUS_INVALID_VALUE;
    default: return ZEL_SPARSE_STATUS_INVALID_VALUE;
    }
}

inline int check_dense_layout(int layout)
{
    return layout == ZEL_SPARSE_LAYOUT_ROW_MAJOR || layout == ZEL_SPARSE_LAYOUT_COLUMN_MAJOR
               ? ZEL_SPARSE_STATUS_SUCCESS
               : ZEL_SPARSE_STATUS_INVALID_VALUE;
}

// A storage record seen through one shape: compressed records walk rows_start/rows_end, COO
// records walk their coordinate pairs. rows/cols are the record's (block units for BSR).
template <class I> struct source_view {
    int32_t format = 0;
    I rows = 0, cols = 0, nnz = 0, base = 0, block = 1, layout = 0;
    const I *starts = nullptr, *ends = nullptr, *index = nullptr, *row_index = nullptr;
    const void *values = nullptr;

    I compressed() const { return format == ZEL_SPARSE_FORMAT_CSC ? cols : rows; }
    int64_t scalar_rows() const { return int64_t(rows) * block; }
    int64_t scalar_cols() const { return int64_t(cols) * block; }
    int64_t scalar_entries() const { return int64_t(nnz) * block * block; }
};

// The view of a handle's storage record; false when the handle has none, an unknown format or
// a record whose arrays are missing.
template <class I> bool view_of(const handle_t<I> *handle, source_view<I> &view)
{
    if (handle->data == nullptr || handle->format < 0 || handle->format > 3)
        return false;
    view.format = handle->format;
    if (handle->format == ZEL_SPARSE_FORMAT_COO) {
        auto *coo = static_cast<const coo_t<I> *>(handle->data);
        view.rows = coo->rows;
        view.cols = coo->cols;
        view.nnz = coo->nnz;
        view.base = coo->index_base;
        view.row_index = coo->row_indx;
        view.index = coo->col_indx;
        view.values = coo->values;
        return view.nnz <= 0 || (view.row_index != nullptr && view.index != nullptr);
    }
    auto *csr = static_cast<const csr_t<I> *>(handle->data);
    view.rows = csr->rows;
    view.cols = csr->cols;
    view.base = csr->index_base;
    view.block = handle->format == ZEL_SPARSE_FORMAT_BSR ? csr->block_size : 1;
    view.layout = handle->format == ZEL_SPARSE_FORMAT_BSR ? csr->block_layout : 0;
    view.starts = csr->rows_start;
    view.ends = csr->rows_end;
    view.index = csr->col_indx;
    view.values = csr->values;
    const I n = view.compressed();
    if (n > 0 && (view.starts == nullptr || view.ends == nullptr))
        return false;
    view.nnz = n > 0 ? view.ends[n - 1] - view.base : 0;
    return view.nnz <= 0 || view.index != nullptr;
}

// Calls visit(r, c, p) for every scalar entry of op(A): zero-based coordinates of op(A) and the
// entry's position in the value array. Rows (or coordinate pairs) come in storage order.
template <class I, class Visit> void for_each_entry(const source_view<I> &a, int operation, Visit visit)
{
    const bool transposed = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    auto emit = [&](int64_t r, int64_t c, int64_t p) {
        if (transposed)
            visit(c, r, p);
        else
            visit(r, c, p);
    };
    if (a.format == ZEL_SPARSE_FORMAT_COO) {
        for (int64_t k = 0; k < a.nnz; ++k)
            emit(a.row_index[k] - a.base, a.index[k] - a.base, k);
        return;
    }
    const int64_t b = a.block, bb = b * b;
    for (int64_t i = 0; i < a.compressed(); ++i) {
        for (int64_t p = a.starts[i] - a.base; p < a.ends[i] - a.base; ++p) {
            const int64_t j = a.index[p] - a.base;
            if (a.format == ZEL_SPARSE_FORMAT_CSC)
                emit(j, i, p);
            else if (a.format == ZEL_SPARSE_FORMAT_CSR)
                emit(i, j, p);
            else
                for (int64_t bi = 0; bi < b; ++bi)
                    for (int64_t bj = 0; bj < b; ++bj)
                        emit(i * b + bi, j * b + bj, p * bb + (a.layout == 0 ? bi * b + bj : bj * b + bi));
        }
    }
}

template <class I> bool fits(int64_t value) { return value <= int64_t(std::numeric_limits<I>::max()); }

// 1 when the index slices [starts[i], starts[i+1]) never decrease.
template <class I> I slices_sorted(const I *starts, const I *index, int64_t n, I base)
{
    for (int64_t i = 0; i < n; ++i)
        for (int64_t p = starts[i] - base + 1; p < starts[i + 1] - base; ++p)
            if (index[p] < index[p - 1])
                return 0;
    return 1;
}

// Value of position p of op(A), conjugated for operation 12.
template <class T> T entry_value(const void *values, int64_t p, int operation)
{
    return conj_if(static_cast<const T *>(values)[p], operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE);
}

// out = op(A) compressed by rows (CSR) or by columns (CSC) in new owned arrays, by a stable
// counting sort over the output's compressed dimension.
template <class T, class I> int build_compressed(const source_view<I> &a, int operation, bool by_column, csr_t<I> &out)
{
    const bool transposed = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    const int64_t m = transposed ? a.scalar_cols() : a.scalar_rows();
    const int64_t n = transposed ? a.scalar_rows() : a.scalar_cols();
    const int64_t nnz = a.scalar_entries();
    const int64_t slices = by_column ? n : m;
    if (!fits<I>(m) || !fits<I>(n) || !fits<I>(nnz + a.base))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    scratch_array<I> starts(slices + 1, alignment), index(std::max<int64_t>(nnz, 1), alignment);
    scratch_array<I> next(std::max<int64_t>(slices, 1), alignment);
    scratch_array<T> values;
    if (a.values != nullptr)
        values = scratch_array<T>(std::max<int64_t>(nnz, 1), alignment);
    if (!starts || !index || !next || (a.values != nullptr && !values))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;

    std::fill(starts.get(), starts.get() + slices + 1, I(0));
    for_each_entry(a, operation, [&](int64_t r, int64_t c, int64_t) { ++starts[(by_column ? c : r) + 1]; });
    for (int64_t s = 0; s < slices; ++s) {
        next[s] = starts[s];
        starts[s + 1] += starts[s];
    }
    for_each_entry(a, operation, [&](int64_t r, int64_t c, int64_t p) {
        const I slot = next[by_column ? c : r]++;
        index[slot] = I((by_column ? r : c) + a.base);
        if (values)
            values[slot] = entry_value<T>(a.values, p, operation);
    });
    for (int64_t s = 0; s <= slices; ++s)
        starts[s] += a.base;

    out = csr_t<I>{};
    out.sorted = slices_sorted(starts.get(), index.get(), slices, a.base);
    out.rows = I(m);
    out.cols = I(n);
    out.nnz = starts[slices] - a.base; // a four-array source may leave gaps uncounted
    out.index_base = a.base;
    out.block_size = 1;
    out.owns_arrays = 1;
    out.inplace_copy = 1;
    out.three_array = 1;
    out.rows_start = starts.release();
    out.rows_end = out.rows_start + 1;
    out.col_indx = index.release();
    out.values = values.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// out = op(A) as coordinate pairs in new owned arrays, in the order the source stores them.
template <class T, class I> int build_coo(const source_view<I> &a, int operation, coo_t<I> &out)
{
    const bool transposed = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    const int64_t m = transposed ? a.scalar_cols() : a.scalar_rows();
    const int64_t n = transposed ? a.scalar_rows() : a.scalar_cols();
    const int64_t nnz = a.scalar_entries();
    if (!fits<I>(m) || !fits<I>(n) || !fits<I>(nnz))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const size_t length = std::max<int64_t>(nnz, 1);
    scratch_array<I> rows(length, alignment), cols(length, alignment);
    scratch_array<T> values;
    if (a.values != nullptr)
        values = scratch_array<T>(length, alignment);
    if (!rows || !cols || (a.values != nullptr && !values))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;

    int64_t k = 0;
    I sorted = 1;
    for_each_entry(a, operation, [&](int64_t r, int64_t c, int64_t p) {
        rows[k] = I(r + a.base);
        cols[k] = I(c + a.base);
        if (k > 0 && (rows[k] < rows[k - 1] || (rows[k] == rows[k - 1] && cols[k] < cols[k - 1])))
            sorted = 0;
        if (values)
            values[k] = entry_value<T>(a.values, p, operation);
        ++k;
    });

    out = coo_t<I>{};
    out.sorted = sorted;
    out.rows = I(m);
    out.cols = I(n);
    out.nnz = I(k);
    out.index_base = a.base;
    out.owns_arrays = 1;
    out.inplace_copy = 1;
    out.row_indx = rows.release();
    out.col_indx = cols.release();
    out.values = values.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Frees the arrays of a record built by the conversions (owns_arrays 1).
template <class I> void free_owned_arrays(csr_t<I> &record)
{
    zel_serv_free(record.rows_start);
    zel_serv_free(record.col_indx);
    zel_serv_free(record.values);
    zel_serv_free(record.aux);
    record.rows_start = record.rows_end = record.col_indx = nullptr;
    record.values = record.aux = nullptr;
}
template <class I> void free_owned_arrays(coo_t<I> &record)
{
    zel_serv_free(record.row_indx);
    zel_serv_free(record.col_indx);
    zel_serv_free(record.values);
    record.row_indx = record.col_indx = nullptr;
    record.values = nullptr;
}

// out = op(A) in BSR with blocks of edge b (block order by layout code 0/1): every block that
// holds an entry is stored whole, zero-filled, block columns increasing inside a block row;
// entries falling on one place are summed.
template <class T, class I>
int build_bsr(const source_view<I> &a, int operation, int64_t b, int32_t layout, csr_t<I> &out)
{
    const bool transposed = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    const int64_t m = transposed ? a.scalar_cols() : a.scalar_rows();
    const int64_t n = transposed ? a.scalar_rows() : a.scalar_cols();
    if (b <= 0 || (layout != 0 && layout != 1) || m % b != 0 || n % b != 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    csr_t<I> scalar;
    int status = build_compressed<T, I>(a, operation, false, scalar);
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    struct release_scalar {
        csr_t<I> &record;
        ~release_scalar() { free_owned_arrays<I>(record); }
    } release{scalar};

    const int64_t block_rows = m / b, block_cols = n / b, base = a.base;
    scratch_array<I> starts(block_rows + 1, alignment), marker(std::max<int64_t>(2 * block_cols, 1), alignment);
    if (!starts || !marker)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    I *last_row = marker.get(), *slot = marker.get() + block_cols;

    // Pass 1: distinct block columns per block row.
    std::fill(last_row, last_row + block_cols, I(-1));
    starts[0] = 0;
    for (int64_t br = 0; br < block_rows; ++br) {
        I count = 0;
        for (int64_t r = br * b; r < br * b + b; ++r)
            for (int64_t p = scalar.rows_start[r] - base; p < scalar.rows_start[r + 1] - base; ++p) {
                const int64_t bc = (scalar.col_indx[p] - base) / b;
                if (last_row[bc] != br) {
                    last_row[bc] = I(br);
                    ++count;
                }
            }
        starts[br + 1] = starts[br] + count;
    }
    const int64_t blocks = starts[block_rows];
    if (!fits<I>(blocks + base) || !fits<I>(blocks * b * b))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    scratch_array<I> index(std::max<int64_t>(blocks, 1), alignment);
    scratch_array<T> values;
    if (scalar.values != nullptr)
        values = scratch_array<T>(std::max<int64_t>(blocks * b * b, 1), alignment);
    if (!index || (scalar.values != nullptr && !values))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (values)
        std::fill(values.get(), values.get() + blocks * b * b, T(0));

    // Pass 2: place the blocks in increasing column order, then add the entries into them.
    std::fill(last_row, last_row + block_cols, I(-1));
    const T *scalar_values = static_cast<const T *>(scalar.values);
    for (int64_t br = 0; br < block_rows; ++br) {
        I fill = starts[br];
        for (int64_t r = br * b; r < br * b + b; ++r)
            for (int64_t p = scalar.rows_start[r] - base; p < scalar.rows_start[r + 1] - base; ++p) {
                const int64_t bc = (scalar.col_indx[p] - base) / b;
                if (last_row[bc] != br) {
                    last_row[bc] = I(br);
                    index[fill++] = I(bc);
                }
            }
        std::sort(index.get() + starts[br], index.get() + fill);
        for (I k = starts[br]; k < fill; ++k)
            slot[index[k]] = k;
        if (values)
            for (int64_t r = br * b; r < br * b + b; ++r)
                for (int64_t p = scalar.rows_start[r] - base; p < scalar.rows_start[r + 1] - base; ++p) {
                    const int64_t c = scalar.col_indx[p] - base, bi = r - br * b, bj = c % b;
                    const int64_t offset = layout == 0 ? bi * b + bj : bj * b + bi;
                    values[slot[c / b] * b * b + offset] += scalar_values[p];
                }
    }
    for (int64_t k = 0; k < blocks; ++k)
        index[k] += I(base);
    for (int64_t k = 0; k <= block_rows; ++k)
        starts[k] += I(base);

    out = csr_t<I>{};
    out.sorted = 1;
    out.rows = I(block_rows);
    out.cols = I(block_cols);
    out.nnz = I(blocks);
    out.index_base = a.base;
    out.block_size = I(b);
    out.block_layout = layout;
    out.owns_arrays = 1;
    out.inplace_copy = 1;
    out.three_array = 1;
    out.rows_start = starts.release();
    out.rows_end = out.rows_start + 1;
    out.col_indx = index.release();
    out.values = values.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
