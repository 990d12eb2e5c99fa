// Sparse handle failure paths: malformed creation arguments, allocation failure at every
// allocation, hints, descriptor validation, the procedure lookup, the operand check and the
// dispatchers' status values.
#include "test_sparse_handle.hpp"

#include "alloc_fault.hpp"

using namespace sparse_test;
using zel::test::allocator_probe;
using zel::test::for_each_failing_allocation;

namespace {

// A 4 x 6 matrix in every format, zero- or one-based, over arrays owned here.
template <class T, class I> struct fixture {
    using A = api<T, I>;
    dense<T> m = sample<T>(4, 6);
    I base;
    compressed<T, I> csr, csc, bsr;
    std::vector<I> coo_rows;
    explicit fixture(I b) : base(b)
    {
        csr = compress<T, I>(m, false, base);
        csc = compress<T, I>(m, true, base);
        bsr = blocked<T, I>(m, 2, base == 0 ? 101 : 102, base);
        for (size_t r = 0; r + 1 < csr.starts.size(); ++r)
            for (I p = csr.starts[r]; p < csr.starts[r + 1]; ++p)
                coo_rows.push_back(I(r + base));
    }
    int create(int format, typename A::handle **h)
    {
        switch (format) {
        case 0:
            return A::create_coo(h, int(base), 4, 6, I(csr.index.size()), coo_rows.data(), csr.index.data(),
                                 A::c(csr.values.data()));
        case 1:
            return A::create_csr(h, int(base), 4, 6, csr.starts.data(), csr.starts.data() + 1, csr.index.data(),
                                 A::c(csr.values.data()));
        case 2:
            return A::create_csc(h, int(base), 4, 6, csc.starts.data(), csc.starts.data() + 1, csc.index.data(),
                                 A::c(csc.values.data()));
        default:
            return A::create_bsr(h, int(base), base == 0 ? 101 : 102, 2, 3, 2, bsr.starts.data(),
                                 bsr.starts.data() + 1, bsr.index.data(), A::c(bsr.values.data()));
        }
    }
};

template <class Record> void free_arrays(Record &r)
{
    if constexpr (requires { r.row_indx; })
        zel_serv_free(r.row_indx);
    else
        zel_serv_free(r.rows_start);
    zel_serv_free(r.col_indx);
    zel_serv_free(r.values);
}

} // namespace

template <class P> class SparseHandleErrors : public ::testing::Test {};
TYPED_TEST_SUITE(SparseHandleErrors, all_members);

TYPED_TEST(SparseHandleErrors, CreationRejectsMalformedArraysAllocatingNothing)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    fixture<T, I> f(1);
    std::vector<I> s = f.csr.starts, idx = f.csr.index;
    std::vector<T> v = f.csr.values;
    typename A::handle *h = nullptr;
    auto csr = [&](int base, I rows, I cols, I *starts, I *ends, I *index, T *values) {
        return A::create_csr(&h, base, rows, cols, starts, ends, index, A::c(values));
    };
    allocator_probe probe;
    EXPECT_EQ(A::create_csr(nullptr, 1, 4, 6, s.data(), s.data() + 1, idx.data(), A::c(v.data())), 1);
    EXPECT_EQ(csr(1, -1, 6, s.data(), s.data() + 1, idx.data(), v.data()), 3);
    EXPECT_EQ(csr(1, 4, -6, s.data(), s.data() + 1, idx.data(), v.data()), 3);
    EXPECT_EQ(csr(2, 4, 6, s.data(), s.data() + 1, idx.data(), v.data()), 3);
    EXPECT_EQ(csr(0, 4, 6, s.data(), s.data() + 1, idx.data(), v.data()), 3); // rows_start[0] != base
    EXPECT_EQ(csr(1, 4, 6, nullptr, s.data() + 1, idx.data(), v.data()), 3);
    EXPECT_EQ(csr(1, 4, 6, s.data(), nullptr, idx.data(), v.data()), 3);
    EXPECT_EQ(csr(1, 4, 6, s.data(), s.data() + 1, nullptr, v.data()), 3);
    EXPECT_EQ(csr(1, 4, 6, s.data(), s.data() + 1, idx.data(), nullptr), 3);
    EXPECT_EQ(csr(1, 4, 5, s.data(), s.data() + 1, idx.data(), v.data()), 3); // column 6 out of range
    {
        std::vector<I> bad = s;
        std::swap(bad[1], bad[2]);
        EXPECT_EQ(csr(1, 4, 6, bad.data(), bad.data() + 1, idx.data(), v.data()), 3); // decreasing
        std::vector<I> low = idx;
        low[0] = 0;
        EXPECT_EQ(csr(1, 4, 6, s.data(), s.data() + 1, low.data(), v.data()), 3); // index below base
        std::vector<I> ends(s.begin() + 1, s.end());
        ends[0] += 1; // row 0 runs into row 1
        EXPECT_EQ(csr(1, 4, 6, s.data(), ends.data(), idx.data(), v.data()), 3);
    }
    EXPECT_EQ(A::create_csc(&h, 1, 3, 6, f.csc.starts.data(), f.csc.starts.data() + 1, f.csc.index.data(), A::c(f.csc.values.data())), 3);
    auto &b = f.bsr;
    EXPECT_EQ(A::create_bsr(&h, 1, 102, 2, 3, 0, b.starts.data(), b.starts.data() + 1, b.index.data(), A::c(b.values.data())), 3);
    EXPECT_EQ(A::create_bsr(&h, 1, 100, 2, 3, 2, b.starts.data(), b.starts.data() + 1, b.index.data(), A::c(b.values.data())), 3);
    EXPECT_EQ(A::create_bsr(&h, 1, 102, 2, 2, 2, b.starts.data(), b.starts.data() + 1, b.index.data(), A::c(b.values.data())), 3);
    const I nnz = I(idx.size());
    EXPECT_EQ(A::create_coo(&h, 1, 4, 6, -1, f.coo_rows.data(), idx.data(), A::c(v.data())), 3);
    EXPECT_EQ(A::create_coo(&h, 1, 3, 6, nnz, f.coo_rows.data(), idx.data(), A::c(v.data())), 3);
    EXPECT_EQ(A::create_coo(&h, 1, 4, 6, nnz, nullptr, idx.data(), A::c(v.data())), 3);
    EXPECT_EQ(A::create_coo(&h, 0, 4, 6, nnz, f.coo_rows.data(), idx.data(), A::c(v.data())), 3);
    EXPECT_EQ(A::create_coo(nullptr, 1, 4, 6, nnz, f.coo_rows.data(), idx.data(), A::c(v.data())), 1);
    EXPECT_EQ(h, nullptr);
    EXPECT_EQ(probe.requests(), 0);
    EXPECT_EQ(probe.live(), 0);
}

TYPED_TEST(SparseHandleErrors, AllocationFailureAtEveryAllocationLeaksNothing)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    for (I base : {I(0), I(1)}) {
        fixture<T, I> f(base);
        for (int format = 0; format < 4; ++format) {
            auto expect_clean = [&](const char *what) {
                return [&, what](int64_t k, int result, allocator_probe &probe) {
                    EXPECT_EQ(result, 2) << what << " format " << format << " failing " << k;
                    EXPECT_EQ(probe.live(), 0) << what << " format " << format << " failing " << k;
                };
            };
            // Runs one call that makes a handle; the handle of a successful run is destroyed.
            auto making = [&](auto call) {
                return [&, call]() {
                    typename A::handle *h = nullptr;
                    int status = call(&h);
                    if (status == 0)
                        A::destroy(h);
                    else
                        EXPECT_EQ(h, nullptr);
                    return status;
                };
            };
            EXPECT_EQ(for_each_failing_allocation(making([&](auto h) { return f.create(format, h); }),
                                                  expect_clean("create")),
                      2);
            typename A::handle *src = nullptr;
            ASSERT_EQ(f.create(format, &src), 0);
            EXPECT_GE(for_each_failing_allocation(making([&](auto h) { return A::copy(src, h); }), expect_clean("copy")), 4);
            for (int op : {10, 12}) {
                EXPECT_GE(for_each_failing_allocation(making([&](auto h) { return A::convert_csr(src, op, h); }),
                                                      expect_clean("convert_csr")),
                          5);
                EXPECT_GE(for_each_failing_allocation(
                              making([&](auto h) { return A::convert_bsr(src, I(2), 101, op, h); }),
                              expect_clean("convert_bsr")),
                          5);
            }
            auto record_call = [&](auto call) {
                return [&, call]() {
                    typename A::csr_record out{};
                    int status = call(&out);
                    if (status == 0)
                        free_arrays(out);
                    else
                        EXPECT_EQ(out.rows_start, nullptr);
                    return status;
                };
            };
            EXPECT_GE(for_each_failing_allocation(record_call([&](auto out) { return A::to_csr(src, 11, out); }), expect_clean("to_csr")), 3);
            EXPECT_GE(for_each_failing_allocation(record_call([&](auto out) { return A::to_csc(src, 10, out); }), expect_clean("to_csc")), 3);
            EXPECT_GE(for_each_failing_allocation(record_call([&](auto out) { return A::to_bsr(src, 10, I(2), 102, out); }), expect_clean("to_bsr")), 5);
            EXPECT_GE(for_each_failing_allocation(
                          [&]() {
                              typename A::coo_record out{};
                              int status = A::to_coo(src, 12, &out);
                              if (status == 0)
                                  free_arrays(out);
                              return status;
                          },
                          expect_clean("to_coo")),
                      2);
            A::destroy(src);
        }
    }
}

TYPED_TEST(SparseHandleErrors, OrderFailingToAllocateLeavesTheArrays)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    fixture<T, I> f(0);
    for (int format : {0, 1, 3}) {
        auto &c = format == 3 ? f.bsr : f.csr;
        std::reverse(c.index.begin(), c.index.begin() + (format == 0 ? c.index.size() : size_t(c.starts[1])));
        const std::vector<I> before = c.index;
        typename A::handle *h = nullptr;
        ASSERT_EQ(f.create(format, &h), 0);
        I sorted = -1;
        for (int64_t k = 0; k < 8; ++k) {
            allocator_probe probe;
            probe.fail_at(k);
            const int status = A::do_order(h);
            if (status == 0)
                break;
            EXPECT_EQ(status, 2);
            EXPECT_EQ(probe.live(), 0);
            EXPECT_EQ(c.index, before);
            ASSERT_EQ(A::get_sorted(h, &sorted), 0);
            EXPECT_EQ(sorted, 0);
        }
        ASSERT_EQ(A::do_order(h), 0);
        ASSERT_EQ(A::get_sorted(h, &sorted), 0);
        EXPECT_EQ(sorted, 1);
        EXPECT_EQ(A::destroy(h), 0);
        c.index = format == 3 ? blocked<T, I>(f.m, 2, 101, 0).index : compress<T, I>(f.m, false, 0).index;
    }
}

TYPED_TEST(SparseHandleErrors, EntryPointsReportTheirStatus)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    fixture<T, I> f(1);
    typename A::handle *h = nullptr, *out = nullptr;
    ASSERT_EQ(f.create(1, &h), 0);
    typename A::csr_record rec{};
    typename A::coo_record coo{};
    // Conversions: null arguments, wrong source format, bad operation, bad block arguments.
    EXPECT_EQ(A::to_csr(nullptr, 10, &rec), 1);
    EXPECT_EQ(A::to_csr(h, 10, nullptr), 1);
    EXPECT_EQ(A::to_csr_from[2](h, 10, &rec), 3);
    EXPECT_EQ(A::to_coo_from[0](h, 10, &coo), 3);
    EXPECT_EQ(A::to_csc(h, 13, &rec), 3);
    EXPECT_EQ(A::to_bsr(h, 10, I(0), 101, &rec), 3);
    EXPECT_EQ(A::to_bsr(h, 10, I(2), 103, &rec), 3);
    EXPECT_EQ(A::to_bsr(h, 10, I(4), 101, &rec), 3); // 4 x 6 does not split into 4 x 4 blocks
    EXPECT_EQ(rec.rows_start, nullptr);
    EXPECT_EQ(A::convert_csr(nullptr, 10, &out), 1);
    EXPECT_EQ(A::convert_csr(h, 10, nullptr), 1);
    EXPECT_EQ(A::convert_csr(h, 9, &out), 3);
    EXPECT_EQ(A::convert_bsr(h, I(0), 101, 10, &out), 3);
    EXPECT_EQ(A::convert_bsr(h, I(2), 0, 10, &out), 3);
    EXPECT_EQ(A::copy(nullptr, &out), 1);
    EXPECT_EQ(A::copy(h, nullptr), 1);
    EXPECT_EQ(out, nullptr);
    // Exports: null out-pointers, wrong value type or format, missing record.
    int base;
    I rows, cols;
    I *starts, *ends, *index;
    typename A::c_type *values;
    EXPECT_EQ(A::export_csr(h, nullptr, &rows, &cols, &starts, &ends, &index, &values), 1);
    EXPECT_EQ(A::export_csr(nullptr, &base, &rows, &cols, &starts, &ends, &index, &values), 1);
    h->data_type = (A::data_type + 1) % 4;
    EXPECT_EQ(A::export_csr(h, &base, &rows, &cols, &starts, &ends, &index, &values), 3);
    EXPECT_EQ(A::to_csr(h, 10, &rec), 3);
    // An unknown value type: the order dispatcher and the type-generic core entries say 5.
    h->data_type = 4;
    EXPECT_EQ(A::order(h), 5);
    EXPECT_EQ(A::copy(h, &out), 5);
    EXPECT_EQ(A::convert_csr(h, 10, &out), 5);
    h->data_type = A::data_type;
    EXPECT_EQ(A::order(nullptr), 1);
    EXPECT_EQ(A::do_order(nullptr), 1);
    // Unknown format: the any-dispatchers say 3.
    h->format = 7;
    EXPECT_EQ(A::to_csr(h, 10, &rec), 3);
    EXPECT_EQ(A::to_coo(h, 10, &coo), 3);
    EXPECT_EQ(A::to_bsr(h, 10, I(2), 101, &rec), 3);
    h->format = 1;
    void *data = h->data;
    h->data = nullptr;
    EXPECT_EQ(A::export_csr(h, &base, &rows, &cols, &starts, &ends, &index, &values), 5);
    EXPECT_EQ(A::to_csc(h, 10, &rec), 5);
    EXPECT_EQ(A::copy(h, &out), 5);
    EXPECT_EQ(A::convert_csr(h, 10, &out), 5);
    h->data = data;
    // A record whose offsets were taken away through the setters is reported, not read.
    auto &r = *static_cast<typename A::csr_record *>(h->data);
    I *kept_ends = r.rows_end;
    r.rows_end = nullptr;
    EXPECT_EQ(A::copy(h, &out), 5);
    EXPECT_EQ(A::to_coo(h, 10, &coo), 5);
    r.sorted = 0;
    EXPECT_EQ(A::do_order(h), 5);
    r.rows_end = kept_ends;
    EXPECT_EQ(A::destroy(h), 0);
}

TYPED_TEST(SparseHandleErrors, HintsAreValidatedAndRecorded)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    fixture<T, I> f(0);
    typename A::handle *h = nullptr;
    ASSERT_EQ(f.create(1, &h), 0);
    const zel_sparse_matrix_descr general{20, 40, 50}, lower_unit{23, 40, 51};
    EXPECT_EQ(A::set_mv_hint(nullptr, 10, general, I(1)), 1);
    EXPECT_EQ(A::set_mv_hint(h, 13, general, I(1)), 3);
    EXPECT_EQ(A::set_mv_hint(h, 10, zel_sparse_matrix_descr{23, 43, 50}, I(1)), 3);
    EXPECT_EQ(A::set_mv_hint(h, 10, general, I(0)), 3);
    EXPECT_EQ(A::set_mm_hint(h, 10, general, 100, I(5)), 3);
    EXPECT_EQ(A::set_mm_hint(h, 10, general, 101, I(-5)), 3);
    EXPECT_EQ(A::set_memory_hint(h, 79), 3);
    EXPECT_EQ(A::set_memory_hint(nullptr, 80), 1);
    EXPECT_EQ(h->hint_flags, 0);
    EXPECT_EQ(A::set_mv_hint(h, 12, lower_unit, I(40)), 0);
    EXPECT_EQ(h->mv_hint[0], 12);
    EXPECT_EQ(h->mv_hint[1], 23);
    EXPECT_EQ(h->mv_hint[2], 40);
    EXPECT_EQ(h->hint_flags, ZEL_SPARSE_HINT_MV);
    EXPECT_EQ(A::set_mm_hint(h, 11, general, 102, I(3)), 0);
    EXPECT_EQ(h->mm_hint[2], 102);
    EXPECT_EQ(h->mm_hint[3], 3);
    EXPECT_EQ(A::set_memory_hint(h, 81), 0);
    EXPECT_EQ(h->memory_hint, 81);
    EXPECT_EQ(h->hint_flags, ZEL_SPARSE_HINT_MV | ZEL_SPARSE_HINT_MM | ZEL_SPARSE_HINT_MEMORY);
    EXPECT_EQ(A::destroy(h), 0);
}

TEST(SparseDescriptor, ValidationFollowsTheMatrixType)
{
    auto check = [](int op, int type, int mode, int diag) {
        return zel_sparse_check_descriptor(op, zel_sparse_matrix_descr{type, mode, diag});
    };
    EXPECT_EQ(check(10, 20, 0, 0), 0); // general needs nothing more
    EXPECT_EQ(check(12, 20, 99, 99), 0);
    EXPECT_EQ(check(9, 20, 40, 50), 3);
    EXPECT_EQ(check(13, 20, 40, 50), 3);
    for (int type : {21, 22, 23, 25}) {
        EXPECT_EQ(check(11, type, 42, 51), 0) << type;
        EXPECT_EQ(check(11, type, 43, 50), 3) << type;
        EXPECT_EQ(check(11, type, 39, 50), 3) << type;
        EXPECT_EQ(check(11, type, 40, 52), 3) << type;
    }
    for (int type : {24, 26}) {
        EXPECT_EQ(check(10, type, 0, 50), 0) << type;
        EXPECT_EQ(check(10, type, 40, 49), 3) << type;
    }
    EXPECT_EQ(check(10, 27, 40, 50), 3);
    EXPECT_EQ(check(10, 19, 40, 50), 3);
    EXPECT_EQ(zel_sparse_check_dense_layout(101), 0);
    EXPECT_EQ(zel_sparse_check_dense_layout(102), 0);
    EXPECT_EQ(zel_sparse_check_dense_layout(100), 3);
    EXPECT_EQ(zel_sparse_check_dense_layout(103), 3);
}

template <class Node> struct node_list {
    std::vector<Node> nodes;
    Node *add(int op, int type, int mode, int diag, int layout)
    {
        Node n{};
        n.operation = op;
        n.matrix_type = type;
        n.fill_mode = mode;
        n.diag = diag;
        n.dense_layout = layout;
        nodes.push_back(n);
        return nullptr;
    }
    Node *head()
    {
        for (size_t k = 0; k + 1 < nodes.size(); ++k)
            nodes[k].next = &nodes[k + 1];
        return nodes.empty() ? nullptr : &nodes[0];
    }
};

TEST(SparseProcedureLookup, FirstNodeMatchingTheKeysOfTheMatrixType)
{
    node_list<zel_sparse_proc_node_i4> list;
    list.add(11, 20, 40, 50, 101); // 0
    list.add(10, 20, 41, 51, 102); // 1: first general for op 10, whatever mode and diag
    list.add(10, 20, 40, 50, 101); // 2
    list.add(10, 24, 40, 51, 101); // 3
    list.add(10, 24, 41, 50, 101); // 4: diagonal matches on diag only
    list.add(10, 25, 40, 50, 101); // 5
    list.add(10, 25, 41, 51, 101); // 6: block triangular matches on fill mode only
    list.add(10, 23, 41, 50, 101); // 7
    list.add(10, 23, 40, 51, 101); // 8
    list.add(10, 23, 40, 50, 101); // 9: triangular needs both
    list.add(10, 26, 42, 51, 102); // 10: block diagonal: nothing more
    zel_sparse_proc_node_i4 *head = list.head(), *n = list.nodes.data();
    auto find = [&](int op, int type, int mode, int diag) {
        return zel_sparse_find_procedure_i4(head, op, zel_sparse_matrix_descr{type, mode, diag});
    };
    EXPECT_EQ(find(10, 20, 40, 50), n + 1);
    EXPECT_EQ(find(11, 20, 42, 51), n + 0);
    EXPECT_EQ(find(12, 20, 40, 50), nullptr);
    EXPECT_EQ(find(10, 24, 40, 50), n + 4);
    EXPECT_EQ(find(10, 25, 41, 50), n + 6);
    EXPECT_EQ(find(10, 23, 40, 50), n + 9);
    EXPECT_EQ(find(10, 23, 41, 51), nullptr);
    EXPECT_EQ(find(10, 26, 40, 50), n + 10);
    EXPECT_EQ(find(10, 21, 40, 50), nullptr);
    EXPECT_EQ(zel_sparse_find_procedure_i4(nullptr, 10, zel_sparse_matrix_descr{20, 40, 50}), nullptr);
    // The mm lookup also compares the dense layout.
    auto find_mm = [&](int type, int layout) {
        return zel_sparse_find_mm_procedure_i4(head, 10, zel_sparse_matrix_descr{type, 40, 50}, layout);
    };
    EXPECT_EQ(find_mm(20, 101), n + 2);
    EXPECT_EQ(find_mm(20, 102), n + 1);
    EXPECT_EQ(find_mm(26, 101), nullptr);

    node_list<zel_sparse_proc_node_i8> wide;
    wide.add(12, 22, 41, 50, 102);
    wide.add(12, 22, 41, 51, 102);
    EXPECT_EQ(zel_sparse_find_procedure_i8(wide.head(), 12, zel_sparse_matrix_descr{22, 41, 51}), &wide.nodes[1]);
    EXPECT_EQ(zel_sparse_find_mm_procedure_i8(wide.head(), 12, zel_sparse_matrix_descr{22, 41, 50}, 101), nullptr);
}

TYPED_TEST(SparseHandleErrors, OperandCheckOfTwoMatrixOperations)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    const dense<T> square = sample<T>(4, 4), wide = sample<T>(4, 6);
    auto handle = [&](const dense<T> &m, int format, I base, int layout, compressed<T, I> &keep) {
        typename A::handle *h = nullptr;
        keep = format == 3 ? blocked<T, I>(m, 2, layout, base) : compress<T, I>(m, format == 2, base);
        I *s = keep.starts.data();
        if (format == 1)
            EXPECT_EQ(A::create_csr(&h, int(base), I(m.rows), I(m.cols), s, s + 1, keep.index.data(), A::c(keep.values.data())), 0);
        else if (format == 2)
            EXPECT_EQ(A::create_csc(&h, int(base), I(m.rows), I(m.cols), s, s + 1, keep.index.data(), A::c(keep.values.data())), 0);
        else
            EXPECT_EQ(A::create_bsr(&h, int(base), layout, I(m.rows / 2), I(m.cols / 2), 2, s, s + 1, keep.index.data(), A::c(keep.values.data())), 0);
        return h;
    };
    compressed<T, I> k[8];
    auto *a = handle(square, 1, 0, 0, k[0]);
    auto *b = handle(square, 1, 0, 0, k[1]);
    auto *w = handle(wide, 1, 0, 0, k[2]);
    auto *one = handle(square, 1, 1, 0, k[3]);
    auto *csc = handle(square, 2, 0, 0, k[4]);
    auto *bsr0 = handle(square, 3, 0, 101, k[5]);
    auto *bsr0_col = handle(square, 3, 0, 102, k[6]);
    auto *bsr1 = handle(square, 3, 1, 102, k[7]);
    auto check = [&](auto *x, int tx, int mx, int dx, auto *y, int ty, int my, int dy, int rect) {
        return A::check_input(x, tx, mx, dx, y, ty, my, dy, rect);
    };
    EXPECT_EQ(check(a, 20, 40, 50, b, 20, 41, 51, 0), 0);
    EXPECT_EQ(check(a, 21, 40, 51, b, 21, 40, 51, 0), 6); // symmetric, unit diagonal
    EXPECT_EQ(check(a, 21, 40, 50, b, 21, 40, 50, 0), 0);
    EXPECT_EQ(check(a, 21, 40, 50, b, 21, 41, 50, 0), 6);
    EXPECT_EQ(check(a, 20, 40, 50, b, 23, 40, 50, 0), 6);
    EXPECT_EQ(check(a, 20, 40, 50, w, 20, 40, 50, 0), 3); // different order
    EXPECT_EQ(check(w, 20, 40, 50, a, 20, 40, 50, 0), 3);
    EXPECT_EQ(check(a, 20, 40, 50, w, 20, 40, 50, 1), 0);
    EXPECT_EQ(check(a, 20, 40, 50, csc, 20, 40, 50, 0), 6);
    EXPECT_EQ(check(csc, 20, 40, 50, csc, 20, 40, 50, 0), 6);
    EXPECT_EQ(check(a, 20, 40, 50, bsr0, 20, 40, 50, 0), 6);
    EXPECT_EQ(check(a, 20, 40, 50, one, 20, 40, 50, 0), 6); // bases differ
    EXPECT_EQ(check(bsr0, 20, 40, 50, bsr0, 20, 40, 50, 0), 0);
    EXPECT_EQ(check(bsr1, 20, 40, 50, bsr1, 20, 40, 50, 0), 0);
    EXPECT_EQ(check(bsr0, 20, 40, 50, bsr0_col, 20, 40, 50, 0), 6); // layout differs from the base
    EXPECT_EQ(check(bsr0_col, 20, 40, 50, bsr0, 20, 40, 50, 0), 6);
    EXPECT_EQ(check(bsr0, 20, 40, 50, bsr1, 20, 40, 50, 0), 6);
    void *data = b->data;
    b->data = nullptr;
    EXPECT_EQ(check(a, 20, 40, 50, b, 20, 40, 50, 0), 5);
    EXPECT_EQ(check(a, 20, 40, 50, b, 21, 40, 50, 0), 6); // the type check comes first
    b->data = data;
    for (auto *h : {a, b, w, one, csc, bsr0, bsr0_col, bsr1})
        EXPECT_EQ(A::destroy(h), 0);
}
