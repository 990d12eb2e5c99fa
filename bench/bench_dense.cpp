// `zel bench dense`: strided batches of small LU, Cholesky, inverse and solve against a plain
// loop over OpenBLAS's own one-matrix routines, in one process, on memory already touched.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <complex>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "suite.hpp"
#include "zel/lapack.h"
#include "zel_internal/isa.hpp"
#include "zel_internal/value_traits.hpp"

// The peer: OpenBLAS ILP64 from its shared object (the core carries its own private copy).
extern "C" {
void sgetrf_(const int64_t *, const int64_t *, float *, const int64_t *, int64_t *, int64_t *);
void cgetrf_(const int64_t *, const int64_t *, std::complex<float> *, const int64_t *, int64_t *, int64_t *);
void spotrf_(const char *, const int64_t *, float *, const int64_t *, int64_t *, size_t);
void cpotrf_(const char *, const int64_t *, std::complex<float> *, const int64_t *, int64_t *, size_t);
void sgetrs_(const char *, const int64_t *, const int64_t *, const float *, const int64_t *, const int64_t *,
             float *, const int64_t *, int64_t *, size_t);
void cgetrs_(const char *, const int64_t *, const int64_t *, const std::complex<float> *, const int64_t *,
             const int64_t *, std::complex<float> *, const int64_t *, int64_t *, size_t);
void sgetri_(const int64_t *, float *, const int64_t *, const int64_t *, float *, const int64_t *, int64_t *);
void cgetri_(const int64_t *, std::complex<float> *, const int64_t *, const int64_t *, std::complex<float> *,
             const int64_t *, int64_t *);
void dgetrf_(const int64_t *, const int64_t *, double *, const int64_t *, int64_t *, int64_t *);
void zgetrf_(const int64_t *, const int64_t *, std::complex<double> *, const int64_t *, int64_t *, int64_t *);
void dpotrf_(const char *, const int64_t *, double *, const int64_t *, int64_t *, size_t);
void zpotrf_(const char *, const int64_t *, std::complex<double> *, const int64_t *, int64_t *, size_t);
void dgetrs_(const char *, const int64_t *, const int64_t *, const double *, const int64_t *, const int64_t *,
             double *, const int64_t *, int64_t *, size_t);
void zgetrs_(const char *, const int64_t *, const int64_t *, const std::complex<double> *, const int64_t *,
             const int64_t *, std::complex<double> *, const int64_t *, int64_t *, size_t);
void dgetri_(const int64_t *, double *, const int64_t *, const int64_t *, double *, const int64_t *, int64_t *);
void zgetri_(const int64_t *, std::complex<double> *, const int64_t *, const int64_t *, std::complex<double> *,
             const int64_t *, int64_t *);
}

namespace {

using zcomplex = std::complex<double>;
using ccomplex = std::complex<float>;

template <class T> struct peer;
template <> struct peer<float> {
    static constexpr auto getrf = sgetrf_;
    static constexpr auto potrf = spotrf_;
    static constexpr auto getrs = sgetrs_;
    static constexpr auto getri = sgetri_;
};
template <> struct peer<ccomplex> {
    static constexpr auto getrf = cgetrf_;
    static constexpr auto potrf = cpotrf_;
    static constexpr auto getrs = cgetrs_;
    static constexpr auto getri = cgetri_;
};
template <> struct peer<double> {
    static constexpr auto getrf = dgetrf_;
    static constexpr auto potrf = dpotrf_;
    static constexpr auto getrs = dgetrs_;
    static constexpr auto getri = dgetri_;
};
template <> struct peer<zcomplex> {
    static constexpr auto getrf = zgetrf_;
    static constexpr auto potrf = zpotrf_;
    static constexpr auto getrs = zgetrs_;
    static constexpr auto getri = zgetri_;
};

// The library's side: the layer's strided batch drivers (64-bit integers, selector 0).
template <class T> struct ours;
#define ZEL_BENCH_OURS(p, T, C)                                                                           \
    template <> struct ours<T> {                                                                          \
        static void getrf(int64_t n, T *a, int64_t stride, int64_t *ipiv, int64_t count, int64_t *info)   \
        {                                                                                                 \
            zel_lapack_##p##getrf_batch_strided(&n, &n, reinterpret_cast<C *>(a), &n, &stride, ipiv, &n,  \
                                                &count, info, 0);                                         \
        }                                                                                                 \
        static void potrf(int64_t n, T *a, int64_t stride, int64_t count, int64_t *info)                  \
        {                                                                                                 \
            zel_lapack_##p##potrf_batch_strided("L", &n, reinterpret_cast<C *>(a), &n, &stride, &count,   \
                                                info, 0);                                                 \
        }                                                                                                 \
        static void inverse(int64_t n, const T *a, int64_t stride, const int64_t *ipiv, T *inv,           \
                            int64_t count, int64_t *info)                                                 \
        {                                                                                                 \
            zel_lapack_##p##getri_oop_batch_strided(&n, reinterpret_cast<const C *>(a), &n, &stride, ipiv, \
                                                    &n, reinterpret_cast<C *>(inv), &n, &stride, &count,  \
                                                    info, 0);                                             \
        }                                                                                                 \
        static void getrs(int64_t n, const T *a, int64_t stride, const int64_t *ipiv, T *b, int64_t count, \
                          int64_t *info)                                                                  \
        {                                                                                                 \
            const int64_t one = 1;                                                                        \
            zel_lapack_##p##getrs_batch_strided("N", &n, &one, reinterpret_cast<const C *>(a), &n, &stride, \
                                                ipiv, &n, reinterpret_cast<C *>(b), &n, &n, &count, info, 0); \
        }                                                                                                 \
    };
ZEL_BENCH_OURS(s, float, float)
ZEL_BENCH_OURS(d, double, double)
ZEL_BENCH_OURS(c, ccomplex, zel_complex8)
ZEL_BENCH_OURS(z, zcomplex, zel_complex16)
#undef ZEL_BENCH_OURS

template <class T> T random_value(std::mt19937_64 &rng)
{
    std::uniform_real_distribution<double> d(-1.0, 1.0);
    if constexpr (zel::is_complex_v<T>)
        return T(static_cast<typename T::value_type>(d(rng)), static_cast<typename T::value_type>(d(rng)));
    else
        return T(d(rng));
}

template <class T> T conj_value(T x)
{
    if constexpr (zel::is_complex_v<T>)
        return std::conj(x);
    else
        return x;
}

// One size of one routine: a pristine batch, the working copies, and timing of both sides.
template <class T> struct batch {
    int64_t n, count, stride;
    std::vector<T> source, work, factor, rhs_source, rhs, out;
    std::vector<int64_t> ipiv, info;

    batch(int64_t size, int64_t members, bool hermitian_definite) : n(size), count(members), stride(size * size)
    {
        std::mt19937_64 rng(12345 + static_cast<uint64_t>(size));
        source.resize(static_cast<size_t>(stride * count));
        for (auto &x : source)
            x = random_value<T>(rng);
        if (hermitian_definite) // diagonally dominant Hermitian: positive definite
            for (int64_t k = 0; k < count; ++k) {
                T *a = source.data() + k * stride;
                for (int64_t j = 0; j < n; ++j) {
                    for (int64_t i = 0; i < j; ++i)
                        a[j + i * n] = conj_value(a[i + j * n]);
                    a[j + j * n] = T(2.0 * static_cast<double>(n));
                }
            }
        work = source;
        factor = source;
        out = source;
        ipiv.assign(static_cast<size_t>(n * count), 0);
        info.assign(static_cast<size_t>(count), 0);
        rhs_source.resize(static_cast<size_t>(n * count));
        for (auto &x : rhs_source)
            x = random_value<T>(rng);
        rhs = rhs_source;
    }
    // LU factors of every member (with the peer) for the solve and the inverse.
    void factorise()
    {
        factor = source;
        for (int64_t k = 0; k < count; ++k)
            peer<T>::getrf(&n, &n, factor.data() + k * stride, &n, ipiv.data() + k * n, info.data() + k);
    }
};

using clock_type = std::chrono::steady_clock;

// Best time per member of each side over `repeats` alternating passes (alternating keeps a
// busy machine from favouring either side); `restore` runs untimed before each pass.
std::pair<double, double> best_per_member(int repeats, int64_t count, const std::function<void()> &restore,
                                          const std::function<void()> &ours_pass,
                                          const std::function<void()> &peer_pass)
{
    double best[2] = {1e30, 1e30};
    for (int r = 0; r < 2 * repeats; ++r) {
        restore();
        const auto start = clock_type::now();
        (r % 2 == 0 ? ours_pass : peer_pass)();
        const double seconds = std::chrono::duration<double>(clock_type::now() - start).count();
        best[r % 2] = std::min(best[r % 2], seconds / static_cast<double>(count));
    }
    return {best[0], best[1]};
}

struct row {
    const char *routine;
    char precision;
    int64_t n, count;
    double ours_s, peer_s, flops;
};

void print_row(const row &r)
{
    std::printf("%-8s %c %4lld %7lld  %11.1f %11.1f  %8.2f %8.2f  %6.2fx\n", r.routine, r.precision,
                static_cast<long long>(r.n), static_cast<long long>(r.count), r.ours_s * 1e9, r.peer_s * 1e9,
                r.flops / r.ours_s * 1e-9, r.flops / r.peer_s * 1e-9, r.peer_s / r.ours_s);
    std::fflush(stdout);
}

// One size: the batch, the pass count and the flop scale shared by the routines' timings.
template <class T> struct size_run {
    int64_t n, count;
    int repeats;
    char letter;
    double nd = static_cast<double>(n);
    double cx = zel::is_complex_v<T> ? 4.0 : 1.0; // real flops per complex multiply-add
};

template <class T> void time_getrf(const size_run<T> &s, batch<T> &b)
{
    int64_t n = s.n;
    auto restore = [&] { std::memcpy(b.work.data(), b.source.data(), b.source.size() * sizeof(T)); };
    auto [t_ours, t_peer] = best_per_member(s.repeats, s.count, restore, [&] {
        ours<T>::getrf(n, b.work.data(), b.stride, b.ipiv.data(), s.count, b.info.data());
    }, [&] {
        for (int64_t k = 0; k < s.count; ++k)
            peer<T>::getrf(&n, &n, b.work.data() + k * b.stride, &n, b.ipiv.data() + k * n, b.info.data() + k);
    });
    print_row({"getrf", s.letter, n, s.count, t_ours, t_peer, s.cx * 2.0 / 3.0 * s.nd * s.nd * s.nd});
}

template <class T> void time_potrf(const size_run<T> &s)
{
    int64_t n = s.n;
    batch<T> h(n, s.count, true);
    auto restore = [&] { std::memcpy(h.work.data(), h.source.data(), h.source.size() * sizeof(T)); };
    auto [t_ours, t_peer] = best_per_member(s.repeats, s.count, restore, [&] {
        ours<T>::potrf(n, h.work.data(), h.stride, s.count, h.info.data());
    }, [&] {
        for (int64_t k = 0; k < s.count; ++k)
            peer<T>::potrf("L", &n, h.work.data() + k * h.stride, &n, h.info.data() + k, 1);
    });
    print_row({"potrf", s.letter, n, s.count, t_ours, t_peer, s.cx * s.nd * s.nd * s.nd / 3.0});
}

// Needs b's LU factors (batch::factorise).
template <class T> void time_getri(const size_run<T> &s, batch<T> &b)
{
    int64_t n = s.n;
    auto touch_out = [&] { std::memset(static_cast<void *>(b.out.data()), 0, b.out.size() * sizeof(T)); };
    std::vector<T> lwork_buffer(static_cast<size_t>(64 * n));
    const int64_t lwork = 64 * n;
    auto [t_ours, t_peer] = best_per_member(s.repeats, s.count, touch_out, [&] {
        ours<T>::inverse(n, b.factor.data(), b.stride, b.ipiv.data(), b.out.data(), s.count, b.info.data());
    }, [&] {
        for (int64_t k = 0; k < s.count; ++k) {
            T *inv = b.out.data() + k * b.stride;
            std::memcpy(inv, b.factor.data() + k * b.stride, sizeof(T) * n * n);
            peer<T>::getri(&n, inv, &n, b.ipiv.data() + k * n, lwork_buffer.data(), &lwork, b.info.data() + k);
        }
    });
    print_row({"getri", s.letter, n, s.count, t_ours, t_peer, s.cx * 4.0 / 3.0 * s.nd * s.nd * s.nd});
}

// Needs b's LU factors (batch::factorise).
template <class T> void time_getrs(const size_run<T> &s, batch<T> &b)
{
    int64_t n = s.n;
    const int64_t one_rhs = 1;
    auto restore_rhs = [&] { std::memcpy(b.rhs.data(), b.rhs_source.data(), b.rhs.size() * sizeof(T)); };
    auto [t_ours, t_peer] = best_per_member(s.repeats, s.count, restore_rhs, [&] {
        ours<T>::getrs(n, b.factor.data(), b.stride, b.ipiv.data(), b.rhs.data(), s.count, b.info.data());
    }, [&] {
        for (int64_t k = 0; k < s.count; ++k)
            peer<T>::getrs("N", &n, &one_rhs, b.factor.data() + k * b.stride, &n, b.ipiv.data() + k * n,
                           b.rhs.data() + k * n, &n, b.info.data() + k, 1);
    });
    print_row({"getrs", s.letter, n, s.count, t_ours, t_peer, s.cx * 2.0 * s.nd * s.nd});
}

// The routines the request's sections name.
struct routines {
    bool getrf, potrf, getri, getrs;
    explicit routines(const zel::bench::request &what)
        : getrf(runs(what, "getrf")), potrf(runs(what, "potrf")), getri(runs(what, "getri")),
          getrs(runs(what, "getrs"))
    {
    }
    static bool runs(const zel::bench::request &what, const char *name)
    {
        return what.runs(zel::bench::find_section(*what.suite, name));
    }
};

template <class T>
void run_precision(char letter, const std::vector<int64_t> &sizes, int repeats, double bytes, const routines &only)
{
    for (int64_t n : sizes) {
        const int64_t count = std::max<int64_t>(8, static_cast<int64_t>(bytes / (sizeof(T) * n * n)));
        zel::bench::progress("dense: %c, n = %lld, batch of %lld", letter, static_cast<long long>(n),
                             static_cast<long long>(count));
        const size_run<T> s{n, count, repeats, letter};
        batch<T> b(n, count, false);
        if (only.getrf)
            time_getrf(s, b);
        if (only.potrf)
            time_potrf(s);
        if (only.getri || only.getrs)
            b.factorise();
        if (only.getri)
            time_getri(s, b);
        if (only.getrs)
            time_getrs(s, b);
    }
}

// One instruction set's table, in this process (the core chose its kernels at load time).
int run_one_set(const zel::bench::request &what)
{
    const std::vector<int64_t> &sizes = what.sizes;
    const double bytes = (what.quick ? 1.0 : 4.0) * 1024 * 1024;
    const routines only(what);
    std::printf("%-8s %c %4s %7s  %11s %11s  %8s %8s  %7s\n", "routine", 'p', "n", "batch", "ours ns",
                "peer ns", "ours GF", "peer GF", "ratio");
    run_precision<double>('d', sizes, what.repeats, bytes, only);
    run_precision<zcomplex>('z', sizes, what.repeats, bytes, only);
    run_precision<float>('s', sizes, what.repeats, bytes, only);
    run_precision<ccomplex>('c', sizes, what.repeats, bytes, only);
    return 0;
}

// Set in the child that measures one instruction set.
constexpr const char *child_variable = "ZEL_BENCH_DENSE_ONE_SET";

const char *isa_name(zel::isa_level level)
{
    return level == zel::isa_level::avx512 ? "avx512" : level == zel::isa_level::avx2 ? "avx2" : "baseline";
}

// The peer's kernels lowered with ours, so that a lowered table stands for a processor of that
// level; left alone on the processor's own level or when the caller chose them.
const char *peer_core_type(zel::isa_level level)
{
    if (level == zel::processor_isa() || std::getenv("OPENBLAS_CORETYPE") != nullptr)
        return nullptr;
    return level == zel::isa_level::avx2 ? "Haswell" : "Nehalem";
}

// Runs this program again on the same request with the core's kernels lowered to level: the
// choice is made once per process, so each set needs a process of its own.
int run_child(const zel::bench::request &what, zel::isa_level level)
{
    std::string sizes, sections;
    for (int64_t n : what.sizes)
        sizes.append(sizes.empty() ? "" : ",").append(std::to_string(n));
    for (const char *name : {"getrf", "potrf", "getri", "getrs"})
        if (routines::runs(what, name))
            sections.append(sections.empty() ? "" : ",").append(name);
    const std::string repeats = std::to_string(what.repeats);
    std::vector<const char *> args = {"bench", "dense", "--repeats", repeats.c_str(), "--sizes", sizes.c_str(),
                                      "--section", sections.c_str()};
    if (what.quick)
        args.push_back("--quick");
    args.push_back(nullptr);
    const char *core_type = peer_core_type(level);
    std::printf("== %s (ZEL_DENSE_ISA=%s; peer: OpenBLAS %s%s)\n", isa_name(level), isa_name(level),
                core_type ? "OPENBLAS_CORETYPE=" : "on its own choice", core_type ? core_type : "");
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        setenv("ZEL_DENSE_ISA", isa_name(level), 1);
        setenv(child_variable, "1", 1);
        if (core_type)
            setenv("OPENBLAS_CORETYPE", core_type, 1);
        execv("/proc/self/exe", const_cast<char *const *>(args.data()));
        std::perror("zel bench dense: /proc/self/exe");
        _exit(127);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "zel bench dense: the %s run failed\n", isa_name(level));
        return 1;
    }
    std::printf("\n");
    return 0;
}

int run(const zel::bench::request &what)
{
    if (std::getenv(child_variable) != nullptr)
        return run_one_set(what);
    std::printf("zel bench dense: per-member time, best of %d passes over a batch of ~%.0f KiB, on\n"
                "memory already touched (each pass restores its inputs untimed first).\n"
                "peer: plain loop over OpenBLAS ILP64 ?getrf_, ?potrf_ (lower), the inverse as copy of\n"
                "the LU factor + ?getri_, ?getrs_ with nrhs = 1, for d, z, s and c.\n"
                "ours: the layer's strided drivers zel_lapack_?getrf_batch_strided, ?potrf_, ?getri_oop_,\n"
                "?getrs_ (64-bit integers), over the core's one-matrix kernels.\n"
                "One table per instruction set this processor runs, each in a process of its own with the\n"
                "core's kernels lowered to that set (ZEL_DENSE_ISA, as the tests force them).\n\n",
                what.repeats, (what.quick ? 1.0 : 4.0) * 1024);
    const zel::isa_level top = zel::choose_isa("ZEL_DENSE_ISA");
    int status = 0;
    for (zel::isa_level level : {zel::isa_level::avx512, zel::isa_level::avx2, zel::isa_level::baseline})
        if (level <= top)
            status |= run_child(what, level);
    return status;
}

} // namespace

ZEL_BENCH_SUITE("dense", run);
