// The exported batched LAPACK entries: one-line shells over the driver templates.
#include <complex>
#include <type_traits>

#include "batch_frame.hpp"
#include "zel_internal/members.hpp"
#include "drivers.hpp"
#include "zel/lapack.h"
#include "zel_internal/value_traits.hpp"

namespace zel::lapack {
namespace {

// Runs a driver on the C arguments: C complex values are viewed as std::complex, the rest
// passes through unchanged.
template <class... P, class... A> void forward(void (*driver)(const char *, P...), const char *name, A... args)
{
    static_assert(sizeof...(P) == sizeof...(A));
    auto view = []<class To, class From>(From arg) {
        if constexpr (std::is_same_v<To, From>)
            return arg;
        else
            return reinterpret_cast<To>(arg); // layout-compatible value types only
    };
    driver(name, view.template operator()<P>(args)...);
}

} // namespace
} // namespace zel::lapack

// The 32-bit and 64-bit workers of routine `op` and the entry that chooses between them; ARGS
// names the parameters of ZEL_LAPACK_PARAMS_op in order.
#define ZEL_LAPACK_SHELLS(P, C, T, op, ARGS)                                                               \
    ZEL_API void zel_lapack_##P##op##_omp_internal32(ZEL_LAPACK_PARAMS_##op(C, int32_t, int32_t *const *)) \
    {                                                                                                      \
        zel::lapack::forward(zel::lapack::op<T, int32_t>, #P #op, ZEL_UNPACK ARGS);                        \
    }                                                                                                      \
    ZEL_API void zel_lapack_##P##op##_omp_internal64(ZEL_LAPACK_PARAMS_##op(C, int64_t, int64_t *const *)) \
    {                                                                                                      \
        zel::lapack::forward(zel::lapack::op<T, int64_t>, #P #op, ZEL_UNPACK ARGS);                        \
    }                                                                                                      \
    ZEL_API void zel_lapack_##P##op(ZEL_LAPACK_PARAMS_##op(C, void, const void *), int64_t selector)      \
    {                                                                                                      \
        zel::lapack::by_width(selector, zel_lapack_##P##op##_omp_internal32,                              \
                              zel_lapack_##P##op##_omp_internal64, ZEL_UNPACK ARGS);                       \
    }
#define ZEL_UNPACK(...) __VA_ARGS__

#define ZEL_LAPACK_EXPORTS(P, C, T)                                                                       \
    ZEL_LAPACK_SHELLS(P, C, T, getrf_batch_strided, (m, n, a, lda, stride_a, ipiv, stride_ipiv, batch_size, info)) \
    ZEL_LAPACK_SHELLS(P, C, T, getrfnp_batch_strided, (m, n, a, lda, stride_a, batch_size, info))         \
    ZEL_LAPACK_SHELLS(P, C, T, getrs_batch_strided,                                                       \
                      (trans, n, nrhs, a, lda, stride_a, ipiv, stride_ipiv, b, ldb, stride_b, batch_size, info)) \
    ZEL_LAPACK_SHELLS(P, C, T, getrsnp_batch_strided,                                                     \
                      (trans, n, nrhs, a, lda, stride_a, b, ldb, stride_b, batch_size, info))             \
    ZEL_LAPACK_SHELLS(P, C, T, getri_oop_batch_strided,                                                   \
                      (n, a, lda, stride_a, ipiv, stride_ipiv, ainv, ldainv, stride_ainv, batch_size, info)) \
    ZEL_LAPACK_SHELLS(P, C, T, getri_batch_strided, (n, a, lda, stride_a, ipiv, stride_ipiv, batch_size, info)) \
    ZEL_LAPACK_SHELLS(P, C, T, potrf_batch_strided, (uplo, n, a, lda, stride_a, batch_size, info))        \
    ZEL_LAPACK_SHELLS(P, C, T, gels_batch_strided,                                                        \
                      (trans, m, n, nrhs, a, lda, stride_a, b, ldb, stride_b, batch_size, info))          \
    ZEL_LAPACK_SHELLS(P, C, T, getrf_batch, (m, n, a, lda, ipiv, group_count, group_size, info))          \
    ZEL_LAPACK_SHELLS(P, C, T, getrfnp_batch, (m, n, a, lda, group_count, group_size, info))              \
    ZEL_LAPACK_SHELLS(P, C, T, getri_oop_batch, (n, a, lda, ipiv, ainv, ldainv, group_count, group_size, info))

extern "C" {
ZEL_DENSE_MEMBERS(ZEL_LAPACK_EXPORTS)
}
