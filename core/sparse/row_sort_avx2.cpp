// The row sorter on 8 lanes of 32-bit keys.
#include <immintrin.h>

#define ZEL_ROW_SORT_ISA avx2
#include "row_sort_impl.hpp"

namespace zel::sparse_syrk {
namespace avx2 {
namespace {

struct lanes8 {
    using reg = __m256i;
    static constexpr int lanes = 8;
    static constexpr uint32_t all = 0xFFu;
    static reg load(const int32_t *p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)); }
    static reg splat(int32_t x) { return _mm256_set1_epi32(x); }
    static uint32_t mask(reg m) { return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(m))); }
    static uint32_t eq(reg a, reg b) { return mask(_mm256_cmpeq_epi32(a, b)); }
    static uint32_t lt(reg a, reg b) { return mask(_mm256_cmpgt_epi32(b, a)); }
};

} // namespace
} // namespace avx2

const row_sorter row_sorter_avx2 = {avx2::count<avx2::lanes8>, avx2::ranks<avx2::lanes8>};

} // namespace zel::sparse_syrk
