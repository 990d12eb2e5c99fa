// The partitioned one-right-hand-side sweeps (fwd/bwd/blkslv_omp_mic), their nrhs forms,
// perm_sol and the blkslv_tl kernels through their exported names, in every family: against
// the long-double reference of the blkslv_ll tests, with the forward kernel's split of the
// updates between x and the outside accumulator, and the failure paths.
#include "alloc_fault.hpp"
#include "onerhs_support.hpp"

using namespace onerhs_test;

namespace {

template <class P> struct OneRhsSweeps : ::testing::Test {};
TYPED_TEST_SUITE(OneRhsSweeps, families, family_names);

// A factor kind as the omp_mic flags name it, and the reference stem it must follow.
struct flagged {
    stem s;
    int64_t matrix_kind, plain, unsym, transposed, bk_routine;
};
template <class T> std::vector<flagged> flag_cases()
{
    const bool cx = zel::is_complex_v<T>;
    std::vector<flagged> c{{{"chol", kind::chol, false, cx}, 0, 0, 0, 0, cx ? 0 : 1},
                           {{"lu", kind::lu, false, false}, 0, 0, 1, 0, 1},
                           {{"lu_t", kind::lu_t, false, false}, 0, 0, 1, 1, 1},
                           {{"di", kind::di, false, false}, 2, 1, 0, 0, 1},
                           {{"bk", kind::bk, false, false}, 2, 0, 0, 0, 1}};
    if (cx) {
        c.push_back({{"di_herm", kind::di, false, true}, 2, 1, 0, 0, 0});
        c.push_back({{"bk_herm", kind::bk, false, true}, 2, 0, 0, 0, 0});
    }
    return c;
}

// The members of one family on one factor, with one set of flags.
template <class T, class I> struct caller {
    using C = typename family<T, I>::c_type;
    const passed<T, I> &p;
    const flagged &fl;
    const sweep_members<C, I> &m = sweeps<T, I>::m;

    C *c(std::vector<T> &v) const { return v.empty() ? nullptr : reinterpret_cast<C *>(v.data()); }
    bool variable() const { return p.f.bs == 0; }
    I bs() const { return I(p.f.bs > 0 ? p.f.bs : 1); }
    // The factor's arrays as the block members take them (scalar ones when bs < 0).
    const I *sp() const { return p.f.bs >= 0 ? p.b_super.data() : p.super_ptr.data(); }
    const I *cp() const { return p.f.bs >= 0 ? p.b_col.data() : p.col_ptr.data(); }
    const I *rp() const { return p.f.bs >= 0 ? p.b_row_ptr.data() : p.row_ptr.data(); }
    const I *ri() const { return p.f.bs >= 0 ? p.b_rows.data() : p.row_index.data(); }
    const I *ucp() const { return ptr_or_null(p.f.bs >= 0 ? p.b_ucol : p.u_col_ptr); }
    I n() const { return I(p.f.bs >= 0 ? p.f.nb : p.f.n); }
    const I *rowp() const { return ptr_or_null(p.row_pivots); }
    const I *colp() const { return ptr_or_null(p.col_pivots); }

    I fwd(std::vector<T> &x, std::vector<T> &outside, std::vector<T> &work, int64_t first, int64_t last,
          int64_t parts) const
    {
        I info = -7;
        if (variable())
            m.fwd_v(n(), p.start.data(), I(first), I(last), sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(),
                    colp(), c(x), c(outside), c(work), I(fl.matrix_kind), I(fl.plain), I(fl.unsym), I(fl.transposed),
                    I(parts), I(fl.bk_routine), &info);
        else
            m.fwd(n(), bs(), I(first), I(last), sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(), colp(), c(x),
                  c(outside), c(work), I(fl.matrix_kind), I(fl.plain), I(fl.unsym), I(fl.transposed), I(parts),
                  I(fl.bk_routine), &info);
        return info;
    }
    I bwd(std::vector<T> &x, int64_t first, int64_t last) const
    {
        I error = -7;
        if (variable())
            m.bwd_v(n(), p.start.data(), I(first), I(last), sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(),
                    colp(), c(x), I(fl.matrix_kind), I(fl.plain), I(fl.unsym), I(fl.transposed), I(fl.bk_routine),
                    &error);
        else
            m.bwd(n(), bs(), I(first), I(last), sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(), colp(), c(x),
                  I(fl.matrix_kind), I(fl.plain), I(fl.unsym), I(fl.transposed), I(fl.bk_routine), &error);
        return error;
    }
    I blk(std::vector<T> &x, int64_t parts, int64_t step) const
    {
        I error = -7;
        if (variable())
            m.blk_v(n(), p.start.data(), I(p.f.nsuper), sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(), colp(),
                    c(x), I(fl.matrix_kind), I(fl.plain), I(fl.unsym), I(fl.transposed), I(parts), I(fl.bk_routine),
                    I(step), &error);
        else
            m.blk(n(), bs(), I(p.f.nsuper), sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(), colp(), c(x),
                  I(fl.matrix_kind), I(fl.plain), I(fl.unsym), I(fl.transposed), I(parts), I(fl.bk_routine), I(step),
                  &error);
        return error;
    }
    // fwd_nrhs / bwd_nrhs in the factor's geometry on nrhs columns of leading dimension ld.
    I nrhs(bool backward, std::vector<T> &x, int64_t k, int64_t ld) const
    {
        I error = -7;
        const I a = I(fl.matrix_kind), b = I(fl.plain), u = I(fl.unsym), t = I(fl.transposed), r = I(fl.bk_routine);
        const I ns = I(p.f.nsuper);
        if (p.f.bs < 0)
            (backward ? m.bwd_nrhs : m.fwd_nrhs)(n(), ns, sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(), rowp(), colp(),
                                                 I(k), c(x), I(ld), a, b, u, t, r, &error);
        else if (variable())
            (backward ? m.bwd_nrhs_vbsr : m.fwd_nrhs_vbsr)(n(), p.start.data(), ns, sp(), cp(), rp(), ri(), p.l(),
                                                           ucp(), p.u(), rowp(), colp(), I(k), c(x), I(ld), a, b, u,
                                                           t, r, &error);
        else
            (backward ? m.bwd_nrhs_bsr : m.fwd_nrhs_bsr)(n(), bs(), ns, sp(), cp(), rp(), ri(), p.l(), ucp(), p.u(),
                                                         rowp(), colp(), I(k), c(x), I(ld), a, b, u, t, r, &error);
        return error;
    }
};

// The factors each case runs on: scalar entries, bs = 2 and variable blocks.
template <class T> std::vector<factor<T>> factors_for(kind k, uint64_t seed)
{
    std::vector<int64_t> sizes;
    for (int64_t i = 0; i < 24; ++i)
        sizes.push_back(1 + (i * 5) % 3);
    factor<T> scalar = block_factor<T>({1, 2, 3, 4, 5, 19, 20, 1, 3}, std::vector<int64_t>(58, 1), true, k, seed);
    scalar.bs = -1; // its scalar arrays
    return {scalar, block_factor<T>({1, 2, 3, 6, 1, 2}, std::vector<int64_t>(15, 2), true, k, seed + 1),
            block_factor<T>({2, 1, 5, 3, 6, 1, 4, 2}, sizes, false, k, seed + 2)};
}

TYPED_TEST(OneRhsSweeps, OmpSweepsFollowTheReference)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const flagged &fl : flag_cases<T>())
        for (const factor<T> &f : factors_for<T>(fl.s.k, 40)) {
            SCOPED_TRACE(std::string(fl.s.name) + " bs " + std::to_string(f.bs));
            const passed<T, I> p(f);
            const caller<T, I> call{p, fl};
            const reference<T> ref{f, fl.s};
            const auto b = random_rhs<T>(f.n, 5);
            std::vector<T> x = b, outside(size_t(f.n), T(7)), work(size_t(f.n));
            ASSERT_EQ(call.fwd(x, outside, work, 1, f.nsuper, 1), 0);
            EXPECT_LT(relative_gap(x, ref(widen_all(b), 1, f.nsuper, 1)), tolerance<T>(f.n));
            EXPECT_EQ(outside, std::vector<T>(size_t(f.n), T(7))) << "one partition sends nothing outside";
            x = b;
            ASSERT_EQ(call.bwd(x, 1, f.nsuper), 0);
            EXPECT_LT(relative_gap(x, ref(widen_all(b), 1, f.nsuper, 3)), tolerance<T>(f.n));
            for (int64_t parts : {1, 2, 3})
                for (int64_t step : {0, 1, 2, 3}) {
                    x = b;
                    ASSERT_EQ(call.blk(x, parts, step), 0);
                    EXPECT_LT(relative_gap(x, ref(widen_all(b), 1, f.nsuper, step)), tolerance<T>(f.n))
                        << "partitions " << parts << " step " << step;
                }
        }
}

// With two partitions the forward kernel sends the updates of rows from the first column past
// its range on (that row included) to outside, and leaves them in x; rows before it get theirs.
TYPED_TEST(OneRhsSweeps, ForwardSplitsUpdatesAtTheRangeLimit)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const flagged fl = flag_cases<T>()[1]; // LU: updates through L21
    for (const factor<T> &f : factors_for<T>(kind::lu, 60)) {
        const passed<T, I> p(f);
        const caller<T, I> call{p, fl};
        const auto &sp = f.bs >= 0 ? f.b_super : f.super_ptr;
        const auto &rp = f.bs >= 0 ? f.b_row_ptr : f.row_ptr;
        const auto &ri = f.bs >= 0 ? f.b_rows : f.row_index;
        const auto row_of = [&](int64_t block) { return f.bs < 0 ? block - 1 : f.start[size_t(block - 1)] - 1; };
        int64_t hits = 0;
        for (int64_t first = 1; first <= 3; ++first)
            for (int64_t last = first; last < f.nsuper; ++last) {
                // Does a row below the range's supernodes equal the limit?
                const int64_t limit = sp[size_t(last)];
                bool equal = false;
                for (int64_t s = first - 1; s < last; ++s)
                    for (int64_t q = rp[size_t(s)] - 1; q < rp[size_t(s + 1)] - 1; ++q)
                        equal = equal || ri[size_t(q)] == limit;
                hits += equal;
                const auto b = random_rhs<T>(f.n, uint64_t(first * 100 + last));
                const auto all = reference<T>{f, fl.s}(widen_all(b), first, last, 1);
                std::vector<T> x = b, outside(size_t(f.n), T(0)), work(size_t(f.n));
                ASSERT_EQ(call.fwd(x, outside, work, first, last, 2), 0);
                const int64_t cut = row_of(limit);
                std::vector<T> inside(x.begin(), x.begin() + cut);
                EXPECT_LT(relative_gap(inside, std::vector<wide<T>>(all.begin(), all.begin() + cut)),
                          tolerance<T>(f.n));
                for (int64_t r = cut; r < f.n; ++r) {
                    EXPECT_EQ(x[size_t(r)], b[size_t(r)]) << "row " << r << " past the limit stays in x";
                    EXPECT_LT(std::abs(widen(outside[size_t(r)]) - (all[size_t(r)] - widen(b[size_t(r)]))),
                              tolerance<T>(f.n) * (1 + std::abs(all[size_t(r)])))
                        << "row " << r;
                }
                for (int64_t r = 0; r < cut; ++r)
                    EXPECT_EQ(outside[size_t(r)], T(0));
            }
        EXPECT_GT(hits, 0) << "no range had a row at its limit";
    }
}

TYPED_TEST(OneRhsSweeps, NrhsSweepsEveryColumn)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const flagged &fl : flag_cases<T>())
        for (const factor<T> &f : factors_for<T>(fl.s.k, 70)) {
            const passed<T, I> p(f);
            const caller<T, I> call{p, fl};
            const reference<T> ref{f, fl.s};
            const int64_t ld = f.n + 3, k = 3;
            const auto b = random_rhs<T>(ld * k, 8);
            for (bool backward : {false, true}) {
                std::vector<T> x = b;
                ASSERT_EQ(call.nrhs(backward, x, k, ld), 0);
                for (int64_t c = 0; c < k; ++c) {
                    std::vector<T> bc(b.begin() + c * ld, b.begin() + c * ld + f.n);
                    std::vector<T> xc(x.begin() + c * ld, x.begin() + c * ld + f.n);
                    EXPECT_LT(relative_gap(xc, ref(widen_all(bc), 1, f.nsuper, backward ? 3 : 1)), tolerance<T>(f.n))
                        << fl.s.name << " column " << c << (backward ? " backward" : " forward");
                    for (int64_t r = f.n; r < ld; ++r)
                        EXPECT_EQ(x[size_t(c * ld + r)], b[size_t(c * ld + r)]) << "padding is not touched";
                }
            }
            std::vector<T> x = b;
            EXPECT_EQ(call.nrhs(false, x, 2, f.n - 1), 2) << "leading dimension below n";
        }
}

TYPED_TEST(OneRhsSweeps, PermSolGathersAndScatters)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using C = typename TypeParam::C;
    const auto &m = sweeps<T, I>::m;
    const int64_t n = 17, k = 2, ld = 19;
    std::vector<I> perm(n);
    std::iota(perm.begin(), perm.end(), I(0));
    std::shuffle(perm.begin(), perm.end(), std::mt19937_64(3));
    const auto b = random_rhs<T>(ld * k, 1);
    std::vector<T> x(size_t(ld * k), T(0)), back(size_t(ld * k), T(0));
    I error = -1;
    m.fwd_perm(I(n), I(k), perm.data(), reinterpret_cast<const C *>(b.data()), I(ld), reinterpret_cast<C *>(x.data()),
               I(ld), &error);
    ASSERT_EQ(error, 0);
    for (int64_t c = 0; c < k; ++c)
        for (int64_t i = 0; i < n; ++i)
            EXPECT_EQ(x[size_t(c * ld + i)], b[size_t(c * ld + perm[size_t(i)])]);
    m.bwd_perm(I(n), I(k), perm.data(), reinterpret_cast<const C *>(x.data()), I(ld),
               reinterpret_cast<C *>(back.data()), I(ld), &error);
    ASSERT_EQ(error, 0);
    for (int64_t c = 0; c < k; ++c)
        for (int64_t i = 0; i < n; ++i)
            EXPECT_EQ(back[size_t(c * ld + i)], b[size_t(c * ld + i)]);
    m.fwd_perm(I(n), I(k), nullptr, reinterpret_cast<const C *>(b.data()), I(ld), reinterpret_cast<C *>(x.data()),
               I(ld), &error);
    EXPECT_EQ(error, 1);
    m.bwd_perm(I(n), I(k), perm.data(), reinterpret_cast<const C *>(b.data()), I(n - 1),
               reinterpret_cast<C *>(x.data()), I(ld), &error);
    EXPECT_EQ(error, 2);
}

// The partitioned tl kernels solve what the one-pass reference solves, for any partition count,
// on partial and widened ranges.
TYPED_TEST(OneRhsSweeps, TlKernelsFollowTheReference)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    if constexpr (!zel::is_complex_v<T>) {
        using C = typename TypeParam::C;
        for (const auto &tl : tl_family<T, I>::tl) {
            const auto &ll = find_stem(TypeParam::F::ll, tl.name);
            for (const factor<T> &f : factors_for<T>(ll.s.k, 90)) {
                const passed<T, I> p(f);
                const reference<T> ref{f, ll.s};
                const auto b = random_rhs<T>(f.n, 2);
                for (int64_t parts : {1, 2, 3, 40})
                    for (auto [first, last, widen] : {std::tuple<int64_t, int64_t, int64_t>{1, f.nsuper, 0},
                                                      {2, 4, 0}, {2, 4, 3}, {2, 4, 2}})
                        for (int64_t step : {0, 1, 2, 3}) {
                            std::vector<T> x = b;
                            const I control[3] = {0, I(widen), 0};
                            I error = -7;
                            C *cx = reinterpret_cast<C *>(x.data());
                            const I ns = I(f.nsuper);
                            if (f.bs < 0)
                                tl.scalar(I(f.n), ns, I(first), I(last), p.super_ptr.data(), p.col_ptr.data(),
                                          p.row_ptr.data(), p.row_index.data(), p.l(), ptr_or_null(p.u_col_ptr), p.u(),
                                          ptr_or_null(p.row_pivots), ptr_or_null(p.col_pivots), cx, control, I(step),
                                          I(parts), &error);
                            else if (f.bs == 0)
                                tl.vbsr(I(f.nb), p.start.data(), ns, I(first), I(last), p.b_super.data(),
                                        p.b_col.data(), p.b_row_ptr.data(), p.b_rows.data(), p.l(),
                                        ptr_or_null(p.b_ucol), p.u(), ptr_or_null(p.row_pivots),
                                        ptr_or_null(p.col_pivots), cx, control, I(step), I(parts), &error);
                            else
                                tl.bsr(I(f.nb), I(f.bs), ns, I(first), I(last), p.b_super.data(), p.b_col.data(),
                                       p.b_row_ptr.data(), p.b_rows.data(), p.l(), ptr_or_null(p.b_ucol), p.u(),
                                       ptr_or_null(p.row_pivots), ptr_or_null(p.col_pivots), cx, control, I(step),
                                       I(parts), &error);
                            ASSERT_EQ(error, 0);
                            EXPECT_LT(relative_gap(x, ref(widen_all(b), first, last, step, widen)), tolerance<T>(f.n))
                                << tl.name << " bs " << f.bs << " partitions " << parts << " range " << first << "-"
                                << last << " widen " << widen << " step " << step;
                        }
            }
        }
    }
}

// A missing x, or any failed allocation, gives error 1 and leaves x as it was.
TYPED_TEST(OneRhsSweeps, FailuresLeaveXUnchanged)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (const flagged &fl : flag_cases<T>()) {
        const factor<T> f = factors_for<T>(fl.s.k, 3)[1];
        const passed<T, I> p(f);
        const caller<T, I> call{p, fl};
        const auto b = random_rhs<T>(f.n, 4);
        std::vector<T> none;
        EXPECT_EQ(call.blk(none, 2, 0), 1);
        EXPECT_EQ(call.bwd(none, 1, f.nsuper), 1);
        for (int which = 0; which < 2; ++which) {
            std::vector<T> x;
            zel::test::for_each_failing_allocation(
                [&] {
                    x = b;
                    return int(which == 0 ? call.blk(x, 2, 0) : call.bwd(x, 1, f.nsuper));
                },
                [&](int64_t k, int result, const zel::test::allocator_probe &probe) {
                    EXPECT_EQ(result, 1) << fl.s.name << " allocation " << k;
                    EXPECT_EQ(x, b) << fl.s.name << " allocation " << k;
                    EXPECT_EQ(probe.live(), 0);
                });
        }
    }
}

} // namespace
