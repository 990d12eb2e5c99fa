// Solve-phase test problems: a generated symmetric or Hermitian positive definite matrix, its
// supernodal structure from the solver's own analysis, and a factor written into the panels
// from a dense Cholesky factorisation of the permuted matrix (independent of the solver's
// numeric code). Dense references run in double precision whatever the type under test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "solver/ordering.hpp"
#include "zel/pds_solve.h"
#include "zel_internal/value_traits.hpp"

namespace zel::test {

template <class T> using wide_t = std::conditional_t<is_complex_v<T>, std::complex<double>, double>;
template <class T> constexpr double eps_of = double(std::numeric_limits<real_t<T>>::epsilon());

// Dense n × n, column-major, in double precision.
template <class W> struct dense {
    int64_t n = 0;
    std::vector<W> v;
    explicit dense(int64_t order = 0) : n(order), v(size_t(order * order)) {}
    W &operator()(int64_t i, int64_t j) { return v[size_t(i + j * n)]; }
    W operator()(int64_t i, int64_t j) const { return v[size_t(i + j * n)]; }
};

// Lower Cholesky factor in place (the upper triangle is left alone); false if not definite.
template <class W> bool dense_cholesky(dense<W> &a)
{
    for (int64_t j = 0; j < a.n; ++j) {
        double d = std::real(a(j, j));
        for (int64_t k = 0; k < j; ++k)
            d -= std::norm(a(j, k));
        if (!(d > 0))
            return false;
        a(j, j) = std::sqrt(d);
        for (int64_t i = j + 1; i < a.n; ++i) {
            W s = a(i, j);
            for (int64_t k = 0; k < j; ++k)
                s -= a(i, k) * conj_if(a(j, k), true);
            a(i, j) = s / std::real(a(j, j));
        }
    }
    return true;
}

// x = (L·Lᴴ)⁻¹·x with a factor from dense_cholesky.
template <class W> void dense_cholesky_solve(const dense<W> &l, W *x)
{
    for (int64_t j = 0; j < l.n; ++j) {
        x[j] /= l(j, j);
        for (int64_t i = j + 1; i < l.n; ++i)
            x[i] -= l(i, j) * x[j];
    }
    for (int64_t j = l.n - 1; j >= 0; --j) {
        W s = x[j];
        for (int64_t i = j + 1; i < l.n; ++i)
            s -= conj_if(l(i, j), true) * x[i];
        x[j] = s / l(j, j);
    }
}

// A pattern's strictly lower entries (i > j), 0-based.
using entry_list = std::vector<std::pair<int64_t, int64_t>>;

struct structure {
    std::string name;
    int64_t n;
    entry_list lower;
    solver::ordering_method ordering;
    bool relaxed;
};

inline entry_list grid_entries(int64_t k, int dims)
{
    const int64_t n = dims == 2 ? k * k : k * k * k;
    entry_list e;
    for (int64_t v = 0; v < n; ++v)
        for (int64_t stride = 1, d = 0; d < dims; ++d, stride *= k)
            if ((v / stride) % k + 1 < k)
                e.emplace_back(v + stride, v);
    return e;
}

// Shapes that reach every path of the sweeps: one-column supernodes with and without rows
// below, small panels, wide and tall panels for the dense kernels, amalgamated zeros.
inline std::vector<structure> structures()
{
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> u(0, 1);
    entry_list random, band, dense_block, tall;
    for (int64_t i = 0; i < 120; ++i)
        for (int64_t j = 0; j < i; ++j)
            if (u(rng) < 0.03)
                random.emplace_back(i, j);
    for (int64_t i = 0; i < 80; ++i)
        for (int64_t j = std::max<int64_t>(0, i - 5); j < i; ++j)
            band.emplace_back(i, j);
    for (int64_t i = 0; i < 40; ++i)
        for (int64_t j = 0; j < i; ++j)
            dense_block.emplace_back(i, j);
    // Ten coupled columns touching every later row: a 10-column panel of 300 rows, then a
    // dense trailing block.
    for (int64_t j = 0; j < 10; ++j)
        for (int64_t i = j + 1; i < 300; ++i)
            tall.emplace_back(i, j);
    using om = solver::ordering_method;
    return {{"diagonal", 30, {}, om::natural, false},
            {"random", 120, random, om::natural, false},
            {"banded", 80, band, om::natural, true},
            {"2-D grid", 144, grid_entries(12, 2), om::amd, true},
            {"3-D grid", 216, grid_entries(6, 3), om::metis, true},
            {"dense", 40, dense_block, om::amd, true},
            {"tall panel", 300, tall, om::natural, false}};
}

template <class T> T random_value(std::mt19937_64 &rng)
{
    std::uniform_real_distribution<double> d(-1.0, 1.0);
    if constexpr (is_complex_v<T>) {
        const double re = d(rng), im = d(rng);
        return T(real_t<T>(re), real_t<T>(im));
    } else {
        return T(d(rng));
    }
}

// A definite matrix of the structure, its factor and the frame over them. The matrix is
// diagonally dominant, so every solve is well conditioned.
template <class T, class I> struct problem {
    using W = wide_t<T>;
    int64_t n = 0;
    dense<W> a;                  // A in the caller's order, from the values of type T
    std::vector<I> row_ptr, col_idx; // CSR of A, all entries, 0-based
    std::vector<T> values;
    std::vector<I> upper_ptr, upper_idx; // its upper triangle with the diagonal
    std::vector<T> upper_values;
    solver::symbolic_factor<I> f;
    dense<W> l;                  // the factor of the permuted matrix, as written into the panels
    std::vector<T> l_values;

    // The frame over the factor; op: 0 A, 1 Aᵀ, 2 Aᴴ; upper: A given by its upper triangle.
    zel_pds_frame frame(int64_t nrhs, int64_t op = 0, bool upper = false) const
    {
        zel_pds_frame fr{};
        fr.n = n;
        fr.nsuper = f.nsuper;
        fr.lp64 = sizeof(I) == 4;
        fr.single = sizeof(real_t<T>) == 4;
        fr.super_ptr = f.super_ptr.get();
        fr.col_ptr = f.col_ptr.get();
        fr.row_ptr = f.row_ptr.get();
        fr.row_index = f.row_index.get();
        fr.l_values = l_values.data();
        fr.perm = f.perm.get();
        fr.matrix_type = is_complex_v<T> ? 4 : 2;
        fr.transposed = op;
        fr.nrhs = nrhs;
        fr.ldb = fr.ldx = n;
        fr.partitions = 1;
        fr.a_upper = upper;
        fr.a_row_ptr = upper ? upper_ptr.data() : row_ptr.data();
        fr.a_col_idx = upper ? upper_idx.data() : col_idx.data();
        fr.a_values = upper ? upper_values.data() : values.data();
        return fr;
    }

    // Dense op(A) in double precision.
    dense<W> op_matrix(int64_t op) const
    {
        dense<W> m(n);
        for (int64_t i = 0; i < n; ++i)
            for (int64_t j = 0; j < n; ++j)
                m(i, j) = op == 0 ? a(i, j) : conj_if(a(j, i), op == 2);
        return m;
    }
};

// Fills A (values of type T), analyses its pattern with the solver's analysis, and writes the
// dense factor of the permuted matrix into the panels; `scale` multiplies L (1: the true
// factor). Fails the test when the dense factor has an entry outside the supernodal structure.
template <class T, class I> void build_problem(const structure &s, problem<T, I> &p, double scale = 1.0)
{
    using W = wide_t<T>;
    std::mt19937_64 rng(uint64_t(s.n) * 7919 + s.lower.size());
    const int64_t n = s.n;
    p.n = n;
    p.a = dense<W>(n);
    std::vector<double> row_sum(size_t(n), 1.0);
    for (auto [i, j] : s.lower) {
        const T v = random_value<T>(rng);
        p.a(i, j) = W(v);
        p.a(j, i) = conj_if(W(v), true);
        row_sum[size_t(i)] += std::abs(W(v));
        row_sum[size_t(j)] += std::abs(W(v));
    }
    for (int64_t i = 0; i < n; ++i)
        p.a(i, i) = W(double(real_t<T>(row_sum[size_t(i)])));
    p.row_ptr.assign(1, 0);
    p.upper_ptr.assign(1, 0);
    for (int64_t i = 0; i < n; ++i) {
        for (int64_t j = 0; j < n; ++j)
            if (p.a(i, j) != W(0) || i == j) {
                p.col_idx.push_back(I(j));
                p.values.push_back(T(p.a(i, j)));
                if (j >= i) {
                    p.upper_idx.push_back(I(j));
                    p.upper_values.push_back(T(p.a(i, j)));
                }
            }
        p.row_ptr.push_back(I(p.col_idx.size()));
        p.upper_ptr.push_back(I(p.upper_idx.size()));
    }
    solver::sym_pattern<I> pattern;
    ASSERT_EQ(solver::pattern_from_csr(solver::csr_pattern<I>{I(n), 0, p.row_ptr.data(), p.col_idx.data()},
                                       solver::csr_part::full, pattern), 0);
    solver::amalgamation relax;
    relax.enabled = s.relaxed;
    ASSERT_EQ(solver::analyse_pattern(pattern, {s.ordering}, static_cast<const I *>(nullptr), relax, p.f), 0);
    const I *perm = p.f.perm.get();
    dense<W> &l = p.l;
    l = dense<W>(n);
    for (int64_t i = 0; i < n; ++i)
        for (int64_t j = 0; j < n; ++j)
            l(i, j) = p.a(perm[i], perm[j]);
    ASSERT_TRUE(dense_cholesky(l)) << s.name;
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < n; ++i)
            l(i, j) = i >= j ? W(T(l(i, j) * scale)) : W(0);
    p.l_values.assign(size_t(p.f.col_ptr[n] - 1), T(0));
    std::vector<char> covered(size_t(n * n), 0);
    for (I sn = 0; sn < p.f.nsuper; ++sn) {
        const int64_t first = p.f.super_ptr[sn] - 1, cols = p.f.super_ptr[sn + 1] - 1 - first;
        const int64_t rows = p.f.col_ptr[first + 1] - p.f.col_ptr[first];
        const I *index = p.f.row_index.get() + p.f.row_ptr[sn] - 1;
        for (int64_t t = 0; t < cols; ++t)
            for (int64_t r = 0; r < rows; ++r) {
                const int64_t i = index[r] - 1, j = first + t;
                // The diagonal block holds L11ᴴ above its diagonal.
                const W v = r >= t ? l(i, j) : conj_if(l(j, i), true);
                p.l_values[size_t(p.f.col_ptr[j] - 1 + r)] = T(v);
                if (r >= t)
                    covered[size_t(i + j * n)] = 1;
            }
    }
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = j; i < n; ++i)
            ASSERT_TRUE(covered[size_t(i + j * n)] || l(i, j) == W(0)) << s.name << ": L(" << i << ", " << j << ")";
}

// Right-hand sides: nrhs columns of random values at leading dimension ld (at least n).
template <class T> std::vector<T> random_block(int64_t n, int64_t nrhs, int64_t ld, uint64_t seed)
{
    EXPECT_GE(ld, n);
    std::mt19937_64 rng(seed);
    std::vector<T> b(size_t(std::max<int64_t>(ld * nrhs, 1)));
    for (auto &v : b)
        v = random_value<T>(rng);
    return b;
}

// The residual measures of x in double precision: the componentwise backward error
// max_i |b − op(A)·x|_i / (|op(A)|·|x| + |b|)_i and ‖b − op(A)·x‖∞ / (‖op(A)‖∞·‖x‖∞ + ‖b‖∞).
struct measures {
    double componentwise, normwise;
};
template <class T> measures backward_errors(const dense<wide_t<T>> &opa, const T *b, const T *x)
{
    using W = wide_t<T>;
    double worst = 0, r = 0, norm_a = 0, norm_x = 0, norm_b = 0;
    for (int64_t i = 0; i < opa.n; ++i) {
        W s = W(b[i]);
        double den = std::abs(W(b[i])), row = 0;
        for (int64_t j = 0; j < opa.n; ++j) {
            s -= opa(i, j) * W(x[j]);
            den += std::abs(opa(i, j)) * std::abs(W(x[j]));
            row += std::abs(opa(i, j));
        }
        worst = den > 0 ? std::max(worst, std::abs(s) / den) : worst;
        r = std::max(r, std::abs(s));
        norm_a = std::max(norm_a, row);
        norm_x = std::max(norm_x, double(std::abs(W(x[i]))));
        norm_b = std::max(norm_b, double(std::abs(W(b[i]))));
    }
    return {worst, r / (norm_a * norm_x + norm_b)};
}

} // namespace zel::test
