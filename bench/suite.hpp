// The benchmark suites of zel-bench register their run functions here by the names that
// tools/bench_request.cpp describes; progress() reports on long runs.
#pragma once

#include "bench_request.hpp"

namespace zel::bench {

using suite_main = int (*)(const request &);

// Adds a suite's run function; returns true so it can seed a static.
bool register_suite(const char *name, suite_main run);

// One line on standard error, with the time since the program started, when progress lines are
// on (standard error is a terminal). Tables on standard output stay clean.
void progress(const char *format, ...) __attribute__((format(printf, 1, 2)));
void enable_progress(bool on);

} // namespace zel::bench

#define ZEL_BENCH_CONCAT2(a, b) a##b
#define ZEL_BENCH_CONCAT(a, b) ZEL_BENCH_CONCAT2(a, b)
#define ZEL_BENCH_SUITE(name, run)                                                                        \
    static const bool ZEL_BENCH_CONCAT(zel_bench_registered_, __LINE__) = ::zel::bench::register_suite(name, run)
