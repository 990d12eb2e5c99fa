// Sparse storage formats: descriptor rules, one view over any storage record, and the format
// conversions shared by the core's handle lifecycle and the layer's conversion entry points.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "zel/sparse_types.h"
#include "zel_internal/sparse_records.hpp"

namespace zel::sparse {

inline bool is_operation(int operation)
{
    return operation >= ZEL_SPARSE_OPERATION_NON_TRANSPOSE && operation <= ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE;
}

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
};

// Scalar shape of op(A): rows, columns and stored values, each checked to fit the index type.
struct op_shape {
    int64_t rows = 0, cols = 0, entries = 0;
};
template <class I> bool shape_of(const source_view<I> &a, int operation, op_shape &shape)
{
    const auto rows = checked_mul(a.rows, a.block), cols = checked_mul(a.cols, a.block);
    const auto area = checked_mul(a.block, a.block);
    const auto entries = area ? checked_mul(*area, a.nnz) : std::nullopt;
    if (!rows || !cols || !entries || !fits_in<I>(*rows) || !fits_in<I>(*cols) || !fits_in<I>(*entries + a.base))
        return false;
    const bool transposed = operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    shape = {transposed ? *cols : *rows, transposed ? *rows : *cols, *entries};
    return true;
}

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

// Value of position p of op(A), conjugated for operation 12.
template <class T> T entry_value(const void *values, int64_t p, int operation)
{
    return conj_if(static_cast<const T *>(values)[p], operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE);
}

// Fields of a new owned record of op(A) in three-array form; the arrays follow by adopt_arrays.
template <class I> csr_t<I> owned_record(I rows, I cols, I base, I block, int32_t layout)
{
    csr_t<I> record{};
    record.rows = rows;
    record.cols = cols;
    record.index_base = base;
    record.block_size = block;
    record.block_layout = layout;
    record.inplace_copy = 1;
    return record;
}

// Offsets of a counting sort: counts at [s + 1] become starts carrying the base, next[s] the
// zero-based cursor of slice s.
template <class I> void counts_to_starts(I *starts, I *next, int64_t slices, I base)
{
    for (int64_t s = 0; s < slices; ++s) {
        next[s] = starts[s];
        starts[s + 1] += starts[s];
    }
    for (int64_t s = 0; s <= slices; ++s)
        starts[s] += base;
}

// out = op(A) compressed by rows (CSR) or by columns (CSC) in new owned arrays, by a stable
// counting sort over the output's compressed dimension.
template <class T, class I> int build_compressed(const source_view<I> &a, int operation, bool by_column, csr_t<I> &out)
{
    op_shape shape;
    if (!shape_of(a, operation, shape))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    const int64_t slices = by_column ? shape.cols : shape.rows;
    owned_arrays<T, I> arrays;
    scratch_array<I> next(std::max<int64_t>(slices, 1), alignment);
    if (!arrays.allocate(slices, shape.entries, 1, a.values != nullptr) || !next)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;

    I *starts = arrays.starts.get();
    std::fill(starts, starts + slices + 1, I(0));
    for_each_entry(a, operation, [&](int64_t r, int64_t c, int64_t) { ++starts[(by_column ? c : r) + 1]; });
    counts_to_starts(starts, next.get(), slices, a.base);
    for_each_entry(a, operation, [&](int64_t r, int64_t c, int64_t p) {
        const I slot = next[by_column ? c : r]++;
        arrays.index[slot] = I((by_column ? r : c) + a.base);
        if (arrays.values)
            arrays.values[slot] = entry_value<T>(a.values, p, operation);
    });

    out = owned_record<I>(I(shape.rows), I(shape.cols), a.base, 1, 0);
    const compressed_view<T, I> built{I(slices), 0, a.base, 1, starts, starts + 1, arrays.index.get(), nullptr};
    out.sorted = slices_sorted(built);
    out.nnz = arrays.stored(); // a four-array source may leave gaps uncounted
    adopt_arrays(out, arrays);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// out = op(A) as coordinate pairs in new owned arrays, in the order the source stores them.
template <class T, class I> int build_coo(const source_view<I> &a, int operation, coo_t<I> &out)
{
    op_shape shape;
    if (!shape_of(a, operation, shape))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    owned_pairs<T, I> pairs;
    if (!pairs.allocate(shape.entries, a.values != nullptr))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;

    int64_t k = 0;
    I *rows = pairs.rows.get(), *cols = pairs.cols.get();
    for_each_entry(a, operation, [&](int64_t r, int64_t c, int64_t p) {
        rows[k] = I(r + a.base);
        cols[k] = I(c + a.base);
        if (pairs.values)
            pairs.values[k] = entry_value<T>(a.values, p, operation);
        ++k;
    });

    out = coo_t<I>{};
    out.sorted = pairs_sorted(rows, cols, k);
    out.rows = I(shape.rows);
    out.cols = I(shape.cols);
    out.nnz = I(k);
    out.index_base = a.base;
    out.inplace_copy = 1;
    adopt_pairs(out, pairs);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// A scalar CSR record (three-array, owned) split into block rows of edge b.
template <class T, class I> struct block_split {
    const csr_t<I> &scalar;
    int64_t b, block_rows, block_cols;

    int64_t begin(int64_t r) const { return scalar.rows_start[r] - scalar.index_base; }
    int64_t end(int64_t r) const { return scalar.rows_start[r + 1] - scalar.index_base; }
    int64_t column(int64_t p) const { return scalar.col_indx[p] - scalar.index_base; }

    // Calls visit(block column) once for each distinct block column of block row br; last_row
    // marks the columns seen (block_cols entries, -1 or an earlier block row on entry).
    template <class Visit> void each_block(int64_t br, I *last_row, Visit visit) const
    {
        for (int64_t r = br * b; r < br * b + b; ++r)
            for (int64_t p = begin(r); p < end(r); ++p) {
                const int64_t bc = column(p) / b;
                if (last_row[bc] != br) {
                    last_row[bc] = I(br);
                    visit(bc);
                }
            }
    }
};

// Adds the scalar entries of block row br into their blocks (slot: block column -> stored block).
template <class T, class I>
void add_block_row_values(const block_split<T, I> &split, int64_t br, const I *slot, int32_t layout, T *values)
{
    const int64_t b = split.b;
    const T *scalar_values = static_cast<const T *>(split.scalar.values);
    for (int64_t r = br * b; r < br * b + b; ++r)
        for (int64_t p = split.begin(r); p < split.end(r); ++p) {
            const int64_t c = split.column(p), bi = r - br * b, bj = c % b;
            const int64_t offset = layout == 0 ? bi * b + bj : bj * b + bi;
            values[slot[c / b] * b * b + offset] += scalar_values[p];
        }
}

// Places the blocks of every block row in increasing column order and sums the entries into
// them; arrays.starts holds zero-based block offsets on entry.
template <class T, class I>
void place_blocks(const block_split<T, I> &split, int32_t layout, I *last_row, I *slot, owned_arrays<T, I> &arrays)
{
    std::fill(last_row, last_row + split.block_cols, I(-1));
    for (int64_t br = 0; br < split.block_rows; ++br) {
        I fill = arrays.starts[br];
        split.each_block(br, last_row, [&](int64_t bc) { arrays.index[fill++] = I(bc); });
        std::sort(arrays.index.get() + arrays.starts[br], arrays.index.get() + fill);
        for (I k = arrays.starts[br]; k < fill; ++k)
            slot[arrays.index[k]] = k;
        if (arrays.values)
            add_block_row_values(split, br, slot, layout, arrays.values.get());
    }
}

// out = op(A) in BSR with blocks of edge b (block order by layout code 0/1): every block that
// holds an entry is stored whole, zero-filled, block columns increasing inside a block row;
// entries falling on one place are summed.
template <class T, class I>
int build_bsr(const source_view<I> &a, int operation, int64_t b, int32_t layout, csr_t<I> &out)
{
    op_shape shape;
    if (b <= 0 || (layout != 0 && layout != 1))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (!shape_of(a, operation, shape) || shape.rows % b != 0 || shape.cols % b != 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    csr_t<I> scalar;
    if (int status = build_compressed<T, I>(a, operation, false, scalar))
        return status;
    const owned_arrays_guard<I> release{scalar};

    const block_split<T, I> split{scalar, b, shape.rows / b, shape.cols / b};
    scratch_array<I> counts(split.block_rows + 1, alignment), marker(std::max<int64_t>(2 * split.block_cols, 1), alignment);
    if (!counts || !marker)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    I *last_row = marker.get(), *slot = marker.get() + split.block_cols;
    std::fill(last_row, last_row + split.block_cols, I(-1));
    counts[0] = 0;
    for (int64_t br = 0; br < split.block_rows; ++br) {
        I count = 0;
        split.each_block(br, last_row, [&](int64_t) { ++count; });
        counts[br + 1] = counts[br] + count;
    }
    const int64_t blocks = counts[split.block_rows];
    const auto area = checked_mul(b, b);
    owned_arrays<T, I> arrays;
    if (!area || !fits_in<I>(blocks + a.base) || !checked_mul(blocks, *area) || !fits_in<I>(blocks * *area))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (!arrays.allocate(split.block_rows, blocks, *area, scalar.values != nullptr))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::copy(counts.get(), counts.get() + split.block_rows + 1, arrays.starts.get());
    if (arrays.values)
        std::fill(arrays.values.get(), arrays.values.get() + blocks * *area, T(0));
    place_blocks(split, layout, last_row, slot, arrays);
    for (int64_t k = 0; k < blocks; ++k)
        arrays.index[k] += I(a.base);
    for (int64_t k = 0; k <= split.block_rows; ++k)
        arrays.starts[k] += I(a.base);

    out = owned_record<I>(I(split.block_rows), I(split.block_cols), a.base, I(b), layout);
    out.sorted = 1;
    out.nnz = I(blocks);
    adopt_arrays(out, arrays);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
