// Chooses the row sorter for this processor once, at load time.
#include <cstdlib>
#include <cstring>

#include "row_sort.hpp"

namespace zel::sparse_syrk {
namespace {

const row_sorter *choose()
{
    __builtin_cpu_init();
    const char *cap = std::getenv("ZEL_SPARSE_ISA");
    const bool allow_avx512 = cap == nullptr || std::strcmp(cap, "avx512") == 0;
    const bool allow_avx2 = allow_avx512 || std::strcmp(cap, "avx2") == 0;
    if (allow_avx512 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw"))
        return &row_sorter_avx512;
    if (allow_avx2 && __builtin_cpu_supports("avx2"))
        return &row_sorter_avx2;
    return nullptr;
}

} // namespace

const row_sorter *row_sorter_active = choose();

} // namespace zel::sparse_syrk
