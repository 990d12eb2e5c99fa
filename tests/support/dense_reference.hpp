// Independent dense reference computations shared by the dense test programs.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "zel_internal/value_traits.hpp"

namespace zel::test {

template <class T> using real = zel::real_t<T>;
template <class T> constexpr real<T> eps = std::numeric_limits<real<T>>::epsilon();
template <class T> T conj(T x) { return zel::conj_if(x, true); }

// Column-major m x n matrix with leading dimension ld.
template <class T> struct matrix {
    int64_t m = 0, n = 0, ld = 1;
    std::vector<T> v;
    matrix(int64_t rows, int64_t cols, int64_t lead = 0)
        : m(rows), n(cols), ld(std::max<int64_t>({1, rows, lead})),
          v(static_cast<size_t>(ld * std::max<int64_t>(1, cols)))
    {
    }
    T &operator()(int64_t i, int64_t j) { return v[static_cast<size_t>(i + j * ld)]; }
    T operator()(int64_t i, int64_t j) const { return v[static_cast<size_t>(i + j * ld)]; }
    T *data() { return v.data(); }
};

template <class T> T random_value(std::mt19937_64 &rng)
{
    std::uniform_real_distribution<double> d(-1.0, 1.0);
    if constexpr (zel::is_complex_v<T>)
        return T(real<T>(d(rng)), real<T>(d(rng)));
    else
        return T(real<T>(d(rng)));
}

// Random entries in [-1, 1]; the padding below a larger leading dimension too, so that a routine
// touching it is caught.
template <class T> matrix<T> random_matrix(int64_t m, int64_t n, uint64_t seed, int64_t lead = 0)
{
    std::mt19937_64 rng(seed);
    matrix<T> a(m, n, lead);
    for (T &x : a.v)
        x = random_value<T>(rng);
    return a;
}

// Random entries with n added on the diagonal: LU without pivoting is stable on it.
template <class T> matrix<T> dominant_matrix(int64_t n, uint64_t seed)
{
    matrix<T> a = random_matrix<T>(n, n, seed);
    for (int64_t i = 0; i < n; ++i)
        a(i, i) += T(real<T>(n));
    return a;
}

// B*B^H + n*I: Hermitian positive definite.
template <class T> matrix<T> hpd_matrix(int64_t n, uint64_t seed)
{
    matrix<T> b = random_matrix<T>(n, n, seed), a(n, n);
    for (int64_t i = 0; i < n; ++i)
        for (int64_t j = 0; j < n; ++j) {
            T s(0);
            for (int64_t k = 0; k < n; ++k)
                s += b(i, k) * conj(b(j, k));
            a(i, j) = s + (i == j ? T(real<T>(n)) : T(0));
        }
    return a;
}

template <class T> matrix<T> product(const matrix<T> &a, const matrix<T> &b)
{
    matrix<T> c(a.m, b.n);
    for (int64_t j = 0; j < b.n; ++j)
        for (int64_t k = 0; k < a.n; ++k)
            for (int64_t i = 0; i < a.m; ++i)
                c(i, j) += a(i, k) * b(k, j);
    return c;
}

// op(A) for op one of N, T, C.
template <class T> matrix<T> op(const matrix<T> &a, char trans)
{
    if (trans == 'N')
        return a;
    matrix<T> t(a.n, a.m);
    for (int64_t j = 0; j < a.n; ++j)
        for (int64_t i = 0; i < a.m; ++i)
            t(j, i) = trans == 'C' ? conj(a(i, j)) : a(i, j);
    return t;
}

template <class T> real<T> max_abs(const matrix<T> &a)
{
    real<T> r = 0;
    for (int64_t j = 0; j < a.n; ++j)
        for (int64_t i = 0; i < a.m; ++i)
            r = std::max(r, std::abs(a(i, j)));
    return r;
}

template <class T> real<T> max_diff(const matrix<T> &a, const matrix<T> &b)
{
    real<T> r = 0;
    for (int64_t j = 0; j < a.n; ++j)
        for (int64_t i = 0; i < a.m; ++i)
            r = std::max(r, std::abs(a(i, j) - b(i, j)));
    return r;
}

// Unit lower L (m x k) and upper U (k x n) of a packed LU factor.
template <class T> std::pair<matrix<T>, matrix<T>> split_lu(const matrix<T> &f)
{
    const int64_t k = std::min(f.m, f.n);
    matrix<T> l(f.m, k), u(k, f.n);
    for (int64_t j = 0; j < k; ++j)
        for (int64_t i = 0; i < f.m; ++i)
            l(i, j) = i == j ? T(1) : i > j ? f(i, j) : T(0);
    for (int64_t j = 0; j < f.n; ++j)
        for (int64_t i = 0; i < k && i <= j; ++i)
            u(i, j) = f(i, j);
    return {l, u};
}

// P*L*U from a packed factor and its 1-based pivots: the interchanges undone last to first.
template <class T, class I> matrix<T> reconstruct_plu(const matrix<T> &f, const I *ipiv)
{
    auto [l, u] = split_lu(f);
    matrix<T> a = product(l, u);
    for (int64_t s = std::min(f.m, f.n) - 1; s >= 0; --s) {
        const int64_t p = static_cast<int64_t>(ipiv[s]) - 1;
        EXPECT_GE(p, s);
        EXPECT_LT(p, f.m);
        if (p < s || p >= f.m)
            continue;
        for (int64_t j = 0; j < a.n; ++j)
            std::swap(a(s, j), a(p, j));
    }
    return a;
}

template <class T> matrix<T> identity(int64_t n)
{
    matrix<T> e(n, n);
    for (int64_t i = 0; i < n; ++i)
        e(i, i) = T(1);
    return e;
}

} // namespace zel::test
