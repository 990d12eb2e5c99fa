// Inverses written out of place from LU factors: strided batch and groups of matrix pointers.
#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"
#include "group_frame.hpp"

namespace zel::lapack {

// Positions of lda, stride_a, stride_ipiv, ldainv and stride_ainv are one lower than their
// place in the list (2, 3, 5, 6, 8): callers rely on these numbers.
template <class T, class I>
void getri_oop_batch_strided(const char *name, const I *n, const T *a, const I *lda, const I *stride_a, const I *ipiv,
                             const I *stride_ipiv, T *ainv, const I *ldainv, const I *stride_ainv, const I *batch_size,
                             I *info)
{
    const int64_t order = *n, ld_a = *lda, step_a = *stride_a, step_piv = *stride_ipiv;
    const int64_t ld_inv = *ldainv, step_inv = *stride_ainv, count = *batch_size;
    if (count < 0)
        return report(name, 10);
    const int64_t position = first_failure({{order < 0, 1},
                                            {ld_a < std::max<int64_t>(1, order), 2},
                                            {step_a < extent(ld_a, order), 3},
                                            {step_piv < order, 5},
                                            {ld_inv < std::max<int64_t>(1, order), 6},
                                            {step_inv < extent(ld_inv, order), 8}});
    if (position != 0)
        return reject(name, position, info, count);
    if (order == 0 || count == 0)
        return;

    wide_pivots<I> work(order);
    if (!work)
        return report(name, code_no_memory);
    for (int64_t i = 0; i < count; ++i) {
        const int64_t *piv = work.load(ipiv + i * step_piv, order);
        run_member(info[i], [&](int64_t *status) {
            getri_oop(order, a + i * step_a, ld_a, piv, ainv + i * step_inv, ld_inv, status);
        });
    }
}

// The group form checks like getrf_batch: group_count at 7, group_size at 8, and per group
// n -> 1, lda -> 3, ldainv -> 6 (their places in the list).
template <class T, class I>
void getri_oop_batch(const char *name, const I *n, T *const *a, const I *lda, I *const *ipiv, T *const *ainv,
                     const I *ldainv, const I *group_count, const I *group_size, I *info)
{
    const int64_t total = check_groups(name, 7, group_count, group_size, info, [&](int64_t g) {
        const I bound = std::max<I>(1, n[g]);
        return first_failure({{n[g] < 0, 1}, {lda[g] < bound, 3}, {ldainv[g] < bound, 6}});
    });
    if (total <= 0)
        return;

    const int64_t longest = *std::max_element(n, n + *group_count);
    scratch_array<int64_t> pivots = group_pivots(name, longest, info, total);
    if (!pivots)
        return;
    for (int64_t g = 0, k = 0; g < *group_count; ++g) {
        const int64_t order = n[g], ld_a = lda[g], ld_inv = ldainv[g];
        for (int64_t end = k + group_size[g]; k < end; ++k) {
            std::copy(ipiv[k], ipiv[k] + order, pivots.get());
            run_member(info[k], [&](int64_t *status) {
                getri_oop<T>(order, a[k], ld_a, pivots.get(), ainv[k], ld_inv, status);
            });
        }
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void getri_oop_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_getri_oop_batch_strided(T, I, I *const *));        \
    template void getri_oop_batch<T, I>(const char *, ZEL_LAPACK_PARAMS_getri_oop_batch(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
