// The sparse handle's records as both objects build, fill and free them: record types by index
// width, value-type codes, owned arrays and their hand-over, and the small primitives on
// compressed slices (sortedness, packing) that the core's lifecycle and the layer share.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "zel/sparse_types.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/compressed_view.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse {

// Every handle, record and array of the sparse family is page aligned.
inline constexpr int alignment = 4096;

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

// The handle's data_type code of a value type, C or C++ (d, s, z, c = 0, 1, 2, 3).
template <class T> constexpr int32_t data_type_code()
{
    using V = cpp_value_t<T>;
    if constexpr (std::is_same_v<V, double>)
        return ZEL_SPARSE_DATA_D;
    else if constexpr (std::is_same_v<V, float>)
        return ZEL_SPARSE_DATA_S;
    else if constexpr (std::is_same_v<V, std::complex<double>>)
        return ZEL_SPARSE_DATA_Z;
    else
        return ZEL_SPARSE_DATA_C;
}

// Runs body(T{}) for the C++ value type a data_type code names; `unknown` for any other code.
template <class Body> int with_value_type(int32_t data_type, int unknown, Body body)
{
    switch (data_type) {
    case ZEL_SPARSE_DATA_D: return body(double{});
    case ZEL_SPARSE_DATA_S: return body(float{});
    case ZEL_SPARSE_DATA_Z: return body(std::complex<double>{});
    case ZEL_SPARSE_DATA_C: return body(std::complex<float>{});
    default: return unknown;
    }
}

// Bytes of one value of a data_type code, 0 for an unknown code.
inline size_t value_size(int32_t data_type)
{
    return size_t(with_value_type(data_type, 0, [](auto value) { return int(sizeof value); }));
}

// Compressed dimension of a record: columns for CSC, (block) rows otherwise.
template <class I> I compressed_length(int32_t format, const csr_t<I> &record)
{
    return format == ZEL_SPARSE_FORMAT_CSC ? record.cols : record.rows;
}
template <class I> I other_length(int32_t format, const csr_t<I> &record)
{
    return format == ZEL_SPARSE_FORMAT_CSC ? record.rows : record.cols;
}
template <class I> I block_edge(int32_t format, const csr_t<I> &record)
{
    return format == ZEL_SPARSE_FORMAT_BSR ? record.block_size : I(1);
}

// A compressed record seen through its view.
template <class T, class I> compressed_view<T, I> view_of_record(const csr_t<I> &record, int32_t format)
{
    return {compressed_length<I>(format, record), other_length<I>(format, record), record.index_base,
            block_edge<I>(format, record), record.rows_start, record.rows_end, record.col_indx,
            static_cast<const T *>(record.values)};
}

// A caller's compressed arrays as the entry points receive them; records keep these pointers.
template <class I> struct caller_compressed {
    I *starts = nullptr;
    I *ends = nullptr;
    I *index = nullptr;
    void *values = nullptr;
};

// Where an export of a compressed record writes; the block fields only for BSR.
template <class I> struct compressed_export {
    int *base = nullptr;
    int *block_layout = nullptr;
    I *rows = nullptr;
    I *cols = nullptr;
    I *block = nullptr;
    I **starts = nullptr;
    I **ends = nullptr;
    I **index = nullptr;
    void **values = nullptr;
};

// A handle, record or node from the allocator, zero-filled; freed unless released.
template <class R> scratch_array<R> zeroed_record()
{
    scratch_array<R> record(1, alignment);
    if (record)
        std::memset(static_cast<void *>(record.get()), 0, sizeof(R));
    return record;
}

// ---- owned arrays ----

// Library-owned compressed arrays (three-array form) on their way into a record.
template <class T, class I> struct owned_arrays {
    I slices = 0;
    scratch_array<I> starts, index;
    scratch_array<T> values;

    // Room for `slices` slices and `entries` stored entries of `area` values each (values only
    // when asked); false when a size does not fit or memory runs out.
    bool allocate(int64_t slice_count, int64_t entries, int64_t area, bool with_values)
    {
        const auto slots = checked_add<int64_t>(slice_count, 1);
        const auto value_count = checked_mul<int64_t>(std::max<int64_t>(entries, 1), area);
        if (!slots || !value_count || !fits_in<I>(*slots) || !fits_in<I>(entries))
            return false;
        slices = I(slice_count);
        starts = scratch_array<I>(size_t(*slots), alignment);
        index = scratch_array<I>(size_t(std::max<int64_t>(entries, 1)), alignment);
        if (with_values)
            values = scratch_array<T>(size_t(*value_count), alignment);
        return starts && index && (!with_values || values);
    }
    // Entries up to the end of the last slice.
    I stored() const { return starts[slices] - starts[0]; }
};

// Library-owned coordinate arrays on their way into a COO record.
template <class T, class I> struct owned_pairs {
    scratch_array<I> rows, cols;
    scratch_array<T> values;

    bool allocate(int64_t entries, bool with_values)
    {
        const size_t length = size_t(std::max<int64_t>(entries, 1));
        rows = scratch_array<I>(length, alignment);
        cols = scratch_array<I>(length, alignment);
        if (with_values)
            values = scratch_array<T>(length, alignment);
        return rows && cols && (!with_values || values);
    }
};

// ---- freeing ----

// Frees the arrays of a record that owns them (owns_arrays 1) and forgets them.
template <class I> void free_owned_arrays(csr_t<I> &record)
{
    if (record.owns_arrays == 0)
        return;
    zel_serv_free(record.rows_start);
    zel_serv_free(record.col_indx);
    zel_serv_free(record.values);
    zel_serv_free(record.aux);
    record.rows_start = record.rows_end = record.col_indx = nullptr;
    record.values = record.aux = nullptr;
}
template <class I> void free_owned_arrays(coo_t<I> &record)
{
    if (record.owns_arrays == 0)
        return;
    zel_serv_free(record.row_indx);
    zel_serv_free(record.col_indx);
    zel_serv_free(record.values);
    record.row_indx = record.col_indx = nullptr;
    record.values = nullptr;
}

// Frees a record with its owned arrays and everything hanging from it.
template <class I> void free_record(csr_t<I> *record)
{
    if (record == nullptr)
        return;
    free_owned_arrays<I>(*record);
    if (zel_sparse_opt_record *opt = record->opt_record) {
        zel_serv_free(opt->sub_three);
        zel_serv_free(opt->sub_four);
        zel_serv_free(opt->extra);
        zel_serv_free(opt);
    }
    zel_serv_free(record->opt_words);
    zel_serv_free(record);
}
template <class I> void free_record(coo_t<I> *record)
{
    if (record == nullptr)
        return;
    free_owned_arrays<I>(*record);
    zel_serv_free(record);
}

// Points a record at new owned arrays in three-array form, freeing the old owned ones.
template <class T, class I> void adopt_arrays(csr_t<I> &record, owned_arrays<T, I> &arrays)
{
    free_owned_arrays<I>(record);
    record.rows_start = arrays.starts.release();
    record.rows_end = record.rows_start + 1;
    record.col_indx = arrays.index.release();
    record.values = arrays.values.release();
    record.aux = nullptr;
    record.owns_arrays = 1;
    record.three_array = 1;
}

// Points a COO record at new owned arrays, freeing the old owned ones.
template <class T, class I> void adopt_pairs(coo_t<I> &record, owned_pairs<T, I> &pairs)
{
    free_owned_arrays<I>(record);
    record.row_indx = pairs.rows.release();
    record.col_indx = pairs.cols.release();
    record.values = pairs.values.release();
    record.owns_arrays = 1;
}

// Frees a temporary record's owned arrays when it goes out of scope.
template <class I> struct owned_arrays_guard {
    csr_t<I> &record;
    ~owned_arrays_guard() { free_owned_arrays<I>(record); }
};

// Hangs a filled record on a new handle of the given value type, format and scalar shape; the
// record changes hands only on success.
template <class I>
int install_record(handle_t<I> **out, int32_t data_type, int32_t format, int64_t rows, int64_t cols, void *record)
{
    scratch_array<handle_t<I>> handle = zeroed_record<handle_t<I>>();
    if (!handle)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    handle_t<I> &h = *handle.get();
    h.data_type = data_type;
    h.format = format;
    h.rows = I(rows);
    h.cols = I(cols);
    h.data = record;
    *out = handle.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// ---- slices ----

// 1 when every slice holds non-decreasing indices.
template <class T, class I> I slices_sorted(const compressed_view<T, I> &a)
{
    for (I i = 0; i < a.slices; ++i)
        for (I p = a.begin(i) + 1; p < a.end(i); ++p)
            if (a.index[p] < a.index[p - 1])
                return 0;
    return 1;
}

// 1 when the coordinate pairs come in row-then-column order.
template <class I> I pairs_sorted(const I *rows, const I *cols, int64_t count)
{
    for (int64_t k = 1; k < count; ++k)
        if (rows[k] < rows[k - 1] || (rows[k] == rows[k - 1] && cols[k] < cols[k - 1]))
            return 0;
    return 1;
}

// out = the slices of a packed end to end (three-array form), values with their entries.
template <class T, class I> int pack_slices(const compressed_view<T, I> &a, owned_arrays<T, I> &out)
{
    int64_t total = 0;
    for (I i = 0; i < a.slices; ++i)
        total += a.length(i);
    if (!out.allocate(a.slices, total, a.block_area(), a.values != nullptr))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    const int64_t area = a.block_area();
    out.starts[0] = a.base;
    for (I i = 0; i < a.slices; ++i) {
        const int64_t from = a.begin(i), at = out.starts[i] - a.base;
        std::copy(a.index + from, a.index + a.end(i), out.index.get() + at);
        if (a.values != nullptr)
            std::copy(a.values + from * area, a.values + a.end(i) * area, out.values.get() + at * area);
        out.starts[i + 1] = out.starts[i] + a.length(i);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse
