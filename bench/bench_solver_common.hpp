// What the sections of `zel bench solver` share: timing, figures in a table, the processor and the
// test folder; and the LU and L·D·Lᵀ sections (bench_solver_lu.cpp) that bench_solver.cpp lists.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "zel/pds.h"

namespace zel::bench {

inline double seconds_of(const std::function<void()> &body)
{
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double best_of(int repeats, const std::function<void()> &body)
{
    double best = 1e300;
    for (int r = 0; r < repeats; ++r)
        best = std::min(best, seconds_of(body));
    return best;
}

// The first failure of a series of calls is the one worth naming.
inline void keep_first(int &status, int next) { status = status != ZEL_PDS_STATUS_SUCCESS ? status : next; }

// A figure for a table, or "-" when it was not measured.
inline std::string figure(double value, const char *format)
{
    if (!std::isfinite(value))
        return "-";
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

inline std::string ms(double seconds) { return figure(1e3 * seconds, seconds < 0.01 ? "%.3f" : "%.1f"); }

// zel's ordering, as the tables name it.
inline const char *ordering_name(int ordering)
{
    switch (ordering) {
    case ZEL_PDS_ORDERING_AMD: return "amd";
    case ZEL_PDS_ORDERING_NESTED_DISSECTION: return "nd";
    case ZEL_PDS_ORDERING_GIVEN: return "given";
    case ZEL_PDS_ORDERING_NATURAL: return "natural";
    default: return "?";
    }
}

inline const char *processor_isa()
{
    return __builtin_cpu_supports("avx512f") ? "AVX-512" : __builtin_cpu_supports("avx2") ? "AVX2" : "no AVX2";
}

inline std::string processor_name()
{
    FILE *info = std::fopen("/proc/cpuinfo", "r");
    char line[256];
    std::string name = "unknown processor";
    while (info != nullptr && std::fgets(line, sizeof line, info) != nullptr)
        if (std::strncmp(line, "model name", 10) == 0) {
            const char *colon = std::strchr(line, ':');
            name = colon != nullptr ? colon + 2 : line;
            name.erase(name.find_last_not_of(" \n") + 1);
            break;
        }
    if (info != nullptr)
        std::fclose(info);
    return name;
}

// The test matrices' folder: ZEL_TEST_MATRICES, else the one configured at build time.
inline std::string matrix_folder()
{
    const char *dir = std::getenv("ZEL_TEST_MATRICES");
    return dir != nullptr && *dir != '\0' ? dir : ZEL_BENCH_MATRICES;
}

// The LU and L·D·Lᵀ sections; each returns 1 when a phase of zel's failed (a matrix type that
// this version cannot factor yet is reported, not failed).
int unsym3d(int repeats);
int unsym2d(int repeats);
int unsym_matrices(int repeats);
int kkt(int repeats);
int indef_matrices(int repeats);
// What the LU and L·D·Lᵀ tables show.
void print_lu_legend(int repeats);
// The one-right-hand-side kernels (bench_solver_onerhs.cpp).
int onerhs_section(int repeats);

} // namespace zel::bench
