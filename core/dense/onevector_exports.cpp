// Exported triangular solve and matrix-vector product for the layer's one-right-hand-side
// kernels: the reference argument conventions, with one right-hand side taken by trsv (the
// solve kernels call them once per supernode, where trsm's set-up would dominate).
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
    { zel::dense::openblas<T>::gemv(trans, m, n, as_cpp(alpha), as_cpp(a), lda, as_cpp(x), incx, as_cpp(beta), \
                                    as_cpp(y), incy, 1); }

extern "C" {
ZEL_DENSE_MEMBERS(ZEL_ONEVECTOR_EXPORTS)
}
