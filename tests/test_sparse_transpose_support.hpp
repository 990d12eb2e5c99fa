// Handles built by hand for the copy and transpose tests (the records are public structs),
// a dense reference of what a record holds, and random matrices in every compressed format.
#pragma once

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "zel/runtime.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/sparse_formats.hpp"

namespace zel::test {

// The records and data_type codes as the library itself names them.
template <class I> using matrix_of = sparse::handle_t<I>;
template <class I> using record_of = sparse::csr_t<I>;

// Value types as the tests see them (std::complex is layout-compatible with the C structs).
template <class T> constexpr int32_t data_type_of() { return sparse::data_type_code<T>(); }
template <class T> constexpr bool is_complex_value = !std::is_floating_point_v<T>;

// A matrix in compressed form whose arrays the test owns (the caller's arrays of a handle).
template <class T, class I> struct compressed {
    int32_t format = ZEL_SPARSE_FORMAT_CSR;
    I rows = 0, cols = 0; // of the stored structure (block rows and columns for BSR)
    I block_size = 1;
    I index_base = 0;
    std::vector<I> starts, ends; // ends empty: three-array form
    std::vector<I> indices;
    std::vector<T> values; // empty: no values
    I compressed_length() const { return format == ZEL_SPARSE_FORMAT_CSC ? cols : rows; }
};

// Frees a record the library built or filled, with what hangs from it.
template <class I> void free_record(record_of<I> *record)
{
    if (record == nullptr)
        return;
    if (record->owns_arrays) {
        zel_serv_free(record->rows_start);
        zel_serv_free(record->col_indx);
        zel_serv_free(record->values);
        zel_serv_free(record->aux);
    }
    if (record->opt_record) {
        zel_serv_free(record->opt_record->sub_three);
        zel_serv_free(record->opt_record->sub_four);
        zel_serv_free(record->opt_record);
    }
    zel_serv_free(record->opt_words);
    zel_serv_free(record);
}

template <class I> void free_handle(matrix_of<I> *handle)
{
    if (handle == nullptr)
        return;
    if (handle->format == ZEL_SPARSE_FORMAT_COO)
        zel_serv_free(handle->data);
    else
        free_record<I>(static_cast<record_of<I> *>(handle->data));
    free_record<I>(handle->transposed);
    zel_serv_free(handle);
}

// A handle over the test's arrays (owns_arrays 0), as the core's create functions leave it.
template <class T, class I> matrix_of<I> *make_handle(compressed<T, I> &a)
{
    auto *handle = static_cast<matrix_of<I> *>(zel_serv_malloc(sizeof(matrix_of<I>), 64));
    auto *record = static_cast<record_of<I> *>(zel_serv_malloc(sizeof(record_of<I>), 64));
    std::memset(handle, 0, sizeof *handle);
    std::memset(record, 0, sizeof *record);
    handle->data_type = data_type_of<T>();
    handle->format = a.format;
    handle->rows = (a.format == ZEL_SPARSE_FORMAT_BSR ? a.block_size : 1) * a.rows;
    handle->cols = (a.format == ZEL_SPARSE_FORMAT_BSR ? a.block_size : 1) * a.cols;
    handle->data = record;
    record->rows = a.rows;
    record->cols = a.cols;
    record->index_base = a.index_base;
    record->block_size = a.format == ZEL_SPARSE_FORMAT_BSR ? a.block_size : 1;
    record->block_layout = a.format == ZEL_SPARSE_FORMAT_BSR ? a.index_base : 0;
    record->inplace_copy = 1;
    record->rows_start = a.starts.data();
    record->rows_end = a.ends.empty() ? a.starts.data() + 1 : a.ends.data();
    record->three_array = a.ends.empty() ? 1 : 0;
    const I n = a.compressed_length();
    record->nnz = n > 0 ? record->rows_end[n - 1] - a.index_base : 0;
    record->col_indx = a.indices.data();
    record->values = a.values.empty() ? nullptr : a.values.data();
    return handle;
}

template <class I> struct handle_guard {
    matrix_of<I> *handle;
    ~handle_guard() { free_handle<I>(handle); }
};

template <class T> T random_value(std::mt19937_64 &rng)
{
    std::uniform_int_distribution<int> d(-50, 50); // small integers: exact in every type
    if constexpr (is_complex_value<T>)
        return T(d(rng) / 4.0f, d(rng) / 4.0f);
    else
        return T(d(rng) / 4.0f);
}

// Random matrix with about `fill` of its (block) entries stored, some rows empty, indices
// increasing within a row; values bs*bs per stored entry.
template <class T, class I>
compressed<T, I> random_compressed(std::mt19937_64 &rng, int32_t format, I rows, I cols, I bs, I base, double fill,
                                   bool with_values = true)
{
    compressed<T, I> a;
    a.format = format;
    a.rows = rows;
    a.cols = cols;
    a.block_size = format == ZEL_SPARSE_FORMAT_BSR ? bs : 1;
    a.index_base = base;
    const I n = a.compressed_length(), m = format == ZEL_SPARSE_FORMAT_CSC ? rows : cols;
    std::bernoulli_distribution keep(fill), empty_row(0.2);
    a.starts.push_back(base);
    for (I i = 0; i < n; ++i) {
        const bool empty = empty_row(rng);
        for (I j = 0; j < m; ++j)
            if (!empty && keep(rng)) {
                a.indices.push_back(j + base);
                if (with_values)
                    for (I k = 0; k < a.block_size * a.block_size; ++k)
                        a.values.push_back(random_value<T>(rng));
            }
        a.starts.push_back(static_cast<I>(a.indices.size()) + base);
    }
    return a;
}

// Dense scalar matrix (row-major, scalar rows x scalar cols) held by a record in `format`;
// a BSR block stores element (r, s) at r * bs + s.
template <class T, class I>
std::vector<T> dense_of(int32_t format, const record_of<I> &r, const T *values)
{
    const I bs = format == ZEL_SPARSE_FORMAT_BSR ? r.block_size : 1;
    const int64_t nr = int64_t(r.rows) * bs, nc = int64_t(r.cols) * bs;
    std::vector<T> dense(nr * nc, T(0));
    const I n = format == ZEL_SPARSE_FORMAT_CSC ? r.cols : r.rows;
    for (I i = 0; i < n; ++i)
        for (I e = r.rows_start[i] - r.index_base; e < r.rows_end[i] - r.index_base; ++e) {
            const I j = r.col_indx[e] - r.index_base;
            const I row = format == ZEL_SPARSE_FORMAT_CSC ? j : i, col = format == ZEL_SPARSE_FORMAT_CSC ? i : j;
            for (I a = 0; a < bs; ++a)
                for (I b = 0; b < bs; ++b)
                    dense[(int64_t(row) * bs + a) * nc + int64_t(col) * bs + b] +=
                        values ? values[e * bs * bs + a * bs + b] : T(1);
        }
    return dense;
}

// op(A) of a dense row-major nr x nc matrix: its transpose, conjugated for operation 12.
template <class T> std::vector<T> dense_op(const std::vector<T> &a, int64_t nr, int64_t nc, int operation)
{
    std::vector<T> t(a.size());
    for (int64_t i = 0; i < nr; ++i)
        for (int64_t j = 0; j < nc; ++j) {
            T v = a[i * nc + j];
            if constexpr (is_complex_value<T>)
                if (operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE)
                    v = std::conj(v);
            t[j * nr + i] = v;
        }
    return t;
}

// Indices strictly increasing inside every compressed row, offsets non-decreasing.
template <class I> ::testing::AssertionResult rows_sorted(const record_of<I> &r, I n)
{
    for (I i = 0; i < n; ++i) {
        if (r.rows_end[i] < r.rows_start[i])
            return ::testing::AssertionFailure() << "offsets decrease at row " << i;
        for (I e = r.rows_start[i] - r.index_base + 1; e < r.rows_end[i] - r.index_base; ++e)
            if (r.col_indx[e] <= r.col_indx[e - 1])
                return ::testing::AssertionFailure() << "row " << i << " not increasing at entry " << e;
    }
    return ::testing::AssertionSuccess();
}

// The exported members of one value type and width, with C++ value pointers.
template <class T, class I> struct members;
#define ZEL_TEST_MEMBERS(L, C, T, W, I)                                                                   \
    template <> struct members<T, I> {                                                                     \
        static constexpr const char *name = #L "_" #W;                                                     \
        static int copy(matrix_of<I> *h) { return zel_sparse_##L##_copy_sparse_matrix_##W(h); }           \
        static int transpose(matrix_of<I> *h, int op) { return zel_sparse_##L##_transposeMatrix_##W(h, op); } \
        static int kernel(I n_out, I n_in, I nnz, I nparts, int op, I base, I bs, const I *starts,        \
                          const I *ends, const I *indices, const T *values, I *out_starts, I *out_indices,  \
                          T *out_values, I *work)                                                          \
        {                                                                                                  \
            return zel_sparse_##L##_transpose_matrix_##W(n_out, n_in, nnz, nparts, op, base, bs, starts,   \
                                                         ends, indices, reinterpret_cast<const C *>(values), \
                                                         out_starts, out_indices,                          \
                                                         reinterpret_cast<C *>(out_values), work);         \
        }                                                                                                  \
        static int convert(matrix_of<I> *h) { return zel_sparse_##L##_convert_to_3_arrays_in_place_##W(h); } \
        static int out_of_place(matrix_of<I> *h, int op) { return zel_sparse_##L##_transpose_out_of_place_##W(h, op); } \
        static int create(const matrix_of<I> *h, int op, matrix_of<I> **r)                                \
        {                                                                                                  \
            return zel_sparse_##L##_create_and_transpose_out_of_place_##W(h, op, r);                       \
        }                                                                                                  \
        static int bsr_transpose(matrix_of<I> *h) { return zel_sparse_##L##_convert_bsr_transpose_##W(h); } \
    };
ZEL_TEST_MEMBERS(s, float, float, i4, int32_t)
ZEL_TEST_MEMBERS(d, double, double, i4, int32_t)
ZEL_TEST_MEMBERS(c, zel_complex8, std::complex<float>, i4, int32_t)
ZEL_TEST_MEMBERS(z, zel_complex16, std::complex<double>, i4, int32_t)
ZEL_TEST_MEMBERS(s, float, float, i8, int64_t)
ZEL_TEST_MEMBERS(d, double, double, i8, int64_t)
ZEL_TEST_MEMBERS(c, zel_complex8, std::complex<float>, i8, int64_t)
ZEL_TEST_MEMBERS(z, zel_complex16, std::complex<double>, i8, int64_t)
#undef ZEL_TEST_MEMBERS

template <class T, class I> struct member_pair {
    using value = T;
    using index = I;
    using api = members<T, I>;
};
using all_members = ::testing::Types<
    member_pair<float, int32_t>, member_pair<double, int32_t>, member_pair<std::complex<float>, int32_t>,
    member_pair<std::complex<double>, int32_t>, member_pair<float, int64_t>, member_pair<double, int64_t>,
    member_pair<std::complex<float>, int64_t>, member_pair<std::complex<double>, int64_t>>;

} // namespace zel::test
