// Products of a sparse matrix with its own transpose, dense and sparse results, against an
// independent dense computation of op(A)·op(A)ᴴ.
#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <tuple>

#include "isa_variants.hpp"
#include "mm_reader.hpp"
#include "test_sparse_syrk.hpp"
#include "zel/runtime.h"

using namespace sparse_test;

template <class M> class SparseSyrk : public ::testing::Test {};
TYPED_TEST_SUITE(SparseSyrk, all_members, member_names);

namespace {

// The values alpha takes: exactly 1 (plain kernels), one just off 1 and a general one (alpha kernels).
template <class T> std::vector<T> alphas()
{
    if constexpr (zel::is_complex_v<T>)
        return {T(1), T(1, 1e-16), T(0.5, -0.25)};
    else
        return {T(1), std::nextafter(T(1), T(2)), T(-0.5)};
}
template <class T> std::vector<T> betas()
{
    if constexpr (zel::is_complex_v<T>)
        return {T(0), T(0.75, 0.5)};
    else
        return {T(0), T(0.75)};
}

// Dense C of `dim` with leading dimension ldc: upper triangle compared with alpha·P + beta·C0
// (C0's upper triangle is NaN when beta is 0, which must not leak), everything else unchanged.
template <class T>
void expect_dense(const std::vector<T> &c, const std::vector<T> &c0, const reference &ref, int64_t ldc,
                  bool column_major, T alpha, T beta)
{
    using R = zel::real_t<T>;
    const int64_t m = ref.m;
    for (int64_t a = 0; a < m; ++a) // a: the stored line (row or column), b: the place in it
        for (int64_t b = 0; b < ldc; ++b) {
            const int64_t i = column_major ? b : a, j = column_major ? a : b, at = a * ldc + b;
            if (i < m && j < m && j >= i) {
                const cd c0v = beta == T(0) ? cd() : widen(c0[at]);
                const cd expected = widen(alpha) * ref.at(i, j) + widen(beta) * c0v;
                const double bound = std::abs(widen(alpha)) * ref.bound[i * m + j] + std::abs(widen(beta) * c0v);
                ASSERT_NEAR(std::abs(widen(c[at]) - expected), 0.0, tolerance<R>(bound)) << i << "," << j;
            } else {
                ASSERT_EQ(std::memcmp(&c[at], &c0[at], sizeof(T)), 0) << "touched " << i << "," << j;
            }
        }
}

template <class T> std::vector<T> initial_c(int64_t m, int64_t ldc, bool column_major, bool nan_upper, uint32_t seed)
{
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<T> c(m * ldc);
    for (int64_t a = 0; a < m; ++a)
        for (int64_t b = 0; b < ldc; ++b) {
            const int64_t i = column_major ? b : a, j = column_major ? a : b;
            const bool upper = i < m && j < m && j >= i;
            c[a * ldc + b] = upper && nan_upper ? make_value<T>(std::nan(""), std::nan(""))
                                                : make_value<T>(value(gen), value(gen));
        }
    return c;
}

template <class M> typename M::A::record &result_of(typename M::A::handle *h)
{
    return *static_cast<typename M::A::record *>(h->data);
}

// A result handle checked against the reference: sorted columns j >= i (blocks J >= I), the
// pattern exactly, the values to rounding.
template <class M> void expect_sparse(typename M::A::handle *h, const reference &ref, typename M::I base, typename M::I block)
{
    using I = typename M::I;
    using T = typename M::T;
    ASSERT_NE(h, nullptr);
    const auto &r = result_of<M>(h);
    const int64_t b = block, bb = b * b, m = ref.m / b;
    ASSERT_EQ(r.rows, m);
    ASSERT_EQ(r.cols, m);
    ASSERT_EQ(h->rows, ref.m);
    EXPECT_EQ(r.index_base, base);
    EXPECT_EQ(r.owns_arrays, 1);
    EXPECT_EQ(r.sorted, 1);
    EXPECT_EQ(r.rows_end, r.rows_start + 1);
    ASSERT_EQ(r.rows_start[0], base);
    EXPECT_EQ(r.nnz, r.rows_start[m] - base);
    const T *values = static_cast<const T *>(r.values);
    int64_t expected_count = 0;
    for (int64_t I0 = 0; I0 < m; ++I0)
        for (int64_t J0 = I0; J0 < m; ++J0) {
            bool any = false;
            for (int64_t s = 0; s < bb; ++s)
                any = any || ref.pattern[(I0 * b + s / b) * ref.m + J0 * b + s % b];
            expected_count += any;
        }
    EXPECT_EQ(r.rows_start[m] - base, expected_count);
    for (int64_t i = 0; i < m; ++i)
        for (I p = r.rows_start[i] - base; p < r.rows_start[i + 1] - base; ++p) {
            const int64_t j = r.col_indx[p] - base;
            ASSERT_GE(j, i);
            if (p > r.rows_start[i] - base) {
                ASSERT_GT(r.col_indx[p], r.col_indx[p - 1]);
            }
            for (int64_t s = 0; s < b; ++s)
                for (int64_t t = 0; t < b; ++t) {
                    const int64_t gi = i * b + s, gj = j * b + t;
                    const T v = values[p * bb + (r.block_layout == 0 ? s * b + t : t * b + s)];
                    ASSERT_NEAR(std::abs(widen(v) - ref.at(gi, gj)), 0.0,
                                tolerance<typename M::R>(ref.bound[gi * ref.m + gj]))
                        << gi << "," << gj;
                }
        }
}

} // namespace

TYPED_TEST(SparseSyrk, DenseResultMatchesReference)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    for (I base : {I(0), I(1)}) {
        auto a = random_matrix<T, I>(13, 9, 0.3, base, 11 + base);
        clear_row(a, I(6));
        handle_holder<M> h(a);
        const auto d = widened(a);
        for (int op : {op_n, op_t, op_c}) {
            const reference ref = syrk_reference(d, a.rows, a.cols, op);
            const int64_t m = ref.m, ldc = m + 2;
            for (int layout : {row_major, col_major})
                for (T alpha : alphas<T>())
                    for (T beta : betas<T>()) {
                        const bool cm = layout == col_major;
                        const auto c0 = initial_c<T>(m, ldc, cm, beta == T(0), 7);
                        auto c = c0;
                        ASSERT_EQ(M::A::syrkd(op, h.h, to_c<typename M::C>(alpha), to_c<typename M::C>(beta),
                                              reinterpret_cast<typename M::C *>(c.data()), layout, I(ldc)),
                                  0);
                        SCOPED_TRACE(::testing::Message() << "op " << op << " layout " << layout << " base " << base);
                        expect_dense(c, c0, ref, ldc, cm, alpha, beta);
                    }
        }
    }
}

// alpha NaN is not 1: it reaches every formed entry instead of being dropped as a unit factor.
TYPED_TEST(SparseSyrk, NanAlphaTakesTheScaledPath)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    auto a = random_matrix<T, I>(6, 5, 0.4, 0, 8);
    handle_holder<M> h(a);
    const T alpha = make_value<T>(std::nan(""), 0.0);
    for (int op : {op_n, op_t}) {
        const reference ref = syrk_reference(widened(a), a.rows, a.cols, op);
        std::vector<T> c(ref.m * ref.m, T(0));
        ASSERT_EQ(M::A::syrkd(op, h.h, to_c<typename M::C>(alpha), to_c<typename M::C>(T(0)),
                              reinterpret_cast<typename M::C *>(c.data()), row_major, I(ref.m)),
                  0);
        for (int64_t i = 0; i < ref.m; ++i)
            for (int64_t j = i; j < ref.m; ++j)
                if (ref.pattern[i * ref.m + j]) {
                    EXPECT_TRUE(std::isnan(std::abs(widen(c[i * ref.m + j])))) << i << "," << j;
                }
    }
}

TYPED_TEST(SparseSyrk, TransposedOperationsAgree)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    auto a = random_matrix<T, I>(10, 7, 0.35, 0, 5);
    handle_holder<M> h(a);
    const T alpha = alphas<T>()[2], beta = betas<T>()[1];
    auto c11 = initial_c<T>(7, 7, false, false, 3), c12 = c11;
    ASSERT_EQ(M::A::syrkd(op_t, h.h, to_c<typename M::C>(alpha), to_c<typename M::C>(beta),
                          reinterpret_cast<typename M::C *>(c11.data()), row_major, I(7)),
              0);
    ASSERT_EQ(M::A::syrkd(op_c, h.h, to_c<typename M::C>(alpha), to_c<typename M::C>(beta),
                          reinterpret_cast<typename M::C *>(c12.data()), row_major, I(7)),
              0);
    EXPECT_EQ(std::memcmp(c11.data(), c12.data(), c11.size() * sizeof(T)), 0);
    typename M::A::handle *p11 = nullptr, *p12 = nullptr;
    ASSERT_EQ(M::A::syrk(op_t, h.h, &p11), ok);
    ASSERT_EQ(M::A::syrk(op_c, h.h, &p12), ok);
    const auto &r11 = result_of<M>(p11), &r12 = result_of<M>(p12);
    ASSERT_EQ(r11.nnz, r12.nnz);
    EXPECT_EQ(std::memcmp(r11.col_indx, r12.col_indx, r11.nnz * sizeof(I)), 0);
    EXPECT_EQ(std::memcmp(r11.values, r12.values, r11.nnz * sizeof(T)), 0);
    M::A::destroy(p11);
    M::A::destroy(p12);
}

TYPED_TEST(SparseSyrk, SparseResultMatchesReference)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    // Sparse rows are merged from their right-hand tails; rows of more than 16 entries (the denser
    // shape, operation 10) go through the dense accumulator instead.
    struct shape {
        I rows, cols;
        double density;
    };
    for (shape s : {shape{17, 11, 0.25}, shape{23, 40, 0.6}})
        for (I base : {I(0), I(1)})
            for (bool shuffled : {false, true}) {
                auto a = random_matrix<T, I>(s.rows, s.cols, s.density, base, 21 + base, shuffled);
                handle_holder<M> h(a);
                const auto d = widened(a);
                for (int op : {op_n, op_t, op_c}) {
                    SCOPED_TRACE(::testing::Message() << "op " << op << " base " << base << " shuffled " << shuffled
                                                      << " cols " << s.cols);
                    typename M::A::handle *c = nullptr;
                    ASSERT_EQ(M::A::syrk(op, h.h, &c), ok);
                    EXPECT_EQ(c->format, ZEL_SPARSE_FORMAT_CSR);
                    EXPECT_EQ(c->data_type, h.h->data_type);
                    expect_sparse<M>(c, syrk_reference(d, a.rows, a.cols, op), base, 1);
                    M::A::destroy(c);
                }
            }
}

namespace {

struct pairwise_sum {
    cd value;
    double magnitude; // Σ|u·w|, which bounds the rounding
};

// The upper triangle of A·Aᴴ as sums of A(i,k)·conj(A(j,k)) over every pair of entries sharing a
// column; works at sizes where a dense reference would not fit.
template <class T, class I> std::map<std::pair<int64_t, int64_t>, pairwise_sum> pairwise_sums(const sparse<T, I> &a)
{
    const I base = a.index_base;
    std::vector<std::vector<std::pair<int64_t, cd>>> by_column(a.cols);
    for (int64_t i = 0; i < a.rows; ++i)
        for (I p = a.starts[i] - base; p < a.end(i) - base; ++p)
            by_column[a.indices[p] - base].push_back({i, widen(a.values[p])});
    std::map<std::pair<int64_t, int64_t>, pairwise_sum> sums;
    for (const auto &column : by_column)
        for (const auto &[i, u] : column)
            for (const auto &[j, w] : column)
                if (j >= i) {
                    pairwise_sum &e = sums[{i, j}];
                    e.value += u * std::conj(w);
                    e.magnitude += std::abs(u) * std::abs(w);
                }
    return sums;
}

// C = A·Aᴴ through the public sparse product against the pairwise sums.
template <class M> void expect_pairwise_sums(sparse<typename M::T, typename M::I> a)
{
    using I = typename M::I;
    using T = typename M::T;
    const I base = a.index_base;
    const auto expected = pairwise_sums(a);
    handle_holder<M> h(a);
    typename M::A::handle *c = nullptr;
    ASSERT_EQ(M::A::syrk(op_n, h.h, &c), ok);
    const auto &r = result_of<M>(c);
    ASSERT_EQ(r.rows, a.rows);
    ASSERT_EQ(r.nnz, static_cast<I>(expected.size()));
    const T *values = static_cast<const T *>(r.values);
    auto next = expected.begin();
    for (int64_t i = 0; i < a.rows; ++i)
        for (I p = r.rows_start[i] - base; p < r.rows_start[i + 1] - base; ++p, ++next) {
            ASSERT_EQ(next->first, std::make_pair(i, int64_t(r.col_indx[p] - base)));
            EXPECT_NEAR(std::abs(widen(values[p]) - next->second.value), 0.0,
                        tolerance<typename M::R>(16.0 * next->second.magnitude))
                << i << "," << next->first.second;
        }
    M::A::destroy(c);
}

// The dense row-major C = A·Aᴴ against the pairwise sums: zero where no pair meets, the lower
// triangle untouched.
template <class M> void expect_dense_pairwise_sums(sparse<typename M::T, typename M::I> a)
{
    using T = typename M::T;
    using I = typename M::I;
    const auto expected = pairwise_sums(a);
    handle_holder<M> h(a);
    const int64_t m = a.rows;
    const T untouched = make_value<T>(-7.0, 3.0);
    std::vector<T> c(m * m, untouched);
    ASSERT_EQ(M::A::syrkd(op_n, h.h, to_c<typename M::C>(T(1)), to_c<typename M::C>(T(0)),
                          reinterpret_cast<typename M::C *>(c.data()), row_major, I(m)),
              0);
    for (int64_t i = 0; i < m; ++i)
        for (int64_t j = 0; j < m; ++j) {
            if (j < i) {
                ASSERT_EQ(c[i * m + j], untouched) << i << "," << j;
                continue;
            }
            const auto e = expected.find({i, j});
            const cd value = e == expected.end() ? cd() : e->second.value;
            const double magnitude = e == expected.end() ? 0.0 : e->second.magnitude;
            ASSERT_NEAR(std::abs(widen(c[i * m + j]) - value), 0.0, tolerance<typename M::R>(16.0 * magnitude))
                << i << "," << j;
        }
}

// A row per point of an nx × ny × nz grid, one entry per stencil offset that stays on the grid;
// values differ from entry to entry.
template <class T, class I>
sparse<T, I> stencil_matrix(int64_t nx, int64_t ny, int64_t nz, const std::vector<std::array<int64_t, 3>> &offsets,
                            I base)
{
    sparse<T, I> a;
    a.rows = a.cols = static_cast<I>(nx * ny * nz);
    a.index_base = base;
    a.starts.assign(1, base);
    for (int64_t z = 0; z < nz; ++z)
        for (int64_t y = 0; y < ny; ++y)
            for (int64_t x = 0; x < nx; ++x) {
                const int64_t i = (z * ny + y) * nx + x;
                for (const auto &[dx, dy, dz] : offsets) {
                    if (x + dx < 0 || x + dx >= nx || y + dy < 0 || y + dy >= ny || z + dz < 0 || z + dz >= nz)
                        continue;
                    const int64_t j = ((z + dz) * ny + y + dy) * nx + x + dx;
                    a.indices.push_back(static_cast<I>(j + base));
                    a.values.push_back(make_value<T>(1.0 + double((i * 7 + j * 3) % 11) / 8.0, double(i % 5) / 4.0 - 0.5));
                }
                a.starts.push_back(static_cast<I>(a.indices.size()) + base);
            }
    return a;
}

// A's rows with an entry after each that lies outside every row (rows_end given apart).
template <class T, class I> sparse<T, I> with_gaps(const sparse<T, I> &a)
{
    sparse<T, I> g = a;
    g.starts.clear();
    g.indices.clear();
    g.values.clear();
    for (int64_t i = 0; i < a.rows; ++i) {
        g.starts.push_back(static_cast<I>(g.indices.size()) + a.index_base);
        for (I p = a.starts[i] - a.index_base; p < a.end(i) - a.index_base; ++p) {
            g.indices.push_back(a.indices[p]);
            g.values.push_back(a.values[p]);
        }
        g.ends.push_back(static_cast<I>(g.indices.size()) + a.index_base);
        g.indices.push_back(static_cast<I>(i % 3) + a.index_base);
        g.values.push_back(make_value<T>(100.0, 1.0));
    }
    g.starts.push_back(static_cast<I>(g.indices.size()) + a.index_base);
    return g;
}

} // namespace

// Eleven rows spread over 70000, most in four of six columns: the first rows' products reach
// further than the symbolic pass counts by stamping, so their columns are counted by merging too.
TYPED_TEST(SparseSyrk, ScatteredRowsMatchPairwiseSums)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    // Columns of 11 entries keep every row's products few; columns of 150 give the first rows more
    // products than one vector sort takes, so those rows are merged instead.
    for (const auto &[spread, used, base] : {std::tuple<int64_t, int64_t, I>{6007, 11, 0}, {6007, 11, 1}, {461, 150, 0}}) {
        sparse<T, I> a;
        a.rows = 70000;
        a.cols = 6;
        a.index_base = base;
        a.starts.assign(1, base);
        for (int64_t i = 0; i < a.rows; ++i) {
            if (i % spread == 0 && i / spread < used)
                for (int64_t k = 0; k < a.cols; ++k) {
                    const int64_t t = i / spread;
                    if ((t + k) % 3 == 0 || (t == used - 1 && k != 1)) // column 1 reaches furthest
                        continue;
                    a.indices.push_back(static_cast<I>(k + base));
                    a.values.push_back(make_value<T>(1.0 + 0.25 * t - 0.5 * k, 0.125 * (k - t)));
                }
            a.starts.push_back(static_cast<I>(a.indices.size()) + base);
        }
        expect_pairwise_sums<M>(a);
    }
}

// Stencil rows repeat their shape from row to row, and the kernels reuse a row's shape for the
// next; grid edges break the repetition, and so does a row with an extra entry. The wide grid puts
// the layers 2^15 apart (scattered rows), and in the last stencil the second offset alternates
// between rows of equal lengths.
TYPED_TEST(SparseSyrk, StencilRowsMatchPairwiseSums)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    const std::vector<std::array<int64_t, 3>> seven{{0, 0, -1}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 0},
                                                    {1, 0, 0},  {0, 1, 0},  {0, 0, 1}};
    const std::vector<std::array<int64_t, 3>> twenty_seven = [] {
        std::vector<std::array<int64_t, 3>> o;
        for (int64_t dz = -1; dz <= 1; ++dz)
            for (int64_t dy = -1; dy <= 1; ++dy)
                for (int64_t dx = -1; dx <= 1; ++dx)
                    o.push_back({dx, dy, dz});
        return o;
    }();
    for (I base : {I(0), I(1)}) {
        SCOPED_TRACE(::testing::Message() << "base " << base);
        expect_pairwise_sums<M>(stencil_matrix<T, I>(9, 7, 6, seven, base));
        expect_pairwise_sums<M>(stencil_matrix<T, I>(6, 5, 5, twenty_seven, base));
    }
    expect_pairwise_sums<M>(stencil_matrix<T, I>(1, 33000, 2, {{0, 0, -1}, {0, 0, 0}, {0, 1, 0}, {0, 0, 1}}, I(1)));
    // One interior row with an extra column. Three further on, the right-hand row of that column no
    // longer follows its neighbour, so the rows that reach it from below, inside runs of rows of
    // one shape, must be formed in full. Past the row's last column, the row's other columns still
    // repeat the row before: only its length tells it apart, also when rows end apart.
    for (const int64_t further : {3, 12 * 9 + 1}) {
        auto a = stencil_matrix<T, I>(12, 9, 8, seven, I(0));
        const int64_t defect = (4 * 9 + 4) * 12 + 5, column = defect + further;
        auto at = a.indices.begin() + a.starts[defect + 1];
        while (at != a.indices.begin() + a.starts[defect] && *(at - 1) > column)
            --at;
        const auto offset = at - a.indices.begin();
        a.indices.insert(at, static_cast<I>(column));
        a.values.insert(a.values.begin() + offset, make_value<T>(0.75, -0.25));
        for (int64_t i = defect + 1; i <= a.rows; ++i)
            ++a.starts[i];
        expect_pairwise_sums<M>(a);
        expect_pairwise_sums<M>(with_gaps(a));
    }
    // Row i has columns i and i + 2 + i % 2: equal lengths, shapes that differ from row to row.
    sparse<T, I> a;
    a.rows = a.cols = 500;
    a.index_base = 0;
    a.starts.assign(1, 0);
    for (int64_t i = 0; i < a.rows; ++i) {
        for (int64_t j : {i, i + 2 + i % 2})
            if (j < a.cols) {
                a.indices.push_back(static_cast<I>(j));
                a.values.push_back(make_value<T>(1.0 + double(i % 7), double(j % 3)));
            }
        a.starts.push_back(static_cast<I>(a.indices.size()));
    }
    expect_pairwise_sums<M>(a);
    // Again with a stray entry after every row, rows ending apart from where the next starts.
    expect_pairwise_sums<M>(with_gaps(a));
}

// Rows reaching over tens of thousands of columns: the chunk preparation goes through the right-hand
// rows they reference in memory order. Rows spread thinly over 2^20 columns, drawn from a few
// shared ones, leave most of that range unreferenced and are prepared in entry order.
TYPED_TEST(SparseSyrk, WideRowsMatchPairwiseSums)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    struct shape {
        int64_t cols, per_row, pool; // pool: the distinct columns the entries are drawn from
    };
    for (const shape s : {shape{40000, 700, 40000}, shape{int64_t(1) << 20, 4, 24}}) {
        std::mt19937 gen(5);
        std::vector<int64_t> pool(s.pool);
        for (int64_t t = 0; t < s.pool; ++t)
            pool[t] = s.pool == s.cols ? t : std::uniform_int_distribution<int64_t>(0, s.cols - 1)(gen);
        for (const I base : {I(0), I(1)}) {
            sparse<T, I> a;
            a.rows = 64;
            a.cols = static_cast<I>(s.cols);
            a.index_base = base;
            a.starts.assign(1, base);
            for (int64_t i = 0; i < a.rows; ++i) {
                std::vector<int64_t> row;
                while (int64_t(row.size()) < s.per_row) {
                    const int64_t k = pool[std::uniform_int_distribution<int64_t>(0, s.pool - 1)(gen)];
                    if (std::find(row.begin(), row.end(), k) == row.end())
                        row.push_back(k);
                }
                std::sort(row.begin(), row.end());
                for (const int64_t k : row) {
                    a.indices.push_back(static_cast<I>(k + base));
                    a.values.push_back(make_value<T>(1.0 - double((i + k) % 9) / 4.0, double(k % 3) / 2.0));
                }
                a.starts.push_back(static_cast<I>(a.indices.size()) + base);
            }
            SCOPED_TRACE(::testing::Message() << "cols " << s.cols << " base " << base);
            expect_pairwise_sums<M>(a);
            expect_dense_pairwise_sums<M>(a);
        }
    }
}

TYPED_TEST(SparseSyrk, TwoStageFormAndStagesAgreeWithTheProduct)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    auto a = random_matrix<T, I>(15, 12, 0.3, 1, 9);
    handle_holder<M> h(a);
    for (int op : {op_n, op_t}) {
        typename M::A::handle *full = nullptr;
        ASSERT_EQ(M::A::syrk(op, h.h, &full), ok);
        const auto &r = result_of<M>(full);
        const I dim = r.rows;
        std::vector<I> rows_start(dim + 1);
        I nnz = -1;
        ASSERT_EQ(M::A::count(op, h.h, rows_start.data(), &nnz), ok);
        ASSERT_EQ(nnz, r.nnz);
        EXPECT_EQ(std::memcmp(rows_start.data(), r.rows_start, (dim + 1) * sizeof(I)), 0);
        std::vector<I> col(nnz);
        std::vector<T> val(nnz);
        ASSERT_EQ(M::A::fill(op, h.h, rows_start.data(), col.data(), val.data()), ok);
        EXPECT_EQ(std::memcmp(col.data(), r.col_indx, nnz * sizeof(I)), 0);
        EXPECT_EQ(std::memcmp(val.data(), r.values, nnz * sizeof(T)), 0);

        // The stage function itself: 91 counts (null columns and values), 92 fills, one-based
        // result from zero-based operands.
        auto z = random_matrix<T, I>(15, 12, 0.3, 0, 9);
        handle_holder<M> hz(z);
        typename M::A::handle *zfull = nullptr;
        ASSERT_EQ(M::A::syrk(op, hz.h, &zfull), ok); // builds and caches the transposed record
        const auto &zr = *static_cast<typename M::A::record *>(hz.h->data);
        const auto &t = *hz.h->transposed;
        const C *tv = static_cast<const C *>(M::complex ? t.aux : t.values);
        C *v = reinterpret_cast<C *>(&v); // non-null garbage must come back null from stage 91
        I *ci = reinterpret_cast<I *>(&ci);
        I *rs = nullptr;
        ASSERT_EQ(M::A::stage(stage_count, op, zr.rows, zr.cols, 0, static_cast<const C *>(zr.values), zr.col_indx,
                              zr.rows_start, zr.rows_end, 0, tv, t.col_indx, t.rows_start, t.rows_end, 1, &v, &ci,
                              &rs),
                  0);
        EXPECT_EQ(v, nullptr);
        EXPECT_EQ(ci, nullptr);
        ASSERT_NE(rs, nullptr);
        EXPECT_EQ(rs[0], 1);
        EXPECT_EQ(rs[dim] - 1, result_of<M>(zfull).nnz);
        ASSERT_EQ(M::A::stage(stage_fill, op, zr.rows, zr.cols, 0, static_cast<const C *>(zr.values), zr.col_indx,
                              zr.rows_start, zr.rows_end, 0, tv, t.col_indx, t.rows_start, t.rows_end, 1, &v, &ci,
                              &rs),
                  0);
        for (I p = 0; p < rs[dim] - 1; ++p)
            ASSERT_EQ(ci[p], result_of<M>(zfull).col_indx[p] + 1);
        EXPECT_EQ(std::memcmp(v, result_of<M>(zfull).values, (rs[dim] - 1) * sizeof(T)), 0);
        zel_serv_free(v);
        zel_serv_free(ci);
        zel_serv_free(rs);
        M::A::destroy(zfull);
        M::A::destroy(full);
    }
}

// L·R with a right-hand row whose columns all lie left of the later chunks' first rows: its
// offset is its length and it adds nothing there.
TYPED_TEST(SparseSyrk, RightRowLeftOfChunkStart)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    auto L = random_matrix<T, I>(8, 5, 0.4, 0, 31);
    auto R = random_matrix<T, I>(5, 8, 0.4, 0, 32);
    // R's row 2 holds columns 0 and 1 only; every row of L references column 2.
    sparse<T, I> L2;
    L2.rows = 8;
    L2.cols = 5;
    for (I i = 0; i < 8; ++i) {
        bool has2 = false;
        for (I p = L.starts[i]; p < L.starts[i + 1]; ++p) {
            L2.indices.push_back(L.indices[p]);
            L2.values.push_back(L.values[p]);
            has2 = has2 || L.indices[p] == 2;
        }
        if (!has2) {
            L2.indices.push_back(2);
            L2.values.push_back(make_value<T>(0.5, 0.25));
        }
        std::sort(L2.indices.begin() + L2.starts.back(), L2.indices.end()); // values follow loosely
        L2.starts.push_back(static_cast<I>(L2.indices.size()));
    }
    sparse<T, I> R2 = R;
    R2.starts.assign(1, 0);
    R2.indices.clear();
    R2.values.clear();
    for (I k = 0; k < 5; ++k) {
        for (I p = R.starts[k]; p < R.starts[k + 1]; ++p)
            if (k != 2) {
                R2.indices.push_back(R.indices[p]);
                R2.values.push_back(R.values[p]);
            }
        if (k == 2)
            for (I j : {I(0), I(1)}) {
                R2.indices.push_back(j);
                R2.values.push_back(make_value<T>(1.5, -0.5));
            }
        R2.starts.push_back(static_cast<I>(R2.indices.size()));
    }
    const reference ref = upper_product(widened(L2), widened(R2), 8, 5);
    const auto c0 = initial_c<T>(8, 8, false, true, 1);
    auto c = c0;
    ASSERT_EQ(M::A::n_driver(to_c<C>(T(1)), to_c<C>(T(0)), 8, 5, 0, reinterpret_cast<const C *>(L2.values.data()),
                             L2.indices.data(), L2.starts.data(), L2.starts.data() + 1, 0,
                             reinterpret_cast<const C *>(R2.values.data()), R2.indices.data(), R2.starts.data(),
                             R2.starts.data() + 1, reinterpret_cast<C *>(c.data()), row_major, 8),
              0);
    expect_dense(c, c0, ref, 8, false, T(1), T(0));

    // Sparse result of the same pair (operation 10: L first, R second).
    C *v = nullptr;
    I *ci = nullptr, *rs = nullptr;
    ASSERT_EQ(M::A::stage(stage_full, op_n, 8, 5, 0, reinterpret_cast<const C *>(L2.values.data()), L2.indices.data(),
                          L2.starts.data(), L2.starts.data() + 1, 0,
                          reinterpret_cast<const C *>(R2.values.data()), R2.indices.data(), R2.starts.data(),
                          R2.starts.data() + 1, 0, &v, &ci, &rs),
              0);
    int64_t count = 0;
    for (int64_t i = 0; i < 8; ++i)
        for (int64_t j = i; j < 8; ++j)
            count += ref.pattern[i * 8 + j];
    ASSERT_EQ(rs[8], count);
    const T *tv = reinterpret_cast<const T *>(v);
    for (I i = 0; i < 8; ++i)
        for (I p = rs[i]; p < rs[i + 1]; ++p)
            EXPECT_NEAR(std::abs(widen(tv[p]) - ref.at(i, ci[p])), 0.0, tolerance<typename M::R>(ref.bound[i * 8 + ci[p]]));
    zel_serv_free(v);
    zel_serv_free(ci);
    zel_serv_free(rs);
}

TYPED_TEST(SparseSyrk, ZeroRowsAndEmptyPatterns)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    using C = typename M::C;
    for (I base : {I(0), I(1)}) {
        // No rows: nothing to do for A·Aᵀ, a result with the single offset `base`.
        sparse<T, I> none;
        none.rows = 0;
        none.cols = 4;
        none.index_base = base;
        none.starts = {base};
        handle_holder<M> h(none);
        T sentinel = make_value<T>(3.0, 1.0);
        ASSERT_EQ(M::A::syrkd(op_n, h.h, to_c<C>(T(1)), to_c<C>(T(0)), reinterpret_cast<C *>(&sentinel), row_major, I(1)), ok);
        EXPECT_EQ(widen(sentinel), cd(3.0, M::complex ? 1.0 : 0.0));
        typename M::A::handle *c = nullptr;
        ASSERT_EQ(M::A::syrk(op_n, h.h, &c), ok);
        EXPECT_EQ(result_of<M>(c).rows, 0);
        EXPECT_EQ(result_of<M>(c).rows_start[0], base);
        EXPECT_EQ(result_of<M>(c).nnz, 0);
        M::A::destroy(c);
        // Aᵀ·A of no rows: C = beta·C on the upper triangle, a 4×4 result without entries.
        auto c0 = initial_c<T>(4, 4, true, false, 2);
        auto cc = c0;
        ASSERT_EQ(M::A::syrkd(op_t, h.h, to_c<C>(T(1)), to_c<C>(T(0.5)), reinterpret_cast<C *>(cc.data()), col_major, I(4)), ok);
        expect_dense(cc, c0, syrk_reference(widened(none), 0, 4, 11), 4, true, T(1), T(0.5));
        ASSERT_EQ(M::A::syrk(op_t, h.h, &c), ok);
        ASSERT_EQ(result_of<M>(c).rows, 4);
        for (int i = 0; i <= 4; ++i)
            EXPECT_EQ(result_of<M>(c).rows_start[i], base);
        M::A::destroy(c);

        // Rows without any entry.
        sparse<T, I> empty;
        empty.rows = 5;
        empty.cols = 3;
        empty.index_base = base;
        empty.starts.assign(6, base);
        handle_holder<M> he(empty);
        for (int op : {op_n, op_c}) {
            ASSERT_EQ(M::A::syrk(op, he.h, &c), ok);
            EXPECT_EQ(result_of<M>(c).nnz, 0);
            EXPECT_EQ(result_of<M>(c).rows_start[result_of<M>(c).rows], base);
            M::A::destroy(c);
        }
    }
}

TYPED_TEST(SparseSyrk, BlockResultMatchesReference)
{
    using M = TypeParam;
    using T = typename M::T;
    using I = typename M::I;
    for (I block : {I(2), I(3)})
        for (I base : {I(0), I(1)}) {
            auto a = random_matrix<T, I>(6, 5, 0.3, base, 40 + block, base == 1, block);
            handle_holder<M> h(a);
            const auto d = widened(a);
            for (int op : {op_n, op_t}) {
                SCOPED_TRACE(::testing::Message() << "op " << op << " block " << block << " base " << base);
                typename M::A::handle *c = nullptr;
                ASSERT_EQ(M::A::syrk(op, h.h, &c), ok);
                EXPECT_EQ(c->format, ZEL_SPARSE_FORMAT_BSR);
                EXPECT_EQ(result_of<M>(c).block_size, block);
                EXPECT_EQ(result_of<M>(c).block_layout, base);
                expect_sparse<M>(c, syrk_reference(d, a.rows * block, a.cols * block, op, true), base, block);
                M::A::destroy(c);
            }
        }
}

// ---- real matrices ----

namespace {

// A Matrix Market file as a zero-based CSR matrix (rows in file order).
template <class T, class I> sparse<T, I> from_triplets(const zel::test::mm_triplets &t)
{
    std::vector<std::vector<std::pair<I, T>>> rows(t.rows);
    for (size_t e = 0; e < t.size(); ++e)
        rows[t.row[e]].push_back({I(t.col[e]), make_value<T>(t.value[e].real(), t.value[e].imag())});
    sparse<T, I> a;
    a.rows = I(t.rows);
    a.cols = I(t.cols);
    for (auto &row : rows) {
        for (auto &[j, v] : row) {
            a.indices.push_back(j);
            a.values.push_back(v);
        }
        a.starts.push_back(I(a.indices.size()));
    }
    return a;
}

template <class M> void check_real_matrix(const char *name)
{
    using T = typename M::T;
    using I = typename M::I;
    const std::string dir = zel::test::test_matrix_dir();
    if (dir.empty())
        GTEST_SKIP() << "no test matrices: set ZEL_TEST_MATRICES to the Matrix Market folder for " << name;
    auto a = from_triplets<T, I>(zel::test::read_matrix_market(dir + "/" + name));
    handle_holder<M> h(a);
    const auto d = widened(a);
    for (int op : {op_n, op_t}) {
        SCOPED_TRACE(::testing::Message() << name << " op " << op);
        const reference ref = syrk_reference(d, a.rows, a.cols, op);
        const int64_t m = ref.m;
        const auto c0 = initial_c<T>(m, m, op == op_t, true, 4);
        auto c = c0;
        ASSERT_EQ(M::A::syrkd(op, h.h, to_c<typename M::C>(T(1)), to_c<typename M::C>(T(0)),
                              reinterpret_cast<typename M::C *>(c.data()), op == op_t ? col_major : row_major, I(m)),
                  0);
        expect_dense(c, c0, ref, m, op == op_t, T(1), T(0));
        typename M::A::handle *s = nullptr;
        ASSERT_EQ(M::A::syrk(op, h.h, &s), ok);
        expect_sparse<M>(s, ref, 0, 1);
        M::A::destroy(s);
    }
}

} // namespace

// The sparse-result rows are ranked by vector compares where the processor has them and merged
// where it does not: the suite runs again in child processes held to AVX2 and to the baseline.
TEST(SparseSyrkIsa, EveryVariantPassesTheSameTests) { zel::test::expect_every_isa_variant_passes("ZEL_SPARSE_ISA", "SparseSyrk/*"); }

TEST(SparseSyrkMatrices, LpE226) { check_real_matrix<member<double, int32_t>>("lp_e226.mtx"); }
TEST(SparseSyrkMatrices, LpShare1b) { check_real_matrix<member<double, int64_t>>("lp_share1b.mtx"); }
TEST(SparseSyrkMatrices, Young1cComplex)
{
    check_real_matrix<member<std::complex<double>, int32_t>>("young1c.mtx");
    check_real_matrix<member<std::complex<double>, int64_t>>("young1c.mtx");
}
