// Exported triangular solve and matrix-vector product for the layer's one-right-hand-side
// kernels: the reference argument conventions, with one right-hand side taken by trsv (the
// solve kernels call them once per supernode, where trsm's set-up would dominate).
#include <algorithm>
#include <complex>
#include <cstring>

#include "zel/dense_kernels.h"
#include "zel_internal/members.hpp"

#include "openblas.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::dense {
namespace {

template <class T>
void one_rhs_trsm(const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,
                  const int64_t *n, const T *alpha, const T *a, const int64_t *lda, T *b, const int64_t *ldb)
{
    const bool left = side != nullptr && (*side == 'L' || *side == 'l');
    if (left && n != nullptr && *n == 1 && alpha != nullptr && *alpha == T(1) && m != nullptr && *m >= 0 &&
        lda != nullptr && *lda >= (*m > 1 ? *m : 1) && ldb != nullptr && *ldb >= (*m > 1 ? *m : 1)) {
        const int64_t one = 1;
        openblas<T>::trsv(uplo, transa, diag, m, a, lda, b, &one, 1, 1, 1);
        return;
    }
    openblas<T>::trsm(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb, 1, 1, 1, 1);
}

// Below this many entries of A the product runs here: OpenBLAS's call costs more than the
// arithmetic (the solve kernels call once per supernode, mostly on small panels).
constexpr int64_t small_gemv_entries = 2048;

template <class T> T conj_of(T v, bool c)
{
    if constexpr (is_complex_v<T>)
        return c ? std::conj(v) : v;
    else
        return v;
}

// y = alpha·op(A)·x + beta·y on unit strides: columns as axpys ("N"), dot products in four
// partial sums ("T", "C").
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
        T s0(0), s1(0), s2(0), s3(0);
        int64_t i = 0;
        for (; i + 4 <= m; i += 4) {
            s0 += conj_of(col[i], c) * x[i];
            s1 += conj_of(col[i + 1], c) * x[i + 1];
            s2 += conj_of(col[i + 2], c) * x[i + 2];
            s3 += conj_of(col[i + 3], c) * x[i + 3];
        }
        for (; i < m; ++i)
            s0 += conj_of(col[i], c) * x[i];
        y[j] += alpha * ((s0 + s1) + (s2 + s3));
    }
}

template <class T>
void one_vector_gemv(const char *trans, const int64_t *m, const int64_t *n, const T *alpha, const T *a,
                     const int64_t *lda, const T *x, const int64_t *incx, const T *beta, T *y, const int64_t *incy)
{
    const bool small = trans != nullptr && m != nullptr && n != nullptr && lda != nullptr && incx != nullptr &&
                       incy != nullptr && alpha != nullptr && beta != nullptr && *incx == 1 && *incy == 1 &&
                       *m >= 0 && *n >= 0 && *lda >= std::max<int64_t>(1, *m) && *m * *n <= small_gemv_entries &&
                       std::strchr("NnTtCc", *trans) != nullptr && *trans != '\0';
    if (small)
        small_gemv(*trans, *m, *n, *alpha, a, *lda, x, *beta, y);
    else
        openblas<T>::gemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy, 1);
}

} // namespace
} // namespace zel::dense

using zel::as_cpp;

#define ZEL_ONEVECTOR_EXPORTS(P, C, T)                                                                    \
    ZEL_API void zel_blas_x##P##trsm(const char *side, const char *uplo, const char *transa,              \
                                     const char *diag, const int64_t *m, const int64_t *n, const C *alpha, \
                                     const C *a, const int64_t *lda, C *b, const int64_t *ldb, size_t,     \
                                     size_t, size_t, size_t)                                               \
    { zel::dense::one_rhs_trsm(side, uplo, transa, diag, m, n, as_cpp(alpha), as_cpp(a), lda, as_cpp(b), ldb); } \
    ZEL_API void zel_blas_x##P##gemv(const char *trans, const int64_t *m, const int64_t *n, const C *alpha,  \
                                     const C *a, const int64_t *lda, const C *x, const int64_t *incx,      \
                                     const C *beta, C *y, const int64_t *incy, size_t)                     \
    { zel::dense::one_vector_gemv(trans, m, n, as_cpp(alpha), as_cpp(a), lda, as_cpp(x), incx, as_cpp(beta),  \
                                  as_cpp(y), incy); }

extern "C" {
ZEL_DENSE_MEMBERS(ZEL_ONEVECTOR_EXPORTS)
}
