// Chooses the row sorter for this processor once, at load time.
#include "row_sort.hpp"
#include "zel_internal/isa.hpp"

namespace zel::sparse_syrk {
namespace {

const row_sorter *choose()
{
    switch (choose_isa("ZEL_SPARSE_ISA")) {
    case isa_level::avx512: return &row_sorter_avx512;
    case isa_level::avx2: return &row_sorter_avx2;
    default: return nullptr;
    }
}

} // namespace

const row_sorter *row_sorter_active = choose();

} // namespace zel::sparse_syrk
