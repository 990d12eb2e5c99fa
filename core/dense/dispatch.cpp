// Chooses the small-matrix kernels for this processor once, at load time.
#include "small.hpp"

namespace zel::dense {
namespace {

const small_set *choose()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw"))
        return &small_set_avx512;
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
        return &small_set_avx2;
    return &small_set_base;
}

} // namespace

// Starts on the baseline set (constant-initialised) so nothing can see a null table.
const small_set *small_active = &small_set_base;
[[maybe_unused]] const bool small_chosen = (small_active = choose(), true);

} // namespace zel::dense
