// The pieces of the processor-topology probe: the kernel's cpuinfo file and a CPUID census.
#pragma once

#include <cstdint>

namespace zel::serv {

// Lines of /proc/cpuinfo that begin with "processor"; 8192 when the file cannot be read.
int32_t count_processor_lines();

// What /proc/cpuinfo says: processors, distinct "physical id" values, and the first
// processor's "cpu cores" and "siblings" (0 for whatever is missing).
struct cpuinfo_summary {
    int32_t processors;
    int32_t packages;
    int32_t cores_per_package;
    int32_t siblings;
};
bool read_cpuinfo_summary(cpuinfo_summary &summary);

// The thread's affinity mask as the kernel reports it.
constexpr long affinity_capacity = 1024;          // bytes
constexpr int32_t max_probed_cpus = 8192;         // bits in that mask
struct affinity_mask {
    unsigned char bytes[affinity_capacity];
};

// Packages and distinct (package, core) pairs seen by pinning the thread to each CPU of
// `saved` in turn (at most `positions` of them) and reading its initial APIC identifier.
struct apic_census_result {
    int32_t probed_cpus;
    int32_t packages;
    int32_t cores;
};
// False when scratch memory could not be had. The thread's mask is `saved` again on return.
bool apic_census(const affinity_mask &saved, long mask_bytes, int32_t positions, apic_census_result &result);

// sched_getaffinity / sched_setaffinity through the raw system calls.
long get_thread_affinity(affinity_mask &mask);
bool set_thread_affinity(const affinity_mask &mask, long mask_bytes);

} // namespace zel::serv
