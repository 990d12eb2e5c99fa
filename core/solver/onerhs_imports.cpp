// Exported helpers of the layer's one-right-hand-side solve kernels: undoing a diagonal block's
// column interchanges, the permutation between solve steps, the partition bounds, the merge of
// partial right-hand sides, and a yield for partitions that wait on one another.
#include <sched.h>

#include <algorithm>
#include <complex>
#include <cstdint>

#include "zel/pds_onerhs.h"
#include "zel/runtime.h"
#include "zel_internal/value_traits.hpp"

namespace zel::solver {
namespace {

// x ← S_1·S_2⋯S_n·x, S_k exchanging rows k and ipiv[k] (1-based): the block's interchanges
// undone, the last first.
template <class T> void undo_interchanges(const int64_t *n, T *x, const int64_t *ipiv)
{
    if (n == nullptr || x == nullptr || ipiv == nullptr)
        return;
    for (int64_t k = *n - 1; k >= 0; --k) {
        const int64_t p = ipiv[k] - 1;
        if (p != k && p >= 0 && p < *n)
            std::swap(x[k], x[p]);
    }
}

// x[i] ← x[perm[i] − 1] through work; a null perm is the identity.
template <class T> void permute_rows(const int64_t *n, const int64_t *perm, T *x, T *work)
{
    if (n == nullptr || perm == nullptr || x == nullptr || work == nullptr)
        return;
    for (int64_t i = 0; i < *n; ++i)
        work[i] = x[perm[i] - 1];
    std::copy(work, work + *n, x);
}

// x += partial, and partial cleared for the next use.
template <class T> void merge_partial(const int64_t *n, T *partial, T *x)
{
    if (n == nullptr || partial == nullptr || x == nullptr)
        return;
    for (int64_t i = 0; i < *n; ++i) {
        x[i] += partial[i];
        partial[i] = T(0);
    }
}

} // namespace
} // namespace zel::solver

namespace zs = zel::solver;
using zel::as_cpp;

extern "C" {

ZEL_API void zel_pds_luspxm_varisol(const int64_t *n, double *x, const int64_t *ipiv)
{ zs::undo_interchanges(n, x, ipiv); }
ZEL_API void zel_pds_c_luspxm_varisol(const int64_t *n, zel_complex16 *x, const int64_t *ipiv)
{ zs::undo_interchanges(n, as_cpp(x), ipiv); }
ZEL_API void zel_pds_sp_luspxm_varisol(const int64_t *n, float *x, const int64_t *ipiv)
{ zs::undo_interchanges(n, x, ipiv); }
ZEL_API void zel_pds_sp_c_luspxm_varisol(const int64_t *n, zel_complex8 *x, const int64_t *ipiv)
{ zs::undo_interchanges(n, as_cpp(x), ipiv); }

ZEL_API void zel_pds_fdb_perm_mic_real(const int64_t *n, const int64_t *perm, double *x, double *work)
{ zs::permute_rows(n, perm, x, work); }
ZEL_API void zel_pds_fdb_perm_mic_cmplx(const int64_t *n, const int64_t *perm, zel_complex16 *x,
                                        zel_complex16 *work)
{ zs::permute_rows(n, perm, as_cpp(x), as_cpp(work)); }

ZEL_API void zel_pds_copy_rhs_omp_to_rhs_real(const int64_t *n, double *partial, double *x)
{ zs::merge_partial(n, partial, x); }
ZEL_API void zel_pds_sp_copy_rhs_omp_to_rhs_real(const int64_t *n, float *partial, float *x)
{ zs::merge_partial(n, partial, x); }

// Partition part (0-based) of parts takes a contiguous run of supernodes, the runs as even as
// the count allows (the first nsuper % parts one longer); a partition beyond the count gets an
// empty range (first = last + 1).
ZEL_API void zel_pds_get_ddist_bounds(const int64_t *nsuper, const int64_t *parts, const int64_t *part,
                                      int64_t *first, int64_t *last)
{
    if (nsuper == nullptr || parts == nullptr || part == nullptr || first == nullptr || last == nullptr)
        return;
    const int64_t count = std::max<int64_t>(*nsuper, 0), p = std::max<int64_t>(*parts, 1);
    const int64_t k = std::clamp<int64_t>(*part, 0, p);
    const int64_t base = count / p, extra = count % p;
    *first = k * base + std::min(k, extra) + 1;
    *last = k < p ? *first + base + (k < extra ? 1 : 0) - 1 : *first - 1;
}

ZEL_API void zel_serv_thread_yield(void) { sched_yield(); }

} // extern "C"
