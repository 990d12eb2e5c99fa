// LU factorisations without pivoting: strided batch and groups of matrix pointers.
#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"
#include "group_frame.hpp"

namespace zel::lapack {

template <class T, class I>
void getrfnp_batch_strided(const char *name, const I *m, const I *n, T *a, const I *lda, const I *stride_a,
                           const I *batch_size, I *info)
{
    const int64_t rows = *m, cols = *n, ld = *lda, step_a = *stride_a, count = *batch_size;
    if (count < 0)
        return report(name, 8); // position 8 although batch_size is the sixth argument: callers rely on it
    const int64_t position = first_failure(
        {{rows < 0, 1}, {cols < 0, 2}, {ld < std::max<int64_t>(1, rows), 4}, {step_a < extent(ld, cols), 5}});
    if (position != 0)
        return reject(name, position, info, count);
    if (rows == 0 || cols == 0 || count == 0)
        return;

    for (int64_t i = 0; i < count; ++i)
        run_member(info[i], [&](int64_t *status) { getrfnp(rows, cols, a + i * step_a, ld, status); });
}

// The group form checks like getrf_batch: group_count at 5, group_size at 6, and per group
// m -> 1, n -> 2, lda -> 4. It needs no work array.
template <class T, class I>
void getrfnp_batch(const char *name, const I *m, const I *n, T *const *a, const I *lda, const I *group_count,
                   const I *group_size, I *info)
{
    const int64_t total = check_groups(name, 5, group_count, group_size, info, [&](int64_t g) {
        return first_failure({{m[g] < 0, 1}, {n[g] < 0, 2}, {lda[g] < std::max<I>(1, m[g]), 4}});
    });
    if (total <= 0)
        return;

    for (int64_t g = 0, k = 0; g < *group_count; ++g) {
        const int64_t rows = m[g], cols = n[g], ld = lda[g];
        for (int64_t end = k + group_size[g]; k < end; ++k)
            run_member(info[k], [&](int64_t *status) { getrfnp(rows, cols, a[k], ld, status); });
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void getrfnp_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_getrfnp_batch_strided(T, I, I *const *));            \
    template void getrfnp_batch<T, I>(const char *, ZEL_LAPACK_PARAMS_getrfnp_batch(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
