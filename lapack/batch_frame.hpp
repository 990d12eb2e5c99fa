// The frame shared by the batched drivers: argument checks, reports, statuses, pivot widths.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <type_traits>

#include "zel/core_imports.h"
#include "zel/serv.h"
#include "zel_internal/scratch.hpp"

namespace zel::lapack {

constexpr int64_t code_no_memory = 1000;
constexpr size_t name_bound = 4096;

// Reports `code` (an argument position or 1000) for routine `name` through the error handler.
inline void report(const char *name, int64_t code)
{
    zel_serv_xerbla(name, &code, static_cast<int32_t>(zel_serv_strnlen_s(name, name_bound)));
}

// One argument check: the position reported when `failed`.
struct check {
    bool failed;
    int64_t position;
};

// The position of the first failed check, or 0 when all pass.
inline int64_t first_failure(std::initializer_list<check> checks)
{
    for (const check &c : checks)
        if (c.failed)
            return c.position;
    return 0;
}

// max(1, rows*cols), saturated so that an overflowing product rejects every stride.
inline int64_t extent(int64_t rows, int64_t cols)
{
    int64_t product;
    if (__builtin_mul_overflow(rows, cols, &product))
        return std::numeric_limits<int64_t>::max();
    return std::max<int64_t>(1, product);
}

inline bool is_trans(const char *option)
{
    return zel_serv_lsame(option, "N") || zel_serv_lsame(option, "T") || zel_serv_lsame(option, "C");
}

inline bool is_uplo(const char *option) { return zel_serv_lsame(option, "L") || zel_serv_lsame(option, "U"); }

template <class I> void fill_status(I *info, int64_t count, int64_t value)
{
    for (int64_t i = 0; i < count; ++i)
        info[i] = static_cast<I>(value);
}

// Writes -position into the `count` statuses and reports the position.
template <class I> void reject(const char *name, int64_t position, I *info, int64_t count)
{
    fill_status(info, count, -position);
    report(name, position);
}

// Zeroes one member's status, then runs `kernel` with a 64-bit status that lands in it.
template <class I, class Kernel> void run_member(I &status, Kernel &&kernel)
{
    status = 0;
    if constexpr (std::is_same_v<I, int64_t>) {
        kernel(&status);
    } else {
        int64_t wide = 0;
        kernel(&wide);
        status = static_cast<I>(wide);
    }
}

// 64-bit pivots for the kernels: a 64-bit caller's own vectors, or one converted scratch copy
// (alignment 64) reused by every member of a 32-bit caller.
template <class I> class wide_pivots {
public:
    explicit wide_pivots(int64_t length)
    {
        if constexpr (!is_wide)
            buffer_ = scratch_array<int64_t>(static_cast<size_t>(std::max<int64_t>(1, length)), 64);
    }
    explicit operator bool() const { return is_wide || static_cast<bool>(buffer_); }

    // Pivots for the kernel to read, from the member's vector.
    const int64_t *load(const I *ipiv, int64_t length)
    {
        if constexpr (is_wide) {
            return ipiv;
        } else {
            std::copy(ipiv, ipiv + length, buffer_.get());
            return buffer_.get();
        }
    }
    // Where the kernel writes the member's pivots; deliver() moves them into place.
    int64_t *target(I *ipiv)
    {
        if constexpr (is_wide)
            return ipiv;
        else
            return buffer_.get();
    }
    void deliver(I *ipiv, int64_t length)
    {
        if constexpr (!is_wide)
            std::transform(buffer_.get(), buffer_.get() + length, ipiv, [](int64_t p) { return static_cast<I>(p); });
    }

private:
    static constexpr bool is_wide = std::is_same_v<I, int64_t>;
    scratch_array<int64_t> buffer_;
};

// Calls the 32-bit worker for a non-zero selector and the 64-bit one otherwise, giving every
// untyped integer argument the type that the chosen worker declares.
template <class... P32, class... P64, class... A>
void by_width(int64_t selector, void (*worker32)(P32...), void (*worker64)(P64...), A... args)
{
    static_assert(sizeof...(P32) == sizeof...(A) && sizeof...(P64) == sizeof...(A));
    if (selector != 0)
        worker32(static_cast<P32>(args)...);
    else
        worker64(static_cast<P64>(args)...);
}

} // namespace zel::lapack
