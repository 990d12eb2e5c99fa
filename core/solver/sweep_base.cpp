// The solve's sweep kernels for baseline x86-64 (SSE2).
#define ZEL_SWEEP_ISA base
#define ZEL_SWEEP_VECTOR_BYTES 16
#define ZEL_SWEEP_REGISTERS 16
#include "sweep_kernels.hpp"

namespace zel::solver {

constinit const sweep_set sweeps_base = base::make_sweep_set();

} // namespace zel::solver
