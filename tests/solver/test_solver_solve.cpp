// The solve phase: the layer's driver and refinement and the core's sweep kernels, residual
// and dispatch, against dense solves of generated definite matrices in every value and index
// type.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>

#include "alloc_fault.hpp"
#include "isa_variants.hpp"
#include "solve_support.hpp"
#include "zel/runtime.h"
#include "zel_internal/members.hpp"

using namespace zel::test;

namespace {

// The exported kernels of each value and index type.

template <class T, class I> struct kernels;
#define ZEL_TEST_KERNELS(P, C, T, W, I, K)                                                                    \
    template <> struct kernels<T, I> {                                                                        \
        using c_type = C;                                                                                     \
        static constexpr decltype(&zel_pds_##W##P##pds_sym_pos_fwd_ker_seq_nrhs_##K) forward[2] = {          \
            zel_pds_##W##P##pds_sym_pos_fwd_ker_seq_nrhs_##K, zel_pds_##W##P##pds_sym_pos_fwd_ker_par_nrhs_##K}; \
        static constexpr decltype(&zel_pds_##W##P##pds_sym_pos_bwd_ker_seq_nrhs_##K) backward[2] = {         \
            zel_pds_##W##P##pds_sym_pos_bwd_ker_seq_nrhs_##K, zel_pds_##W##P##pds_sym_pos_bwd_ker_par_nrhs_##K}; \
    };
#define ZEL_TEST_REAL_KERNELS(P, C, T, W, I) ZEL_TEST_KERNELS(P, C, T, W, I, real)
#define ZEL_TEST_CMPLX_KERNELS(P, C, T, W, I) ZEL_TEST_KERNELS(P, C, T, W, I, cmplx)
ZEL_PDS_REAL_MEMBERS(ZEL_TEST_REAL_KERNELS)
ZEL_PDS_CMPLX_MEMBERS(ZEL_TEST_CMPLX_KERNELS)

// Standard output written while body runs.
template <class Body> std::string captured_output(Body body)
{
    std::fflush(stdout);
    char path[] = "/tmp/zel_solve_out_XXXXXX";
    const int file = mkstemp(path), saved = dup(1);
    dup2(file, 1);
    body();
    std::fflush(stdout);
    dup2(saved, 1);
    close(saved);
    close(file);
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::remove(path);
    return text.str();
}

// "\n Time spent in direct solver at solve step (solve) : <seconds, 7 decimals> sec\n".
bool is_timing_line(const std::string &text)
{
    const std::string head = "\n Time spent in direct solver at solve step (solve) : ", tail = " sec\n";
    if (text.size() < head.size() + tail.size() + 9 || text.compare(0, head.size(), head) != 0 ||
        text.compare(text.size() - tail.size(), tail.size(), tail) != 0)
        return false;
    const std::string number = text.substr(head.size(), text.size() - head.size() - tail.size());
    const size_t point = number.find('.');
    return point != std::string::npos && point > 0 && number.size() - point - 1 == 7 &&
           number.find_first_not_of("0123456789.") == std::string::npos &&
           number.find('.', point + 1) == std::string::npos;
}

template <class V, class I> struct types {
    using T = V;
    using index = I;
};

template <class P> class SolvePhase : public ::testing::Test {
protected:
    using T = typename P::T;
    using I = typename P::index;
    using W = wide_t<T>;

    // Every structure's problem, built once per type.
    static const std::vector<std::unique_ptr<problem<T, I>>> &problems()
    {
        static std::vector<std::unique_ptr<problem<T, I>>> made;
        if (made.empty())
            for (const structure &s : structures()) {
                made.push_back(std::make_unique<problem<T, I>>());
                build_problem(s, *made.back());
            }
        return made;
    }
    static const problem<T, I> &grid() { return *problems()[3]; }

    // x = op(A)⁻¹·b through the driver; the error it set.
    static int64_t solve(zel_pds_frame f, const T *b, T *x, bool par = false, int64_t message_level = 0)
    {
        int64_t error = -1;
        (par ? routines<T>::par : routines<T>::seq)(&f, b, x, message_level, &error);
        return error;
    }

    // Checks each column of x against the dense solve of op(A)·x = b (opa: op(A), l: its factor).
    static void expect_solution(const dense<W> &opa, const dense<W> &l, int64_t nrhs, const T *b, int64_t ldb,
                                const T *x, int64_t ldx)
    {
        for (int64_t c = 0; c < nrhs; ++c) {
            std::vector<W> reference(b + c * ldb, b + c * ldb + opa.n);
            dense_cholesky_solve(l, reference.data());
            double error = 0, size = 0;
            for (int64_t i = 0; i < opa.n; ++i) {
                error = std::max(error, std::abs(W(x[c * ldx + i]) - reference[size_t(i)]));
                size = std::max(size, std::abs(reference[size_t(i)]));
            }
            EXPECT_LE(backward_errors(opa, b + c * ldb, x + c * ldx).normwise, 16 * eps_of<T>) << "column " << c;
            EXPECT_LE(error, 64 * eps_of<T> * size) << "column " << c;
        }
    }
};

using all_types = ::testing::Types<types<float, int32_t>, types<double, int32_t>, types<std::complex<float>, int32_t>,
                                   types<std::complex<double>, int32_t>, types<float, int64_t>, types<double, int64_t>,
                                   types<std::complex<float>, int64_t>, types<std::complex<double>, int64_t>>;
TYPED_TEST_SUITE(SolvePhase, all_types);

TYPED_TEST(SolvePhase, SolvesMatchDenseSolves)
{
    using T = typename TestFixture::T;
    const T sentinel = T(1234.5f);
    for (const auto &p : this->problems())
        for (int64_t op : {0, 1, 2}) {
            const dense<wide_t<T>> opa = p->op_matrix(op);
            dense<wide_t<T>> l = opa;
            ASSERT_TRUE(dense_cholesky(l));
            for (int64_t nrhs : {1, 2, 3, 7, 16, 20}) // every chunk width, padded or not
                for (bool in_place : {false, true}) {
                    SCOPED_TRACE(std::to_string(p->n) + " op " + std::to_string(op) + " nrhs " + std::to_string(nrhs) +
                                 (in_place ? " in place" : ""));
                    const int64_t ldb = p->n + 3, ldx = in_place ? ldb : p->n + 5;
                    const std::vector<T> b = random_block<T>(p->n, nrhs, ldb, uint64_t(nrhs * 3 + op));
                    std::vector<T> x = in_place ? b : std::vector<T>(size_t(ldx * nrhs), sentinel);
                    zel_pds_frame f = p->frame(nrhs, op);
                    f.ldb = ldb;
                    f.ldx = ldx;
                    ASSERT_EQ(this->solve(f, in_place ? x.data() : b.data(), x.data(), in_place), 0);
                    this->expect_solution(opa, l, nrhs, b.data(), ldb, x.data(), ldx);
                    for (int64_t c = 0; c < nrhs; ++c) // rows past n belong to the caller
                        for (int64_t i = p->n; i < ldx; ++i)
                            ASSERT_EQ(x[size_t(c * ldx + i)], in_place ? b[size_t(c * ldx + i)] : sentinel);
                }
        }
}

// Each partition is a block of columns solved on its own: with one column per partition
// (more partitions asked than columns) every column matches a one-column solve bitwise.
TYPED_TEST(SolvePhase, PartitionsSplitTheColumns)
{
    using T = typename TestFixture::T;
    for (const auto &p : this->problems()) {
        const int64_t n = p->n, nrhs = 5;
        const std::vector<T> b = random_block<T>(n, nrhs, n, 5);
        std::vector<T> split(b.size()), single(b.size()), pairs(b.size()), joined(b.size());
        zel_pds_frame f = p->frame(nrhs);
        f.partitions = 9;
        ASSERT_EQ(this->solve(f, b.data(), split.data(), true), 0);
        for (int64_t c = 0; c < nrhs; ++c)
            ASSERT_EQ(this->solve(p->frame(1), b.data() + c * n, single.data() + c * n), 0);
        EXPECT_EQ(split, single) << p->n;
        // Two partitions of five columns: three, then two.
        f.partitions = 2;
        ASSERT_EQ(this->solve(f, b.data(), pairs.data()), 0);
        ASSERT_EQ(this->solve(p->frame(3), b.data(), joined.data()), 0);
        ASSERT_EQ(this->solve(p->frame(2), b.data() + 3 * n, joined.data() + 3 * n), 0);
        EXPECT_EQ(pairs, joined) << p->n;
    }
}

TYPED_TEST(SolvePhase, ScalingMultipliesEachRowOfTheSolution)
{
    using T = typename TestFixture::T;
    using R = zel::real_t<T>;
    const auto &p = this->grid();
    for (int64_t op : {0, 1}) {
        std::vector<R> scaling(size_t(2 * p.n), R(1e30)); // the second vector is not this type's
        for (int64_t i = 0; i < p.n; ++i)
            scaling[size_t(i)] = R(0.5 + double(i % 7));
        const std::vector<T> b = random_block<T>(p.n, 3, p.n, 9);
        std::vector<T> plain(b.size()), scaled(b.size());
        zel_pds_frame f = p.frame(3, op);
        ASSERT_EQ(this->solve(f, b.data(), plain.data()), 0);
        f.scaling = scaling.data();
        ASSERT_EQ(this->solve(f, b.data(), scaled.data()), 0);
        for (size_t k = 0; k < b.size(); ++k)
            ASSERT_EQ(scaled[k], plain[k] * scaling[k % size_t(p.n)]) << k;
    }
}

// A Cholesky factor lacks the arrays of every other type (and a type of the other value kind
// is never this driver's): each is refused.
TYPED_TEST(SolvePhase, RefusesWhatItCannotSolveAndLeavesXAlone)
{
    using T = typename TestFixture::T;
    const auto &p = this->grid();
    const std::vector<T> b = random_block<T>(p.n, 2, p.n, 3);
    const std::vector<T> before = random_block<T>(p.n, 2, p.n, 4);
    std::vector<T> x = before;
    for (int64_t type : {1, 3, -2, -4, 6, 11, 13, zel::is_complex_v<T> ? 2 : 4}) {
        zel_pds_frame f = p.frame(2);
        f.matrix_type = type;
        EXPECT_EQ(this->solve(f, b.data(), x.data()), 2) << type;
    }
    zel_pds_frame narrow = p.frame(2);
    narrow.ldx = p.n - 1;
    EXPECT_EQ(this->solve(narrow, b.data(), x.data()), 2);
    EXPECT_EQ(this->solve(p.frame(2), nullptr, x.data()), 1);
    EXPECT_EQ(this->solve(p.frame(2), b.data(), nullptr), 1);
    EXPECT_EQ(this->solve(p.frame(0), b.data(), x.data()), 0);
    EXPECT_EQ(x, before);
    // A kernel handed a frame of the other index width or precision refuses it.
    using K = kernels<T, typename TestFixture::I>;
    for (int flip : {0, 1}) {
        zel_pds_frame f = p.frame(2);
        (flip ? f.lp64 : f.single) ^= 1;
        int64_t error = -1;
        K::forward[0](&f, 2, reinterpret_cast<typename K::c_type *>(x.data()), p.n, &error);
        EXPECT_EQ(error, 2);
    }
    EXPECT_EQ(x, before);
}

// Forward alone solves L·Y = W and backward alone Lᴴ·X = Y, in the factor's own order.
TYPED_TEST(SolvePhase, KernelsSolveWithEachTriangle)
{
    using T = typename TestFixture::T;
    using W = typename TestFixture::W;
    using K = kernels<T, typename TestFixture::I>;
    for (const auto &p : this->problems())
        for (int64_t k : {1, 2, 5, 16})
            for (int par : {0, 1}) {
                const int64_t n = p->n, ld = n + 2;
                const std::vector<T> w = random_block<T>(n, k, ld, 8);
                std::vector<T> y = w, x;
                int64_t error = -1;
                const zel_pds_frame f = p->frame(k);
                K::forward[par](&f, k, reinterpret_cast<typename K::c_type *>(y.data()), ld, &error);
                ASSERT_EQ(error, 0);
                x = y;
                K::backward[par](&f, k, reinterpret_cast<typename K::c_type *>(x.data()), ld, &error);
                ASSERT_EQ(error, 0);
                for (int64_t c = 0; c < k; ++c)
                    for (int64_t i = 0; i < n; ++i) {
                        W ly = 0, lx = 0, scale = 0;
                        for (int64_t j = 0; j < n; ++j) {
                            ly += p->l(i, j) * W(y[c * ld + j]);
                            lx += zel::conj_if(p->l(j, i), true) * W(x[c * ld + j]);
                            scale += std::abs(p->l(i, j)) + std::abs(p->l(j, i));
                        }
                        ASSERT_LE(std::abs(ly - W(w[c * ld + i])), 32 * eps_of<T> * (1 + std::abs(scale))) << i;
                        ASSERT_LE(std::abs(lx - W(y[c * ld + i])), 32 * eps_of<T> * (1 + std::abs(scale))) << i;
                    }
                // A lent scratch full of NaN gives the same bits (nothing read before it is
                // written); one too small or misaligned is left alone (the sanitizers would see
                // a write past its end).
                const T nan(std::numeric_limits<zel::real_t<T>>::quiet_NaN());
                const size_t enough = size_t(2 * n) * 16;
                std::vector<T> big(enough + 64, nan), small(2, nan);
                char *start = reinterpret_cast<char *>(big.data());
                start += (64 - reinterpret_cast<uintptr_t>(start) % 64) % 64; // the kernels want 64 bytes
                for (auto [lent, bytes] : {std::pair<char *, size_t>(start, enough * sizeof(T)),
                                           {start + 8, enough * sizeof(T)},
                                           {reinterpret_cast<char *>(small.data()), sizeof(T) * small.size()}}) {
                    zel_pds_frame g = f;
                    g.sweep_scratch = lent;
                    g.sweep_scratch_bytes = int64_t(bytes);
                    std::vector<T> y2 = w;
                    K::forward[par](&g, k, reinterpret_cast<typename K::c_type *>(y2.data()), ld, &error);
                    ASSERT_EQ(error, 0);
                    ASSERT_EQ(std::memcmp(y2.data(), y.data(), y.size() * sizeof(T)), 0) << k;
                    K::backward[par](&g, k, reinterpret_cast<typename K::c_type *>(y2.data()), ld, &error);
                    ASSERT_EQ(error, 0);
                    ASSERT_EQ(std::memcmp(y2.data(), x.data(), x.size() * sizeof(T)), 0) << k;
                }
            }
}

TYPED_TEST(SolvePhase, EveryFailedAllocationLeavesXUntouched)
{
    using T = typename TestFixture::T;
    const auto &p = this->grid();
    for (int64_t nrhs : {1, 16})
        for (bool in_place : {false, true}) {
            const std::vector<T> b = random_block<T>(p.n, nrhs, p.n, 1);
            const std::vector<T> before = in_place ? b : random_block<T>(p.n, nrhs, p.n, 2);
            std::vector<T> x;
            const int64_t total = for_each_failing_allocation(
                [&] {
                    x = before;
                    return int(this->solve(p.frame(nrhs), in_place ? x.data() : b.data(), x.data()));
                },
                [&](int64_t k, int error, const allocator_probe &probe) {
                    EXPECT_EQ(error, 1) << "allocation " << k;
                    EXPECT_EQ(x, before) << "allocation " << k;
                    EXPECT_EQ(probe.live(), 0) << "allocation " << k;
                });
            EXPECT_GE(total, 3); // the work block and each sweep's rows
        }
}

// The core's residual and measures against the same quantities formed densely, with A given
// whole or by its upper triangle.
TYPED_TEST(SolvePhase, ResidualAndMeasuresMatchDenseOnes)
{
    using T = typename TestFixture::T;
    using W = typename TestFixture::W;
    const auto &p = this->grid();
    const int64_t nrhs = 2;
    const std::vector<T> b = random_block<T>(p.n, nrhs, p.n, 6);
    std::vector<T> x(b.size()), r(b.size());
    for (int64_t op : {0, 1, 2})
        for (bool upper : {false, true}) {
            const zel_pds_frame f = p.frame(nrhs, op, upper);
            ASSERT_EQ(this->solve(f, b.data(), x.data()), 0);
            for (auto &v : x) // an inexact solution, so that the residual is not rounding alone
                v *= T(zel::real_t<T>(1.001));
            int64_t error = -1;
            routines<T>::residual(&f, b.data(), x.data(), r.data(), &error);
            ASSERT_EQ(error, 0);
            const dense<W> opa = p.op_matrix(op);
            double backward = 0, normwise = 0;
            for (int64_t c = 0; c < nrhs; ++c) {
                for (int64_t i = 0; i < p.n; ++i) {
                    W s = W(b[c * p.n + i]);
                    for (int64_t j = 0; j < p.n; ++j)
                        s -= opa(i, j) * W(x[c * p.n + j]);
                    ASSERT_LE(std::abs(W(r[c * p.n + i]) - s), 1e-12 + eps_of<T> * std::abs(s)) << i;
                }
                const measures m = backward_errors(opa, b.data() + c * p.n, x.data() + c * p.n);
                backward = std::max(backward, m.componentwise);
                normwise = std::max(normwise, m.normwise);
            }
            double e = -1, m = -1;
            routines<T>::measure(&f, b.data(), x.data(), r.data(), &e, &m, &error);
            ASSERT_EQ(error, 0);
            EXPECT_NEAR(e, backward, 1e-6 * backward);
            EXPECT_NEAR(m, normwise, 1e-6 * normwise);
        }
}

// A solution of op(A)·x = b moved off by about a hundredth, for refinement to work on.
template <class T, class I>
std::vector<T> perturbed_solution(const problem<T, I> &p, const std::vector<T> &b, int64_t nrhs, int64_t op = 0)
{
    std::vector<T> x(b.size());
    zel_pds_frame f = p.frame(nrhs, op);
    int64_t error = -1;
    routines<T>::seq(&f, b.data(), x.data(), 0, &error);
    EXPECT_EQ(error, 0);
    const std::vector<T> noise = random_block<T>(p.n, nrhs, p.n, 77);
    for (size_t k = 0; k < x.size(); ++k)
        x[k] += noise[k] * zel::real_t<T>(1e-2);
    return x;
}

template <class T>
zel_pds_frame refined(zel_pds_frame f, const T *b, T *x, int64_t k, int64_t cap, int64_t &error,
                      int64_t message_level = 0)
{
    f.refinement_exponent = k;
    f.refinement_max_steps = cap;
    error = -1;
    routines<T>::refine(&f, b, x, message_level, &error);
    return f;
}

// The core's backward error of x, as refinement measures it.
template <class T> double measured(const zel_pds_frame &f, const T *b, const T *x)
{
    std::vector<T> r(size_t(f.n * f.nrhs));
    int64_t error = -1;
    double e = -1, m = -1;
    routines<T>::residual(&f, b, x, r.data(), &error);
    routines<T>::measure(&f, b, x, r.data(), &e, &m, &error);
    EXPECT_EQ(error, 0);
    return e;
}

TYPED_TEST(SolvePhase, RefinementStopsAtToleranceStagnationOrCap)
{
    using T = typename TestFixture::T;
    const auto &p = this->grid();
    const int64_t nrhs = 2;
    const std::vector<T> b = random_block<T>(p.n, nrhs, p.n, 12);
    int64_t error;
    struct run { int64_t k, cap, min_steps, max_steps; };
    // k = 6: one step reaches 10⁻⁶; k = 0 tests no tolerance, so only stagnation or the cap stop it.
    for (int64_t op : {0, 1, 2}) {
        const std::vector<T> start = perturbed_solution(p, b, nrhs, op);
        const dense<wide_t<T>> a = p.op_matrix(op);
        for (const run &c : {run{6, 10, 1, 1}, run{0, 10, 2, 10}, run{0, 1, 1, 1}, run{0, 0, 0, 0}}) {
            SCOPED_TRACE("op " + std::to_string(op) + " k " + std::to_string(c.k) + " cap " + std::to_string(c.cap));
            std::vector<T> x = start;
            const zel_pds_frame f = refined(p.frame(nrhs, op), b.data(), x.data(), c.k, c.cap, error);
            ASSERT_EQ(error, 0);
            EXPECT_GE(f.refinement_steps, c.min_steps);
            EXPECT_LE(f.refinement_steps, c.max_steps);
            double worst = 0;
            for (int64_t col = 0; col < nrhs; ++col)
                worst = std::max(worst, backward_errors(a, b.data() + col * p.n, x.data() + col * p.n).componentwise);
            EXPECT_NEAR(f.backward_error, worst, 1e-6 * worst + 1e-16); // residuals of rounding size differ
            if (c.cap == 0)
                EXPECT_EQ(x, start);
            else
                EXPECT_LT(f.backward_error, c.k != 0 ? 1e-6 : 16 * eps_of<T>);
        }
    }
}

// A factor of A/4 makes each correction triple the error: the first one is undone. One of 20·A
// shrinks it by 5%, which is stagnation; one of 2·A halves it, and only the cap stops.
TYPED_TEST(SolvePhase, RefinementKeepsTheBetterOfTheLastTwo)
{
    using T = typename TestFixture::T;
    using I = typename TestFixture::I;
    const auto &p = this->grid();
    const std::vector<T> b = random_block<T>(p.n, 1, p.n, 13);
    const std::vector<T> start = perturbed_solution(p, b, 1);
    const double e0 = measured(p.frame(1), b.data(), start.data());
    struct run { double scale; int64_t steps; };
    for (const run &c : {run{0.5, 1}, run{std::sqrt(20.0), 1}, run{std::sqrt(2.0), 4}}) {
        problem<T, I> off;
        build_problem(structures()[3], off, c.scale);
        std::vector<T> x = start;
        int64_t error;
        const zel_pds_frame f = refined(off.frame(1), b.data(), x.data(), 0, 4, error);
        ASSERT_EQ(error, 0);
        EXPECT_EQ(f.refinement_steps, c.steps) << c.scale;
        if (c.scale < 1) {
            EXPECT_EQ(x, start);
            EXPECT_EQ(f.backward_error, e0);
        } else {
            EXPECT_LT(f.backward_error, (c.steps > 1 ? 0.2 : 0.99) * e0) << c.scale;
            EXPECT_EQ(f.backward_error, measured(p.frame(1), b.data(), x.data()));
        }
    }
}

TYPED_TEST(SolvePhase, ReportLinesOnlyAtMessageLevelOne)
{
    using T = typename TestFixture::T;
    const auto &p = this->grid();
    const std::vector<T> b = random_block<T>(p.n, 1, p.n, 14);
    std::vector<T> x(b.size());
    zel_pds_frame f = p.frame(1);
    const std::string timing = captured_output([&] { EXPECT_EQ(this->solve(f, b.data(), x.data(), false, 1), 0); });
    EXPECT_TRUE(is_timing_line(timing)) << timing;
    for (int64_t level : {0, 2})
        EXPECT_EQ(captured_output([&] { this->solve(f, b.data(), x.data(), true, level); }), "");
    int64_t error;
    zel_pds_frame after;
    x = perturbed_solution(p, b, 1);
    const std::string lines = captured_output([&] { after = refined(f, b.data(), x.data(), 6, 10, error, 1); });
    char expected[400];
    std::snprintf(expected, sizeof expected,
                  "Number of iterative refinement steps performed        %d\n"
                  "Tolerance level in the iterative refinement process   %e\n"
                  "Backward error after the iterative refinement process %e\n",
                  int(after.refinement_steps), double(std::pow(10.0f, -6.0f)), double(float(after.backward_error)));
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(captured_output([&] { refined(f, b.data(), x.data(), 6, 10, error, 0); }), "");
    EXPECT_EQ(captured_output([&] { refined(f, b.data(), x.data(), 6, 0, error, 1); }), "");
}

TYPED_TEST(SolvePhase, RefinementFailingAllocationsKeepACompleteIterate)
{
    using T = typename TestFixture::T;
    const auto &p = this->grid();
    const std::vector<T> b = random_block<T>(p.n, 2, p.n, 15);
    const std::vector<T> start = perturbed_solution(p, b, 2);
    const double e0 = measured(p.frame(2), b.data(), start.data());
    std::vector<T> x;
    for_each_failing_allocation(
        [&] {
            x = start;
            int64_t error;
            refined(p.frame(2), b.data(), x.data(), 0, 3, error);
            return int(error);
        },
        [&](int64_t k, int error, const allocator_probe &probe) {
            EXPECT_EQ(error, 1) << "allocation " << k;
            EXPECT_EQ(probe.live(), 0) << "allocation " << k;
            if (x != start) {
                EXPECT_LT(measured(p.frame(2), b.data(), x.data()), e0) << "allocation " << k;
            }
        });
}

TYPED_TEST(SolvePhase, DispatchRunsTheSolvePhase)
{
    using T = typename TestFixture::T;
    const auto &p = this->grid();
    const std::vector<T> b = random_block<T>(p.n, 3, p.n, 16);
    std::vector<T> direct(b.size()), dispatched(b.size());
    zel_pds_frame f = p.frame(3, 1);
    ASSERT_EQ(this->solve(f, b.data(), direct.data()), 0);
    int64_t error = -1;
    zel_pds_kernel_dispatch(&f, ZEL_PDS_PHASE_SOLVE, b.data(), dispatched.data(), &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(dispatched, direct);
    zel_pds_kernel_dispatch(&f, 22, b.data(), dispatched.data(), &error);
    EXPECT_EQ(error, 2);
    for (int64_t asked : {-3, 0, 1, 4}) {
        f.partitions = asked;
        EXPECT_EQ(zel_pds_pds_get_num_threads(&f), std::max<int64_t>(asked, 1));
    }
}

} // namespace

// The sweeps exist per instruction set; the lower ones must give the same answers.
TEST(SolvePhaseIsa, EveryVariantPassesTheSameTests)
{
    zel::test::expect_every_isa_variant_passes(
        "ZEL_SOLVER_ISA", "SolvePhase/*.KernelsSolveWithEachTriangle:SolvePhase/*.PartitionsSplitTheColumns");
}
