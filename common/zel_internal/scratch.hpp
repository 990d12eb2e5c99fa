// RAII holder for scratch memory from the core allocator.
#pragma once

#include <cstddef>
#include <sys/mman.h>
#include <utility>

#include "zel/runtime.h"
#include "zel_internal/checked.hpp"

namespace zel {

// Owns `count` elements of T from zel_serv_malloc; frees them on every path. A count whose
// bytes do not fit size_t is a failed allocation, never a short one.
template <class T> class scratch_array {
public:
    scratch_array() = default;
    scratch_array(size_t count, int alignment)
    {
        if (const auto bytes = checked_bytes<T>(count)) {
            data_ = static_cast<T *>(zel_serv_malloc(*bytes, alignment));
            count_ = data_ != nullptr ? count : 0;
        }
    }
    scratch_array(const scratch_array &) = delete;
    scratch_array &operator=(const scratch_array &) = delete;
    scratch_array(scratch_array &&other) noexcept
        : data_(std::exchange(other.data_, nullptr)), count_(std::exchange(other.count_, 0))
    {
    }
    scratch_array &operator=(scratch_array &&other) noexcept
    {
        if (this != &other) {
            zel_serv_free(data_);
            data_ = std::exchange(other.data_, nullptr);
            count_ = std::exchange(other.count_, 0);
        }
        return *this;
    }
    ~scratch_array() { zel_serv_free(data_); }

    explicit operator bool() const { return data_ != nullptr; }
    T *get() const { return data_; }
    T &operator[](size_t i) const { return data_[i]; }
    size_t size() const { return count_; }
    // Hands ownership to the caller (for arrays that outlive the function).
    T *release()
    {
        count_ = 0;
        return std::exchange(data_, nullptr);
    }

private:
    T *data_ = nullptr;
    size_t count_ = 0;
};

// Scratch of `count` elements for the large arrays (a factor's values, a solve's work block):
// from 8 MiB on, aligned to 2 MiB and advised into transparent huge pages, which fault in 2 MiB
// at a time and spare the TLB on scattered reads. The advice is a hint; where the system
// ignores it the array is the same.
template <class T> scratch_array<T> large_scratch(size_t count, int alignment)
{
    constexpr size_t huge_page = size_t(1) << 21;
    const auto bytes = checked_bytes<T>(count);
    if (!bytes || *bytes < 4 * huge_page)
        return scratch_array<T>(count, alignment);
    scratch_array<T> array(count, int(huge_page));
    if (array)
        madvise(array.get(), *bytes & ~(huge_page - 1), MADV_HUGEPAGE);
    return array;
}

} // namespace zel
