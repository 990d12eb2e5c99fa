// The solve frame's value and index types, for the layer's driver and the core's kernels.
#pragma once

#include <complex>
#include <cstdint>
#include <type_traits>

#include "zel/pds_solve.h"
#include "zel_internal/value_traits.hpp"

namespace zel::pds {

// Complex matrix types of the solver (the rest are real).
constexpr bool complex_type(int64_t matrix_type)
{
    return matrix_type == 3 || matrix_type == 4 || matrix_type == -4 || matrix_type == 6 || matrix_type == 13;
}

// Hermitian types: a stored upper triangle mirrors with conjugation.
constexpr bool hermitian_type(int64_t matrix_type) { return matrix_type == 4 || matrix_type == -4; }

// Calls body.template operator()<T, I>() for the value type (real or complex, as Complex says)
// and index type the frame holds.
template <bool Complex, class Body> void with_frame_types(const zel_pds_frame &frame, Body &&body)
{
    using D = std::conditional_t<Complex, std::complex<double>, double>;
    using F = std::conditional_t<Complex, std::complex<float>, float>;
    if (frame.single) {
        if (frame.lp64)
            body.template operator()<F, int32_t>();
        else
            body.template operator()<F, int64_t>();
    } else if (frame.lp64) {
        body.template operator()<D, int32_t>();
    } else {
        body.template operator()<D, int64_t>();
    }
}

// Whether the frame describes values of type T and indices of type I.
template <class T, class I> bool frame_holds(const zel_pds_frame &frame)
{
    return (frame.lp64 != 0) == (sizeof(I) == 4) && (frame.single != 0) == (sizeof(real_t<T>) == 4);
}

} // namespace zel::pds
