// Shared by the batched LAPACK tests: the exported entries per (value type, width), batches of
// column-major matrices with padding, dense reference products and an error-report recorder.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "dense_reference.hpp"
#include "zel/lapack.h"
#include "zel/serv.h"
#include "zel_internal/members.hpp"
#include "zel_internal/value_traits.hpp"

namespace batch_test {

// Which door a call goes through: the typed worker, or the entry with its width selector.
enum class via { worker, entry };
constexpr via both_paths[] = {via::worker, via::entry};

template <class Worker, class Entry> struct routine {
    Worker worker;
    Entry entry;
    int64_t selector;
    template <class... A> void operator()(via path, A... args) const
    {
        if (path == via::worker)
            worker(args...);
        else
            entry(args..., selector);
    }
};
template <class W, class E> constexpr routine<W, E> make_routine(W w, E e, int64_t selector)
{
    return {w, e, selector};
}

template <class T, class I> struct api;
#define ZEL_TEST_ROUTINE(P, w, op)                                                                                     \
    static constexpr auto op = make_routine(zel_lapack_##P##op##_omp_internal##w, zel_lapack_##P##op, w == 32);
#define ZEL_TEST_API(P, C, T, w)                                                                                       \
    template <> struct api<T, int##w##_t> {                                                                            \
        using c_type = C;                                                                                              \
        static constexpr char letter = #P[0];                                                                          \
        ZEL_TEST_ROUTINE(P, w, getrf_batch_strided)                                                                    \
        ZEL_TEST_ROUTINE(P, w, getrfnp_batch_strided)                                                                  \
        ZEL_TEST_ROUTINE(P, w, getrs_batch_strided)                                                                    \
        ZEL_TEST_ROUTINE(P, w, getrsnp_batch_strided)                                                                  \
        ZEL_TEST_ROUTINE(P, w, getri_oop_batch_strided)                                                                \
        ZEL_TEST_ROUTINE(P, w, getri_batch_strided)                                                                    \
        ZEL_TEST_ROUTINE(P, w, potrf_batch_strided)                                                                    \
        ZEL_TEST_ROUTINE(P, w, gels_batch_strided)                                                                     \
        ZEL_TEST_ROUTINE(P, w, getrf_batch)                                                                            \
        ZEL_TEST_ROUTINE(P, w, getrfnp_batch)                                                                          \
        ZEL_TEST_ROUTINE(P, w, getri_oop_batch)                                                                        \
    };
#define ZEL_TEST_API_WIDTHS(P, C, T) ZEL_TEST_API(P, C, T, 32) ZEL_TEST_API(P, C, T, 64)
ZEL_DENSE_MEMBERS(ZEL_TEST_API_WIDTHS)
#undef ZEL_TEST_API_WIDTHS
#undef ZEL_TEST_API
#undef ZEL_TEST_ROUTINE

template <class Value, class Index> struct config {
    using T = Value;
    using I = Index;
    using A = api<Value, Index>;
};
template <class, class... C> using drop_first = ::testing::Types<C...>;
#define ZEL_TEST_CONFIGS(P, C, T) , config<T, int32_t>, config<T, int64_t>
using configs = drop_first<void ZEL_DENSE_MEMBERS(ZEL_TEST_CONFIGS)>;
#undef ZEL_TEST_CONFIGS

struct config_names {
    template <class C> static std::string GetName(int)
    {
        return std::string(1, C::A::letter) + (sizeof(typename C::I) == 4 ? "_i4" : "_i8");
    }
};

// The shared dense references: matrices, products, factor reconstruction.
using namespace zel::test;

template <class T, class I> auto *c_ptr(T *p) { return reinterpret_cast<typename api<T, I>::c_type *>(p); }
template <class T, class I> auto c_ptr(T *const *p) { return reinterpret_cast<typename api<T, I>::c_type *const *>(p); }

// `count` members of m x n at distance `stride` from one another; the slack is filled too,
// so that a driver touching it is caught.
template <class T> struct strided {
    int64_t m, n, ld, stride, count;
    std::vector<T> v;
    strided(int64_t rows, int64_t cols, int64_t lead, int64_t step, int64_t members, uint64_t seed)
        : m(rows), n(cols), ld(lead), stride(step), count(members),
          v(static_cast<size_t>(std::max<int64_t>(1, step * members)))
    {
        std::mt19937_64 rng(seed);
        for (T &x : v)
            x = random_value<T>(rng);
    }
    T *data() { return v.data(); }
    T &at(int64_t k, int64_t i, int64_t j) { return v[static_cast<size_t>(k * stride + i + j * ld)]; }
    matrix<T> member(int64_t k) const
    {
        matrix<T> a(m, n);
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < m; ++i)
                a(i, j) = v[static_cast<size_t>(k * stride + i + j * ld)];
        return a;
    }
    void set(int64_t k, const matrix<T> &a)
    {
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < m; ++i)
                at(k, i, j) = a(i, j);
    }
};

// Every element outside the members' m x n blocks is as it was.
template <class T> void expect_slack_kept(const strided<T> &after, const strided<T> &before)
{
    for (size_t e = 0; e < after.v.size(); ++e) {
        const int64_t k = static_cast<int64_t>(e) / after.stride, r = static_cast<int64_t>(e) % after.stride;
        const bool inside = k < after.count && r / after.ld < after.n && r % after.ld < after.m;
        if (!inside) {
            ASSERT_EQ(after.v[e], before.v[e]) << "slack element " << e;
        }
    }
}

// Records every report that reaches the error handler while alive.
class report_log {
public:
    struct entry {
        std::string name;
        int64_t code;
    };
    report_log()
    {
        clear();
        previous_ = zel_serv_set_xerbla(record);
    }
    ~report_log() { zel_serv_set_xerbla(previous_); }
    report_log(const report_log &) = delete;
    report_log &operator=(const report_log &) = delete;

    static std::vector<entry> &entries()
    {
        static std::vector<entry> log;
        return log;
    }
    // The one report that must have come, as "name:code".
    static std::string only()
    {
        if (entries().size() != 1)
            return "reports: " + std::to_string(entries().size());
        return entries()[0].name + ":" + std::to_string(entries()[0].code);
    }
    static void clear() { entries().clear(); }

private:
    static void record(const char *name, const int64_t *info, int32_t name_len)
    {
        entries().push_back({std::string(name, static_cast<size_t>(name_len)), *info});
    }
    zel_xerbla_handler previous_;
};

} // namespace batch_test
