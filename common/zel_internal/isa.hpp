// The instruction-set level of the *_avx2 / *_avx512 files that this processor can run, chosen
// once by each family at load time.
#pragma once

#include <cstdlib>
#include <cstring>

namespace zel {

enum class isa_level { baseline, avx2, avx512 };

// The widest level the processor supports, with every extension the files are compiled for.
inline isa_level processor_isa()
{
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2");
    if (avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw"))
        return isa_level::avx512;
    return avx2 ? isa_level::avx2 : isa_level::baseline;
}

// processor_isa(), which the environment variable named (values "avx2", "baseline") can only
// lower: for tests and for comparing the paths.
inline isa_level choose_isa(const char *variable)
{
    const isa_level top = processor_isa();
    const char *cap = std::getenv(variable);
    if (cap == nullptr || std::strcmp(cap, "avx512") == 0)
        return top;
    if (std::strcmp(cap, "avx2") == 0)
        return top == isa_level::avx512 ? isa_level::avx2 : top;
    return isa_level::baseline;
}

} // namespace zel
