/* zel-bench-cholmod: CHOLMOD's supernodal Cholesky timed on one matrix, for `zel bench solver`.
 *
 * CHOLMOD calls the system's 32-bit-integer BLAS, which must never share a process with the
 * library's core, so the suite runs this program and reads what it prints.
 *
 * usage: zel-bench-cholmod MATRIX [--perm FILE] [--repeats N]
 *   MATRIX  "ZELCSC01", n, nnz (int64), then the upper triangle by columns: column pointers (n+1),
 *           row indices (nnz, int64, 0-based, ascending) and values (nnz, double)
 *   FILE    "ZELPRM01", n (int64), then the permutation (n, int64, 0-based: perm[k] is the column
 *           eliminated k-th), used for a second run beside CHOLMOD's own ordering
 *
 * Output (peer_common.h), one item a line: "peer cholmod X.Y.Z", "blas PATH" for each BLAS or
 * LAPACK object the process mapped, then per run "run NAME key=value ..." with seconds (best of the repeats) for
 * analyse, factorise, solve1 and solve16, the ordering, supernodes, entries (the supernodal L's
 * lower trapezoids: the explicit zeros of amalgamation included), exact_entries (L without them),
 * flops (Σ count² over the supernodal L's columns) and the one-rhs residual
 * ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞). Errors go to standard error with exit status 1. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <cholmod.h>

#include "peer_common.h"

typedef SuiteSparse_long idx;
_Static_assert(sizeof(idx) == sizeof(int64_t), "the files' indices are CHOLMOD's");

#define RHS_BLOCK 16

/* The matrix, as CHOLMOD's symmetric upper-triangle form (stype 1). */
static cholmod_sparse *read_matrix(const char *name, cholmod_common *common)
{
    int64_t n, nnz;
    FILE *file = peer_open_input(name, "ZELCSC01", &n);
    peer_read_exact(file, &nnz, sizeof nnz, 1);
    if (n < 0 || nnz < 0)
        peer_fail("negative sizes in the matrix file");
    cholmod_sparse *a = cholmod_l_allocate_sparse((size_t)n, (size_t)n, (size_t)nnz, 1, 1, 1, CHOLMOD_REAL, common);
    if (a == NULL)
        peer_fail("cannot allocate the matrix");
    peer_read_exact(file, a->p, sizeof(idx), (size_t)n + 1);
    peer_read_exact(file, a->i, sizeof(idx), (size_t)nnz);
    peer_read_exact(file, a->x, sizeof(double), (size_t)nnz);
    fclose(file);
    if (!cholmod_l_check_sparse(a, common))
        peer_fail("the matrix file does not hold a valid upper triangle by columns");
    return a;
}

static idx *read_perm(const char *name, idx n)
{
    int64_t m;
    FILE *file = peer_open_input(name, "ZELPRM01", &m);
    if (m != n)
        peer_fail("the permutation's size is not the matrix's");
    idx *perm = malloc(sizeof(idx) * (size_t)(n > 0 ? n : 1));
    if (perm == NULL)
        peer_fail("cannot allocate the permutation");
    peer_read_exact(file, perm, sizeof(idx), (size_t)n);
    fclose(file);
    return perm;
}

/* The right-hand sides: b = A·1 for the one-rhs solve (so its residual means something), and a
 * block of 16 columns of varied values. */
static cholmod_dense *ones_times(cholmod_sparse *a, cholmod_common *common)
{
    cholmod_dense *ones = cholmod_l_ones(a->nrow, 1, CHOLMOD_REAL, common);
    cholmod_dense *b = cholmod_l_zeros(a->nrow, 1, CHOLMOD_REAL, common);
    double alpha[2] = {1, 0}, beta[2] = {0, 0};
    if (ones == NULL || b == NULL || !cholmod_l_sdmult(a, 0, alpha, beta, ones, b, common))
        peer_fail("cannot form the right-hand side");
    cholmod_l_free_dense(&ones, common);
    return b;
}

static cholmod_dense *block_rhs(size_t n, cholmod_common *common)
{
    cholmod_dense *b = cholmod_l_allocate_dense(n, RHS_BLOCK, n, CHOLMOD_REAL, common);
    if (b == NULL)
        peer_fail("cannot allocate the right-hand sides");
    double *x = b->x;
    for (size_t j = 0; j < RHS_BLOCK; ++j)
        for (size_t i = 0; i < n; ++i)
            x[i + j * n] = 1.0 + (double)((i * 7 + j * 13) % 17) / 17.0;
    return b;
}

static double residual(cholmod_sparse *a, cholmod_dense *x, cholmod_dense *b, cholmod_common *common)
{
    cholmod_dense *r = cholmod_l_copy_dense(b, common);
    double alpha[2] = {-1, 0}, beta[2] = {1, 0};
    if (r == NULL || !cholmod_l_sdmult(a, 0, alpha, beta, x, r, common))
        peer_fail("cannot form the residual");
    const double scale = cholmod_l_norm_sparse(a, 0, common) * cholmod_l_norm_dense(x, 0, common) +
                         cholmod_l_norm_dense(b, 0, common);
    const double norm = cholmod_l_norm_dense(r, 0, common);
    cholmod_l_free_dense(&r, common);
    return scale > 0 ? norm / scale : norm;
}

struct run_result {
    double analyse, factorise, solve1, solve16, residual;
    double entries, exact_entries, flops;
    idx supernodes;
    int ordering;
};

/* Entries and flops of the supernodal factor, counted as the suite counts its own. */
static void count_factor(const cholmod_factor *l, struct run_result *out)
{
    const idx *super = l->super, *pi = l->pi;
    out->supernodes = (idx)l->nsuper;
    out->entries = 0;
    out->flops = 0;
    for (size_t s = 0; s < l->nsuper; ++s) {
        const double cols = (double)(super[s + 1] - super[s]), rows = (double)(pi[s + 1] - pi[s]);
        out->entries += cols * rows - cols * (cols - 1) / 2;
        for (double t = 0; t < cols; ++t)
            out->flops += (rows - t) * (rows - t);
    }
}

static cholmod_factor *analyse(cholmod_sparse *a, idx *perm, int repeats, struct run_result *out,
                               cholmod_common *common)
{
    cholmod_factor *l = NULL;
    out->analyse = 1e300;
    for (int r = 0; r < repeats; ++r) {
        cholmod_l_free_factor(&l, common);
        const double start = peer_now();
        l = perm != NULL ? cholmod_l_analyze_p(a, perm, NULL, 0, common) : cholmod_l_analyze(a, common);
        const double seconds = peer_now() - start;
        if (l == NULL)
            peer_fail("cholmod_analyze failed");
        out->analyse = seconds < out->analyse ? seconds : out->analyse;
    }
    out->ordering = l->ordering;
    out->exact_entries = common->lnz;
    return l;
}

static void factorise(cholmod_sparse *a, cholmod_factor *l, int repeats, struct run_result *out,
                      cholmod_common *common)
{
    out->factorise = 1e300;
    for (int r = 0; r < repeats; ++r) {
        const double start = peer_now();
        const int ok = cholmod_l_factorize(a, l, common);
        const double seconds = peer_now() - start;
        if (!ok || common->status != CHOLMOD_OK || l->minor != l->n)
            peer_fail("cholmod_factorize failed: the matrix is not positive definite or memory ran out");
        out->factorise = seconds < out->factorise ? seconds : out->factorise;
    }
    if (!l->is_super)
        peer_fail("CHOLMOD made a simplicial factor although a supernodal one was asked for");
    count_factor(l, out);
}

/* Best time of cholmod_solve2 on b, its workspace kept between calls as an application would. */
static double best_solve(cholmod_factor *l, cholmod_dense *b, int repeats, cholmod_dense **x, cholmod_common *common)
{
    cholmod_dense *y = NULL, *e = NULL;
    double best = 1e300;
    for (int r = 0; r <= repeats; ++r) { /* the first call sizes the workspace, untimed */
        const double start = peer_now();
        const int ok = cholmod_l_solve2(CHOLMOD_A, l, b, NULL, x, NULL, &y, &e, common);
        const double seconds = peer_now() - start;
        if (!ok)
            peer_fail("cholmod_solve2 failed");
        if (r > 0)
            best = seconds < best ? seconds : best;
    }
    cholmod_l_free_dense(&y, common);
    cholmod_l_free_dense(&e, common);
    return best;
}

static void solve(cholmod_sparse *a, cholmod_factor *l, int repeats, struct run_result *out, cholmod_common *common)
{
    cholmod_dense *b = ones_times(a, common), *block = block_rhs(a->nrow, common), *x = NULL;
    out->solve1 = best_solve(l, b, repeats, &x, common);
    out->residual = residual(a, x, b, common);
    cholmod_l_free_dense(&x, common);
    out->solve16 = best_solve(l, block, repeats, &x, common);
    cholmod_l_free_dense(&x, common);
    cholmod_l_free_dense(&block, common);
    cholmod_l_free_dense(&b, common);
}

static const char *ordering_name(int ordering)
{
    switch (ordering) {
    case CHOLMOD_NATURAL: return "natural";
    case CHOLMOD_GIVEN: return "given";
    case CHOLMOD_AMD: return "amd";
    case CHOLMOD_METIS: return "metis";
    case CHOLMOD_NESDIS: return "nesdis";
    case CHOLMOD_COLAMD: return "colamd";
    case CHOLMOD_POSTORDERED: return "postordered";
    default: return "other";
    }
}

static void run(const char *name, cholmod_sparse *a, idx *perm, int repeats, cholmod_common *common)
{
    struct run_result out;
    cholmod_factor *l = analyse(a, perm, repeats, &out, common);
    factorise(a, l, repeats, &out, common);
    solve(a, l, repeats, &out, common);
    cholmod_l_free_factor(&l, common);
    printf("run %s ordering=%s analyse=%.9g factorise=%.9g solve1=%.9g solve16=%.9g supernodes=%ld entries=%.17g "
           "exact_entries=%.17g flops=%.17g residual=%.3g\n",
           name, ordering_name(out.ordering), out.analyse, out.factorise, out.solve1, out.solve16,
           (long)out.supernodes, out.entries, out.exact_entries, out.flops, out.residual);
    fflush(stdout);
}

int main(int argc, char **argv)
{
    peer_start("zel-bench-cholmod", argv);
    struct peer_arguments arguments;
    peer_parse_arguments(argc, argv, "usage: zel-bench-cholmod MATRIX [--perm FILE] [--repeats N]", &arguments);
    const char *matrix = arguments.matrix, *perm_file = arguments.perm;
    const int repeats = arguments.repeats;

    cholmod_common common;
    cholmod_l_start(&common);
    common.supernodal = CHOLMOD_SUPERNODAL;
    int version[3];
    cholmod_l_version(version);
    printf("peer cholmod %d.%d.%d\n", version[0], version[1], version[2]);
    peer_print_blas();

    cholmod_sparse *a = read_matrix(matrix, &common);
    run("default", a, NULL, repeats, &common);
    if (perm_file != NULL) {
        idx *perm = read_perm(perm_file, (idx)a->nrow);
        common.nmethods = 1;
        common.method[0].ordering = CHOLMOD_GIVEN;
        run("given", a, perm, repeats, &common);
        free(perm);
    }
    cholmod_l_free_sparse(&a, &common);
    cholmod_l_finish(&common);
    return 0;
}
