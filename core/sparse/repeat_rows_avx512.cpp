// Repeated rows on 512-bit vectors.
#include <immintrin.h>

#include "repeat_rows.hpp"

namespace zel::sparse_syrk {
namespace avx512 {
namespace {

template <bool High>
void form_f64(const repeat_lanes_f64 &lanes, int rows, int stride, const double *factor, const double *const *values,
              double *const *out)
{
    const int distinct = lanes.distinct;
    const __mmask8 store_low = static_cast<__mmask8>(distinct >= 8 ? 0xFF : (1u << distinct) - 1u);
    const __mmask8 store_high = static_cast<__mmask8>(distinct > 8 ? (1u << (distinct - 8)) - 1u : 0u);
    for (int r = 0; r < rows; ++r) {
        __m512d low = _mm512_setzero_pd(), high = _mm512_setzero_pd();
        for (int t = 0; t < lanes.tails; ++t) {
            const __m512d x = _mm512_maskz_loadu_pd(lanes.load[t], values[t * stride + r]);
            const __m512d p = _mm512_mul_pd(x, _mm512_set1_pd(factor[t * stride + r]));
            const __m512i *index = reinterpret_cast<const __m512i *>(lanes.index[t]);
            const __mmask8 to_low = lanes.mask[t][0];
            low = _mm512_mask_add_pd(low, to_low, low, _mm512_maskz_permutexvar_pd(to_low, index[0], p));
            if constexpr (High) {
                const __mmask8 to_high = lanes.mask[t][1];
                high = _mm512_mask_add_pd(high, to_high, high, _mm512_maskz_permutexvar_pd(to_high, index[1], p));
            }
        }
        _mm512_mask_storeu_pd(out[r], store_low, low);
        if constexpr (High)
            _mm512_mask_storeu_pd(out[r] + 8, store_high, high);
    }
}

void form_f64_any(const repeat_lanes_f64 &lanes, int rows, int stride, const double *factor,
                  const double *const *values, double *const *out)
{
    if (lanes.distinct > 8)
        form_f64<true>(lanes, rows, stride, factor, values, out);
    else
        form_f64<false>(lanes, rows, stride, factor, values, out);
}

void form_f32(const repeat_lanes_f32 &lanes, int rows, int stride, const float *factor, const float *const *values,
              float *const *out)
{
    const __mmask16 store = static_cast<__mmask16>(lanes.distinct >= 16 ? 0xFFFF : (1u << lanes.distinct) - 1u);
    for (int r = 0; r < rows; ++r) {
        __m512 sum = _mm512_setzero_ps();
        for (int t = 0; t < lanes.tails; ++t) {
            const __m512 x = _mm512_maskz_loadu_ps(lanes.load[t], values[t * stride + r]);
            const __m512 p = _mm512_mul_ps(x, _mm512_set1_ps(factor[t * stride + r]));
            const __m512i index = _mm512_load_si512(reinterpret_cast<const __m512i *>(lanes.index[t]));
            const __mmask16 to = lanes.mask[t];
            sum = _mm512_mask_add_ps(sum, to, sum, _mm512_maskz_permutexvar_ps(to, index, p));
        }
        _mm512_mask_storeu_ps(out[r], store, sum);
    }
}

} // namespace
} // namespace avx512

const repeat_former repeat_former_avx512 = {avx512::form_f64_any, avx512::form_f32};

} // namespace zel::sparse_syrk
