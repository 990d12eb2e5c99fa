// Strided batch of least-squares and minimum-norm solves by QR or LQ.
#include <cmath>

#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"

namespace zel::lapack {

// ldb is checked against n alone: a tall problem with too small an ldb is left for the kernel
// to report in its own status, as callers expect.
template <class T, class I>
void gels_batch_strided(const char *name, const char *trans, const I *m, const I *n, const I *nrhs, T *a, const I *lda,
                        const I *stride_a, T *b, const I *ldb, const I *stride_b, const I *batch_size, I *info)
{
    const int64_t rows = *m, cols = *n, columns = *nrhs, ld_a = *lda, step_a = *stride_a;
    const int64_t ld_b = *ldb, step_b = *stride_b, count = *batch_size;
    if (count < 0)
        return report(name, 11);
    const int64_t position = first_failure({{!is_trans(trans), 1},
                                            {rows < 0, 2},
                                            {cols < 0, 3},
                                            {columns < 0, 4},
                                            {ld_a < std::max<int64_t>(1, rows), 6},
                                            {step_a < extent(ld_a, cols), 7},
                                            {ld_b < std::max<int64_t>(1, cols), 9},
                                            {step_b < extent(ld_b, columns), 10}});
    if (position != 0)
        return reject(name, position, info, count);
    if (rows == 0 || cols == 0 || count == 0)
        return;

    const int64_t threads = std::max(1, zel_serv_domain_get_max_threads(5));
    T size(0);
    run_member(info[0],
               [&](int64_t *status) { gels(trans, rows, cols, columns, a, ld_a, b, ld_b, &size, -1, status); });
    const int64_t lwork = std::max<int64_t>(1, static_cast<int64_t>(std::ceil(std::real(size))));
    scratch_array<T> work(static_cast<size_t>(std::min(count, threads) * lwork), 64);
    if (!work) {
        report(name, code_no_memory);
        return fill_status(info, count, code_no_memory);
    }
    // One thread here: every problem reuses the same lwork elements in turn.
    for (int64_t i = 0; i < count; ++i) {
        run_member(info[i], [&](int64_t *status) {
            gels(trans, rows, cols, columns, a + i * step_a, ld_a, b + i * step_b, ld_b, work.get(), lwork, status);
        });
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void gels_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_gels_batch_strided(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
