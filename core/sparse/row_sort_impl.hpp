// The sorter's algorithm over a vector type V (lanes, load, splat, eq and lt as lane bit masks);
// included by the files built for each instruction set.
#pragma once

#include "row_sort.hpp"

namespace zel::sparse_syrk::ZEL_ROW_SORT_ISA {
namespace {

// Lanes of a vector whose key index is below `limit`, for the vector starting at index `first`.
template <class V> inline uint32_t lanes_below(int64_t limit, int64_t first)
{
    const int64_t n = limit - first;
    return n <= 0 ? 0u : n >= V::lanes ? V::all : (1u << n) - 1u;
}

// Bit e%lanes of first[e/lanes] is set when key e is the first key of its value. N vectors hold
// the keys; each key is compared with all of them, which keeps the loop free of branches.
template <class V, int N> inline uint32_t first_keys(const typename V::reg *k, const int32_t *keys, uint32_t n,
                                                     uint32_t *first)
{
    for (int b = 0; b < N; ++b)
        first[b] = 0;
    uint32_t distinct = 0;
    for (uint32_t e = 0; e < n; ++e) {
        const typename V::reg v = V::splat(keys[e]);
        uint32_t earlier = 0;
#pragma GCC unroll 16
        for (int b = 0; b < N; ++b)
            earlier |= V::eq(k[b], v) & lanes_below<V>(e, int64_t(b) * V::lanes);
        const uint32_t is_first = earlier == 0;
        first[e / V::lanes] |= is_first << (e % V::lanes);
        distinct += is_first;
    }
    return distinct;
}

template <class V, int N> uint32_t count_n(const int32_t *keys, uint32_t n)
{
    typename V::reg k[N];
    uint32_t first[N];
#pragma GCC unroll 16
    for (int b = 0; b < N; ++b)
        k[b] = V::load(keys + b * V::lanes);
    return first_keys<V, N>(k, keys, n, first);
}

template <class V, int N> uint32_t ranks_n(const int32_t *keys, uint32_t n, uint32_t *rank)
{
    typename V::reg k[N];
    uint32_t first[N];
#pragma GCC unroll 16
    for (int b = 0; b < N; ++b)
        k[b] = V::load(keys + b * V::lanes);
    const uint32_t distinct = first_keys<V, N>(k, keys, n, first);
    for (uint32_t e = 0; e < n; ++e) {
        const typename V::reg v = V::splat(keys[e]);
        uint32_t below = 0;
#pragma GCC unroll 16
        for (int b = 0; b < N; ++b)
            below += static_cast<uint32_t>(__builtin_popcount(V::lt(k[b], v) & first[b]));
        rank[e] = below;
    }
    return distinct;
}

// Calls F<N> with N = the vectors n keys fill (n <= sort_capacity).
template <class V, int N = 1, class F> inline uint32_t by_vectors(uint32_t n, F f)
{
    if constexpr (N * V::lanes >= int(sort_capacity))
        return f.template operator()<N>();
    else
        return n <= uint32_t(N * V::lanes) ? f.template operator()<N>() : by_vectors<V, N + 1>(n, f);
}

template <class V> uint32_t count(const int32_t *keys, uint32_t n)
{
    return by_vectors<V>(n, [&]<int N>() { return count_n<V, N>(keys, n); });
}

template <class V> uint32_t ranks(const int32_t *keys, uint32_t n, uint32_t *rank)
{
    return by_vectors<V>(n, [&]<int N>() { return ranks_n<V, N>(keys, n, rank); });
}

} // namespace
} // namespace zel::sparse_syrk::ZEL_ROW_SORT_ISA
