// Symbolic Cholesky analysis of a symmetric pattern under a given ordering: elimination tree,
// postorder, column counts, supernodes with relaxed amalgamation, and the supernodal factor's
// index arrays (1-based, ready for the numeric factorisation and the solve kernels).
#pragma once

#include <algorithm>
#include <cstdint>

#include "pattern.hpp"

namespace zel::solver {

// Relaxed amalgamation: a child supernode joins its parent when the merged panel has at most
// cols[0] columns, or at most cols[1] columns and a fraction of explicit zeros below
// zeros[0], or at most cols[2] and below zeros[1], or any width and below zeros[2].
// Since whole subtrees may merge, these defaults leave 86,000 supernodes (minimum degree) on
// the 1000² 5-point grid and 38,000 (nested dissection) on the 60³ 7-point grid, with 1-5%
// more entries than the exact factor's supernodes would hold. The solve pays per supernode;
// wider limits (20 columns at 10%) cut a fifth of the supernodes for 6-13% more entries on
// small matrices.
struct amalgamation {
    bool enabled = true;
    int64_t cols[3] = {4, 16, 48};
    double zeros[3] = {0.8, 0.1, 0.05};
};

struct symbolic_stats {
    int64_t nsuper = 0;
    int64_t exact_entries = 0; // entries of L, diagonal included, without amalgamation
    int64_t factor_entries = 0; // entries of the supernodal L (explicit zeros included)
    int64_t stored_values = 0;  // length of the value array: Σ nrows·ncols over the panels
    double exact_flops = 0;     // Cholesky flops (Σ count²) of the exact factor
    double flops = 0;           // the same over the supernodal factor
    int64_t max_rows = 0, max_cols = 0, max_panel = 0; // largest nrows, ncols, nrows·ncols
};

// The analysis result. super_ptr, col_ptr, row_ptr and row_index are 1-based (positions and
// row numbers); perm, inv_perm and super_parent are 0-based. Row and column k of the factored
// matrix are row and column perm[k] of the caller's; super_parent[s] is -1 at a root.
template <class I> struct symbolic_factor {
    I n = 0;
    I nsuper = 0;
    scratch_array<I> super_ptr; // nsuper + 1
    scratch_array<I> col_ptr;   // n + 1
    scratch_array<I> row_ptr;   // nsuper + 1
    scratch_array<I> row_index; // row_ptr[nsuper] - 1
    scratch_array<I> perm, inv_perm; // n
    scratch_array<I> super_parent;   // nsuper
    symbolic_stats stats;
};

// parent[k] = parent of column k in the elimination tree of P·A·Pᵀ, read from a through the
// ordering (perm[k] = the column of a eliminated k-th, pinv its inverse; both null: the natural
// order), so that no permuted copy is needed (ancestor: n scratch).
template <class I> void elimination_tree(const sym_pattern<I> &a, const I *perm, const I *pinv, I *parent, I *ancestor)
{
    for (I k = 0; k < a.n; ++k) {
        parent[k] = -1;
        ancestor[k] = -1;
        const I column = perm ? perm[k] : k;
        for (I p = a.begin(column); p < a.end(column); ++p) {
            I i = pinv ? pinv[a.row_idx[size_t(p)]] : a.row_idx[size_t(p)];
            // Climb from i to its current root, pointing the path at k (path compression).
            while (i != -1 && i < k) {
                const I next = ancestor[i];
                ancestor[i] = k;
                if (next == -1)
                    parent[i] = k;
                i = next;
            }
        }
    }
}

// post[k] = the k-th node of a depth-first postorder of the forest, children in ascending
// order (work: 3n scratch).
template <class I> void postorder(I n, const I *parent, I *post, I *work)
{
    I *head = work, *next = work + n, *stack = work + 2 * int64_t(n);
    std::fill(head, head + n, I(-1));
    for (I j = n - 1; j >= 0; --j)
        if (parent[j] != -1) {
            next[j] = head[parent[j]];
            head[parent[j]] = j;
        }
    I k = 0;
    for (I root = 0; root < n; ++root) {
        if (parent[root] != -1)
            continue;
        I top = 0;
        stack[0] = root;
        while (top >= 0) {
            const I p = stack[top];
            if (const I child = head[p]; child == -1) {
                --top;
                post[k++] = p;
            } else {
                head[p] = next[child];
                stack[++top] = child;
            }
        }
    }
}

namespace detail {

// State of the row-subtree walk of the column-count algorithm.
template <class I> struct leaf_state {
    const I *first;  // first[j]: the smallest (first postordered) descendant of j
    I *max_first;    // per row: first[] of the last leaf found in its row subtree
    I *prev_leaf;    // per row: that leaf
    I *ancestor;     // disjoint-set forest over the columns processed so far
};

// Whether j is a leaf of row i's subtree (0 no, 1 first leaf, 2 a later one); for a later
// leaf, `lca` receives the least common ancestor of j and the previous leaf.
template <class I> int row_subtree_leaf(I i, I j, const leaf_state<I> &s, I &lca)
{
    if (i <= j || s.first[j] <= s.max_first[i])
        return 0;
    s.max_first[i] = s.first[j];
    const I previous = s.prev_leaf[i];
    s.prev_leaf[i] = j;
    if (previous == -1)
        return 1;
    I q = previous;
    while (q != s.ancestor[q])
        q = s.ancestor[q];
    for (I v = previous; v != q;) {
        const I up = s.ancestor[v];
        s.ancestor[v] = q;
        v = up;
    }
    lca = q;
    return 2;
}

} // namespace detail

// count[j] = entries of column j of L (diagonal included), without forming L, for a pattern
// whose elimination tree is postordered (parent[j] > j, subtrees contiguous). Work: 4n.
template <class I> void column_counts(const sym_pattern<I> &a, const I *parent, I *count, I *work)
{
    const I n = a.n;
    I *first = work, *max_first = work + n, *prev_leaf = work + 2 * int64_t(n), *ancestor = work + 3 * int64_t(n);
    std::fill(first, first + n, I(-1));
    for (I k = 0; k < n; ++k) {
        count[k] = first[k] == -1 ? 1 : 0; // a leaf of the tree
        for (I j = k; j != -1 && first[j] == -1; j = parent[j])
            first[j] = k;
    }
    std::fill(max_first, max_first + n, I(-1));
    std::fill(prev_leaf, prev_leaf + n, I(-1));
    for (I i = 0; i < n; ++i)
        ancestor[i] = i;
    const detail::leaf_state<I> state{first, max_first, prev_leaf, ancestor};
    for (I j = 0; j < n; ++j) {
        if (parent[j] != -1)
            --count[parent[j]];
        for (I p = a.begin(j); p < a.end(j); ++p) {
            I lca = -1;
            const int leaf = detail::row_subtree_leaf(a.row_idx[size_t(p)], j, state, lca);
            count[j] += leaf >= 1;
            if (leaf == 2)
                --count[lca];
        }
        if (parent[j] != -1)
            ancestor[j] = parent[j];
    }
    for (I j = 0; j < n; ++j)
        if (parent[j] != -1)
            count[parent[j]] += count[j];
}

// Supernodes while they are built: columns start[s] .. start[s+1]-1, the rows of the panel,
// the explicit zeros amalgamation put in it, and the supernodal tree.
template <class I> struct supernode_partition {
    I count = 0;
    scratch_array<I> start;  // count + 1
    scratch_array<I> rows;   // count
    scratch_array<I> parent; // count
    scratch_array<int64_t> zeros;
};

// Entries in the lower trapezoid of a panel of `rows` rows and `cols` columns.
inline int64_t trapezoid(int64_t cols, int64_t rows) { return cols * rows - cols * (cols - 1) / 2; }

// Fundamental supernodes of a postordered tree: column j joins j-1 when j is j-1's parent,
// j-1 is its only child, and their columns differ by the diagonal alone.
template <class I> int fundamental_supernodes(I n, const I *parent, const I *count, supernode_partition<I> &sn)
{
    scratch_array<I> children;
    if (!allocate(children, n) || !allocate(sn.start, int64_t(n) + 1) || !allocate(sn.rows, n) ||
        !allocate(sn.parent, n) || !allocate(sn.zeros, n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(children.get(), children.get() + n, I(0));
    for (I j = 0; j < n; ++j)
        if (parent[j] != -1)
            ++children[parent[j]];
    sn.count = 0;
    for (I j = 0; j < n; ++j) {
        const bool joins = j > 0 && parent[j - 1] == j && children[j] == 1 && count[j - 1] == count[j] + 1;
        if (!joins) {
            sn.start[sn.count] = j;
            sn.rows[sn.count] = count[j];
            sn.zeros[sn.count++] = 0;
        }
    }
    sn.start[sn.count] = n;
    // The parent of a supernode holds the parent of its last column.
    I *of_column = children.get(); // reused: supernode of each column
    for (I s = 0; s < sn.count; ++s)
        std::fill(of_column + sn.start[s], of_column + sn.start[s + 1], s);
    for (I s = 0; s < sn.count; ++s) {
        const I up = parent[sn.start[s + 1] - 1];
        sn.parent[s] = up == -1 ? -1 : of_column[up];
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Whether a panel of `cols` columns and `entries` trapezoid entries, `zeros` of them explicit
// zeros, is acceptable to the amalgamation rule.
inline bool relaxed_enough(const amalgamation &relax, int64_t cols, int64_t zeros, int64_t entries)
{
    const double fraction = entries > 0 ? double(zeros) / double(entries) : 0.0;
    return cols <= relax.cols[0] || (cols <= relax.cols[1] && fraction < relax.zeros[0]) ||
           (cols <= relax.cols[2] && fraction < relax.zeros[1]) || fraction < relax.zeros[2];
}

// Keeps the groups that survived amalgamation (top[s] != 0), in order. low[s] is the lowest
// member of the group whose top is s; parents, which name the top's parent, are mapped to
// the group holding it. `low` is reused for the map from member to group.
template <class I> void renumber_groups(supernode_partition<I> &sn, I *low, const unsigned char *top)
{
    I g = 0;
    for (I s = 0; s < sn.count; ++s) {
        if (!top[s])
            continue;
        const I end = sn.start[s + 1], first = low[s];
        sn.start[g] = sn.start[first]; // first <= s: already read when g's slot is written
        sn.rows[g] = sn.rows[s];
        sn.zeros[g] = sn.zeros[s];
        sn.parent[g] = sn.parent[s];
        std::fill(low + first, low + s + 1, g);
        sn.start[++g] = end;
    }
    sn.count = g;
    for (g = 0; g < sn.count; ++g)
        sn.parent[g] = sn.parent[g] == -1 ? -1 : low[sn.parent[g]];
}

// Relaxed amalgamation in place, bottom-up. The group of s (s and the descendants merged into
// it, a contiguous range ending at s) absorbs the group just before it while that group's
// top is a child of s and the rule allows: the merged panel has s's group's rows plus the
// child's columns. A whole subtree can so become one supernode. A column marked in `joined`
// always shares the supernode of the column before it (pivots of a pair stay together).
template <class I>
int amalgamate(const amalgamation &relax, supernode_partition<I> &sn, const unsigned char *joined = nullptr)
{
    if ((!relax.enabled && joined == nullptr) || sn.count < 2)
        return ZEL_SPARSE_STATUS_SUCCESS;
    scratch_array<I> low;
    scratch_array<unsigned char> top;
    if (!allocate(low, sn.count) || !allocate(top, sn.count))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I s = 0; s < sn.count; ++s) {
        low[s] = s;
        top[s] = 1;
        while (low[s] > 0 && sn.parent[low[s] - 1] == s) {
            const I t = low[s] - 1;
            const int64_t cs = sn.start[s + 1] - sn.start[low[s]], rs = sn.rows[s];
            const int64_t ct = sn.start[t + 1] - sn.start[low[t]], rt = sn.rows[t];
            const int64_t entries = trapezoid(ct + cs, ct + rs);
            const int64_t zeros = sn.zeros[s] + sn.zeros[t] + entries - trapezoid(ct, rt) - trapezoid(cs, rs);
            const bool forced = joined != nullptr && joined[sn.start[low[s]]];
            if (!forced && (!relax.enabled || !relaxed_enough(relax, ct + cs, zeros, entries)))
                break;
            sn.rows[s] = I(ct + rs);
            sn.zeros[s] = zeros;
            low[s] = low[t];
            top[t] = 0;
        }
    }
    renumber_groups(sn, low.get(), top.get());
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The factor's 1-based pointers from the partition: super_ptr, row_ptr and col_ptr (a column
// of supernode s begins nrows(s) after the previous one), and the statistics. 3 when a
// position does not fit I.
template <class I> int factor_layout(const supernode_partition<I> &sn, symbolic_factor<I> &f)
{
    const I n = f.n;
    f.nsuper = sn.count;
    if (!allocate(f.super_ptr, int64_t(sn.count) + 1) || !allocate(f.row_ptr, int64_t(sn.count) + 1) ||
        !allocate(f.col_ptr, int64_t(n) + 1) || !allocate(f.super_parent, sn.count))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    int64_t rows_total = 0, values = 0;
    symbolic_stats &st = f.stats;
    for (I s = 0; s < sn.count; ++s) {
        const int64_t cols = sn.start[s + 1] - sn.start[s], rows = sn.rows[s];
        const auto panel = checked_mul(cols, rows);
        const auto next_values = panel ? checked_add(values, *panel) : std::nullopt;
        if (!next_values || !fits_in<I>(*next_values + 1) || !fits_in<I>(rows_total + rows + 1))
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
        f.super_ptr[s] = sn.start[s] + 1;
        f.row_ptr[s] = I(rows_total + 1);
        f.super_parent[s] = sn.parent[s];
        for (int64_t t = 0; t < cols; ++t) {
            f.col_ptr[sn.start[s] + t] = I(values + 1 + t * rows);
            st.flops += double(rows - t) * double(rows - t);
        }
        values = *next_values;
        rows_total += rows;
        st.factor_entries += trapezoid(cols, rows);
        st.max_rows = std::max(st.max_rows, rows);
        st.max_cols = std::max(st.max_cols, cols);
        st.max_panel = std::max(st.max_panel, *panel);
    }
    f.super_ptr[sn.count] = n + 1;
    f.row_ptr[sn.count] = I(rows_total + 1);
    f.col_ptr[n] = I(values + 1);
    st.nsuper = sn.count;
    st.stored_values = values;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The row lists. Own columns first; then, for each row i in ascending order, i is appended to
// every supernode of its row subtree: the supernodal-tree paths from the supernodes of the
// columns k < i with a(i, k) != 0 up to i's own supernode. Rows thus arrive sorted.
template <class I> int supernode_rows(const sym_pattern<I> &a, symbolic_factor<I> &f)
{
    scratch_array<I> of_column, mark, next;
    if (!allocate(of_column, f.n) || !allocate(mark, f.nsuper) || !allocate(next, f.nsuper) ||
        !allocate(f.row_index, int64_t(f.row_ptr[f.nsuper]) - 1))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I s = 0; s < f.nsuper; ++s) {
        I q = f.row_ptr[s] - 1;
        for (I j = f.super_ptr[s] - 1; j < f.super_ptr[s + 1] - 1; ++j) {
            of_column[j] = s;
            f.row_index[q++] = j + 1;
        }
        next[s] = q;
        mark[s] = -1;
    }
    for (I i = 0; i < f.n; ++i) {
        mark[of_column[i]] = i;
        for (I p = a.begin(i); p < a.end(i) && a.row_idx[p] < i; ++p)
            for (I s = of_column[a.row_idx[p]]; mark[s] != i; s = f.super_parent[s]) {
                mark[s] = i;
                f.row_index[next[s]++] = i + 1;
            }
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

namespace detail {

// The ordering followed by a postorder of its elimination tree: q[k] = perm[post[k]], and the
// tree in that numbering (a postorder only renames the nodes, so the tree need not be rebuilt).
template <class I> int postordered(const sym_pattern<I> &a, const I *perm, I *q, I *qinv, I *parent)
{
    scratch_array<I> work, tree;
    if (!allocate(work, 3 * int64_t(a.n)) || !allocate(tree, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I k = 0; k < a.n; ++k)
        qinv[perm ? perm[k] : k] = k;
    elimination_tree(a, perm, perm ? qinv : nullptr, tree.get(), work.get());
    postorder(a.n, tree.get(), q, work.get());
    I *post_inv = work.get();
    for (I k = 0; k < a.n; ++k)
        post_inv[q[k]] = k;
    for (I k = 0; k < a.n; ++k)
        parent[k] = tree[q[k]] == -1 ? I(-1) : post_inv[tree[q[k]]];
    for (I k = 0; k < a.n; ++k)
        q[k] = perm ? perm[q[k]] : q[k];
    for (I k = 0; k < a.n; ++k)
        qinv[q[k]] = k;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Column counts of a postordered pattern under its tree, and the exact statistics.
template <class I> int counts_and_stats(const sym_pattern<I> &c, const I *parent, I *count, symbolic_stats &st)
{
    scratch_array<I> work;
    if (!allocate(work, 4 * int64_t(c.n)))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    column_counts(c, parent, count, work.get());
    for (I j = 0; j < c.n; ++j) {
        st.exact_entries += count[j];
        st.exact_flops += double(count[j]) * double(count[j]);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace detail

// of_column[j] = the supernode holding column j (0-based both).
template <class I> void supernode_of_columns(const symbolic_factor<I> &f, I *of_column)
{
    for (I s = 0; s < f.nsuper; ++s)
        for (I j = f.super_ptr[s] - 1; j < f.super_ptr[s + 1] - 1; ++j)
            of_column[j] = s;
}

namespace detail {

// joined[k] = 1 when column k of the factor follows column k − 1 in its group (next: by the
// caller's numbering, the member after each, -1 for none).
template <class I> int joined_columns(const symbolic_factor<I> &f, const I *next, scratch_array<unsigned char> &joined)
{
    if (next == nullptr)
        return ZEL_SPARSE_STATUS_SUCCESS;
    if (!allocate(joined, f.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I k = 0; k < f.n; ++k)
        joined[k] = k > 0 && next[f.perm[k - 1]] == f.perm[k];
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace detail

// Symbolic analysis of `a` under the ordering perm (null: the natural order; 0-based, assumed
// a permutation). The factor's own ordering is perm followed by a postorder of the tree.
// Groups (optional: next[i] the member after i, a neighbour of i) that perm keeps consecutive
// end up in one supernode.
template <class I>
int symbolic_analysis(const sym_pattern<I> &a, const I *perm, const amalgamation &relax, symbolic_factor<I> &f,
                      const I *next = nullptr)
{
    f = symbolic_factor<I>();
    f.n = a.n;
    scratch_array<I> parent, count;
    if (!allocate(f.perm, a.n) || !allocate(f.inv_perm, a.n) || !allocate(parent, a.n) || !allocate(count, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    int status = detail::postordered(a, perm, f.perm.get(), f.inv_perm.get(), parent.get());
    sym_pattern<I> c;
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = permute_pattern(a, f.perm.get(), f.inv_perm.get(), c);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = detail::counts_and_stats(c, parent.get(), count.get(), f.stats);
    supernode_partition<I> sn;
    scratch_array<unsigned char> joined;
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = detail::joined_columns(f, next, joined);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = fundamental_supernodes(a.n, parent.get(), count.get(), sn);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = amalgamate(relax, sn, joined.get());
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = factor_layout(sn, f);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = supernode_rows(c, f);
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        f = symbolic_factor<I>();
    return status;
}

// Exact statistics (entries, flops) of the factor under perm, without supernodes or row
// lists: what the automatic ordering compares.
template <class I> int factor_cost(const sym_pattern<I> &a, const I *perm, symbolic_stats &st)
{
    st = symbolic_stats();
    scratch_array<I> q, qinv, parent, count;
    if (!allocate(q, a.n) || !allocate(qinv, a.n) || !allocate(parent, a.n) || !allocate(count, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    int status = detail::postordered(a, perm, q.get(), qinv.get(), parent.get());
    sym_pattern<I> c;
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = permute_pattern(a, q.get(), qinv.get(), c);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = detail::counts_and_stats(c, parent.get(), count.get(), st);
    return status;
}

namespace detail {

// Whether the supernode's off-diagonal rows, beyond its parent's columns, all appear in the
// parent's list (both lists ascending): what lets a child's update land in its parent.
template <class I> bool rows_nest_in_parent(const symbolic_factor<I> &f, I s)
{
    const I p = f.super_parent[s];
    const I last_parent_col = f.super_ptr[p + 1] - 1;
    I q = f.row_ptr[p] + (f.super_ptr[p + 1] - f.super_ptr[p]) - 1;
    const I q_end = f.row_ptr[p + 1] - 1;
    for (I r = f.row_ptr[s] - 1 + (f.super_ptr[s + 1] - f.super_ptr[s]); r < f.row_ptr[s + 1] - 1; ++r) {
        const I row = f.row_index[r];
        if (row <= last_parent_col)
            continue;
        while (q < q_end && f.row_index[q] < row)
            ++q;
        if (q == q_end || f.row_index[q] != row)
            return false;
    }
    return true;
}

// The first broken invariant of supernode s, or null.
template <class I> const char *check_supernode(const symbolic_factor<I> &f, I s)
{
    const I first = f.super_ptr[s], cols = f.super_ptr[s + 1] - first;
    if (cols < 1)
        return "super_ptr not strictly ascending";
    const I rows = f.col_ptr[first] - f.col_ptr[first - 1];
    if (f.row_ptr[s + 1] - f.row_ptr[s] != rows || rows < cols)
        return "row_ptr length differs from the panel rows, or fewer rows than columns";
    for (I j = first; j < first + cols; ++j)
        if (f.col_ptr[j] - f.col_ptr[j - 1] != rows)
            return "a column of the panel has a length other than nrows";
    const I *list = f.row_index.get() + (f.row_ptr[s] - 1);
    for (I t = 0; t < cols; ++t)
        if (list[t] != first + t)
            return "row list does not begin with the supernode's own columns";
    for (I t = cols; t < rows; ++t)
        if (list[t] <= list[t - 1] || list[t] > f.n)
            return "off-diagonal rows not ascending, not below the supernode or beyond n";
    const I parent = f.super_parent[s];
    const I expected = rows == cols ? -1 : I(std::upper_bound(f.super_ptr.get(), f.super_ptr.get() + f.nsuper + 1, list[cols]) - f.super_ptr.get() - 1);
    if (parent != expected)
        return "super_parent is not the supernode of the first off-diagonal row";
    if (parent != -1 && !rows_nest_in_parent(f, s))
        return "off-diagonal rows not contained in the parent supernode's rows";
    return nullptr;
}

} // namespace detail

// Checks the invariants of a symbolic factor; returns the first one broken, or null.
template <class I> const char *check_symbolic(const symbolic_factor<I> &f)
{
    if (f.n < 0 || f.nsuper < 0 || (f.n > 0) != (f.nsuper > 0))
        return "n and nsuper inconsistent";
    if (f.n == 0)
        return nullptr;
    if (f.super_ptr[0] != 1 || f.super_ptr[f.nsuper] != f.n + 1 || f.row_ptr[0] != 1 || f.col_ptr[0] != 1)
        return "pointer arrays do not start at 1 or super_ptr does not end at n + 1";
    for (I s = 0; s < f.nsuper; ++s)
        if (f.super_ptr[s + 1] <= f.super_ptr[s] || f.super_ptr[s + 1] > f.n + 1)
            return "super_ptr not strictly ascending";
    for (I s = 0; s < f.nsuper; ++s)
        if (const char *broken = detail::check_supernode(f, s))
            return broken;
    for (I k = 0; k < f.n; ++k)
        if (f.perm[k] < 0 || f.perm[k] >= f.n || f.inv_perm[f.perm[k]] != k)
            return "perm is not a permutation or inv_perm not its inverse";
    return nullptr;
}

} // namespace zel::solver
