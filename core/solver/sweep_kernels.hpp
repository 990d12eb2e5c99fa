// The sweeps' kernels, written once and compiled per instruction set: each sweep_*.cpp defines
// ZEL_SWEEP_ISA (the namespace of its copy), ZEL_SWEEP_VECTOR_BYTES and ZEL_SWEEP_REGISTERS
// (its vector width and vector register count) before including this.
//
// Every panel is read once per sweep, a few columns at a time. One right-hand side of an L·Lᴴ
// factor is updated in place (the rows below the diagonal block through a short work vector);
// otherwise the right-hand sides are first gathered row by row into a work block of KC values
// a row, so that each entry of the panel meets all of them in one vector operation (the
// Bunch–Kaufman halves of bk_blocks.hpp included, through the row operations below). Between
// panels the rows below a panel live in a block of n such rows (kept), where the panel's row
// list updates or reads them in place: one short row each rather than KC reads across the
// columns of x.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "solve_sweeps.hpp"

namespace zel::solver::ZEL_SWEEP_ISA {

// a·b and conj(a)·b, written out: std::complex's product guards against infinities with a
// library call on every operation.
template <class T> inline T mul(T a, T b)
{
    if constexpr (is_complex_v<T>)
        return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
    else
        return a * b;
}
template <class T> inline T cmul(T a, T b)
{
    if constexpr (is_complex_v<T>)
        return {a.real() * b.real() + a.imag() * b.imag(), a.real() * b.imag() - a.imag() * b.real()};
    else
        return a * b;
}

// 1/d (the factor's diagonal is real and positive for definite matrices; complex values keep
// the general form).
template <class T> inline T inverse(T d) { return T(1) / d; }

#define ZEL_SWEEP_INLINE inline __attribute__((always_inline))

// Columns taken together by the one-right-hand-side kernels.
inline constexpr int one_block = 4;

// ---- One right-hand side ----

// Native vectors of the real type R.
template <class R> struct native {
    typedef R vec __attribute__((vector_size(ZEL_SWEEP_VECTOR_BYTES)));
    static constexpr int width = ZEL_SWEEP_VECTOR_BYTES / int(sizeof(R));
    static ZEL_SWEEP_INLINE vec load(const R *p)
    {
        vec v;
        std::memcpy(&v, p, sizeof v);
        return v;
    }
    static ZEL_SWEEP_INLINE void store(R *p, vec v) { std::memcpy(p, &v, sizeof v); }
};

// v[i] -= Σ_q c[q][i]·y[q] for i < n.
template <int Q, class T> ZEL_SWEEP_INLINE void axpy_columns(const T *const *c, const T *y, T *v, int64_t n)
{
    int64_t i = 0;
    if constexpr (!is_complex_v<T>) {
        using V = native<T>;
        for (; i + V::width <= n; i += V::width) {
            typename V::vec s = V::load(v + i);
#pragma GCC unroll 8
            for (int q = 0; q < Q; ++q)
                s -= V::load(c[q] + i) * y[q];
            V::store(v + i, s);
        }
    }
    for (; i < n; ++i) {
        T s = v[i];
#pragma GCC unroll 8
        for (int q = 0; q < Q; ++q)
            s -= mul(c[q][i], y[q]);
        v[i] = s;
    }
}

// acc[q] += Σ_i conj(c[q][i])·v[i] for i < n, in one lane-wise sum per column.
template <int Q, class T> ZEL_SWEEP_INLINE void dot_columns(const T *const *c, const T *v, int64_t n, T *acc)
{
    int64_t i = 0;
    if constexpr (!is_complex_v<T>) {
        using V = native<T>;
        typename V::vec s[Q];
#pragma GCC unroll 8
        for (int q = 0; q < Q; ++q)
            s[q] = typename V::vec{};
        for (; i + V::width <= n; i += V::width) {
            const typename V::vec vi = V::load(v + i);
#pragma GCC unroll 8
            for (int q = 0; q < Q; ++q)
                s[q] += V::load(c[q] + i) * vi;
        }
#pragma GCC unroll 8
        for (int q = 0; q < Q; ++q)
            for (int l = 0; l < V::width; ++l)
                acc[q] += s[q][l];
    }
    for (; i < n; ++i)
#pragma GCC unroll 8
        for (int q = 0; q < Q; ++q)
            acc[q] += cmul(c[q][i], v[i]);
}

// Forward over one panel: x1 = L11⁻¹·x1 a block of columns at a time, each block then
// updating the rest of x1 and t = −L21·x1, which is added to x's rows below at the end.
template <class T, class I> void forward_one(const sweep_panel<T, I> &p, T *x, T *t)
{
    T *x1 = x + p.first;
    const int64_t off = p.rows - p.cols;
    const I *below = p.index + p.cols;
    if (p.cols == 1) {
        const T v = x1[0] * inverse(p.l[0]);
        x1[0] = v;
        for (int64_t i = 0; i < off; ++i)
            x[below[i] - 1] -= mul(p.l[1 + i], v);
        return;
    }
    std::fill(t, t + off, T(0));
    for (int64_t j0 = 0; j0 < p.cols; j0 += one_block) {
        const int64_t q = std::min<int64_t>(one_block, p.cols - j0);
        const T *c[one_block], *diag[one_block], *low[one_block];
        T y[one_block];
        for (int64_t jj = 0; jj < q; ++jj) {
            c[jj] = p.l + (j0 + jj) * p.rows;
            y[jj] = x1[j0 + jj] * inverse(c[jj][j0 + jj]);
            x1[j0 + jj] = y[jj];
            for (int64_t ii = jj + 1; ii < q; ++ii)
                x1[j0 + ii] -= mul(c[jj][j0 + ii], y[jj]);
            diag[jj] = c[jj] + j0 + q;
            low[jj] = c[jj] + p.cols;
        }
        if (q == one_block) {
            axpy_columns<one_block>(diag, y, x1 + j0 + q, p.cols - j0 - q);
            axpy_columns<one_block>(low, y, t, off);
        } else {
            for (int64_t jj = 0; jj < q; ++jj) {
                axpy_columns<1>(diag + jj, y + jj, x1 + j0 + q, p.cols - j0 - q);
                axpy_columns<1>(low + jj, y + jj, t, off);
            }
        }
    }
    for (int64_t i = 0; i < off; ++i)
        x[below[i] - 1] += t[i];
}

// Backward over one panel: t = x's rows below; then, a block of columns at a time from the
// last, x1[j] = (x1[j] − L(j+1:, j)ᴴ·(x1; t)) / conj(L(j, j)).
template <class T, class I> void backward_one(const sweep_panel<T, I> &p, T *x, T *t)
{
    T *x1 = x + p.first;
    const int64_t off = p.rows - p.cols;
    const I *below = p.index + p.cols;
    if (p.cols == 1) {
        T s = x1[0];
        for (int64_t i = 0; i < off; ++i)
            s -= cmul(p.l[1 + i], x[below[i] - 1]);
        x1[0] = s * conj_if(inverse(p.l[0]), true);
        return;
    }
    for (int64_t i = 0; i < off; ++i)
        t[i] = x[below[i] - 1];
    for (int64_t j0 = (p.cols - 1) / one_block * one_block; j0 >= 0; j0 -= one_block) {
        const int64_t q = std::min<int64_t>(one_block, p.cols - j0);
        const T *c[one_block], *diag[one_block], *low[one_block];
        T acc[one_block] = {};
        for (int64_t jj = 0; jj < q; ++jj) {
            c[jj] = p.l + (j0 + jj) * p.rows;
            diag[jj] = c[jj] + j0 + q;
            low[jj] = c[jj] + p.cols;
        }
        if (q == one_block) {
            dot_columns<one_block>(diag, x1 + j0 + q, p.cols - j0 - q, acc);
            dot_columns<one_block>(low, t, off, acc);
        } else {
            for (int64_t jj = 0; jj < q; ++jj) {
                dot_columns<1>(diag + jj, x1 + j0 + q, p.cols - j0 - q, acc + jj);
                dot_columns<1>(low + jj, t, off, acc + jj);
            }
        }
        for (int64_t jj = q - 1; jj >= 0; --jj) {
            T s = x1[j0 + jj] - acc[jj];
            for (int64_t ii = jj + 1; ii < q; ++ii)
                s -= cmul(c[jj][j0 + ii], x1[j0 + ii]);
            x1[j0 + jj] = s * conj_if(inverse(c[jj][j0 + jj]), true);
        }
    }
}

// ---- Several right-hand sides ----

// KC values of T as vectors of its real type: one plane for real values, the real and the
// imaginary parts for complex ones. A row of the work block holds one (KC reals a plane).
template <class T, int KC> struct lanes {
    using R = real_t<T>;
    static constexpr int planes = is_complex_v<T> ? 2 : 1;
    static constexpr int bytes = std::min<int>(KC * int(sizeof(R)), ZEL_SWEEP_VECTOR_BYTES);
    static constexpr int count = KC * int(sizeof(R)) / bytes; // vectors a plane
    static constexpr int reals = KC * planes;                 // reals a row
    typedef R vec __attribute__((vector_size(bytes)));
    vec v[planes][count];
};

// Rows move a vector at a time: one copy of the whole row would go through the stack.
template <class T, int KC> ZEL_SWEEP_INLINE lanes<T, KC> load_row(const real_t<T> *p)
{
    using L = lanes<T, KC>;
    L a;
#pragma GCC unroll 16
    for (int k = 0; k < L::planes * L::count; ++k)
        std::memcpy(&a.v[k / L::count][k % L::count], p + k * (L::bytes / int(sizeof(real_t<T>))), L::bytes);
    return a;
}
template <class T, int KC> ZEL_SWEEP_INLINE void store_row(real_t<T> *p, const lanes<T, KC> &a)
{
    using L = lanes<T, KC>;
#pragma GCC unroll 16
    for (int k = 0; k < L::planes * L::count; ++k)
        std::memcpy(p + k * (L::bytes / int(sizeof(real_t<T>))), &a.v[k / L::count][k % L::count], L::bytes);
}
template <class T, int KC> ZEL_SWEEP_INLINE lanes<T, KC> zero_row()
{
    lanes<T, KC> a;
#pragma GCC unroll 16
    for (int k = 0; k < lanes<T, KC>::count; ++k) {
        a.v[0][k] = typename lanes<T, KC>::vec{};
        if constexpr (is_complex_v<T>)
            a.v[1][k] = typename lanes<T, KC>::vec{};
    }
    return a;
}

// a += op(l)·b (Add) or a −= op(l)·b, op conjugating when Conj.
template <bool Add, bool Conj = Add, class T, int KC>
ZEL_SWEEP_INLINE void update(lanes<T, KC> &a, T l, const lanes<T, KC> &b)
{
#pragma GCC unroll 16
    for (int k = 0; k < lanes<T, KC>::count; ++k) {
        if constexpr (!is_complex_v<T>) {
            if constexpr (Add)
                a.v[0][k] += l * b.v[0][k];
            else
                a.v[0][k] -= l * b.v[0][k];
        } else {
            const real_t<T> lr = l.real(), li = Conj ? -l.imag() : l.imag();
            if constexpr (Add) {
                a.v[0][k] += lr * b.v[0][k] - li * b.v[1][k];
                a.v[1][k] += lr * b.v[1][k] + li * b.v[0][k];
            } else {
                a.v[0][k] -= lr * b.v[0][k] - li * b.v[1][k];
                a.v[1][k] -= lr * b.v[1][k] + li * b.v[0][k];
            }
        }
    }
}

template <class T, int KC> ZEL_SWEEP_INLINE void subtract(lanes<T, KC> &a, const lanes<T, KC> &b)
{
#pragma GCC unroll 16
    for (int k = 0; k < lanes<T, KC>::count; ++k) {
        a.v[0][k] -= b.v[0][k];
        if constexpr (is_complex_v<T>)
            a.v[1][k] -= b.v[1][k];
    }
}

template <class T, int KC> ZEL_SWEEP_INLINE void add(lanes<T, KC> &a, const lanes<T, KC> &b)
{
#pragma GCC unroll 16
    for (int k = 0; k < lanes<T, KC>::count; ++k) {
        a.v[0][k] += b.v[0][k];
        if constexpr (is_complex_v<T>)
            a.v[1][k] += b.v[1][k];
    }
}

template <class T, int KC> ZEL_SWEEP_INLINE void scale(lanes<T, KC> &a, T s)
{
#pragma GCC unroll 16
    for (int k = 0; k < lanes<T, KC>::count; ++k) {
        if constexpr (is_complex_v<T>) {
            const auto re = a.v[0][k];
            a.v[0][k] = re * s.real() - a.v[1][k] * s.imag();
            a.v[1][k] = re * s.imag() + a.v[1][k] * s.real();
        } else {
            a.v[0][k] *= s;
        }
    }
}

// Columns a block of the several-right-hand-side kernels takes together: as many as leave
// half the vector registers for their rows, up to 4 (a power of two; 8 measured no faster on
// the 2-D Laplacian and slower on small matrices).
template <class T, int KC> constexpr int rows_block()
{
    constexpr int per_row = lanes<T, KC>::count * lanes<T, KC>::planes;
    return std::clamp(ZEL_SWEEP_REGISTERS / 2 / per_row, 1, 4);
}

// A block's q < 2B columns in pieces of B, B/2, …, 1 columns, f.template operator()<width>(first
// column) each: the rows are passed over once a piece, and a short last block of a panel
// takes as few passes as its width has bits.
template <int B, class F> ZEL_SWEEP_INLINE void in_pieces(int64_t q, int64_t first, F &&f)
{
    if (q >= B) {
        f.template operator()<B>(first);
        first += B;
        q -= B;
    }
    if constexpr (B > 1)
        in_pieces<B / 2>(q, first, f);
}

// x(index[r], c0 + c) = t(r, c) for the panel's first `rows` rows (at least its own), c < kc.
template <class T, class I, int KC>
void scatter_rows(const sweep_panel<T, I> &p, const rhs_block<T> &b, int64_t c0, int64_t kc, const real_t<T> *t,
                  int64_t rows)
{
    constexpr int W = lanes<T, KC>::reals;
    auto get = [&](const real_t<T> *from) {
        if constexpr (is_complex_v<T>)
            return T(from[0], from[KC]);
        else
            return from[0];
    };
    T *x = b.x + c0 * b.ld;
    for (int64_t c = 0; c < kc; ++c)
        for (int64_t r = 0; r < p.cols; ++r)
            x[c * b.ld + p.first + r] = get(t + r * W + c);
    for (int64_t r = p.cols; r < rows; ++r) {
        T *xr = x + (p.index[r] - 1);
        for (int64_t c = 0; c < kc; ++c)
            xr[c * b.ld] = get(t + r * W + c);
    }
}

// Where the rows of a gathered panel live: a run of rows W reals apart (the panel's own, in the
// work block), or a list of the kept block's rows by their 1-based numbers (the rows below,
// updated and read where they are kept rather than copied to and fro).
template <class T, int KC> struct row_run {
    real_t<T> *t;
    ZEL_SWEEP_INLINE real_t<T> *operator()(int64_t i) const { return t + i * lanes<T, KC>::reals; }
};
template <class T, class I, int KC> struct row_list {
    real_t<T> *kept; // row 0 of the kept block one row early: index values are 1-based
    const I *index;
    ZEL_SWEEP_INLINE real_t<T> *operator()(int64_t i) const { return kept + int64_t(index[i]) * lanes<T, KC>::reals; }
};

// Rows i0 … i1−1 minus Σ_q op(c[q][i])·pivot[q], Q columns at once.
template <int Q, bool Conj = false, class T, int KC, class Rows>
ZEL_SWEEP_INLINE void update_rows_below(const T *const *c, const lanes<T, KC> *pivot, Rows rows, int64_t i0,
                                        int64_t i1)
{
    for (int64_t i = i0; i < i1; ++i) {
        lanes<T, KC> a = load_row<T, KC>(rows(i));
#pragma GCC unroll 8
        for (int q = 0; q < Q; ++q)
            update<false, Conj>(a, c[q][i], pivot[q]);
        store_row(rows(i), a);
    }
}

// s[q] += Σ_i op(c[q][i])·row(i) over rows i0 … i1−1, Q columns at once, op conjugating when
// Conj; the sums stay in registers.
template <int Q, bool Conj = true, class T, int KC, class Rows>
ZEL_SWEEP_INLINE void add_rows_below(const T *const *c, Rows rows, int64_t i0, int64_t i1, lanes<T, KC> *s)
{
    for (int64_t i = i0; i < i1; ++i) {
        const lanes<T, KC> row = load_row<T, KC>(rows(i));
#pragma GCC unroll 8
        for (int q = 0; q < Q; ++q)
            update<true, Conj>(s[q], c[q][i], row);
    }
}

// out[q] = Σ_i op(c[q][i])·row(i) over rows i0 … i1−1.
template <int Q, bool Conj = true, class T, int KC, class Rows>
ZEL_SWEEP_INLINE void sum_rows_below(const T *const *c, Rows rows, int64_t i0, int64_t i1, lanes<T, KC> *out)
{
    lanes<T, KC> s[Q];
#pragma GCC unroll 8
    for (int q = 0; q < Q; ++q)
        s[q] = zero_row<T, KC>();
    add_rows_below<Q, Conj>(c, rows, i0, i1, s);
#pragma GCC unroll 8
    for (int q = 0; q < Q; ++q)
        out[q] = s[q];
}

// Row r of x's KC right-hand sides from the block's columns (leading dimension ld) and back,
// built and taken apart in registers: single values stored next to a row that is then loaded
// whole (or the reverse) wait for the stores to retire.
template <class T, int KC> struct column_rows {
    using L = lanes<T, KC>;
    using R = real_t<T>;
    static constexpr int each = L::bytes / int(sizeof(R)), parts = int(sizeof(T) / sizeof(R));
    const R *x; // the block's first column at the panel's first row, as reals
    int64_t ld; // in reals

    template <size_t... E>
    ZEL_SWEEP_INLINE typename L::vec part(int64_t r, int plane, int k, std::index_sequence<E...>) const
    {
        return typename L::vec{x[(k * each + int64_t(E)) * ld + r * parts + plane]...};
    }
    ZEL_SWEEP_INLINE L load(int64_t r) const
    {
        L a;
#pragma GCC unroll 16
        for (int k = 0; k < L::planes * L::count; ++k)
            a.v[k / L::count][k % L::count] =
                part(r, k / L::count, k % L::count, std::make_index_sequence<size_t(each)>{});
        return a;
    }
    ZEL_SWEEP_INLINE void store(int64_t r, const L &a) const
    {
        R *to = const_cast<R *>(x);
#pragma GCC unroll 16
        for (int k = 0; k < L::planes * L::count; ++k)
#pragma GCC unroll 16
            for (int e = 0; e < each; ++e)
                to[(k % L::count * each + e) * ld + r * parts + k / L::count] = a.v[k / L::count][k % L::count][e];
    }
};

// E vectors of E reals each transposed in log2(E) rounds of interleaving rows i and i + E/2.
template <class V, int E, size_t... L> ZEL_SWEEP_INLINE void transpose_square(V *v, std::index_sequence<L...>)
{
    if constexpr (E > 1) {
#pragma GCC unroll 4
        for (int round = 1; round < E; round *= 2) {
            V out[E];
#pragma GCC unroll 16
            for (int i = 0; i < E / 2; ++i) {
                out[2 * i] = __builtin_shufflevector(v[i], v[i + E / 2], (L % 2 == 0 ? L / 2 : E + L / 2)...);
                out[2 * i + 1] =
                    __builtin_shufflevector(v[i], v[i + E / 2], (L % 2 == 0 ? E / 2 + L / 2 : E + E / 2 + L / 2)...);
            }
#pragma GCC unroll 16
            for (int i = 0; i < E; ++i)
                v[i] = out[i];
        }
    }
}

// Rows r … r+each−1 of real right-hand sides at once: a vector down each column, transposed
// in registers a square of columns at a time (rather than each value loaded on its own).
template <class T, int KC> struct column_squares {
    using L = lanes<T, KC>;
    using V = typename L::vec;
    static constexpr int each = L::bytes / int(sizeof(T));
    static_assert(!is_complex_v<T>);
    const T *x;
    int64_t ld;

    ZEL_SWEEP_INLINE void load(int64_t r, L *rows) const
    {
#pragma GCC unroll 4
        for (int g = 0; g < L::count; ++g) {
            V v[each];
#pragma GCC unroll 16
            for (int e = 0; e < each; ++e)
                std::memcpy(&v[e], x + (g * each + e) * ld + r, sizeof(V));
            transpose_square<V, each>(v, std::make_index_sequence<size_t(each)>{});
#pragma GCC unroll 16
            for (int e = 0; e < each; ++e)
                rows[e].v[0][g] = v[e];
        }
    }
    ZEL_SWEEP_INLINE void store(int64_t r, const L *rows) const
    {
#pragma GCC unroll 4
        for (int g = 0; g < L::count; ++g) {
            V v[each];
#pragma GCC unroll 16
            for (int e = 0; e < each; ++e)
                v[e] = rows[e].v[0][g];
            transpose_square<V, each>(v, std::make_index_sequence<size_t(each)>{});
#pragma GCC unroll 16
            for (int e = 0; e < each; ++e)
                std::memcpy(const_cast<T *>(x) + (g * each + e) * ld + r, &v[e], sizeof(V));
        }
    }
};

// f(squares, r) for the whole squares of a panel's own rows (none for complex values); the
// number of rows they cover.
template <class T, int KC, class I, class F>
int64_t by_squares(const rhs_block<T> &b, int64_t c0, const sweep_panel<T, I> &p, F &&f)
{
    if constexpr (is_complex_v<T>) {
        return 0;
    } else {
        constexpr int E = column_squares<T, KC>::each;
        const column_squares<T, KC> squares{b.x + c0 * b.ld + p.first, b.ld};
        int64_t r = 0;
        for (; r + E <= p.cols; r += E)
            f(squares, r);
        return r;
    }
}

template <class T, int KC> column_rows<T, KC> columns_of(const rhs_block<T> &b, int64_t c0, int64_t first)
{
    constexpr int64_t parts = sizeof(T) / sizeof(real_t<T>);
    return {reinterpret_cast<const real_t<T> *>(b.x + c0 * b.ld + first), b.ld * parts};
}

// The rows of a sweep kept between panels, a row's KC right-hand sides side by side as in the
// work block: forward, the updates the rows below have received so far (zero at the start);
// backward, the solution of every panel done so far. A panel's own rows stay in x's columns,
// where each is consecutive, and are gathered with their kept updates; the rows below are
// worked on where they are kept.
template <bool Forward, class T, class I, int KC>
void gather_kept(const sweep_panel<T, I> &p, const rhs_block<T> &b, int64_t c0, int64_t kc, const real_t<T> *kept,
                 real_t<T> *t)
{
    constexpr int W = lanes<T, KC>::reals;
    const T *x = b.x + c0 * b.ld + p.first;
    if (kc == KC) {
        const column_rows<T, KC> own = columns_of<T, KC>(b, c0, p.first);
        int64_t r = by_squares<T, KC>(b, c0, p, [&](const auto &squares, int64_t r0) {
            constexpr int E = std::remove_cvref_t<decltype(squares)>::each;
            lanes<T, KC> a[E];
            squares.load(r0, a);
#pragma GCC unroll 16
            for (int e = 0; e < E; ++e) {
                if constexpr (Forward)
                    add(a[e], load_row<T, KC>(kept + (p.first + r0 + e) * W));
                store_row(t + (r0 + e) * W, a[e]);
            }
        });
        for (; r < p.cols; ++r) {
            lanes<T, KC> a = own.load(r);
            if constexpr (Forward)
                add(a, load_row<T, KC>(kept + (p.first + r) * W));
            store_row(t + r * W, a);
        }
    } else if constexpr (Forward) {
        std::memcpy(t, kept + p.first * W, sizeof(real_t<T>) * size_t(p.cols * W));
    } else {
        std::memset(static_cast<void *>(t), 0, sizeof(real_t<T>) * size_t(p.cols * W));
    }
    for (int64_t c = 0; c < kc && kc < KC; ++c)
        for (int64_t r = 0; r < p.cols; ++r) {
            real_t<T> *to = t + r * W + c;
            const T v = x[c * b.ld + r];
            if constexpr (is_complex_v<T>) {
                to[0] = Forward ? to[0] + v.real() : v.real();
                to[KC] = Forward ? to[KC] + v.imag() : v.imag();
            } else {
                to[0] = Forward ? to[0] + v : v;
            }
        }
}

// The panel's own rows back to x, and backward to the kept solution too.
template <bool Forward, class T, class I, int KC>
void scatter_kept(const sweep_panel<T, I> &p, const rhs_block<T> &b, int64_t c0, int64_t kc, const real_t<T> *t,
                  real_t<T> *kept)
{
    constexpr int W = lanes<T, KC>::reals;
    if (kc == KC) {
        const column_rows<T, KC> own = columns_of<T, KC>(b, c0, p.first);
        int64_t r = by_squares<T, KC>(b, c0, p, [&](const auto &squares, int64_t r0) {
            constexpr int E = std::remove_cvref_t<decltype(squares)>::each;
            lanes<T, KC> a[E];
#pragma GCC unroll 16
            for (int e = 0; e < E; ++e)
                a[e] = load_row<T, KC>(t + (r0 + e) * W);
            squares.store(r0, a);
        });
        for (; r < p.cols; ++r)
            own.store(r, load_row<T, KC>(t + r * W));
    } else {
        scatter_rows<T, I, KC>(p, b, c0, kc, t, p.cols);
    }
    if constexpr (!Forward)
        std::memcpy(kept + p.first * W, t, sizeof(real_t<T>) * size_t(p.cols * W));
}

// The lines gather_kept will read for panel p, asked for ahead (while the panel before it is
// being solved): the rows of x's columns and of kept come from memory, out of any order the
// hardware would follow on its own.
template <bool Forward, class T, class I, int KC>
void prefetch_kept(const sweep_panel<T, I> &p, const rhs_block<T> &b, int64_t c0, int64_t kc, const real_t<T> *kept)
{
    constexpr int W = lanes<T, KC>::reals, line = 64 / int(sizeof(real_t<T>));
    const T *x = b.x + c0 * b.ld + p.first;
    const int64_t own = p.cols * int64_t(sizeof(T) / sizeof(real_t<T>));
    for (int64_t c = 0; c < kc; ++c) {
        const real_t<T> *col = reinterpret_cast<const real_t<T> *>(x + c * b.ld);
        for (int64_t i = 0; i < own; i += line)
            __builtin_prefetch(col + i);
        __builtin_prefetch(col + own - 1);
    }
    if constexpr (Forward)
        for (int64_t i = 0; i < p.cols * W; i += line)
            __builtin_prefetch(kept + p.first * W + i);
    for (int64_t r = p.cols; r < p.rows; ++r)
#pragma GCC unroll 8
        for (int i = 0; i < W; i += line)
            __builtin_prefetch(kept + (p.index[r] - 1) * W + i);
}

// ---- Triangles of a gathered panel ----

// A panel's rows during a sweep: its own gathered in t, the rows below in the kept block.
template <class T, class I, int KC> struct panel_rows {
    real_t<T> *t;
    real_t<T> *kept;

    row_run<T, KC> own() const { return {t}; }
    // Row i of the panel from i = cols on (or the i-th below with the list from cols on).
    row_list<T, I, KC> below(const I *index) const { return {kept - lanes<T, KC>::reals, index}; }
};

// Rows from `from` to the panel's last minus Σ_q c[q](i)·pivot[q] for the block's q columns.
template <int Q, class T, class I, int KC>
ZEL_SWEEP_INLINE void update_rest(const sweep_panel<T, I> &p, const panel_rows<T, I, KC> &w, const T *const *c,
                                  const lanes<T, KC> *pivot, int64_t q, int64_t from)
{
    in_pieces<Q>(q, 0, [&]<int B>(int64_t j) {
        update_rows_below<B>(c + j, pivot + j, w.own(), from, p.cols);
        update_rows_below<B>(c + j, pivot + j, w.below(p.index), p.cols, p.rows);
    });
}

// sums[q] = Σ_i op(c[q](i))·row(i) over the rows from `from` to the panel's last.
template <int Q, bool Conj, class T, class I, int KC>
ZEL_SWEEP_INLINE void sum_rest(const sweep_panel<T, I> &p, const panel_rows<T, I, KC> &w, const T *const *c,
                               int64_t q, int64_t from, lanes<T, KC> *sums)
{
#pragma GCC unroll 8
    for (int jj = 0; jj < Q; ++jj)
        sums[jj] = zero_row<T, KC>();
    in_pieces<Q>(q, 0, [&]<int B>(int64_t j) {
        add_rows_below<B, Conj>(c + j, w.own(), from, p.cols, sums + j);
        add_rows_below<B, Conj>(c + j, w.below(p.index), p.cols, p.rows, sums + j);
    });
}

// Forward over a gathered panel: each block of columns is solved in its diagonal square (with
// a unit diagonal for the L11 of an L·U or L·D·Lᵀ factor), then updates every row below it.
template <bool Unit, class T, class I, int KC>
void forward_rows(const sweep_panel<T, I> &p, const panel_rows<T, I, KC> &w)
{
    constexpr int W = lanes<T, KC>::reals, Q = rows_block<T, KC>();
    real_t<T> *t = w.t;
    for (int64_t j0 = 0; j0 < p.cols; j0 += Q) {
        const int64_t q = std::min<int64_t>(Q, p.cols - j0);
        const T *c[Q] = {};
        lanes<T, KC> pivot[Q];
        for (int64_t jj = 0; jj < q; ++jj) {
            c[jj] = p.l + (j0 + jj) * p.rows;
            pivot[jj] = load_row<T, KC>(t + (j0 + jj) * W);
            if constexpr (!Unit) {
                scale(pivot[jj], inverse(c[jj][j0 + jj]));
                store_row(t + (j0 + jj) * W, pivot[jj]);
            }
            for (int64_t ii = jj + 1; ii < q; ++ii) {
                lanes<T, KC> a = load_row<T, KC>(t + (j0 + ii) * W);
                update<false>(a, c[jj][j0 + ii], pivot[jj]);
                store_row(t + (j0 + ii) * W, a);
            }
        }
        update_rest<Q>(p, w, c, pivot, q, j0 + q);
    }
}

// Backward over a gathered panel, a block of columns at a time from the last:
// x1[j] = (x1[j] − Σ_{i>j} op(L(i, j))·row(i)) / op(L(j, j)), op conjugating when Conj; the
// rows below the diagonal block take part through L21.
template <bool Unit, bool Conj, class T, class I, int KC>
void backward_rows(const sweep_panel<T, I> &p, const panel_rows<T, I, KC> &w)
{
    constexpr int W = lanes<T, KC>::reals, Q = rows_block<T, KC>();
    real_t<T> *t = w.t;
    for (int64_t j0 = (p.cols - 1) / Q * Q; j0 >= 0; j0 -= Q) {
        const int64_t q = std::min<int64_t>(Q, p.cols - j0);
        const T *c[Q] = {};
        lanes<T, KC> sums[Q];
        for (int64_t jj = 0; jj < q; ++jj)
            c[jj] = p.l + (j0 + jj) * p.rows;
        sum_rest<Q, Conj>(p, w, c, q, j0 + q, sums);
        for (int64_t jj = q - 1; jj >= 0; --jj) {
            lanes<T, KC> a = load_row<T, KC>(t + (j0 + jj) * W);
            subtract(a, sums[jj]);
            for (int64_t ii = jj + 1; ii < q; ++ii)
                update<false, Conj>(a, c[jj][j0 + ii], load_row<T, KC>(t + (j0 + ii) * W));
            if constexpr (!Unit)
                scale(a, conj_if(inverse(c[jj][j0 + jj]), Conj));
            store_row(t + (j0 + jj) * W, a);
        }
    }
}

// x1 ← U11⁻¹·x1, U11 on and above the diagonal block's diagonal: a block of columns at a time
// from the last, each solved in its square and then updating the rows above it.
template <class T, class I, int KC> void upper_rows(const sweep_panel<T, I> &p, real_t<T> *t)
{
    constexpr int W = lanes<T, KC>::reals, Q = rows_block<T, KC>();
    for (int64_t j1 = p.cols; j1 > 0; j1 -= Q) {
        const int64_t q = std::min<int64_t>(Q, j1), j0 = j1 - q;
        const T *c[Q] = {};
        lanes<T, KC> pivot[Q];
        for (int64_t jj = q - 1; jj >= 0; --jj) {
            const T *col = c[jj] = p.l + (j0 + jj) * p.rows;
            lanes<T, KC> y = load_row<T, KC>(t + (j0 + jj) * W);
            scale(y, inverse(col[j0 + jj]));
            store_row(t + (j0 + jj) * W, y);
            for (int64_t ii = 0; ii < jj; ++ii) {
                lanes<T, KC> a = load_row<T, KC>(t + (j0 + ii) * W);
                update<false>(a, col[j0 + ii], y);
                store_row(t + (j0 + ii) * W, a);
            }
            pivot[jj] = y;
        }
        in_pieces<Q>(q, 0, [&]<int B>(int64_t j) {
            update_rows_below<B>(c + j, pivot + j, row_run<T, KC>{t}, 0, j0);
        });
    }
}

// x1 ← U11⁻ᵀ·x1: a block of rows at a time from the first; row i takes its sum over the rows
// above it from column i of U11 above the diagonal.
template <class T, class I, int KC> void upper_t_rows(const sweep_panel<T, I> &p, real_t<T> *t)
{
    constexpr int W = lanes<T, KC>::reals, Q = rows_block<T, KC>();
    for (int64_t i0 = 0; i0 < p.cols; i0 += Q) {
        const int64_t q = std::min<int64_t>(Q, p.cols - i0);
        const T *c[Q] = {};
        lanes<T, KC> sums[Q];
        for (int64_t ii = 0; ii < q; ++ii)
            c[ii] = p.l + (i0 + ii) * p.rows;
        in_pieces<Q>(q, 0, [&]<int B>(int64_t j) {
            sum_rows_below<B, false>(c + j, row_run<T, KC>{t}, 0, i0, sums + j);
        });
        for (int64_t ii = 0; ii < q; ++ii) {
            const T *col = c[ii];
            lanes<T, KC> a = load_row<T, KC>(t + (i0 + ii) * W);
            subtract(a, sums[ii]);
            for (int64_t jj = 0; jj < ii; ++jj)
                update<false>(a, col[i0 + jj], load_row<T, KC>(t + (i0 + jj) * W));
            scale(a, inverse(col[i0 + ii]));
            store_row(t + (i0 + ii) * W, a);
        }
    }
}

// ---- The block below the diagonal block ----

// Its columns, entry i of each for the i-th row below: L21 in the panel (leading dimension
// rows) or U12ᵀ in u_values, each column addressed through u_col_ptr.
template <class T, class I> struct below_columns {
    const T *base;
    int64_t ld;
    const I *ptr; // U12ᵀ: u_col_ptr from the panel's first column; null for L21

    const T *col(int64_t j) const { return ptr != nullptr ? base + (ptr[j] - 1) : base + j * ld; }
};

template <class T, class I> below_columns<T, I> lower_columns(const sweep_panel<T, I> &p)
{
    return {p.l + p.cols, p.rows, nullptr};
}

template <class T, class I> below_columns<T, I> upper_columns(const sweep_factor<T, I> &f, const sweep_panel<T, I> &p)
{
    return {f.u_values, 0, f.u_col_ptr + p.first};
}

// x_off −= C·x1 for the columns C below, Q columns at a time.
template <class T, class I, int KC>
void update_below(const sweep_panel<T, I> &p, const below_columns<T, I> &below, const panel_rows<T, I, KC> &w)
{
    real_t<T> *t = w.t;
    const row_list<T, I, KC> rows = w.below(p.index + p.cols);
    constexpr int W = lanes<T, KC>::reals, Q = rows_block<T, KC>();
    const int64_t off = p.rows - p.cols;
    for (int64_t j0 = 0; j0 < p.cols && off > 0; j0 += Q) {
        const int64_t q = std::min<int64_t>(Q, p.cols - j0);
        const T *c[Q] = {};
        lanes<T, KC> pivot[Q];
        for (int64_t jj = 0; jj < q; ++jj) {
            c[jj] = below.col(j0 + jj);
            pivot[jj] = load_row<T, KC>(t + (j0 + jj) * W);
        }
        in_pieces<Q>(q, 0, [&]<int B>(int64_t j) {
            update_rows_below<B>(c + j, pivot + j, rows, 0, off);
        });
    }
}

// x1 −= Cᵀ·x_off for the columns C below, Q columns at a time.
template <class T, class I, int KC>
void subtract_below(const sweep_panel<T, I> &p, const below_columns<T, I> &below, const panel_rows<T, I, KC> &w)
{
    real_t<T> *t = w.t;
    const row_list<T, I, KC> rows = w.below(p.index + p.cols);
    constexpr int W = lanes<T, KC>::reals, Q = rows_block<T, KC>();
    const int64_t off = p.rows - p.cols;
    for (int64_t j0 = 0; j0 < p.cols && off > 0; j0 += Q) {
        const int64_t q = std::min<int64_t>(Q, p.cols - j0);
        const T *c[Q] = {};
        lanes<T, KC> sums[Q];
        for (int64_t jj = 0; jj < q; ++jj)
            c[jj] = below.col(j0 + jj);
        in_pieces<Q>(q, 0, [&]<int B>(int64_t j) {
            sum_rows_below<B, false>(c + j, rows, 0, off, sums + j);
        });
        for (int64_t jj = 0; jj < q; ++jj) {
            lanes<T, KC> a = load_row<T, KC>(t + (j0 + jj) * W);
            subtract(a, sums[jj]);
            store_row(t + (j0 + jj) * W, a);
        }
    }
}

// The block's row interchanges on its gathered rows: in order (Forward) or undone from the last.
template <bool Forward, class T, class I, int KC>
void interchange_rows(const sweep_panel<T, I> &p, const I *pivots, real_t<T> *t)
{
    constexpr int W = lanes<T, KC>::reals;
    for (int64_t k = 0; k < p.cols; ++k) {
        const int64_t j = Forward ? k : p.cols - 1 - k, r = int64_t(pivots[j]) - 1;
        if (r != j)
            std::swap_ranges(t + j * W, t + (j + 1) * W, t + r * W);
    }
}

// ---- One panel of each kind of sweep ----
// Each takes the block's right-hand sides c0 … c0+kc−1 from b and leaves them there.

// The row operations of the Bunch–Kaufman halves (bk_blocks.hpp) on a gathered panel.
template <class T, int KC> struct gathered_rows {
    static constexpr int W = lanes<T, KC>::reals;
    real_t<T> *t;

    void swap(int64_t i, int64_t j) const
    {
        if (i != j)
            std::swap_ranges(t + i * W, t + (i + 1) * W, t + j * W);
    }
    void eliminate(const T *const *l, int width, int64_t k, int64_t i0, int64_t i1) const
    {
        const lanes<T, KC> pivot[2] = {load_row<T, KC>(t + k * W),
                                       width == 2 ? load_row<T, KC>(t + (k + 1) * W) : zero_row<T, KC>()};
        if (width == 2)
            update_rows_below<2>(l, pivot, row_run<T, KC>{t}, i0, i1);
        else
            update_rows_below<1>(l, pivot, row_run<T, KC>{t}, i0, i1);
    }
    template <bool Conj> void subtract_dot(const T *l, int64_t j, int64_t i0, int64_t i1) const
    {
        lanes<T, KC> sum;
        sum_rows_below<1, Conj>(&l, row_run<T, KC>{t}, i0, i1, &sum);
        lanes<T, KC> a = load_row<T, KC>(t + j * W);
        subtract(a, sum);
        store_row(t + j * W, a);
    }
};

// Bunch–Kaufman: the block's halves on the gathered rows, the update through L21 between them.
// (Lᴴ of a Hermitian factor is the caller's: see sweep_entry.)
template <bool Forward, class T, class I, int KC>
void bk_panel(const sweep_factor<T, I> &f, const sweep_panel<T, I> &p, const panel_rows<T, I, KC> &w)
{
    const bk_block<T, I> block{p.cols, p.l, p.rows, f.bk_pivots + p.first};
    if constexpr (Forward) {
        bk_forward(block, gathered_rows<T, KC>{w.t});
        update_below<T, I, KC>(p, lower_columns(p), w);
    } else {
        subtract_below<T, I, KC>(p, lower_columns(p), w);
        bk_backward<bk_symmetry::symmetric>(block, gathered_rows<T, KC>{w.t});
    }
}

// The triangles of L·Lᴴ and L·U factors (and the Bunch–Kaufman halves) on the gathered panel.
// The conjugate factor of a transposed sweep is the caller's (sweep_entry).
template <sweep_kind K, class T, class I, int KC>
void triangle_panel(const sweep_factor<T, I> &f, const sweep_panel<T, I> &p, const panel_rows<T, I, KC> &w)
{
    using k = sweep_kind;
    if constexpr (K == k::bk_forward || K == k::bk_backward) {
        bk_panel<K == k::bk_forward, T, I, KC>(f, p, w);
    } else if constexpr (K == k::cholesky_forward) {
        forward_rows<false, T, I, KC>(p, w);
    } else if constexpr (K == k::cholesky_backward) {
        backward_rows<false, true, T, I, KC>(p, w);
    } else if constexpr (K == k::lu_forward) {
        interchange_rows<true, T, I, KC>(p, f.row_pivots + p.first, w.t);
        forward_rows<true, T, I, KC>(p, w);
    } else if constexpr (K == k::lu_backward) {
        subtract_below<T, I, KC>(p, upper_columns(f, p), w);
        upper_rows<T, I, KC>(p, w.t);
    } else if constexpr (K == k::lu_forward_t) {
        upper_t_rows<T, I, KC>(p, w.t);
        update_below<T, I, KC>(p, upper_columns(f, p), w);
    } else {
        static_assert(K == k::lu_backward_t);
        backward_rows<true, false, T, I, KC>(p, w);
        interchange_rows<false, T, I, KC>(p, f.row_pivots + p.first, w.t);
    }
}

constexpr bool forward_kind(sweep_kind k)
{
    return k == sweep_kind::cholesky_forward || k == sweep_kind::lu_forward || k == sweep_kind::lu_forward_t ||
           k == sweep_kind::diag_forward || k == sweep_kind::bk_forward;
}

// One sweep over the factor for the block's right-hand sides c0 … c0+kc−1 (kc ≤ KC), the rows
// kept between panels in kept (n rows of the work block's width).
template <sweep_kind K, class T, class I, int KC>
void sweep_rows(const sweep_factor<T, I> &f, const rhs_block<T> &b, int64_t c0, int64_t kc, real_t<T> *t,
                real_t<T> *kept)
{
    constexpr bool forward = forward_kind(K);
    if constexpr (forward)
        std::memset(static_cast<void *>(kept), 0, sizeof(real_t<T>) * size_t(b.n * lanes<T, KC>::reals));
    for (I k = 0; k < f.nsuper; ++k) {
        const sweep_panel<T, I> p = panel_of(f, forward ? k : f.nsuper - 1 - k);
        gather_kept<forward, T, I, KC>(p, b, c0, kc, kept, t);
        if (k + 1 < f.nsuper)
            prefetch_kept<forward, T, I, KC>(panel_of(f, forward ? k + 1 : f.nsuper - 2 - k), b, c0, kc, kept);
        triangle_panel<K, T, I, KC>(f, p, panel_rows<T, I, KC>{t, kept});
        scatter_kept<forward, T, I, KC>(p, b, c0, kc, t, kept);
    }
}

// A sweep over the whole block in chunks of at most sweep_chunk right-hand sides, each padded
// to the next of 2, 4, 8 or 16; one right-hand side of L·Lᴴ is swept in place.
template <sweep_kind K, class T, class I>
void sweep(const sweep_factor<T, I> &f, const rhs_block<T> &b, T *t, T *kept_rows)
{
    constexpr bool forward = forward_kind(K);
    if (K == sweep_kind::cholesky_forward || K == sweep_kind::cholesky_backward) {
        if (b.k == 1) {
            for (I k = 0; k < f.nsuper; ++k) {
                const I s = forward ? k : f.nsuper - 1 - k;
                if (forward)
                    forward_one(panel_of(f, s), b.x, t);
                else
                    backward_one(panel_of(f, s), b.x, t);
            }
            return;
        }
    }
    auto *rows = reinterpret_cast<real_t<T> *>(t), *kept = reinterpret_cast<real_t<T> *>(kept_rows);
    for (int64_t c0 = 0; c0 < b.k; c0 += sweep_chunk) {
        const int64_t kc = std::min<int64_t>(sweep_chunk, b.k - c0);
        if (kc > 8)
            sweep_rows<K, T, I, 16>(f, b, c0, kc, rows, kept);
        else if (kc > 4)
            sweep_rows<K, T, I, 8>(f, b, c0, kc, rows, kept);
        else if (kc > 2)
            sweep_rows<K, T, I, 4>(f, b, c0, kc, rows, kept);
        else
            sweep_rows<K, T, I, 2>(f, b, c0, kc, rows, kept);
    }
}

// The diagonally pivoted L·D·Lᵀ sweeps are the L·U ones: unit L11 with row interchanges
// forward, L11ᵀ (L11ᴴ) and the interchanges undone backward.
template <class T, class I> constexpr sweep_table<T, I> table_of()
{
    using k = sweep_kind;
    return {sweep<k::cholesky_forward, T, I>, sweep<k::cholesky_backward, T, I>, sweep<k::lu_forward, T, I>,
            sweep<k::lu_backward, T, I>,      sweep<k::lu_forward_t, T, I>,      sweep<k::lu_backward_t, T, I>,
            sweep<k::lu_forward, T, I>,       sweep<k::lu_backward_t, T, I>,     sweep<k::bk_forward, T, I>,
            sweep<k::bk_backward, T, I>};
}

constexpr sweep_set make_sweep_set()
{
    return {table_of<float, int32_t>(), table_of<double, int32_t>(), table_of<std::complex<float>, int32_t>(),
            table_of<std::complex<double>, int32_t>(), table_of<float, int64_t>(), table_of<double, int64_t>(),
            table_of<std::complex<float>, int64_t>(), table_of<std::complex<double>, int64_t>()};
}

#undef ZEL_SWEEP_INLINE

} // namespace zel::solver::ZEL_SWEEP_ISA
