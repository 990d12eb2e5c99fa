// The AVX2 kernels built again for AVX-512 processors: the same 256-bit code, given AVX-512VL's
// 32 vector registers, where the complex double LU of small orders no longer spills its columns
// (zgetrf 8 170 -> 158 ns, 4 41 -> 39, 12 414 -> 375 on the AMD EPYC). The AVX-512 set takes
// only what measured faster from this copy (small_avx512.cpp). Built without AVX-512BW, with
// which the same code measured slower (zgetrf 8 173 ns).
#pragma GCC target("no-avx512bw")

#define ZEL_SMALL_ISA avx2_on_avx512
#define ZEL_SMALL_AVX2_SET small_set_avx2_on_avx512
#include "small_avx2.cpp"
