// Refusals and failure paths of copy and transpose: every failing allocation returns 2 with
// the handle as it was and nothing left allocated.
#include <gtest/gtest.h>

#include "alloc_fault.hpp"
#include "mm_reader.hpp"
#include "test_sparse_support.hpp"

namespace {

using namespace sparse_test;
using zel::test::allocator_probe;

template <class P> class SparseTransposeErrors : public ::testing::Test {};
TYPED_TEST_SUITE(SparseTransposeErrors, all_members, member_names);

template <class T, class I> struct snapshot {
    typename api<T, I>::handle handle;
    record_of<T, I> record;
    explicit snapshot(const typename api<T, I>::handle *h) : handle(*h), record(*static_cast<const record_of<T, I> *>(h->data)) {}
    bool same_as(const typename api<T, I>::handle *h) const
    {
        return std::memcmp(&handle, h, sizeof handle) == 0 &&
               std::memcmp(&record, h->data, sizeof record) == 0;
    }
};

TYPED_TEST(SparseTransposeErrors, CopyRefusals)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    EXPECT_EQ(A::copy_arrays(nullptr), internal_error);
    EXPECT_EQ(A::to_three_arrays(nullptr), internal_error);
    std::mt19937_64 rng(1);
    auto a = random_sparse<T, I>(rng, csr, 4, 4, 1, 0, 0.5);
    handle_of<T, I> g(a);
    auto *record = static_cast<record_of<T, I> *>(g.h->data);

    record->inplace_copy = 0;
    snapshot<T, I> before(g.h);
    EXPECT_EQ(A::copy_arrays(g.h), internal_error);
    EXPECT_TRUE(before.same_as(g.h));
    record->inplace_copy = 1;

    g.h->format = coo;
    EXPECT_EQ(A::copy_arrays(g.h), not_supported);
    EXPECT_EQ(A::transpose(g.h, op_t), not_supported);
    g.h->format = 7;
    EXPECT_EQ(A::transpose(g.h, op_t), not_supported);
    EXPECT_EQ(g.h->transposed, nullptr);
    g.h->format = csr;

    g.h->data = nullptr;
    EXPECT_EQ(A::copy_arrays(g.h), internal_error);
    EXPECT_EQ(A::transpose(g.h, op_t), internal_error);
    g.h->data = record;

    EXPECT_EQ(A::out_of_place(g.h, op_c + 1), invalid);
    typename api<T, I>::handle *made = nullptr;
    EXPECT_EQ(A::create_transposed(g.h, op_n - 1, &made), invalid);
    EXPECT_EQ(A::create_transposed(g.h, op_t, nullptr), not_initialized);
    EXPECT_EQ(made, nullptr);
}

TYPED_TEST(SparseTransposeErrors, KernelRefusesBadSizes)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const I starts[] = {0, 1}, indices[] = {0};
    const T values[] = {T(1)};
    I out_starts[2], out_indices[1], work[1];
    T out_values[1];
    EXPECT_EQ(transpose_kernel(1, 1, 1, 0, op_t, 0, 1, starts, starts + 1, indices, values, out_starts, out_indices,
                          out_values, work),
              invalid);
    EXPECT_EQ(transpose_kernel(1, 1, 1, 1, op_t, 0, 0, starts, starts + 1, indices, values, out_starts, out_indices,
                          out_values, work),
              invalid);
    allocator_probe probe;
    probe.fail_all(true);
    EXPECT_EQ(transpose_kernel(1, 1, 1, 1, op_t, 0, 1, starts, starts + 1, indices, values, out_starts, out_indices,
                          out_values, work),
              alloc_failed);
}

// Runs `call` on a fresh handle once per allocation it makes, failing that one.
template <class T, class I, class Call>
void each_failure_leaves_handle(sparse<T, I> &a, Call call, bool transposed_first = false)
{
    int64_t counted = 0;
    {
        handle_of<T, I> g(a);
        if (transposed_first) {
            ASSERT_EQ((api<T, I>::transpose(g.h, op_c)), 0);
        }
        allocator_probe probe;
        ASSERT_EQ(call(g.h), 0);
        counted = probe.requests();
    }
    ASSERT_GT(counted, 0);
    for (int64_t k = 0; k < counted; ++k) {
        SCOPED_TRACE(::testing::Message() << "allocation " << k << " of " << counted);
        handle_of<T, I> g(a);
        if (transposed_first) {
            ASSERT_EQ((api<T, I>::transpose(g.h, op_c)), 0);
        }
        const snapshot<T, I> before(g.h);
        const record_of<T, I> *t = g.h->transposed;
        const record_of<T, I> tbefore = t ? *t : record_of<T, I>{};
        allocator_probe probe;
        probe.fail_at(k);
        EXPECT_EQ(call(g.h), alloc_failed);
        EXPECT_EQ(probe.failures(), 1);
        EXPECT_EQ(probe.live(), 0);
        EXPECT_TRUE(before.same_as(g.h));
        if (t) {
            EXPECT_EQ(std::memcmp(t, &tbefore, sizeof tbefore), 0);
        }
    }
}

TYPED_TEST(SparseTransposeErrors, AllocationFailuresChangeNothing)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(2);
    auto blocks = random_sparse<T, I>(rng, bsr, 5, 4, 2, 1, 0.5);
    auto four = blocks;
    four.ends.assign(blocks.starts.begin() + 1, blocks.starts.end());
    four.starts.pop_back();

    for (auto *a : {&blocks, &four}) {
        each_failure_leaves_handle(*a, [](typename api<T, I>::handle *h) { return A::copy_arrays(h); });
        each_failure_leaves_handle(*a, [](typename api<T, I>::handle *h) { return A::to_three_arrays(h); });
        each_failure_leaves_handle(*a, [](typename api<T, I>::handle *h) { return A::transpose(h, op_t); });
        each_failure_leaves_handle(*a, [](typename api<T, I>::handle *h) { return A::out_of_place(h, op_c); });
        each_failure_leaves_handle(*a, [](typename api<T, I>::handle *h) { return A::bsr_transpose(h); });
        each_failure_leaves_handle(*a, [](typename api<T, I>::handle *h) {
            typename api<T, I>::handle *made = nullptr;
            int status = A::create_transposed(h, op_t, &made);
            if (made != nullptr)
                api<T, I>::destroy(made);
            return status;
        });
    }
    // The complex members' second value array, added to an existing record.
    if constexpr (zel::is_complex_v<T>) {
        each_failure_leaves_handle(blocks, [](typename api<T, I>::handle *h) { return A::transpose(h, op_t); }, true);
    }
}

} // namespace
