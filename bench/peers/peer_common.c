/* The solver peers' shared pieces: see peer_common.h. */
#define _GNU_SOURCE
#include "peer_common.h"

#include <math.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

static const char *program_name = "zel-bench-peer";

void peer_fail(const char *what)
{
    fprintf(stderr, "%s: %s\n", program_name, what);
    exit(1);
}

void peer_refuse(const char *phase, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    printf("fail %s ", phase);
    vprintf(format, arguments);
    printf("\n");
    va_end(arguments);
    fflush(stdout);
    exit(3);
}

/* The machine is shared and the large cases can ask for more than it has. With the address space
 * capped below the memory available now, a peer that runs short gets a failed allocation (and
 * says so) instead of waking the kernel's out-of-memory killer, which may pick someone else; with
 * its processor time capped (ZEL_BENCH_PEER_MINUTES, default 30, 0 for none), one that would run
 * for hours is stopped by SIGXCPU. */
static void limit_resources(void)
{
    FILE *info = fopen("/proc/meminfo", "r");
    char line[256];
    long long available_kib = -1;
    while (info != NULL && fgets(line, sizeof line, info) != NULL)
        if (sscanf(line, "MemAvailable: %lld kB", &available_kib) == 1)
            break;
    if (info != NULL)
        fclose(info);
    struct rlimit limit;
    const rlim_t cap = (rlim_t)(0.85 * 1024.0 * (double)available_kib);
    if (available_kib > 0 && getrlimit(RLIMIT_AS, &limit) == 0 &&
        (limit.rlim_cur == RLIM_INFINITY || limit.rlim_cur > cap) &&
        (limit.rlim_max == RLIM_INFINITY || limit.rlim_max >= cap)) {
        limit.rlim_cur = cap;
        setrlimit(RLIMIT_AS, &limit);
    }
    const char *minutes_text = getenv("ZEL_BENCH_PEER_MINUTES");
    const double minutes = minutes_text != NULL && *minutes_text != '\0' ? atof(minutes_text) : 30.0;
    if (minutes > 0 && getrlimit(RLIMIT_CPU, &limit) == 0 && limit.rlim_max == RLIM_INFINITY) {
        limit.rlim_cur = (rlim_t)(60.0 * minutes);
        limit.rlim_max = limit.rlim_cur + 10; /* SIGKILL should SIGXCPU be caught */
        setrlimit(RLIMIT_CPU, &limit);
    }
}

/* OpenBLAS reads its thread count when it loads, before main: set it and start again. */
void peer_start(const char *program, char **argv)
{
    program_name = program;
    const char *blas = getenv("OPENBLAS_NUM_THREADS"), *omp = getenv("OMP_NUM_THREADS");
    if (blas != NULL && strcmp(blas, "1") == 0 && omp != NULL && strcmp(omp, "1") == 0) {
        limit_resources();
        return;
    }
    setenv("OPENBLAS_NUM_THREADS", "1", 1);
    setenv("OMP_NUM_THREADS", "1", 1);
    execv("/proc/self/exe", argv);
    peer_fail("cannot restart single-threaded (/proc/self/exe)");
}

double peer_now(void)
{
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return (double)t.tv_sec + 1e-9 * (double)t.tv_nsec;
}

/* Every BLAS or LAPACK object in the address space, once each, as the loader resolved it. */
void peer_print_blas(void)
{
    FILE *maps = fopen("/proc/self/maps", "r");
    char line[4096], seen[16][512];
    int count = 0;
    if (maps == NULL)
        peer_fail("cannot read /proc/self/maps");
    while (fgets(line, sizeof line, maps) != NULL) {
        const char *path = strchr(line, '/');
        if (path == NULL)
            continue;
        line[strcspn(line, "\n")] = '\0';
        const char *base = strrchr(path, '/') + 1;
        if (strncmp(base, "libblas", 7) != 0 && strncmp(base, "libopenblas", 11) != 0 &&
            strncmp(base, "liblapack", 9) != 0)
            continue;
        int known = 0;
        for (int k = 0; k < count; ++k)
            known |= strcmp(seen[k], path) == 0;
        if (known || count == 16)
            continue;
        snprintf(seen[count++], sizeof seen[0], "%s", path);
        printf("blas %s\n", path);
    }
    fclose(maps);
    fflush(stdout);
}

void peer_read_exact(FILE *file, void *into, size_t size, size_t count)
{
    if (fread(into, size, count, file) != count)
        peer_fail("the input file is shorter than its header says");
}

FILE *peer_open_input(const char *name, const char *magic, int64_t *n)
{
    char header[8];
    FILE *file = fopen(name, "rb");
    if (file == NULL)
        peer_fail("cannot open an input file");
    peer_read_exact(file, header, 1, sizeof header);
    if (memcmp(header, magic, sizeof header) != 0)
        peer_fail("an input file does not start with the expected marker");
    peer_read_exact(file, n, sizeof *n, 1);
    return file;
}

static void *allocate(size_t count, size_t size)
{
    void *memory = malloc((count > 0 ? count : 1) * size);
    if (memory == NULL)
        peer_fail("out of memory");
    return memory;
}

/* Pointers that start at 0, never decrease and end at nnz; rows in range and ascending. */
static int well_formed(const struct peer_csc *a)
{
    if (a->col_ptr[0] != 0 || a->col_ptr[a->n] != a->nnz)
        return 0;
    for (int64_t j = 0; j < a->n; ++j) {
        if (a->col_ptr[j] > a->col_ptr[j + 1])
            return 0;
        for (int64_t p = a->col_ptr[j]; p < a->col_ptr[j + 1]; ++p)
            if (a->row[p] < 0 || a->row[p] >= a->n || (p > a->col_ptr[j] && a->row[p] <= a->row[p - 1]) ||
                (a->upper && a->row[p] > j))
                return 0;
    }
    return 1;
}

void peer_read_csc(const char *name, int upper, struct peer_csc *a)
{
    FILE *file = peer_open_input(name, "ZELCSC01", &a->n);
    peer_read_exact(file, &a->nnz, sizeof a->nnz, 1);
    if (a->n < 0 || a->nnz < 0)
        peer_fail("negative sizes in the matrix file");
    a->upper = upper;
    a->col_ptr = allocate((size_t)a->n + 1, sizeof(int64_t));
    a->row = allocate((size_t)a->nnz, sizeof(int64_t));
    a->value = allocate((size_t)a->nnz, sizeof(double));
    peer_read_exact(file, a->col_ptr, sizeof(int64_t), (size_t)a->n + 1);
    peer_read_exact(file, a->row, sizeof(int64_t), (size_t)a->nnz);
    peer_read_exact(file, a->value, sizeof(double), (size_t)a->nnz);
    fclose(file);
    if (!well_formed(a))
        peer_fail(upper ? "the matrix file does not hold an upper triangle by columns"
                        : "the matrix file does not hold a matrix by columns");
}

void peer_free_csc(struct peer_csc *a)
{
    free(a->col_ptr);
    free(a->row);
    free(a->value);
}

/* y = A·x and, when abs_ax is not null, |A|·|x| (the stored triangle mirrored when upper). */
static void multiply(const struct peer_csc *a, const double *x, double *y, double *abs_ax)
{
    memset(y, 0, sizeof(double) * (size_t)a->n);
    if (abs_ax != NULL)
        memset(abs_ax, 0, sizeof(double) * (size_t)a->n);
    for (int64_t j = 0; j < a->n; ++j)
        for (int64_t p = a->col_ptr[j]; p < a->col_ptr[j + 1]; ++p) {
            const int64_t i = a->row[p];
            const double v = a->value[p];
            y[i] += v * x[j];
            if (abs_ax != NULL)
                abs_ax[i] += fabs(v) * fabs(x[j]);
            if (a->upper && i != j) {
                y[j] += v * x[i];
                if (abs_ax != NULL)
                    abs_ax[j] += fabs(v) * fabs(x[i]);
            }
        }
}

double *peer_ones_rhs(const struct peer_csc *a)
{
    double *ones = allocate((size_t)a->n, sizeof(double)), *b = allocate((size_t)a->n, sizeof(double));
    for (int64_t i = 0; i < a->n; ++i)
        ones[i] = 1.0;
    multiply(a, ones, b, NULL);
    free(ones);
    return b;
}

/* The row sums of |A| (the stored triangle mirrored when upper). */
static void abs_row_sums(const struct peer_csc *a, double *sum)
{
    memset(sum, 0, sizeof(double) * (size_t)a->n);
    for (int64_t j = 0; j < a->n; ++j)
        for (int64_t p = a->col_ptr[j]; p < a->col_ptr[j + 1]; ++p) {
            sum[a->row[p]] += fabs(a->value[p]);
            if (a->upper && a->row[p] != j)
                sum[j] += fabs(a->value[p]);
        }
}

void peer_backward_error(const struct peer_csc *a, const double *x, const double *b, double *berr,
                         double *residual)
{
    const size_t n = (size_t)a->n;
    double *ax = allocate(n, sizeof(double)), *abs_ax = allocate(n, sizeof(double));
    double *row_sum = allocate(n, sizeof(double));
    multiply(a, x, ax, abs_ax);
    abs_row_sums(a, row_sum);
    double worst = 0, r_norm = 0, a_norm = 0, x_norm = 0, b_norm = 0;
    for (size_t i = 0; i < n; ++i) {
        const double r = fabs(b[i] - ax[i]), scale = abs_ax[i] + fabs(b[i]);
        const double ratio = scale > 0 ? r / scale : r > 0 ? INFINITY : 0;
        worst = ratio > worst || isnan(ratio) ? ratio : worst;
        r_norm = fmax(r_norm, r);
        a_norm = fmax(a_norm, row_sum[i]);
        x_norm = fmax(x_norm, fabs(x[i]));
        b_norm = fmax(b_norm, fabs(b[i]));
    }
    *berr = worst;
    const double scale = a_norm * x_norm + b_norm;
    *residual = scale > 0 ? r_norm / scale : r_norm;
    free(ax);
    free(abs_ax);
    free(row_sum);
}

/* VmHWM belongs to this address space: getrusage's ru_maxrss survives exec and, after a spawn
 * that shared the parent's memory, counts the parent's. */
double peer_peak_memory(void)
{
    FILE *status = fopen("/proc/self/status", "r");
    char line[256];
    long long kib = 0;
    while (status != NULL && fgets(line, sizeof line, status) != NULL)
        if (sscanf(line, "VmHWM: %lld kB", &kib) == 1)
            break;
    if (status != NULL)
        fclose(status);
    return 1024.0 * (double)kib;
}

void peer_parse_arguments(int argc, char **argv, const char *usage, struct peer_arguments *out)
{
    out->matrix = NULL;
    out->perm = NULL;
    out->repeats = 3;
    out->sym = 0;
    for (int k = 1; k < argc; ++k) {
        if (strcmp(argv[k], "--perm") == 0 && k + 1 < argc)
            out->perm = argv[++k];
        else if (strcmp(argv[k], "--repeats") == 0 && k + 1 < argc)
            out->repeats = atoi(argv[++k]);
        else if (strcmp(argv[k], "--sym") == 0 && k + 1 < argc)
            out->sym = atoi(argv[++k]);
        else if (argv[k][0] != '-' && out->matrix == NULL)
            out->matrix = argv[k];
        else
            peer_fail(usage);
    }
    if (out->matrix == NULL || out->repeats < 1)
        peer_fail(usage);
}
