/* Links the system's 32-bit-integer LAPACK and BLAS next to the core: both must answer right.
 * Built and run by test_dense_kernels; exits non-zero on a wrong answer. */
#include <math.h>
#include <stdint.h>
#include <stdio.h>

#include "zel/dense_kernels.h"

void dgetrf_(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info);
double ddot_(const int *n, const double *x, const int *incx, const double *y, const int *incy);

static const double source[16] = {2, 4, -1, 6, 1, 3, 5, -2, 7, 0, 2, 1, -3, 8, 4, 9};

/* max |P*L*U - A| of a packed 4x4 factor with 1-based pivots */
static double reconstruction_error(const double *f, const int64_t *ipiv)
{
    double plu[16];
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i) {
            double s = 0;
            for (int k = 0; k <= (i < j ? i : j); ++k)
                s += (k == i ? 1.0 : f[i + 4 * k]) * f[k + 4 * j];
            plu[i + 4 * j] = s;
        }
    for (int i = 3; i >= 0; --i)
        for (int j = 0; j < 4; ++j) {
            double t = plu[i + 4 * j];
            plu[i + 4 * j] = plu[ipiv[i] - 1 + 4 * j];
            plu[ipiv[i] - 1 + 4 * j] = t;
        }
    double worst = 0;
    for (int k = 0; k < 16; ++k)
        worst = fmax(worst, fabs(plu[k] - source[k]));
    return worst;
}

int main(void)
{
    double a32[16], a64[16];
    for (int k = 0; k < 16; ++k)
        a32[k] = a64[k] = source[k];

    int n32 = 4, info32 = -1, ipiv32[4];
    dgetrf_(&n32, &n32, a32, &n32, ipiv32, &info32);
    int64_t n64 = 4, info64 = -1, ipiv64[4];
    zel_lapack_xdgetrf(&n64, &n64, a64, &n64, ipiv64, &info64);

    int64_t widened[4];
    for (int k = 0; k < 4; ++k)
        widened[k] = ipiv32[k];
    int one = 1;
    const double dot = ddot_(&n32, source, &one, source + 4, &one);
    const double e32 = reconstruction_error(a32, widened), e64 = reconstruction_error(a64, ipiv64);
    int same_pivots = 1;
    for (int k = 0; k < 4; ++k)
        same_pivots &= ipiv32[k] == ipiv64[k];
    printf("lp64 info %d error %.2e; core info %lld error %.2e; pivots %s; ddot %g\n", info32, e32,
           (long long)info64, e64, same_pivots ? "agree" : "differ", dot);
    return info32 == 0 && info64 == 0 && e32 < 1e-13 && e64 < 1e-13 && same_pivots && dot == -3.0 ? 0 : 1;
}
