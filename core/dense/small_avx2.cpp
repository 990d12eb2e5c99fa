// Small-matrix kernels for AVX2 with FMA.
#define ZEL_SMALL_ISA avx2
namespace zel::dense::avx2 {
constexpr bool fixed_orders = true;
}
#include "small_impl.hpp"

namespace zel::dense {

const small_set small_set_avx2 = {avx2::table<float>(32, 8, 32), avx2::table<double>(32, 16, 32),
                                  avx2::table<std::complex<float>>(32, 16, 32), avx2::table<std::complex<double>>(32, 16, 32)};

} // namespace zel::dense
