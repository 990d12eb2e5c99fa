// Chooses the repeated-row former for this processor once, at load time.
#include "repeat_rows.hpp"
#include "zel_internal/isa.hpp"

namespace zel::sparse_syrk {

const repeat_former *repeat_former_active =
    choose_isa("ZEL_SPARSE_ISA") == isa_level::avx512 ? &repeat_former_avx512 : nullptr;

} // namespace zel::sparse_syrk
