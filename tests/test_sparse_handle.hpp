// Shared helpers of the sparse handle tests: typed access to the exported members, small
// matrices built from a dense reference, and a dense reading of any record.
#pragma once

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <limits>
#include <vector>

#include "zel/runtime.h"
#include "zel/sparse_handle.h"

namespace sparse_test {

template <class T, class I> struct api;

#define SPARSE_TEST_API(p, code, C, Cpp, W, Int)                                                                \
    template <> struct api<Cpp, Int> {                                                                    \
        using c_type = C;                                                                                 \
        using handle = zel_sparse_matrix_##W;                                                             \
        using csr_record = zel_sparse_csr_record_##W;                                                     \
        using coo_record = zel_sparse_coo_record_##W;                                                     \
        using node = zel_sparse_proc_node_##W;                                                            \
        static constexpr int32_t data_type = code;              \
        static constexpr auto create_coo = zel_sparse_##p##_create_coo_##W;                               \
        static constexpr auto create_csr = zel_sparse_##p##_create_csr_##W;                               \
        static constexpr auto create_csc = zel_sparse_##p##_create_csc_##W;                               \
        static constexpr auto create_bsr = zel_sparse_##p##_create_bsr_##W;                               \
        static constexpr auto export_coo = zel_sparse_##p##_export_coo_##W;                               \
        static constexpr auto export_csr = zel_sparse_##p##_export_csr_##W;                               \
        static constexpr auto export_csc = zel_sparse_##p##_export_csc_##W;                               \
        static constexpr auto export_bsr = zel_sparse_##p##_export_bsr_##W;                               \
        static constexpr auto copy = zel_sparse_copy_##W;                                                 \
        static constexpr auto convert_csr = zel_sparse_convert_csr_##W;                                   \
        static constexpr auto convert_bsr = zel_sparse_convert_bsr_##W;                                   \
        static constexpr auto destroy = zel_sparse_destroy_##W;                                           \
        static constexpr auto set_mv_hint = zel_sparse_set_mv_hint_##W;                                   \
        static constexpr auto set_mm_hint = zel_sparse_set_mm_hint_##W;                                   \
        static constexpr auto set_memory_hint = zel_sparse_set_memory_hint_##W;                           \
        static constexpr auto set_inplace_copy = zel_sparse_##p##_do_set_inplace_copy_##W;                \
        static constexpr auto set_is_sycl_cpu = zel_sparse_##p##_do_set_is_sycl_cpu_##W;                  \
        static constexpr auto get_sorted = zel_sparse_##p##_do_get_sorted_property_##W;                   \
        static constexpr auto set_coo_arrays = zel_sparse_##p##_set_coo_data_arrays_##W;                  \
        static constexpr auto set_csr_arrays = zel_sparse_##p##_set_csr_data_arrays_##W;                  \
        static constexpr auto set_csc_arrays = zel_sparse_##p##_set_csc_data_arrays_##W;                  \
        static constexpr auto set_bsr_arrays = zel_sparse_##p##_set_bsr_data_arrays_##W;                  \
        static constexpr auto do_order = zel_sparse_##p##_do_order_##W;                                   \
        static constexpr auto order = zel_sparse_order_##W;                                               \
        static constexpr auto check_input = zel_sparse_##p##_check_input_data_##W;                        \
        static constexpr auto find_procedure = zel_sparse_find_procedure_##W;                             \
        static constexpr auto find_mm_procedure = zel_sparse_find_mm_procedure_##W;                       \
        static constexpr auto to_csr = zel_sparse_##p##_convert_any_to_csr_##W;                           \
        static constexpr auto to_csc = zel_sparse_##p##_convert_any_to_csc_##W;                           \
        static constexpr auto to_coo = zel_sparse_##p##_convert_any_to_coo_##W;                           \
        static constexpr auto to_bsr = zel_sparse_##p##_convert_any_to_bsr_##W;                           \
        static constexpr decltype(to_csr) to_csr_from[4] = {                                              \
            zel_sparse_##p##_convert_coo_to_csr_##W, zel_sparse_##p##_convert_csr_to_csr_##W,             \
            zel_sparse_##p##_convert_csc_to_csr_##W, zel_sparse_##p##_convert_bsr_to_csr_##W};            \
        static constexpr decltype(to_csc) to_csc_from[4] = {                                              \
            zel_sparse_##p##_convert_coo_to_csc_##W, zel_sparse_##p##_convert_csr_to_csc_##W,             \
            zel_sparse_##p##_convert_csc_to_csc_##W, zel_sparse_##p##_convert_bsr_to_csc_##W};            \
        static constexpr decltype(to_coo) to_coo_from[4] = {                                              \
            zel_sparse_##p##_convert_coo_to_coo_##W, zel_sparse_##p##_convert_csr_to_coo_##W,             \
            zel_sparse_##p##_convert_csc_to_coo_##W, zel_sparse_##p##_convert_bsr_to_coo_##W};            \
        static constexpr decltype(to_bsr) to_bsr_from[4] = {                                              \
            zel_sparse_##p##_convert_coo_to_bsr_##W, zel_sparse_##p##_convert_csr_to_bsr_##W,             \
            zel_sparse_##p##_convert_csc_to_bsr_##W, zel_sparse_##p##_convert_bsr_to_bsr_##W};            \
        static C *c(Cpp *values) { return reinterpret_cast<C *>(values); }                                \
    };

#define SPARSE_TEST_MEMBERS(X)                                                                            \
    X(s, 1, float, float, i4, int32_t)                                                                    \
    X(d, 0, double, double, i4, int32_t)                                                                  \
    X(c, 3, zel_complex8, std::complex<float>, i4, int32_t)                                               \
    X(z, 2, zel_complex16, std::complex<double>, i4, int32_t)                                             \
    X(s, 1, float, float, i8, int64_t)                                                                    \
    X(d, 0, double, double, i8, int64_t)                                                                  \
    X(c, 3, zel_complex8, std::complex<float>, i8, int64_t)                                               \
    X(z, 2, zel_complex16, std::complex<double>, i8, int64_t)


SPARSE_TEST_MEMBERS(SPARSE_TEST_API)

template <class T, class I> struct member {
    using value = T;
    using index = I;
    using A = api<T, I>;
};
using all_members = ::testing::Types<member<float, int32_t>, member<double, int32_t>,
                                     member<std::complex<float>, int32_t>, member<std::complex<double>, int32_t>,
                                     member<float, int64_t>, member<double, int64_t>,
                                     member<std::complex<float>, int64_t>, member<std::complex<double>, int64_t>>;

template <class T> constexpr bool is_complex = false;
template <class R> constexpr bool is_complex<std::complex<R>> = true;

template <class T> T make_value(double re, double im)
{
    if constexpr (is_complex<T>)
        return T(typename T::value_type(re), typename T::value_type(im));
    else
        return T(re);
}
template <class T> T conj_of(T v)
{
    if constexpr (is_complex<T>)
        return std::conj(v);
    else
        return v;
}

// Dense row-major matrix, the oracle of every test.
template <class T> struct dense {
    int64_t rows = 0, cols = 0;
    std::vector<T> a;
    dense() = default;
    dense(int64_t m, int64_t n) : rows(m), cols(n), a(size_t(m * n), T(0)) {}
    T &at(int64_t i, int64_t j) { return a[size_t(i * cols + j)]; }
    T at(int64_t i, int64_t j) const { return a[size_t(i * cols + j)]; }
};

// op(M) for operation 10, 11, 12.
template <class T> dense<T> apply(const dense<T> &m, int operation)
{
    if (operation == 10)
        return m;
    dense<T> t(m.cols, m.rows);
    for (int64_t i = 0; i < m.rows; ++i)
        for (int64_t j = 0; j < m.cols; ++j)
            t.at(j, i) = operation == 12 ? conj_of(m.at(i, j)) : m.at(i, j);
    return t;
}

// A rows x cols matrix with empty rows and columns and complex parts that expose conjugation.
template <class T> dense<T> sample(int64_t rows, int64_t cols)
{
    dense<T> m(rows, cols);
    for (int64_t i = 0; i < rows; ++i)
        for (int64_t j = 0; j < cols; ++j)
            if (i != 2 && j != 4 && (i * 7 + j * 3) % 4 != 1)
                m.at(i, j) = make_value<T>(1.0 + i + 0.25 * j, 0.5 + j - i);
    return m;
}

template <class T> void expect_same(const dense<T> &expected, const dense<T> &actual, const char *what)
{
    ASSERT_EQ(expected.rows, actual.rows) << what;
    ASSERT_EQ(expected.cols, actual.cols) << what;
    using R = decltype(std::abs(T(0)));
    const double tolerance = 8 * std::numeric_limits<R>::epsilon() * 64;
    for (int64_t i = 0; i < expected.rows; ++i)
        for (int64_t j = 0; j < expected.cols; ++j)
            ASSERT_LE(std::abs(expected.at(i, j) - actual.at(i, j)), tolerance) << what << " at " << i << "," << j;
}

// Compressed arrays of a dense matrix: by rows (CSR) or by columns (CSC).
template <class T, class I> struct compressed {
    std::vector<I> starts, index;
    std::vector<T> values;
};
template <class T, class I> compressed<T, I> compress(const dense<T> &m, bool by_column, I base)
{
    compressed<T, I> c;
    const int64_t n = by_column ? m.cols : m.rows, other = by_column ? m.rows : m.cols;
    c.starts.push_back(base);
    for (int64_t s = 0; s < n; ++s) {
        for (int64_t t = 0; t < other; ++t) {
            const T v = by_column ? m.at(t, s) : m.at(s, t);
            if (v != T(0)) {
                c.index.push_back(I(t + base));
                c.values.push_back(v);
            }
        }
        c.starts.push_back(I(c.index.size() + base));
    }
    return c;
}

// BSR arrays: every block with a nonzero stored whole; layout 101 row-major, 102 column-major.
template <class T, class I> compressed<T, I> blocked(const dense<T> &m, int64_t b, int layout, I base)
{
    compressed<T, I> c;
    c.starts.push_back(base);
    for (int64_t br = 0; br < m.rows / b; ++br) {
        for (int64_t bc = 0; bc < m.cols / b; ++bc) {
            bool any = false;
            for (int64_t i = 0; i < b; ++i)
                for (int64_t j = 0; j < b; ++j)
                    any = any || m.at(br * b + i, bc * b + j) != T(0);
            if (!any)
                continue;
            c.index.push_back(I(bc + base));
            for (int64_t k = 0; k < b * b; ++k) {
                const int64_t i = layout == 101 ? k / b : k % b, j = layout == 101 ? k % b : k / b;
                c.values.push_back(m.at(br * b + i, bc * b + j));
            }
        }
        c.starts.push_back(I(c.index.size() + base));
    }
    return c;
}

// Dense reading of compressed arrays of a given format (BSR: block edge and record layout code).
template <class T, class I>
dense<T> read_compressed(int32_t format, int64_t rows, int64_t cols, int64_t base, int64_t b, int64_t layout,
                         const I *starts, const I *ends, const I *index, const T *values)
{
    dense<T> m(rows * b, cols * b);
    const int64_t n = format == 2 ? cols : rows;
    for (int64_t s = 0; s < n; ++s)
        for (int64_t p = starts[s] - base; p < ends[s] - base; ++p) {
            const int64_t t = index[p] - base;
            if (format == 2)
                m.at(t, s) += values[p];
            else if (format == 1)
                m.at(s, t) += values[p];
            else
                for (int64_t k = 0; k < b * b; ++k) {
                    const int64_t i = layout == 0 ? k / b : k % b, j = layout == 0 ? k % b : k / b;
                    m.at(s * b + i, t * b + j) += values[p * b * b + k];
                }
        }
    return m;
}

template <class T, class Record> dense<T> read_record(int32_t format, const Record &r)
{
    return read_compressed<T>(format, r.rows, r.cols, r.index_base, format == 3 ? r.block_size : 1,
                              r.block_layout, r.rows_start, r.rows_end, r.col_indx,
                              static_cast<const T *>(r.values));
}

template <class T, class Coo> dense<T> read_coo(const Coo &r)
{
    dense<T> m(r.rows, r.cols);
    const T *values = static_cast<const T *>(r.values);
    for (int64_t k = 0; k < r.nnz; ++k)
        m.at(r.row_indx[k] - r.index_base, r.col_indx[k] - r.index_base) += values[k];
    return m;
}

// Dense reading of whatever a handle holds.
template <class T, class I> dense<T> read_handle(const typename api<T, I>::handle *h)
{
    if (h->format == 0)
        return read_coo<T>(*static_cast<const typename api<T, I>::coo_record *>(h->data));
    return read_record<T>(h->format, *static_cast<const typename api<T, I>::csr_record *>(h->data));
}

} // namespace sparse_test
