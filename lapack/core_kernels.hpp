// The core's one-matrix dense kernels, seen through the C++ value types and called by value.
#pragma once

#include <complex>
#include <cstdint>

#include "zel/core_imports.h"
#include "zel_internal/value_traits.hpp"

namespace zel::lapack {

// The core's kernels for value type T and the C type they take.
template <class T> struct kernels;

#define ZEL_DENSE_KERNEL_TABLE(P, C)                                                                                   \
    template <> struct kernels<cpp_value_t<C>> {                                                                       \
        using c_type = C;                                                                                              \
        static constexpr auto getrf = zel_lapack_x##P##getrf;                                                          \
        static constexpr auto getrfnp = zel_lapack_##P##getrfnp;                                                       \
        static constexpr auto getrs = zel_lapack_##P##getrs;                                                           \
        static constexpr auto getri = zel_lapack_##P##getri;                                                           \
        static constexpr auto getri_oop = zel_lapack_##P##getri_oop;                                                   \
        static constexpr auto potrf = zel_lapack_##P##potrf;                                                           \
        static constexpr auto gels = zel_lapack_##P##gels;                                                             \
        static constexpr auto trsm = zel_blas_##P##trsm;                                                               \
    };
ZEL_DENSE_KERNEL_TABLE(s, float)
ZEL_DENSE_KERNEL_TABLE(d, double)
ZEL_DENSE_KERNEL_TABLE(c, zel_complex8)
ZEL_DENSE_KERNEL_TABLE(z, zel_complex16)
#undef ZEL_DENSE_KERNEL_TABLE

template <class T> using c_type_t = typename kernels<T>::c_type;
template <class T> c_type_t<T> *to_c(T *p) { return reinterpret_cast<c_type_t<T> *>(p); }
template <class T> const c_type_t<T> *to_c(const T *p) { return reinterpret_cast<const c_type_t<T> *>(p); }

constexpr size_t one_char = 1; // hidden length of every character option

template <class T> void getrf(int64_t m, int64_t n, T *a, int64_t lda, int64_t *ipiv, int64_t *info)
{
    kernels<T>::getrf(&m, &n, to_c(a), &lda, ipiv, info);
}

template <class T> void getrfnp(int64_t m, int64_t n, T *a, int64_t lda, int64_t *info)
{
    kernels<T>::getrfnp(&m, &n, to_c(a), &lda, info);
}

template <class T>
void getrs(const char *trans, int64_t n, int64_t nrhs, const T *a, int64_t lda, const int64_t *ipiv, T *b, int64_t ldb,
           int64_t *info)
{
    kernels<T>::getrs(trans, &n, &nrhs, to_c(a), &lda, ipiv, to_c(b), &ldb, info, one_char);
}

template <class T> void getri(int64_t n, T *a, int64_t lda, const int64_t *ipiv, T *work, int64_t lwork, int64_t *info)
{
    kernels<T>::getri(&n, to_c(a), &lda, ipiv, to_c(work), &lwork, info);
}

// Ainv = (P*L*U)^-1 from the factors in A, which stays as it is: identity, the interchanges and
// the two triangular solves (fused by the core for small n); info names a zero U(j,j).
template <class T>
void getri_oop(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *ainv, int64_t ldainv, int64_t *info)
{
    kernels<T>::getri_oop(&n, to_c(a), &lda, ipiv, to_c(ainv), &ldainv, info);
}

template <class T> void potrf(const char *uplo, int64_t n, T *a, int64_t lda, int64_t *info)
{
    kernels<T>::potrf(uplo, &n, to_c(a), &lda, info, one_char);
}

template <class T>
void gels(const char *trans, int64_t m, int64_t n, int64_t nrhs, T *a, int64_t lda, T *b, int64_t ldb, T *work,
          int64_t lwork, int64_t *info)
{
    kernels<T>::gels(trans, &m, &n, &nrhs, to_c(a), &lda, to_c(b), &ldb, to_c(work), &lwork, info, one_char);
}

// B = op(A)^-1 * B from the left with the triangle `uplo` of A; alpha = 1.
template <class T>
void trsm_left(const char *uplo, const char *trans, const char *diag, int64_t m, int64_t n, const T *a, int64_t lda,
               T *b, int64_t ldb)
{
    const T one(1);
    kernels<T>::trsm("L", uplo, trans, diag, &m, &n, to_c(&one), to_c(a), &lda, to_c(b), &ldb, one_char, one_char,
                     one_char, one_char);
}

} // namespace zel::lapack
