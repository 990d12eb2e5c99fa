// The solver's phases through the exported interface, judged by independent measures: a dense
// Cholesky solve in long double, residuals and backward errors, and the factor's invariants and
// reconstruction.
#include "pds_test_support.hpp"

using namespace pds_test;

namespace {

constexpr int orderings[] = {ZEL_PDS_ORDERING_AUTOMATIC, ZEL_PDS_ORDERING_AMD, ZEL_PDS_ORDERING_NESTED_DISSECTION,
                             ZEL_PDS_ORDERING_NATURAL, ZEL_PDS_ORDERING_GIVEN};
constexpr int operations[] = {ZEL_PDS_SOLVE_N, ZEL_PDS_SOLVE_T, ZEL_PDS_SOLVE_C};

template <class I> std::vector<I> random_permutation(int64_t n, uint64_t seed)
{
    std::vector<I> p(static_cast<size_t>(n));
    std::iota(p.begin(), p.end(), I(0));
    std::shuffle(p.begin(), p.end(), std::mt19937_64(seed));
    return p;
}

// One solve of op(A)·X = B with fresh right-hand sides, in place or into a separate block;
// checks the solution and the refinement's report, and returns it.
template <class M>
block<typename M::T> solve_checked(zel_pds_solver *s, const sym_csr<typename M::T> &a, const zel_pds_options &o,
                                   int64_t nrhs, int64_t ldb, int64_t ldx, bool in_place, std::mt19937_64 &rng,
                                   const dense_oracle<typename M::T> *oracle)
{
    using T = typename M::T;
    SCOPED_TRACE("operation " + std::to_string(o.operation) + ", nrhs " + std::to_string(nrhs) +
                 (in_place ? ", in place" : ", ldb " + std::to_string(ldb) + " ldx " + std::to_string(ldx)));
    EXPECT_EQ(zel_pds_set_options(s, &o), ok);
    block<T> b = random_block<T>(rng, a.n, nrhs, ldb);
    const std::vector<T> b_before = b.v;
    block<T> x = in_place ? b : block<T>(a.n, nrhs, ldx, sentinel<T>());
    const T *from = in_place ? x.data() : b.data();
    EXPECT_EQ(M::A::solve(s, nrhs, c_ptr(from), b.ld, c_ptr(x.data()), x.ld), ok);
    EXPECT_TRUE(untouched(b, b_before)) << "the right-hand sides were written";
    const solve_limits<T> lim = limits_for<T>(o, a.n);
    expect_solution(a, o.operation, b, x, lim, oracle);
    zel_pds_statistics st;
    EXPECT_EQ(zel_pds_get_statistics(s, &st), ok);
    EXPECT_TRUE(st.refinement_steps >= 0 && st.refinement_steps <= o.refinement_max_steps) << st.refinement_steps;
    if (o.refinement_max_steps > 0) {
        EXPECT_LE(st.backward_error, lim.componentwise) << "reported backward error";
    } else {
        EXPECT_EQ(st.backward_error, 0.0);
    }
    return x;
}

template <class M> class PdsOracle : public ::testing::Test {};
TYPED_TEST_SUITE(PdsOracle, all_members, member_names);

// Every structure, caller layout and ordering: the factor checked, then solves with A, Aᵀ and
// Aᴴ against the dense solution, in place (one to three right-hand sides, ldb from n on) and
// into a separate block (ldb and ldx beyond n).
TYPED_TEST(PdsOracle, SolvesMatchTheDenseSolution)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    int run = 0;
    for (const auto &[name, a] : structures<T>()) {
        const dense_oracle<T> plain(a, false), conjugated(a, M::complex);
        std::mt19937_64 rng(uint64_t(a.n) * 31);
        for (const layout &l : layouts())
            for (int ordering : orderings) {
                ++run;
                SCOPED_TRACE(name + ", " + l.name() + ", ordering " + std::to_string(ordering));
                const caller_csr<T, I> c = to_caller<T, I>(a, l, uint64_t(run));
                solver_holder s;
                ASSERT_EQ(create<M>(s), ok);
                zel_pds_options o = options_with(ordering, run % 3 == 0 ? 0 : 2, run % 2);
                o.partitions = 1 + run % 3;
                ASSERT_EQ(zel_pds_set_options(s, &o), ok);
                if (ordering == ZEL_PDS_ORDERING_GIVEN) {
                    const std::vector<I> p = random_permutation<I>(a.n, uint64_t(run));
                    ASSERT_EQ(M::A::set_permutation(s, I(a.n), p.data()), ok);
                }
                ASSERT_EQ(analyse<M>(s, c), ok);
                ASSERT_EQ(factorise<M>(s, c), ok);
                ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
                zel_pds_statistics st;
                ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
                if (ordering == ZEL_PDS_ORDERING_AUTOMATIC) {
                    EXPECT_TRUE(st.ordering == ZEL_PDS_ORDERING_AMD || st.ordering == ZEL_PDS_ORDERING_NESTED_DISSECTION);
                } else {
                    EXPECT_EQ(st.ordering, ordering);
                }
                for (int op : operations) {
                    o.operation = op;
                    const dense_oracle<T> *oracle = op == ZEL_PDS_SOLVE_T && M::complex ? &conjugated : &plain;
                    solve_checked<M>(s, a, o, 1 + op, a.n + op, a.n + op, true, rng, oracle);
                    solve_checked<M>(s, a, o, 3, a.n + 3, a.n + 1, false, rng, oracle);
                }
            }
    }
}

// Refinement stops at its tolerance, at stagnation or at the cap: never more steps than the cap,
// a backward error within the tolerance (or a few ulps when that is out of reach), reported as
// measured, and no step at all when the driver's solution already meets a loose tolerance.
TYPED_TEST(PdsOracle, RefinementHonoursItsOptions)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> a = structures<T>()[6].second; // the 2-D Laplacian
    const caller_csr<T, I> c = to_caller<T, I>(a, layouts()[0]);
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    ASSERT_EQ(analyse<M>(s, c), ok);
    ASSERT_EQ(factorise<M>(s, c), ok);
    ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
    std::mt19937_64 rng(3);
    const block<T> b = random_block<T>(rng, a.n, 2, a.n);
    for (int steps : {0, 1, 10})
        for (int exponent : {0, 3, 14}) {
            SCOPED_TRACE("steps " + std::to_string(steps) + ", exponent " + std::to_string(exponent));
            zel_pds_options o = options_with(ZEL_PDS_ORDERING_AUTOMATIC, steps);
            o.refinement_exponent = exponent;
            ASSERT_EQ(zel_pds_set_options(s, &o), ok);
            block<T> x(a.n, 2, a.n, sentinel<T>());
            ASSERT_EQ(M::A::solve(s, 2, c_ptr(b.v.data()), a.n, c_ptr(x.data()), a.n), ok);
            zel_pds_statistics st;
            ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
            EXPECT_LE(st.refinement_steps, steps);
            if (exponent == 3 && steps > 0) {
                EXPECT_EQ(st.refinement_steps, 0) << "the driver's solution already meets 1e-3";
                EXPECT_LT(st.backward_error, 1e-3);
            }
            const backward be = backward_error(a, ZEL_PDS_SOLVE_N, b, x);
            if (steps > 0) {
                const double limit = std::max(16 * eps<T>, 2 * std::pow(10.0, -exponent));
                EXPECT_LE(double(be.componentwise), limit);
                EXPECT_LE(st.backward_error, limit) << "reported";
                EXPECT_LE(st.residual_norm, limit) << "reported";
            } else {
                EXPECT_EQ(st.backward_error, 0.0);
            }
            EXPECT_LE(double(be.normwise), 8 * a.n * eps<T>);
        }
}

// Factorise again on one analysis with new values (scaled, then perturbed): each factor and
// solve is right for its own values, the caller's array may change after factorise, and two
// solvers given the same calls agree bit for bit.
TYPED_TEST(PdsOracle, NewValuesOnOneAnalysisAndRepeatableResults)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    for (size_t pick : {size_t(0), size_t(4), size_t(7)}) {
        const auto [name, a] = structures<T>()[pick];
        const layout l = layouts()[pick % 4];
        SCOPED_TRACE(name + ", " + l.name());
        sym_csr<T> scaled = a, perturbed = a;
        for (T &v : scaled.val)
            v *= zel::real_t<T>(4);
        std::mt19937_64 rng(pick);
        for (int64_t i = 0; i < a.n; ++i) // new off-diagonal values, a dominant diagonal again
            for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
                if (int64_t j = a.idx[p]; j < i) {
                    const T v = random_value<T>(rng);
                    perturbed.val[p] = v;
                    for (int64_t q = a.ptr[j]; q < a.ptr[j + 1]; ++q)
                        if (a.idx[q] == i)
                            perturbed.val[q] = conj(v);
                }
        for (int64_t i = 0; i < a.n; ++i) {
            double weight = 1;
            for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
                if (a.idx[p] != i)
                    weight += std::abs(std::real(perturbed.val[p])) + std::abs(std::imag(perturbed.val[p]));
            for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
                if (a.idx[p] == i)
                    perturbed.val[p] = make_value<T>(weight, 0);
        }
        const zel_pds_options o = options_with(ZEL_PDS_ORDERING_AUTOMATIC);
        std::vector<std::vector<T>> solutions[2];
        std::vector<std::vector<unsigned char>> factors[2];
        for (int copy = 0; copy < 2; ++copy) {
            solver_holder s;
            ASSERT_EQ(create<M>(s), ok);
            caller_csr<T, I> c = to_caller<T, I>(a, l);
            ASSERT_EQ(analyse<M>(s, c), ok);
            for (const sym_csr<T> *values : std::vector<const sym_csr<T> *>{&a, &scaled, &perturbed, &a}) {
                c.val = to_caller<T, I>(*values, l).val;
                ASSERT_EQ(factorise<M>(s, c), ok);
                std::fill(c.val.begin(), c.val.end(), make_value<T>(-1, 0)); // the solver keeps its own copy
                ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, *values));
                typename M::A::factor f;
                ASSERT_EQ(M::A::export_factor(s, &f), ok);
                const auto *bytes = static_cast<const unsigned char *>(f.l_values);
                const int64_t stored = f.col_ptr[f.n] - 1;
                factors[copy].emplace_back(bytes, bytes + stored * int64_t(sizeof(T)));
                const auto *perm = reinterpret_cast<const unsigned char *>(f.perm);
                factors[copy].emplace_back(perm, perm + f.n * int64_t(sizeof(I)));
                std::mt19937_64 rhs(5);
                const dense_oracle<T> oracle(*values, false);
                solutions[copy].push_back(solve_checked<M>(s, *values, o, 2, a.n, a.n, false, rhs, &oracle).v);
            }
        }
        ASSERT_EQ(factors[0].size(), factors[1].size());
        for (size_t k = 0; k < factors[0].size(); ++k)
            EXPECT_TRUE(factors[0][k] == factors[1][k]) << "factor array " << k << " differs between two runs";
        for (size_t k = 0; k < solutions[0].size(); ++k)
            EXPECT_TRUE(same_bits(solutions[0][k], solutions[1][k])) << "solution " << k << " differs between two runs";
        // The same values factorised again on the same analysis give the same bits.
        EXPECT_TRUE(factors[0][0] == factors[0][6]);
        EXPECT_TRUE(same_bits(solutions[0][0], solutions[0][3]));
    }
}

// A sparse handle over the same arrays gives the same factor and solution as the arrays.
TYPED_TEST(PdsOracle, SparseHandleAgreesWithTheArrays)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> a = structures<T>()[3].second;
    for (const layout &l : {layouts()[1], layouts()[3]}) {
        SCOPED_TRACE(l.name());
        caller_csr<T, I> c = to_caller<T, I>(a, l);
        typename M::A::handle *h = nullptr;
        ASSERT_EQ(M::A::create_csr(&h, c.base, c.n, c.n, c.ptr.data(), c.ptr.data() + 1, c.idx.data(), c_ptr(c.val.data())),
                  ZEL_SPARSE_STATUS_SUCCESS);
        solver_holder by_handle, by_arrays;
        ASSERT_EQ(create<M>(by_handle), ok);
        ASSERT_EQ(create<M>(by_arrays), ok);
        EXPECT_EQ(M::A::analyse_sparse(by_handle, h, l.storage), ok);
        EXPECT_EQ(M::A::factorise_sparse(by_handle, h), ok);
        EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
        ASSERT_EQ(analyse<M>(by_arrays, c), ok);
        ASSERT_EQ(factorise<M>(by_arrays, c), ok);
        ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(by_handle, a));
        typename M::A::factor f, g;
        ASSERT_EQ(M::A::export_factor(by_handle, &f), ok);
        ASSERT_EQ(M::A::export_factor(by_arrays, &g), ok);
        ASSERT_EQ(f.nsuper, g.nsuper);
        EXPECT_TRUE(std::equal(f.perm, f.perm + f.n, g.perm));
        EXPECT_TRUE(std::equal(f.row_index, f.row_index + f.row_ptr[f.nsuper] - 1, g.row_index));
        EXPECT_EQ(std::memcmp(f.l_values, g.l_values, size_t(f.col_ptr[f.n] - 1) * sizeof(T)), 0);
        std::mt19937_64 rng(4), same(4);
        const zel_pds_options o = options_with(ZEL_PDS_ORDERING_AUTOMATIC);
        const auto x = solve_checked<M>(by_handle, a, o, 2, a.n, a.n, false, rng, nullptr);
        const auto y = solve_checked<M>(by_arrays, a, o, 2, a.n, a.n, false, same, nullptr);
        EXPECT_TRUE(same_bits(x.v, y.v));
    }
}

// The ordering asked for is the one used: on an arrow matrix (dense last row and column) the
// natural order, the identity given, and minimum degree fill nothing, while the reverse order
// eliminates the dense column first and fills the whole triangle.
TYPED_TEST(PdsOracle, TheOrderingAskedForIsUsed)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> a = structures<T>()[2].second;
    const int64_t n = a.n, sparse_fill = 2 * n - 1, full_fill = n * (n + 1) / 2;
    std::vector<I> identity(static_cast<size_t>(n)), reverse(static_cast<size_t>(n));
    std::iota(identity.begin(), identity.end(), I(0));
    std::iota(reverse.rbegin(), reverse.rend(), I(0));
    const std::tuple<int, const std::vector<I> *, int64_t> cases[] = {
        {ZEL_PDS_ORDERING_NATURAL, nullptr, sparse_fill}, {ZEL_PDS_ORDERING_AMD, nullptr, sparse_fill},
        {ZEL_PDS_ORDERING_GIVEN, &identity, sparse_fill}, {ZEL_PDS_ORDERING_GIVEN, &reverse, full_fill}};
    for (const auto &[ordering, given, fill] : cases) {
        SCOPED_TRACE("ordering " + std::to_string(ordering) + (given == &reverse ? " reversed" : ""));
        solver_holder s;
        ASSERT_EQ(create<M>(s), ok);
        const zel_pds_options o = options_with(ordering, 2, 0);
        ASSERT_EQ(zel_pds_set_options(s, &o), ok);
        if (given != nullptr) {
            ASSERT_EQ(M::A::set_permutation(s, I(n), given->data()), ok);
        }
        const auto c = to_caller<T, I>(a, layouts()[3]);
        ASSERT_EQ(analyse<M>(s, c), ok);
        zel_pds_statistics st;
        ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
        EXPECT_EQ(st.factor_entries, fill) << "known before the values";
        ASSERT_EQ(factorise<M>(s, c), ok);
        ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
    }
}

// The index width is the last analysis's: a solver analysed at one width and then at the other
// hands its factor back at the new width only, and solves.
TYPED_TEST(PdsOracle, WidthFollowsTheLastAnalysis)
{
    using M = TypeParam;
    using T = typename M::T;
    using J = std::conditional_t<sizeof(typename M::I) == 4, int64_t, int32_t>;
    using O = member<T, J>;
    const sym_csr<T> a = structures<T>()[6].second;
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    const auto c = to_caller<T, typename M::I>(a, layouts()[1]);
    const auto d = to_caller<T, J>(a, layouts()[2]);
    ASSERT_EQ(analyse<M>(s, c), ok);
    ASSERT_EQ(factorise<M>(s, c), ok);
    ASSERT_EQ(analyse<O>(s, d), ok);
    typename M::A::factor old_width;
    ASSERT_EQ(factorise<O>(s, d), ok);
    EXPECT_EQ(M::A::export_factor(s, &old_width), invalid);
    ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<O>(s, a));
    std::mt19937_64 rng(2);
    const dense_oracle<T> oracle(a, false);
    solve_checked<O>(s, a, options_with(ZEL_PDS_ORDERING_AUTOMATIC), 2, a.n, a.n, false, rng, &oracle);
}

// Message level 0 prints nothing in any phase; level 1 reports the solve.
TYPED_TEST(PdsOracle, PrintsOnlyWhenAsked)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> a = structures<T>()[1].second;
    const caller_csr<T, I> c = to_caller<T, I>(a, layouts()[0]);
    for (int level : {0, 1}) {
        zel_pds_options o = options_with(ZEL_PDS_ORDERING_AUTOMATIC);
        o.message_level = level;
        std::mt19937_64 rng(1);
        block<T> b = random_block<T>(rng, a.n, 1, a.n);
        ::testing::internal::CaptureStdout();
        {
            solver_holder s;
            EXPECT_EQ(create<M>(s), ok);
            EXPECT_EQ(zel_pds_set_options(s, &o), ok);
            EXPECT_EQ(analyse<M>(s, c), ok);
            EXPECT_EQ(factorise<M>(s, c), ok);
            EXPECT_EQ(M::A::solve(s, 1, c_ptr(b.data()), a.n, c_ptr(b.data()), a.n), ok);
            expect_valid_solver_factor<M>(s, a);
        }
        const std::string printed = ::testing::internal::GetCapturedStdout();
        if (level == 0) {
            EXPECT_EQ(printed, "");
        } else {
            EXPECT_NE(printed, "");
        }
    }
}

} // namespace
