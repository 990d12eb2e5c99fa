// Strided batch of Cholesky factorisations.
#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"

namespace zel::lapack {

template <class T, class I>
void potrf_batch_strided(const char *name, const char *uplo, const I *n, T *a, const I *lda, const I *stride_a,
                         const I *batch_size, I *info)
{
    const int64_t order = *n, ld = *lda, step_a = *stride_a, count = *batch_size;
    if (count < 0)
        return report(name, 8); // position 8 although batch_size is the sixth argument: callers rely on it
    const int64_t position = first_failure(
        {{!is_uplo(uplo), 1}, {order < 0, 2}, {ld < std::max<int64_t>(1, order), 4}, {step_a < extent(ld, order), 5}});
    if (position != 0)
        return reject(name, position, info, count);
    if (order == 0 || count == 0)
        return;

    for (int64_t i = 0; i < count; ++i)
        run_member(info[i], [&](int64_t *status) { potrf(uplo, order, a + i * step_a, ld, status); });
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void potrf_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_potrf_batch_strided(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
