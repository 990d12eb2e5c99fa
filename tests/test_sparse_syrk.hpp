// Shared by the A·Aᵀ / Aᵀ·A tests: an independent dense reference of the upper triangle in
// double precision, over the shared sparse support.
#pragma once

#include "test_sparse_support.hpp"

namespace sparse_test {

using cd = std::complex<double>;

template <class T> cd widen(T v)
{
    if constexpr (zel::is_complex_v<T>)
        return cd(v.real(), v.imag());
    else
        return cd(static_cast<double>(v), 0.0);
}
template <class C> C to_c(zel::cpp_value_t<C> v) { return std::bit_cast<C>(v); }

// Random pattern with about `density` of the (block) places filled (BSR when block > 1, blocks in
// the order of the base), rows sorted unless `shuffle`.
template <class T, class I>
sparse<T, I> random_matrix(I rows, I cols, double density, I base, uint32_t seed, bool shuffle = false, I block = 1)
{
    std::mt19937_64 rng(seed);
    return random_sparse<T, I>(rng, block > 1 ? bsr : csr, rows, cols, block, base, density, true, shuffle);
}

// Drops the entries of row r.
template <class T, class I> void clear_row(sparse<T, I> &a, I r)
{
    const I first = a.starts[r] - a.index_base, last = a.starts[r + 1] - a.index_base, bb = a.block_size * a.block_size;
    a.indices.erase(a.indices.begin() + first, a.indices.begin() + last);
    a.values.erase(a.values.begin() + first * bb, a.values.begin() + last * bb);
    for (I i = r + 1; i <= a.rows; ++i)
        a.starts[i] -= last - first;
}

// Dense copy of a matrix (scalar rows × cols), row-major, in double precision.
template <class T, class I> std::vector<cd> widened(const sparse<T, I> &a)
{
    const int64_t b = a.block_size, m = int64_t(a.rows) * b, n = int64_t(a.cols) * b;
    std::vector<cd> d(m * n);
    for (I i = 0; i < a.rows; ++i)
        for (I p = a.starts[i] - a.index_base; p < a.starts[i + 1] - a.index_base; ++p) {
            const int64_t j = a.indices[p] - a.index_base;
            for (int64_t r = 0; r < b; ++r)
                for (int64_t s = 0; s < b; ++s) {
                    const T v = a.values[p * b * b + (a.block_layout == 0 ? r * b + s : s * b + r)];
                    d[(i * b + r) * n + j * b + s] += widen(v);
                }
        }
    return d;
}

// Upper triangle of P = L·R from dense L (m×q) and R (q×m), with the sums of |terms| for the
// rounding bound and the structural pattern.
struct reference {
    int64_t m = 0;
    std::vector<cd> value;
    std::vector<double> bound;
    std::vector<char> pattern;
    cd at(int64_t i, int64_t j) const { return value[i * m + j]; }
};

inline reference upper_product(const std::vector<cd> &L, const std::vector<cd> &R, int64_t m, int64_t q,
                               bool full = false)
{
    reference ref;
    ref.m = m;
    ref.value.assign(m * m, cd());
    ref.bound.assign(m * m, 0.0);
    ref.pattern.assign(m * m, 0);
    for (int64_t i = 0; i < m; ++i)
        for (int64_t k = 0; k < q; ++k) {
            const cd l = L[i * q + k];
            if (l == cd())
                continue;
            for (int64_t j = full ? 0 : i; j < m; ++j) {
                const cd r = R[k * m + j];
                if (r == cd())
                    continue;
                ref.value[i * m + j] += l * r;
                ref.bound[i * m + j] += std::abs(l) * std::abs(r);
                ref.pattern[i * m + j] = 1;
            }
        }
    return ref;
}

// op(A)·op(A)ᴴ: operation 10 gives A·Aᴴ, 11 and 12 Aᴴ·A (Aᵀ for real matrices).
inline reference syrk_reference(const std::vector<cd> &A, int64_t rows, int64_t cols, int operation,
                                bool full = false)
{
    const bool nt = operation == 10;
    const int64_t m = nt ? rows : cols, q = nt ? cols : rows;
    std::vector<cd> L(m * q), R(q * m);
    for (int64_t i = 0; i < m; ++i)
        for (int64_t k = 0; k < q; ++k) {
            const cd v = nt ? A[i * cols + k] : std::conj(A[k * cols + i]);
            L[i * q + k] = v;
            R[k * m + i] = std::conj(v);
        }
    return upper_product(L, R, m, q, full);
}

template <class R> double tolerance(double bound) { return 16.0 * std::numeric_limits<R>::epsilon() * (bound + 1e-30); }

template <class M> using handle_holder = handle_of<typename M::T, typename M::I>;

} // namespace sparse_test
