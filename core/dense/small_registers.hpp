// Real kernels for orders up to 8 with one column per register, written once over a vector type
// V (its scalar, a register of at least N lanes and lane-masked operations, the masks as the low
// bits of an unsigned). Included by the instruction-set files after small_impl.hpp, inside their
// namespace: AVX-512 gives V real mask registers, AVX2 emulates them with blends.
#pragma once

#include <complex>
#include <cstdint>
#include <utility>
#include <limits>

namespace zel::dense::ZEL_SMALL_ISA {

// Lanes [first, N) as mask bits.
template <int N> constexpr unsigned lanes_from(int first)
{
    return ((1u << N) - 1) & ~((1u << first) - 1);
}

// LU with partial pivoting of an N x N matrix, one column per register: the pivot search, the
// row interchange (one permute per column) and the update never leave registers. The
// multipliers are scaled by 1/|pivot| and take the pivot's sign after, which is exact, so the
// division overlaps the interchange.
template <int N, class V> void getrf_registers(typename V::scalar *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using reg = typename V::reg;
    using S = typename V::scalar;
    constexpr unsigned rows = lanes_from<N>(0);
    reg col[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        col[j] = V::load(rows, a + j * lda);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        if (k == N - 1) { // the last row is its own pivot, with nothing below it to scale
            ipiv[k] = N;
            if (V::first(V::lane(col[k], k)) == S(0) && *info == 0)
                *info = N;
            break;
        }
        // First largest |a(i,k)|, i >= k; a NaN column keeps row k, as a scan would.
        const reg magnitude = V::masked(lanes_from<N>(k), V::abs(col[k]), V::splat(S(-1)));
        const reg largest = V::all_max(magnitude);
        const unsigned hits = V::equal(magnitude, largest);
        const int p = hits != 0 ? __builtin_ctz(hits) : k;
        ipiv[k] = p + 1;
        const S size = V::first(largest);
        const reg inverse = V::splat(S(1) / size);
        const auto swap = V::swap_index(k, p);
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j)
            col[j] = V::permute(swap, col[j]);
        const unsigned below = lanes_from<N>(k + 1);
        if (size != S(0)) {
            const reg pivot_sign = V::sign(V::lane(col[k], k));
            col[k] = V::mask_xor(V::mask_mul(col[k], below, inverse), below, pivot_sign);
        } else if (*info == 0) {
            *info = k + 1;
        }
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j)
            col[j] = V::mask_fnmadd(col[k], V::lane(col[j], k), col[j], below);
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(rows, a + j * lda, col[j]);
}

// The inverse U^-1 * L^-1 * P^T of an N x N LU factor, one column of the result per register;
// the column interchanges become the store addresses.
template <int N, class V>
void inverse_registers(const typename V::scalar *a, int64_t lda, const int64_t *ipiv, typename V::scalar *inv,
                       int64_t ldinv)
{
    using reg = typename V::reg;
    using S = typename V::scalar;
    reg x[N];
    S r[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j) {
        x[j] = V::unit(j);
        r[j] = S(1) / a[j + j * lda];
    }
#pragma GCC unroll 8
    for (int k = 0; k + 1 < N; ++k) { // L^-1: column j has zeros above row j
        const reg l = V::load(lanes_from<N>(k + 1), a + k * lda);
#pragma GCC unroll 8
        for (int j = 0; j <= k; ++j)
            x[j] = V::fnmadd(l, V::lane(x[j], k), x[j]);
    }
#pragma GCC unroll 8
    for (int k = N - 1; k >= 0; --k) { // U^-1
        const reg u = V::load((1u << k) - 1, a + k * lda);
        const reg rk = V::splat(r[k]);
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j) {
            x[j] = V::mask_mul(x[j], 1u << k, rk);
            if (k > 0)
                x[j] = V::fnmadd(u, V::lane(x[j], k), x[j]);
        }
    }
    int at[N], to[N]; // at[c]: the register that ends in column c
    inverse_destinations(N, ipiv, at, to);
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(lanes_from<N>(0), inv + to[j] * ldinv, x[j]);
}

// Cholesky A = L*L^T of an N x N matrix, right-looking with one column per register. On a
// non-positive pivot only the finished columns and that pivot are written back, as the
// unblocked LAPACK routine leaves them.
template <int N, class V> void potrf_lower_registers(typename V::scalar *a, int64_t lda, int64_t *info)
{
    using reg = typename V::reg;
    using S = typename V::scalar;
    reg col[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        col[j] = V::load(lanes_from<N>(j), a + j * lda);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const reg dv = V::lane(col[k], k);
        const S d = V::first(dv);
        if (!(d > S(0))) {
            for (int j = 0; j < k; ++j)
                V::store(lanes_from<N>(j), a + j * lda, col[j]);
            a[k + k * lda] = d;
            *info = k + 1;
            return;
        }
        // The update takes (a_ik * a_jk) / d for l_ik * l_jk: the products are formed while the
        // division runs, so the next pivot waits for one division and one multiply-add, not a
        // square root too; the column is scaled off that path.
        const reg inverse = V::div(V::splat(S(1)), dv);
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j)
            col[j] = V::mask_fnmadd(V::mul(col[k], V::lane(col[k], j)), inverse, col[j], lanes_from<N>(j));
        const reg root = V::sqrt(dv);
        col[k] = V::masked(~(1u << k), V::mask_div(col[k], lanes_from<N>(k + 1), root), root);
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(lanes_from<N>(j), a + j * lda, col[j]);
}

// The complex kernels the same way: V's register holds N complex rows as (re, im) lane pairs,
// and its masks are bits per row. V::scalar is the real type.

// Lane pairs of row bits: row i is lanes 2i and 2i+1.
constexpr unsigned pair_lanes(unsigned rows)
{
    unsigned m = 0;
    for (int i = 0; i < 8; ++i)
        if (rows >> i & 1)
            m |= 3u << (2 * i);
    return m;
}

// LU with partial pivoting of an N x N matrix, a column per register, the pivot the first largest
// |re|+|im| as LAPACK chooses it. The interchange comes from the comparison's mask when one row
// holds the largest; a tie or a NaN goes through the row number.
template <int N, class V> void getrf_complex_registers(std::complex<typename V::scalar> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using reg = typename V::reg;
    using S = typename V::scalar;
    S *ad = reinterpret_cast<S *>(a);
    constexpr unsigned rows = lanes_from<N>(0);
    reg col[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        col[j] = V::load(rows, ad + 2 * j * lda);
#pragma GCC unroll 8
    for (int k = 0; k + 1 < N; ++k) {
        const reg size = V::masked(lanes_from<N>(k), V::pair_sum(V::abs(col[k])), V::splat(S(-1)));
        // Every row's reciprocal conj(x)/|x|^2 while the search runs, so the pivot's is at hand
        // once it is known; the scaled scalar one where |x|^2 leaves the range.
        const reg quotient = V::negate_odd(V::div(col[k], V::pair_sum(V::mul(col[k], col[k]))));
        const reg pick = V::equal_rows(lanes_from<N>(k), size, V::all_max(size));
        const unsigned hits = V::rows_of(pick);
        auto swap = V::swap_index(k, pick);
        const int p = hits != 0 ? __builtin_ctz(hits) : k;
        if (__builtin_popcount(hits) != 1) [[unlikely]]
            swap = V::swap_index(k, V::lanes(1u << p));
        ipiv[k] = p + 1;
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j)
            col[j] = V::permute(swap, col[j]);
        const unsigned below = lanes_from<N>(k + 1);
        const std::complex<S> pivot = V::element(col[k], k);
        const S norm = pivot.real() * pivot.real() + pivot.imag() * pivot.imag();
        constexpr S low = quotient_range<S>::low, high = quotient_range<S>::high;
        if (norm > low && norm < high) [[likely]] {
            const reg inverse = V::permute(swap, quotient);
            col[k] = V::mask_scale_by(col[k], below, V::re(inverse, k), V::im(inverse, k));
        } else if (pivot != S(0)) {
            col[k] = V::mask_scale(col[k], below, reciprocal(pivot));
        } else if (*info == 0) {
            *info = k + 1;
        }
        const reg swapped = V::swap_pairs(col[k]);
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) // col[j] -= l * u, u = col[j][k]
            col[j] = V::mask_minus_product(col[j], col[k], swapped, V::re(col[j], k), V::negate_odd(V::im(col[j], k)), below);
    }
    ipiv[N - 1] = N; // the last row is its own pivot, with nothing below it to scale
    if (V::element(col[N - 1], N - 1) == S(0) && *info == 0)
        *info = N;
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(rows, ad + 2 * j * lda, col[j]);
}

// The inverse U^-1 * L^-1 * P^T of a complex LU factor, one column of the result per register.
template <int N, class V>
void inverse_complex_registers(const std::complex<typename V::scalar> *a, int64_t lda, const int64_t *ipiv,
                               std::complex<typename V::scalar> *inv, int64_t ldinv)
{
    using reg = typename V::reg;
    using S = typename V::scalar;
    const S *ad = reinterpret_cast<const S *>(a);
    reg x[N];
    std::complex<S> r[N];
    alignas(32) S r_re[16] = {}, r_im[16] = {}; // 1/u_kk by rows, each part in both lanes of its row
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j) {
        x[j] = V::unit(j);
        r[j] = reciprocal(a[j + j * lda]);
        r_re[2 * j] = r_re[2 * j + 1] = r[j].real();
        r_im[2 * j] = r_im[2 * j + 1] = r[j].imag();
    }
#pragma GCC unroll 8
    for (int k = 0; k + 1 < N; ++k) { // L^-1: column j has zeros above row j
        const reg l = V::load(lanes_from<N>(k + 1), ad + 2 * k * lda), ls = V::swap_pairs(l);
#pragma GCC unroll 8
        for (int j = 0; j <= k; ++j)
            x[j] = V::minus_product(x[j], l, ls, V::re(x[j], k), V::negate_odd(V::im(x[j], k)));
    }
#pragma GCC unroll 8
    for (int k = N - 1; k > 0; --k) { // U^-1 with column k of U times 1/u_kk, off the columns' chain
        const unsigned above = (1u << k) - 1;
        const reg u = V::mask_scale(V::load(above, ad + 2 * k * lda), above, r[k]), us = V::swap_pairs(u);
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j)
            x[j] = V::minus_product(x[j], u, us, V::re(x[j], k), V::negate_odd(V::im(x[j], k)));
    }
    const reg d_re = V::load(lanes_from<N>(0), r_re), d_im = V::load(lanes_from<N>(0), r_im);
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j) // row k times 1/u_kk last
        x[j] = V::mask_scale_by(x[j], lanes_from<N>(0), d_re, d_im);
    S *invd = reinterpret_cast<S *>(inv);
    int at[N], to[N]; // at[c]: the register that ends in column c
    inverse_destinations(N, ipiv, at, to);
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(lanes_from<N>(0), invd + 2 * to[j] * ldinv, x[j]);
}

// Cholesky A = L*L^H, right-looking with one column per register; only the rows from the
// diagonal down are read and written, the diagonal comes back real, and a non-positive pivot
// stops it as the unblocked LAPACK routine does.
template <int N, class V> void potrf_lower_complex_registers(std::complex<typename V::scalar> *a, int64_t lda, int64_t *info)
{
    using reg = typename V::reg;
    using S = typename V::scalar;
    S *ad = reinterpret_cast<S *>(a);
    reg col[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        col[j] = V::load(lanes_from<N>(j), ad + 2 * j * lda);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const S d = V::element(col[k], k).real();
        if (!(d > S(0))) {
            for (int j = 0; j < k; ++j)
                V::store(lanes_from<N>(j), ad + 2 * j * lda, col[j]);
            a[k + k * lda] = d;
            *info = k + 1;
            return;
        }
        const S root = std::sqrt(d);
        col[k] = V::with_real(V::mask_div(col[k], lanes_from<N>(k + 1), V::splat(root)), k, root);
        const reg swapped = V::swap_pairs(col[k]);
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) // col[j] -= l * conj(l_j)
            col[j] = V::mask_minus_product(col[j], col[k], swapped, V::re(col[k], j), V::negate_even(V::im(col[k], j)),
                                           lanes_from<N>(j));
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(lanes_from<N>(j), ad + 2 * j * lda, col[j]);
}

} // namespace zel::dense::ZEL_SMALL_ISA
