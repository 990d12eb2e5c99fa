// Reading the kernel's processor description, /proc/cpuinfo.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "topology.hpp"

namespace zel::serv {
namespace {

constexpr int32_t max_packages = 4096;

// Calls visit(line) at the start of every line; a line longer than the buffer is cut, and its
// remainder is not mistaken for a line of its own.
template <class Visit> bool for_each_cpuinfo_line(Visit visit)
{
    FILE *file = std::fopen("/proc/cpuinfo", "r");
    if (file == nullptr)
        return false;
    char line[512];
    bool at_line_start = true;
    while (std::fgets(line, sizeof line, file)) {
        const bool starts_line = at_line_start;
        at_line_start = std::strchr(line, '\n') != nullptr;
        if (starts_line)
            visit(line);
    }
    std::fclose(file);
    return true;
}

bool has_key(const char *line, const char *key) { return std::strncmp(line, key, std::strlen(key)) == 0; }

long value_after_colon(const char *line)
{
    const char *colon = std::strchr(line, ':');
    return colon ? std::strtol(colon + 1, nullptr, 10) : 0;
}

// Adds `id` to the list when it is new; the list holds at most max_packages entries.
void note_package(long id, long *ids, int32_t &count)
{
    for (int32_t i = 0; i < count; ++i)
        if (ids[i] == id)
            return;
    if (count < max_packages)
        ids[count++] = id;
}

int32_t as_count(long value) { return value > 0 && value < INT32_MAX ? static_cast<int32_t>(value) : 0; }

} // namespace

int32_t count_processor_lines()
{
    int32_t count = 0;
    if (!for_each_cpuinfo_line([&](const char *line) { count += has_key(line, "processor") ? 1 : 0; }))
        return max_probed_cpus;
    return count;
}

bool read_cpuinfo_summary(cpuinfo_summary &summary)
{
    summary = {0, 0, 0, 0};
    long package_ids[max_packages];
    return for_each_cpuinfo_line([&](const char *line) {
        if (has_key(line, "processor"))
            ++summary.processors;
        else if (has_key(line, "physical id"))
            note_package(value_after_colon(line), package_ids, summary.packages);
        else if (summary.processors == 1 && has_key(line, "cpu cores"))
            summary.cores_per_package = as_count(value_after_colon(line));
        else if (summary.processors == 1 && has_key(line, "siblings"))
            summary.siblings = as_count(value_after_colon(line));
    });
}

} // namespace zel::serv
