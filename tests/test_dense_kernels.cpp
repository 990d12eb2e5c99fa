// Core dense kernels: factorisations reconstruct their input, solves leave small residuals,
// pivots and statuses follow LAPACK, in all four precisions and through every size path.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "alloc_fault.hpp"
#include "dense_reference.hpp"
#include "isa_variants.hpp"
#include "zel/dense_kernels.h"
#include "zel/serv.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace {

template <class T> struct api;
#define ZEL_TEST_API(P, C, T)                                                                             \
    template <> struct api<T> {                                                                           \
        using c_type = C;                                                                                 \
        static constexpr auto getrf = zel_lapack_x##P##getrf;                                             \
        static constexpr auto getrfnp = zel_lapack_##P##getrfnp;                                          \
        static constexpr auto getrs = zel_lapack_##P##getrs;                                              \
        static constexpr auto getri = zel_lapack_##P##getri;                                              \
        static constexpr auto getri_oop = zel_lapack_##P##getri_oop;                                      \
        static constexpr auto potrf = zel_lapack_##P##potrf;                                              \
        static constexpr auto laset = zel_lapack_##P##laset;                                              \
        static constexpr auto laswp = zel_lapack_##P##laswp;                                              \
        static constexpr auto gels = zel_lapack_##P##gels;                                                \
        static constexpr auto trsm = zel_blas_##P##trsm;                                                  \
        static constexpr auto axpy = zel_blas_x##P##axpy;                                                 \
        static constexpr auto copy = zel_blas_x##P##copy;                                                 \
    };
ZEL_DENSE_MEMBERS(ZEL_TEST_API)
#undef ZEL_TEST_API

template <class T> auto *c_ptr(T *p) { return reinterpret_cast<typename api<T>::c_type *>(p); }
template <class T> auto *c_ptr(const T *p) { return reinterpret_cast<const typename api<T>::c_type *>(p); }

// The shared dense references: matrices, products, factor reconstruction.
using namespace zel::test;

template <class T> real<T> abs1(T x)
{
    if constexpr (zel::is_complex_v<T>)
        return std::abs(x.real()) + std::abs(x.imag());
    else
        return std::abs(x);
}

// Applies the interchanges of 1-based ipiv to the rows of A in order (P^T*A when undone backwards).
template <class T> void swap_rows(matrix<T> &a, const std::vector<int64_t> &ipiv, bool backwards)
{
    const int64_t k = static_cast<int64_t>(ipiv.size());
    for (int64_t s = 0; s < k; ++s) {
        const int64_t i = backwards ? k - 1 - s : s, p = ipiv[static_cast<size_t>(i)] - 1;
        for (int64_t j = 0; j < a.n; ++j)
            std::swap(a(i, j), a(p, j));
    }
}

// The test's own LU with partial pivoting: first largest |re|+|im| in the column; the factors go
// to *factors where given.
template <class T> std::pair<std::vector<int64_t>, int64_t> reference_lu(matrix<T> a, matrix<T> *factors = nullptr)
{
    const int64_t k = std::min(a.m, a.n);
    std::vector<int64_t> ipiv(static_cast<size_t>(k));
    int64_t info = 0;
    for (int64_t c = 0; c < k; ++c) {
        int64_t p = c;
        for (int64_t i = c + 1; i < a.m; ++i)
            if (abs1(a(i, c)) > abs1(a(p, c)))
                p = i;
        ipiv[static_cast<size_t>(c)] = p + 1;
        for (int64_t j = 0; j < a.n; ++j)
            std::swap(a(c, j), a(p, j));
        if (a(c, c) == T(0)) {
            if (info == 0)
                info = c + 1;
            continue;
        }
        const T r = T(1) / a(c, c);
        for (int64_t i = c + 1; i < a.m; ++i)
            a(i, c) *= r;
        for (int64_t j = c + 1; j < a.n; ++j)
            for (int64_t i = c + 1; i < a.m; ++i)
                a(i, j) -= a(i, c) * a(c, j);
    }
    if (factors)
        *factors = a;
    return {ipiv, info};
}

// The padding rows below m must come back untouched.
template <class T> void expect_padding_kept(const matrix<T> &after, const matrix<T> &before)
{
    for (int64_t j = 0; j < after.n; ++j)
        for (int64_t i = after.m; i < after.ld; ++i)
            ASSERT_EQ(after(i, j), before(i, j)) << "padding row " << i << " column " << j;
}

template <class T> struct DenseKernels : ::testing::Test {};
using value_types = ::testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(DenseKernels, value_types);

// Sizes that reach every size-specialised path and the general one.
const std::vector<int64_t> square_sizes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 15, 16, 17, 24, 31, 32, 33, 48, 63, 64, 65, 100};

TYPED_TEST(DenseKernels, GetrfReconstructsWithLapackPivots)
{
    using T = TypeParam;
    std::vector<std::pair<int64_t, int64_t>> shapes;
    for (int64_t n : square_sizes)
        shapes.push_back({n, n});
    for (auto s : std::vector<std::pair<int64_t, int64_t>>{{5, 3}, {3, 5}, {8, 2}, {2, 8}, {17, 9}, {9, 17}, {70, 40}, {40, 70}})
        shapes.push_back(s);
    for (auto [m, n] : shapes) {
        SCOPED_TRACE("m=" + std::to_string(m) + " n=" + std::to_string(n));
        const matrix<T> a = random_matrix<T>(m, n, 100 + m * 7 + n, m + 3);
        matrix<T> f = a;
        std::vector<int64_t> ipiv(static_cast<size_t>(std::min(m, n)), -7);
        int64_t info = -9;
        api<T>::getrf(&m, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
        EXPECT_EQ(info, 0);
        expect_padding_kept(f, a);
        auto [l, u] = split_lu(f);
        matrix<T> plu = product(l, u);
        swap_rows(plu, ipiv, true);
        EXPECT_LE(max_diff(plu, a), 8 * real<T>(std::max(m, n)) * eps<T>);
        if (std::max(m, n) <= 33) { // beyond that rounding may legitimately break near-ties
            EXPECT_EQ(ipiv, reference_lu(a).first);
        }
    }
}

TYPED_TEST(DenseKernels, GetrfTiesAndSingularColumns)
{
    using T = TypeParam;
    // Equal magnitudes: the first one wins. In complex, |re|+|im| decides, not the modulus. The
    // same in column 4, past the first four (the orders that factor in blocks take the trailing
    // columns as a matrix of their own): rows below the fourth are zero in columns 0-3 there, so
    // column 4 reaches its step unchanged and its equal magnitudes decide.
    const std::vector<std::pair<int64_t, int64_t>> tied = {{0, 2}, {0, 3}, {0, 4}, {0, 7}, {0, 8}, {0, 16}, {0, 40},
                                                           {4, 6}, {4, 7}, {4, 8}, {4, 11}, {4, 12}};
    for (auto [c, n] : tied) {
        SCOPED_TRACE("column " + std::to_string(c) + " n=" + std::to_string(n));
        matrix<T> a = random_matrix<T>(n, n, 7 + n + 10 * c);
        for (int64_t j = 0; j < c; ++j)
            for (int64_t i = c; i < n; ++i)
                a(i, j) = T(0);
        for (int64_t i = c; i < n; ++i)
            a(i, c) = T(i % 2 ? -2 : 1);
        a(n - 1, c) = T(2);
        if constexpr (zel::is_complex_v<T>)
            a(c, c) = T(1.5, 1.5); // |.| = 2.12 > 2, yet |re|+|im| = 3 beats 2 only by that rule
        matrix<T> f = a;
        std::vector<int64_t> ipiv(static_cast<size_t>(n));
        int64_t info = -1;
        api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
        EXPECT_EQ(info, 0);
        EXPECT_EQ(ipiv[c], c + (zel::is_complex_v<T> ? 1 : 2));
        EXPECT_EQ(ipiv, reference_lu(a).first);
        auto [l, u] = split_lu(f);
        matrix<T> plu = product(l, u);
        swap_rows(plu, ipiv, true);
        EXPECT_LE(max_diff(plu, a), 8 * real<T>(n) * eps<T>);
    }
    // A tie between rows that an interchange has put out of their order: row 0 goes to the bottom
    // at step 0 (its column-0 entry is the only nonzero one, so column 1 reaches step 1 as it was),
    // and in column 1 row 1 then comes before it though it lies below it in memory. Kernels that
    // leave the rows in place while eliminating must still take the first in the new order.
    for (int64_t n : {3, 4, 5, 7, 8, 9, 11, 12, 15, 16, 17}) {
        SCOPED_TRACE("reordered tie, n=" + std::to_string(n));
        matrix<T> a = random_matrix<T>(n, n, 53 + n);
        for (int64_t i = 0; i < n; ++i) {
            a(i, 0) = T(i == n - 1 ? 4 : 0);
            a(i, 1) = i < 2 ? T(i == 0 ? 2 : -2) : a(i, 1) * real<T>(0.5);
        }
        matrix<T> f = a;
        std::vector<int64_t> ipiv(static_cast<size_t>(n));
        int64_t info = -1;
        api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
        EXPECT_EQ(info, 0);
        EXPECT_EQ(ipiv[0], n);
        EXPECT_EQ(ipiv[1], 2);
        EXPECT_EQ(ipiv, reference_lu(a).first);
        auto [l, u] = split_lu(f);
        matrix<T> plu = product(l, u);
        swap_rows(plu, ipiv, true);
        EXPECT_LE(max_diff(plu, a), 8 * real<T>(n) * eps<T>);
    }
    // Far from 1 the modulus squared of a complex pivot leaves the range, so its reciprocal
    // takes the guarded path; the pivots, the reconstruction and the inverse must not notice.
    const real<T> tiny = sizeof(real<T>) == 4 ? real<T>(1e-22) : real<T>(1e-170);
    for (real<T> scale : {tiny, 1 / tiny}) {
        for (int64_t n : {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 16, 33}) {
            SCOPED_TRACE("n=" + std::to_string(n) + " scale=" + std::to_string(std::log10(scale)));
            matrix<T> a = random_matrix<T>(n, n, 31 + n);
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < n; ++i)
                    a(i, j) *= scale;
            matrix<T> f = a;
            std::vector<int64_t> ipiv(static_cast<size_t>(n));
            int64_t info = -1;
            api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
            ASSERT_EQ(info, 0);
            EXPECT_EQ(ipiv, reference_lu(a).first);
            auto [l, u] = split_lu(f);
            matrix<T> plu = product(l, u);
            swap_rows(plu, ipiv, true);
            EXPECT_LE(max_diff(plu, a), 8 * real<T>(n) * eps<T> * max_abs(a));
            matrix<T> x(n, n);
            api<T>::getri_oop(&n, c_ptr(f.data()), &f.ld, ipiv.data(), c_ptr(x.data()), &x.ld, &info);
            ASSERT_EQ(info, 0);
            matrix<T> id(n, n);
            for (int64_t i = 0; i < n; ++i)
                id(i, i) = T(1);
            EXPECT_LE(max_diff(product(a, x), id), 32 * real<T>(n) * eps<T> * max_abs(a) * max_abs(x));
        }
    }
    // A zero column k gives info = k+1; the factorisation still reconstructs A.
    // 33, 40 and 63 put n / 2 inside the second block of columns of the orders factored in blocks.
    for (int64_t n : {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 33, 40, 50, 63, 64}) {
        for (int64_t zero_col : {int64_t(0), n / 2, n - 1}) {
            SCOPED_TRACE("n=" + std::to_string(n) + " zero column " + std::to_string(zero_col));
            matrix<T> a = random_matrix<T>(n, n, 11 + n);
            for (int64_t i = 0; i < n; ++i)
                a(i, zero_col) = T(0);
            if (zero_col + 1 < n) // a second zero later must not overwrite the first status
                for (int64_t i = 0; i < n; ++i)
                    a(i, n - 1) = T(0);
            matrix<T> f = a;
            std::vector<int64_t> ipiv(static_cast<size_t>(n));
            int64_t info = 0;
            api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
            EXPECT_EQ(info, zero_col + 1);
            auto [l, u] = split_lu(f);
            matrix<T> plu = product(l, u);
            swap_rows(plu, ipiv, true);
            EXPECT_LE(max_diff(plu, a), 8 * real<T>(n) * eps<T>);
            for (int64_t i = 0; i < n; ++i)
                EXPECT_TRUE(std::isfinite(std::abs(f(i, i))));
        }
    }
    // Empty and bad arguments.
    int64_t zero = 0, two = 2, one = 1, info = 5;
    T dummy[4] = {};
    int64_t ipiv[2] = {};
    api<T>::getrf(&zero, &two, c_ptr(dummy), &one, ipiv, &info);
    EXPECT_EQ(info, 0);
    info = 5;
    api<T>::getrf(&zero, &zero, c_ptr(dummy), &one, ipiv, &info);
    EXPECT_EQ(info, 0);
    info = 5;
    api<T>::potrf("L", &zero, c_ptr(dummy), &one, &info, 1);
    EXPECT_EQ(info, 0);
    info = 5;
    api<T>::getrs("N", &zero, &two, c_ptr(dummy), &one, ipiv, c_ptr(dummy), &one, &info, 1);
    EXPECT_EQ(info, 0);
    info = 5;
    api<T>::getri(&zero, c_ptr(dummy), &one, ipiv, c_ptr(dummy), &one, &info);
    EXPECT_EQ(info, 0);
    info = 5;
    api<T>::getri_oop(&zero, c_ptr(dummy), &one, ipiv, c_ptr(dummy + 2), &one, &info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(dummy[2], T(0));
    api<T>::getrf(&two, &two, c_ptr(dummy), &one, ipiv, &info);
    EXPECT_EQ(info, -4);
}

// Interchanges planned in advance: with A = P^T*L*U and L's entries of modulus below 1/sqrt(2),
// every step finds |re|+|im| largest in the row P names. The patterns put the pivot in row k's
// own vector or the next one's, leave it where it is, or take it from the far end; the orders
// cover each kernel from 7 to 17, odd and even steps alike.
TYPED_TEST(DenseKernels, GetrfTakesPlannedInterchanges)
{
    using T = TypeParam;
    for (int64_t n : {7, 8, 11, 12, 13, 15, 16, 17}) {
        for (int pattern = 0; pattern < 3; ++pattern) {
            SCOPED_TRACE("n=" + std::to_string(n) + " pattern " + std::to_string(pattern));
            std::vector<int64_t> planned(static_cast<size_t>(n));
            for (int64_t k = 0; k < n; ++k) {
                const int64_t beside = std::min(k + 1, n - 1), mixed[3] = {beside, k, n - 1};
                planned[static_cast<size_t>(k)] = 1 + (pattern == 0 ? beside : pattern == 1 ? k : mixed[k % 3]);
            }
            matrix<T> l = random_matrix<T>(n, n, 400 + n + pattern), u = random_matrix<T>(n, n, 500 + n + pattern);
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < n; ++i) {
                    l(i, j) = i < j ? T(0) : i == j ? T(1) : l(i, j) * real<T>(0.45);
                    u(i, j) = i > j ? T(0) : i == j ? u(i, j) + T(3) : u(i, j); // well away from singular
                }
            matrix<T> a = product(l, u);
            swap_rows(a, planned, true);
            matrix<T> f = a;
            std::vector<int64_t> ipiv(static_cast<size_t>(n));
            int64_t info = -1;
            api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
            EXPECT_EQ(info, 0);
            EXPECT_EQ(ipiv, planned);
            auto [fl, fu] = split_lu(f);
            EXPECT_LE(max_diff(fl, l), 64 * real<T>(n) * eps<T>);
            matrix<T> plu = product(fl, fu);
            swap_rows(plu, ipiv, true);
            EXPECT_LE(max_diff(plu, a), 8 * real<T>(n) * eps<T> * max_abs(a));
        }
    }
}

// An infinite entry goes only where the elimination carries it: rows finished before it is met
// keep their values (x - 0*inf would make them NaN). Row 2 of the last column is infinite and,
// the diagonal dominating, becomes the pivot row of step 2. Only the complex double kernels keep
// them so far (see docs/dense_kernels.md).
TYPED_TEST(DenseKernels, GetrfKeepsFinishedRowsFromAnInfinity)
{
    using T = TypeParam;
    if constexpr (!std::is_same_v<T, std::complex<double>>)
        GTEST_SKIP() << "the vector kernels of this precision let x - 0*inf reach finished rows";
    for (int64_t n : {3, 4, 5, 6, 7, 8, 9, 12, 16, 24, 40}) {
        SCOPED_TRACE("n=" + std::to_string(n));
        matrix<T> a = random_matrix<T>(n, n, 67 + n);
        for (int64_t i = 0; i < n; ++i)
            a(i, i) += T(real<T>(4 * n));
        a(2, n - 1) = T(std::numeric_limits<real<T>>::infinity());
        matrix<T> f = a, expected(n, n);
        std::vector<int64_t> ipiv(static_cast<size_t>(n));
        int64_t info = -1;
        api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
        EXPECT_EQ(info, 0);
        EXPECT_EQ(ipiv, reference_lu(a, &expected).first);
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i) {
                const bool finite = std::isfinite(std::abs(expected(i, j)));
                EXPECT_EQ(std::isfinite(std::abs(f(i, j))), finite) << "(" << i << ", " << j << ")";
                if (finite) {
                    EXPECT_LE(abs1(f(i, j) - expected(i, j)), 8 * real<T>(n) * eps<T> * (1 + abs1(expected(i, j))))
                        << "(" << i << ", " << j << ")";
                }
            }
    }
}

TYPED_TEST(DenseKernels, GetrfnpReconstructsAndReportsZeroPivots)
{
    using T = TypeParam;
    std::vector<std::pair<int64_t, int64_t>> shapes;
    for (int64_t n : square_sizes)
        shapes.push_back({n, n});
    for (auto s : std::vector<std::pair<int64_t, int64_t>>{{6, 3}, {3, 6}, {80, 45}, {45, 80}})
        shapes.push_back(s);
    for (auto [m, n] : shapes) {
        SCOPED_TRACE("m=" + std::to_string(m) + " n=" + std::to_string(n));
        matrix<T> a = random_matrix<T>(m, n, 300 + m + n, m + 1);
        for (int64_t i = 0; i < std::min(m, n); ++i)
            a(i, i) += T(real<T>(std::max(m, n))); // diagonally dominant: no pivoting needed
        matrix<T> f = a;
        int64_t info = -3;
        api<T>::getrfnp(&m, &n, c_ptr(f.data()), &f.ld, &info);
        EXPECT_EQ(info, 0);
        expect_padding_kept(f, a);
        auto [l, u] = split_lu(f);
        EXPECT_LE(max_diff(product(l, u), a), 8 * real<T>(std::max(m, n)) * eps<T> * max_abs(a));
    }
    // First zero pivot: at the start, inside the first panel, and in a later panel.
    for (int64_t n : {1, 4, 8, 40, 70}) {
        for (int64_t k : {int64_t(0), n / 2, n - 1}) {
            matrix<T> a(n, n);
            for (int64_t i = 0; i < n; ++i)
                a(i, i) = T(1);
            a(k, k) = T(0);
            if (k + 1 < n)
                a(n - 1, n - 1) = T(0);
            int64_t info = 0;
            api<T>::getrfnp(&n, &n, c_ptr(a.data()), &a.ld, &info);
            EXPECT_EQ(info, k + 1) << "n=" << n;
        }
    }
    int64_t m = -1, n = 2, lda = 2, info = 0;
    T dummy[4] = {};
    api<T>::getrfnp(&m, &n, c_ptr(dummy), &lda, &info);
    EXPECT_EQ(info, -1);
}

TYPED_TEST(DenseKernels, PotrfBothTrianglesAndIndefinite)
{
    using T = TypeParam;
    for (int64_t n : square_sizes) {
        for (char uplo : {'L', 'U', 'l'}) {
            SCOPED_TRACE("n=" + std::to_string(n) + " uplo=" + uplo);
            const matrix<T> a = hpd_matrix<T>(n, 500 + n);
            matrix<T> f = a;
            const T sentinel = T(1234);
            for (int64_t j = 0; j < n; ++j) // the other triangle must stay as it was
                for (int64_t i = 0; i < n; ++i)
                    if ((std::toupper(uplo) == 'L') ? i < j : i > j)
                        f(i, j) = sentinel;
            int64_t info = -1;
            api<T>::potrf(&uplo, &n, c_ptr(f.data()), &f.ld, &info, 1);
            ASSERT_EQ(info, 0);
            matrix<T> t(n, n);
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < n; ++i) {
                    const bool in_triangle = (std::toupper(uplo) == 'L') ? i >= j : i <= j;
                    if (in_triangle)
                        t(i, j) = f(i, j);
                    else
                        EXPECT_EQ(f(i, j), sentinel);
                }
            for (int64_t i = 0; i < n; ++i) {
                EXPECT_EQ(std::imag(std::complex<real<T>>(f(i, i))), 0);
                EXPECT_GT(std::real(std::complex<real<T>>(f(i, i))), 0);
            }
            matrix<T> rebuilt = std::toupper(uplo) == 'L' ? product(t, op(t, 'C')) : product(op(t, 'C'), t);
            EXPECT_LE(max_diff(rebuilt, a), 8 * real<T>(n) * eps<T> * max_abs(a));
        }
    }
    // A non-positive leading minor of order k gives info = k (on every path: 24 and 64 reach the
    // padded kernels of both precisions; up to 8, every column of the register kernels; 33 to 64
    // the complex kernels that factor in blocks, (n + 1) / 2 inside their second block). The
    // leading minor of order k - 1 comes back factored, the failing diagonal entry as its Schur
    // complement (what lies below or right of that minor differs between blocked forms).
    for (int64_t n : {1, 2, 3, 4, 5, 6, 7, 8, 16, 24, 33, 40, 48, 63, 64}) {
        std::vector<int64_t> columns = {1, (n + 1) / 2, n};
        if (n <= 8)
            for (int64_t k = 2; k < n; ++k)
                columns.push_back(k);
        for (int64_t k : columns) {
            for (char uplo : {'L', 'U'}) {
                matrix<T> a = hpd_matrix<T>(n, 600 + n);
                matrix<T> f = a;
                // Make the k-th leading minor zero and everything before it untouched.
                T s(0);
                {
                    matrix<T> g = a;
                    int64_t km1 = k - 1, info = 0;
                    if (km1 > 0)
                        api<T>::potrf("L", &km1, c_ptr(g.data()), &g.ld, &info, 1);
                    for (int64_t j = 0; j < km1; ++j) {
                        T x = a(k - 1, j);
                        for (int64_t q = 0; q < j; ++q)
                            x -= g(k - 1, q) * conj(g(j, q));
                        x /= g(j, j);
                        g(k - 1, j) = x;
                        s += x * conj(x);
                    }
                }
                f(k - 1, k - 1) = s - T(real<T>(0.5)); // the Schur complement becomes -0.5
                const matrix<T> minor = f;
                // The diagonal's imaginary parts are never read; the failing entry comes back real.
                if constexpr (zel::is_complex_v<T>)
                    for (int64_t j = 0; j < n; ++j)
                        f(j, j) += T(std::complex<real<T>>(0, real<T>(0.25)));
                int64_t info = 0;
                api<T>::potrf(&uplo, &n, c_ptr(f.data()), &f.ld, &info, 1);
                EXPECT_EQ(info, k) << "n=" << n << " uplo=" << uplo;
                auto factor = [&](int64_t i, int64_t q) { return uplo == 'L' ? f(i, q) : conj(f(q, i)); };
                const real<T> tol = 16 * real<T>(n) * eps<T> * max_abs(a);
                real<T> worst = 0;
                for (int64_t j = 0; j + 1 < k; ++j)
                    for (int64_t i = j; i + 1 < k; ++i) {
                        T x(0);
                        for (int64_t q = 0; q <= j; ++q)
                            x += factor(i, q) * conj(factor(j, q));
                        worst = std::max(worst, abs1(x - minor(i, j)));
                    }
                EXPECT_LE(worst, tol) << "n=" << n << " k=" << k << " uplo=" << uplo;
                EXPECT_NEAR(std::real(std::complex<real<T>>(f(k - 1, k - 1))), real<T>(-0.5), tol) << "n=" << n << " k=" << k;
                EXPECT_EQ(std::imag(std::complex<real<T>>(f(k - 1, k - 1))), 0) << "n=" << n << " k=" << k;
            }
        }
    }
}

TYPED_TEST(DenseKernels, GetrsResidualsForEveryTranspose)
{
    using T = TypeParam;
    for (int64_t n : square_sizes) {
        for (int64_t nrhs : {1, 3, 8, 12}) {
            for (char trans : {'N', 'T', 'C', 't'}) {
                SCOPED_TRACE("n=" + std::to_string(n) + " nrhs=" + std::to_string(nrhs) + " trans=" + trans);
                const matrix<T> a = random_matrix<T>(n, n, 700 + n, n + 2);
                const matrix<T> b = random_matrix<T>(n, nrhs, 800 + n, n + 1);
                matrix<T> f = a, x = b;
                std::vector<int64_t> ipiv(static_cast<size_t>(n));
                int64_t info = -1;
                api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
                ASSERT_EQ(info, 0);
                api<T>::getrs(&trans, &n, &nrhs, c_ptr(f.data()), &f.ld, ipiv.data(), c_ptr(x.data()), &x.ld,
                              &info, 1);
                ASSERT_EQ(info, 0);
                expect_padding_kept(x, b);
                const matrix<T> r = product(op(a, static_cast<char>(std::toupper(trans))), x);
                real<T> scale = max_abs(a) * max_abs(x) * real<T>(n);
                EXPECT_LE(max_diff(r, b), 16 * eps<T> * scale);
            }
        }
    }
    int64_t n = 2, nrhs = 1, lda = 2, ldb = 2, info = 0;
    T a[4] = {}, b[2] = {};
    int64_t ipiv[2] = {1, 2};
    api<T>::getrs("X", &n, &nrhs, c_ptr(a), &lda, ipiv, c_ptr(b), &ldb, &info, 1);
    EXPECT_EQ(info, -1);
}

// The inverse both ways the drivers build it: getri in place, and identity + swaps + two trsm.
TYPED_TEST(DenseKernels, InverseInPlaceAndOutOfPlace)
{
    using T = TypeParam;
    for (int64_t n : square_sizes) {
        SCOPED_TRACE("n=" + std::to_string(n));
        const matrix<T> a = random_matrix<T>(n, n, 900 + n, n + 1);
        matrix<T> f = a;
        std::vector<int64_t> ipiv(static_cast<size_t>(n));
        int64_t info = -1;
        api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
        ASSERT_EQ(info, 0);

        matrix<T> inv = f;
        int64_t query = -1;
        T size_word(0);
        api<T>::getri(&n, c_ptr(inv.data()), &inv.ld, ipiv.data(), c_ptr(&size_word), &query, &info);
        ASSERT_EQ(info, 0);
        int64_t lwork = std::max<int64_t>(n, static_cast<int64_t>(std::real(std::complex<real<T>>(size_word))));
        std::vector<T> work(static_cast<size_t>(lwork));
        api<T>::getri(&n, c_ptr(inv.data()), &inv.ld, ipiv.data(), c_ptr(work.data()), &lwork, &info);
        ASSERT_EQ(info, 0);
        expect_padding_kept(inv, f);

        matrix<T> oop(n, n, n + 3);
        const T zero(0), one(1);
        const int64_t k1 = 1, incx = 1;
        api<T>::laset("A", &n, &n, c_ptr(&zero), c_ptr(&one), c_ptr(oop.data()), &oop.ld, 1);
        api<T>::laswp(&n, c_ptr(oop.data()), &oop.ld, &k1, &n, ipiv.data(), &incx);
        api<T>::trsm("L", "L", "N", "U", &n, &n, c_ptr(&one), c_ptr(f.data()), &f.ld, c_ptr(oop.data()),
                     &oop.ld, 1, 1, 1, 1);
        api<T>::trsm("L", "U", "N", "N", &n, &n, c_ptr(&one), c_ptr(f.data()), &f.ld, c_ptr(oop.data()),
                     &oop.ld, 1, 1, 1, 1);

        matrix<T> fused(n, n, n + 2);
        const matrix<T> f_before = f;
        api<T>::getri_oop(&n, c_ptr(f.data()), &f.ld, ipiv.data(), c_ptr(fused.data()), &fused.ld, &info);
        ASSERT_EQ(info, 0);
        EXPECT_EQ(f.v, f_before.v); // the factor is only read

        for (const matrix<T> *x : {&inv, &oop, &fused}) {
            matrix<T> ai = product(a, *x);
            matrix<T> id(n, n);
            for (int64_t i = 0; i < n; ++i)
                id(i, i) = T(1);
            EXPECT_LE(max_diff(ai, id), 32 * real<T>(n) * eps<T> * max_abs(a) * max_abs(*x));
        }
    }
    // A singular factor: info names the first zero diagonal entry.
    int64_t n = 3, lwork = 3, info = 0;
    matrix<T> f(3, 3);
    f(0, 0) = T(2), f(1, 1) = T(0), f(2, 2) = T(1);
    int64_t ipiv[3] = {1, 2, 3};
    T work[3];
    matrix<T> g = f, out(3, 3);
    api<T>::getri(&n, c_ptr(f.data()), &f.ld, ipiv, c_ptr(work), &lwork, &info);
    EXPECT_EQ(info, 2);
    EXPECT_EQ(f.v, g.v); // nothing is touched before the check
    info = 0;
    api<T>::getri_oop(&n, c_ptr(g.data()), &g.ld, ipiv, c_ptr(out.data()), &out.ld, &info);
    EXPECT_EQ(info, 2);
    int64_t bad_ld = 2;
    api<T>::getri_oop(&n, c_ptr(g.data()), &g.ld, ipiv, c_ptr(out.data()), &bad_ld, &info);
    EXPECT_EQ(info, -6);
}

// Above the small sizes the out-of-place inverse borrows a workspace; without one it still
// answers (by the four-call sequence), and nothing it took is left behind.
TYPED_TEST(DenseKernels, OutOfPlaceInverseWithAndWithoutWorkspace)
{
    using T = TypeParam;
    int64_t n = 70;
    const matrix<T> a = random_matrix<T>(n, n, 1234);
    matrix<T> f = a;
    std::vector<int64_t> ipiv(static_cast<size_t>(n));
    int64_t info = -1;
    api<T>::getrf(&n, &n, c_ptr(f.data()), &f.ld, ipiv.data(), &info);
    ASSERT_EQ(info, 0);
    for (bool fail : {false, true}) {
        SCOPED_TRACE(fail ? "allocation fails" : "allocation succeeds");
        matrix<T> x(n, n, n + 1);
        zel::test::allocator_probe probe;
        probe.fail_all(fail);
        api<T>::getri_oop(&n, c_ptr(f.data()), &f.ld, ipiv.data(), c_ptr(x.data()), &x.ld, &info);
        EXPECT_EQ(info, 0);
        EXPECT_EQ(probe.live(), 0);
        EXPECT_EQ(probe.failures(), fail ? probe.requests() : 0);
        matrix<T> id(n, n);
        for (int64_t i = 0; i < n; ++i)
            id(i, i) = T(1);
        EXPECT_LE(max_diff(product(a, x), id), 32 * real<T>(n) * eps<T> * max_abs(a) * max_abs(x));
    }
}

TYPED_TEST(DenseKernels, GelsResidualOrthogonalOrExact)
{
    using T = TypeParam;
    for (auto [m, n] : std::vector<std::pair<int64_t, int64_t>>{{7, 4}, {4, 7}, {30, 12}, {12, 30}, {5, 5}}) {
        for (char trans : {'N', zel::is_complex_v<T> ? 'C' : 'T'}) {
            SCOPED_TRACE("m=" + std::to_string(m) + " n=" + std::to_string(n) + " trans=" + trans);
            const int64_t nrhs = 2, rows = trans == 'N' ? m : n, cols = trans == 'N' ? n : m;
            const matrix<T> a = random_matrix<T>(m, n, 1000 + m, m + 1);
            const int64_t ldb = std::max(m, n) + 1;
            const matrix<T> b = random_matrix<T>(rows, nrhs, 1100 + n, ldb);
            matrix<T> f = a, x = b;
            int64_t query = -1, info = -1;
            T size_word(0);
            api<T>::gels(&trans, &m, &n, &nrhs, c_ptr(f.data()), &f.ld, c_ptr(x.data()), &x.ld, c_ptr(&size_word),
                         &query, &info, 1);
            ASSERT_EQ(info, 0);
            int64_t lwork = static_cast<int64_t>(std::real(std::complex<real<T>>(size_word)));
            std::vector<T> work(static_cast<size_t>(std::max<int64_t>(lwork, 1)));
            api<T>::gels(&trans, &m, &n, &nrhs, c_ptr(f.data()), &f.ld, c_ptr(x.data()), &x.ld, c_ptr(work.data()),
                         &lwork, &info, 1);
            ASSERT_EQ(info, 0);
            matrix<T> sol(cols, nrhs);
            for (int64_t j = 0; j < nrhs; ++j)
                for (int64_t i = 0; i < cols; ++i)
                    sol(i, j) = x(i, j);
            const matrix<T> opa = op(a, trans);
            matrix<T> r = product(opa, sol);
            for (int64_t j = 0; j < nrhs; ++j)
                for (int64_t i = 0; i < rows; ++i)
                    r(i, j) = b(i, j) - r(i, j);
            const real<T> tol = 64 * real<T>(std::max(m, n)) * eps<T>;
            if (rows >= cols) { // least squares: the residual is orthogonal to range(op(A))
                EXPECT_LE(max_abs(product(op(opa, 'C'), r)), tol * max_abs(a) * (1 + max_abs(b)));
            } else { // minimum norm: exact, and the solution lies in range(op(A)^H)
                EXPECT_LE(max_abs(r), tol * (1 + max_abs(b)));
                // x = op(A)^H y for y solving op(A) op(A)^H y = b: check x is orthogonal to null(op(A))
                // by projecting: x - op(A)^H (op(A) op(A)^H)^-1 op(A) x must vanish.
                matrix<T> g = product(opa, op(opa, 'C'));
                matrix<T> rhs = product(opa, sol);
                std::vector<int64_t> ipiv(static_cast<size_t>(rows));
                int64_t k = rows, info2 = 0;
                api<T>::getrf(&k, &k, c_ptr(g.data()), &g.ld, ipiv.data(), &info2);
                api<T>::getrs("N", &k, &nrhs, c_ptr(g.data()), &g.ld, ipiv.data(), c_ptr(rhs.data()), &rhs.ld, &info2, 1);
                EXPECT_LE(max_diff(product(op(opa, 'C'), rhs), sol), tol * 4 * (1 + max_abs(sol)));
            }
        }
    }
}

TYPED_TEST(DenseKernels, AxpyAndCopyWithIncrements)
{
    using T = TypeParam;
    std::mt19937_64 rng(42);
    const int64_t n = 9;
    std::vector<T> x(3 * n), y(2 * n), y0;
    for (auto &v : x)
        v = random_value<T>(rng);
    for (auto &v : y)
        v = random_value<T>(rng);
    y0 = y;
    const T alpha = random_value<T>(rng);
    int64_t incx = 3, incy = -2;
    api<T>::axpy(&n, c_ptr(&alpha), c_ptr(x.data()), &incx, c_ptr(y.data()), &incy);
    for (int64_t i = 0; i < n; ++i) { // a negative increment walks y from its far end
        const size_t yi = static_cast<size_t>((n - 1 - i) * 2);
        EXPECT_NEAR(std::abs(y[yi] - (y0[yi] + alpha * x[static_cast<size_t>(3 * i)])), 0, 4 * eps<T>);
    }
    std::vector<T> z(n);
    int64_t one = 1;
    api<T>::copy(&n, c_ptr(x.data()), &incx, c_ptr(z.data()), &one);
    for (int64_t i = 0; i < n; ++i)
        EXPECT_EQ(z[static_cast<size_t>(i)], x[static_cast<size_t>(3 * i)]);
}

std::vector<std::pair<std::string, int64_t>> reports;
void record_report(const char *name, const int64_t *info, int32_t name_len)
{
    reports.push_back({std::string(name, static_cast<size_t>(name_len)), *info});
}

// Bad arguments come back as -position and reach the layer's error handler by lower-case
// name, whether the core or OpenBLAS inside it found them.
TEST(DenseKernelsErrors, ReportedThroughTheLayersHandler)
{
    reports.clear();
    zel_xerbla_handler previous = zel_serv_set_xerbla(record_report);
    int64_t n = 3, bad = 1, nrhs = 1, info = 0, ipiv[3] = {1, 2, 3}, lwork = 1;
    double a[9] = {}, b[3] = {}, work[1];
    zel_lapack_dgetrs("N", &n, &nrhs, a, &n, ipiv, b, &bad, &info, 1);
    EXPECT_EQ(info, -8);
    zel_lapack_xdgetrf(&n, &n, a, &bad, ipiv, &info);
    EXPECT_EQ(info, -4);
    zel_lapack_dpotrf("Q", &n, a, &n, &info, 1);
    EXPECT_EQ(info, -1);
    zel_lapack_dgetri(&n, a, &n, ipiv, work, &lwork, &info);
    EXPECT_EQ(info, -6);
    zel_lapack_dgetrfnp(&n, &n, a, &bad, &info);
    EXPECT_EQ(info, -4);
    int64_t m = 5, lda = 5, ldb = 3, query = -1; // ldb < max(m, n): OpenBLAS's own check
    double big[25] = {}, rhs[5] = {}, size_word = 0;
    zel_lapack_dgels("N", &m, &n, &nrhs, big, &lda, rhs, &ldb, &size_word, &query, &info, 1);
    EXPECT_EQ(info, -8);
    zel_serv_set_xerbla(previous);
    const std::vector<std::pair<std::string, int64_t>> expected = {
        {"dgetrs", 8}, {"dgetrf", 4}, {"dpotrf", 1}, {"dgetri", 6}, {"dgetrfnp", 4}, {"dgels", 8}};
    EXPECT_EQ(reports, expected);
}

// Every instruction-set variant of the small paths passes the same tests: the suite above runs
// again in child processes restricted to the AVX2 and the baseline kernels.
TEST(DenseKernelsIsa, EveryVariantPassesTheSameTests) { zel::test::expect_every_isa_variant_passes("ZEL_DENSE_ISA", "DenseKernels/*"); }

// An application that links the 32-bit-integer system LAPACK and BLAS next to the core gets
// correct answers from both: the core's private ILP64 routines never meet the application's.
TEST(DenseKernelsLink, SystemLp64LapackBesideTheCore)
{
    const char *source_dir = std::getenv("ZEL_SOURCE_DIR");
    const char *binary_dir = std::getenv("ZEL_BINARY_DIR");
    if (source_dir == nullptr || binary_dir == nullptr)
        GTEST_SKIP() << "run through ctest";
    const std::string program = std::string(binary_dir) + "/dense_lp64_link";
#ifdef __SANITIZE_ADDRESS__
    const std::string sanitize = " -fsanitize=address,undefined";
#else
    const std::string sanitize;
#endif
    const std::string build = "cc -std=c99 -O1" + sanitize + " -I" + source_dir + "/include " + source_dir +
                              "/tests/support/dense_lp64_link.c -o " + program + " -L" + binary_dir +
                              " -Wl,-rpath," + binary_dir + " -Wl,--push-state,--no-as-needed -lzel_core -lzel_sequential -Wl,--pop-state"
                              " -llapack -lblas -lm 2>&1";
    ASSERT_EQ(std::system(build.c_str()), 0) << build << "\n(needs the libblas-dev and liblapack-dev packages)";
    EXPECT_EQ(std::system(program.c_str()), 0);
}

} // namespace
