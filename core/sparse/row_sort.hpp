// Distinct counts and ranks of a row's column keys by vector compares: the columns of a short
// product row (the tails of a few right-hand rows) are ordered without a merge, whose
// data-dependent branches cost more than the whole comparison matrix at these sizes.
#pragma once

#include <cstdint>
#include <limits>

namespace zel::sparse_syrk {

// Keys per call. Callers keep their key arrays this long and pad the keys past n with
// sort_pad up to a multiple of 16, at least 16 (pad_keys); real keys are below sort_pad.
constexpr uint32_t sort_capacity = 128;
constexpr int32_t sort_pad = std::numeric_limits<int32_t>::max();

inline void pad_keys(int32_t *keys, uint32_t n)
{
    for (uint32_t e = n; e == 0 || e % 16 != 0; ++e) // an empty row still gets one whole vector
        keys[e] = sort_pad;
}

struct row_sorter {
    // Number of distinct keys among keys[0, n).
    uint32_t (*count)(const int32_t *keys, uint32_t n);
    // rank[e] = the number of distinct keys below keys[e]; returns the number of distinct keys.
    uint32_t (*ranks)(const int32_t *keys, uint32_t n, uint32_t *rank);
};

extern const row_sorter row_sorter_avx512, row_sorter_avx2;

// The sorter for this processor, chosen at load time; null where no vector unit pays off (the
// kernels then merge). ZEL_SPARSE_ISA=avx2 or =baseline lowers the choice.
extern const row_sorter *row_sorter_active;

} // namespace zel::sparse_syrk
