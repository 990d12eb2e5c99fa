// Value-type traits shared by every templated family.
#pragma once

#include <complex>
#include <type_traits>

#include "zel/platform.h"

namespace zel {

template <class T> struct value_traits {
    using real = T;
    static constexpr bool is_complex = false;
};
template <class R> struct value_traits<std::complex<R>> {
    using real = R;
    static constexpr bool is_complex = true;
};

template <class T> using real_t = typename value_traits<T>::real;
template <class T> inline constexpr bool is_complex_v = value_traits<T>::is_complex;

template <class T> constexpr T conj_if(T value, bool conjugate)
{
    if constexpr (is_complex_v<T>)
        return conjugate ? std::conj(value) : value;
    else
        return value;
}

// The C++ type behind each C value type of the public headers.
template <class C> struct cpp_value {
    using type = C;
};
template <> struct cpp_value<zel_complex8> {
    using type = std::complex<float>;
};
template <> struct cpp_value<zel_complex16> {
    using type = std::complex<double>;
};
template <class C> using cpp_value_t = typename cpp_value<C>::type;

static_assert(sizeof(zel_complex8) == sizeof(std::complex<float>));
static_assert(sizeof(zel_complex16) == sizeof(std::complex<double>));

// View a C value array as its C++ type (layout-compatible by construction).
template <class C> inline cpp_value_t<C> *as_cpp(C *p) { return reinterpret_cast<cpp_value_t<C> *>(p); }
template <class C> inline const cpp_value_t<C> *as_cpp(const C *p)
{
    return reinterpret_cast<const cpp_value_t<C> *>(p);
}

} // namespace zel
