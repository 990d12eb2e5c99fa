// The solve-phase driver: the right-hand sides gathered through the permutation into a work
// block, the core's forward sweep, diagonal step (L·D·Lᵀ factors) and backward sweep on it
// (one column block per partition), and the scatter back with the output scaling.
#pragma once


#include <algorithm>
#include <array>
#include <cstdint>

#include "onerhs_ll.hpp"
#include "zel/core_imports.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/members.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::pds {

inline constexpr int work_alignment = 128;

// The factor kinds the driver solves with, each with its pair of sweep kernels.
enum class factor_kind : int { cholesky, lu, lu_transposed, diagonal_pivots, bunch_kaufman, count, none = count };
inline constexpr int factor_kinds = int(factor_kind::count);

template <class C> using sweep_kernel = void (*)(const zel_pds_frame *, int64_t, C *, int64_t, int64_t *);
template <class C> struct kernel_pair {
    sweep_kernel<C> forward, backward;
};

// The core's sweep kernels of each value and index type, in factor_kind order.
template <class T, class I> struct sweep_kernels;

#define ZEL_PDS_KERNEL_PAIR(P, W, K, STEM, TRANSPOSED, MODE)                                                   \
    {zel_pds_##W##P##pds_##STEM##_fwd_ker##TRANSPOSED##_##MODE##_nrhs_##K,                                     \
     zel_pds_##W##P##pds_##STEM##_bwd_ker##TRANSPOSED##_##MODE##_nrhs_##K}
#define ZEL_PDS_KERNEL_PAIRS(P, C, W, K, MODE)                                                                 \
    {{ZEL_PDS_KERNEL_PAIR(P, W, K, sym_pos, , MODE), ZEL_PDS_KERNEL_PAIR(P, W, K, unsym, , MODE),             \
      ZEL_PDS_KERNEL_PAIR(P, W, K, unsym, _t, MODE), ZEL_PDS_KERNEL_PAIR(P, W, K, sym_indef_diag, , MODE),     \
      ZEL_PDS_KERNEL_PAIR(P, W, K, sym_indef_bk, , MODE)}}
#define ZEL_PDS_KERNEL_TABLE(P, C, T, W, I, K)                                                                 \
    template <> struct sweep_kernels<T, I> {                                                                   \
        using c_type = C;                                                                                      \
        static constexpr std::array<kernel_pair<C>, factor_kinds> seq = ZEL_PDS_KERNEL_PAIRS(P, C, W, K, seq);  \
        static constexpr std::array<kernel_pair<C>, factor_kinds> par = ZEL_PDS_KERNEL_PAIRS(P, C, W, K, par);  \
    };
#define ZEL_PDS_REAL_KERNEL_TABLE(P, C, T, W, I) ZEL_PDS_KERNEL_TABLE(P, C, T, W, I, real)
#define ZEL_PDS_CMPLX_KERNEL_TABLE(P, C, T, W, I) ZEL_PDS_KERNEL_TABLE(P, C, T, W, I, cmplx)
ZEL_PDS_REAL_MEMBERS(ZEL_PDS_REAL_KERNEL_TABLE)
ZEL_PDS_CMPLX_MEMBERS(ZEL_PDS_CMPLX_KERNEL_TABLE)
#undef ZEL_PDS_REAL_KERNEL_TABLE
#undef ZEL_PDS_CMPLX_KERNEL_TABLE
#undef ZEL_PDS_KERNEL_TABLE
#undef ZEL_PDS_KERNEL_PAIRS
#undef ZEL_PDS_KERNEL_PAIR

// The core's D⁻¹ of one Bunch–Kaufman block of each value type: symmetric (Lᵀ) and, for
// complex values, Hermitian.
template <class T> struct bk_diagonal_routines;
#define ZEL_PDS_BK_SYMMETRIC(P, C, T)                                                                          \
    template <> struct bk_diagonal_routines<T> {                                                               \
        static constexpr auto symmetric = zel_pds_##P##sytrs_bkl_scal_varisol;                                 \
    };
ZEL_DENSE_MEMBERS(ZEL_PDS_BK_SYMMETRIC)
#undef ZEL_PDS_BK_SYMMETRIC
template <class T> struct bk_hermitian_routine;
#define ZEL_PDS_BK_HERMITIAN(P, C, T)                                                                          \
    template <> struct bk_hermitian_routine<T> {                                                               \
        static constexpr auto hermitian = zel_pds_##P##hetrs_bkl_scal_varisol;                                 \
    };
ZEL_DENSE_COMPLEX_MEMBERS(ZEL_PDS_BK_HERMITIAN)
#undef ZEL_PDS_BK_HERMITIAN

// The factor kind of the frame's type for the driver of this value kind: 2 and 4 Cholesky;
// 11 and 1 (real), 13 and 3 (complex) L·U, with Aᵀ (Aᴴ) its transposed sweeps; -2 (real),
// -4 and 6 (complex) L·D·Lᵀ, with 1×1 pivots exactly when the pivoting mode with bit 1
// cleared is 0, else Bunch–Kaufman.
inline factor_kind kind_of(const zel_pds_frame &f, bool complex)
{
    const int64_t t = f.matrix_type;
    if (t == (complex ? 4 : 2))
        return factor_kind::cholesky;
    if (complex ? t == 13 || t == 3 : t == 11 || t == 1)
        return f.transposed != 0 ? factor_kind::lu_transposed : factor_kind::lu;
    if (complex ? t == -4 || t == 6 : t == -2)
        return (f.pivoting & ~int64_t(2)) == 0 ? factor_kind::diagonal_pivots : factor_kind::bunch_kaufman;
    return factor_kind::none;
}

// Whether the frame holds the arrays its kind of factor is solved with.
inline bool arrays_present(const zel_pds_frame &f, factor_kind kind)
{
    if (f.n == 0)
        return true;
    if (f.super_ptr == nullptr || f.col_ptr == nullptr || f.row_ptr == nullptr || f.row_index == nullptr ||
        f.l_values == nullptr)
        return false;
    switch (kind) {
    case factor_kind::lu:
    case factor_kind::lu_transposed: return f.u_col_ptr != nullptr && f.row_pivots != nullptr;
    case factor_kind::diagonal_pivots: return f.row_pivots != nullptr && f.diagonal != nullptr;
    case factor_kind::bunch_kaufman: return f.bk_pivots != nullptr;
    default: return true;
    }
}

// 0 when the driver of this value kind can solve with the frame, else 2.
inline int64_t solvable(const zel_pds_frame &f, bool complex)
{
    const factor_kind kind = kind_of(f, complex);
    const bool shape_ok = f.n >= 0 && f.nsuper >= 0 && f.nrhs >= 0 && (f.nrhs <= 1 || (f.ldb >= f.n && f.ldx >= f.n));
    return kind != factor_kind::none && shape_ok && arrays_present(f, kind) ? 0 : 2;
}

// A solve with the conjugate matrix is the conjugate of a solve with the matrix of the
// conjugate right-hand side: Aᵀ of a Hermitian type is conj(A), and so is Aᴴ of the complex
// symmetric type. (Aᴴ of a Hermitian type, Aᵀ of a symmetric one are A; the unsymmetric
// types conjugate in their transposed sweeps.)
template <class T> bool conjugated_solve(const zel_pds_frame &f)
{
    if constexpr (!is_complex_v<T>)
        return false;
    return (hermitian_type(f.matrix_type) && f.transposed == 1) || (f.matrix_type == 6 && f.transposed == 2);
}

// The entry-wise scaling of the solution, or null: the second vector for an unsymmetric type
// solved transposed, the first in every other case.
template <class T> const real_t<T> *output_scaling(const zel_pds_frame &f)
{
    if (f.scaling == nullptr)
        return nullptr;
    const auto *s = static_cast<const real_t<T> *>(f.scaling);
    return (f.matrix_type == 11 || f.matrix_type == 13) && f.transposed != 0 ? s + f.n : s;
}

// The permutation sends each row anywhere in its column, out of reach of the hardware's own
// prefetch: on columns too long for the caches the rows this far ahead are asked for while the
// current ones move (twice as fast on the 2-D Laplacian's minimum-degree order; on short columns
// the requests only cost time).
inline constexpr int64_t rows_ahead = 128, prefetched_from = int64_t(1) << 16;

template <class T, class I> void prefetch_rows(const T *column, const I *perm, int64_t i, bool write)
{
    for (int64_t r = i + rows_ahead; r < i + rows_ahead + 8; ++r)
        if (write)
            __builtin_prefetch(column + perm[r], 1);
        else
            __builtin_prefetch(column + perm[r]);
}

// work(i, c) = b(perm[i], c) for i in [i0, i1), eight rows at a time.
template <bool Ahead, class T, class I>
void gather_rows(const T *bc, const I *perm, T *wc, int64_t i0, int64_t i1, bool conjugate)
{
    int64_t i = i0;
    for (; i + 8 <= i1; i += 8) {
        if constexpr (Ahead)
            prefetch_rows(bc, perm, i, false);
        wc[i] = conj_if(bc[perm[i]], conjugate);
        wc[i + 1] = conj_if(bc[perm[i + 1]], conjugate);
        wc[i + 2] = conj_if(bc[perm[i + 2]], conjugate);
        wc[i + 3] = conj_if(bc[perm[i + 3]], conjugate);
        wc[i + 4] = conj_if(bc[perm[i + 4]], conjugate);
        wc[i + 5] = conj_if(bc[perm[i + 5]], conjugate);
        wc[i + 6] = conj_if(bc[perm[i + 6]], conjugate);
        wc[i + 7] = conj_if(bc[perm[i + 7]], conjugate);
    }
    for (; i < i1; ++i)
        wc[i] = conj_if(bc[perm[i]], conjugate);
}

// work(i, c) = b(perm[i], c).
template <class T, class I> void gather(const zel_pds_frame &f, const T *b, T *work, bool conjugate)
{
    const I *perm = static_cast<const I *>(f.perm);
    const int64_t n = f.n, ahead = n >= prefetched_from ? (n - rows_ahead - 8) / 8 * 8 : 0;
    for (int64_t c = 0; c < f.nrhs; ++c) {
        gather_rows<true>(b + c * f.ldb, perm, work + c * n, 0, ahead, conjugate);
        gather_rows<false>(b + c * f.ldb, perm, work + c * n, ahead, n, conjugate);
    }
}

// x(perm[i], c) = work(i, c) for i in [i0, i1), times the scaling of that row of x when there
// is one.
template <bool Ahead, class T, class I>
void scatter_rows(const T *wc, const I *perm, const real_t<T> *s, T *xc, int64_t i0, int64_t i1, bool conjugate)
{
    const int64_t step = Ahead ? 8 : i1 - i0; // the prefetched range is whole eights
    for (int64_t i = i0; i < i1; i += step) {
        if constexpr (Ahead) {
            prefetch_rows(xc, perm, i, true);
            if (s != nullptr)
                prefetch_rows(s, perm, i, false);
        }
        if (s == nullptr)
            for (int64_t r = i; r < i + step; ++r)
                xc[perm[r]] = conj_if(wc[r], conjugate);
        else
            for (int64_t r = i; r < i + step; ++r)
                xc[perm[r]] = conj_if(wc[r], conjugate) * s[perm[r]];
    }
}

// x(perm[i], c) = work(i, c), with the output scaling.
template <class T, class I> void scatter(const zel_pds_frame &f, const T *work, T *x, bool conjugate)
{
    const I *perm = static_cast<const I *>(f.perm);
    const real_t<T> *s = output_scaling<T>(f);
    const int64_t n = f.n, ahead = n >= prefetched_from ? (n - rows_ahead - 8) / 8 * 8 : 0;
    for (int64_t c = 0; c < f.nrhs; ++c) {
        scatter_rows<true>(work + c * n, perm, s, x + c * f.ldx, 0, ahead, conjugate);
        scatter_rows<false>(work + c * n, perm, s, x + c * f.ldx, ahead, n, conjugate);
    }
}

// The diagonal step with 1×1 pivots on k right-hand sides of the work block:
// work(i, c) /= d[i], eight right-hand sides at a time.
template <class T> void divide_by_diagonal(const zel_pds_frame &f, T *block, int64_t k)
{
    const T *d = static_cast<const T *>(f.diagonal);
    const int64_t n = f.n;
    int64_t c = 0;
    for (; c + 8 <= k; c += 8)
        for (int64_t i = 0; i < n; ++i) {
            const T di = d[i];
            T *row = block + c * n + i;
            for (int q = 0; q < 8; ++q)
                row[q * n] /= di;
        }
    for (; c < k; ++c)
        for (int64_t i = 0; i < n; ++i)
            block[c * n + i] /= d[i];
}

// The core's D⁻¹ of a Bunch–Kaufman block for the frame's type.
template <class T> auto bk_diagonal_routine(const zel_pds_frame &f)
{
    if constexpr (is_complex_v<T>)
        if (hermitian_type(f.matrix_type))
            return bk_hermitian_routine<T>::hermitian;
    return bk_diagonal_routines<T>::symmetric;
}

// The most columns of a supernode.
template <class I> int64_t widest_supernode(const zel_pds_frame &f)
{
    const I *super = static_cast<const I *>(f.super_ptr);
    int64_t widest = 1;
    for (int64_t s = 0; s < f.nsuper; ++s)
        widest = std::max<int64_t>(widest, int64_t(super[s + 1]) - super[s]);
    return widest;
}

// The diagonal step with Bunch–Kaufman blocks on k right-hand sides of the work block: the
// core's D⁻¹ of each supernode's diagonal block on the supernode's rows, all k at once. The
// block's 32-bit pivots are widened into `wide` (max block columns), its 64-bit ones passed as
// they are. Error 2 when the core refuses a block.
template <class T, class I> int64_t bk_diagonal_step(const zel_pds_frame &f, T *block, int64_t k, int64_t *wide)
{
    using C = typename sweep_kernels<T, I>::c_type;
    const I *super = static_cast<const I *>(f.super_ptr), *col_ptr = static_cast<const I *>(f.col_ptr);
    const I *pivots = static_cast<const I *>(f.bk_pivots);
    const T *l = static_cast<const T *>(f.l_values);
    const auto routine = bk_diagonal_routine<T>(f);
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const int64_t first = int64_t(super[s]) - 1, cols = int64_t(super[s + 1]) - 1 - first;
        const int64_t at = col_ptr[first], rows = int64_t(col_ptr[first + 1]) - at;
        const int64_t *ipiv;
        if constexpr (sizeof(I) == sizeof(int64_t)) {
            ipiv = pivots + first;
        } else {
            std::copy(pivots + first, pivots + first + cols, wide);
            ipiv = wide;
        }
        int64_t info = 0;
        routine("L", &cols, &k, reinterpret_cast<const C *>(l + (at - 1)), &rows, ipiv,
                reinterpret_cast<C *>(block + first), &f.n, &info);
        if (info != 0)
            return 2;
    }
    return 0;
}

// One right-hand side of the real L·U factor (solved with A) and of the Bunch–Kaufman L·D·Lᵀ
// factor goes through the one-vector kernels: `zel bench solver --section onerhs` measured them
// at 1.04 to 1.66 times the speed of the block sweeps on those factors (0.87 on the smallest,
// rajat19), while the block sweeps stay ahead on Cholesky factors (0.59 to 0.87).
template <class T> bool one_vector_faster(factor_kind kind)
{
    return std::is_same_v<T, double> && (kind == factor_kind::lu || kind == factor_kind::bunch_kaufman);
}

// Whether every interchange of a supernode stays inside its diagonal block (null: none).
template <class I> bool pivots_inside(const zel_pds_frame &f, const void *pivots)
{
    const I *super = static_cast<const I *>(f.super_ptr), *p = static_cast<const I *>(pivots);
    for (int64_t s = 0; p != nullptr && s < f.nsuper; ++s)
        for (int64_t j = int64_t(super[s]) - 1, cols = int64_t(super[s + 1]) - super[s]; j < super[s + 1] - 1; ++j)
            if (p[j] < 1 || p[j] > cols)
                return false;
    return true;
}

// The whole solve of one right-hand side (in the factor's order) by the one-vector kernel of
// the kind: 0, 1 (no memory) or 2 (a block the core refuses, or interchanges that leave their
// blocks).
template <class T, class I> int64_t one_vector_solve(const zel_pds_frame &f, factor_kind kind, T *x)
{
    using namespace onerhs;
    const bool bk = kind == factor_kind::bunch_kaufman;
    const bool u_missing = !bk && f.u_values == nullptr && static_cast<const I *>(f.u_col_ptr)[f.n] > 1;
    if (!bk && (u_missing || !pivots_inside<I>(f, f.row_pivots) || !pivots_inside<I>(f, f.col_pivots)))
        return 2;
    const factor_view<T, I> v{f.n,
                              f.nsuper,
                              static_cast<const I *>(f.super_ptr),
                              static_cast<const I *>(f.col_ptr),
                              static_cast<const I *>(f.row_ptr),
                              static_cast<const I *>(f.row_index),
                              static_cast<const T *>(f.l_values),
                              static_cast<const I *>(f.u_col_ptr),
                              static_cast<const T *>(f.u_values),
                              static_cast<const I *>(bk ? f.bk_pivots : f.row_pivots),
                              static_cast<const I *>(f.col_pivots)};
    if (bk)
        return blkslv_ll<ll_kind<ll_factor::bunch_kaufman, false, false>>(v, scalar_blocks{}, 1, f.nsuper, x,
                                                                          static_cast<const I *>(nullptr), 0);
    return blkslv_ll<ll_kind<ll_factor::lu, false, false>>(v, scalar_blocks{}, 1, f.nsuper, x,
                                                           static_cast<const I *>(nullptr), 0);
}

// The sweeps (and the diagonal step between them), one block of columns per partition, one
// block after another.
template <class T, class I, bool Par> int64_t sweep_partitions(const zel_pds_frame &f, T *work)
{
    using K = sweep_kernels<T, I>;
    const factor_kind kind = kind_of(f, is_complex_v<T>);
    if (kind == factor_kind::none)
        return 2;
    if (f.nrhs == 1 && one_vector_faster<T>(kind))
        return one_vector_solve<T, I>(f, kind, work);
    const kernel_pair<typename K::c_type> kernels = (Par ? K::par : K::seq)[size_t(kind)];
    scratch_array<int64_t> wide;
    if (kind == factor_kind::bunch_kaufman && sizeof(I) != sizeof(int64_t))
        if (!(wide = scratch_array<int64_t>(size_t(widest_supernode<I>(f)), 64)))
            return 1;
    const int64_t parts = std::min(std::max<int64_t>(zel_pds_pds_get_num_threads(&f), 1), f.nrhs);
    for (int64_t p = 0, c0 = 0; p < parts; ++p) {
        const int64_t k = f.nrhs / parts + (p < f.nrhs % parts ? 1 : 0);
        T *block = work + c0 * f.n;
        auto *c_block = reinterpret_cast<typename K::c_type *>(block);
        int64_t error = 0;
        kernels.forward(&f, k, c_block, f.n, &error);
        if (error == 0 && kind == factor_kind::diagonal_pivots)
            divide_by_diagonal(f, block, k);
        if (error == 0 && kind == factor_kind::bunch_kaufman)
            error = bk_diagonal_step<T, I>(f, block, k, wide.get());
        if (error == 0)
            kernels.backward(&f, k, c_block, f.n, &error);
        if (error != 0)
            return error;
        c0 += k;
    }
    return 0;
}

// X = op(A)⁻¹·B for a solvable frame; x is written only once everything else succeeded.
template <class T, class I, bool Par> int64_t solve_nrhs(const zel_pds_frame &f, const T *b, T *x)
{
    if (f.n == 0 || f.nrhs == 0)
        return 0;
    if (b == nullptr || x == nullptr || f.perm == nullptr)
        return 1;
    const auto count = checked_mul(f.n, f.nrhs);
    scratch_array<T> work;
    if (count)
        work = large_scratch<T>(size_t(*count), work_alignment);
    if (!work)
        return 1;
    const bool conjugate = conjugated_solve<T>(f);
    gather<T, I>(f, b, work.get(), conjugate);
    if (const int64_t error = sweep_partitions<T, I, Par>(f, work.get()); error != 0)
        return error;
    scatter<T, I>(f, work.get(), x, conjugate);
    return 0;
}

// The exported drivers. The clock is read, and the timing line printed after a solve that
// succeeded, only at message level 1.
template <bool Complex, bool Par>
void driver_entry(zel_pds_frame *frame, const void *b, void *x, int64_t message_level, int64_t *error)
{
    if (error == nullptr)
        return;
    const double start = message_level == 1 ? zel_serv_dsecnd() : 0.0;
    if (frame == nullptr) {
        *error = 1;
        return;
    }
    int64_t result = solvable(*frame, Complex);
    if (result == 0)
        with_frame_types<Complex>(*frame, [&]<class T, class I>() {
            result = solve_nrhs<T, I, Par>(*frame, static_cast<const T *>(b), static_cast<T *>(x));
        });
    if (message_level == 1 && result == 0) {
        frame->solve_seconds = zel_serv_dsecnd() - start;
        zel_serv_printf_s("\n Time spent in direct solver at solve step (solve) : %1.7f sec\n", frame->solve_seconds);
    }
    *error = result;
}

} // namespace zel::pds
