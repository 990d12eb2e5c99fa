// The limits of the sparse entry points: sizes at the edge of the 64-bit index type (every entry
// point that computes a size from a dimension, a block edge or a count reports 2 or 3 and writes
// nothing; the checked helpers hold on their boundaries), and what a failed allocation of the
// sparse-result stage releases.
#include <gtest/gtest.h>

#include <cstdint>
#include <algorithm>
#include <limits>
#include <vector>

#include "zel/sparse_handle.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel/runtime.h"
#include "zel_internal/checked.hpp"
#include "alloc_fault.hpp"

// A request the machine cannot serve must come back as null, as it does without the sanitizer.
extern "C" const char *__asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

constexpr int64_t max64 = std::numeric_limits<int64_t>::max();
constexpr int success = ZEL_SPARSE_STATUS_SUCCESS;

bool refused(int status) { return status == ZEL_SPARSE_STATUS_ALLOC_FAILED || status == ZEL_SPARSE_STATUS_INVALID_VALUE; }

TEST(CheckedArithmetic, Boundaries)
{
    EXPECT_EQ(zel::checked_mul(int64_t(1) << 31, int64_t(1) << 31).value(), int64_t(1) << 62);
    EXPECT_EQ(zel::checked_mul(max64, 1).value(), max64);
    EXPECT_FALSE(zel::checked_mul(max64, 2));
    EXPECT_FALSE(zel::checked_mul(int64_t(1) << 32, int64_t(1) << 31)); // 2^63
    EXPECT_FALSE(zel::checked_mul<int32_t>(int64_t(1) << 16, int64_t(1) << 15));
    EXPECT_EQ(zel::checked_mul<int32_t>(int64_t(1) << 15, int64_t(1) << 15).value(), 1 << 30);
    EXPECT_EQ(zel::checked_add(max64 - 1, 1).value(), max64);
    EXPECT_FALSE(zel::checked_add(max64, 1));
    EXPECT_EQ(zel::checked_bytes<double>(int64_t(1) << 60).value(), size_t(1) << 63);
    EXPECT_FALSE(zel::checked_bytes<double>(int64_t(1) << 61));
    EXPECT_FALSE(zel::checked_bytes<double>(int64_t(-1)));
    EXPECT_TRUE(zel::fits_in<int32_t>(int64_t(INT32_MAX)));
    EXPECT_FALSE(zel::fits_in<int32_t>(int64_t(INT32_MAX) + 1));
    EXPECT_TRUE(zel::fits_in<int32_t>(int64_t(INT32_MIN)));
    EXPECT_FALSE(zel::fits_in<int32_t>(int64_t(INT32_MIN) - 1));
}

// One stored block (or entry) at (0, 0) of a matrix whose other dimension is huge: creation
// reads only arrays of the given size, so any width can be asked for.
struct one_entry {
    int64_t starts[2] = {0, 1};
    int64_t index[2] = {0, 0};
    double values[4] = {1, 2, 3, 4};
    int64_t rows[2] = {1, 0}; // two coordinate pairs out of order, for the COO form
};

TEST(SparseExtremes, BsrCreationRejectsBlocksWhoseProductsOverflow)
{
    struct shape {
        int64_t cols, block;
    };
    for (shape s : {shape{int64_t(1) << 31, int64_t(1) << 32}, shape{int64_t(1) << 32, int64_t(1) << 31},
                    shape{int64_t(1) << 40, int64_t(1) << 24}, shape{int64_t(1) << 61, 4}, shape{max64, 2},
                    shape{1, int64_t(1) << 31}, shape{1, int64_t(1) << 32}}) {
        one_entry e;
        zel_sparse_matrix_i8 *sentinel = reinterpret_cast<zel_sparse_matrix_i8 *>(&e), *A = sentinel;
        EXPECT_EQ(zel_sparse_d_create_bsr_i8(&A, 0, ZEL_SPARSE_LAYOUT_ROW_MAJOR, 1, s.cols, s.block, e.starts,
                                             e.starts + 1, e.index, e.values),
                  ZEL_SPARSE_STATUS_INVALID_VALUE)
            << "cols " << s.cols << " block " << s.block;
        EXPECT_EQ(A, sentinel);
    }
    // The 32-bit form keeps rejecting a product past its own range.
    one_entry e;
    int32_t starts[2] = {0, 1}, index[1] = {0};
    zel_sparse_matrix_i4 *A = nullptr;
    EXPECT_EQ(zel_sparse_d_create_bsr_i4(&A, 0, ZEL_SPARSE_LAYOUT_ROW_MAJOR, 1, 1 << 30, 4, starts, starts + 1, index,
                                         e.values),
              ZEL_SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(A, nullptr);
}

// A wide BSR matrix whose size is valid: the transpositions need arrays no machine has.
TEST(SparseExtremes, WideBsrTranspositionsReportAllocationFailure)
{
    one_entry e;
    zel_sparse_matrix_i8 *A = nullptr;
    ASSERT_EQ(zel_sparse_d_create_bsr_i8(&A, 0, ZEL_SPARSE_LAYOUT_ROW_MAJOR, 1, int64_t(1) << 40, 2, e.starts,
                                         e.starts + 1, e.index, e.values),
              success);
    zel_sparse_matrix_i8 *made = nullptr;
    EXPECT_TRUE(refused(zel_sparse_d_transposeMatrix_i8(A, ZEL_SPARSE_OPERATION_TRANSPOSE)));
    EXPECT_EQ(A->transposed, nullptr);
    EXPECT_TRUE(refused(zel_sparse_d_create_and_transpose_out_of_place_i8(A, ZEL_SPARSE_OPERATION_TRANSPOSE, &made)));
    EXPECT_EQ(made, nullptr);
    EXPECT_TRUE(refused(zel_sparse_convert_csr_i8(A, ZEL_SPARSE_OPERATION_TRANSPOSE, &made)));
    EXPECT_EQ(made, nullptr);
    EXPECT_TRUE(refused(zel_sparse_syrk_i8(ZEL_SPARSE_OPERATION_TRANSPOSE, A, &made)));
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(zel_sparse_copy_i8(A, &made), success); // a copy needs only the stored block
    EXPECT_EQ(zel_sparse_destroy_i8(made), success);
    EXPECT_EQ(zel_sparse_destroy_i8(A), success);
}

// Dimensions whose index arrays cannot be addressed: every conversion and transposition
// refuses before it allocates or writes, and the handle is left as it was.
TEST(SparseExtremes, HugeDimensionsAreRefusedWithoutWriting)
{
    for (int64_t dim : {int64_t(1) << 61, int64_t(1) << 62, max64}) {
        SCOPED_TRACE(dim);
        one_entry e;
        zel_sparse_matrix_i8 *coo = nullptr, *csr = nullptr, *made = nullptr;
        ASSERT_EQ(zel_sparse_d_create_coo_i8(&coo, 0, dim, dim, 2, e.rows, e.index, e.values), success);
        ASSERT_EQ(zel_sparse_d_create_csr_i8(&csr, 0, 1, dim, e.starts, e.starts + 1, e.index, e.values), success);
        EXPECT_TRUE(refused(zel_sparse_convert_csr_i8(coo, ZEL_SPARSE_OPERATION_NON_TRANSPOSE, &made)));
        EXPECT_TRUE(refused(zel_sparse_convert_bsr_i8(coo, 1, ZEL_SPARSE_LAYOUT_ROW_MAJOR,
                                                      ZEL_SPARSE_OPERATION_NON_TRANSPOSE, &made)));
        EXPECT_TRUE(refused(zel_sparse_convert_csr_i8(csr, ZEL_SPARSE_OPERATION_TRANSPOSE, &made)));
        EXPECT_EQ(made, nullptr);
        zel_sparse_csr_record_i8 record{};
        record.rows = -7; // a marker: a refused conversion leaves the caller's record alone
        EXPECT_TRUE(refused(zel_sparse_d_convert_coo_to_csr_i8(coo, ZEL_SPARSE_OPERATION_NON_TRANSPOSE, &record)));
        EXPECT_EQ(record.rows, -7);
        EXPECT_TRUE(refused(zel_sparse_order_i8(coo)));

        EXPECT_TRUE(refused(zel_sparse_d_transposeMatrix_i8(csr, ZEL_SPARSE_OPERATION_TRANSPOSE)));
        EXPECT_EQ(csr->transposed, nullptr);
        EXPECT_TRUE(refused(zel_sparse_d_transpose_out_of_place_i8(csr, ZEL_SPARSE_OPERATION_TRANSPOSE)));
        EXPECT_EQ(csr->rows, 1);
        EXPECT_EQ(csr->cols, dim);
        EXPECT_TRUE(refused(zel_sparse_d_create_and_transpose_out_of_place_i8(csr, ZEL_SPARSE_OPERATION_TRANSPOSE, &made)));
        EXPECT_TRUE(refused(zel_sparse_syrk_i8(ZEL_SPARSE_OPERATION_NON_TRANSPOSE, csr, &made)));
        EXPECT_TRUE(refused(zel_sparse_syrk_i8(ZEL_SPARSE_OPERATION_TRANSPOSE, csr, &made)));
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(zel_sparse_destroy_i8(coo), success);
        EXPECT_EQ(zel_sparse_destroy_i8(csr), success);
    }
}

// Stage 92 of the sparse-result product fills from the caller's row pointer. When it cannot have
// the column or value array, it frees that row pointer, and a column array the caller passed when the
// value array is the one that failed: nothing the call was given or made stays allocated.
TEST(SparseStageFailure, FailedFillReleasesTheRowPointerAndColumns)
{
    // A 4 x 5 matrix, rows sorted; A·Aᵀ has entries in every row.
    std::vector<int32_t> starts = {0, 2, 4, 5, 7}, index = {0, 3, 1, 4, 2, 0, 4};
    std::vector<double> values = {1, 2, 3, 4, 5, 6, 7};
    zel_sparse_matrix_i4 *A = nullptr;
    ASSERT_EQ(zel_sparse_d_create_csr_i4(&A, 0, 4, 5, starts.data(), starts.data() + 1, index.data(), values.data()),
              success);
    ASSERT_EQ(zel_sparse_d_transposeMatrix_i4(A, ZEL_SPARSE_OPERATION_TRANSPOSE), success);
    const zel_sparse_csr_record_i4 &t = *A->transposed;
    auto stage = [&](int which, double **v, int32_t **ci, int32_t **rs) {
        return zel_sparse_d_csr__g_n_syrk_i4(which, ZEL_SPARSE_OPERATION_NON_TRANSPOSE, 4, 5, 0, values.data(),
                                             index.data(), starts.data(), starts.data() + 1, t.index_base,
                                             static_cast<const double *>(t.values), t.col_indx, t.rows_start,
                                             t.rows_end, 0, v, ci, rs);
    };
    double *v = nullptr;
    int32_t *ci = nullptr, *counted = nullptr;
    ASSERT_EQ(stage(ZEL_SPARSE_STAGE_NNZ_COUNT, &v, &ci, &counted), success);
    const int32_t nnz = counted[4];
    ASSERT_GT(nnz, 0);
    struct failed_run {
        bool caller_columns;
        int64_t request, given, left; // blocks the caller gave, blocks still live after the call
    };
    std::vector<failed_run> failed_runs;

    for (bool caller_columns : {false, true}) {
        // A successful fill makes the driver's working arrays, then the result's missing arrays:
        // those last one or two requests are the ones whose failure takes the caller's arrays along.
        const int64_t result_requests = caller_columns ? 1 : 2;
        int64_t total = 0;
        for (int64_t k = 0;; ++k) {
            zel::test::allocator_probe probe;
            auto *rows = static_cast<int32_t *>(zel_serv_malloc(5 * sizeof(int32_t), 64));
            std::copy(counted, counted + 5, rows);
            double *vk = nullptr;
            int32_t *ck = caller_columns ? static_cast<int32_t *>(zel_serv_malloc(nnz * sizeof(int32_t), 64)) : nullptr;
            const int64_t given = probe.live();
            probe.fail_at(k);
            const int status = stage(ZEL_SPARSE_STAGE_FINALIZE_MULT, &vk, &ck, &rows);
            if (status == success) {
                EXPECT_EQ(probe.failures(), 0);
                zel_serv_free(vk);
                zel_serv_free(ck);
                zel_serv_free(rows);
                total = k;
                break;
            }
            ASSERT_EQ(status, ZEL_SPARSE_STATUS_ALLOC_FAILED) << "allocation " << k;
            // Whether request k made a result array is known once the loop ends: record what is left.
            failed_runs.push_back({caller_columns, k, given, probe.live()});
            if (probe.live() == given) { // the caller's arrays were kept: give them back here
                zel_serv_free(ck);
                zel_serv_free(rows);
            }
        }
        ASSERT_GE(total, result_requests);
        for (const failed_run &run : failed_runs)
            if (run.caller_columns == caller_columns) {
                const bool result_array = run.request >= total - result_requests;
                EXPECT_EQ(run.left, result_array ? 0 : run.given)
                    << "allocation " << run.request << (caller_columns ? ", caller's columns" : "");
            }
    }
    zel_serv_free(counted);
    EXPECT_EQ(zel_sparse_destroy_i4(A), success);
}

} // namespace
