// One-matrix dense kernels of the core: LAPACK semantics, 64-bit integers, Fortran conventions.
// Small sizes take the core's own paths; everything else goes to the private OpenBLAS.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel::dense {

template <class T> void getrf(const int64_t *m, const int64_t *n, T *a, const int64_t *lda, int64_t *ipiv,
                              int64_t *info);
template <class T> void getrfnp(const int64_t *m, const int64_t *n, T *a, const int64_t *lda, int64_t *info);
template <class T>
void getrs(const char *trans, const int64_t *n, const int64_t *nrhs, const T *a, const int64_t *lda,
           const int64_t *ipiv, T *b, const int64_t *ldb, int64_t *info);
template <class T>
void getri(const int64_t *n, T *a, const int64_t *lda, const int64_t *ipiv, T *work, const int64_t *lwork,
           int64_t *info);
template <class T>
void getri_oop(const int64_t *n, const T *a, const int64_t *lda, const int64_t *ipiv, T *ainv,
               const int64_t *ldainv, int64_t *info);
template <class T> void potrf(const char *uplo, const int64_t *n, T *a, const int64_t *lda, int64_t *info);

} // namespace zel::dense
