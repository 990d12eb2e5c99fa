#include "alloc_fault.hpp"

#include <atomic>
#include <cstdlib>

#include "zel/runtime.h"

namespace zel::test {
namespace {

std::atomic<int64_t> request_count{0};
std::atomic<int64_t> live_count{0};
std::atomic<int64_t> failure_count{0};
std::atomic<int64_t> fail_index{-1};
std::atomic<bool> fail_every{false};

void *counting_allocate(size_t size, int alignment)
{
    int64_t index = request_count.fetch_add(1);
    if (fail_every.load() || index == fail_index.load()) {
        failure_count.fetch_add(1);
        return nullptr;
    }
    size_t align = alignment >= static_cast<int>(sizeof(void *)) ? static_cast<size_t>(alignment) : 64;
    void *pointer = nullptr;
    if (posix_memalign(&pointer, align, size > 0 ? size : 1) != 0)
        return nullptr;
    live_count.fetch_add(1);
    return pointer;
}

void counting_release(void *pointer)
{
    if (pointer == nullptr)
        return;
    live_count.fetch_sub(1);
    std::free(pointer);
}

} // namespace

allocator_probe::allocator_probe()
{
    reset();
    zel_serv_set_memory_functions(counting_allocate, counting_release);
}

allocator_probe::~allocator_probe() { zel_serv_set_memory_functions(nullptr, nullptr); }

void allocator_probe::fail_at(int64_t k) { fail_index.store(k < 0 ? -1 : request_count.load() + k); }
void allocator_probe::fail_all(bool on) { fail_every.store(on); }
int64_t allocator_probe::requests() const { return request_count.load(); }
int64_t allocator_probe::live() const { return live_count.load(); }
int64_t allocator_probe::failures() const { return failure_count.load(); }

void allocator_probe::reset()
{
    request_count.store(0);
    live_count.store(0);
    failure_count.store(0);
    fail_index.store(-1);
    fail_every.store(false);
}

} // namespace zel::test
