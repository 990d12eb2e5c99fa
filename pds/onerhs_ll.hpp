// The blkslv_ll kernels: one right-hand side through a supernode range of the factor in one
// pass, forward sweep, diagonal step and backward sweep chosen by the step selector.
#pragma once

#include <cstring>

#include "onerhs_blocks.hpp"

namespace zel::pds::onerhs {

// The factor a kernel reads and how: Conj conjugates every value of the factor (the solves
// with Aᴴ of the unsymmetric and complex symmetric factors, and with Aᵀ of a Hermitian one);
// Herm marks a Hermitian L·D·Lᴴ (L·Lᴴ), whose backward sweep takes Lᴴ.
enum class ll_factor { lu, lu_transposed, cholesky, bunch_kaufman, diagonal };

template <ll_factor F, bool Conj, bool Herm> struct ll_kind {
    static constexpr ll_factor factor = F;
    static constexpr bool conj = Conj;
    // The backward sweep's transposed reads conjugate exactly when one of the two holds.
    static constexpr bool back_conj = Conj != Herm;
    static constexpr bool pivoted = F != ll_factor::cholesky;
    static constexpr bool has_diagonal = F == ll_factor::bunch_kaufman || F == ll_factor::diagonal;
};

// The Bunch–Kaufman routines of the kind: Hermitian (complex Herm) or symmetric.
template <class K, class T> struct bk_routines {
    static constexpr bool hermitian = K::conj != K::back_conj && is_complex_v<T>;
    static auto forward()
    {
        if constexpr (hermitian)
            return core_hermitian<T>::forward;
        else
            return core<T>::sytrs_forward;
    }
    static auto diagonal()
    {
        if constexpr (hermitian)
            return core_hermitian<T>::diagonal;
        else
            return core<T>::sytrs_diagonal;
    }
    static auto backward()
    {
        if constexpr (hermitian)
            return core_hermitian<T>::backward;
        else
            return core<T>::sytrs_backward;
    }
};

// Forward step of one supernode. Returns a Bunch–Kaufman routine's info, 0 otherwise.
template <class K, class T, class I, class G> int64_t ll_forward(const sweep_state<T, I, G> &st, int64_t s)
{
    const supernode<T, I> sn = supernode_at(st.f, st.g, s);
    T *x1 = st.x + sn.x0;
    int64_t info = 0;
    if constexpr (K::factor == ll_factor::lu || K::factor == ll_factor::diagonal) {
        apply_interchanges(st, sn, st.f.row_pivots);
        unit_lower_solve<K::conj>(sn, x1, st.ld);
    } else if constexpr (K::factor == ll_factor::lu_transposed) {
        apply_interchanges(st, sn, st.f.col_pivots);
        upper_transposed_solve<K::conj>(sn, x1);
        update_below<K::conj>(st, sn, sn.upper, sn.n_off());
        return 0;
    } else if constexpr (K::factor == ll_factor::cholesky) {
        lower_solve<K::conj>(sn, x1, st.ld);
    } else {
        info = bunch_kaufman<K::conj>(bk_routines<K, T>::forward(), st, sn);
    }
    update_below<K::conj>(st, sn, sn.panel + sn.nc, sn.nr);
    return info;
}

// Diagonal step of one supernode (factors with D).
template <class K, class T, class I, class G> int64_t ll_diagonal(const sweep_state<T, I, G> &st, int64_t s)
{
    const supernode<T, I> sn = supernode_at(st.f, st.g, s);
    if constexpr (K::factor == ll_factor::bunch_kaufman) {
        return bunch_kaufman<K::conj>(bk_routines<K, T>::diagonal(), st, sn);
    } else {
        T *x1 = st.x + sn.x0;
        for (int64_t j = 0; j < sn.nc; ++j)
            x1[j] /= conj_if(sn.at(j, j), K::conj);
        return 0;
    }
}

// Backward step of one supernode.
template <class K, class T, class I, class G> int64_t ll_backward(const sweep_state<T, I, G> &st, int64_t s)
{
    const supernode<T, I> sn = supernode_at(st.f, st.g, s);
    T *x1 = st.x + sn.x0;
    if constexpr (K::factor == ll_factor::lu) {
        gather_product<false, false>(st, sn, sn.upper, sn.n_off());
        upper_solve(sn, x1, st.ld);
        undo_interchanges(st, sn, st.f.col_pivots);
        return 0;
    }
    gather_product<K::back_conj, K::conj>(st, sn, sn.panel + sn.nc, sn.nr);
    if constexpr (K::factor == ll_factor::bunch_kaufman) {
        return bunch_kaufman<K::conj>(bk_routines<K, T>::backward(), st, sn);
    } else if constexpr (K::factor == ll_factor::cholesky) {
        lower_transposed_solve<K::back_conj, false, K::conj>(sn, x1, st.ld);
    } else {
        lower_transposed_solve<K::back_conj, true, K::conj>(sn, x1, st.ld);
        undo_interchanges(st, sn, st.f.row_pivots);
    }
    return 0;
}

// The supernode ranges of one call, 0-based and inclusive (empty when first > last).
struct ll_ranges {
    int64_t first, last, forward_first, forward_last, backward_first, backward_last;
};

// control[1] 3 widens the forward sweep to every supernode, 2 the backward sweep; the range is
// clipped to the factor.
inline ll_ranges ranges_of(int64_t nsuper, int64_t first, int64_t last, int64_t widen)
{
    ll_ranges r{std::max<int64_t>(first, 1) - 1, std::min(last, nsuper) - 1, 0, 0, 0, 0};
    r.forward_first = widen == 3 ? 0 : r.first;
    r.forward_last = widen == 3 ? nsuper - 1 : r.last;
    r.backward_first = widen == 2 ? 0 : r.first;
    r.backward_last = widen == 2 ? nsuper - 1 : r.last;
    return r;
}

// The selected steps on x. 0, or 2 when a Bunch–Kaufman routine refused a block.
template <class K, class T, class I, class G>
int64_t ll_steps(const sweep_state<T, I, G> &st, const ll_ranges &r, int64_t step)
{
    int64_t refused = 0;
    if (step == 0 || step == 1)
        for (int64_t s = r.forward_first; s <= r.forward_last; ++s)
            refused |= ll_forward<K>(st, s);
    if constexpr (K::has_diagonal)
        if (step == 0 || step == 2)
            for (int64_t s = r.first; s <= r.last; ++s)
                refused |= ll_diagonal<K>(st, s);
    if (step == 0 || step == 3)
        for (int64_t s = r.backward_last; s >= r.backward_first; --s)
            refused |= ll_backward<K>(st, s);
    return refused != 0 ? 2 : 0;
}

// The kernel: work vector (and widened pivots) first, so that a failure leaves x untouched.
// Error 1: no x, or no memory; 2: a refused Bunch–Kaufman block.
template <class K, class T, class I, class G>
int64_t blkslv_ll(const factor_view<T, I> &f, const G &g, int64_t first, int64_t last, T *x, const I *control,
                  int64_t step)
{
    if (x == nullptr)
        return 1;
    if (!usable(g, f.n))
        return 2;
    const int64_t rows = scalar_rows(g, f.n);
    scratch_array<T> work(size_t(std::max<int64_t>(rows, 1)), work_alignment);
    if (!work)
        return 1;
    const ll_ranges r = ranges_of(f.nsuper, first, last, control != nullptr ? int64_t(control[1]) : 0);
    wide_pivots<I> pivots;
    if (K::pivoted && !pivots.reserve(widest(f, g, 0, f.nsuper - 1)))
        return 1;
    const sweep_state<T, I, G> st{f, g, x, std::max<int64_t>(rows, 1), work.get(), &pivots};
    return ll_steps<K>(st, r, step);
}

// x += partial (partial cleared) through the core's merge; complex values as pairs of reals.
template <class T> void merge_partial(int64_t n, T *partial, T *x)
{
    using R = real_t<T>;
    const int64_t count = is_complex_v<T> ? 2 * n : n;
    R *p = reinterpret_cast<R *>(partial), *y = reinterpret_cast<R *>(x);
    if constexpr (std::is_same_v<R, double>)
        zel_pds_copy_rhs_omp_to_rhs_real(&count, p, y);
    else
        zel_pds_sp_copy_rhs_omp_to_rhs_real(&count, p, y);
}

// Supernodes of partition p of parts over the range (0-based, inclusive).
inline void partition_range(int64_t first, int64_t last, int64_t parts, int64_t p, int64_t &lo, int64_t &hi)
{
    const int64_t count = std::max<int64_t>(last - first + 1, 0);
    int64_t a = 0, b = -1;
    zel_pds_get_ddist_bounds(&count, &parts, &p, &a, &b);
    lo = first + a - 1;
    hi = first + b - 1;
}

// The partitioned steps: each partition's forward sweep sends the updates of rows beyond its
// range to a partial vector, merged into x before the next partition runs; the backward sweeps
// run from the last partition to the first. Partitions run one after another.
template <class K, class T, class I, class G>
int64_t tl_steps(sweep_state<T, I, G> st, const ll_ranges &r, int64_t step, int64_t parts, T *partial)
{
    int64_t refused = 0, lo, hi;
    if (step == 0 || step == 1)
        for (int64_t p = 0; p < parts; ++p) {
            partition_range(r.forward_first, r.forward_last, parts, p, lo, hi);
            st.outside = partial;
            st.limit = hi >= lo ? int64_t(st.f.super_ptr[hi + 1]) : 0;
            for (int64_t s = lo; s <= hi; ++s)
                refused |= ll_forward<K>(st, s);
            merge_partial(st.ld, partial, st.x);
        }
    st.outside = nullptr;
    if constexpr (K::has_diagonal)
        if (step == 0 || step == 2)
            for (int64_t s = r.first; s <= r.last; ++s)
                refused |= ll_diagonal<K>(st, s);
    if (step == 0 || step == 3)
        for (int64_t p = parts - 1; p >= 0; --p) {
            partition_range(r.backward_first, r.backward_last, parts, p, lo, hi);
            for (int64_t s = hi; s >= lo; --s)
                refused |= ll_backward<K>(st, s);
        }
    return refused != 0 ? 2 : 0;
}

// The tl kernel: the ll kernel's set-up, and a cleared partial vector of x's length.
template <class K, class T, class I, class G>
int64_t blkslv_tl(const factor_view<T, I> &f, const G &g, int64_t first, int64_t last, T *x, const I *control,
                  int64_t step, int64_t partitions)
{
    if (x == nullptr)
        return 1;
    if (!usable(g, f.n))
        return 2;
    const int64_t rows = std::max<int64_t>(scalar_rows(g, f.n), 1);
    scratch_array<T> work(size_t(rows), work_alignment), partial(size_t(rows), work_alignment);
    if (!work || !partial)
        return 1;
    std::memset(static_cast<void *>(partial.get()), 0, size_t(rows) * sizeof(T));
    const ll_ranges r = ranges_of(f.nsuper, first, last, control != nullptr ? int64_t(control[1]) : 0);
    wide_pivots<I> pivots;
    if (K::pivoted && !pivots.reserve(widest(f, g, 0, f.nsuper - 1)))
        return 1;
    const sweep_state<T, I, G> st{f, g, x, rows, work.get(), &pivots};
    return tl_steps<K>(st, r, step, std::max<int64_t>(partitions, 1), partial.get());
}

} // namespace zel::pds::onerhs
