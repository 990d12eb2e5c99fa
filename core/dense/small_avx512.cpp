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

// The register that holds a column of order N: four lanes up to order 4, eight above.
template <int N> using register_vector = std::conditional_t<(N <= 4), ymm4, zmm8>;

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
    static reg mask_div(reg v, __mmask8 m, reg s) { return _mm_mask_div_ps(v, m, v, s); }
    static reg unit(int j) { return _mm_maskz_mov_ps(static_cast<__mmask8>(1u << j), _mm_set1_ps(1.0f)); }
    static float first(reg v) { return _mm_cvtss_f32(v); }
};
template <int N> using float_vector = std::conditional_t<(N <= 4), xmm4f, ymm8f>;

// Single precision: the register kernels up to 8 (computed in float, so pivots and statuses are
// float LAPACK's), the fixed-order and general loops above.
void getrf_s(int64_t n, float *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (!at_fixed_order(n, [&]<int N>() { getrf_registers<N, float_vector<N>>(a, lda, ipiv, info); }))
        getrf_loop(n, a, lda, ipiv, info);
}

void potrf_lower_s(int64_t n, float *a, int64_t lda, int64_t *info)
{
    if (!at_fixed_order(n, [&]<int N>() { potrf_lower_registers<N, float_vector<N>>(a, lda, info); }))
        potrf_lower_loop(n, a, lda, info);
}

void inverse_s(int64_t n, const float *a, int64_t lda, const int64_t *ipiv, float *inv, int64_t ldinv)
{
    if (!at_fixed_order(n, [&]<int N>() { inverse_registers<N, float_vector<N>>(a, lda, ipiv, inv, ldinv); }))
        inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

constexpr small_kernels<float> float_table(int64_t getrf_limit, int64_t potrf_limit, int64_t inverse_limit)
{
    return {getrf_s, potrf_lower_s, potrf_upper_loop<float>, getrs_loop<float>, inverse_s,
            getrf_limit, potrf_limit, inverse_limit};
}

// Copies the n x n matrix at a into a zero-padded work array with leading dimension ld.
inline void copy_padded(int64_t n, const double *a, int64_t lda, double *work, int64_t ld)
{
    for (int64_t j = 0; j < n; ++j) {
        std::copy(a + j * lda, a + j * lda + n, work + j * ld);
        std::fill(work + j * ld + n, work + (j + 1) * ld, 0.0);
    }
}

// Lanes of rows >= first in vector r of a padded column.
inline __mmask8 rows_from(int64_t first, int r)
{
    const int64_t skip = std::min<int64_t>(8, std::max<int64_t>(0, first - 8 * r));
    return static_cast<__mmask8>(0xFFu << skip);
}

// Cholesky A = L*L^T for 8 < n <= 8*R, right-looking on a padded copy with whole vectors;
// only the lower triangle goes back.
template <int R> void potrf_lower_d_columns(int64_t n, double *a, int64_t lda, int64_t *info)
{
    constexpr int64_t ld = 8 * R;
    alignas(64) double work[ld * ld];
    copy_padded(n, a, lda, work, ld);
    int64_t done = n;
    for (int64_t k = 0; k < n; ++k) {
        double *col = work + k * ld;
        const double d = col[k];
        if (!(d > 0.0)) {
            col[k] = d;
            *info = k + 1;
            done = k;
            break;
        }
        const double root = std::sqrt(d);
        const __m512d inverse = _mm512_set1_pd(1.0 / root);
        const int first = static_cast<int>((k + 1) / 8);
        __m512d l[R];
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r)
            if (r >= first) {
                const __m512d c = _mm512_load_pd(col + 8 * r);
                l[r] = _mm512_maskz_mul_pd(rows_from(k + 1, r), c, inverse);
                _mm512_store_pd(col + 8 * r, _mm512_mask_mov_pd(c, rows_from(k + 1, r), l[r]));
            }
        col[k] = root;
        for (int64_t j = k + 1; j < n; ++j) {
            double *target = work + j * ld;
            const __m512d u = _mm512_set1_pd(col[j]);
            const int from = static_cast<int>(j / 8); // rows above j of column j are not the factor's
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= from)
                    _mm512_store_pd(target + 8 * r, _mm512_fnmadd_pd(l[r], u, _mm512_load_pd(target + 8 * r)));
        }
    }
    for (int64_t j = 0; j < done; ++j)
        std::copy(work + j * ld + j, work + j * ld + n, a + j * lda + j);
    if (done < n)
        a[done + done * lda] = work[done + done * ld];
}

// The inverse U^-1 * L^-1 * P^T for 8 < n <= 8*R from a padded copy of the factor: four
// columns of the result at a time live in registers through both triangular solves, so the
// four independent chains overlap; the interchanges become the store addresses.
template <int R>
void inverse_d_columns(int64_t n, const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    constexpr int64_t ld = 8 * R;
    constexpr int G = 4;
    alignas(64) double f[ld * ld];
    double scale[ld];
    copy_padded(n, a, lda, f, ld);
    for (int64_t k = 0; k < n; ++k)
        scale[k] = 1.0 / f[k + k * ld];
    int64_t at[ld], to[ld];
    inverse_destinations(n, ipiv, at, to);
    // Lane k of a column held as R vectors, in every lane.
    auto element = [](const __m512d *x, int64_t k) {
        __m512d v = x[0];
#pragma GCC unroll 8
        for (int r = 1; r < R; ++r)
            if (k / 8 == r)
                v = x[r];
        return _mm512_permutexvar_pd(_mm512_set1_epi64(k % 8), v);
    };
    for (int64_t j0 = 0; j0 < n; j0 += G) {
        __m512d x[G][R];
#pragma GCC unroll 4
        for (int g = 0; g < G; ++g)
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                x[g][r] = (j0 + g) / 8 == r ? _mm512_maskz_mov_pd(static_cast<__mmask8>(1u << ((j0 + g) % 8)), _mm512_set1_pd(1.0))
                                            : _mm512_setzero_pd();
        for (int64_t k = j0; k + 1 < n; ++k) { // L^-1: these columns are zero above row j0
            const int first = static_cast<int>((k + 1) / 8);
            __m512d l[R];
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                l[r] = r >= first ? _mm512_maskz_load_pd(rows_from(k + 1, r), f + k * ld + 8 * r) : _mm512_setzero_pd();
#pragma GCC unroll 4
            for (int g = 0; g < G; ++g) {
                const __m512d b = element(x[g], k);
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    if (r >= first)
                        x[g][r] = _mm512_fnmadd_pd(l[r], b, x[g][r]);
            }
        }
        for (int64_t k = n - 1; k >= 0; --k) { // U^-1
            const int last = static_cast<int>((k + 7) / 8) - 1; // vectors holding rows < k
            __m512d u[R];
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                u[r] = r <= last ? _mm512_maskz_load_pd(static_cast<__mmask8>(~rows_from(k, r)), f + k * ld + 8 * r)
                                 : _mm512_setzero_pd();
            const __m512d s = _mm512_set1_pd(scale[k]);
            const __mmask8 lane_k = static_cast<__mmask8>(1u << (k % 8));
#pragma GCC unroll 4
            for (int g = 0; g < G; ++g) {
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    if (k / 8 == r)
                        x[g][r] = _mm512_mask_mul_pd(x[g][r], lane_k, x[g][r], s);
                const __m512d b = element(x[g], k);
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    if (r <= last)
                        x[g][r] = _mm512_fnmadd_pd(u[r], b, x[g][r]);
            }
        }
#pragma GCC unroll 4
        for (int g = 0; g < G; ++g)
            if (j0 + g < n)
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    _mm512_mask_storeu_pd(inv + to[j0 + g] * ldinv + 8 * r,
                                          static_cast<__mmask8>(~rows_from(n, r)), x[g][r]);
    }
}

void inverse_d(int64_t n, const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    if (at_fixed_order(n, [&]<int N>() { inverse_registers<N, register_vector<N>>(a, lda, ipiv, inv, ldinv); }))
        return;
    if (n <= 16)
        return inverse_d_columns<2>(n, a, lda, ipiv, inv, ldinv);
    if (n <= 32)
        return inverse_d_columns<4>(n, a, lda, ipiv, inv, ldinv);
    inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

void potrf_lower_d(int64_t n, double *a, int64_t lda, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { potrf_lower_registers<N, register_vector<N>>(a, lda, info); }))
        return;
    if (n <= 16)
        return potrf_lower_d_columns<2>(n, a, lda, info);
    if (n <= 32)
        return potrf_lower_d_columns<4>(n, a, lda, info);
    if (n <= 64)
        return potrf_lower_d_columns<8>(n, a, lda, info);
    potrf_lower_loop(n, a, lda, info);
}

// Complex double LU with partial pivoting for N <= 8: a column is R = 1 or 2 registers of four
// interleaved (re, im) pairs. The pivot is the first largest |re|+|im|, as LAPACK chooses it.
template <int N> void getrf_z_registers(std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    constexpr int R = (N + 3) / 4;
    double *ad = reinterpret_cast<double *>(a);
    const __m512i iota = _mm512_set_epi64(7, 6, 5, 4, 3, 2, 1, 0);
    const __m512i pair_offset = _mm512_set_epi64(1, 0, 1, 0, 1, 0, 1, 0);
    const __m512d odd_negative = _mm512_set_pd(-0.0, 0.0, -0.0, 0.0, -0.0, 0.0, -0.0, 0.0);
    // lanes of rows first..N-1 within register r
    auto rows_from = [](int first, int r) {
        unsigned m = 0;
        for (int i = 0; i < 4; ++i)
            if (4 * r + i >= first && 4 * r + i < N)
                m |= 3u << (2 * i);
        return static_cast<__mmask8>(m);
    };
    auto pair = [&](__m512d v, int lane) { return _mm512_permutexvar_pd(_mm512_set1_epi64(lane), v); };
    __m512d col[N][R];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            col[j][r] = _mm512_maskz_loadu_pd(rows_from(0, r), ad + 2 * (j * lda + 4 * r));
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        __m512d size[R];
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r) {
            const __m512d m = _mm512_abs_pd(col[k][r]);
            size[r] = _mm512_mask_mov_pd(_mm512_set1_pd(-1.0), rows_from(k, r), _mm512_add_pd(m, _mm512_permute_pd(m, 0x55)));
        }
        __m512d largest = R == 1 ? size[0] : _mm512_max_pd(size[0], size[R - 1]);
        // both lanes of a pair hold the same size: two exchanges reach every pair
        largest = _mm512_max_pd(largest, _mm512_shuffle_f64x2(largest, largest, 0x4E));
        largest = _mm512_max_pd(largest, _mm512_shuffle_f64x2(largest, largest, 0xB1));
        unsigned hits = 0;
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            hits |= static_cast<unsigned>(_mm512_cmp_pd_mask(size[r], largest, _CMP_EQ_OQ)) << (8 * r);
        const int p = hits != 0 ? static_cast<int>(__builtin_ctz(hits)) / 2 : k;
        ipiv[k] = p + 1;
        // Rows k and p trade places: lanes (2k, 2k+1) <-> (2p, 2p+1) over the R*8 lanes.
        __m512i idx[R];
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r) {
            idx[r] = _mm512_add_epi64(iota, _mm512_set1_epi64(8 * r));
            if (k / 4 == r)
                idx[r] = _mm512_mask_mov_epi64(idx[r], static_cast<__mmask8>(3u << (2 * (k % 4))),
                                               _mm512_add_epi64(_mm512_set1_epi64(2 * p), pair_offset));
        }
        const int pr = p / 4;
        const __mmask8 p_lanes = static_cast<__mmask8>(3u << (2 * (p % 4)));
        const __m512i to_k = _mm512_add_epi64(_mm512_set1_epi64(2 * k), pair_offset);
        if constexpr (R == 1) {
            idx[0] = _mm512_mask_mov_epi64(idx[0], p_lanes, to_k);
#pragma GCC unroll 8
            for (int j = 0; j < N; ++j)
                col[j][0] = _mm512_permutexvar_pd(idx[0], col[j][0]);
        } else {
            if (pr == 0)
                idx[0] = _mm512_mask_mov_epi64(idx[0], p_lanes, to_k);
            else
                idx[1] = _mm512_mask_mov_epi64(idx[1], p_lanes, to_k);
#pragma GCC unroll 8
            for (int j = 0; j < N; ++j) {
                const __m512d lo = col[j][0], hi = col[j][R - 1];
                col[j][0] = _mm512_permutex2var_pd(lo, idx[0], hi);
                col[j][R - 1] = _mm512_permutex2var_pd(lo, _mm512_and_si512(idx[R - 1], _mm512_set1_epi64(15)), hi);
            }
        }
        const int kr = k / 4, kl = 2 * (k % 4);
        const std::complex<double> pivot(_mm512_cvtsd_f64(pair(col[k][kr], kl)), _mm512_cvtsd_f64(pair(col[k][kr], kl + 1)));
        if (pivot != 0.0) {
            const std::complex<double> inverse = reciprocal(pivot);
            const __m512d re = _mm512_set1_pd(inverse.real()), im = _mm512_set1_pd(inverse.imag());
#pragma GCC unroll 2
            for (int r = kr; r < R; ++r) {
                const __m512d x = col[k][r];
                const __m512d product = _mm512_fmaddsub_pd(x, re, _mm512_mul_pd(_mm512_permute_pd(x, 0x55), im));
                col[k][r] = _mm512_mask_mov_pd(x, rows_from(k + 1, r), product);
            }
        } else if (*info == 0) {
            *info = k + 1;
        }
        __m512d swapped[R];
#pragma GCC unroll 2
        for (int r = kr; r < R; ++r)
            swapped[r] = _mm512_permute_pd(col[k][r], 0x55);
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) {
            const __m512d ure = pair(col[j][kr], kl);
            const __m512d uim = _mm512_xor_pd(pair(col[j][kr], kl + 1), odd_negative);
#pragma GCC unroll 2
            for (int r = kr; r < R; ++r) {
                const __m512d y = _mm512_fnmadd_pd(col[k][r], ure, col[j][r]);
                col[j][r] = _mm512_mask_mov_pd(col[j][r], rows_from(k + 1, r), _mm512_fmadd_pd(swapped[r], uim, y));
            }
        }
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            _mm512_mask_storeu_pd(ad + 2 * (j * lda + 4 * r), rows_from(0, r), col[j][r]);
}

// Complex double helpers: a vector holds four (re, im) pairs.
struct zvec {
    static __m512d odd_negative() { return _mm512_set_pd(-0.0, 0.0, -0.0, 0.0, -0.0, 0.0, -0.0, 0.0); }
    // x*s for a scalar s.
    static __m512d scale(__m512d x, std::complex<double> s)
    {
        return _mm512_fmaddsub_pd(x, _mm512_set1_pd(s.real()), _mm512_mul_pd(_mm512_permute_pd(x, 0x55), _mm512_set1_pd(s.imag())));
    }
    // x - l*u for a scalar u given as (re in every lane, (im, -im) pairs).
    static __m512d minus_product(__m512d x, __m512d l, __m512d u_re, __m512d u_im_alt)
    {
        return _mm512_fmadd_pd(_mm512_permute_pd(l, 0x55), u_im_alt, _mm512_fnmadd_pd(l, u_re, x));
    }
    static __m512d re(std::complex<double> u) { return _mm512_set1_pd(u.real()); }
    static __m512d im_alt(std::complex<double> u) { return _mm512_xor_pd(_mm512_set1_pd(u.imag()), odd_negative()); }
    // Lanes of rows >= first (of a padded column) in vector r.
    static __mmask8 rows_from(int64_t first, int r)
    {
        const int64_t skip = std::min<int64_t>(4, std::max<int64_t>(0, first - 4 * r));
        return static_cast<__mmask8>(0xFFu << (2 * skip));
    }
};

inline void copy_padded(int64_t n, const std::complex<double> *a, int64_t lda, std::complex<double> *work, int64_t ld)
{
    for (int64_t j = 0; j < n; ++j) {
        std::copy(a + j * lda, a + j * lda + n, work + j * ld);
        std::fill(work + j * ld + n, work + (j + 1) * ld, std::complex<double>(0.0));
    }
}

// Complex double LU with partial pivoting for n <= 4*R on a zero-padded copy; the pivot is
// the first largest |re|+|im|.
template <int R>
void getrf_z_columns(int64_t n, std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info,
                     std::complex<double> *work)
{
    constexpr int64_t ld = 4 * R;
    copy_padded(n, a, lda, work, ld);
    for (int64_t k = 0; k < n; ++k) {
        std::complex<double> *col = work + k * ld;
        const double *cold = reinterpret_cast<const double *>(col);
        __m512d size[R];
        __m512d largest = _mm512_set1_pd(-1.0);
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r) {
            const __m512d m = _mm512_abs_pd(_mm512_load_pd(cold + 8 * r));
            const __mmask8 keep = zvec::rows_from(k, r) & static_cast<__mmask8>(~zvec::rows_from(n, r));
            size[r] = _mm512_mask_mov_pd(_mm512_set1_pd(-1.0), keep, _mm512_add_pd(m, _mm512_permute_pd(m, 0x55)));
            largest = _mm512_max_pd(largest, size[r]);
        }
        largest = zmm8::all_max(largest);
        uint64_t hits = 0;
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r)
            hits |= static_cast<uint64_t>(_mm512_cmp_pd_mask(size[r], largest, _CMP_EQ_OQ)) << (8 * r);
        const int64_t p = hits != 0 ? __builtin_ctzll(hits) / 2 : k;
        ipiv[k] = p + 1;
        if (p != k)
            for (int64_t j = 0; j < n; ++j)
                std::swap(work[k + j * ld], work[p + j * ld]);
        const std::complex<double> pivot = col[k];
        const int first = static_cast<int>((k + 1) / 4);
        const __mmask8 boundary = zvec::rows_from(k + 1, first);
        __m512d l[R];
        double *cold_w = reinterpret_cast<double *>(col);
        if (pivot != 0.0) {
            const std::complex<double> inverse = reciprocal(pivot);
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= first) {
                    const __m512d c = _mm512_load_pd(cold_w + 8 * r);
                    l[r] = _mm512_maskz_mov_pd(r == first ? boundary : 0xFF, zvec::scale(c, inverse));
                    _mm512_store_pd(cold_w + 8 * r, r == first ? _mm512_mask_mov_pd(c, boundary, l[r]) : l[r]);
                }
        } else {
            if (*info == 0)
                *info = k + 1;
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= first)
                    l[r] = _mm512_maskz_load_pd(r == first ? boundary : 0xFF, cold_w + 8 * r);
        }
        for (int64_t j = k + 1; j < n; ++j) {
            double *target = reinterpret_cast<double *>(work + j * ld);
            const std::complex<double> u = work[k + j * ld];
            const __m512d ure = zvec::re(u), uim = zvec::im_alt(u);
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= first) {
                    const __m512d c = _mm512_load_pd(target + 8 * r);
                    const __m512d updated = zvec::minus_product(c, l[r], ure, uim);
                    _mm512_store_pd(target + 8 * r, r == first ? _mm512_mask_mov_pd(c, boundary, updated) : updated);
                }
        }
    }
    for (int64_t j = 0; j < n; ++j)
        std::copy(work + j * ld, work + j * ld + n, a + j * lda);
}

// Complex Cholesky A = L*L^H for n <= 4*R, right-looking on a padded copy; only the lower
// triangle goes back, and a non-positive pivot stops it as LAPACK does.
template <int R> void potrf_lower_z_columns(int64_t n, std::complex<double> *a, int64_t lda, int64_t *info)
{
    constexpr int64_t ld = 4 * R;
    alignas(64) std::complex<double> work[ld * ld];
    copy_padded(n, a, lda, work, ld);
    int64_t done = n;
    for (int64_t k = 0; k < n; ++k) {
        std::complex<double> *col = work + k * ld;
        const double d = col[k].real();
        if (!(d > 0.0)) {
            col[k] = d;
            *info = k + 1;
            done = k;
            break;
        }
        const double root = std::sqrt(d);
        const __m512d inverse = _mm512_set1_pd(1.0 / root);
        const int first = static_cast<int>((k + 1) / 4);
        double *cold = reinterpret_cast<double *>(col);
        __m512d l[R];
#pragma GCC unroll 8
        for (int r = 0; r < R; ++r)
            if (r >= first) {
                const __m512d c = _mm512_load_pd(cold + 8 * r);
                l[r] = _mm512_maskz_mul_pd(zvec::rows_from(k + 1, r), c, inverse);
                _mm512_store_pd(cold + 8 * r, _mm512_mask_mov_pd(c, zvec::rows_from(k + 1, r), l[r]));
            }
        col[k] = root;
        for (int64_t j = k + 1; j < n; ++j) {
            double *target = reinterpret_cast<double *>(work + j * ld);
            const std::complex<double> u = std::conj(col[j]);
            const __m512d ure = zvec::re(u), uim = zvec::im_alt(u);
            const int from = static_cast<int>(j / 4);
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                if (r >= from)
                    _mm512_store_pd(target + 8 * r, zvec::minus_product(_mm512_load_pd(target + 8 * r), l[r], ure, uim));
        }
    }
    for (int64_t j = 0; j < done; ++j) {
        work[j + j * ld] = work[j + j * ld].real();
        std::copy(work + j * ld + j, work + j * ld + n, a + j * lda + j);
    }
    if (done < n)
        a[done + done * lda] = work[done + done * ld];
}

// The complex inverse U^-1 * L^-1 * P^T for n <= 4*R from a padded copy of the factor, two
// or four columns of the result at a time in registers.
template <int R>
void inverse_z_columns(int64_t n, const std::complex<double> *a, int64_t lda, const int64_t *ipiv,
                       std::complex<double> *inv, int64_t ldinv)
{
    constexpr int64_t ld = 4 * R;
    constexpr int G = R <= 2 ? 4 : 2; // as many independent columns as the registers hold
    alignas(64) std::complex<double> f[ld * ld];
    std::complex<double> scale[ld];
    copy_padded(n, a, lda, f, ld);
    for (int64_t k = 0; k < n; ++k)
        scale[k] = reciprocal(f[k + k * ld]);
    int64_t at[ld], to[ld];
    inverse_destinations(n, ipiv, at, to);
    const double *fd = reinterpret_cast<const double *>(f);
    // Element k of a column held as R vectors: (re in every lane, (im, -im) pairs).
    auto element = [](const __m512d *x, int64_t k, __m512d &re, __m512d &im_alt) {
        __m512d v = x[0];
#pragma GCC unroll 8
        for (int r = 1; r < R; ++r)
            if (k / 4 == r)
                v = x[r];
        re = _mm512_permutexvar_pd(_mm512_set1_epi64(2 * (k % 4)), v);
        im_alt = _mm512_xor_pd(_mm512_permutexvar_pd(_mm512_set1_epi64(2 * (k % 4) + 1), v), zvec::odd_negative());
    };
    for (int64_t j0 = 0; j0 < n; j0 += G) {
        __m512d x[G][R];
#pragma GCC unroll 4
        for (int g = 0; g < G; ++g)
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                x[g][r] = (j0 + g) / 4 == r ? _mm512_maskz_mov_pd(static_cast<__mmask8>(1u << (2 * ((j0 + g) % 4))),
                                                                  _mm512_set1_pd(1.0))
                                            : _mm512_setzero_pd();
        for (int64_t k = j0; k + 1 < n; ++k) { // L^-1
            const int first = static_cast<int>((k + 1) / 4);
            __m512d l[R];
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                l[r] = r >= first ? _mm512_maskz_load_pd(zvec::rows_from(k + 1, r), fd + 2 * k * ld + 8 * r)
                                  : _mm512_setzero_pd();
#pragma GCC unroll 4
            for (int g = 0; g < G; ++g) {
                __m512d re, im;
                element(x[g], k, re, im);
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    if (r >= first)
                        x[g][r] = zvec::minus_product(x[g][r], l[r], re, im);
            }
        }
        for (int64_t k = n - 1; k >= 0; --k) { // U^-1
            const int last = static_cast<int>((k + 3) / 4) - 1;
            __m512d u[R];
#pragma GCC unroll 8
            for (int r = 0; r < R; ++r)
                u[r] = r <= last ? _mm512_maskz_load_pd(static_cast<__mmask8>(~zvec::rows_from(k, r)), fd + 2 * k * ld + 8 * r)
                                 : _mm512_setzero_pd();
            const __mmask8 lane_k = static_cast<__mmask8>(3u << (2 * (k % 4)));
#pragma GCC unroll 4
            for (int g = 0; g < G; ++g) {
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    if (k / 4 == r)
                        x[g][r] = _mm512_mask_mov_pd(x[g][r], lane_k, zvec::scale(x[g][r], scale[k]));
                __m512d re, im;
                element(x[g], k, re, im);
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    if (r <= last)
                        x[g][r] = zvec::minus_product(x[g][r], u[r], re, im);
            }
        }
#pragma GCC unroll 4
        for (int g = 0; g < G; ++g)
            if (j0 + g < n)
#pragma GCC unroll 8
                for (int r = 0; r < R; ++r)
                    _mm512_mask_storeu_pd(reinterpret_cast<double *>(inv + to[j0 + g] * ldinv) + 8 * r,
                                          static_cast<__mmask8>(~zvec::rows_from(n, r)), x[g][r]);
    }
}

// Complex Cholesky A = L*L^H for N <= 8, right-looking with a column in R = 1 or 2 registers.
template <int N> void potrf_lower_z_registers(std::complex<double> *a, int64_t lda, int64_t *info)
{
    constexpr int R = (N + 3) / 4;
    double *ad = reinterpret_cast<double *>(a);
    auto rows = [](int first, int r) { // lanes of rows first..N-1 in register r
        unsigned m = 0;
        for (int i = 0; i < 4; ++i)
            if (4 * r + i >= first && 4 * r + i < N)
                m |= 3u << (2 * i);
        return static_cast<__mmask8>(m);
    };
    auto lane = [](__m512d v, int l) { return _mm512_permutexvar_pd(_mm512_set1_epi64(l), v); };
    __m512d col[N][R];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            col[j][r] = _mm512_maskz_loadu_pd(rows(j, r), ad + 2 * (j * lda + 4 * r));
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const int kr = k / 4, kl = 2 * (k % 4);
        const __m512d dv = lane(col[k][kr], kl);
        const double d = _mm512_cvtsd_f64(dv);
        if (!(d > 0.0)) {
            for (int j = 0; j < k; ++j)
                for (int r = 0; r < R; ++r)
                    _mm512_mask_storeu_pd(ad + 2 * (j * lda + 4 * r), rows(j, r), col[j][r]);
            a[k + k * lda] = d;
            *info = k + 1;
            return;
        }
        const __m512d root = _mm512_sqrt_pd(dv);
#pragma GCC unroll 2
        for (int r = kr; r < R; ++r)
            col[k][r] = _mm512_mask_div_pd(col[k][r], rows(k + 1, r), col[k][r], root);
        col[k][kr] = _mm512_mask_mov_pd(col[k][kr], static_cast<__mmask8>(3u << kl),
                                        _mm512_maskz_mov_pd(static_cast<__mmask8>(0x55), root));
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) {
            const int jr = j / 4, jl = 2 * (j % 4);
            // u = conj(l_j): re in every lane, and (im, -im) pairs of conj = (-im_l, im_l)
            const __m512d ure = lane(col[k][jr], jl);
            const __m512d uim = _mm512_xor_pd(lane(col[k][jr], jl + 1), _mm512_set_pd(0.0, -0.0, 0.0, -0.0, 0.0, -0.0, 0.0, -0.0));
#pragma GCC unroll 2
            for (int r = jr; r < R; ++r)
                col[j][r] = _mm512_mask_mov_pd(col[j][r], rows(j, r), zvec::minus_product(col[j][r], col[k][r], ure, uim));
        }
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j) {
        const int jr = j / 4, jl = 2 * (j % 4);
        col[j][jr] = _mm512_mask_mov_pd(col[j][jr], static_cast<__mmask8>(2u << jl), _mm512_setzero_pd());
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            _mm512_mask_storeu_pd(ad + 2 * (j * lda + 4 * r), rows(j, r), col[j][r]);
    }
}

void potrf_lower_z(int64_t n, std::complex<double> *a, int64_t lda, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { potrf_lower_z_registers<N>(a, lda, info); }))
        return;
    if (n <= 16)
        return potrf_lower_z_columns<4>(n, a, lda, info);
    if (n <= 32)
        return potrf_lower_z_columns<8>(n, a, lda, info);
    potrf_lower_loop(n, a, lda, info);
}

void inverse_z(int64_t n, const std::complex<double> *a, int64_t lda, const int64_t *ipiv, std::complex<double> *inv,
               int64_t ldinv)
{
    if (n <= 4)
        return inverse_z_columns<1>(n, a, lda, ipiv, inv, ldinv);
    if (n <= 8)
        return inverse_z_columns<2>(n, a, lda, ipiv, inv, ldinv);
    if (n <= 16)
        return inverse_z_columns<4>(n, a, lda, ipiv, inv, ldinv);
    if (n <= 32)
        return inverse_z_columns<8>(n, a, lda, ipiv, inv, ldinv);
    inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

void getrf_z(int64_t n, std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { getrf_z_registers<N>(a, lda, ipiv, info); }))
        return;
    alignas(64) std::complex<double> work[32 * 32];
    if (n <= 16)
        return getrf_z_columns<4>(n, a, lda, ipiv, info, work);
    if (n <= 32)
        return getrf_z_columns<8>(n, a, lda, ipiv, info, work);
    getrf_loop(n, a, lda, ipiv, info);
}

constexpr small_kernels<std::complex<double>> complex_double_table()
{
    return {getrf_z,           potrf_lower_z, potrf_upper_loop<std::complex<double>>,
            getrs_loop<std::complex<double>>, inverse_z, 32, 32, 32};
}

// Real double LU with partial pivoting for 8 < n <= 8*R on a copy with zero-padded columns of
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
    if (at_fixed_order(n, [&]<int N>() { getrf_registers<N, register_vector<N>>(a, lda, ipiv, info); }))
        return;
    if (n <= 16)
        return getrf_d_columns<2>(n, a, lda, ipiv, info);
    if (n <= 32)
        return getrf_d_columns<4>(n, a, lda, ipiv, info);
    if (n <= 64)
        return getrf_d_columns<8>(n, a, lda, ipiv, info);
    getrf_loop(n, a, lda, ipiv, info);
}

constexpr small_kernels<double> double_table()
{
    // listed whole so that the generic fixed-order code is not compiled for nothing
    return {getrf_d, potrf_lower_d, potrf_upper_loop<double>, getrs_loop<double>, inverse_d, 64, 64, 64};
}

} // namespace
} // namespace zel::dense::avx512

namespace zel::dense {

const small_set small_set_avx512 = {avx512::float_table(64, 8, 64), avx512::double_table(),
                                    avx512::table<std::complex<float>>(32, 16, 64), avx512::complex_double_table()};

} // namespace zel::dense
