// The small-panel matrix-vector product, avx2 build.
#define ZEL_ONEVECTOR_ISA avx2
#include "onevector_small.hpp"

namespace zel::dense {

constinit const onevector_set onevector_avx2 = avx2::make_onevector_set();

} // namespace zel::dense
