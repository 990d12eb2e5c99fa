// Complex LU from 33 to 64 and Cholesky from 17 (z) or 22 (c) to 64 on a padded copy, in blocks of columns: a
// block's columns are factored a column at a time as the padded kernels do, and the products with
// whole blocks are done as one update held in registers (a column at a time they would go through
// memory for every column). Included by small_avx2.cpp inside its namespace, after the padded
// kernels it builds on. (Used as one block for the smaller orders it measured a few per cent
// slower than those kernels.)
#pragma once

constexpr int64_t blocked_complex_limit = 64;

// The leading dimension of the blocked kernels' copies: whole vectors and one more when the
// columns would lie a power of two apart (at 64 a row interchange or a block row of U would
// touch only a few cache sets).
template <class R> constexpr int64_t spaced_complex(int64_t n)
{
    const int64_t ld = padded_complex<R>(n);
    return (ld & (ld - 1)) == 0 ? ld + wide_complex<R>::rows_per : ld;
}

// A's copy for the blocked kernels, on the stack: columns ld apart, whole vectors of rows each.
template <class R, int64_t Bound> struct blocked_copy {
    alignas(32) R storage[2 * spaced_complex<R>(Bound) * Bound]; // raw: complex arrays would be zeroed
    int64_t ld, vectors;
    blocked_copy(int64_t n, const std::complex<R> *a, int64_t lda)
        : ld(spaced_complex<R>(n)), vectors(padded_complex<R>(n) / wide_complex<R>::rows_per)
    {
        copy_padded(n, a, lda, work(), ld);
    }
    std::complex<R> *work() { return reinterpret_cast<std::complex<R> *>(storage); }
};

// The extra operations the blocked kernels need beside wide_complex's.
template <class R> struct block_ops;
template <> struct block_ops<double> {
    using reg = __m256d;
    static reg broadcast(const double *p) { return _mm256_broadcast_sd(p); }
    static reg fnmadd(reg a, reg b, reg c) { return _mm256_fnmadd_pd(a, b, c); }
    // (-im, re) of every complex entry: x * i.
    static reg times_i(reg x) { return _mm256_xor_pd(_mm256_permute_pd(x, 0x5), _mm256_setr_pd(-0.0, 0.0, -0.0, 0.0)); }
};
template <> struct block_ops<float> {
    using reg = __m256;
    static reg broadcast(const float *p) { return _mm256_broadcast_ss(p); }
    static reg fnmadd(reg a, reg b, reg c) { return _mm256_fnmadd_ps(a, b, c); }
    static reg times_i(reg x)
    {
        return _mm256_xor_ps(_mm256_permute_ps(x, 0xB1), _mm256_setr_ps(-0.0f, 0.0f, -0.0f, 0.0f, -0.0f, 0.0f, -0.0f, 0.0f));
    }
};

// The operands of one block update C -= L * U: C's columns from c, L's columns as padded
// columns, U's entry (k, j) at u + k * u_k + j * u_j (in reals), conjugated for Cholesky.
template <class R> struct block_update {
    R *c;         // C's first vector of its first column
    const R *l;   // L's first column at the same rows
    const R *u;   // U's entry (0, 0)
    int64_t ld;   // of C and L, in reals
    int64_t u_k, u_j;
    int64_t depth; // the block's width
};

// One tile of V vectors by J columns: the accumulators stay in registers over the whole depth.
template <int V, int J, bool Conjugate, class R> [[gnu::always_inline]] inline void block_tile(const block_update<R> &b, int64_t v, int64_t j)
{
    using W = wide_complex<R>;
    using B = block_ops<R>;
    constexpr int64_t lanes = 2 * W::rows_per;
    typename W::reg acc[V][J];
    R *c = b.c + lanes * v + j * b.ld;
#pragma GCC unroll 4
    for (int q = 0; q < J; ++q)
#pragma GCC unroll 2
        for (int p = 0; p < V; ++p)
            acc[p][q] = W::load(c + q * b.ld + lanes * p);
    const R *l = b.l + lanes * v, *u = b.u + j * b.u_j;
    for (int64_t k = 0; k < b.depth; ++k, l += b.ld, u += b.u_k) {
        typename W::reg x[V], xi[V];
#pragma GCC unroll 2
        for (int p = 0; p < V; ++p)
            x[p] = W::load(l + lanes * p), xi[p] = B::times_i(x[p]);
#pragma GCC unroll 4
        for (int q = 0; q < J; ++q) {
            const auto re = B::broadcast(u + q * b.u_j), im = B::broadcast(u + q * b.u_j + 1);
#pragma GCC unroll 2
            for (int p = 0; p < V; ++p) { // l * (re + i im) = l re + (i l) im; conjugated, - (i l) im
                acc[p][q] = B::fnmadd(x[p], re, acc[p][q]);
                acc[p][q] = Conjugate ? W::fmadd(xi[p], im, acc[p][q]) : B::fnmadd(xi[p], im, acc[p][q]);
            }
        }
    }
#pragma GCC unroll 4
    for (int q = 0; q < J; ++q)
#pragma GCC unroll 2
        for (int p = 0; p < V; ++p)
            W::store(c + q * b.ld + lanes * p, acc[p][q]);
}

// C -= L * U over C's vectors [v0, v1) and columns [0, columns); for Cholesky only the tiles that
// reach the lower triangle (C's column j from its row first_row + j).
template <bool Conjugate, class R>
void block_update_run(const block_update<R> &b, int64_t v0, int64_t v1, int64_t columns, int64_t first_row)
{
    using W = wide_complex<R>;
    for (int64_t j = 0; j < columns; j += 4) {
        const int64_t width = std::min<int64_t>(4, columns - j);
        const int64_t from = Conjugate ? std::max(v0, (first_row + j) / W::rows_per) : v0;
        auto tiles = [&]<int J>() {
            int64_t v = from;
            for (; v + 2 <= v1; v += 2)
                block_tile<2, J, Conjugate>(b, v, j);
            if (v < v1)
                block_tile<1, J, Conjugate>(b, v, j);
        };
        switch (width) {
        case 1: tiles.template operator()<1>(); break;
        case 2: tiles.template operator()<2>(); break;
        case 3: tiles.template operator()<3>(); break;
        default: tiles.template operator()<4>(); break;
        }
    }
}

// Complex LU with partial pivoting for n <= Bound, in blocks of Width columns (a multiple of every
// vector's rows): the block's columns a column at a time, the block row of U by forward
// substitution, then the trailing matrix at once.
template <int64_t Width, int64_t Bound = blocked_complex_limit, class R>
void getrf_complex_panels(int64_t n, std::complex<R> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using W = wide_complex<R>;
    using T = std::complex<R>;
    static_assert(Width % 4 == 0);
    blocked_copy<R, Bound> copy(n, a, lda);
    T *work = copy.work();
    const int64_t vectors = copy.vectors, ld = copy.ld;
    for (int64_t kb = 0; kb < n; kb += Width) {
        const int64_t end = std::min(kb + Width, n);
        for (int64_t k = kb; k < end; ++k)
            lu_column<true>(work, ld, n, k, end, ipiv, info);
        if (end == n)
            break;
        for (int64_t k = kb; k + 1 < end; ++k) { // U's block row: L's unit triangle solved
            const R *cd = reinterpret_cast<const R *>(work + k * ld);
            update_rows_complex<false>(work, ld, k, (k + 1) / W::rows_per, end / W::rows_per, end, n, below_loader(cd, k));
        }
        R *base = reinterpret_cast<R *>(work);
        const block_update<R> b = {base + 2 * end * ld, base + 2 * kb * ld, base + 2 * (end * ld + kb), 2 * ld, 2, 2 * ld, end - kb};
        block_update_run<false>(b, end / W::rows_per, vectors, n - end, 0);
    }
    for (int64_t j = 0; j < n; ++j)
        copy_entries(work + j * ld, n, a + j * lda);
}

// Complex Cholesky A = L*L^H for n <= Bound in blocks of Width columns, each first
// less the product of all finished columns (one pass over the block instead of one per block
// before it), then factored a column at a time. On a non-positive pivot only the finished columns
// and it go back, as the padded kernel.
template <int64_t Width, int64_t Bound = blocked_complex_limit, class R>
void potrf_lower_complex_panels(int64_t n, std::complex<R> *a, int64_t lda, int64_t *info)
{
    using W = wide_complex<R>;
    using T = std::complex<R>;
    static_assert(Width % 4 == 0);
    blocked_copy<R, Bound> copy(n, a, lda);
    T *work = copy.work();
    const int64_t vectors = copy.vectors, ld = copy.ld;
    int64_t done = n;
    R *base = reinterpret_cast<R *>(work);
    for (int64_t kb = 0; kb < n && done == n; kb += Width) {
        const int64_t end = std::min(kb + Width, n);
        if (kb > 0) { // the block's columns less all finished ones: U's entry (k, j) is conj(L(kb + j, k))
            const block_update<R> b = {base + 2 * kb * ld, base, base + 2 * kb, 2 * ld, 2 * ld, 2, kb};
            block_update_run<true>(b, kb / W::rows_per, vectors, end - kb, kb);
        }
        for (int64_t k = kb; k < end && done == n; ++k)
            if (!cholesky_column(work, ld, k, vectors, end))
                done = k;
    }
    cholesky_copy_back(n, done, work, ld, a, lda, info);
}
