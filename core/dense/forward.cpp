// Factorisations, solves and inverses: argument checks, then the core's small-size paths or OpenBLAS.
#include <algorithm>
#include <complex>

#include "kernels.hpp"
#include "openblas.hpp"
#include "report.hpp"

namespace zel::dense {
namespace {

char upper(const char *option) { return static_cast<char>(*option >= 'a' && *option <= 'z' ? *option - 32 : *option); }

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
    openblas<T>::getri(n, a, lda, ipiv, work, lwork, info);
}

template <class T> void potrf(const char *uplo, const int64_t *n, T *a, const int64_t *lda, int64_t *info)
{
    const char u = upper(uplo);
    const int64_t position = (u != 'U' && u != 'L') ? 1 : *n < 0 ? 2 : *lda < std::max<int64_t>(1, *n) ? 4 : 0;
    if (bad_argument<T>("potrf", position, info))
        return;
    openblas<T>::potrf(&u, n, a, lda, info, 1);
}

#define ZEL_INSTANTIATE(T)                                                                                \
    template void getrf(const int64_t *, const int64_t *, T *, const int64_t *, int64_t *, int64_t *);    \
    template void getrs(const char *, const int64_t *, const int64_t *, const T *, const int64_t *,       \
                        const int64_t *, T *, const int64_t *, int64_t *);                                \
    template void getri(const int64_t *, T *, const int64_t *, const int64_t *, T *, const int64_t *,     \
                        int64_t *);                                                                       \
    template void potrf(const char *, const int64_t *, T *, const int64_t *, int64_t *);
ZEL_INSTANTIATE(float)
ZEL_INSTANTIATE(double)
ZEL_INSTANTIATE(std::complex<float>)
ZEL_INSTANTIATE(std::complex<double>)
#undef ZEL_INSTANTIATE

} // namespace zel::dense
