// The instantiation lists that every family's exported shells are generated from.
#pragma once

#include <complex>
#include <cstdint>

#include "zel/platform.h"

// Dense families, one row a precision: letter, C value type, C++ value type.
#define ZEL_DENSE_MEMBERS(X)                                                                              \
    X(s, float, float)                                                                                    \
    X(d, double, double)                                                                                  \
    X(c, zel_complex8, std::complex<float>)                                                               \
    X(z, zel_complex16, std::complex<double>)
// The complex rows alone, for the families that exist only for complex values (Hermitian ones).
#define ZEL_DENSE_COMPLEX_MEMBERS(X)                                                                      \
    X(c, zel_complex8, std::complex<float>)                                                               \
    X(z, zel_complex16, std::complex<double>)

// Sparse families, one row a precision and index width:
// letter, C value type, C++ value type, width suffix, index type.
#define ZEL_SPARSE_MEMBERS(X)                                                                             \
    X(s, float, float, i4, int32_t)                                                                       \
    X(d, double, double, i4, int32_t)                                                                     \
    X(c, zel_complex8, std::complex<float>, i4, int32_t)                                                  \
    X(z, zel_complex16, std::complex<double>, i4, int32_t)                                                \
    X(s, float, float, i8, int64_t)                                                                       \
    X(d, double, double, i8, int64_t)                                                                     \
    X(c, zel_complex8, std::complex<float>, i8, int64_t)                                                  \
    X(z, zel_complex16, std::complex<double>, i8, int64_t)

// Type-independent sparse entries: width suffix, index type.
#define ZEL_SPARSE_WIDTHS(X) X(i4, int32_t) X(i8, int64_t)

// Direct-solver solve families, one row a precision and integer width: precision prefix (sp_
// for single), C value type, C++ value type, width prefix (lp64_ for 32-bit), index type. Real
// and complex members come in two lists, their names ending in _real and _cmplx.
#define ZEL_PDS_REAL_MEMBERS(X)                                                                           \
    X(, double, double, , int64_t)                                                                        \
    X(sp_, float, float, , int64_t)                                                                       \
    X(, double, double, lp64_, int32_t)                                                                   \
    X(sp_, float, float, lp64_, int32_t)
#define ZEL_PDS_CMPLX_MEMBERS(X)                                                                          \
    X(, zel_complex16, std::complex<double>, , int64_t)                                                   \
    X(sp_, zel_complex8, std::complex<float>, , int64_t)                                                  \
    X(, zel_complex16, std::complex<double>, lp64_, int32_t)                                              \
    X(sp_, zel_complex8, std::complex<float>, lp64_, int32_t)
