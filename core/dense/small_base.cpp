// Small-matrix kernels for any x86-64.
#define ZEL_SMALL_ISA base
namespace zel::dense::base {
constexpr bool fixed_orders = false;
}
#include "small_impl.hpp"

namespace zel::dense {

const small_set small_set_base = {base::table<float>(16, 8, 16), base::table<double>(16, 8, 16),
                                  base::table<std::complex<float>>(16, 8, 8), base::table<std::complex<double>>(16, 8, 8)};

} // namespace zel::dense
