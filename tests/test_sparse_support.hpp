// Shared by the sparse tests: the exported members of each value type and width (generated from
// the library's member list), one test-owned sparse matrix type, handles over it, and dense
// oracles of what a record holds.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "zel/runtime.h"
#include "zel/sparse_handle.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace sparse_test {

constexpr int op_n = ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
constexpr int op_t = ZEL_SPARSE_OPERATION_TRANSPOSE;
constexpr int op_c = ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE;
constexpr int row_major = ZEL_SPARSE_LAYOUT_ROW_MAJOR;
constexpr int col_major = ZEL_SPARSE_LAYOUT_COLUMN_MAJOR;
constexpr int stage_full = ZEL_SPARSE_STAGE_FULL_MULT, stage_count = ZEL_SPARSE_STAGE_NNZ_COUNT,
              stage_fill = ZEL_SPARSE_STAGE_FINALIZE_MULT, stage_no_values = ZEL_SPARSE_STAGE_FULL_MULT_NO_VAL;
constexpr int ok = ZEL_SPARSE_STATUS_SUCCESS;
constexpr int not_initialized = ZEL_SPARSE_STATUS_NOT_INITIALIZED;
constexpr int alloc_failed = ZEL_SPARSE_STATUS_ALLOC_FAILED;
constexpr int invalid = ZEL_SPARSE_STATUS_INVALID_VALUE;
constexpr int internal_error = ZEL_SPARSE_STATUS_INTERNAL_ERROR;
constexpr int not_supported = ZEL_SPARSE_STATUS_NOT_SUPPORTED;
constexpr int coo = ZEL_SPARSE_FORMAT_COO, csr = ZEL_SPARSE_FORMAT_CSR, csc = ZEL_SPARSE_FORMAT_CSC,
              bsr = ZEL_SPARSE_FORMAT_BSR;

// The handle's data_type codes, stated here rather than taken from the library: d 0, s 1, z 2, c 3.
template <class T> constexpr int32_t data_type_code = std::is_same_v<T, double>                ? 0
                                                      : std::is_same_v<T, float>               ? 1
                                                      : std::is_same_v<T, std::complex<double>> ? 2
                                                                                                : 3;

template <class T, class I> struct api;
#define ZEL_TEST_SPARSE_API(P, C, T, W, I)                                                                \
    template <> struct api<T, I> {                                                                        \
        using c_type = C;                                                                                 \
        using handle = zel_sparse_matrix_##W;                                                             \
        using record = zel_sparse_csr_record_##W;                                                         \
        using coo_record = zel_sparse_coo_record_##W;                                                     \
        using node = zel_sparse_proc_node_##W;                                                            \
        static constexpr const char *name = #P "_" #W;                                                    \
        static constexpr auto create_coo = zel_sparse_##P##_create_coo_##W;                               \
        static constexpr auto create_csr = zel_sparse_##P##_create_csr_##W;                               \
        static constexpr auto create_csc = zel_sparse_##P##_create_csc_##W;                               \
        static constexpr auto create_bsr = zel_sparse_##P##_create_bsr_##W;                               \
        static constexpr auto export_coo = zel_sparse_##P##_export_coo_##W;                               \
        static constexpr auto export_csr = zel_sparse_##P##_export_csr_##W;                               \
        static constexpr auto export_csc = zel_sparse_##P##_export_csc_##W;                               \
        static constexpr auto export_bsr = zel_sparse_##P##_export_bsr_##W;                               \
        static constexpr auto copy = zel_sparse_copy_##W;                                                 \
        static constexpr auto convert_csr = zel_sparse_convert_csr_##W;                                   \
        static constexpr auto convert_bsr = zel_sparse_convert_bsr_##W;                                   \
        static constexpr auto destroy = zel_sparse_destroy_##W;                                           \
        static constexpr auto set_mv_hint = zel_sparse_set_mv_hint_##W;                                   \
        static constexpr auto set_mm_hint = zel_sparse_set_mm_hint_##W;                                   \
        static constexpr auto set_memory_hint = zel_sparse_set_memory_hint_##W;                           \
        static constexpr auto set_inplace_copy = zel_sparse_##P##_do_set_inplace_copy_##W;                \
        static constexpr auto set_is_sycl_cpu = zel_sparse_##P##_do_set_is_sycl_cpu_##W;                  \
        static constexpr auto get_sorted = zel_sparse_##P##_do_get_sorted_property_##W;                   \
        static constexpr auto set_coo_arrays = zel_sparse_##P##_set_coo_data_arrays_##W;                  \
        static constexpr auto set_csr_arrays = zel_sparse_##P##_set_csr_data_arrays_##W;                  \
        static constexpr auto set_csc_arrays = zel_sparse_##P##_set_csc_data_arrays_##W;                  \
        static constexpr auto set_bsr_arrays = zel_sparse_##P##_set_bsr_data_arrays_##W;                  \
        static constexpr auto do_order = zel_sparse_##P##_do_order_##W;                                   \
        static constexpr auto order = zel_sparse_order_##W;                                               \
        static constexpr auto check_input = zel_sparse_##P##_check_input_data_##W;                        \
        static constexpr auto to_csr = zel_sparse_##P##_convert_any_to_csr_##W;                           \
        static constexpr auto to_csc = zel_sparse_##P##_convert_any_to_csc_##W;                           \
        static constexpr auto to_coo = zel_sparse_##P##_convert_any_to_coo_##W;                           \
        static constexpr auto to_bsr = zel_sparse_##P##_convert_any_to_bsr_##W;                           \
        static constexpr decltype(to_csr) to_csr_from[4] = {                                              \
            zel_sparse_##P##_convert_coo_to_csr_##W, zel_sparse_##P##_convert_csr_to_csr_##W,             \
            zel_sparse_##P##_convert_csc_to_csr_##W, zel_sparse_##P##_convert_bsr_to_csr_##W};            \
        static constexpr decltype(to_csc) to_csc_from[4] = {                                              \
            zel_sparse_##P##_convert_coo_to_csc_##W, zel_sparse_##P##_convert_csr_to_csc_##W,             \
            zel_sparse_##P##_convert_csc_to_csc_##W, zel_sparse_##P##_convert_bsr_to_csc_##W};            \
        static constexpr decltype(to_coo) to_coo_from[4] = {                                              \
            zel_sparse_##P##_convert_coo_to_coo_##W, zel_sparse_##P##_convert_csr_to_coo_##W,             \
            zel_sparse_##P##_convert_csc_to_coo_##W, zel_sparse_##P##_convert_bsr_to_coo_##W};            \
        static constexpr decltype(to_bsr) to_bsr_from[4] = {                                              \
            zel_sparse_##P##_convert_coo_to_bsr_##W, zel_sparse_##P##_convert_csr_to_bsr_##W,             \
            zel_sparse_##P##_convert_csc_to_bsr_##W, zel_sparse_##P##_convert_bsr_to_bsr_##W};            \
        static constexpr auto copy_arrays = zel_sparse_##P##_copy_sparse_matrix_##W;                      \
        static constexpr auto transpose = zel_sparse_##P##_transposeMatrix_##W;                           \
        static constexpr auto transpose_kernel = zel_sparse_##P##_transpose_matrix_##W;                   \
        static constexpr auto to_three_arrays = zel_sparse_##P##_convert_to_3_arrays_in_place_##W;        \
        static constexpr auto out_of_place = zel_sparse_##P##_transpose_out_of_place_##W;                 \
        static constexpr auto create_transposed = zel_sparse_##P##_create_and_transpose_out_of_place_##W; \
        static constexpr auto bsr_transpose = zel_sparse_##P##_convert_bsr_transpose_##W;                 \
        static constexpr auto syrkd = zel_sparse_##P##_syrkd_##W;                                         \
        static constexpr auto n_driver = zel_sparse_##P##_csr__g_n_syrkd_##W;                             \
        static constexpr auto t_driver = zel_sparse_##P##_csr__g_t_syrkd_##W;                             \
        static constexpr auto stage = zel_sparse_##P##_csr__g_n_syrk_##W;                                 \
        static constexpr auto bsr_stage = zel_sparse_##P##_bsr__g_n_syrk_##W;                             \
        static constexpr auto syrk = zel_sparse_syrk_##W;                                                 \
        static constexpr auto count = zel_sparse_syrk_count_##W;                                          \
        static constexpr auto fill = zel_sparse_syrk_fill_##W;                                            \
    };
ZEL_SPARSE_MEMBERS(ZEL_TEST_SPARSE_API)
#undef ZEL_TEST_SPARSE_API

template <class T, class I> using record_of = typename api<T, I>::record;

// One exported member: its value type T (C++), C (C ABI), real type R, index type I.
template <class T_, class I_> struct member {
    using T = T_;
    using I = I_;
    using A = api<T, I>;
    using C = typename A::c_type;
    using R = zel::real_t<T>;
    static constexpr bool complex = zel::is_complex_v<T>;
};
template <class, class... M> using drop_first = ::testing::Types<M...>;
#define ZEL_TEST_SPARSE_MEMBER(P, C, T, W, I) , member<T, I>
using all_members = drop_first<void ZEL_SPARSE_MEMBERS(ZEL_TEST_SPARSE_MEMBER)>;
#undef ZEL_TEST_SPARSE_MEMBER
struct member_names {
    template <class M> static std::string GetName(int) { return M::A::name; }
};

// Value pointers and scalars across the C ABI (std::complex is layout-compatible with the structs).
template <class T> auto *c_ptr(T *p) { return reinterpret_cast<typename member<T, int32_t>::C *>(p); }
template <class T> auto *c_ptr(const T *p) { return reinterpret_cast<const typename member<T, int32_t>::C *>(p); }

// The transpose kernel over C++ value pointers, the member chosen by the pointers' types.
template <class T, class I>
int transpose_kernel(int64_t n_out, int64_t n_in, int64_t nnz, int64_t nparts, int op, int64_t base, int64_t bs,
                     const I *starts, const I *ends, const I *indices, const T *values, I *out_starts,
                     I *out_indices, T *out_values, I *work)
{
    return api<T, I>::transpose_kernel(I(n_out), I(n_in), I(nnz), I(nparts), op, I(base), I(bs), starts, ends, indices,
                                       c_ptr(values), out_starts, out_indices, c_ptr(out_values), work);
}

template <class T> T make_value(double re, double im)
{
    if constexpr (zel::is_complex_v<T>)
        return T(zel::real_t<T>(re), zel::real_t<T>(im));
    else
        return T(re);
}
template <class T> T conj_of(T v) { return zel::conj_if(v, true); }

// Dense row-major matrix, the oracle of every sparse test.
template <class T> struct dense {
    int64_t rows = 0, cols = 0;
    std::vector<T> a;
    dense() = default;
    dense(int64_t m, int64_t n) : rows(m), cols(n), a(size_t(m * n), T(0)) {}
    T &at(int64_t i, int64_t j) { return a[size_t(i * cols + j)]; }
    T at(int64_t i, int64_t j) const { return a[size_t(i * cols + j)]; }
    bool operator==(const dense &) const = default;
};

// op(M): M itself, its transpose, or its conjugate transpose.
template <class T> dense<T> op_of(const dense<T> &m, int operation)
{
    if (operation == op_n)
        return m;
    dense<T> t(m.cols, m.rows);
    for (int64_t i = 0; i < m.rows; ++i)
        for (int64_t j = 0; j < m.cols; ++j)
            t.at(j, i) = operation == op_c ? conj_of(m.at(i, j)) : m.at(i, j);
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
    const double tolerance = 512 * std::numeric_limits<zel::real_t<T>>::epsilon();
    for (int64_t i = 0; i < expected.rows; ++i)
        for (int64_t j = 0; j < expected.cols; ++j)
            ASSERT_LE(std::abs(expected.at(i, j) - actual.at(i, j)), tolerance) << what << " at " << i << "," << j;
}

// A sparse matrix whose arrays the test owns. rows and cols are those of the stored structure
// (block rows and columns for BSR); CSC compresses columns; ends empty: three-array form;
// values empty: structure only; row_indices: the row of each entry, for COO.
template <class T, class I> struct sparse {
    int32_t format = csr;
    I rows = 0, cols = 0, block_size = 1, index_base = 0;
    int block_layout = 0; // 0 row-major blocks, 1 column-major
    std::vector<I> starts{0}, ends, indices, row_indices;
    std::vector<T> values;
    I length() const { return format == csc ? cols : rows; }
    I end(int64_t s) const { return ends.empty() ? starts[s + 1] : ends[s]; }
    I nnz() const { return I(indices.size()); }
    I *ends_ptr() { return ends.empty() ? starts.data() + 1 : ends.data(); }
    auto *c_values() { return c_ptr(values.data()); }
};

// The stored entries of m by rows (CSR, COO) or columns (CSC); BSR: every block of edge b with a
// nonzero, stored whole in the given block order (0 row-major).
template <class T, class I> sparse<T, I> compress(const dense<T> &m, int32_t format, I base, I b = 1, int order = -1)
{
    sparse<T, I> c;
    c.format = format;
    c.block_size = format == bsr ? b : 1;
    c.index_base = base;
    c.block_layout = format == bsr ? (order < 0 ? int(base) : order) : 0;
    c.rows = I(m.rows / c.block_size);
    c.cols = I(m.cols / c.block_size);
    const int64_t n = c.length(), other = format == csc ? c.rows : c.cols, bs = c.block_size;
    c.starts.assign(1, base);
    for (int64_t s = 0; s < n; ++s) {
        for (int64_t t = 0; t < other; ++t) {
            const int64_t bi = format == csc ? t : s, bj = format == csc ? s : t;
            bool any = false;
            for (int64_t k = 0; k < bs * bs; ++k)
                any = any || m.at(bi * bs + k / bs, bj * bs + k % bs) != T(0);
            if (!any)
                continue;
            c.indices.push_back(I(t + base));
            c.row_indices.push_back(I(s + base));
            for (int64_t k = 0; k < bs * bs; ++k) {
                const int64_t i = c.block_layout == 0 ? k / bs : k % bs, j = c.block_layout == 0 ? k % bs : k / bs;
                c.values.push_back(m.at(bi * bs + i, bj * bs + j));
            }
        }
        c.starts.push_back(I(c.indices.size() + base));
    }
    return c;
}

template <class T> T random_value(std::mt19937_64 &rng)
{
    // Halves of odd integers: exact in every type, and a stored entry is never zero.
    std::uniform_int_distribution<int> d(1, 100);
    auto part = [&] { return (d(rng) - 50.5) / 2.0; };
    return make_value<T>(part(), part());
}

// About `fill` of the (block) places stored, a fifth of the rows empty, indices increasing within
// a row (shuffled when asked); block_size² values per stored entry.
template <class T, class I>
sparse<T, I> random_sparse(std::mt19937_64 &rng, int32_t format, I rows, I cols, I bs, I base, double fill,
                           bool with_values = true, bool shuffle = false)
{
    sparse<T, I> a;
    a.format = format;
    a.rows = rows;
    a.cols = cols;
    a.block_size = format == bsr ? bs : 1;
    a.index_base = base;
    a.block_layout = format == bsr ? int(base) : 0;
    const I n = a.length(), m = format == csc ? rows : cols;
    std::bernoulli_distribution keep(fill), empty_row(0.2);
    a.starts.assign(1, base);
    for (I i = 0; i < n; ++i) {
        const size_t first = a.indices.size();
        const bool empty = empty_row(rng);
        for (I j = 0; j < m; ++j)
            if (!empty && keep(rng))
                a.indices.push_back(j + base);
        if (shuffle)
            std::shuffle(a.indices.begin() + first, a.indices.end(), rng);
        if (with_values)
            for (size_t k = first * a.block_size * a.block_size; k < a.indices.size() * a.block_size * a.block_size; ++k)
                a.values.push_back(random_value<T>(rng));
        a.starts.push_back(static_cast<I>(a.indices.size()) + base);
    }
    return a;
}

// Dense reading of compressed arrays: format CSR, CSC or BSR (block edge bs, block order
// `layout` 0 row-major); values null: a pattern of ones.
template <class T, class I>
dense<T> read_arrays(int32_t format, int64_t rows, int64_t cols, int64_t base, int64_t bs, int64_t layout,
                     const I *starts, const I *ends, const I *index, const T *values)
{
    dense<T> m(rows * bs, cols * bs);
    const int64_t n = format == csc ? cols : rows;
    for (int64_t s = 0; s < n; ++s)
        for (int64_t p = starts[s] - base; p < ends[s] - base; ++p) {
            const int64_t t = index[p] - base, bi = format == csc ? t : s, bj = format == csc ? s : t;
            for (int64_t k = 0; k < bs * bs; ++k) {
                const int64_t i = layout == 0 ? k / bs : k % bs, j = layout == 0 ? k % bs : k / bs;
                m.at(bi * bs + i, bj * bs + j) += values ? values[p * bs * bs + k] : T(1);
            }
        }
    return m;
}

template <class T, class I> dense<T> read(const sparse<T, I> &a)
{
    return read_arrays<T, I>(a.format, a.rows, a.cols, a.index_base, a.block_size, a.block_layout, a.starts.data(),
                             a.ends.empty() ? a.starts.data() + 1 : a.ends.data(), a.indices.data(),
                             a.values.empty() ? nullptr : a.values.data());
}

template <class T, class Record> dense<T> read_record(int32_t format, const Record &r, const void *values)
{
    return read_arrays<T>(format, r.rows, r.cols, r.index_base, format == bsr ? r.block_size : 1, r.block_layout,
                          r.rows_start, r.rows_end, r.col_indx, static_cast<const T *>(values));
}
template <class T, class Record> dense<T> read_record(int32_t format, const Record &r)
{
    return read_record<T>(format, r, r.values);
}

template <class T, class Coo> dense<T> read_coo(const Coo &r)
{
    dense<T> m(r.rows, r.cols);
    for (int64_t k = 0; k < r.nnz; ++k)
        m.at(r.row_indx[k] - r.index_base, r.col_indx[k] - r.index_base) += static_cast<const T *>(r.values)[k];
    return m;
}

// Dense reading of whatever a handle holds.
template <class T, class I> dense<T> read_handle(const typename api<T, I>::handle *h)
{
    if (h->format == coo)
        return read_coo<T>(*static_cast<const typename api<T, I>::coo_record *>(h->data));
    return read_record<T>(h->format, *static_cast<const typename api<T, I>::record *>(h->data));
}

// Creates a handle over the test's arrays through the exported create function of its format.
template <class T, class I> int create(const sparse<T, I> &a, typename api<T, I>::handle **h)
{
    using A = api<T, I>;
    auto &m = const_cast<sparse<T, I> &>(a);
    auto *v = m.values.empty() ? nullptr : m.c_values();
    const int base = int(a.index_base);
    switch (a.format) {
    case coo:
        return A::create_coo(h, base, a.rows, a.cols, a.nnz(), m.row_indices.data(), m.indices.data(), v);
    case csr:
        return A::create_csr(h, base, a.rows, a.cols, m.starts.data(), m.ends_ptr(), m.indices.data(), v);
    case csc:
        return A::create_csc(h, base, a.rows, a.cols, m.starts.data(), m.ends_ptr(), m.indices.data(), v);
    default:
        return A::create_bsr(h, base, a.block_layout == 0 ? row_major : col_major, a.rows, a.cols, a.block_size,
                             m.starts.data(), m.ends_ptr(), m.indices.data(), v);
    }
}

// A handle over the test's arrays, destroyed with the holder.
template <class T, class I> struct handle_of {
    using A = api<T, I>;
    typename A::handle *h = nullptr;
    handle_of() = default;
    // The create functions take values: a matrix without entries keeps one that is never read, a
    // structure without values is created over stand-ins that its record then drops.
    explicit handle_of(const sparse<T, I> &a)
    {
        auto &values = const_cast<sparse<T, I> &>(a).values;
        const bool stand_in = values.empty() && a.format != coo;
        if (stand_in)
            values.assign(size_t(a.nnz() * a.block_size * a.block_size) + 1, T(1));
        EXPECT_EQ(create(a, &h), ok);
        if (stand_in && a.nnz() > 0) {
            record().values = nullptr;
            values = {};
        }
    }
    handle_of(const handle_of &) = delete;
    handle_of &operator=(const handle_of &) = delete;
    ~handle_of()
    {
        if (h != nullptr) {
            EXPECT_EQ(A::destroy(h), ok);
        }
    }
    typename A::handle *operator->() const { return h; }
    typename A::record &record() const { return *static_cast<typename A::record *>(h->data); }
};

// Frees the arrays a conversion gave the caller.
template <class Record> void free_arrays(Record &r)
{
    if constexpr (requires { r.row_indx; })
        zel_serv_free(r.row_indx);
    else
        zel_serv_free(r.rows_start);
    zel_serv_free(r.col_indx);
    zel_serv_free(r.values);
}

// Indices strictly increasing inside each of n compressed rows.
template <class I> bool slices_increasing(const I *starts, const I *ends, const I *index, int64_t n, I base)
{
    for (int64_t s = 0; s < n; ++s)
        for (I p = starts[s] - base + 1; p < ends[s] - base; ++p)
            if (index[p] <= index[p - 1])
                return false;
    return true;
}

} // namespace sparse_test
