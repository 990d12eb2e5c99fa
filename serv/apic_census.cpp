// Counting packages and cores by pinning the thread to each CPU and reading its APIC identifier.
#include <bit>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include "topology.hpp"
#include "zel_internal/scratch.hpp"

namespace zel::serv {
namespace {

struct cpuid_registers {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
};

// CPUID leaf/subleaf; all zero where the instruction does not exist.
cpuid_registers cpuid(unsigned leaf, unsigned subleaf)
{
    cpuid_registers r;
#if defined(__x86_64__) || defined(__i386__)
    __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
#else
    (void)leaf;
    (void)subleaf;
#endif
    return r;
}

// Leaf 4's cores-per-package field is only meaningful on this vendor's processors.
bool topology_leaves_supported()
{
    const cpuid_registers r = cpuid(0, 0);
    char vendor[13];
    std::memcpy(vendor, &r.ebx, 4);
    std::memcpy(vendor + 4, &r.edx, 4);
    std::memcpy(vendor + 8, &r.ecx, 4);
    vendor[12] = '\0';
    return std::strcmp(vendor, "GenuineIntel") == 0;
}

// Widths of the SMT and core fields of an APIC identifier.
struct apic_layout {
    unsigned smt_width;
    unsigned core_width;
};

apic_layout read_apic_layout()
{
    unsigned logical = 1, cores = 1; // unsupported vendors: one of everything
    if (topology_leaves_supported()) {
        const unsigned max_leaf = cpuid(0, 0).eax;
        const cpuid_registers leaf1 = cpuid(1, 0);
        if (leaf1.edx & (1u << 28))
            logical = (leaf1.ebx >> 16) & 0xffu;
        if (max_leaf >= 4)
            cores = (cpuid(4, 0).eax >> 26) + 1;
    }
    const unsigned threads_per_core = logical / cores;
    return {static_cast<unsigned>(std::bit_width(threads_per_core > 0 ? threads_per_core - 1 : 0u)),
            static_cast<unsigned>(std::bit_width(cores - 1))};
}

unsigned initial_apic_id() { return cpuid(1, 0).ebx >> 24; }

// Next CPU at or after `from` that the mask holds, or -1.
int next_cpu(const affinity_mask &mask, long mask_bytes, int from)
{
    const int limit = static_cast<int>(mask_bytes * 8 < max_probed_cpus ? mask_bytes * 8 : max_probed_cpus);
    for (int cpu = from; cpu < limit; ++cpu)
        if ((mask.bytes[cpu / 8] >> (cpu % 8)) & 1u)
            return cpu;
    return -1;
}

bool pin_to(int cpu, long mask_bytes)
{
    affinity_mask single;
    std::memset(single.bytes, 0, sizeof single.bytes);
    single.bytes[cpu / 8] = static_cast<unsigned char>(1u << (cpu % 8));
    return set_thread_affinity(single, mask_bytes);
}

// Distinct (package, core) pairs; `counted` is scratch of the same length.
int32_t count_distinct_pairs(const uint8_t *package, const uint8_t *core, uint8_t *counted, int32_t n)
{
    std::memset(counted, 0, static_cast<size_t>(n));
    int32_t pairs = 0;
    for (int32_t i = 0; i < n; ++i) {
        if (counted[i])
            continue;
        ++pairs;
        for (int32_t j = i + 1; j < n; ++j)
            if (package[j] == package[i] && core[j] == core[i])
                counted[j] = 1;
    }
    return pairs;
}

} // namespace

long get_thread_affinity(affinity_mask &mask)
{
    std::memset(mask.bytes, 0, sizeof mask.bytes);
    return syscall(SYS_sched_getaffinity, 0, affinity_capacity, mask.bytes);
}

bool set_thread_affinity(const affinity_mask &mask, long mask_bytes)
{
    return syscall(SYS_sched_setaffinity, 0, mask_bytes, mask.bytes) == 0;
}

bool apic_census(const affinity_mask &saved, long mask_bytes, int32_t positions, apic_census_result &result)
{
    const apic_layout layout = read_apic_layout();
    const int32_t n = positions < max_probed_cpus ? positions : max_probed_cpus;
    if (n <= 0) {
        result = {0, 0, 0};
        return true;
    }
    scratch_array<uint8_t> package(static_cast<size_t>(n), 64);
    scratch_array<uint8_t> core(static_cast<size_t>(n), 64);
    scratch_array<uint8_t> counted(static_cast<size_t>(n), 64);
    if (!package || !core || !counted)
        return false;

    const unsigned shift = layout.smt_width + layout.core_width;
    const unsigned package_mask = shift >= 8 ? 0u : 0xffu << shift;
    const unsigned core_mask = (1u << layout.core_width) - 1u;
    bool package_seen[256] = {};
    int32_t probed = 0, packages = 0;
    for (int32_t position = 0, cpu = -1; position < n; ++position) {
        cpu = next_cpu(saved, mask_bytes, cpu + 1);
        if (cpu < 0)
            break;
        if (!pin_to(cpu, mask_bytes))
            continue;
        sleep(0); // let the scheduler move us before reading the APIC identifier
        const unsigned apic = initial_apic_id();
        package[probed] = static_cast<uint8_t>(apic & package_mask);
        core[probed] = static_cast<uint8_t>((apic >> layout.smt_width) & core_mask);
        if (!package_seen[package[probed]]) {
            package_seen[package[probed]] = true;
            ++packages;
        }
        ++probed;
    }
    set_thread_affinity(saved, mask_bytes);
    sleep(0);
    result = {probed, packages, count_distinct_pairs(package.get(), core.get(), counted.get(), probed)};
    return true;
}

} // namespace zel::serv
