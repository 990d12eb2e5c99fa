// Sparse handle: creation and export, copies, conversions between every pair of formats (also
// transposed and conjugated), index ordering and the accessors, checked against dense matrices.
#include "alloc_fault.hpp"
#include "test_sparse_support.hpp"

using namespace sparse_test;

namespace {

constexpr int32_t formats[] = {coo, csr, csc, bsr};
constexpr int operations[] = {op_n, op_t, op_c};
struct shape {
    int64_t rows, cols;
};
constexpr shape shapes[] = {{6, 6}, {6, 3}};

} // namespace

template <class M> class SparseHandle : public ::testing::Test {};
TYPED_TEST_SUITE(SparseHandle, all_members, member_names);

TYPED_TEST(SparseHandle, CreateExportRoundTripEveryFormat)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    for (auto [rows, cols] : shapes)
        for (I base : {I(0), I(1)})
            for (int32_t format : formats) {
                SCOPED_TRACE(::testing::Message() << rows << "x" << cols << " base " << base << " format " << format);
                const dense<T> m = sample<T>(rows, cols);
                auto c = compress<T, I>(m, format, base, I(3));
                handle_of<T, I> h(c);
                ASSERT_NE(h.h, nullptr);
                EXPECT_EQ(h->data_type, data_type_code<T>);
                EXPECT_EQ(h->format, format);
                EXPECT_EQ(h->rows, rows);
                EXPECT_EQ(h->cols, cols);
                EXPECT_EQ(h->transposed, nullptr);
                expect_same(m, read_handle<T, I>(h.h), "created");

                int got_base = -1, got_layout = -1;
                I r = -1, k = -1, nnz = -1, block = -1;
                I *starts = nullptr, *ends = nullptr, *index = nullptr, *row_index = nullptr;
                typename A::c_type *values = nullptr;
                if (format == coo) {
                    auto &q = *static_cast<typename A::coo_record *>(h->data);
                    EXPECT_EQ(q.owns_arrays, 0);
                    EXPECT_EQ(q.sorted, 1);
                    ASSERT_EQ(A::export_coo(h.h, &got_base, &r, &k, &nnz, &row_index, &index, &values), ok);
                    EXPECT_EQ(nnz, c.nnz());
                    EXPECT_EQ(row_index, c.row_indices.data());
                    EXPECT_EQ(A::export_csr(h.h, &got_base, &r, &k, &starts, &ends, &index, &values), invalid);
                } else {
                    const auto &rec = h.record();
                    EXPECT_EQ(rec.owns_arrays, 0);
                    EXPECT_EQ(rec.three_array, 1);
                    EXPECT_EQ(rec.sorted, 1);
                    EXPECT_EQ(rec.nnz, c.nnz());
                    EXPECT_EQ(rec.inplace_copy, 1);
                    if (format == bsr) {
                        ASSERT_EQ(A::export_bsr(h.h, &got_base, &got_layout, &r, &k, &block, &starts, &ends, &index,
                                                &values), ok);
                        EXPECT_EQ(block, 3);
                        EXPECT_EQ(got_layout, base == 0 ? row_major : col_major);
                        EXPECT_EQ(rec.block_layout, base);
                        EXPECT_EQ(r * 3, rows);
                    } else if (format == csr) {
                        ASSERT_EQ(A::export_csr(h.h, &got_base, &r, &k, &starts, &ends, &index, &values), ok);
                        EXPECT_EQ(A::export_csc(h.h, &got_base, &r, &k, &starts, &ends, &index, &values), invalid);
                    } else {
                        ASSERT_EQ(A::export_csc(h.h, &got_base, &r, &k, &starts, &ends, &index, &values), ok);
                    }
                    EXPECT_EQ(starts, c.starts.data());
                    EXPECT_EQ(ends, c.starts.data() + 1);
                }
                EXPECT_EQ(got_base, base);
                EXPECT_EQ(index, c.indices.data());
                EXPECT_EQ(values, c.c_values());
            }
}

TYPED_TEST(SparseHandle, EmptyMatricesAndFourArrayForm)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    // nnz = 0: offsets all equal the base, no index or value arrays needed.
    for (I base : {I(0), I(1)}) {
        std::vector<I> starts(5, base);
        typename A::handle *h = nullptr, *b = nullptr;
        ASSERT_EQ(A::create_csr(&h, int(base), 4, 3, starts.data(), starts.data() + 1, nullptr, nullptr), ok);
        EXPECT_EQ(static_cast<typename A::record *>(h->data)->nnz, 0);
        typename A::record out{};
        ASSERT_EQ(A::to_csc(h, op_t, &out), ok);
        EXPECT_EQ(out.rows, 3);
        EXPECT_EQ(out.cols, 4);
        EXPECT_EQ(std::count(out.rows_start, out.rows_start + 5, base), 5);
        free_arrays(out);
        EXPECT_EQ(A::convert_bsr(h, I(1), col_major, op_n, &b), ok);
        EXPECT_EQ(static_cast<typename A::record *>(b->data)->nnz, 0);
        EXPECT_EQ(A::destroy(b), ok);
        EXPECT_EQ(A::destroy(h), ok);
        ASSERT_EQ(A::create_coo(&h, int(base), 0, 0, 0, nullptr, nullptr, nullptr), ok);
        EXPECT_EQ(A::destroy(h), ok);
    }
    // Four-array form with a gap after each row whose contents must never be read.
    const dense<T> m = sample<T>(4, 5);
    const auto c = compress<T, I>(m, csr, I(1));
    sparse<T, I> g = c;
    g.starts.clear();
    g.indices.clear();
    g.values.clear();
    for (int64_t r = 0; r < m.rows; ++r) {
        g.starts.push_back(I(g.indices.size() + 1));
        g.indices.insert(g.indices.end(), c.indices.begin() + c.starts[r] - 1, c.indices.begin() + c.starts[r + 1] - 1);
        g.values.insert(g.values.end(), c.values.begin() + c.starts[r] - 1, c.values.begin() + c.starts[r + 1] - 1);
        g.ends.push_back(I(g.indices.size() + 1));
        g.indices.push_back(I(999));
        g.values.push_back(make_value<T>(1e6, 1e6));
    }
    handle_of<T, I> h(g);
    EXPECT_EQ(h.record().three_array, 0);
    expect_same(m, read_handle<T, I>(h.h), "four-array");
    typename A::handle *copy = nullptr, *converted = nullptr;
    ASSERT_EQ(A::copy(h.h, &copy), ok);
    auto &r = *static_cast<typename A::record *>(copy->data);
    EXPECT_EQ(r.three_array, 1);
    EXPECT_EQ(r.rows_end, r.rows_start + 1);
    EXPECT_EQ(r.nnz, c.nnz());
    expect_same(m, read_handle<T, I>(copy), "compacted copy");
    ASSERT_EQ(A::convert_csr(h.h, op_c, &converted), ok);
    expect_same(op_of(m, op_c), read_handle<T, I>(converted), "four-array transposed");
    EXPECT_EQ(static_cast<typename A::record *>(converted->data)->nnz, c.nnz());
    typename A::coo_record q{};
    ASSERT_EQ(A::to_coo(h.h, op_n, &q), ok);
    EXPECT_EQ(q.nnz, c.nnz());
    expect_same(m, read_coo<T>(q), "four-array to coo");
    free_arrays(q);
    EXPECT_EQ(A::destroy(converted), ok);
    EXPECT_EQ(A::destroy(copy), ok);
}

TYPED_TEST(SparseHandle, LayerConversionsEveryFormatToEveryFormat)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    for (auto [rows, cols] : shapes)
        for (I base : {I(0), I(1)})
            for (int32_t format : formats) {
                const dense<T> m = sample<T>(rows, cols);
                const auto c = compress<T, I>(m, format, base, I(3));
                handle_of<T, I> s(c);
                for (int op : operations) {
                    SCOPED_TRACE(::testing::Message() << rows << "x" << cols << " from " << format << " op " << op);
                    const dense<T> expected = op_of(m, op);
                    for (bool any : {false, true}) {
                        typename A::record r{}, k{};
                        typename A::coo_record q{};
                        ASSERT_EQ((any ? A::to_csr : A::to_csr_from[format])(s.h, op, &r), ok);
                        ASSERT_EQ((any ? A::to_csc : A::to_csc_from[format])(s.h, op, &k), ok);
                        ASSERT_EQ((any ? A::to_coo : A::to_coo_from[format])(s.h, op, &q), ok);
                        expect_same(expected, read_record<T>(csr, r), "to csr");
                        expect_same(expected, read_record<T>(csc, k), "to csc");
                        expect_same(expected, read_coo<T>(q), "to coo");
                        EXPECT_EQ(r.owns_arrays, 1);
                        EXPECT_EQ(r.rows_end, r.rows_start + 1);
                        EXPECT_EQ(r.index_base, base);
                        EXPECT_EQ(r.rows_start[0], base);
                        // Scalar sources emit each row in increasing order; BSR blocks do too.
                        EXPECT_EQ(r.sorted, 1);
                        EXPECT_TRUE(slices_increasing<I>(r.rows_start, r.rows_start + 1, r.col_indx, r.rows, base));
                        EXPECT_TRUE(slices_increasing<I>(k.rows_start, k.rows_start + 1, k.col_indx, k.cols, base));
                        free_arrays(r);
                        free_arrays(k);
                        free_arrays(q);
                    }
                    for (I b : {I(1), I(2), I(3)})
                        for (int layout : {row_major, col_major}) {
                            typename A::record r{};
                            const int status = A::to_bsr_from[format](s.h, op, b, layout, &r);
                            if (expected.rows % b != 0 || expected.cols % b != 0) {
                                EXPECT_EQ(status, invalid);
                                continue;
                            }
                            ASSERT_EQ(status, ok);
                            EXPECT_EQ(r.block_size, b);
                            EXPECT_EQ(r.block_layout, layout == row_major ? 0 : 1);
                            EXPECT_TRUE(slices_increasing<I>(r.rows_start, r.rows_start + 1, r.col_indx, r.rows, base));
                            expect_same(expected, read_record<T>(bsr, r), "to bsr");
                            free_arrays(r);
                        }
                }
            }
}

TYPED_TEST(SparseHandle, CoreConversionAndCopyOwnTheirArrays)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    for (I base : {I(0), I(1)})
        for (int32_t format : formats) {
            const dense<T> m = sample<T>(6, 3);
            auto c = compress<T, I>(m, format, base, I(3));
            handle_of<T, I> s(c);
            for (int op : operations) {
                typename A::handle *r = nullptr, *b = nullptr;
                ASSERT_EQ(A::convert_csr(s.h, op, &r), ok);
                EXPECT_EQ(r->format, csr);
                EXPECT_EQ(r->data_type, data_type_code<T>);
                EXPECT_EQ(static_cast<typename A::record *>(r->data)->owns_arrays, 1);
                expect_same(op_of(m, op), read_handle<T, I>(r), "convert_csr");
                ASSERT_EQ(A::convert_bsr(s.h, I(3), op == op_n ? row_major : col_major, op, &b), ok);
                EXPECT_EQ(b->format, bsr);
                EXPECT_EQ(b->rows, op == op_n ? 6 : 3);
                EXPECT_EQ(static_cast<typename A::record *>(b->data)->block_size, 3);
                expect_same(op_of(m, op), read_handle<T, I>(b), "convert_bsr");
                EXPECT_EQ(A::destroy(r), ok);
                EXPECT_EQ(A::destroy(b), ok);
            }
            typename A::handle *copy = nullptr;
            const zel_sparse_matrix_descr general{ZEL_SPARSE_MATRIX_TYPE_GENERAL, ZEL_SPARSE_FILL_MODE_LOWER,
                                                  ZEL_SPARSE_DIAG_NON_UNIT};
            ASSERT_EQ(A::set_mv_hint(s.h, op_t, general, I(7)), ok);
            ASSERT_EQ(A::copy(s.h, &copy), ok);
            EXPECT_EQ(copy->format, format);
            EXPECT_EQ(copy->rows, 6);
            EXPECT_EQ(copy->mv_hint[2], 7);
            EXPECT_NE(copy->data, s->data);
            // The copy must not see later changes of the caller's arrays.
            std::fill(c.values.begin(), c.values.end(), T(0));
            expect_same(m, read_handle<T, I>(copy), "copy");
            EXPECT_EQ(A::destroy(copy), ok);
        }
}

TYPED_TEST(SparseHandle, OrderSortsEveryRowAndKeepsTheMatrix)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    for (I base : {I(0), I(1)})
        for (int32_t format : formats) {
            const dense<T> m = sample<T>(6, 6);
            auto c = compress<T, I>(m, format, base, I(2));
            // Every row reversed (COO: the whole list), values and blocks moving along, before
            // the handle is created.
            const size_t group = size_t(c.block_size * c.block_size);
            auto reverse_range = [&](size_t first, size_t last) {
                std::reverse(c.indices.begin() + first, c.indices.begin() + last);
                if (format == coo)
                    std::reverse(c.row_indices.begin() + first, c.row_indices.begin() + last);
                std::vector<T> v(c.values.begin() + first * group, c.values.begin() + last * group);
                for (size_t k = first; k < last; ++k)
                    std::copy_n(v.begin() + (last - 1 - k) * group, group, c.values.begin() + k * group);
            };
            if (format == coo)
                reverse_range(0, c.indices.size());
            else
                for (size_t r = 0; r + 1 < c.starts.size(); ++r)
                    reverse_range(c.starts[r] - base, c.starts[r + 1] - base);
            handle_of<T, I> s(c);
            I sorted = -1;
            ASSERT_EQ(A::get_sorted(s.h, &sorted), ok);
            EXPECT_EQ(sorted, 0);
            ASSERT_EQ(base == 0 ? A::order(s.h) : A::do_order(s.h), ok);
            ASSERT_EQ(A::get_sorted(s.h, &sorted), ok);
            EXPECT_EQ(sorted, 1);
            expect_same(m, read_handle<T, I>(s.h), "ordered");
            if (format == coo) {
                for (size_t k = 1; k < c.indices.size(); ++k)
                    EXPECT_LT(std::pair(c.row_indices[k - 1], c.indices[k - 1]), std::pair(c.row_indices[k], c.indices[k]));
            } else {
                EXPECT_TRUE(slices_increasing<I>(c.starts.data(), c.starts.data() + 1, c.indices.data(), c.length(), base));
            }
        }
    // A record marked sorted is left alone.
    auto c = compress<T, I>(sample<T>(6, 6), csr, I(0));
    std::reverse(c.indices.begin(), c.indices.begin() + c.starts[1]);
    const std::vector<I> before = c.indices;
    handle_of<T, I> s(c);
    ASSERT_EQ(A::set_csr_arrays(s.h, 0, 0, 1, 0, c.starts.data(), c.ends_ptr(), c.indices.data(), c.c_values()), ok);
    ASSERT_EQ(A::do_order(s.h), ok);
    EXPECT_EQ(c.indices, before);
}

TYPED_TEST(SparseHandle, AccessorsAndDataArraySetters)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    const dense<T> m = sample<T>(6, 6);
    auto c = compress<T, I>(m, csr, I(0)), o = compress<T, I>(m, coo, I(0));
    auto k = compress<T, I>(m, csc, I(1)), b = compress<T, I>(m, bsr, I(0), I(2));
    handle_of<T, I> hr(c), ho(o), hk(k), hb(b);
    auto &r = hr.record();
    auto &q = *static_cast<typename A::coo_record *>(ho->data);

    // The flags land in the right place of each record kind.
    EXPECT_EQ(A::set_inplace_copy(hr.h, 0), ok);
    EXPECT_EQ(A::set_inplace_copy(ho.h, 5), ok);
    EXPECT_EQ(r.inplace_copy, 0);
    EXPECT_EQ(q.inplace_copy, 5);
    EXPECT_EQ(A::set_is_sycl_cpu(hr.h, 3), ok);
    EXPECT_EQ(A::set_is_sycl_cpu(ho.h, 4), ok);
    EXPECT_EQ(r.is_sycl_cpu, 3);
    EXPECT_EQ(q.is_sycl_cpu, 4);
    EXPECT_EQ(q.owns_arrays, 0);
    EXPECT_EQ(r.inplace_copy, 0);

    // three_array follows rows_end; nnz follows the end offsets only with is_sycl_cpu.
    std::vector<I> ends(c.starts.begin() + 1, c.starts.end());
    const I nnz = r.nnz;
    ends.back() -= 2;
    auto set_csr = [&](I sycl, I sorted, I *e, I *idx) {
        return A::set_csr_arrays(hr.h, sycl, 0, sorted, 0, c.starts.data(), e, idx, c.c_values());
    };
    EXPECT_EQ(set_csr(0, 0, ends.data(), c.indices.data()), ok);
    EXPECT_EQ(r.three_array, 0);
    EXPECT_EQ(r.nnz, nnz);
    EXPECT_EQ(r.sorted, 0);
    EXPECT_EQ(set_csr(1, 1, ends.data(), c.indices.data()), ok);
    EXPECT_EQ(r.nnz, nnz - 2);
    EXPECT_EQ(set_csr(1, 1, ends.data(), nullptr), ok);
    EXPECT_EQ(r.nnz, 0);
    EXPECT_EQ(set_csr(1, 1, c.starts.data() + 1, c.indices.data()), ok);
    EXPECT_EQ(r.three_array, 1);
    EXPECT_EQ(r.nnz, nnz);
    EXPECT_EQ(r.is_sycl_cpu, 1);

    // CSC counts over columns: a 6 x 3 CSC matrix takes nnz from entry 2 of its end offsets.
    auto &kr = hk.record();
    kr.cols = 3;
    EXPECT_EQ(A::set_csc_arrays(hk.h, 1, 0, 1, 1, k.starts.data(), k.ends_ptr(), k.indices.data(), k.c_values()), ok);
    EXPECT_EQ(kr.nnz, k.starts[3] - 1);
    kr.cols = 6;

    // The BSR setter ignores its block argument.
    auto &br = hb.record();
    EXPECT_EQ(A::set_bsr_arrays(hb.h, 1, 0, 1, 0, b.starts.data(), b.ends_ptr(), b.indices.data(), I(7), b.c_values()), ok);
    EXPECT_EQ(br.block_size, 2);
    EXPECT_EQ(br.block_layout, 0);
    EXPECT_EQ(br.nnz, b.nnz());

    std::vector<I> rows = o.row_indices;
    EXPECT_EQ(A::set_coo_arrays(ho.h, 0, 0, 0, 1, rows.data(), o.indices.data(), o.c_values()), ok);
    EXPECT_EQ(q.index_base, 1);
    EXPECT_EQ(q.sorted, 0);
    EXPECT_EQ(q.row_indx, rows.data());
    EXPECT_EQ(q.nnz, I(rows.size()));

    // A handle without its record: every accessor says 1, the BSR setter 2.
    void *data = hr->data;
    hr->data = nullptr;
    I sorted = 9;
    EXPECT_EQ(A::set_inplace_copy(hr.h, 1), not_initialized);
    EXPECT_EQ(A::set_is_sycl_cpu(hr.h, 1), not_initialized);
    EXPECT_EQ(A::get_sorted(hr.h, &sorted), not_initialized);
    EXPECT_EQ(sorted, 9);
    EXPECT_EQ(A::set_coo_arrays(hr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr), not_initialized);
    EXPECT_EQ(A::set_csr_arrays(hr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), not_initialized);
    EXPECT_EQ(A::set_csc_arrays(hr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), not_initialized);
    EXPECT_EQ(A::set_bsr_arrays(hr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr, 1, nullptr), alloc_failed);
    EXPECT_EQ(A::set_bsr_arrays(nullptr, 0, 0, 0, 0, nullptr, nullptr, nullptr, 1, nullptr), not_initialized);
    EXPECT_EQ(A::set_csr_arrays(nullptr, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), not_initialized);
    EXPECT_EQ(A::do_order(hr.h), internal_error);
    EXPECT_EQ(A::order(hr.h), internal_error);
    hr->data = data;
}

TYPED_TEST(SparseHandle, DestroyReleasesEverythingHungOnTheHandle)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    auto c = compress<T, I>(sample<T>(6, 6), csr, I(0));
    zel::test::allocator_probe probe;
    typename A::handle *h = nullptr, *owned = nullptr;
    ASSERT_EQ(create(c, &h), ok);
    ASSERT_EQ(A::copy(h, &owned), ok);
    EXPECT_EQ(A::destroy(h), ok);
    EXPECT_EQ(probe.live(), 3 + 2); // the copy: handle, record, offsets, indices, values

    auto alloc = [](size_t bytes) { return std::memset(zel_serv_malloc(bytes, 4096), 0, bytes); };
    auto *t = static_cast<typename A::record *>(alloc(sizeof(typename A::record)));
    t->owns_arrays = 1;
    t->rows_start = static_cast<I *>(alloc(7 * sizeof(I)));
    t->rows_end = t->rows_start + 1;
    t->col_indx = static_cast<I *>(alloc(8 * sizeof(I)));
    t->values = alloc(8 * sizeof(T));
    t->aux = alloc(8 * sizeof(T));
    t->opt_record = static_cast<zel_sparse_opt_record *>(alloc(sizeof(zel_sparse_opt_record)));
    t->opt_record->sub_three = alloc(3 * sizeof(void *));
    t->opt_record->sub_four = alloc(4 * sizeof(void *));
    t->opt_words = static_cast<zel_sparse_opt_words *>(alloc(sizeof(zel_sparse_opt_words)));
    owned->transposed = t;
    for (auto *list : {&owned->mv_list, &owned->mv_list, &owned->trsv_list, &owned->sorv_list, &owned->reserved_list,
                       &owned->mm_list}) {
        auto *node = static_cast<typename A::node *>(alloc(sizeof(typename A::node)));
        node->next = *list;
        *list = node;
    }
    EXPECT_EQ(probe.live(), 5 + 9 + 6); // copy, transposed record with its parts, nodes
    EXPECT_EQ(A::destroy(owned), ok);
    EXPECT_EQ(probe.live(), 0);
    EXPECT_EQ(A::destroy(nullptr), not_initialized);
}
