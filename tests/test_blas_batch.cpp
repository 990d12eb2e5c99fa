// Level-1 entries and their strided batches: results against a loop written here, call order
// with a shared destination, and the same results when the address arrays cannot be allocated.
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "alloc_fault.hpp"
#include "zel/blas.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace {

template <class T> struct blas;
#define ZEL_TEST_BLAS(P, C, T)                                                                                         \
    template <> struct blas<T> {                                                                                       \
        using c_type = C;                                                                                              \
        static constexpr auto axpy = zel_blas_##P##axpy;                                                               \
        static constexpr auto copy = zel_blas_##P##copy;                                                               \
        static constexpr auto axpy_batch = zel_blas_##P##axpy_batch_strided;                                           \
        static constexpr auto copy_batch = zel_blas_##P##copy_batch_strided;                                           \
    };
ZEL_DENSE_MEMBERS(ZEL_TEST_BLAS)
#undef ZEL_TEST_BLAS

template <class T> auto *c_ptr(T *p) { return reinterpret_cast<typename blas<T>::c_type *>(p); }
template <class T> auto *c_ptr(const T *p) { return reinterpret_cast<const typename blas<T>::c_type *>(p); }
template <class T> using real = zel::real_t<T>;

template <class T> std::vector<T> random_vector(size_t size, uint64_t seed)
{
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> d(-1.0, 1.0);
    std::vector<T> v(size);
    for (T &x : v) {
        if constexpr (zel::is_complex_v<T>)
            x = T(real<T>(d(rng)), real<T>(d(rng)));
        else
            x = T(real<T>(d(rng)));
    }
    return v;
}

template <class T> T alpha_value()
{
    if constexpr (zel::is_complex_v<T>)
        return T(real<T>(0.75), real<T>(-1.5));
    else
        return T(real<T>(-1.25));
}

// Offset of element j of an n-vector with increment inc (BLAS: a negative one starts at the end).
int64_t at(int64_t j, int64_t n, int64_t inc) { return inc >= 0 ? j * inc : (n - 1 - j) * -inc; }

// A batch layout and its reference results, computed member by member here.
template <class T> struct layout {
    int64_t n, incx, stridex, incy, stridey, count;
    std::vector<T> x, y;
    layout(int64_t length, int64_t ix, int64_t sx, int64_t iy, int64_t sy, int64_t members)
        : n(length), incx(ix), stridex(sx), incy(iy), stridey(sy), count(members),
          x(random_vector<T>(static_cast<size_t>(sx * members + 8), 1)),
          y(random_vector<T>(static_cast<size_t>(std::max<int64_t>(sy * members, 1) + 8), 2))
    {
    }
    std::vector<T> expected_axpy(T alpha) const
    {
        std::vector<T> out = y;
        for (int64_t i = 0; i < count; ++i)
            for (int64_t j = 0; j < n; ++j)
                out[static_cast<size_t>(i * stridey + at(j, n, incy))] +=
                    alpha * x[static_cast<size_t>(i * stridex + at(j, n, incx))];
        return out;
    }
    std::vector<T> expected_copy() const
    {
        std::vector<T> out = y;
        for (int64_t i = 0; i < count; ++i)
            for (int64_t j = 0; j < n; ++j)
                out[static_cast<size_t>(i * stridey + at(j, n, incy))] =
                    x[static_cast<size_t>(i * stridex + at(j, n, incx))];
        return out;
    }
    std::vector<T> run_axpy(T alpha) const
    {
        std::vector<T> out = y;
        blas<T>::axpy_batch(&n, c_ptr(&alpha), c_ptr(x.data()), &incx, &stridex, c_ptr(out.data()), &incy, &stridey,
                            &count);
        return out;
    }
    std::vector<T> run_copy() const
    {
        std::vector<T> out = y;
        blas<T>::copy_batch(&n, c_ptr(x.data()), &incx, &stridex, c_ptr(out.data()), &incy, &stridey, &count);
        return out;
    }
};

template <class T> void expect_close(const std::vector<T> &got, const std::vector<T> &want)
{
    ASSERT_EQ(got.size(), want.size());
    const real<T> tolerance = 8 * std::numeric_limits<real<T>>::epsilon();
    for (size_t e = 0; e < got.size(); ++e)
        EXPECT_LE(std::abs(got[e] - want[e]), tolerance * (1 + std::abs(want[e]))) << "element " << e;
}

template <class T> struct BlasBatch : ::testing::Test {};
using value_types = ::testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(BlasBatch, value_types);

TYPED_TEST(BlasBatch, OneVectorEntriesFollowBlas)
{
    using T = TypeParam;
    const std::vector<T> x = random_vector<T>(12, 3), y0 = random_vector<T>(12, 4);
    const T alpha = alpha_value<T>();
    for (auto [n, incx, incy] : {std::tuple<int64_t, int64_t, int64_t>{4, 2, -3}, {5, -2, 1}, {0, 1, 1}, {-1, 1, 1}}) {
        std::vector<T> y = y0, want = y0;
        for (int64_t j = 0; j < n; ++j)
            want[static_cast<size_t>(at(j, n, incy))] += alpha * x[static_cast<size_t>(at(j, n, incx))];
        blas<T>::axpy(&n, c_ptr(&alpha), c_ptr(x.data()), &incx, c_ptr(y.data()), &incy);
        expect_close(y, want);
        y = y0;
        want = y0;
        for (int64_t j = 0; j < n; ++j)
            want[static_cast<size_t>(at(j, n, incy))] = x[static_cast<size_t>(at(j, n, incx))];
        blas<T>::copy(&n, c_ptr(x.data()), &incx, c_ptr(y.data()), &incy);
        EXPECT_EQ(y, want);
    }
}

TYPED_TEST(BlasBatch, EveryMemberIsUpdatedAndNothingElse)
{
    using T = TypeParam;
    for (const layout<T> &batch :
         {layout<T>(5, 2, 11, -1, 8, 3), layout<T>(4, -3, 13, 2, 9, 4), layout<T>(1, 1, 1, 1, 1, 6)}) {
        expect_close(batch.run_axpy(alpha_value<T>()), batch.expected_axpy(alpha_value<T>()));
        EXPECT_EQ(batch.run_copy(), batch.expected_copy());
    }
}

TYPED_TEST(BlasBatch, EmptyOrNegativeBatchWritesNothing)
{
    using T = TypeParam;
    for (int64_t count : {0, -1, -5}) {
        layout<T> batch(3, 1, 3, 1, 3, 2);
        batch.count = count;
        EXPECT_EQ(batch.run_axpy(alpha_value<T>()), batch.y);
        EXPECT_EQ(batch.run_copy(), batch.y);
    }
}

// With stridey = 0 every member adds into one y, in member order: 1, then +big (which absorbs
// the 1), then -big gives exactly 0, while the reverse order gives 1.
TYPED_TEST(BlasBatch, SharedDestinationAccumulatesInCallOrder)
{
    using T = TypeParam;
    const real<T> big = 4 / std::numeric_limits<real<T>>::epsilon();
    const std::vector<T> x = {T(1), T(1), T(big), T(big), T(-big), T(-big)};
    const int64_t n = 2, inc = 1, stridex = 2, stridey = 0, count = 3;
    const T one(1);
    std::vector<T> y(2, T(0));
    blas<T>::axpy_batch(&n, c_ptr(&one), c_ptr(x.data()), &inc, &stridex, c_ptr(y.data()), &inc, &stridey, &count);
    EXPECT_EQ(y, std::vector<T>(2, T(0)));
    // Reversed member order through a negative stride: -big, big, then 1 gives 1.
    const int64_t back = -2;
    std::fill(y.begin(), y.end(), T(0));
    blas<T>::axpy_batch(&n, c_ptr(&one), c_ptr(x.data() + 4), &inc, &back, c_ptr(y.data()), &inc, &stridey, &count);
    EXPECT_EQ(y, std::vector<T>(2, T(1)));
    // copy with a shared destination keeps the last member.
    std::fill(y.begin(), y.end(), T(0));
    blas<T>::copy_batch(&n, c_ptr(x.data()), &inc, &stridex, c_ptr(y.data()), &inc, &stridey, &count);
    EXPECT_EQ(y, std::vector<T>(2, T(-big)));
}

TYPED_TEST(BlasBatch, FailedAddressArraysChangeNothing)
{
    using T = TypeParam;
    const layout<T> batch(6, 2, 13, -1, 7, 4);
    const std::vector<T> axpy = batch.run_axpy(alpha_value<T>()), copy = batch.run_copy();
    for (bool use_axpy : {true, false}) {
        std::vector<T> got;
        const int64_t requests = zel::test::for_each_failing_allocation(
            [&] {
                got = use_axpy ? batch.run_axpy(alpha_value<T>()) : batch.run_copy();
                return 0;
            },
            [&](int64_t k, int, zel::test::allocator_probe &probe) {
                EXPECT_EQ(got, use_axpy ? axpy : copy) << "failing allocation " << k;
                EXPECT_EQ(probe.failures(), 1);
                EXPECT_EQ(probe.live(), 0);
            });
        EXPECT_EQ(requests, 2); // one array of x addresses, one of y addresses
        zel::test::allocator_probe probe;
        probe.fail_all(true);
        got = use_axpy ? batch.run_axpy(alpha_value<T>()) : batch.run_copy();
        EXPECT_EQ(got, use_axpy ? axpy : copy);
        EXPECT_EQ(probe.live(), 0);
    }
}

} // namespace
