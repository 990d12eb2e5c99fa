/* zel-bench-umfpack: UMFPACK's unsymmetric multifrontal LU timed on one matrix, for
 * `zel bench solver`, with its default control settings (automatic strategy, its default
 * ordering and scaling, up to 2 refinement steps in the solve).
 *
 * usage: zel-bench-umfpack MATRIX [--repeats N]
 *   MATRIX  the whole matrix by columns (peer_common.h)
 *
 * Output (peer_common.h): "run default" with seconds (best of the repeats, after one untimed
 * solve) for analyse (umfpack_dl_symbolic), factorise (umfpack_dl_numeric) and solve1
 * (umfpack_dl_solve on b = A·1, refinement included), entries (L and U, the diagonal once), flops
 * (UMFPACK's count), refine (the steps the solve took), berr and residual of that solve,
 * ordering, strategy and peak memory. */
#include <stdlib.h>

#include <umfpack.h>

#include "peer_common.h"

typedef SuiteSparse_long idx;
_Static_assert(sizeof(idx) == sizeof(int64_t), "the file's indices are UMFPACK's");

static const char *status_text(int status)
{
    switch (status) {
    case UMFPACK_WARNING_singular_matrix: return "singular matrix";
    case UMFPACK_ERROR_out_of_memory: return "out of memory";
    case UMFPACK_ERROR_invalid_matrix: return "invalid matrix";
    case UMFPACK_ERROR_different_pattern: return "different pattern";
    default: return "error";
    }
}

static const char *ordering_name(double used)
{
    switch ((int)used) {
    case UMFPACK_ORDERING_CHOLMOD: return "cholmod";
    case UMFPACK_ORDERING_AMD: return "amd/colamd";
    case UMFPACK_ORDERING_GIVEN: return "given";
    case UMFPACK_ORDERING_METIS: return "metis";
    case UMFPACK_ORDERING_NONE: return "natural";
    default: return "other";
    }
}

static const char *strategy_name(double used)
{
    return (int)used == UMFPACK_STRATEGY_SYMMETRIC     ? "symmetric"
           : (int)used == UMFPACK_STRATEGY_UNSYMMETRIC ? "unsymmetric"
                                                       : "other";
}

struct umfpack_run {
    const struct peer_csc *a;
    idx *col_ptr, *row; /* the file's arrays in UMFPACK's index type */
    double control[UMFPACK_CONTROL], info[UMFPACK_INFO];
    void *symbolic, *numeric;
};

static void check(const char *phase, int status)
{
    if (status != UMFPACK_OK)
        peer_refuse(phase, "status=%d (%s)", status, status_text(status));
}

static double analyse(struct umfpack_run *u, int repeats)
{
    const idx n = (idx)u->a->n;
    double best = 1e300;
    for (int r = 0; r < repeats; ++r) {
        if (u->symbolic != NULL)
            umfpack_dl_free_symbolic(&u->symbolic);
        const double start = peer_now();
        const int status =
            umfpack_dl_symbolic(n, n, u->col_ptr, u->row, u->a->value, &u->symbolic, u->control, u->info);
        const double seconds = peer_now() - start;
        check("analyse", status);
        best = seconds < best ? seconds : best;
    }
    return best;
}

/* A singular matrix leaves a factor but no solution worth timing: refused as a failure. */
static double factorise(struct umfpack_run *u, int repeats)
{
    double best = 1e300;
    for (int r = 0; r < repeats; ++r) {
        if (u->numeric != NULL)
            umfpack_dl_free_numeric(&u->numeric);
        const double start = peer_now();
        const int status = umfpack_dl_numeric(u->col_ptr, u->row, u->a->value, u->symbolic, &u->numeric, u->control,
                                              u->info);
        const double seconds = peer_now() - start;
        check("factorise", status);
        best = seconds < best ? seconds : best;
    }
    return best;
}

static double solve(struct umfpack_run *u, int repeats, const double *b, double *x)
{
    double best = 1e300;
    for (int r = 0; r <= repeats; ++r) { /* the first call sets up the solve's workspace, untimed */
        const double start = peer_now();
        const int status = umfpack_dl_solve(UMFPACK_A, u->col_ptr, u->row, u->a->value, x, b, u->numeric, u->control,
                                            u->info);
        const double seconds = peer_now() - start;
        check("solve", status);
        if (r > 0)
            best = seconds < best ? seconds : best;
    }
    return best;
}

int main(int argc, char **argv)
{
    peer_start("zel-bench-umfpack", argv);
    struct peer_arguments arguments;
    peer_parse_arguments(argc, argv, "usage: zel-bench-umfpack MATRIX [--repeats N]", &arguments);
    printf("peer umfpack %d.%d.%d\n", UMFPACK_MAIN_VERSION, UMFPACK_SUB_VERSION, UMFPACK_SUBSUB_VERSION);
    peer_print_blas();

    struct peer_csc a;
    peer_read_csc(arguments.matrix, 0, &a);
    struct umfpack_run u = {&a, (idx *)a.col_ptr, (idx *)a.row, {0}, {0}, NULL, NULL};
    umfpack_dl_defaults(u.control);
    u.control[UMFPACK_PRL] = 0;
    double *b = peer_ones_rhs(&a), *x = malloc(sizeof(double) * (size_t)(a.n > 0 ? a.n : 1));
    if (x == NULL)
        peer_fail("out of memory");

    const double analyse_seconds = analyse(&u, arguments.repeats);
    const double factorise_seconds = factorise(&u, arguments.repeats);
    const double flops = u.info[UMFPACK_FLOPS];
    const double entries = u.info[UMFPACK_LNZ] + u.info[UMFPACK_UNZ] - (double)a.n;
    const double ordering = u.info[UMFPACK_ORDERING_USED], strategy = u.info[UMFPACK_STRATEGY_USED];
    const double solve_seconds = solve(&u, arguments.repeats, b, x);
    double berr, residual;
    peer_backward_error(&a, x, b, &berr, &residual);
    printf("run default ordering=%s strategy=%s analyse=%.9g factorise=%.9g solve1=%.9g entries=%.17g flops=%.17g "
           "refine=%d berr=%.3g residual=%.3g memory=%.6g\n",
           ordering_name(ordering), strategy_name(strategy), analyse_seconds, factorise_seconds, solve_seconds,
           entries, flops, (int)u.info[UMFPACK_IR_TAKEN], berr, residual, peer_peak_memory());
    umfpack_dl_free_numeric(&u.numeric);
    umfpack_dl_free_symbolic(&u.symbolic);
    free(x);
    free(b);
    peer_free_csc(&a);
    return 0;
}
