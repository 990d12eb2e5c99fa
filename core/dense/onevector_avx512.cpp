// The small-panel matrix-vector product, avx512 build.
#define ZEL_ONEVECTOR_ISA avx512
#include "onevector_small.hpp"

namespace zel::dense {

constinit const onevector_set onevector_avx512 = avx512::make_onevector_set();

} // namespace zel::dense
