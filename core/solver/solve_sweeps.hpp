// Forward and backward sweeps of the supernodal factor L (A = P·L·Lᴴ·Pᵀ) over a block of
// right-hand sides, in place: forward L·Y = W, backward Lᴴ·X = Y. The factor's view, the
// kernels' table (sweep_kernels.hpp, compiled per instruction set) and the exported entry.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <tuple>

#include "zel/pds_solve.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// The factor as the frame hands it over: 1-based pointers and row numbers.
template <class T, class I> struct sweep_factor {
    I nsuper;
    const I *super_ptr, *col_ptr, *row_ptr, *row_index;
    const T *values;
};

template <class T, class I> sweep_factor<T, I> factor_of(const zel_pds_frame &frame)
{
    return {I(frame.nsuper), static_cast<const I *>(frame.super_ptr), static_cast<const I *>(frame.col_ptr),
            static_cast<const I *>(frame.row_ptr), static_cast<const I *>(frame.row_index),
            static_cast<const T *>(frame.l_values)};
}

// One supernode: its first column (0-based), columns and rows, its panel (column-major,
// leading dimension rows, the diagonal block on top) and its row list (1-based).
template <class T, class I> struct sweep_panel {
    int64_t first, cols, rows;
    const T *l;
    const I *index;
};

template <class T, class I> inline sweep_panel<T, I> panel_of(const sweep_factor<T, I> &f, I s)
{
    const int64_t first = int64_t(f.super_ptr[s]) - 1, at = f.col_ptr[first];
    return {first, int64_t(f.super_ptr[s + 1]) - 1 - first, int64_t(f.col_ptr[first + 1]) - at, f.values + (at - 1),
            f.row_index + (f.row_ptr[s] - 1)};
}

template <class T, class I> int64_t largest_panel_rows(const sweep_factor<T, I> &f)
{
    int64_t rows = 1;
    for (I s = 0; s < f.nsuper; ++s)
        rows = std::max(rows, int64_t(f.col_ptr[f.super_ptr[s]]) - f.col_ptr[f.super_ptr[s] - 1]);
    return rows;
}

// k right-hand sides of the factor's order at leading dimension ld.
template <class T> struct rhs_block {
    T *x;
    int64_t ld, k;
};

// Right-hand sides a sweep takes at once (more are swept in chunks of this many).
inline constexpr int64_t sweep_chunk = 16;

// Values of the work vector a sweep of k right-hand sides needs per row of a panel: the chunk
// rounded up to 2, 4, 8 or 16 (one right-hand side needs one).
inline int64_t chunk_width(int64_t k)
{
    return k == 1 ? 1 : k > 8 ? 16 : k > 4 ? 8 : k > 2 ? 4 : 2;
}

// The forward and backward sweeps of one value and index type; t holds
// largest_panel_rows(f)·chunk_width(k) values.
template <class T, class I> struct sweep_pair {
    void (*forward)(const sweep_factor<T, I> &, const rhs_block<T> &, T *t);
    void (*backward)(const sweep_factor<T, I> &, const rhs_block<T> &, T *t);
};

using sweep_set = std::tuple<sweep_pair<float, int32_t>, sweep_pair<double, int32_t>,
                             sweep_pair<std::complex<float>, int32_t>, sweep_pair<std::complex<double>, int32_t>,
                             sweep_pair<float, int64_t>, sweep_pair<double, int64_t>,
                             sweep_pair<std::complex<float>, int64_t>, sweep_pair<std::complex<double>, int64_t>>;

// One set per instruction-set level (sweep_base.cpp, sweep_avx2.cpp, sweep_avx512.cpp); the
// widest this processor runs is chosen at load time.
extern const sweep_set sweeps_base;
extern const sweep_set sweeps_avx2;
extern const sweep_set sweeps_avx512;
extern const sweep_set *sweeps_active;

template <class T, class I> const sweep_pair<T, I> &sweeps_for() { return std::get<sweep_pair<T, I>>(*sweeps_active); }

enum class sweep_direction { forward, backward };

// The exported kernels: error 0, 1 (no work block, or no memory), or 2 (a frame of other
// value or index types, or a block narrower than the factor).
template <sweep_direction D, class T, class I>
void sweep_entry(const zel_pds_frame *frame, int64_t nrhs, T *work, int64_t ldw, int64_t *error)
{
    if (error == nullptr)
        return;
    if (frame == nullptr || (nrhs > 0 && frame->n > 0 && work == nullptr)) {
        *error = 1;
        return;
    }
    if (!pds::frame_holds<T, I>(*frame) || nrhs < 0 || frame->n < 0 || (nrhs > 1 && ldw < frame->n)) {
        *error = 2;
        return;
    }
    *error = 0;
    if (nrhs == 0 || frame->n == 0 || frame->nsuper <= 0)
        return;
    const sweep_factor<T, I> f = factor_of<T, I>(*frame);
    const auto count = checked_mul(largest_panel_rows(f), chunk_width(nrhs));
    scratch_array<T> t;
    if (count)
        t = scratch_array<T>(size_t(*count), 128);
    if (!t) {
        *error = 1;
        return;
    }
    const rhs_block<T> b{work, std::max<int64_t>(ldw, frame->n), nrhs};
    const sweep_pair<T, I> &sweeps = sweeps_for<T, I>();
    (D == sweep_direction::forward ? sweeps.forward : sweeps.backward)(f, b, t.get());
}

} // namespace zel::solver
