// `zel solve`: reads a Matrix Market system (or builds a 3-D Laplacian), chooses the matrix type
// from its values, solves it with the direct solver through its public phase interface, and
// reports what each phase cost, how the factorisation went and how accurate the solution is,
// measured here independently of the solver.
#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "cli.hpp"
#include "command.hpp"
#include "matrix_market.hpp"
#include "solve_problem.hpp"
#include "solve_run.hpp"
#include "zel/pds.h"

namespace {

using namespace zel::tool;
constexpr const char *solve_summary = "solve a sparse system from a Matrix Market file, or a built-in one";
constexpr const char *command_name = "zel solve";

void print_help()
{
    std::printf(
        "usage: zel solve [FILE.mtx] [--rhs FILE] [--out FILE] [--type auto|spd|hpd|sid|hid|csym|unsym]\n"
        "                 [--ordering auto|amd|nd] [--refine N] [--nrhs K] [--size N]\n\n"
        "Solves A·x = b with the direct solver and prints a report: the matrix, the type chosen and\n"
        "why, the ordering, the matching, the factor's entries, flops, supernodes and memory, the\n"
        "pivots replaced (and the inertia of a symmetric or Hermitian indefinite matrix), the time\n"
        "and GFLOP/s of each phase, the refinement history, the residual measured here, the\n"
        "solver's backward error and the final status.\n\n"
        "FILE.mtx   a Matrix Market coordinate file (real, integer, complex or pattern). Without it,\n"
        "           the 7-point Laplacian of an N×N×N grid (--size, default 60) is solved.\n"
        "           A pattern file is given values: its graph Laplacian plus the identity.\n"
        "--rhs FILE right-hand sides: a Matrix Market array (or coordinate) file with n rows.\n"
        "           Without it, b = A·1, or with --nrhs K, K columns b_j = A·x_j for fixed x_j.\n"
        "--out FILE writes x as a Matrix Market array.\n"
        "--type     auto (default): symmetric real or Hermitian complex values with a positive\n"
        "           diagonal are tried as positive definite first, and factored as indefinite\n"
        "           when a pivot is not positive; other symmetric or Hermitian values as\n"
        "           indefinite; complex symmetric values as complex symmetric; anything else as\n"
        "           unsymmetric (L·U after a matching, and again with the other matching choice\n"
        "           when refinement misses the accuracy goal). spd, hpd: (Hermitian) positive\n"
        "           definite; sid, hid: symmetric or Hermitian indefinite; csym: complex\n"
        "           symmetric; unsym: unsymmetric. hpd, hid and csym solve a real matrix in\n"
        "           complex arithmetic (as complex right-hand sides do).\n"
        "--ordering auto (default), amd (minimum degree) or nd (nested dissection).\n"
        "--refine N at most N refinement steps, 0 to 10 (default: the solver's, 2).\n\n"
        "Exit status: 0 solved (backward error below 1e-10, or refinement off); 1 the solver\n"
        "failed (not accurate, singular, structurally singular, not positive definite when asked\n"
        "for, out of memory): the report is printed when a solution was found, and the status and\n"
        "its meaning on standard error; 2 a usage error, a --type that the matrix's values do not\n"
        "fit, or a malformed file.\n");
}

struct request {
    const char *file = nullptr;
    const char *rhs = nullptr;
    const char *out = nullptr;
    type_request type = type_request::automatic;
    int ordering = ZEL_PDS_ORDERING_AUTOMATIC;
    int64_t refine = -1; // the solver's default
    int64_t nrhs = 1;
    bool nrhs_given = false;
    int64_t size = 60;
    bool size_given = false;
};

// The index of the option's value among `count` words, or the usage message naming them.
bool parse_word(const option_parser &parser, const char *const *words, int count, int &index)
{
    std::string choices;
    for (index = 0; index < count; ++index) {
        if (std::strcmp(parser.value(), words[index]) == 0)
            return true;
        choices += (index > 0 ? ", " : "") + std::string(words[index]);
    }
    usage_error(command_name, "%s wants one of %s, not '%s'", parser.spelling(), choices.c_str(), parser.value());
    return false;
}

bool parse_option(const option_parser &parser, int code, request &r)
{
    static const char *const types[] = {"auto", "spd", "hpd", "sid", "hid", "csym", "unsym"};
    static const char *const orderings[] = {"auto", "amd", "nd"};
    static const int ordering_codes[] = {ZEL_PDS_ORDERING_AUTOMATIC, ZEL_PDS_ORDERING_AMD,
                                         ZEL_PDS_ORDERING_NESTED_DISSECTION};
    int index = 0;
    switch (code) {
    case 'r': r.rhs = parser.value(); return true;
    case 'o': r.out = parser.value(); return true;
    case 't':
        if (!parse_word(parser, types, 7, index))
            return false;
        r.type = static_cast<type_request>(index);
        return true;
    case 'O':
        if (!parse_word(parser, orderings, 3, index))
            return false;
        r.ordering = ordering_codes[index];
        return true;
    case 'R': return option_integer(parser, 0, 10, r.refine);
    case 'k': r.nrhs_given = true; return option_integer(parser, 1, 10000, r.nrhs);
    case 's': r.size_given = true; return option_integer(parser, 1, 500, r.size);
    default: return false; // the parser has said what was wrong
    }
}

// -1 to go on with the request, else the exit status.
int parse_request(int argc, char **argv, request &r)
{
    static const option options[] = {
        {"help", no_argument, nullptr, 'h'},         {"rhs", required_argument, nullptr, 'r'},
        {"out", required_argument, nullptr, 'o'},    {"type", required_argument, nullptr, 't'},
        {"ordering", required_argument, nullptr, 'O'}, {"refine", required_argument, nullptr, 'R'},
        {"nrhs", required_argument, nullptr, 'k'},   {"size", required_argument, nullptr, 's'},
        {nullptr, 0, nullptr, 0}};
    option_parser parser(command_name, argc, argv, "hr:o:t:O:R:k:s:", options);
    for (int code; (code = parser.next()) != -1;) {
        if (code == 'h') {
            print_help();
            return exit_ok;
        }
        if (!parse_option(parser, code, r))
            return exit_usage;
    }
    const int first = parser.first_operand();
    if (first < argc)
        r.file = argv[first];
    if (first + 1 < argc)
        return usage_error(command_name, "unexpected argument '%s'", argv[first + 1]);
    if (r.file != nullptr && r.size_given)
        return usage_error(command_name, "--size applies to the built-in problem, not to a file");
    if (r.rhs != nullptr && r.nrhs_given)
        return usage_error(command_name, "--nrhs applies to generated right-hand sides, not to --rhs");
    return -1;
}

double seconds_since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The matrix and right-hand sides to solve, and how they were described.
struct linear_system {
    mm_matrix a;
    std::string name;       // the file, or the built-in problem
    std::string stored;     // what the file said
    bool built_in = false;
    bool have_rhs = false;
    mm_dense b;
    double read_seconds = 0;
};

std::string describe_file(const mm_header &h)
{
    return std::string(mm_field_name(h.field)) + " " + mm_symmetry_name(h.symmetry) +
           (h.symmetry == mm_symmetry::general ? ", both triangles stored" : ", lower triangle stored") + ", " +
           std::to_string(h.stored) + " entries in the file";
}

// The matrix: from the file (a pattern gets values) or built in. Returns -1 or an exit status.
int load_matrix(const request &r, linear_system &s)
{
    const auto start = std::chrono::steady_clock::now();
    if (r.file == nullptr) {
        phase_notice notice("building the Laplacian");
        s.a = laplacian_3d(r.size);
        const std::string side = std::to_string(r.size);
        s.name = "built-in 7-point Laplacian on a " + side + "×" + side + "×" + side + " grid";
        s.stored = "generated";
        s.built_in = true;
    } else {
        phase_notice notice("reading the matrix");
        std::string error;
        if (!read_matrix_market(r.file, s.a, error)) {
            std::fprintf(stderr, "%s: %s\n", command_name, error.c_str());
            return exit_usage;
        }
        s.name = r.file;
        s.stored = describe_file(s.a.header);
        const mm_header &h = s.a.header;
        if (h.rows != h.cols) {
            std::fprintf(stderr, "%s: %s:%lld: the matrix is %lld × %lld; a system to solve needs a square one\n",
                         command_name, r.file, static_cast<long long>(h.size_line), static_cast<long long>(h.rows),
                         static_cast<long long>(h.cols));
            return exit_usage;
        }
        if (h.field == mm_field::pattern) {
            s.a = pattern_laplacian(s.a);
            s.stored += "; values: graph Laplacian of the pattern plus the identity";
        }
    }
    s.read_seconds = seconds_since(start);
    return -1;
}

// Given right-hand sides, checked against the matrix. Returns -1 or an exit status.
int load_rhs(const request &r, linear_system &s)
{
    if (r.rhs == nullptr)
        return -1;
    std::string error;
    if (!read_matrix_market_dense(r.rhs, s.b, error)) {
        std::fprintf(stderr, "%s: %s\n", command_name, error.c_str());
        return exit_usage;
    }
    if (s.b.header.rows != s.a.header.rows || s.b.header.cols < 1) {
        std::fprintf(stderr, "%s: %s:%lld: the right-hand sides are %lld × %lld; the matrix has %lld rows\n",
                     command_name, r.rhs, static_cast<long long>(s.b.header.size_line),
                     static_cast<long long>(s.b.header.rows), static_cast<long long>(s.b.header.cols),
                     static_cast<long long>(s.a.header.rows));
        return exit_usage;
    }
    s.have_rhs = true;
    return -1;
}

// The matrix type, from the request, the matrix and the right-hand sides; a real matrix solved
// in complex arithmetic is made complex. Returns -1 or an exit status.
int choose_type(const request &r, linear_system &s, type_plan &plan)
{
    const bool complex_rhs = s.have_rhs && s.b.is_complex();
    const bool real_only = r.type == type_request::spd || r.type == type_request::sid;
    if (real_only && (s.a.is_complex() || complex_rhs))
        return usage_error(command_name, "--type %s needs real values, but %s holds complex ones (try --type %s)",
                           r.type == type_request::spd ? "spd" : "sid", s.a.is_complex() ? s.name.c_str() : r.rhs,
                           r.type == type_request::spd ? "hpd" : "hid or csym");
    plan = plan_matrix_type(s.a, complex_rhs, r.type);
    if (plan.refusal_status == exit_usage)
        return usage_error(command_name, "%s: %s", s.name.c_str(), plan.refusal.c_str());
    if (!plan.refusal.empty()) {
        std::fprintf(stderr, "%s: %s: %s\n", command_name, s.name.c_str(), plan.refusal.c_str());
        return exit_failure;
    }
    if (plan.complex)
        make_complex(s.a);
    return -1;
}

const char *type_name(int type)
{
    switch (type) {
    case ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE: return "real symmetric positive definite";
    case ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE: return "complex Hermitian positive definite";
    case ZEL_PDS_REAL_SYMMETRIC_INDEFINITE: return "real symmetric indefinite";
    case ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE: return "complex Hermitian indefinite";
    case ZEL_PDS_COMPLEX_SYMMETRIC: return "complex symmetric";
    case ZEL_PDS_REAL_UNSYMMETRIC: return "real unsymmetric";
    case ZEL_PDS_COMPLEX_UNSYMMETRIC: return "complex unsymmetric";
    default: return "of another type";
    }
}

bool definite_type(int type)
{
    return type == ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE || type == ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE;
}
bool lu_type(int type) { return !reads_one_triangle(type); }

// What a failed phase's status means for this matrix of order n.
std::string failure_meaning(const solve_outcome &o, int64_t n)
{
    const zel_pds_statistics &st = o.statistics;
    const long long column = static_cast<long long>(st.failed_column + 1);
    const bool rank_known = st.structural_rank >= 0 && st.structural_rank < n;
    switch (o.status) {
    case ZEL_PDS_STATUS_STRUCTURALLY_SINGULAR:
        return (rank_known ? "the structural rank is " + std::to_string(st.structural_rank) + " of "
                           : std::string("the structural rank is below ")) +
               std::to_string(n) +
               ": no permutation puts a nonzero entry on every diagonal position, so the matrix is singular";
    case ZEL_PDS_STATUS_SINGULAR:
        return "a zero pivot at column " + std::to_string(column) + ", so the matrix is singular";
    case ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE:
        return "a pivot that is not positive at column " + std::to_string(column) +
               ", so the matrix is not positive definite (--type sid or hid factors it as indefinite)";
    case ZEL_PDS_STATUS_ALLOC_FAILED: return "memory could not be obtained";
    case ZEL_PDS_STATUS_INVALID_VALUE: return "the solver refused the matrix or an argument";
    case ZEL_PDS_STATUS_NOT_SUPPORTED: return "this library does not support this matrix type yet";
    case ZEL_PDS_STATUS_TOO_LARGE: return "the factor's sizes do not fit the index width";
    default: return "the solver failed";
    }
}

int solver_failed(const linear_system &s, const solve_outcome &o)
{
    std::fprintf(stderr, "%s: %s: %s failed (%s, matrix type %d): %s: %s\n", command_name, s.name.c_str(),
                 o.failed_phase, type_name(o.type), o.type, zel_pds_status_name(o.status),
                 failure_meaning(o, s.a.header.rows).c_str());
    return exit_failure;
}

bool write_solution(const char *path, int64_t n, bool complex, const solve_outcome &o)
{
    std::string error;
    const char *comment = "solution x of zel solve";
    const bool ok = complex ? write_matrix_market_array(path, n, o.nrhs, o.x_complex.data(), n, comment, error)
                            : write_matrix_market_array(path, n, o.nrhs, o.x_real.data(), n, comment, error);
    if (!ok)
        std::fprintf(stderr, "%s: %s\n", command_name, error.c_str());
    return ok;
}

// ---- The report ----

void line(const char *label, const char *format, ...) __attribute__((format(printf, 2, 3)));
void line(const char *label, const char *format, ...)
{
    std::printf("%-15s ", label);
    va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
    std::putchar('\n');
}

std::string bytes(int64_t count)
{
    char text[32];
    const double b = static_cast<double>(count);
    if (b >= 1 << 30)
        std::snprintf(text, sizeof text, "%.2f GiB", b / (1 << 30));
    else
        std::snprintf(text, sizeof text, "%.1f MiB", b / (1 << 20));
    return text;
}

const char *ordering_name(int code)
{
    switch (code) {
    case ZEL_PDS_ORDERING_AMD: return "minimum degree (AMD)";
    case ZEL_PDS_ORDERING_NESTED_DISSECTION: return "nested dissection (METIS)";
    case ZEL_PDS_ORDERING_NATURAL: return "natural";
    case ZEL_PDS_ORDERING_GIVEN: return "given";
    default: return "automatic";
    }
}

// 87755079 as "87,755,079" (counts here are never negative).
std::string grouped(int64_t count)
{
    const std::string digits = std::to_string(count);
    std::string text;
    for (size_t k = 0; k < digits.size(); ++k) {
        if (k > 0 && (digits.size() - k) % 3 == 0)
            text.push_back(',');
        text.push_back(digits[k]);
    }
    return text;
}

// Seconds, or milliseconds below one second, in a column 10 wide.
std::string duration(double seconds)
{
    char text[32];
    if (seconds >= 1)
        std::snprintf(text, sizeof text, "%7.2f s", seconds);
    else
        std::snprintf(text, sizeof text, "%6.3g ms", seconds * 1e3);
    return text;
}

double gflops(double flops, double seconds) { return seconds > 0 ? flops / seconds * 1e-9 : 0.0; }

// What the analysis did to the matrix before ordering it.
std::string matching_text(const solve_outcome &o)
{
    const zel_pds_statistics &st = o.statistics;
    if (definite_type(o.type))
        return "no (a positive definite matrix needs none)";
    if (!lu_type(o.type))
        return st.matching_used ? "yes: rows with weak diagonals grouped so that 2×2 pivots can take them" : "no";
    if (!st.matching_used)
        return st.scaling_used ? "no; rows and columns scaled" : "no";
    return std::string("yes: a maximum-product matching put large entries on the diagonal") +
           (st.scaling_used ? "; rows and columns scaled" : "");
}

// "1.05e-03 → 4.52e-15 → 2.21e-16": the backward error before refinement and after each step.
std::string refinement_text(const zel_pds_statistics &st)
{
    std::string text;
    char value[32];
    const int steps = std::min(st.refinement_steps, 10);
    for (int k = 0; k <= steps; ++k) {
        std::snprintf(value, sizeof value, "%s%.2e", k > 0 ? " → " : "", st.refinement_history[k]);
        text += value;
    }
    return text + (steps == 0 ? "  backward error before refinement; no step needed"
                              : "  backward error before refinement, then after each step");
}

void print_factor_lines(const solve_outcome &o)
{
    const zel_pds_statistics &st = o.statistics;
    if (st.structural_rank > 0 && st.structural_rank < st.n)
        line("structural rank", "%lld of %lld", static_cast<long long>(st.structural_rank),
             static_cast<long long>(st.n));
    line("factor", "%s entries%s, %s supernodes (largest %lld × %lld), %.3g flops", grouped(st.factor_entries).c_str(),
         lu_type(o.type) ? " (L and U)" : "", grouped(st.supernodes).c_str(),
         static_cast<long long>(st.max_supernode_rows), static_cast<long long>(st.max_supernode_cols),
         st.factor_flops);
    if (definite_type(o.type))
        return;
    const std::string replaced = grouped(st.replaced_pivots) + " replaced" +
                                 (st.replaced_pivots > 0 ? " (tiny: refinement runs at least 2 steps)" : "");
    if (lu_type(o.type))
        line("pivots", "%s", replaced.c_str());
    else
        line("pivots", "%s, %s 2×2 blocks", replaced.c_str(), grouped(st.two_by_two_pivots).c_str());
    if (o.type == ZEL_PDS_REAL_SYMMETRIC_INDEFINITE || o.type == ZEL_PDS_COMPLEX_HERMITIAN_INDEFINITE)
        line("inertia", "%s positive, %s negative, %s zero", grouped(st.positive_pivots).c_str(),
             grouped(st.negative_pivots).c_str(), grouped(st.zero_pivots).c_str());
}

void print_phase_lines(const solve_outcome &o)
{
    const zel_pds_statistics &st = o.statistics;
    line("memory", "%s estimated by the analysis, %s held after the solve", bytes(st.memory_estimate).c_str(),
         bytes(st.memory_used).c_str());
    line("analyse", "%s", duration(st.analyse_seconds).c_str());
    line("factorise", "%s  %7.2f GFLOP/s", duration(st.factorise_seconds).c_str(),
         gflops(st.factor_flops, st.factorise_seconds));
    const double solves = static_cast<double>(o.nrhs) * (1 + st.refinement_steps);
    line("solve", "%s  %7.2f GFLOP/s  (%lld right-hand side%s, %d refinement step%s)",
         duration(st.solve_seconds).c_str(), gflops(st.solve_flops * solves, st.solve_seconds),
         static_cast<long long>(o.nrhs), o.nrhs == 1 ? "" : "s", st.refinement_steps,
         st.refinement_steps == 1 ? "" : "s");
}

void print_accuracy_lines(const solve_outcome &o)
{
    const zel_pds_statistics &st = o.statistics;
    if (o.refinement_on)
        line("refinement", "%s", refinement_text(st).c_str());
    else
        line("refinement", "off");
    line("residual", "%.2e  max ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞) over the columns, measured by zel solve", o.residual);
    if (o.refinement_on)
        line("backward error", "%.2e  componentwise, from the solver's statistics", st.backward_error);
    else
        line("backward error", "not measured (refinement off)");
    if (o.status == ZEL_PDS_STATUS_NOT_ACCURATE)
        line("status", "%s: the backward error stayed above %.0e", zel_pds_status_name(o.status),
             ZEL_PDS_ACCURACY_GOAL);
    else
        line("status", "%s%s", zel_pds_status_name(o.status), o.refinement_on ? "" : " (accuracy not measured)");
}

void print_report(const request &r, const linear_system &s, const type_plan &plan, const solve_outcome &o)
{
    const zel_pds_statistics &st = o.statistics;
    line("matrix", "%s", s.name.c_str());
    line("", "n = %s, %s entries (both triangles); %s", grouped(s.a.header.rows).c_str(),
         grouped(s.a.entries()).c_str(), s.stored.c_str());
    line("type", "%s (matrix type %d): %s%s%s", type_name(o.type), o.type, plan.why.c_str(),
         o.not_definite.empty() ? "" : "; ", o.not_definite.c_str());
    line(s.built_in ? "built" : "read", "%s", duration(s.read_seconds).c_str());
    line("ordering", "%s%s; %d-bit indices", ordering_name(st.ordering),
         r.ordering == ZEL_PDS_ORDERING_AUTOMATIC ? ", chosen automatically" : "", o.index_bits);
    line("matching", "%s", matching_text(o).c_str());
    for (const std::string &note : o.matching_notes)
        line("", "%s", note.c_str());
    print_factor_lines(o);
    print_phase_lines(o);
    print_accuracy_lines(o);
    if (r.out != nullptr)
        line("solution", "written to %s%s", r.out,
             o.status == ZEL_PDS_STATUS_NOT_ACCURATE ? " (the best iterate found)" : "");
}

int run_request(const request &r)
{
    linear_system s;
    type_plan plan;
    int status = load_matrix(r, s);
    if (status == -1)
        status = load_rhs(r, s);
    if (status == -1)
        status = choose_type(r, s, plan);
    if (status != -1)
        return status;
    const rhs_source rhs{s.have_rhs ? &s.b : nullptr, r.nrhs};
    solve_settings settings;
    settings.ordering = r.ordering;
    settings.refine = r.refine;
    solve_outcome o;
    run_plan(s.a, plan, rhs, settings, o);
    if (o.failed_phase != nullptr)
        return solver_failed(s, o);
    if (r.out != nullptr && !write_solution(r.out, s.a.header.rows, plan.complex, o))
        return exit_failure;
    print_report(r, s, plan, o);
    if (o.status != ZEL_PDS_STATUS_NOT_ACCURATE)
        return exit_ok;
    std::fflush(stdout);
    const zel_pds_statistics &st = o.statistics;
    // A last step that still halved the backward error: more steps would likely reach the goal.
    const int steps = std::min(st.refinement_steps, 10);
    const bool converging =
        steps >= 1 && steps < 10 && st.refinement_history[steps] < 0.5 * st.refinement_history[steps - 1];
    std::fprintf(stderr,
                 "%s: %s: the solution did not reach a backward error of %.0e (%s): the best iterate's backward "
                 "error is %.2e after %d refinement step%s; %s\n",
                 command_name, s.name.c_str(), ZEL_PDS_ACCURACY_GOAL, zel_pds_status_name(o.status), st.backward_error,
                 st.refinement_steps, st.refinement_steps == 1 ? "" : "s",
                 converging ? "refinement was still converging (try --refine 10)"
                            : "the matrix may be singular or too ill-conditioned for this factorisation");
    return exit_failure;
}

int run_solve(int argc, char **argv)
{
    request r;
    const int status = parse_request(argc, argv, r);
    if (status != -1)
        return status;
    try {
        return run_request(r);
    } catch (const std::bad_alloc &) {
    } catch (const std::length_error &) {
    }
    std::fprintf(stderr, "%s: out of memory\n", command_name);
    return exit_failure;
}

} // namespace

ZEL_TOOL_COMMAND("solve", solve_summary, run_solve);
