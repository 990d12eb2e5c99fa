/* Zelmath sparse BLAS: the matrix handle, its storage records and the shared codes.
 * Every record exists in an _i4 form (32-bit indices and counts) and an _i8 form (64-bit). */
#ifndef ZEL_SPARSE_TYPES_H
#define ZEL_SPARSE_TYPES_H

#include "zel/platform.h"

/* Status values returned by every sparse function. */
#define ZEL_SPARSE_STATUS_SUCCESS 0
#define ZEL_SPARSE_STATUS_NOT_INITIALIZED 1
#define ZEL_SPARSE_STATUS_ALLOC_FAILED 2
#define ZEL_SPARSE_STATUS_INVALID_VALUE 3
#define ZEL_SPARSE_STATUS_INTERNAL_ERROR 5
#define ZEL_SPARSE_STATUS_NOT_SUPPORTED 6

ZEL_BEGIN_DECLS
/* The name of a status value ("ZEL_SPARSE_STATUS_ALLOC_FAILED"), or "unknown" for any other
 * value; a static string, never null. Defined in the core object. */
ZEL_API const char *zel_sparse_status_name(int status);
ZEL_END_DECLS

/* Value type codes of the handle's data_type (note the order: d, s, z, c). */
#define ZEL_SPARSE_DATA_D 0
#define ZEL_SPARSE_DATA_S 1
#define ZEL_SPARSE_DATA_Z 2
#define ZEL_SPARSE_DATA_C 3

/* Storage formats. */
#define ZEL_SPARSE_FORMAT_COO 0
#define ZEL_SPARSE_FORMAT_CSR 1
#define ZEL_SPARSE_FORMAT_CSC 2
#define ZEL_SPARSE_FORMAT_BSR 3

/* Operations. */
#define ZEL_SPARSE_OPERATION_NON_TRANSPOSE 10
#define ZEL_SPARSE_OPERATION_TRANSPOSE 11
#define ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE 12

/* Matrix types of a descriptor. */
#define ZEL_SPARSE_MATRIX_TYPE_GENERAL 20
#define ZEL_SPARSE_MATRIX_TYPE_SYMMETRIC 21
#define ZEL_SPARSE_MATRIX_TYPE_HERMITIAN 22
#define ZEL_SPARSE_MATRIX_TYPE_TRIANGULAR 23
#define ZEL_SPARSE_MATRIX_TYPE_DIAGONAL 24
#define ZEL_SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR 25
#define ZEL_SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL 26

/* Fill modes. */
#define ZEL_SPARSE_FILL_MODE_LOWER 40
#define ZEL_SPARSE_FILL_MODE_UPPER 41
#define ZEL_SPARSE_FILL_MODE_FULL 42

/* Diagonal kinds. */
#define ZEL_SPARSE_DIAG_NON_UNIT 50
#define ZEL_SPARSE_DIAG_UNIT 51

/* Dense operand layouts. */
#define ZEL_SPARSE_LAYOUT_ROW_MAJOR 101
#define ZEL_SPARSE_LAYOUT_COLUMN_MAJOR 102

/* Index bases. */
#define ZEL_SPARSE_INDEX_BASE_ZERO 0
#define ZEL_SPARSE_INDEX_BASE_ONE 1

/* Stages of the sparse-result product. */
#define ZEL_SPARSE_STAGE_FULL_MULT 90
#define ZEL_SPARSE_STAGE_NNZ_COUNT 91
#define ZEL_SPARSE_STAGE_FINALIZE_MULT 92
#define ZEL_SPARSE_STAGE_FULL_MULT_NO_VAL 93

/* Matrix descriptor: passed by value. */
typedef struct {
    int32_t type;
    int32_t mode;
    int32_t diag;
} zel_sparse_matrix_descr;

/* First optimisation sub-record of a transposed record; its two sub-records (three and four
 * pointer-sized words) and the record itself come from zel_serv_malloc and are freed with it. */
typedef struct {
    void *word;
    int32_t value;
    int32_t flag_a;     /* 0 when created */
    int32_t flag_b;     /* 1 when created */
    void *sub_three;    /* three zero-filled pointer-sized words */
    void *sub_four;     /* four zero-filled pointer-sized words */
    void *extra;        /* null when created */
} zel_sparse_opt_record;

/* Second optimisation sub-record: thirteen pointer-sized words, zero-filled when created. */
typedef struct {
    void *words[13];
} zel_sparse_opt_words;

/* Ownership: handles, records, procedure nodes and sub-records come from zel_serv_malloc and
 * are released by the core's zel_sparse_destroy_*. A record with owns_arrays = 1 is in
 * three-array form and owns rows_start, col_indx (row_indx for COO), values and aux.
 * The records below exist once per index width, with the same fields in the same order. */

/* ---- _i4 records: 32-bit indices and counts. ---- */

/* Three-array record (CSR, CSC, BSR). */
typedef struct zel_sparse_csr_record_i4 {
    int32_t sorted;
    int32_t rows;
    int32_t cols;
    int32_t nnz;
    int32_t index_base;
    int32_t block_size;
    int32_t block_layout;
    int32_t owns_arrays;
    int32_t inplace_copy;
    int32_t is_sycl_cpu;
    int32_t three_array;
    int32_t *rows_start;
    int32_t *rows_end;
    int32_t *col_indx;
    void *values;
    void *aux;
    zel_sparse_opt_record *opt_record;
    zel_sparse_opt_words *opt_words;
} zel_sparse_csr_record_i4;

/* Coordinate record (COO). */
typedef struct zel_sparse_coo_record_i4 {
    int32_t sorted;
    int32_t rows;
    int32_t cols;
    int32_t nnz;
    int32_t index_base;
    int32_t owns_arrays;
    int32_t inplace_copy;
    int32_t is_sycl_cpu;
    int32_t *row_indx;
    int32_t *col_indx;
    void *values;
} zel_sparse_coo_record_i4;

/* Element of a procedure list, built by an inspector, read by the executors. */
typedef struct zel_sparse_proc_node_i4 {
    int32_t operation;
    int32_t matrix_type;
    int32_t fill_mode;
    int32_t diag;
    int32_t reserved;
    int32_t dense_layout;
    void *inspector_data[4];
    int (*procedure)(struct zel_sparse_proc_node_i4 *node, ...);
    struct zel_sparse_proc_node_i4 *next;
} zel_sparse_proc_node_i4;

/* The sparse matrix handle. */
typedef struct zel_sparse_matrix_i4 {
    int32_t data_type;
    int32_t format;
    int32_t block_layout_request; /* block layout given at creation (BSR) */
    int32_t hint_flags;           /* bit 0 mv hint, bit 1 mm hint, bit 2 memory hint recorded */
    int32_t rows;
    int32_t cols;
    void *data;
    zel_sparse_csr_record_i4 *transposed;
    int64_t mv_hint[3];  /* operation, matrix type, expected calls */
    int64_t mm_hint[4];  /* operation, matrix type, layout, expected calls */
    int64_t memory_hint; /* memory policy code */
    zel_sparse_proc_node_i4 *trsv_list;
    zel_sparse_proc_node_i4 *trsm_list;
    zel_sparse_proc_node_i4 *mv_list;
    zel_sparse_proc_node_i4 *dotmv_list;
    zel_sparse_proc_node_i4 *mm_list;
    zel_sparse_proc_node_i4 *symgs_list;
    zel_sparse_proc_node_i4 *reserved_list;
    zel_sparse_proc_node_i4 *sorv_list;
} zel_sparse_matrix_i4;

/* ---- _i8 records: 64-bit indices and counts. ---- */

/* Three-array record (CSR, CSC, BSR). */
typedef struct zel_sparse_csr_record_i8 {
    int64_t sorted;
    int64_t rows;
    int64_t cols;
    int64_t nnz;
    int64_t index_base;
    int64_t block_size;
    int64_t block_layout;
    int64_t owns_arrays;
    int64_t inplace_copy;
    int64_t is_sycl_cpu;
    int64_t three_array;
    int64_t *rows_start;
    int64_t *rows_end;
    int64_t *col_indx;
    void *values;
    void *aux;
    zel_sparse_opt_record *opt_record;
    zel_sparse_opt_words *opt_words;
} zel_sparse_csr_record_i8;

/* Coordinate record (COO). */
typedef struct zel_sparse_coo_record_i8 {
    int64_t sorted;
    int64_t rows;
    int64_t cols;
    int64_t nnz;
    int64_t index_base;
    int64_t owns_arrays;
    int64_t inplace_copy;
    int64_t is_sycl_cpu;
    int64_t *row_indx;
    int64_t *col_indx;
    void *values;
} zel_sparse_coo_record_i8;

/* Element of a procedure list, built by an inspector, read by the executors. */
typedef struct zel_sparse_proc_node_i8 {
    int32_t operation;
    int32_t matrix_type;
    int32_t fill_mode;
    int32_t diag;
    int32_t reserved;
    int32_t dense_layout;
    void *inspector_data[4];
    int (*procedure)(struct zel_sparse_proc_node_i8 *node, ...);
    struct zel_sparse_proc_node_i8 *next;
} zel_sparse_proc_node_i8;

/* The sparse matrix handle. */
typedef struct zel_sparse_matrix_i8 {
    int32_t data_type;
    int32_t format;
    int32_t block_layout_request; /* block layout given at creation (BSR) */
    int32_t hint_flags;           /* bit 0 mv hint, bit 1 mm hint, bit 2 memory hint recorded */
    int64_t rows;
    int64_t cols;
    void *data;
    zel_sparse_csr_record_i8 *transposed;
    int64_t mv_hint[3];  /* operation, matrix type, expected calls */
    int64_t mm_hint[4];  /* operation, matrix type, layout, expected calls */
    int64_t memory_hint; /* memory policy code */
    zel_sparse_proc_node_i8 *trsv_list;
    zel_sparse_proc_node_i8 *trsm_list;
    zel_sparse_proc_node_i8 *mv_list;
    zel_sparse_proc_node_i8 *dotmv_list;
    zel_sparse_proc_node_i8 *mm_list;
    zel_sparse_proc_node_i8 *symgs_list;
    zel_sparse_proc_node_i8 *reserved_list;
    zel_sparse_proc_node_i8 *sorv_list;
} zel_sparse_matrix_i8;

#endif
