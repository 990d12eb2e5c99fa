// Batched LAPACK drivers, strided and grouped: every member's factors reconstruct it, solves and
// inverses leave small residuals, statuses land per member, and nothing outside the members moves.
#include "test_lapack_batch_support.hpp"

using namespace batch_test;

namespace {

template <class C> struct LapackBatch : ::testing::Test {};
TYPED_TEST_SUITE(LapackBatch, configs, config_names);

#define ZEL_TEST_TYPES                                                                                                 \
    using T = typename TypeParam::T;                                                                                   \
    using I = typename TypeParam::I;                                                                                   \
    using A = typename TypeParam::A

// Tolerance for products of n terms of size about one.
template <class T> real<T> tol(int64_t n) { return 32 * real<T>(std::max<int64_t>(n, 1)) * eps<T>; }

// max |op(A)*X - B| relative to |A|*|X| + |B|.
template <class T> real<T> relative_residual(const matrix<T> &opa, const matrix<T> &x, const matrix<T> &b)
{
    const real<T> scale = max_abs(opa) * max_abs(x) * real<T>(opa.n) + max_abs(b);
    return max_diff(product(opa, x), b) / scale;
}

// The leading rows x cols block of a strided member (for B blocks taller than the solution).
template <class T> matrix<T> block(const strided<T> &s, int64_t k, int64_t rows, int64_t cols)
{
    matrix<T> out(rows, cols);
    for (int64_t j = 0; j < cols; ++j)
        for (int64_t i = 0; i < rows; ++i)
            out(i, j) = s.v[static_cast<size_t>(k * s.stride + i + j * s.ld)];
    return out;
}

// True when some member's pivots interchange rows, so that a test on them means something.
template <class I> bool interchanges(const std::vector<I> &ipiv, I stride, I count, I length)
{
    for (I member = 0; member < count; ++member)
        for (I j = 0; j < length; ++j)
            if (ipiv[static_cast<size_t>(member * stride + j)] != j + 1)
                return true;
    return false;
}

// |A*X - I| relative to |A|*|X|: small for a backward-stable inverse however A is conditioned.
template <class T> real<T> inverse_error(const matrix<T> &a, const matrix<T> &x)
{
    return max_diff(product(a, x), identity<T>(a.n)) / (max_abs(a) * max_abs(x) * real<T>(a.n));
}

TYPED_TEST(LapackBatch, GetrfReconstructsEveryMemberAndFlagsTheSingularOne)
{
    ZEL_TEST_TYPES;
    for (auto [rows, cols] : {std::pair<int64_t, int64_t>{4, 4}, {6, 3}, {3, 5}})
        for (via path : both_paths) {
            SCOPED_TRACE(std::to_string(rows) + "x" + std::to_string(cols));
            const int64_t k = std::min(rows, cols);
            const I m = I(rows), n = I(cols), lda = I(rows + 2), stride_a = I(lda * cols + 3), stride_piv = I(k + 2);
            const I count = 4;
            strided<T> a(rows, cols, lda, stride_a, count, 11 + rows);
            for (int64_t i = 0; i < rows; ++i)
                a.at(2, i, 1) = T(0); // a zero column: the second pivot is exactly zero
            const strided<T> before = a;
            std::vector<I> ipiv(static_cast<size_t>(stride_piv * count), I(-5));
            std::vector<I> info(static_cast<size_t>(count), I(-9));
            A::getrf_batch_strided(path, &m, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, ipiv.data(), &stride_piv,
                                   &count, info.data());
            EXPECT_EQ(info, (std::vector<I>{0, 0, 2, 0}));
            expect_slack_kept(a, before);
            for (int64_t member = 0; member < count; ++member) {
                const I *piv = ipiv.data() + member * stride_piv;
                EXPECT_LE(max_diff(reconstruct_plu(a.member(member), piv), before.member(member)), tol<T>(cols));
                EXPECT_EQ(piv[k], I(-5));
                EXPECT_EQ(piv[k + 1], I(-5));
            }
        }
}

TYPED_TEST(LapackBatch, GetrfnpGivesLTimesUWithoutInterchanges)
{
    ZEL_TEST_TYPES;
    for (via path : both_paths) {
        const I n = 5, lda = 6, stride_a = 31, count = 3;
        strided<T> a(n, n, lda, stride_a, count, 5);
        for (int64_t member = 0; member < count; ++member)
            a.set(member, dominant_matrix<T>(n, 40 + member));
        a.at(1, 0, 0) = T(0); // the first pivot of member 1 is zero
        const strided<T> before = a;
        std::vector<I> info(static_cast<size_t>(count), I(-9));
        A::getrfnp_batch_strided(path, &n, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, &count, info.data());
        EXPECT_EQ(info, (std::vector<I>{0, 1, 0}));
        expect_slack_kept(a, before);
        for (int64_t member : {0, 2}) {
            auto [l, u] = split_lu(a.member(member));
            EXPECT_LE(max_diff(product(l, u), before.member(member)), tol<T>(n) * n);
        }
    }
}

TYPED_TEST(LapackBatch, GetrsSolvesEachTransposeForm)
{
    ZEL_TEST_TYPES;
    const I n = 5, nrhs = 2, lda = 7, stride_a = 40, stride_piv = 6, ldb = 6, stride_b = 13, count = 3;
    for (const char *trans : {"N", "t", "C"})
        for (via path : both_paths) {
            SCOPED_TRACE(trans);
            strided<T> a(n, n, lda, stride_a, count, 3);
            for (int64_t member = 0; member < count; ++member)
                a.set(member, random_matrix<T>(n, n, 70 + member)); // general: rows get interchanged
            const strided<T> original = a;
            std::vector<I> ipiv(static_cast<size_t>(stride_piv * count)), info(static_cast<size_t>(count), I(-9));
            A::getrf_batch_strided(path, &n, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, ipiv.data(), &stride_piv,
                                   &count, info.data());
            strided<T> b(n, nrhs, ldb, stride_b, count, 9);
            const strided<T> rhs = b;
            info.assign(static_cast<size_t>(count), I(-9));
            A::getrs_batch_strided(path, trans, &n, &nrhs, c_ptr<T, I>(a.data()), &lda, &stride_a, ipiv.data(),
                                   &stride_piv, c_ptr<T, I>(b.data()), &ldb, &stride_b, &count, info.data());
            EXPECT_EQ(info, std::vector<I>(static_cast<size_t>(count), 0));
            EXPECT_TRUE(interchanges(ipiv, stride_piv, count, n));
            expect_slack_kept(b, rhs);
            const char t = static_cast<char>(std::toupper(*trans));
            for (int64_t member = 0; member < count; ++member)
                EXPECT_LE(relative_residual(op(original.member(member), t), b.member(member), rhs.member(member)),
                          tol<T>(n));
        }
}

TYPED_TEST(LapackBatch, GetrsnpSolvesEachTransposeForm)
{
    ZEL_TEST_TYPES;
    const I n = 6, nrhs = 3, lda = 6, stride_a = 36, ldb = 8, stride_b = 25, count = 3;
    for (const char *trans : {"n", "T", "c"})
        for (via path : both_paths) {
            SCOPED_TRACE(trans);
            strided<T> a(n, n, lda, stride_a, count, 4);
            for (int64_t member = 0; member < count; ++member)
                a.set(member, dominant_matrix<T>(n, 90 + member));
            const strided<T> original = a;
            std::vector<I> info(static_cast<size_t>(count), I(-9));
            A::getrfnp_batch_strided(path, &n, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, &count, info.data());
            strided<T> b(n, nrhs, ldb, stride_b, count, 8);
            const strided<T> rhs = b;
            info.assign(static_cast<size_t>(count), I(-9));
            A::getrsnp_batch_strided(path, trans, &n, &nrhs, c_ptr<T, I>(a.data()), &lda, &stride_a,
                                     c_ptr<T, I>(b.data()), &ldb, &stride_b, &count, info.data());
            EXPECT_EQ(info, std::vector<I>(static_cast<size_t>(count), 0));
            expect_slack_kept(b, rhs);
            const char t = static_cast<char>(std::toupper(*trans));
            for (int64_t member = 0; member < count; ++member)
                EXPECT_LE(relative_residual(op(original.member(member), t), b.member(member), rhs.member(member)),
                          tol<T>(n));
        }
}

// Factors the members with getrf and returns the originals; member `singular` gets a zero column 1.
template <class T, class I, class A>
strided<T> factor(via path, strided<T> &a, std::vector<I> &ipiv, I stride_piv, int64_t singular)
{
    for (int64_t member = 0; member < a.count; ++member)
        a.set(member, random_matrix<T>(a.n, a.n, 120 + member));
    for (int64_t i = 0; i < a.m; ++i)
        a.at(singular, i, 1) = T(0);
    const strided<T> original = a;
    const I n = I(a.n), lda = I(a.ld), stride_a = I(a.stride), count = I(a.count);
    std::vector<I> info(static_cast<size_t>(count));
    A::getrf_batch_strided(path, &n, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, ipiv.data(), &stride_piv, &count,
                           info.data());
    EXPECT_TRUE(interchanges(ipiv, stride_piv, count, n));
    return original;
}

TYPED_TEST(LapackBatch, InverseOutOfPlaceLeavesFactorsAndFlagsSingularMember)
{
    ZEL_TEST_TYPES;
    for (I n : {I(4), I(20)}) // small sizes and the general path of the core's kernel
        for (via path : both_paths) {
            const I lda = n + 1, stride_a = lda * n + 1, stride_piv = n + 1, ldainv = n + 2,
                    stride_ainv = ldainv * n + 2;
            const I count = 3;
            strided<T> a(n, n, lda, stride_a, count, 6);
            std::vector<I> ipiv(static_cast<size_t>(stride_piv * count));
            const strided<T> original = factor<T, I, A>(path, a, ipiv, stride_piv, 1);
            const strided<T> factors = a;
            strided<T> ainv(n, n, ldainv, stride_ainv, count, 7);
            const strided<T> ainv_before = ainv;
            std::vector<I> info(static_cast<size_t>(count), I(-9));
            A::getri_oop_batch_strided(path, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, ipiv.data(), &stride_piv,
                                       c_ptr<T, I>(ainv.data()), &ldainv, &stride_ainv, &count, info.data());
            EXPECT_EQ(info, (std::vector<I>{0, 2, 0}));
            EXPECT_EQ(a.v, factors.v);
            expect_slack_kept(ainv, ainv_before);
            for (int64_t member : {0, 2})
                EXPECT_LE(inverse_error(original.member(member), ainv.member(member)), tol<T>(n));
        }
}

TYPED_TEST(LapackBatch, InverseInPlaceInvertsEveryRegularMember)
{
    ZEL_TEST_TYPES;
    for (I n : {I(5), I(20)})
        for (via path : both_paths) {
            const I lda = n, stride_a = n * n + 2, stride_piv = n, count = 4;
            strided<T> a(n, n, lda, stride_a, count, 12);
            std::vector<I> ipiv(static_cast<size_t>(stride_piv * count));
            const strided<T> original = factor<T, I, A>(path, a, ipiv, stride_piv, 2);
            const strided<T> factors = a;
            std::vector<I> info(static_cast<size_t>(count), I(-9));
            A::getri_batch_strided(path, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, ipiv.data(), &stride_piv, &count,
                                   info.data());
            EXPECT_EQ(info, (std::vector<I>{0, 0, 2, 0}));
            expect_slack_kept(a, factors);
            for (int64_t member : {0, 1, 3})
                EXPECT_LE(inverse_error(original.member(member), a.member(member)), tol<T>(n));
        }
}

TYPED_TEST(LapackBatch, PotrfReconstructsEitherTriangleAndFlagsIndefiniteMember)
{
    ZEL_TEST_TYPES;
    const I n = 5, lda = 6, stride_a = 33, count = 3;
    for (const char *uplo : {"L", "u"})
        for (via path : both_paths) {
            SCOPED_TRACE(uplo);
            const bool lower = *uplo == 'L';
            strided<T> a(n, n, lda, stride_a, count, 13);
            for (int64_t member = 0; member < count; ++member)
                a.set(member, hpd_matrix<T>(n, 140 + member));
            a.at(1, 2, 2) = T(-1); // the third leading minor of member 1 is not positive
            const strided<T> before = a;
            std::vector<I> info(static_cast<size_t>(count), I(-9));
            A::potrf_batch_strided(path, uplo, &n, c_ptr<T, I>(a.data()), &lda, &stride_a, &count, info.data());
            EXPECT_EQ(info, (std::vector<I>{0, 3, 0}));
            expect_slack_kept(a, before);
            for (int64_t member : {0, 2}) {
                matrix<T> f = a.member(member), t(n, n);
                const matrix<T> original = before.member(member);
                for (int64_t j = 0; j < n; ++j)
                    for (int64_t i = 0; i < n; ++i) {
                        const bool in_triangle = lower ? i >= j : i <= j;
                        if (in_triangle)
                            t(i, j) = f(i, j);
                        else
                            EXPECT_EQ(f(i, j), original(i, j)); // the other triangle is not referenced
                    }
                const matrix<T> llh = lower ? product(t, op(t, 'C')) : product(op(t, 'C'), t);
                EXPECT_LE(max_diff(llh, original), tol<T>(n) * max_abs(original));
            }
        }
}

// The trans option that a precision's gels accepts besides N, and the one it rejects.
template <class T> constexpr char gels_transpose = zel::is_complex_v<T> ? 'C' : 'T';
template <class T> constexpr char gels_foreign = zel::is_complex_v<T> ? 't' : 'c';

TYPED_TEST(LapackBatch, GelsResidualIsOrthogonalOrZero)
{
    ZEL_TEST_TYPES;
    for (auto [rows, cols] : {std::pair<int64_t, int64_t>{7, 4}, {3, 6}})
        for (char t : {'N', gels_transpose<T>})
            for (via path : both_paths) {
                SCOPED_TRACE(std::to_string(rows) + "x" + std::to_string(cols) + " " + t);
                const char trans[2] = {static_cast<char>(std::tolower(t)), 0};
                const I m = I(rows), n = I(cols), nrhs = 2, lda = I(rows + 1), stride_a = I(lda * cols + 2);
                const I ldb = I(std::max(rows, cols) + 1), stride_b = I(ldb * 2 + 1), count = 3;
                strided<T> a(m, n, lda, stride_a, count, 15);
                const strided<T> original = a;
                strided<T> b(ldb - 1, nrhs, ldb, stride_b, count, 16);
                const strided<T> rhs = b;
                std::vector<I> info(static_cast<size_t>(count), I(-9));
                A::gels_batch_strided(path, trans, &m, &n, &nrhs, c_ptr<T, I>(a.data()), &lda, &stride_a,
                                      c_ptr<T, I>(b.data()), &ldb, &stride_b, &count, info.data());
                EXPECT_EQ(info, std::vector<I>(static_cast<size_t>(count), 0));
                for (int64_t member = 0; member < count; ++member) {
                    const matrix<T> opa = op(original.member(member), t);
                    const matrix<T> x = block(b, member, opa.n, nrhs), b0 = block(rhs, member, opa.m, nrhs);
                    if (opa.m >= opa.n) { // least squares: op(A)^H * (B - op(A)*X) = 0
                        matrix<T> r = b0, ax = product(opa, x);
                        for (size_t e = 0; e < r.v.size(); ++e)
                            r.v[e] -= ax.v[e];
                        const matrix<T> zero(opa.n, nrhs);
                        EXPECT_LE(max_diff(product(op(opa, 'C'), r), zero),
                                  tol<T>(rows) * max_abs(opa) * (max_abs(opa) * max_abs(x) * cols + max_abs(b0)));
                    } else { // minimum norm: op(A)*X = B exactly
                        EXPECT_LE(relative_residual(opa, x, b0), tol<T>(rows));
                    }
                }
            }
}

TYPED_TEST(LapackBatch, GelsForeignTransposeFailsInEachMemberOnly)
{
    ZEL_TEST_TYPES;
    report_log log;
    const char trans[2] = {gels_foreign<T>, 0};
    const I m = 4, n = 3, nrhs = 1, lda = 4, stride_a = 12, ldb = 4, stride_b = 4, count = 2;
    strided<T> a(m, n, lda, stride_a, count, 1), b(m, nrhs, ldb, stride_b, count, 2);
    std::vector<I> info(static_cast<size_t>(count), I(-9));
    A::gels_batch_strided(via::entry, trans, &m, &n, &nrhs, c_ptr<T, I>(a.data()), &lda, &stride_a,
                          c_ptr<T, I>(b.data()), &ldb, &stride_b, &count, info.data());
    EXPECT_EQ(info, (std::vector<I>{-1, -1})); // the batch checks pass; each kernel call refuses
    for (const auto &entry : log.entries())
        EXPECT_EQ(entry.name.find("_batch"), std::string::npos) << entry.name;
}

// Group drivers: matrices of every group one after another, each in its own allocation.
template <class T> struct group_set {
    std::vector<matrix<T>> mats, originals;
    std::vector<T *> pointers;
    void add(const matrix<T> &a, int64_t lead)
    {
        matrix<T> padded(a.m, a.n, lead);
        std::mt19937_64 rng(mats.size());
        for (T &x : padded.v)
            x = random_value<T>(rng);
        for (int64_t j = 0; j < a.n; ++j)
            for (int64_t i = 0; i < a.m; ++i)
                padded(i, j) = a(i, j);
        mats.push_back(padded);
        originals.push_back(padded);
    }
    T *const *data()
    {
        pointers.clear();
        for (matrix<T> &a : mats)
            pointers.push_back(a.v.data());
        return pointers.data();
    }
};

struct group_shape {
    int64_t m, n, lda, size;
};
const std::vector<group_shape> group_shapes = {{3, 3, 4, 2}, {5, 2, 5, 1}, {2, 4, 3, 0}, {4, 4, 4, 2}};

template <class I> struct group_arrays {
    std::vector<I> m, n, lda, size;
    int64_t total = 0;
    explicit group_arrays(const std::vector<group_shape> &shapes)
    {
        for (const group_shape &g : shapes) {
            m.push_back(I(g.m));
            n.push_back(I(g.n));
            lda.push_back(I(g.lda));
            size.push_back(I(g.size));
            total += g.size;
        }
    }
};

TYPED_TEST(LapackBatch, GroupGetrfFactorsEveryGroup)
{
    ZEL_TEST_TYPES;
    for (via path : both_paths) {
        group_arrays<I> g(group_shapes);
        group_set<T> set;
        std::vector<std::vector<I>> pivots;
        for (const group_shape &shape : group_shapes)
            for (int64_t k = 0; k < shape.size; ++k) {
                matrix<T> a = random_matrix<T>(shape.m, shape.n, 300 + set.mats.size());
                if (set.mats.size() == 4)
                    for (int64_t i = 0; i < shape.m; ++i)
                        a(i, 2) = T(0);
                set.add(a, shape.lda);
                pivots.emplace_back(static_cast<size_t>(std::min(shape.m, shape.n) + 1), I(-3));
            }
        std::vector<I *> ipiv;
        for (auto &p : pivots)
            ipiv.push_back(p.data());
        const I groups = I(group_shapes.size());
        std::vector<I> info(static_cast<size_t>(g.total), I(-9));
        A::getrf_batch(path, g.m.data(), g.n.data(), c_ptr<T, I>(set.data()), g.lda.data(), ipiv.data(), &groups,
                       g.size.data(), info.data());
        EXPECT_EQ(info, (std::vector<I>{0, 0, 0, 0, 3}));
        for (size_t k = 0; k < set.mats.size(); ++k) {
            const matrix<T> &a = set.originals[k];
            EXPECT_LE(max_diff(reconstruct_plu(set.mats[k], ipiv[k]), a), tol<T>(a.n));
            EXPECT_EQ(pivots[k].back(), I(-3));
            for (int64_t j = 0; j < a.n; ++j)
                for (int64_t i = a.m; i < a.ld; ++i)
                    EXPECT_EQ(set.mats[k](i, j), a(i, j));
        }
    }
}

TYPED_TEST(LapackBatch, GroupGetrfnpAndInverseOutOfPlace)
{
    ZEL_TEST_TYPES;
    const std::vector<group_shape> shapes = {{3, 3, 3, 2}, {1, 1, 2, 1}, {5, 5, 6, 2}};
    for (via path : both_paths) {
        group_arrays<I> g(shapes);
        const I groups = I(shapes.size());
        group_set<T> lu, plu, inverse;
        std::vector<std::vector<I>> pivots;
        for (const group_shape &shape : shapes)
            for (int64_t k = 0; k < shape.size; ++k) {
                lu.add(dominant_matrix<T>(shape.n, 500 + lu.mats.size()), shape.lda);
                plu.add(random_matrix<T>(shape.n, shape.n, 600 + plu.mats.size()), shape.lda);
                inverse.add(matrix<T>(shape.n, shape.n), shape.n + 1);
                pivots.emplace_back(static_cast<size_t>(shape.n));
            }
        std::vector<I *> ipiv;
        for (auto &p : pivots)
            ipiv.push_back(p.data());

        std::vector<I> info(static_cast<size_t>(g.total), I(-9));
        A::getrfnp_batch(path, g.m.data(), g.n.data(), c_ptr<T, I>(lu.data()), g.lda.data(), &groups, g.size.data(),
                         info.data());
        EXPECT_EQ(info, std::vector<I>(static_cast<size_t>(g.total), 0));
        for (size_t k = 0; k < lu.mats.size(); ++k) {
            auto [l, u] = split_lu(lu.mats[k]);
            const matrix<T> &a = lu.originals[k];
            EXPECT_LE(max_diff(product(l, u), a), tol<T>(a.n) * a.n);
        }

        info.assign(static_cast<size_t>(g.total), I(-9));
        A::getrf_batch(path, g.m.data(), g.n.data(), c_ptr<T, I>(plu.data()), g.lda.data(), ipiv.data(), &groups,
                       g.size.data(), info.data());
        std::vector<I> ldainv;
        for (const group_shape &shape : shapes)
            ldainv.push_back(I(shape.n + 1));
        bool swapped = false;
        for (size_t k = 0; k < pivots.size(); ++k)
            swapped = swapped || interchanges(pivots[k], I(0), I(1), I(pivots[k].size()));
        EXPECT_TRUE(swapped);
        const std::vector<matrix<T>> factors = plu.mats;
        info.assign(static_cast<size_t>(g.total), I(-9));
        A::getri_oop_batch(path, g.n.data(), c_ptr<T, I>(plu.data()), g.lda.data(), ipiv.data(),
                           c_ptr<T, I>(inverse.data()), ldainv.data(), &groups, g.size.data(), info.data());
        EXPECT_EQ(info, std::vector<I>(static_cast<size_t>(g.total), 0));
        for (size_t k = 0; k < plu.mats.size(); ++k) {
            EXPECT_EQ(plu.mats[k].v, factors[k].v);
            EXPECT_LE(inverse_error(plu.originals[k], inverse.mats[k]), tol<T>(plu.originals[k].n));
        }
    }
}

} // namespace
