// The row sorter on 16 lanes of 32-bit keys.
#include <immintrin.h>

#define ZEL_ROW_SORT_ISA avx512
#include "row_sort_impl.hpp"

namespace zel::sparse_syrk {
namespace avx512 {
namespace {

struct lanes16 {
    using reg = __m512i;
    static constexpr int lanes = 16;
    static constexpr uint32_t all = 0xFFFFu;
    static reg load(const int32_t *p) { return _mm512_loadu_si512(p); }
    static reg splat(int32_t x) { return _mm512_set1_epi32(x); }
    static uint32_t eq(reg a, reg b) { return _mm512_cmpeq_epi32_mask(a, b); }
    static uint32_t lt(reg a, reg b) { return _mm512_cmplt_epi32_mask(a, b); }
};

} // namespace
} // namespace avx512

const row_sorter row_sorter_avx512 = {avx512::count<avx512::lanes16>, avx512::ranks<avx512::lanes16>};

} // namespace zel::sparse_syrk
