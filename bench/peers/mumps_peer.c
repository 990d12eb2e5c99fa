/* zel-bench-mumps: sequential MUMPS (dmumps_c) timed on one matrix, for `zel bench solver`, with
 * its default controls (automatic ordering, matching and scaling, no refinement) and no output
 * of its own (ICNTL(4) = 0, and ICNTL(1) to (3) off: the error lines would otherwise reach
 * standard output, which carries this program's report). One departure, reported: when the
 * factorisation runs out of the workspace the analysis estimated (INFOG(1) = -9, common with
 * delayed pivots of indefinite matrices), it is run again with ICNTL(14), the estimate's margin,
 * doubled, as MUMPS's guide advises, up to 4 times.
 *
 * usage: zel-bench-mumps MATRIX [--sym 0|2] [--repeats N]
 *   MATRIX  by columns (peer_common.h): the whole matrix for --sym 0 (LU, the default), the upper
 *           triangle of a symmetric one for --sym 2 (L·D·Lᵀ with 2×2 pivots)
 *
 * Debian's sequential build (libmumps-seq-dev) runs on a stub MPI (its mpi.h in mumps_seq/,
 * whose MPI_Init does nothing): the communicator handed over is -987654, the code MUMPS reads as
 * MPI_COMM_WORLD in Fortran, the only one the stub knows.
 *
 * Output (peer_common.h): "run default" with seconds (best of the repeats, after one untimed
 * solve) for analyse (JOB=1), factorise (JOB=2) and solve1 (JOB=3 on b = A·1), entries
 * (INFOG(29): the factors' entries), flops (RINFOG(3): the elimination's), refine (INFOG(15)),
 * berr and residual of that solve, the ordering (INFOG(7)), negative pivots (INFOG(12), for
 * --sym 2), peak memory and, when it was raised, note=ICNTL(14)=K. */
#include <stdlib.h>
#include <string.h>

#include <dmumps_c.h>
#include <mpi.h>

#include "peer_common.h"

#define USE_COMM_WORLD (-987654)
#define ICNTL(k) icntl[(k) - 1]
#define INFOG(k) infog[(k) - 1]
#define RINFOG(k) rinfog[(k) - 1]

static void *allocate(size_t count, size_t size)
{
    void *memory = malloc((count > 0 ? count : 1) * size);
    if (memory == NULL)
        peer_fail("out of memory");
    return memory;
}

static const char *ordering_name(int used)
{
    static const char *const names[] = {"amd", "given", "amf", "scotch", "pord", "metis", "qamd"};
    return used >= 0 && used < 7 ? names[used] : "other";
}

/* One phase (JOB) of MUMPS; its refusal names INFOG(1) and INFOG(2). */
static double run_job(DMUMPS_STRUC_C *id, int job, const char *phase)
{
    id->job = job;
    const double start = peer_now();
    dmumps_c(id);
    const double seconds = peer_now() - start;
    if (id->INFOG(1) < 0)
        peer_refuse(phase, "INFOG(1)=%d INFOG(2)=%d", id->INFOG(1), id->INFOG(2));
    return seconds;
}

static double best_job(DMUMPS_STRUC_C *id, int job, const char *phase, int repeats)
{
    double best = 1e300;
    for (int r = 0; r < repeats; ++r) {
        const double seconds = run_job(id, job, phase);
        best = seconds < best ? seconds : best;
    }
    return best;
}

/* The factorisation, its workspace margin doubled while it runs short; the successful attempt is
 * the first round. */
static double factorise(DMUMPS_STRUC_C *id, int repeats)
{
    double seconds = 0;
    for (int attempt = 0;; ++attempt) {
        id->job = 2;
        const double start = peer_now();
        dmumps_c(id);
        seconds = peer_now() - start;
        if (id->INFOG(1) != -9 || attempt == 4)
            break;
        id->ICNTL(14) *= 2;
    }
    if (id->INFOG(1) < 0)
        peer_refuse("factorise", "INFOG(1)=%d INFOG(2)=%d", id->INFOG(1), id->INFOG(2));
    if (repeats > 1) {
        const double rest = best_job(id, 2, "factorise", repeats - 1);
        seconds = rest < seconds ? rest : seconds;
    }
    return seconds;
}

/* The file's matrix as MUMPS's 1-based coordinates. */
static void set_matrix(DMUMPS_STRUC_C *id, const struct peer_csc *a)
{
    if (a->n > 2147483647)
        peer_refuse("analyse", "the order does not fit MUMPS's 32-bit integers");
    id->n = (MUMPS_INT)a->n;
    id->nnz = (MUMPS_INT8)a->nnz;
    id->irn = allocate((size_t)a->nnz, sizeof(MUMPS_INT));
    id->jcn = allocate((size_t)a->nnz, sizeof(MUMPS_INT));
    id->a = a->value;
    for (int64_t j = 0; j < a->n; ++j)
        for (int64_t p = a->col_ptr[j]; p < a->col_ptr[j + 1]; ++p) {
            id->irn[p] = (MUMPS_INT)(a->row[p] + 1);
            id->jcn[p] = (MUMPS_INT)(j + 1);
        }
}

/* INFOG(29) counts millions when negative. */
static double factor_entries(const DMUMPS_STRUC_C *id)
{
    const int count = id->INFOG(29);
    return count >= 0 ? (double)count : -1e6 * (double)count;
}

static double solve(DMUMPS_STRUC_C *id, int repeats, const double *b, double *x)
{
    id->nrhs = 1;
    id->lrhs = id->n;
    id->rhs = x;
    double best = 1e300;
    for (int r = 0; r <= repeats; ++r) { /* the first call sets up the solve's workspace, untimed */
        memcpy(x, b, sizeof(double) * (size_t)id->n);
        const double seconds = run_job(id, 3, "solve");
        if (r > 0)
            best = seconds < best ? seconds : best;
    }
    return best;
}

int main(int argc, char **argv)
{
    peer_start("zel-bench-mumps", argv);
    struct peer_arguments arguments;
    peer_parse_arguments(argc, argv, "usage: zel-bench-mumps MATRIX [--sym 0|2] [--repeats N]", &arguments);
    if (arguments.sym != 0 && arguments.sym != 2)
        peer_fail("--sym takes 0 (unsymmetric) or 2 (general symmetric)");
    MPI_Init(&argc, &argv);

    static DMUMPS_STRUC_C id;
    id.comm_fortran = USE_COMM_WORLD;
    id.par = 1;
    id.sym = arguments.sym;
    id.job = -1;
    dmumps_c(&id);
    if (id.INFOG(1) < 0)
        peer_fail("MUMPS did not initialise");
    id.ICNTL(1) = -1;
    id.ICNTL(2) = -1;
    id.ICNTL(3) = -1;
    id.ICNTL(4) = 0;
    printf("peer mumps %s\n", id.version_number);
    peer_print_blas();

    struct peer_csc a;
    peer_read_csc(arguments.matrix, arguments.sym == 2, &a);
    set_matrix(&id, &a);
    double *b = peer_ones_rhs(&a), *x = allocate((size_t)a.n, sizeof(double));

    const double analyse_seconds = best_job(&id, 1, "analyse", arguments.repeats);
    const int margin = id.ICNTL(14);
    const double factorise_seconds = factorise(&id, arguments.repeats);
    const double solve_seconds = solve(&id, arguments.repeats, b, x);
    double berr, residual;
    peer_backward_error(&a, x, b, &berr, &residual);
    printf("run default ordering=%s analyse=%.9g factorise=%.9g solve1=%.9g entries=%.17g flops=%.17g refine=%d "
           "berr=%.3g residual=%.3g memory=%.6g",
           ordering_name(id.INFOG(7)), analyse_seconds, factorise_seconds, solve_seconds, factor_entries(&id),
           id.RINFOG(3), id.INFOG(15), berr, residual, peer_peak_memory());
    if (arguments.sym == 2)
        printf(" negative_pivots=%d", id.INFOG(12));
    if (id.ICNTL(14) != margin)
        printf(" note=ICNTL(14)=%d", id.ICNTL(14));
    printf("\n");

    id.job = -2;
    dmumps_c(&id);
    MPI_Finalize();
    free(id.irn);
    free(id.jcn);
    free(x);
    free(b);
    peer_free_csc(&a);
    return 0;
}
