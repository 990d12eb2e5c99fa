// Solve-phase test problems. Positive definite ones: a generated symmetric or Hermitian
// positive definite matrix, its supernodal structure from the solver's own analysis, and a
// factor written into the panels from a dense Cholesky factorisation of the permuted matrix
// (independent of the solver's numeric code). Factors of every matrix type: a random supernode
// partition and random panels in the documented layout, and the dense matrix they represent,
// formed by multiplying out the factors. Dense references run in double precision whatever the
// type under test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <numeric>
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

// ---- Factors of every matrix type, from random data ----

// How the diagonal blocks of a factor are factored (docs/solver.md, "The factor of each matrix
// type").
enum class factor_form { cholesky, lu, diagonal_pivots, bunch_kaufman };

// A random supernode partition of n columns and the row lists of its panels, 1-based as the
// frame holds them: each list has the supernode's own columns, then a random ascending
// selection of the rows beyond.
struct random_shape {
    int64_t n = 0;
    std::vector<int64_t> super_ptr, col_ptr, row_ptr, row_index, u_col_ptr;
    int64_t nsuper() const { return int64_t(super_ptr.size()) - 1; }
};

// The supernodes of super_ptr; each row beyond a supernode joins its list with the given
// probability.
inline random_shape shape_of(std::vector<int64_t> super_ptr, double density, std::mt19937_64 &rng)
{
    std::uniform_real_distribution<double> u(0, 1);
    random_shape s;
    s.n = super_ptr.back() - 1;
    s.super_ptr = std::move(super_ptr);
    const int64_t n = s.n;
    s.col_ptr.assign(size_t(n + 1), 0);
    s.u_col_ptr.assign(size_t(n + 1), 0);
    s.row_ptr.push_back(1);
    int64_t at = 1, u_at = 1;
    for (int64_t k = 0; k < s.nsuper(); ++k) {
        const int64_t first = s.super_ptr[size_t(k)] - 1, last = s.super_ptr[size_t(k + 1)] - 1;
        for (int64_t r = first; r < last; ++r)
            s.row_index.push_back(r + 1);
        for (int64_t r = last; r < n; ++r)
            if (u(rng) < density)
                s.row_index.push_back(r + 1);
        const int64_t rows = int64_t(s.row_index.size()) + 1 - s.row_ptr.back();
        s.row_ptr.push_back(int64_t(s.row_index.size()) + 1);
        for (int64_t j = first; j < last; ++j) {
            s.col_ptr[size_t(j)] = at;
            s.u_col_ptr[size_t(j)] = u_at;
            at += rows;
            u_at += rows - (last - first);
        }
    }
    s.col_ptr[size_t(n)] = at;
    s.u_col_ptr[size_t(n)] = u_at;
    return s;
}

// Supernodes of 1 … widest columns; each row beyond a supernode joins its list with the given
// probability.
inline random_shape make_shape(int64_t n, int64_t widest, double density, uint64_t seed)
{
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> u(0, 1);
    std::vector<int64_t> super_ptr{1};
    while (super_ptr.back() <= n) {
        const int64_t width = 1 + int64_t(u(rng) * double(widest));
        super_ptr.push_back(std::min(super_ptr.back() + std::min(width, widest), n + 1));
    }
    return shape_of(std::move(super_ptr), density, rng);
}

// Supernodes of each width from 1 to widest, narrowest first or last; about 40 rows below the
// first of them, none below the last.
inline random_shape widths_shape(int64_t widest, bool narrowest_first, uint64_t seed)
{
    std::mt19937_64 rng(seed);
    std::vector<int64_t> super_ptr{1};
    for (int64_t k = 1; k <= widest; ++k)
        super_ptr.push_back(super_ptr.back() + (narrowest_first ? k : widest + 1 - k));
    const double beyond = double(super_ptr.back() - 1 - super_ptr[1] + 1);
    return shape_of(std::move(super_ptr), 40.0 / beyond, rng);
}

// The shapes the types are tested on: one column; narrow supernodes with a few rows below;
// supernodes up to 24 columns wide (every block size of the sweeps) over a sparse tail.
inline std::vector<random_shape> typed_shapes()
{
    return {make_shape(1, 1, 0.0, 1), make_shape(41, 3, 0.25, 2), make_shape(97, 24, 0.08, 3)};
}

template <class W> dense<W> identity(int64_t n)
{
    dense<W> m(n);
    for (int64_t i = 0; i < n; ++i)
        m(i, i) = W(1);
    return m;
}

// a·op(b), op conjugating and transposing when Adjoint.
template <class W> dense<W> multiply(const dense<W> &a, const dense<W> &b, bool transpose = false, bool conj = false)
{
    dense<W> c(a.n);
    for (int64_t j = 0; j < a.n; ++j)
        for (int64_t k = 0; k < a.n; ++k) {
            const W bkj = transpose ? conj_if(b(j, k), conj) : b(k, j);
            if (bkj != W(0))
                for (int64_t i = 0; i < a.n; ++i)
                    c(i, j) += a(i, k) * bkj;
        }
    return c;
}

// A factor of one matrix type, its frame, and the matrix A it solves with (in the caller's
// order, after undoing the ordering, matching and scaling).
template <class T, class I> struct typed_factor {
    using W = wide_t<T>;
    using R = real_t<T>;
    int64_t n = 0, nsuper = 0, matrix_type = 0, pivoting = 0;
    factor_form form = factor_form::cholesky;
    std::vector<I> super_ptr, col_ptr, row_ptr, row_index, u_col_ptr, row_pivots, col_pivots, bk_pivots, perm,
        matching;
    std::vector<T> l_values, u_values, diagonal;
    std::vector<R> scaling;
    dense<W> a;
    std::vector<I> a_row_ptr, a_col_idx; // A's nonzeros, 0-based CSR, for refinement
    std::vector<T> a_values;

    bool hermitian() const { return matrix_type == 4 || matrix_type == -4; }

    template <class V> static const void *data_or_null(const std::vector<V> &v)
    {
        return v.empty() ? nullptr : v.data();
    }

    zel_pds_frame frame(int64_t nrhs, int64_t op) const
    {
        zel_pds_frame f{};
        f.n = n;
        f.nsuper = nsuper;
        f.lp64 = sizeof(I) == 4;
        f.single = sizeof(R) == 4;
        f.super_ptr = super_ptr.data();
        f.col_ptr = col_ptr.data();
        f.row_ptr = row_ptr.data();
        f.row_index = row_index.data();
        f.l_values = l_values.data();
        f.u_col_ptr = data_or_null(u_col_ptr);
        f.u_values = data_or_null(u_values);
        f.row_pivots = data_or_null(row_pivots);
        f.col_pivots = data_or_null(col_pivots);
        f.diagonal = data_or_null(diagonal);
        f.bk_pivots = data_or_null(bk_pivots);
        f.perm = perm.data();
        f.scaling = data_or_null(scaling);
        f.matching = data_or_null(matching);
        f.matrix_type = matrix_type;
        f.pivoting = pivoting;
        f.transposed = op;
        f.nrhs = nrhs;
        f.ldb = f.ldx = n;
        f.partitions = 1;
        f.a_row_ptr = a_row_ptr.data();
        f.a_col_idx = a_col_idx.data();
        f.a_values = a_values.data();
        return f;
    }

    dense<W> op_matrix(int64_t op) const
    {
        dense<W> m(n);
        for (int64_t i = 0; i < n; ++i)
            for (int64_t j = 0; j < n; ++j)
                m(i, j) = op == 0 ? a(i, j) : conj_if(a(j, i), op == 2);
        return m;
    }
};

// Random values for the panels: entries of the triangles below 0.5/√width in magnitude, pivots
// between 1 and 2 (real for the diagonal of Hermitian and definite factors), 2×2 blocks with a
// small diagonal and a large off-diagonal entry, so that every factor is well conditioned.
struct panel_values {
    std::mt19937_64 rng;
    bool hermitian;

    template <class T> T entry(int64_t width)
    {
        return random_value<T>(rng) * real_t<T>(0.5 / std::sqrt(double(std::max<int64_t>(width, 1))));
    }
    template <class T> T pivot(bool real_only)
    {
        std::uniform_real_distribution<double> magnitude(1.0, 2.0), angle(0.0, 6.283185307179586);
        const double m = magnitude(rng) * (std::uniform_int_distribution<int>(0, 1)(rng) ? 1 : -1);
        if constexpr (is_complex_v<T>)
            if (!real_only) {
                const double t = angle(rng);
                return T(real_t<T>(m * std::cos(t)), real_t<T>(m * std::sin(t)));
            }
        return T(real_t<T>(m));
    }
    template <class T> T small(bool real_only)
    {
        const T v = random_value<T>(rng) * real_t<T>(0.3);
        return real_only ? T(std::real(v)) : v;
    }
};

// The unit factor L = P(1)·L(1)·P(2)·L(2)··· of an n × n block in the lower form of the
// reference ?sytrf (entry(i, j) its entries, pivot(k) its 1-based pivots), written out: P(k)
// exchanges the pivot's last row with its target, L(k) holds the multipliers below the pivot.
template <class W, class Entry, class Pivot> dense<W> bk_unit_factor(int64_t n, Entry entry, Pivot pivot)
{
    dense<W> b = identity<W>(n);
    for (int64_t k = 0; k < n;) {
        const int64_t p = pivot(k), width = p < 0 ? 2 : 1, target = std::abs(p) - 1;
        for (int64_t i = 0; i < n; ++i)
            std::swap(b(i, k + width - 1), b(i, target));
        for (int64_t j = k; j < k + width; ++j)
            for (int64_t r = k + width; r < n; ++r)
                for (int64_t i = 0; i < n; ++i)
                    b(i, j) += b(i, r) * entry(r, j);
        k += width;
    }
    return b;
}

// D of such a block: 1×1 pivots on the diagonal, 2×2 ones with their subdiagonal entry e
// mirrored (conjugated when Hermitian).
template <class W, class Entry, class Pivot> dense<W> bk_block_diagonal(int64_t n, Entry entry, Pivot pivot, bool herm)
{
    dense<W> d(n);
    for (int64_t k = 0; k < n;) {
        const bool pair = pivot(k) < 0;
        d(k, k) = entry(k, k);
        if (pair) {
            d(k + 1, k + 1) = entry(k + 1, k + 1);
            d(k + 1, k) = entry(k + 1, k);
            d(k, k + 1) = conj_if(entry(k + 1, k), herm);
        }
        k += pair ? 2 : 1;
    }
    return d;
}

// The panel of supernode k: first column, columns, rows and its values (column-major).
template <class T, class I> struct typed_panel {
    int64_t first, cols, rows;
    T *l;
    T at(int64_t i, int64_t j) const { return l[i + j * rows]; }
};

template <class T, class I> typed_panel<T, I> typed_panel_of(typed_factor<T, I> &f, int64_t k)
{
    const int64_t first = f.super_ptr[size_t(k)] - 1, at = f.col_ptr[size_t(first)];
    return {first, int64_t(f.super_ptr[size_t(k + 1)]) - 1 - first, int64_t(f.col_ptr[size_t(first + 1)]) - at,
            f.l_values.data() + (at - 1)};
}

// The diagonal block of one supernode and its pivots, as the form lays them out. Entries the
// form leaves unused hold NaN, so that a kernel reading them is caught.
template <class T, class I> void fill_block(typed_factor<T, I> &f, const typed_panel<T, I> &p, panel_values &v)
{
    const int64_t nc = p.cols;
    const bool real_diagonal = f.hermitian() || f.form == factor_form::cholesky;
    auto set = [&](int64_t i, int64_t j, T x) { p.l[i + j * p.rows] = x; };
    for (int64_t j = 0; j < nc; ++j)
        for (int64_t i = 0; i < nc; ++i)
            set(i, j, T(std::numeric_limits<real_t<T>>::quiet_NaN()));
    for (int64_t k = 0; k < nc;) {
        const int64_t pivot_row = p.first + k;
        const bool pair = f.form == factor_form::bunch_kaufman && k + 1 < nc && v.rng() % 3 == 0;
        const int64_t width = pair ? 2 : 1;
        if (f.form == factor_form::lu || f.form == factor_form::diagonal_pivots) {
            f.row_pivots[size_t(pivot_row)] = I(k + 1 + int64_t(v.rng() % uint64_t(nc - k)));
            // No column interchanges for L·U; the same as the rows' for 1×1 pivots.
            f.col_pivots[size_t(pivot_row)] = f.form == factor_form::lu ? I(k + 1) : f.row_pivots[size_t(pivot_row)];
        } else if (f.form == factor_form::bunch_kaufman) {
            const int64_t target = k + width + int64_t(v.rng() % uint64_t(nc - k - width + 1));
            f.bk_pivots[size_t(pivot_row)] = I(pair ? -target : target);
            if (pair)
                f.bk_pivots[size_t(pivot_row + 1)] = I(-target);
        }
        if (pair) {
            const T e = v.pivot<T>(false);
            set(k, k, v.small<T>(f.hermitian()));
            set(k + 1, k + 1, v.small<T>(f.hermitian()));
            set(k + 1, k, e);
        } else {
            set(k, k, f.form == factor_form::cholesky ? T(std::abs(v.pivot<T>(true))) : v.pivot<T>(real_diagonal));
        }
        for (int64_t j = k; j < k + width; ++j)
            for (int64_t i = k + width; i < nc; ++i)
                set(i, j, v.entry<T>(nc));
        if (f.form == factor_form::diagonal_pivots)
            f.diagonal[size_t(pivot_row)] = p.at(k, k);
        k += width;
    }
    for (int64_t j = 0; j < nc; ++j)
        for (int64_t i = 0; i < j; ++i) {
            if (f.form == factor_form::lu)
                set(i, j, v.entry<T>(nc));
            else if (f.form == factor_form::cholesky)
                set(i, j, conj_if(p.at(j, i), true));
        }
}

// The block's factor as a dense nc × nc matrix B, so that the block column of the supernode is
// [B 0; L21 I]: P_sᵀ·L11 (row interchanges, unit L11), L11 (Cholesky), or the reference
// ?sytrf's product P(1)·L(1)·P(2)·L(2)··· (Bunch–Kaufman).
template <class T, class I> dense<wide_t<T>> block_factor(const typed_factor<T, I> &f, const typed_panel<T, I> &p)
{
    using W = wide_t<T>;
    const int64_t nc = p.cols;
    if (f.form == factor_form::bunch_kaufman)
        return bk_unit_factor<W>(nc, [&](int64_t i, int64_t j) { return W(p.at(i, j)); },
                                 [&](int64_t k) { return int64_t(f.bk_pivots[size_t(p.first + k)]); });
    dense<W> b(nc);
    for (int64_t j = 0; j < nc; ++j)
        for (int64_t i = j; i < nc; ++i)
            b(i, j) = i == j && f.form != factor_form::cholesky ? W(1) : W(p.at(i, j));
    if (f.form != factor_form::cholesky)
        for (int64_t k = nc - 1; k >= 0; --k) {
            const int64_t target = f.row_pivots[size_t(p.first + k)] - 1;
            for (int64_t j = 0; j < nc; ++j)
                std::swap(b(k, j), b(target, j));
        }
    return b;
}

// K = E_1·E_2···E_N, E_s the block column of supernode s as a matrix of order n.
template <class T, class I> dense<wide_t<T>> lower_product(typed_factor<T, I> &f)
{
    using W = wide_t<T>;
    dense<W> k = identity<W>(f.n);
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const typed_panel<T, I> p = typed_panel_of(f, s);
        const I *index = f.row_index.data() + (f.row_ptr[size_t(s)] - 1);
        const dense<W> b = block_factor(f, p);
        std::vector<W> column(size_t(f.n));
        dense<W> own(f.n);
        for (int64_t j = 0; j < p.cols; ++j)
            for (int64_t i = 0; i < f.n; ++i)
                own(i, j) = k(i, p.first + j);
        for (int64_t j = 0; j < p.cols; ++j) {
            std::fill(column.begin(), column.end(), W(0));
            for (int64_t q = 0; q < p.cols; ++q)
                for (int64_t i = 0; i < f.n; ++i)
                    column[size_t(i)] += own(i, q) * b(q, j);
            for (int64_t r = p.cols; r < p.rows; ++r)
                for (int64_t i = 0; i < f.n; ++i)
                    column[size_t(i)] += k(i, index[r] - 1) * W(p.at(r, j));
            for (int64_t i = 0; i < f.n; ++i)
                k(i, p.first + j) = column[size_t(i)];
        }
    }
    return k;
}

// U_N···U_1 for an L·U factor, U_s = [U11 U12; 0 I] over the supernode's rows.
template <class T, class I> dense<wide_t<T>> upper_product(typed_factor<T, I> &f)
{
    using W = wide_t<T>;
    dense<W> r = identity<W>(f.n);
    for (int64_t s = f.nsuper - 1; s >= 0; --s) {
        const typed_panel<T, I> p = typed_panel_of(f, s);
        const I *index = f.row_index.data() + (f.row_ptr[size_t(s)] - 1);
        const dense<W> old = r;
        for (int64_t c = 0; c < p.rows; ++c) {
            const int64_t col = c < p.cols ? p.first + c : index[c] - 1;
            for (int64_t i = 0; i < f.n; ++i) {
                W sum = c < p.cols ? W(0) : old(i, col);
                for (int64_t q = 0; q < std::min<int64_t>(c + 1, p.cols); ++q) {
                    const W u = c < p.cols ? W(p.at(q, c))
                                           : W(f.u_values[size_t(f.u_col_ptr[size_t(p.first + q)] - 1 + c - p.cols)]);
                    sum += old(i, p.first + q) * u;
                }
                r(i, col) = sum;
            }
        }
    }
    return r;
}

// D of an L·D·Lᵀ factor as a dense matrix: the diagonal, or the 1×1 and 2×2 blocks.
template <class T, class I> dense<wide_t<T>> diagonal_matrix(typed_factor<T, I> &f)
{
    using W = wide_t<T>;
    dense<W> d(f.n);
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const typed_panel<T, I> p = typed_panel_of(f, s);
        if (f.form == factor_form::diagonal_pivots) {
            for (int64_t k = 0; k < p.cols; ++k)
                d(p.first + k, p.first + k) = W(f.diagonal[size_t(p.first + k)]);
            continue;
        }
        const dense<W> block = bk_block_diagonal<W>(
            p.cols, [&](int64_t i, int64_t j) { return W(p.at(i, j)); },
            [&](int64_t k) { return int64_t(f.bk_pivots[size_t(p.first + k)]); }, f.hermitian());
        for (int64_t j = 0; j < p.cols; ++j)
            for (int64_t i = 0; i < p.cols; ++i)
                d(p.first + i, p.first + j) = block(i, j);
    }
    return d;
}

// The matrix types and the forms of their factors.
struct type_form {
    int64_t matrix_type;
    factor_form form;
    bool matched; // with a matching and scaling (the unsymmetric types)
};

inline std::string type_form_name(const type_form &t)
{
    static const char *forms[] = {"Cholesky", "LU", "1x1 pivots", "Bunch-Kaufman"};
    return "type " + std::to_string(t.matrix_type) + ", " + forms[int(t.form)] + (t.matched ? ", matched" : "");
}

template <class T> std::vector<type_form> type_forms()
{
    using ff = factor_form;
    if constexpr (is_complex_v<T>)
        return {{4, ff::cholesky, false},       {13, ff::lu, false},
                {13, ff::lu, true},             {3, ff::lu, false},
                {3, ff::lu, true},              {-4, ff::diagonal_pivots, false},
                {-4, ff::bunch_kaufman, false}, {6, ff::diagonal_pivots, false},
                {6, ff::bunch_kaufman, false}};
    else
        return {{2, ff::cholesky, false}, {11, ff::lu, false},          {11, ff::lu, true},
                {1, ff::lu, false},       {1, ff::lu, true},            {-2, ff::diagonal_pivots, false},
                {-2, ff::bunch_kaufman, false}};
}

template <class I> std::vector<I> random_permutation_of(int64_t n, std::mt19937_64 &rng)
{
    std::vector<I> p(static_cast<size_t>(n));
    std::iota(p.begin(), p.end(), I(0));
    std::shuffle(p.begin(), p.end(), rng);
    return p;
}

// A from the factored matrix M = P·C·Pᵀ: C[perm[i]][perm[j]] = M[i][j], and C = Πᵀ·Dr·A·Dc,
// so A[matching[j]][k] = C[j][k] / (s2[j]·Dc[k]).
template <class T, class I> void unfold(typed_factor<T, I> &f, const dense<wide_t<T>> &m)
{
    using W = wide_t<T>;
    dense<W> c(f.n);
    for (int64_t i = 0; i < f.n; ++i)
        for (int64_t j = 0; j < f.n; ++j)
            c(f.perm[size_t(i)], f.perm[size_t(j)]) = m(i, j);
    f.a = dense<W>(f.n);
    for (int64_t j = 0; j < f.n; ++j)
        for (int64_t k = 0; k < f.n; ++k) {
            const int64_t row = f.matching.empty() ? j : int64_t(f.matching[size_t(j)]);
            const double scale =
                f.scaling.empty() ? 1.0 : double(f.scaling[size_t(f.n + j)]) * double(f.scaling[size_t(k)]);
            f.a(row, k) = c(j, k) / scale;
        }
    f.a_row_ptr.assign(1, 0);
    for (int64_t i = 0; i < f.n; ++i) {
        for (int64_t j = 0; j < f.n; ++j)
            if (f.a(i, j) != W(0)) {
                f.a_col_idx.push_back(I(j));
                f.a_values.push_back(T(f.a(i, j)));
            }
        f.a_row_ptr.push_back(I(f.a_col_idx.size()));
    }
}

// The matrix the factor represents: K·R (L·U), K·D·Kᵀ or K·D·Kᴴ (L·D·Lᵀ), K·Kᴴ (Cholesky).
template <class T, class I> dense<wide_t<T>> factored_matrix(typed_factor<T, I> &f)
{
    const dense<wide_t<T>> k = lower_product(f);
    switch (f.form) {
    case factor_form::lu: return multiply(k, upper_product(f));
    case factor_form::cholesky: return multiply(k, k, true, true);
    default: return multiply(multiply(k, diagonal_matrix(f)), k, true, f.hermitian());
    }
}

// A factor of the given type and form on the shape, with random values, ordering, matching and
// scaling (the last two only when asked).
template <class T, class I>
void build_typed_factor(const random_shape &shape, const type_form &t, uint64_t seed, typed_factor<T, I> &f)
{
    auto to_index = [](const std::vector<int64_t> &v) { return std::vector<I>(v.begin(), v.end()); };
    f.n = shape.n;
    f.nsuper = shape.nsuper();
    f.matrix_type = t.matrix_type;
    f.form = t.form;
    f.pivoting = t.form == factor_form::bunch_kaufman ? 1 : 0;
    f.super_ptr = to_index(shape.super_ptr);
    f.col_ptr = to_index(shape.col_ptr);
    f.row_ptr = to_index(shape.row_ptr);
    f.row_index = to_index(shape.row_index);
    panel_values v{std::mt19937_64(seed), f.hermitian()};
    f.l_values.assign(size_t(shape.col_ptr.back() - 1), T(0));
    if (t.form == factor_form::lu) {
        f.u_col_ptr = to_index(shape.u_col_ptr);
        f.u_values.resize(size_t(shape.u_col_ptr.back() - 1));
        for (T &u : f.u_values)
            u = v.entry<T>(8);
    }
    if (t.form == factor_form::lu || t.form == factor_form::diagonal_pivots)
        f.row_pivots = f.col_pivots = std::vector<I>(size_t(f.n), I(0));
    if (t.form == factor_form::diagonal_pivots)
        f.diagonal.assign(size_t(f.n), T(0));
    if (t.form == factor_form::bunch_kaufman)
        f.bk_pivots.assign(size_t(f.n), I(0));
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const typed_panel<T, I> p = typed_panel_of(f, s);
        fill_block(f, p, v);
        for (int64_t j = 0; j < p.cols; ++j)
            for (int64_t i = p.cols; i < p.rows; ++i)
                p.l[i + j * p.rows] = v.entry<T>(p.cols);
    }
    f.perm = random_permutation_of<I>(f.n, v.rng);
    if (t.matched) {
        f.matching = random_permutation_of<I>(f.n, v.rng);
        std::uniform_real_distribution<double> scale(0.5, 2.0);
        f.scaling.resize(size_t(2 * f.n));
        for (auto &x : f.scaling)
            x = real_t<T>(scale(v.rng));
    }
    unfold(f, factored_matrix(f));
}
// The exported drivers, refinement and residual routines of each value kind.
template <bool Complex> struct kind_routines;
template <> struct kind_routines<false> {
    static constexpr auto seq = zel_pds_pds_slv_nrhs_seq_real, par = zel_pds_pds_slv_nrhs_par_real;
    static constexpr auto refine = zel_pds_iter_ref_real;
    static constexpr auto residual = zel_pds_pds_compute_residual_iter_ref_real;
    static constexpr auto measure = zel_pds_pds_compute_scaled_norm_real;
};
template <> struct kind_routines<true> {
    static constexpr auto seq = zel_pds_pds_slv_nrhs_seq_cmplx, par = zel_pds_pds_slv_nrhs_par_cmplx;
    static constexpr auto refine = zel_pds_iter_ref_cmplx;
    static constexpr auto residual = zel_pds_pds_compute_residual_iter_ref_cmplx;
    static constexpr auto measure = zel_pds_pds_compute_scaled_norm_cmplx;
};
template <class T> using routines = kind_routines<zel::is_complex_v<T>>;

} // namespace zel::test
