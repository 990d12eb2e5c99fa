// The core helpers of the one-right-hand-side kernels: the one-vector triangular solve and
// product against dense loops in long double (both sides of the product's small-panel limit),
// interchanges undone, the permutation between steps, the merge of partial vectors, the
// partition bounds and the yield.
#include <gtest/gtest.h>

#include <complex>
#include <numeric>
#include <random>
#include <vector>

#include "zel/dense_kernels.h"
#include "zel/pds_onerhs.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace {

template <class T> struct dense;
#define ONERHS_DENSE(P, C, T)                                                                                 \
    template <> struct dense<T> {                                                                             \
        using c_type = C;                                                                                     \
        static constexpr auto gemv = zel_blas_x##P##gemv;                                                     \
        static constexpr auto trsm = zel_blas_x##P##trsm;                                                     \
    };
ZEL_DENSE_MEMBERS(ONERHS_DENSE)
#undef ONERHS_DENSE

template <class T> struct OneRhsCore : ::testing::Test {};
using values = ::testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(OneRhsCore, values);

template <class T> T draw(std::mt19937_64 &rng)
{
    std::uniform_real_distribution<double> u(-1, 1);
    if constexpr (zel::is_complex_v<T>)
        return T(zel::real_t<T>(u(rng)), zel::real_t<T>(u(rng)));
    else
        return T(u(rng));
}
template <class T> using wide = std::conditional_t<zel::is_complex_v<T>, std::complex<long double>, long double>;
template <class T> wide<T> widen(T v)
{
    if constexpr (zel::is_complex_v<T>)
        return {v.real(), v.imag()};
    else
        return v;
}
template <class T> double eps() { return double(std::numeric_limits<zel::real_t<T>>::epsilon()); }

// y = alpha·op(A)·x + beta·y for panels on both sides of the small-panel limit and every op.
TYPED_TEST(OneRhsCore, ProductMatchesDenseLoops)
{
    using T = TypeParam;
    using C = typename dense<T>::c_type;
    std::mt19937_64 rng(1);
    for (auto [m, n] : {std::pair<int64_t, int64_t>{7, 5}, {40, 51}, {300, 9}, {1, 1}, {0, 3}})
        for (char trans : {'N', 'T', 'C'})
            for (T beta : {T(0), T(1), T(0.5)}) {
                const int64_t lda = m + 2, one = 1, ny = trans == 'N' ? m : n, nx = trans == 'N' ? n : m;
                std::vector<T> a(static_cast<size_t>(lda * n)), x(static_cast<size_t>(nx)), y(static_cast<size_t>(ny));
                for (auto *v : {&a, &x, &y})
                    for (T &e : *v)
                        e = draw<T>(rng);
                const T alpha = T(-1.5);
                std::vector<wide<T>> expect(static_cast<size_t>(ny));
                for (int64_t i = 0; i < ny; ++i) {
                    wide<T> s = 0;
                    for (int64_t k = 0; k < nx; ++k) {
                        T e = trans == 'N' ? a[size_t(i + k * lda)] : a[size_t(k + i * lda)];
                        if (trans == 'C')
                            e = zel::conj_if(e, true);
                        s += widen(e) * widen(x[size_t(k)]);
                    }
                    expect[size_t(i)] = widen(alpha) * s + widen(beta) * widen(y[size_t(i)]);
                }
                dense<T>::gemv(&trans, &m, &n, reinterpret_cast<const C *>(&alpha),
                               reinterpret_cast<const C *>(a.data()), &lda, reinterpret_cast<const C *>(x.data()), &one,
                               reinterpret_cast<const C *>(&beta), reinterpret_cast<C *>(y.data()), &one, 1);
                for (int64_t i = 0; i < ny; ++i)
                    EXPECT_LT(std::abs(widen(y[size_t(i)]) - expect[size_t(i)]), 8 * (nx + 2) * eps<T>())
                        << m << "x" << n << " " << trans << " row " << i;
            }
}

// One right-hand side (the trsv path) and two (trsm) give the same solves.
TYPED_TEST(OneRhsCore, TriangularSolveOneAndTwoColumns)
{
    using T = TypeParam;
    using C = typename dense<T>::c_type;
    std::mt19937_64 rng(2);
    const int64_t m = 33, lda = 35, one = 1, two = 2;
    std::vector<T> a(size_t(lda * m));
    for (T &e : a)
        e = draw<T>(rng);
    for (int64_t i = 0; i < m; ++i)
        a[size_t(i + i * lda)] += T(4);
    for (const char *uplo : {"L", "U"})
        for (const char *trans : {"N", "T", "C"})
            for (const char *diag : {"N", "U"}) {
                std::vector<T> b(size_t(2 * m));
                for (T &e : b)
                    e = draw<T>(rng);
                std::vector<T> x1(b.begin(), b.begin() + m), x2 = b;
                const T alpha(1);
                const C *ca = reinterpret_cast<const C *>(a.data()), *cal = reinterpret_cast<const C *>(&alpha);
                dense<T>::trsm("L", uplo, trans, diag, &m, &one, cal, ca, &lda, reinterpret_cast<C *>(x1.data()), &m,
                               1, 1, 1, 1);
                dense<T>::trsm("L", uplo, trans, diag, &m, &two, cal, ca, &lda, reinterpret_cast<C *>(x2.data()), &m,
                               1, 1, 1, 1);
                for (int64_t i = 0; i < m; ++i)
                    EXPECT_LT(std::abs(widen(x1[size_t(i)]) - widen(x2[size_t(i)])),
                              64 * m * eps<T>() * (1 + std::abs(widen(x2[size_t(i)]))))
                        << uplo << trans << diag << " row " << i;
            }
}

TEST(OneRhsCoreHelpers, InterchangesUndoneInReverse)
{
    const std::vector<int64_t> ipiv{3, 3, 4, 4};
    const int64_t n = 4;
    std::vector<double> x{10, 20, 30, 40};
    std::vector<std::complex<double>> z{{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    std::vector<float> s{10, 20, 30, 40};
    std::vector<std::complex<float>> c{{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    // The forward interchanges (as laswp applies them), then the routine: the identity.
    const int64_t one = 1;
    zel_lapack_dlaswp(&one, x.data(), &n, &one, &n, ipiv.data(), &one);
    EXPECT_EQ(x, (std::vector<double>{30, 10, 40, 20}));
    zel_pds_luspxm_varisol(&n, x.data(), ipiv.data());
    EXPECT_EQ(x, (std::vector<double>{10, 20, 30, 40}));
    // Reverse order: swap(3,4) first, then (2,3), then (0,2).
    zel_pds_c_luspxm_varisol(&n, reinterpret_cast<zel_complex16 *>(z.data()), ipiv.data());
    EXPECT_EQ(z, (std::vector<std::complex<double>>{{2, 2}, {4, 4}, {1, 1}, {3, 3}}));
    zel_pds_sp_luspxm_varisol(&n, s.data(), ipiv.data());
    EXPECT_EQ(s, (std::vector<float>{20, 40, 10, 30}));
    zel_pds_sp_c_luspxm_varisol(&n, reinterpret_cast<zel_complex8 *>(c.data()), ipiv.data());
    EXPECT_EQ(c, (std::vector<std::complex<float>>{{2, 2}, {4, 4}, {1, 1}, {3, 3}}));
}

TEST(OneRhsCoreHelpers, PermutationBetweenSteps)
{
    const int64_t n = 5;
    const std::vector<int64_t> perm{3, 1, 5, 2, 4};
    std::vector<double> x{1, 2, 3, 4, 5}, work(5);
    zel_pds_fdb_perm_mic_real(&n, perm.data(), x.data(), work.data());
    EXPECT_EQ(x, (std::vector<double>{3, 1, 5, 2, 4}));
    zel_pds_fdb_perm_mic_real(&n, nullptr, x.data(), work.data());
    EXPECT_EQ(x, (std::vector<double>{3, 1, 5, 2, 4}));
    std::vector<std::complex<double>> z{{1, -1}, {2, -2}, {3, -3}, {4, -4}, {5, -5}}, zw(5);
    zel_pds_fdb_perm_mic_cmplx(&n, perm.data(), reinterpret_cast<zel_complex16 *>(z.data()),
                               reinterpret_cast<zel_complex16 *>(zw.data()));
    EXPECT_EQ(z, (std::vector<std::complex<double>>{{3, -3}, {1, -1}, {5, -5}, {2, -2}, {4, -4}}));
}

TEST(OneRhsCoreHelpers, MergeClearsThePartialVector)
{
    const int64_t n = 3;
    std::vector<double> partial{1, -2, 0.5}, x{10, 10, 10};
    zel_pds_copy_rhs_omp_to_rhs_real(&n, partial.data(), x.data());
    EXPECT_EQ(x, (std::vector<double>{11, 8, 10.5}));
    EXPECT_EQ(partial, (std::vector<double>{0, 0, 0}));
    std::vector<float> ps{1, 2, 3}, xs{1, 1, 1};
    zel_pds_sp_copy_rhs_omp_to_rhs_real(&n, ps.data(), xs.data());
    EXPECT_EQ(xs, (std::vector<float>{2, 3, 4}));
    EXPECT_EQ(ps, (std::vector<float>{0, 0, 0}));
}

// The partitions cover 1 … nsuper in order without gaps or overlaps, their sizes within one of
// each other; a partition beyond the count is empty.
TEST(OneRhsCoreHelpers, PartitionBoundsCoverTheSupernodes)
{
    for (int64_t nsuper : {0, 1, 7, 100})
        for (int64_t parts : {1, 2, 3, 8, 150}) {
            int64_t next = 1, smallest = nsuper, largest = 0;
            for (int64_t p = 0; p < parts; ++p) {
                int64_t first = -1, last = -1;
                zel_pds_get_ddist_bounds(&nsuper, &parts, &p, &first, &last);
                EXPECT_EQ(first, next) << nsuper << " " << parts << " " << p;
                EXPECT_GE(last, first - 1);
                smallest = std::min(smallest, last - first + 1);
                largest = std::max(largest, last - first + 1);
                next = last + 1;
            }
            EXPECT_EQ(next, nsuper + 1);
            EXPECT_LE(largest - smallest, 1);
        }
    zel_serv_thread_yield();
}

} // namespace
