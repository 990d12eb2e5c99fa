// Batched LAPACK drivers on bad arguments and failed allocations: the reported position, the
// status array written (or deliberately not), nothing computed, nothing leaked.
#include <memory>

#include "alloc_fault.hpp"
#include "test_lapack_batch_support.hpp"

using namespace batch_test;

namespace {

constexpr int64_t untouched = 77; // what the caller left in every status entry

// Room for every argument set below; bad arguments never reach the matrices.
template <class T, class I> struct buffers {
    std::vector<T> a = std::vector<T>(4096, T(2)), b = std::vector<T>(4096, T(3)), c = std::vector<T>(4096, T(4));
    std::vector<I> ipiv = std::vector<I>(512, I(1));
    std::vector<I> info = std::vector<I>(8, I(untouched));
    bool matrices_untouched() const
    {
        auto all = [](const std::vector<T> &v, T x) {
            return std::all_of(v.begin(), v.end(), [&](T e) { return e == x; });
        };
        return all(a, T(2)) && all(b, T(3)) && all(c, T(4));
    }
};

// One strided routine: its integer arguments by index, a valid set, and the call.
#define ZEL_ROUTINE_FRAME(routine_suffix)                                                                              \
    using T = typename C::T;                                                                                           \
    using I = typename C::I;                                                                                           \
    using A = typename C::A;                                                                                           \
    static constexpr const char *suffix = routine_suffix;                                                              \
    static I *iv(std::vector<I> &w, size_t k) { return &w[k]; }

template <class C> struct getrf_r {
    ZEL_ROUTINE_FRAME("getrf_batch_strided")
    enum { m, n, lda, stride_a, stride_ipiv, batch };
    static constexpr std::array<int64_t, 6> valid = {3, 3, 3, 9, 3, 3};
    static void run(via path, std::vector<I> w, const char *, buffers<T, I> &b)
    {
        A::getrf_batch_strided(path, iv(w, m), iv(w, n), c_ptr<T, I>(b.a.data()), iv(w, lda), iv(w, stride_a),
                               b.ipiv.data(), iv(w, stride_ipiv), iv(w, batch), b.info.data());
    }
};
template <class C> struct getrfnp_r {
    ZEL_ROUTINE_FRAME("getrfnp_batch_strided")
    enum { m, n, lda, stride_a, batch };
    static constexpr std::array<int64_t, 5> valid = {3, 3, 3, 9, 3};
    static void run(via path, std::vector<I> w, const char *, buffers<T, I> &b)
    {
        A::getrfnp_batch_strided(path, iv(w, m), iv(w, n), c_ptr<T, I>(b.a.data()), iv(w, lda), iv(w, stride_a),
                                 iv(w, batch), b.info.data());
    }
};
template <class C> struct potrf_r {
    ZEL_ROUTINE_FRAME("potrf_batch_strided")
    enum { n, lda, stride_a, batch };
    static constexpr std::array<int64_t, 4> valid = {3, 3, 9, 3};
    static void run(via path, std::vector<I> w, const char *uplo, buffers<T, I> &b)
    {
        A::potrf_batch_strided(path, uplo, iv(w, n), c_ptr<T, I>(b.a.data()), iv(w, lda), iv(w, stride_a), iv(w, batch),
                               b.info.data());
    }
};
template <class C> struct getrs_r {
    ZEL_ROUTINE_FRAME("getrs_batch_strided")
    enum { n, nrhs, lda, stride_a, stride_ipiv, ldb, stride_b, batch };
    static constexpr std::array<int64_t, 8> valid = {3, 2, 3, 9, 3, 3, 6, 3};
    static void run(via path, std::vector<I> w, const char *trans, buffers<T, I> &b)
    {
        A::getrs_batch_strided(path, trans, iv(w, n), iv(w, nrhs), c_ptr<T, I>(b.a.data()), iv(w, lda), iv(w, stride_a),
                               b.ipiv.data(), iv(w, stride_ipiv), c_ptr<T, I>(b.b.data()), iv(w, ldb), iv(w, stride_b),
                               iv(w, batch), b.info.data());
    }
};
template <class C> struct getrsnp_r {
    ZEL_ROUTINE_FRAME("getrsnp_batch_strided")
    enum { n, nrhs, lda, stride_a, ldb, stride_b, batch };
    static constexpr std::array<int64_t, 7> valid = {3, 2, 3, 9, 3, 6, 3};
    static void run(via path, std::vector<I> w, const char *trans, buffers<T, I> &b)
    {
        A::getrsnp_batch_strided(path, trans, iv(w, n), iv(w, nrhs), c_ptr<T, I>(b.a.data()), iv(w, lda),
                                 iv(w, stride_a), c_ptr<T, I>(b.b.data()), iv(w, ldb), iv(w, stride_b), iv(w, batch),
                                 b.info.data());
    }
};
template <class C> struct getri_oop_r {
    ZEL_ROUTINE_FRAME("getri_oop_batch_strided")
    enum { n, lda, stride_a, stride_ipiv, ldainv, stride_ainv, batch };
    static constexpr std::array<int64_t, 7> valid = {3, 3, 9, 3, 3, 9, 3};
    static void run(via path, std::vector<I> w, const char *, buffers<T, I> &b)
    {
        A::getri_oop_batch_strided(path, iv(w, n), c_ptr<T, I>(b.a.data()), iv(w, lda), iv(w, stride_a), b.ipiv.data(),
                                   iv(w, stride_ipiv), c_ptr<T, I>(b.c.data()), iv(w, ldainv), iv(w, stride_ainv),
                                   iv(w, batch), b.info.data());
    }
};
template <class C> struct getri_r {
    ZEL_ROUTINE_FRAME("getri_batch_strided")
    enum { n, lda, stride_a, stride_ipiv, batch };
    static constexpr std::array<int64_t, 5> valid = {3, 3, 9, 3, 3};
    static void run(via path, std::vector<I> w, const char *, buffers<T, I> &b)
    {
        A::getri_batch_strided(path, iv(w, n), c_ptr<T, I>(b.a.data()), iv(w, lda), iv(w, stride_a), b.ipiv.data(),
                               iv(w, stride_ipiv), iv(w, batch), b.info.data());
    }
};
template <class C> struct gels_r {
    ZEL_ROUTINE_FRAME("gels_batch_strided")
    enum { m, n, nrhs, lda, stride_a, ldb, stride_b, batch };
    static constexpr std::array<int64_t, 8> valid = {4, 3, 2, 4, 12, 4, 8, 3};
    static void run(via path, std::vector<I> w, const char *trans, buffers<T, I> &b)
    {
        A::gels_batch_strided(path, trans, iv(w, m), iv(w, n), iv(w, nrhs), c_ptr<T, I>(b.a.data()), iv(w, lda),
                              iv(w, stride_a), c_ptr<T, I>(b.b.data()), iv(w, ldb), iv(w, stride_b), iv(w, batch),
                              b.info.data());
    }
};

// The routine's name as the error handler must receive it.
template <class R> std::string routine_name() { return std::string(1, R::A::letter) + R::suffix; }

// Runs R with `changes` applied to its valid arguments, on both paths, and checks the outcome:
// position > 0 rejects (statuses -position unless batch_size < 0), 0 means silent and untouched.
template <class R>
void expect_outcome(std::initializer_list<std::pair<int, int64_t>> changes, int64_t position, const char *option = "N")
{
    using T = typename R::T;
    using I = typename R::I;
    for (via path : both_paths) {
        std::vector<I> w(R::valid.begin(), R::valid.end());
        std::string trace = routine_name<R>() + " " + option;
        for (auto [index, value] : changes) {
            w[static_cast<size_t>(index)] = I(value);
            trace += " [" + std::to_string(index) + "]=" + std::to_string(value);
        }
        SCOPED_TRACE(trace + (path == via::entry ? " (entry)" : " (worker)"));
        buffers<T, I> b;
        report_log log;
        R::run(path, w, option, b);
        const int64_t count = std::max<int64_t>(0, w[static_cast<size_t>(R::batch)]);
        for (int64_t k = 0; k < 8; ++k) {
            const bool written = position > 0 && k < count;
            EXPECT_EQ(b.info[static_cast<size_t>(k)], written ? I(-position) : I(untouched)) << "status " << k;
        }
        EXPECT_EQ(log.only(), position > 0 ? routine_name<R>() + ":" + std::to_string(position) : "reports: 0");
        EXPECT_TRUE(b.matrices_untouched());
    }
}

template <class C> struct LapackBatchErrors : ::testing::Test {};
TYPED_TEST_SUITE(LapackBatchErrors, configs, config_names);

TYPED_TEST(LapackBatchErrors, GetrfChecksInOrder)
{
    using R = getrf_r<TypeParam>;
    expect_outcome<R>({{R::batch, -1}}, 8);
    expect_outcome<R>({{R::batch, -1}, {R::m, -1}}, 8); // batch_size first, statuses untouched
    expect_outcome<R>({{R::m, -1}, {R::n, -1}}, 1);
    expect_outcome<R>({{R::n, -1}, {R::lda, 0}}, 2);
    expect_outcome<R>({{R::lda, 2}}, 4);
    expect_outcome<R>({{R::m, 0}, {R::lda, 0}}, 4); // the bound is max(1, m)
    expect_outcome<R>({{R::stride_a, 8}}, 5);
    expect_outcome<R>({{R::n, 0}, {R::stride_a, 0}}, 5);
    expect_outcome<R>({{R::stride_ipiv, 2}}, 7);
    expect_outcome<R>({{R::m, 0}, {R::stride_ipiv, 0}, {R::lda, 1}}, 0); // min(m, n) = 0 pivots per member
}

TYPED_TEST(LapackBatchErrors, QuickReturnsLeaveStatusesAlone)
{
    using R = getrf_r<TypeParam>;
    expect_outcome<R>({{R::batch, 0}}, 0);
    expect_outcome<R>({{R::m, 0}, {R::batch, 5}}, 0);
    expect_outcome<R>({{R::n, 0}, {R::stride_a, 1}, {R::stride_ipiv, 0}}, 0);
    // batch_size 0 with a bad argument: the report only.
    expect_outcome<R>({{R::batch, 0}, {R::lda, 1}}, 4);
    using S = getrs_r<TypeParam>;
    expect_outcome<S>({{S::nrhs, 0}, {S::stride_b, 1}}, 0);
    expect_outcome<S>({{S::n, 0}, {S::stride_ipiv, 0}, {S::stride_a, 1}, {S::lda, 1}, {S::ldb, 1}}, 0);
}

TYPED_TEST(LapackBatchErrors, GetrfnpAndPotrfReportNegativeBatchAtEight)
{
    using R = getrfnp_r<TypeParam>;
    expect_outcome<R>({{R::batch, -2}}, 8);
    expect_outcome<R>({{R::m, -1}}, 1);
    expect_outcome<R>({{R::n, -1}}, 2);
    expect_outcome<R>({{R::lda, 2}}, 4);
    expect_outcome<R>({{R::stride_a, 8}}, 5);
    expect_outcome<R>({{R::m, 0}}, 0);
    using P = potrf_r<TypeParam>;
    expect_outcome<P>({{P::batch, -1}}, 8, "x");
    expect_outcome<P>({}, 1, "x");
    expect_outcome<P>({}, 1, "N");
    expect_outcome<P>({{P::n, -1}}, 2, "l");
    expect_outcome<P>({{P::lda, 2}}, 4, "U");
    expect_outcome<P>({{P::stride_a, 8}}, 5, "u");
    expect_outcome<P>({{P::n, 0}}, 0, "L");
}

TYPED_TEST(LapackBatchErrors, SolversCheckInOrder)
{
    using R = getrs_r<TypeParam>;
    expect_outcome<R>({{R::batch, -1}}, 12, "x");
    expect_outcome<R>({}, 1, "x"); // trans "x", batch 3: -1 in all three statuses
    expect_outcome<R>({{R::n, -1}}, 2, "t");
    expect_outcome<R>({{R::nrhs, -1}}, 3);
    expect_outcome<R>({{R::lda, 2}}, 5);
    expect_outcome<R>({{R::stride_a, 8}}, 6);
    expect_outcome<R>({{R::stride_ipiv, 2}}, 8);
    expect_outcome<R>({{R::ldb, 2}}, 10);
    expect_outcome<R>({{R::stride_b, 5}}, 11);
    using S = getrsnp_r<TypeParam>;
    expect_outcome<S>({{S::batch, -1}}, 10);
    expect_outcome<S>({}, 1, "H");
    expect_outcome<S>({{S::n, -1}}, 2, "c");
    expect_outcome<S>({{S::nrhs, -1}}, 3);
    expect_outcome<S>({{S::lda, 2}}, 5);
    expect_outcome<S>({{S::stride_a, 8}}, 6);
    expect_outcome<S>({{S::ldb, 2}}, 8);
    expect_outcome<S>({{S::stride_b, 5}}, 9);
}

TYPED_TEST(LapackBatchErrors, InversesKeepTheirPositions)
{
    using R = getri_oop_r<TypeParam>;
    expect_outcome<R>({{R::batch, -1}}, 10);
    expect_outcome<R>({{R::n, -1}}, 1);
    expect_outcome<R>({{R::lda, 2}}, 2); // one below its place in the list, as callers expect
    expect_outcome<R>({{R::stride_a, 8}}, 3);
    expect_outcome<R>({{R::stride_ipiv, 2}}, 5);
    expect_outcome<R>({{R::ldainv, 2}}, 6);
    expect_outcome<R>({{R::stride_ainv, 8}}, 8);
    expect_outcome<R>({{R::n, 0}}, 0);
    using S = getri_r<TypeParam>;
    expect_outcome<S>({{S::batch, -1}}, 7);
    expect_outcome<S>({{S::n, -1}}, 1);
    expect_outcome<S>({{S::lda, 2}}, 3);
    expect_outcome<S>({{S::stride_a, 8}}, 4);
    expect_outcome<S>({{S::stride_ipiv, 2}}, 6);
    expect_outcome<S>({{S::n, 0}}, 0);
}

TYPED_TEST(LapackBatchErrors, GelsChecksInOrder)
{
    using R = gels_r<TypeParam>;
    expect_outcome<R>({{R::batch, -1}}, 11, "x");
    expect_outcome<R>({{R::batch, 0}}, 0);
    expect_outcome<R>({}, 1, "x");
    expect_outcome<R>({{R::m, -1}}, 2, "t");
    expect_outcome<R>({{R::n, -1}}, 3);
    expect_outcome<R>({{R::nrhs, -1}}, 4);
    expect_outcome<R>({{R::lda, 3}}, 6);
    expect_outcome<R>({{R::stride_a, 11}}, 7);
    expect_outcome<R>({{R::n, 0}, {R::stride_a, 0}}, 7); // checks come before the quick return
    expect_outcome<R>({{R::ldb, 2}}, 9);
    expect_outcome<R>({{R::stride_b, 7}}, 10);
    expect_outcome<R>({{R::m, 0}}, 0);
    expect_outcome<R>({{R::n, 0}}, 0);
}

// m = 5, n = 3, ldb = 3 passes the batch checks (the bound is n alone); every member's kernel
// then refuses its ldb, and the batch itself reports nothing.
TYPED_TEST(LapackBatchErrors, GelsLeavesTallLdbToTheKernel)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    const I m = 5, n = 3, nrhs = 1, lda = 5, stride_a = 15, ldb = 3, stride_b = 3, count = 3;
    for (const char *trans : {"N", "n"}) {
        buffers<T, I> b;
        report_log log;
        A::gels_batch_strided(via::entry, trans, &m, &n, &nrhs, c_ptr<T, I>(b.a.data()), &lda, &stride_a,
                              c_ptr<T, I>(b.b.data()), &ldb, &stride_b, &count, b.info.data());
        EXPECT_EQ(b.info,
                  (std::vector<I>{-8, -8, -8, I(untouched), I(untouched), I(untouched), I(untouched), I(untouched)}));
        for (const auto &entry : log.entries())
            EXPECT_EQ(entry.name.find("_batch"), std::string::npos) << entry.name;
    }
}

// Members with a dominant diagonal, for the runs that must get past the checks.
template <class T, class I> void fill_factors(buffers<T, I> &b, int64_t n, int64_t stride, int64_t count)
{
    for (int64_t k = 0; k < count; ++k)
        for (int64_t i = 0; i < n; ++i)
            b.a[static_cast<size_t>(k * stride + i + i * n)] = T(9);
}

// Runs `call` on fresh buffers under each failing allocation in turn; after each, nothing may
// be left allocated and `check` looks at the statuses.
template <class T, class I, class Call, class Check>
void expect_allocation_failures(const std::string &name, int64_t expected_requests, Call call, Check check)
{
    buffers<T, I> b;
    const int64_t total = zel::test::for_each_failing_allocation(
        [&] {
            b = buffers<T, I>();
            call(b);
            return 0;
        },
        [&](int64_t k, int, zel::test::allocator_probe &probe) {
            SCOPED_TRACE("failing allocation " + std::to_string(k));
            EXPECT_EQ(probe.failures(), 1);
            EXPECT_EQ(probe.live(), 0);
            check(b.info);
        });
    EXPECT_EQ(total, expected_requests) << name;
}

TYPED_TEST(LapackBatchErrors, StridedWorkersReportFailedPivotArrays)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    const bool narrow = sizeof(I) == 4;
    const I n = 3, lda = 3, stride = 9, stride_ipiv = 3, nrhs = 2, ldb = 3, stride_b = 6, count = 3;
    const std::string p(1, A::letter);
    report_log log;
    // One report of 1000 for `routine`, no status written, no member run.
    auto stopped = [&](const char *routine) {
        return [&log, routine, p](const std::vector<I> &info) {
            EXPECT_EQ(info, std::vector<I>(8, I(untouched)));
            EXPECT_EQ(log.only(), p + routine + ":1000");
        };
    };
    for (via path : both_paths) {
        // Only a 32-bit worker needs a pivot array (alignment 64); its failure stops the batch.
        expect_allocation_failures<T, I>(
            p + "getrf", narrow ? 1 : 0,
            [&](buffers<T, I> &b) {
                log.clear();
                fill_factors(b, n, stride, count);
                A::getrf_batch_strided(path, &n, &n, c_ptr<T, I>(b.a.data()), &lda, &stride, b.ipiv.data(),
                                       &stride_ipiv, &count, b.info.data());
            },
            stopped("getrf_batch_strided"));
        expect_allocation_failures<T, I>(
            p + "getrs", narrow ? 1 : 0,
            [&](buffers<T, I> &b) {
                log.clear();
                fill_factors(b, n, stride, count);
                A::getrs_batch_strided(path, "N", &n, &nrhs, c_ptr<T, I>(b.a.data()), &lda, &stride, b.ipiv.data(),
                                       &stride_ipiv, c_ptr<T, I>(b.b.data()), &ldb, &stride_b, &count, b.info.data());
            },
            stopped("getrs_batch_strided"));
        expect_allocation_failures<T, I>(
            p + "getri_oop", narrow ? 1 : 0,
            [&](buffers<T, I> &b) {
                log.clear();
                fill_factors(b, n, stride, count);
                A::getri_oop_batch_strided(path, &n, c_ptr<T, I>(b.a.data()), &lda, &stride, b.ipiv.data(),
                                           &stride_ipiv, c_ptr<T, I>(b.c.data()), &lda, &stride, &count, b.info.data());
            },
            stopped("getri_oop_batch_strided"));
        // getri adds its workspace: either failure is reported as 1000 with no status written.
        expect_allocation_failures<T, I>(
            p + "getri", narrow ? 2 : 1,
            [&](buffers<T, I> &b) {
                log.clear();
                fill_factors(b, n, stride, count);
                A::getri_batch_strided(path, &n, c_ptr<T, I>(b.a.data()), &lda, &stride, b.ipiv.data(), &stride_ipiv,
                                       &count, b.info.data());
            },
            stopped("getri_batch_strided"));
    }
}

TYPED_TEST(LapackBatchErrors, GelsWorkspaceFailureSetsEveryStatus)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    using A = typename TypeParam::A;
    const I m = 4, n = 3, nrhs = 2, lda = 4, stride_a = 12, ldb = 4, stride_b = 8, count = 3;
    const std::string p(1, A::letter);
    for (via path : both_paths) {
        report_log log;
        expect_allocation_failures<T, I>(
            p + "gels", 1,
            [&](buffers<T, I> &b) {
                log.clear();
                fill_factors(b, 4, stride_a, count);
                A::gels_batch_strided(path, "N", &m, &n, &nrhs, c_ptr<T, I>(b.a.data()), &lda, &stride_a,
                                      c_ptr<T, I>(b.b.data()), &ldb, &stride_b, &count, b.info.data());
            },
            [&](const std::vector<I> &info) {
                EXPECT_EQ(info, (std::vector<I>{1000, 1000, 1000, I(untouched), I(untouched), I(untouched),
                                                I(untouched), I(untouched)}));
                EXPECT_EQ(log.only(), p + "gels_batch_strided:1000");
            });
    }
}

// ---- group drivers ----

template <class T, class I> struct group_call {
    using A = api<T, I>;
    std::vector<I> m, n, lda, size, ldainv;
    std::vector<std::vector<T>> mats, originals, outs;
    std::vector<T *> a, ainv;
    std::vector<std::vector<I>> piv;
    std::vector<I *> ipiv;
    std::vector<I> info;
    I groups;
    // Groups of square order n[g] (m[g] rows) with leading dimension lda[g] and size[g] matrices.
    group_call(std::vector<int64_t> rows, std::vector<int64_t> cols, std::vector<int64_t> leads,
               std::vector<int64_t> sizes)
        : groups(I(rows.size()))
    {
        int64_t total = 0;
        for (size_t g = 0; g < rows.size(); ++g) {
            m.push_back(I(rows[g]));
            n.push_back(I(cols[g]));
            lda.push_back(I(leads[g]));
            ldainv.push_back(I(std::max<int64_t>(1, cols[g])));
            size.push_back(I(sizes[g]));
            for (int64_t k = 0; k < std::max<int64_t>(0, sizes[g]); ++k, ++total) {
                const size_t elements = static_cast<size_t>(std::max<int64_t>(1, std::max(leads[g], rows[g])) *
                                                            std::max<int64_t>(1, cols[g]));
                mats.emplace_back(elements, T(1));
                for (int64_t i = 0; i < std::min(rows[g], cols[g]); ++i)
                    mats.back()[static_cast<size_t>(i + i * std::max<int64_t>(1, leads[g]))] = T(4);
                outs.emplace_back(static_cast<size_t>(std::max<int64_t>(1, cols[g] * cols[g])), T(5));
                piv.emplace_back(static_cast<size_t>(std::max<int64_t>(1, cols[g])), I(1));
            }
        }
        for (size_t k = 0; k < mats.size(); ++k) {
            a.push_back(mats[k].data());
            ainv.push_back(outs[k].data());
            ipiv.push_back(piv[k].data());
        }
        info.assign(static_cast<size_t>(total) + 2, I(untouched));
        originals = mats;
    }
    void getrf(via path)
    {
        A::getrf_batch(path, m.data(), n.data(), c_ptr<T, I>(a.data()), lda.data(), ipiv.data(), &groups, size.data(),
                       info.data());
    }
    void getrfnp(via path)
    {
        A::getrfnp_batch(path, m.data(), n.data(), c_ptr<T, I>(a.data()), lda.data(), &groups, size.data(),
                         info.data());
    }
    void getri_oop(via path)
    {
        A::getri_oop_batch(path, n.data(), c_ptr<T, I>(a.data()), lda.data(), ipiv.data(), c_ptr<T, I>(ainv.data()),
                           ldainv.data(), &groups, size.data(), info.data());
    }
    bool kept(size_t k) const { return mats[k] == originals[k]; }
    std::vector<I> statuses(std::initializer_list<int64_t> head) const
    {
        std::vector<I> out(info.size(), I(untouched));
        std::transform(head.begin(), head.end(), out.begin(), [](int64_t v) { return I(v); });
        return out;
    }
};

template <class C> struct LapackGroupErrors : ::testing::Test {};
TYPED_TEST_SUITE(LapackGroupErrors, configs, config_names);

TYPED_TEST(LapackGroupErrors, GroupCountAndSizesAreCheckedFirst)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const std::string p(1, TypeParam::A::letter);
    for (via path : both_paths) {
        report_log log;
        group_call<T, I> none({}, {}, {}, {});
        none.info.assign(4, I(untouched));
        none.getrf(path);
        none.getrfnp(path);
        none.getri_oop(path);
        EXPECT_EQ(log.entries().size(), 0u);
        EXPECT_EQ(none.info, std::vector<I>(4, I(untouched)));

        group_call<T, I> call({3, 3}, {3, 3}, {3, 3}, {2, 1});
        call.groups = -1;
        const std::vector<std::pair<void (group_call<T, I>::*)(via), std::string>> drivers = {
            {&group_call<T, I>::getrf, "getrf_batch:6"},
            {&group_call<T, I>::getrfnp, "getrfnp_batch:5"},
            {&group_call<T, I>::getri_oop, "getri_oop_batch:7"}};
        for (auto [driver, expected] : drivers) {
            log.clear();
            (call.*driver)(path);
            EXPECT_EQ(log.only(), p + expected);
        }
        call.groups = 2;
        call.size = {2, -1};
        const std::vector<std::pair<void (group_call<T, I>::*)(via), std::string>> sized = {
            {&group_call<T, I>::getrf, "getrf_batch:7"},
            {&group_call<T, I>::getrfnp, "getrfnp_batch:6"},
            {&group_call<T, I>::getri_oop, "getri_oop_batch:8"}};
        for (auto [driver, expected] : sized) {
            log.clear();
            (call.*driver)(path);
            EXPECT_EQ(log.only(), p + expected);
        }
        EXPECT_EQ(call.info, call.statuses({}));
        EXPECT_TRUE(call.kept(0) && call.kept(1));
    }
}

TYPED_TEST(LapackGroupErrors, BadGroupStopsEveryGroup)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const std::string p(1, TypeParam::A::letter);
    for (via path : both_paths) {
        report_log log;
        // {m = 3, n = 3, lda = 2} x 2 and a valid {2, 2, 2}: -4 for the first two, nothing run.
        group_call<T, I> lu({3, 2}, {3, 2}, {2, 2}, {2, 1});
        lu.getrf(path);
        EXPECT_EQ(lu.info, lu.statuses({-4, -4}));
        EXPECT_EQ(log.only(), p + "getrf_batch:4");
        EXPECT_TRUE(lu.kept(2));

        // Several bad groups: each gets its own code, the first one is reported.
        log.clear();
        group_call<T, I> many({2, 2, -1, 3}, {2, -1, 2, 3}, {2, 2, 1, 1}, {1, 1, 2, 1});
        many.getrf(path);
        EXPECT_EQ(many.info, many.statuses({untouched, -2, -1, -1, -4}));
        EXPECT_EQ(log.only(), p + "getrf_batch:2");
        EXPECT_TRUE(many.kept(0));

        log.clear();
        group_call<T, I> np({2, 0, 3}, {2, -1, 3}, {2, 0, 2}, {1, 2, 1});
        np.getrfnp(path);
        EXPECT_EQ(np.info, np.statuses({untouched, -2, -2, -4}));
        EXPECT_EQ(log.only(), p + "getrfnp_batch:2");
        EXPECT_TRUE(np.kept(0));

        // getri_oop_batch: n -> 1, lda -> 3, ldainv -> 6.
        log.clear();
        group_call<T, I> inv({2, 3, 3, 0}, {2, 3, 3, -1}, {2, 2, 3, 1}, {1, 1, 1, 1});
        inv.ldainv[2] = 2;
        inv.getri_oop(path);
        EXPECT_EQ(inv.info, inv.statuses({untouched, -3, -6, -1}));
        EXPECT_EQ(log.only(), p + "getri_oop_batch:3");
        EXPECT_EQ(inv.outs[0], std::vector<T>(inv.outs[0].size(), T(5))); // the valid group is not inverted
    }
}

TYPED_TEST(LapackGroupErrors, EmptyGroupsRunNothingAndDegenerateMembersRun)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    for (via path : both_paths) {
        report_log log;
        group_call<T, I> empty({3, 2}, {3, 2}, {3, 2}, {0, 0});
        zel::test::allocator_probe probe;
        empty.getrf(path);
        EXPECT_EQ(probe.requests(), 0); // no matrices, no work array
        group_call<T, I> degenerate({0, 2}, {3, 2}, {1, 2}, {2, 1});
        degenerate.getrf(path);
        EXPECT_EQ(degenerate.info, degenerate.statuses({0, 0, 0}));
        EXPECT_EQ(log.entries().size(), 0u);
        EXPECT_EQ(probe.live(), 0);
    }
}

TYPED_TEST(LapackGroupErrors, FailedPivotWorkArraySetsEveryStatus)
{
    using T = typename TypeParam::T;
    using I = typename TypeParam::I;
    const std::string p(1, TypeParam::A::letter);
    for (via path : both_paths) {
        report_log log;
        for (auto driver : {&group_call<T, I>::getrf, &group_call<T, I>::getri_oop}) {
            group_call<T, I> *last = nullptr;
            std::vector<std::unique_ptr<group_call<T, I>>> calls;
            const int64_t requests = zel::test::for_each_failing_allocation(
                [&] {
                    log.clear();
                    calls.push_back(
                        std::make_unique<group_call<T, I>>(std::vector<int64_t>{3, 2}, std::vector<int64_t>{3, 2},
                                                           std::vector<int64_t>{3, 2}, std::vector<int64_t>{2, 1}));
                    last = calls.back().get();
                    (last->*driver)(path);
                    return 0;
                },
                [&](int64_t, int, zel::test::allocator_probe &probe) {
                    EXPECT_EQ(probe.live(), 0);
                    EXPECT_EQ(last->info, last->statuses({1000, 1000, 1000}));
                    const bool lu = driver == &group_call<T, I>::getrf;
                    EXPECT_EQ(log.only(), p + (lu ? "getrf_batch:1000" : "getri_oop_batch:1000"));
                    EXPECT_TRUE(last->kept(0) && last->kept(2));
                    EXPECT_EQ(last->outs[0], std::vector<T>(last->outs[0].size(), T(5)));
                });
            EXPECT_EQ(requests, 1); // one work array of 64-bit pivots, in either width
        }
    }
}

} // namespace
