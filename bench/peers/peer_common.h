/* What the solver peers of `zel bench solver` share: the input files, the restart on one thread,
 * the BLAS they run on, timing and the backward error of a solve.
 *
 * Input files (written by bench/bench_solver_peer.cpp):
 *   MATRIX  "ZELCSC01", n, nnz (int64), then a matrix by columns: column pointers (n+1), row
 *           indices (nnz, int64, 0-based, ascending) and values (nnz, double); either the whole
 *           matrix or, for a symmetric one, its upper triangle with the diagonal
 *   PERM    "ZELPRM01", n (int64), then a permutation (n, int64, 0-based)
 *
 * Output lines, one item a line: "peer NAME VERSION", "blas PATH" for each BLAS or LAPACK object
 * the process mapped, "run NAME key=value ..." per run, and "fail PHASE what went wrong" when the
 * peer itself refuses the matrix (exit status 3). Other errors go to standard error, status 1. */
#ifndef ZEL_BENCH_PEER_COMMON_H
#define ZEL_BENCH_PEER_COMMON_H

#include <stdint.h>
#include <stdio.h>

/* A matrix as the file holds it; upper is 1 when only the upper triangle of a symmetric one is. */
struct peer_csc {
    int64_t n, nnz;
    int64_t *col_ptr, *row;
    double *value;
    int upper;
};

/* Names the program in messages, restarts it when OpenBLAS would start threads and caps its
 * address space at 85% of the memory available when it starts and its processor time at
 * ZEL_BENCH_PEER_MINUTES (default 30). */
void peer_start(const char *program, char **argv);
void peer_fail(const char *what) __attribute__((noreturn));
/* The peer's own refusal: "fail PHASE what" on standard output, exit status 3. */
void peer_refuse(const char *phase, const char *format, ...) __attribute__((noreturn, format(printf, 2, 3)));
double peer_now(void);
void peer_print_blas(void);

FILE *peer_open_input(const char *name, const char *magic, int64_t *n);
void peer_read_exact(FILE *file, void *into, size_t size, size_t count);
void peer_read_csc(const char *name, int upper, struct peer_csc *a);
void peer_free_csc(struct peer_csc *a);

/* b = A·1, so that a solve's error means something; malloc'd, n values. */
double *peer_ones_rhs(const struct peer_csc *a);

/* Componentwise backward error max_i |b − A·x|_i / (|A|·|x| + |b|)_i and the normwise residual
 * ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞), from the matrix as read. */
void peer_backward_error(const struct peer_csc *a, const double *x, const double *b, double *berr,
                         double *residual);

/* The peak resident memory of this process, in bytes. */
double peer_peak_memory(void);

/* MATRIX [--repeats N] [--perm FILE] [--sym K]: what the programs take (each checks what applies). */
struct peer_arguments {
    const char *matrix, *perm;
    int repeats, sym;
};
void peer_parse_arguments(int argc, char **argv, const char *usage, struct peer_arguments *out);

#endif
