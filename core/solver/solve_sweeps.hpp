// Forward and backward sweeps of a supernodal factor over a block of right-hand sides, in
// place, for every kind of factor: L·Lᴴ, L·U with row interchanges (solving with A or with
// Aᵀ, Aᴴ), and L·D·Lᵀ (L·D·Lᴴ) with 1×1 or Bunch–Kaufman pivots, whose diagonal step lies
// between the sweeps. The factor's view, the kernels' table (sweep_kernels.hpp, compiled per
// instruction set) and the exported entry.
#pragma once

#include <algorithm>
#include <array>
#include <complex>
#include <cstdint>
#include <optional>
#include <tuple>


#include "bk_blocks.hpp"
#include "zel/pds_solve.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// The factor as the frame hands it over: 1-based pointers, row numbers and pivots.
template <class T, class I> struct sweep_factor {
    I nsuper;
    const I *super_ptr, *col_ptr, *row_ptr, *row_index;
    const T *values;
    const I *u_col_ptr;
    const T *u_values;
    const I *row_pivots, *bk_pivots;
};

template <class T, class I> sweep_factor<T, I> factor_of(const zel_pds_frame &frame)
{
    return {I(frame.nsuper),
            static_cast<const I *>(frame.super_ptr),
            static_cast<const I *>(frame.col_ptr),
            static_cast<const I *>(frame.row_ptr),
            static_cast<const I *>(frame.row_index),
            static_cast<const T *>(frame.l_values),
            static_cast<const I *>(frame.u_col_ptr),
            static_cast<const T *>(frame.u_values),
            static_cast<const I *>(frame.row_pivots),
            static_cast<const I *>(frame.bk_pivots)};
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

// k right-hand sides of the factor's order n at leading dimension ld.
template <class T> struct rhs_block {
    T *x;
    int64_t ld, k, n;
};

// Right-hand sides a sweep takes at once (more are swept in chunks of this many).
inline constexpr int64_t sweep_chunk = 16;

// Values of the work vector a sweep of k right-hand sides needs per row of a panel: the chunk
// rounded up to 2, 4, 8 or 16 (one right-hand side is swept as a chunk of two, or in place).
inline int64_t chunk_width(int64_t k)
{
    return k > 8 ? 16 : k > 4 ? 8 : k > 2 ? 4 : 2;
}

// The sweeps, one per exported kernel stem. The diagonal step of the L·D·Lᵀ kinds is left to
// the caller, between the forward and the backward sweep.
enum class sweep_kind : int {
    cholesky_forward,  // L·Y = W
    cholesky_backward, // Lᴴ·X = Y
    lu_forward,        // per block: P_s, L11⁻¹, then the rows below −= L21·x1
    lu_backward,       // per block: x1 −= U12·x_off, U11⁻¹
    lu_forward_t,      // per block: U11⁻ᵀ, then the rows below −= U12ᵀ·x1
    lu_backward_t,     // per block: x1 −= L21ᵀ·x_off, L11⁻ᵀ, P_sᵀ
    diag_forward,      // as lu_forward (L11 unit, D on its diagonal not used)
    diag_backward,     // as lu_backward_t, with Lᴴ for a Hermitian factor
    bk_forward,        // per block: the Bunch–Kaufman forward half, then L21
    bk_backward,       // per block: x1 −= L21ᵀ·x_off, then the backward half
    count
};
inline constexpr int sweep_kinds = int(sweep_kind::count);

// The sweeps of one value and index type; t holds largest_panel_rows(f)·chunk_width(k) values,
// kept n·chunk_width(k) (null for one right-hand side of L·Lᴴ).
template <class T, class I>
using sweep_fn = void (*)(const sweep_factor<T, I> &, const rhs_block<T> &, T *t, T *kept);
template <class T, class I> using sweep_table = std::array<sweep_fn<T, I>, sweep_kinds>;

using sweep_set = std::tuple<sweep_table<float, int32_t>, sweep_table<double, int32_t>,
                             sweep_table<std::complex<float>, int32_t>, sweep_table<std::complex<double>, int32_t>,
                             sweep_table<float, int64_t>, sweep_table<double, int64_t>,
                             sweep_table<std::complex<float>, int64_t>, sweep_table<std::complex<double>, int64_t>>;

// One set per instruction-set level (sweep_base.cpp, sweep_avx2.cpp, sweep_avx512.cpp); the
// widest this processor runs is chosen at load time.
extern const sweep_set sweeps_base;
extern const sweep_set sweeps_avx2;
extern const sweep_set sweeps_avx512;
extern const sweep_set *sweeps_active;

template <class T, class I> const sweep_table<T, I> &sweeps_for()
{
    return std::get<sweep_table<T, I>>(*sweeps_active);
}

// The n rows of a block's right-hand sides conjugated, when asked: a sweep with conj(F) is the
// conjugate of the sweep with F on the conjugate right-hand sides, so no kernel takes a
// conjugated variant but the Cholesky one (whose backward sweep is Lᴴ in every case).
template <class T> void conjugate_if(const rhs_block<T> &b, int64_t n, bool conj)
{
    if constexpr (is_complex_v<T>)
        if (conj)
            for (int64_t c = 0; c < b.k; ++c)
                for (int64_t i = 0; i < n; ++i)
                    b.x[c * b.ld + i] = std::conj(b.x[c * b.ld + i]);
}

// Whether a sweep of kind K applies the conjugate factor: the transposed unsymmetric sweeps
// for Aᴴ, the backward sweeps of the Hermitian indefinite type.
template <sweep_kind K, class T> bool conjugates(const zel_pds_frame &frame)
{
    if constexpr (!is_complex_v<T>)
        return false;
    else if constexpr (K == sweep_kind::lu_forward_t || K == sweep_kind::lu_backward_t)
        return frame.transposed == 2;
    else if constexpr (K == sweep_kind::diag_backward || K == sweep_kind::bk_backward)
        return pds::hermitian_type(frame.matrix_type);
    else
        return false;
}

// Row interchanges of every diagonal block within the block (1 … ncols).
template <class T, class I> bool row_pivots_valid(const sweep_factor<T, I> &f)
{
    if (f.row_pivots == nullptr)
        return false;
    for (I s = 0; s < f.nsuper; ++s)
        for (I j = f.super_ptr[s] - 1; j < f.super_ptr[s + 1] - 1; ++j)
            if (f.row_pivots[j] < 1 || f.row_pivots[j] > f.super_ptr[s + 1] - f.super_ptr[s])
                return false;
    return true;
}

template <class T, class I> bool bk_pivots_valid(const sweep_factor<T, I> &f)
{
    if (f.bk_pivots == nullptr)
        return false;
    for (I s = 0; s < f.nsuper; ++s)
        if (!bk_pivots_valid(f.bk_pivots + (f.super_ptr[s] - 1), int64_t(f.super_ptr[s + 1]) - f.super_ptr[s]))
            return false;
    return true;
}

// U12 is addressed through u_col_ptr; its values may be absent only when it has none.
template <class T, class I> bool upper_present(const sweep_factor<T, I> &f, int64_t n)
{
    return f.u_col_ptr != nullptr && (f.u_values != nullptr || f.u_col_ptr[n] <= 1);
}

// Whether the factor holds what a sweep of kind K reads.
template <sweep_kind K, class T, class I> bool factor_usable(const sweep_factor<T, I> &f, int64_t n)
{
    using k = sweep_kind;
    if (f.super_ptr == nullptr || f.col_ptr == nullptr || f.row_ptr == nullptr || f.row_index == nullptr ||
        f.values == nullptr)
        return false;
    if constexpr (K == k::lu_forward || K == k::lu_backward_t || K == k::diag_forward || K == k::diag_backward)
        return row_pivots_valid(f);
    else if constexpr (K == k::lu_backward || K == k::lu_forward_t)
        return upper_present(f, n);
    else if constexpr (K == k::bk_forward || K == k::bk_backward)
        return bk_pivots_valid(f);
    else
        return true;
}

// Values of the scratch a sweep of nrhs right-hand sides takes: the rows it keeps between
// panels (none for one right-hand side of L·Lᴴ, swept in place), then the largest panel's, of
// chunk_width(nrhs) values each.
template <class T, class I>
std::optional<size_t> sweep_scratch_count(const sweep_factor<T, I> &f, int64_t n, int64_t nrhs, bool in_place)
{
    const auto rows = checked_add(largest_panel_rows(f), in_place ? 0 : n);
    const auto count = rows ? checked_mul(*rows, chunk_width(nrhs)) : std::nullopt;
    return count && checked_bytes<T>(size_t(*count)) ? std::optional<size_t>(size_t(*count)) : std::nullopt;
}

// The frame's lent scratch when it holds count values, else a new one (empty when that fails).
template <class T> T *lent_or_new(const zel_pds_frame &frame, size_t count, scratch_array<T> &own)
{
    const bool lent = frame.sweep_scratch != nullptr && frame.sweep_scratch_bytes >= 0 &&
                      size_t(frame.sweep_scratch_bytes) / sizeof(T) >= count &&
                      reinterpret_cast<uintptr_t>(frame.sweep_scratch) % 64 == 0;
    if (lent)
        return static_cast<T *>(frame.sweep_scratch);
    // Large, it is mostly the kept rows, read row by row at random: huge pages spare the TLB.
    own = large_scratch<T>(count, 128);
    return own.get();
}

// The exported kernels: error 0, 1 (no work block, or no memory), or 2 (a frame of other
// value or index types, a block narrower than the factor, or a factor without the arrays or
// with pivots out of range for the kind).
template <sweep_kind K, class T, class I>
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
    if (!factor_usable<K>(f, frame->n)) {
        *error = 2;
        return;
    }
    // The work block t, after the rows the sweep keeps between panels.
    const bool in_place = nrhs == 1 && (K == sweep_kind::cholesky_forward || K == sweep_kind::cholesky_backward);
    const int64_t kept = in_place ? 0 : frame->n;
    const auto count = sweep_scratch_count(f, frame->n, nrhs, in_place);
    scratch_array<T> own;
    T *rows = count ? lent_or_new(*frame, *count, own) : nullptr;
    if (rows == nullptr) {
        *error = 1;
        return;
    }
    const rhs_block<T> b{work, std::max<int64_t>(ldw, frame->n), nrhs, frame->n};
    const bool conj = conjugates<K, T>(*frame);
    conjugate_if(b, frame->n, conj);
    sweeps_for<T, I>()[int(K)](f, b, rows + kept * chunk_width(nrhs), in_place ? nullptr : rows);
    conjugate_if(b, frame->n, conj);
}

} // namespace zel::solver
