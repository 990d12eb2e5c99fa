// Sparse handle failure paths: malformed creation arguments, allocation failure at every
// allocation, hints, descriptor validation, the procedure lookup, the operand check and the
// dispatchers' status values.
#include "alloc_fault.hpp"
#include "test_sparse_support.hpp"

using namespace sparse_test;
using zel::test::allocator_probe;
using zel::test::for_each_failing_allocation;

namespace {

constexpr int general = ZEL_SPARSE_MATRIX_TYPE_GENERAL, symmetric = ZEL_SPARSE_MATRIX_TYPE_SYMMETRIC,
              hermitian = ZEL_SPARSE_MATRIX_TYPE_HERMITIAN, triangular = ZEL_SPARSE_MATRIX_TYPE_TRIANGULAR,
              diagonal = ZEL_SPARSE_MATRIX_TYPE_DIAGONAL, block_triangular = ZEL_SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR,
              block_diagonal = ZEL_SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL;
constexpr int lower = ZEL_SPARSE_FILL_MODE_LOWER, upper = ZEL_SPARSE_FILL_MODE_UPPER, full = ZEL_SPARSE_FILL_MODE_FULL;
constexpr int non_unit = ZEL_SPARSE_DIAG_NON_UNIT, unit = ZEL_SPARSE_DIAG_UNIT;

// A 4 x 6 matrix in every format, zero- or one-based, over arrays owned here.
template <class T, class I> struct fixture {
    using A = api<T, I>;
    dense<T> m = sample<T>(4, 6);
    sparse<T, I> by_format[4];
    explicit fixture(I base)
    {
        for (int32_t format : {coo, csr, csc, bsr})
            by_format[format] = compress<T, I>(m, format, base, I(2));
    }
    int create(int32_t format, typename A::handle **h) { return sparse_test::create(by_format[format], h); }
};

// Runs call(&out) once per allocation it makes with that one failing: each failing run says 2,
// leaves its result unset and leaks nothing; a successful run's result is released.
template <class A, class Out, class Call> int64_t failing_runs(Call call)
{
    return for_each_failing_allocation(
        [&] {
            Out out{};
            const int status = call(&out);
            if constexpr (std::is_pointer_v<Out>) {
                if (status == ok)
                    A::destroy(out);
                else
                    EXPECT_EQ(out, nullptr);
            } else if (status == ok) {
                free_arrays(out);
            } else if constexpr (requires { out.rows_start; }) {
                EXPECT_EQ(out.rows_start, nullptr);
            }
            return status;
        },
        [](int64_t k, int status, allocator_probe &probe) {
            EXPECT_EQ(status, alloc_failed) << "failing " << k;
            EXPECT_EQ(probe.live(), 0) << "failing " << k;
        });
}

} // namespace

template <class P> class SparseHandleErrors : public ::testing::Test {};
TYPED_TEST_SUITE(SparseHandleErrors, all_members, member_names);

TYPED_TEST(SparseHandleErrors, CreationRejectsMalformedArraysAllocatingNothing)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    fixture<T, I> f(1);
    auto &c = f.by_format[csr];
    std::vector<I> s = c.starts, idx = c.indices;
    std::vector<T> v = c.values;
    typename A::handle *h = nullptr;
    auto create_csr = [&](int base, I rows, I cols, I *starts, I *ends, I *index, T *values) {
        return A::create_csr(&h, base, rows, cols, starts, ends, index, c_ptr(values));
    };
    allocator_probe probe;
    EXPECT_EQ(A::create_csr(nullptr, 1, 4, 6, s.data(), s.data() + 1, idx.data(), c_ptr(v.data())), not_initialized);
    EXPECT_EQ(create_csr(1, -1, 6, s.data(), s.data() + 1, idx.data(), v.data()), invalid);
    EXPECT_EQ(create_csr(1, 4, -6, s.data(), s.data() + 1, idx.data(), v.data()), invalid);
    EXPECT_EQ(create_csr(2, 4, 6, s.data(), s.data() + 1, idx.data(), v.data()), invalid);
    EXPECT_EQ(create_csr(0, 4, 6, s.data(), s.data() + 1, idx.data(), v.data()), invalid); // rows_start[0] != base
    EXPECT_EQ(create_csr(1, 4, 6, nullptr, s.data() + 1, idx.data(), v.data()), invalid);
    EXPECT_EQ(create_csr(1, 4, 6, s.data(), nullptr, idx.data(), v.data()), invalid);
    EXPECT_EQ(create_csr(1, 4, 6, s.data(), s.data() + 1, nullptr, v.data()), invalid);
    EXPECT_EQ(create_csr(1, 4, 6, s.data(), s.data() + 1, idx.data(), nullptr), invalid);
    EXPECT_EQ(create_csr(1, 4, 5, s.data(), s.data() + 1, idx.data(), v.data()), invalid); // column 6 out of range
    std::vector<I> bad = s, low = idx, ends(s.begin() + 1, s.end());
    std::swap(bad[1], bad[2]);
    low[0] = 0;
    ends[0] += 1;
    EXPECT_EQ(create_csr(1, 4, 6, bad.data(), bad.data() + 1, idx.data(), v.data()), invalid); // decreasing
    EXPECT_EQ(create_csr(1, 4, 6, s.data(), s.data() + 1, low.data(), v.data()), invalid);     // index below base
    EXPECT_EQ(create_csr(1, 4, 6, s.data(), ends.data(), idx.data(), v.data()), invalid); // row 0 runs into row 1
    auto &k = f.by_format[csc];
    EXPECT_EQ(A::create_csc(&h, 1, 3, 6, k.starts.data(), k.ends_ptr(), k.indices.data(), k.c_values()), invalid);
    auto &b = f.by_format[bsr];
    auto create_bsr = [&](int layout, I block_cols, I edge) {
        return A::create_bsr(&h, 1, layout, 2, block_cols, edge, b.starts.data(), b.ends_ptr(), b.indices.data(),
                             b.c_values());
    };
    EXPECT_EQ(create_bsr(col_major, 3, 0), invalid);
    EXPECT_EQ(create_bsr(row_major - 1, 3, 2), invalid);
    EXPECT_EQ(create_bsr(col_major, 2, 2), invalid);
    auto &o = f.by_format[coo];
    auto create_coo = [&](int base, I rows, I nnz, I *row_index, typename A::handle **out) {
        return A::create_coo(out, base, rows, 6, nnz, row_index, o.indices.data(), o.c_values());
    };
    EXPECT_EQ(create_coo(1, 4, -1, o.row_indices.data(), &h), invalid);
    EXPECT_EQ(create_coo(1, 3, o.nnz(), o.row_indices.data(), &h), invalid);
    EXPECT_EQ(create_coo(1, 4, o.nnz(), nullptr, &h), invalid);
    EXPECT_EQ(create_coo(0, 4, o.nnz(), o.row_indices.data(), &h), invalid);
    EXPECT_EQ(create_coo(1, 4, o.nnz(), o.row_indices.data(), nullptr), not_initialized);
    EXPECT_EQ(h, nullptr);
    EXPECT_EQ(probe.requests(), 0);
    EXPECT_EQ(probe.live(), 0);
}

TYPED_TEST(SparseHandleErrors, AllocationFailureAtEveryAllocationLeaksNothing)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    for (I base : {I(0), I(1)}) {
        fixture<T, I> f(base);
        for (int32_t format : {coo, csr, csc, bsr}) {
            SCOPED_TRACE(::testing::Message() << "base " << base << " format " << format);
            using H = typename A::handle *;
            using R = typename A::record;
            typename A::handle *src = nullptr;
            EXPECT_EQ((failing_runs<A, H>([&](auto h) { return f.create(format, h); })), 2);
            ASSERT_EQ(f.create(format, &src), ok);
            EXPECT_GE((failing_runs<A, H>([&](auto h) { return A::copy(src, h); })), 4);
            for (int op : {op_n, op_c}) {
                EXPECT_GE((failing_runs<A, H>([&](auto h) { return A::convert_csr(src, op, h); })), 5);
                EXPECT_GE((failing_runs<A, H>([&](auto h) { return A::convert_bsr(src, I(2), row_major, op, h); })), 5);
            }
            EXPECT_GE((failing_runs<A, R>([&](auto out) { return A::to_csr(src, op_t, out); })), 3);
            EXPECT_GE((failing_runs<A, R>([&](auto out) { return A::to_csc(src, op_n, out); })), 3);
            EXPECT_GE((failing_runs<A, R>([&](auto out) { return A::to_bsr(src, op_n, I(2), col_major, out); })), 5);
            EXPECT_GE((failing_runs<A, typename A::coo_record>([&](auto out) { return A::to_coo(src, op_c, out); })), 2);
            A::destroy(src);
        }
    }
}

TYPED_TEST(SparseHandleErrors, OrderFailingToAllocateLeavesTheArrays)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    fixture<T, I> f(0);
    for (int32_t format : {coo, csr, bsr}) {
        auto &c = f.by_format[format];
        const size_t last = format == coo ? c.indices.size() : size_t(c.starts[1]);
        std::reverse(c.indices.begin(), c.indices.begin() + last);
        std::reverse(c.row_indices.begin(), c.row_indices.begin() + last);
        const std::vector<I> before = c.indices;
        typename A::handle *h = nullptr;
        ASSERT_EQ(f.create(format, &h), ok);
        I sorted = -1;
        for (int64_t k = 0; k < 8; ++k) {
            allocator_probe probe;
            probe.fail_at(k);
            const int status = A::do_order(h);
            if (status == ok)
                break;
            EXPECT_EQ(status, alloc_failed);
            EXPECT_EQ(probe.live(), 0);
            EXPECT_EQ(c.indices, before);
            ASSERT_EQ(A::get_sorted(h, &sorted), ok);
            EXPECT_EQ(sorted, 0);
        }
        ASSERT_EQ(A::do_order(h), ok);
        ASSERT_EQ(A::get_sorted(h, &sorted), ok);
        EXPECT_EQ(sorted, 1);
        EXPECT_EQ(A::destroy(h), ok);
    }
}

TYPED_TEST(SparseHandleErrors, EntryPointsReportTheirStatus)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    fixture<T, I> f(1);
    typename A::handle *h = nullptr, *out = nullptr;
    ASSERT_EQ(f.create(csr, &h), ok);
    typename A::record rec{};
    typename A::coo_record q{};
    // Conversions: null arguments, wrong source format, bad operation, bad block arguments.
    EXPECT_EQ(A::to_csr(nullptr, op_n, &rec), not_initialized);
    EXPECT_EQ(A::to_csr(h, op_n, nullptr), not_initialized);
    EXPECT_EQ(A::to_csr_from[csc](h, op_n, &rec), invalid);
    EXPECT_EQ(A::to_coo_from[coo](h, op_n, &q), invalid);
    EXPECT_EQ(A::to_csc(h, op_c + 1, &rec), invalid);
    EXPECT_EQ(A::to_bsr(h, op_n, I(0), row_major, &rec), invalid);
    EXPECT_EQ(A::to_bsr(h, op_n, I(2), col_major + 1, &rec), invalid);
    EXPECT_EQ(A::to_bsr(h, op_n, I(4), row_major, &rec), invalid); // 4 x 6 does not split into 4 x 4 blocks
    EXPECT_EQ(rec.rows_start, nullptr);
    EXPECT_EQ(A::convert_csr(nullptr, op_n, &out), not_initialized);
    EXPECT_EQ(A::convert_csr(h, op_n, nullptr), not_initialized);
    EXPECT_EQ(A::convert_csr(h, op_n - 1, &out), invalid);
    EXPECT_EQ(A::convert_bsr(h, I(0), row_major, op_n, &out), invalid);
    EXPECT_EQ(A::convert_bsr(h, I(2), 0, op_n, &out), invalid);
    EXPECT_EQ(A::copy(nullptr, &out), not_initialized);
    EXPECT_EQ(A::copy(h, nullptr), not_initialized);
    EXPECT_EQ(out, nullptr);
    // Exports: null out-pointers, wrong value type or format, missing record.
    int base;
    I rows, cols, *starts, *ends, *index;
    typename A::c_type *values;
    auto export_csr = [&] { return A::export_csr(h, &base, &rows, &cols, &starts, &ends, &index, &values); };
    EXPECT_EQ(A::export_csr(h, nullptr, &rows, &cols, &starts, &ends, &index, &values), not_initialized);
    EXPECT_EQ(A::export_csr(nullptr, &base, &rows, &cols, &starts, &ends, &index, &values), not_initialized);
    h->data_type = (data_type_code<T> + 1) % 4;
    EXPECT_EQ(export_csr(), invalid);
    EXPECT_EQ(A::to_csr(h, op_n, &rec), invalid);
    // An unknown value type: the order dispatcher and the type-generic core entries say 5.
    h->data_type = 4;
    EXPECT_EQ(A::order(h), internal_error);
    EXPECT_EQ(A::copy(h, &out), internal_error);
    EXPECT_EQ(A::convert_csr(h, op_n, &out), internal_error);
    h->data_type = data_type_code<T>;
    EXPECT_EQ(A::order(nullptr), not_initialized);
    EXPECT_EQ(A::do_order(nullptr), not_initialized);
    // Unknown format: the any-dispatchers say 3.
    h->format = 7;
    EXPECT_EQ(A::to_csr(h, op_n, &rec), invalid);
    EXPECT_EQ(A::to_coo(h, op_n, &q), invalid);
    EXPECT_EQ(A::to_bsr(h, op_n, I(2), row_major, &rec), invalid);
    h->format = csr;
    void *data = h->data;
    h->data = nullptr;
    EXPECT_EQ(export_csr(), internal_error);
    EXPECT_EQ(A::to_csc(h, op_n, &rec), internal_error);
    EXPECT_EQ(A::copy(h, &out), internal_error);
    EXPECT_EQ(A::convert_csr(h, op_n, &out), internal_error);
    h->data = data;
    // A record whose offsets were taken away through the setters is reported, not read.
    auto &r = *static_cast<typename A::record *>(h->data);
    I *kept_ends = r.rows_end;
    r.rows_end = nullptr;
    EXPECT_EQ(A::copy(h, &out), internal_error);
    EXPECT_EQ(A::to_coo(h, op_n, &q), internal_error);
    r.sorted = 0;
    EXPECT_EQ(A::do_order(h), internal_error);
    r.rows_end = kept_ends;
    EXPECT_EQ(A::destroy(h), ok);
}

TYPED_TEST(SparseHandleErrors, HintsAreValidatedAndRecorded)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    fixture<T, I> f(0);
    typename A::handle *h = nullptr;
    ASSERT_EQ(f.create(csr, &h), ok);
    const zel_sparse_matrix_descr any{general, lower, non_unit}, lower_unit{triangular, lower, unit};
    EXPECT_EQ(A::set_mv_hint(nullptr, op_n, any, I(1)), not_initialized);
    EXPECT_EQ(A::set_mv_hint(h, op_c + 1, any, I(1)), invalid);
    EXPECT_EQ(A::set_mv_hint(h, op_n, zel_sparse_matrix_descr{triangular, full + 1, non_unit}, I(1)), invalid);
    EXPECT_EQ(A::set_mv_hint(h, op_n, any, I(0)), invalid);
    EXPECT_EQ(A::set_mm_hint(h, op_n, any, row_major - 1, I(5)), invalid);
    EXPECT_EQ(A::set_mm_hint(h, op_n, any, row_major, I(-5)), invalid);
    EXPECT_EQ(A::set_memory_hint(h, ZEL_SPARSE_MEMORY_NONE - 1), invalid);
    EXPECT_EQ(A::set_memory_hint(nullptr, ZEL_SPARSE_MEMORY_NONE), not_initialized);
    EXPECT_EQ(h->hint_flags, 0);
    EXPECT_EQ(A::set_mv_hint(h, op_c, lower_unit, I(40)), ok);
    EXPECT_EQ(h->mv_hint[0], op_c);
    EXPECT_EQ(h->mv_hint[1], triangular);
    EXPECT_EQ(h->mv_hint[2], 40);
    EXPECT_EQ(h->hint_flags, ZEL_SPARSE_HINT_MV);
    EXPECT_EQ(A::set_mm_hint(h, op_t, any, col_major, I(3)), ok);
    EXPECT_EQ(h->mm_hint[2], col_major);
    EXPECT_EQ(h->mm_hint[3], 3);
    EXPECT_EQ(A::set_memory_hint(h, ZEL_SPARSE_MEMORY_AGGRESSIVE), ok);
    EXPECT_EQ(h->memory_hint, ZEL_SPARSE_MEMORY_AGGRESSIVE);
    EXPECT_EQ(h->hint_flags, ZEL_SPARSE_HINT_MV | ZEL_SPARSE_HINT_MM | ZEL_SPARSE_HINT_MEMORY);
    EXPECT_EQ(A::destroy(h), ok);
}

TEST(SparseDescriptor, ValidationFollowsTheMatrixType)
{
    auto check = [](int op, int type, int mode, int diag) {
        return zel_sparse_check_descriptor(op, zel_sparse_matrix_descr{type, mode, diag});
    };
    EXPECT_EQ(check(op_n, general, 0, 0), ok); // general needs nothing more
    EXPECT_EQ(check(op_c, general, 99, 99), ok);
    EXPECT_EQ(check(op_n - 1, general, lower, non_unit), invalid);
    EXPECT_EQ(check(op_c + 1, general, lower, non_unit), invalid);
    for (int type : {symmetric, hermitian, triangular, block_triangular}) {
        EXPECT_EQ(check(op_t, type, full, unit), ok) << type;
        EXPECT_EQ(check(op_t, type, full + 1, non_unit), invalid) << type;
        EXPECT_EQ(check(op_t, type, lower - 1, non_unit), invalid) << type;
        EXPECT_EQ(check(op_t, type, lower, unit + 1), invalid) << type;
    }
    for (int type : {diagonal, block_diagonal}) {
        EXPECT_EQ(check(op_n, type, 0, non_unit), ok) << type;
        EXPECT_EQ(check(op_n, type, lower, non_unit - 1), invalid) << type;
    }
    EXPECT_EQ(check(op_n, block_diagonal + 1, lower, non_unit), invalid);
    EXPECT_EQ(check(op_n, general - 1, lower, non_unit), invalid);
    EXPECT_EQ(zel_sparse_check_dense_layout(row_major), ok);
    EXPECT_EQ(zel_sparse_check_dense_layout(col_major), ok);
    EXPECT_EQ(zel_sparse_check_dense_layout(row_major - 1), invalid);
    EXPECT_EQ(zel_sparse_check_dense_layout(col_major + 1), invalid);
}

// A procedure list over nodes held in a vector.
template <class Node> std::vector<Node> node_list(std::initializer_list<std::array<int, 5>> keys)
{
    std::vector<Node> nodes(keys.size());
    size_t k = 0;
    for (auto [op, type, mode, diag, layout] : keys) {
        nodes[k].operation = op;
        nodes[k].matrix_type = type;
        nodes[k].fill_mode = mode;
        nodes[k].diag = diag;
        nodes[k].dense_layout = layout;
        nodes[k].next = k + 1 < keys.size() ? &nodes[k + 1] : nullptr;
        ++k;
    }
    return nodes;
}

TEST(SparseProcedureLookup, FirstNodeMatchingTheKeysOfTheMatrixType)
{
    auto n = node_list<zel_sparse_proc_node_i4>({
        {op_t, general, lower, non_unit, row_major},          // 0
        {op_n, general, upper, unit, col_major},              // 1: first general for op_n, whatever mode and diag
        {op_n, general, lower, non_unit, row_major},          // 2
        {op_n, diagonal, lower, unit, row_major},             // 3
        {op_n, diagonal, upper, non_unit, row_major},         // 4: diagonal matches on diag only
        {op_n, block_triangular, lower, non_unit, row_major}, // 5
        {op_n, block_triangular, upper, unit, row_major},     // 6: block triangular matches on fill mode only
        {op_n, triangular, upper, non_unit, row_major},       // 7
        {op_n, triangular, lower, unit, row_major},           // 8
        {op_n, triangular, lower, non_unit, row_major},       // 9: triangular needs both
        {op_n, block_diagonal, full, unit, col_major},        // 10: block diagonal: nothing more
    });
    auto find = [&](int op, int type, int mode, int diag) {
        return zel_sparse_find_procedure_i4(n.data(), op, zel_sparse_matrix_descr{type, mode, diag});
    };
    EXPECT_EQ(find(op_n, general, lower, non_unit), &n[1]);
    EXPECT_EQ(find(op_t, general, full, unit), &n[0]);
    EXPECT_EQ(find(op_c, general, lower, non_unit), nullptr);
    EXPECT_EQ(find(op_n, diagonal, lower, non_unit), &n[4]);
    EXPECT_EQ(find(op_n, block_triangular, upper, non_unit), &n[6]);
    EXPECT_EQ(find(op_n, triangular, lower, non_unit), &n[9]);
    EXPECT_EQ(find(op_n, triangular, upper, unit), nullptr);
    EXPECT_EQ(find(op_n, block_diagonal, lower, non_unit), &n[10]);
    EXPECT_EQ(find(op_n, symmetric, lower, non_unit), nullptr);
    EXPECT_EQ(zel_sparse_find_procedure_i4(nullptr, op_n, zel_sparse_matrix_descr{general, lower, non_unit}), nullptr);
    // The mm lookup also compares the dense layout.
    auto find_mm = [&](int type, int layout) {
        return zel_sparse_find_mm_procedure_i4(n.data(), op_n, zel_sparse_matrix_descr{type, lower, non_unit}, layout);
    };
    EXPECT_EQ(find_mm(general, row_major), &n[2]);
    EXPECT_EQ(find_mm(general, col_major), &n[1]);
    EXPECT_EQ(find_mm(block_diagonal, row_major), nullptr);

    auto wide = node_list<zel_sparse_proc_node_i8>(
        {{op_c, hermitian, upper, non_unit, col_major}, {op_c, hermitian, upper, unit, col_major}});
    EXPECT_EQ(zel_sparse_find_procedure_i8(wide.data(), op_c, zel_sparse_matrix_descr{hermitian, upper, unit}), &wide[1]);
    EXPECT_EQ(zel_sparse_find_mm_procedure_i8(wide.data(), op_c, zel_sparse_matrix_descr{hermitian, upper, non_unit},
                                              row_major),
              nullptr);
}

TYPED_TEST(SparseHandleErrors, OperandCheckOfTwoMatrixOperations)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    const dense<T> square = sample<T>(4, 4), wide = sample<T>(4, 6);
    // Arrays first, handles after them: the handles go first.
    sparse<T, I> k[] = {compress<T, I>(square, csr, I(0)),         compress<T, I>(square, csr, I(0)),
                        compress<T, I>(wide, csr, I(0)),           compress<T, I>(square, csr, I(1)),
                        compress<T, I>(square, csc, I(0)),         compress<T, I>(square, bsr, I(0), I(2), 0),
                        compress<T, I>(square, bsr, I(0), I(2), 1), compress<T, I>(square, bsr, I(1), I(2), 1)};
    handle_of<T, I> a(k[0]), b(k[1]), w(k[2]), one(k[3]), by_column(k[4]), bsr0(k[5]), bsr0_col(k[6]), bsr1(k[7]);
    auto check = [&](auto &x, int tx, int mx, int dx, auto &y, int ty, int my, int dy, int rect) {
        return A::check_input(x.h, tx, mx, dx, y.h, ty, my, dy, rect);
    };
    auto plain = [&](auto &x, auto &y, int rect = 0) {
        return check(x, general, lower, non_unit, y, general, lower, non_unit, rect);
    };
    EXPECT_EQ(check(a, general, lower, non_unit, b, general, upper, unit, 0), ok);
    EXPECT_EQ(check(a, symmetric, lower, unit, b, symmetric, lower, unit, 0), not_supported);
    EXPECT_EQ(check(a, symmetric, lower, non_unit, b, symmetric, lower, non_unit, 0), ok);
    EXPECT_EQ(check(a, symmetric, lower, non_unit, b, symmetric, upper, non_unit, 0), not_supported);
    EXPECT_EQ(check(a, general, lower, non_unit, b, triangular, lower, non_unit, 0), not_supported);
    EXPECT_EQ(plain(a, w), invalid); // different order
    EXPECT_EQ(plain(w, a), invalid);
    EXPECT_EQ(plain(a, w, 1), ok);
    EXPECT_EQ(plain(a, by_column), not_supported);
    EXPECT_EQ(plain(by_column, by_column), not_supported);
    EXPECT_EQ(plain(a, bsr0), not_supported);
    EXPECT_EQ(plain(a, one), not_supported); // bases differ
    EXPECT_EQ(plain(bsr0, bsr0), ok);
    EXPECT_EQ(plain(bsr1, bsr1), ok);
    EXPECT_EQ(plain(bsr0, bsr0_col), not_supported); // layout differs from the base
    EXPECT_EQ(plain(bsr0_col, bsr0), not_supported);
    EXPECT_EQ(plain(bsr0, bsr1), not_supported);
    void *data = b->data;
    b->data = nullptr;
    EXPECT_EQ(plain(a, b), internal_error);
    EXPECT_EQ(check(a, general, lower, non_unit, b, symmetric, lower, non_unit, 0), not_supported); // type first
    b->data = data;
}
