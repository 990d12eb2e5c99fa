// The core's own matrix-vector product for small panels, compiled once per instruction-set level
// (onevector_base.cpp, _avx2.cpp, _avx512.cpp) into namespace ZEL_ONEVECTOR_ISA.
#pragma once

#include <complex>
#include <cstdint>

#include "zel_internal/value_traits.hpp"

namespace zel::dense {

// y = alpha·op(A)·x + beta·y on unit strides, op one of 'N', 'T', 'C'.
template <class T> using small_gemv_fn = void (*)(char, int64_t, int64_t, T, const T *, int64_t, const T *, T, T *);

struct onevector_set {
    small_gemv_fn<float> s;
    small_gemv_fn<double> d;
    small_gemv_fn<std::complex<float>> c;
    small_gemv_fn<std::complex<double>> z;

    small_gemv_fn<float> of(float *) const { return s; }
    small_gemv_fn<double> of(double *) const { return d; }
    small_gemv_fn<std::complex<float>> of(std::complex<float> *) const { return c; }
    small_gemv_fn<std::complex<double>> of(std::complex<double> *) const { return z; }
};

extern const onevector_set onevector_base, onevector_avx2, onevector_avx512;

#ifdef ZEL_ONEVECTOR_ISA
namespace ZEL_ONEVECTOR_ISA {

// Columns as axpys ("N"); dot products in eight partial sums ("T", "C"), so that the additions
// overlap and vectorise.
template <class T>
void small_gemv(char trans, int64_t m, int64_t n, T alpha, const T *a, int64_t lda, const T *x, T beta, T *y)
{
    const bool plain = trans == 'N' || trans == 'n', c = trans == 'C' || trans == 'c';
    const int64_t ny = plain ? m : n;
    if (beta == T(0))
        for (int64_t i = 0; i < ny; ++i)
            y[i] = T(0);
    else if (beta != T(1))
        for (int64_t i = 0; i < ny; ++i)
            y[i] *= beta;
    if (plain) {
        for (int64_t j = 0; j < n; ++j) {
            const T t = alpha * x[j];
            const T *col = a + j * lda;
            for (int64_t i = 0; i < m; ++i)
                y[i] += col[i] * t;
        }
        return;
    }
    for (int64_t j = 0; j < n; ++j) {
        const T *col = a + j * lda;
        T s[8] = {};
        int64_t i = 0;
        for (; i + 8 <= m; i += 8)
            for (int q = 0; q < 8; ++q)
                s[q] += conj_if(col[i + q], c) * x[i + q];
        for (; i < m; ++i)
            s[0] += conj_if(col[i], c) * x[i];
        y[j] += alpha * (((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7])));
    }
}

constexpr onevector_set make_onevector_set()
{
    return {small_gemv<float>, small_gemv<double>, small_gemv<std::complex<float>>,
            small_gemv<std::complex<double>>};
}

} // namespace ZEL_ONEVECTOR_ISA
#endif

} // namespace zel::dense
