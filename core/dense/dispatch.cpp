// Chooses the small-matrix kernels for this processor once, at load time. ZEL_DENSE_ISA
// ("baseline", "avx2") can only lower the choice: for tests and for comparing the paths.
#include "small.hpp"
#include "zel_internal/isa.hpp"

namespace zel::dense {
namespace {

const small_set *choose()
{
    switch (choose_isa("ZEL_DENSE_ISA")) {
    case isa_level::avx512: return &small_set_avx512;
    case isa_level::avx2: return &small_set_avx2;
    default: return &small_set_base;
    }
}

} // namespace

// Starts on the baseline set (constant-initialised) so nothing can see a null table.
const small_set *small_active = &small_set_base;
[[maybe_unused]] const bool small_chosen = (small_active = choose(), true);

} // namespace zel::dense
