// The per-supernode steps of the one-right-hand-side kernels: interchanges, the triangular
// solves of a diagonal block (loops in place for small blocks, the core's solve above the
// threshold), the update of the rows below it and the gather-product of the backward sweep.
#pragma once

#include "onerhs_frame.hpp"

namespace zel::pds::onerhs {

// Above this many columns a diagonal block goes to the core's triangular solve.
inline constexpr int64_t loop_solve_limit = 19;
// Above this many columns the update of the rows below goes through the core's product.
inline constexpr int64_t direct_update_limit = 4;

// The right-hand side, its scalar length (the dense kernels' leading dimension), a work vector
// of at least that length, and the pivots widened for the core. With an outside accumulator,
// updates of block rows from limit on (1-based) go there instead of to x.
template <class T, class I, class G> struct sweep_state {
    const factor_view<T, I> &f;
    G g;
    T *x;
    int64_t ld;
    T *work;
    const wide_pivots<I> *pivots;
    T *outside = nullptr;
    int64_t limit = 0;
};

// How many of the blocks below the diagonal block lie before the limit (all of them without
// an outside accumulator). The row list ascends, so the first block at or past it splits.
template <class T, class I, class G> int64_t inside_blocks(const sweep_state<T, I, G> &st, const supernode<T, I> &sn)
{
    if (st.outside == nullptr)
        return sn.off_blocks;
    int64_t b = 0;
    while (b < sn.off_blocks && int64_t(sn.off[b]) < st.limit)
        ++b;
    return b;
}

// target −= w over the rows below the block: x for the blocks before split, outside after.
template <class T, class I, class G>
void scatter_below(const sweep_state<T, I, G> &st, const supernode<T, I> &sn, int64_t split, const T *w)
{
    for (int64_t b = 0, i = 0; b < sn.off_blocks; ++b) {
        T *target = b < split ? st.x : st.outside;
        const int64_t block = int64_t(sn.off[b]) - 1, r = st.g.row(block), size = st.g.size(block);
        for (int64_t k = 0; k < size; ++k)
            target[r + k] -= w[i++];
    }
}

// Σ op(a[i])·x[i] over n terms in eight partial sums, so that the additions overlap instead of
// waiting on one another (op conjugating when Conj).
template <bool Conj, class T> T dot(const T *a, const T *x, int64_t n)
{
    T s[8] = {};
    int64_t i = 0;
    for (; i + 8 <= n; i += 8)
        for (int q = 0; q < 8; ++q)
            s[q] += conj_if(a[i + q], Conj) * x[i + q];
    for (; i < n; ++i)
        s[0] += conj_if(a[i], Conj) * x[i];
    return ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
}

// x1 ← L11⁻¹·x1 with unit L11 (lower triangle of the panel), conjugated values when Conj.
template <bool Conj, class T, class I> void unit_lower_solve(const supernode<T, I> &sn, T *x1, int64_t ld)
{
    const int64_t nc = sn.nc;
    if (nc == 2) {
        x1[1] -= conj_if(sn.at(1, 0), Conj) * x1[0];
    } else if (nc > loop_solve_limit && !Conj) {
        core_trsv('L', 'N', 'U', nc, sn.panel, sn.nr, x1, ld);
    } else {
        for (int64_t j = 0; j + 1 < nc; ++j) {
            const T xj = x1[j];
            const T *col = sn.panel + j * sn.nr;
            for (int64_t i = j + 1; i < nc; ++i)
                x1[i] -= conj_if(col[i], Conj) * xj;
        }
    }
}

// x1 ← L11⁻¹·x1 with the non-unit lower triangle (Cholesky factors); wide blocks through the
// core's solve, whose vector code reads the block at memory speed.
template <bool Conj, class T, class I> void lower_solve(const supernode<T, I> &sn, T *x1, int64_t ld)
{
    if (sn.nc > loop_solve_limit && !Conj) {
        core_trsv('L', 'N', 'N', sn.nc, sn.panel, sn.nr, x1, ld);
        return;
    }
    for (int64_t j = 0; j < sn.nc; ++j) {
        const T *col = sn.panel + j * sn.nr;
        const T xj = x1[j] / conj_if(col[j], Conj);
        x1[j] = xj;
        for (int64_t i = j + 1; i < sn.nc; ++i)
            x1[i] -= conj_if(col[i], Conj) * xj;
    }
}

// x1 ← U11⁻ᵀ·x1 (U11⁻ᴴ when Conj): U11 on and above the panel's diagonal.
template <bool Conj, class T, class I> void upper_transposed_solve(const supernode<T, I> &sn, T *x1)
{
    for (int64_t j = 0; j < sn.nc; ++j) {
        const T *col = sn.panel + j * sn.nr;
        x1[j] = (x1[j] - dot<Conj>(col, x1, j)) / conj_if(col[j], Conj);
    }
}

// x1 ← U11⁻¹·x1: U11 on and above the panel's diagonal.
template <class T, class I> void upper_solve(const supernode<T, I> &sn, T *x1, int64_t ld)
{
    const int64_t nc = sn.nc;
    if (nc == 1) {
        x1[0] /= sn.at(0, 0);
    } else if (nc > loop_solve_limit) {
        core_trsv('U', 'N', 'N', nc, sn.panel, sn.nr, x1, ld);
    } else {
        for (int64_t j = nc - 1; j >= 0; --j) {
            const T *col = sn.panel + j * sn.nr;
            const T xj = x1[j] / col[j];
            x1[j] = xj;
            for (int64_t i = 0; i < j; ++i)
                x1[i] -= col[i] * xj;
        }
    }
}

// x1 ← op(L11)⁻¹·x1 with op transposing (and conjugating when Conj): unit or not. Wide blocks
// through the core's solve unless the values are to be read conjugated but not transposed.
template <bool Conj, bool Unit, bool Loops, class T, class I>
void lower_transposed_solve(const supernode<T, I> &sn, T *x1, int64_t ld)
{
    if (sn.nc > loop_solve_limit && !Loops) {
        core_trsv('L', Conj && is_complex_v<T> ? 'C' : 'T', Unit ? 'U' : 'N', sn.nc, sn.panel, sn.nr, x1, ld);
        return;
    }
    for (int64_t j = sn.nc - 1; j >= 0; --j) {
        const T *col = sn.panel + j * sn.nr;
        const T s = x1[j] - dot<Conj>(col + j + 1, x1 + j + 1, sn.nc - j - 1);
        x1[j] = Unit ? s : s / conj_if(col[j], Conj);
    }
}

// The rows below the block: x_off −= A·x1, A the n_off × nc block at a (leading dimension lda),
// conjugated when Conj. Wide blocks form A·x1 in work with the core's product first.
template <bool Conj, class T, class I, class G>
void update_below(const sweep_state<T, I, G> &st, const supernode<T, I> &sn, const T *a, int64_t lda)
{
    const int64_t m = sn.n_off();
    if (m <= 0)
        return;
    T *x = st.x;
    const T *x1 = x + sn.x0;
    if ((sn.nc > direct_update_limit && !Conj) || st.outside != nullptr) {
        if constexpr (Conj && is_complex_v<T>) {
            for (int64_t i = 0; i < m; ++i)
                st.work[i] = T(0);
            for (int64_t j = 0; j < sn.nc; ++j)
                for (int64_t i = 0; i < m; ++i)
                    st.work[i] += std::conj(a[i + j * lda]) * x1[j];
        } else {
            core_gemv('N', m, sn.nc, T(1), a, lda, x1, T(0), st.work);
        }
        scatter_below(st, sn, inside_blocks(st, sn), st.work);
        return;
    }
    for (int64_t j = 0; j < sn.nc; ++j) {
        const T xj = x1[j];
        const T *col = a + j * lda;
        for_off_rows(sn, st.g, [&](int64_t r, int64_t i) { x[r] -= conj_if(col[i], Conj) * xj; });
    }
}

// x1 −= op(A)·x_off: the rows below gathered into work, op transposing (conjugating when
// Conj); loops in place when Loops, else the core's product.
template <bool Conj, bool Loops, class T, class I, class G>
void gather_product(const sweep_state<T, I, G> &st, const supernode<T, I> &sn, const T *a, int64_t lda)
{
    const int64_t m = sn.n_off();
    if (m <= 0)
        return;
    T *w = st.work, *x1 = st.x + sn.x0;
    const T *x = st.x;
    for_off_rows(sn, st.g, [&](int64_t r, int64_t i) { w[i] = x[r]; });
    if constexpr (!Loops) {
        core_gemv(Conj && is_complex_v<T> ? 'C' : 'T', m, sn.nc, T(-1), a, lda, w, T(1), x1);
    } else {
        for (int64_t j = 0; j < sn.nc; ++j)
            x1[j] -= dot<Conj>(a + j * lda, w, m);
    }
}

// The block's interchanges (1 … nc−1) applied to x1 in order (none without a pivot array).
template <class T, class I, class G>
void apply_interchanges(const sweep_state<T, I, G> &st, const supernode<T, I> &sn, const I *pivots)
{
    if (sn.nc >= 2 && pivots != nullptr)
        core_laswp(st.x + sn.x0, st.ld, sn.nc - 1, st.pivots->of(pivots + sn.x0, sn.nc));
}

// The block's interchanges undone on x1, the last first.
template <class T, class I, class G>
void undo_interchanges(const sweep_state<T, I, G> &st, const supernode<T, I> &sn, const I *pivots)
{
    if (sn.nc >= 2 && pivots != nullptr)
        luspxm(&sn.nc, st.x + sn.x0, st.pivots->of(pivots + sn.x0, sn.nc));
}

// One of the core's Bunch–Kaufman block routines on x1; with Conj it works on conj(x1), which
// applies the conjugated block. The routine's info (0, or a refused block) is returned.
template <bool Conj, class Routine, class T, class I, class G>
int64_t bunch_kaufman(Routine routine, const sweep_state<T, I, G> &st, const supernode<T, I> &sn)
{
    T *x1 = st.x + sn.x0;
    if constexpr (Conj && is_complex_v<T>)
        for (int64_t j = 0; j < sn.nc; ++j)
            x1[j] = std::conj(x1[j]);
    const int64_t one = 1;
    int64_t info = 0;
    routine("L", &sn.nc, &one, c_of(sn.panel), &sn.nr, st.pivots->of(st.f.row_pivots + sn.x0, sn.nc), c_of(x1),
            &st.ld, &info);
    if constexpr (Conj && is_complex_v<T>)
        for (int64_t j = 0; j < sn.nc; ++j)
            x1[j] = std::conj(x1[j]);
    return info;
}

} // namespace zel::pds::onerhs
