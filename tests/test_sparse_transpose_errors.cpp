// Refusals and failure paths of copy and transpose: every failing allocation returns 2 with
// the handle as it was and nothing left allocated.
#include <gtest/gtest.h>

#include "alloc_fault.hpp"
#include "test_sparse_transpose_support.hpp"

namespace {

using namespace zel::test;

template <class P> class SparseTransposeErrors : public ::testing::Test {};
TYPED_TEST_SUITE(SparseTransposeErrors, all_members);

template <class I> struct snapshot {
    matrix_of<I> handle;
    record_of<I> record;
    explicit snapshot(const matrix_of<I> *h) : handle(*h), record(*static_cast<const record_of<I> *>(h->data)) {}
    bool same_as(const matrix_of<I> *h) const
    {
        return std::memcmp(&handle, h, sizeof handle) == 0 &&
               std::memcmp(&record, h->data, sizeof record) == 0;
    }
};

TYPED_TEST(SparseTransposeErrors, CopyRefusals)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using api = typename TypeParam::api;
    EXPECT_EQ(api::copy(nullptr), ZEL_SPARSE_STATUS_INTERNAL_ERROR);
    EXPECT_EQ(api::convert(nullptr), ZEL_SPARSE_STATUS_INTERNAL_ERROR);
    std::mt19937_64 rng(1);
    auto a = random_compressed<T, I>(rng, ZEL_SPARSE_FORMAT_CSR, 4, 4, 1, 0, 0.5);
    handle_guard<I> g{make_handle(a)};
    auto *record = static_cast<record_of<I> *>(g.handle->data);

    record->inplace_copy = 0;
    snapshot<I> before(g.handle);
    EXPECT_EQ(api::copy(g.handle), ZEL_SPARSE_STATUS_INTERNAL_ERROR);
    EXPECT_TRUE(before.same_as(g.handle));
    record->inplace_copy = 1;

    g.handle->format = ZEL_SPARSE_FORMAT_COO;
    EXPECT_EQ(api::copy(g.handle), ZEL_SPARSE_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(api::transpose(g.handle, ZEL_SPARSE_OPERATION_TRANSPOSE), ZEL_SPARSE_STATUS_NOT_SUPPORTED);
    g.handle->format = 7;
    EXPECT_EQ(api::transpose(g.handle, ZEL_SPARSE_OPERATION_TRANSPOSE), ZEL_SPARSE_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(g.handle->transposed, nullptr);
    g.handle->format = ZEL_SPARSE_FORMAT_CSR;

    g.handle->data = nullptr;
    EXPECT_EQ(api::copy(g.handle), ZEL_SPARSE_STATUS_INTERNAL_ERROR);
    EXPECT_EQ(api::transpose(g.handle, ZEL_SPARSE_OPERATION_TRANSPOSE), ZEL_SPARSE_STATUS_INTERNAL_ERROR);
    g.handle->data = record;

    EXPECT_EQ(api::out_of_place(g.handle, 13), ZEL_SPARSE_STATUS_INVALID_VALUE);
    matrix_of<I> *made = nullptr;
    EXPECT_EQ(api::create(g.handle, 9, &made), ZEL_SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(api::create(g.handle, ZEL_SPARSE_OPERATION_TRANSPOSE, nullptr), ZEL_SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(made, nullptr);
}

TYPED_TEST(SparseTransposeErrors, KernelRefusesBadSizes)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using api = typename TypeParam::api;
    const I starts[] = {0, 1}, indices[] = {0};
    const T values[] = {T(1)};
    I out_starts[2], out_indices[1], work[1];
    T out_values[1];
    EXPECT_EQ(api::kernel(1, 1, 1, 0, 11, 0, 1, starts, starts + 1, indices, values, out_starts, out_indices,
                          out_values, work),
              ZEL_SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(api::kernel(1, 1, 1, 1, 11, 0, 0, starts, starts + 1, indices, values, out_starts, out_indices,
                          out_values, work),
              ZEL_SPARSE_STATUS_INVALID_VALUE);
    allocator_probe probe;
    probe.fail_all(true);
    EXPECT_EQ(api::kernel(1, 1, 1, 1, 11, 0, 1, starts, starts + 1, indices, values, out_starts, out_indices,
                          out_values, work),
              ZEL_SPARSE_STATUS_ALLOC_FAILED);
}

// Runs `call` on a fresh handle once per allocation it makes, failing that one.
template <class T, class I, class Call>
void each_failure_leaves_handle(compressed<T, I> &a, Call call, bool transposed_first = false)
{
    int64_t counted = 0;
    {
        handle_guard<I> g{make_handle(a)};
        if (transposed_first) {
            ASSERT_EQ((members<T, I>::transpose(g.handle, ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE)), 0);
        }
        allocator_probe probe;
        ASSERT_EQ(call(g.handle), 0);
        counted = probe.requests();
    }
    ASSERT_GT(counted, 0);
    for (int64_t k = 0; k < counted; ++k) {
        SCOPED_TRACE(::testing::Message() << "allocation " << k << " of " << counted);
        handle_guard<I> g{make_handle(a)};
        if (transposed_first) {
            ASSERT_EQ((members<T, I>::transpose(g.handle, ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE)), 0);
        }
        const snapshot<I> before(g.handle);
        const record_of<I> *t = g.handle->transposed;
        const record_of<I> tbefore = t ? *t : record_of<I>{};
        allocator_probe probe;
        probe.fail_at(k);
        EXPECT_EQ(call(g.handle), ZEL_SPARSE_STATUS_ALLOC_FAILED);
        EXPECT_EQ(probe.failures(), 1);
        EXPECT_EQ(probe.live(), 0);
        EXPECT_TRUE(before.same_as(g.handle));
        if (t) {
            EXPECT_EQ(std::memcmp(t, &tbefore, sizeof tbefore), 0);
        }
    }
}

TYPED_TEST(SparseTransposeErrors, AllocationFailuresChangeNothing)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using api = typename TypeParam::api;
    std::mt19937_64 rng(2);
    auto bsr = random_compressed<T, I>(rng, ZEL_SPARSE_FORMAT_BSR, 5, 4, 2, 1, 0.5);
    auto four = bsr;
    four.ends.assign(bsr.starts.begin() + 1, bsr.starts.end());
    four.starts.pop_back();

    for (auto *a : {&bsr, &four}) {
        each_failure_leaves_handle(*a, [](matrix_of<I> *h) { return api::copy(h); });
        each_failure_leaves_handle(*a, [](matrix_of<I> *h) { return api::convert(h); });
        each_failure_leaves_handle(*a, [](matrix_of<I> *h) { return api::transpose(h, 11); });
        each_failure_leaves_handle(*a, [](matrix_of<I> *h) { return api::out_of_place(h, 12); });
        each_failure_leaves_handle(*a, [](matrix_of<I> *h) { return api::bsr_transpose(h); });
        each_failure_leaves_handle(*a, [](matrix_of<I> *h) {
            matrix_of<I> *made = nullptr;
            int status = api::create(h, 11, &made);
            free_handle<I>(made);
            return status;
        });
    }
    // The complex members' second value array, added to an existing record.
    if constexpr (is_complex_value<T>) {
        each_failure_leaves_handle(bsr, [](matrix_of<I> *h) { return api::transpose(h, 11); }, true);
    }
}

} // namespace
