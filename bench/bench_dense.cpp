// `zel bench dense`: strided batches of small LU, Cholesky, inverse and solve against a plain
// loop over OpenBLAS's own one-matrix routines, in one process, on memory already touched.
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

#include "command.hpp"
#include "zel/dense_kernels.h"

// The peer: OpenBLAS ILP64 from its shared object (the core carries its own private copy).
extern "C" {
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

template <class T> struct peer;
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

// The library's side: the core's one-matrix kernels.
template <class T> struct ours;
template <> struct ours<double> {
    static void getrf(const int64_t *m, const int64_t *n, double *a, const int64_t *lda, int64_t *ipiv, int64_t *info)
    {
        zel_lapack_xdgetrf(m, n, a, lda, ipiv, info);
    }
    static void potrf(const char *u, const int64_t *n, double *a, const int64_t *lda, int64_t *info)
    {
        zel_lapack_dpotrf(u, n, a, lda, info, 1);
    }
    static void getrs(const char *t, const int64_t *n, const int64_t *nrhs, const double *a, const int64_t *lda,
                      const int64_t *ipiv, double *b, const int64_t *ldb, int64_t *info)
    {
        zel_lapack_dgetrs(t, n, nrhs, a, lda, ipiv, b, ldb, info, 1);
    }
    static constexpr auto getri_oop = zel_lapack_dgetri_oop;
    static constexpr auto laset = zel_lapack_dlaset;
    static constexpr auto laswp = zel_lapack_dlaswp;
    static constexpr auto trsm = zel_blas_dtrsm;
    using c_type = double;
};
template <> struct ours<zcomplex> {
    static void getrf(const int64_t *m, const int64_t *n, zcomplex *a, const int64_t *lda, int64_t *ipiv, int64_t *info)
    {
        zel_lapack_xzgetrf(m, n, reinterpret_cast<zel_complex16 *>(a), lda, ipiv, info);
    }
    static void potrf(const char *u, const int64_t *n, zcomplex *a, const int64_t *lda, int64_t *info)
    {
        zel_lapack_zpotrf(u, n, reinterpret_cast<zel_complex16 *>(a), lda, info, 1);
    }
    static void getrs(const char *t, const int64_t *n, const int64_t *nrhs, const zcomplex *a, const int64_t *lda,
                      const int64_t *ipiv, zcomplex *b, const int64_t *ldb, int64_t *info)
    {
        zel_lapack_zgetrs(t, n, nrhs, reinterpret_cast<const zel_complex16 *>(a), lda, ipiv,
                          reinterpret_cast<zel_complex16 *>(b), ldb, info, 1);
    }
    static constexpr auto getri_oop = zel_lapack_zgetri_oop;
    static constexpr auto laset = zel_lapack_zlaset;
    static constexpr auto laswp = zel_lapack_zlaswp;
    static constexpr auto trsm = zel_blas_ztrsm;
    using c_type = zel_complex16;
};

// The out-of-place inverse as the layer's driver builds it, one member at a time.
template <class T>
void ours_inverse(int64_t n, const T *a, int64_t lda, const int64_t *ipiv, T *inv, int64_t ldinv)
{
    using C = typename ours<T>::c_type;
    int64_t info = 0;
    ours<T>::getri_oop(&n, reinterpret_cast<const C *>(a), &lda, ipiv, reinterpret_cast<C *>(inv), &ldinv, &info);
    return;
    const T zero(0), one(1);
    const int64_t k1 = 1, inc = 1;
    const C *c_one = reinterpret_cast<const C *>(&one);
    ours<T>::laset("A", &n, &n, reinterpret_cast<const C *>(&zero), c_one, reinterpret_cast<C *>(inv), &ldinv, 1);
    ours<T>::laswp(&n, reinterpret_cast<C *>(inv), &ldinv, &k1, &n, ipiv, &inc);
    ours<T>::trsm("L", "L", "N", "U", &n, &n, c_one, reinterpret_cast<const C *>(a), &lda,
                  reinterpret_cast<C *>(inv), &ldinv, 1, 1, 1, 1);
    ours<T>::trsm("L", "U", "N", "N", &n, &n, c_one, reinterpret_cast<const C *>(a), &lda,
                  reinterpret_cast<C *>(inv), &ldinv, 1, 1, 1, 1);
}

template <class T> T random_value(std::mt19937_64 &rng)
{
    std::uniform_real_distribution<double> d(-1.0, 1.0);
    if constexpr (std::is_same_v<T, zcomplex>)
        return T(d(rng), d(rng));
    else
        return T(d(rng));
}

template <class T> T conj_value(T x)
{
    if constexpr (std::is_same_v<T, zcomplex>)
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

template <class T> void run_precision(char letter, const std::vector<int64_t> &sizes, int repeats, double bytes)
{
    const double cx = std::is_same_v<T, zcomplex> ? 4.0 : 1.0; // real flops per complex multiply-add
    for (int64_t n : sizes) {
        const int64_t count = std::max<int64_t>(8, static_cast<int64_t>(bytes / (sizeof(T) * n * n)));
        const double nd = static_cast<double>(n);
        const int64_t one = 1;

        batch<T> b(n, count, false);
        auto restore = [&] { std::memcpy(b.work.data(), b.source.data(), b.source.size() * sizeof(T)); };
        auto [t_ours, t_peer] = best_per_member(repeats, count, restore, [&] {
            for (int64_t k = 0; k < count; ++k)
                ours<T>::getrf(&n, &n, b.work.data() + k * b.stride, &n, b.ipiv.data() + k * n, b.info.data() + k);
        }, [&] {
            for (int64_t k = 0; k < count; ++k)
                peer<T>::getrf(&n, &n, b.work.data() + k * b.stride, &n, b.ipiv.data() + k * n, b.info.data() + k);
        });
        print_row({"getrf", letter, n, count, t_ours, t_peer, cx * 2.0 / 3.0 * nd * nd * nd});

        batch<T> h(n, count, true);
        auto restore_h = [&] { std::memcpy(h.work.data(), h.source.data(), h.source.size() * sizeof(T)); };
        std::tie(t_ours, t_peer) = best_per_member(repeats, count, restore_h, [&] {
            for (int64_t k = 0; k < count; ++k)
                ours<T>::potrf("L", &n, h.work.data() + k * h.stride, &n, h.info.data() + k);
        }, [&] {
            for (int64_t k = 0; k < count; ++k)
                peer<T>::potrf("L", &n, h.work.data() + k * h.stride, &n, h.info.data() + k, 1);
        });
        print_row({"potrf", letter, n, count, t_ours, t_peer, cx * nd * nd * nd / 3.0});

        b.factorise();
        auto touch_out = [&] { std::memset(static_cast<void *>(b.out.data()), 0, b.out.size() * sizeof(T)); };
        std::vector<T> lwork_buffer(static_cast<size_t>(64 * n));
        const int64_t lwork = 64 * n;
        std::tie(t_ours, t_peer) = best_per_member(repeats, count, touch_out, [&] {
            for (int64_t k = 0; k < count; ++k)
                ours_inverse(n, b.factor.data() + k * b.stride, n, b.ipiv.data() + k * n, b.out.data() + k * b.stride, n);
        }, [&] {
            for (int64_t k = 0; k < count; ++k) {
                T *inv = b.out.data() + k * b.stride;
                std::memcpy(inv, b.factor.data() + k * b.stride, sizeof(T) * n * n);
                peer<T>::getri(&n, inv, &n, b.ipiv.data() + k * n, lwork_buffer.data(), &lwork, b.info.data() + k);
            }
        });
        print_row({"getri", letter, n, count, t_ours, t_peer, cx * 4.0 / 3.0 * nd * nd * nd});

        auto restore_rhs = [&] { std::memcpy(b.rhs.data(), b.rhs_source.data(), b.rhs.size() * sizeof(T)); };
        std::tie(t_ours, t_peer) = best_per_member(repeats, count, restore_rhs, [&] {
            for (int64_t k = 0; k < count; ++k)
                ours<T>::getrs("N", &n, &one, b.factor.data() + k * b.stride, &n, b.ipiv.data() + k * n,
                               b.rhs.data() + k * n, &n, b.info.data() + k);
        }, [&] {
            for (int64_t k = 0; k < count; ++k)
                peer<T>::getrs("N", &n, &one, b.factor.data() + k * b.stride, &n, b.ipiv.data() + k * n,
                               b.rhs.data() + k * n, &n, b.info.data() + k, 1);
        });
        print_row({"getrs", letter, n, count, t_ours, t_peer, cx * 2.0 * nd * nd});
    }
}

int run(int argc, char **argv)
{
    std::vector<int64_t> sizes = {4, 8, 16, 32, 64, 128};
    int repeats = 7;
    double bytes = 4.0 * 1024 * 1024;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            std::printf("usage: zel bench dense [--quick] [--sizes n,n,...]\n"
                        "Times strided batches (about 4 MiB of matrices per size) of getrf, potrf, the\n"
                        "out-of-place inverse and getrs (one right-hand side) in d and z against a plain\n"
                        "loop over OpenBLAS's one-matrix routines; the best of several passes.\n");
            return 0;
        }
        if (std::strcmp(argv[i], "--quick") == 0) {
            repeats = 3;
            bytes /= 4;
        } else if (std::strcmp(argv[i], "--sizes") == 0 && i + 1 < argc) {
            sizes.clear();
            for (char *p = argv[++i]; *p != '\0';) {
                sizes.push_back(std::strtoll(p, &p, 10));
                if (*p == ',')
                    ++p;
            }
        }
    }
    std::printf("zel bench dense: per-member time, best of %d passes over a batch of ~%.0f KiB, on\n"
                "memory already touched (each pass restores its inputs untimed first).\n"
                "peer: plain loop over OpenBLAS ILP64 dgetrf_/zgetrf_, dpotrf_/zpotrf_ (lower), the\n"
                "inverse as copy of the LU factor + dgetri_/zgetri_, dgetrs_/zgetrs_ with nrhs = 1.\n"
                "ours: the core's one-matrix kernels in a loop; inverse = laset + laswp + 2 trsm.\n\n",
                repeats, bytes / 1024);
    std::printf("%-8s %c %4s %7s  %11s %11s  %8s %8s  %7s\n", "routine", 'p', "n", "batch", "ours ns",
                "peer ns", "ours GF", "peer GF", "ratio");
    run_precision<double>('d', sizes, repeats, bytes);
    run_precision<zcomplex>('z', sizes, repeats, bytes);
    return 0;
}

} // namespace

ZEL_TOOL_COMMAND("bench", "dense", "small dense LU, Cholesky, inverse and solve batches vs OpenBLAS", run);
