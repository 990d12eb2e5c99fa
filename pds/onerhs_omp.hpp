// The sweep kernels of the partitioned solve (fwd_omp_mic, bwd_omp_mic), the partitioned driver
// of one solve over them (blkslv_omp_mic), their several-right-hand-side forms (nrhs) and the
// permutations before and after the sweeps (perm_sol). Every triangular solve and product goes
// to the core's kernels; flags, not stems, say which factor is read.
#pragma once

#include "onerhs_ll.hpp"

namespace zel::pds::onerhs {

// What the flags of the omp_mic kernels say. matrix_kind 2: symmetric indefinite, with plain
// row interchanges (plain_pivots) or Bunch–Kaufman blocks; unsym: L·U; transposed: solve with
// the transpose; bk_routine 1: the symmetric block routines and Lᵀ, any other value the
// Hermitian ones and Lᴴ (the same for real values).
struct sweep_flags {
    int64_t matrix_kind, plain_pivots, unsym, transposed, partitions, bk_routine;

    bool lu() const { return unsym != 0; }
    bool tr() const { return transposed != 0; }
    bool plain() const { return !lu() && matrix_kind == 2 && plain_pivots != 0; }
    bool bk() const { return !lu() && matrix_kind == 2 && plain_pivots == 0; }
    bool symmetric() const { return bk_routine == 1; }
};

enum class bk_step { forward, diagonal, backward };

template <class T> struct bk_choice {
    // The block routine of a step, symmetric or Hermitian as the flags say.
    template <bk_step S> static auto routine(const sweep_flags &fl)
    {
        if constexpr (is_complex_v<T>) {
            if (!fl.symmetric())
                return S == bk_step::forward ? core_hermitian<T>::forward
                     : S == bk_step::diagonal ? core_hermitian<T>::diagonal
                                              : core_hermitian<T>::backward;
        }
        return S == bk_step::forward ? core<T>::sytrs_forward
             : S == bk_step::diagonal ? core<T>::sytrs_diagonal
                                      : core<T>::sytrs_backward;
    }
};

// Forward step of one supernode (diagonal block by the first case that applies, then the
// product into work and its scatter, rows past the range to outside). Returns the block
// routine's info.
template <class T, class I, class G>
int64_t omp_forward(const sweep_state<T, I, G> &st, const sweep_flags &fl, int64_t s)
{
    const supernode<T, I> sn = supernode_at(st.f, st.g, s);
    T *x1 = st.x + sn.x0;
    const char uplo = fl.tr() ? 'U' : 'L', trans = fl.tr() ? 'T' : 'N';
    int64_t info = 0;
    if (fl.lu() && fl.tr()) {
        apply_interchanges(st, sn, st.f.col_pivots);
        core_trsv('U', 'T', 'N', sn.nc, sn.panel, sn.nr, x1, st.ld);
    } else if (fl.lu() || fl.plain()) {
        apply_interchanges(st, sn, st.f.row_pivots);
        core_trsv(uplo, trans, 'U', sn.nc, sn.panel, sn.nr, x1, st.ld);
    } else if (fl.bk()) {
        info = bunch_kaufman<false>(bk_choice<T>::template routine<bk_step::forward>(fl), st, sn);
    } else {
        core_trsv(uplo, trans, 'N', sn.nc, sn.panel, sn.nr, x1, st.ld);
    }
    const int64_t m = sn.n_off();
    if (m >= 1) {
        const bool upper = fl.lu() && fl.tr();
        core_gemv('N', m, sn.nc, T(1), upper ? sn.upper : sn.panel + sn.nc, upper ? m : sn.nr, x1, T(0), st.work);
        scatter_below(st, sn, fl.partitions >= 2 ? inside_blocks(st, sn) : sn.off_blocks, st.work);
    }
    return info;
}

// Backward step of one supernode: the rows below gathered, the transposed product, the
// diagonal block and its interchanges undone.
template <class T, class I, class G>
int64_t omp_backward(const sweep_state<T, I, G> &st, const sweep_flags &fl, int64_t s)
{
    const supernode<T, I> sn = supernode_at(st.f, st.g, s);
    T *x1 = st.x + sn.x0;
    const int64_t m = sn.n_off();
    if (m >= 1)
        for_off_rows(sn, st.g, [&](int64_t r, int64_t i) { st.work[i] = st.x[r]; });
    if (fl.lu() && !fl.tr()) {
        if (m >= 1)
            core_gemv('T', m, sn.nc, T(-1), sn.upper, m, st.work, T(1), x1);
        core_trsv('U', 'N', 'N', sn.nc, sn.panel, sn.nr, x1, st.ld);
        undo_interchanges(st, sn, st.f.col_pivots);
        return 0;
    }
    // Lᴴ for complex Hermitian factors solved with A, Lᵀ otherwise.
    const char op = is_complex_v<T> && !fl.lu() && fl.symmetric() == fl.tr() ? 'C' : 'T';
    if (m >= 1)
        core_gemv(op, m, sn.nc, T(-1), sn.panel + sn.nc, sn.nr, st.work, T(1), x1);
    if (fl.bk())
        return bunch_kaufman<false>(bk_choice<T>::template routine<bk_step::backward>(fl), st, sn);
    core_trsv('L', op, fl.lu() || fl.plain() ? 'U' : 'N', sn.nc, sn.panel, sn.nr, x1, st.ld);
    if (fl.lu() || fl.plain())
        undo_interchanges(st, sn, st.f.row_pivots);
    return 0;
}

// Diagonal step of one supernode of an indefinite factor: D⁻¹ by the block routine, or the
// block's diagonal with plain pivots.
template <class T, class I, class G>
int64_t omp_diagonal(const sweep_state<T, I, G> &st, const sweep_flags &fl, int64_t s)
{
    const supernode<T, I> sn = supernode_at(st.f, st.g, s);
    if (fl.bk())
        return bunch_kaufman<false>(bk_choice<T>::template routine<bk_step::diagonal>(fl), st, sn);
    T *x1 = st.x + sn.x0;
    for (int64_t j = 0; j < sn.nc; ++j)
        x1[j] /= sn.at(j, j);
    return 0;
}

// Scratch of a sweep: the work vector and the widened pivots.
template <class T, class I> struct sweep_scratch {
    scratch_array<T> work;
    wide_pivots<I> pivots;

    template <class G> bool reserve(const factor_view<T, I> &f, const G &g, int64_t nsuper, int64_t rows)
    {
        work = scratch_array<T>(size_t(std::max<int64_t>(rows, 1)), work_alignment);
        return work && pivots.reserve(widest(f, g, 0, nsuper - 1));
    }
};

// fwd_omp_mic: the forward sweep over first … last (1-based) with the caller's work and outside
// vectors. Returns info.
template <class T, class I, class G>
int64_t fwd_omp_mic(const factor_view<T, I> &f, const G &g, int64_t first, int64_t last, T *x, T *outside, T *work,
                    const sweep_flags &fl)
{
    if (x == nullptr)
        return 1;
    if (!usable(g, f.n))
        return 2;
    if (first > last)
        return 0;
    wide_pivots<I> pivots;
    if (!pivots.reserve(widest(f, g, first - 1, last - 1)))
        return 1;
    sweep_state<T, I, G> st{f, g, x, std::max<int64_t>(scalar_rows(g, f.n), 1), work, &pivots};
    if (fl.partitions >= 2) {
        st.outside = outside;
        st.limit = f.super_ptr[last];
    }
    int64_t info = 0;
    for (int64_t s = first - 1; s < last; ++s)
        if (const int64_t i = omp_forward(st, fl, s); i != 0 && info == 0)
            info = i;
    return info;
}

// bwd_omp_mic: the backward sweep over last … first with a work vector of its own. Error 1
// (no x, no memory), 2 (a refused block).
template <class T, class I, class G>
int64_t bwd_omp_mic(const factor_view<T, I> &f, const G &g, int64_t first, int64_t last, T *x, const sweep_flags &fl)
{
    if (x == nullptr)
        return 1;
    if (!usable(g, f.n))
        return 2;
    const int64_t rows = std::max<int64_t>(scalar_rows(g, f.n), 1);
    sweep_scratch<T, I> scratch;
    if (!scratch.reserve(f, g, f.nsuper, rows))
        return 1;
    const sweep_state<T, I, G> st{f, g, x, rows, scratch.work.get(), &scratch.pivots};
    int64_t refused = 0;
    for (int64_t s = std::min(last, f.nsuper) - 1; s >= std::max<int64_t>(first, 1) - 1; --s)
        refused |= omp_backward(st, fl, s);
    return refused != 0 ? 2 : 0;
}

// blkslv_omp_mic: one whole solve by partitions run one after another: each forward range with
// its updates beyond it collected in a partial vector and merged, the diagonal step, then the
// backward ranges from the last partition to the first. Step as for blkslv_ll.
template <class T, class I, class G>
int64_t blkslv_omp_mic(const factor_view<T, I> &f, const G &g, T *x, const sweep_flags &fl, int64_t step)
{
    if (x == nullptr)
        return 1;
    if (!usable(g, f.n))
        return 2;
    const int64_t rows = std::max<int64_t>(scalar_rows(g, f.n), 1);
    sweep_scratch<T, I> scratch;
    scratch_array<T> partial(size_t(rows), work_alignment);
    if (!scratch.reserve(f, g, f.nsuper, rows) || !partial)
        return 1;
    std::memset(static_cast<void *>(partial.get()), 0, size_t(rows) * sizeof(T));
    sweep_state<T, I, G> st{f, g, x, rows, scratch.work.get(), &scratch.pivots};
    const int64_t parts = std::max<int64_t>(fl.partitions, 1);
    int64_t refused = 0, lo, hi;
    for (int64_t p = 0; p < parts && (step == 0 || step == 1); ++p) {
        partition_range(0, f.nsuper - 1, parts, p, lo, hi);
        st.outside = parts >= 2 ? partial.get() : nullptr;
        st.limit = hi >= lo ? int64_t(f.super_ptr[hi + 1]) : 0;
        for (int64_t s = lo; s <= hi; ++s)
            refused |= omp_forward(st, fl, s);
        if (parts >= 2)
            merge_partial(rows, partial.get(), x);
    }
    st.outside = nullptr;
    if (!fl.lu() && fl.matrix_kind == 2 && (step == 0 || step == 2))
        for (int64_t s = 0; s < f.nsuper; ++s)
            refused |= omp_diagonal(st, fl, s);
    for (int64_t p = parts - 1; p >= 0 && (step == 0 || step == 3); --p) {
        partition_range(0, f.nsuper - 1, parts, p, lo, hi);
        for (int64_t s = hi; s >= lo; --s)
            refused |= omp_backward(st, fl, s);
    }
    return refused != 0 ? 2 : 0;
}

// Several right-hand sides (columns of x, leading dimension ldx): the one-vector sweep per
// column. Forward (Backward false) or backward.
template <bool Backward, class T, class I, class G>
int64_t sweep_nrhs(const factor_view<T, I> &f, const G &g, int64_t nrhs, T *x, int64_t ldx, const sweep_flags &fl)
{
    if (nrhs <= 0)
        return 0;
    if (x == nullptr || !usable(g, f.n))
        return x == nullptr ? 1 : 2;
    const int64_t rows = std::max<int64_t>(scalar_rows(g, f.n), 1);
    if (nrhs > 1 && ldx < rows)
        return 2;
    sweep_scratch<T, I> scratch;
    if (!scratch.reserve(f, g, f.nsuper, rows))
        return 1;
    sweep_flags one = fl;
    one.partitions = 1;
    int64_t refused = 0;
    for (int64_t c = 0; c < nrhs; ++c) {
        const sweep_state<T, I, G> st{f, g, x + c * ldx, rows, scratch.work.get(), &scratch.pivots};
        if constexpr (Backward)
            for (int64_t s = f.nsuper - 1; s >= 0; --s)
                refused |= omp_backward(st, one, s);
        else
            for (int64_t s = 0; s < f.nsuper; ++s)
                refused |= omp_forward(st, one, s);
    }
    return refused != 0 ? 2 : 0;
}

// fwd_perm_sol: x(i, c) = b(perm[i], c); bwd_perm_sol: x(perm[i], c) = b(i, c); perm 0-based
// over the n scalar rows. Error 1 for a missing array, 2 for leading dimensions below n.
template <bool Scatter, class T, class I>
int64_t perm_sol(int64_t n, int64_t nrhs, const I *perm, const T *b, int64_t ldb, T *x, int64_t ldx)
{
    if (n <= 0 || nrhs <= 0)
        return 0;
    if (perm == nullptr || b == nullptr || x == nullptr)
        return 1;
    if (nrhs > 1 && (ldb < n || ldx < n))
        return 2;
    for (int64_t c = 0; c < nrhs; ++c) {
        const T *bc = b + c * ldb;
        T *xc = x + c * ldx;
        for (int64_t i = 0; i < n; ++i) {
            if constexpr (Scatter)
                xc[perm[i]] = bc[i];
            else
                xc[i] = bc[perm[i]];
        }
    }
    return 0;
}

} // namespace zel::pds::onerhs
