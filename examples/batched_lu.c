/* Factor a batch of two 3x3 matrices, solve A_i x_i = b_i, and print the solutions. */
#include <stdio.h>

#include <zel.h>

int main(void)
{
    /* Two column-major matrices, one after the other (stride 9), and their right-hand sides. */
    double a[18] = {4, 2, 1, 2, 5, 3, 1, 3, 6,   /* A_0 */
                    0, 1, 2, 1, 0, 1, 2, 1, 0};  /* A_1: needs row interchanges */
    double b[6] = {7, 10, 10, 3, 2, 3};          /* b_i = A_i * (1, 1, 1) */
    int64_t n = 3, nrhs = 1, lda = 3, ldb = 3, stride_a = 9, stride_b = 3, stride_ipiv = 3, batch = 2;
    int64_t ipiv[6], info[2];

    /* The last argument selects the integer width: 0 for int64_t, non-zero for int32_t. */
    zel_lapack_dgetrf_batch_strided(&n, &n, a, &lda, &stride_a, ipiv, &stride_ipiv, &batch, info, 0);
    zel_lapack_dgetrs_batch_strided("N", &n, &nrhs, a, &lda, &stride_a, ipiv, &stride_ipiv, b, &ldb, &stride_b,
                                    &batch, info, 0);
    for (int i = 0; i < 2; ++i)
        printf("x_%d = (%g, %g, %g), info %d\n", i, b[3 * i], b[3 * i + 1], b[3 * i + 2], (int)info[i]);

    zel_version version;
    zel_serv_get_version(&version);
    printf("Zelmath %d.%d, threading layer %d, %d thread(s)\n", (int)version.major_version,
           (int)version.minor_version, zel_serv_get_thread_layer(), zel_serv_get_max_threads());
    return 0;
}
