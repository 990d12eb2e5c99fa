// Chooses the small-matrix kernels for this processor once, at load time. ZEL_DENSE_ISA
// ("baseline", "avx2") can only lower the choice: for tests and for comparing the paths.
#include <cstdlib>
#include <cstring>

#include "small.hpp"

namespace zel::dense {
namespace {

const small_set *choose()
{
    __builtin_cpu_init();
    const char *cap = std::getenv("ZEL_DENSE_ISA");
    const bool allow_avx512 = cap == nullptr || std::strcmp(cap, "avx512") == 0;
    const bool allow_avx2 = allow_avx512 || std::strcmp(cap, "avx2") == 0;
    if (allow_avx512 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw"))
        return &small_set_avx512;
    if (allow_avx2 && __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
        return &small_set_avx2;
    return &small_set_base;
}

} // namespace

// Starts on the baseline set (constant-initialised) so nothing can see a null table.
const small_set *small_active = &small_set_base;
[[maybe_unused]] const bool small_chosen = (small_active = choose(), true);

} // namespace zel::dense
