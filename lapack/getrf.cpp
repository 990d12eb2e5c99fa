// LU factorisations with partial pivoting: strided batch and groups of matrix pointers.
#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"
#include "group_frame.hpp"

namespace zel::lapack {

template <class T, class I>
void getrf_batch_strided(const char *name, const I *m, const I *n, T *a, const I *lda, const I *stride_a, I *ipiv,
                         const I *stride_ipiv, const I *batch_size, I *info)
{
    const int64_t rows = *m, cols = *n, ld = *lda, step_a = *stride_a, step_piv = *stride_ipiv;
    const int64_t count = *batch_size;
    if (count < 0)
        return report(name, 8);
    const int64_t position = first_failure({{rows < 0, 1},
                                            {cols < 0, 2},
                                            {ld < std::max<int64_t>(1, rows), 4},
                                            {step_a < extent(ld, cols), 5},
                                            {step_piv < std::min(rows, cols), 7}});
    if (position != 0)
        return reject(name, position, info, count);
    if (rows == 0 || cols == 0 || count == 0)
        return; // statuses deliberately left as the caller set them

    const int64_t pivots = std::min(rows, cols);
    wide_pivots<I> work(pivots);
    if (!work)
        return report(name, code_no_memory);
    for (int64_t i = 0; i < count; ++i) {
        I *piv = ipiv + i * step_piv;
        run_member(info[i], [&](int64_t *status) { getrf(rows, cols, a + i * step_a, ld, work.target(piv), status); });
        work.deliver(piv, pivots);
    }
}

template <class T, class I>
void getrf_batch(const char *name, const I *m, const I *n, T *const *a, const I *lda, I *const *ipiv,
                 const I *group_count, const I *group_size, I *info)
{
    const int64_t total = check_groups(name, 6, group_count, group_size, info, [&](int64_t g) {
        return first_failure({{m[g] < 0, 1}, {n[g] < 0, 2}, {lda[g] < std::max<I>(1, m[g]), 4}});
    });
    if (total <= 0)
        return;

    int64_t longest = 0;
    for (int64_t g = 0; g < *group_count; ++g)
        longest = std::max<int64_t>(longest, std::min(m[g], n[g]));
    scratch_array<int64_t> pivots = group_pivots(name, longest, info, total);
    if (!pivots)
        return;
    for (int64_t g = 0, k = 0; g < *group_count; ++g) {
        const int64_t rows = m[g], cols = n[g], ld = lda[g], length = std::max<int64_t>(0, std::min(rows, cols));
        for (int64_t end = k + group_size[g]; k < end; ++k) {
            run_member(info[k], [&](int64_t *status) { getrf(rows, cols, a[k], ld, pivots.get(), status); });
            std::transform(pivots.get(), pivots.get() + length, ipiv[k], [](int64_t p) { return static_cast<I>(p); });
        }
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void getrf_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_getrf_batch_strided(T, I, I *const *));                \
    template void getrf_batch<T, I>(const char *, ZEL_LAPACK_PARAMS_getrf_batch(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
