// The solver on the real matrices of the shared test folder: the positive definite ones with
// their own values, and every square one made positive definite on its symmetrised pattern.
// Judged by the componentwise backward error after refinement, the forward error where the
// condition is known, and the factor's invariants and reconstruction.
#include <map>

#include "mm_reader.hpp"
#include "pds_test_support.hpp"

using namespace pds_test;

namespace {

// The files that are positive definite as they are, with their 1-norm condition where the
// folder's notes give one (0: unknown, no forward-error check).
struct known_pd {
    const char *file;
    double condition;
};
constexpr known_pd positive_definite[] = {
    {"bcsstk13.mtx", 0}, {"1138_bus.mtx", 1e7}, {"ani4.mtx", 4e3}, {"mhd1280b.mtx", 0}};

// The file's matrix with its own values (Hermitian symmetry checked), or, with `dominant`,
// its pattern made symmetric, given a full diagonal and diagonally dominant values. The
// dominant matrices have ‖A⁻¹‖∞ ≤ 1, so their condition is at most ‖A‖∞.
template <class T> sym_csr<T> from_file(const zel::test::mm_triplets &t, bool dominant)
{
    std::map<std::pair<int64_t, int64_t>, T> entries;
    std::vector<off_entry> lower;
    for (size_t k = 0; k < t.size(); ++k) {
        const int64_t i = t.row[k], j = t.col[k];
        if (dominant) {
            if (i != j)
                entries.emplace(std::minmax(i, j), T(0));
        } else {
            entries[{i, j}] += make_value<T>(t.value[k].real(), t.value[k].imag());
        }
    }
    if (dominant) {
        std::mt19937_64 rng(uint64_t(t.rows));
        for (const auto &entry : entries) {
            const T v = random_value<T>(rng);
            lower.push_back({entry.first.second, entry.first.first, double(std::real(v)), double(std::imag(v))});
        }
        return hermitian<T>(t.rows, lower, 1.0);
    }
    // The lower triangle and its mirror: a file written with both triangles (ani4) may differ
    // between them in the last digits it printed.
    sym_csr<T> a;
    a.n = t.rows;
    for (const auto &[at, v] : entries) {
        while (int64_t(a.ptr.size()) <= at.first)
            a.ptr.push_back(a.entries());
        const T mirror = conj(entries.at({at.second, at.first}));
        EXPECT_LE(std::abs(v - mirror), 1e-9 * std::abs(v)) << "not Hermitian at " << at.first << ", " << at.second;
        a.idx.push_back(at.second);
        a.val.push_back(at.first >= at.second ? v : mirror);
    }
    while (int64_t(a.ptr.size()) <= a.n)
        a.ptr.push_back(a.entries());
    return a;
}

template <class T> double norm_inf(const sym_csr<T> &a)
{
    double worst = 0;
    for (int64_t i = 0; i < a.n; ++i) {
        double s = 0;
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
            s += double(std::abs(a.val[p]));
        worst = std::max(worst, s);
    }
    return worst;
}

// Analyse, factorise and check the factor; solve for a known solution with the default
// refinement and judge the backward error and, given a condition, the forward error.
template <class M> void expect_solved(const sym_csr<typename M::T> &a, int ordering, double condition, int form)
{
    using T = typename M::T;
    using I = typename M::I;
    const layout l = layouts()[size_t(form) % 4];
    SCOPED_TRACE("ordering " + std::to_string(ordering) + ", " + l.name());
    const caller_csr<T, I> c = to_caller<T, I>(a, l);
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    const zel_pds_options o = options_with(ordering);
    ASSERT_EQ(zel_pds_set_options(s, &o), ok);
    ASSERT_EQ(analyse<M>(s, c), ok);
    ASSERT_EQ(factorise<M>(s, c), ok);
    ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
    std::mt19937_64 rng(uint64_t(a.n));
    const block<T> truth = random_block<T>(rng, a.n, 2, a.n);
    block<T> b(a.n, 2, a.n, T(0));
    for (int64_t j = 0; j < 2; ++j) {
        const std::vector<wide<T>> ax = apply(a, ZEL_PDS_SOLVE_N, truth, j);
        for (int64_t i = 0; i < a.n; ++i)
            if constexpr (M::complex)
                b.at(i, j) = T(zel::real_t<T>(ax[i].real()), zel::real_t<T>(ax[i].imag()));
            else
                b.at(i, j) = T(ax[i]);
    }
    block<T> x(a.n, 2, a.n, sentinel<T>());
    ASSERT_EQ(M::A::solve(s, 2, c_ptr(b.v.data()), a.n, c_ptr(x.data()), a.n), ok);
    const backward be = backward_error(a, ZEL_PDS_SOLVE_N, b, x);
    EXPECT_LE(double(be.componentwise), limits_for<T>(o, a.n).componentwise) << "componentwise backward error";
    zel_pds_statistics st;
    ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
    EXPECT_LE(st.backward_error, limits_for<T>(o, a.n).componentwise) << "reported backward error";
    if (condition > 0) {
        long double worst = 0;
        for (int64_t j = 0; j < 2; ++j) {
            long double d = 0, m = 0;
            for (int64_t i = 0; i < a.n; ++i) {
                d = std::max(d, std::abs(widen(x.at(i, j)) - widen(truth.at(i, j))));
                m = std::max(m, std::abs(widen(truth.at(i, j))));
            }
            worst = std::max(worst, d / m);
        }
        // b was rounded to T, a relative change of ε: within the same bound as the solve's.
        EXPECT_LE(double(worst), 4 * condition * std::max(double(be.normwise), eps<T>) + 2 * condition * eps<T>)
            << "forward error, condition " << condition;
    }
}

template <class M> class PdsMatrices : public ::testing::Test {};
using wide_members = ::testing::Types<member<double, int32_t>, member<double, int64_t>,
                                      member<std::complex<double>, int32_t>, member<std::complex<double>, int64_t>>;
TYPED_TEST_SUITE(PdsMatrices, wide_members, member_names);

TYPED_TEST(PdsMatrices, PositiveDefiniteFiles)
{
    using M = TypeParam;
    using T = typename M::T;
    const std::string dir = zel::test::test_matrix_dir();
    if (dir.empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    int form = 0;
    for (const known_pd &k : positive_definite) {
        const auto t = zel::test::read_matrix_market(dir + "/" + k.file);
        if (t.is_complex() != M::complex)
            continue;
        SCOPED_TRACE(k.file);
        const sym_csr<T> a = from_file<T>(t, false);
        for (int ordering : {ZEL_PDS_ORDERING_AUTOMATIC, ZEL_PDS_ORDERING_AMD, ZEL_PDS_ORDERING_NESTED_DISSECTION})
            ASSERT_NO_FATAL_FAILURE(expect_solved<M>(a, ordering, k.condition, form++));
    }
}

// Every square pattern of the test matrices with diagonally dominant values; `form` picks the
// caller's CSR form of the first and steps on from there.
template <class M> void expect_every_square_pattern_solved(int form)
{
    using T = typename M::T;
    for (const std::string &file : zel::test::test_matrix_files()) {
        const auto t = zel::test::read_matrix_market(file);
        if (t.rows != t.cols)
            continue;
        SCOPED_TRACE(file);
        const sym_csr<T> a = from_file<T>(t, true);
        ASSERT_NO_FATAL_FAILURE(expect_solved<M>(a, ZEL_PDS_ORDERING_AUTOMATIC, norm_inf(a), form++));
    }
}

TYPED_TEST(PdsMatrices, EverySquarePatternMadePositiveDefinite)
{
    if (zel::test::test_matrix_files().empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    expect_every_square_pattern_solved<TypeParam>(0);
}

// Single precision on the same dominant matrices: refinement there stops at a few of its ulps.
template <class M> class PdsSingleMatrices : public ::testing::Test {};
using narrow_members = ::testing::Types<member<float, int32_t>, member<std::complex<float>, int64_t>>;
TYPED_TEST_SUITE(PdsSingleMatrices, narrow_members, member_names);

TYPED_TEST(PdsSingleMatrices, EverySquarePatternMadePositiveDefinite)
{
    if (zel::test::test_matrix_files().empty())
        GTEST_SKIP() << "no test matrices (ZEL_TEST_MATRICES)";
    expect_every_square_pattern_solved<TypeParam>(1);
}

} // namespace
