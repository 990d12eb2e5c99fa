/* Loads the two objects the way a language binding does (dlopen, no link-time dependency) in the
 * order docs/objects.md gives, and runs calls that cross between them in both directions: the
 * layer's batched LU calls the core's kernel, the core's A*A^T calls the layer's stages. */
#include <dlfcn.h>
#include <math.h>
#include <stdio.h>

#include <zel.h>

typedef void getrf_batch_fn(const int64_t *, const int64_t *, double *, const int64_t *, const int64_t *, int64_t *,
                            const int64_t *, const int64_t *, int64_t *, int32_t);
typedef int create_csr_fn(zel_sparse_matrix_i4 **, int, int32_t, int32_t, int32_t *, int32_t *, int32_t *, double *);
typedef int syrk_fn(int, zel_sparse_matrix_i4 *, zel_sparse_matrix_i4 **);
typedef int export_csr_fn(const zel_sparse_matrix_i4 *, int *, int32_t *, int32_t *, int32_t **, int32_t **, int32_t **,
                          double **);
typedef int destroy_fn(zel_sparse_matrix_i4 *);

static int failures = 0;

static void check(int ok, const char *what)
{
    if (!ok) {
        const char *error = dlerror();
        printf("FAIL: %s%s%s\n", what, error ? ": " : "", error ? error : "");
        ++failures;
    }
}

/* A function pointer from a handle, without the object-to-function pointer cast C forbids. */
static void *symbol(void *handle, const char *name)
{
    void *address = dlsym(handle, name);
    if (address == NULL)
        printf("FAIL: %s not found: %s\n", name, dlerror());
    failures += address == NULL;
    return address;
}

/* The layer's strided LU of one 2 x 2 matrix that needs a row interchange. */
static void layer_to_core(void *layer)
{
    getrf_batch_fn *getrf = NULL;
    *(void **)&getrf = symbol(layer, "zel_lapack_dgetrf_batch_strided");
    if (getrf == NULL)
        return;
    double a[4] = {1, 4, 2, 3}; /* column-major [[1, 2], [4, 3]] */
    int64_t n = 2, lda = 2, stride = 4, stride_ipiv = 2, batch = 1, ipiv[2] = {0, 0}, info = -7;
    getrf(&n, &n, a, &lda, &stride, ipiv, &stride_ipiv, &batch, &info, 0);
    /* P*A = L*U with row 2 first: L = [[1, 0], [0.25, 1]], U = [[4, 3], [0, 1.25]]. */
    check(info == 0 && ipiv[0] == 2 && ipiv[1] == 2, "batched LU status or pivots");
    check(a[0] == 4 && a[1] == 0.25 && a[2] == 3 && a[3] == 1.25, "batched LU factors");
}

/* The core's A*A^T of a 2 x 3 matrix, checked against the dense product. */
static void core_to_layer(void *core)
{
    create_csr_fn *create = NULL;
    syrk_fn *syrk = NULL;
    export_csr_fn *export_csr = NULL;
    destroy_fn *destroy = NULL;
    *(void **)&create = symbol(core, "zel_sparse_d_create_csr_i4");
    *(void **)&syrk = symbol(core, "zel_sparse_syrk_i4");
    *(void **)&export_csr = symbol(core, "zel_sparse_d_export_csr_i4");
    *(void **)&destroy = symbol(core, "zel_sparse_destroy_i4");
    if (!create || !syrk || !export_csr || !destroy)
        return;
    int32_t starts[3] = {0, 2, 4}, columns[4] = {0, 2, 1, 2};
    double values[4] = {1, 2, 3, 4}, dense[2][3] = {{1, 0, 2}, {0, 3, 4}};
    zel_sparse_matrix_i4 *a = NULL, *c = NULL;
    check(create(&a, 0, 2, 3, starts, starts + 1, columns, values) == 0, "create A");
    check(syrk(ZEL_SPARSE_OPERATION_NON_TRANSPOSE, a, &c) == 0, "A*A^T through the core");
    int base;
    int32_t rows, cols, *c_start, *c_end, *c_columns;
    double *c_values, found[2][2] = {{0, 0}, {0, 0}};
    if (c != NULL && export_csr(c, &base, &rows, &cols, &c_start, &c_end, &c_columns, &c_values) == 0)
        for (int32_t i = 0; i < rows && i < 2; ++i)
            for (int32_t p = c_start[i]; p < c_end[i]; ++p)
                if (c_columns[p] >= 0 && c_columns[p] < 2)
                    found[i][c_columns[p]] = c_values[p];
    for (int i = 0; i < 2; ++i)
        for (int j = i; j < 2; ++j) {
            double expected = 0;
            for (int k = 0; k < 3; ++k)
                expected += dense[i][k] * dense[j][k];
            check(fabs(found[i][j] - expected) < 1e-14, "A*A^T value");
        }
    destroy(c);
    destroy(a);
}

int main(int argc, char **argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: load_dynamically CORE LAYER\n");
        return 2;
    }
    /* The layer alone cannot be bound: its core imports have nowhere to come from. */
    void *early = dlopen(argv[2], RTLD_NOW | RTLD_LOCAL);
    check(early == NULL, "the layer loaded before the core");
    if (early != NULL)
        dlclose(early);
    /* Core first, global and lazy (its calls into the layer bind on first use); then the layer,
     * global too so that those calls find it. */
    void *core = dlopen(argv[1], RTLD_LAZY | RTLD_GLOBAL);
    check(core != NULL, "dlopen of the core");
    void *layer = core ? dlopen(argv[2], RTLD_NOW | RTLD_GLOBAL) : NULL;
    check(layer != NULL, "dlopen of the layer after the core");
    if (layer == NULL)
        return 1;
    layer_to_core(layer);
    core_to_layer(core);
    if (failures == 0)
        printf("both objects loaded with dlopen; calls cross between them in both directions\n");
    return failures != 0;
}
