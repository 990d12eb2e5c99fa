// Small-matrix kernels for AVX-512, with the real double orders up to 8 held in registers.
#include <immintrin.h>

// GCC 12's AVX-512 headers warn on their own placeholder operands.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#define ZEL_SMALL_ISA avx512
namespace zel::dense::avx512 {
constexpr bool fixed_orders = true;
}
#include "small_impl.hpp"

namespace zel::dense::avx512 {
namespace {

// One column of up to 8 doubles in a zmm register, or up to 4 in a ymm register.
struct zmm8 {
    using reg = __m512d;
    static reg load(__mmask8 m, const double *p) { return _mm512_maskz_loadu_pd(m, p); }
    static void store(__mmask8 m, double *p, reg v) { _mm512_mask_storeu_pd(p, m, v); }
    static reg abs(reg v) { return _mm512_abs_pd(v); }
    static reg sign(reg v) { return _mm512_and_pd(v, _mm512_set1_pd(-0.0)); }
    static reg splat(double x) { return _mm512_set1_pd(x); }
    static reg masked(__mmask8 m, reg v, reg fill) { return _mm512_mask_mov_pd(fill, m, v); }
    // The largest lane, in every lane.
    static reg all_max(reg v)
    {
        v = _mm512_max_pd(v, _mm512_shuffle_f64x2(v, v, 0x4E));
        v = _mm512_max_pd(v, _mm512_shuffle_f64x2(v, v, 0xB1));
        return _mm512_max_pd(v, _mm512_permute_pd(v, 0x55));
    }
    static __mmask8 equal(reg a, reg b) { return _mm512_cmp_pd_mask(a, b, _CMP_EQ_OQ); }
    static reg lane(reg v, int k) { return _mm512_permutexvar_pd(_mm512_set1_epi64(k), v); }
    static __m512i swap_index(int k, int p)
    {
        __m512i idx = _mm512_set_epi64(7, 6, 5, 4, 3, 2, 1, 0);
        idx = _mm512_mask_set1_epi64(idx, static_cast<__mmask8>(1u << k), p);
        return _mm512_mask_set1_epi64(idx, static_cast<__mmask8>(1u << p), k);
    }
    static reg permute(__m512i idx, reg v) { return _mm512_permutexvar_pd(idx, v); }
    static reg mask_mul(reg v, __mmask8 m, reg s) { return _mm512_mask_mul_pd(v, m, v, s); }
    static reg mask_xor(reg v, __mmask8 m, reg s) { return _mm512_mask_xor_pd(v, m, v, s); }
    static reg mask_fnmadd(reg l, reg u, reg c, __mmask8 m) { return _mm512_mask3_fnmadd_pd(l, u, c, m); }
    static reg fnmadd(reg l, reg u, reg c) { return _mm512_fnmadd_pd(l, u, c); }
    static reg unit(int j) { return _mm512_maskz_mov_pd(static_cast<__mmask8>(1u << j), _mm512_set1_pd(1.0)); }
    static double first(reg v) { return _mm512_cvtsd_f64(v); }
};
struct ymm4 {
    using reg = __m256d;
    static reg load(__mmask8 m, const double *p) { return _mm256_maskz_loadu_pd(m, p); }
    static void store(__mmask8 m, double *p, reg v) { _mm256_mask_storeu_pd(p, m, v); }
    static reg abs(reg v) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v); }
    static reg sign(reg v) { return _mm256_and_pd(v, _mm256_set1_pd(-0.0)); }
    static reg splat(double x) { return _mm256_set1_pd(x); }
    static reg masked(__mmask8 m, reg v, reg fill) { return _mm256_mask_mov_pd(fill, m, v); }
    static reg all_max(reg v)
    {
        v = _mm256_max_pd(v, _mm256_permute2f128_pd(v, v, 0x01));
        return _mm256_max_pd(v, _mm256_permute_pd(v, 0x5));
    }
    static __mmask8 equal(reg a, reg b) { return _mm256_cmp_pd_mask(a, b, _CMP_EQ_OQ); }
    static reg lane(reg v, int k) { return _mm256_permutexvar_pd(_mm256_set1_epi64x(k), v); }
    static __m256i swap_index(int k, int p)
    {
        __m256i idx = _mm256_set_epi64x(3, 2, 1, 0);
        idx = _mm256_mask_set1_epi64(idx, static_cast<__mmask8>(1u << k), p);
        return _mm256_mask_set1_epi64(idx, static_cast<__mmask8>(1u << p), k);
    }
    static reg permute(__m256i idx, reg v) { return _mm256_permutexvar_pd(idx, v); }
    static reg mask_mul(reg v, __mmask8 m, reg s) { return _mm256_mask_mul_pd(v, m, v, s); }
    static reg mask_xor(reg v, __mmask8 m, reg s) { return _mm256_mask_xor_pd(v, m, v, s); }
    static reg mask_fnmadd(reg l, reg u, reg c, __mmask8 m) { return _mm256_mask3_fnmadd_pd(l, u, c, m); }
    static reg fnmadd(reg l, reg u, reg c) { return _mm256_fnmadd_pd(l, u, c); }
    static reg unit(int j) { return _mm256_maskz_mov_pd(static_cast<__mmask8>(1u << j), _mm256_set1_pd(1.0)); }
    static double first(reg v) { return _mm256_cvtsd_f64(v); }
};

// LU with partial pivoting of an N x N double matrix, one column per register: the pivot
// search, the row interchange (one permute per column) and the update never leave registers.
// The multipliers are scaled by 1/|pivot| and take the pivot's sign after, which is exact, so
// the division overlaps the interchange.
template <int N, class V> void getrf_d_registers(double *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using reg = typename V::reg;
    constexpr __mmask8 rows = static_cast<__mmask8>((1u << N) - 1);
    reg col[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        col[j] = V::load(rows, a + j * lda);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        // First largest |a(i,k)|, i >= k; a NaN column keeps row k, as a scan would.
        const __mmask8 candidates = static_cast<__mmask8>(rows & ~((1u << k) - 1));
        const reg magnitude = V::masked(candidates, V::abs(col[k]), V::splat(-1.0));
        const reg largest = V::all_max(magnitude);
        const unsigned hits = V::equal(magnitude, largest);
        const int p = hits != 0 ? __builtin_ctz(hits) : k;
        ipiv[k] = p + 1;
        const double size = V::first(largest);
        const reg inverse = V::splat(1.0 / size);
        const auto swap = V::swap_index(k, p);
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j)
            col[j] = V::permute(swap, col[j]);
        const __mmask8 below = static_cast<__mmask8>(rows & ~((2u << k) - 1));
        if (size != 0.0) {
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

// The inverse U^-1 * L^-1 * P^T of an N x N double LU factor, one column of the result per
// register; the column interchanges become the store addresses.
template <int N, class V>
void inverse_d_registers(const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    using reg = typename V::reg;
    constexpr __mmask8 rows = static_cast<__mmask8>((1u << N) - 1);
    reg x[N];
    double r[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j) {
        x[j] = V::unit(j);
        r[j] = 1.0 / a[j + j * lda];
    }
#pragma GCC unroll 8
    for (int k = 0; k + 1 < N; ++k) { // L^-1: column j has zeros above row j
        const reg l = V::load(static_cast<__mmask8>(rows & ~((2u << k) - 1)), a + k * lda);
#pragma GCC unroll 8
        for (int j = 0; j <= k; ++j)
            x[j] = V::fnmadd(l, V::lane(x[j], k), x[j]);
    }
#pragma GCC unroll 8
    for (int k = N - 1; k >= 0; --k) { // U^-1
        const reg u = V::load(static_cast<__mmask8>((1u << k) - 1), a + k * lda);
        const reg rk = V::splat(r[k]);
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j) {
            x[j] = V::mask_mul(x[j], static_cast<__mmask8>(1u << k), rk);
            if (k > 0)
                x[j] = V::fnmadd(u, V::lane(x[j], k), x[j]);
        }
    }
    int at[N]; // at[c]: the register that ends in column c
    for (int c = 0; c < N; ++c)
        at[c] = c;
    for (int k = N - 1; k >= 0; --k)
        std::swap(at[k], at[ipiv[k] - 1]);
    int to[N];
    for (int c = 0; c < N; ++c)
        to[at[c]] = c;
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        V::store(rows, inv + to[j] * ldinv, x[j]);
}

void inverse_d(int64_t n, const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    switch (n) {
    case 1: return inverse_d_registers<1, ymm4>(a, lda, ipiv, inv, ldinv);
    case 2: return inverse_d_registers<2, ymm4>(a, lda, ipiv, inv, ldinv);
    case 3: return inverse_d_registers<3, ymm4>(a, lda, ipiv, inv, ldinv);
    case 4: return inverse_d_registers<4, ymm4>(a, lda, ipiv, inv, ldinv);
    case 5: return inverse_d_registers<5, zmm8>(a, lda, ipiv, inv, ldinv);
    case 6: return inverse_d_registers<6, zmm8>(a, lda, ipiv, inv, ldinv);
    case 7: return inverse_d_registers<7, zmm8>(a, lda, ipiv, inv, ldinv);
    case 8: return inverse_d_registers<8, zmm8>(a, lda, ipiv, inv, ldinv);
    default: return inverse_loop(n, a, lda, ipiv, inv, ldinv);
    }
}

void getrf_d(int64_t n, double *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    switch (n) {
    case 1: return getrf_d_registers<1, ymm4>(a, lda, ipiv, info);
    case 2: return getrf_d_registers<2, ymm4>(a, lda, ipiv, info);
    case 3: return getrf_d_registers<3, ymm4>(a, lda, ipiv, info);
    case 4: return getrf_d_registers<4, ymm4>(a, lda, ipiv, info);
    case 5: return getrf_d_registers<5, zmm8>(a, lda, ipiv, info);
    case 6: return getrf_d_registers<6, zmm8>(a, lda, ipiv, info);
    case 7: return getrf_d_registers<7, zmm8>(a, lda, ipiv, info);
    case 8: return getrf_d_registers<8, zmm8>(a, lda, ipiv, info);
    default: return getrf_loop(n, a, lda, ipiv, info);
    }
}

constexpr small_kernels<double> double_table()
{
    small_kernels<double> t = table<double>(64, 16, 64);
    t.getrf = getrf_d;
    t.inverse = inverse_d;
    return t;
}

} // namespace
} // namespace zel::dense::avx512

namespace zel::dense {

const small_set small_set_avx512 = {avx512::table<float>(64, 16, 64), avx512::double_table(),
                                    avx512::table<std::complex<float>>(32, 16, 64), avx512::table<std::complex<double>>(32, 16, 64)};

} // namespace zel::dense
