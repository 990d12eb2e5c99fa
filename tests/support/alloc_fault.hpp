// Failure injection through the core's replaceable allocator.
#pragma once

#include <cstdint>

namespace zel::test {

// While alive, every zel_serv_malloc goes through a counting allocator that can be told to
// fail one chosen request; live() counts blocks allocated and not yet freed.
class allocator_probe {
public:
    allocator_probe();
    ~allocator_probe();
    allocator_probe(const allocator_probe &) = delete;
    allocator_probe &operator=(const allocator_probe &) = delete;

    // The k-th request from now (0-based) returns null; -1 disarms.
    void fail_at(int64_t k);
    // Every request from now on fails (fail_all) or none does (the default).
    void fail_all(bool on);
    int64_t requests() const; // requests since construction or reset()
    int64_t live() const;     // blocks handed out and not yet freed
    int64_t failures() const; // requests that were refused
    void reset();
};

// Runs `body` once to count its allocations, then once more per allocation with that one
// failing, calling `check(k, result)` after each failing run. Body returns an int status.
template <class Body, class Check> int64_t for_each_failing_allocation(Body body, Check check)
{
    int64_t total;
    {
        allocator_probe probe;
        body();
        total = probe.requests();
    }
    for (int64_t k = 0; k < total; ++k) {
        allocator_probe probe;
        probe.fail_at(k);
        int result = body();
        check(k, result, probe);
    }
    return total;
}

} // namespace zel::test
