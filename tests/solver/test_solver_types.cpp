// The solve phase for every matrix type: factors written directly in the documented layout
// from random data (L·U with row interchanges, L·D·Lᵀ with 1×1 or Bunch–Kaufman pivots, L·Lᴴ),
// the dense matrix each represents, and solves with A, Aᵀ and Aᴴ through the core's solve phase
// and the layer's drivers, judged by their residuals; the Bunch–Kaufman block routines against
// the reference LAPACK routines on a dense factor.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "alloc_fault.hpp"
#include "isa_variants.hpp"
#include "solve_support.hpp"
#include "zel/runtime.h"
#include "zel_internal/solve_frame.hpp"

using namespace zel::test;

namespace {

template <class V, class I> struct types {
    using T = V;
    using index = I;
};


// How a solve reaches the factor: the core's solve phase (zel_pds_kernel_dispatch, which wraps
// the matching and scaling) or one of the layer's drivers directly.
enum class path { phase, seq_driver, par_driver };

template <class P> class SolveTypes : public ::testing::Test {
public:
    using T = typename P::T;
    using I = typename P::index;
    using W = wide_t<T>;

    struct case_ {
        type_form form;
        int64_t shape;
        std::unique_ptr<typed_factor<T, I>> f;
    };

    // Every type and form on every shape, built once per value and index type.
    static const std::vector<case_> &cases()
    {
        static std::vector<case_> made;
        if (made.empty()) {
            const std::vector<random_shape> shapes = typed_shapes();
            uint64_t seed = 100;
            for (size_t s = 0; s < shapes.size(); ++s)
                for (const type_form &t : type_forms<T>()) {
                    made.push_back({t, int64_t(s), std::make_unique<typed_factor<T, I>>()});
                    build_typed_factor(shapes[s], t, ++seed, *made.back().f);
                }
        }
        return made;
    }

    static std::string name(const case_ &c) { return type_form_name(c.form) + ", shape " + std::to_string(c.shape); }

    static int64_t solve(path how, zel_pds_frame f, const T *b, T *x)
    {
        int64_t error = -1;
        if (how == path::phase)
            zel_pds_kernel_dispatch(&f, ZEL_PDS_PHASE_SOLVE, b, x, &error);
        else
            (how == path::par_driver ? routines<T>::par : routines<T>::seq)(&f, b, x, 0, &error);
        return error;
    }

    // The worst column's componentwise and normwise backward errors of x for op(A)·x = b.
    static measures worst(const dense<W> &opa, int64_t nrhs, const T *b, int64_t ldb, const T *x, int64_t ldx)
    {
        measures m{0, 0};
        for (int64_t c = 0; c < nrhs; ++c) {
            const measures one = backward_errors(opa, b + c * ldb, x + c * ldx);
            m.componentwise = std::max(m.componentwise, one.componentwise);
            m.normwise = std::max(m.normwise, one.normwise);
        }
        return m;
    }
};

using all_types = ::testing::Types<types<float, int32_t>, types<double, int32_t>, types<std::complex<float>, int32_t>,
                                   types<std::complex<double>, int32_t>, types<float, int64_t>, types<double, int64_t>,
                                   types<std::complex<float>, int64_t>, types<std::complex<double>, int64_t>>;
TYPED_TEST_SUITE(SolveTypes, all_types);

// Backward errors of a solve with a well-conditioned factor, in units of the type's epsilon.
constexpr double normwise_limit = 8, componentwise_limit = 32;

// Every type, form, shape and operation, one to seventeen right-hand sides in one or two
// partitions, through the solve phase and (without matching and scaling) both drivers; the
// rows of x beyond n stay the caller's.
TYPED_TEST(SolveTypes, SolvesWithEveryTypeAndOperation)
{
    using T = typename TestFixture::T;
    const T sentinel = T(2024.5f);
    for (const auto &c : this->cases()) {
        const typed_factor<T, typename TestFixture::I> &f = *c.f;
        for (int64_t op : {0, 1, 2}) {
            const dense<wide_t<T>> opa = f.op_matrix(op);
            for (int64_t nrhs : {1, 3, 17})
                for (int64_t parts : {1, 2})
                    for (path how : {path::phase, path::seq_driver, path::par_driver}) {
                        if (how != path::phase && !f.matching.empty())
                            continue;
                        SCOPED_TRACE(this->name(c) + ", op " + std::to_string(op) + ", nrhs " + std::to_string(nrhs) +
                                     ", partitions " + std::to_string(parts) + ", path " + std::to_string(int(how)));
                        const int64_t ldb = f.n + 1, ldx = f.n + 2;
                        const std::vector<T> b = random_block<T>(f.n, nrhs, ldb, uint64_t(nrhs + 7 * op));
                        std::vector<T> x(size_t(ldx * nrhs), sentinel);
                        zel_pds_frame fr = f.frame(nrhs, op);
                        fr.ldb = ldb;
                        fr.ldx = ldx;
                        fr.partitions = parts;
                        ASSERT_EQ(this->solve(how, fr, b.data(), x.data()), 0);
                        const measures m = this->worst(opa, nrhs, b.data(), ldb, x.data(), ldx);
                        EXPECT_LE(m.normwise, normwise_limit * eps_of<T>);
                        EXPECT_LE(m.componentwise, componentwise_limit * eps_of<T>);
                        for (int64_t k = 0; k < nrhs; ++k)
                            for (int64_t i = f.n; i < ldx; ++i)
                                ASSERT_EQ(x[size_t(k * ldx + i)], sentinel);
                    }
        }
    }
}

// Every panel width from 1 to 20 with 0 to about 40 rows below, blocks of 1 to 33 right-hand
// sides (each width the sweeps pad a chunk to, 2, 4, 8 and 16, alone and after a full chunk of
// 16, and two full chunks), each type and form through the solve phase: 33 columns solved
// together, then the first k of them solved alone against those (k = 1 takes the one-vector
// sweeps of L·Lᴴ); the transposed operations on a few block widths.
TYPED_TEST(SolveTypes, SweepsEveryPanelShapeAndBlockWidth)
{
    using T = typename TestFixture::T;
    using I = typename TestFixture::I;
    constexpr int64_t most = 33;
    for (bool narrowest_first : {true, false})
        for (const type_form &t : type_forms<T>()) {
            typed_factor<T, I> f;
            build_typed_factor(widths_shape(20, narrowest_first, narrowest_first ? 5 : 6), t, 77, f);
            for (int64_t op : {0, 1, 2}) {
                SCOPED_TRACE(type_form_name(t) + (narrowest_first ? ", narrowest first" : ", widest first") +
                             ", op " + std::to_string(op));
                const std::vector<T> b = random_block<T>(f.n, most, f.n, uint64_t(50 + op));
                std::vector<T> all(b.size());
                ASSERT_EQ(this->solve(path::phase, f.frame(most, op), b.data(), all.data()), 0);
                // Backward errors of the first chunk's leading columns and of the last column (a
                // chunk of its own); the columns between are held to the narrower blocks below.
                const auto op_a = f.op_matrix(op);
                const size_t last = size_t((most - 1) * f.n);
                for (const measures &m : {this->worst(op_a, 9, b.data(), f.n, all.data(), f.n),
                                          this->worst(op_a, 1, b.data() + last, f.n, all.data() + last, f.n)}) {
                    EXPECT_LE(m.normwise, normwise_limit * eps_of<T>);
                    EXPECT_LE(m.componentwise, componentwise_limit * eps_of<T>);
                }
                double size = 0;
                for (const T &v : all)
                    size = std::max(size, double(std::abs(v)));
                for (int64_t nrhs : {1, 2, 3, 5, 9, 16, 17, 21, 32}) {
                    if (op != 0 && nrhs != 1 && nrhs != 2 && nrhs != 16 && nrhs != 17)
                        continue;
                    std::vector<T> x(size_t(f.n * nrhs));
                    ASSERT_EQ(this->solve(path::phase, f.frame(nrhs, op), b.data(), x.data()), 0) << nrhs;
                    double apart = 0;
                    for (size_t i = 0; i < x.size(); ++i)
                        apart = std::max(apart, double(std::abs(x[i] - all[i])));
                    EXPECT_LE(apart, 64 * eps_of<T> * size) << "first " << nrhs << " columns";
                }
            }
        }
}

// x may be b itself, also around a matching (whose solve permutes the result).
TYPED_TEST(SolveTypes, SolvesInPlace)
{
    using T = typename TestFixture::T;
    for (const auto &c : this->cases())
        for (int64_t op : {0, 2}) {
            const auto &f = *c.f;
            SCOPED_TRACE(this->name(c) + ", op " + std::to_string(op));
            const int64_t nrhs = 5, ld = f.n + 3;
            const std::vector<T> b = random_block<T>(f.n, nrhs, ld, 21);
            std::vector<T> x = b;
            zel_pds_frame fr = f.frame(nrhs, op);
            fr.ldb = fr.ldx = ld;
            ASSERT_EQ(this->solve(path::phase, fr, x.data(), x.data()), 0);
            const measures m = this->worst(f.op_matrix(op), nrhs, b.data(), ld, x.data(), ld);
            EXPECT_LE(m.normwise, normwise_limit * eps_of<T>);
        }
}

// Pivoting modes 0 and 2 take the 1×1 kernels, 1 and 3 the Bunch–Kaufman ones: each solves
// with its own factor and finds the other's arrays missing.
TYPED_TEST(SolveTypes, PivotingModeChoosesTheKernels)
{
    using T = typename TestFixture::T;
    for (const auto &c : this->cases()) {
        const auto &f = *c.f;
        if (f.form != factor_form::diagonal_pivots && f.form != factor_form::bunch_kaufman)
            continue;
        const bool bk = f.form == factor_form::bunch_kaufman;
        const std::vector<T> b = random_block<T>(f.n, 2, f.n, 5);
        for (int64_t mode : {0, 1, 2, 3}) {
            SCOPED_TRACE(this->name(c) + ", pivoting " + std::to_string(mode));
            std::vector<T> x(b.size(), T(0));
            zel_pds_frame fr = f.frame(2, 0);
            fr.pivoting = mode;
            const bool takes_bk = mode == 1 || mode == 3;
            for (path how : {path::phase, path::par_driver})
                ASSERT_EQ(this->solve(how, fr, b.data(), x.data()), takes_bk == bk ? 0 : 2);
            if (takes_bk == bk)
                EXPECT_LE(this->worst(f.op_matrix(0), 2, b.data(), f.n, x.data(), f.n).normwise,
                          normwise_limit * eps_of<T>);
            else
                EXPECT_EQ(x, std::vector<T>(b.size(), T(0)));
        }
    }
}

// The driver scales its output by the second vector for 11 and 13 solved with Aᵀ or Aᴴ, by
// the first in every other case (1 and 3 included: the core hands them the second itself).
TYPED_TEST(SolveTypes, OutputScalingByTypeAndOperation)
{
    using T = typename TestFixture::T;
    using R = zel::real_t<T>;
    for (const auto &c : this->cases()) {
        const auto &f = *c.f;
        if (f.form != factor_form::lu || !f.matching.empty() || f.n < 2)
            continue;
        std::vector<R> scaling(size_t(2 * f.n));
        for (int64_t i = 0; i < 2 * f.n; ++i)
            scaling[size_t(i)] = R(0.25 * double(1 + i % 5) + (i < f.n ? 0.0 : 3.0));
        const std::vector<T> b = random_block<T>(f.n, 3, f.n, 8);
        for (int64_t op : {0, 1, 2}) {
            SCOPED_TRACE(this->name(c) + ", op " + std::to_string(op));
            std::vector<T> plain(b.size()), scaled(b.size());
            zel_pds_frame fr = f.frame(3, op);
            ASSERT_EQ(this->solve(path::seq_driver, fr, b.data(), plain.data()), 0);
            fr.scaling = scaling.data();
            ASSERT_EQ(this->solve(path::seq_driver, fr, b.data(), scaled.data()), 0);
            const bool second = op != 0 && (f.matrix_type == 11 || f.matrix_type == 13);
            for (size_t k = 0; k < b.size(); ++k)
                ASSERT_EQ(scaled[k], plain[k] * scaling[k % size_t(f.n) + (second ? size_t(f.n) : 0)]) << k;
        }
    }
}

// Error 2 from every path for a frame it cannot solve, with x untouched. The solve phase picks
// the driver by the type code, so a type of the other value kind is only the drivers' to refuse.
template <class T, class I>
void expect_refused(const typed_factor<T, I> &f, const zel_pds_frame &frame, bool by_phase = true)
{
    const std::vector<T> b = random_block<T>(f.n, 2, f.n, 3);
    const std::vector<T> before = random_block<T>(f.n, 2, f.n, 4);
    std::vector<T> x = before;
    using fixture = SolveTypes<types<T, I>>;
    for (path how : {path::phase, path::seq_driver, path::par_driver}) {
        if (by_phase || how != path::phase) {
            EXPECT_EQ(fixture::solve(how, frame, b.data(), x.data()), 2) << int(how);
        }
    }
    EXPECT_EQ(x, before);
}

// An unknown type or one of the other value kind; arrays missing for the factor's kind.
TYPED_TEST(SolveTypes, RefusesUnknownTypesAndMissingArrays)
{
    constexpr bool complex = zel::is_complex_v<typename TestFixture::T>;
    for (const auto &c : this->cases()) {
        const auto &f = *c.f;
        if (c.shape != 2)
            continue;
        SCOPED_TRACE(this->name(c));
        for (int64_t type : {0, 5, -1, 12, complex ? 2 : 4, complex ? 11 : 13, complex ? -2 : 6}) {
            zel_pds_frame fr = f.frame(2, 0);
            fr.matrix_type = type;
            expect_refused(f, fr, zel::pds::complex_type(type) == complex);
        }
        std::vector<const void *zel_pds_frame::*> missing = {&zel_pds_frame::l_values, &zel_pds_frame::super_ptr};
        if (f.form == factor_form::lu)
            missing.insert(missing.end(), {&zel_pds_frame::u_col_ptr, &zel_pds_frame::row_pivots});
        if (f.form == factor_form::diagonal_pivots)
            missing.insert(missing.end(), {&zel_pds_frame::diagonal, &zel_pds_frame::row_pivots});
        if (f.form == factor_form::bunch_kaufman)
            missing.push_back(&zel_pds_frame::bk_pivots);
        for (auto field : missing)
            for (int64_t op : {0, 1}) {
                zel_pds_frame fr = f.frame(2, op);
                fr.*field = nullptr;
                expect_refused(f, fr);
            }
    }
}

// Pivots that leave their block: 0, one past the block, a 2×2 pivot past it or in its last row.
TYPED_TEST(SolveTypes, RefusesPivotsOutsideTheirBlocks)
{
    using I = typename TestFixture::I;
    for (const auto &c : this->cases()) {
        const auto &f = *c.f;
        if (c.shape != 2 || f.form == factor_form::cholesky)
            continue;
        SCOPED_TRACE(this->name(c));
        const bool bk = f.form == factor_form::bunch_kaufman;
        const int64_t last_first = f.super_ptr[size_t(f.nsuper - 1)] - 1, past = f.n - last_first + 1;
        for (int64_t at : {last_first, f.n - 1})
            for (int64_t bad : {int64_t(0), past, -past, int64_t(-1)}) {
                std::vector<I> broken = bk ? f.bk_pivots : f.row_pivots;
                broken[size_t(at)] = I(bad);
                if (bk && bad == -past && at + 1 < f.n)
                    broken[size_t(at + 1)] = I(bad);
                zel_pds_frame fr = f.frame(2, 0);
                (bk ? fr.bk_pivots : fr.row_pivots) = broken.data();
                expect_refused(f, fr);
            }
    }
}

// Refinement through the solve phase, with the matching around every correction: it
// converges, and the history holds the backward error before the first step and after each.
TYPED_TEST(SolveTypes, RefinementRecordsItsHistory)
{
    using T = typename TestFixture::T;
    for (const auto &c : this->cases()) {
        const auto &f = *c.f;
        if (c.shape != 2)
            continue;
        for (int64_t op : {0, 1}) {
            SCOPED_TRACE(this->name(c) + ", op " + std::to_string(op));
            const int64_t nrhs = 2;
            const std::vector<T> b = random_block<T>(f.n, nrhs, f.n, 31);
            std::vector<T> x(b.size());
            zel_pds_frame fr = f.frame(nrhs, op);
            ASSERT_EQ(this->solve(path::phase, fr, b.data(), x.data()), 0);
            const std::vector<T> noise = random_block<T>(f.n, nrhs, f.n, 32);
            for (size_t k = 0; k < x.size(); ++k)
                x[k] += noise[k] * zel::real_t<T>(1e-3);
            std::vector<T> r(x.size());
            int64_t error = -1;
            double e0 = -1, m0 = -1;
            routines<T>::residual(&fr, b.data(), x.data(), r.data(), &error);
            routines<T>::measure(&fr, b.data(), x.data(), r.data(), &e0, &m0, &error);
            ASSERT_EQ(error, 0);
            std::fill(std::begin(fr.refinement_history), std::end(fr.refinement_history), -1.0);
            fr.refinement_exponent = 0;
            fr.refinement_max_steps = 3;
            routines<T>::refine(&fr, b.data(), x.data(), 0, &error);
            ASSERT_EQ(error, 0);
            ASSERT_GE(fr.refinement_steps, 1);
            EXPECT_EQ(fr.refinement_history[0], e0);
            EXPECT_LE(fr.backward_error, componentwise_limit * eps_of<T>);
            EXPECT_LE(this->worst(f.op_matrix(op), nrhs, b.data(), f.n, x.data(), f.n).componentwise,
                      componentwise_limit * eps_of<T>);
            for (int64_t k = 1; k <= fr.refinement_steps; ++k)
                EXPECT_GE(fr.refinement_history[k], 0.0) << k;
            EXPECT_LT(fr.refinement_history[1], e0);
            EXPECT_EQ(std::min(fr.refinement_history[fr.refinement_steps], fr.refinement_history[std::max<int64_t>(
                                                                                 fr.refinement_steps - 1, 0)]),
                      fr.backward_error);
            for (int64_t k = fr.refinement_steps + 1; k < 11; ++k)
                EXPECT_EQ(fr.refinement_history[k], 0.0) << k;
        }
    }
}

// A failed allocation anywhere in a solve (the driver's work block and pivots, the sweeps'
// rows, the solve phase's block around a matching) returns 1, leaves x as it was and leaks
// nothing; in refinement it leaves a complete iterate.
TYPED_TEST(SolveTypes, EveryFailedAllocation)
{
    using T = typename TestFixture::T;
    for (const auto &c : this->cases()) {
        const auto &f = *c.f;
        if (c.shape != 2)
            continue;
        SCOPED_TRACE(this->name(c));
        for (int64_t op : {0, 1}) {
            const int64_t nrhs = 3;
            const std::vector<T> b = random_block<T>(f.n, nrhs, f.n, 41);
            const std::vector<T> before = random_block<T>(f.n, nrhs, f.n, 42);
            std::vector<T> x;
            zel_pds_frame fr = f.frame(nrhs, op);
            fr.partitions = 2;
            const int64_t total = for_each_failing_allocation(
                [&] {
                    x = before;
                    return int(this->solve(path::phase, fr, b.data(), x.data()));
                },
                [&](int64_t k, int error, const allocator_probe &probe) {
                    EXPECT_EQ(error, 1) << "allocation " << k;
                    EXPECT_EQ(x, before) << "allocation " << k;
                    EXPECT_EQ(probe.live(), 0) << "allocation " << k;
                });
            const bool widened = f.form == factor_form::bunch_kaufman && sizeof(typename TestFixture::I) == 4;
            EXPECT_EQ(total, 1 + 2 * 2 + (widened ? 1 : 0) + (f.matching.empty() ? 0 : 1));
            std::vector<T> start(b.size());
            ASSERT_EQ(this->solve(path::phase, fr, b.data(), start.data()), 0);
            for_each_failing_allocation(
                [&] {
                    x = start;
                    zel_pds_frame g = fr;
                    g.refinement_max_steps = 2;
                    g.refinement_exponent = 0;
                    int64_t error = -1;
                    routines<T>::refine(&g, b.data(), x.data(), 0, &error);
                    return int(error);
                },
                [&](int64_t k, int error, const allocator_probe &probe) {
                    EXPECT_EQ(error, 1) << "allocation " << k;
                    EXPECT_EQ(probe.live(), 0) << "allocation " << k;
                    EXPECT_LE(this->worst(f.op_matrix(op), nrhs, b.data(), f.n, x.data(), f.n).normwise,
                              normwise_limit * eps_of<T>)
                        << "allocation " << k;
                });
        }
    }
}

// ---- The Bunch–Kaufman block routines against the reference LAPACK ones ----

// The reference factorisation and solve (the static ILP64 OpenBLAS, with its LAPACK).
#define ZEL_TEST_LAPACK_BK(P, T, TRF, TRS)                                                                    \
    void TRF(const char *, const int64_t *, T *, const int64_t *, int64_t *, T *, const int64_t *, int64_t *,  \
             size_t);                                                                                         \
    void TRS(const char *, const int64_t *, const int64_t *, const T *, const int64_t *, const int64_t *, T *,   \
             const int64_t *, int64_t *, size_t);
extern "C" {
ZEL_TEST_LAPACK_BK(s, float, ssytrf_, ssytrs_)
ZEL_TEST_LAPACK_BK(d, double, dsytrf_, dsytrs_)
ZEL_TEST_LAPACK_BK(c, std::complex<float>, csytrf_, csytrs_)
ZEL_TEST_LAPACK_BK(z, std::complex<double>, zsytrf_, zsytrs_)
ZEL_TEST_LAPACK_BK(c, std::complex<float>, chetrf_, chetrs_)
ZEL_TEST_LAPACK_BK(z, std::complex<double>, zhetrf_, zhetrs_)
}
#undef ZEL_TEST_LAPACK_BK

template <class C> using bk_routine = void (*)(const char *, const int64_t *, const int64_t *, const C *,
                                               const int64_t *, const int64_t *, C *, const int64_t *, int64_t *);

// One member of the block routines: its three steps and the reference pair.
template <class V, class C, bool Herm> struct bk_member {
    using T = V;
    using c_type = C;
    static constexpr bool hermitian = Herm;
    bk_routine<C> forward, diagonal, backward;
    void (*trf)(const char *, const int64_t *, T *, const int64_t *, int64_t *, T *, const int64_t *, int64_t *,
                size_t);
    void (*trs)(const char *, const int64_t *, const int64_t *, const T *, const int64_t *, const int64_t *, T *,
                const int64_t *, int64_t *, size_t);
};

#define ZEL_TEST_BK_MEMBER(NAME, T, C, HERM, STEM, TRF, TRS)                                                 \
    struct NAME {                                                                                             \
        static bk_member<T, C, HERM> get()                                                                    \
        {                                                                                                     \
            return {zel_pds_##STEM##_bklfw_noscal_varisol, zel_pds_##STEM##_bkl_scal_varisol,                 \
                    zel_pds_##STEM##_bklbw_varisol, TRF, TRS};                                                \
        }                                                                                                     \
        using member = bk_member<T, C, HERM>;                                                                 \
    };
ZEL_TEST_BK_MEMBER(bk_s, float, float, false, ssytrs, ssytrf_, ssytrs_)
ZEL_TEST_BK_MEMBER(bk_d, double, double, false, dsytrs, dsytrf_, dsytrs_)
ZEL_TEST_BK_MEMBER(bk_c, std::complex<float>, zel_complex8, false, csytrs, csytrf_, csytrs_)
ZEL_TEST_BK_MEMBER(bk_z, std::complex<double>, zel_complex16, false, zsytrs, zsytrf_, zsytrs_)
ZEL_TEST_BK_MEMBER(bk_ch, std::complex<float>, zel_complex8, true, chetrs, chetrf_, chetrs_)
ZEL_TEST_BK_MEMBER(bk_zh, std::complex<double>, zel_complex16, true, zhetrs, zhetrf_, zhetrs_)
#undef ZEL_TEST_BK_MEMBER

template <class M> class BunchKaufmanBlocks : public ::testing::Test {
protected:
    using T = typename M::member::T;
    using C = typename M::member::c_type;
    using W = wide_t<T>;
    static constexpr bool herm = M::member::hermitian;

    // A symmetric (Hermitian) indefinite matrix with a small diagonal, so that the reference
    // factorisation takes many 2×2 pivots, and its lower-form factor.
    struct factored {
        int64_t n;
        dense<W> a;
        std::vector<T> lu;
        std::vector<int64_t> ipiv;
    };

    static factored factor(int64_t n, uint64_t seed)
    {
        std::mt19937_64 rng(seed);
        factored f{n, dense<W>(n), std::vector<T>(size_t(n * n)), std::vector<int64_t>(size_t(n))};
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = j; i < n; ++i) {
                T v = random_value<T>(rng);
                if (i == j)
                    v = (herm ? T(std::real(v)) : v) * zel::real_t<T>(0.05);
                f.lu[size_t(i + j * n)] = v;
                f.lu[size_t(j + i * n)] = zel::conj_if(v, herm);
                f.a(i, j) = W(v);
                f.a(j, i) = zel::conj_if(W(v), herm);
            }
        const int64_t lwork = 64 * n;
        std::vector<T> work(static_cast<size_t>(lwork));
        int64_t info = -1;
        M::get().trf("L", &n, f.lu.data(), &n, f.ipiv.data(), work.data(), &lwork, &info, 1);
        EXPECT_EQ(info, 0);
        return f;
    }

    static dense<W> unit_factor(const factored &f)
    {
        return bk_unit_factor<W>(f.n, [&](int64_t i, int64_t j) { return W(f.lu[size_t(i + j * f.n)]); },
                                 [&](int64_t k) { return f.ipiv[size_t(k)]; });
    }
    static dense<W> block_diagonal(const factored &f)
    {
        return bk_block_diagonal<W>(f.n, [&](int64_t i, int64_t j) { return W(f.lu[size_t(i + j * f.n)]); },
                                    [&](int64_t k) { return f.ipiv[size_t(k)]; }, herm);
    }

    // max over the columns of ‖m·y − x‖∞ / (‖m‖∞·‖y‖∞ + ‖x‖∞).
    static double residual(const dense<W> &m, const std::vector<T> &y, const std::vector<T> &x, int64_t nrhs,
                           int64_t ld)
    {
        double worst = 0;
        for (int64_t c = 0; c < nrhs; ++c)
            worst = std::max(worst, backward_errors(m, x.data() + c * ld, y.data() + c * ld).normwise);
        return worst;
    }

    static int64_t call(bk_routine<C> routine, const factored &f, std::vector<T> &b, int64_t nrhs, int64_t ld,
                        const char *uplo = "L")
    {
        int64_t info = -99;
        routine(uplo, &f.n, &nrhs, reinterpret_cast<const C *>(f.lu.data()), &f.n, f.ipiv.data(),
                reinterpret_cast<C *>(b.data()), &ld, &info);
        return info;
    }
};

using bk_members = ::testing::Types<bk_s, bk_d, bk_c, bk_z, bk_ch, bk_zh>;
TYPED_TEST_SUITE(BunchKaufmanBlocks, bk_members);

// On the reference factor: the written-out L·D·Lᵀ reproduces A (the convention the sparse
// factors follow); the forward half solves with L, the diagonal step with D, the backward half
// with Lᵀ (Lᴴ); the three in turn match the reference solve. Rows past n stay as they were.
TYPED_TEST(BunchKaufmanBlocks, HalvesSolveWithTheirFactorsAndMatchTheReference)
{
    using T = typename TestFixture::T;
    using W = typename TestFixture::W;
    const auto routines = TypeParam::get();
    for (int64_t n : {1, 2, 7, 40}) {
        SCOPED_TRACE("n " + std::to_string(n));
        const auto f = this->factor(n, uint64_t(n));
        int64_t pairs = 0;
        for (int64_t k = 0; k < n; ++k)
            pairs += f.ipiv[size_t(k)] < 0;
        if (n == 40) {
            EXPECT_GE(pairs, 8); // the case under test occurs
        }
        const dense<W> l = this->unit_factor(f), d = this->block_diagonal(f);
        const dense<W> lt = multiply(multiply(l, d), l, true, TestFixture::herm);
        double gap = 0, size = 0;
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i) {
                gap = std::max(gap, std::abs(lt(i, j) - f.a(i, j)));
                size = std::max(size, std::abs(f.a(i, j)));
            }
        EXPECT_LE(gap, 64 * double(n) * eps_of<T> * size);
        const int64_t nrhs = 3, ld = n + 2;
        const std::vector<T> x = random_block<T>(n, nrhs, ld, 9);
        std::vector<T> y = x, z, w;
        ASSERT_EQ(this->call(routines.forward, f, y, nrhs, ld), 0);
        EXPECT_LE(this->residual(l, y, x, nrhs, ld), 16 * eps_of<T>);
        z = y;
        ASSERT_EQ(this->call(routines.diagonal, f, z, nrhs, ld), 0);
        EXPECT_LE(this->residual(d, z, y, nrhs, ld), 16 * eps_of<T>);
        w = z;
        ASSERT_EQ(this->call(routines.backward, f, w, nrhs, ld), 0);
        dense<W> lh(n);
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i)
                lh(i, j) = zel::conj_if(l(j, i), TestFixture::herm);
        EXPECT_LE(this->residual(lh, w, z, nrhs, ld), 16 * eps_of<T>);
        EXPECT_LE(this->residual(f.a, w, x, nrhs, ld), 64 * eps_of<T>);
        std::vector<T> reference = x;
        int64_t info = -1;
        routines.trs("L", &n, &nrhs, f.lu.data(), &n, f.ipiv.data(), reference.data(), &ld, &info, 1);
        ASSERT_EQ(info, 0);
        for (int64_t c = 0; c < nrhs; ++c) {
            double diff = 0, norm = 0;
            for (int64_t i = 0; i < n; ++i) {
                diff = std::max(diff, double(std::abs(w[size_t(c * ld + i)] - reference[size_t(c * ld + i)])));
                norm = std::max(norm, double(std::abs(reference[size_t(c * ld + i)])));
            }
            EXPECT_LE(diff, 1e3 * eps_of<T> * norm) << "column " << c;
            for (int64_t i = n; i < ld; ++i)
                EXPECT_EQ(w[size_t(c * ld + i)], x[size_t(c * ld + i)]);
        }
    }
}

// The reference routines' argument checks, and -1 for any triangle but the lower; b is not
// touched by a refused call. Pivots that do not describe 1×1 and 2×2 blocks are refused too.
TYPED_TEST(BunchKaufmanBlocks, ArgumentErrors)
{
    using T = typename TestFixture::T;
    using C = typename TestFixture::C;
    const auto routines = TypeParam::get();
    const auto f = this->factor(6, 3);
    const std::vector<T> before = random_block<T>(6, 2, 6, 4);
    for (auto routine : {routines.forward, routines.diagonal, routines.backward}) {
        std::vector<T> b = before;
        EXPECT_EQ(this->call(routine, f, b, 2, 6, "U"), -1);
        EXPECT_EQ(this->call(routine, f, b, 2, 6, "X"), -1);
        EXPECT_EQ(this->call(routine, f, b, 2, 5), -8);
        auto with = [&](int64_t n, int64_t nrhs, int64_t lda, const int64_t *ipiv) {
            int64_t info = -99, ldb = 6;
            routine("L", &n, &nrhs, reinterpret_cast<const C *>(f.lu.data()), &lda, ipiv,
                    reinterpret_cast<C *>(b.data()), &ldb, &info);
            return info;
        };
        EXPECT_EQ(with(-1, 2, 6, f.ipiv.data()), -2);
        EXPECT_EQ(with(6, -1, 6, f.ipiv.data()), -3);
        EXPECT_EQ(with(6, 2, 5, f.ipiv.data()), -5);
        for (const std::vector<int64_t> &bad : {std::vector<int64_t>{1, 2, 3, 4, 5, 7}, {0, 2, 3, 4, 5, 6},
                                                 {-3, -3, 3, 4, 5, -6}, {-2, -3, 3, 4, 5, 6}, {1, 2, 3, 4, 5, -6}})
            EXPECT_EQ(with(6, 2, 6, bad.data()), -6);
        EXPECT_EQ(b, before);
        EXPECT_EQ(with(0, 2, 1, nullptr), 0);
        EXPECT_EQ(with(6, 0, 6, f.ipiv.data()), 0);
        EXPECT_EQ(this->call(routine, f, b, 2, 6, "l"), 0); // lower case is the same triangle
    }
}

} // namespace

// The sweeps exist per instruction set; the lower ones must solve every type too.
TEST(SolveTypesIsa, EveryVariantPassesTheSameTests)
{
    zel::test::expect_every_isa_variant_passes(
        "ZEL_SOLVER_ISA", "SolveTypes/*.SolvesWithEveryTypeAndOperation:SolveTypes/*.SweepsEveryPanelShapeAndBlockWidth");
}
