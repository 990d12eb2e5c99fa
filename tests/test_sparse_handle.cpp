// Sparse handle: creation and export, copies, conversions between every pair of formats (also
// transposed and conjugated), index ordering and the accessors, checked against dense matrices.
#include "test_sparse_handle.hpp"

#include "alloc_fault.hpp"

#include <algorithm>

using namespace sparse_test;

namespace {

constexpr int formats[] = {0, 1, 2, 3};
constexpr int operations[] = {10, 11, 12};

// A handle over arrays that the test keeps alive; destroyed with it.
template <class T, class I> struct source {
    using A = api<T, I>;
    compressed<T, I> arrays;
    std::vector<I> coo_rows;
    typename A::handle *h = nullptr;
    source() = default;
    source(const source &) = delete;
    ~source()
    {
        if (h != nullptr) {
            EXPECT_EQ(A::destroy(h), 0);
        }
    }
};

// Fills s with matrix m in the given format (BSR: block edge b, layout 101 when zero-based,
// 102 when one-based) and creates its handle.
template <class T, class I> int make(source<T, I> &s, int format, const dense<T> &m, I base, I b)
{
    using A = api<T, I>;
    const int layout = base == 0 ? 101 : 102;
    s.arrays = format == 3 ? blocked<T, I>(m, b, layout, base) : compress<T, I>(m, format == 2, base);
    auto &c = s.arrays;
    I *starts = c.starts.data();
    switch (format) {
    case 0:
        for (size_t r = 0; r + 1 < c.starts.size(); ++r)
            for (I p = c.starts[r]; p < c.starts[r + 1]; ++p)
                s.coo_rows.push_back(I(r + base));
        return A::create_coo(&s.h, int(base), I(m.rows), I(m.cols), I(c.index.size()), s.coo_rows.data(),
                             c.index.data(), A::c(c.values.data()));
    case 1:
        return A::create_csr(&s.h, int(base), I(m.rows), I(m.cols), starts, starts + 1, c.index.data(),
                             A::c(c.values.data()));
    case 2:
        return A::create_csc(&s.h, int(base), I(m.rows), I(m.cols), starts, starts + 1, c.index.data(),
                             A::c(c.values.data()));
    default:
        return A::create_bsr(&s.h, int(base), layout, I(m.rows / b), I(m.cols / b), b, starts, starts + 1,
                             c.index.data(), A::c(c.values.data()));
    }
}

template <class I> bool slices_increasing(const I *starts, const I *index, int64_t n, I base)
{
    for (int64_t s = 0; s < n; ++s)
        for (I p = starts[s] - base + 1; p < starts[s + 1] - base; ++p)
            if (index[p] <= index[p - 1])
                return false;
    return true;
}

template <class Record> void free_arrays(Record &r)
{
    if constexpr (requires { r.row_indx; })
        zel_serv_free(r.row_indx);
    else
        zel_serv_free(r.rows_start);
    zel_serv_free(r.col_indx);
    zel_serv_free(r.values);
}

struct shape {
    int64_t rows, cols;
};
constexpr shape shapes[] = {{6, 6}, {6, 3}};

} // namespace

template <class P> class SparseHandle : public ::testing::Test {};
TYPED_TEST_SUITE(SparseHandle, all_members);

TYPED_TEST(SparseHandle, CreateExportRoundTripEveryFormat)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    for (shape sh : shapes)
        for (I base : {I(0), I(1)})
            for (int format : formats) {
                const dense<T> m = sample<T>(sh.rows, sh.cols);
                source<T, I> s;
                ASSERT_EQ(make(s, format, m, base, I(3)), 0) << format;
                ASSERT_NE(s.h, nullptr);
                EXPECT_EQ(s.h->data_type, A::data_type);
                EXPECT_EQ(s.h->format, format);
                EXPECT_EQ(s.h->rows, sh.rows);
                EXPECT_EQ(s.h->cols, sh.cols);
                EXPECT_EQ(s.h->transposed, nullptr);
                expect_same(m, read_handle<T, I>(s.h), "created");

                int got_base = -1, got_layout = -1;
                I rows = -1, cols = -1, nnz = -1, block = -1;
                I *starts = nullptr, *ends = nullptr, *index = nullptr, *row_index = nullptr;
                typename A::c_type *values = nullptr;
                auto &c = s.arrays;
                if (format == 0) {
                    auto &r = *static_cast<typename A::coo_record *>(s.h->data);
                    EXPECT_EQ(r.owns_arrays, 0);
                    EXPECT_EQ(r.sorted, 1);
                    ASSERT_EQ(A::export_coo(s.h, &got_base, &rows, &cols, &nnz, &row_index, &index, &values), 0);
                    EXPECT_EQ(nnz, I(c.index.size()));
                    EXPECT_EQ(row_index, s.coo_rows.data());
                    EXPECT_EQ(A::export_csr(s.h, &got_base, &rows, &cols, &starts, &ends, &index, &values), 3);
                } else {
                    auto &r = *static_cast<typename A::csr_record *>(s.h->data);
                    EXPECT_EQ(r.owns_arrays, 0);
                    EXPECT_EQ(r.three_array, 1);
                    EXPECT_EQ(r.sorted, 1);
                    EXPECT_EQ(r.nnz, I(c.index.size()));
                    EXPECT_EQ(r.inplace_copy, 1);
                    if (format == 3) {
                        ASSERT_EQ(A::export_bsr(s.h, &got_base, &got_layout, &rows, &cols, &block, &starts, &ends,
                                                &index, &values), 0);
                        EXPECT_EQ(block, 3);
                        EXPECT_EQ(got_layout, base == 0 ? 101 : 102);
                        EXPECT_EQ(r.block_layout, base);
                        EXPECT_EQ(rows * 3, sh.rows);
                    } else if (format == 1) {
                        ASSERT_EQ(A::export_csr(s.h, &got_base, &rows, &cols, &starts, &ends, &index, &values), 0);
                        EXPECT_EQ(A::export_csc(s.h, &got_base, &rows, &cols, &starts, &ends, &index, &values), 3);
                    } else {
                        ASSERT_EQ(A::export_csc(s.h, &got_base, &rows, &cols, &starts, &ends, &index, &values), 0);
                    }
                    EXPECT_EQ(starts, c.starts.data());
                    EXPECT_EQ(ends, c.starts.data() + 1);
                }
                EXPECT_EQ(got_base, base);
                EXPECT_EQ(index, c.index.data());
                EXPECT_EQ(values, A::c(c.values.data()));
            }
}

TYPED_TEST(SparseHandle, EmptyMatricesAndFourArrayForm)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    // nnz = 0: offsets all equal the base, no index or value arrays needed.
    for (I base : {I(0), I(1)}) {
        std::vector<I> starts(5, base);
        typename A::handle *h = nullptr;
        ASSERT_EQ(A::create_csr(&h, int(base), 4, 3, starts.data(), starts.data() + 1, nullptr, nullptr), 0);
        EXPECT_EQ(static_cast<typename A::csr_record *>(h->data)->nnz, 0);
        typename A::csr_record out{};
        ASSERT_EQ(A::to_csc(h, 11, &out), 0);
        EXPECT_EQ(out.rows, 3);
        EXPECT_EQ(out.cols, 4);
        for (int k = 0; k <= 4; ++k)
            EXPECT_EQ(out.rows_start[k], base);
        free_arrays(out);
        typename A::handle *bsr = nullptr;
        EXPECT_EQ(A::convert_bsr(h, I(1), 102, 10, &bsr), 0);
        EXPECT_EQ(static_cast<typename A::csr_record *>(bsr->data)->nnz, 0);
        EXPECT_EQ(A::destroy(bsr), 0);
        EXPECT_EQ(A::destroy(h), 0);
        ASSERT_EQ(A::create_coo(&h, int(base), 0, 0, 0, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(A::destroy(h), 0);
    }
    // Four-array form with gaps between rows whose contents must never be read.
    const dense<T> m = sample<T>(4, 5);
    compressed<T, int64_t> c = compress<T, int64_t>(m, false, 1);
    std::vector<I> starts, ends, index;
    std::vector<T> values;
    for (int64_t r = 0; r < m.rows; ++r) {
        starts.push_back(I(index.size() + 1));
        for (int64_t p = c.starts[r] - 1; p < c.starts[r + 1] - 1; ++p) {
            index.push_back(I(c.index[p]));
            values.push_back(c.values[p]);
        }
        ends.push_back(I(index.size() + 1));
        index.push_back(I(999)); // gap
        values.push_back(make_value<T>(1e6, 1e6));
    }
    typename A::handle *h = nullptr;
    ASSERT_EQ(A::create_csr(&h, 1, I(m.rows), I(m.cols), starts.data(), ends.data(), index.data(), A::c(values.data())), 0);
    EXPECT_EQ(static_cast<typename A::csr_record *>(h->data)->three_array, 0);
    expect_same(m, read_handle<T, I>(h), "four-array");
    typename A::handle *copy = nullptr, *converted = nullptr;
    ASSERT_EQ(A::copy(h, &copy), 0);
    auto &r = *static_cast<typename A::csr_record *>(copy->data);
    EXPECT_EQ(r.three_array, 1);
    EXPECT_EQ(r.rows_end, r.rows_start + 1);
    EXPECT_EQ(r.nnz, I(c.index.size()));
    expect_same(m, read_handle<T, I>(copy), "compacted copy");
    ASSERT_EQ(A::convert_csr(h, 12, &converted), 0);
    expect_same(apply(m, 12), read_handle<T, I>(converted), "four-array transposed");
    EXPECT_EQ(static_cast<typename A::csr_record *>(converted->data)->nnz, I(c.index.size()));
    typename A::coo_record coo{};
    ASSERT_EQ(A::to_coo(h, 10, &coo), 0);
    EXPECT_EQ(coo.nnz, I(c.index.size()));
    expect_same(m, read_coo<T>(coo), "four-array to coo");
    free_arrays(coo);
    EXPECT_EQ(A::destroy(converted), 0);
    EXPECT_EQ(A::destroy(copy), 0);
    EXPECT_EQ(A::destroy(h), 0);
}

TYPED_TEST(SparseHandle, LayerConversionsEveryFormatToEveryFormat)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    for (shape sh : shapes)
        for (I base : {I(0), I(1)})
            for (int format : formats) {
                const dense<T> m = sample<T>(sh.rows, sh.cols);
                source<T, I> s;
                ASSERT_EQ(make(s, format, m, base, I(3)), 0);
                for (int op : operations) {
                    const dense<T> expected = apply(m, op);
                    const std::string what = "from " + std::to_string(format) + " op " + std::to_string(op);
                    for (bool any : {false, true}) {
                        typename A::csr_record csr{}, csc{};
                        typename A::coo_record coo{};
                        ASSERT_EQ((any ? A::to_csr : A::to_csr_from[format])(s.h, op, &csr), 0);
                        ASSERT_EQ((any ? A::to_csc : A::to_csc_from[format])(s.h, op, &csc), 0);
                        ASSERT_EQ((any ? A::to_coo : A::to_coo_from[format])(s.h, op, &coo), 0);
                        expect_same(expected, read_record<T>(1, csr), (what + " to csr").c_str());
                        expect_same(expected, read_record<T>(2, csc), (what + " to csc").c_str());
                        expect_same(expected, read_coo<T>(coo), (what + " to coo").c_str());
                        EXPECT_EQ(csr.owns_arrays, 1);
                        EXPECT_EQ(csr.rows_end, csr.rows_start + 1);
                        EXPECT_EQ(csr.index_base, base);
                        EXPECT_EQ(csr.rows_start[0], base);
                        // Scalar sources emit each row in increasing order; BSR blocks do too.
                        EXPECT_EQ(csr.sorted, 1);
                        EXPECT_TRUE(slices_increasing<I>(csr.rows_start, csr.col_indx, csr.rows, base));
                        EXPECT_TRUE(slices_increasing<I>(csc.rows_start, csc.col_indx, csc.cols, base));
                        free_arrays(csr);
                        free_arrays(csc);
                        free_arrays(coo);
                    }
                    for (I b : {I(1), I(2), I(3)})
                        for (int layout : {101, 102}) {
                            typename A::csr_record bsr{};
                            const int status = A::to_bsr_from[format](s.h, op, b, layout, &bsr);
                            if (expected.rows % b != 0 || expected.cols % b != 0) {
                                EXPECT_EQ(status, 3);
                                continue;
                            }
                            ASSERT_EQ(status, 0) << what;
                            EXPECT_EQ(bsr.block_size, b);
                            EXPECT_EQ(bsr.block_layout, layout == 101 ? 0 : 1);
                            EXPECT_TRUE(slices_increasing<I>(bsr.rows_start, bsr.col_indx, bsr.rows, base));
                            expect_same(expected, read_record<T>(3, bsr), (what + " to bsr").c_str());
                            free_arrays(bsr);
                        }
                }
            }
}

TYPED_TEST(SparseHandle, CoreConversionAndCopyOwnTheirArrays)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    for (I base : {I(0), I(1)})
        for (int format : formats) {
            const dense<T> m = sample<T>(6, 3);
            source<T, I> s;
            ASSERT_EQ(make(s, format, m, base, I(3)), 0);
            for (int op : operations) {
                typename A::handle *csr = nullptr, *bsr = nullptr;
                ASSERT_EQ(A::convert_csr(s.h, op, &csr), 0);
                EXPECT_EQ(csr->format, 1);
                EXPECT_EQ(csr->data_type, A::data_type);
                EXPECT_EQ(static_cast<typename A::csr_record *>(csr->data)->owns_arrays, 1);
                expect_same(apply(m, op), read_handle<T, I>(csr), "convert_csr");
                const int layout = op == 10 ? 101 : 102;
                ASSERT_EQ(A::convert_bsr(s.h, I(3), layout, op, &bsr), 0);
                EXPECT_EQ(bsr->format, 3);
                EXPECT_EQ(bsr->rows, op == 10 ? 6 : 3);
                EXPECT_EQ(static_cast<typename A::csr_record *>(bsr->data)->block_size, 3);
                expect_same(apply(m, op), read_handle<T, I>(bsr), "convert_bsr");
                EXPECT_EQ(A::destroy(csr), 0);
                EXPECT_EQ(A::destroy(bsr), 0);
            }
            typename A::handle *copy = nullptr;
            ASSERT_EQ(A::set_mv_hint(s.h, 11, zel_sparse_matrix_descr{20, 40, 50}, I(7)), 0);
            ASSERT_EQ(A::copy(s.h, &copy), 0);
            EXPECT_EQ(copy->format, format);
            EXPECT_EQ(copy->rows, 6);
            EXPECT_EQ(copy->mv_hint[2], 7);
            EXPECT_NE(copy->data, s.h->data);
            // The copy must not see later changes of the caller's arrays.
            std::fill(s.arrays.values.begin(), s.arrays.values.end(), T(0));
            expect_same(m, read_handle<T, I>(copy), "copy");
            EXPECT_EQ(A::destroy(copy), 0);
        }
}

TYPED_TEST(SparseHandle, OrderSortsEveryRowAndKeepsTheMatrix)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    for (I base : {I(0), I(1)})
        for (int format : formats) {
            const dense<T> m = sample<T>(6, 6);
            source<T, I> s;
            const I b = 2, group = format == 3 ? b * b : 1;
            ASSERT_EQ(make(s, format, m, base, b), 0);
            // Reverse every row (COO: the whole list), values and blocks moving along; then
            // re-create so that creation sees the shuffled arrays.
            auto &c = s.arrays;
            auto reverse_range = [&](size_t first, size_t last) {
                std::reverse(c.index.begin() + first, c.index.begin() + last);
                if (format == 0)
                    std::reverse(s.coo_rows.begin() + first, s.coo_rows.begin() + last);
                std::vector<T> v(c.values.begin() + first * group, c.values.begin() + last * group);
                for (size_t k = first; k < last; ++k)
                    std::copy_n(v.begin() + (last - 1 - k) * group, group, c.values.begin() + k * group);
            };
            if (format == 0)
                reverse_range(0, c.index.size());
            else
                for (size_t r = 0; r + 1 < c.starts.size(); ++r)
                    reverse_range(c.starts[r] - base, c.starts[r + 1] - base);
            ASSERT_EQ(A::destroy(s.h), 0);
            s.h = nullptr;
            I *starts = c.starts.data();
            const int layout = base == 0 ? 101 : 102;
            switch (format) {
            case 0: ASSERT_EQ(A::create_coo(&s.h, int(base), 6, 6, I(c.index.size()), s.coo_rows.data(), c.index.data(), A::c(c.values.data())), 0); break;
            case 1: ASSERT_EQ(A::create_csr(&s.h, int(base), 6, 6, starts, starts + 1, c.index.data(), A::c(c.values.data())), 0); break;
            case 2: ASSERT_EQ(A::create_csc(&s.h, int(base), 6, 6, starts, starts + 1, c.index.data(), A::c(c.values.data())), 0); break;
            default: ASSERT_EQ(A::create_bsr(&s.h, int(base), layout, 3, 3, b, starts, starts + 1, c.index.data(), A::c(c.values.data())), 0);
            }
            I sorted = -1;
            ASSERT_EQ(A::get_sorted(s.h, &sorted), 0);
            EXPECT_EQ(sorted, 0);
            ASSERT_EQ(base == 0 ? A::order(s.h) : A::do_order(s.h), 0);
            ASSERT_EQ(A::get_sorted(s.h, &sorted), 0);
            EXPECT_EQ(sorted, 1);
            expect_same(m, read_handle<T, I>(s.h), "ordered");
            if (format == 0) {
                for (size_t k = 1; k < c.index.size(); ++k)
                    EXPECT_TRUE(s.coo_rows[k - 1] < s.coo_rows[k] ||
                                (s.coo_rows[k - 1] == s.coo_rows[k] && c.index[k - 1] < c.index[k]));
            } else {
                EXPECT_TRUE(slices_increasing<I>(starts, c.index.data(), I(c.starts.size() - 1), base));
            }
        }
}

TYPED_TEST(SparseHandle, OrderLeavesARecordMarkedSortedAlone)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    const dense<T> m = sample<T>(6, 6);
    source<T, I> s;
    ASSERT_EQ(make(s, 1, m, I(0), I(1)), 0);
    std::reverse(s.arrays.index.begin(), s.arrays.index.begin() + s.arrays.starts[1]);
    const std::vector<I> before = s.arrays.index;
    I *starts = s.arrays.starts.data();
    ASSERT_EQ(A::set_csr_arrays(s.h, 0, 0, 1, 0, starts, starts + 1, s.arrays.index.data(), A::c(s.arrays.values.data())), 0);
    ASSERT_EQ(A::do_order(s.h), 0);
    EXPECT_EQ(s.arrays.index, before);
}

TYPED_TEST(SparseHandle, AccessorsAndDataArraySetters)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    const dense<T> m = sample<T>(6, 6);
    source<T, I> csr, coo, csc, bsr;
    ASSERT_EQ(make(csr, 1, m, I(0), I(1)), 0);
    ASSERT_EQ(make(coo, 0, m, I(0), I(1)), 0);
    ASSERT_EQ(make(csc, 2, m, I(1), I(1)), 0);
    ASSERT_EQ(make(bsr, 3, m, I(0), I(2)), 0);
    auto &r = *static_cast<typename A::csr_record *>(csr.h->data);
    auto &q = *static_cast<typename A::coo_record *>(coo.h->data);

    // The flags land in the right place of each record kind.
    EXPECT_EQ(A::set_inplace_copy(csr.h, 0), 0);
    EXPECT_EQ(A::set_inplace_copy(coo.h, 5), 0);
    EXPECT_EQ(r.inplace_copy, 0);
    EXPECT_EQ(q.inplace_copy, 5);
    EXPECT_EQ(A::set_is_sycl_cpu(csr.h, 3), 0);
    EXPECT_EQ(A::set_is_sycl_cpu(coo.h, 4), 0);
    EXPECT_EQ(r.is_sycl_cpu, 3);
    EXPECT_EQ(q.is_sycl_cpu, 4);
    EXPECT_EQ(q.owns_arrays, 0);
    EXPECT_EQ(r.inplace_copy, 0);

    // three_array follows rows_end; nnz follows the end offsets only with is_sycl_cpu.
    auto &c = csr.arrays;
    std::vector<I> ends(c.starts.begin() + 1, c.starts.end());
    const I nnz = r.nnz;
    ends.back() -= 2;
    EXPECT_EQ(A::set_csr_arrays(csr.h, 0, 0, 0, 0, c.starts.data(), ends.data(), c.index.data(), A::c(c.values.data())), 0);
    EXPECT_EQ(r.three_array, 0);
    EXPECT_EQ(r.nnz, nnz);
    EXPECT_EQ(r.sorted, 0);
    EXPECT_EQ(A::set_csr_arrays(csr.h, 1, 0, 1, 0, c.starts.data(), ends.data(), c.index.data(), A::c(c.values.data())), 0);
    EXPECT_EQ(r.nnz, nnz - 2);
    EXPECT_EQ(A::set_csr_arrays(csr.h, 1, 0, 1, 0, c.starts.data(), ends.data(), nullptr, A::c(c.values.data())), 0);
    EXPECT_EQ(r.nnz, 0);
    EXPECT_EQ(A::set_csr_arrays(csr.h, 1, 0, 1, 0, c.starts.data(), c.starts.data() + 1, c.index.data(), A::c(c.values.data())), 0);
    EXPECT_EQ(r.three_array, 1);
    EXPECT_EQ(r.nnz, nnz);
    EXPECT_EQ(r.is_sycl_cpu, 1);

    // CSC counts over columns: a 6 x 3 CSC matrix takes nnz from entry 2 of its end offsets.
    auto &k = *static_cast<typename A::csr_record *>(csc.h->data);
    k.cols = 3;
    EXPECT_EQ(A::set_csc_arrays(csc.h, 1, 0, 1, 1, csc.arrays.starts.data(), csc.arrays.starts.data() + 1, csc.arrays.index.data(), A::c(csc.arrays.values.data())), 0);
    EXPECT_EQ(k.nnz, csc.arrays.starts[3] - 1);
    k.cols = 6;

    // The BSR setter ignores its block argument.
    auto &b = *static_cast<typename A::csr_record *>(bsr.h->data);
    auto &bc = bsr.arrays;
    EXPECT_EQ(A::set_bsr_arrays(bsr.h, 1, 0, 1, 0, bc.starts.data(), bc.starts.data() + 1, bc.index.data(), I(7), A::c(bc.values.data())), 0);
    EXPECT_EQ(b.block_size, 2);
    EXPECT_EQ(b.block_layout, 0);
    EXPECT_EQ(b.nnz, I(bc.index.size()));

    std::vector<I> rows = coo.coo_rows;
    EXPECT_EQ(A::set_coo_arrays(coo.h, 0, 0, 0, 1, rows.data(), coo.arrays.index.data(), A::c(coo.arrays.values.data())), 0);
    EXPECT_EQ(q.index_base, 1);
    EXPECT_EQ(q.sorted, 0);
    EXPECT_EQ(q.row_indx, rows.data());
    EXPECT_EQ(q.nnz, I(rows.size()));
    q.row_indx = coo.coo_rows.data();
    q.index_base = 0;

    // A handle without its record: every accessor says 1, the BSR setter 2.
    void *data = csr.h->data;
    csr.h->data = nullptr;
    I sorted = 9;
    EXPECT_EQ(A::set_inplace_copy(csr.h, 1), 1);
    EXPECT_EQ(A::set_is_sycl_cpu(csr.h, 1), 1);
    EXPECT_EQ(A::get_sorted(csr.h, &sorted), 1);
    EXPECT_EQ(sorted, 9);
    EXPECT_EQ(A::set_coo_arrays(csr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(A::set_csr_arrays(csr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(A::set_csc_arrays(csr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(A::set_bsr_arrays(csr.h, 0, 0, 0, 0, nullptr, nullptr, nullptr, 1, nullptr), 2);
    EXPECT_EQ(A::set_bsr_arrays(nullptr, 0, 0, 0, 0, nullptr, nullptr, nullptr, 1, nullptr), 1);
    EXPECT_EQ(A::set_csr_arrays(nullptr, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(A::do_order(csr.h), 5);
    EXPECT_EQ(A::order(csr.h), 5);
    csr.h->data = data;
}

TYPED_TEST(SparseHandle, DestroyReleasesEverythingHungOnTheHandle)
{
    using T = typename TypeParam::value;
    using I = typename TypeParam::index;
    using A = typename TypeParam::A;
    const dense<T> m = sample<T>(6, 6);
    compressed<T, I> c = compress<T, I>(m, false, I(0));
    zel::test::allocator_probe probe;
    typename A::handle *h = nullptr, *owned = nullptr;
    ASSERT_EQ(A::create_csr(&h, 0, 6, 6, c.starts.data(), c.starts.data() + 1, c.index.data(), A::c(c.values.data())), 0);
    ASSERT_EQ(A::copy(h, &owned), 0);
    EXPECT_EQ(A::destroy(h), 0);
    EXPECT_EQ(probe.live(), 3 + 2); // the copy: handle, record, offsets, indices, values

    auto *t = static_cast<typename A::csr_record *>(zel_serv_malloc(sizeof(typename A::csr_record), 4096));
    *t = typename A::csr_record{};
    t->owns_arrays = 1;
    t->rows_start = static_cast<I *>(zel_serv_malloc(7 * sizeof(I), 4096));
    t->rows_end = t->rows_start + 1;
    t->col_indx = static_cast<I *>(zel_serv_malloc(8 * sizeof(I), 4096));
    t->values = zel_serv_malloc(8 * sizeof(T), 4096);
    t->aux = zel_serv_malloc(8 * sizeof(T), 4096);
    t->opt_record = static_cast<zel_sparse_opt_record *>(zel_serv_malloc(sizeof(zel_sparse_opt_record), 4096));
    *t->opt_record = zel_sparse_opt_record{};
    t->opt_record->sub_three = zel_serv_malloc(3 * sizeof(void *), 4096);
    t->opt_record->sub_four = zel_serv_malloc(4 * sizeof(void *), 4096);
    t->opt_words = static_cast<zel_sparse_opt_words *>(zel_serv_malloc(sizeof(zel_sparse_opt_words), 4096));
    owned->transposed = t;
    auto push = [](typename A::node *&list) {
        auto *node = static_cast<typename A::node *>(zel_serv_malloc(sizeof(typename A::node), 4096));
        *node = typename A::node{};
        node->next = list;
        list = node;
    };
    push(owned->mv_list);
    push(owned->mv_list);
    push(owned->trsv_list);
    push(owned->sorv_list);
    push(owned->reserved_list);
    push(owned->mm_list);
    EXPECT_EQ(probe.live(), 5 + 9 + 6); // copy, transposed record with its parts, nodes
    EXPECT_EQ(A::destroy(owned), 0);
    EXPECT_EQ(probe.live(), 0);
    EXPECT_EQ(A::destroy(nullptr), 1);
}
