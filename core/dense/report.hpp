// Argument errors of the dense kernels go to the application's error handler.
#pragma once

#include <complex>
#include <cstdint>
#include <type_traits>

namespace zel::dense {

// Reports a bad argument of `routine` ("getrf") for precision letter p at 1-based `position`.
void report_argument(char precision, const char *routine, int64_t position);

// s, d, c or z for the value type T.
template <class T>
inline constexpr char precision_letter = std::is_same_v<T, float>                  ? 's'
                                         : std::is_same_v<T, double>               ? 'd'
                                         : std::is_same_v<T, std::complex<float>> ? 'c'
                                                                                   : 'z';

} // namespace zel::dense
