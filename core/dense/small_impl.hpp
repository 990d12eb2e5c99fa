// Small-matrix kernels written once and compiled per instruction set: each small_*.cpp defines
// ZEL_SMALL_ISA before including this, so each copy lives in its own namespace. Square problems only, n up to
// small_limit; the caller has checked the arguments.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "small.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::dense::ZEL_SMALL_ISA {

// Products written out: the library's complex operators guard against NaN and do not vectorise.
template <class T> inline T mul(T a, T b)
{
    if constexpr (is_complex_v<T>)
        return T(a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real());
    else
        return a * b;
}
template <class T> inline T mul_conj(T a, T b) // conj(a)*b
{
    if constexpr (is_complex_v<T>)
        return T(a.real() * b.real() + a.imag() * b.imag(), a.real() * b.imag() - a.imag() * b.real());
    else
        return a * b;
}
template <class T> inline auto abs1(T a)
{
    if constexpr (is_complex_v<T>)
        return std::abs(a.real()) + std::abs(a.imag());
    else
        return std::abs(a);
}
template <class T> inline auto real_part(T a)
{
    if constexpr (is_complex_v<T>)
        return a.real();
    else
        return a;
}
// The range of |x|^2 in which conj(x) / |x|^2 is a complex x's reciprocal to working accuracy;
// outside it the reciprocal is scaled by the larger part first.
template <class R> struct quotient_range {
    static constexpr R low = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
    static constexpr R high = std::numeric_limits<R>::max() * std::numeric_limits<R>::epsilon();
};
// 1/a; for complex scaled by the larger part so that neither overflow nor a library call
// (which would spill every vector register) gets in the way.
template <class T> inline T reciprocal(T a)
{
    if constexpr (is_complex_v<T>) {
        using R = typename T::value_type;
        const R norm = a.real() * a.real() + a.imag() * a.imag();
        constexpr R low = quotient_range<R>::low, high = quotient_range<R>::high;
        if (norm > low && norm < high) [[likely]] { // one division on the common path
            const R q = R(1) / norm;
            return T(a.real() * q, -a.imag() * q);
        }
        const R s = R(1) / std::max(std::abs(a.real()), std::abs(a.imag()));
        const R re = a.real() * s, im = a.imag() * s;
        const R q = s / (re * re + im * im);
        return T(re * q, -im * q);
    } else {
        return T(1) / a;
    }
}

// y[0..count) -= x[0..count) * s
template <class T> inline void axpy_minus(int64_t count, const T *x, T s, T *y)
{
    for (int64_t i = 0; i < count; ++i)
        y[i] -= mul(x[i], s);
}

// LU with partial pivoting, right-looking, the update blocked by four columns.
template <class T> void getrf_loop(int64_t n, T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    for (int64_t k = 0; k < n; ++k) {
        T *col = a + k * lda;
        int64_t p = k;
        auto best = abs1(col[k]);
        for (int64_t i = k + 1; i < n; ++i) {
            const auto v = abs1(col[i]);
            if (v > best) {
                best = v;
                p = i;
            }
        }
        ipiv[k] = p + 1;
        if (p != k)
            for (int64_t j = 0; j < n; ++j)
                std::swap(a[k + j * lda], a[p + j * lda]);
        const int64_t below = n - k - 1;
        if (col[k] != T(0)) {
            const T r = reciprocal(col[k]);
            for (int64_t i = k + 1; i < n; ++i)
                col[i] = mul(col[i], r);
        } else if (*info == 0) {
            *info = k + 1;
        }
        const T *l = col + k + 1;
        int64_t j = k + 1;
        for (; j + 3 < n; j += 4) {
            T *c0 = a + j * lda, *c1 = c0 + lda, *c2 = c1 + lda, *c3 = c2 + lda;
            const T u0 = c0[k], u1 = c1[k], u2 = c2[k], u3 = c3[k];
            c0 += k + 1, c1 += k + 1, c2 += k + 1, c3 += k + 1;
            for (int64_t i = 0; i < below; ++i) {
                const T li = l[i];
                c0[i] -= mul(li, u0);
                c1[i] -= mul(li, u1);
                c2[i] -= mul(li, u2);
                c3[i] -= mul(li, u3);
            }
        }
        for (; j < n; ++j)
            axpy_minus(below, l, a[k + j * lda], a + k + 1 + j * lda);
    }
}

// Cholesky, left-looking by columns of the lower factor; stops at a non-positive pivot
// leaving it in place, as LAPACK does.
template <class T> void potrf_lower_loop(int64_t n, T *a, int64_t lda, int64_t *info)
{
    using R = decltype(real_part(T()));
    for (int64_t j = 0; j < n; ++j) {
        T *cj = a + j * lda;
        for (int64_t k = 0; k < j; ++k) {
            const T *ck = a + k * lda;
            axpy_minus(n - j, ck + j, conj_if(ck[j], true), cj + j);
        }
        const R d = real_part(cj[j]);
        if (!(d > R(0))) {
            cj[j] = T(d);
            *info = j + 1;
            return;
        }
        const R s = std::sqrt(d);
        cj[j] = T(s);
        const R r = R(1) / s;
        for (int64_t i = j + 1; i < n; ++i)
            cj[i] *= r;
    }
}

// Cholesky of the upper triangle, A = U^H*U, column by column of U.
template <class T> void potrf_upper_loop(int64_t n, T *a, int64_t lda, int64_t *info)
{
    using R = decltype(real_part(T()));
    for (int64_t j = 0; j < n; ++j) {
        T *cj = a + j * lda;
        R d = real_part(cj[j]);
        for (int64_t i = 0; i < j; ++i) {
            const T *ci = a + i * lda;
            T s = cj[i];
            for (int64_t k = 0; k < i; ++k)
                s -= mul_conj(ci[k], cj[k]);
            s *= R(1) / real_part(ci[i]);
            cj[i] = s;
            d -= real_part(mul_conj(s, s));
        }
        if (!(d > R(0))) {
            cj[j] = T(d);
            *info = j + 1;
            return;
        }
        cj[j] = T(std::sqrt(d));
    }
}

// x := L^-1 x with the unit lower triangle of the packed factor.
template <class T> void lower_unit_solve(int64_t n, const T *a, int64_t lda, T *x, int64_t first)
{
    for (int64_t k = first; k < n; ++k)
        if (x[k] != T(0))
            axpy_minus(n - k - 1, a + k + 1 + k * lda, x[k], x + k + 1);
}

// x := U^-1 x with the upper triangle of the packed factor.
template <class T> void upper_solve(int64_t n, const T *a, int64_t lda, T *x)
{
    for (int64_t k = n - 1; k >= 0; --k) {
        const T *ck = a + k * lda;
        x[k] = mul(x[k], reciprocal(ck[k]));
        if (x[k] != T(0))
            axpy_minus(k, ck, x[k], x);
    }
}

// x := op(U)^-1 x then op(L)^-1 x for op = T or C, by dot products down the columns.
template <class T> void transposed_solve(int64_t n, const T *a, int64_t lda, T *x, bool conjugate)
{
    for (int64_t k = 0; k < n; ++k) {
        const T *ck = a + k * lda;
        T s = x[k];
        if (conjugate)
            for (int64_t i = 0; i < k; ++i)
                s -= mul_conj(ck[i], x[i]);
        else
            for (int64_t i = 0; i < k; ++i)
                s -= mul(ck[i], x[i]);
        x[k] = mul(s, reciprocal(conj_if(ck[k], conjugate)));
    }
    for (int64_t k = n - 1; k >= 0; --k) {
        const T *ck = a + k * lda;
        T s = x[k];
        if (conjugate)
            for (int64_t i = k + 1; i < n; ++i)
                s -= mul_conj(ck[i], x[i]);
        else
            for (int64_t i = k + 1; i < n; ++i)
                s -= mul(ck[i], x[i]);
        x[k] = s;
    }
}

// Solve op(A) X = B with the packed LU factor, one right-hand side at a time.
template <class T>
void getrs_loop(char trans, int64_t n, int64_t nrhs, const T *a, int64_t lda, const int64_t *ipiv, T *b,
                int64_t ldb)
{
    for (int64_t c = 0; c < nrhs; ++c) {
        T *x = b + c * ldb;
        if (trans == 'N') {
            for (int64_t k = 0; k < n; ++k)
                std::swap(x[k], x[ipiv[k] - 1]);
            lower_unit_solve(n, a, lda, x, 0);
            upper_solve(n, a, lda, x);
        } else {
            transposed_solve(n, a, lda, x, trans == 'C');
            for (int64_t k = n - 1; k >= 0; --k)
                std::swap(x[k], x[ipiv[k] - 1]);
        }
    }
}

// x_c -= l * x_c[k] for the four columns of a block (one load of l serves all four).
template <class T> inline void update4(int64_t count, const T *l, T *x0, T *x1, T *x2, T *x3, int64_t k, int64_t from)
{
    const T s0 = x0[k], s1 = x1[k], s2 = x2[k], s3 = x3[k];
    for (int64_t i = from; i < from + count; ++i) {
        const T li = l[i];
        x0[i] -= mul(li, s0);
        x1[i] -= mul(li, s1);
        x2[i] -= mul(li, s2);
        x3[i] -= mul(li, s3);
    }
}

// The inverse from the packed LU factor into inv as getri forms it: U^-1 * L^-1, then the
// column interchanges in reverse. Columns go four at a time through both triangular solves.
template <class T>
void inverse_loop(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *inv, int64_t ldinv)
{
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < n; ++i)
            inv[i + j * ldinv] = T(i == j ? 1 : 0);
    int64_t j = 0;
    for (; j < n; j += 4) {
        T *x0 = inv + j * ldinv;
        T *x1 = j + 1 < n ? x0 + ldinv : x0, *x2 = j + 2 < n ? x0 + 2 * ldinv : x0, *x3 = j + 3 < n ? x0 + 3 * ldinv : x0;
        if (j + 3 >= n) { // a short last block: handle its columns one by one
            for (int64_t c = j; c < n; ++c) {
                T *x = inv + c * ldinv;
                for (int64_t k = c; k < n; ++k)
                    axpy_minus(n - k - 1, a + k + 1 + k * lda, x[k], x + k + 1);
                upper_solve(n, a, lda, x);
            }
            break;
        }
        // L^-1 on e_j..e_j+3: entries above the block's first row stay zero.
        for (int64_t k = j; k < n; ++k)
            update4(n - k - 1, a + k * lda, x0, x1, x2, x3, k, k + 1);
        for (int64_t k = n - 1; k >= 0; --k) {
            const T r = reciprocal(a[k + k * lda]);
            x0[k] = mul(x0[k], r), x1[k] = mul(x1[k], r), x2[k] = mul(x2[k], r), x3[k] = mul(x3[k], r);
            update4(k, a + k * lda, x0, x1, x2, x3, k, 0);
        }
    }
    for (int64_t k = n - 1; k >= 0; --k) {
        const int64_t p = ipiv[k] - 1;
        if (p != k)
            for (int64_t i = 0; i < n; ++i)
                std::swap(inv[i + k * ldinv], inv[i + p * ldinv]);
    }
}

// The loops at a fixed order: inlined whole, so the compiler unrolls them and keeps the matrix
// in registers.
template <int N, class T> [[gnu::flatten]] void getrf_fixed(T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    getrf_loop<T>(N, a, lda, ipiv, info);
}
template <int N, class T> [[gnu::flatten]] void potrf_lower_fixed(T *a, int64_t lda, int64_t *info)
{
    potrf_lower_loop<T>(N, a, lda, info);
}
template <int N, class T>
[[gnu::flatten]] void inverse_fixed(const T *a, int64_t lda, const int64_t *ipiv, T *inv, int64_t ldinv)
{
    inverse_loop<T>(N, a, lda, ipiv, inv, ldinv);
}

// The kernels held at a fixed order are templates on it: calls kernel.template operator()<N>()
// for N = n when n is 1 to 8 and says whether it did (the one switch from a run-time order to them).
template <class Kernel> [[gnu::always_inline]] inline bool at_fixed_order(int64_t n, Kernel &&kernel)
{
    switch (n) {
    case 1: kernel.template operator()<1>(); return true;
    case 2: kernel.template operator()<2>(); return true;
    case 3: kernel.template operator()<3>(); return true;
    case 4: kernel.template operator()<4>(); return true;
    case 5: kernel.template operator()<5>(); return true;
    case 6: kernel.template operator()<6>(); return true;
    case 7: kernel.template operator()<7>(); return true;
    case 8: kernel.template operator()<8>(); return true;
    default: return false;
    }
}

// Orders 1 to 8 at fixed size where fixed_orders is set, the loops above that.
template <class T> void getrf_small(int64_t n, T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if constexpr (fixed_orders) {
        if (at_fixed_order(n, [&]<int N>() { getrf_fixed<N>(a, lda, ipiv, info); }))
            return;
    }
    getrf_loop(n, a, lda, ipiv, info);
}

template <class T> void potrf_lower_small(int64_t n, T *a, int64_t lda, int64_t *info)
{
    if constexpr (fixed_orders) {
        if (at_fixed_order(n, [&]<int N>() { potrf_lower_fixed<N>(a, lda, info); }))
            return;
    }
    potrf_lower_loop(n, a, lda, info);
}

template <class T>
void inverse_small(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *inv, int64_t ldinv)
{
    if constexpr (fixed_orders) {
        if (at_fixed_order(n, [&]<int N>() { inverse_fixed<N>(a, lda, ipiv, inv, ldinv); }))
            return;
    }
    inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

template <class T> constexpr small_kernels<T> table(int64_t getrf_limit, int64_t potrf_limit, int64_t inverse_limit)
{
    return {getrf_small<T>,     potrf_lower_small<T>, potrf_upper_loop<T>, getrs_loop<T>,
            inverse_small<T>,   getrf_limit,          potrf_limit,         inverse_limit};
}

// The columns of an inverse formed before its column interchanges: at[c] is the column that
// ends in column c, the LU's row interchanges (ipiv, 1-based) undone from the last to the first.
template <class Index> void inverse_sources(int64_t n, const int64_t *ipiv, Index *at)
{
    for (int64_t c = 0; c < n; ++c)
        at[c] = Index(c);
    for (int64_t k = n - 1; k >= 0; --k)
        std::swap(at[k], at[ipiv[k] - 1]);
}

// The same as destinations: to[j] is where column j belongs.
template <class Index> void inverse_destinations(int64_t n, const int64_t *ipiv, Index *at, Index *to)
{
    inverse_sources(n, ipiv, at);
    for (int64_t c = 0; c < n; ++c)
        to[at[c]] = Index(c);
}

} // namespace zel::dense::ZEL_SMALL_ISA
