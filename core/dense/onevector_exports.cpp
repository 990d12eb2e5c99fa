// Exported triangular solve and matrix-vector product for the layer's one-right-hand-side
// kernels: the reference argument conventions, with one right-hand side taken by trsv (the
// solve kernels call them once per supernode, where trsm's set-up would dominate).
#include <algorithm>
#include <complex>
#include <cstring>

#include "zel/dense_kernels.h"
#include "zel_internal/members.hpp"

#include "onevector_small.hpp"
#include "openblas.hpp"
#include "zel_internal/isa.hpp"
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

// The small-panel product for this processor; ZEL_DENSE_ISA ("baseline", "avx2") can only lower
// the choice.
const onevector_set *choose_onevector()
{
    switch (choose_isa("ZEL_DENSE_ISA")) {
    case isa_level::avx512: return &onevector_avx512;
    case isa_level::avx2: return &onevector_avx2;
    default: return &onevector_base;
    }
}
// Starts on the baseline set (constant-initialised) so that no caller can see a null table.
const onevector_set *onevector_active = &onevector_base;
[[maybe_unused]] const bool onevector_chosen = (onevector_active = choose_onevector(), true);

template <class T>
void one_vector_gemv(const char *trans, const int64_t *m, const int64_t *n, const T *alpha, const T *a,
                     const int64_t *lda, const T *x, const int64_t *incx, const T *beta, T *y, const int64_t *incy)
{
    const bool small = trans != nullptr && m != nullptr && n != nullptr && lda != nullptr && incx != nullptr &&
                       incy != nullptr && alpha != nullptr && beta != nullptr && *incx == 1 && *incy == 1 &&
                       *m >= 0 && *n >= 0 && *lda >= std::max<int64_t>(1, *m) && *m <= small_gemv_entries && *n <= small_gemv_entries &&
                       *m * *n <= small_gemv_entries &&
                       std::strchr("NnTtCc", *trans) != nullptr && *trans != '\0';
    if (small)
        onevector_active->of(static_cast<T *>(nullptr))(*trans, *m, *n, *alpha, a, *lda, x, *beta, y);
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
