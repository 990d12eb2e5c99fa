// Strided batch of solves with LU factors and pivots.
#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"

namespace zel::lapack {

template <class T, class I>
void getrs_batch_strided(const char *name, const char *trans, const I *n, const I *nrhs, const T *a, const I *lda,
                         const I *stride_a, const I *ipiv, const I *stride_ipiv, T *b, const I *ldb, const I *stride_b,
                         const I *batch_size, I *info)
{
    const int64_t order = *n, columns = *nrhs, ld_a = *lda, step_a = *stride_a, step_piv = *stride_ipiv;
    const int64_t ld_b = *ldb, step_b = *stride_b, count = *batch_size;
    if (count < 0)
        return report(name, 12);
    const int64_t position = first_failure({{!is_trans(trans), 1},
                                            {order < 0, 2},
                                            {columns < 0, 3},
                                            {ld_a < std::max<int64_t>(1, order), 5},
                                            {step_a < extent(ld_a, order), 6},
                                            {step_piv < order, 8},
                                            {ld_b < std::max<int64_t>(1, order), 10},
                                            {step_b < extent(ld_b, columns), 11}});
    if (position != 0)
        return reject(name, position, info, count);
    if (order == 0 || columns == 0 || count == 0)
        return;

    wide_pivots<I> work(order);
    if (!work)
        return report(name, code_no_memory);
    for (int64_t i = 0; i < count; ++i) {
        const int64_t *piv = work.load(ipiv + i * step_piv, order);
        run_member(info[i], [&](int64_t *status) {
            getrs(trans, order, columns, a + i * step_a, ld_a, piv, b + i * step_b, ld_b, status);
        });
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void getrs_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_getrs_batch_strided(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
