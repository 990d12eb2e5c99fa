// Shared by the solver's interface tests: the exported members of each value type and width,
// positive definite test matrices, the caller's CSR forms of them, independent measures of a
// solution (residual, backward error, a dense solve in long double) and one checker of every
// factor a test builds.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "zel/pds.h"
#include "zel/sparse_handle.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace pds_test {

constexpr int ok = ZEL_PDS_STATUS_SUCCESS;
constexpr int alloc_failed = ZEL_PDS_STATUS_ALLOC_FAILED;
constexpr int invalid = ZEL_PDS_STATUS_INVALID_VALUE;
constexpr int not_supported = ZEL_PDS_STATUS_NOT_SUPPORTED;
constexpr int wrong_phase = ZEL_PDS_STATUS_WRONG_PHASE;
constexpr int not_pd = ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE;

template <class T, class I> struct api;
#define ZEL_TEST_PDS_API(P, C, T, W, I)                                            \
    template <> struct api<T, I> {                                                 \
        using c_type = C;                                                          \
        using factor = zel_pds_factor_##W;                                         \
        using handle = zel_sparse_matrix_##W;                                      \
        static constexpr const char *name = #P "_" #W;                             \
        static constexpr auto create = zel_pds_##P##_create;                       \
        static constexpr auto factorise = zel_pds_##P##_factorise;                 \
        static constexpr auto solve = zel_pds_##P##_solve;                         \
        static constexpr auto set_permutation = zel_pds_set_permutation_##W;       \
        static constexpr auto analyse_csr = zel_pds_analyse_csr_##W;               \
        static constexpr auto analyse_sparse = zel_pds_analyse_sparse_##W;         \
        static constexpr auto factorise_sparse = zel_pds_factorise_sparse_##W;     \
        static constexpr auto export_factor = zel_pds_export_factor_##W;           \
        static constexpr auto create_csr = zel_sparse_##P##_create_csr_##W;        \
        static constexpr auto create_csc = zel_sparse_##P##_create_csc_##W;        \
        static constexpr auto destroy_handle = zel_sparse_destroy_##W;             \
    };
ZEL_SPARSE_MEMBERS(ZEL_TEST_PDS_API)
#undef ZEL_TEST_PDS_API

// One exported member: value type T, index type I, and what goes with them.
template <class T_, class I_> struct member {
    using T = T_;
    using I = I_;
    using A = api<T, I>;
    using C = typename A::c_type;
    using R = zel::real_t<T>;
    static constexpr bool complex = zel::is_complex_v<T>;
    // The positive definite type of the value type.
    static constexpr int matrix_type = complex ? ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE
                                               : ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE;
};
template <class, class... M> using drop_first = ::testing::Types<M...>;
#define ZEL_TEST_PDS_MEMBER(P, C, T, W, I) , member<T, I>
using all_members = drop_first<void ZEL_SPARSE_MEMBERS(ZEL_TEST_PDS_MEMBER)>;
#undef ZEL_TEST_PDS_MEMBER
struct member_names {
    template <class M> static std::string GetName(int) { return M::A::name; }
};

template <class T> auto *c_ptr(T *p) { return reinterpret_cast<typename api<T, int32_t>::c_type *>(p); }
template <class T> auto *c_ptr(const T *p) { return reinterpret_cast<const typename api<T, int32_t>::c_type *>(p); }

template <class T> constexpr double eps = std::numeric_limits<zel::real_t<T>>::epsilon();
template <class T> T conj(T v) { return zel::conj_if(v, true); }

// The measures are taken in long double, the value type's complex form when T is complex.
template <class T>
using wide = std::conditional_t<zel::is_complex_v<T>, std::complex<long double>, long double>;
template <class T> wide<T> widen(T v)
{
    if constexpr (zel::is_complex_v<T>)
        return {v.real(), v.imag()};
    else
        return v;
}
template <class W> W wide_conj(W v)
{
    if constexpr (std::is_floating_point_v<W>)
        return v;
    else
        return std::conj(v);
}

template <class T> T make_value(double re, double im)
{
    if constexpr (zel::is_complex_v<T>)
        return T(zel::real_t<T>(re), zel::real_t<T>(im));
    else
        return T(re);
}

// Halves of small integers: exact in every precision, so that each precision solves the same
// matrix; never zero.
template <class T> T random_value(std::mt19937_64 &rng)
{
    std::uniform_int_distribution<int> d(1, 16);
    auto part = [&] { return (d(rng) - 8.5) / 2.0; };
    return make_value<T>(part(), part());
}

// A Hermitian matrix by rows, 0-based, both triangles, columns ascending.
template <class T> struct sym_csr {
    int64_t n = 0;
    std::vector<int64_t> ptr{0}, idx;
    std::vector<T> val;
    int64_t entries() const { return int64_t(idx.size()); }
    T at(int64_t i, int64_t j) const
    {
        for (int64_t p = ptr[i]; p < ptr[i + 1]; ++p)
            if (idx[p] == j)
                return val[p];
        return T(0);
    }
};

// Off-diagonal entries (i > j) with their values, mirrored and given a diagonal: `diagonal`
// adds to the sum of the row's off-diagonal magnitudes (|re| + |im|, exact in every precision),
// so a positive value makes the matrix diagonally dominant, hence positive definite.
struct off_entry {
    int64_t i, j;
    double re, im;
};
template <class T> sym_csr<T> hermitian(int64_t n, const std::vector<off_entry> &lower, double diagonal)
{
    std::vector<std::vector<std::pair<int64_t, T>>> rows(n);
    std::vector<double> weight(n, 0.0);
    for (const off_entry &e : lower) {
        const T v = make_value<T>(e.re, e.im);
        rows[e.i].emplace_back(e.j, v);
        rows[e.j].emplace_back(e.i, conj(v));
        const double w = std::abs(e.re) + (zel::is_complex_v<T> ? std::abs(e.im) : 0.0);
        weight[e.i] += w;
        weight[e.j] += w;
    }
    sym_csr<T> a;
    a.n = n;
    for (int64_t i = 0; i < n; ++i) {
        rows[i].emplace_back(i, make_value<T>(weight[i] + diagonal, 0));
        std::sort(rows[i].begin(), rows[i].end(), [](auto &x, auto &y) { return x.first < y.first; });
        for (auto &[j, v] : rows[i]) {
            a.idx.push_back(j);
            a.val.push_back(v);
        }
        a.ptr.push_back(a.entries());
    }
    return a;
}

// Positive definite matrices of varied structure; Laplacians keep their stencil (-1, or a
// unit-modulus complex coupling) and are not strictly dominant.
template <class T> std::vector<std::pair<std::string, sym_csr<T>>> structures(uint64_t seed = 11)
{
    std::mt19937_64 rng(seed);
    auto entry = [&](int64_t i, int64_t j) {
        const T v = random_value<T>(rng);
        return off_entry{i, j, double(std::real(v)), double(std::imag(v))};
    };
    auto laplacian = [&](int64_t k, int dims) {
        const int64_t n = dims == 2 ? k * k : k * k * k;
        std::vector<off_entry> e;
        for (int64_t v = 0; v < n; ++v)
            for (int64_t stride = 1, d = 0; d < dims; ++d, stride *= k)
                if ((v / stride) % k + 1 < k)
                    e.push_back(zel::is_complex_v<T> ? off_entry{v + stride, v, -0.6, 0.8} : off_entry{v + stride, v, -1, 0});
        sym_csr<T> a = hermitian<T>(n, e, 0.0);
        for (int64_t i = 0; i < n; ++i) // the stencil's diagonal, whatever the boundary
            for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
                if (a.idx[p] == i)
                    a.val[p] = T(2 * dims);
        return a;
    };
    std::vector<off_entry> random, band, arrow, blocks, dense;
    std::bernoulli_distribution sparse_keep(0.06), dense_keep(0.45);
    for (int64_t i = 0; i < 60; ++i)
        for (int64_t j = 0; j < i; ++j)
            if (sparse_keep(rng))
                random.push_back(entry(i, j));
    for (int64_t i = 0; i < 50; ++i)
        for (int64_t j = std::max<int64_t>(0, i - 4); j < i; ++j)
            band.push_back(entry(i, j));
    for (int64_t i = 0; i < 39; ++i)
        arrow.push_back(entry(39, i));
    for (int64_t i = 0; i < 48; ++i)
        for (int64_t j = i - i % 8; j < i; ++j)
            if ((i * 31 + j * 17) % 4 != 0)
                blocks.push_back(entry(i, j));
    for (int64_t i = 0; i < 30; ++i)
        for (int64_t j = 0; j < i; ++j)
            if (dense_keep(rng))
                dense.push_back(entry(i, j));
    return {{"random sparse", hermitian<T>(60, random, 1.0)},
            {"banded", hermitian<T>(50, band, 0.5)},
            {"arrow", hermitian<T>(40, arrow, 2.0)},
            {"block diagonal", hermitian<T>(48, blocks, 1.0)},
            {"random dense", hermitian<T>(30, dense, 0.25)},
            {"one column", hermitian<T>(1, {}, 3.0)},
            {"2-D Laplacian", laplacian(8, 2)},
            {"3-D Laplacian", laplacian(4, 3)}};
}

// How the caller hands the matrix over: both triangles, or the upper one (optionally with the
// lower entries left in, carrying values that must be ignored); base 0 or 1; columns of each
// row in a shuffled order when asked.
struct layout {
    int storage = ZEL_PDS_STORAGE_FULL;
    int base = 0;
    bool lower_noise = false;
    bool shuffled = false;
    std::string name() const
    {
        return std::string(storage == ZEL_PDS_STORAGE_FULL ? "full" : lower_noise ? "upper+noise" : "upper") +
               " base " + std::to_string(base) + (shuffled ? " shuffled" : "");
    }
};
inline std::vector<layout> layouts()
{
    return {{ZEL_PDS_STORAGE_FULL, 0, false, false},
            {ZEL_PDS_STORAGE_FULL, 1, false, true},
            {ZEL_PDS_STORAGE_UPPER, 0, true, true},
            {ZEL_PDS_STORAGE_UPPER, 1, false, false}};
}

template <class T, class I> struct caller_csr {
    I n = 0;
    int base = 0, storage = ZEL_PDS_STORAGE_FULL;
    std::vector<I> ptr, idx;
    std::vector<T> val;
};

template <class T, class I> caller_csr<T, I> to_caller(const sym_csr<T> &a, const layout &l, uint64_t seed = 5)
{
    std::mt19937_64 rng(seed);
    caller_csr<T, I> c;
    c.n = I(a.n);
    c.base = l.base;
    c.storage = l.storage;
    c.ptr.push_back(I(l.base));
    for (int64_t i = 0; i < a.n; ++i) {
        const size_t first = c.idx.size();
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p) {
            const bool lower = a.idx[p] < i;
            if (lower && l.storage == ZEL_PDS_STORAGE_UPPER && !l.lower_noise)
                continue;
            c.idx.push_back(I(a.idx[p] + l.base));
            c.val.push_back(lower && l.storage == ZEL_PDS_STORAGE_UPPER ? make_value<T>(-1e3, 7) : a.val[p]);
        }
        if (l.shuffled) {
            std::vector<size_t> order(c.idx.size() - first);
            std::iota(order.begin(), order.end(), first);
            std::shuffle(order.begin(), order.end(), rng);
            std::vector<I> idx;
            std::vector<T> val;
            for (size_t q : order) {
                idx.push_back(c.idx[q]);
                val.push_back(c.val[q]);
            }
            std::copy(idx.begin(), idx.end(), c.idx.begin() + first);
            std::copy(val.begin(), val.end(), c.val.begin() + first);
        }
        c.ptr.push_back(I(c.idx.size() + l.base));
    }
    return c;
}

// A solver destroyed with its holder.
struct solver_holder {
    zel_pds_solver *s = nullptr;
    solver_holder() = default;
    solver_holder(const solver_holder &) = delete;
    solver_holder &operator=(const solver_holder &) = delete;
    ~solver_holder() { zel_pds_destroy(s); }
    operator zel_pds_solver *() const { return s; }
};

template <class M> int create(solver_holder &h) { return M::A::create(&h.s, M::matrix_type); }

inline zel_pds_options options_with(int ordering, int refinement_steps = 2, int amalgamation = 1, int operation = 0)
{
    zel_pds_options o;
    zel_pds_default_options(&o);
    o.ordering = ordering;
    o.refinement_max_steps = refinement_steps;
    o.amalgamation = amalgamation;
    o.operation = operation;
    return o;
}

template <class M> int analyse(zel_pds_solver *s, const caller_csr<typename M::T, typename M::I> &c)
{
    return M::A::analyse_csr(s, c.n, c.ptr.data(), c.idx.data(), c.base, c.storage);
}
template <class M> int factorise(zel_pds_solver *s, const caller_csr<typename M::T, typename M::I> &c)
{
    return M::A::factorise(s, c_ptr(c.val.data()));
}

// A block of right-hand sides (or solutions): n rows of nrhs columns, leading dimension ld,
// the rows beyond n holding a sentinel that nothing may overwrite.
template <class T> struct block {
    int64_t n = 0, nrhs = 0, ld = 1;
    std::vector<T> v;
    block() = default;
    block(int64_t rows, int64_t cols, int64_t lead, T fill)
        : n(rows), nrhs(cols), ld(lead), v(static_cast<size_t>(std::max<int64_t>(1, lead * cols)), fill)
    {
    }
    T &at(int64_t i, int64_t j) { return v[size_t(i + j * ld)]; }
    T at(int64_t i, int64_t j) const { return v[size_t(i + j * ld)]; }
    T *data() { return v.data(); }
};
template <class T> T sentinel() { return make_value<T>(-7.25e3, 3.5); }
template <class T> block<T> random_block(std::mt19937_64 &rng, int64_t n, int64_t nrhs, int64_t ld)
{
    block<T> b(n, nrhs, ld, sentinel<T>());
    for (int64_t j = 0; j < nrhs; ++j)
        for (int64_t i = 0; i < n; ++i)
            b.at(i, j) = random_value<T>(rng);
    return b;
}
// Bitwise comparison of whole arrays (padding included).
template <class T> bool same_bits(const std::vector<T> &x, const std::vector<T> &y)
{
    return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(T)) == 0;
}
template <class T> bool untouched(const block<T> &x, const std::vector<T> &before) { return same_bits(x.v, before); }

// op(A)·x of the Hermitian matrix in long double: Aᵀ = conj(A) for it, Aᴴ = A.
template <class T> std::vector<wide<T>> apply(const sym_csr<T> &a, int operation, const block<T> &x, int64_t col)
{
    std::vector<wide<T>> y(static_cast<size_t>(a.n), wide<T>(0));
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p) {
            const wide<T> v = widen(a.val[p]);
            y[i] += (operation == ZEL_PDS_SOLVE_T ? wide_conj(v) : v) * widen(x.at(a.idx[p], col));
        }
    return y;
}

// Componentwise backward error max_i |b − op(A)·x|_i / (|op(A)|·|x| + |b|)_i and the normwise
// ‖b − op(A)·x‖∞ / (‖A‖∞‖x‖∞ + ‖b‖∞), worst column of each.
struct backward {
    long double componentwise = 0, normwise = 0;
};
template <class T> backward backward_error(const sym_csr<T> &a, int operation, const block<T> &b, const block<T> &x)
{
    backward out;
    long double norm_a = 0;
    std::vector<long double> scale(static_cast<size_t>(a.n), 0);
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
            scale[i] += std::abs(widen(a.val[p]));
    for (long double s : scale)
        norm_a = std::max(norm_a, s);
    for (int64_t j = 0; j < b.nrhs; ++j) {
        const std::vector<wide<T>> ax = apply(a, operation, x, j);
        long double r_max = 0, x_max = 0, b_max = 0;
        for (int64_t i = 0; i < a.n; ++i) {
            long double bound = std::abs(widen(b.at(i, j)));
            for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
                bound += std::abs(widen(a.val[p])) * std::abs(widen(x.at(a.idx[p], j)));
            const long double r = std::abs(widen(b.at(i, j)) - ax[i]);
            if (r > 0)
                out.componentwise = std::max(out.componentwise, bound > 0 ? r / bound : INFINITY);
            r_max = std::max(r_max, r);
            x_max = std::max(x_max, std::abs(widen(x.at(i, j))));
            b_max = std::max(b_max, std::abs(widen(b.at(i, j))));
        }
        if (r_max > 0)
            out.normwise = std::max(out.normwise, r_max / (norm_a * x_max + b_max));
    }
    return out;
}

// The solution of op(A)·X = B by a dense Cholesky in long double (op(A) is Hermitian positive
// definite too), and ‖A‖∞‖A⁻¹‖∞.
template <class T> struct dense_oracle {
    int64_t n = 0;
    std::vector<wide<T>> l; // row-major, lower triangle
    long double condition = 0;
    bool conjugated = false;

    dense_oracle(const sym_csr<T> &a, bool conjugate) : n(a.n), l(static_cast<size_t>(a.n * a.n), wide<T>(0)), conjugated(conjugate)
    {
        for (int64_t i = 0; i < n; ++i)
            for (int64_t p = a.ptr[i]; p < a.ptr[i + 1]; ++p)
                l[i * n + a.idx[p]] = conjugate ? wide_conj(widen(a.val[p])) : widen(a.val[p]);
        long double norm = 0;
        for (int64_t i = 0; i < n; ++i) {
            long double s = 0;
            for (int64_t j = 0; j < n; ++j)
                s += std::abs(l[i * n + j]);
            norm = std::max(norm, s);
        }
        for (int64_t j = 0; j < n; ++j) {
            wide<T> d = l[j * n + j];
            for (int64_t k = 0; k < j; ++k)
                d -= l[j * n + k] * wide_conj(l[j * n + k]);
            const long double pivot = std::sqrt(std::real(d));
            l[j * n + j] = pivot;
            for (int64_t i = j + 1; i < n; ++i) {
                wide<T> s = l[i * n + j];
                for (int64_t k = 0; k < j; ++k)
                    s -= l[i * n + k] * wide_conj(l[j * n + k]);
                l[i * n + j] = s / pivot;
            }
        }
        long double inverse_norm = 0; // A⁻¹ is Hermitian: its ∞-norm is its largest column sum
        for (int64_t j = 0; j < n; ++j) {
            std::vector<wide<T>> e(static_cast<size_t>(n), wide<T>(0));
            e[j] = 1;
            solve(e);
            long double s = 0;
            for (const wide<T> &v : e)
                s += std::abs(v);
            inverse_norm = std::max(inverse_norm, s);
        }
        condition = norm * inverse_norm;
    }

    void solve(std::vector<wide<T>> &x) const
    {
        for (int64_t i = 0; i < n; ++i) {
            for (int64_t k = 0; k < i; ++k)
                x[i] -= l[i * n + k] * x[k];
            x[i] /= l[i * n + i];
        }
        for (int64_t i = n - 1; i >= 0; --i) {
            for (int64_t k = i + 1; k < n; ++k)
                x[i] -= wide_conj(l[k * n + i]) * x[k];
            x[i] /= l[i * n + i];
        }
    }

    // max over columns of ‖x − x̂‖∞ / ‖x̂‖∞.
    long double forward_error(const block<T> &b, const block<T> &x) const
    {
        long double worst = 0;
        for (int64_t j = 0; j < b.nrhs; ++j) {
            std::vector<wide<T>> e(static_cast<size_t>(n));
            for (int64_t i = 0; i < n; ++i)
                e[i] = widen(b.at(i, j));
            solve(e);
            long double d = 0, m = 0;
            for (int64_t i = 0; i < n; ++i) {
                d = std::max(d, std::abs(widen(x.at(i, j)) - e[i]));
                m = std::max(m, std::abs(e[i]));
            }
            worst = std::max(worst, m > 0 ? d / m : d);
        }
        return worst;
    }
};

// What a solve must reach: with refinement, a componentwise backward error of a few ulps (or
// the refinement's tolerance, when that is looser); without it, a normwise one of order n·ε.
template <class T> struct solve_limits {
    double componentwise, normwise;
};
template <class T> solve_limits<T> limits_for(const zel_pds_options &o, int64_t n)
{
    if (o.refinement_max_steps > 0)
        return {std::max(16 * eps<T>, 2 * std::pow(10.0, -o.refinement_exponent)), 16 * eps<T>};
    return {INFINITY, 8 * double(std::max<int64_t>(n, 1)) * eps<T>};
}

// Checks a solution: backward errors within the limits, the forward error against the dense
// solution within what the backward error and the condition allow, the sentinel rows intact.
template <class T>
void expect_solution(const sym_csr<T> &a, int operation, const block<T> &b, const block<T> &x,
                     const solve_limits<T> &lim, const std::type_identity_t<dense_oracle<T>> *oracle = nullptr)
{
    const backward be = backward_error(a, operation, b, x);
    EXPECT_LE(double(be.componentwise), lim.componentwise) << "componentwise backward error";
    EXPECT_LE(double(be.normwise), lim.normwise) << "normwise backward error";
    for (int64_t j = 0; j < x.nrhs; ++j)
        for (int64_t i = x.n; i < x.ld; ++i)
            ASSERT_EQ(x.at(i, j), sentinel<T>()) << "padding row " << i << " of column " << j << " written";
    if (oracle != nullptr) {
        ASSERT_EQ(oracle->conjugated, operation == ZEL_PDS_SOLVE_T && zel::is_complex_v<T>);
        const long double omega = std::max<long double>(be.normwise, eps<T>);
        EXPECT_LE(double(oracle->forward_error(b, x)), double(4 * oracle->condition * omega))
            << "forward error against the dense solution (condition " << double(oracle->condition) << ")";
    }
}

// Sizes of a factor as the statistics report them, summed over its supernodes.
struct factor_sizes {
    int64_t entries = 0, max_rows = 0, max_cols = 0;
    double flops = 0;
};

// The factor's arrays (zel_pds_export_factor_*) against their invariants: a permutation,
// supernodes covering 1 … n, each panel nrows long in every column, row lists with the own
// columns first and then strictly ascending rows beyond them, and the rows below a supernode
// present in the supernode of the first of them (its updates have somewhere to land).
template <class M> void expect_factor_structure(const typename M::A::factor &f, factor_sizes &sizes)
{
    using I = typename M::I;
    const int64_t n = f.n, ns = f.nsuper;
    ASSERT_TRUE(ns >= (n > 0) && ns <= n) << "nsuper " << ns;
    ASSERT_TRUE(f.u_col_ptr == nullptr && f.u_values == nullptr && f.row_pivots == nullptr && f.col_pivots == nullptr);
    ASSERT_TRUE(n == 0 || (f.super_ptr && f.col_ptr && f.row_ptr && f.row_index && f.l_values && f.perm));
    if (n == 0)
        return;
    std::vector<bool> seen(static_cast<size_t>(n), false);
    for (int64_t k = 0; k < n; ++k) {
        ASSERT_TRUE(f.perm[k] >= 0 && f.perm[k] < n && !seen[f.perm[k]]) << "perm[" << k << "]";
        seen[f.perm[k]] = true;
    }
    ASSERT_TRUE(f.super_ptr[0] == 1 && f.super_ptr[ns] == n + 1 && f.row_ptr[0] == 1 && f.col_ptr[0] == 1);
    std::vector<int64_t> owner(static_cast<size_t>(n));
    for (int64_t s = 0; s < ns; ++s) {
        ASSERT_TRUE(f.super_ptr[s] < f.super_ptr[s + 1] && f.row_ptr[s] < f.row_ptr[s + 1]) << "supernode " << s;
        const int64_t first = f.super_ptr[s] - 1, cols = f.super_ptr[s + 1] - 1 - first;
        const int64_t rows = f.row_ptr[s + 1] - f.row_ptr[s];
        ASSERT_GE(rows, cols) << "supernode " << s;
        const I *list = f.row_index + (f.row_ptr[s] - 1);
        for (int64_t t = 0; t < cols; ++t) {
            owner[first + t] = s;
            ASSERT_EQ(list[t], first + t + 1) << "own column " << t << " of supernode " << s;
            ASSERT_EQ(f.col_ptr[first + t + 1] - f.col_ptr[first + t], rows) << "column " << first + t;
            sizes.flops += double(rows - t) * double(rows - t);
        }
        for (int64_t r = cols; r < rows; ++r)
            ASSERT_TRUE(list[r] > (r == cols ? first + cols : list[r - 1]) && list[r] <= n)
                << "row " << r << " of supernode " << s;
        sizes.entries += cols * (cols + 1) / 2 + cols * (rows - cols);
        sizes.max_rows = std::max(sizes.max_rows, rows);
        sizes.max_cols = std::max(sizes.max_cols, cols);
    }
    for (int64_t s = 0; s < ns; ++s) {
        const int64_t cols = f.super_ptr[s + 1] - f.super_ptr[s], rows = f.row_ptr[s + 1] - f.row_ptr[s];
        if (rows == cols)
            continue;
        const I *list = f.row_index + (f.row_ptr[s] - 1);
        const int64_t p = owner[list[cols] - 1];
        const I *parent = f.row_index + (f.row_ptr[p] - 1), *parent_end = f.row_index + (f.row_ptr[p + 1] - 1);
        for (int64_t r = cols; r < rows; ++r)
            ASSERT_TRUE(std::binary_search(parent, parent_end, list[r]))
                << "row " << list[r] << " of supernode " << s << " missing from supernode " << p;
    }
}

// The statistics describe the factor they came with.
template <class M> void expect_statistics_of(const zel_pds_statistics &st, int64_t n, int64_t nsuper, const factor_sizes &z)
{
    EXPECT_EQ(st.n, n);
    EXPECT_EQ(st.supernodes, nsuper);
    EXPECT_EQ(st.factor_entries, z.entries);
    EXPECT_EQ(st.max_supernode_rows, z.max_rows);
    EXPECT_EQ(st.max_supernode_cols, z.max_cols);
    EXPECT_EQ(st.factor_flops, (M::complex ? 4 : 1) * z.flops);
    EXPECT_EQ(st.failed_column, -1);
    // Beyond the estimate only the sweeps' rows that a solve of several right-hand sides keeps:
    // at most (largest panel + n) rows of 16 values.
    const int64_t sweeps = (z.max_rows + n) * 16 * int64_t(sizeof(typename M::T));
    EXPECT_LE(st.memory_used, st.memory_estimate + sweeps);
    EXPECT_TRUE(n == 0 || st.memory_used > 0);
}

// L column by column, rows in the factored numbering; checks on the way that each diagonal
// is real and positive and that each diagonal block holds L11ᴴ above its diagonal.
template <class M>
void factor_columns(const typename M::A::factor &f, std::vector<std::vector<std::pair<int64_t, wide<typename M::T>>>> &out)
{
    using T = typename M::T;
    const T *values = static_cast<const T *>(f.l_values);
    out.assign(static_cast<size_t>(f.n), {});
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const int64_t first = f.super_ptr[s] - 1, cols = f.super_ptr[s + 1] - 1 - first;
        const int64_t rows = f.row_ptr[s + 1] - f.row_ptr[s];
        const auto *list = f.row_index + (f.row_ptr[s] - 1);
        const T *panel = values + (f.col_ptr[first] - 1);
        for (int64_t t = 0; t < cols; ++t) {
            const T d = panel[t + t * rows];
            ASSERT_TRUE(std::real(d) > 0 && std::imag(d) == 0) << "diagonal of column " << first + t;
            for (int64_t u = t + 1; u < cols; ++u)
                ASSERT_EQ(panel[t + u * rows], conj(panel[u + t * rows])) << "mirror in supernode " << s;
            for (int64_t r = t; r < rows; ++r)
                out[first + t].emplace_back(list[r] - 1, widen(panel[r + t * rows]));
        }
    }
}

// L·Lᴴ against P·A·Pᵀ within Cholesky's backward error, |L·Lᴴ − P·A·Pᵀ| ≤ c·|L|·|Lᴴ|: entry by
// entry for small n, applied to a random vector for any n.
template <class T, class I>
void expect_reconstruction(const std::vector<std::vector<std::pair<int64_t, wide<T>>>> &columns, const sym_csr<T> &a,
                           const I *perm, long double c)
{
    const int64_t n = a.n;
    const size_t nn = static_cast<size_t>(n);
    if (n <= 200) {
        std::vector<wide<T>> product(nn * nn, wide<T>(0));
        std::vector<long double> bound(nn * nn, 0);
        for (const auto &column : columns)
            for (const auto &[i, li] : column)
                for (const auto &[j, lj] : column) {
                    product[i * n + j] += li * wide_conj(lj);
                    bound[i * n + j] += std::abs(li) * std::abs(lj);
                }
        for (int64_t i = 0; i < n; ++i)
            for (int64_t j = 0; j < n; ++j)
                ASSERT_LE(std::abs(product[i * n + j] - widen(a.at(perm[i], perm[j]))), c * bound[i * n + j])
                    << "L·Lᴴ at (" << i << ", " << j << ") of the permuted matrix";
        return;
    }
    std::mt19937_64 rng(nn);
    std::vector<int64_t> inverse(nn);
    std::vector<wide<T>> v(nn), w(nn, wide<T>(0)), y(nn, wide<T>(0));
    std::vector<long double> av(nn), aw(nn, 0), ay(nn, 0);
    for (int64_t k = 0; k < n; ++k) {
        inverse[perm[k]] = k;
        v[k] = widen(random_value<T>(rng));
        av[k] = std::abs(v[k]);
    }
    for (int64_t k = 0; k < n; ++k) // w = Lᴴ·v, then y = L·w
        for (const auto &[i, lik] : columns[k]) {
            w[k] += wide_conj(lik) * v[i];
            aw[k] += std::abs(lik) * av[i];
        }
    for (int64_t k = 0; k < n; ++k)
        for (const auto &[i, lik] : columns[k]) {
            y[i] += lik * w[k];
            ay[i] += std::abs(lik) * aw[k];
        }
    for (int64_t i = 0; i < n; ++i) {
        wide<T> pap(0);
        for (int64_t p = a.ptr[perm[i]]; p < a.ptr[perm[i] + 1]; ++p)
            pap += widen(a.val[p]) * v[inverse[a.idx[p]]];
        ASSERT_LE(std::abs(y[i] - pap), c * ay[i]) << "(L·Lᴴ − P·A·Pᵀ)·v at row " << i;
    }
}

// The whole check of one factor of the matrix a, with the statistics that came with it.
template <class M>
void expect_valid_factor(const typename M::A::factor &f, const sym_csr<typename M::T> &a, const zel_pds_statistics &st)
{
    ASSERT_EQ(f.n, a.n);
    factor_sizes sizes;
    ASSERT_NO_FATAL_FAILURE(expect_factor_structure<M>(f, sizes));
    expect_statistics_of<M>(st, f.n, f.nsuper, sizes);
    EXPECT_EQ(st.matrix_entries, a.entries());
    std::vector<std::vector<std::pair<int64_t, wide<typename M::T>>>> columns;
    ASSERT_NO_FATAL_FAILURE(factor_columns<M>(f, columns));
    expect_reconstruction(columns, a, f.perm, (sizes.max_rows + 2) * 2 * eps<typename M::T>);
}

// Exports the solver's factor and checks it.
template <class M> void expect_valid_solver_factor(zel_pds_solver *s, const sym_csr<typename M::T> &a)
{
    typename M::A::factor f;
    zel_pds_statistics st;
    ASSERT_EQ(M::A::export_factor(s, &f), ok);
    ASSERT_EQ(zel_pds_get_statistics(s, &st), ok);
    expect_valid_factor<M>(f, a, st);
}

} // namespace pds_test
