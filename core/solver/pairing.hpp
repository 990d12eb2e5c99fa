// Groups for the symmetric indefinite types: a row whose diagonal is zero or small has no usable
// 1×1 pivot, and pivots never leave a supernode, so it is paired with a neighbour holding a large
// entry of its row; the ordering treats each group as one node and the supernodes keep it
// together, where a 2×2 pivot can take it. A group is a chain of neighbours: next[i] is the
// member after i, -1 after the last.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>

#include "ordering.hpp"
#include "pattern.hpp"
#include "symbolic.hpp"

namespace zel::solver {

namespace detail {

// A candidate pair: the two rows and the magnitude of the entry that joins them.
template <class I> struct pair_candidate {
    double weight;
    I i, j;
};

// |a_ii| and the largest |a_ij| (j ≠ i) of every row, both triangles of the symmetric matrix
// counted. Without values, an absent diagonal counts as zero and every stored entry as one.
template <class T, class I>
void row_magnitudes(const csr_pattern<I> &a, csr_part part, const T *values, double *diagonal, double *largest)
{
    std::fill(diagonal, diagonal + a.n, -1.0);
    std::fill(largest, largest + a.n, 0.0);
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p) {
            const I j = a.col_idx[p] - a.base;
            const double v = values ? double(std::abs(values[p])) : 1.0;
            if (j == i)
                diagonal[i] = values ? v : 1.0;
            else if (part == csr_part::full || j > i)
                largest[i] = std::max(largest[i], v), largest[j] = std::max(largest[j], v);
        }
    for (I i = 0; i < a.n; ++i)
        diagonal[i] = std::max(diagonal[i], 0.0);
}

// Groups under construction: next and prev link each chain; weak marks the rows to group.
template <class I> struct grouping {
    const sym_pattern<I> &sym;
    I *next, *prev;
    const unsigned char *weak;

    bool grouped(I i) const { return next[i] != -1 || prev[i] != -1; }
    void link(I x, I y) const { next[x] = y, prev[y] = x; }
    // The other member of j's group when that group is a pair, else -1.
    I pair_of(I j) const
    {
        if (next[j] != -1 && prev[j] == -1 && next[next[j]] == -1)
            return next[j];
        if (prev[j] != -1 && next[j] == -1 && prev[prev[j]] == -1)
            return prev[j];
        return -1;
    }
};

// A weak row left over takes a neighbour j from its pair (j, c) when c can pair with a row not yet
// grouped instead (an augmenting path of length three).
template <class I> bool take_from_pair(const grouping<I> &g, I i)
{
    for (I p = g.sym.begin(i); p < g.sym.end(i); ++p) {
        const I j = g.sym.row_idx[p], c = g.pair_of(j);
        if (c == -1)
            continue;
        for (I q = g.sym.begin(c); q < g.sym.end(c); ++q)
            if (const I r = g.sym.row_idx[q]; r != i && !g.grouped(r)) {
                g.next[j] = g.next[c] = g.prev[j] = g.prev[c] = -1;
                g.link(c, r);
                g.link(i, j);
                return true;
            }
    }
    return false;
}

// Otherwise it joins a chain at an end held by a weak neighbour: [0 a 0; a 0 b; 0 b d] is
// regular, where joining through a row with a usable diagonal would make the block singular.
template <class I> bool join_weak_end(const grouping<I> &g, I i)
{
    for (I p = g.sym.begin(i); p < g.sym.end(i); ++p) {
        const I j = g.sym.row_idx[p];
        if (!g.weak[j] || !g.grouped(j))
            continue;
        if (g.prev[j] == -1)
            return g.link(i, j), true;
        if (g.next[j] == -1)
            return g.link(j, i), true;
    }
    return false;
}

} // namespace detail

// Groups of weak rows: a row is weak when its diagonal is below 1/100 of its largest
// off-diagonal entry. Weak rows are paired greedily, largest joining entry first, each with a
// neighbour not yet grouped; a weak row left over takes a neighbour from a pair that can pair
// otherwise, or joins a chain at a weak end.
// next is left empty when no row is weak.
template <class T, class I>
int group_weak_diagonals(const csr_pattern<I> &a, csr_part part, const T *values, const sym_pattern<I> &sym,
                         scratch_array<I> &next)
{
    scratch_array<double> diagonal, largest;
    if (!allocate(next, a.n) || !allocate(diagonal, a.n) || !allocate(largest, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    detail::row_magnitudes(a, part, values, diagonal.get(), largest.get());
    auto weak = [&](I i) { return diagonal[i] < 1e-2 * largest[i]; };
    int64_t count = 0;
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            if (const I j = a.col_idx[p] - a.base; j > i && (weak(i) || weak(j)))
                ++count;
    scratch_array<detail::pair_candidate<I>> candidates;
    if (!allocate(candidates, count))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    int64_t k = 0;
    for (I i = 0; i < a.n; ++i)
        for (I p = a.row_ptr[i] - a.base; p < a.row_ptr[i + 1] - a.base; ++p)
            if (const I j = a.col_idx[p] - a.base; j > i && (weak(i) || weak(j)))
                candidates[k++] = detail::pair_candidate<I>{values ? double(std::abs(values[p])) : 1.0, i, j};
    std::stable_sort(candidates.get(), candidates.get() + count,
                     [](const auto &x, const auto &y) { return x.weight > y.weight; });
    scratch_array<I> prev;
    scratch_array<unsigned char> is_weak;
    if (!allocate(prev, a.n) || !allocate(is_weak, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I i = 0; i < a.n; ++i)
        is_weak[i] = weak(i) && largest[i] > 0;
    std::fill(next.get(), next.get() + a.n, I(-1));
    std::fill(prev.get(), prev.get() + a.n, I(-1));
    const detail::grouping<I> g{sym, next.get(), prev.get(), is_weak.get()};
    bool any = false;
    for (int64_t c = 0; c < count; ++c)
        if (const auto [weight, i, j] = candidates[c]; weight > 0 && !g.grouped(i) && !g.grouped(j))
            g.link(i, j), any = true;
    for (I i = 0; i < a.n; ++i)
        if (is_weak[i] && !g.grouped(i))
            any |= detail::take_from_pair(g, i) || detail::join_weak_end(g, i);
    if (!any)
        next = scratch_array<I>();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

namespace detail {

// The pattern with each group merged into one node (node of i: group[i]; first[g]: its first
// member), without self loops.
template <class I>
int compressed_pattern(const sym_pattern<I> &a, const I *next, const I *group, const I *first, I groups,
                       sym_pattern<I> &out)
{
    scratch_array<I> mark, fill;
    if (!allocate(mark, groups) || !allocate(fill, groups) || !allocate(out.col_ptr, int64_t(groups) + 1))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    auto sweep = [&](auto emit) {
        std::fill(mark.get(), mark.get() + groups, I(-1));
        for (I g = 0; g < groups; ++g) {
            mark[g] = g;
            for (I member = first[g]; member != -1; member = next[member])
                for (I p = a.begin(member); p < a.end(member); ++p)
                    if (const I h = group[a.row_idx[p]]; mark[h] != g)
                        mark[h] = g, emit(g, h);
        }
    };
    std::fill(out.col_ptr.get(), out.col_ptr.get() + groups + 1, I(0));
    sweep([&](I g, I) { ++out.col_ptr[g + 1]; });
    for (I g = 0; g < groups; ++g)
        out.col_ptr[g + 1] += out.col_ptr[g];
    if (!allocate(out.row_idx, out.col_ptr[groups]))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::copy(out.col_ptr.get(), out.col_ptr.get() + groups, fill.get());
    sweep([&](I g, I h) { out.row_idx[fill[g]++] = h; });
    out.n = groups;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace detail

// A fill-reducing ordering of `a` that keeps every group consecutive: the groups are merged,
// the merged pattern ordered, and each group expanded in place in its chain's order.
template <class I>
int grouped_ordering(const sym_pattern<I> &a, const I *next, const ordering_options &options, I *perm,
                     ordering_report *report)
{
    scratch_array<I> group, first, order, follows;
    if (!allocate(group, a.n) || !allocate(first, a.n) || !allocate(order, a.n) || !allocate(follows, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(follows.get(), follows.get() + a.n, I(0));
    for (I i = 0; i < a.n; ++i)
        if (next[i] != -1)
            follows[next[i]] = 1;
    I groups = 0;
    for (I i = 0; i < a.n; ++i)
        if (!follows[i]) {
            first[groups] = i;
            for (I member = i; member != -1; member = next[member])
                group[member] = groups;
            ++groups;
        }
    sym_pattern<I> merged;
    if (int status = detail::compressed_pattern(a, next, group.get(), first.get(), groups, merged); status != 0)
        return status;
    if (int status = fill_reducing_ordering(merged, options, static_cast<const I *>(nullptr), order.get(), report);
        status != 0)
        return status;
    I k = 0;
    for (I g = 0; g < groups; ++g)
        for (I member = first[order[g]]; member != -1; member = next[member])
            perm[k++] = member;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Ordering and symbolic analysis with every group in one supernode.
template <class I>
int grouped_analysis(const sym_pattern<I> &a, const I *next, const ordering_options &options,
                    const amalgamation &relax, symbolic_factor<I> &f, ordering_report *report)
{
    scratch_array<I> perm;
    if (!allocate(perm, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (int status = grouped_ordering(a, next, options, perm.get(), report); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    return symbolic_analysis(a, perm.get(), relax, f, next);
}

} // namespace zel::solver
