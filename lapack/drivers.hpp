// The batched LAPACK drivers, one template per routine over value type T and integer type I.
// Each family's source defines its templates and instantiates them for every (T, I) pair;
// `name` is the routine's lower-case name for the error report, the rest is the C signature.
#pragma once

#include <complex>
#include <cstdint>

#include "signatures.hpp"

namespace zel::lapack {

template <class T, class I>
void getrf_batch_strided(const char *name, ZEL_LAPACK_PARAMS_getrf_batch_strided(T, I, I *const *));
template <class T, class I>
void getrfnp_batch_strided(const char *name, ZEL_LAPACK_PARAMS_getrfnp_batch_strided(T, I, I *const *));
template <class T, class I>
void getrs_batch_strided(const char *name, ZEL_LAPACK_PARAMS_getrs_batch_strided(T, I, I *const *));
template <class T, class I>
void getrsnp_batch_strided(const char *name, ZEL_LAPACK_PARAMS_getrsnp_batch_strided(T, I, I *const *));
template <class T, class I>
void getri_oop_batch_strided(const char *name, ZEL_LAPACK_PARAMS_getri_oop_batch_strided(T, I, I *const *));
template <class T, class I>
void getri_batch_strided(const char *name, ZEL_LAPACK_PARAMS_getri_batch_strided(T, I, I *const *));
template <class T, class I>
void potrf_batch_strided(const char *name, ZEL_LAPACK_PARAMS_potrf_batch_strided(T, I, I *const *));
template <class T, class I>
void gels_batch_strided(const char *name, ZEL_LAPACK_PARAMS_gels_batch_strided(T, I, I *const *));

template <class T, class I> void getrf_batch(const char *name, ZEL_LAPACK_PARAMS_getrf_batch(T, I, I *const *));
template <class T, class I> void getrfnp_batch(const char *name, ZEL_LAPACK_PARAMS_getrfnp_batch(T, I, I *const *));
template <class T, class I>
void getri_oop_batch(const char *name, ZEL_LAPACK_PARAMS_getri_oop_batch(T, I, I *const *));

// Applies X(T, I) to every value type and integer width.
#define ZEL_LAPACK_INSTANCES(X)                                                                           \
    X(float, int32_t)                                                                                      \
    X(float, int64_t)                                                                                      \
    X(double, int32_t)                                                                                     \
    X(double, int64_t)                                                                                     \
    X(std::complex<float>, int32_t)                                                                        \
    X(std::complex<float>, int64_t)                                                                        \
    X(std::complex<double>, int32_t)                                                                       \
    X(std::complex<double>, int64_t)

} // namespace zel::lapack
