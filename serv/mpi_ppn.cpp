// MPI processes per node, from the first MPI runtime variable that gives it.
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <initializer_list>

#include "zel/runtime.h"
#include "zel/serv.h"

namespace {

constexpr int env_capacity = 256;

// 0: not yet determined. Racing callers compute the same value, so no lock.
std::atomic<int32_t> ppn{0};

// The whole value as a count of 0 or more, else -1 (unset and unparsable alike).
int32_t whole_count(const char *name)
{
    char text[env_capacity];
    if (zel_serv_getenv(name, text, env_capacity) <= 0)
        return -1;
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno == ERANGE || value < 0 || value > INT32_MAX)
        return -1;
    return static_cast<int32_t>(value);
}

// The leading integer of "count:map"; counts only when the map follows. A count that does not
// fit 32 bits is malformed: no count, no map.
int32_t pin_mapping_count(bool &has_map)
{
    char text[env_capacity] = {};
    zel_serv_getenv("ZMPI_PIN_MAPPING", text, env_capacity);
    char *end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    has_map = false;
    if (errno == ERANGE || value > INT32_MAX || value < INT32_MIN)
        return 0;
    has_map = *end == ':';
    return static_cast<int32_t>(value);
}

// Caches `value`; true when it settles the answer.
bool settles(int32_t value)
{
    ppn.store(value, std::memory_order_relaxed);
    return value > 0;
}

} // namespace

extern "C" ZEL_API int zel_serv_mpi_get_ppn(void)
{
    const int32_t cached = ppn.load(std::memory_order_relaxed);
    if (cached != 0)
        return cached;
    for (const char *name : {"ZEL_MPI_PPN", "ZMPI_NUMBER_OF_MPI_PROCESSES_PER_NODE"}) {
        const int32_t value = whole_count(name);
        if (settles(value))
            return value;
    }
    bool has_map = false;
    const int32_t mapped = pin_mapping_count(has_map);
    if (settles(mapped) && has_map)
        return mapped;
    if (const int32_t value = whole_count("OMPI_COMM_WORLD_LOCAL_SIZE"); settles(value))
        return value;
    const int32_t local = whole_count("MPI_LOCALNRANKS");
    const int32_t result = local > 0 ? local : -1; // nothing found: -1 for the rest of the process
    ppn.store(result, std::memory_order_relaxed);
    return result;
}
