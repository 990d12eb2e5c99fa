// Rows that repeat a recorded shape, formed in vector lanes: each tail of right-hand values is
// loaded whole, scaled by its left-hand factor, and permuted onto the row's places. Plain data
// only, so that the files built for one instruction set share no inline code with the rest.
#pragma once

#include <cstdint>

namespace zel::sparse_syrk {

// Most tails of a shape (the left-hand entries of a short row).
constexpr int repeat_tails = 16;

// Per tail: which product lands on each place (index), on which places (mask), and which of the
// tail's values to load (load); places counted from 0 across the row's `distinct` columns. Double
// rows use two 8-lane vectors (places 0-7 and 8-15), float rows one of 16 lanes.
struct repeat_lanes_f64 {
    alignas(64) int64_t index[repeat_tails][2][8];
    uint8_t mask[repeat_tails][2];
    uint8_t load[repeat_tails];
    int tails, distinct;
};
struct repeat_lanes_f32 {
    alignas(64) int32_t index[repeat_tails][16];
    uint16_t mask[repeat_tails];
    uint16_t load[repeat_tails];
    int tails, distinct;
};

// rows rows of the shape: factor[t * stride + r] and the tail's first value values[t * stride + r]
// for tail t of row r; the row's sums go to out[r][0, distinct). Sums are taken in tail order,
// a product rounded before it is added, as the portable kernels take them.
struct repeat_former {
    void (*f64)(const repeat_lanes_f64 &lanes, int rows, int stride, const double *factor,
                const double *const *values, double *const *out);
    void (*f32)(const repeat_lanes_f32 &lanes, int rows, int stride, const float *factor,
                const float *const *values, float *const *out);
};

extern const repeat_former repeat_former_avx512;

// The former for this processor, chosen at load time; null below AVX-512 (ZEL_SPARSE_ISA lowers it).
extern const repeat_former *repeat_former_active;

} // namespace zel::sparse_syrk
