// Small-matrix kernels for AVX2 with FMA: the orders up to 8 held in registers, the larger ones
// on zero-padded copies of whole vectors (the LU to 16 with its rows kept in place), in every
// precision. small_avx2_on_avx512.cpp builds this file again, in a namespace and set of its own,
// for processors with AVX-512's 32 vector registers.
#include <immintrin.h>

#include <cmath>
#include <cstring>
#include <utility>

#ifndef ZEL_SMALL_ISA
#define ZEL_SMALL_ISA avx2
#define ZEL_SMALL_AVX2_SET small_set_avx2
#endif
namespace zel::dense::ZEL_SMALL_ISA {
constexpr bool fixed_orders = true;
}
#include "small_impl.hpp"
#include "small_registers.hpp"

namespace zel::dense::ZEL_SMALL_ISA {
namespace {

// All-ones in the lanes whose row number lies in [first, last).
inline __m256d lanes_in(int64_t first, int64_t last, int64_t r0, int64_t r1, int64_t r2, int64_t r3)
{
    const auto in = [&](int64_t row) -> int64_t { return first <= row && row < last ? -1 : 0; };
    return _mm256_castsi256_pd(_mm256_setr_epi64x(in(r0), in(r1), in(r2), in(r3)));
}

// Four doubles; without mask registers, lane selections are blends with all-ones lanes.
struct y4 {
    // Lanes of rows in [first, last) of vector r. Built from scalar tests, so the unrolled register
    // kernels get constants (vector comparisons are not folded: they cost an instruction apiece).
    static __m256d rows(int first, int last, int r)
    {
        return lanes_in(first, last, 4 * r, 4 * r + 1, 4 * r + 2, 4 * r + 3);
    }
    static __m256d lane_of(int row, int r) { return rows(row, row + 1, r); }
    static __m256i bits(__m256d m) { return _mm256_castpd_si256(m); }
    static __m256d abs(__m256d v) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v); }
    // Element i of the column held in v[0..R), in every lane.
    template <int R> static __m256d element(const __m256d *v, int i)
    {
        const int pair = 2 * (i & 3);
        const __m256i idx = _mm256_set1_epi64x((static_cast<int64_t>(pair + 1) << 32) | pair);
        __m256d src = v[0];
        if constexpr (R == 2) // a known row picks its vector outright (the loops are unrolled)
            src = __builtin_constant_p(i) ? v[(i >> 2) & 1]
                                          : _mm256_blendv_pd(v[0], v[1], _mm256_castsi256_pd(_mm256_set1_epi64x(i >= 4 ? -1 : 0)));
        return _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(src), idx));
    }
    // The one lane of the column that pick selects, in every lane (bits copied, by or).
    template <int R> static __m256d picked(const __m256d *v, const __m256d *pick)
    {
        __m256d s = _mm256_and_pd(v[0], pick[0]);
        if constexpr (R == 2)
            s = _mm256_or_pd(s, _mm256_and_pd(v[1], pick[1]));
        s = _mm256_or_pd(s, _mm256_permute2f128_pd(s, s, 0x01));
        return _mm256_or_pd(s, _mm256_permute_pd(s, 0x5));
    }
    static __m256d all_max(__m256d v)
    {
        v = _mm256_max_pd(v, _mm256_permute2f128_pd(v, v, 0x01));
        return _mm256_max_pd(v, _mm256_permute_pd(v, 0x5));
    }
    template <int N> static void load(const double *p, __m256d *v)
    {
        constexpr int R = (N + 3) / 4;
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            v[r] = 4 * (r + 1) <= N ? _mm256_loadu_pd(p + 4 * r) : _mm256_maskload_pd(p + 4 * r, bits(rows(0, N, r)));
    }
    // Lanes [from, to) of half (lanes 2h, 2h+1 of v) to p: a plain store or none.
    static void store_half(double *p, __m128d half, int h, int from, int to)
    {
        const bool low = from <= 2 * h && 2 * h < to, high = from <= 2 * h + 1 && 2 * h + 1 < to;
        if (low && high)
            _mm_storeu_pd(p + 2 * h, half);
        else if (low)
            _mm_store_sd(p + 2 * h, half);
        else if (high)
            _mm_storeh_pd(p + 2 * h + 1, half);
    }
    // Stores rows [first, N) of the column; partial vectors go out in plain stores of their
    // halves or lanes (the masked store is slow on some processors).
    template <int N> static void store(double *p, const __m256d *v, int first)
    {
        constexpr int R = (N + 3) / 4;
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r) {
            if (first <= 4 * r && 4 * (r + 1) <= N) {
                _mm256_storeu_pd(p + 4 * r, v[r]);
            } else if (first < 4 * (r + 1)) {
                const int from = first - 4 * r, to = N - 4 * r;
                store_half(p + 4 * r, _mm256_castpd256_pd128(v[r]), 0, from, to);
                store_half(p + 4 * r, _mm256_extractf128_pd(v[r], 1), 1, from, to);
            }
        }
    }
};

// Rows as 4-bit fields of a word: the row held at each position of the interchanged order
// (order), and the position of each row (where), for at most eight rows.
struct row_order {
    uint64_t order = 0x76543210, where = 0x76543210;
    static int field(uint64_t word, int i) { return static_cast<int>(word >> (4 * i) & 15); }
    static uint64_t with(uint64_t word, int i, int value)
    {
        return (word & ~(uint64_t(15) << (4 * i))) | uint64_t(value) << (4 * i);
    }
    int at(int position) const { return field(order, position); }
    // The N columns of real work (aligned whole vectors, ld apart) into a, row i from row at(i):
    // LAPACK's order after the interchanges. Up to three vectors a column, each vector of rows is
    // permuted out of every source vector and takes its lanes from the one that holds them; at
    // four the permutes cost more than the moves.
    template <int N, class T> void write_out(const T *work, int64_t ld, T *a, int64_t lda) const
    {
        static_assert(std::is_floating_point_v<T>);
        constexpr int per = 32 / sizeof(T), lanes_per_row = sizeof(T) / 4, V = (N + per - 1) / per;
        if constexpr (V > 3) {
            int from[N];
            for (int i = 0; i < N; ++i)
                from[i] = at(i);
            for (int j = 0; j < N; ++j)
                for (int i = 0; i < N; ++i)
                    a[i + j * lda] = work[from[i] + j * ld];
            return;
        }
        const __m256i iota = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7), part = _mm256_set1_epi32(lanes_per_row - 1);
        const __m256i shift = _mm256_slli_epi32(_mm256_srli_epi32(iota, lanes_per_row - 1), 2); // 4 * the lane's row
        __m256i index[V], source[V];
#pragma GCC unroll 4
        for (int o = 0; o < V; ++o) { // the rows o*per.. of a come from these lanes of these vectors
            const __m256i fields = _mm256_set1_epi32(static_cast<int>(order >> (4 * per * o)));
            const __m256i from = _mm256_and_si256(_mm256_srlv_epi32(fields, shift), _mm256_set1_epi32(15));
            index[o] = _mm256_add_epi32(_mm256_slli_epi32(_mm256_and_si256(from, _mm256_set1_epi32(per - 1)), lanes_per_row - 1),
                                        _mm256_and_si256(iota, part));
            source[o] = _mm256_srli_epi32(from, per == 8 ? 3 : 2);
        }
#pragma GCC unroll 2
        for (int j = 0; j < N; ++j) {
            __m256 x[V];
#pragma GCC unroll 4
            for (int v = 0; v < V; ++v)
                x[v] = _mm256_load_ps(reinterpret_cast<const float *>(work + j * ld + per * v));
#pragma GCC unroll 4
            for (int o = 0; o < V; ++o) {
                __m256 out = _mm256_permutevar8x32_ps(x[0], index[o]);
#pragma GCC unroll 4
                for (int v = 1; v < V; ++v)
                    out = _mm256_blendv_ps(out, _mm256_permutevar8x32_ps(x[v], index[o]),
                                           _mm256_castsi256_ps(_mm256_cmpeq_epi32(source[o], _mm256_set1_epi32(v))));
                store_lanes(reinterpret_cast<float *>(a + j * lda + per * o), out, lanes_per_row * std::min(per, N - per * o));
            }
        }
    }
    // Lanes [0, count) of v to p: plain stores of 32, 16, 8 and 4 bytes.
    static void store_lanes(float *p, __m256 v, int count)
    {
        if (count == 8)
            return _mm256_storeu_ps(p, v);
        __m128 part = _mm256_castps256_ps128(v);
        if (count >= 4) {
            _mm_storeu_ps(p, part);
            p += 4, count -= 4, part = _mm256_extractf128_ps(v, 1);
        }
        if (count >= 2) {
            _mm_storel_pi(reinterpret_cast<__m64 *>(p), part);
            p += 2, count -= 2, part = _mm_movehl_ps(part, part);
        }
        if (count == 1)
            _mm_store_ss(p, part);
    }
    // The row first in the order among positions [k, n) whose bit in hits is set (bit
    // `width * row`), or the row at k if none is: the pivot LAPACK takes among equal rows.
    int first_hit(uint64_t hits, int k, int n, int width = 1) const
    {
        int row = at(k);
        for (int i = n - 1; i >= k; --i)
            if (hits >> (width * at(i)) & 1)
                row = at(i);
        return row;
    }
    // Row p becomes the pivot of step k; returns the position it came from.
    int interchange(int k, int p)
    {
        const int q = field(where, p), held = at(k);
        order = with(with(order, q, held), k, p);
        where = with(with(where, held, q), p, k);
        return q;
    }
};

// Lanes of rows 4r..4r+3 in vector r.
inline __m256i row_numbers(int r) { return _mm256_setr_epi64x(4 * r, 4 * r + 1, 4 * r + 2, 4 * r + 3); }

// The pivot row of step k among the open rows: the first largest |a(i,k)| in the
// interchanged order, or the row at position k when none compares equal (NaN). pick gets its
// lane as a mask, straight from the comparison when one row holds the largest, so the update
// never waits for the row number to go through a general register.
template <int N, int R>
int pivot_row(const __m256d *size, __m256d largest, const __m256d *open, const row_order &rows, int k, __m256d *pick)
{
    unsigned hits = 0;
#pragma GCC unroll 2
    for (int r = 0; r < R; ++r) {
        pick[r] = _mm256_and_pd(_mm256_cmp_pd(size[r], largest, _CMP_EQ_OQ), open[r]);
        hits |= static_cast<unsigned>(_mm256_movemask_pd(pick[r])) << (4 * r);
    }
    if ((hits & (hits - 1)) == 0 && hits != 0) [[likely]]
        return __builtin_ctz(hits);
    const int p = rows.first_hit(hits, k, N);
#pragma GCC unroll 2
    for (int r = 0; r < R; ++r)
        pick[r] = _mm256_castsi256_pd(_mm256_cmpeq_epi64(row_numbers(r), _mm256_set1_epi64x(p)));
    return p;
}

// Stores the N columns with row i of the result taken from row rows.at(i) of the registers.
template <int N, int R> void store_in_order(const __m256d (*col)[R], const row_order &rows, double *a, int64_t lda)
{
    const __m256i from_all = _mm256_set1_epi64x(static_cast<int64_t>(rows.order));
#pragma GCC unroll 2
    for (int r = 0; r < R; ++r) {
        const __m256i from = _mm256_and_si256(_mm256_srlv_epi64(from_all, _mm256_slli_epi64(row_numbers(r), 2)), _mm256_set1_epi64x(15));
        const __m256i pair = _mm256_slli_epi64(_mm256_and_si256(from, _mm256_set1_epi64x(3)), 1);
        const __m256i idx = _mm256_or_si256(pair, _mm256_slli_epi64(_mm256_add_epi64(pair, _mm256_set1_epi64x(1)), 32));
        const __m256d high = _mm256_castsi256_pd(_mm256_cmpgt_epi64(from, _mm256_set1_epi64x(3)));
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j) {
            __m256d out = _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(col[j][0]), idx));
            if constexpr (R == 2)
                out = _mm256_blendv_pd(out, _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(col[j][1]), idx)), high);
            if (4 * (r + 1) <= N)
                _mm256_storeu_pd(a + j * lda + 4 * r, out);
            else
                _mm256_maskstore_pd(a + j * lda + 4 * r, y4::bits(y4::rows(0, N, r)), out);
        }
    }
}

// LU with partial pivoting of an N x N double matrix (N <= 8), a column in R = 1 or 2
// registers. Rows are never moved while eliminating: a mask marks the rows not yet chosen as
// pivots, and one permutation at the end puts the rows in LAPACK's order. The multipliers are
// scaled by 1/|pivot| and take the pivot's sign after (exact), so the division overlaps the
// pivot's extraction. Kept out of line: inlined into the dispatch beside the larger orders' calls
// it measured 5% slower at 8.
template <int N> [[gnu::noinline]] void getrf_d_registers(double *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    constexpr int R = (N + 3) / 4;
    __m256d col[N][R], open[R];
    row_order rows;
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        y4::load<N>(a + j * lda, col[j]);
#pragma GCC unroll 2
    for (int r = 0; r < R; ++r)
        open[r] = y4::rows(0, N, r);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        if (k == N - 1) { // the one open row is the last pivot, with nothing below it to scale
            ipiv[k] = N;
            if (_mm256_cvtsd_f64(y4::picked<R>(col[k], open)) == 0.0 && *info == 0)
                *info = N;
            break;
        }
        __m256d size[R], largest = _mm256_setzero_pd(), pick[R], l[R];
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r) {
            size[r] = _mm256_and_pd(y4::abs(col[k][r]), open[r]);
            largest = _mm256_max_pd(largest, size[r]);
        }
        largest = y4::all_max(largest);
        const __m256d zero = _mm256_cmp_pd(largest, _mm256_setzero_pd(), _CMP_EQ_OQ);
        const __m256d scale = _mm256_blendv_pd(_mm256_div_pd(_mm256_set1_pd(1.0), largest), _mm256_set1_pd(1.0), zero);
        const int p = pivot_row<N, R>(size, largest, open, rows, k, pick);
        ipiv[k] = rows.interchange(k, p) + 1;
        const __m256d pivot = y4::picked<R>(col[k], pick);
        if (_mm256_cvtsd_f64(pivot) == 0.0 && *info == 0)
            *info = k + 1;
        const __m256d sign = _mm256_and_pd(pivot, _mm256_set1_pd(-0.0));
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r) {
            open[r] = _mm256_andnot_pd(pick[r], open[r]);
            l[r] = _mm256_and_pd(_mm256_xor_pd(_mm256_mul_pd(col[k][r], scale), sign), open[r]);
            col[k][r] = _mm256_blendv_pd(col[k][r], l[r], open[r]);
        }
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) {
            const __m256d u = y4::picked<R>(col[j], pick);
#pragma GCC unroll 2
            for (int r = 0; r < R; ++r)
                col[j][r] = _mm256_fnmadd_pd(l[r], u, col[j][r]);
        }
    }
    store_in_order<N, R>(col, rows, a, lda);
}

// Cholesky A = L*L^T of an N x N double matrix (N <= 8), right-looking with a column in R
// registers. On a non-positive pivot only the finished columns and that pivot are written back,
// as the unblocked LAPACK routine leaves them.
template <int N> void potrf_lower_d_registers(double *a, int64_t lda, int64_t *info)
{
    constexpr int R = (N + 3) / 4;
    __m256d col[N][R];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        y4::load<N>(a + j * lda, col[j]);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const __m256d dv = y4::element<R>(col[k], k);
        const double d = _mm256_cvtsd_f64(dv);
        if (!(d > 0.0)) {
            for (int j = 0; j < k; ++j)
                y4::store<N>(a + j * lda, col[j], j);
            a[k + k * lda] = d;
            *info = k + 1;
            return;
        }
        // The update takes (a_ik * a_jk) / d for l_ik * l_jk: the products are formed while the
        // division runs, so the next pivot waits for one division and one multiply-add, not a
        // square root too; the column is scaled off that path.
        const __m256d inverse = _mm256_div_pd(_mm256_set1_pd(1.0), dv);
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) {
            const __m256d u = y4::element<R>(col[k], j);
#pragma GCC unroll 2
            for (int r = 0; r < R; ++r)
                col[j][r] = _mm256_fnmadd_pd(_mm256_mul_pd(col[k][r], u), inverse, col[j][r]);
        }
        const __m256d root = _mm256_sqrt_pd(dv);
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            col[k][r] = _mm256_blendv_pd(_mm256_div_pd(col[k][r], root), root, y4::lane_of(k, r));
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        y4::store<N>(a + j * lda, col[j], j);
}

// The inverse U^-1 * L^-1 * P^T of an N x N double LU factor (N <= 8), a column of the result
// in R registers; the column interchanges become the store addresses.
template <int N> void inverse_d_registers(const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    constexpr int R = (N + 3) / 4;
    __m256d x[N][R];
    double d[N];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j) {
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            x[j][r] = _mm256_and_pd(y4::lane_of(j, r), _mm256_set1_pd(1.0));
        d[j] = 1.0 / a[j + j * lda];
    }
#pragma GCC unroll 8
    for (int k = 0; k + 1 < N; ++k) { // L^-1: column j has zeros above row j
        __m256d l[R];
        y4::load<N>(a + k * lda, l);
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r)
            l[r] = _mm256_and_pd(l[r], y4::rows(k + 1, N, r));
#pragma GCC unroll 8
        for (int j = 0; j <= k; ++j) {
            const __m256d b = y4::element<R>(x[j], k);
#pragma GCC unroll 2
            for (int r = 0; r < R; ++r)
                x[j][r] = _mm256_fnmadd_pd(l[r], b, x[j][r]);
        }
    }
#pragma GCC unroll 8
    for (int k = N - 1; k >= 0; --k) { // U^-1
        __m256d u[R], s[R];
        y4::load<N>(a + k * lda, u);
#pragma GCC unroll 2
        for (int r = 0; r < R; ++r) {
            u[r] = _mm256_and_pd(u[r], y4::rows(0, k, r));
            s[r] = _mm256_blendv_pd(_mm256_set1_pd(1.0), _mm256_set1_pd(d[k]), y4::lane_of(k, r));
        }
#pragma GCC unroll 8
        for (int j = 0; j < N; ++j) {
#pragma GCC unroll 2
            for (int r = 0; r < R; ++r)
                x[j][r] = _mm256_mul_pd(x[j][r], s[r]);
            if (k > 0) {
                const __m256d b = y4::element<R>(x[j], k);
#pragma GCC unroll 2
                for (int r = 0; r < R; ++r)
                    x[j][r] = _mm256_fnmadd_pd(u[r], b, x[j][r]);
            }
        }
    }
    int at[N], to[N]; // at[c]: the register that ends in column c
    inverse_destinations(N, ipiv, at, to);
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        y4::store<N>(inv + to[j] * ldinv, x[j], 0);
}

// Orders 9 to 16 at fixed size, as at_fixed_order does to 8.
template <class Kernel> [[gnu::always_inline]] inline bool at_order_9_to_16(int64_t n, Kernel &&kernel)
{
    return [&]<int... i>(std::integer_sequence<int, i...>) {
        return ((n == 9 + i && (kernel.template operator()<9 + i>(), true)) || ...);
    }(std::make_integer_sequence<int, 8>());
}

// count entries from `from` to `to` in 32-byte moves, the last one overlapping, or shorter ones
// below 32 bytes: std::copy moves a std::complex one entry at a time (it is not a trivial type),
// memcpy would be a call for every column, and a 32-byte memcpy is inlined as two 16-byte moves,
// which the kernels' whole-vector loads of the copy cannot take from the store buffer (cgetrf 8
// measured 119 ns with those, 110 with these).
template <class T> [[gnu::always_inline]] inline void copy_entries(const T *from, int64_t count, T *to)
{
    const char *source = reinterpret_cast<const char *>(from);
    char *target = reinterpret_cast<char *>(to);
    const int64_t bytes = count * static_cast<int64_t>(sizeof(T));
    auto move = [&]<int size>(int64_t at) {
        if constexpr (size == 32)
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(target + at), _mm256_loadu_si256(reinterpret_cast<const __m256i *>(source + at)));
        else
            std::memcpy(target + at, source + at, size);
    };
    if (bytes >= 32) {
        for (int64_t at = 0; at + 32 < bytes; at += 32)
            move.template operator()<32>(at);
        return move.template operator()<32>(bytes - 32);
    }
    int64_t at = 0;
    if (bytes & 16)
        move.template operator()<16>(at), at += 16;
    if (bytes & 8)
        move.template operator()<8>(at), at += 8;
    if (bytes & 4)
        move.template operator()<4>(at);
}

// Copies the n x n matrix at a into work with leading dimension ld, rows n to ld zero.
template <class T, class Order> void copy_padded(Order n, const T *a, int64_t lda, T *work, int64_t ld)
{
    for (int64_t j = 0; j < n; ++j) {
        copy_entries(a + j * lda, n, work + j * ld);
        std::fill(work + j * ld + n, work + (j + 1) * ld, T(0));
    }
}

// Largest order of the padded-copy kernels; their copies live on the stack.
constexpr int64_t column_limit = 64;

// Whole vectors of the padded-copy kernels, in either real precision: what is the same in both
// through the compiler's vector arithmetic, the rest per precision.
template <class T> struct wide {
    static constexpr bool is_double = std::is_same_v<T, double>;
    typedef T reg __attribute__((__vector_size__(32), __may_alias__)); // as __m256d and __m256
    using scalar = T;
    using lane_int = std::conditional_t<is_double, int64_t, int32_t>;
    typedef lane_int ints __attribute__((vector_size(32)));
    static constexpr int64_t lanes = 32 / sizeof(T);
    static reg load(const T *p) { return *reinterpret_cast<const reg *>(p); }
    static void store(T *p, reg v) { *reinterpret_cast<reg *>(p) = v; }
    static reg loadu(const T *p)
    {
        reg v;
        std::memcpy(&v, p, sizeof v);
        return v;
    }
    static reg splat(T x) { return x - reg{}; } // x - 0 is x, -0 too
    static reg broadcast(const T *p) { return splat(*p); }
    static reg zero() { return reg{}; }
    static reg mul(reg a, reg b) { return a * b; }
    static reg div(reg a, reg b) { return a / b; }
    // Bit operations in the floating-point domain (an integer one would cost a bypass cycle).
    static reg keep(reg v, reg mask) { return reg(_mm256_and_ps(__m256(v), __m256(mask))); }
    static reg drop(reg v, reg mask) { return reg(_mm256_andnot_ps(__m256(mask), __m256(v))); }
    static reg flip(reg v, reg sign) { return reg(_mm256_xor_ps(__m256(v), __m256(sign))); }
    static reg abs(reg v) { return drop(v, splat(T(-0.0))); }
    static reg equal_mask(reg a, reg b) { return reg(a == b); }
    static reg fnmadd(reg a, reg b, reg c)
    {
        if constexpr (is_double) return _mm256_fnmadd_pd(a, b, c); else return _mm256_fnmadd_ps(a, b, c);
    }
    static reg fmadd(reg a, reg b, reg c)
    {
        if constexpr (is_double) return _mm256_fmadd_pd(a, b, c); else return _mm256_fmadd_ps(a, b, c);
    }
    static reg max(reg a, reg b)
    {
        if constexpr (is_double) return _mm256_max_pd(a, b); else return _mm256_max_ps(a, b);
    }
    static reg blend(reg a, reg b, reg mask)
    {
        if constexpr (is_double) return _mm256_blendv_pd(a, b, mask); else return _mm256_blendv_ps(a, b, mask);
    }
    static unsigned bits(reg mask)
    {
        if constexpr (is_double) return unsigned(_mm256_movemask_pd(mask)); else return unsigned(_mm256_movemask_ps(mask));
    }
    static unsigned equal(reg a, reg b) { return bits(equal_mask(a, b)); }
    // Lane i of v, for every i, combined with the lanes i ^ w for every power of two w from
    // group on: the largest (all_max) or the bits of all (all_or, which copies the one nonzero
    // lane, or with group 2 the one nonzero pair, everywhere).
    template <int group = 1, class Combine> static reg across(reg v, Combine combine)
    {
        exchanges<group>([&](auto permute) { v = combine(v, permute(v)); });
        return v;
    }
    // step(permute) for each permute that swaps lanes i and i ^ w, w from the largest power of
    // two down to group: the exchanges of a reduction over all lanes (or all groups).
    template <int group = 1, class Step> static void exchanges(Step step)
    {
        step([](reg v) { return reg(_mm256_permute2f128_ps(__m256(v), __m256(v), 0x01)); });
        if constexpr (!is_double)
            step([](reg v) { return reg(_mm256_permute_ps(__m256(v), 0x4E)); });
        if constexpr (group < 2)
            step([](reg v) { return is_double ? reg(_mm256_permute_pd(__m256d(v), 0x5)) : reg(_mm256_permute_ps(__m256(v), 0xB1)); });
    }
    template <int group = 1> static reg all_max(reg v) { return across<group>(v, [](reg x, reg y) { return max(x, y); }); }
    static reg either(reg a, reg b) { return reg(_mm256_or_ps(__m256(a), __m256(b))); }
    template <int group = 1> static reg all_or(reg v) { return across<group>(v, [](reg x, reg y) { return either(x, y); }); }
    static reg iota()
    {
        if constexpr (is_double) return _mm256_setr_pd(0, 1, 2, 3); else return _mm256_setr_ps(0, 1, 2, 3, 4, 5, 6, 7);
    }
    static reg halves() // iota / 2, rounded down
    {
        if constexpr (is_double) return _mm256_setr_pd(0, 0, 1, 1); else return _mm256_setr_ps(0, 0, 1, 1, 2, 2, 3, 3);
    }
    // Lanes [first, last) of a vector; the lanes of the low bits of m.
    static reg rows(int64_t first, int64_t last) { return reg((iota() >= T(first)) & (iota() < T(last))); }
    static reg from_bits(unsigned m)
    {
        const ints bit = is_double ? ints(_mm256_setr_epi64x(1, 2, 4, 8)) : ints(_mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128));
        return reg(((ints{} + lane_int(m)) & bit) == bit);
    }
};

// The leading dimension of a padded copy: whole vectors.
template <class T> constexpr int64_t padded(int64_t n)
{
    return (n + wide<T>::lanes - 1) & ~(wide<T>::lanes - 1);
}

// target_j -= l * u_j over C vectors from vector v for the columns j in [from, to), u_j the
// factor's row k (LU) or, for Cholesky, l's own row j: the multipliers stay in registers while
// the columns stream past.
template <int C, bool Cholesky, class T>
void update_strip(const typename wide<T>::reg *l, T *work, int64_t ld, int64_t k, int64_t v, int64_t from, int64_t to,
                  T u_scale)
{
    using W = wide<T>;
    // The columns j in [j0, j1) on vectors [c0, C) of the strip.
    auto columns = [&]<int c0>(int64_t j0, int64_t j1) {
        for (int64_t j = j0; j < j1; ++j) {
            T *target = work + j * ld + W::lanes * v;
            const auto u = Cholesky ? W::splat(work[k * ld + j] * u_scale) : W::broadcast(work + j * ld + k);
#pragma GCC unroll 4
            for (int c = c0; c < C; ++c)
                W::store(target + W::lanes * c, W::fnmadd(l[c], u, W::load(target + W::lanes * c)));
        }
    };
    if constexpr (Cholesky) { // only the vectors that hold rows from j down: one fewer past each vector's end
        [&]<int... c0>(std::integer_sequence<int, c0...>) {
            (columns.template operator()<c0>(c0 == 0 ? from : std::max(from, W::lanes * (v + c0)),
                                             std::min(to, W::lanes * (v + c0 + 1))),
             ...);
        }(std::make_integer_sequence<int, C>());
    } else {
        columns.template operator()<0>(from, to);
    }
}

// The update of the columns j in [from, last_column(v_end)) on the rows of vectors [v0, v1), a
// strip of up to four vectors at a time ending at v_end; load_l(v) gives the multipliers.
// last_column is n for LU and the inverse, the strip's end for Cholesky, whose columns need only
// their rows from the diagonal down.
template <bool Cholesky, class T, class LoadL, class LastColumn>
void update_rows(T *work, int64_t ld, int64_t k, int64_t v0, int64_t v1, int64_t from, LastColumn last_column,
                 LoadL load_l, T u_scale = T(1))
{
    for (int64_t v = v0; v < v1; v += 4) {
        const int64_t count = std::min<int64_t>(4, v1 - v), to = last_column(v + count);
        typename wide<T>::reg l[4];
        for (int c = 0; c < 4; ++c)
            l[c] = c < count ? load_l(v + c) : wide<T>::zero();
        switch (count) {
        case 1: update_strip<1, Cholesky>(l, work, ld, k, v, from, to, u_scale); break;
        case 2: update_strip<2, Cholesky>(l, work, ld, k, v, from, to, u_scale); break;
        case 3: update_strip<3, Cholesky>(l, work, ld, k, v, from, to, u_scale); break;
        default: update_strip<4, Cholesky>(l, work, ld, k, v, from, to, u_scale); break;
        }
    }
}

// Position of the first largest |col[i]|, k <= i < n, in a padded column (zeros beyond n); k
// when none compares equal (NaN).
template <class T> int64_t first_largest(const T *col, int64_t ld, int64_t k)
{
    using W = wide<T>;
    const int64_t first = k / W::lanes;
    const auto above_k = W::rows(0, k - W::lanes * first); // rows above k: out of the race
    const auto out = W::splat(T(-1));
    auto largest = W::blend(W::abs(W::load(col + W::lanes * first)), out, above_k);
    for (int64_t v = first + 1; v < ld / W::lanes; ++v)
        largest = W::max(largest, W::abs(W::load(col + W::lanes * v)));
    largest = W::all_max(largest);
    for (int64_t v = first; v < ld / W::lanes; ++v) {
        auto size = W::abs(W::load(col + W::lanes * v));
        if (v == first)
            size = W::blend(size, out, above_k);
        if (const unsigned hits = W::equal(size, largest))
            return W::lanes * v + __builtin_ctz(hits);
    }
    return k;
}

// col[rows from k + 1] *= s, in place on a padded column from vector first.
template <class T> void scale_below(T *col, int64_t ld, int64_t k, typename wide<T>::reg s)
{
    using W = wide<T>;
    const int64_t first = (k + 1) / W::lanes;
    const auto below = W::rows(k + 1 - W::lanes * first, W::lanes);
    for (int64_t v = first; v < ld / W::lanes; ++v) {
        const auto c = W::load(col + W::lanes * v);
        W::store(col + W::lanes * v, v == first ? W::blend(c, W::mul(c, s), below) : W::mul(c, s));
    }
}

// Real LU with partial pivoting for 8 < n <= column_limit, right-looking on a copy with
// zero-padded columns of whole aligned vectors; each update skips the vectors above the pivot.
template <class T> void getrf_columns(int64_t n, T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using W = wide<T>;
    const int64_t ld = padded<T>(n), vectors = ld / W::lanes;
    alignas(32) T work[column_limit * column_limit];
    copy_padded(n, a, lda, work, ld);
    for (int64_t k = 0; k < n; ++k) {
        T *col = work + k * ld;
        const int64_t p = first_largest(col, ld, k);
        ipiv[k] = p + 1;
        if (p != k)
            for (int64_t j = 0; j < n; ++j)
                std::swap(work[k + j * ld], work[p + j * ld]);
        const T pivot = col[k];
        if (pivot == T(0) && *info == 0)
            *info = k + 1;
        scale_below(col, ld, k, W::splat(pivot != T(0) ? T(1) / pivot : T(1)));
        const int64_t first = (k + 1) / W::lanes;
        const auto below = W::rows(k + 1 - W::lanes * first, W::lanes);
        update_rows<false>(work, ld, k, first, vectors, k + 1, [n](int64_t) { return n; }, [&](int64_t v) {
            const auto l = W::load(col + W::lanes * v);
            return v == first ? W::keep(l, below) : l;
        });
    }
    for (int64_t j = 0; j < n; ++j)
        copy_entries(work + j * ld, n, a + j * lda);
}

// The one lane of a column of R vectors (in registers or at p) that pick selects, in every lane.
// group 2: the one complex row, a pair of lanes, in every pair.
template <int R, class W, int group = 1> typename W::reg picked(const typename W::reg *v, const typename W::reg *pick)
{
    typename W::reg s = W::keep(v[0], pick[0]);
#pragma GCC unroll 8
    for (int r = 1; r < R; ++r)
        s = W::either(s, W::keep(v[r], pick[r]));
    return W::template all_or<group>(s);
}
template <int R, class W, int group = 1> typename W::reg picked(const typename W::scalar *p, const typename W::reg *pick)
{
    typename W::reg v[R];
#pragma GCC unroll 8
    for (int r = 0; r < R; ++r)
        v[r] = W::load(p + W::lanes * r);
    return picked<R, W, group>(v, pick);
}

// Real LU with partial pivoting of order N, 8 < N <= 16, on an aligned copy of whole vectors.
// Rows stay where they are while eliminating: a mask marks the rows not yet chosen as pivots, each
// column reads its u from the pivot row in place, and the rows go out in LAPACK's order once at the
// end, so no step waits for an interchange across the columns. The next column's update stays in
// registers and its u comes from the comparison's mask, not through the pivot's row number, which
// keeps the step-to-step chain short; the multipliers are scaled by 1/|pivot| and take its sign
// after (exact), so the division overlaps the search.
template <int N, class T> [[gnu::noinline]] void getrf_fixed_rows(T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using W = wide<T>;
    using reg = typename W::reg;
    constexpr int L = W::lanes, R = (N + L - 1) / L, ld = R * L;
    alignas(32) T work[ld * N];
    copy_padded(N, a, lda, work, ld);
    reg open[R], c[R];
    row_order rows{0xFEDCBA9876543210, 0xFEDCBA9876543210};
#pragma GCC unroll 4
    for (int r = 0; r < R; ++r) {
        open[r] = W::rows(0, N - L * r);
        c[r] = W::load(work + L * r);
    }
    for (int k = 0; k < N; ++k) {
        if (k == N - 1) { // the one open row is the last pivot, with nothing below it to scale
            ipiv[k] = N;
            if (picked<R, W>(c, open)[0] == T(0) && *info == 0)
                *info = N;
#pragma GCC unroll 4
            for (int r = 0; r < R; ++r)
                W::store(work + k * ld + L * r, c[r]);
            break;
        }
        reg size[R], pick[R], l[R], largest = W::zero();
#pragma GCC unroll 4
        for (int r = 0; r < R; ++r) {
            size[r] = W::keep(W::abs(c[r]), open[r]);
            largest = W::max(largest, size[r]);
        }
        largest = W::all_max(largest);
        const reg one = W::splat(T(1));
        const reg scale = W::blend(W::div(one, largest), one, W::equal_mask(largest, W::zero()));
        unsigned hits = 0;
#pragma GCC unroll 4
        for (int r = 0; r < R; ++r) {
            pick[r] = W::keep(W::equal_mask(size[r], largest), open[r]);
            hits |= W::bits(pick[r]) << (L * r);
        }
        int p = __builtin_ctz(hits | 1u << 31);
        if ((hits & (hits - 1)) != 0 || hits == 0) [[unlikely]] { // a tie, or NaN: first in the interchanged order
            p = rows.first_hit(hits, k, N);
#pragma GCC unroll 4
            for (int r = 0; r < R; ++r)
                pick[r] = W::from_bits((1u << p) >> (L * r));
        }
        ipiv[k] = rows.interchange(k, p) + 1;
        const reg pivot = picked<R, W>(c, pick);
        if (pivot[0] == T(0) && *info == 0)
            *info = k + 1;
        const reg sign = W::keep(pivot, W::splat(T(-0.0)));
        T *col = work + k * ld;
#pragma GCC unroll 4
        for (int r = 0; r < R; ++r) {
            open[r] = W::drop(open[r], pick[r]);
            l[r] = W::keep(W::flip(W::mul(c[r], scale), sign), open[r]);
            W::store(col + L * r, W::blend(c[r], l[r], open[r]));
        }
        const T *next = col + ld;
        const reg u = picked<R, W>(next, pick);
#pragma GCC unroll 4
        for (int r = 0; r < R; ++r)
            c[r] = W::fnmadd(l[r], u, W::load(next + L * r));
        for (int j = k + 2; j < N; ++j) {
            T *target = work + j * ld;
            const reg uj = W::broadcast(target + p);
#pragma GCC unroll 4
            for (int r = 0; r < R; ++r)
                W::store(target + L * r, W::fnmadd(l[r], uj, W::load(target + L * r)));
        }
    }
    rows.write_out<N>(work, ld, a, lda);
}

// Real Cholesky A = L*L^T for 8 < n <= column_limit, right-looking on a padded copy; only the
// lower triangle goes back, and on a non-positive pivot only the finished columns and that pivot.
template <class T> void potrf_lower_columns(int64_t n, T *a, int64_t lda, int64_t *info)
{
    using W = wide<T>;
    const int64_t ld = padded<T>(n), vectors = ld / W::lanes;
    alignas(32) T work[column_limit * column_limit];
    copy_padded(n, a, lda, work, ld);
    int64_t done = n;
    for (int64_t k = 0; k < n; ++k) {
        T *col = work + k * ld;
        const T d = col[k];
        if (!(d > T(0))) {
            done = k;
            break;
        }
        // The update takes a_ik * (a_jk / d) for l_ik * l_jk, so the next pivot waits for one
        // division; the column is scaled by 1/sqrt(d) after.
        const int64_t first = (k + 1) / W::lanes;
        const auto below = W::rows(k + 1 - W::lanes * first, W::lanes);
        update_rows<true>(work, ld, k, first, vectors, k + 1, [n](int64_t v_end) { return std::min(n, W::lanes * v_end); },
                          [&](int64_t v) {
                              const auto l = W::load(col + W::lanes * v);
                              return v == first ? W::keep(l, below) : l;
                          },
                          T(1) / d);
        const T root = std::sqrt(d);
        scale_below(col, ld, k, W::splat(T(1) / root));
        col[k] = root;
    }
    for (int64_t j = 0; j < done; ++j)
        copy_entries(work + j * ld + j, n - j, a + j * lda + j);
    if (done < n) {
        a[done + done * lda] = work[done + done * ld];
        *info = done + 1;
    }
}

// The real inverse U^-1 * L^-1 * P^T for 8 < n <= column_limit from a padded copy of the
// factor: X = L^-1 (column j needs rows below j only), then X = D^-1 X and the unit upper
// triangle D^-1 U solved in place, each step a strip of the factor's column held in registers
// while X's columns stream past; the column interchanges become the store addresses.
template <class T> void inverse_columns(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *inv, int64_t ldinv)
{
    using W = wide<T>;
    const int64_t ld = padded<T>(n), vectors = ld / W::lanes;
    alignas(32) T f[column_limit * column_limit], x[column_limit * column_limit];
    alignas(32) T scale[column_limit] = {};
    copy_padded(n, a, lda, f, ld);
    std::fill(x, x + ld * n, T(0));
    for (int64_t k = 0; k < n; ++k) {
        scale[k] = T(1) / f[k + k * ld];
        x[k + k * ld] = T(1);
    }
    for (int64_t k = 0; k + 1 < n; ++k) { // L^-1
        const T *col = f + k * ld;
        const int64_t first = (k + 1) / W::lanes;
        const auto below = W::rows(k + 1 - W::lanes * first, W::lanes);
        update_rows<false>(x, ld, k, first, vectors, 0, [k](int64_t) { return k + 1; }, [&](int64_t v) {
            const auto l = W::load(col + W::lanes * v);
            return v == first ? W::keep(l, below) : l;
        });
    }
    for (int64_t j = 0; j < n; ++j)
        for (int64_t v = 0; v < vectors; ++v)
            W::store(x + j * ld + W::lanes * v, W::mul(W::load(x + j * ld + W::lanes * v), W::load(scale + W::lanes * v)));
    for (int64_t k = n - 1; k > 0; --k) { // (D^-1 U)^-1, unit diagonal
        const T *col = f + k * ld;
        const int64_t last = (k - 1) / W::lanes; // the vector holding row k - 1
        const auto above = W::rows(0, k - W::lanes * last);
        update_rows<false>(x, ld, k, 0, last + 1, 0, [n](int64_t) { return n; }, [&](int64_t v) {
            const auto u = W::mul(W::load(col + W::lanes * v), W::load(scale + W::lanes * v));
            return v == last ? W::keep(u, above) : u;
        });
    }
    int64_t at[column_limit]; // at[c]: the column of x that ends in column c
    inverse_sources(n, ipiv, at);
    for (int64_t c = 0; c < n; ++c)
        copy_entries(x + at[c] * ld, n, inv + c * ldinv);
}

void potrf_lower_d(int64_t n, double *a, int64_t lda, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { potrf_lower_d_registers<N>(a, lda, info); }))
        return;
    if (n <= column_limit)
        return potrf_lower_columns(n, a, lda, info);
    potrf_lower_loop(n, a, lda, info);
}

void inverse_d(int64_t n, const double *a, int64_t lda, const int64_t *ipiv, double *inv, int64_t ldinv)
{
    if (at_fixed_order(n, [&]<int N>() { inverse_d_registers<N>(a, lda, ipiv, inv, ldinv); }))
        return;
    if (n <= column_limit)
        return inverse_columns(n, a, lda, ipiv, inv, ldinv);
    inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

// ---- single precision: a column of up to 8 floats in one register ----

// Eight floats; lane masks come as bits and become blend masks (constants once the kernels are
// unrolled). Partial columns go out in plain stores of halves, pairs and lanes.
struct y8f {
    using reg = __m256;
    using scalar = float;
    static reg mask(unsigned m)
    {
        const __m256i bit = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
        return _mm256_castsi256_ps(_mm256_cmpeq_epi32(_mm256_and_si256(_mm256_set1_epi32(static_cast<int>(m)), bit), bit));
    }
    static reg load(unsigned m, const float *p)
    {
        return (m & 0xFF) == 0xFF ? _mm256_loadu_ps(p) : _mm256_maskload_ps(p, _mm256_castps_si256(mask(m)));
    }
    // Lanes of m (a run of lanes, as the kernels ask) from the four lanes of x, at p.
    static void store_quarter(float *p, __m128 x, unsigned m)
    {
        m &= 15;
        if (m == 15) {
            _mm_storeu_ps(p, x);
            return;
        }
        for (int i = 0; i < 4; ++i) {
            if ((m >> i & 3) == 3 && (i & 1) == 0) {
                _mm_storel_pi(reinterpret_cast<__m64 *>(p + i), i == 0 ? x : _mm_movehl_ps(x, x));
                ++i;
            } else if (m >> i & 1) {
                _mm_store_ss(p + i, _mm_permutevar_ps(x, _mm_set1_epi32(i)));
            }
        }
    }
    static void store(unsigned m, float *p, reg v)
    {
        if ((m & 0xFF) == 0xFF)
            return _mm256_storeu_ps(p, v);
        store_quarter(p, _mm256_castps256_ps128(v), m);
        store_quarter(p + 4, _mm256_extractf128_ps(v, 1), m >> 4);
    }
    static reg abs(reg v) { return _mm256_andnot_ps(_mm256_set1_ps(-0.0f), v); }
    static reg sign(reg v) { return _mm256_and_ps(v, _mm256_set1_ps(-0.0f)); }
    static reg splat(float x) { return _mm256_set1_ps(x); }
    static reg masked(unsigned m, reg v, reg fill) { return _mm256_blendv_ps(fill, v, mask(m)); }
    static reg all_max(reg v)
    {
        v = _mm256_max_ps(v, _mm256_permute2f128_ps(v, v, 0x01));
        v = _mm256_max_ps(v, _mm256_permute_ps(v, 0x4E));
        return _mm256_max_ps(v, _mm256_permute_ps(v, 0xB1));
    }
    static unsigned equal(reg a, reg b) { return static_cast<unsigned>(_mm256_movemask_ps(_mm256_cmp_ps(a, b, _CMP_EQ_OQ))); }
    static reg lane(reg v, int k) { return _mm256_permutevar8x32_ps(v, _mm256_set1_epi32(k)); }
    static __m256i swap_index(int k, int p)
    {
        const __m256i iota = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
        const __m256i kv = _mm256_set1_epi32(k), pv = _mm256_set1_epi32(p);
        const __m256i idx = _mm256_blendv_epi8(iota, pv, _mm256_cmpeq_epi32(iota, kv));
        return _mm256_blendv_epi8(idx, kv, _mm256_cmpeq_epi32(iota, pv));
    }
    static reg permute(__m256i idx, reg v) { return _mm256_permutevar8x32_ps(v, idx); }
    static reg mask_mul(reg v, unsigned m, reg s) { return _mm256_blendv_ps(v, _mm256_mul_ps(v, s), mask(m)); }
    static reg mask_xor(reg v, unsigned m, reg s) { return _mm256_blendv_ps(v, _mm256_xor_ps(v, s), mask(m)); }
    static reg mask_fnmadd(reg l, reg u, reg c, unsigned m) { return _mm256_blendv_ps(c, _mm256_fnmadd_ps(l, u, c), mask(m)); }
    static reg fnmadd(reg l, reg u, reg c) { return _mm256_fnmadd_ps(l, u, c); }
    static reg sqrt(reg v) { return _mm256_sqrt_ps(v); }
    static reg mul(reg a, reg b) { return _mm256_mul_ps(a, b); }
    static reg div(reg a, reg b) { return _mm256_div_ps(a, b); }
    static reg mask_div(reg v, unsigned m, reg s) { return _mm256_blendv_ps(v, _mm256_div_ps(v, s), mask(m)); }
    static reg unit(int j) { return _mm256_and_ps(mask(1u << j), _mm256_set1_ps(1.0f)); }
    static float first(reg v) { return _mm256_cvtss_f32(v); }
};

// Up to four single complex rows in one register, (re, im) lane pairs; masks are bits per row.
struct y4c {
    using reg = __m256;
    using scalar = float;
    static reg load(unsigned m, const float *p) { return y8f::load(pair_lanes(m & 15), p); }
    static void store(unsigned m, float *p, reg v) { y8f::store(pair_lanes(m & 15), p, v); }
    static reg abs(reg v) { return y8f::abs(v); }
    static reg swap_pairs(reg v) { return _mm256_permute_ps(v, 0xB1); }
    static reg pair_sum(reg v) { return _mm256_add_ps(v, swap_pairs(v)); }
    static reg splat(float x) { return _mm256_set1_ps(x); }
    static reg masked(unsigned m, reg v, reg fill) { return y8f::masked(pair_lanes(m & 15), v, fill); }
    static reg all_max(reg v)
    {
        v = _mm256_max_ps(v, _mm256_permute2f128_ps(v, v, 0x01));
        return _mm256_max_ps(v, _mm256_permute_ps(v, 0x4E));
    }
    // The lanes of the rows of m; those where a equals b; the rows of some lanes as bits.
    static reg lanes(unsigned m) { return y8f::mask(pair_lanes(m & 15)); }
    static reg equal_rows(unsigned m, reg a, reg b) { return _mm256_and_ps(_mm256_cmp_ps(a, b, _CMP_EQ_OQ), lanes(m)); }
    static unsigned rows_of(reg lanes) { return _pext_u32(static_cast<unsigned>(_mm256_movemask_ps(lanes)), 0x55); }
    // Row k <-> the one row whose lanes pick holds, formed from the mask itself: the interchange
    // does not wait for the row number to go through a general register and back.
    static __m256i swap_index(int k, reg pick)
    {
        const __m256i iota = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7), row = _mm256_srli_epi32(iota, 1);
        __m256i at = _mm256_and_si256(_mm256_castps_si256(pick), iota); // 2p, 2p + 1 in row p's lanes
        at = _mm256_or_si256(at, _mm256_permute2x128_si256(at, at, 0x01));
        at = _mm256_or_si256(at, _mm256_shuffle_epi32(at, 0x4E)); // 2p, 2p + 1 in every pair
        const __m256i idx = _mm256_blendv_epi8(iota, at, _mm256_cmpeq_epi32(row, _mm256_set1_epi32(k)));
        const __m256i row_k = _mm256_add_epi32(_mm256_and_si256(iota, _mm256_set1_epi32(1)), _mm256_set1_epi32(2 * k));
        return _mm256_blendv_epi8(idx, row_k, _mm256_castps_si256(pick));
    }
    static reg re(reg v, int k) { return y8f::lane(v, 2 * k); }
    static reg im(reg v, int k) { return y8f::lane(v, 2 * k + 1); }
    static std::complex<float> element(reg v, int k) { return {_mm256_cvtss_f32(re(v, k)), _mm256_cvtss_f32(im(v, k))}; }
    static reg permute(__m256i idx, reg v) { return _mm256_permutevar8x32_ps(v, idx); }
    static reg negate_odd(reg v) { return _mm256_xor_ps(v, _mm256_setr_ps(0.0f, -0.0f, 0.0f, -0.0f, 0.0f, -0.0f, 0.0f, -0.0f)); }
    static reg negate_even(reg v) { return _mm256_xor_ps(v, _mm256_setr_ps(-0.0f, 0.0f, -0.0f, 0.0f, -0.0f, 0.0f, -0.0f, 0.0f)); }
    static reg mul(reg a, reg b) { return _mm256_mul_ps(a, b); }
    static reg div(reg a, reg b) { return _mm256_div_ps(a, b); }
    // x * s on the rows of m, s given as its parts in every lane.
    static reg mask_scale_by(reg x, unsigned m, reg s_re, reg s_im)
    {
        return masked(m, _mm256_fmaddsub_ps(x, s_re, _mm256_mul_ps(swap_pairs(x), s_im)), x);
    }
    static reg mask_scale(reg x, unsigned m, std::complex<float> s)
    {
        return mask_scale_by(x, m, _mm256_set1_ps(s.real()), _mm256_set1_ps(s.imag()));
    }
    // x - l*u for u given as (re in every lane, (im, -im) pairs), l's swapped copy at hand.
    static reg minus_product(reg x, reg l, reg ls, reg u_re, reg u_im_alt)
    {
        return _mm256_fmadd_ps(ls, u_im_alt, _mm256_fnmadd_ps(l, u_re, x));
    }
    static reg mask_minus_product(reg x, reg l, reg ls, reg u_re, reg u_im_alt, unsigned m)
    {
        return masked(m, minus_product(x, l, ls, u_re, u_im_alt), x);
    }
    static reg mask_div(reg v, unsigned m, reg s) { return masked(m, _mm256_div_ps(v, s), v); }
    static reg with_real(reg v, int k, float x) { return masked(1u << k, _mm256_setr_ps(x, 0.0f, x, 0.0f, x, 0.0f, x, 0.0f), v); }
    static reg unit(int j) { return y8f::unit(2 * j); }
};

// Up to eight single complex rows in two registers: rows 0-3 in lo, 4-7 in hi (the Cholesky and
// the inverse from 5 to 8).
struct y8c {
    struct reg {
        __m256 lo, hi;
    };
    using scalar = float;
    static reg both(__m256 x) { return {x, x}; }
    static reg load(unsigned m, const float *p) { return {y4c::load(m, p), y4c::load(m >> 4, p + 8)}; }
    static void store(unsigned m, float *p, reg v)
    {
        y4c::store(m, p, v.lo);
        y4c::store(m >> 4, p + 8, v.hi);
    }
    static reg abs(reg v) { return {y4c::abs(v.lo), y4c::abs(v.hi)}; }
    static reg swap_pairs(reg v) { return {y4c::swap_pairs(v.lo), y4c::swap_pairs(v.hi)}; }
    static reg pair_sum(reg v) { return {y4c::pair_sum(v.lo), y4c::pair_sum(v.hi)}; }
    static reg splat(float x) { return both(_mm256_set1_ps(x)); }
    static reg masked(unsigned m, reg v, reg fill) { return {y4c::masked(m, v.lo, fill.lo), y4c::masked(m >> 4, v.hi, fill.hi)}; }
    static reg re(reg v, int k) { return both(k < 4 ? y4c::re(v.lo, k) : y4c::re(v.hi, k - 4)); }
    static reg im(reg v, int k) { return both(k < 4 ? y4c::im(v.lo, k) : y4c::im(v.hi, k - 4)); }
    static std::complex<float> element(reg v, int k) { return k < 4 ? y4c::element(v.lo, k) : y4c::element(v.hi, k - 4); }
    static reg negate_odd(reg v) { return {y4c::negate_odd(v.lo), y4c::negate_odd(v.hi)}; }
    static reg negate_even(reg v) { return {y4c::negate_even(v.lo), y4c::negate_even(v.hi)}; }
    static reg mul(reg a, reg b) { return {_mm256_mul_ps(a.lo, b.lo), _mm256_mul_ps(a.hi, b.hi)}; }
    static reg div(reg a, reg b) { return {_mm256_div_ps(a.lo, b.lo), _mm256_div_ps(a.hi, b.hi)}; }
    static reg mask_scale_by(reg x, unsigned m, reg s_re, reg s_im)
    {
        return {y4c::mask_scale_by(x.lo, m & 15, s_re.lo, s_im.lo), y4c::mask_scale_by(x.hi, m >> 4, s_re.hi, s_im.hi)};
    }
    static reg mask_scale(reg x, unsigned m, std::complex<float> s)
    {
        return {y4c::mask_scale(x.lo, m & 15, s), y4c::mask_scale(x.hi, m >> 4, s)};
    }
    static reg minus_product(reg x, reg l, reg ls, reg u_re, reg u_im_alt)
    {
        return {y4c::minus_product(x.lo, l.lo, ls.lo, u_re.lo, u_im_alt.lo), y4c::minus_product(x.hi, l.hi, ls.hi, u_re.hi, u_im_alt.hi)};
    }
    static reg mask_minus_product(reg x, reg l, reg ls, reg u_re, reg u_im_alt, unsigned m)
    {
        return {y4c::mask_minus_product(x.lo, l.lo, ls.lo, u_re.lo, u_im_alt.lo, m & 15),
                y4c::mask_minus_product(x.hi, l.hi, ls.hi, u_re.hi, u_im_alt.hi, m >> 4)};
    }
    static reg mask_div(reg v, unsigned m, reg s) { return {y4c::mask_div(v.lo, m & 15, s.lo), y4c::mask_div(v.hi, m >> 4, s.hi)}; }
    static reg with_real(reg v, int k, float x)
    {
        return k < 4 ? reg{y4c::with_real(v.lo, k, x), v.hi} : reg{v.lo, y4c::with_real(v.hi, k - 4, x)};
    }
    static reg unit(int j) { return j < 4 ? reg{y4c::unit(j), _mm256_setzero_ps()} : reg{_mm256_setzero_ps(), y4c::unit(j - 4)}; }
};

// The single complex register kernels' vectors: one register to 4 rows, two above.
template <int N> using complex_float_vector = std::conditional_t<(N <= 4), y4c, y8c>;

// Real LU: the register kernels up to 8 (single precision computed in float, so pivots and
// statuses are float LAPACK's), rows kept in place to 16, the padded copies to 64, the loops above.
template <class T> void getrf_real(int64_t n, T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() {
            if constexpr (std::is_same_v<T, double>)
                getrf_d_registers<N>(a, lda, ipiv, info);
            else
                getrf_registers<N, y8f>(a, lda, ipiv, info);
        }))
        return;
    if (at_order_9_to_16(n, [&]<int N>() { getrf_fixed_rows<N>(a, lda, ipiv, info); }))
        return;
    if (n <= column_limit)
        return getrf_columns(n, a, lda, ipiv, info);
    getrf_loop(n, a, lda, ipiv, info);
}

// Single precision: the register kernels up to 8, the padded ones to 64, the loops above.

void potrf_lower_s(int64_t n, float *a, int64_t lda, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { potrf_lower_registers<N, y8f>(a, lda, info); }))
        return;
    if (n <= column_limit)
        return potrf_lower_columns(n, a, lda, info);
    potrf_lower_loop(n, a, lda, info);
}

void inverse_s(int64_t n, const float *a, int64_t lda, const int64_t *ipiv, float *inv, int64_t ldinv)
{
    if (at_fixed_order(n, [&]<int N>() { inverse_registers<N, y8f>(a, lda, ipiv, inv, ldinv); }))
        return;
    if (n <= column_limit)
        return inverse_columns(n, a, lda, ipiv, inv, ldinv);
    inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

constexpr small_kernels<float> float_table(int64_t getrf_limit, int64_t potrf_limit, int64_t inverse_limit)
{
    return {getrf_real<float>, potrf_lower_s, potrf_upper_loop<float>, getrs_loop<float>, inverse_s,
            getrf_limit, potrf_limit, inverse_limit};
}

// ---- complex double: a vector holds two (re, im) pairs ----

struct z2 {
    using zd = std::complex<double>;
    static __m256d swap(__m256d x) { return _mm256_permute_pd(x, 0x5); }
    // (-im, im) in each pair for a scalar im.
    static __m256d alternate(double im) { return _mm256_xor_pd(_mm256_set1_pd(im), _mm256_setr_pd(-0.0, 0.0, -0.0, 0.0)); }
    // x - l*u for u = (c, d), with l's swapped copy at hand.
    static __m256d minus_product(__m256d x, __m256d l, __m256d l_swapped, __m256d c, __m256d d_alt)
    {
        return _mm256_fnmadd_pd(l_swapped, d_alt, _mm256_fnmadd_pd(l, c, x));
    }
    // x * s for a scalar s.
    static __m256d scale(__m256d x, zd s)
    {
        return _mm256_fmadd_pd(swap(x), alternate(s.imag()), _mm256_mul_pd(x, _mm256_set1_pd(s.real())));
    }
    // Lanes of complex rows [first, last) of vector r.
    static __m256d rows(int64_t first, int64_t last, int64_t r)
    {
        return lanes_in(first, last, 2 * r, 2 * r, 2 * r + 1, 2 * r + 1);
    }
    // re^2 + im^2 of each pair, in both its lanes.
    static __m256d norm(__m256d x)
    {
        const __m256d squares = _mm256_mul_pd(x, x);
        return _mm256_add_pd(squares, swap(squares));
    }
    // 1/x for a pair x in both halves given its norm and conj(x)/norm: that quotient on the
    // common path, the scaled scalar reciprocal when the norm would overflow or underflow.
    static __m256d reciprocal(__m256d x, __m256d norm, __m256d quotient)
    {
        constexpr double low = quotient_range<double>::low, high = quotient_range<double>::high;
        const __m256d in_range = _mm256_and_pd(_mm256_cmp_pd(norm, _mm256_set1_pd(low), _CMP_GT_OQ),
                                               _mm256_cmp_pd(norm, _mm256_set1_pd(high), _CMP_LT_OQ));
        if (_mm256_movemask_pd(in_range) == 15) [[likely]]
            return quotient;
        const zd s = zel::dense::ZEL_SMALL_ISA::reciprocal(zd(_mm256_cvtsd_f64(x), _mm256_cvtsd_f64(swap(x))));
        return _mm256_setr_pd(s.real(), s.imag(), s.real(), s.imag());
    }
    static __m256i row_numbers(int r) { return _mm256_setr_epi64x(2 * r, 2 * r, 2 * r + 1, 2 * r + 1); }
    // x * s for a scalar s, the product written out as mul() forms it.
    static __m256d times(__m256d x, zd s) { return scale(x, s); }
    // Pair `half` (0 or 1) of v in both halves.
    static __m256d broadcast(__m256d v, int half)
    {
        return half == 0 ? _mm256_permute2f128_pd(v, v, 0x00) : _mm256_permute2f128_pd(v, v, 0x11);
    }
    // (-im, im) pairs from the imaginary part of a pair held in both halves.
    static __m256d odd_to_alternate(__m256d u)
    {
        return _mm256_xor_pd(_mm256_permute_pd(u, 0xF), _mm256_setr_pd(-0.0, 0.0, -0.0, 0.0));
    }
    // The one pair of the column (vectors from `from`) that pick selects, in both halves.
    template <int R> static __m256d picked(const __m256d *v, const __m256d *pick, int from)
    {
        __m256d s = _mm256_and_pd(v[from], pick[from]);
#pragma GCC unroll 4
        for (int r = from + 1; r < R; ++r)
            s = _mm256_or_pd(s, _mm256_and_pd(v[r], pick[r]));
        return _mm256_or_pd(s, _mm256_permute2f128_pd(s, s, 0x01));
    }
    // Rows [first, N) of an N-row column; the others read as zero. A vector holds two rows, so
    // a partial one is a half: plain 16-byte moves, not the slow masked ones.
    template <int N> static void load(const double *p, __m256d *v, int first = 0)
    {
        constexpr int R = (N + 1) / 2;
#pragma GCC unroll 4
        for (int r = 0; r < R; ++r) {
            const bool low = first <= 2 * r, high = first <= 2 * r + 1 && 2 * r + 1 < N;
            if (low && high)
                v[r] = _mm256_loadu_pd(p + 4 * r);
            else if (low)
                v[r] = _mm256_zextpd128_pd256(_mm_loadu_pd(p + 4 * r));
            else if (high)
                v[r] = _mm256_insertf128_pd(_mm256_setzero_pd(), _mm_loadu_pd(p + 4 * r + 2), 1);
            else
                v[r] = _mm256_setzero_pd();
        }
    }
    template <int N> static void store(double *p, const __m256d *v, int first)
    {
        constexpr int R = (N + 1) / 2;
#pragma GCC unroll 4
        for (int r = 0; r < R; ++r) {
            const bool low = first <= 2 * r, high = first <= 2 * r + 1 && 2 * r + 1 < N;
            if (low && high)
                _mm256_storeu_pd(p + 4 * r, v[r]);
            else if (low)
                _mm_storeu_pd(p + 4 * r, _mm256_castpd256_pd128(v[r]));
            else if (high)
                _mm_storeu_pd(p + 4 * r + 2, _mm256_extractf128_pd(v[r], 1));
        }
    }
};

// The pivot of step k of the complex LU: the first largest |re|+|im| among rows k..N-1 of
// column c (R vectors), or k when row k's size is NaN or none compares. pick gets the pivot's
// lanes, straight from the comparison when one row holds the largest, so the interchange never
// waits for the row number to go through a general register; inverse gets the pivot's
// reciprocal as formed for every row while the search runs (valid while its norm is in range).
template <int N, int R> [[gnu::always_inline]] inline int pivot_row_z(const __m256d *c, int k, __m256d *pick, __m256d *inverse)
{
    const int kr = k / 2;
    __m256d size[R], quotient[R], largest = _mm256_set1_pd(-1.0);
#pragma GCC unroll 4
    for (int r = kr; r < R; ++r) {
        quotient[r] = _mm256_xor_pd(_mm256_div_pd(c[r], z2::norm(c[r])), _mm256_setr_pd(0.0, -0.0, 0.0, -0.0));
        const __m256d m = y4::abs(c[r]);
        size[r] = _mm256_blendv_pd(_mm256_set1_pd(-1.0), _mm256_add_pd(m, z2::swap(m)), z2::rows(k, N, r));
        largest = _mm256_max_pd(size[r], largest); // a NaN size loses, as it never compares greater
    }
    largest = _mm256_max_pd(largest, _mm256_permute2f128_pd(largest, largest, 0x01));
    unsigned hits = 0;
#pragma GCC unroll 4
    for (int r = kr; r < R; ++r) {
        pick[r] = _mm256_and_pd(_mm256_cmp_pd(size[r], largest, _CMP_EQ_OQ), z2::rows(k, N, r));
        hits |= static_cast<unsigned>(_mm256_movemask_pd(pick[r])) << (4 * r);
    }
    const bool k_unordered = _mm256_movemask_pd(_mm256_cmp_pd(size[kr], size[kr], _CMP_UNORD_Q)) >> (2 * (k & 1)) & 1;
    const int p = hits != 0 && !k_unordered ? static_cast<int>(__builtin_ctz(hits)) / 2 : k;
    if (__builtin_popcount(hits) != 2 || k_unordered) [[unlikely]] // a tie, or no row compares (NaN)
#pragma GCC unroll 4
        for (int r = kr; r < R; ++r)
            pick[r] = _mm256_castsi256_pd(_mm256_cmpeq_epi64(z2::row_numbers(r), _mm256_set1_epi64x(p)));
    *inverse = z2::picked<R>(quotient, pick, kr);
    return p;
}

// Row k <-> the picked row in column c; returns the picked row's entry in both halves.
template <int R> [[gnu::always_inline]] inline __m256d interchange_z(__m256d *c, const __m256d *pick, int k)
{
    const int kr = k / 2;
    const __m256d u = z2::picked<R>(c, pick, kr), old_k = z2::broadcast(c[kr], k & 1);
#pragma GCC unroll 4
    for (int r = kr; r < R; ++r)
        c[r] = _mm256_blendv_pd(c[r], old_k, pick[r]);
    c[kr] = _mm256_blendv_pd(c[kr], u, z2::rows(k, k + 1, kr));
    return u;
}

// Rows k <-> ipiv[k] - 1 for k in [1, n) over the k columns finished before step k.
inline void swap_finished_rows_z(double *ad, int64_t lda, const int64_t *ipiv, int n)
{
    for (int k = 1; k < n; ++k) {
        const int64_t p = ipiv[k] - 1;
        if (p != k)
            for (int j = 0; j < k; ++j) {
                double *x = ad + 2 * (k + j * lda), *y = ad + 2 * (p + j * lda);
                const __m128d t = _mm_loadu_pd(x);
                _mm_storeu_pd(x, _mm_loadu_pd(y));
                _mm_storeu_pd(y, t);
            }
    }
}

// Complex double LU with partial pivoting of an N x N matrix (N <= 6), a column in R = (N+1)/2
// registers of two (re, im) pairs. Rows trade places in the registers at
// each step, so the pivot is the first largest |re|+|im| in the current order as LAPACK picks it;
// each column's interchange yields the pivot row's entry, the u its update needs. Above four rows
// a finished column is stored at once and takes its later interchanges in memory, so the registers
// keep only the columns still changing; up to four every column stays and takes them there, which
// is cheaper than the stores and the data-dependent branches of swaps in memory.
template <int N> void getrf_z_registers(std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    constexpr int R = (N + 1) / 2;
    constexpr bool early = N > 4;
    double *ad = reinterpret_cast<double *>(a);
    __m256d col[N][R];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        z2::load<N>(ad + 2 * j * lda, col[j]);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const int kr = k / 2;
        if (k == N - 1) { // the last row is its own pivot, with nothing below it to scale
            ipiv[k] = N;
            const __m256d pivot = z2::broadcast(col[k][kr], k & 1);
            if (_mm256_movemask_pd(_mm256_cmp_pd(pivot, _mm256_setzero_pd(), _CMP_NEQ_UQ)) == 0 && *info == 0)
                *info = N;
            if constexpr (early)
                z2::store<N>(ad + 2 * k * lda, col[k], 0);
            break;
        }
        __m256d pick[R], inverse, l[R], swapped[R];
        ipiv[k] = pivot_row_z<N, R>(col[k], k, pick, &inverse) + 1;
        const __m256d pivot = interchange_z<R>(col[k], pick, k);
        if (_mm256_movemask_pd(_mm256_cmp_pd(pivot, _mm256_setzero_pd(), _CMP_NEQ_UQ)) != 0) { // also for NaN
            const __m256d s = z2::reciprocal(pivot, z2::norm(pivot), inverse);
            const __m256d s_re = _mm256_movedup_pd(s), s_im_alt = z2::odd_to_alternate(s);
#pragma GCC unroll 4
            for (int r = kr; r < R; ++r) {
                l[r] = _mm256_and_pd(_mm256_fmadd_pd(z2::swap(col[k][r]), s_im_alt, _mm256_mul_pd(col[k][r], s_re)),
                                     z2::rows(k + 1, N, r));
                col[k][r] = _mm256_blendv_pd(col[k][r], l[r], z2::rows(k + 1, N, r));
            }
        } else {
            if (*info == 0)
                *info = k + 1;
#pragma GCC unroll 4
            for (int r = kr; r < R; ++r)
                l[r] = _mm256_and_pd(col[k][r], z2::rows(k + 1, N, r));
        }
        if constexpr (early) {
            z2::store<N>(ad + 2 * k * lda, col[k], 0);
        } else {
#pragma GCC unroll 4
            for (int j = 0; j < k; ++j)
                interchange_z<R>(col[j], pick, k);
        }
#pragma GCC unroll 4
        for (int r = kr; r < R; ++r)
            swapped[r] = z2::swap(l[r]);
        // Only rows below k change: a vector that also holds row k keeps it (a NaN or infinite
        // u times the zero multiplier must not reach the finished rows).
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) {
            const __m256d u = interchange_z<R>(col[j], pick, k);
            const __m256d re = _mm256_movedup_pd(u), im_alt = z2::odd_to_alternate(u);
            if ((k & 1) == 0)
                col[j][kr] = _mm256_blendv_pd(col[j][kr], z2::minus_product(col[j][kr], l[kr], swapped[kr], re, im_alt),
                                              z2::rows(k + 1, N, kr));
#pragma GCC unroll 4
            for (int r = kr + 1; r < R; ++r)
                col[j][r] = z2::minus_product(col[j][r], l[r], swapped[r], re, im_alt);
        }
    }
    if constexpr (early) {
        swap_finished_rows_z(ad, lda, ipiv, N);
    } else {
#pragma GCC unroll 4
        for (int j = 0; j < N; ++j)
            z2::store<N>(ad + 2 * j * lda, col[j], 0);
    }
}

// The complex inverse U^-1 * L^-1 * P^T of an N x N LU factor (N <= 8), as inverse_d_registers
// forms it but four columns of the result at a time (the columns are independent solves, and
// eight would not fit the registers); row k of each column takes 1/u_kk on its way into the
// U^-1 update.
template <int N>
void inverse_z_registers(const std::complex<double> *a, int64_t lda, const int64_t *ipiv, std::complex<double> *inv,
                         int64_t ldinv)
{
    constexpr int R = (N + 1) / 2;
    const double *ad = reinterpret_cast<const double *>(a);
    int at[N], to[N]; // at[c]: the column of the solve that ends in column c
    inverse_destinations(N, ipiv, at, to);
    std::complex<double> d[N];
    __m256d d_re[R], d_alt[R]; // 1/u_kk by rows, as (re, re) and (-im, im) pairs
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k)
        d[k] = reciprocal(a[k + k * lda]);
#pragma GCC unroll 4
    for (int r = 0; r < R; ++r) {
        const std::complex<double> second = 2 * r + 1 < N ? d[2 * r + 1] : 0.0;
        const __m256d pair = _mm256_setr_pd(d[2 * r].real(), d[2 * r].imag(), second.real(), second.imag());
        d_re[r] = _mm256_movedup_pd(pair);
        d_alt[r] = z2::odd_to_alternate(pair);
    }
#pragma GCC unroll 2
    for (int g = 0; g < N; g += 4) {
        const int end = std::min(N, g + 4);
        __m256d x[4][R];
#pragma GCC unroll 4
        for (int j = g; j < end; ++j)
#pragma GCC unroll 4
            for (int r = 0; r < R; ++r)
                x[j - g][r] = _mm256_and_pd(z2::rows(j, j + 1, r), _mm256_setr_pd(1.0, 0.0, 1.0, 0.0));
#pragma GCC unroll 8
        for (int k = g; k + 1 < N; ++k) { // L^-1: column j has zeros above row j
            const int kr = k / 2;
            __m256d l[R], ls[R];
            z2::load<N>(ad + 2 * k * lda, l, k + 1);
#pragma GCC unroll 4
            for (int r = kr; r < R; ++r)
                ls[r] = z2::swap(l[r]);
#pragma GCC unroll 4
            for (int j = g; j < end && j <= k; ++j) {
                const __m256d b = z2::broadcast(x[j - g][kr], k & 1);
                const __m256d re = _mm256_movedup_pd(b), im_alt = z2::odd_to_alternate(b);
#pragma GCC unroll 4
                for (int r = kr; r < R; ++r)
                    x[j - g][r] = z2::minus_product(x[j - g][r], l[r], ls[r], re, im_alt);
            }
        }
#pragma GCC unroll 8
        for (int k = N - 1; k > 0; --k) { // U^-1 with column k of U times 1/u_kk, off the columns' chain
            const int kr = k / 2;
            __m256d u[R], us[R];
            z2::load<N>(ad + 2 * k * lda, u);
#pragma GCC unroll 4
            for (int r = 0; r <= kr; ++r) {
                u[r] = z2::times(_mm256_and_pd(u[r], z2::rows(0, k, r)), d[k]);
                us[r] = z2::swap(u[r]);
            }
#pragma GCC unroll 4
            for (int j = g; j < end; ++j) {
                const __m256d b = z2::broadcast(x[j - g][kr], k & 1);
                const __m256d re = _mm256_movedup_pd(b), im_alt = z2::odd_to_alternate(b);
#pragma GCC unroll 4
                for (int r = 0; r <= kr; ++r)
                    x[j - g][r] = z2::minus_product(x[j - g][r], u[r], us[r], re, im_alt);
            }
        }
#pragma GCC unroll 4
        for (int j = g; j < end; ++j) // row k times 1/u_kk last
#pragma GCC unroll 4
            for (int r = 0; r < R; ++r)
                x[j - g][r] = _mm256_fmadd_pd(z2::swap(x[j - g][r]), d_alt[r], _mm256_mul_pd(x[j - g][r], d_re[r]));
#pragma GCC unroll 4
        for (int j = g; j < end; ++j)
            z2::store<N>(reinterpret_cast<double *>(inv + to[j] * ldinv), x[j - g], 0);
    }
}

// Complex Cholesky A = L*L^H for N <= 8, right-looking with a column in R registers; only the
// rows from the diagonal down are read and written. On a non-positive pivot only the finished
// columns and that pivot go back, as the unblocked LAPACK routine leaves them.
template <int N> void potrf_lower_z_registers(std::complex<double> *a, int64_t lda, int64_t *info)
{
    constexpr int R = (N + 1) / 2;
    double *ad = reinterpret_cast<double *>(a);
    __m256d col[N][R];
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        z2::load<N>(ad + 2 * j * lda, col[j], j);
#pragma GCC unroll 8
    for (int k = 0; k < N; ++k) {
        const int kr = k / 2;
        const __m256d dv = _mm256_movedup_pd(z2::broadcast(col[k][kr], k & 1));
        const double d = _mm256_cvtsd_f64(dv);
        if (!(d > 0.0)) {
            for (int j = 0; j < k; ++j)
                z2::store<N>(ad + 2 * j * lda, col[j], j);
            a[k + k * lda] = d;
            *info = k + 1;
            return;
        }
        // The update takes a_ik * conj(a_jk) / d for l_ik * conj(l_jk), so the next pivot waits
        // for one division and not a square root too; the column is scaled off that path.
        const __m256d inverse = _mm256_div_pd(_mm256_set1_pd(1.0), dv);
        __m256d scaled[R], swapped[R];
#pragma GCC unroll 4
        for (int r = kr; r < R; ++r) {
            scaled[r] = _mm256_mul_pd(col[k][r], inverse);
            swapped[r] = z2::swap(scaled[r]);
        }
#pragma GCC unroll 8
        for (int j = k + 1; j < N; ++j) {
            // u = conj(a_jk): re in every lane, and (-im_u, im_u) = (im_a, -im_a)
            const __m256d aj = z2::broadcast(col[k][j / 2], j & 1);
            const __m256d re = _mm256_movedup_pd(aj);
            const __m256d im_alt = _mm256_xor_pd(_mm256_permute_pd(aj, 0xF), _mm256_setr_pd(0.0, -0.0, 0.0, -0.0));
#pragma GCC unroll 4
            for (int r = j / 2; r < R; ++r)
                col[j][r] = z2::minus_product(col[j][r], scaled[r], swapped[r], re, im_alt);
        }
        const __m256d root = _mm256_sqrt_pd(dv);
        const __m256d diagonal = _mm256_blendv_pd(_mm256_setzero_pd(), root, _mm256_setr_pd(-0.0, 0.0, -0.0, 0.0));
#pragma GCC unroll 4
        for (int r = kr; r < R; ++r)
            col[k][r] = _mm256_div_pd(col[k][r], root);
        col[k][kr] = _mm256_blendv_pd(col[k][kr], diagonal, z2::rows(k, k + 1, kr));
    }
#pragma GCC unroll 8
    for (int j = 0; j < N; ++j)
        z2::store<N>(ad + 2 * j * lda, col[j], j);
}

// Whole vectors of complex rows for the padded-copy kernels: two (re, im) pairs of doubles or
// four of floats, over wide<R>'s lane operations.
template <class R> struct wide_complex : wide<R> {
    using W = wide<R>;
    using reg = typename W::reg;
    static constexpr int64_t rows_per = W::lanes / 2;
    static reg swap(reg x)
    {
        if constexpr (W::is_double) return _mm256_permute_pd(x, 0x5); else return _mm256_permute_ps(x, 0xB1);
    }
    // (-im, im) in each pair for a scalar im.
    static reg alternate(R im) { return W::flip(W::splat(im), W::keep(W::splat(R(-0.0)), W::from_bits(0x55))); } // broadcast, xor
    // x - l*u for u = (c, d), with l's swapped copy at hand.
    static reg minus_product(reg x, reg l, reg ls, reg c, reg d_alt) { return W::fnmadd(ls, d_alt, W::fnmadd(l, c, x)); }
    // Lanes of complex rows [first, last) of vector r.
    static reg rows(int64_t first, int64_t last, int64_t r)
    {
        const reg row = W::halves() + R(rows_per * r); // the row of each lane
        return reg((row >= R(first)) & (row < R(last)));
    }
    // Lanes of vector r that hold the complex row given in every lane of `at`.
    static reg row(reg at, int64_t r) { return reg(W::halves() + R(rows_per * r) == at); }
};

// x * s for a complex scalar s.
template <class R> typename wide_complex<R>::reg scale_complex(typename wide_complex<R>::reg x, std::complex<R> s)
{
    using W = wide_complex<R>;
    return W::fmadd(W::swap(x), W::alternate(s.imag()), W::mul(x, W::splat(s.real())));
}

// (re, re) and (-im, im) in every pair, from a complex value held in every pair of v.
template <class R> std::pair<typename wide<R>::reg, typename wide<R>::reg> parts(typename wide<R>::reg v)
{
    using W = wide<R>;
    const typename W::reg flip_even = W::keep(W::splat(R(-0.0)), W::from_bits(0x55));
    if constexpr (W::is_double)
        return {_mm256_movedup_pd(v), W::flip(_mm256_permute_pd(v, 0xF), flip_even)};
    else
        return {_mm256_moveldup_ps(v), W::flip(_mm256_movehdup_ps(v), flip_even)};
}

// target_j -= l * u_j on the complex rows of vectors [v, v + C) for the columns j in [from, to),
// u_j = target_j[k] (LU, the inverse) or conj(l_j) from column k itself (Cholesky).
template <int C, bool Cholesky, class R>
void update_strip_complex(const typename wide_complex<R>::reg *l, std::complex<R> *work, int64_t ld, int64_t k, int64_t v,
                          int64_t from, int64_t to, R u_scale)
{
    using W = wide_complex<R>;
    constexpr int64_t lanes = 2 * W::rows_per;
    typename W::reg ls[C];
#pragma GCC unroll 4
    for (int c = 0; c < C; ++c)
        ls[c] = W::swap(l[c]);
    // Cholesky: the columns j in [j0, j1) on vectors [c0, C) of the strip.
    auto columns = [&]<int c0>(int64_t j0, int64_t j1) {
        for (int64_t j = j0; j < j1; ++j) {
            R *target = reinterpret_cast<R *>(work + j * ld) + lanes * v;
            const std::complex<R> u = std::conj(work[k * ld + j]) * u_scale;
            const auto c_re = W::splat(u.real()), d_alt = W::alternate(u.imag());
#pragma GCC unroll 4
            for (int c = c0; c < C; ++c)
                W::store(target + lanes * c, W::minus_product(W::load(target + lanes * c), l[c], ls[c], c_re, d_alt));
        }
    };
    if constexpr (Cholesky) { // only the vectors that hold rows from j down: one fewer past each vector's end
        [&]<int... c0>(std::integer_sequence<int, c0...>) {
            (columns.template operator()<c0>(c0 == 0 ? from : std::max(from, W::rows_per * (v + c0)),
                                             std::min(to, W::rows_per * (v + c0 + 1))),
             ...);
        }(std::make_integer_sequence<int, C>());
    } else {
        for (int64_t j = from; j < to; ++j) {
            R *target = reinterpret_cast<R *>(work + j * ld) + lanes * v;
            const std::complex<R> u = work[j * ld + k];
            const auto c_re = W::splat(u.real()), d_alt = W::alternate(u.imag());
#pragma GCC unroll 4
            for (int c = 0; c < C; ++c)
                W::store(target + lanes * c, W::minus_product(W::load(target + lanes * c), l[c], ls[c], c_re, d_alt));
        }
    }
}

template <bool Cholesky, class R, class LoadL>
void update_rows_complex(std::complex<R> *work, int64_t ld, int64_t k, int64_t v0, int64_t v1, int64_t from, int64_t to,
                         LoadL load_l, R u_scale = R(1))
{
    using W = wide_complex<R>;
    for (int64_t v = v0; v < v1; v += 4) {
        const int64_t count = std::min<int64_t>(4, v1 - v);
        const int64_t last = Cholesky ? std::min<int64_t>(to, W::rows_per * (v + count)) : to; // Cholesky: rows from j down
        typename W::reg l[4];
        for (int c = 0; c < 4; ++c)
            l[c] = c < count ? load_l(v + c) : W::zero();
        switch (count) {
        case 1: update_strip_complex<1, Cholesky>(l, work, ld, k, v, from, last, u_scale); break;
        case 2: update_strip_complex<2, Cholesky>(l, work, ld, k, v, from, last, u_scale); break;
        case 3: update_strip_complex<3, Cholesky>(l, work, ld, k, v, from, last, u_scale); break;
        default: update_strip_complex<4, Cholesky>(l, work, ld, k, v, from, last, u_scale); break;
        }
    }
}

constexpr int64_t complex_limit = 32;

// The leading dimension of a padded complex copy: whole vectors.
template <class R> constexpr int64_t padded_complex(int64_t n)
{
    return (n + wide_complex<R>::rows_per - 1) & ~(wide_complex<R>::rows_per - 1);
}

// The multipliers of column k below row k from a padded column's vector v (first: the one that
// holds row k + 1).
template <class R> auto below_loader(const R *cd, int64_t k)
{
    using W = wide_complex<R>;
    const int64_t first = (k + 1) / W::rows_per;
    const auto below = W::rows(k + 1, (first + 1) * W::rows_per, first);
    return [cd, first, below](int64_t v) {
        const auto l = W::load(cd + 2 * W::rows_per * v);
        return v == first ? W::keep(l, below) : l;
    };
}

// Swaps two complex entries in one move each, not two: row interchanges measured faster so from 17
// on (complex double up to 16 measured slower so, at 12 by 15%). Whole aligned vectors of two rows
// each (a vperm2f128 per vector, chosen by a switch or by blends) measured slower still, even for
// the pivot's column and the next alone, whose vector loads follow at once: 827 -> 873-894 ns at 16.
inline void exchange_entry(std::complex<double> *x, std::complex<double> *y)
{
    double *xd = reinterpret_cast<double *>(x), *yd = reinterpret_cast<double *>(y);
    const __m128d t = _mm_load_pd(xd);
    _mm_store_pd(xd, _mm_load_pd(yd));
    _mm_store_pd(yd, t);
}
// Through memcpy: _mm_load_sd reads a plain double, which the optimiser may move past the
// complex<float> stores around it (wrong factors from 17 up in optimised builds).
inline void exchange_entry(std::complex<float> *x, std::complex<float> *y)
{
    uint64_t t, u;
    std::memcpy(&t, x, sizeof t);
    std::memcpy(&u, y, sizeof u);
    std::memcpy(static_cast<void *>(x), &u, sizeof u);
    std::memcpy(static_cast<void *>(y), &t, sizeof t);
}

// The first row of largest |re|+|im| in rows [k, n) of a column; k when none compares greater (NaN).
template <class R> [[gnu::always_inline]] inline int64_t first_largest_complex(const std::complex<R> *col, int64_t k, int64_t n)
{
    int64_t p = k;
    R best = std::abs(col[k].real()) + std::abs(col[k].imag());
    for (int64_t i = k + 1; i < n; ++i) {
        const R size = std::abs(col[i].real()) + std::abs(col[i].imag());
        if (size > best)
            best = size, p = i;
    }
    return p;
}

// Column k of a complex LU on a padded copy: the pivot is the first largest |re|+|im| in rows
// [k, n), whole rows swapped, the status names the first zero pivot, the column scaled by the
// pivot's reciprocal as LAPACK does; then columns (k, to) less its product. Inlined into each
// kernel: called out of line the kernels measured slower from 9 to 16.
template <bool WholeEntries, class R>
[[gnu::always_inline]] inline void lu_column(std::complex<R> *work, int64_t ld, int64_t n, int64_t k, int64_t to, int64_t *ipiv,
                                             int64_t *info)
{
    using W = wide_complex<R>;
    using T = std::complex<R>;
    constexpr int64_t lanes = 2 * W::rows_per;
    T *col = work + k * ld;
    const int64_t p = first_largest_complex(col, k, n);
    ipiv[k] = p + 1;
    if (p != k) {
        for (int64_t j = 0; j < n; ++j) {
            if constexpr (WholeEntries)
                exchange_entry(work + k + j * ld, work + p + j * ld);
            else
                std::swap(work[k + j * ld], work[p + j * ld]);
        }
    }
    const T pivot = col[k];
    if (pivot == R(0) && *info == 0)
        *info = k + 1;
    const T r = pivot != R(0) ? reciprocal(pivot) : T(1);
    const int64_t first = (k + 1) / W::rows_per, vectors = padded_complex<R>(n) / W::rows_per;
    const auto below = W::rows(k + 1, ld, first);
    R *cd = reinterpret_cast<R *>(col);
    for (int64_t v = first; v < vectors; ++v) {
        const auto c = W::load(cd + lanes * v);
        W::store(cd + lanes * v, v == first ? W::blend(c, scale_complex(c, r), below) : scale_complex(c, r));
    }
    update_rows_complex<false>(work, ld, k, first, vectors, k + 1, to, below_loader(cd, k));
}

// The complex double entry at x in both pairs of a vector.
inline __m256d entry_in_every_pair(const std::complex<double> *x)
{
    return _mm256_broadcast_pd(reinterpret_cast<const __m128d *>(x));
}

// Rows k and p (the pivot's) of a column as a step finds them, each in every pair of a vector,
// and p's entry as (re, re) and (-im, im) pairs for the update.
struct step_rows {
    __m256d row_k, row_p, re, alt;
};
inline step_rows rows_before_interchange(const std::complex<double> *column, int64_t k, int64_t p)
{
    const __m256d row_p = entry_in_every_pair(column + p);
    const auto [re, alt] = parts<double>(row_p);
    return {entry_in_every_pair(column + k), row_p, re, alt};
}

// Column k of a complex double LU on a padded copy, as lu_column, with the interchange of rows k
// and p folded into the scaling of column k and the update of column k + 1: both take the two
// rows as they were and blend them into the vectors they rewrite. Swapped in memory there, the
// rows are stored at an address the search has only just chosen and read back in whole vectors
// at once, and each step waits on that: 806 ns at 16 swapped, 663 folded (the other columns
// still swap their entries, out of the next step's way). For orders known at compile time, 13 to
// 16: with n a variable the steps' overhead outweighs it (24: 1922 ns against 1794 swapped).
template <class Order>
[[gnu::always_inline]] inline void lu_column_folded(std::complex<double> *work, int64_t ld, Order n, int64_t k, int64_t *ipiv,
                                                    int64_t *info)
{
    using W = wide_complex<double>;
    using T = std::complex<double>;
    T *col = work + k * ld, *next = col + ld;
    const int64_t p = first_largest_complex(col, k, n);
    ipiv[k] = p + 1;
    const step_rows pivot_rows = rows_before_interchange(col, k, p);
    const step_rows next_rows = k + 1 < n ? rows_before_interchange(next, k, p) : pivot_rows;
    T *row_k = work + k, *row_p = work + p;
    for (int64_t j = 0; j < n; ++j, row_k += ld, row_p += ld)
        if (j < k || j > k + 1)
            exchange_entry(row_k, row_p);
    if (k % 2) { // row k lies in a vector the step leaves alone
        _mm_store_pd(reinterpret_cast<double *>(col + k), _mm256_castpd256_pd128(pivot_rows.row_p));
        if (k + 1 < n)
            _mm_store_pd(reinterpret_cast<double *>(next + k), _mm256_castpd256_pd128(next_rows.row_p));
    }
    const T pivot(pivot_rows.row_p[0], pivot_rows.row_p[1]);
    if (pivot == 0.0 && *info == 0)
        *info = k + 1;
    const T r = pivot != 0.0 ? reciprocal(pivot) : T(1);
    const int64_t first = (k + 1) / W::rows_per, vectors = padded_complex<double>(n) / W::rows_per;
    const auto at_p = W::splat(double(p)), row_k_lanes = W::row(W::splat(double(k)), first); // none for odd k
    double *cd = reinterpret_cast<double *>(col), *nd = reinterpret_cast<double *>(next);
    for (int64_t v = first; v < vectors; ++v) {
        const auto scaled = scale_complex(W::blend(W::load(cd + 4 * v), pivot_rows.row_k, W::row(at_p, v)), r);
        W::store(cd + 4 * v, v == first ? W::blend(scaled, pivot_rows.row_p, row_k_lanes) : scaled);
    }
    for (int64_t v = first; k + 1 < n && v < vectors; ++v) {
        const auto l = v == first ? W::drop(W::load(cd + 4 * v), row_k_lanes) : W::load(cd + 4 * v);
        auto x = W::blend(W::load(nd + 4 * v), next_rows.row_k, W::row(at_p, v));
        if (v == first)
            x = W::blend(x, next_rows.row_p, row_k_lanes);
        W::store(nd + 4 * v, W::minus_product(x, l, W::swap(l), next_rows.re, next_rows.alt));
    }
    // through a loader of its own type for each order, so that each order inlines its own update
    // (one shared update went out of line: 695 ns at 16 against 663)
    update_rows_complex<false>(work, ld, k, first, vectors, k + 2, n, [below = below_loader(cd, k)](int64_t v) { return below(v); });
}

// Complex LU with partial pivoting for n <= complex_limit on a padded copy; n a
// std::integral_constant for the complex double orders (13 to 16) whose steps fold their
// interchanges.
template <class R, class Order> void getrf_complex_columns(Order n, std::complex<R> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using T = std::complex<R>;
    const int64_t ld = padded_complex<R>(n);
    alignas(32) R storage[2 * complex_limit * complex_limit]; // raw: complex arrays would be zeroed
    T *work = reinterpret_cast<T *>(storage);
    copy_padded(n, a, lda, work, ld);
    if constexpr (std::is_same_v<R, double> && !std::is_integral_v<Order>)
        for (int64_t k = 0; k < n; ++k)
            lu_column_folded(work, ld, n, k, ipiv, info);
    else if (std::is_same_v<R, double> && n < 16)
        for (int64_t k = 0; k < n; ++k)
            lu_column<false>(work, ld, n, k, n, ipiv, info);
    else
        for (int64_t k = 0; k < n; ++k)
            lu_column<true>(work, ld, n, k, n, ipiv, info);
    for (int64_t j = 0; j < n; ++j)
        copy_entries(work + j * ld, n, a + j * lda);
}

// The complex entries at first and second to to and to + 1, in one store.
inline void copy_two_entries(const std::complex<double> *first, const std::complex<double> *second, std::complex<double> *to)
{
    _mm256_storeu_pd(reinterpret_cast<double *>(to),
                     _mm256_loadu2_m128d(reinterpret_cast<const double *>(second), reinterpret_cast<const double *>(first)));
}
inline void copy_two_entries(const std::complex<float> *first, const std::complex<float> *second, std::complex<float> *to)
{
    const __m128 low = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(first))); // may-alias loads
    _mm_storeu_ps(reinterpret_cast<float *>(to), _mm_loadh_pi(low, reinterpret_cast<const __m64 *>(second)));
}

// Whether every part of the count values at x (whole aligned vectors) is finite and below
// 2^(max exponent - 2N): an LU of order N with |re|+|im| pivoting grows its entries by less than 4
// a step, so no u can then overflow, and x - 0*u leaves the finished rows of a kernel that keeps
// its rows in place as they are (0*inf would make them NaN, where LAPACK leaves them).
// The bound is a power of two: |x| is below it exactly when the high word of |x| is below the
// bound's, and inf and NaN have larger high words, so one unsigned maximum a vector does.
inline __m256i with_largest_bits(__m256i largest, __m256d x)
{
    return _mm256_max_epu32(largest, _mm256_and_si256(_mm256_castpd_si256(x), _mm256_set1_epi64x(INT64_MAX)));
}
template <int N> bool below_growth_bound(__m256i largest)
{
    constexpr int32_t bound_high = (1023 + 1024 - 2 * N) << 20; // the biased exponent of 2^(1024 - 2N)
    // low words never compare greater than INT32_MAX (signed); high words are at most INT32_MAX
    const __m256i limit = _mm256_set1_epi64x(int64_t(bound_high - 1) << 32 | INT32_MAX);
    return _mm256_testz_si256(_mm256_cmpgt_epi32(largest, limit), _mm256_cmpgt_epi32(largest, limit));
}
template <int N> bool growth_stays_finite(const double *x, int64_t count)
{
    __m256i largest = _mm256_setzero_si256();
#pragma GCC unroll 4
    for (int64_t i = 0; i < count; i += 4)
        largest = with_largest_bits(largest, _mm256_load_pd(x + i));
    return below_growth_bound<N>(largest);
}

#ifdef __AVX512VL__ // built again for AVX-512 (small_avx2_on_avx512.cpp)
constexpr int vector_registers = 32;
#else
constexpr int vector_registers = 16;
#endif

// The open row of largest size, found as all_max<group> finds the size (group lanes a row),
// carrying C values of the row along (its reciprocal, say): the pivot's values are at hand once
// the search ends, with no second pass over the column. A lane keeps its own row on a tie, so the
// carried values agree in every lane only when one row holds the largest (the caller checks).
template <class R, int group, int C> struct largest_row {
    using W = wide<R>;
    using reg = typename W::reg;
    reg size;
    reg with[C];
    void take(const largest_row &other)
    {
        const reg larger = reg(other.size > size);
        size = W::max(size, other.size);
        for (int c = 0; c < C; ++c)
            with[c] = W::blend(with[c], other.with[c], larger);
    }
    void take_across()
    {
        W::template exchanges<group>([this](auto permute) {
            largest_row other{permute(size), {}};
            for (int c = 0; c < C; ++c)
                other.with[c] = permute(with[c]);
            take(other);
        });
    }
};

// Complex LU with partial pivoting of order N, 4 < N <= 16, on an aligned copy, with the rows
// kept in place as getrf_fixed_rows keeps them: the pivot is the first largest |re|+|im| in the
// interchanged order, its reciprocal conj(x)/|x|^2 formed for every row while the search runs
// (the scaled scalar one where |x|^2 leaves the range), and each pivot's row goes out to its
// place in a as soon as it is chosen.
// Complex double where the planar kernel does not pay (planar_lu_pays), and never from 13: there
// the updates of rows that stay in place cost more than the padded kernel's steps with their
// interchanges folded in (lu_column_folded: 483 ns against 536 at 13, 663 against 821 at 16, in
// the batch benchmark).
template <int N, class R> [[gnu::noinline]] void getrf_complex_fixed_rows(std::complex<R> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using W = wide<R>;
    using Z = wide_complex<R>;
    using reg = typename W::reg;
    constexpr int P = Z::rows_per, V = (N + P - 1) / P, ld = V * P, L = W::lanes;
    alignas(32) R storage[2 * ld * N]; // raw: complex arrays would be zeroed
    std::complex<R> *work = reinterpret_cast<std::complex<R> *>(storage);
    copy_padded(N, a, lda, work, ld);
    // The padded kernel updates only the rows below the pivot in double precision (two rows a
    // vector); single precision's vectors also hold finished rows there, so it would not help.
    if constexpr (W::is_double)
        if (!growth_stays_finite<N>(storage, 2 * ld * N)) [[unlikely]]
            return getrf_complex_columns(N, a, lda, ipiv, info);
    reg open[V], c[V];
    row_order rows{0xFEDCBA9876543210, 0xFEDCBA9876543210};
#pragma GCC unroll 8
    for (int v = 0; v < V; ++v) {
        open[v] = Z::rows(0, N, v);
        c[v] = W::load(storage + L * v);
    }
    const reg odd_sign = W::drop(W::splat(R(-0.0)), W::from_bits(0x55));
    // A pivot's row is final once it is chosen (later steps leave it as it is), so it goes out as
    // row `position` of the factors then, while the steps run, not in a pass after them; two
    // positions a store (an even one waits for the next).
    int waiting = -1;
    auto put_row = [&](int position, int row) {
        if (position % 2 == 0 && position + 1 < N) {
            waiting = row;
            return;
        }
#pragma GCC unroll 16
        for (int j = 0; j < N; ++j) {
            std::complex<R> *to = a + position + j * lda;
            if (position % 2)
                copy_two_entries(work + waiting + j * ld, work + row + j * ld, to - 1);
            else
                copy_entries(work + row + j * ld, 1, to);
        }
    };
    auto conj_over_norm = [odd_sign](reg x) { // conj(x) / |x|^2 in each pair
        const reg squares = W::mul(x, x);
        return W::flip(W::div(x, squares + Z::swap(squares)), odd_sign);
    };
    for (int k = 0; k < N; ++k) {
        if (k == N - 1) { // the one open row is the last pivot, with nothing below it to scale
            ipiv[k] = N;
            const reg pivot = picked<V, W, 2>(c, open);
            if (pivot[0] == R(0) && pivot[1] == R(0) && *info == 0)
                *info = N;
#pragma GCC unroll 8
            for (int v = 0; v < V; ++v)
                W::store(storage + 2 * k * ld + L * v, c[v]);
            put_row(k, rows.at(k));
            break;
        }
        const R *next = storage + 2 * (k + 1) * ld;
        reg size[V], pick[V], l[V], ls[V];
        constexpr int inverse_at = 0, u_at = 1; // what best carries
        largest_row<R, 2, 2> best;
        uint64_t unordered = 0;
#pragma GCC unroll 8
        for (int v = 0; v < V; ++v) {
            const reg m = W::abs(c[v]);
            size[v] = W::keep(m + Z::swap(m), open[v]);
            unordered |= W::bits(reg(size[v] != size[v]));
            const largest_row<R, 2, 2> row{size[v], {conj_over_norm(c[v]), W::load(next + L * v)}};
            v == 0 ? void(best = row) : best.take(row);
        }
        best.take_across();
        uint64_t hits = 0;
#pragma GCC unroll 8
        for (int v = 0; v < V; ++v) {
            pick[v] = W::keep(W::equal_mask(size[v], best.size), open[v]);
            hits |= uint64_t(W::bits(pick[v])) << (L * v);
        }
        int p = __builtin_ctzll(hits | uint64_t(1) << 63) / 2;
        const bool tie = __builtin_popcountll(hits) != 2 || unordered;
        if (tie) [[unlikely]] { // a tie, or NaN: first in the interchanged order
            p = rows.first_hit(hits, k, N, 2);
#pragma GCC unroll 8
            for (int v = 0; v < V; ++v)
                pick[v] = Z::rows(p, p + 1, v);
            best.with[u_at] = picked<V, W, 2>(next, pick);
        }
        ipiv[k] = rows.interchange(k, p) + 1;
        const reg pivot = picked<V, W, 2>(c, pick);
        const std::complex<R> x(pivot[0], pivot[1]);
        const R norm = x.real() * x.real() + x.imag() * x.imag();
        constexpr R low = quotient_range<R>::low, high = quotient_range<R>::high;
        reg inverse = best.with[inverse_at];
        if (tie) [[unlikely]]
            inverse = conj_over_norm(pivot);
        if (!(norm > low && norm < high)) [[unlikely]] {
            const std::complex<R> s = x != R(0) ? reciprocal(x) : std::complex<R>(1);
            inverse = W::keep(W::splat(s.real()), W::from_bits(0x55)) + W::drop(W::splat(s.imag()), W::from_bits(0x55));
            if (x == R(0) && *info == 0)
                *info = k + 1;
        }
        const auto [s_re, s_alt] = parts<R>(inverse);
        R *col = storage + 2 * k * ld;
#pragma GCC unroll 8
        for (int v = 0; v < V; ++v) {
            open[v] = W::drop(open[v], pick[v]);
            l[v] = W::keep(Z::fmadd(Z::swap(c[v]), s_alt, W::mul(c[v], s_re)), open[v]);
            ls[v] = Z::swap(l[v]);
            W::store(col + L * v, W::blend(c[v], l[v], open[v]));
        }
        put_row(k, p);
        const auto [u_re, u_alt] = parts<R>(best.with[u_at]);
#pragma GCC unroll 8
        for (int v = 0; v < V; ++v)
            c[v] = Z::minus_product(W::load(next + L * v), l[v], ls[v], u_re, u_alt);
        for (int j = k + 2; j < N; ++j) {
            R *target = storage + 2 * j * ld;
            const reg re = W::splat(target[2 * p]), alt = Z::alternate(target[2 * p + 1]);
#pragma GCC unroll 8
            for (int v = 0; v < V; ++v)
                W::store(target + L * v, Z::minus_product(W::load(target + L * v), l[v], ls[v], re, alt));
        }
    }
}

// Rows [4h, 4h + 4) of a complex double column, h < H, split into the real and the imaginary
// parts of each four (lanes 0 2 1 3: what the unpacks give); rows from N on are zero.
template <int N, int H> void split_column(const std::complex<double> *column, double (*to)[2][4], __m256i &largest)
{
    const double *x = reinterpret_cast<const double *>(column);
#pragma GCC unroll 4
    for (int h = 0; h < H; ++h) {
        __m256d first, second;
        if (4 * h + 4 <= N) {
            first = _mm256_loadu_pd(x + 8 * h);
            second = _mm256_loadu_pd(x + 8 * h + 4);
        } else { // 2(N - 4h) parts are left
            first = _mm256_maskload_pd(x + 8 * h, _mm256_castpd_si256(wide<double>::rows(0, 2 * (N - 4 * h))));
            second = _mm256_maskload_pd(x + 8 * h + 4, _mm256_castpd_si256(wide<double>::rows(0, 2 * (N - 4 * h) - 4)));
        }
        largest = with_largest_bits(with_largest_bits(largest, first), second);
        _mm256_store_pd(to[h][0], _mm256_unpacklo_pd(first, second));
        _mm256_store_pd(to[h][1], _mm256_unpackhi_pd(first, second));
    }
}

// x - l*u on the planar parts of four rows, for the complex scalar u given in every lane.
inline void minus_product_planar(__m256d &x_re, __m256d &x_im, __m256d l_re, __m256d l_im, __m256d u_re, __m256d u_im)
{
    x_re = _mm256_fmadd_pd(l_im, u_im, _mm256_fnmadd_pd(l_re, u_re, x_re));
    x_im = _mm256_fnmadd_pd(l_im, u_re, _mm256_fnmadd_pd(l_re, u_im, x_im));
}

// The row in `lane` of the planar parts out to row[j * lda] as complex entries, j < N.
template <int N, int H> void put_planar_row(const double (*part)[H][2][4], int lane, std::complex<double> *row, int64_t lda)
{
#pragma GCC unroll 16
    for (int j = 0; j < N; ++j)
        _mm_storeu_pd(reinterpret_cast<double *>(row + j * lda),
                      _mm_loadh_pd(_mm_load_sd(&part[j][lane / 4][0][lane % 4]), &part[j][lane / 4][1][lane % 4]));
}

// Columns k + 1.. of the planar parts less l times the pivot row's entries (the row in lane p);
// column k + 1, the next step's, into re and im rather than back to memory.
template <int N, int H>
void planar_update(double (*part)[H][2][4], int k, int p, const __m256d *l_re, const __m256d *l_im, __m256d *re, __m256d *im)
{
    const auto row_entry = [&](int j, int in) { return _mm256_broadcast_sd(&part[j][p / 4][in][p % 4]); };
    const __m256d u_re = row_entry(k + 1, 0), u_im = row_entry(k + 1, 1);
#pragma GCC unroll 4
    for (int h = 0; h < H; ++h) {
        re[h] = _mm256_load_pd(part[k + 1][h][0]);
        im[h] = _mm256_load_pd(part[k + 1][h][1]);
        minus_product_planar(re[h], im[h], l_re[h], l_im[h], u_re, u_im);
    }
    for (int j = k + 2; j < N; ++j) {
        const __m256d uj_re = row_entry(j, 0), uj_im = row_entry(j, 1);
#pragma GCC unroll 4
        for (int h = 0; h < H; ++h) {
            __m256d x_re = _mm256_load_pd(part[j][h][0]), x_im = _mm256_load_pd(part[j][h][1]);
            minus_product_planar(x_re, x_im, l_re[h], l_im[h], uj_re, uj_im);
            _mm256_store_pd(part[j][h][0], x_re);
            _mm256_store_pd(part[j][h][1], x_im);
        }
    }
}

// The pivot of a step of the planar LU: the first largest |re|+|im| among the open rows in the
// interchanged order, its lane, that lane as a mask, and x/|x|^2 in every lane (the conjugate of
// 1/x), formed for every row while the search runs; the scaled scalar 1/x where |x|^2 leaves the
// range, 1 where x is zero (singular).
template <int N> struct planar_pivot {
    static constexpr int H = (N + 3) / 4;
    using W = wide<double>;
    using reg = W::reg;
    int lane;
    bool singular = false;
    reg pick[H], scale_re, scale_im;

    planar_pivot(const reg *re, const reg *im, const reg *open, row_order rows, int k)
    {
        reg size[H];
        largest_row<double, 1, 2> best;
        uint64_t unordered = 0, hits = 0;
#pragma GCC unroll 4
        for (int h = 0; h < H; ++h) {
            size[h] = W::keep(W::abs(re[h]) + W::abs(im[h]), open[h]);
            unordered |= W::bits(reg(size[h] != size[h]));
            const reg inverse_norm = W::div(W::splat(1.0), W::fmadd(im[h], im[h], W::mul(re[h], re[h])));
            const largest_row<double, 1, 2> row{size[h], {W::mul(re[h], inverse_norm), W::mul(im[h], inverse_norm)}};
            h == 0 ? void(best = row) : best.take(row);
        }
        best.take_across();
#pragma GCC unroll 4
        for (int h = 0; h < H; ++h) {
            pick[h] = W::keep(W::equal_mask(size[h], best.size), open[h]);
            hits |= uint64_t(W::bits(pick[h])) << (4 * h);
        }
        lane = __builtin_ctzll(hits | uint64_t(1) << 63);
        scale_re = best.with[0];
        scale_im = best.with[1];
        const bool tie = __builtin_popcountll(hits) != 1 || unordered;
        const double largest = best.size[0];
        constexpr double low = quotient_range<double>::low, high = quotient_range<double>::high;
        // |x|^2 lies between size^2 / 2 and size^2
        if (tie || !(largest * largest > 2 * low && largest * largest < high)) [[unlikely]]
            settle(re, im, rows, k, tie ? hits : 0);
    }
    // A tie, NaN or a pivot out of the quotient's range: the first hit in the interchanged order
    // (the row at position k if none), its reciprocal from the scalar.
    void settle(const reg *re, const reg *im, row_order rows, int k, uint64_t ties)
    {
        if (ties || lane == 63) {
            lane = rows.first_hit(ties, k, N);
#pragma GCC unroll 4
            for (int h = 0; h < H; ++h)
                pick[h] = W::rows(lane - 4 * h, lane - 4 * h + 1);
        }
        const std::complex<double> x(re[lane / 4][lane % 4], im[lane / 4][lane % 4]);
        singular = x == 0.0;
        const std::complex<double> s = singular ? 1.0 : reciprocal(x);
        scale_re = W::splat(s.real());
        scale_im = W::splat(-s.imag());
    }
};

// Complex double LU with partial pivoting of order N, 6 < N <= 12, the rows kept in place on a
// planar copy: each vector holds the real (or imaginary) parts of four rows. No part has to be
// swapped within a vector, and the search covers half the vectors of the interleaved kernel
// (getrf_complex_fixed_rows). The unpacks that split a column give the rows of a vector in the
// lane order 0 2 1 3; the rows are named by their lanes throughout (row_order starts from that
// order), which LAPACK's choice among equal rows never sees.
// Where it pays, one call at a time lowered to AVX2 (AVX-512's second build), ns, interleaved ->
// planar: 7 143 -> 122 (134 -> 127), 8 168 -> 161 (158 -> 163: not taken), 11 354 -> 335
// (324 -> 302), 12 414 -> 387 (375 -> 359). At 9 and 10 the last vector holds one or two rows
// and the planar kernel measured slower: 235 -> 262 and 273 -> 290.
template <int N> constexpr bool planar_lu_pays = N <= 12 && (N % 4 == 0 || N % 4 == 3) && !(N == 8 && vector_registers == 32);

template <int N> [[gnu::noinline]] void getrf_complex_planar(std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    using W = wide<double>;
    using reg = W::reg;
    constexpr int H = (N + 3) / 4;
    constexpr uint64_t lanes_of_rows = 0xFDECB9A875643120; // position i's lane at the start
    alignas(32) double part[N][H][2][4];                   // column, vector, real or imaginary, lane
    __m256i largest = _mm256_setzero_si256(); // of the parts' bits, for the growth bound
    for (int j = 0; j < N; ++j)
        split_column<N, H>(a + j * lda, part[j], largest);
    if (!below_growth_bound<N>(largest)) [[unlikely]]
        return getrf_complex_columns(N, a, lda, ipiv, info);
    reg re[H], im[H], open[H];
#pragma GCC unroll 4
    for (int h = 0; h < H; ++h) {
        open[h] = reg(_mm256_setr_pd(0, 2, 1, 3) + double(4 * h) < double(N));
        re[h] = W::load(part[0][h][0]);
        im[h] = W::load(part[0][h][1]);
    }
    row_order rows{lanes_of_rows, lanes_of_rows};
    *info = 0;
    for (int k = 0; k < N - 1; ++k) {
        const planar_pivot<N> pivot(re, im, open, rows, k);
        const int p = pivot.lane;
        ipiv[k] = rows.interchange(k, p) + 1;
        if (pivot.singular && *info == 0)
            *info = k + 1;
        reg l_re[H], l_im[H]; // the open rows of column k times 1/x, the conjugate of the scale
#pragma GCC unroll 4
        for (int h = 0; h < H; ++h) {
            open[h] = W::drop(open[h], pivot.pick[h]);
            l_re[h] = W::keep(W::fmadd(im[h], pivot.scale_im, W::mul(re[h], pivot.scale_re)), open[h]);
            l_im[h] = W::keep(W::fnmadd(re[h], pivot.scale_im, W::mul(im[h], pivot.scale_re)), open[h]);
            W::store(part[k][h][0], W::blend(re[h], l_re[h], open[h]));
            W::store(part[k][h][1], W::blend(im[h], l_im[h], open[h]));
        }
        put_planar_row<N, H>(part, p, a + k, lda); // final once chosen: later steps leave it as it is
        planar_update<N, H>(part, k, p, l_re, l_im, re, im);
    }
    // the one open row is the last pivot, with nothing below it to scale
    const int p = rows.at(N - 1);
    ipiv[N - 1] = N;
#pragma GCC unroll 4
    for (int h = 0; h < H; ++h) {
        W::store(part[N - 1][h][0], re[h]);
        W::store(part[N - 1][h][1], im[h]);
    }
    if (part[N - 1][p / 4][0][p % 4] == 0 && part[N - 1][p / 4][1][p % 4] == 0 && *info == 0)
        *info = N;
    put_planar_row<N, H>(part, p, a + N - 1, lda);
}

// Column k of a complex Cholesky factor on a padded copy, columns (k, to) less its product: false,
// with the pivot left real, where the pivot is not positive. As in the real kernel the update
// divides by d and the column is scaled after. Inlined for the reason lu_column is.
template <class R> [[gnu::always_inline]] inline bool cholesky_column(std::complex<R> *work, int64_t ld, int64_t k, int64_t vectors, int64_t to)
{
    using W = wide_complex<R>;
    constexpr int64_t lanes = 2 * W::rows_per;
    std::complex<R> *col = work + k * ld;
    const R d = col[k].real();
    if (!(d > R(0))) {
        col[k] = d;
        return false;
    }
    const int64_t first = (k + 1) / W::rows_per;
    const auto below = W::rows(k + 1, ld, first);
    R *cd = reinterpret_cast<R *>(col);
    update_rows_complex<true>(work, ld, k, first, vectors, k + 1, to, below_loader(cd, k), R(1) / d);
    const R root = std::sqrt(d);
    const auto scale = W::splat(R(1) / root);
    for (int64_t v = first; v < vectors; ++v) {
        const auto c = W::load(cd + lanes * v);
        W::store(cd + lanes * v, v == first ? W::blend(c, W::mul(c, scale), below) : W::mul(c, scale));
    }
    col[k] = root;
    return true;
}

// The lower triangle of the finished columns [0, done) back to a; on a failure at done its pivot
// too and the status, leaving the rest as LAPACK leaves it.
template <class R>
[[gnu::always_inline]] inline void cholesky_copy_back(int64_t n, int64_t done, std::complex<R> *work, int64_t ld, std::complex<R> *a,
                                                      int64_t lda, int64_t *info)
{
    for (int64_t j = 0; j < done; ++j) {
        work[j + j * ld] = work[j + j * ld].real();
        copy_entries(work + j * ld + j, n - j, a + j * lda + j);
    }
    if (done < n) {
        a[done + done * lda] = work[done + done * ld];
        *info = done + 1;
    }
}

// Complex Cholesky A = L*L^H for n <= complex_limit on a padded copy; only the lower triangle
// goes back (real diagonal), and on a non-positive pivot only the finished columns and it.
template <class R> void potrf_lower_complex_columns(int64_t n, std::complex<R> *a, int64_t lda, int64_t *info)
{
    using T = std::complex<R>;
    const int64_t ld = padded_complex<R>(n), vectors = ld / wide_complex<R>::rows_per;
    alignas(32) R storage[2 * complex_limit * complex_limit]; // raw: complex arrays would be zeroed
    T *work = reinterpret_cast<T *>(storage);
    copy_padded(n, a, lda, work, ld);
    int64_t done = 0;
    while (done < n && cholesky_column(work, ld, done, vectors, n))
        ++done;
    cholesky_copy_back(n, done, work, ld, a, lda, info);
}

#include "small_complex_blocked.hpp"

// The complex inverse U^-1 * L^-1 * P^T for n <= complex_limit from a padded copy of the
// factor, as inverse_columns forms it.
template <class R>
void inverse_complex_columns(int64_t n, const std::complex<R> *a, int64_t lda, const int64_t *ipiv, std::complex<R> *inv,
                             int64_t ldinv)
{
    using W = wide_complex<R>;
    using T = std::complex<R>;
    constexpr int64_t lanes = 2 * W::rows_per;
    const int64_t ld = padded_complex<R>(n), vectors = ld / W::rows_per;
    alignas(32) R storage[4 * complex_limit * complex_limit]; // raw: complex arrays would be zeroed
    T *f = reinterpret_cast<T *>(storage), *x = f + complex_limit * complex_limit;
    alignas(32) R scale_re[2 * complex_limit] = {}, scale_alt[2 * complex_limit] = {};
    copy_padded(n, a, lda, f, ld);
    std::fill(x, x + ld * n, T(0));
    for (int64_t k = 0; k < n; ++k) {
        const T s = reciprocal(f[k + k * ld]);
        scale_re[2 * k] = scale_re[2 * k + 1] = s.real();
        scale_alt[2 * k] = -s.imag(), scale_alt[2 * k + 1] = s.imag();
        x[k + k * ld] = R(1);
    }
    // x * s row by row, s held as (re, re) and (-im, im) pairs.
    auto times_scale = [&](typename W::reg v, int64_t r) {
        return W::fmadd(W::swap(v), W::load(scale_alt + lanes * r), W::mul(v, W::load(scale_re + lanes * r)));
    };
    for (int64_t k = 0; k + 1 < n; ++k) // L^-1
        update_rows_complex<false>(x, ld, k, (k + 1) / W::rows_per, vectors, 0, k + 1,
                                   below_loader(reinterpret_cast<const R *>(f + k * ld), k));
    for (int64_t j = 0; j < n; ++j) {
        R *xd = reinterpret_cast<R *>(x + j * ld);
        for (int64_t v = 0; v < vectors; ++v)
            W::store(xd + lanes * v, times_scale(W::load(xd + lanes * v), v));
    }
    for (int64_t k = n - 1; k > 0; --k) { // (D^-1 U)^-1, unit diagonal
        const R *cd = reinterpret_cast<const R *>(f + k * ld);
        const int64_t last = (k - 1) / W::rows_per;
        const auto above = W::rows(0, k, last);
        update_rows_complex<false>(x, ld, k, 0, last + 1, 0, n, [&](int64_t v) {
            const auto u = times_scale(W::load(cd + lanes * v), v);
            return v == last ? W::keep(u, above) : u;
        });
    }
    int64_t at[complex_limit];
    inverse_sources(n, ipiv, at);
    for (int64_t c = 0; c < n; ++c)
        copy_entries(x + at[c] * ld, n, inv + c * ldinv);
}

// The complex inverse past the register kernels: the padded kernel to complex_limit.
template <class R>
void inverse_complex_padded(int64_t n, const std::complex<R> *a, int64_t lda, const int64_t *ipiv, std::complex<R> *inv,
                            int64_t ldinv)
{
    if (n <= complex_limit)
        return inverse_complex_columns(n, a, lda, ipiv, inv, ldinv);
    inverse_loop(n, a, lda, ipiv, inv, ldinv);
}

// Complex LU past the register and fixed-order kernels: the padded kernel to complex_limit, the
// blocked one above.
template <class R> void getrf_complex_padded(int64_t n, std::complex<R> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (n <= complex_limit)
        return getrf_complex_columns(n, a, lda, ipiv, info);
    if (n <= blocked_complex_limit)
        return getrf_complex_panels<16>(n, a, lda, ipiv, info);
    getrf_loop(n, a, lda, ipiv, info);
}

// Single complex LU: the register kernels up to 4, rows kept in place to 16, the padded ones to 32.
void getrf_c(int64_t n, std::complex<float> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() {
            if constexpr (N <= 4)
                getrf_complex_registers<N, complex_float_vector<N>>(a, lda, ipiv, info);
            else // rows in place measured 14-24% faster from 5 to 8 than the blocked register form
                getrf_complex_fixed_rows<N>(a, lda, ipiv, info);
        }))
        return;
    if (at_order_9_to_16(n, [&]<int N>() { getrf_complex_fixed_rows<N>(a, lda, ipiv, info); }))
        return;
    getrf_complex_padded(n, a, lda, ipiv, info);
}

void potrf_lower_c(int64_t n, std::complex<float> *a, int64_t lda, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { potrf_lower_complex_registers<N, complex_float_vector<N>>(a, lda, info); }))
        return;
    if (n <= 21) // the blocked form measured slower up to 19, even at 20 and 21
        return potrf_lower_complex_columns(n, a, lda, info);
    if (n <= blocked_complex_limit)
        return potrf_lower_complex_panels<8>(n, a, lda, info);
    potrf_lower_loop(n, a, lda, info);
}

void inverse_c(int64_t n, const std::complex<float> *a, int64_t lda, const int64_t *ipiv, std::complex<float> *inv,
               int64_t ldinv)
{
    if (at_fixed_order(n, [&]<int N>() { inverse_complex_registers<N, complex_float_vector<N>>(a, lda, ipiv, inv, ldinv); }))
        return;
    inverse_complex_padded(n, a, lda, ipiv, inv, ldinv);
}

constexpr small_kernels<std::complex<float>> complex_float_table(int64_t getrf_limit, int64_t potrf_limit,
                                                                 int64_t inverse_limit)
{
    return {getrf_c, potrf_lower_c, potrf_upper_loop<std::complex<float>>, getrs_loop<std::complex<float>>, inverse_c,
            getrf_limit, potrf_limit, inverse_limit};
}

// The register kernels up to 6, the rows kept in place on an aligned copy from 7 to 12, planar
// where that pays (170 ns at 8 interleaved against 205 for four columns in registers, then the
// trailing four, in the batch benchmark), the padded ones with their interchanges folded into
// the steps from 13 to 16, the padded ones above (measured on the AMD EPYC this was written on,
// lowered to AVX2).
void getrf_z(int64_t n, std::complex<double> *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() {
            if constexpr (N <= 6)
                getrf_z_registers<N>(a, lda, ipiv, info);
            else if constexpr (planar_lu_pays<N>) // 7 and 8 would not fit the registers
                getrf_complex_planar<N>(a, lda, ipiv, info);
            else
                getrf_complex_fixed_rows<N>(a, lda, ipiv, info);
        }))
        return;
    if (at_order_9_to_16(n, [&]<int N>() {
            if constexpr (planar_lu_pays<N>)
                getrf_complex_planar<N>(a, lda, ipiv, info);
            else if constexpr (N <= 12)
                getrf_complex_fixed_rows<N>(a, lda, ipiv, info);
            else
                getrf_complex_columns(std::integral_constant<int64_t, N>{}, a, lda, ipiv, info);
        }))
        return;
    getrf_complex_padded(n, a, lda, ipiv, info);
}

void potrf_lower_z(int64_t n, std::complex<double> *a, int64_t lda, int64_t *info)
{
    if (at_fixed_order(n, [&]<int N>() { potrf_lower_z_registers<N>(a, lda, info); }))
        return;
    if (n <= 16)
        return potrf_lower_small(n, a, lda, info);
    if (n <= blocked_complex_limit) // from 17 the blocked form measured faster than the padded one
        return potrf_lower_complex_panels<8>(n, a, lda, info);
    potrf_lower_loop(n, a, lda, info);
}

void inverse_z(int64_t n, const std::complex<double> *a, int64_t lda, const int64_t *ipiv, std::complex<double> *inv,
               int64_t ldinv)
{
    if (at_fixed_order(n, [&]<int N>() { inverse_z_registers<N>(a, lda, ipiv, inv, ldinv); }))
        return;
    inverse_complex_padded(n, a, lda, ipiv, inv, ldinv);
}

constexpr small_kernels<std::complex<double>> complex_double_table(int64_t getrf_limit, int64_t potrf_limit,
                                                                   int64_t inverse_limit)
{
    return {getrf_z, potrf_lower_z, potrf_upper_loop<std::complex<double>>, getrs_loop<std::complex<double>>,
            inverse_z, getrf_limit, potrf_limit, inverse_limit};
}

constexpr small_kernels<double> double_table(int64_t getrf_limit, int64_t potrf_limit, int64_t inverse_limit)
{
    return {getrf_real<double>, potrf_lower_d, potrf_upper_loop<double>, getrs_loop<double>, inverse_d,
            getrf_limit, potrf_limit, inverse_limit};
}

} // namespace
} // namespace zel::dense::ZEL_SMALL_ISA

namespace zel::dense {

// Orders up to which each kernel beats OpenBLAS (getrf, potrf, inverse), measured with `zel bench
// dense` on an AMD EPYC lowered to AVX2, the peer on OpenBLAS 0.3.21's Haswell kernels:
//   d  getrf 64 (1.7x there), potrf 56 (1.25x at 56, 0.9x at 64), inverse 64 (1.5x or more);
//   z  getrf 64 (1.9x at 32, 1.5x at 64), potrf 64 (1.47x at 32, 1.35x at 64), inverse 32 (1.8x);
//   s  getrf 64 (1.9x), potrf 56 (1.3x at 56, 1.0x at 64), inverse 64 (3x);
//   c  getrf 64 (2.7x at 32, 2.25x at 64), potrf 64 (2.1x at 32, 1.75x at 64), inverse 32 (4x);
//   the complex LU factors in blocks of columns above 32, the Cholesky above 16 (z) or 21 (c);
//   above 64 OpenBLAS's blocked forms are as fast.
const small_set ZEL_SMALL_AVX2_SET = {ZEL_SMALL_ISA::float_table(64, 56, 64), ZEL_SMALL_ISA::double_table(64, 56, 64),
                                      ZEL_SMALL_ISA::complex_float_table(64, 64, 32),
                                      ZEL_SMALL_ISA::complex_double_table(64, 64, 32)};

} // namespace zel::dense
