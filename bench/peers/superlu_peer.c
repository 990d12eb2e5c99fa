/* zel-bench-superlu: SuperLU's supernodal LU with partial pivoting timed on one matrix, for
 * `zel bench solver`. It runs the steps of dgssvx under set_default_options (equilibration,
 * COLAMD column ordering, threshold 1.0, no refinement) one phase at a time, so that each can be
 * timed on its own.
 *
 * usage: zel-bench-superlu MATRIX [--repeats N]
 *   MATRIX  the whole matrix by columns (peer_common.h); SuperLU takes 32-bit indices
 *
 * Output (peer_common.h): "run default" with seconds (best of the repeats, after one untimed
 * solve) for analyse (the column ordering and the column elimination tree: get_perm_c,
 * sp_preorder), factorise (equilibration and dgstrf on the file's values), solve1 (dgstrs on
 * b = A·1 with the scalings applied around it), entries (L and U, the diagonal once, as SuperLU
 * reports them), flops (SuperLU's count), berr and residual of that solve and peak memory. */
#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <slu_ddefs.h>

#include "peer_common.h"

struct superlu_run {
    const struct peer_csc *a;
    superlu_options_t options;
    SuperLUStat_t stat;
    SuperMatrix matrix, permuted, l, u;
    GlobalLU_t glu;
    int *col_ptr, *row, *perm_c, *perm_r, *etree;
    double *value, *row_scale, *col_scale;
    char equed[1];
    int factored;
};

static void *allocate(size_t count, size_t size)
{
    void *memory = calloc(count > 0 ? count : 1, size);
    if (memory == NULL)
        peer_fail("out of memory");
    return memory;
}

/* The file's matrix in SuperLU's 32-bit indices and a value array of its own (equilibration
 * scales it in place). */
static void setup(struct superlu_run *s, const struct peer_csc *a)
{
    if (a->n > INT_MAX || a->nnz > INT_MAX)
        peer_refuse("analyse", "the matrix does not fit SuperLU's 32-bit indices");
    const size_t n = (size_t)a->n, nnz = (size_t)a->nnz;
    s->a = a;
    s->col_ptr = allocate(n + 1, sizeof(int));
    s->row = allocate(nnz, sizeof(int));
    s->value = allocate(nnz, sizeof(double));
    for (size_t j = 0; j <= n; ++j)
        s->col_ptr[j] = (int)a->col_ptr[j];
    for (size_t p = 0; p < nnz; ++p)
        s->row[p] = (int)a->row[p];
    memcpy(s->value, a->value, nnz * sizeof(double));
    s->perm_c = allocate(n, sizeof(int));
    s->perm_r = allocate(n, sizeof(int));
    s->etree = allocate(n, sizeof(int));
    s->row_scale = allocate(n, sizeof(double));
    s->col_scale = allocate(n, sizeof(double));
    dCreate_CompCol_Matrix(&s->matrix, (int)n, (int)n, (int)nnz, s->value, s->row, s->col_ptr, SLU_NC, SLU_D, SLU_GE);
    set_default_options(&s->options);
    s->options.PrintStat = NO;
    StatInit(&s->stat);
    s->equed[0] = 'N';
}

static double analyse(struct superlu_run *s, int repeats)
{
    double best = 1e300;
    for (int r = 0; r < repeats; ++r) {
        if (r > 0)
            Destroy_CompCol_Permuted(&s->permuted);
        const double start = peer_now();
        get_perm_c(s->options.ColPerm, &s->matrix, s->perm_c);
        sp_preorder(&s->options, &s->matrix, s->perm_c, s->etree, &s->permuted);
        const double seconds = peer_now() - start;
        best = seconds < best ? seconds : best;
    }
    return best;
}

/* dgssvx's equilibration: scale rows and columns when dgsequ finds them badly scaled. */
static void equilibrate(struct superlu_run *s)
{
    double row_condition, col_condition, largest;
    int info = 0;
    dgsequ(&s->matrix, s->row_scale, s->col_scale, &row_condition, &col_condition, &largest, &info);
    if (info == 0)
        dlaqgs(&s->matrix, s->row_scale, s->col_scale, row_condition, col_condition, largest, s->equed);
    else
        s->equed[0] = 'N';
}

static double factorise(struct superlu_run *s, int repeats)
{
    const int panel_size = sp_ienv(1), relax = sp_ienv(2);
    double best = 1e300;
    for (int r = 0; r < repeats; ++r) {
        if (s->factored) {
            Destroy_SuperNode_Matrix(&s->l);
            Destroy_CompCol_Matrix(&s->u);
        }
        s->stat.ops[FACT] = 0;
        memcpy(s->value, s->a->value, sizeof(double) * (size_t)s->a->nnz);
        const double start = peer_now();
        equilibrate(s);
        int info = 0;
        dgstrf(&s->options, &s->permuted, relax, panel_size, s->etree, NULL, 0, s->perm_c, s->perm_r, &s->l, &s->u,
               &s->glu, &s->stat, &info);
        const double seconds = peer_now() - start;
        if (info > s->a->n)
            peer_refuse("factorise", "info=%d (out of memory after %d bytes)", info, info - (int)s->a->n);
        s->factored = 1;
        if (info > 0)
            peer_refuse("factorise", "info=%d (U(%d,%d) is exactly zero)", info, info, info);
        best = seconds < best ? seconds : best;
    }
    return best;
}

/* x = A⁻¹·b as dgssvx forms it: rows scaled going in, columns coming out. */
static double solve(struct superlu_run *s, int repeats, const double *b, double *x)
{
    const int n = (int)s->a->n;
    const int rows = s->equed[0] == 'R' || s->equed[0] == 'B', cols = s->equed[0] == 'C' || s->equed[0] == 'B';
    SuperMatrix rhs;
    dCreate_Dense_Matrix(&rhs, n, 1, x, n, SLU_DN, SLU_D, SLU_GE);
    double best = 1e300;
    for (int r = 0; r <= repeats; ++r) { /* the first call sets up the solve's workspace, untimed */
        const double start = peer_now();
        for (int i = 0; i < n; ++i)
            x[i] = rows ? s->row_scale[i] * b[i] : b[i];
        int info = 0;
        dgstrs(NOTRANS, &s->l, &s->u, s->perm_c, s->perm_r, &rhs, &s->stat, &info);
        if (cols)
            for (int i = 0; i < n; ++i)
                x[i] *= s->col_scale[i];
        const double seconds = peer_now() - start;
        if (info != 0)
            peer_refuse("solve", "info=%d", info);
        if (r > 0)
            best = seconds < best ? seconds : best;
    }
    Destroy_SuperMatrix_Store(&rhs);
    return best;
}

static void release(struct superlu_run *s)
{
    Destroy_SuperNode_Matrix(&s->l);
    Destroy_CompCol_Matrix(&s->u);
    Destroy_CompCol_Permuted(&s->permuted);
    Destroy_SuperMatrix_Store(&s->matrix);
    StatFree(&s->stat);
    free(s->col_ptr);
    free(s->row);
    free(s->value);
    free(s->perm_c);
    free(s->perm_r);
    free(s->etree);
    free(s->row_scale);
    free(s->col_scale);
}

int main(int argc, char **argv)
{
    peer_start("zel-bench-superlu", argv);
    struct peer_arguments arguments;
    peer_parse_arguments(argc, argv, "usage: zel-bench-superlu MATRIX [--repeats N]", &arguments);
    printf("peer superlu %d.%d.%d\n", SUPERLU_MAJOR_VERSION, SUPERLU_MINOR_VERSION, SUPERLU_PATCH_VERSION);
    peer_print_blas();

    struct peer_csc a;
    peer_read_csc(arguments.matrix, 0, &a);
    static struct superlu_run s;
    setup(&s, &a);
    double *b = peer_ones_rhs(&a), *x = allocate((size_t)a.n, sizeof(double));

    const double analyse_seconds = analyse(&s, arguments.repeats);
    const double factorise_seconds = factorise(&s, arguments.repeats);
    const double flops = s.stat.ops[FACT];
    const double entries = (double)((SCformat *)s.l.Store)->nnz + (double)((NCformat *)s.u.Store)->nnz - (double)a.n;
    const double solve_seconds = solve(&s, arguments.repeats, b, x);
    double berr, residual;
    peer_backward_error(&a, x, b, &berr, &residual);
    printf("run default ordering=colamd analyse=%.9g factorise=%.9g solve1=%.9g entries=%.17g flops=%.17g refine=0 "
           "berr=%.3g residual=%.3g memory=%.6g\n",
           analyse_seconds, factorise_seconds, solve_seconds, entries, flops, berr, residual, peer_peak_memory());
    release(&s);
    free(x);
    free(b);
    peer_free_csc(&a);
    return 0;
}
