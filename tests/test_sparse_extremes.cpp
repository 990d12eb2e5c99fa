// Sizes at the edge of the 64-bit index type: every entry point that computes a size from a
// dimension, a block edge or a count reports 2 or 3 and writes nothing, and the checked helpers
// hold on their boundaries.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "zel/sparse_handle.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/checked.hpp"

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

} // namespace
