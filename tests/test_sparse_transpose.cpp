// Copy and transpose of the sparse handle: transposed records against a dense reference,
// the kernel's parts, reuse of the cached record, complex values/aux, copies and conversions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <tuple>

#include "alloc_fault.hpp"
#include "mm_reader.hpp"
#include "test_sparse_support.hpp"

namespace {

using namespace sparse_test;
using namespace zel::test;


template <class P> class SparseTranspose : public ::testing::Test {};
TYPED_TEST_SUITE(SparseTranspose, all_members, member_names);

struct shape {
    int32_t format;
    int bs;
    int rows, cols;
};
const shape shapes[] = {{csr, 1, 9, 13}, {csc, 1, 11, 6},
                        {bsr, 1, 5, 8},  {bsr, 2, 6, 4},
                        {bsr, 3, 4, 5},  {csr, 1, 1, 1}};

template <class T> const T *values_of(const void *p) { return static_cast<const T *>(p); }
template <class T> T conj_of(T v)
{
    if constexpr (zel::is_complex_v<T>)
        return std::conj(v);
    else
        return v;
}

// The transposed record holds op(A) in A's format, sorted, with the documented fields.
template <class T, class I>
void expect_transposed(const typename api<T, I>::handle *h, const sparse<T, I> &a, int op, const T *tvalues)
{
    const record_of<T, I> &src = *static_cast<const record_of<T, I> *>(h->data);
    const record_of<T, I> &t = *h->transposed;
    EXPECT_EQ(t.rows, a.cols);
    EXPECT_EQ(t.cols, a.rows);
    EXPECT_EQ(t.index_base, a.index_base);
    EXPECT_EQ(t.block_size, a.block_size);
    EXPECT_EQ(t.block_layout, a.format == bsr ? src.block_layout : 0);
    EXPECT_EQ(t.sorted, 1);
    EXPECT_EQ(t.owns_arrays, 1);
    EXPECT_EQ(t.inplace_copy, 1);
    EXPECT_EQ(t.three_array, 1);
    EXPECT_EQ(t.rows_end, t.rows_start + 1);
    const I n_out = a.format == csc ? t.cols : t.rows;
    EXPECT_EQ(t.rows_start[0], a.index_base);
    EXPECT_EQ(t.nnz, t.rows_start[n_out] - a.index_base);
    EXPECT_EQ(t.nnz, static_cast<I>(a.indices.size()));
    EXPECT_TRUE(slices_increasing<I>(t.rows_start, t.rows_end, t.col_indx, n_out, t.index_base));
    ASSERT_NE(t.opt_record, nullptr);
    ASSERT_NE(t.opt_words, nullptr);
    EXPECT_EQ(t.opt_record->flag_a, 0);
    EXPECT_EQ(t.opt_record->flag_b, 1);
    EXPECT_EQ(t.opt_record->extra, nullptr);
    const auto *three = static_cast<void *const *>(t.opt_record->sub_three);
    const auto *four = static_cast<void *const *>(t.opt_record->sub_four);
    EXPECT_TRUE(std::all_of(three, three + 3, [](void *w) { return w == nullptr; }));
    EXPECT_TRUE(std::all_of(four, four + 4, [](void *w) { return w == nullptr; }));
    EXPECT_TRUE(std::all_of(t.opt_words->words, t.opt_words->words + 13, [](void *w) { return w == nullptr; }));

    const auto want = op_of(read_record<T>(a.format, src, values_of<T>(src.values)), op);
    EXPECT_EQ((read_record<T>(a.format, t, tvalues)), want);
}

TYPED_TEST(SparseTranspose, MatchesDenseOverFormatsBasesAndOperations)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(7);
    for (const shape &s : shapes)
        for (I base : {0, 1})
            for (int op : {op_t, op_c}) {
                SCOPED_TRACE(::testing::Message() << "format " << s.format << " bs " << s.bs << " base " << base
                                                  << " op " << op);
                auto a = random_sparse<T, I>(rng, s.format, s.rows, s.cols, s.bs, base, 0.35);
                handle_of<T, I> g(a);
                ASSERT_EQ(A::transpose(g.h, op), 0);
                ASSERT_NE(g.h->transposed, nullptr);
                const record_of<T, I> &t = *g.h->transposed;
                // Complex records keep op 11 values in values and op 12 values in aux.
                const bool in_aux = zel::is_complex_v<T> && op == op_c;
                EXPECT_EQ(in_aux ? t.values : t.aux, nullptr);
                expect_transposed<T, I>(g.h, a, op, values_of<T>(in_aux ? t.aux : t.values));
                // The caller's arrays are read, never replaced.
                EXPECT_EQ(g.record().rows_start, a.starts.data());
            }
}

TYPED_TEST(SparseTranspose, EmptyAndStructureOnlyMatrices)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(11);
    for (I base : {0, 1}) {
        auto empty = random_sparse<T, I>(rng, csr, 5, 7, 1, base, 0.0);
        handle_of<T, I> g(empty);
        ASSERT_EQ(A::transpose(g.h, op_t), 0);
        const record_of<T, I> &t = *g.h->transposed;
        EXPECT_EQ(t.nnz, 0);
        for (I j = 0; j <= 7; ++j)
            EXPECT_EQ(t.rows_start[j], base);

        auto pattern = random_sparse<T, I>(rng, bsr, 4, 6, 2, base, 0.5, false);
        handle_of<T, I> p(pattern);
        ASSERT_EQ(A::transpose(p.h, op_c), 0);
        EXPECT_EQ(p.h->transposed->values, nullptr);
        EXPECT_EQ(p.h->transposed->aux, nullptr);
        expect_transposed<T, I>(p.h, pattern, op_c, nullptr);
        // A later request has nothing to conjugate from and leaves both null.
        EXPECT_EQ(A::transpose(p.h, op_t), 0);
        EXPECT_EQ(p.h->transposed->values, nullptr);
    }
}

TYPED_TEST(SparseTranspose, FourArrayRecordWithGaps)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    // Rows 0..2 of a 3 x 4 matrix with unused slots between them, one-based.
    sparse<T, I> a;
    a.rows = 3;
    a.cols = 4;
    a.index_base = 1;
    a.starts = {1, 4, 5};
    a.ends = {3, 4, 8};
    a.indices = {2, 4, 99, 99, 1, 2, 3};
    a.values = {T(1), T(2), T(-7), T(-7), T(3), T(4), T(5)};
    handle_of<T, I> g(a);
    ASSERT_EQ(A::transpose(g.h, op_t), 0);
    const record_of<T, I> &t = *g.h->transposed;
    EXPECT_EQ(t.nnz, 5);
    EXPECT_EQ(std::vector<I>(t.rows_start, t.rows_start + 5), (std::vector<I>{1, 2, 4, 5, 6}));
    EXPECT_EQ(std::vector<I>(t.col_indx, t.col_indx + 5), (std::vector<I>{3, 1, 3, 3, 1}));
    const T *v = values_of<T>(t.values);
    EXPECT_EQ(std::vector<T>(v, v + 5), (std::vector<T>{T(3), T(1), T(4), T(5), T(2)}));
}

TYPED_TEST(SparseTranspose, KernelPartsGiveTheSameArrays)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(3);
    for (I bs : {1, 3})
        for (I base : {0, 1}) {
            auto a = random_sparse<T, I>(rng, bsr, 23, 17, bs, base, 0.3);
            // One long row spans several chunks and leaves empty parts behind it.
            const I n_in = a.rows, n_out = a.cols, nnz = static_cast<I>(a.indices.size());
            const size_t nv = a.values.size();
            auto run = [&](I nparts, std::vector<I> &offsets, std::vector<I> &indices, std::vector<T> &values) {
                offsets.assign(n_out + 1, -5);
                indices.assign(nnz, -5);
                values.assign(nv, T(-5));
                std::vector<I> work(size_t(nparts) * n_out, 0);
                return transpose_kernel(n_out, n_in, nnz, nparts, op_c, base, bs, a.starts.data(), a.starts.data() + 1,
                                   a.indices.data(), a.values.data(), offsets.data(), indices.data(), values.data(),
                                   work.data());
            };
            std::vector<I> o1, i1, on, in;
            std::vector<T> v1, vn;
            ASSERT_EQ(run(1, o1, i1, v1), 0);
            for (I nparts : {2, 3, 5, 23}) {
                ASSERT_EQ(run(nparts, on, in, vn), 0);
                EXPECT_EQ(on, o1) << nparts << " parts";
                EXPECT_EQ(in, i1) << nparts << " parts";
                EXPECT_EQ(vn, v1) << nparts << " parts";
            }
        }
}

// Wide, scattered patterns take the kernel's staged two-pass scatter when it has one part;
// several parts and a refused staging buffer take the direct one. All give the same arrays.
TYPED_TEST(SparseTranspose, KernelWideScatteredPatterns)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(29);
    const I n_in = 1500, n_out = 70001;
    for (I base : {0, 1})
        for (bool with_values : {true, false}) {
            sparse<T, I> a;
            a.starts.assign(1, base);
            std::uniform_int_distribution<int64_t> col(0, n_out - 1);
            for (I i = 0; i < n_in; ++i) {
                std::vector<I> row;
                for (int k = 0; k < (i % 7 == 0 ? 0 : 9); ++k)
                    row.push_back(static_cast<I>(col(rng)));
                std::sort(row.begin(), row.end());
                for (I j : row) {
                    a.indices.push_back(j + base);
                    if (with_values)
                        a.values.push_back(random_value<T>(rng));
                }
                a.starts.push_back(static_cast<I>(a.indices.size()) + base);
            }
            const I nnz = static_cast<I>(a.indices.size());
            auto run = [&](I nparts, bool refuse_staging, std::vector<I> &o, std::vector<I> &ix, std::vector<T> &v) {
                o.assign(n_out + 1, -3);
                ix.assign(nnz, -3);
                v.assign(a.values.size(), T(-3));
                std::vector<I> work(size_t(nparts) * n_out);
                allocator_probe probe;
                if (refuse_staging)
                    probe.fail_at(1); // the partition array is the first request
                const int status = transpose_kernel(n_out, n_in, nnz, nparts, op_c, base, 1, a.starts.data(),
                                               a.starts.data() + 1, a.indices.data(),
                                               with_values ? a.values.data() : nullptr, o.data(), ix.data(),
                                               with_values ? v.data() : nullptr, work.data());
                EXPECT_EQ(probe.live(), 0);
                return status;
            };
            std::vector<I> o1, i1, o2, i2, o3, i3;
            std::vector<T> v1, v2, v3;
            ASSERT_EQ(run(1, false, o1, i1, v1), 0);
            ASSERT_EQ(run(3, false, o2, i2, v2), 0);
            ASSERT_EQ(run(1, true, o3, i3, v3), 0);
            EXPECT_EQ(o1, o2);
            EXPECT_EQ(i1, i2);
            EXPECT_EQ(v1, v2);
            EXPECT_EQ(o1, o3);
            EXPECT_EQ(i1, i3);
            EXPECT_EQ(v1, v3);
            // The same rows in four-array form with two unused slots ahead of each row.
            std::vector<I> starts4, ends4, indices4;
            std::vector<T> values4;
            for (I i = 0; i < n_in; ++i) {
                indices4.insert(indices4.end(), 2, I(n_out + 7));
                if (with_values)
                    values4.insert(values4.end(), 2, T(99));
                starts4.push_back(static_cast<I>(indices4.size()) + base);
                for (I e = a.starts[i] - base; e < a.starts[i + 1] - base; ++e) {
                    indices4.push_back(a.indices[e]);
                    if (with_values)
                        values4.push_back(a.values[e]);
                }
                ends4.push_back(static_cast<I>(indices4.size()) + base);
            }
            std::vector<I> o4(n_out + 1), i4(nnz), work4(n_out);
            std::vector<T> v4(a.values.size());
            ASSERT_EQ(transpose_kernel(n_out, n_in, static_cast<I>(indices4.size()), 1, op_c, base, 1, starts4.data(),
                                  ends4.data(), indices4.data(), with_values ? values4.data() : nullptr, o4.data(),
                                  i4.data(), with_values ? v4.data() : nullptr, work4.data()),
                      0);
            EXPECT_EQ(o4, o1);
            EXPECT_EQ(i4, i1);
            EXPECT_EQ(v4, v1);
            // Against the definition: entry (i, j) of A is entry (j, i) of the result, conjugated.
            std::vector<I> next(o1.begin(), o1.end() - 1);
            bool all_found = true;
            for (I i = 0; i < n_in && all_found; ++i)
                for (I e = a.starts[i] - base; e < a.starts[i + 1] - base; ++e) {
                    const I q = next[a.indices[e] - base]++ - base;
                    all_found = all_found && i1[q] == i + base &&
                                (!with_values || v1[q] == (zel::is_complex_v<T> ? conj_of(a.values[e]) : a.values[e]));
                }
            EXPECT_TRUE(all_found);
        }
}

// A structurally symmetric, sorted pattern moves only its values; any flaw in the symmetry,
// the order or the packing sends it back to the general scatter. Every case must give the
// arrays of the several-part path (which never takes the shortcut) and the definition.
template <class T, class I> struct symmetric_case {
    std::vector<std::vector<I>> rows; // zero-based columns, in stored order
    I n = 0;
};

template <class T, class I> symmetric_case<T, I> banded_symmetric(I n, I bandwidth, std::mt19937_64 &rng)
{
    symmetric_case<T, I> c;
    c.n = n;
    c.rows.resize(n);
    std::bernoulli_distribution keep(0.6);
    for (I i = 0; i < n; ++i) {
        if (i % 5 != 3) // some rows (and so columns) stay empty, the diagonal too
            c.rows[i].push_back(i);
        for (I j = i + 1; j < std::min<I>(n, i + bandwidth + 1); ++j)
            if (i % 5 != 3 && j % 5 != 3 && keep(rng))
                c.rows[i].push_back(j), c.rows[j].push_back(i);
    }
    for (auto &r : c.rows)
        std::sort(r.begin(), r.end());
    return c;
}

template <class T, class I>
void expect_as_general(const symmetric_case<T, I> &c, I base, I lead, bool with_values, int op, std::mt19937_64 &rng,
                       const char *what)
{
    // Packed rows after `lead` unused slots, values unsymmetric.
    std::vector<I> starts{I(lead + base)}, indices(lead, I(-7));
    std::vector<T> values(lead, T(-7));
    for (const auto &r : c.rows) {
        for (I j : r)
            indices.push_back(j + base), values.push_back(random_value<T>(rng));
        starts.push_back(static_cast<I>(indices.size()) + base);
    }
    const I n = c.n, nnz = static_cast<I>(indices.size());
    auto run = [&](I nparts, std::vector<I> &o, std::vector<I> &ix, std::vector<T> &v) {
        o.assign(n + 1, -3);
        ix.assign(nnz, -3);
        v.assign(values.size(), T(-3));
        std::vector<I> work(size_t(nparts) * n, 11);
        return transpose_kernel(n, n, nnz, nparts, op, base, 1, starts.data(), starts.data() + 1, indices.data(),
                                with_values ? values.data() : nullptr, o.data(), ix.data(),
                                with_values ? v.data() : nullptr, work.data());
    };
    std::vector<I> o1, i1, o2, i2;
    std::vector<T> v1, v2;
    ASSERT_EQ(run(1, o1, i1, v1), 0) << what;
    ASSERT_EQ(run(2, o2, i2, v2), 0) << what;
    EXPECT_EQ(o1, o2) << what;
    EXPECT_EQ(i1, i2) << what;
    EXPECT_EQ(v1, v2) << what;
    // Entry (i, j) of A is entry (j, i) of the result, in row order, conjugated for op 12.
    std::vector<I> next(o1.begin(), o1.end() - 1);
    bool all_found = o1[0] == base && o1[n] == nnz - lead + base;
    for (I i = 0; i < n && all_found; ++i)
        for (I e = starts[i] - base; e < starts[i + 1] - base; ++e) {
            const I q = next[indices[e] - base]++ - base;
            const T want = op == op_c ? conj_of(values[e]) : values[e];
            all_found = all_found && i1[q] == i + base && (!with_values || v1[q] == want);
        }
    EXPECT_TRUE(all_found) << what;
}

TYPED_TEST(SparseTranspose, KernelSymmetricPatternsAsTheGeneralPath)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    std::mt19937_64 rng(41);
    for (I base : {0, 1})
        for (bool with_values : {true, false})
            for (int op : {op_t, op_c}) {
                const auto c = banded_symmetric<T, I>(37, 6, rng);
                expect_as_general<T, I>(c, base, 0, with_values, op, rng, "symmetric");
                expect_as_general<T, I>(c, base, 3, with_values, op, rng, "symmetric after unused slots");
                // One entry more or less, in the first, a middle and the last row.
                for (I i : {I(0), I(17), I(36)}) {
                    auto broken = c;
                    auto &r = broken.rows[i];
                    const I j = i == 36 ? I(2) : I(36);
                    if (std::find(r.begin(), r.end(), j) == r.end())
                        r.insert(std::lower_bound(r.begin(), r.end(), j), j);
                    else
                        r.erase(std::find(r.begin(), r.end(), j));
                    expect_as_general<T, I>(broken, base, 0, with_values, op, rng, "one entry unmatched");
                    auto removed = c;
                    if (!removed.rows[i].empty())
                        removed.rows[i].pop_back();
                    expect_as_general<T, I>(removed, base, 0, with_values, op, rng, "last entry of a row dropped");
                }
                // Symmetric but one row out of order; then a pair stored twice each way.
                auto unsorted = c;
                std::reverse(unsorted.rows[17].begin(), unsorted.rows[17].end());
                expect_as_general<T, I>(unsorted, base, 0, with_values, op, rng, "row out of order");
                auto twice = c;
                for (auto [i, j] : {std::pair<I, I>{4, 5}, std::pair<I, I>{5, 4}})
                    twice.rows[i].insert(std::lower_bound(twice.rows[i].begin(), twice.rows[i].end(), j), 2, j);
                expect_as_general<T, I>(twice, base, 0, with_values, op, rng, "pair stored twice");
                // A 1 x 1 and a diagonal-only pattern.
                symmetric_case<T, I> one{{{0}}, 1};
                expect_as_general<T, I>(one, base, 0, with_values, op, rng, "1 x 1");
                symmetric_case<T, I> diagonal{{{0}, {}, {2}}, 3};
                expect_as_general<T, I>(diagonal, base, 0, with_values, op, rng, "diagonal with a gap");
                // Every row holds as many entries as its column, but the partners are crossed.
                symmetric_case<T, I> crossed{{{0, 2}, {1, 3}, {1, 2}, {0, 3}}, 4};
                expect_as_general<T, I>(crossed, base, 0, with_values, op, rng, "partners crossed");
                auto swapped = c; // the same in the band: two lower entries trade rows
                for (I j = 20; j < 36; ++j)
                    if (!swapped.rows[j].empty() && swapped.rows[j][0] < j && !swapped.rows[j + 1].empty() &&
                        swapped.rows[j + 1][0] < swapped.rows[j][0]) {
                        std::swap(swapped.rows[j][0], swapped.rows[j + 1][0]);
                        break;
                    }
                expect_as_general<T, I>(swapped, base, 0, with_values, op, rng, "lower entries traded");
            }
}

TYPED_TEST(SparseTranspose, KernelWithOneLongRowAndEmptyParts)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    // Row 1 holds most entries: the boundaries it jumps over stay empty parts.
    const std::vector<I> starts = {0, 1, 9, 10, 10, 12};
    const std::vector<I> indices = {3, 0, 1, 2, 3, 4, 5, 6, 7, 7, 0, 7};
    std::vector<T> values(indices.size());
    for (size_t k = 0; k < values.size(); ++k)
        values[k] = T(float(k + 1));
    std::vector<I> o1(9), i1(12), on(9), in(12), w1(8), wn(4 * 8);
    std::vector<T> v1(12), vn(12);
    ASSERT_EQ(transpose_kernel(8, 5, 12, 1, op_t, 0, 1, starts.data(), starts.data() + 1, indices.data(), values.data(),
                          o1.data(), i1.data(), v1.data(), w1.data()),
              0);
    ASSERT_EQ(transpose_kernel(8, 5, 12, 4, op_t, 0, 1, starts.data(), starts.data() + 1, indices.data(), values.data(),
                          on.data(), in.data(), vn.data(), wn.data()),
              0);
    EXPECT_EQ(o1, (std::vector<I>{0, 2, 3, 4, 6, 7, 8, 9, 12}));
    EXPECT_EQ(i1, (std::vector<I>{1, 4, 1, 1, 0, 1, 1, 1, 1, 1, 2, 4}));
    EXPECT_EQ(on, o1);
    EXPECT_EQ(in, i1);
    EXPECT_EQ(vn, v1);
}

TYPED_TEST(SparseTranspose, BuiltOnceAndReused)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(5);
    auto a = random_sparse<T, I>(rng, csr, 12, 9, 1, 0, 0.3);
    handle_of<T, I> g(a);
    ASSERT_EQ(A::transpose(g.h, op_t), 0);
    record_of<T, I> *first = g.h->transposed;
    const record_of<T, I> saved = *first;
    allocator_probe probe;
    EXPECT_EQ(A::transpose(g.h, op_t), 0);
    EXPECT_EQ(A::transpose(g.h, op_n), 0);
    if constexpr (!zel::is_complex_v<T>) {
        EXPECT_EQ(A::transpose(g.h, op_c), 0);
    }
    EXPECT_EQ(probe.requests(), 0);
    EXPECT_EQ(g.h->transposed, first);
    EXPECT_EQ(std::memcmp(first, &saved, sizeof saved), 0);
}

TYPED_TEST(SparseTranspose, ComplexValuesAndAuxShareOneStructure)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    if constexpr (!zel::is_complex_v<T>) {
        // Real members: operation 12 is operation 11.
        std::mt19937_64 rng(9);
        auto a = random_sparse<T, I>(rng, bsr, 5, 4, 2, 1, 0.5);
        handle_of<T, I> g(a);
        ASSERT_EQ(A::transpose(g.h, op_c), 0);
        EXPECT_EQ(g.h->transposed->aux, nullptr);
        expect_transposed<T, I>(g.h, a, op_t, values_of<T>(g.h->transposed->values));
    } else {
        std::mt19937_64 rng(9);
        for (int first : {op_c, op_t}) {
            const int second = first == op_c ? op_t : op_c;
            auto a = random_sparse<T, I>(rng, bsr, 5, 4, 2, 1, 0.5);
            handle_of<T, I> g(a);
            ASSERT_EQ(A::transpose(g.h, first), 0);
            record_of<T, I> *t = g.h->transposed;
            const I *starts = t->rows_start, *indices = t->col_indx;
            void *kept = first == op_t ? t->values : t->aux;
            {
                allocator_probe probe;
                ASSERT_EQ(A::transpose(g.h, second), 0);
                EXPECT_EQ(probe.requests(), 1); // the added value array only
                EXPECT_EQ(A::transpose(g.h, second), 0);
                EXPECT_EQ(A::transpose(g.h, op_n), 0);
                EXPECT_EQ(probe.requests(), 1);
            }
            EXPECT_EQ(g.h->transposed, t);
            EXPECT_EQ(t->rows_start, starts);
            EXPECT_EQ(t->col_indx, indices);
            EXPECT_EQ(first == op_t ? t->values : t->aux, kept);
            ASSERT_NE(t->values, nullptr);
            ASSERT_NE(t->aux, nullptr);
            expect_transposed<T, I>(g.h, a, op_t, values_of<T>(t->values));
            expect_transposed<T, I>(g.h, a, op_c, values_of<T>(t->aux));
        }
    }
}

TYPED_TEST(SparseTranspose, CopyMakesOwnedThreeArrayRecords)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(13);
    for (const shape &s : shapes) {
        auto a = random_sparse<T, I>(rng, s.format, s.rows, s.cols, s.bs, 1, 0.4);
        handle_of<T, I> g(a);
        auto *r = static_cast<record_of<T, I> *>(g.h->data);
        const auto before = read_record<T>(s.format, *r, values_of<T>(r->values));
        r->aux = a.values.data(); // a caller's pointer that the copy must drop
        for (int round = 0; round < 2; ++round) { // the second copies the library's own arrays
            ASSERT_EQ(A::copy_arrays(g.h), 0);
            EXPECT_EQ(r->owns_arrays, 1);
            EXPECT_EQ(r->three_array, 1);
            EXPECT_EQ(r->rows_end, r->rows_start + 1);
            EXPECT_EQ(r->aux, nullptr);
            EXPECT_NE(r->rows_start, a.starts.data());
            EXPECT_NE(r->col_indx, a.indices.data());
            EXPECT_EQ(r->values == nullptr, a.values.empty());
            if (!a.values.empty()) {
                EXPECT_NE(r->values, static_cast<void *>(a.values.data()));
            }
            EXPECT_EQ(reinterpret_cast<uintptr_t>(r->rows_start) % 4096, 0u);
            EXPECT_EQ((read_record<T>(s.format, *r, values_of<T>(r->values))), before);
            EXPECT_EQ(std::vector<I>(r->col_indx, r->col_indx + a.indices.size()), a.indices);
        }
    }
    // A structure without values stays without values.
    auto p = random_sparse<T, I>(rng, csr, 6, 6, 1, 0, 0.4, false);
    handle_of<T, I> g(p);
    ASSERT_EQ(A::copy_arrays(g.h), 0);
    EXPECT_EQ(g.record().values, nullptr);
}

TYPED_TEST(SparseTranspose, CopyAndConversionOfFourArrayRecords)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    for (bool through_copy : {true, false}) {
        sparse<T, I> a;
        a.format = csc;
        a.rows = 4;
        a.cols = 3;
        a.starts = {4, 0, 6};
        a.ends = {6, 2, 6};
        a.indices = {0, 3, 9, 9, 1, 2};
        a.values = {T(1), T(2), T(-9), T(-9), T(3), T(4)};
        // Creation wants columns in order; the setter takes them as they come.
        const auto valid = compress<T, I>(read(a), csc, I(0));
        handle_of<T, I> g(valid);
        ASSERT_EQ(A::set_csc_arrays(g.h, 0, 0, 0, 0, a.starts.data(), a.ends.data(), a.indices.data(), a.c_values()), ok);
        auto *r = static_cast<record_of<T, I> *>(g.h->data);
        const auto before = read_record<T>(a.format, *r, values_of<T>(r->values));
        ASSERT_EQ(through_copy ? A::copy_arrays(g.h) : A::to_three_arrays(g.h), 0);
        EXPECT_EQ(r->owns_arrays, 1);
        EXPECT_EQ(r->three_array, 1);
        EXPECT_EQ(r->rows_end, r->rows_start + 1);
        EXPECT_EQ(r->nnz, 4);
        EXPECT_EQ(std::vector<I>(r->rows_start, r->rows_start + 4), (std::vector<I>{0, 2, 4, 4}));
        EXPECT_EQ(std::vector<I>(r->col_indx, r->col_indx + 4), (std::vector<I>{1, 2, 0, 3}));
        EXPECT_EQ((read_record<T>(a.format, *r, values_of<T>(r->values))), before);
    }
}

TYPED_TEST(SparseTranspose, OutOfPlaceConversions)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(17);
    for (const shape &s : shapes)
        for (int op : {op_n, op_t, op_c}) {
            SCOPED_TRACE(::testing::Message() << "format " << s.format << " bs " << s.bs << " op " << op);
            auto a = random_sparse<T, I>(rng, s.format, s.rows, s.cols, s.bs, 1, 0.4);
            handle_of<T, I> g(a);
            const auto *r = static_cast<const record_of<T, I> *>(g.h->data);
            const auto dense = read_record<T>(s.format, *r, values_of<T>(r->values));
            const auto want = op_of(dense, op);

            handle_of<T, I> made;
            ASSERT_EQ(A::create_transposed(g.h, op, &made.h), 0);
            const auto *m = static_cast<const record_of<T, I> *>(made.h->data);
            EXPECT_EQ(made.h->format, s.format);
            EXPECT_EQ(made.h->data_type, g.h->data_type);
            EXPECT_EQ(m->owns_arrays, 1);
            EXPECT_EQ(m->three_array, 1);
            EXPECT_EQ(made.h->rows, op == op_n ? g.h->rows : g.h->cols);
            EXPECT_EQ((read_record<T>(s.format, *m, values_of<T>(m->values))), want);

            ASSERT_EQ(A::transpose(g.h, op_t), 0); // a cached transpose goes stale below
            ASSERT_EQ(A::out_of_place(g.h, op), 0);
            EXPECT_EQ(g.h->transposed == nullptr, op != op_n);
            EXPECT_EQ(r->owns_arrays, 1);
            EXPECT_EQ(r->rows, m->rows);
            EXPECT_EQ(r->nnz, m->nnz);
            EXPECT_EQ(g.h->cols, made.h->cols);
            EXPECT_EQ((read_record<T>(s.format, *r, values_of<T>(r->values))), want);
        }
}

TYPED_TEST(SparseTranspose, BsrBlocksChangeOrder)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    std::mt19937_64 rng(19);
    auto a = random_sparse<T, I>(rng, bsr, 4, 5, 3, 0, 0.5);
    handle_of<T, I> g(a);
    auto *r = static_cast<record_of<T, I> *>(g.h->data);
    ASSERT_EQ(A::bsr_transpose(g.h), 0);
    EXPECT_EQ(r->block_layout, 1);
    EXPECT_EQ(r->owns_arrays, 1);
    const T *v = values_of<T>(r->values);
    for (size_t b = 0; b < a.indices.size(); ++b)
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                EXPECT_EQ(v[b * 9 + i * 3 + j], a.values[b * 9 + j * 3 + i]);
    const auto scalar = random_sparse<T, I>(rng, csr, 3, 3, 1, 0, 0.5);
    handle_of<T, I> c(scalar);
    EXPECT_EQ(A::bsr_transpose(c.h), not_supported);
}

TEST(SparseTransposeDispatch, SwitchesOnDataType)
{
    std::mt19937_64 rng(23);
    auto d = random_sparse<double, int32_t>(rng, csr, 6, 5, 1, 0, 0.4);
    auto z = random_sparse<std::complex<double>, int64_t>(rng, csc, 6, 5, 1, 1, 0.4);
    handle_of<double, int32_t> hd(d);
    handle_of<std::complex<double>, int64_t> hz(z);
    ASSERT_EQ(zel_sparse_transposeMatrix_i4(hd.h), 0);
    ASSERT_EQ(zel_sparse_transposeMatrix_i8(hz.h), 0);
    expect_transposed<double, int32_t>(hd.h, d, op_t, values_of<double>(hd.h->transposed->values));
    expect_transposed<std::complex<double>, int64_t>(
        hz.h, z, op_t, values_of<std::complex<double>>(hz.h->transposed->values));

    // A float matrix read as double would give other numbers: the letter follows data_type.
    auto s = random_sparse<float, int32_t>(rng, csr, 4, 4, 1, 0, 0.6);
    handle_of<float, int32_t> hs(s);
    ASSERT_EQ(zel_sparse_transposeMatrix_i4(hs.h), 0);
    expect_transposed<float, int32_t>(hs.h, s, op_t, values_of<float>(hs.h->transposed->values));
    auto c = random_sparse<std::complex<float>, int64_t>(rng, csr, 4, 4, 1, 0, 0.6);
    handle_of<std::complex<float>, int64_t> hc(c);
    ASSERT_EQ(zel_sparse_transposeMatrix_i8(hc.h), 0);
    expect_transposed<std::complex<float>, int64_t>(hc.h, c, op_t,
                                                    values_of<std::complex<float>>(hc.h->transposed->values));

    handle_of<double, int32_t> fresh(d);
    fresh.h->data_type = 4;
    EXPECT_EQ(zel_sparse_transposeMatrix_i4(fresh.h), not_supported);
    EXPECT_EQ(fresh.h->transposed, nullptr);
    fresh.h->data_type = data_type_code<double>;
}

// Builds CSR arrays of a triplet list (duplicates kept in file order).
template <class I>
sparse<double, I> csr_of(const mm_triplets &m)
{
    sparse<double, I> a;
    a.rows = static_cast<I>(m.rows);
    a.cols = static_cast<I>(m.cols);
    a.starts.assign(m.rows + 1, 0);
    for (int64_t r : m.row)
        ++a.starts[r + 1];
    for (int64_t i = 0; i < m.rows; ++i)
        a.starts[i + 1] += a.starts[i];
    std::vector<I> next(a.starts.begin(), a.starts.end() - 1);
    a.indices.resize(m.size());
    a.values.resize(m.size());
    for (size_t k = 0; k < m.size(); ++k) {
        const I at = next[m.row[k]]++;
        a.indices[at] = static_cast<I>(m.col[k]);
        a.values[at] = m.value[k].real();
    }
    return a;
}

TEST(SparseTransposeMatrices, RoundTripsOnRealMatrices)
{
    const auto files = test_matrix_files();
    if (files.empty())
        GTEST_SKIP() << "no test matrices: set ZEL_TEST_MATRICES to the folder of the .mtx files";
    int checked = 0;
    for (const auto &path : files) {
        const mm_triplets m = read_matrix_market(path);
        if (m.is_complex())
            continue;
        SCOPED_TRACE(path);
        auto a = csr_of<int64_t>(m);
        handle_of<double, int64_t> g(a);
        ASSERT_EQ(zel_sparse_d_transposeMatrix_i8(g.h, op_t), 0);
        // A handle over the transposed record, transposed again.
        const record_of<double, int64_t> &t = *g.h->transposed;
        sparse<double, int64_t> at;
        at.rows = t.rows;
        at.cols = t.cols;
        at.starts.assign(t.rows_start, t.rows_start + t.rows + 1);
        at.indices.assign(t.col_indx, t.col_indx + t.nnz);
        at.values.assign(values_of<double>(t.values), values_of<double>(t.values) + t.nnz);
        handle_of<double, int64_t> h(at);
        ASSERT_EQ(zel_sparse_d_transposeMatrix_i8(h.h, op_t), 0);
        const record_of<double, int64_t> &back = *h.h->transposed;
        // A^T^T is A with each row's entries in increasing column order (stable for ties).
        std::vector<std::tuple<int64_t, int64_t, size_t>> order;
        for (int64_t i = 0; i < a.rows; ++i)
            for (int64_t e = a.starts[i]; e < a.starts[i + 1]; ++e)
                order.emplace_back(i, a.indices[e], e);
        std::sort(order.begin(), order.end());
        ASSERT_EQ(back.nnz, static_cast<int64_t>(order.size()));
        EXPECT_EQ(std::vector<int64_t>(back.rows_start, back.rows_start + a.rows + 1), a.starts);
        for (size_t k = 0; k < order.size(); ++k) {
            ASSERT_EQ(back.col_indx[k], std::get<1>(order[k])) << "entry " << k;
            ASSERT_EQ(values_of<double>(back.values)[k], a.values[std::get<2>(order[k])]) << "entry " << k;
        }
        ++checked;
    }
    EXPECT_GT(checked, 0);
}

// The reader expands stored triangles and converts to 0-based triplets; it refuses what it
// cannot read.
TEST(MatrixMarketReader, ExpandsSymmetriesAndRefusesBadFiles)
{
    const auto dir = std::filesystem::temp_directory_path();
    auto write = [&](const char *name, const char *text) {
        const auto path = (dir / name).string();
        std::ofstream(path) << text;
        return path;
    };
    auto sym = read_matrix_market(write("zel_mm_sym.mtx", "%%MatrixMarket matrix coordinate real symmetric\n"
                                                          "% comment\n\n  3 3 3\n1 1 2.5\n3 1 -1\n3 2 4e-1\n"));
    EXPECT_EQ(sym.rows, 3);
    EXPECT_EQ(sym.row, (std::vector<int64_t>{0, 2, 0, 2, 1}));
    EXPECT_EQ(sym.col, (std::vector<int64_t>{0, 0, 2, 1, 2}));
    EXPECT_EQ(sym.value[2], std::complex<double>(-1.0));
    EXPECT_EQ(sym.value[4], std::complex<double>(0.4));

    auto skew = read_matrix_market(write("zel_mm_skew.mtx", "%%MatrixMarket matrix coordinate integer skew-symmetric\n"
                                                            "2 2 1\n2 1 7\n"));
    EXPECT_EQ(skew.value, (std::vector<std::complex<double>>{7.0, -7.0}));
    auto herm = read_matrix_market(write("zel_mm_herm.mtx", "%%MatrixMarket matrix coordinate complex hermitian\n"
                                                            "2 2 2\n1 1 3 0\n2 1 1 -2\n"));
    EXPECT_TRUE(herm.is_complex());
    EXPECT_EQ(herm.value, (std::vector<std::complex<double>>{{3, 0}, {1, -2}, {1, 2}}));
    auto pattern = read_matrix_market(write("zel_mm_pat.mtx", "%%MatrixMarket matrix coordinate pattern general\n"
                                                              "2 3 2\n1 3\n2 2\n"));
    EXPECT_EQ(pattern.cols, 3);
    EXPECT_EQ(pattern.col, (std::vector<int64_t>{2, 1}));
    EXPECT_EQ(pattern.value, (std::vector<std::complex<double>>{1.0, 1.0}));

    const char *bad[] = {"%%MatrixMarket matrix array real general\n2 2\n1\n2\n3\n4\n",
                         "%%MatrixMarket matrix coordinate real general\n2 2 2\n1 1 1\n",
                         "%%MatrixMarket matrix coordinate real general\n2 2 1\n3 1 1\n",
                         "%%MatrixMarket matrix coordinate real general\n2 2 1\n1 1\n",
                         "%%MatrixMarket matrix coordinate quaternion general\n1 1 0\n"};
    for (const char *text : bad)
        EXPECT_THROW(read_matrix_market(write("zel_mm_bad.mtx", text)), std::runtime_error) << text;
    EXPECT_THROW(read_matrix_market((dir / "zel_mm_missing.mtx").string()), std::runtime_error);
    for (const char *name : {"zel_mm_sym.mtx", "zel_mm_skew.mtx", "zel_mm_herm.mtx", "zel_mm_pat.mtx", "zel_mm_bad.mtx"})
        std::filesystem::remove(dir / name);
}

} // namespace
