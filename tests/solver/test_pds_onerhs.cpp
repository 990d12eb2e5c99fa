// The blkslv_ll kernels through their exported names, in every family: on the library's own
// factors of every matrix type (against a long-double reference of the documented steps, which
// must itself solve P·A·Pᵀ), on block factors written from random data (bs 1, 2, 3 and variable
// blocks, widths on both sides of the loop and product thresholds), with the step selector,
// partial and widened ranges, and the failure paths.
#include "onerhs_support.hpp"
#include "alloc_fault.hpp"
#include "zel/pds_solve.h"

using namespace onerhs_test;

namespace {

template <class P> struct OneRhs : ::testing::Test {};
TYPED_TEST_SUITE(OneRhs, families, family_names);

// The matrix a stem solves with: M = P·A·Pᵀ, transposed and conjugated as the stem says.
struct op_of {
    bool transpose, conjugate;
};
op_of operator_of(const stem &s)
{
    const std::string n = s.name;
    const bool ct = n.ends_with("_ct"), t = n.ends_with("_t");
    return {ct || t, ct};
}

// ‖op(M)·x − b‖∞ / (‖op(M)‖∞·‖x‖∞ + ‖b‖∞) in long double.
template <class T>
double backward_error(const dense_matrix<T> &a, const std::vector<int64_t> &perm, op_of op,
                      const std::vector<wide<T>> &x, const std::vector<T> &b)
{
    long double r = 0, norm = 0, xs = 0, bs = 0;
    const int64_t n = a.n;
    for (int64_t i = 0; i < n; ++i) {
        wide<T> s = -widen(b[size_t(i)]);
        long double row = 0;
        for (int64_t j = 0; j < n; ++j) {
            wide<T> m = op.transpose ? widen(a.at(perm[size_t(j)], perm[size_t(i)]))
                                     : widen(a.at(perm[size_t(i)], perm[size_t(j)]));
            if (op.conjugate)
                m = wide_conj(m);
            s += m * x[size_t(j)];
            row += std::abs(m);
        }
        r = std::max(r, std::abs(s));
        norm = std::max(norm, row);
        xs = std::max(xs, std::abs(x[size_t(i)]));
        bs = std::max(bs, std::abs(widen(b[size_t(i)])));
    }
    return double(r / (norm * xs + bs));
}

// Every step selection of member m on factor f against the reference; the full solve first.
template <class T, class I>
void check_steps(const passed<T, I> &p, const ll_members<typename family<T, I>::c_type, I> &m,
                 const std::vector<T> &b, const char *what)
{
    const reference<T> ref{p.f, m.s};
    const int64_t ns = p.f.nsuper;
    for (int64_t step : {0, 1, 2, 3}) {
        std::vector<T> x = b;
        ASSERT_EQ(p.scalar(m, x, 1, ns, step), 0);
        const auto expect = ref(widen_all(b), 1, ns, step);
        EXPECT_LT(relative_gap(x, expect), tolerance<T>(p.f.n)) << what << " " << m.s.name << " step " << step;
    }
}

// ---- The library's factors ----

struct typed_case {
    int type, pivoting;
    std::vector<const char *> stems;
};

template <class T> std::vector<typed_case> library_cases()
{
    if constexpr (zel::is_complex_v<T>)
        return {{4, 0, {"posdef_n", "posdef_t"}},
                {13, 0, {"unsym_n", "unsym_t", "unsym_ct"}},
                {3, 0, {"unsym_n", "unsym_t", "unsym_ct"}},
                {-4, 1, {"undef_bk"}},
                {-4, 0, {"undef_di"}},
                {6, 1, {"sym_bk_n", "sym_bk_ct"}},
                {6, 0, {"sym_di_n", "sym_di_ct"}}};
    else
        return {{2, 0, {"posdef"}},    {11, 0, {"unsym_n", "unsym_t"}}, {1, 0, {"unsym_n", "unsym_t"}},
                {-2, 1, {"undef_bk"}}, {-2, 0, {"undef_di"}}};
}

TYPED_TEST(OneRhs, LibraryFactorsOfEveryType)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const typed_case &c : library_cases<T>())
        for (int64_t n : {9, 70}) {
            const dense_matrix<T> a = test_matrix<T>(c.type, n, uint64_t(n * 31 + c.type + 100));
            factor<T> f;
            std::vector<int64_t> perm;
            if (!library_factor<T, I>(a, c.type, c.pivoting, f, perm))
                continue;
            const passed<T, I> p(f);
            const auto b = random_rhs<T>(n, uint64_t(n + c.type));
            for (const char *name : c.stems) {
                const auto &m = find_stem(TypeParam::F::ll, name);
                SCOPED_TRACE(std::string("type ") + std::to_string(c.type) + " n " + std::to_string(n) + " " + name);
                // The reference solves op(P·A·Pᵀ), and the kernel follows it step by step.
                const auto x_ref = reference<T>{f, m.s}(widen_all(b), 1, f.nsuper, 0);
                EXPECT_LT(backward_error(a, perm, operator_of(m.s), x_ref, b), tolerance<T>(n));
                check_steps(p, m, b, "library");
            }
        }
}

// ---- Block factors ----

// Widths on both sides of the thresholds: 1, 2, 3, 4, 5 and 19, 20 columns.
const std::vector<int64_t> wide_widths{1, 2, 3, 4, 5, 19, 20, 1, 3};

TYPED_TEST(OneRhs, BlockFactorsOfEveryStem)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const auto &m : TypeParam::F::ll) {
        SCOPED_TRACE(m.s.name);
        // Scalar blocks across the thresholds, bs = 2 and 3, variable blocks.
        const factor<T> scalar = block_factor<T>(wide_widths, std::vector<int64_t>(70, 1), true, m.s.k, 5);
        const factor<T> bs2 = block_factor<T>({1, 2, 3, 10, 1, 2}, std::vector<int64_t>(24, 2), true, m.s.k, 6);
        const factor<T> bs3 = block_factor<T>({1, 3, 7, 2}, std::vector<int64_t>(16, 3), true, m.s.k, 7);
        std::vector<int64_t> sizes;
        for (int64_t i = 0; i < 30; ++i)
            sizes.push_back(1 + (i * 7) % 4);
        const factor<T> var = block_factor<T>({2, 1, 5, 3, 8, 1, 4, 6}, sizes, false, m.s.k, 8);
        for (const factor<T> *f : {&scalar, &bs2, &bs3, &var}) {
            const passed<T, I> p(*f);
            const auto b = random_rhs<T>(f->n, uint64_t(f->n));
            check_steps(p, m, b, f->bs == 0 ? "vbsr" : "bsr");
            // The block member gives what the scalar member gives on the expanded factor.
            for (int64_t step : {0, 1, 2, 3}) {
                std::vector<T> xs = b, xb = b;
                ASSERT_EQ(p.scalar(m, xs, 1, f->nsuper, step), 0);
                ASSERT_EQ(p.block(m, xb, 1, f->nsuper, step), 0);
                EXPECT_LT(relative_gap(xb, widen_all(xs)), tolerance<T>(f->n)) << "step " << step << " bs " << f->bs;
            }
        }
    }
}

// bs = 1 and variable blocks of one row take the scalar members' arithmetic exactly.
TYPED_TEST(OneRhs, UnitBlocksMatchScalarBitForBit)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const auto &m : TypeParam::F::ll) {
        for (bool fixed : {true, false}) {
            const factor<T> f = block_factor<T>(wide_widths, std::vector<int64_t>(70, 1), fixed, m.s.k, 12);
            const passed<T, I> p(f);
            const auto b = random_rhs<T>(f.n, 3);
            for (int64_t step : {0, 1, 2, 3}) {
                std::vector<T> xs = b, xb = b;
                ASSERT_EQ(p.scalar(m, xs, 1, f.nsuper, step), 0);
                ASSERT_EQ(p.block(m, xb, 1, f.nsuper, step), 0);
                EXPECT_EQ(0, std::memcmp(xs.data(), xb.data(), xs.size() * sizeof(T)))
                    << m.s.name << " step " << step << (fixed ? " bsr" : " vbsr");
            }
        }
    }
}

// A partial range, and control[1] widening one sweep to the whole factor.
TYPED_TEST(OneRhs, RangesAndWidenedSweeps)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const auto &m : TypeParam::F::ll) {
        const factor<T> f = block_factor<T>(wide_widths, std::vector<int64_t>(70, 1), true, m.s.k, 21);
        const passed<T, I> p(f);
        const reference<T> ref{f, m.s};
        const auto b = random_rhs<T>(f.n, 4);
        for (int64_t widen : {0, 2, 3})
            for (int64_t step : {0, 1, 2, 3}) {
                std::vector<T> x = b;
                ASSERT_EQ(p.scalar(m, x, 3, 6, step, widen), 0);
                EXPECT_LT(relative_gap(x, ref(widen_all(b), 3, 6, step, widen)), tolerance<T>(f.n))
                    << m.s.name << " widen " << widen << " step " << step;
                std::vector<T> xb = b;
                ASSERT_EQ(p.block(m, xb, 3, 6, step, widen), 0);
                EXPECT_EQ(0, std::memcmp(x.data(), xb.data(), x.size() * sizeof(T)));
            }
        // An empty range with no widening touches nothing, and step 2 of a factor without D
        // neither.
        std::vector<T> x = b;
        EXPECT_EQ(p.scalar(m, x, 5, 4, 0), 0);
        EXPECT_EQ(x, b);
        if (m.s.k != kind::bk && m.s.k != kind::di) {
            EXPECT_EQ(p.scalar(m, x, 1, f.nsuper, 2), 0);
            EXPECT_EQ(x, b);
        }
    }
}

// The solve driver takes the one-vector kernels for one right-hand side of some factors (real
// L·U with A, Bunch–Kaufman L·D·Lᵀ) and the block sweeps for several: both paths solve
// P·A·Pᵀ and agree, for every factor kind and both widths.
template <class I> void driver_paths(int type, int pivoting, int transposed)
{
    using T = double;
    using S = solver_api<T, I>;
    const dense_matrix<T> a = test_matrix<T>(type, 80, uint64_t(type + 50));
    const csr_of<T, I> c = to_csr<T, I>(a);
    zel_pds_solver *s = nullptr;
    zel_pds_options o;
    zel_pds_default_options(&o);
    o.matching = o.scaling = ZEL_PDS_OFF;
    o.pivoting = pivoting;
    typename S::exported e{};
    ASSERT_EQ(S::create(&s, type), ok);
    ASSERT_EQ(zel_pds_set_options(s, &o), ok);
    ASSERT_EQ(S::analyse(s, I(a.n), c.ptr.data(), c.idx.data(), c.val.data(), 0, ZEL_PDS_STORAGE_FULL), ok);
    ASSERT_EQ(S::factorise(s, c.val.data()), ok);
    ASSERT_EQ(S::export_factor(s, &e), ok);
    zel_pds_frame fr{};
    fr.n = e.n;
    fr.nsuper = e.nsuper;
    fr.lp64 = sizeof(I) == 4;
    fr.super_ptr = e.super_ptr;
    fr.col_ptr = e.col_ptr;
    fr.row_ptr = e.row_ptr;
    fr.row_index = e.row_index;
    fr.l_values = e.l_values;
    fr.u_col_ptr = e.u_col_ptr;
    fr.u_values = e.u_values;
    fr.row_pivots = e.row_pivots;
    fr.col_pivots = e.col_pivots;
    fr.diagonal = e.diagonal;
    fr.bk_pivots = e.bk_pivots;
    fr.perm = e.perm;
    fr.matrix_type = type;
    fr.pivoting = pivoting;
    fr.transposed = transposed;
    fr.ldb = fr.ldx = a.n;
    fr.partitions = 1;
    const auto b = random_rhs<T>(a.n, 77);
    std::vector<T> b2 = b, x1(size_t(a.n)), x2(size_t(2 * a.n));
    b2.insert(b2.end(), b.begin(), b.end());
    int64_t error = -1;
    fr.nrhs = 1;
    zel_pds_pds_slv_nrhs_seq_real(&fr, b.data(), x1.data(), 0, &error);
    ASSERT_EQ(error, 0);
    fr.nrhs = 2;
    zel_pds_pds_slv_nrhs_seq_real(&fr, b2.data(), x2.data(), 0, &error);
    ASSERT_EQ(error, 0);
    std::vector<int64_t> identity(size_t(a.n));
    std::iota(identity.begin(), identity.end(), 0);
    const op_of op{transposed != 0, false};
    EXPECT_LT(backward_error(a, identity, op, widen_all(x1), b), tolerance<T>(a.n));
    EXPECT_LT(relative_gap(x1, widen_all(std::vector<T>(x2.begin(), x2.begin() + a.n))), tolerance<T>(a.n));
    EXPECT_EQ(0, std::memcmp(x2.data(), x2.data() + a.n, size_t(a.n) * sizeof(T)));
    zel_pds_destroy(s);
}

TEST(OneRhsDriver, OneVectorAndBlockPathsAgree)
{
    for (auto [type, pivoting, transposed] : {std::tuple{11, 0, 0}, {11, 0, 1}, {1, 0, 0}, {-2, 1, 0}, {-2, 0, 0},
                                              {2, 0, 0}}) {
        SCOPED_TRACE("type " + std::to_string(type) + " pivoting " + std::to_string(pivoting) + " transposed " +
                     std::to_string(transposed));
        driver_paths<int64_t>(type, pivoting, transposed);
        driver_paths<int32_t>(type, pivoting, transposed);
    }
}

// The one-vector path of the driver refuses interchanges that leave their blocks, as the block
// sweeps do, and fails cleanly when its work vector cannot be had.
TEST(OneRhsDriver, OneVectorPathRefusesAndFailsCleanly)
{
    const factor<double> f = block_factor<double>({3, 2, 4}, std::vector<int64_t>(9, 1), true, kind::lu, 31);
    std::vector<int64_t> perm(size_t(f.n)), bad = f.row_pivots;
    std::iota(perm.begin(), perm.end(), 0);
    zel_pds_frame fr{};
    fr.n = f.n;
    fr.nsuper = f.nsuper;
    fr.super_ptr = f.super_ptr.data();
    fr.col_ptr = f.col_ptr.data();
    fr.row_ptr = f.row_ptr.data();
    fr.row_index = f.row_index.data();
    fr.l_values = f.l.data();
    fr.u_col_ptr = f.u_col_ptr.data();
    fr.u_values = f.u.data();
    fr.row_pivots = f.row_pivots.data();
    fr.col_pivots = f.col_pivots.data();
    fr.perm = perm.data();
    fr.matrix_type = 11;
    fr.nrhs = 1;
    fr.ldb = fr.ldx = f.n;
    const auto b = random_rhs<double>(f.n, 5);
    std::vector<double> x(size_t(f.n), 0.0);
    int64_t error = -1;
    zel_pds_pds_slv_nrhs_seq_real(&fr, b.data(), x.data(), 0, &error);
    ASSERT_EQ(error, 0);
    const auto expect = reference<double>{f, {"unsym_n", kind::lu, false, false}}(widen_all(b), 1, f.nsuper, 0);
    EXPECT_LT(relative_gap(x, expect), tolerance<double>(f.n));
    bad[4] = 3; // block 2 has two columns
    fr.row_pivots = bad.data();
    std::fill(x.begin(), x.end(), 0.0);
    zel_pds_pds_slv_nrhs_seq_real(&fr, b.data(), x.data(), 0, &error);
    EXPECT_EQ(error, 2);
    EXPECT_EQ(x, std::vector<double>(size_t(f.n), 0.0));
    fr.row_pivots = f.row_pivots.data();
    zel::test::for_each_failing_allocation(
        [&] {
            std::fill(x.begin(), x.end(), 0.0);
            int64_t e = -1;
            zel_pds_pds_slv_nrhs_seq_real(&fr, b.data(), x.data(), 0, &e);
            return int(e);
        },
        [&](int64_t k, int result, const zel::test::allocator_probe &probe) {
            EXPECT_EQ(result, 1) << "allocation " << k;
            EXPECT_EQ(x, std::vector<double>(size_t(f.n), 0.0));
            EXPECT_EQ(probe.live(), 0);
        });
}

// A missing x, or any failed allocation, sets error 1 and leaves x as it was; nothing leaks.
TYPED_TEST(OneRhs, FailuresLeaveXUnchanged)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using C = typename TypeParam::F::c_type;
    for (const auto &m : TypeParam::F::ll) {
        const factor<T> f = block_factor<T>({2, 3, 1}, std::vector<int64_t>(6, 1), true, m.s.k, 2);
        const passed<T, I> p(f);
        const auto b = random_rhs<T>(f.n, 9);
        I error = 0;
        const I control[3] = {0, 0, 0};
        m.scalar(I(f.n), I(f.nsuper), 1, I(f.nsuper), p.super_ptr.data(), p.col_ptr.data(), p.row_ptr.data(),
                 p.row_index.data(), p.l(), ptr_or_null(p.u_col_ptr), p.u(), ptr_or_null(p.row_pivots),
                 ptr_or_null(p.col_pivots), static_cast<C *>(nullptr), control, 0, &error);
        EXPECT_EQ(error, 1) << m.s.name;
        // No blocks of size 0, no variable geometry without its starts, no scalar count that
        // does not fit 64 bits: error 2, x untouched.
        std::vector<T> y = b;
        for (I bs : {I(0), I(-1), sizeof(I) == 8 ? std::numeric_limits<I>::max() : I(0)}) {
            error = 0;
            m.bsr(I(f.n), bs, I(f.nsuper), 1, I(f.nsuper), p.super_ptr.data(), p.col_ptr.data(), p.row_ptr.data(),
                  p.row_index.data(), p.l(), ptr_or_null(p.u_col_ptr), p.u(), ptr_or_null(p.row_pivots),
                  ptr_or_null(p.col_pivots), reinterpret_cast<C *>(y.data()), control, 0, &error);
            EXPECT_EQ(error, 2) << m.s.name << " bs " << bs;
        }
        error = 0;
        m.vbsr(I(f.n), nullptr, I(f.nsuper), 1, I(f.nsuper), p.super_ptr.data(), p.col_ptr.data(), p.row_ptr.data(),
               p.row_index.data(), p.l(), ptr_or_null(p.u_col_ptr), p.u(), ptr_or_null(p.row_pivots),
               ptr_or_null(p.col_pivots), reinterpret_cast<C *>(y.data()), control, 0, &error);
        EXPECT_EQ(error, 2) << m.s.name;
        EXPECT_EQ(y, b);
        std::vector<T> x;
        const int64_t total = zel::test::for_each_failing_allocation(
            [&] {
                x = b;
                return int(p.scalar(m, x, 1, f.nsuper, 0));
            },
            [&](int64_t k, int result, const zel::test::allocator_probe &probe) {
                EXPECT_EQ(result, 1) << m.s.name << " allocation " << k;
                EXPECT_EQ(x, b) << m.s.name << " allocation " << k;
                EXPECT_EQ(probe.live(), 0);
            });
        EXPECT_EQ(total, sizeof(I) == 4 && m.s.k != kind::chol ? 2 : 1) << m.s.name;
    }
}

} // namespace
