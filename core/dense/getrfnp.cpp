// LU factorisation without pivoting: A = L*U with L unit lower triangular.
#include <algorithm>
#include <complex>

#include "kernels.hpp"
#include "openblas.hpp"
#include "report.hpp"

namespace zel::dense {
namespace {

constexpr int64_t block = 32; // panel width of the blocked path; smaller problems run unblocked

// Unblocked right-looking LU of the m x n matrix at a; a zero pivot leaves its column unscaled
// and is reported (first one only) as offset + its column.
template <class T> void getrfnp_unblocked(int64_t m, int64_t n, T *a, int64_t lda, int64_t offset, int64_t *info)
{
    const int64_t steps = std::min(m, n);
    for (int64_t k = 0; k < steps; ++k) {
        T *col = a + k * lda;
        const T pivot = col[k];
        if (pivot != T(0)) {
            const T scale = T(1) / pivot;
            for (int64_t i = k + 1; i < m; ++i)
                col[i] *= scale;
        } else if (*info == 0) {
            *info = offset + k + 1;
        }
        for (int64_t j = k + 1; j < n; ++j) {
            T *target = a + j * lda;
            const T ukj = target[k];
            if (ukj == T(0))
                continue;
            for (int64_t i = k + 1; i < m; ++i)
                target[i] -= col[i] * ukj;
        }
    }
}

// Blocked over the level-3 kernels: factor a panel, solve for its U row block, update the rest.
template <class T> void getrfnp_blocked(int64_t m, int64_t n, T *a, int64_t lda, int64_t *info)
{
    const int64_t steps = std::min(m, n);
    const T one(1), minus_one(-1);
    for (int64_t j = 0; j < steps; j += block) {
        const int64_t jb = std::min(block, steps - j);
        T *diag = a + j + j * lda;
        getrfnp_unblocked(m - j, jb, diag, lda, j, info);
        const int64_t right = n - j - jb;
        if (right <= 0)
            continue;
        T *top_right = diag + jb * lda;
        openblas<T>::trsm("L", "L", "N", "U", &jb, &right, &one, diag, &lda, top_right, &lda, 1, 1, 1, 1);
        const int64_t below = m - j - jb;
        if (below > 0)
            openblas<T>::gemm("N", "N", &below, &right, &jb, &minus_one, diag + jb, &lda, top_right, &lda,
                              &one, top_right + jb, &lda, 1, 1);
    }
}

} // namespace

template <class T> void getrfnp(const int64_t *m, const int64_t *n, T *a, const int64_t *lda, int64_t *info)
{
    *info = 0;
    const int64_t position = *m < 0 ? 1 : *n < 0 ? 2 : *lda < std::max<int64_t>(1, *m) ? 4 : 0;
    if (position != 0) {
        *info = -position;
        report_argument(precision_letter<T>, "getrfnp", position);
        return;
    }
    if (*m == 0 || *n == 0)
        return;
    if (std::min(*m, *n) <= block)
        getrfnp_unblocked(*m, *n, a, *lda, 0, info);
    else
        getrfnp_blocked(*m, *n, a, *lda, info);
}

template void getrfnp(const int64_t *, const int64_t *, float *, const int64_t *, int64_t *);
template void getrfnp(const int64_t *, const int64_t *, double *, const int64_t *, int64_t *);
template void getrfnp(const int64_t *, const int64_t *, std::complex<float> *, const int64_t *, int64_t *);
template void getrfnp(const int64_t *, const int64_t *, std::complex<double> *, const int64_t *, int64_t *);

} // namespace zel::dense
