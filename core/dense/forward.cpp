// Factorisations, solves and inverses: argument checks, then the core's small-size paths or OpenBLAS.
#include <algorithm>
#include <complex>

#include "kernels.hpp"
#include "openblas.hpp"
#include "report.hpp"
#include "small.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::dense {
namespace {

char upper(const char *option) { return static_cast<char>(*option >= 'a' && *option <= 'z' ? *option - 32 : *option); }

// Index of the first exactly zero diagonal entry, 1-based, or 0.
template <class T> int64_t small_zero_diagonal(int64_t n, const T *a, int64_t lda)
{
    for (int64_t k = 0; k < n; ++k)
        if (a[k + k * lda] == T(0))
            return k + 1;
    return 0;
}

// ainv = A^-1 by a copy of the factor and the in-place inverse; false when no workspace.
template <class T>
bool getri_copy(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *ainv, int64_t ldainv)
{
    // Room for 64-column blocks, what the workspace query answers, without the query's cost
    // (a tenth of a small inverse); a smaller block choice only leaves part of it unused.
    int64_t info = 0;
    const int64_t lwork = 64 * n;
    scratch_array<T> work(static_cast<size_t>(lwork), 64);
    if (!work)
        return false;
    for (int64_t j = 0; j < n; ++j)
        std::copy(a + j * lda, a + j * lda + n, ainv + j * ldainv);
    openblas<T>::getri(&n, ainv, &ldainv, ipiv, work.get(), &lwork, &info);
    return true;
}

// Sets info to -position and reports it; returns true when there was an error.
template <class T> bool bad_argument(const char *routine, int64_t position, int64_t *info)
{
    if (position == 0)
        return false;
    *info = -position;
    report_argument(precision_letter<T>, routine, position);
    return true;
}

} // namespace

template <class T>
void getrf(const int64_t *m, const int64_t *n, T *a, const int64_t *lda, int64_t *ipiv, int64_t *info)
{
    const int64_t position = *m < 0 ? 1 : *n < 0 ? 2 : *lda < std::max<int64_t>(1, *m) ? 4 : 0;
    if (bad_argument<T>("getrf", position, info))
        return;
    const small_kernels<T> &small = small_for<T>();
    if (*m == *n && *n <= small.getrf_limit) {
        *info = 0;
        small.getrf(*n, a, *lda, ipiv, info);
        return;
    }
    openblas<T>::getrf(m, n, a, lda, ipiv, info);
}

template <class T>
void getrs(const char *trans, const int64_t *n, const int64_t *nrhs, const T *a, const int64_t *lda,
           const int64_t *ipiv, T *b, const int64_t *ldb, int64_t *info)
{
    const char t = upper(trans);
    const int64_t position = (t != 'N' && t != 'T' && t != 'C') ? 1
                             : *n < 0                           ? 2
                             : *nrhs < 0                        ? 3
                             : *lda < std::max<int64_t>(1, *n)  ? 5
                             : *ldb < std::max<int64_t>(1, *n)  ? 8
                                                                : 0;
    *info = 0;
    if (bad_argument<T>("getrs", position, info))
        return;
    if (*n <= small_limit && *nrhs <= 8) { // column-at-a-time solves: few right-hand sides only
        small_for<T>().getrs(t, *n, *nrhs, a, *lda, ipiv, b, *ldb);
        return;
    }
    openblas<T>::getrs(&t, n, nrhs, a, lda, ipiv, b, ldb, info, 1);
}

template <class T>
void getri(const int64_t *n, T *a, const int64_t *lda, const int64_t *ipiv, T *work, const int64_t *lwork,
           int64_t *info)
{
    const int64_t position = *n < 0                                          ? 1
                             : *lda < std::max<int64_t>(1, *n)               ? 3
                             : *lwork < std::max<int64_t>(1, *n) && *lwork != -1 ? 6
                                                                             : 0;
    if (bad_argument<T>("getri", position, info))
        return;
    if (*lwork == -1) { // room for the small path's copy of the inverse too
        openblas<T>::getri(n, a, lda, ipiv, work, lwork, info);
        if (*n <= small_limit)
            work[0] = T(std::max(std::real(work[0]), static_cast<real_t<T>>(*n * *n)));
        return;
    }
    *info = 0;
    if (*n <= small_for<T>().inverse_limit && *lwork >= *n * *n) {
        if ((*info = small_zero_diagonal(*n, a, *lda)) != 0)
            return;
        small_for<T>().inverse(*n, a, *lda, ipiv, work, *n);
        for (int64_t j = 0; j < *n; ++j)
            std::copy(work + j * *n, work + (j + 1) * *n, a + j * *lda);
        return;
    }
    openblas<T>::getri(n, a, lda, ipiv, work, lwork, info);
}

template <class T>
void getri_oop(const int64_t *n, const T *a, const int64_t *lda, const int64_t *ipiv, T *ainv,
               const int64_t *ldainv, int64_t *info)
{
    const int64_t position = *n < 0                             ? 1
                             : *lda < std::max<int64_t>(1, *n)    ? 3
                             : *ldainv < std::max<int64_t>(1, *n) ? 6
                                                                : 0;
    if (bad_argument<T>("getri_oop", position, info))
        return;
    *info = small_zero_diagonal(*n, a, *lda);
    if (*info == 0 && *n <= small_for<T>().inverse_limit) {
        small_for<T>().inverse(*n, a, *lda, ipiv, ainv, *ldainv);
        return;
    }
    if (*info == 0 && getri_copy(*n, a, *lda, ipiv, ainv, *ldainv))
        return;
    // The reference sequence; with a zero pivot it leaves the same infinities behind.
    const T zero(0), one(1);
    const int64_t k1 = 1, step = 1;
    openblas<T>::laset("A", n, n, &zero, &one, ainv, ldainv, 1);
    openblas<T>::laswp(n, ainv, ldainv, &k1, n, ipiv, &step);
    openblas<T>::trsm("L", "L", "N", "U", n, n, &one, a, lda, ainv, ldainv, 1, 1, 1, 1);
    openblas<T>::trsm("L", "U", "N", "N", n, n, &one, a, lda, ainv, ldainv, 1, 1, 1, 1);
}

template <class T> void potrf(const char *uplo, const int64_t *n, T *a, const int64_t *lda, int64_t *info)
{
    const char u = upper(uplo);
    const int64_t position = (u != 'U' && u != 'L') ? 1 : *n < 0 ? 2 : *lda < std::max<int64_t>(1, *n) ? 4 : 0;
    if (bad_argument<T>("potrf", position, info))
        return;
    // The upper triangle's small path works by dot products: only worth it for the smallest.
    if (*n <= (u == 'L' ? small_for<T>().potrf_limit : std::min<int64_t>(16, small_for<T>().potrf_limit))) {
        *info = 0;
        (u == 'L' ? small_for<T>().potrf_lower : small_for<T>().potrf_upper)(*n, a, *lda, info);
        return;
    }
    openblas<T>::potrf(&u, n, a, lda, info, 1);
}

#define ZEL_INSTANTIATE(T)                                                                                \
    template void getrf(const int64_t *, const int64_t *, T *, const int64_t *, int64_t *, int64_t *);    \
    template void getrs(const char *, const int64_t *, const int64_t *, const T *, const int64_t *,       \
                        const int64_t *, T *, const int64_t *, int64_t *);                                \
    template void getri(const int64_t *, T *, const int64_t *, const int64_t *, T *, const int64_t *,     \
                        int64_t *);                                                                       \
    template void potrf(const char *, const int64_t *, T *, const int64_t *, int64_t *);                  \
    template void getri_oop(const int64_t *, const T *, const int64_t *, const int64_t *, T *,             \
                            const int64_t *, int64_t *);
ZEL_INSTANTIATE(float)
ZEL_INSTANTIATE(double)
ZEL_INSTANTIATE(std::complex<float>)
ZEL_INSTANTIATE(std::complex<double>)
#undef ZEL_INSTANTIATE

} // namespace zel::dense
