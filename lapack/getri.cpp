// Strided batch of in-place inverses from LU factors.
#include <cmath>

#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"

namespace zel::lapack {
namespace {

// The kernel's workspace length for order n, asked once on the first member.
template <class T> int64_t getri_workspace(int64_t n, T *a, int64_t lda, const int64_t *ipiv)
{
    T size(0);
    int64_t status = 0;
    getri(n, a, lda, ipiv, &size, -1, &status);
    return std::max<int64_t>(n, static_cast<int64_t>(std::ceil(std::real(size))));
}

} // namespace

// Checks as getri_oop in the true places of this list: n 1, lda 3, stride_a 4, stride_ipiv 6,
// batch_size 7.
template <class T, class I>
void getri_batch_strided(const char *name, const I *n, T *a, const I *lda, const I *stride_a, const I *ipiv,
                         const I *stride_ipiv, const I *batch_size, I *info)
{
    const int64_t order = *n, ld = *lda, step_a = *stride_a, step_piv = *stride_ipiv, count = *batch_size;
    if (count < 0)
        return report(name, 7);
    const int64_t position = first_failure({{order < 0, 1},
                                            {ld < std::max<int64_t>(1, order), 3},
                                            {step_a < extent(ld, order), 4},
                                            {step_piv < order, 6}});
    if (position != 0)
        return reject(name, position, info, count);
    if (order == 0 || count == 0)
        return;

    wide_pivots<I> pivots(order);
    if (!pivots)
        return report(name, code_no_memory);
    const int64_t lwork = getri_workspace(order, a, ld, pivots.load(ipiv, order));
    scratch_array<T> work(static_cast<size_t>(lwork), 64);
    if (!work)
        return report(name, code_no_memory);
    for (int64_t i = 0; i < count; ++i) {
        const int64_t *piv = pivots.load(ipiv + i * step_piv, order);
        run_member(info[i], [&](int64_t *status) { getri(order, a + i * step_a, ld, piv, work.get(), lwork, status); });
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void getri_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_getri_batch_strided(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
