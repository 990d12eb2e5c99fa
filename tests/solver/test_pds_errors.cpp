// The solver's answers to bad input, to phases out of order, to matrices that are not positive
// definite and to failed allocations: the status, nothing written to the caller's arrays, the
// solver's state as documented, and a solver that still works afterwards.
#include <set>

#include "alloc_fault.hpp"
#include "pds_test_support.hpp"

using namespace pds_test;

namespace {

template <class M> class PdsErrors : public ::testing::Test {};
TYPED_TEST_SUITE(PdsErrors, all_members, member_names);

// A correct analyse, factorise and solve on the solver, checked.
template <class M> void expect_usable(zel_pds_solver *s, const sym_csr<typename M::T> &a, int storage = 0, int base = 1)
{
    using T = typename M::T;
    const auto c = to_caller<T, typename M::I>(a, layout{storage, base, false, true});
    const zel_pds_options o = options_with(ZEL_PDS_ORDERING_AUTOMATIC);
    ASSERT_EQ(zel_pds_set_options(s, &o), ok);
    ASSERT_EQ(analyse<M>(s, c), ok);
    ASSERT_EQ(factorise<M>(s, c), ok);
    ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
    std::mt19937_64 rng(17);
    const block<T> b = random_block<T>(rng, a.n, 2, a.n + 1);
    block<T> x(a.n, 2, a.n + 2, sentinel<T>());
    ASSERT_EQ(M::A::solve(s, 2, c_ptr(b.v.data()), b.ld, c_ptr(x.data()), x.ld), ok);
    expect_solution(a, ZEL_PDS_SOLVE_N, b, x, limits_for<T>(o, a.n), nullptr);
}

// The factor's arrays as bytes, to see that a failed call left them alone.
template <class M> std::vector<unsigned char> factor_bytes(zel_pds_solver *s)
{
    typename M::A::factor f;
    if (M::A::export_factor(s, &f) != ok)
        return {};
    const auto *v = static_cast<const unsigned char *>(f.l_values);
    const auto *r = reinterpret_cast<const unsigned char *>(f.row_index);
    std::vector<unsigned char> out(v, v + (f.col_ptr[f.n] - 1) * sizeof(typename M::T));
    out.insert(out.end(), r, r + (f.row_ptr[f.nsuper] - 1) * sizeof(typename M::I));
    return out;
}

TYPED_TEST(PdsErrors, CreateAcceptsOnlyItsOwnTypes)
{
    using M = TypeParam;
    const int real_types[] = {ZEL_PDS_REAL_STRUCTURALLY_SYMMETRIC, ZEL_PDS_REAL_SYMMETRIC_INDEFINITE,
                              ZEL_PDS_REAL_UNSYMMETRIC};
    const int complex_types[] = {ZEL_PDS_COMPLEX_STRUCTURALLY_SYMMETRIC, ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE,
                                 ZEL_PDS_COMPLEX_SYMMETRIC, ZEL_PDS_COMPLEX_UNSYMMETRIC};
    const int other_pd = M::complex ? ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE : ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE;
    std::vector<std::pair<int, int>> cases{{M::matrix_type, ok}, {other_pd, invalid}, {0, invalid}, {5, invalid},
                                           {7, invalid}, {12, invalid}, {-1, invalid}, {-3, invalid}, {99, invalid}};
    for (int t : real_types)
        cases.emplace_back(t, M::complex ? invalid : ok);
    for (int t : complex_types)
        cases.emplace_back(t, M::complex ? ok : invalid);
    int placeholder = 0;
    for (auto [type, status] : cases) {
        zel_pds_solver *s = reinterpret_cast<zel_pds_solver *>(&placeholder);
        EXPECT_EQ(M::A::create(&s, type), status) << "type " << type;
        EXPECT_EQ(s == nullptr, status != ok) << "type " << type;
        zel_pds_destroy(status == ok ? s : nullptr);
    }
    EXPECT_EQ(M::A::create(nullptr, M::matrix_type), invalid);
    EXPECT_STREQ(zel_pds_status_name(not_supported), "ZEL_PDS_STATUS_NOT_SUPPORTED");
    EXPECT_STREQ(zel_pds_status_name(42), "unknown");
}

// Invalid CSR input: INVALID_VALUE, the caller's arrays untouched, and the analysis and factor
// from before still there (the solver solves with them at once, bit for bit as before).
TYPED_TEST(PdsErrors, InvalidMatricesLeaveTheSolverAsItWas)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> good = structures<T>()[0].second;
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, good));
    const std::vector<unsigned char> before = factor_bytes<M>(s);
    ASSERT_FALSE(before.empty());
    struct bad_csr {
        const char *what;
        I n;
        std::vector<I> ptr, idx; // 0-based here, shifted by the base below
        int storage = ZEL_PDS_STORAGE_FULL;
    };
    // A 4 × 4 tridiagonal matrix, broken one way at a time.
    const std::vector<bad_csr> cases{
        {"row pointers decrease", 4, {0, 2, 1, 7, 10}, {0, 1, 0, 1, 2, 1, 2, 3, 2, 3}},
        {"first row pointer not the base", 4, {1, 3, 6, 9, 11}, {9, 0, 1, 0, 1, 2, 1, 2, 3, 2, 3}},
        {"column index n", 4, {0, 2, 5, 8, 10}, {0, 1, 0, 1, 2, 1, 2, 4, 2, 3}},
        {"column index below the base", 4, {0, 2, 5, 8, 10}, {0, 1, -1, 1, 2, 1, 2, 3, 2, 3}},
        {"column twice in a row", 4, {0, 2, 5, 8, 10}, {0, 1, 0, 1, 1, 1, 2, 3, 2, 3}},
        {"a row without its diagonal", 4, {0, 2, 4, 7, 9}, {0, 1, 0, 2, 1, 2, 3, 2, 3}},
        {"upper triangle without a diagonal", 4, {0, 2, 4, 5, 6}, {0, 1, 1, 2, 3, 3}, ZEL_PDS_STORAGE_UPPER},
        {"upper triangle with a duplicate", 4, {0, 2, 5, 7, 8}, {0, 1, 1, 2, 2, 2, 3, 3}, ZEL_PDS_STORAGE_UPPER},
        {"negative order", -1, {0}, {}},
        {"storage code 2", 4, {0, 2, 5, 8, 10}, {0, 1, 0, 1, 2, 1, 2, 3, 2, 3}, 2},
    };
    for (int base : {0, 1})
        for (const bad_csr &bad : cases) {
            SCOPED_TRACE(std::string(bad.what) + ", base " + std::to_string(base));
            std::vector<I> ptr = bad.ptr, idx = bad.idx;
            for (I &p : ptr)
                p += I(base);
            for (I &j : idx)
                j += I(base);
            const std::vector<I> ptr_before = ptr, idx_before = idx;
            EXPECT_EQ(M::A::analyse_csr(s, bad.n, ptr.data(), idx.data(), base, bad.storage), invalid);
            EXPECT_TRUE(ptr == ptr_before && idx == idx_before);
            EXPECT_EQ(factor_bytes<M>(s), before) << "the factor changed";
        }
    const std::vector<I> ptr{0, 1}, idx{0};
    EXPECT_EQ(M::A::analyse_csr(s, 1, ptr.data(), idx.data(), 2, ZEL_PDS_STORAGE_FULL), invalid) << "base 2";
    EXPECT_EQ(M::A::analyse_csr(s, 1, nullptr, idx.data(), 0, ZEL_PDS_STORAGE_FULL), invalid) << "null rows";
    EXPECT_EQ(M::A::analyse_csr(s, 1, ptr.data(), nullptr, 0, ZEL_PDS_STORAGE_FULL), invalid) << "null columns";
    EXPECT_EQ(M::A::analyse_csr(nullptr, 1, ptr.data(), idx.data(), 0, ZEL_PDS_STORAGE_FULL), invalid);
    EXPECT_EQ(M::A::analyse_sparse(s, nullptr, ZEL_PDS_STORAGE_FULL), invalid);
    // Handles the solver cannot take: not square, compressed by columns, rows not back to back.
    {
        std::vector<I> starts{0, 2, 5, 8}, ends{2, 4, 8, 10}, cols{0, 1, 0, 1, 2, 1, 2, 3, 2, 3};
        std::vector<T> values(10, T(1));
        typename M::A::handle *h = nullptr;
        ASSERT_EQ(M::A::create_csr(&h, 0, 3, 4, starts.data(), starts.data() + 1, cols.data(), c_ptr(values.data())),
                  ZEL_SPARSE_STATUS_SUCCESS);
        EXPECT_EQ(M::A::analyse_sparse(s, h, ZEL_PDS_STORAGE_FULL), invalid) << "3 × 4";
        EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
        starts.push_back(10);
        ends.push_back(10);
        ASSERT_EQ(M::A::create_csr(&h, 0, 4, 4, starts.data(), ends.data(), cols.data(), c_ptr(values.data())),
                  ZEL_SPARSE_STATUS_SUCCESS);
        EXPECT_EQ(M::A::analyse_sparse(s, h, ZEL_PDS_STORAGE_FULL), invalid) << "a gap after row 1";
        EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
        starts = {0, 2, 5, 8, 10};
        ASSERT_EQ(M::A::create_csc(&h, 0, 4, 4, starts.data(), starts.data() + 1, cols.data(), c_ptr(values.data())),
                  ZEL_SPARSE_STATUS_SUCCESS);
        EXPECT_EQ(M::A::analyse_sparse(s, h, ZEL_PDS_STORAGE_FULL), invalid) << "compressed by columns";
        EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
        using other = api<std::conditional_t<std::is_same_v<T, double>, float, double>, I>;
        std::vector<std::conditional_t<std::is_same_v<T, double>, float, double>> other_values(10, 1);
        ASSERT_EQ(other::create_csr(&h, 0, 4, 4, starts.data(), starts.data() + 1, cols.data(), other_values.data()),
                  ZEL_SPARSE_STATUS_SUCCESS);
        EXPECT_EQ(M::A::analyse_sparse(s, h, ZEL_PDS_STORAGE_FULL), invalid) << "another value type";
        EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
    }
    EXPECT_EQ(factor_bytes<M>(s), before);
    // The old factor still solves the old matrix.
    std::mt19937_64 rng(2);
    block<T> b = random_block<T>(rng, good.n, 1, good.n);
    block<T> x(good.n, 1, good.n, sentinel<T>());
    ASSERT_EQ(M::A::solve(s, 1, c_ptr(b.data()), good.n, c_ptr(x.data()), good.n), ok);
    expect_solution(good, ZEL_PDS_SOLVE_N, b, x, limits_for<T>(options_with(0), good.n), nullptr);
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, structures<T>()[6].second, ZEL_PDS_STORAGE_UPPER, 0));
}

// Factorise before analyse and solve before factorise are WRONG_PHASE, and write nothing.
TYPED_TEST(PdsErrors, PhasesOutOfOrder)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> a = structures<T>()[1].second;
    auto c = to_caller<T, I>(a, layouts()[0]);
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    block<T> x(a.n, 1, a.n, sentinel<T>());
    const std::vector<T> unwritten = x.v;
    std::mt19937_64 rng(1);
    const block<T> b = random_block<T>(rng, a.n, 1, a.n);
    typename M::A::factor f;
    auto expect_no_solve = [&](const char *when) {
        EXPECT_EQ(M::A::solve(s, 1, c_ptr(b.v.data()), a.n, c_ptr(x.data()), a.n), wrong_phase) << when;
        EXPECT_TRUE(untouched(x, unwritten)) << when;
        EXPECT_EQ(M::A::export_factor(s, &f), wrong_phase) << when;
    };
    EXPECT_EQ(factorise<M>(s, c), wrong_phase);
    typename M::A::handle *h = nullptr;
    ASSERT_EQ(M::A::create_csr(&h, 0, c.n, c.n, c.ptr.data(), c.ptr.data() + 1, c.idx.data(), c_ptr(c.val.data())),
              ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(M::A::factorise_sparse(s, h), wrong_phase);
    expect_no_solve("before analyse");
    ASSERT_EQ(analyse<M>(s, c), ok);
    expect_no_solve("after analyse");
    ASSERT_EQ(M::A::factorise_sparse(s, h), ok);
    EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
    ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
    // The factor is handed back at the analysis's width only.
    if constexpr (sizeof(I) == 4) {
        zel_pds_factor_i8 other;
        EXPECT_EQ(zel_pds_export_factor_i8(s, &other), invalid);
    } else {
        zel_pds_factor_i4 other;
        EXPECT_EQ(zel_pds_export_factor_i4(s, &other), invalid);
    }
    EXPECT_EQ(M::A::export_factor(s, nullptr), invalid);
    EXPECT_EQ(M::A::export_factor(nullptr, &f), invalid);
    // A new analysis drops the factor.
    ASSERT_EQ(analyse<M>(s, c), ok);
    expect_no_solve("after a second analyse");
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, a));
}

// A matrix whose only fault is column c's diagonal: every principal submatrix without c is
// positive definite, so in any order every pivot before c's is positive and c's is not. The
// status names c in the caller's base; the analysis stays, the factor goes, and good values
// factorise again without a new analysis.
TYPED_TEST(PdsErrors, NotPositiveDefiniteNamesTheColumn)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const auto all = structures<T>();
    for (size_t pick : {size_t(0), size_t(2), size_t(5), size_t(6)}) {
        const auto &[name, a] = all[pick];
        for (int64_t column : std::set<int64_t>{0, a.n / 2, a.n - 1})
            for (double diagonal : {-1.0, 0.0}) {
                sym_csr<T> bad = a;
                for (int64_t p = a.ptr[column]; p < a.ptr[column + 1]; ++p)
                    if (a.idx[p] == column)
                        bad.val[p] = make_value<T>(diagonal, 0);
                const int ordering = int(column + pick) % 5;
                const layout l = layouts()[size_t(column + (diagonal < 0)) % 4];
                SCOPED_TRACE(name + ", column " + std::to_string(column) + ", diagonal " + std::to_string(diagonal) +
                             ", ordering " + std::to_string(ordering) + ", " + l.name());
                solver_holder s;
                ASSERT_EQ(create<M>(s), ok);
                const zel_pds_options o = options_with(ordering, 2, int(column % 2));
                ASSERT_EQ(zel_pds_set_options(s, &o), ok);
                const std::vector<I> given = [&] {
                    std::vector<I> p(static_cast<size_t>(a.n));
                    std::iota(p.rbegin(), p.rend(), I(0));
                    return p;
                }();
                ASSERT_EQ(M::A::set_permutation(s, I(a.n), given.data()), ok);
                auto c = to_caller<T, I>(a, l);
                ASSERT_EQ(analyse<M>(s, c), ok);
                ASSERT_EQ(factorise<M>(s, c), ok);
                c.val = to_caller<T, I>(bad, l).val;
                const std::vector<T> values_before = c.val;
                ASSERT_EQ(factorise<M>(s, c), not_pd);
                EXPECT_TRUE(same_bits(c.val, values_before));
                zel_pds_statistics st;
                ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
                EXPECT_EQ(st.failed_column, column + l.base);
                block<T> x(a.n, 1, a.n, sentinel<T>());
                const std::vector<T> unwritten = x.v;
                EXPECT_EQ(M::A::solve(s, 1, c_ptr(x.data()), a.n, c_ptr(x.data()), a.n), wrong_phase);
                EXPECT_TRUE(untouched(x, unwritten));
                typename M::A::factor f;
                EXPECT_EQ(M::A::export_factor(s, &f), wrong_phase);
                c.val = to_caller<T, I>(a, l).val;
                ASSERT_EQ(factorise<M>(s, c), ok);
                ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
                EXPECT_EQ(st.failed_column, -1);
                ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
                std::mt19937_64 rng(8);
                const block<T> b = random_block<T>(rng, a.n, 1, a.n);
                ASSERT_EQ(M::A::solve(s, 1, c_ptr(b.v.data()), a.n, c_ptr(x.data()), a.n), ok);
                expect_solution(a, ZEL_PDS_SOLVE_N, b, x, limits_for<T>(o, a.n), nullptr);
            }
    }
}

// Null pointers and out-of-range arguments: INVALID_VALUE, nothing written, the factor kept.
TYPED_TEST(PdsErrors, BadArgumentsChangeNothing)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const sym_csr<T> a = structures<T>()[3].second;
    const int64_t n = a.n;
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, a));
    const std::vector<unsigned char> factor = factor_bytes<M>(s);

    EXPECT_EQ(zel_pds_destroy(nullptr), ok);
    zel_pds_default_options(nullptr);
    zel_pds_options o, kept;
    zel_pds_statistics st;
    ASSERT_EQ(zel_pds_get_options(s, &kept), ok);
    EXPECT_EQ(zel_pds_set_options(nullptr, &kept), invalid);
    EXPECT_EQ(zel_pds_set_options(s, nullptr), invalid);
    EXPECT_EQ(zel_pds_get_options(nullptr, &o), invalid);
    EXPECT_EQ(zel_pds_get_options(s, nullptr), invalid);
    EXPECT_EQ(zel_pds_get_statistics(nullptr, &st), invalid);
    EXPECT_EQ(zel_pds_get_statistics(s, nullptr), invalid);
    EXPECT_EQ(M::A::factorise(nullptr, nullptr), invalid);
    EXPECT_EQ(M::A::factorise_sparse(s, nullptr), invalid);
    EXPECT_EQ(M::A::set_permutation(nullptr, 0, nullptr), invalid);

    // Options out of range, one field at a time.
    const std::pair<int zel_pds_options::*, std::vector<int>> fields[] = {
        {&zel_pds_options::ordering, {-1, 5}},          {&zel_pds_options::refinement_max_steps, {-1, 11}},
        {&zel_pds_options::refinement_exponent, {-1, 39}}, {&zel_pds_options::message_level, {-1, 2}},
        {&zel_pds_options::operation, {-1, 3}},         {&zel_pds_options::partitions, {0, -2}},
        {&zel_pds_options::amalgamation, {-1, 2}}};
    for (const auto &[field, values] : fields)
        for (int v : values) {
            o = kept;
            o.*field = v;
            EXPECT_EQ(zel_pds_set_options(s, &o), invalid) << "value " << v;
            ASSERT_EQ(zel_pds_get_options(s, &o), ok);
            EXPECT_EQ(std::memcmp(&o, &kept, sizeof o), 0) << "options changed by a rejected set";
        }

    // Permutations that are not one.
    std::vector<I> p(static_cast<size_t>(n));
    std::iota(p.begin(), p.end(), I(0));
    for (auto [at, value] : {std::pair<int64_t, I>{3, I(4)}, {0, I(n)}, {n - 1, I(-1)}}) {
        std::vector<I> q = p;
        q[size_t(at)] = value;
        EXPECT_EQ(M::A::set_permutation(s, I(n), q.data()), invalid) << "entry " << at << " = " << int64_t(value);
    }
    EXPECT_EQ(M::A::set_permutation(s, I(-1), p.data()), invalid);
    EXPECT_EQ(M::A::set_permutation(s, I(n), nullptr), invalid);
    // A given ordering of another order, or none at all, fails the analysis and keeps the old one.
    const auto c = to_caller<T, I>(a, layouts()[0]);
    for (bool set : {false, true}) {
        solver_holder fresh;
        ASSERT_EQ(create<M>(fresh), ok);
        o = options_with(ZEL_PDS_ORDERING_GIVEN);
        ASSERT_EQ(zel_pds_set_options(fresh, &o), ok);
        if (set) {
            ASSERT_EQ(M::A::set_permutation(fresh, I(n - 1), p.data()), ok);
        }
        EXPECT_EQ(analyse<M>(fresh, c), invalid) << (set ? "order n - 1" : "no permutation");
        EXPECT_EQ(factorise<M>(fresh, c), wrong_phase);
        ASSERT_EQ(M::A::set_permutation(fresh, I(n), p.data()), ok);
        EXPECT_EQ(analyse<M>(fresh, c), ok);
    }

    // Solves with bad arguments write nothing and keep the factor.
    std::mt19937_64 rng(6);
    block<T> b = random_block<T>(rng, n, 2, n + 1);
    block<T> x(n, 2, n + 1, sentinel<T>());
    const std::vector<T> unwritten = x.v, b_before = b.v;
    struct bad_solve {
        const char *what;
        int64_t nrhs;
        const T *b;
        int64_t ldb;
        T *x;
        int64_t ldx;
    };
    const bad_solve solves[] = {{"negative nrhs", -1, b.data(), n + 1, x.data(), n + 1},
                                {"ldb below n", 2, b.data(), n - 1, x.data(), n + 1},
                                {"ldx below n", 2, b.data(), n + 1, x.data(), n - 1},
                                {"null b", 2, nullptr, n + 1, x.data(), n + 1},
                                {"null x", 2, b.data(), n + 1, nullptr, n + 1},
                                {"in place with ldx ≠ ldb", 2, x.data(), n + 1, x.data(), n}};
    for (const bad_solve &bad : solves) {
        EXPECT_EQ(M::A::solve(s, bad.nrhs, c_ptr(bad.b), bad.ldb, c_ptr(bad.x), bad.ldx), invalid) << bad.what;
        EXPECT_TRUE(untouched(x, unwritten) && untouched(b, b_before)) << bad.what;
    }
    EXPECT_EQ(M::A::solve(nullptr, 1, c_ptr(b.data()), n + 1, c_ptr(x.data()), n + 1), invalid);
    EXPECT_EQ(M::A::solve(s, 0, c_ptr(b.data()), n + 1, c_ptr(x.data()), n + 1), ok) << "no right-hand side";
    EXPECT_TRUE(untouched(x, unwritten));
    EXPECT_EQ(factor_bytes<M>(s), factor);
    // Factorise without values is refused; the factor from before still solves.
    EXPECT_EQ(M::A::factorise(s, nullptr), invalid);
    ASSERT_EQ(zel_pds_set_options(s, &kept), ok);
    ASSERT_EQ(M::A::solve(s, 2, c_ptr(b.data()), n + 1, c_ptr(x.data()), n + 1), ok) << "after factorise(null)";
    expect_solution(a, ZEL_PDS_SOLVE_N, b, x, limits_for<T>(kept, n), nullptr);
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, a));
}

// A factor whose sizes pass 32 bits: an arrow matrix (3n entries) whose dense column is
// eliminated first fills the whole triangle, n(n + 1)/2 > 2³¹ entries. At 32-bit width the
// analysis says TOO_LARGE and keeps the analysis from before; at 64-bit width it succeeds and
// reports the size (nothing is factorised).
TYPED_TEST(PdsErrors, FactorBeyondTheIndexWidth)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const int64_t n = 66000, entries = n * (n + 1) / 2;
    ASSERT_GT(entries, int64_t(INT32_MAX));
    std::vector<I> ptr{0}, idx, order(static_cast<size_t>(n));
    for (int64_t i = 0; i < n; ++i) { // upper triangle: row 0 dense, then the diagonal
        for (int64_t j = i; j < (i == 0 ? n : i + 1); ++j)
            idx.push_back(I(j));
        ptr.push_back(I(idx.size()));
    }
    std::iota(order.begin(), order.end(), I(0));
    solver_holder s;
    ASSERT_EQ(create<M>(s), ok);
    const sym_csr<T> small = structures<T>()[1].second;
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, small));
    const std::vector<unsigned char> before = factor_bytes<M>(s);
    const zel_pds_options o = options_with(ZEL_PDS_ORDERING_GIVEN);
    ASSERT_EQ(zel_pds_set_options(s, &o), ok);
    ASSERT_EQ(M::A::set_permutation(s, I(n), order.data()), ok);
    const int status = M::A::analyse_csr(s, I(n), ptr.data(), idx.data(), 0, ZEL_PDS_STORAGE_UPPER);
    zel_pds_statistics st;
    ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
    if (sizeof(I) == 4) {
        EXPECT_EQ(status, ZEL_PDS_STATUS_TOO_LARGE);
        EXPECT_EQ(factor_bytes<M>(s), before) << "the factor from before is gone";
        EXPECT_EQ(st.n, small.n);
    } else {
        ASSERT_EQ(status, ok);
        EXPECT_EQ(st.n, n);
        EXPECT_EQ(st.factor_entries, entries);
        EXPECT_GE(st.memory_estimate, entries * int64_t(sizeof(T)));
    }
    ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, small));
}

// n = 0 is an empty system: every phase succeeds and no array is touched.
TYPED_TEST(PdsErrors, EmptySystem)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    for (int base : {0, 1})
        for (int storage : {ZEL_PDS_STORAGE_FULL, ZEL_PDS_STORAGE_UPPER}) {
            solver_holder s;
            ASSERT_EQ(create<M>(s), ok);
            const I ptr[1] = {I(base)};
            ASSERT_EQ(M::A::analyse_csr(s, 0, ptr, nullptr, base, storage), ok);
            ASSERT_EQ(M::A::factorise(s, nullptr), ok);
            ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, sym_csr<T>{}));
            block<T> x(0, 3, 1, sentinel<T>());
            const std::vector<T> unwritten = x.v;
            EXPECT_EQ(M::A::solve(s, 3, c_ptr(x.data()), 1, c_ptr(x.data()), 1), ok);
            EXPECT_EQ(M::A::solve(s, 3, nullptr, 1, nullptr, 1), ok);
            EXPECT_TRUE(untouched(x, unwritten));
            zel_pds_statistics st;
            ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
            EXPECT_EQ(st.n, 0);
            EXPECT_EQ(st.factor_entries, 0);
            ASSERT_NO_FATAL_FAILURE(expect_usable<M>(s, structures<T>()[5].second, storage, base));
        }
}

// Every allocation of every phase fails in turn. The phase that made it says ALLOC_FAILED,
// leaves the solver in a documented state (no analysis, no factor, x untouched or solved),
// and succeeds when called again; at the end nothing is left allocated.
template <class M> struct failure_case {
    const char *name;
    int ordering;
    layout form;
    bool through_handle;
};

template <class M>
void run_phases(const sym_csr<typename M::T> &a, const failure_case<M> &fc, int64_t fail, std::vector<int64_t> *ends,
                int expected_phase = -1)
{
    using T = typename M::T;
    using I = typename M::I;
    auto c = to_caller<T, I>(a, fc.form);
    typename M::A::handle *h = nullptr;
    if (fc.through_handle) {
        ASSERT_EQ(M::A::create_csr(&h, c.base, c.n, c.n, c.ptr.data(), c.ptr.data() + 1, c.idx.data(), c_ptr(c.val.data())),
                  ZEL_SPARSE_STATUS_SUCCESS);
    }
    std::mt19937_64 rng(12);
    const block<T> b = random_block<T>(rng, a.n, 2, a.n);
    const zel_pds_options o = options_with(fc.ordering, 2, fc.ordering % 2);
    const std::vector<I> given = [&] {
        std::vector<I> p(static_cast<size_t>(a.n));
        std::iota(p.begin(), p.end(), I(0));
        std::shuffle(p.begin(), p.end(), std::mt19937_64(3));
        return p;
    }();
    {
        zel::test::allocator_probe probe;
        probe.fail_at(fail);
        zel_pds_solver *s = nullptr;
        int phase = 0, failed_in = -1;
        // One phase: on ALLOC_FAILED, `after_failure` checks the state, then the call is repeated.
        auto step = [&](auto call, auto after_failure) {
            int status = call();
            if (status == alloc_failed && failed_in < 0) {
                failed_in = phase;
                after_failure();
                status = call();
            }
            EXPECT_EQ(status, ok) << "phase " << phase;
            if (ends != nullptr)
                ends->push_back(probe.requests());
            ++phase;
            return status == ok;
        };
        auto nothing = [] {};
        block<T> x(a.n, 2, a.n, sentinel<T>());
        const std::vector<T> unwritten = x.v;
        bool fine = step([&] { return M::A::create(&s, M::matrix_type); }, [&] { EXPECT_EQ(s, nullptr); }) &&
                    step([&] { return zel_pds_set_options(s, &o); }, nothing) &&
                    step([&] { return M::A::set_permutation(s, I(a.n), given.data()); }, nothing) &&
                    step([&] { return fc.through_handle ? M::A::analyse_sparse(s, h, fc.form.storage) : analyse<M>(s, c); },
                         [&] { EXPECT_EQ(factorise<M>(s, c), wrong_phase) << "an analysis after a failed one"; }) &&
                    step([&] { return fc.through_handle ? M::A::factorise_sparse(s, h) : factorise<M>(s, c); },
                         [&] {
                             EXPECT_EQ(M::A::solve(s, 2, c_ptr(b.v.data()), a.n, c_ptr(x.data()), a.n), wrong_phase);
                             EXPECT_TRUE(untouched(x, unwritten));
                         });
        // A solve that fails leaves x as it was, or holds the driver's solution when only the
        // refinement failed.
        auto solved_or_untouched = [&](const block<T> &y, const std::vector<T> &as_before) {
            if (!untouched(y, as_before))
                expect_solution(a, ZEL_PDS_SOLVE_N, b, y, limits_for<T>(options_with(0, 0), a.n), nullptr);
        };
        fine = fine && step([&] { return M::A::solve(s, 2, c_ptr(b.v.data()), a.n, c_ptr(x.data()), a.n); },
                            [&] { solved_or_untouched(x, unwritten); });
        if (fine)
            expect_solution(a, ZEL_PDS_SOLVE_N, b, x, limits_for<T>(o, a.n), nullptr);
        block<T> y = b;
        fine = fine && step([&] {
                   y = b;
                   return M::A::solve(s, 2, c_ptr(y.data()), a.n, c_ptr(y.data()), a.n);
               },
                            [&] { solved_or_untouched(y, b.v); });
        if (fine) {
            expect_solution(a, ZEL_PDS_SOLVE_N, b, y, limits_for<T>(o, a.n), nullptr);
            ASSERT_NO_FATAL_FAILURE(expect_valid_solver_factor<M>(s, a));
        }
        zel_pds_destroy(s);
        EXPECT_EQ(probe.failures(), fail >= 0 ? 1 : 0);
        EXPECT_EQ(failed_in, expected_phase) << "the failed allocation was reported by another phase, or not at all";
        EXPECT_EQ(probe.live(), 0) << "blocks left allocated";
    }
    if (h != nullptr) {
        EXPECT_EQ(M::A::destroy_handle(h), ZEL_SPARSE_STATUS_SUCCESS);
    }
}

TYPED_TEST(PdsErrors, EveryFailedAllocationIsReportedAndRecovered)
{
    using M = TypeParam;
    using T = typename M::T;
    const sym_csr<T> a = structures<T>()[6].second;
    const failure_case<M> cases[] = {
        {"automatic, full", ZEL_PDS_ORDERING_AUTOMATIC, {ZEL_PDS_STORAGE_FULL, 0, false, false}, false},
        {"given, upper", ZEL_PDS_ORDERING_GIVEN, {ZEL_PDS_STORAGE_UPPER, 1, true, true}, false},
        {"nested dissection, handle", ZEL_PDS_ORDERING_NESTED_DISSECTION, {ZEL_PDS_STORAGE_FULL, 1, false, true}, true},
        {"natural, upper handle", ZEL_PDS_ORDERING_NATURAL, {ZEL_PDS_STORAGE_UPPER, 0, false, false}, true}};
    for (const failure_case<M> &fc : cases) {
        SCOPED_TRACE(fc.name);
        std::vector<int64_t> ends;
        ASSERT_NO_FATAL_FAILURE(run_phases<M>(a, fc, -1, &ends));
        ASSERT_EQ(ends.size(), 7u);
        const char *phases[] = {"create", "options", "permutation", "analyse", "factorise", "solve", "solve in place"};
        for (size_t p = 0, k = 0; p < ends.size(); ++p) {
            for (; int64_t(k) < ends[p]; ++k) {
                SCOPED_TRACE(std::string(phases[p]) + ", allocation " + std::to_string(k));
                ASSERT_NO_FATAL_FAILURE(run_phases<M>(a, fc, int64_t(k), nullptr, int(p)));
            }
        }
        // Each phase that holds or builds anything allocates.
        for (size_t p : {size_t(0), size_t(3), size_t(4), size_t(5), size_t(6)})
            EXPECT_GT(ends[p], p == 0 ? 0 : ends[p - 1]) << phases[p] << " allocated nothing";
    }
}

} // namespace
