// The solve's sweep kernels for AVX-512.
#define ZEL_SWEEP_ISA avx512
#define ZEL_SWEEP_VECTOR_BYTES 64
#define ZEL_SWEEP_REGISTERS 32
#include "sweep_kernels.hpp"

namespace zel::solver {

constinit const sweep_set sweeps_avx512 = avx512::make_sweep_set();

} // namespace zel::solver
