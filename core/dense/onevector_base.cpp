// The small-panel matrix-vector product, baseline x86-64 build.
#define ZEL_ONEVECTOR_ISA baseline
#include "onevector_small.hpp"

namespace zel::dense {

constinit const onevector_set onevector_base = baseline::make_onevector_set();

} // namespace zel::dense
