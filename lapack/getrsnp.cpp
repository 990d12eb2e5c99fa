// Strided batch of solves with LU factors computed without pivoting.
#include "batch_frame.hpp"
#include "core_kernels.hpp"
#include "drivers.hpp"

namespace zel::lapack {
namespace {

// B = op(L*U)^-1 * B for one member: L unit lower and U upper, both stored in A.
template <class T>
void getrsnp_one(const char *trans, int64_t n, int64_t nrhs, const T *a, int64_t lda, T *b, int64_t ldb)
{
    if (zel_serv_lsame(trans, "N")) {
        trsm_left("L", "N", "U", n, nrhs, a, lda, b, ldb);
        trsm_left("U", "N", "N", n, nrhs, a, lda, b, ldb);
    } else {
        trsm_left("U", trans, "N", n, nrhs, a, lda, b, ldb);
        trsm_left("L", trans, "U", n, nrhs, a, lda, b, ldb);
    }
}

} // namespace

template <class T, class I>
void getrsnp_batch_strided(const char *name, const char *trans, const I *n, const I *nrhs, const T *a, const I *lda,
                           const I *stride_a, T *b, const I *ldb, const I *stride_b, const I *batch_size, I *info)
{
    const int64_t order = *n, columns = *nrhs, ld_a = *lda, step_a = *stride_a;
    const int64_t ld_b = *ldb, step_b = *stride_b, count = *batch_size;
    if (count < 0)
        return report(name, 10);
    const int64_t position = first_failure({{!is_trans(trans), 1},
                                            {order < 0, 2},
                                            {columns < 0, 3},
                                            {ld_a < std::max<int64_t>(1, order), 5},
                                            {step_a < extent(ld_a, order), 6},
                                            {ld_b < std::max<int64_t>(1, order), 8},
                                            {step_b < extent(ld_b, columns), 9}});
    if (position != 0)
        return reject(name, position, info, count);
    if (order == 0 || columns == 0 || count == 0)
        return;

    for (int64_t i = 0; i < count; ++i) {
        info[i] = 0;
        getrsnp_one(trans, order, columns, a + i * step_a, ld_a, b + i * step_b, ld_b);
    }
}

#define ZEL_INSTANCE(T, I)                                                                                             \
    template void getrsnp_batch_strided<T, I>(const char *, ZEL_LAPACK_PARAMS_getrsnp_batch_strided(T, I, I *const *));
ZEL_LAPACK_INSTANCES(ZEL_INSTANCE)

} // namespace zel::lapack
