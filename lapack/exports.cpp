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

// The group forms' parameter lists, and the strided ones spread to the same three arguments.
#define ZEL_P_GETRF_STRIDED(T, I, IP) ZEL_LAPACK_GETRF_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GETRFNP_STRIDED(T, I, IP) ZEL_LAPACK_GETRFNP_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GETRS_STRIDED(T, I, IP) ZEL_LAPACK_GETRS_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GETRSNP_STRIDED(T, I, IP) ZEL_LAPACK_GETRSNP_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GETRI_OOP_STRIDED(T, I, IP) ZEL_LAPACK_GETRI_OOP_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GETRI_STRIDED(T, I, IP) ZEL_LAPACK_GETRI_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_POTRF_STRIDED(T, I, IP) ZEL_LAPACK_POTRF_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GELS_STRIDED(T, I, IP) ZEL_LAPACK_GELS_BATCH_STRIDED_PARAMS(T, I)
#define ZEL_P_GETRF_GROUP(T, I, IP) ZEL_LAPACK_GETRF_BATCH_PARAMS(T, I, IP)
#define ZEL_P_GETRFNP_GROUP(T, I, IP) ZEL_LAPACK_GETRFNP_BATCH_PARAMS(T, I)
#define ZEL_P_GETRI_OOP_GROUP(T, I, IP) ZEL_LAPACK_GETRI_OOP_BATCH_PARAMS(T, I, IP)

#define ZEL_UNPACK(...) __VA_ARGS__

// The 32-bit and 64-bit workers of routine `op` and the entry that chooses between them.
#define ZEL_LAPACK_SHELLS(p, C, T, op, PARAMS, ARGS)                                                     \
    ZEL_API void zel_lapack_##p##op##_omp_internal32(PARAMS(C, int32_t, int32_t *const *))               \
    {                                                                                                      \
        zel::lapack::forward(zel::lapack::op<T, int32_t>, #p #op, ZEL_UNPACK ARGS);                        \
    }                                                                                                      \
    ZEL_API void zel_lapack_##p##op##_omp_internal64(PARAMS(C, int64_t, int64_t *const *))               \
    {                                                                                                      \
        zel::lapack::forward(zel::lapack::op<T, int64_t>, #p #op, ZEL_UNPACK ARGS);                        \
    }                                                                                                      \
    ZEL_API void zel_lapack_##p##op(PARAMS(C, void, const void *), int64_t selector)                      \
    {                                                                                                      \
        zel::lapack::by_width(selector, zel_lapack_##p##op##_omp_internal32,                              \
                              zel_lapack_##p##op##_omp_internal64, ZEL_UNPACK ARGS);                       \
    }

#define ZEL_LAPACK_EXPORTS(p, C, T)                                                                       \
    ZEL_LAPACK_SHELLS(p, C, T, getrf_batch_strided, ZEL_P_GETRF_STRIDED,                                  \
                      (m, n, a, lda, stride_a, ipiv, stride_ipiv, batch_size, info))                      \
    ZEL_LAPACK_SHELLS(p, C, T, getrfnp_batch_strided, ZEL_P_GETRFNP_STRIDED,                              \
                      (m, n, a, lda, stride_a, batch_size, info))                                         \
    ZEL_LAPACK_SHELLS(p, C, T, getrs_batch_strided, ZEL_P_GETRS_STRIDED,                                  \
                      (trans, n, nrhs, a, lda, stride_a, ipiv, stride_ipiv, b, ldb, stride_b, batch_size, \
                       info))                                                                              \
    ZEL_LAPACK_SHELLS(p, C, T, getrsnp_batch_strided, ZEL_P_GETRSNP_STRIDED,                              \
                      (trans, n, nrhs, a, lda, stride_a, b, ldb, stride_b, batch_size, info))             \
    ZEL_LAPACK_SHELLS(p, C, T, getri_oop_batch_strided, ZEL_P_GETRI_OOP_STRIDED,                          \
                      (n, a, lda, stride_a, ipiv, stride_ipiv, ainv, ldainv, stride_ainv, batch_size, info)) \
    ZEL_LAPACK_SHELLS(p, C, T, getri_batch_strided, ZEL_P_GETRI_STRIDED,                                  \
                      (n, a, lda, stride_a, ipiv, stride_ipiv, batch_size, info))                         \
    ZEL_LAPACK_SHELLS(p, C, T, potrf_batch_strided, ZEL_P_POTRF_STRIDED,                                  \
                      (uplo, n, a, lda, stride_a, batch_size, info))                                      \
    ZEL_LAPACK_SHELLS(p, C, T, gels_batch_strided, ZEL_P_GELS_STRIDED,                                    \
                      (trans, m, n, nrhs, a, lda, stride_a, b, ldb, stride_b, batch_size, info))          \
    ZEL_LAPACK_SHELLS(p, C, T, getrf_batch, ZEL_P_GETRF_GROUP,                                            \
                      (m, n, a, lda, ipiv, group_count, group_size, info))                                \
    ZEL_LAPACK_SHELLS(p, C, T, getrfnp_batch, ZEL_P_GETRFNP_GROUP,                                        \
                      (m, n, a, lda, group_count, group_size, info))                                      \
    ZEL_LAPACK_SHELLS(p, C, T, getri_oop_batch, ZEL_P_GETRI_OOP_GROUP,                                    \
                      (n, a, lda, ipiv, ainv, ldainv, group_count, group_size, info))

extern "C" {
ZEL_DENSE_MEMBERS(ZEL_LAPACK_EXPORTS)
}
