// The one-time topology probe (with the environment scan) and the queries that read its cache.
#include <atomic>

#include "environment.hpp"
#include "topology.hpp"
#include "zel/runtime.h"
#include "zel/serv.h"

namespace zel::serv {
namespace {

struct topology_record {
    int32_t ncpus = -1;
    int32_t ncorespercpu = -1;
    int32_t ht = -1;
    int32_t nlogicalcores = 1; // one logical processor is a safe answer before the probe
};

topology_record cpu_topology;
std::atomic<uint8_t> probed{0};
int32_t topology_lock = 0;
// What the affinity query established: whether it worked and the mask length it accepted.
bool affinity_probed = false;
int64_t affinity_mask_bytes = 0;

struct topology_counts {
    int32_t packages;
    int32_t cores;
    int32_t logical;
};

constexpr topology_counts unknown_topology = {1, 1, 1};

// The file's counts when they are self-consistent, with or without hyper-threading.
bool counts_from_cpuinfo(topology_counts &counts)
{
    cpuinfo_summary file;
    if (!read_cpuinfo_summary(file))
        return false;
    const int64_t p = file.processors, s = file.packages, c = file.cores_per_package, t = file.siblings;
    if (p <= 0 || s <= 0 || c <= 0 || t <= 0)
        return false;
    if (c * s == p && c == t)
        counts = {file.packages, file.processors, file.processors};
    else if (t * s == p && c != t)
        counts = {file.packages, static_cast<int32_t>(c * s), file.processors};
    else
        return false;
    return true;
}

// Counts from the affinity mask, the CPUID census and the cpuinfo cross-check.
topology_counts measure_topology(int32_t positions)
{
    affinity_mask saved;
    long mask_bytes = get_thread_affinity(saved);
    if (mask_bytes < 0)
        return unknown_topology;
    if (mask_bytes == 0)
        mask_bytes = affinity_capacity;
    affinity_probed = true;
    affinity_mask_bytes = mask_bytes;
    if (!set_thread_affinity(saved, mask_bytes))
        return unknown_topology;

    apic_census_result census;
    if (!apic_census(saved, mask_bytes, positions, census))
        return unknown_topology;
    topology_counts counts;
    if (counts_from_cpuinfo(counts))
        return counts;
    if (census.probed_cpus <= 0)
        return unknown_topology;
    return {census.packages > 0 ? census.packages : census.cores, census.cores, census.probed_cpus};
}

void store_topology(const topology_counts &counts)
{
    cpu_topology.ncpus = counts.packages;
    cpu_topology.ncorespercpu = counts.cores / counts.packages;
    cpu_topology.ht = counts.cores != counts.logical ? 1 : 0;
    cpu_topology.nlogicalcores = counts.logical;
}

// Reads the environment and the processor topology, once per process.
void probe_cpu_topology()
{
    zel_serv_lock(&topology_lock);
    if (probed.load(std::memory_order_acquire) == 0) {
        scan_environment();
        store_topology(measure_topology(count_processor_lines()));
        probed.store(1, std::memory_order_release);
    }
    zel_serv_unlock(&topology_lock);
}

const topology_record &probed_topology()
{
    if (probed.load(std::memory_order_acquire) == 0)
        probe_cpu_topology();
    return cpu_topology;
}

} // namespace
} // namespace zel::serv

extern "C" {

ZEL_API int zel_serv_get_ncpus(void) { return zel::serv::probed_topology().ncpus; }
ZEL_API int zel_serv_get_ncorespercpu(void) { return zel::serv::probed_topology().ncorespercpu; }
ZEL_API int zel_serv_get_ht(void) { return zel::serv::probed_topology().ht; }
ZEL_API int zel_serv_get_nlogicalcores(void) { return zel::serv::probed_topology().nlogicalcores; }

ZEL_API void zel_serv_get_thread_settings(zel_thread_settings *settings)
{
    if (settings == nullptr)
        return;
    zel::serv::probed_topology(); // the scan is part of the probe
    *settings = zel::serv::recorded_thread_settings();
}

} // extern "C"
