// Aligned scratch allocator with an application-replaceable pair of functions.
#include <atomic>
#include <cstdlib>

#include "zel/runtime.h"

namespace {

void *default_allocate(size_t size, int alignment)
{
    size_t align = alignment > 0 ? static_cast<size_t>(alignment) : 64;
    if (align < sizeof(void *) || (align & (align - 1)) != 0)
        align = 64;
    void *pointer = nullptr;
    // A zero-byte request still yields a unique pointer that free accepts.
    if (posix_memalign(&pointer, align, size > 0 ? size : 1) != 0)
        return nullptr;
    return pointer;
}

void default_release(void *pointer) { std::free(pointer); }

struct allocator_pair {
    zel_malloc_fn allocate;
    zel_free_fn release;
};

std::atomic<allocator_pair *> current_pair{nullptr};
allocator_pair installed_pairs[2];
std::atomic<int> installed_slot{0};

} // namespace

extern "C" {

ZEL_API void *zel_serv_malloc(size_t size, int alignment)
{
    allocator_pair *pair = current_pair.load(std::memory_order_acquire);
    return pair ? pair->allocate(size, alignment) : default_allocate(size, alignment);
}

ZEL_API void zel_serv_free(void *pointer)
{
    if (pointer == nullptr)
        return;
    allocator_pair *pair = current_pair.load(std::memory_order_acquire);
    if (pair)
        pair->release(pointer);
    else
        default_release(pointer);
}

ZEL_API void zel_serv_set_memory_functions(zel_malloc_fn allocate, zel_free_fn release)
{
    if (allocate == nullptr || release == nullptr) {
        current_pair.store(nullptr, std::memory_order_release);
        return;
    }
    // Alternate between two slots so that a reader never sees a half-written pair.
    int slot = installed_slot.fetch_xor(1) ^ 1;
    installed_pairs[slot] = {allocate, release};
    current_pair.store(&installed_pairs[slot], std::memory_order_release);
}

} // extern "C"
