// The core's own kernels for small square problems, one table per value type and instruction
// set, chosen once at load time.
#pragma once

#include <complex>
#include <cstdint>

namespace zel::dense {

// Largest order the small paths take; above it the kernels go to OpenBLAS.
constexpr int64_t small_limit = 64;

template <class T> struct small_kernels {
    // Square LU with partial pivoting; info as LAPACK (0 on entry).
    void (*getrf)(int64_t n, T *a, int64_t lda, int64_t *ipiv, int64_t *info);
    // Cholesky of the lower or upper triangle; info as LAPACK (0 on entry).
    void (*potrf_lower)(int64_t n, T *a, int64_t lda, int64_t *info);
    void (*potrf_upper)(int64_t n, T *a, int64_t lda, int64_t *info);
    // op(A) X = B from the LU factor, trans one of 'N', 'T', 'C'.
    void (*getrs)(char trans, int64_t n, int64_t nrhs, const T *a, int64_t lda, const int64_t *ipiv, T *b,
                  int64_t ldb);
    // The inverse from a nonsingular LU factor, written to inv.
    void (*inverse)(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *inv, int64_t ldinv);
    // Orders up to which these beat OpenBLAS.
    int64_t getrf_limit;
    int64_t potrf_limit;
    int64_t inverse_limit;
};

struct small_set {
    small_kernels<float> s;
    small_kernels<double> d;
    small_kernels<std::complex<float>> c;
    small_kernels<std::complex<double>> z;
};

extern const small_set small_set_base;
extern const small_set small_set_avx2;
extern const small_set small_set_avx2_on_avx512; // the AVX2 kernels with 32 registers
extern const small_set small_set_avx512;

// The set for this processor.
extern const small_set *small_active;

template <class T> inline const small_kernels<T> &small_for()
{
    if constexpr (std::is_same_v<T, float>)
        return small_active->s;
    else if constexpr (std::is_same_v<T, double>)
        return small_active->d;
    else if constexpr (std::is_same_v<T, std::complex<float>>)
        return small_active->c;
    else
        return small_active->z;
}

} // namespace zel::dense
