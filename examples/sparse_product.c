/* Create a sparse matrix handle, transpose it, form C = A*A^T (upper triangle) and print both. */
#include <stdio.h>

#include <zel.h>

/* Prints the entries of a double CSR handle as NAME(i,j) = value, one per line. */
static int print_csr(const char *name, const zel_sparse_matrix_i4 *handle)
{
    int index_base;
    int32_t rows, cols, *rows_start, *rows_end, *col_indx;
    double *values;
    int status = zel_sparse_d_export_csr_i4(handle, &index_base, &rows, &cols, &rows_start, &rows_end, &col_indx,
                                            &values);
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    printf("%s, %d x %d:\n", name, (int)rows, (int)cols);
    for (int32_t i = 0; i < rows; ++i)
        for (int32_t p = rows_start[i] - index_base; p < rows_end[i] - index_base; ++p)
            printf("  %s(%d,%d) = %g\n", name, (int)i, (int)(col_indx[p] - index_base), values[p]);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

int main(void)
{
    /* A is 3 x 4 in zero-based CSR; the handle uses these arrays in place (it does not copy them). */
    int32_t rows_start[4] = {0, 2, 4, 6};
    int32_t col_indx[6] = {0, 2, 1, 3, 0, 3};
    double values[6] = {1, 2, 3, 4, 5, 6};
    zel_sparse_matrix_i4 *a = NULL, *at = NULL, *c = NULL;

    int status = zel_sparse_d_create_csr_i4(&a, ZEL_SPARSE_INDEX_BASE_ZERO, 3, 4, rows_start, rows_start + 1,
                                            col_indx, values);
    /* At: a new handle holding A^T on arrays of its own. */
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = zel_sparse_d_create_and_transpose_out_of_place_i4(a, ZEL_SPARSE_OPERATION_TRANSPOSE, &at);
    /* C = A*A^T, symmetric: only its upper triangle is formed. */
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = zel_sparse_syrk_i4(ZEL_SPARSE_OPERATION_NON_TRANSPOSE, a, &c);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = print_csr("A", a);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = print_csr("At", at);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = print_csr("C", c);
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        fprintf(stderr, "sparse_product: %s\n", zel_sparse_status_name(status));

    zel_sparse_destroy_i4(c); /* destroying a null handle is allowed */
    zel_sparse_destroy_i4(at);
    zel_sparse_destroy_i4(a);
    return status == ZEL_SPARSE_STATUS_SUCCESS ? 0 : 1;
}
