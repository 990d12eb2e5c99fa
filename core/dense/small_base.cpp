// Small-matrix kernels for any x86-64.
#define ZEL_SMALL_ISA base
namespace zel::dense::base {
constexpr bool fixed_orders = false;
}
#include "small_impl.hpp"

namespace zel::dense {

// Orders up to which the loops beat OpenBLAS's own baseline kernels (`zel bench dense`, AMD EPYC
// with ZEL_DENSE_ISA=baseline against OPENBLAS_CORETYPE=Nehalem): LU to 64 in every precision
// (1.05-1.3x there); the inverse to 64 (1.04-1.8x); Cholesky to 16 in real (1.2x at 16, 1.0x at
// 24) and 32 in complex (1.6-2.1x at 32, 0.9-1.1x at 48).
const small_set small_set_base = {base::table<float>(64, 16, 64), base::table<double>(64, 16, 64),
                                  base::table<std::complex<float>>(64, 32, 64), base::table<std::complex<double>>(64, 32, 64)};

} // namespace zel::dense
