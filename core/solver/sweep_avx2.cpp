// The solve's sweep kernels for AVX2 with FMA.
#define ZEL_SWEEP_ISA avx2
#define ZEL_SWEEP_VECTOR_BYTES 32
#define ZEL_SWEEP_REGISTERS 16
#include "sweep_kernels.hpp"

namespace zel::solver {

constinit const sweep_set sweeps_avx2 = avx2::make_sweep_set();

} // namespace zel::solver
