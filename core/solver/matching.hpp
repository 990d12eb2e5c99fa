// Matchings and scalings that put large entries on the diagonal of an unsymmetric matrix before
// the symmetric ordering: the maximum-product matching with the row and column scaling of its
// dual variables (Duff–Koster), the maximum-cardinality matching of a pattern, and iterative
// max-norm equilibration for when no matching is wanted.
//
// Rows are the side that augmenting paths start from (the matrix comes by rows); the result is
// given by columns. Every scratch array comes from the core allocator; a failed allocation is
// ZEL_SPARSE_STATUS_ALLOC_FAILED with nothing written to the result.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <utility>

#include "pattern.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {

// The matrix: n × n CSR, 0-based or 1-based (base), columns of a row in any order, no duplicates.
template <class I> struct matching_result {
    scratch_array<I> row_of_column;                    // n: the row matched to column j, or -1
    scratch_array<double> row_scaling, column_scaling; // n each; empty when not computed
    I rank = 0; // matched columns: the structural rank (of the nonzero entries, for the product)
};

namespace matching_detail {

inline constexpr double infinity = std::numeric_limits<double>::infinity();

template <class T> double magnitude(const T &value)
{
    if constexpr (is_complex_v<T>)
        return std::abs(std::complex<double>(value));
    else
        return std::fabs(double(value));
}

template <class I> I row_begin(const csr_pattern<I> &a, I i) { return a.row_ptr[i] - a.base; }
template <class I> I row_end(const csr_pattern<I> &a, I i) { return a.row_ptr[i + 1] - a.base; }

// A matching under construction, seen from both sides (-1: unmatched).
template <class I> struct sides {
    scratch_array<I> col_of_row, row_of_col;
    I matched = 0;

    bool allocate(I n)
    {
        if (!solver::allocate(col_of_row, n) || !solver::allocate(row_of_col, n))
            return false;
        std::fill(col_of_row.get(), col_of_row.get() + n, I(-1));
        std::fill(row_of_col.get(), row_of_col.get() + n, I(-1));
        return true;
    }
};

// ---------------------------------------------------------------------------------------------
// Maximum cardinality: phases of depth-first searches with lookahead, one from each unmatched
// row, sharing their visited marks (Pothen–Fan). A phase looks at each entry at most once
// beyond the lookahead; a phase that augments nothing proves the matching maximum (a failed
// search leaves behind columns from which no free column can be reached, so the later searches
// of the phase lose nothing by skipping them). Phases alternate the direction in which rows
// are scanned, so that a search does not retrace the same long path phase after phase.

template <class I> struct dfs_work {
    scratch_array<I> stack, next, cheap, mark, pending;
    I phase = 0;
    bool backward = false;

    bool allocate(const csr_pattern<I> &a)
    {
        for (scratch_array<I> *array : {&stack, &next, &cheap, &mark, &pending})
            if (!solver::allocate(*array, a.n))
                return false;
        for (I i = 0; i < a.n; ++i)
            cheap[size_t(i)] = row_begin(a, i);
        std::fill(mark.get(), mark.get() + a.n, I(-1));
        return true;
    }
    void start(const csr_pattern<I> &a, I i) { next[size_t(i)] = backward ? row_end(a, i) - 1 : row_begin(a, i); }
};

// A free usable column of row i, or -1. cheap[i] only moves forward: a matched column never
// becomes free again, so each row's entries are looked at once over the whole matching.
template <class I, class Usable>
I free_column(const csr_pattern<I> &a, const Usable &usable, I i, const sides<I> &m, dfs_work<I> &w)
{
    for (I &p = w.cheap[size_t(i)]; p < row_end(a, i); ++p)
        if (usable(p) && m.row_of_col[size_t(a.col_idx[p] - a.base)] < 0)
            return a.col_idx[p++] - a.base;
    return -1;
}

// The next column of row i (all matched, since the lookahead failed) that this phase has not
// reached, or -1.
template <class I, class Usable>
I unreached_column(const csr_pattern<I> &a, const Usable &usable, I i, dfs_work<I> &w)
{
    const I step = w.backward ? -1 : 1;
    for (I &p = w.next[size_t(i)]; p >= row_begin(a, i) && p < row_end(a, i); p += step) {
        const I j = a.col_idx[p] - a.base;
        if (!usable(p) || w.mark[size_t(j)] == w.phase)
            continue;
        w.mark[size_t(j)] = w.phase;
        p += step;
        return j;
    }
    return -1;
}

// Searches for an augmenting path from the unmatched row `root` and flips it when found.
template <class I, class Usable>
bool dfs_augment(const csr_pattern<I> &a, const Usable &usable, I root, sides<I> &m, dfs_work<I> &w)
{
    I top = 0;
    w.stack[0] = root;
    w.start(a, root);
    while (top >= 0) {
        const I i = w.stack[size_t(top)];
        if (I j = free_column(a, usable, i, m, w); j >= 0) {
            for (I t = top; t >= 0; --t) { // each row on the stack takes the column after it
                const I r = w.stack[size_t(t)];
                const I previous = m.col_of_row[size_t(r)];
                m.col_of_row[size_t(r)] = j;
                m.row_of_col[size_t(j)] = r;
                j = previous;
            }
            ++m.matched;
            return true;
        }
        const I j = unreached_column(a, usable, i, w);
        if (j < 0) {
            --top;
            continue;
        }
        const I r = m.row_of_col[size_t(j)];
        w.stack[size_t(++top)] = r;
        w.start(a, r);
    }
    return false;
}

// Extends a matching to one of maximum cardinality over the usable entries.
template <class I, class Usable> int complete_matching(const csr_pattern<I> &a, const Usable &usable, sides<I> &m)
{
    dfs_work<I> w;
    if (!w.allocate(a))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    I pending = 0;
    for (I i = 0; i < a.n; ++i)
        if (m.col_of_row[size_t(i)] < 0)
            w.pending[size_t(pending++)] = i;
    for (bool augmented = true; pending > 0 && augmented;) {
        ++w.phase;
        w.backward = !w.backward;
        augmented = false;
        I still = 0;
        for (I t = 0; t < pending; ++t) {
            const I r = w.pending[size_t(t)];
            if (dfs_augment(a, usable, r, m, w))
                augmented = true;
            else
                w.pending[size_t(still++)] = r;
        }
        pending = still;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// ---------------------------------------------------------------------------------------------
// Maximum product: shortest augmenting paths over the costs c_ij = log max_k|a_ik| − log|a_ij|,
// with row duals u and column duals v keeping every reduced cost c_ij − u_i − v_j nonnegative
// and the matched ones zero.

// What a search reads and writes for each column it reaches, kept together so that reaching a
// column touches one cache line rather than one per array.
template <class I> struct column_state {
    double dist; // tentative distance in the current search; +∞ when not reached
    double v;    // dual
    I row;       // matched row, -1 when free
    I where;     // heap position, or unseen / settled
    I pred;      // the row the current search reached it from
};

template <class I> struct heap_entry {
    double key;
    I column;
};

template <class I> struct assignment {
    static constexpr I unseen = -1, settled = -2;
    csr_pattern<I> a;
    scratch_array<double> cost;    // per entry; +∞ for a zero entry
    scratch_array<double> log_max; // per row: log max_k |a_ik|
    scratch_array<double> u;
    scratch_array<I> col_of_row;
    scratch_array<column_state<I>> column;
    I matched = 0;

    bool allocate()
    {
        if (!solver::allocate(cost, row_begin(a, a.n)) || !solver::allocate(log_max, a.n) ||
            !solver::allocate(u, a.n) || !solver::allocate(col_of_row, a.n) || !solver::allocate(column, a.n))
            return false;
        std::fill(col_of_row.get(), col_of_row.get() + a.n, I(-1));
        std::fill(column.get(), column.get() + a.n, column_state<I>{infinity, 0.0, -1, unseen, -1});
        return true;
    }
    I col(I p) const { return a.col_idx[p] - a.base; }
    double reduced(I p, I i) const // clamped: rounding in the dual updates may leave -ulps
    {
        return std::max(0.0, (cost[size_t(p)] - column[size_t(col(p))].v) - u[size_t(i)]);
    }
    void match(I i, I j)
    {
        col_of_row[size_t(i)] = j;
        column[size_t(j)].row = i;
    }
};

// The costs; false when a row has no nonzero entry (then no perfect matching avoids zeros).
template <class T, class I> bool log_costs(assignment<I> &s, const T *values)
{
    const csr_pattern<I> &a = s.a;
    for (I i = 0; i < a.n; ++i) {
        double largest = 0;
        for (I p = row_begin(a, i); p < row_end(a, i); ++p)
            largest = std::max(largest, magnitude(values[p]));
        if (!(largest > 0))
            return false;
        s.log_max[size_t(i)] = std::log(largest);
        for (I p = row_begin(a, i); p < row_end(a, i); ++p) {
            const double m = magnitude(values[p]);
            const double ratio = largest / m; // ≥ 1; one rounding where it is finite
            s.cost[size_t(p)] = m == 0                 ? infinity
                                : std::isfinite(ratio) ? std::log(ratio)
                                                       : s.log_max[size_t(i)] - std::log(m);
        }
    }
    return true;
}

// Initial duals, v_j = min_i c_ij then u_i = min_j (c_ij − v_j), so that each row has an edge of
// zero reduced cost (computed exactly as reduced() does); false when a column has no nonzero.
template <class I> bool initial_duals(assignment<I> &s)
{
    const csr_pattern<I> &a = s.a;
    for (I j = 0; j < a.n; ++j)
        s.column[size_t(j)].v = infinity;
    for (I p = 0; p < row_begin(a, a.n); ++p) {
        double &v = s.column[size_t(s.col(p))].v;
        v = std::min(v, s.cost[size_t(p)]);
    }
    for (I j = 0; j < a.n; ++j)
        if (s.column[size_t(j)].v == infinity)
            return false;
    for (I i = 0; i < a.n; ++i) {
        double u = infinity;
        for (I p = row_begin(a, i); p < row_end(a, i); ++p)
            u = std::min(u, s.cost[size_t(p)] - s.column[size_t(s.col(p))].v);
        s.u[size_t(i)] = u;
    }
    return true;
}

// A free column of zero reduced cost in row i, or -1.
template <class I> I free_tight_column(const assignment<I> &s, I i)
{
    for (I p = row_begin(s.a, i); p < row_end(s.a, i); ++p)
        if (s.column[size_t(s.col(p))].row < 0 && s.reduced(p, i) == 0)
            return s.col(p);
    return -1;
}

// The cheap start: each row takes a free column of zero reduced cost; a row left without one
// looks one step further, for a tight column whose row can move to another free tight column.
template <class I> void greedy_matching(assignment<I> &s)
{
    const csr_pattern<I> &a = s.a;
    for (I i = 0; i < a.n; ++i)
        if (const I j = free_tight_column(s, i); j >= 0) {
            s.match(i, j);
            ++s.matched;
        }
    for (I i = 0; i < a.n; ++i) {
        if (s.col_of_row[size_t(i)] >= 0)
            continue;
        for (I p = row_begin(a, i); p < row_end(a, i); ++p) {
            if (s.reduced(p, i) != 0)
                continue;
            const I j = s.col(p), k = s.column[size_t(j)].row;
            const I j2 = k >= 0 ? free_tight_column(s, k) : -1;
            if (k < 0 || j2 >= 0) {
                if (k >= 0)
                    s.match(k, j2);
                s.match(i, j);
                ++s.matched;
                break;
            }
        }
    }
}

// Dijkstra's scratch: a binary heap of columns keyed by distance (positions kept in the column
// states for decrease-key) and the list of the columns one search reached, so that resetting
// costs what the search cost.
template <class I> struct dijkstra_work {
    scratch_array<heap_entry<I>> heap;
    scratch_array<I> reached;
    I heap_size = 0, reached_count = 0;
    double best = infinity; // length of the shortest path found so far to a free column
    I best_column = -1;

    bool allocate(I n) { return solver::allocate(heap, n) && solver::allocate(reached, n); }
};

template <class I> void heap_place(assignment<I> &s, dijkstra_work<I> &w, I at, heap_entry<I> e)
{
    w.heap[size_t(at)] = e;
    s.column[size_t(e.column)].where = at;
}

// Moves the entry at `at` towards the root while its key is smaller than its parent's.
template <class I> void heap_sift_up(assignment<I> &s, dijkstra_work<I> &w, I at)
{
    const heap_entry<I> e = w.heap[size_t(at)];
    for (I parent; at > 0 && w.heap[size_t(parent = (at - 1) / 2)].key > e.key; at = parent)
        heap_place(s, w, at, w.heap[size_t(parent)]);
    heap_place(s, w, at, e);
}

// Removes the nearest column and marks it settled.
template <class I> I heap_pop(assignment<I> &s, dijkstra_work<I> &w)
{
    const I top = w.heap[0].column;
    const heap_entry<I> e = w.heap[size_t(--w.heap_size)];
    s.column[size_t(top)].where = s.settled;
    if (w.heap_size == 0)
        return top;
    I at = 0;
    for (I child; (child = 2 * at + 1) < w.heap_size; at = child) {
        if (child + 1 < w.heap_size && w.heap[size_t(child + 1)].key < w.heap[size_t(child)].key)
            ++child;
        if (!(w.heap[size_t(child)].key < e.key))
            break;
        heap_place(s, w, at, w.heap[size_t(child)]);
    }
    heap_place(s, w, at, e);
    return top;
}

// Relaxes the edges of row i, reached at distance d. Free columns are never expanded: only the
// nearest one matters.
template <class I> void relax_row(assignment<I> &s, I i, double d, dijkstra_work<I> &w)
{
    const double ui = s.u[size_t(i)];
    for (I p = row_begin(s.a, i); p < row_end(s.a, i); ++p) {
        column_state<I> &c = s.column[size_t(s.col(p))];
        if (c.where == s.settled)
            continue;
        const double length = d + std::max(0.0, (s.cost[size_t(p)] - c.v) - ui);
        if (!(length < c.dist) || !(length < w.best)) // no use for a path as long as the best
            continue;
        if (c.dist == infinity)
            w.reached[size_t(w.reached_count++)] = s.col(p);
        c.dist = length;
        c.pred = i;
        if (c.row < 0) {
            if (length < w.best) {
                w.best = length;
                w.best_column = s.col(p);
            }
            continue;
        }
        if (c.where == s.unseen)
            c.where = w.heap_size++;
        w.heap[size_t(c.where)] = {length, s.col(p)};
        heap_sift_up(s, w, c.where);
    }
}

// After a search from `root` found a free column at distance D: every settled column j moves
// v_j down by D − d_j and its row's u up by as much, the root's u by D. Edges inside the tree
// keep nonnegative reduced costs and those on the shortest path become zero, so the flipped
// path is tight. Then the path is flipped.
template <class I> void update_and_flip(assignment<I> &s, I root, dijkstra_work<I> &w)
{
    s.u[size_t(root)] += w.best;
    for (I t = 0; t < w.reached_count; ++t)
        if (column_state<I> &c = s.column[size_t(w.reached[size_t(t)])]; c.where == s.settled) {
            const double delta = w.best - c.dist;
            c.v -= delta;
            s.u[size_t(c.row)] += delta;
        }
    for (I j = w.best_column;;) {
        const I i = s.column[size_t(j)].pred;
        const I previous = s.col_of_row[size_t(i)];
        s.match(i, j);
        if (i == root)
            break;
        j = previous;
    }
    ++s.matched;
}

// One shortest augmenting path from the unmatched row `root`, stopping as soon as no column in
// the heap can beat the nearest free column; false when no free column is reachable.
template <class I> bool augment_shortest(assignment<I> &s, I root, dijkstra_work<I> &w)
{
    w.best = infinity;
    w.best_column = -1;
    relax_row(s, root, 0.0, w);
    while (w.heap_size > 0 && w.heap[0].key < w.best) {
        const I j = heap_pop(s, w);
        relax_row(s, s.column[size_t(j)].row, s.column[size_t(j)].dist, w);
    }
    const bool found = w.best_column >= 0;
    if (found)
        update_and_flip(s, root, w);
    for (I t = 0; t < w.reached_count; ++t) {
        column_state<I> &c = s.column[size_t(w.reached[size_t(t)])];
        c.dist = infinity;
        c.where = s.unseen;
    }
    w.heap_size = w.reached_count = 0;
    return found;
}

// The shortest-path phase; false at the first row that no augmenting path reaches: then no
// perfect matching exists (that row stays unreachable whatever is augmented later).
template <class I> int shortest_path_phase(assignment<I> &s, bool &perfect)
{
    dijkstra_work<I> w;
    if (!w.allocate(s.a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    perfect = true;
    for (I i = 0; i < s.a.n && perfect; ++i)
        if (s.col_of_row[size_t(i)] < 0)
            perfect = augment_shortest(s, i, w);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Dr_i = exp(u_i − log max_k|a_ik|) and Dc_j = exp(v_j): then |Dr_i a_ij Dc_j| =
// exp(u_i + v_j − c_ij) ≤ 1, with equality on the matched entries. u_i is taken again from
// its matched entry, so that rounding in the dual updates cannot leave a matched entry off 1.
template <class I> int scaling_from_duals(const assignment<I> &s, matching_result<I> &out)
{
    const csr_pattern<I> &a = s.a;
    if (!allocate(out.row_scaling, a.n) || !allocate(out.column_scaling, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    for (I i = 0; i < a.n; ++i) {
        const I matched = s.col_of_row[size_t(i)];
        double u = s.u[size_t(i)];
        for (I p = row_begin(a, i); p < row_end(a, i); ++p)
            if (s.col(p) == matched)
                u = s.cost[size_t(p)] - s.column[size_t(matched)].v;
        out.row_scaling[size_t(i)] = std::exp(u - s.log_max[size_t(i)]);
    }
    for (I j = 0; j < a.n; ++j)
        out.column_scaling[size_t(j)] = std::exp(s.column[size_t(j)].v);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The matching as both sides' arrays (the column states hold one of them).
template <class I> bool to_sides(assignment<I> &s, sides<I> &m)
{
    if (!solver::allocate(m.row_of_col, s.a.n))
        return false;
    for (I j = 0; j < s.a.n; ++j)
        m.row_of_col[size_t(j)] = s.column[size_t(j)].row;
    m.col_of_row = std::move(s.col_of_row);
    m.matched = s.matched;
    return true;
}

// What the functions below check of their input (the caller has validated the pattern): the
// arrays they will read are there (without entries, the index and value arrays may be null).
template <class I> bool plausible(const csr_pattern<I> &a, const void *values)
{
    if (a.n < 0 || (a.base != 0 && a.base != 1) || (a.n > 0 && a.row_ptr == nullptr))
        return false;
    return a.n == 0 || a.row_ptr[a.n] == a.base || (a.col_idx != nullptr && values != nullptr);
}

// True when every magnitude is a finite double: a NaN or an infinity has no place in a scaling.
template <class T, class I> bool finite_magnitudes(const csr_pattern<I> &a, const T *values)
{
    const I nnz = a.n > 0 ? row_begin(a, a.n) : 0;
    for (I p = 0; p < nnz; ++p)
        if (!std::isfinite(magnitude(values[p])))
            return false;
    return true;
}

// ---------------------------------------------------------------------------------------------
// Equilibration by simultaneous square-root max-norm sweeps: a_ij/√(r_i·c_j) with r_i and c_j
// the maxima of its row and column. No entry exceeds 1 after the first sweep (r_i and c_j are
// both at least |a_ij|), the maxima only grow from there, and their logarithms move about
// halfway to 0 each sweep. Scaled entries are |a_ij|·(Dr_i·Dc_j), so that a symmetric matrix
// keeps Dr = Dc to the bit.

inline constexpr int equilibration_sweeps = 64;
inline constexpr double equilibration_tolerance = 1e-2; // every nonempty maximum within 1% of 1

// The largest scaled magnitude of every row and column (0 for an empty one); true when each
// nonempty one is close to 1 already.
template <class T, class I>
bool scaled_maxima(const csr_pattern<I> &a, const T *values, const double *dr, const double *dc, double *row_max,
                   double *col_max)
{
    std::fill(col_max, col_max + a.n, 0.0);
    for (I i = 0; i < a.n; ++i) {
        double largest = 0;
        for (I p = row_begin(a, i); p < row_end(a, i); ++p) {
            const I j = a.col_idx[p] - a.base;
            const double x = magnitude(values[p]) * (dr[i] * dc[j]);
            largest = std::max(largest, x);
            col_max[j] = std::max(col_max[j], x);
        }
        row_max[i] = largest;
    }
    const auto close = [](double x) {
        return x == 0 || (x >= 1 - equilibration_tolerance && x <= 1 + 16 * std::numeric_limits<double>::epsilon());
    };
    return std::all_of(row_max, row_max + a.n, close) && std::all_of(col_max, col_max + a.n, close);
}

} // namespace matching_detail

// Maximum-cardinality matching on the pattern alone (no scaling). Stored zeros count as entries.
template <class I> int structural_matching(const csr_pattern<I> &a, matching_result<I> &out)
{
    using namespace matching_detail;
    if (!plausible(a, a.col_idx))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    sides<I> m;
    if (!m.allocate(a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (const int status = complete_matching(a, [](I) { return true; }, m); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    out.row_of_column = std::move(m.row_of_col);
    out.row_scaling = {};
    out.column_scaling = {};
    out.rank = m.matched;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Maximum-product matching of |a_ij| with the scaling from its dual variables, so that
// |Dr_i·a_ij·Dc_j| ≤ 1 everywhere and = 1 on the matched entries. Zero entries count as absent.
// When the nonzero entries admit no perfect matching: rank < n, a maximum-cardinality matching
// of the nonzero entries and no scaling (still SUCCESS); structural_matching gives the rank of
// the pattern, stored zeros included. A magnitude that is not finite: INVALID_VALUE.
template <class T, class I>
int maximum_product_matching(const csr_pattern<I> &a, const T *values, matching_result<I> &out)
{
    using namespace matching_detail;
    if (!plausible(a, values) || !finite_magnitudes(a, values))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    assignment<I> s;
    s.a = a;
    if (!s.allocate())
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    bool perfect = log_costs(s, values) && initial_duals(s);
    if (perfect) {
        greedy_matching(s);
        if (const int status = shortest_path_phase(s, perfect); status != ZEL_SPARSE_STATUS_SUCCESS)
            return status;
    }
    matching_result<I> result;
    sides<I> m;
    const auto nonzero = [values](I p) { return values[p] != T(0); };
    int status = perfect ? scaling_from_duals(s, result) : ZEL_SPARSE_STATUS_SUCCESS;
    if (status == ZEL_SPARSE_STATUS_SUCCESS && !to_sides(s, m))
        status = ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (status == ZEL_SPARSE_STATUS_SUCCESS && !perfect)
        status = complete_matching(a, nonzero, m);
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    result.row_of_column = std::move(m.row_of_col);
    result.rank = m.matched;
    out = std::move(result);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Row and column scaling without a matching: iterative max-norm equilibration, after which no
// entry of Dr·A·Dc exceeds 1 (to rounding) and every nonempty row's and column's largest is
// within 1% of 1. Empty rows and columns get the factor 1; a symmetric matrix gets Dr = Dc.
// A magnitude that is not finite: INVALID_VALUE.
template <class T, class I>
int equilibrate(const csr_pattern<I> &a, const T *values, double *row_scaling, double *column_scaling)
{
    using namespace matching_detail;
    if (!plausible(a, values) || (a.n > 0 && (row_scaling == nullptr || column_scaling == nullptr)) ||
        !finite_magnitudes(a, values))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    scratch_array<double> row_max, col_max;
    if (!allocate(row_max, a.n) || !allocate(col_max, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(row_scaling, row_scaling + a.n, 1.0);
    std::fill(column_scaling, column_scaling + a.n, 1.0);
    for (int sweep = 0; sweep < equilibration_sweeps; ++sweep) {
        if (scaled_maxima(a, values, row_scaling, column_scaling, row_max.get(), col_max.get()))
            break;
        for (I k = 0; k < a.n; ++k) {
            if (row_max[size_t(k)] > 0)
                row_scaling[k] /= std::sqrt(row_max[size_t(k)]);
            if (col_max[size_t(k)] > 0)
                column_scaling[k] /= std::sqrt(col_max[size_t(k)]);
        }
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::solver
