// Checked size arithmetic: every size computed from caller input goes through these, so a
// product of dimensions or a byte count that does not fit is reported, never wrapped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <type_traits>

namespace zel {

// a * b, or nothing when the product does not fit Result (negative operands never fit a size).
template <class Result = int64_t, class A, class B> constexpr std::optional<Result> checked_mul(A a, B b)
{
    static_assert(std::is_integral_v<A> && std::is_integral_v<B> && std::is_integral_v<Result>);
    Result product;
    if (__builtin_mul_overflow(a, b, &product))
        return std::nullopt;
    return product;
}

// a + b, or nothing when the sum does not fit Result.
template <class Result = int64_t, class A, class B> constexpr std::optional<Result> checked_add(A a, B b)
{
    static_assert(std::is_integral_v<A> && std::is_integral_v<B> && std::is_integral_v<Result>);
    Result sum;
    if (__builtin_add_overflow(a, b, &sum))
        return std::nullopt;
    return sum;
}

// Bytes of `count` elements of T, or nothing when count is negative or the bytes do not fit size_t.
template <class T, class Count> constexpr std::optional<size_t> checked_bytes(Count count)
{
    if constexpr (std::is_signed_v<Count>)
        if (count < 0)
            return std::nullopt;
    return checked_mul<size_t>(count, sizeof(T));
}

// True when value is representable in I (used before narrowing a 64-bit size to an index type).
template <class I, class V> constexpr bool fits_in(V value)
{
    return value >= V(0) ? std::make_unsigned_t<V>(value) <= std::make_unsigned_t<I>(std::numeric_limits<I>::max())
                         : int64_t(value) >= int64_t(std::numeric_limits<I>::min());
}

} // namespace zel
