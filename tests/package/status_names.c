/* zel_sparse_status_name: each status constant of the public header is named by its own
 * spelling, anything else is "unknown", and statuses that real calls return are named. */
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <zel.h>

static int failures = 0;

static void expect_name(int status, const char *expected)
{
    const char *name = zel_sparse_status_name(status);
    if (name == NULL || strcmp(name, expected) != 0) {
        printf("FAIL: status %d named \"%s\", expected \"%s\"\n", status, name ? name : "(null)", expected);
        ++failures;
    }
}

#define EXPECT_CONSTANT(constant) expect_name(constant, #constant)

int main(void)
{
    EXPECT_CONSTANT(ZEL_SPARSE_STATUS_SUCCESS);
    EXPECT_CONSTANT(ZEL_SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_CONSTANT(ZEL_SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_CONSTANT(ZEL_SPARSE_STATUS_INVALID_VALUE);
    EXPECT_CONSTANT(ZEL_SPARSE_STATUS_INTERNAL_ERROR);
    EXPECT_CONSTANT(ZEL_SPARSE_STATUS_NOT_SUPPORTED);
    /* 4 lies between the codes; the others bracket them. */
    const int others[] = {4, 7, -1, 10, INT_MIN, INT_MAX};
    for (size_t k = 0; k < sizeof others / sizeof others[0]; ++k)
        expect_name(others[k], "unknown");

    /* Statuses as the library returns them: a null output pointer, a negative size. */
    int32_t start[2] = {0, 0};
    expect_name(zel_sparse_d_create_csr_i4(NULL, 0, 1, 1, start, start + 1, NULL, NULL),
                "ZEL_SPARSE_STATUS_NOT_INITIALIZED");
    zel_sparse_matrix_i4 *handle = NULL;
    expect_name(zel_sparse_d_create_csr_i4(&handle, 0, -1, 1, start, start + 1, NULL, NULL),
                "ZEL_SPARSE_STATUS_INVALID_VALUE");
    zel_sparse_destroy_i4(handle);
    if (failures == 0)
        printf("every sparse status has its name\n");
    return failures != 0;
}
