// Shared helpers of the A·Aᵀ / Aᵀ·A tests: the exported members per type, small CSR matrices,
// and an independent dense reference of the upper triangle.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "zel/sparse_handle.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/value_traits.hpp"

namespace syrk_test {

template <class C, class I> struct api;
#define ZEL_SYRK_TEST_API(P, C_, W, I_)                                                                      \
    template <> struct api<C_, I_> {                                                                         \
        using handle = zel_sparse_matrix_##W;                                                                \
        using record = zel_sparse_csr_record_##W;                                                            \
        static constexpr auto create_csr = zel_sparse_##P##_create_csr_##W;                                  \
        static constexpr auto create_bsr = zel_sparse_##P##_create_bsr_##W;                                  \
        static constexpr auto create_coo = zel_sparse_##P##_create_coo_##W;                                  \
        static constexpr auto destroy = zel_sparse_destroy_##W;                                              \
        static constexpr auto syrkd = zel_sparse_##P##_syrkd_##W;                                            \
        static constexpr auto n_driver = zel_sparse_##P##_csr__g_n_syrkd_##W;                                \
        static constexpr auto t_driver = zel_sparse_##P##_csr__g_t_syrkd_##W;                                \
        static constexpr auto stage = zel_sparse_##P##_csr__g_n_syrk_##W;                                    \
        static constexpr auto bsr_stage = zel_sparse_##P##_bsr__g_n_syrk_##W;                                \
        static constexpr auto syrk = zel_sparse_syrk_##W;                                                    \
        static constexpr auto count = zel_sparse_syrk_count_##W;                                             \
        static constexpr auto fill = zel_sparse_syrk_fill_##W;                                               \
        static constexpr auto transpose = zel_sparse_##P##_transposeMatrix_##W;                              \
    };
ZEL_SYRK_TEST_API(s, float, i4, int32_t)
ZEL_SYRK_TEST_API(d, double, i4, int32_t)
ZEL_SYRK_TEST_API(c, zel_complex8, i4, int32_t)
ZEL_SYRK_TEST_API(z, zel_complex16, i4, int32_t)
ZEL_SYRK_TEST_API(s, float, i8, int64_t)
ZEL_SYRK_TEST_API(d, double, i8, int64_t)
ZEL_SYRK_TEST_API(c, zel_complex8, i8, int64_t)
ZEL_SYRK_TEST_API(z, zel_complex16, i8, int64_t)
#undef ZEL_SYRK_TEST_API

template <class C_, class I_> struct member {
    using C = C_;
    using I = I_;
    using T = zel::cpp_value_t<C>;
    using R = zel::real_t<T>;
    using A = api<C, I>;
    static constexpr bool complex = zel::is_complex_v<T>;
};
using all_members = ::testing::Types<member<float, int32_t>, member<double, int32_t>, member<zel_complex8, int32_t>,
                                     member<zel_complex16, int32_t>, member<float, int64_t>, member<double, int64_t>,
                                     member<zel_complex8, int64_t>, member<zel_complex16, int64_t>>;

using cd = std::complex<double>;

template <class T> T make_value(double re, double im)
{
    if constexpr (zel::is_complex_v<T>)
        return T(static_cast<zel::real_t<T>>(re), static_cast<zel::real_t<T>>(im));
    else
        return static_cast<T>(re);
}
template <class T> cd widen(T v)
{
    if constexpr (zel::is_complex_v<T>)
        return cd(v.real(), v.imag());
    else
        return cd(static_cast<double>(v), 0.0);
}
template <class C> C to_c(zel::cpp_value_t<C> v) { return std::bit_cast<C>(v); }

// A CSR matrix held by the test (block_size > 1: BSR block pattern, blocks in `block_layout`).
template <class T, class I> struct matrix {
    I rows = 0, cols = 0, base = 0, block = 1;
    int layout = 0; // 0 row-major blocks, 1 column-major
    std::vector<I> rows_start{0}, col_indx;
    std::vector<T> values;
    std::vector<I> rows_end; // empty: each row ends where the next starts
    I nnz() const { return static_cast<I>(col_indx.size()); }
    I row_end(int64_t i) const { return rows_end.empty() ? rows_start[i + 1] : rows_end[i]; }
};

// Random pattern with about `density` of the (block) places filled, values in [-1, 1]; rows come
// sorted unless `shuffle`; empty rows appear where the dice say so.
template <class T, class I>
matrix<T, I> random_matrix(I rows, I cols, double density, I base, uint32_t seed, bool shuffle = false, I block = 1)
{
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0), coin(0.0, 1.0);
    matrix<T, I> a;
    a.rows = rows;
    a.cols = cols;
    a.base = base;
    a.block = block;
    a.layout = static_cast<int>(base);
    a.rows_start.assign(1, base);
    for (I i = 0; i < rows; ++i) {
        std::vector<I> row;
        for (I j = 0; j < cols; ++j)
            if (coin(gen) < density)
                row.push_back(j + base);
        if (shuffle)
            std::shuffle(row.begin(), row.end(), gen);
        for (I j : row) {
            a.col_indx.push_back(j);
            for (I t = 0; t < block * block; ++t)
                a.values.push_back(make_value<T>(value(gen), value(gen)));
        }
        a.rows_start.push_back(static_cast<I>(a.col_indx.size()) + base);
    }
    return a;
}

// Drops the entries of row r.
template <class T, class I> void clear_row(matrix<T, I> &a, I r)
{
    const I first = a.rows_start[r] - a.base, last = a.rows_start[r + 1] - a.base, bb = a.block * a.block;
    a.col_indx.erase(a.col_indx.begin() + first, a.col_indx.begin() + last);
    a.values.erase(a.values.begin() + first * bb, a.values.begin() + last * bb);
    for (I i = r + 1; i <= a.rows; ++i)
        a.rows_start[i] -= last - first;
}

// Dense copy of a matrix (scalar rows × cols), row-major, in double precision.
template <class T, class I> std::vector<cd> dense(const matrix<T, I> &a)
{
    const int64_t b = a.block, m = int64_t(a.rows) * b, n = int64_t(a.cols) * b;
    std::vector<cd> d(m * n);
    for (I i = 0; i < a.rows; ++i)
        for (I p = a.rows_start[i] - a.base; p < a.rows_start[i + 1] - a.base; ++p) {
            const int64_t j = a.col_indx[p] - a.base;
            for (int64_t r = 0; r < b; ++r)
                for (int64_t s = 0; s < b; ++s) {
                    const T v = a.values[p * b * b + (a.layout == 0 ? r * b + s : s * b + r)];
                    d[(i * b + r) * n + j * b + s] += widen(v);
                }
        }
    return d;
}

// Upper triangle of P = L·R from dense L (m×q) and R (q×m), with the sums of |terms| for the
// rounding bound and the structural pattern.
struct reference {
    int64_t m = 0;
    std::vector<cd> value;
    std::vector<double> bound;
    std::vector<char> pattern;
    cd at(int64_t i, int64_t j) const { return value[i * m + j]; }
};

inline reference upper_product(const std::vector<cd> &L, const std::vector<cd> &R, int64_t m, int64_t q,
                               bool full = false)
{
    reference ref;
    ref.m = m;
    ref.value.assign(m * m, cd());
    ref.bound.assign(m * m, 0.0);
    ref.pattern.assign(m * m, 0);
    for (int64_t i = 0; i < m; ++i)
        for (int64_t k = 0; k < q; ++k) {
            const cd l = L[i * q + k];
            if (l == cd())
                continue;
            for (int64_t j = full ? 0 : i; j < m; ++j) {
                const cd r = R[k * m + j];
                if (r == cd())
                    continue;
                ref.value[i * m + j] += l * r;
                ref.bound[i * m + j] += std::abs(l) * std::abs(r);
                ref.pattern[i * m + j] = 1;
            }
        }
    return ref;
}

// op(A)·op(A)ᴴ: operation 10 gives A·Aᴴ, 11 and 12 Aᴴ·A (Aᵀ for real matrices).
inline reference syrk_reference(const std::vector<cd> &A, int64_t rows, int64_t cols, int operation,
                                bool full = false)
{
    const bool nt = operation == 10;
    const int64_t m = nt ? rows : cols, q = nt ? cols : rows;
    std::vector<cd> L(m * q), R(q * m);
    for (int64_t i = 0; i < m; ++i)
        for (int64_t k = 0; k < q; ++k) {
            const cd v = nt ? A[i * cols + k] : std::conj(A[k * cols + i]);
            L[i * q + k] = v;
            R[k * m + i] = std::conj(v);
        }
    return upper_product(L, R, m, q, full);
}

template <class R> double tolerance(double bound) { return 16.0 * std::numeric_limits<R>::epsilon() * (bound + 1e-30); }

// A handle over the test's arrays (BSR when block > 1 or `as_bsr`), destroyed with the test.
template <class M> struct handle_holder {
    using C = typename M::C;
    using I = typename M::I;
    typename M::A::handle *h = nullptr;
    C no_values{};
    handle_holder() = default;
    handle_holder(matrix<typename M::T, I> &a, bool as_bsr = false)
    {
        I *rs = a.rows_start.data();
        // A matrix without entries still has a value array.
        C *v = a.values.empty() ? &no_values : reinterpret_cast<C *>(a.values.data());
        int status;
        if (as_bsr || a.block > 1)
            status = M::A::create_bsr(&h, a.base, a.layout == 0 ? 101 : 102, a.rows, a.cols, a.block, rs, rs + 1,
                                      a.col_indx.data(), v);
        else
            status = M::A::create_csr(&h, a.base, a.rows, a.cols, rs, a.rows_end.empty() ? rs + 1 : a.rows_end.data(),
                                      a.col_indx.data(), v);
        EXPECT_EQ(status, 0);
    }
    handle_holder(const handle_holder &) = delete;
    handle_holder &operator=(const handle_holder &) = delete;
    ~handle_holder()
    {
        if (h)
            M::A::destroy(h);
    }
};

} // namespace syrk_test
