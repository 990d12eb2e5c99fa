// `zel bench solver`, the LU and L·D·Lᵀ sections: zel's real unsymmetric (type 11) and real
// symmetric indefinite (type −2) solvers against UMFPACK, SuperLU and MUMPS (LU) and MUMPS
// (L·D·Lᵀ), each peer in a process of its own (bench_solver_peer.hpp) on the same matrix and the
// same right-hand side b = A·1. Every solver keeps its own refinement default, and every backward
// error is measured from the matrix as given.
#include <unistd.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
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

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double accuracy_goal = 1e-14;
constexpr int refinement_goal = 2;
constexpr int64_t one_round_above = 200000; // rows of a 3-D problem timed once: its LU takes minutes

// ---- zel's side

struct zel_run {
    std::string failure; // "phase: status" of the first failed call, or empty
    bool not_supported = false, too_large = false, inaccurate = false;
    double analyse = nan, factorise = nan, solve1 = nan;
    double entries = nan, flops = nan, memory = nan, backward_error = nan;
    int refine = -1;
    int64_t negative_pivots = -1, replaced_pivots = 0;
    std::string ordering;
    double total() const { return analyse + factorise + solve1; }
};

template <class I> struct index_arrays {
    std::vector<I> row_ptr, col;
    explicit index_arrays(const csr_matrix &a)
        : row_ptr(a.row_ptr.begin(), a.row_ptr.end()), col(a.col.begin(), a.col.end())
    {
    }
};

// The unsymmetric type gives the analysis its values too, for the matching; the symmetric one
// gives the upper triangle's pattern.
int analyse(zel_pds_solver *s, const csr_matrix &a, const index_arrays<int32_t> &p)
{
    if (!a.upper)
        return zel_pds_d_analyse_csr_values_i4(s, int32_t(a.n), p.row_ptr.data(), p.col.data(), a.value.data(), 0,
                                               ZEL_PDS_STORAGE_FULL);
    return zel_pds_analyse_csr_i4(s, int32_t(a.n), p.row_ptr.data(), p.col.data(), 0, ZEL_PDS_STORAGE_UPPER);
}

int analyse(zel_pds_solver *s, const csr_matrix &a, const index_arrays<int64_t> &p)
{
    if (!a.upper)
        return zel_pds_d_analyse_csr_values_i8(s, a.n, p.row_ptr.data(), p.col.data(), a.value.data(), 0,
                                               ZEL_PDS_STORAGE_FULL);
    return zel_pds_analyse_csr_i8(s, a.n, p.row_ptr.data(), p.col.data(), 0, ZEL_PDS_STORAGE_UPPER);
}

// The factor's entries counted from its arrays, as the peers count theirs: L and U with the
// diagonal once (every supernode's nc × nc block, its L21 and its U12), or the lower trapezoids of
// L·D·Lᵀ; the explicit zeros of the supernodes included.
template <class F> double factor_entries(const zel_pds_solver *s, bool lu)
{
    F f{};
    int status;
    if constexpr (sizeof(f.n) == 4)
        status = zel_pds_export_factor_i4(s, &f);
    else
        status = zel_pds_export_factor_i8(s, &f);
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return nan;
    double entries = 0;
    for (int64_t k = 0; k < int64_t(f.nsuper); ++k) {
        const double cols = double(f.super_ptr[k + 1] - f.super_ptr[k]), rows = double(f.row_ptr[k + 1] - f.row_ptr[k]);
        const double below = rows - cols;
        entries += lu ? cols * cols + 2 * below * cols : cols * (cols + 1) / 2 + below * cols;
    }
    return entries;
}

bool failed(int status, const char *phase, zel_run &out)
{
    if (status == ZEL_PDS_STATUS_SUCCESS)
        return false;
    out.failure = std::string(phase) + ": " + zel_pds_status_name(status);
    out.not_supported |= status == ZEL_PDS_STATUS_NOT_SUPPORTED;
    out.too_large |= status == ZEL_PDS_STATUS_TOO_LARGE;
    return true;
}

// Bytes the machine can give now (MemAvailable), or a negative number when unknown.
double available_memory()
{
    FILE *info = std::fopen("/proc/meminfo", "r");
    char line[256];
    long long kib = -1;
    while (info != nullptr && std::fgets(line, sizeof line, info) != nullptr)
        if (std::sscanf(line, "MemAvailable: %lld kB", &kib) == 1)
            break;
    if (info != nullptr)
        std::fclose(info);
    return 1024.0 * double(kib);
}

// The machine is shared: a factorisation the analysis says will not fit is not started.
bool fits_memory(const zel_pds_solver *s, zel_run &out)
{
    zel_pds_statistics stats{};
    zel_pds_get_statistics(s, &stats);
    const double available = available_memory();
    if (available < 0 || double(stats.memory_estimate) <= 0.85 * available)
        return true;
    char text[128];
    std::snprintf(text, sizeof text, "factorise: not started, the analysis estimates %.1f GiB and %.1f GiB are free",
                  double(stats.memory_estimate) / (1 << 30), available / (1 << 30));
    out.failure = text;
    return false;
}

// zel's default solve (refinement up to 2 steps); a solve that stays above the solver's accuracy
// goal still returns its best iterate, which is what gets measured.
void solve_phase(zel_pds_solver *s, const csr_matrix &a, int repeats, zel_run &out)
{
    const std::vector<double> b = ones_rhs(a);
    std::vector<double> x(b.size());
    int status = ZEL_PDS_STATUS_SUCCESS;
    const auto solve = [&] {
        const int next = zel_pds_d_solve(s, 1, b.data(), a.n, x.data(), a.n);
        out.inaccurate |= next == ZEL_PDS_STATUS_NOT_ACCURATE;
        keep_first(status, next == ZEL_PDS_STATUS_NOT_ACCURATE ? ZEL_PDS_STATUS_SUCCESS : next);
    };
    solve(); // untimed: the first call sizes the solve's workspace
    const double seconds = best_of(repeats, solve);
    if (failed(status, "solve", out))
        return;
    zel_pds_statistics stats{};
    zel_pds_get_statistics(s, &stats);
    out.solve1 = seconds;
    out.refine = stats.refinement_steps;
    out.memory = double(stats.memory_used);
    out.backward_error = error_of(a, x, b).componentwise;
}

void factor_figures(const zel_pds_solver *s, bool lu, bool wide, zel_run &out)
{
    zel_pds_statistics stats{};
    zel_pds_get_statistics(s, &stats);
    out.entries = wide ? factor_entries<zel_pds_factor_i8>(s, lu) : factor_entries<zel_pds_factor_i4>(s, lu);
    out.flops = stats.factor_flops;
    out.ordering = std::string(ordering_name(stats.ordering)) + (stats.matching_used ? "+matching" : "");
    out.replaced_pivots = stats.replaced_pivots;
    if (!lu)
        out.negative_pivots = stats.negative_pivots;
}

template <class I> zel_run measure(const csr_matrix &a, int repeats)
{
    zel_run out;
    zel_pds_solver *s = nullptr;
    const int type = a.upper ? ZEL_PDS_REAL_SYMMETRIC_INDEFINITE : ZEL_PDS_REAL_UNSYMMETRIC;
    if (failed(zel_pds_d_create(&s, type), "create", out))
        return out;
    const index_arrays<I> pattern(a);
    int status = ZEL_PDS_STATUS_SUCCESS;
    const double analyse_seconds = best_of(repeats, [&] { keep_first(status, analyse(s, a, pattern)); });
    if (!failed(status, "analyse", out) && fits_memory(s, out)) {
        out.analyse = analyse_seconds;
        const double seconds = best_of(repeats, [&] { keep_first(status, zel_pds_d_factorise(s, a.value.data())); });
        if (!failed(status, "factorise", out)) {
            out.factorise = seconds;
            factor_figures(s, !a.upper, sizeof(I) == 8, out);
            solve_phase(s, a, repeats, out);
        }
    }
    zel_pds_destroy(s);
    return out;
}

// 32-bit indices when the matrix fits them, 64-bit when it or its factor does not.
zel_run measure_zel(const csr_matrix &a, int repeats)
{
    if (a.n <= INT32_MAX && a.entries() <= INT32_MAX) {
        zel_run narrow = measure<int32_t>(a, repeats);
        if (!narrow.too_large)
            return narrow;
    }
    return measure<int64_t>(a, repeats);
}

// ---- the peers

struct peer_choice {
    const char *name;
    std::vector<std::string> extra;
};

std::vector<peer_choice> peers_for(const csr_matrix &a)
{
    if (a.upper)
        return {{"mumps", {"--sym", "2"}}};
    return {{"umfpack", {}}, {"superlu", {}}, {"mumps", {"--sym", "0"}}};
}

struct peer_result {
    const char *name;
    peer_report report;
};

// ---- the table

void print_header()
{
    std::printf("  %-8s %9s %9s %9s %9s %12s %8s %6s %9s %8s %8s  %s\n", "", "analyse", "factorise", "solve 1", "total",
                "factor", "GFLOP", "refine", "backward", "memory", "zel/peer", "ordering");
    std::printf("  %-8s %9s %9s %9s %9s %12s %8s %6s %9s %8s %8s\n", "", "ms", "ms", "ms", "ms", "entries", "", "steps",
                "error", "MiB", "total");
}

struct row_figures {
    double analyse, factorise, solve1, entries, flops, backward_error, memory, ratio;
    int refine;
    std::string ordering;
};

void print_row(const char *who, const row_figures &f)
{
    std::printf("  %-8s %9s %9s %9s %9s %12s %8s %6s %9s %8s %8s  %s\n", who, ms(f.analyse).c_str(),
                ms(f.factorise).c_str(), ms(f.solve1).c_str(), ms(f.analyse + f.factorise + f.solve1).c_str(),
                figure(f.entries, "%.0f").c_str(), figure(f.flops / 1e9, "%.3g").c_str(),
                f.refine < 0 ? "-" : std::to_string(f.refine).c_str(), figure(f.backward_error, "%.1e").c_str(),
                figure(f.memory / (1 << 20), "%.0f").c_str(), figure(f.ratio, "%.2f").c_str(), f.ordering.c_str());
}

std::string pivots_note(int64_t negative, int64_t replaced)
{
    std::string note;
    if (negative >= 0)
        note += ", " + std::to_string(negative) + " negative pivots";
    if (replaced > 0)
        note += ", " + std::to_string(replaced) + " pivots replaced";
    return note;
}

void print_zel(const zel_run &z)
{
    if (!z.failure.empty() && !std::isfinite(z.factorise)) {
        std::printf("  %-8s %s\n", "zel", (z.not_supported ? "not supported (" + z.failure + ")" : z.failure).c_str());
        return;
    }
    print_row("zel", {z.analyse, z.factorise, z.solve1, z.entries, z.flops, z.backward_error, z.memory, nan,
                      z.refine, z.ordering + pivots_note(z.negative_pivots, z.replaced_pivots)});
    if (!z.failure.empty())
        std::printf("  %-8s %s\n", "", (z.not_supported ? "not supported (" + z.failure + ")" : z.failure).c_str());
    if (z.inaccurate)
        std::printf("  %-8s the solve returned ZEL_PDS_STATUS_NOT_ACCURATE\n", "");
}

void print_peer_row(const peer_result &p, const zel_run &z)
{
    const peer_report &r = p.report;
    if (!r.ran) {
        std::printf("  %-8s %s%s\n", p.name, r.refused ? "failed in " : "", r.failure.c_str());
        return;
    }
    const peer_run &o = r.own;
    const double total = o.analyse + o.factorise + o.solve1;
    std::string ordering = o.ordering + (o.strategy.empty() ? "" : " (" + o.strategy + ")") +
                           pivots_note(o.negative_pivots, 0) + (o.note.empty() ? "" : ", " + o.note);
    print_row(p.name, {o.analyse, o.factorise, o.solve1, o.entries, o.flops, o.backward_error, o.memory,
                       z.total() / total, o.refine, ordering});
}

// The peers' versions and the BLAS they ran on, printed again only when they change.
void print_peers(const std::vector<peer_result> &peers)
{
    static std::string last;
    std::string versions, blas;
    for (const peer_result &p : peers) {
        versions += (versions.empty() ? "" : ", ") + (p.report.version.empty() ? std::string(p.name) + " (no version)"
                                                                               : p.report.version);
        for (const std::string &object : p.report.blas)
            if (blas.find(object) == std::string::npos)
                blas += " " + object;
    }
    const std::string line = versions + " on" + (blas.empty() ? " no BLAS object that they could name" : blas);
    if (line == last)
        return;
    last = line;
    std::printf("peers: %s\n", line.c_str());
    if (blas.find("openblas") == std::string::npos && !blas.empty())
        std::printf("peers: warning: not on OpenBLAS; scripts/install-bench-peers.sh selects it\n");
}

void print_goal(const char *what, const std::string &measured, int verdict)
{
    std::printf("  goal: %-58s %16s  %s\n", what, measured.c_str(),
                verdict < 0 ? "not measured" : verdict > 0 ? "met" : "MISSED");
}

// -1 when zel did not solve, else whether its backward error met the goal within the steps.
int accuracy_verdict(const zel_run &z)
{
    if (!std::isfinite(z.solve1))
        return -1;
    return z.backward_error <= accuracy_goal && z.refine <= refinement_goal ? 1 : 0;
}

void print_ratio_goal(const zel_run &z, const std::vector<peer_result> &peers, const char *name, double goal)
{
    for (const peer_result &p : peers)
        if (std::strcmp(p.name, name) == 0) {
            const double total = p.report.own.analyse + p.report.own.factorise + p.report.own.solve1;
            const double ratio = p.report.ran ? z.total() / total : nan;
            char what[80];
            std::snprintf(what, sizeof what, "total time <= %.1f of %s's", goal, name);
            print_goal(what, figure(ratio, "%.2f"), std::isfinite(ratio) ? ratio <= goal : -1);
        }
}

struct case_outcome {
    int status = 0;       // 1 when a phase of zel's failed (not for an unsupported type)
    bool peer_solved = false;
    int accuracy = -1;    // accuracy_verdict
};

// One matrix: zel, then each peer on the same file; the goals under the table.
case_outcome run_case(const std::string &label, const csr_matrix &a, int repeats, bool convection3d)
{
    progress("solver: %s, zel", label.c_str());
    const zel_run z = measure_zel(a, repeats);
    std::vector<peer_result> peers;
    const peer_input input(a);
    for (const peer_choice &choice : peers_for(a)) {
        progress("solver: %s, %s", label.c_str(), choice.name);
        peers.push_back({choice.name, run_peer(choice.name, input, choice.extra, repeats)});
    }
    std::printf("%s: n %lld, %lld entries (%s)\n", label.c_str(), static_cast<long long>(a.n),
                static_cast<long long>(a.entries()), a.upper ? "upper triangle" : "whole matrix");
    print_peers(peers);
    print_header();
    print_zel(z);
    case_outcome outcome;
    for (const peer_result &p : peers) {
        print_peer_row(p, z);
        outcome.peer_solved |= p.report.ran;
    }
    if (convection3d) {
        print_ratio_goal(z, peers, "umfpack", 0.6);
        print_ratio_goal(z, peers, "mumps", 0.8);
    }
    outcome.accuracy = accuracy_verdict(z);
    if (outcome.peer_solved) {
        const std::string measured = outcome.accuracy < 0 ? "-"
                                                          : figure(z.backward_error, "%.1e") + ", " +
                                                                std::to_string(z.refine) + " steps";
        print_goal("backward error <= 1e-14 within 2 refinement steps", measured, outcome.accuracy);
    }
    std::printf("\n");
    outcome.status = z.failure.empty() || z.not_supported ? 0 : 1;
    return outcome;
}

// The test folder's matrices of one kind; small, so ten times the rounds.
int run_matrices(const char *const *names, size_t count, bool upper, int repeats)
{
    const std::string folder = matrix_folder();
    int status = 0, solvable = 0, met = 0, measured = 0;
    std::string missed;
    for (size_t k = 0; k < count; ++k) {
        csr_matrix a;
        std::string error;
        if (!read_matrix(folder + "/" + names[k] + ".mtx", upper, a, error)) {
            std::printf("%s: skipped: %s (ZEL_TEST_MATRICES names the folder)\n\n", names[k], error.c_str());
            continue;
        }
        const case_outcome outcome = run_case(names[k], a, 10 * repeats, false);
        status |= outcome.status;
        if (!outcome.peer_solved)
            continue;
        ++solvable;
        measured += outcome.accuracy >= 0;
        met += outcome.accuracy > 0;
        if (outcome.accuracy == 0)
            missed += std::string(missed.empty() ? "" : ", ") + names[k];
    }
    char text[64];
    std::snprintf(text, sizeof text, "%d of %d", met, solvable);
    print_goal("backward error <= 1e-14 within 2 steps, every matrix a peer solves", text,
               measured < solvable || solvable == 0 ? -1 : met == solvable);
    if (!missed.empty())
        std::printf("  missed on: %s\n", missed.c_str());
    return status;
}

} // namespace

void print_lu_legend(int repeats)
{
    std::printf("LU and L·D·Lᵀ sections: milliseconds, best of %d rounds (10x on the test matrices, 1 on a 3-D\n"
                "problem over %lld rows); solve 1: b = A·1 with each solver's own refinement default (zel: up\n"
                "to 2 steps, UMFPACK: up to 2, SuperLU and MUMPS: none); total = analyse + factorise + solve 1.\n"
                "factor entries: zel's L and U (L of L·D·Lᵀ) with its supernodes' explicit zeros, the diagonal\n"
                "once; UMFPACK's and SuperLU's nonzeros of L and U, the diagonal once; MUMPS's INFOG(29).\n"
                "GFLOP: each factorisation's own count. backward error: max_i |b − A·x|_i / (|A|·|x| + |b|)_i\n"
                "from the matrix as given. memory: zel's after the solve, each peer's process at its peak.\n"
                "zel/peer: zel's total over the peer's (below 1: zel is faster). Generated problems scale with\n"
                "ZEL_BENCH_GRID (default 100).\n\n",
                repeats, static_cast<long long>(one_round_above));
}

int unsym3d(int repeats)
{
    const int64_t k = bench_grid_edge();
    const csr_matrix a = convection_diffusion(k, k, k, 10.0);
    const std::string label = "convection-diffusion, 7-point upwind, cell Peclet 10, " + std::to_string(k) + "^3 grid";
    return run_case(label, a, a.n > one_round_above ? 1 : repeats, true).status;
}

int unsym2d(int repeats)
{
    const int64_t k = 10 * bench_grid_edge();
    const std::string label = "convection-diffusion, 5-point upwind, cell Peclet 10, " + std::to_string(k) + "^2 grid";
    return run_case(label, convection_diffusion(k, k, 1, 10.0), repeats, false).status;
}

int unsym_matrices(int repeats)
{
    static const char *const names[] = {"west0479", "west0497", "olm500",   "nnc1374",  "rajat19",
                                        "bp_1200",  "temp",     "pts5ldd03", "cryg2500", "watt_2",
                                        "impcol_a", "sherman3", "nontrivial_mc64_example"};
    return run_matrices(names, sizeof names / sizeof names[0], false, repeats);
}

int kkt(int repeats)
{
    const int64_t g = 5 * bench_grid_edge();
    const csr_matrix a = saddle_point(g);
    const std::string label = "saddle point, 2-D Laplacian on a " + std::to_string(g) + "^2 grid and " +
                              std::to_string(a.n - g * g) + " constraints";
    return run_case(label, a, repeats, false).status;
}

int indef_matrices(int repeats)
{
    static const char *const names[] = {"hangGlider_2", "tumorAntiAngiogenesis_2", "reorientation_1"};
    return run_matrices(names, sizeof names / sizeof names[0], true, repeats);
}

} // namespace zel::bench
