// The solver's analysis: patterns, orderings and the supernodal symbolic factor, checked against
// a plain column-by-column symbolic factorisation.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "alloc_fault.hpp"
#include "mm_reader.hpp"
#include "solver/ordering.hpp"

using namespace zel::solver;

namespace {

// A square pattern by rows, 0-based; generators below give both triangles and the diagonal.
struct csr {
    int64_t n = 0;
    std::vector<int64_t> ptr{0}, idx;
};

csr from_pairs(int64_t n, std::vector<std::pair<int64_t, int64_t>> entries, bool mirror = true)
{
    for (int64_t i = 0; i < n; ++i)
        entries.emplace_back(i, i);
    for (size_t e = 0, m = entries.size(); mirror && e < m; ++e)
        entries.emplace_back(entries[e].second, entries[e].first);
    std::sort(entries.begin(), entries.end());
    entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
    csr a;
    a.n = n;
    a.ptr.assign(size_t(n) + 1, 0);
    for (auto [i, j] : entries) {
        ++a.ptr[size_t(i) + 1];
        a.idx.push_back(j);
    }
    std::partial_sum(a.ptr.begin(), a.ptr.end(), a.ptr.begin());
    return a;
}

csr grid(int64_t k, int dims) // the 5-point (2-D) or 7-point (3-D) Laplacian's pattern
{
    const int64_t n = dims == 2 ? k * k : k * k * k;
    std::vector<std::pair<int64_t, int64_t>> e;
    for (int64_t v = 0; v < n; ++v)
        for (int64_t stride = 1, d = 0; d < dims; ++d, stride *= k)
            if ((v / stride) % k + 1 < k)
                e.emplace_back(v, v + stride);
    return from_pairs(n, e);
}

// Patterns of varied structure, named for failure messages.
std::vector<std::pair<std::string, csr>> structures()
{
    std::mt19937_64 rng(7);
    auto random = [&](int64_t n, double density) {
        std::vector<std::pair<int64_t, int64_t>> e;
        std::uniform_real_distribution<double> u(0, 1);
        for (int64_t i = 0; i < n; ++i)
            for (int64_t j = 0; j < i; ++j)
                if (u(rng) < density)
                    e.emplace_back(i, j);
        return from_pairs(n, e);
    };
    std::vector<std::pair<int64_t, int64_t>> band, arrow, blocks;
    for (int64_t i = 0; i < 60; ++i)
        for (int64_t j = std::max<int64_t>(0, i - 4); j < i; ++j)
            band.emplace_back(i, j);
    for (int64_t i = 1; i < 50; ++i)
        arrow.emplace_back(i, 0);
    for (int64_t i = 0; i < 72; ++i)
        for (int64_t j = i - i % 9; j < i; ++j)
            if ((i * 31 + j * 17) % 3 != 0)
                blocks.emplace_back(i, j);
    return {{"random sparse", random(80, 0.04)}, {"random dense", random(40, 0.3)}, {"banded", from_pairs(60, band)},
            {"arrow", from_pairs(50, arrow)}, {"block diagonal", from_pairs(72, blocks)}, {"one column", from_pairs(1, {})},
            {"diagonal only", from_pairs(25, {})}, {"empty", from_pairs(0, {})}, {"2-D grid", grid(9, 2)}, {"3-D grid", grid(5, 3)}};
}

// Structure of each column of L for the matrix whose (i, j) entry is a(perm[i], perm[j]):
// the column's own entries below the diagonal and those of its tree children.
std::vector<std::vector<int64_t>> oracle_columns(const csr &a, const std::vector<int64_t> &perm)
{
    const int64_t n = a.n;
    std::vector<int64_t> inv(n), mark(n, -1);
    for (int64_t k = 0; k < n; ++k)
        inv[perm[k]] = k;
    std::vector<std::vector<int64_t>> cols(n), children(n);
    for (int64_t j = 0; j < n; ++j) {
        std::vector<int64_t> &list = cols[j];
        auto add = [&](int64_t i) {
            if (i >= j && mark[i] != j) {
                mark[i] = j;
                list.push_back(i);
            }
        };
        add(j);
        for (int64_t p = a.ptr[perm[j]]; p < a.ptr[perm[j] + 1]; ++p)
            add(inv[a.idx[p]]);
        for (int64_t c : children[j])
            for (int64_t i : cols[c])
                add(i);
        std::sort(list.begin(), list.end());
        if (list.size() > 1)
            children[list[1]].push_back(j);
    }
    return cols;
}

template <class I> std::vector<I> narrow(const std::vector<int64_t> &v) { return std::vector<I>(v.begin(), v.end()); }
template <class I> std::vector<int64_t> perm_of(const symbolic_factor<I> &f) { return {f.perm.get(), f.perm.get() + f.n}; }

template <class I> int pattern_of(const csr &a, sym_pattern<I> &p)
{
    const std::vector<I> ptr = narrow<I>(a.ptr), idx = narrow<I>(a.idx);
    return pattern_from_csr(csr_pattern<I>{I(a.n), 0, ptr.data(), idx.data()}, csr_part::full, p);
}

template <class I>
int analyse(const csr &a, ordering_options options, bool relax, symbolic_factor<I> &f, const std::vector<int64_t> &given = {})
{
    sym_pattern<I> p;
    amalgamation am;
    am.enabled = relax;
    const std::vector<I> g = narrow<I>(given);
    int status = pattern_of(a, p);
    return status ? status : analyse_pattern(p, options, g.empty() ? nullptr : g.data(), am, f);
}

// The factor against the oracle: with `exact`, each column's rows equal the oracle's; else they
// contain them. Fill and flops of the exact factor match in both cases.
template <class I> void expect_oracle(const csr &a, const symbolic_factor<I> &f, bool exact, const std::vector<int64_t> &perm)
{
    const char *broken = check_symbolic(f);
    ASSERT_TRUE(broken == nullptr) << broken;
    const auto oracle = oracle_columns(a, perm);
    int64_t entries = 0;
    double flops = 0;
    for (const auto &c : oracle) {
        entries += int64_t(c.size());
        flops += double(c.size()) * double(c.size());
    }
    EXPECT_EQ(f.stats.exact_entries, entries);
    EXPECT_EQ(f.stats.exact_flops, flops);
    const auto factor_columns = oracle_columns(a, perm_of(f));
    for (I s = 0; s < f.nsuper; ++s) {
        std::vector<int64_t> list(f.row_index.get() + f.row_ptr[s] - 1, f.row_index.get() + f.row_ptr[s + 1] - 1);
        for (auto &r : list)
            --r;
        for (I j = f.super_ptr[s] - 1, t = 0; j < f.super_ptr[s + 1] - 1; ++j, ++t) {
            const std::vector<int64_t> mine(list.begin() + t, list.end()), &theirs = factor_columns[j];
            if (exact)
                ASSERT_EQ(mine, theirs) << "column " << j;
            else
                ASSERT_TRUE(std::includes(mine.begin(), mine.end(), theirs.begin(), theirs.end())) << "column " << j;
        }
    }
}

template <class I> class SolverSymbolic : public ::testing::Test {};
using Indices = ::testing::Types<int32_t, int64_t>;
TYPED_TEST_SUITE(SolverSymbolic, Indices);

TYPED_TEST(SolverSymbolic, FactorMatchesColumnByColumnOracle)
{
    using I = TypeParam;
    for (const auto &[name, a] : structures()) {
        std::vector<int64_t> shuffled(a.n);
        std::iota(shuffled.begin(), shuffled.end(), 0);
        std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937_64(a.n));
        const std::pair<ordering_method, std::vector<int64_t>> orders[] = {
            {ordering_method::natural, {}}, {ordering_method::amd, {}}, {ordering_method::metis, {}},
            {ordering_method::given, shuffled}};
        for (const auto &[method, given] : orders)
            for (bool relax : {false, true}) {
                SCOPED_TRACE(name + " ordering " + std::to_string(int(method)) + (relax ? " relaxed" : " exact"));
                symbolic_factor<I> f;
                ASSERT_EQ(analyse(a, {method}, relax, f, given), 0);
                // The fill of a given ordering is kept: the postorder added to it changes none.
                const std::vector<int64_t> perm = given.empty() ? perm_of(f) : given;
                expect_oracle(a, f, !relax, perm);
            }
    }
}

TYPED_TEST(SolverSymbolic, PatternBuildersAgree)
{
    using I = TypeParam;
    const csr a = structures()[0].second;
    sym_pattern<I> full, upper, sym, permuted, direct;
    ASSERT_EQ(pattern_of(a, full), 0);
    // The upper triangle, 1-based, with every entry twice and the lower triangle as noise.
    std::vector<I> ptr{1}, idx;
    for (int64_t i = 0; i < a.n; ++i) {
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
            for (int twice = 0; twice < 1 + (a.idx[p] > i); ++twice)
                idx.push_back(I(a.idx[p] + 1));
        ptr.push_back(I(idx.size() + 1));
    }
    ASSERT_EQ(pattern_from_csr(csr_pattern<I>{I(a.n), 1, ptr.data(), idx.data()}, csr_part::upper, upper), 0);
    // An unsymmetric matrix holding one triangle of a: its A + Aᵀ is a's pattern again.
    std::vector<std::pair<int64_t, int64_t>> lower;
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
            if (a.idx[p] < i)
                lower.emplace_back(i, a.idx[p]);
    const csr l = from_pairs(a.n, lower, false);
    const std::vector<I> lp = narrow<I>(l.ptr), li = narrow<I>(l.idx);
    ASSERT_EQ(symmetrised_pattern(csr_pattern<I>{I(l.n), 0, lp.data(), li.data()}, sym), 0);
    auto same = [](const sym_pattern<I> &x, const sym_pattern<I> &y) {
        return x.n == y.n && std::equal(x.col_ptr.get(), x.col_ptr.get() + x.n + 1, y.col_ptr.get()) &&
               std::equal(x.row_idx.get(), x.row_idx.get() + x.entries(), y.row_idx.get());
    };
    EXPECT_TRUE(same(full, upper));
    EXPECT_TRUE(same(full, sym));
    EXPECT_EQ(int64_t(full.entries()), int64_t(a.idx.size()) - a.n); // no diagonal, no duplicate
    // P·A·Pᵀ against the pattern built from the permuted CSR.
    std::vector<int64_t> perm(a.n), inv(a.n);
    std::iota(perm.begin(), perm.end(), 0);
    std::shuffle(perm.begin(), perm.end(), std::mt19937_64(3));
    std::vector<std::pair<int64_t, int64_t>> moved;
    for (int64_t k = 0; k < a.n; ++k)
        inv[perm[k]] = k;
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
            moved.emplace_back(inv[i], inv[a.idx[p]]);
    ASSERT_EQ(pattern_of(from_pairs(a.n, moved), direct), 0);
    const std::vector<I> pi = narrow<I>(perm), ii = narrow<I>(inv);
    ASSERT_EQ(permute_pattern(full, pi.data(), ii.data(), permuted), 0);
    EXPECT_TRUE(same(permuted, direct));
}

TYPED_TEST(SolverSymbolic, InvalidInputIsRejected)
{
    using I = TypeParam;
    sym_pattern<I> p;
    auto status = [&](std::vector<I> ptr, std::vector<I> idx, I base) {
        return pattern_from_csr(csr_pattern<I>{I(ptr.size() - 1), base, ptr.data(), idx.data()}, csr_part::full, p);
    };
    EXPECT_EQ(status({0, 2, 1, 3}, {0, 1, 2}, 0), ZEL_SPARSE_STATUS_INVALID_VALUE);   // pointers go back
    EXPECT_EQ(status({0, 1, 2, 3}, {0, 3, 2}, 0), ZEL_SPARSE_STATUS_INVALID_VALUE);   // index n
    EXPECT_EQ(status({1, 2, 3, 4}, {1, 0, 3}, 1), ZEL_SPARSE_STATUS_INVALID_VALUE);   // index below the base
    EXPECT_EQ(status({0, 1, 2, 3}, {0, 1, 2}, 1), ZEL_SPARSE_STATUS_INVALID_VALUE);   // first pointer not the base
    EXPECT_EQ(status({1, 2, 3, 4}, {1, 2, 3}, 1), ZEL_SPARSE_STATUS_SUCCESS);
    const csr a = grid(4, 2);
    symbolic_factor<I> f;
    std::vector<int64_t> repeated(a.n, 0), beyond(a.n);
    std::iota(beyond.begin(), beyond.end(), 1);
    EXPECT_EQ(analyse(a, {ordering_method::given}, true, f, repeated), ZEL_SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(analyse(a, {ordering_method::given}, true, f, beyond), ZEL_SPARSE_STATUS_INVALID_VALUE);
}

TYPED_TEST(SolverSymbolic, OrderingsReduceFillOnAGrid)
{
    using I = TypeParam;
    const csr a = grid(30, 2);
    sym_pattern<I> p;
    ASSERT_EQ(pattern_of(a, p), 0);
    std::vector<I> perm(a.n);
    symbolic_stats natural, reduced;
    ASSERT_EQ(factor_cost(p, static_cast<const I *>(nullptr), natural), 0);
    for (ordering_method m : {ordering_method::amd, ordering_method::metis, ordering_method::automatic}) {
        ordering_report report;
        ASSERT_EQ(fill_reducing_ordering(p, {m, 0.0, 0.0}, static_cast<const I *>(nullptr), perm.data(), &report), 0);
        EXPECT_EQ(validate_permutation(I(a.n), perm.data()), 0);
        ASSERT_EQ(factor_cost(p, perm.data(), reduced), 0);
        EXPECT_LT(reduced.exact_entries, natural.exact_entries / 2) << int(m);
        if (m == ordering_method::automatic) { // both tried, the cheaper kept (minimum degree's by its estimate)
            EXPECT_LE(reduced.exact_flops, std::min(report.amd_flops, report.metis_flops));
        }
    }
}

// Minimum degree's own count of its factor decides the automatic choice: it must bound the
// exact count from above, closely, and the analysis must keep whichever ordering is cheaper.
TYPED_TEST(SolverSymbolic, AutomaticAnalysisKeepsTheCheaperOrdering)
{
    using I = TypeParam;
    auto cases = structures();
    cases.emplace_back("3-D grid", grid(12, 3));
    cases.emplace_back("2-D grid", grid(40, 2));
    int kept[2] = {0, 0};
    for (const auto &[name, a] : cases) {
        SCOPED_TRACE(name);
        sym_pattern<I> p;
        ASSERT_EQ(pattern_of(a, p), 0);
        std::vector<I> perm(a.n);
        symbolic_stats estimate, exact;
        ASSERT_EQ(amd_ordering(p, perm.data(), &estimate), 0);
        ASSERT_EQ(factor_cost(p, perm.data(), exact), 0);
        EXPECT_GE(estimate.exact_entries, exact.exact_entries);
        EXPECT_GE(estimate.exact_flops, exact.exact_flops);
        EXPECT_LE(estimate.exact_flops, 1.2 * exact.exact_flops);
        symbolic_factor<I> f;
        ordering_report report;
        ASSERT_EQ(analyse_pattern(p, {ordering_method::automatic, 0.0, 0.0}, static_cast<const I *>(nullptr),
                                  amalgamation(), f, &report),
                  0);
        expect_oracle(a, f, false, perm_of(f));
        EXPECT_EQ(report.amd_flops, estimate.exact_flops);
        if (report.used == ordering_method::metis) {
            EXPECT_EQ(f.stats.exact_flops, report.metis_flops);
            EXPECT_LT(report.metis_flops, report.amd_flops);
        } else {
            EXPECT_EQ(f.stats.exact_flops, exact.exact_flops);
            EXPECT_GE(report.metis_flops, report.amd_flops);
        }
        ++kept[report.used == ordering_method::metis];
    }
    EXPECT_GT(kept[0], 0);
    EXPECT_GT(kept[1], 0);
}

TYPED_TEST(SolverSymbolic, AmalgamationCutsSupernodesOfAGrid)
{
    using I = TypeParam;
    const csr a = grid(150, 2);
    symbolic_factor<I> exact, relaxed;
    ASSERT_EQ(analyse(a, {ordering_method::metis}, false, exact), 0);
    ASSERT_EQ(analyse(a, {ordering_method::metis}, true, relaxed), 0);
    expect_oracle(a, relaxed, false, perm_of(relaxed));
    EXPECT_LT(relaxed.nsuper * 4, exact.nsuper);
    EXPECT_LT(relaxed.stats.flops, 1.5 * exact.stats.flops); // the explicit zeros stay cheap
}

TYPED_TEST(SolverSymbolic, EveryFailedAllocationReportsTwoAndLeaksNothing)
{
    using I = TypeParam;
    const csr a = grid(8, 2);
    for (ordering_method m : {ordering_method::automatic, ordering_method::given}) {
        std::vector<int64_t> given(m == ordering_method::given ? a.n : 0);
        std::iota(given.begin(), given.end(), 0);
        const int64_t total = zel::test::for_each_failing_allocation(
            [&] {
                symbolic_factor<I> f;
                const int status = analyse(a, {m, 0.0, 0.0}, true, f, given);
                EXPECT_TRUE(status != 0 || check_symbolic(f) == nullptr);
                return status;
            },
            [&](int64_t k, int result, const zel::test::allocator_probe &probe) {
                EXPECT_EQ(result, ZEL_SPARSE_STATUS_ALLOC_FAILED) << "allocation " << k;
                EXPECT_EQ(probe.live(), 0) << "allocation " << k;
            });
        EXPECT_GT(total, 20);
    }
}

TYPED_TEST(SolverSymbolic, RealSymmetricMatrices)
{
    using I = TypeParam;
    const std::string dir = zel::test::test_matrix_dir();
    if (dir.empty())
        GTEST_SKIP() << "ZEL_TEST_MATRICES not set";
    for (const char *name : {"bcsstk13.mtx", "1138_bus.mtx"}) {
        const auto t = zel::test::read_matrix_market(dir + "/" + name);
        std::vector<std::pair<int64_t, int64_t>> e;
        for (size_t k = 0; k < t.size(); ++k)
            e.emplace_back(t.row[k], t.col[k]);
        const csr a = from_pairs(t.rows, e);
        for (bool relax : {false, true}) {
            SCOPED_TRACE(std::string(name) + (relax ? " relaxed" : " exact"));
            symbolic_factor<I> f;
            ASSERT_EQ(analyse(a, {ordering_method::automatic, 0.0, 0.0}, relax, f), 0);
            expect_oracle(a, f, !relax, perm_of(f));
        }
    }
}

} // namespace
