// Small-matrix kernels for AVX-512: the real orders up to 8 held in registers, the real double LU
// to 32 on padded copies; the rest hands over to the AVX2 set where that measured faster.
#include <immintrin.h>

// GCC 12's AVX-512 headers warn on their own placeholder operands.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#define ZEL_SMALL_ISA avx512
namespace zel::dense::avx512 {
constexpr bool fixed_orders = true;
}
#include "small_impl.hpp"
#include "small_registers.hpp"

namespace zel::dense::avx512 {
namespace {

// One column of up to 8 doubles in a zmm register, or up to 4 in a ymm register.
struct zmm8 {
    using reg = __m512d;
    using scalar = double;
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
    static reg sqrt(reg v) { return _mm512_sqrt_pd(v); }
    static reg mask_div(reg v, __mmask8 m, reg s) { return _mm512_mask_div_pd(v, m, v, s); }
    static reg unit(int j) { return _mm512_maskz_mov_pd(static_cast<__mmask8>(1u << j), _mm512_set1_pd(1.0)); }
    static double first(reg v) { return _mm512_cvtsd_f64(v); }
};
struct ymm4 {
    using reg = __m256d;
    using scalar = double;
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
    static reg sqrt(reg v) { return _mm256_sqrt_pd(v); }
    static reg mask_div(reg v, __mmask8 m, reg s) { return _mm256_mask_div_pd(v, m, v, s); }
    static reg unit(int j) { return _mm256_maskz_mov_pd(static_cast<__mmask8>(1u << j), _mm256_set1_pd(1.0)); }
    static double first(reg v) { return _mm256_cvtsd_f64(v); }
};

// A column of up to 8 floats in a ymm register, or up to 4 in an xmm register.
struct ymm8f {
    using reg = __m256;
    using scalar = float;
    static reg load(__mmask8 m, const float *p) { return _mm256_maskz_loadu_ps(m, p); }
    static void store(__mmask8 m, float *p, reg v) { _mm256_mask_storeu_ps(p, m, v); }
    static reg abs(reg v) { return _mm256_andnot_ps(_mm256_set1_ps(-0.0f), v); }
    static reg sign(reg v) { return _mm256_and_ps(v, _mm256_set1_ps(-0.0f)); }
    static reg splat(float x) { return _mm256_set1_ps(x); }
    static reg masked(__mmask8 m, reg v, reg fill) { return _mm256_mask_mov_ps(fill, m, v); }
    static reg all_max(reg v)
    {
        v = _mm256_max_ps(v, _mm256_permute2f128_ps(v, v, 0x01));
        v = _mm256_max_ps(v, _mm256_permute_ps(v, 0x4E));
        return _mm256_max_ps(v, _mm256_permute_ps(v, 0xB1));
    }
    static __mmask8 equal(reg a, reg b) { return _mm256_cmp_ps_mask(a, b, _CMP_EQ_OQ); }
    static reg lane(reg v, int k) { return _mm256_permutexvar_ps(_mm256_set1_epi32(k), v); }
    static __m256i swap_index(int k, int p)
    {
        __m256i idx = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
        idx = _mm256_mask_set1_epi32(idx, static_cast<__mmask8>(1u << k), p);
        return _mm256_mask_set1_epi32(idx, static_cast<__mmask8>(1u << p), k);
    }
    static reg permute(__m256i idx, reg v) { return _mm256_permutexvar_ps(idx, v); }
    static reg mask_mul(reg v, __mmask8 m, reg s) { return _mm256_mask_mul_ps(v, m, v, s); }
    static reg mask_xor(reg v, __mmask8 m, reg s) { return _mm256_mask_xor_ps(v, m, v, s); }
    static reg mask_fnmadd(reg l, reg u, reg c, __mmask8 m) { return _mm256_mask3_fnmadd_ps(l, u, c, m); }
    static reg fnmadd(reg l, reg u, reg c) { return _mm256_fnmadd_ps(l, u, c); }
    static reg sqrt(reg v) { return _mm256_sqrt_ps(v); }
    static reg mul(reg a, reg b) { return _mm256_mul_ps(a, b); }
    static reg div(reg a, reg b) { return _mm256_div_ps(a, b); }
    static reg mask_div(reg v, __mmask8 m, reg s) { return _mm256_mask_div_ps(v, m, v, s); }
    static reg unit(int j) { return _mm256_maskz_mov_ps(static_cast<__mmask8>(1u << j), _mm256_set1_ps(1.0f)); }
    static float first(reg v) { return _mm256_cvtss_f32(v); }
};
struct xmm4f {
    using reg = __m128;
    using scalar = float;
    static reg load(__mmask8 m, const float *p) { return _mm_maskz_loadu_ps(m, p); }
    static void store(__mmask8 m, float *p, reg v) { _mm_mask_storeu_ps(p, m, v); }
    static reg abs(reg v) { return _mm_andnot_ps(_mm_set1_ps(-0.0f), v); }
    static reg sign(reg v) { return _mm_and_ps(v, _mm_set1_ps(-0.0f)); }
    static reg splat(float x) { return _mm_set1_ps(x); }
    static reg masked(__mmask8 m, reg v, reg fill) { return _mm_mask_mov_ps(fill, m, v); }
    static reg all_max(reg v)
    {
        v = _mm_max_ps(v, _mm_permute_ps(v, 0x4E));
        return _mm_max_ps(v, _mm_permute_ps(v, 0xB1));
    }
    static __mmask8 equal(reg a, reg b) { return _mm_cmp_ps_mask(a, b, _CMP_EQ_OQ); }
    static reg lane(reg v, int k) { return _mm_permutevar_ps(v, _mm_set1_epi32(k)); }
    static __m128i swap_index(int k, int p)
    {
        __m128i idx = _mm_setr_epi32(0, 1, 2, 3);
        idx = _mm_mask_set1_epi32(idx, static_cast<__mmask8>(1u << k), p);
        return _mm_mask_set1_epi32(idx, static_cast<__mmask8>(1u << p), k);
    }
    static reg permute(__m128i idx, reg v) { return _mm_permutevar_ps(v, idx); }
    static reg mask_mul(reg v, __mmask8 m, reg s) { return _mm_mask_mul_ps(v, m, v, s); }
    static reg mask_xor(reg v, __mmask8 m, reg s) { return _mm_mask_xor_ps(v, m, v, s); }
    static reg mask_fnmadd(reg l, reg u, reg c, __mmask8 m) { return _mm_mask3_fnmadd_ps(l, u, c, m); }
    static reg fnmadd(reg l, reg u, reg c) { return _mm_fnmadd_ps(l, u, c); }
    static reg sqrt(reg v) { return _mm_sqrt_ps(v); }
    static reg mul(reg a, reg b) { return _mm_mul_ps(a, b); }
    static reg div(reg a, reg b) { return _mm_div_ps(a, b); }
    static reg mask_div(reg v, __mmask8 m, reg s) { return _mm_mask_div_ps(v, m, v, s); }
    static reg unit(int j) { return _mm_maskz_mov_ps(static_cast<__mmask8>(1u << j), _mm_set1_ps(1.0f)); }
    static float first(reg v) { return _mm_cvtss_f32(v); }
};
template <int N> using float_vector = std::conditional_t<(N <= 4), xmm4f, ymm8f>;


// Single precision: the register kernels up to 8 (computed in float, so pivots and statuses are
// float LAPACK's); above 8 the AVX2 set's padded kernels, which ran faster on the AMD EPYC
// than the loops here.
void getrf_s(int64_t n, float *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (!at_fixed_order(n, [&]<int N>() { getrf_registers<N, float_vector<N>>(a, lda, ipiv, info); }))
        small_set_avx2.s.getrf(n, a, lda, ipiv, info);
}

void potrf_lower_s(int64_t n, float *a, int64_t lda, int64_t *info)
{
    if (!at_fixed_order(n, [&]<int N>() { potrf_lower_registers<N, float_vector<N>>(a, lda, info); }))
        small_set_avx2.s.potrf_lower(n, a, lda, info);
}

void inverse_s(int64_t n, const float *a, int64_t lda, const int64_t *ipiv, float *inv, int64_t ldinv)
{
    if (!at_fixed_order(n, [&]<int N>() { inverse_registers<N, float_vector<N>>(a, lda, ipiv, inv, ldinv); }))
        small_set_avx2.s.inverse(n, a, lda, ipiv, inv, ldinv);
}

constexpr small_kernels<float> float_table(int64_t getrf_limit, int64_t potrf_limit, int64_t inverse_limit)
{
    return {getrf_s, potrf_lower_s, potrf_upper_loop<float>, getrs_loop<float>, inverse_s,
            getrf_limit, potrf_limit, inverse_limit};
}

// Where the AVX2 set's kernels ran faster on the processor this was measured on (an AMD EPYC,
// whose 512-bit operations take two passes; `zel bench dense`, both tables), this set calls
// them: the real double Cholesky and the complex kernels of both precisions at every order, the
// real double LU from 5 to 16 and above 32, the real double inverse outside 5 to 8.
void inverse_d(int64_t n, const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    if (n <= 4 || n > 8)
        return small_set_avx2.d.inverse(n, a, lda, ipiv, inv, ldinv);
    at_fixed_order(n, [&]<int N>() {
        if constexpr (N > 4)
            inverse_registers<N, zmm8>(a, lda, ipiv, inv, ldinv);
    });
}

void potrf_lower_d(int64_t n, double *a, int64_t lda, int64_t *info)
{
    small_set_avx2.d.potrf_lower(n, a, lda, info);
}

// Up to 12 with the 32 registers (8: 158 ns interleaved there, against 161 for the AVX2 build's
// planar kernel), then the AVX2 build (16: 663 against 675).
void getrf_z(int64_t n, std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    (n <= 12 ? small_set_avx2_on_avx512 : small_set_avx2).z.getrf(n, a, lda, ipiv, info);
}

void potrf_lower_z(int64_t n, std::complex<double> *a, int64_t lda, int64_t *info)
{
    small_set_avx2.z.potrf_lower(n, a, lda, info);
}

void inverse_z(int64_t n, const std::complex<double> *a, int64_t lda, const int64_t *ipiv, std::complex<double> *inv,
               int64_t ldinv)
{
    small_set_avx2.z.inverse(n, a, lda, ipiv, inv, ldinv);
}

void getrf_c(int64_t n, std::complex<float> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    small_set_avx2.c.getrf(n, a, lda, ipiv, info);
}

void potrf_lower_c(int64_t n, std::complex<float> *a, int64_t lda, int64_t *info)
{
    small_set_avx2.c.potrf_lower(n, a, lda, info);
}

void inverse_c(int64_t n, const std::complex<float> *a, int64_t lda, const int64_t *ipiv, std::complex<float> *inv,
               int64_t ldinv)
{
    small_set_avx2.c.inverse(n, a, lda, ipiv, inv, ldinv);
}

constexpr small_kernels<std::complex<float>> complex_float_table(int64_t getrf_limit, int64_t potrf_limit,
                                                                 int64_t inverse_limit)
{
    return {getrf_c, potrf_lower_c, potrf_upper_loop<std::complex<float>>, getrs_loop<std::complex<float>>, inverse_c,
            getrf_limit, potrf_limit, inverse_limit};
}

constexpr small_kernels<std::complex<double>> complex_double_table()
{
    return {getrf_z,           potrf_lower_z, potrf_upper_loop<std::complex<double>>,
            getrs_loop<std::complex<double>>, inverse_z, 64, 64, 32};
}

// Real double LU with partial pivoting for 16 < n <= 8*R on a copy with zero-padded columns of
// R full vectors: every load and store is a whole aligned vector (masked ones would defeat
// store forwarding), the pivot search is vectorised, and each update skips the vectors above
// the pivot row.
template <int R> void getrf_d_columns(int64_t n, double *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    constexpr int64_t ld = 8 * R;
    alignas(64) double work[ld * ld];
    for (int64_t j = 0; j < n; ++j) {
        std::copy(a + j * lda, a + j * lda + n, work + j * ld);
        std::fill(work + j * ld + n, work + (j + 1) * ld, 0.0);
    }
    __mmask8 valid[R];
#pragma GCC unroll 8
    for (int r = 0; r < R; ++r) {
        const int64_t here = std::min<int64_t>(8, std::max<int64_t>(0, n - 8 * r));
        valid[r] = static_cast<__mmask8>((1u << here) - 1);
    }
    auto from_row = [](int64_t first, int r) { // lanes of rows >= first in vector r
        const int64_t skip = std::min<int64_t>(8, std::max<int64_t>(0, first - 8 * r));
        return static_cast<__mmask8>(0xFFu << skip);
    };
    for (int64_t k = 0; k < n; ++k) {
        double *col = work + k * ld;
        __m512d size[R];
        __m512d largest = _mm512_set1_pd(-1.0);
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r) {
            const __mmask8 m = valid[r] & from_row(k, r);
            size[r] = _mm512_mask_mov_pd(_mm512_set1_pd(-1.0), m, _mm512_abs_pd(_mm512_load_pd(col + 8 * r)));
            largest = _mm512_max_pd(largest, size[r]);
        }
        largest = zmm8::all_max(largest);
        uint64_t hits = 0;
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r)
            hits |= static_cast<uint64_t>(_mm512_cmp_pd_mask(size[r], largest, _CMP_EQ_OQ)) << (8 * r);
        const int64_t p = hits != 0 ? __builtin_ctzll(hits) : k;
        ipiv[k] = p + 1;
        if (p != k)
            for (int64_t j = 0; j < n; ++j)
                std::swap(work[k + j * ld], work[p + j * ld]);
        const double pivot = col[k];
        const int first = static_cast<int>((k + 1) / 8);
        const __mmask8 boundary = from_row(k + 1, first);
        __m512d l[R];
        if (pivot != 0.0) {
            const __m512d inverse = _mm512_set1_pd(1.0 / pivot);
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= first) {
                    const __m512d c = _mm512_load_pd(col + 8 * r);
                    l[r] = _mm512_maskz_mul_pd(r == first ? boundary : 0xFF, c, inverse);
                    _mm512_store_pd(col + 8 * r, r == first ? _mm512_mask_mov_pd(c, boundary, l[r]) : l[r]);
                }
        } else {
            if (*info == 0)
                *info = k + 1;
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= first)
                    l[r] = _mm512_maskz_load_pd(r == first ? boundary : 0xFF, col + 8 * r);
        }
        for (int64_t j = k + 1; j < n; ++j) {
            double *target = work + j * ld;
            const __m512d u = _mm512_set1_pd(target[k]);
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= first) {
                    const __m512d c = _mm512_load_pd(target + 8 * r);
                    _mm512_store_pd(target + 8 * r, r == first ? _mm512_mask3_fnmadd_pd(l[r], u, c, boundary)
                                                               : _mm512_fnmadd_pd(l[r], u, c));
                }
        }
    }
    for (int64_t j = 0; j < n; ++j)
        std::copy(work + j * ld, work + j * ld + n, a + j * lda);
}

void getrf_d(int64_t n, double *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (n <= 4)
        return (void)at_fixed_order(n, [&]<int N>() {
            if constexpr (N <= 4)
                getrf_registers<N, ymm4>(a, lda, ipiv, info);
        });
    if (n <= 16)
        return small_set_avx2.d.getrf(n, a, lda, ipiv, info);
    if (n <= 32)
        return getrf_d_columns<4>(n, a, lda, ipiv, info);
    small_set_avx2.d.getrf(n, a, lda, ipiv, info);
}

constexpr small_kernels<double> double_table()
{
    // listed whole so that the generic fixed-order code is not compiled for nothing
    return {getrf_d, potrf_lower_d, potrf_upper_loop<double>, getrs_loop<double>, inverse_d, 64, 64, 64};
}

} // namespace
} // namespace zel::dense::avx512

namespace zel::dense {

// Limits as `zel bench dense` measured them on the AMD EPYC against OpenBLAS's own choice of
// kernels: d and s to 64 (d potrf 1.45x there, s potrf 1.6x); z and c LU and Cholesky to 64
// (the blocked complex kernels' end), their inverses to 32 (the padded copies' end; c inverse to
// 64 on the loops, 1.1x there).
const small_set small_set_avx512 = {avx512::float_table(64, 64, 64), avx512::double_table(),
                                    avx512::complex_float_table(64, 64, 64), avx512::complex_double_table()};

} // namespace zel::dense
