/* Runs examples/sparse_product and checks what it prints against its own A: At must be the
 * transpose entry for entry, and C the upper triangle of A*A^T formed densely here, every
 * non-zero once and nothing below the diagonal. */
#include <math.h>
#include <stdio.h>
#include <string.h>

enum { most = 8 };

typedef struct {
    double value[most][most];
    int seen[most][most]; /* times the entry was printed */
    int rows, cols;
} dense;

static int fail(const char *message, int i, int j)
{
    printf("FAIL: %s at (%d,%d)\n", message, i, j);
    return 1;
}

/* Reads lines "NAME(i,j) = v" into the matrix named; headers "NAME, r x c:" give the shape. */
static int read_output(FILE *in, dense *a, dense *at, dense *c)
{
    char line[256], name[8];
    int i, j, rows, cols;
    double v;
    while (fgets(line, sizeof line, in)) {
        dense *m = NULL;
        if (sscanf(line, " %7[A-Za-z](%d,%d) = %lf", name, &i, &j, &v) == 4) {
            m = strcmp(name, "A") == 0 ? a : strcmp(name, "At") == 0 ? at : strcmp(name, "C") == 0 ? c : NULL;
            if (m == NULL || i < 0 || j < 0 || i >= m->rows || j >= m->cols)
                return fail("entry outside its matrix", i, j);
            m->value[i][j] = v;
            m->seen[i][j] += 1;
        } else if (sscanf(line, "%7[A-Za-z], %d x %d:", name, &rows, &cols) == 3) {
            m = strcmp(name, "A") == 0 ? a : strcmp(name, "At") == 0 ? at : strcmp(name, "C") == 0 ? c : NULL;
            if (m == NULL || rows < 1 || cols < 1 || rows > most || cols > most)
                return fail("unexpected matrix header", rows, cols);
            m->rows = rows;
            m->cols = cols;
        } else {
            printf("FAIL: unexpected line: %s", line);
            return 1;
        }
    }
    return 0;
}

static int check_transpose(const dense *a, const dense *at)
{
    if (at->rows != a->cols || at->cols != a->rows)
        return fail("At has the wrong shape", at->rows, at->cols);
    for (int i = 0; i < a->rows; ++i)
        for (int j = 0; j < a->cols; ++j)
            if (at->seen[j][i] != a->seen[i][j] || at->value[j][i] != a->value[i][j])
                return fail("At differs from the transpose of A", j, i);
    return 0;
}

static int check_product(const dense *a, const dense *c)
{
    if (c->rows != a->rows || c->cols != a->rows)
        return fail("C has the wrong shape", c->rows, c->cols);
    for (int i = 0; i < a->rows; ++i)
        for (int j = 0; j < a->rows; ++j) {
            double sum = 0, scale = 0;
            int structural = 0; /* some k has both A(i,k) and A(j,k) */
            for (int k = 0; k < a->cols; ++k) {
                sum += a->value[i][k] * a->value[j][k];
                scale += fabs(a->value[i][k] * a->value[j][k]);
                structural |= a->seen[i][k] && a->seen[j][k];
            }
            if (j < i && c->seen[i][j])
                return fail("C has an entry below the diagonal", i, j);
            if (j >= i && c->seen[i][j] != structural)
                return fail("C's pattern differs from that of A*A^T", i, j);
            if (j >= i && fabs(c->value[i][j] - sum) > 1e-14 * scale)
                return fail("C's value differs from A*A^T", i, j);
        }
    return 0;
}

int main(int argc, char **argv)
{
    static dense a, at, c;
    if (argc != 2) {
        fprintf(stderr, "usage: check_sparse_product PROGRAM\n");
        return 2;
    }
    FILE *in = popen(argv[1], "r");
    if (in == NULL)
        return fail("cannot run the example", 0, 0);
    int failed = read_output(in, &a, &at, &c);
    const int status = pclose(in);
    if (status != 0)
        return fail("the example exited with a failure", status, 0);
    if (a.rows == 0 || c.rows == 0)
        return fail("the example printed no A or no C", a.rows, c.rows);
    failed = failed || check_transpose(&a, &at) || check_product(&a, &c);
    if (!failed)
        printf("example output agrees with A*A^T formed densely (%d x %d)\n", c.rows, c.cols);
    return failed;
}
