// The matchings and scalings of the solver's analysis: the maximum-product matching against the
// best permutation found by enumeration and against a dense assignment solver, the scaling's
// bounds (which certify the optimum where no oracle reaches), the structural rank against plain
// augmenting paths, equilibration, failed allocations, and the real unsymmetric matrices.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <functional>
#include <limits>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "alloc_fault.hpp"
#include "matrix_market.hpp"
#include "mm_reader.hpp"
#include "solver/matching.hpp"

using namespace zel::solver;

namespace {

template <class V, class Index> struct member {
    using T = V;
    using I = Index;
};

struct member_names {
    template <class M> static std::string GetName(int)
    {
        using T = typename M::T;
        const std::string value = std::is_same_v<T, float>                 ? "float"
                                  : std::is_same_v<T, double>              ? "double"
                                  : std::is_same_v<T, std::complex<float>> ? "complex8"
                                                                           : "complex16";
        return value + (sizeof(typename M::I) == 4 ? "_i4" : "_i8");
    }
};

using members = ::testing::Types<member<float, int32_t>, member<float, int64_t>, member<double, int32_t>,
                                 member<double, int64_t>, member<std::complex<float>, int32_t>,
                                 member<std::complex<float>, int64_t>, member<std::complex<double>, int32_t>,
                                 member<std::complex<double>, int64_t>>;

struct entry {
    int64_t i, j;
    std::complex<double> value;
};

// A square matrix by rows as a caller gives it: base 0 or 1, the columns of a row in any order.
template <class T, class I> struct matrix {
    I n = 0, base = 0;
    std::vector<I> ptr{0}, idx;
    std::vector<T> val;

    csr_pattern<I> view() const { return {n, base, ptr.data(), idx.data()}; }
    I row_of(size_t p) const // the row holding stored position p
    {
        return I(std::upper_bound(ptr.begin(), ptr.end(), I(p) + base) - ptr.begin() - 1);
    }
};

template <class T> T to_value(std::complex<double> z)
{
    if constexpr (zel::is_complex_v<T>)
        return T(typename T::value_type(z.real()), typename T::value_type(z.imag()));
    else
        return T(z.real());
}

template <class T> double magnitude(T x)
{
    if constexpr (zel::is_complex_v<T>)
        return std::abs(std::complex<double>(x));
    else
        return std::fabs(double(x));
}

// The entries (no two at one position) as a caller's CSR, each row's columns shuffled.
template <class T, class I> matrix<T, I> build(int64_t n, std::vector<entry> e, I base, std::mt19937_64 &rng)
{
    std::sort(e.begin(), e.end(), [](const entry &x, const entry &y) { return x.i < y.i; });
    matrix<T, I> a;
    a.n = I(n);
    a.base = base;
    a.ptr.assign(size_t(n) + 1, 0);
    for (const entry &x : e)
        ++a.ptr[size_t(x.i) + 1];
    std::partial_sum(a.ptr.begin(), a.ptr.end(), a.ptr.begin());
    for (size_t r = 0, p = 0; r < size_t(n); ++r) {
        const size_t end = size_t(a.ptr[r + 1]);
        std::shuffle(e.begin() + ptrdiff_t(p), e.begin() + ptrdiff_t(end), rng);
        for (; p < end; ++p) {
            a.idx.push_back(I(e[p].j) + base);
            a.val.push_back(to_value<T>(e[p].value));
        }
    }
    for (I &p : a.ptr)
        p += base;
    return a;
}

// Random values: magnitudes 10^x with x uniform in [-orders, orders], random signs (phases).
std::complex<double> random_value(std::mt19937_64 &rng, double orders)
{
    std::uniform_real_distribution<double> exponent(-orders, orders), angle(0, 2 * M_PI);
    return std::polar(std::pow(10.0, exponent(rng)), angle(rng));
}

template <class T> std::complex<double> random_value_for(std::mt19937_64 &rng, double orders)
{
    const std::complex<double> z = random_value(rng, orders);
    return zel::is_complex_v<T> ? z : std::complex<double>(std::abs(z) * (z.real() < 0 ? -1 : 1));
}

struct pattern_choice {
    int64_t n;
    double density;
    bool with_permutation; // a random permutation's positions are present (and nonzero)
    double zeros;          // fraction of stored entries that are zero
    double orders;
};

// Each row holds a binomial number of distinct random columns, plus the permutation's one.
template <class T> std::vector<entry> random_entries(std::mt19937_64 &rng, const pattern_choice &c)
{
    std::uniform_real_distribution<double> u(0, 1);
    std::uniform_int_distribution<int64_t> column(0, std::max<int64_t>(c.n - 1, 0));
    std::binomial_distribution<int64_t> count(c.n, std::min(c.density, 1.0));
    std::vector<int64_t> perm(size_t(c.n));
    std::iota(perm.begin(), perm.end(), 0);
    std::shuffle(perm.begin(), perm.end(), rng);
    std::vector<entry> e;
    std::vector<char> taken(size_t(c.n), 0);
    for (int64_t i = 0; i < c.n; ++i) {
        std::vector<int64_t> cols;
        if (c.with_permutation)
            cols.push_back(perm[size_t(i)]);
        for (int64_t k = count(rng); k > 0; --k)
            cols.push_back(column(rng));
        for (size_t k = 0; k < cols.size(); ++k) {
            const int64_t j = cols[k];
            if (taken[size_t(j)]++)
                continue;
            const bool forced = c.with_permutation && k == 0;
            e.push_back({i, j, !forced && u(rng) < c.zeros ? 0.0 : random_value_for<T>(rng, c.orders)});
        }
        for (int64_t j : cols)
            taken[size_t(j)] = 0;
    }
    return e;
}

// Dense magnitudes, -1 where nothing is stored.
template <class T, class I> std::vector<double> dense_magnitudes(const matrix<T, I> &a)
{
    std::vector<double> m(size_t(a.n) * size_t(a.n), -1.0);
    for (size_t p = 0; p < a.idx.size(); ++p)
        m[size_t(a.row_of(p)) * size_t(a.n) + size_t(a.idx[p] - a.base)] = magnitude(a.val[p]);
    return m;
}

// |a_ij|, or -1 when nothing is stored at (i, j).
template <class T, class I> double stored_magnitude(const matrix<T, I> &a, I i, I j)
{
    for (I p = a.ptr[size_t(i)] - a.base; p < a.ptr[size_t(i) + 1] - a.base; ++p)
        if (a.idx[size_t(p)] - a.base == j)
            return magnitude(a.val[size_t(p)]);
    return -1;
}

struct optimum {
    int64_t cardinality = 0;
    double log_product = -std::numeric_limits<double>::infinity(); // of the best perfect matching
};

// Every permutation: the largest number of usable positions on it, and the largest sum of
// log-magnitudes over the permutations that are all usable. Usable: nonzero, or stored at all.
optimum enumerate(const std::vector<double> &m, int64_t n, bool nonzero_only)
{
    std::vector<int64_t> sigma(static_cast<size_t>(n));
    std::iota(sigma.begin(), sigma.end(), 0);
    optimum best;
    do {
        int64_t count = 0;
        double sum = 0;
        for (int64_t i = 0; i < n; ++i) {
            const double x = m[size_t(i * n + sigma[size_t(i)])];
            if (nonzero_only ? x > 0 : x >= 0) {
                ++count;
                sum += x > 0 ? std::log(x) : 0;
            }
        }
        best.cardinality = std::max(best.cardinality, count);
        if (count == n)
            best.log_product = std::max(best.log_product, sum);
    } while (std::next_permutation(sigma.begin(), sigma.end()));
    return best;
}

// The result is a matching of usable entries: each matched (row, column) is stored (and
// nonzero when asked), no row is matched twice, and rank counts the matched columns.
template <class T, class I> void expect_matching(const matrix<T, I> &a, const matching_result<I> &r, bool nonzero_only)
{
    ASSERT_GE(r.row_of_column.size(), size_t(a.n));
    std::vector<int> used(size_t(a.n), 0);
    I matched = 0;
    for (I j = 0; j < a.n; ++j) {
        const I i = r.row_of_column[size_t(j)];
        if (i == -1)
            continue;
        ASSERT_TRUE(i >= 0 && i < a.n) << "column " << j;
        const double x = stored_magnitude(a, i, j);
        EXPECT_TRUE(nonzero_only ? x > 0 : x >= 0) << "(" << i << ", " << j << ") is no usable entry";
        EXPECT_EQ(used[size_t(i)]++, 0) << "row " << i << " matched twice";
        ++matched;
    }
    EXPECT_EQ(matched, r.rank);
}

// Sum of log|a_ij| over the matched entries.
template <class T, class I> double matched_log_product(const matrix<T, I> &a, const matching_result<I> &r)
{
    double sum = 0;
    for (I j = 0; j < a.n; ++j)
        sum += std::log(stored_magnitude(a, r.row_of_column[size_t(j)], j));
    return sum;
}

// Largest |log|a_ij|| over the nonzero entries: the scale of the rounding in logarithms.
template <class T, class I> double log_range(const matrix<T, I> &a)
{
    double range = 0;
    for (const T &x : a.val)
        if (magnitude(x) > 0)
            range = std::max(range, std::fabs(std::log(magnitude(x))));
    return range;
}

// Relative slack allowed in the scaling's bounds: the logarithms carry rounding of a few ulps
// of the largest one, and the dual updates add a few more.
template <class T, class I> double scaling_slack(const matrix<T, I> &a)
{
    return 64 * std::numeric_limits<double>::epsilon() * (1 + log_range(a));
}

// |Dr_i a_ij Dc_j| ≤ 1 on every entry and = 1 on the matched ones. With every column matched,
// this certifies the matching's product as the largest to within n times the slack: for any
// other perfect matching, ∏|a| · ∏Dr · ∏Dc ≤ 1 = (the matched one's).
template <class T, class I> void expect_scaling_bounds(const matrix<T, I> &a, const matching_result<I> &r)
{
    ASSERT_EQ(r.rank, a.n);
    ASSERT_GE(r.row_scaling.size(), size_t(a.n));
    ASSERT_GE(r.column_scaling.size(), size_t(a.n));
    const double slack = scaling_slack(a);
    int reported = 0;
    for (size_t p = 0; p < a.idx.size(); ++p) {
        const I i = a.row_of(p), j = a.idx[p] - a.base;
        const double x = r.row_scaling[size_t(i)] * magnitude(a.val[p]) * r.column_scaling[size_t(j)];
        const bool matched = r.row_of_column[size_t(j)] == i;
        const bool ok = matched ? std::fabs(x - 1) <= slack : x <= 1 + slack;
        if (!ok && reported++ < 5)
            ADD_FAILURE() << (matched ? "matched" : "unmatched") << " entry (" << i << ", " << j << ") scaled to 1 + "
                          << x - 1 << ", slack " << slack;
    }
}

// Maximum cardinality by plain augmenting paths from each row, marks cleared every time.
template <class T, class I> int64_t oracle_rank(const matrix<T, I> &a, bool nonzero_only)
{
    std::vector<int64_t> owner(size_t(a.n), -1);
    std::vector<char> seen;
    std::function<bool(int64_t)> augment = [&](int64_t i) {
        for (I p = a.ptr[size_t(i)] - a.base; p < a.ptr[size_t(i) + 1] - a.base; ++p) {
            const size_t j = size_t(a.idx[size_t(p)] - a.base);
            if ((nonzero_only && magnitude(a.val[size_t(p)]) == 0) || seen[j])
                continue;
            seen[j] = 1;
            if (owner[j] < 0 || augment(owner[j])) {
                owner[j] = i;
                return true;
            }
        }
        return false;
    };
    int64_t rank = 0;
    for (int64_t i = 0; i < a.n; ++i) {
        seen.assign(size_t(a.n), 0);
        rank += augment(i);
    }
    return rank;
}

template <class M> class SolverMatching : public ::testing::Test {};
TYPED_TEST_SUITE(SolverMatching, members, member_names);

// Small random matrices, some without a perfect matching, values over 24 orders, some stored
// zeros: rank and product against every permutation.
TYPED_TEST(SolverMatching, SmallMatricesAgainstEveryPermutation)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> u(0, 1);
    int perfect = 0, deficient = 0;
    for (int trial = 0; trial < 300; ++trial) {
        const int64_t n = 1 + trial % 7;
        const pattern_choice c{n, 0.15 + 0.5 * u(rng), u(rng) < 0.6, u(rng) < 0.3 ? 0.2 : 0.0, 12};
        const matrix<T, I> a = build<T, I>(n, random_entries<T>(rng, c), I(trial % 2), rng);
        SCOPED_TRACE("trial " + std::to_string(trial) + ", n = " + std::to_string(n));
        const std::vector<double> m = dense_magnitudes(a);
        const optimum best = enumerate(m, n, true), structural = enumerate(m, n, false);
        matching_result<I> r, s;
        ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_EQ(structural_matching(a.view(), s), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(expect_matching(a, r, true));
        ASSERT_NO_FATAL_FAILURE(expect_matching(a, s, false));
        EXPECT_EQ(r.rank, best.cardinality);
        EXPECT_EQ(s.rank, structural.cardinality);
        EXPECT_EQ(s.row_scaling.size() + s.column_scaling.size(), 0u);
        if (r.rank < a.n) {
            EXPECT_EQ(r.row_scaling.size() + r.column_scaling.size(), 0u) << "scaling without a perfect matching";
            ++deficient;
            continue;
        }
        ++perfect;
        const double tolerance = 1e-13 * (1 + std::fabs(best.log_product));
        EXPECT_NEAR(matched_log_product(a, r), best.log_product, tolerance);
        expect_scaling_bounds(a, r);
    }
    EXPECT_GT(perfect, 100);
    EXPECT_GT(deficient, 30);
}

// A dense assignment solver (successive shortest paths over the whole matrix, potentials by
// columns): the largest sum of log|a_ij| over the perfect matchings of the nonzero entries,
// or nothing when the entries it had to use include an absent one.
template <class T, class I> std::optional<double> dense_assignment(const matrix<T, I> &a)
{
    const size_t n = size_t(a.n);
    const std::vector<double> m = dense_magnitudes(a);
    const double absent = 1e7, inf = std::numeric_limits<double>::infinity();
    auto cost = [&](size_t i, size_t j) { return m[i * n + j] > 0 ? -std::log(m[i * n + j]) : absent; };
    std::vector<double> u(n + 1, 0), v(n + 1, 0);
    std::vector<size_t> row_of(n + 1, 0), way(n + 1, 0); // 1-based columns, column 0 the source
    for (size_t i = 1; i <= n; ++i) {
        row_of[0] = i;
        size_t j0 = 0;
        std::vector<double> minv(n + 1, inf);
        std::vector<char> used(n + 1, 0);
        do {
            used[j0] = 1;
            const size_t i0 = row_of[j0];
            double delta = inf;
            size_t j1 = 0;
            for (size_t j = 1; j <= n; ++j)
                if (!used[j]) {
                    const double cur = cost(i0 - 1, j - 1) - u[i0] - v[j];
                    if (cur < minv[j]) {
                        minv[j] = cur;
                        way[j] = j0;
                    }
                    if (minv[j] < delta) {
                        delta = minv[j];
                        j1 = j;
                    }
                }
            for (size_t j = 0; j <= n; ++j)
                if (used[j]) {
                    u[row_of[j]] += delta;
                    v[j] -= delta;
                } else
                    minv[j] -= delta;
            j0 = j1;
        } while (row_of[j0] != 0);
        do {
            const size_t j1 = way[j0];
            row_of[j0] = row_of[j1];
            j0 = j1;
        } while (j0);
    }
    double sum = 0;
    for (size_t j = 1; j <= n; ++j) {
        if (!(m[(row_of[j] - 1) * n + j - 1] > 0))
            return std::nullopt;
        sum += std::log(m[(row_of[j] - 1) * n + j - 1]);
    }
    return sum;
}

// Larger random matrices with a perfect matching: the product against the dense solver, the
// scaling's bounds (a certificate of the optimum on their own) up to a few thousand rows, and
// the same result from a second run.
TYPED_TEST(SolverMatching, LargerMatricesAgainstDenseAssignmentAndBounds)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(23);
    for (int trial = 0; trial < 12; ++trial) {
        const int64_t n = trial < 8 ? 20 + 15 * trial : 500 * (trial - 6);
        const double density = trial < 8 ? 0.08 : 6.0 / double(n);
        const pattern_choice c{n, density, true, trial % 3 == 0 ? 0.1 : 0.0, trial % 2 ? 12.0 : 3.0};
        const matrix<T, I> a = build<T, I>(n, random_entries<T>(rng, c), I(trial % 2), rng);
        SCOPED_TRACE("trial " + std::to_string(trial) + ", n = " + std::to_string(n));
        matching_result<I> r;
        ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(expect_matching(a, r, true));
        ASSERT_NO_FATAL_FAILURE(expect_scaling_bounds(a, r));
        matching_result<I> again; // the same result bit for bit
        ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), again), ZEL_SPARSE_STATUS_SUCCESS);
        EXPECT_TRUE(std::equal(r.row_of_column.get(), r.row_of_column.get() + n, again.row_of_column.get()));
        EXPECT_EQ(0, std::memcmp(r.row_scaling.get(), again.row_scaling.get(), size_t(n) * sizeof(double)));
        EXPECT_EQ(0, std::memcmp(r.column_scaling.get(), again.column_scaling.get(), size_t(n) * sizeof(double)));
        if (n <= 200) {
            const std::optional<double> best = dense_assignment(a);
            ASSERT_TRUE(best.has_value());
            EXPECT_NEAR(matched_log_product(a, r), *best, 1e-12 * (1 + std::fabs(*best)));
        }
    }
}

// Sparse random patterns, many structurally singular: rank against plain augmenting paths, for
// the pattern and for its nonzero entries.
TYPED_TEST(SolverMatching, StructuralRankAgainstAugmentingPaths)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(31);
    int deficient = 0;
    for (int trial = 0; trial < 40; ++trial) {
        const int64_t n = 30 + 37 * trial;
        const pattern_choice c{n, (0.6 + 0.1 * (trial % 20)) / double(n), trial % 4 == 0, 0.15, 6};
        const matrix<T, I> a = build<T, I>(n, random_entries<T>(rng, c), I(trial % 2), rng);
        SCOPED_TRACE("trial " + std::to_string(trial) + ", n = " + std::to_string(n));
        matching_result<I> r, s;
        ASSERT_EQ(structural_matching(a.view(), s), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_NO_FATAL_FAILURE(expect_matching(a, s, false));
        ASSERT_NO_FATAL_FAILURE(expect_matching(a, r, true));
        EXPECT_EQ(int64_t(s.rank), oracle_rank(a, false));
        EXPECT_EQ(int64_t(r.rank), oracle_rank(a, true));
        if (r.rank == a.n)
            expect_scaling_bounds(a, r);
        deficient += s.rank < a.n;
    }
    EXPECT_GT(deficient, 10);
}

template <class T, class I> matrix<T, I> from_rows(int64_t n, const std::vector<std::vector<int64_t>> &rows, I base)
{
    std::mt19937_64 rng(5);
    std::vector<entry> e;
    for (size_t i = 0; i < rows.size(); ++i)
        for (int64_t j : rows[i])
            e.push_back({int64_t(i), j, random_value_for<T>(rng, 2)});
    return build<T, I>(n, e, base, rng);
}

template <class I> int64_t unmatched_columns(const matching_result<I> &r, I n)
{
    return std::count(r.row_of_column.get(), r.row_of_column.get() + n, I(-1));
}

// The structurally singular shapes an analysis meets: an empty row, an empty column, two rows
// whose only entry is in one column, a perfect matching only through a stored zero.
TYPED_TEST(SolverMatching, StructurallySingularCases)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    struct shape {
        const char *name;
        std::vector<std::vector<int64_t>> rows;
        int64_t rank;
    };
    const std::vector<shape> shapes = {
        {"empty row", {{0, 1}, {1, 2}, {}, {3, 4}, {4, 0}, {5, 2}}, 5},
        {"empty column", {{0, 1}, {1}, {2, 0}, {0, 1, 2}, {5}, {4, 5}}, 5},
        {"two rows on one column", {{0, 1}, {2}, {1, 3}, {2}, {3, 4, 5}, {5, 0}}, 5},
        {"three rows on two columns", {{0, 1}, {0, 1}, {0, 1}, {3, 2}, {3}, {4, 5}}, 5},
        {"one entry", {{3}}, 1},
        {"nothing stored", {{}, {}, {}}, 0},
    };
    for (const shape &sh : shapes)
        for (I base : {I(0), I(1)}) {
            SCOPED_TRACE(std::string(sh.name) + ", base " + std::to_string(base));
            const int64_t n = std::max<int64_t>(int64_t(sh.rows.size()), 4);
            const matrix<T, I> a = from_rows<T, I>(n, sh.rows, base);
            matching_result<I> r, s;
            ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
            ASSERT_EQ(structural_matching(a.view(), s), ZEL_SPARSE_STATUS_SUCCESS);
            const int64_t rank = sh.rank;
            EXPECT_EQ(int64_t(r.rank), rank);
            EXPECT_EQ(int64_t(s.rank), rank);
            EXPECT_EQ(unmatched_columns(r, a.n), a.n - rank);
            EXPECT_EQ(unmatched_columns(s, a.n), a.n - rank);
            EXPECT_EQ(r.row_scaling.size() + r.column_scaling.size(), 0u);
            expect_matching(a, r, true);
            expect_matching(a, s, false);
        }
}

// Stored zeros are entries for the pattern and absent for the product: here the only perfect
// matching of the pattern runs through a stored zero.
TYPED_TEST(SolverMatching, StoredZerosCountOnlyForThePattern)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(3);
    // (0,0) = 0, (0,1) = 2, (1,1) = 3, (2,2) = 4: the product's rank is 2 of 3.
    const std::vector<entry> e = {{0, 0, 0.0}, {0, 1, 2.0}, {1, 1, 3.0}, {2, 2, 4.0}};
    const matrix<T, I> a = build<T, I>(3, e, I(1), rng);
    matching_result<I> r, s;
    ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
    ASSERT_EQ(structural_matching(a.view(), s), ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(r.rank, I(2));
    EXPECT_EQ(s.rank, I(3));
    EXPECT_EQ(s.row_of_column[0], I(0));
    EXPECT_EQ(r.row_of_column[0], I(-1));
    expect_matching(a, r, true);
    // A whole row of zeros: the product's rank drops, the pattern's does not.
    const std::vector<entry> f = {{0, 0, 1.0}, {1, 1, 0.0}, {1, 0, 0.0}, {2, 2, 1.0}};
    const matrix<T, I> b = build<T, I>(3, f, I(0), rng);
    ASSERT_EQ(maximum_product_matching(b.view(), b.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
    ASSERT_EQ(structural_matching(b.view(), s), ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(r.rank, I(2));
    EXPECT_EQ(s.rank, I(3));
}

TYPED_TEST(SolverMatching, EmptyAndTinyMatrices)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(2);
    const matrix<T, I> empty = build<T, I>(0, {}, I(0), rng);
    matching_result<I> r;
    double dr = 0, dc = 0;
    EXPECT_EQ(maximum_product_matching(empty.view(), empty.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(r.rank, I(0));
    EXPECT_EQ(structural_matching(empty.view(), r), ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(equilibrate(empty.view(), empty.val.data(), &dr, &dc), ZEL_SPARSE_STATUS_SUCCESS);
    // 1 × 1: the scaling makes the entry 1.
    const matrix<T, I> one = build<T, I>(1, {{0, 0, -2.5e-7}}, I(1), rng);
    ASSERT_EQ(maximum_product_matching(one.view(), one.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(r.rank, I(1));
    EXPECT_EQ(r.row_of_column[0], I(0));
    EXPECT_NEAR(r.row_scaling[0] * magnitude(one.val[0]) * r.column_scaling[0], 1.0, 1e-15);
    ASSERT_EQ(equilibrate(one.view(), one.val.data(), &dr, &dc), ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_NEAR(dr * magnitude(one.val[0]) * dc, 1.0, 1e-15);
}

// Largest scaled magnitude of each row and each column (0 for an empty one).
template <class T, class I>
void scaled_maxima(const matrix<T, I> &a, const double *dr, const double *dc, std::vector<double> &rows,
                   std::vector<double> &cols)
{
    rows.assign(size_t(a.n), 0);
    cols.assign(size_t(a.n), 0);
    for (size_t p = 0; p < a.idx.size(); ++p) {
        const size_t i = size_t(a.row_of(p)), j = size_t(a.idx[p] - a.base);
        const double x = dr[i] * magnitude(a.val[p]) * dc[j];
        rows[i] = std::max(rows[i], x);
        cols[j] = std::max(cols[j], x);
    }
}

// Equilibration: no entry above 1, every nonempty row's and column's largest within 1% of 1,
// empty rows and columns left alone. Returns the scaling.
template <class T, class I> std::pair<std::vector<double>, std::vector<double>> expect_equilibrated(const matrix<T, I> &a)
{
    std::vector<double> dr(size_t(a.n), -1), dc(size_t(a.n), -1), rows, cols;
    EXPECT_EQ(equilibrate(a.view(), a.val.data(), dr.data(), dc.data()), ZEL_SPARSE_STATUS_SUCCESS);
    scaled_maxima(a, dr.data(), dc.data(), rows, cols);
    const double above = 32 * std::numeric_limits<double>::epsilon();
    int reported = 0;
    for (size_t k = 0; k < size_t(a.n) && reported < 5; ++k) {
        EXPECT_TRUE(std::isfinite(dr[k]) && dr[k] > 0 && std::isfinite(dc[k]) && dc[k] > 0) << k;
        for (auto [name, largest, factor] : {std::tuple{"row", rows[k], dr[k]}, std::tuple{"column", cols[k], dc[k]}}) {
            const bool ok = largest == 0 ? factor == 1 : largest <= 1 + above && largest >= 0.99;
            if (!ok && reported++ < 5)
                ADD_FAILURE() << name << " " << k << ": largest " << largest << ", factor " << factor;
        }
    }
    return {dr, dc};
}

TYPED_TEST(SolverMatching, EquilibrationBoundsRowsAndColumns)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(41);
    for (int trial = 0; trial < 30; ++trial) {
        const int64_t n = 1 + 13 * trial;
        const pattern_choice c{n, trial % 3 == 0 ? 3.0 / double(n) : 0.2, trial % 2 == 0, 0.1, trial % 2 ? 15.0 : 4.0};
        const matrix<T, I> a = build<T, I>(n, random_entries<T>(rng, c), I(trial % 2), rng);
        SCOPED_TRACE("trial " + std::to_string(trial) + ", n = " + std::to_string(n));
        expect_equilibrated(a);
    }
}

// A symmetric matrix (both triangles stored) gets one scaling for rows and columns, bit for bit.
TYPED_TEST(SolverMatching, EquilibrationKeepsSymmetry)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(43);
    for (int trial = 0; trial < 10; ++trial) {
        const int64_t n = 5 + 40 * trial;
        std::vector<entry> e;
        for (const entry &x : random_entries<T>(rng, {n, 4.0 / double(n), trial % 2 == 0, 0.0, 10}))
            if (x.i <= x.j) {
                e.push_back(x);
                if (x.i != x.j)
                    e.push_back({x.j, x.i, x.value});
            }
        std::sort(e.begin(), e.end(), [](const entry &x, const entry &y) { return std::pair(x.i, x.j) < std::pair(y.i, y.j); });
        e.erase(std::unique(e.begin(), e.end(), [](const entry &x, const entry &y) { return x.i == y.i && x.j == y.j; }),
                e.end());
        const matrix<T, I> a = build<T, I>(n, e, I(trial % 2), rng);
        SCOPED_TRACE("trial " + std::to_string(trial) + ", n = " + std::to_string(n));
        const auto [dr, dc] = expect_equilibrated(a);
        EXPECT_EQ(dr, dc);
    }
}

// What the functions refuse: arrays missing where entries are stored, a bad base or size, and
// values whose magnitude is not finite. Nothing is allocated and the result is left alone.
TYPED_TEST(SolverMatching, RefusesWhatItCannotRead)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const matrix<T, I> a = from_rows<T, I>(3, {{0, 1}, {1}, {2, 0}}, I(1));
    const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<double> dr(3), dc(3);
    auto expect_refused = [&](const csr_pattern<I> &view, const T *values, const char *what) {
        zel::test::allocator_probe probe;
        matching_result<I> r;
        r.rank = 7;
        EXPECT_EQ(maximum_product_matching(view, values, r), ZEL_SPARSE_STATUS_INVALID_VALUE) << what;
        EXPECT_EQ(equilibrate(view, values, dr.data(), dc.data()), ZEL_SPARSE_STATUS_INVALID_VALUE) << what;
        EXPECT_EQ(r.rank, I(7)) << what;
        EXPECT_EQ(probe.requests(), 0) << what;
    };
    csr_pattern<I> v = a.view();
    v.n = -1;
    expect_refused(v, a.val.data(), "negative size");
    v = a.view();
    v.base = 2;
    expect_refused(v, a.val.data(), "base 2");
    v = a.view();
    v.row_ptr = nullptr;
    expect_refused(v, a.val.data(), "no row pointers");
    expect_refused(a.view(), nullptr, "no values");
    {
        zel::test::allocator_probe probe;
        EXPECT_EQ(equilibrate(a.view(), a.val.data(), nullptr, dc.data()), ZEL_SPARSE_STATUS_INVALID_VALUE);
        EXPECT_EQ(equilibrate(a.view(), a.val.data(), dr.data(), nullptr), ZEL_SPARSE_STATUS_INVALID_VALUE);
        EXPECT_EQ(probe.requests(), 0);
    }
    for (double bad : {inf, -inf, nan}) {
        matrix<T, I> b = a;
        b.val[2] = to_value<T>(std::complex<double>(bad, 1.0));
        expect_refused(b.view(), b.val.data(), "a value that is not finite");
    }
    v = a.view();
    v.col_idx = nullptr;
    matching_result<I> r;
    EXPECT_EQ(structural_matching(v, r), ZEL_SPARSE_STATUS_INVALID_VALUE);
}

// Every allocation failed in turn: ALLOC_FAILED and nothing left allocated, for a matrix with
// a perfect matching and for one without (which takes the structural fallback).
TYPED_TEST(SolverMatching, EveryFailedAllocationReportsTwoAndLeaksNothing)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(17);
    const matrix<T, I> perfect = build<T, I>(40, random_entries<T>(rng, {40, 0.1, true, 0.0, 8}), I(1), rng);
    const matrix<T, I> singular = from_rows<T, I>(6, {{0, 1}, {2}, {1, 3}, {2}, {3, 4, 5}, {5, 0}}, I(0));
    auto expect_failures = [](auto body, int64_t at_least) {
        const int64_t total = zel::test::for_each_failing_allocation(
            body, [](int64_t k, int result, const zel::test::allocator_probe &probe) {
                EXPECT_EQ(result, ZEL_SPARSE_STATUS_ALLOC_FAILED) << "allocation " << k;
                EXPECT_EQ(probe.live(), 0) << "allocation " << k;
            });
        EXPECT_GE(total, at_least);
    };
    for (const matrix<T, I> *a : {&perfect, &singular}) {
        expect_failures(
            [&] {
                matching_result<I> r;
                return maximum_product_matching(a->view(), a->val.data(), r);
            },
            a == &perfect ? 8 : 10);
        expect_failures(
            [&] {
                matching_result<I> r;
                return structural_matching(a->view(), r);
            },
            6);
        std::vector<double> dr(size_t(a->n)), dc(size_t(a->n));
        expect_failures([&] { return equilibrate(a->view(), a->val.data(), dr.data(), dc.data()); }, 1);
    }
}

// ---------------------------------------------------------------------------------------------
// The real unsymmetric matrices.

template <class T, class I> matrix<T, I> read_file(const std::string &path, I base)
{
    zel::tool::mm_matrix file;
    std::string error;
    EXPECT_TRUE(zel::tool::read_matrix_market(path.c_str(), file, error)) << error;
    std::vector<entry> e;
    for (int64_t i = 0; i < file.header.rows; ++i)
        for (int64_t p = file.row_ptr[size_t(i)]; p < file.row_ptr[size_t(i) + 1]; ++p)
            e.push_back({i, file.col_idx[size_t(p)],
                         file.is_complex() ? file.complex_values[size_t(p)] : file.real_values[size_t(p)]});
    std::mt19937_64 rng(uint64_t(path.size()));
    return build<T, I>(file.header.rows, e, base, rng);
}

template <class M> class SolverMatchingMatrices : public ::testing::Test {};
TYPED_TEST_SUITE(SolverMatchingMatrices, members, member_names);

TYPED_TEST(SolverMatchingMatrices, FullRankAndScalingBounds)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const std::string dir = zel::test::test_matrix_dir();
    if (dir.empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    for (const char *name : {"west0479.mtx", "bp_1200.mtx", "impcol_a.mtx", "sherman3.mtx", "nontrivial_mc64_example.mtx"}) {
        SCOPED_TRACE(name);
        const matrix<T, I> a = read_file<T, I>(dir + "/" + name, I(std::string(name).size() % 2));
        matching_result<I> r, s;
        ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_EQ(structural_matching(a.view(), s), ZEL_SPARSE_STATUS_SUCCESS);
        EXPECT_EQ(r.rank, a.n);
        EXPECT_EQ(s.rank, a.n);
        expect_matching(a, r, true);
        expect_matching(a, s, false);
        expect_scaling_bounds(a, r);
        expect_equilibrated(a);
    }
}

// The matched and scaled matrix B = P·Dr·A·Dc, row j of B being row row_of_column[j] of A, as
// (row, column, value) triplets.
template <class T, class I> std::vector<entry> permuted_and_scaled(const matrix<T, I> &a, const matching_result<I> &r)
{
    std::vector<I> position(size_t(a.n));
    for (I j = 0; j < a.n; ++j)
        position[size_t(r.row_of_column[size_t(j)])] = j;
    std::vector<entry> b;
    for (size_t p = 0; p < a.idx.size(); ++p) {
        const I i = a.row_of(p), j = a.idx[p] - a.base;
        const std::complex<double> x = std::complex<double>(a.val[p]) * r.row_scaling[size_t(i)] * r.column_scaling[size_t(j)];
        b.push_back({int64_t(position[size_t(i)]), int64_t(j), x});
    }
    return b;
}

// Sorted per-row and per-column entry counts, and each column's sorted magnitudes.
struct profile {
    std::vector<int64_t> row_counts, col_counts;
    std::vector<std::vector<double>> col_magnitudes;
};

profile profile_of(int64_t n, const std::vector<entry> &e)
{
    profile f;
    f.row_counts.assign(size_t(n), 0);
    f.col_counts.assign(size_t(n), 0);
    f.col_magnitudes.assign(size_t(n), {});
    for (const entry &x : e) {
        ++f.row_counts[size_t(x.i)];
        ++f.col_counts[size_t(x.j)];
        f.col_magnitudes[size_t(x.j)].push_back(std::abs(x.value));
    }
    std::sort(f.row_counts.begin(), f.row_counts.end());
    std::sort(f.col_counts.begin(), f.col_counts.end());
    for (auto &m : f.col_magnitudes)
        std::sort(m.begin(), m.end());
    return f;
}

// Against the file of the same matrix matched and scaled elsewhere (values to 6 digits; the
// permutation may differ where the matching has ties): a full diagonal of magnitude 1, nothing
// above 1, the same row and column counts up to permutation, and, since the columns keep their
// places, the same magnitudes in each column.
TYPED_TEST(SolverMatchingMatrices, AgreesWithAnotherMatchingAndScaling)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const std::string dir = zel::test::test_matrix_dir();
    if (dir.empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    const matrix<T, I> a = read_file<T, I>(dir + "/nontrivial_mc64_example.mtx", I(1));
    const matrix<double, int64_t> expected = read_file<double, int64_t>(dir + "/nontrivial_mc64_result.mtx", 0);
    ASSERT_EQ(int64_t(a.n), int64_t(expected.n));
    matching_result<I> r;
    ASSERT_EQ(maximum_product_matching(a.view(), a.val.data(), r), ZEL_SPARSE_STATUS_SUCCESS);
    ASSERT_EQ(r.rank, a.n);
    const std::vector<entry> b = permuted_and_scaled(a, r);
    const double slack = scaling_slack(a);
    int64_t diagonal = 0;
    for (const entry &x : b) {
        EXPECT_LE(std::abs(x.value), 1 + slack);
        if (x.i == x.j) {
            ++diagonal;
            EXPECT_NEAR(std::abs(x.value), 1.0, slack) << "diagonal " << x.i;
        }
    }
    EXPECT_EQ(diagonal, int64_t(a.n));
    std::vector<entry> e;
    for (size_t p = 0; p < expected.idx.size(); ++p)
        e.push_back({int64_t(expected.row_of(p)), int64_t(expected.idx[p]), expected.val[p]});
    const profile ours = profile_of(a.n, b), theirs = profile_of(a.n, e);
    EXPECT_EQ(ours.row_counts, theirs.row_counts);
    EXPECT_EQ(ours.col_counts, theirs.col_counts);
    double worst = 0;
    for (size_t j = 0; j < size_t(a.n); ++j) {
        ASSERT_EQ(ours.col_magnitudes[j].size(), theirs.col_magnitudes[j].size()) << "column " << j;
        for (size_t k = 0; k < ours.col_magnitudes[j].size(); ++k)
            worst = std::max(worst, std::fabs(ours.col_magnitudes[j][k] - theirs.col_magnitudes[j][k]));
    }
    EXPECT_LE(worst, 1e-6);
}

} // namespace
