// `zel bench solver`: the sparse Cholesky solver's phases against CHOLMOD's, and the list of the
// suite's sections (the LU and L·D·Lᵀ ones are in bench_solver_lu.cpp). zel runs here through the
// public phase interface; CHOLMOD runs in zel-bench-cholmod, a process of its own, on the same
// matrix, once with its own ordering and once with the ordering zel chose (so that the factors'
// sizes compare like for like).
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "bench_solver_common.hpp"
#include "bench_solver_peer.hpp"
#include "solver_problems.hpp"
#include "suite.hpp"
#include "zel/pds.h"

namespace zel::bench {
namespace {

constexpr int64_t block_rhs = 16;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞), as the peer computes its own.
double residual(const upper_csr &a, const std::vector<double> &x, const std::vector<double> &b)
{
    return error_of(a, x, b).normwise;
}

// ---- zel's side

struct zel_result {
    std::string failure; // the phase that failed and its status, or empty
    double analyse = 0, factorise = 0, solve1 = nan, solve16 = nan, residual = nan;
    zel_pds_statistics stats{};
    std::vector<int64_t> perm;
};

// The pattern in the index width the analysis takes.
template <class I> struct pattern_arrays {
    std::vector<I> row_ptr, col;
    explicit pattern_arrays(const upper_csr &a) : row_ptr(a.row_ptr.begin(), a.row_ptr.end()), col(a.col.begin(), a.col.end()) {}
};

int analyse_upper(zel_pds_solver *s, const pattern_arrays<int32_t> &p)
{
    return zel_pds_analyse_csr_i4(s, int32_t(p.row_ptr.size() - 1), p.row_ptr.data(), p.col.data(), 0,
                                  ZEL_PDS_STORAGE_UPPER);
}

int analyse_upper(zel_pds_solver *s, const pattern_arrays<int64_t> &p)
{
    return zel_pds_analyse_csr_i8(s, int64_t(p.row_ptr.size() - 1), p.row_ptr.data(), p.col.data(), 0,
                                  ZEL_PDS_STORAGE_UPPER);
}

template <class F> int export_perm(const zel_pds_solver *s, std::vector<int64_t> &perm)
{
    F factor{};
    int status;
    if constexpr (sizeof(factor.n) == 4)
        status = zel_pds_export_factor_i4(s, &factor);
    else
        status = zel_pds_export_factor_i8(s, &factor);
    if (status == ZEL_PDS_STATUS_SUCCESS)
        perm.assign(factor.perm, factor.perm + factor.n);
    return status;
}

bool failed(int status, const char *phase, zel_result &out)
{
    if (status != ZEL_PDS_STATUS_SUCCESS)
        out.failure = std::string(phase) + ": " + zel_pds_status_name(status);
    return status != ZEL_PDS_STATUS_SUCCESS;
}

// One untimed solve, then the best of the rounds.
double best_solve(zel_pds_solver *s, int64_t n, int64_t nrhs, const std::vector<double> &b, std::vector<double> &x,
                  int repeats, int &status)
{
    status = zel_pds_d_solve(s, nrhs, b.data(), n, x.data(), n);
    return best_of(repeats, [&] { keep_first(status, zel_pds_d_solve(s, nrhs, b.data(), n, x.data(), n)); });
}

// b = A·1 for one right-hand side, and the peer's block of 16 varied columns.
void solve_phase(zel_pds_solver *s, const upper_csr &a, int repeats, zel_result &out)
{
    const int64_t n = a.n;
    const std::vector<double> b = ones_rhs(a);
    std::vector<double> x(b.size());
    int status = 0;
    out.solve1 = best_solve(s, n, 1, b, x, repeats, status);
    if (failed(status, "solve", out))
        return;
    out.residual = residual(a, x, b);
    std::vector<double> block(size_t(n * block_rhs)), xs(block.size());
    for (int64_t j = 0; j < block_rhs; ++j)
        for (int64_t i = 0; i < n; ++i)
            block[size_t(i + j * n)] = 1.0 + double((i * 7 + j * 13) % 17) / 17.0;
    out.solve16 = best_solve(s, n, block_rhs, block, xs, repeats, status);
    failed(status, "solve with 16 right-hand sides", out);
}

template <class I, class F> zel_result measure_zel(const upper_csr &a, int repeats)
{
    zel_result out;
    const pattern_arrays<I> pattern(a);
    zel_pds_solver *s = nullptr;
    if (failed(zel_pds_d_create(&s, ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE), "create", out))
        return out;
    zel_pds_options options;
    zel_pds_default_options(&options);
    options.refinement_max_steps = 0;
    zel_pds_set_options(s, &options);
    int status = 0;
    out.analyse = best_of(repeats, [&] { keep_first(status, analyse_upper(s, pattern)); });
    if (!failed(status, "analyse", out)) {
        out.factorise = best_of(repeats, [&] { keep_first(status, zel_pds_d_factorise(s, a.value.data())); });
        if (!failed(status, "factorise", out)) {
            zel_pds_get_statistics(s, &out.stats);
            if (!failed(export_perm<F>(s, out.perm), "export", out))
                solve_phase(s, a, repeats, out);
        }
    }
    zel_pds_destroy(s);
    return out;
}

// ---- the table

void print_header()
{
    std::printf("  %-26s %9s %9s %9s %9s %12s %8s %-8s %10s %9s\n", "", "analyse", "factorise", "solve 1", "solve 16",
                "L entries", "GFLOP/s", "ordering", "supernodes", "residual");
    std::printf("  %-26s %9s %9s %9s %9s\n", "", "ms", "ms", "ms", "ms");
}

struct row_figures {
    double analyse, factorise, solve1, solve16, entries, flops, residual;
    int64_t supernodes;
    std::string ordering;
};

void print_row(const char *who, const row_figures &f)
{
    std::printf("  %-26s %9s %9s %9s %9s %12.0f %8s %-8s %10lld %9s\n", who, ms(f.analyse).c_str(),
                ms(f.factorise).c_str(), ms(f.solve1).c_str(), ms(f.solve16).c_str(), f.entries,
                figure(f.flops / f.factorise / 1e9, "%.2f").c_str(), f.ordering.c_str(),
                static_cast<long long>(f.supernodes), figure(f.residual, "%.1e").c_str());
}

row_figures figures_of(const zel_result &z)
{
    return {z.analyse, z.factorise, z.solve1, z.solve16, double(z.stats.factor_entries), z.stats.factor_flops,
            z.residual, z.stats.supernodes, ordering_name(z.stats.ordering)};
}

row_figures figures_of(const peer_run &c)
{
    return {c.analyse, c.factorise, c.solve1, c.solve16, c.entries, c.flops, c.residual, c.supernodes, c.ordering};
}

// zel's figures over the peer's: times below 1 and rates above 1 mean zel is faster.
void print_ratios(const char *who, const row_figures &z, const row_figures &c)
{
    std::printf("  %-26s %9s %9s %9s %9s %12s %8s\n", who, figure(z.analyse / c.analyse, "%.2f").c_str(),
                figure(z.factorise / c.factorise, "%.2f").c_str(), figure(z.solve1 / c.solve1, "%.2f").c_str(),
                figure(z.solve16 / c.solve16, "%.2f").c_str(), figure(z.entries / c.entries, "%.3f").c_str(),
                figure((z.flops / z.factorise) / (c.flops / c.factorise), "%.2f").c_str());
}

void print_goal(const char *what, const std::string &measured, bool applies, bool met)
{
    std::printf("  goal: %-56s %9s  %s\n", what, measured.c_str(),
                !applies ? "(set for the Laplacians)" : measured == "-" ? "not measured" : met ? "met" : "MISSED");
}

void print_goals(const zel_result &z, const peer_report &c, bool laplacian)
{
    if (c.ran) {
        const double share = (z.analyse + z.factorise) / (c.own.analyse + c.own.factorise);
        print_goal("analyse + factorise <= 0.75 of cholmod's", figure(share, "%.2f"), laplacian, share <= 0.75);
        const double speed = c.own.solve1 / z.solve1;
        print_goal("solve, 1 rhs: >= 1.3x cholmod's speed", figure(speed, "%.2fx"), true, speed >= 1.3);
    }
    const double block = z.solve16 / z.solve1;
    print_goal("solve, 16 rhs: <= 3x zel's 1-rhs time", figure(block, "%.2fx"), true, block <= 3.0);
    if (c.ran) {
        const double excess = double(z.stats.factor_entries) / c.given.entries - 1.0;
        print_goal("L entries within 5% of cholmod's on zel's ordering", figure(100 * excess, "%+.1f%%"), true,
                   std::abs(excess) <= 0.05);
    }
}

// The peer and the BLAS it ran on, printed again only when they change.
void print_peer(const peer_report &c)
{
    static std::string last;
    std::string line = c.version + " in zel-bench-cholmod, on";
    for (const std::string &blas : c.blas)
        line += " " + blas;
    if (c.blas.empty())
        line += " no BLAS object that it could name";
    if (line == last)
        return;
    last = line;
    std::printf("peer: %s\n", line.c_str());
    bool openblas = false;
    for (const std::string &blas : c.blas)
        openblas |= blas.find("openblas") != std::string::npos;
    if (!openblas)
        std::printf("peer: warning: not on OpenBLAS; scripts/install-bench-peers.sh selects it\n");
}

void print_case(const char *label, const upper_csr &a, const zel_result &z, const peer_report &c, bool laplacian)
{
    std::printf("%s: n %lld, %lld entries in the upper triangle\n", label, static_cast<long long>(a.n),
                static_cast<long long>(a.entries()));
    if (!z.failure.empty() && z.stats.n == 0) {
        std::printf("  zel: %s\n\n", z.failure.c_str());
        return;
    }
    if (c.ran)
        print_peer(c);
    print_header();
    print_row("zel", figures_of(z));
    if (c.ran) {
        print_row("cholmod", figures_of(c.own));
        print_row("cholmod on zel's ordering", figures_of(c.given));
        print_ratios("zel / cholmod", figures_of(z), figures_of(c.own));
        print_ratios("zel / cholmod, same order", figures_of(z), figures_of(c.given));
        std::printf("  L without amalgamation's zeros (cholmod's count): %.0f on its ordering, %.0f on zel's\n",
                    c.own.exact_entries, c.given.exact_entries);
    } else {
        std::printf("  cholmod: %s\n", c.failure.c_str());
    }
    if (!z.failure.empty())
        std::printf("  zel: %s\n", z.failure.c_str());
    print_goals(z, c, laplacian);
    std::printf("\n");
}

// 1 when a phase of zel's failed: the peer is optional, zel is not.
int run_case(const char *label, const upper_csr &a, int repeats, bool laplacian)
{
    progress("solver: %s, zel", label);
    const bool narrow = a.n <= INT32_MAX && a.entries() <= INT32_MAX;
    const zel_result z = narrow ? measure_zel<int32_t, zel_pds_factor_i4>(a, repeats)
                                : measure_zel<int64_t, zel_pds_factor_i8>(a, repeats);
    peer_report c;
    const std::string program = peer_program("zel-bench-cholmod");
    if (program.empty())
        c.failure = "zel-bench-cholmod was not built (libsuitesparse-dev: scripts/install-bench-peers.sh)";
    else if (z.stats.n != 0) {
        progress("solver: %s, cholmod", label);
        c = run_cholmod(program, a, z.perm, repeats);
    }
    print_case(label, a, z, c, laplacian);
    return z.failure.empty() ? 0 : 1;
}

// ---- the sections

int laplace3d(int repeats)
{
    return run_case("7-point Laplacian, 60^3 grid", grid_laplacian(60, 60, 60), repeats, true);
}

int laplace2d(int repeats)
{
    return run_case("5-point Laplacian, 1000^2 grid", grid_laplacian(1000, 1000, 1), repeats, true);
}

// The real positive definite matrices of the test folder (494_bus is one too, though its notes say
// only symmetric); small, so ten times the rounds.
int matrices(int repeats)
{
    const std::string folder = matrix_folder();
    int status = 0;
    static const char *const names[] = {"494_bus", "1138_bus", "bcsstk13", "ani4"};
    for (const char *name : names) {
        const std::string path = folder + "/" + name + ".mtx";
        upper_csr a;
        std::string error;
        if (!read_matrix(path, true, a, error)) {
            std::printf("%s: skipped: %s (ZEL_TEST_MATRICES names the folder)\n\n", name, error.c_str());
            continue;
        }
        status |= run_case(name, a, 10 * repeats, false);
    }
    std::printf("(mhd1280b, complex Hermitian, is left out: the suite times the real solver)\n");
    return status;
}

void print_cholesky_legend(int repeats)
{
    std::printf("Cholesky sections, zel against CHOLMOD's supernodal factorisation: milliseconds, best of %d\n"
                "rounds (10x on the test matrices); solves without refinement; GFLOP/s = each factor's own\n"
                "flops / its factorisation time; L entries count the explicit zeros of each side's supernodes.\n"
                "Ratios zel / cholmod: times below 1 and GFLOP/s above 1 mean zel is faster.\n\n",
                repeats);
}

struct solver_section {
    const char *name;
    int (*run)(int repeats);
    void (*legend)(int repeats); // printed before the first section of its kind
};
const solver_section sections[] = {
    {"laplace3d", laplace3d, print_cholesky_legend}, {"laplace2d", laplace2d, print_cholesky_legend},
    {"matrices", matrices, print_cholesky_legend},   {"unsym3d", unsym3d, print_lu_legend},
    {"unsym2d", unsym2d, print_lu_legend},           {"unsym_matrices", unsym_matrices, print_lu_legend},
    {"kkt", kkt, print_lu_legend},                   {"indef_matrices", indef_matrices, print_lu_legend},
    {"onerhs", onerhs_section, nullptr},
};

int run_solver_bench(const request &what)
{
    std::printf("Sparse direct solver (double), one thread each: zel against CHOLMOD (positive definite),\n"
                "UMFPACK, SuperLU and MUMPS (unsymmetric) and MUMPS (symmetric indefinite), each peer in a\n"
                "process of its own. Processor: %s, %s.\n\n",
                processor_name().c_str(), processor_isa());
    int status = 0;
    void (*shown)(int) = nullptr;
    for (const solver_section &s : sections)
        if (what.runs(find_section(*what.suite, s.name))) {
            if (s.legend != shown && s.legend != nullptr)
                s.legend(what.repeats);
            shown = s.legend;
            std::printf("== %s\n", s.name);
            status |= s.run(what.repeats);
        }
    return status;
}

} // namespace
} // namespace zel::bench

ZEL_BENCH_SUITE("solver", zel::bench::run_solver_bench);
