// Argument checks, statuses and allocation failures of the A·Aᵀ / Aᵀ·A products.
#include <functional>

#include "alloc_fault.hpp"
#include "test_sparse_syrk.hpp"
#include "zel/runtime.h"

using namespace sparse_test;

template <class M> class SparseSyrkErrors : public ::testing::Test {};
TYPED_TEST_SUITE(SparseSyrkErrors, all_members, member_names);

TYPED_TEST(SparseSyrkErrors, DenseEntryChecksInOrderAndLeavesCAlone)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    auto a = random_matrix<T, I>(4, 3, 0.5, 0, 1);
    auto blocks = a;
    blocks.format = bsr;
    handle_holder<M> by_rows(a), by_blocks(blocks);
    typename M::A::handle *coo = nullptr;
    std::vector<I> rows{0, 1}, cols{1, 2};
    std::vector<T> vals{T(1), T(2)};
    ASSERT_EQ(M::A::create_coo(&coo, 0, 4, 3, 2, rows.data(), cols.data(), reinterpret_cast<C *>(vals.data())), ok);
    const std::vector<T> c0(16, make_value<T>(7.0, -7.0));
    auto c = c0;
    C *cp = reinterpret_cast<C *>(c.data());
    const C one = to_c<C>(T(1)), zero = to_c<C>(T(0));
    auto call = [&](int op, typename M::A::handle *h, C *target, I ldc) {
        return M::A::syrkd(op, h, one, zero, target, row_major, ldc);
    };
    EXPECT_EQ(call(op_n, by_rows.h, nullptr, 4), not_initialized);
    EXPECT_EQ(call(op_n, nullptr, cp, 4), not_initialized);
    EXPECT_EQ(call(13, nullptr, cp, 4), not_initialized); // the null handle is found first
    EXPECT_EQ(call(9, by_rows.h, cp, 4), invalid);
    EXPECT_EQ(call(13, coo, cp, 4), invalid); // before the format
    EXPECT_EQ(call(op_n, by_rows.h, cp, -1), invalid);
    EXPECT_EQ(call(op_n, coo, cp, 4), not_supported);
    EXPECT_EQ(call(op_t, by_blocks.h, cp, 4), not_supported);
    void *data = by_rows.h->data;
    by_rows.h->data = nullptr;
    EXPECT_EQ(call(op_n, by_rows.h, cp, 4), internal_error);
    by_rows.h->data = data;
    auto &record = *static_cast<typename M::A::record *>(data);
    void *values = record.values;
    record.values = nullptr;
    EXPECT_EQ(call(op_n, by_rows.h, cp, 4), not_supported);
    EXPECT_EQ(call(op_t, by_rows.h, cp, 4), not_supported);
    record.values = values;
    EXPECT_EQ(std::memcmp(c.data(), c0.data(), c.size() * sizeof(T)), 0);
    EXPECT_EQ(by_rows.h->transposed, nullptr); // nothing was built on the way out
    M::A::destroy(coo);
}

TYPED_TEST(SparseSyrkErrors, SparseProductStatuses)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    auto a = random_matrix<T, I>(4, 3, 0.5, 0, 2);
    handle_holder<M> csr(a);
    typename M::A::handle *result = nullptr;
    EXPECT_EQ(M::A::syrk(op_n, nullptr, &result), not_initialized);
    EXPECT_EQ(M::A::syrk(op_n, csr.h, nullptr), not_initialized);
    EXPECT_EQ(M::A::syrk(13, csr.h, &result), invalid);
    typename M::A::handle *coo = nullptr;
    std::vector<I> rows{0}, cols{1};
    std::vector<T> vals{T(1)};
    ASSERT_EQ(M::A::create_coo(&coo, 0, 4, 3, 1, rows.data(), cols.data(), reinterpret_cast<C *>(vals.data())), ok);
    EXPECT_EQ(M::A::syrk(op_n, coo, &result), not_supported);
    M::A::destroy(coo);
    // A BSR matrix whose block order does not pair with its index base.
    typename M::A::handle *odd = nullptr;
    ASSERT_EQ(M::A::create_bsr(&odd, 0, col_major, a.rows, a.cols, 1, a.starts.data(), a.starts.data() + 1,
                               a.indices.data(), reinterpret_cast<C *>(a.values.data())),
              0);
    EXPECT_EQ(M::A::syrk(op_n, odd, &result), not_supported);
    M::A::destroy(odd);
    void *data = csr.h->data;
    csr.h->data = nullptr;
    EXPECT_EQ(M::A::syrk(op_n, csr.h, &result), internal_error);
    csr.h->data = data;
    auto &record = *static_cast<typename M::A::record *>(data);
    void *values = record.values;
    record.values = nullptr;
    EXPECT_EQ(M::A::syrk(op_t, csr.h, &result), not_supported);
    record.values = values;
    EXPECT_EQ(result, nullptr);

    std::vector<I> rows_start(5);
    I nnz = 0;
    EXPECT_EQ(M::A::count(op_n, csr.h, nullptr, &nnz), not_initialized);
    EXPECT_EQ(M::A::count(op_n, csr.h, rows_start.data(), nullptr), not_initialized);
    EXPECT_EQ(M::A::count(op_c, nullptr, rows_start.data(), &nnz), not_initialized);
    ASSERT_EQ(M::A::count(op_n, csr.h, rows_start.data(), &nnz), ok);
    ASSERT_GT(nnz, 0);
    EXPECT_EQ(M::A::fill(op_n, csr.h, nullptr, nullptr, nullptr), not_initialized);
    EXPECT_EQ(M::A::fill(op_n, csr.h, rows_start.data(), nullptr, nullptr), not_initialized);
    EXPECT_EQ(M::A::fill(14, csr.h, rows_start.data(), nullptr, nullptr), invalid);
}

namespace {

// Operands of the stage function: A and its (conjugate) transposed record, built outside any probe.
template <class M> struct stage_operands {
    using C = typename M::C;
    using I = typename M::I;
    typename M::A::handle *h;
    const typename M::A::record *a;
    const typename M::A::record *t;
    explicit stage_operands(typename M::A::handle *handle) : h(handle)
    {
        EXPECT_EQ(M::A::transpose(h, M::complex ? 12 : 11), ok);
        a = static_cast<const typename M::A::record *>(h->data);
        t = h->transposed;
    }
    int run(int stage, int op, C **v, I **ci, I **rs, I one_based = 0) const
    {
        const C *tv = static_cast<const C *>(M::complex ? t->aux : t->values);
        return M::A::stage(stage, op, a->rows, a->cols, a->index_base, static_cast<const C *>(a->values), a->col_indx,
                           a->rows_start, a->rows_end, t->index_base, tv, t->col_indx, t->rows_start, t->rows_end,
                           one_based, v, ci, rs);
    }
};

// Stage 90 once more, against the arrays of a successful run: on success the same row pointer
// (rows + 1 entries), columns and values, which are then freed; on failure a row pointer taken back.
template <class M>
int run_against(stage_operands<M> &ops, int op, typename M::I rows, const typename M::C *v0,
                const typename M::I *c0, const typename M::I *r0)
{
    using I = typename M::I;
    using C = typename M::C;
    C *v = nullptr;
    I *ci = nullptr, *rs = nullptr;
    const int status = ops.run(90, op, &v, &ci, &rs);
    if (status == 0) {
        const I nnz = r0[rows] - r0[0];
        EXPECT_EQ(std::memcmp(rs, r0, (rows + 1) * sizeof(I)), 0);
        EXPECT_EQ(std::memcmp(ci, c0, nnz * sizeof(I)), 0);
        EXPECT_EQ(std::memcmp(v, v0, nnz * sizeof(C)), 0);
        zel_serv_free(v);
        zel_serv_free(ci);
        zel_serv_free(rs);
    } else {
        EXPECT_EQ(rs, nullptr); // freed and taken back
    }
    return status;
}

} // namespace

TYPED_TEST(SparseSyrkErrors, StageFunctionFailsCleanlyAtEveryAllocation)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    // Rows of over 16 entries (operation 10) need the numeric kernel's accumulator; the short
    // columns (operation 11) are merged without scratch.
    auto a = random_matrix<T, I>(9, 30, 0.8, 1, 3);
    for (I i = 0; i < a.rows; ++i)
        ASSERT_GT(a.starts[i + 1] - a.starts[i], 16);
    handle_holder<M> h(a);
    stage_operands<M> ops(h.h);
    for (int op : {op_n, op_t}) {
        C *v0 = nullptr;
        I *c0 = nullptr, *r0 = nullptr;
        ASSERT_EQ(ops.run(90, op, &v0, &c0, &r0), 0);
        const I rows = op == op_n ? a.rows : a.cols;
        // The driver's six arrays (start offsets, markers, row work, row pointer, columns, values)
        // fail the call; the numeric kernel's accumulator, one per chunk with long rows, only
        // changes its path.
        const int64_t total = zel::test::for_each_failing_allocation(
            [&] { return run_against<M>(ops, op, rows, v0, c0, r0); },
            [&](int64_t k, int status, const zel::test::allocator_probe &probe) {
                EXPECT_EQ(status, k < 6 ? 2 : 0) << "allocation " << k;
                EXPECT_EQ(probe.live(), 0) << "allocation " << k;
            });
        EXPECT_EQ(total, op == op_n ? 6 + 4 : 6);
        zel_serv_free(v0);
        zel_serv_free(c0);
        zel_serv_free(r0);
    }
    // The dense driver: its two working arrays fail the call; the kernels' scratch (blocking,
    // row buffers) only sends them down their plain paths, with the same result.
    const auto *t = h.h->transposed;
    const auto *r = static_cast<const typename M::A::record *>(h.h->data);
    for (int layout : {row_major, col_major}) {
        auto run = [&](std::vector<T> &c) {
            return M::A::n_driver(to_c<C>(T(1)), to_c<C>(T(0)), r->rows, r->cols, r->index_base,
                                  static_cast<const C *>(r->values), r->col_indx, r->rows_start, r->rows_end,
                                  t->index_base, static_cast<const C *>(M::complex ? t->aux : t->values),
                                  t->col_indx, t->rows_start, t->rows_end, reinterpret_cast<C *>(c.data()), layout,
                                  9);
        };
        std::vector<T> expected(81);
        ASSERT_EQ(run(expected), 0);
        std::vector<T> c(81);
        const int64_t total = zel::test::for_each_failing_allocation(
            [&] {
                std::fill(c.begin(), c.end(), T(0));
                return run(c);
            },
            [&](int64_t k, int status, const zel::test::allocator_probe &probe) {
                EXPECT_EQ(status, k < 2 ? 2 : 0) << "allocation " << k;
                EXPECT_EQ(probe.live(), 0);
                if (status != 0)
                    return;
                for (size_t e = 0; e < c.size(); ++e) {
                    const double tol = 64 * std::numeric_limits<typename M::R>::epsilon() * (1 + std::abs(widen(expected[e])));
                    EXPECT_NEAR(std::abs(widen(c[e]) - widen(expected[e])), 0.0, tol);
                }
            });
        EXPECT_GT(total, 2);
    }
}

// 300 rows of one band, which repeat their shape away from the ends.
template <class T, class I> sparse<T, I> banded_matrix()
{
    sparse<T, I> a;
    a.rows = a.cols = 300;
    a.index_base = 0;
    a.starts.assign(1, 0);
    for (int64_t i = 0; i < a.rows; ++i) {
        for (const int64_t j : {i - 7, i - 1, i, i + 2, i + 11})
            if (j >= 0 && j < a.cols) {
                a.indices.push_back(static_cast<I>(j));
                a.values.push_back(make_value<T>(1.0 + double((i + 3 * j) % 7) / 4.0, double(j % 3) - 1.0));
            }
        a.starts.push_back(static_cast<I>(a.indices.size()));
    }
    return a;
}

// Banded rows that repeat their shape: the kernels keep what they learn about the repeats in
// scratch of their own, whose failure must leave the result as it was, while each of the driver's
// six arrays still fails the call with nothing left allocated.
TYPED_TEST(SparseSyrkErrors, RepeatedShapesSurviveFailedScratch)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    auto a = banded_matrix<T, I>();
    handle_holder<M> h(a);
    stage_operands<M> ops(h.h);
    for (int op : {op_n, op_t}) {
        C *v0 = nullptr;
        I *c0 = nullptr, *r0 = nullptr;
        ASSERT_EQ(ops.run(90, op, &v0, &c0, &r0), 0);
        int64_t failed = 0;
        const int64_t total = zel::test::for_each_failing_allocation(
            [&] { return run_against<M>(ops, op, a.rows, v0, c0, r0); },
            [&](int64_t k, int status, const zel::test::allocator_probe &probe) {
                EXPECT_TRUE(status == 0 || status == 2) << "allocation " << k;
                failed += status == 2;
                EXPECT_EQ(probe.live(), 0) << "allocation " << k;
            });
        EXPECT_EQ(failed, 6) << "operation " << op;
        EXPECT_GT(total, 6) << "operation " << op; // the kernels took scratch of their own
        zel_serv_free(v0);
        zel_serv_free(c0);
        zel_serv_free(r0);
    }
}

TYPED_TEST(SparseSyrkErrors, EmptyResultAcceptsFailedZeroSizeArrays)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    sparse<T, I> empty;
    empty.rows = 4;
    empty.cols = 3;
    empty.starts.assign(5, 0);
    handle_holder<M> h(empty);
    stage_operands<M> ops(h.h);
    zel::test::for_each_failing_allocation(
        [&] {
            C *v = nullptr;
            I *ci = nullptr, *rs = nullptr;
            const int status = ops.run(90, 10, &v, &ci, &rs, 1);
            if (status == 0) {
                for (int i = 0; i <= 4; ++i)
                    EXPECT_EQ(rs[i], 1);
                zel_serv_free(v);
                zel_serv_free(ci);
                zel_serv_free(rs);
            }
            return status;
        },
        [&](int64_t k, int status, const zel::test::allocator_probe &probe) {
            EXPECT_EQ(status, k >= 4 ? 0 : 2) << "allocation " << k; // columns and values may be missing
            EXPECT_EQ(probe.live(), 0);
        });
}

TYPED_TEST(SparseSyrkErrors, PublicProductFailsCleanly)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    for (bool shuffled : {false, true})
        for (int op : {op_n, op_c}) {
            auto a = random_matrix<T, I>(8, 6, 0.35, 0, 4, shuffled);
            int64_t created = 0; // allocations of the handle itself
            {
                zel::test::allocator_probe probe;
                handle_holder<M> h(a);
                created = probe.requests();
            }
            int64_t failures = 0;
            zel::test::for_each_failing_allocation(
                [&] {
                    typename M::A::handle *h = nullptr, *c = nullptr;
                    I *rs = a.starts.data();
                    if (M::A::create_csr(&h, 0, a.rows, a.cols, rs, rs + 1, a.indices.data(),
                                         reinterpret_cast<typename M::C *>(a.values.data())) != 0)
                        return -1;
                    const int status = M::A::syrk(op, h, &c);
                    if (status == 0)
                        M::A::destroy(c);
                    else
                        EXPECT_EQ(c, nullptr);
                    M::A::destroy(h);
                    return status;
                },
                [&](int64_t k, int status, const zel::test::allocator_probe &probe) {
                    if (k >= created) {
                        EXPECT_TRUE(status == 2 || status == 0) << "allocation " << k; // 0: a kernel's fallback
                        failures += status == 2;
                    }
                    EXPECT_EQ(probe.live(), 0) << "allocation " << k;
                });
            EXPECT_GT(failures, 6);
        }
}

// A row pointer that promises fewer entries than the operands produce (stage 92 trusts the caller's)
// bounds every row: nothing is written past the arrays it describes. In the banded matrix one row
// amid rows of one shape is short by an entry; every other row comes out as the full product has it.
TYPED_TEST(SparseSyrkErrors, ShortRowPointerBoundsTheFill)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    for (const bool banded : {false, true}) {
        auto a = banded ? banded_matrix<T, I>() : random_matrix<T, I>(12, 9, 0.4, 0, 6);
        const I n = a.rows, cut = banded ? n / 2 + 7 : -1; // not the first row of a chunk
        handle_holder<M> h(a);
        stage_operands<M> ops(h.h);
        C *v = nullptr;
        I *ci = nullptr, *rs = nullptr;
        ASSERT_EQ(ops.run(90, 10, &v, &ci, &rs), 0);
        std::vector<I> short_rows(n + 1, 0);
        for (I i = 0; i < n; ++i) {
            const I full = rs[i + 1] - rs[i];
            short_rows[i + 1] = short_rows[i] + (banded ? full - (i == cut) : full / 2);
        }
        const I nnz = short_rows[n];
        std::vector<I> cols(nnz);
        std::vector<T> vals(nnz);
        I *rows_ptr = short_rows.data();
        C *vp = reinterpret_cast<C *>(vals.data());
        I *cp = cols.data();
        ASSERT_EQ(ops.run(92, 10, &vp, &cp, &rows_ptr), 0);
        const T *full_values = reinterpret_cast<const T *>(v);
        for (I i = 0; i < n; ++i)
            for (I p = short_rows[i]; p < short_rows[i + 1]; ++p) {
                EXPECT_GE(cols[p], i);
                EXPECT_LT(cols[p], n);
                if (!banded || i == cut)
                    continue;
                const I q = rs[i] + (p - short_rows[i]);
                ASSERT_EQ(cols[p], ci[q]) << i;
                EXPECT_NEAR(std::abs(widen(vals[p]) - widen(full_values[q])), 0.0, tolerance<typename M::R>(64.0))
                    << i;
            }
        zel_serv_free(v);
        zel_serv_free(ci);
        zel_serv_free(rs);
    }
}
