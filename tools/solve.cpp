// `zel solve`: reads a Matrix Market system (or builds a 3-D Laplacian), solves it with the direct
// solver through its public phase interface, and reports what each phase cost and how accurate
// the solution is, measured here independently of the solver.
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <complex>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "cli.hpp"
#include "command.hpp"
#include "matrix_market.hpp"
#include "solve_problem.hpp"
#include "zel/pds.h"

namespace {

using namespace zel::tool;
using zcomplex = std::complex<double>;

constexpr const char *solve_summary = "solve a sparse system from a Matrix Market file, or a built-in one";
constexpr const char *command_name = "zel solve";

void print_help()
{
    std::printf(
        "usage: zel solve [FILE.mtx] [--rhs FILE] [--out FILE] [--type spd|hpd|auto]\n"
        "                 [--ordering auto|amd|nd] [--refine N] [--nrhs K] [--size N]\n\n"
        "Solves A·x = b with the direct solver and prints a report: the matrix, the type chosen, the\n"
        "ordering, the factor's entries, flops, supernodes and memory, the time and GFLOP/s of each\n"
        "phase, the refinement steps, the residual measured here and the solver's backward error.\n\n"
        "FILE.mtx   a Matrix Market coordinate file (real, integer, complex or pattern). Without it,\n"
        "           the 7-point Laplacian of an N×N×N grid (--size, default 60) is solved.\n"
        "           A pattern file is given values: its graph Laplacian plus the identity.\n"
        "--rhs FILE right-hand sides: a Matrix Market array (or coordinate) file with n rows.\n"
        "           Without it, b = A·1, or with --nrhs K, K columns b_j = A·x_j for fixed x_j.\n"
        "--out FILE writes x as a Matrix Market array.\n"
        "--type     auto (default): a symmetric real or Hermitian complex matrix with a positive\n"
        "           real diagonal is factored as positive definite; spd or hpd asks for the real or\n"
        "           the complex (Hermitian) solver. Other matrices are not supported yet (exit 1).\n"
        "--ordering auto (default), amd (minimum degree) or nd (nested dissection).\n"
        "--refine N at most N refinement steps, 0 to 10 (default: the solver's, 2).\n\n"
        "Exit status: 0 solved, 1 the solver failed or the matrix type is not supported,\n"
        "2 a usage error or a malformed file.\n");
}

enum class type_choice { automatic, spd, hpd };

struct request {
    const char *file = nullptr;
    const char *rhs = nullptr;
    const char *out = nullptr;
    type_choice type = type_choice::automatic;
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
    static const char *const types[] = {"auto", "spd", "hpd"};
    static const char *const orderings[] = {"auto", "amd", "nd"};
    static const int ordering_codes[] = {ZEL_PDS_ORDERING_AUTOMATIC, ZEL_PDS_ORDERING_AMD,
                                         ZEL_PDS_ORDERING_NESTED_DISSECTION};
    int index = 0;
    switch (code) {
    case 'r': r.rhs = parser.value(); return true;
    case 'o': r.out = parser.value(); return true;
    case 't':
        if (!parse_word(parser, types, 3, index))
            return false;
        r.type = static_cast<type_choice>(index);
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

// "factorising ..." on a terminal once a phase has run for a second, erased when it ends. The
// timer's handler only writes the prepared text, which is safe in a signal handler.
char notice_text[64];
size_t notice_length = 0;
volatile sig_atomic_t notice_shown = 0;

void show_notice(int)
{
    notice_shown = write(STDERR_FILENO, notice_text, notice_length) > 0;
}

class phase_notice {
public:
    explicit phase_notice(const char *what)
    {
        on_ = isatty(STDERR_FILENO) == 1;
        if (!on_)
            return;
        notice_length = static_cast<size_t>(std::snprintf(notice_text, sizeof notice_text, "%s ...", what));
        notice_shown = 0;
        struct sigaction action = {};
        action.sa_handler = show_notice;
        action.sa_flags = SA_RESTART;
        sigaction(SIGALRM, &action, nullptr);
        const itimerval one_second = {{0, 0}, {1, 0}};
        setitimer(ITIMER_REAL, &one_second, nullptr);
    }
    ~phase_notice()
    {
        if (!on_)
            return;
        const itimerval off = {};
        setitimer(ITIMER_REAL, &off, nullptr);
        if (notice_shown) {
            static const char erase[] = "\r\033[K";
            [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, erase, sizeof erase - 1);
        }
    }
    phase_notice(const phase_notice &) = delete;
    phase_notice &operator=(const phase_notice &) = delete;

private:
    bool on_ = false;
};

double seconds_since(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The matrix and right-hand sides to solve, and how they were described.
struct linear_system {
    mm_matrix a;
    std::string name;       // the file, or the built-in problem
    std::string stored;     // what the file said
    std::string type_basis; // why the type was chosen
    bool built_in = false;
    bool have_rhs = false;
    mm_dense b;
    double read_seconds = 0;
};

// The not-supported message: what the matrix is, and what this version solves.
int not_supported(const linear_system &s, const std::string &why)
{
    std::fprintf(stderr,
                 "zel solve: %s: this matrix type is not supported yet by this version: %s.\n"
                 "zel solve factors symmetric positive definite (real) and Hermitian positive definite\n"
                 "(complex) matrices; the next release adds unsymmetric and indefinite ones.\n",
                 s.name.c_str(), why.c_str());
    return exit_failure;
}

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

// Real or complex arithmetic, from the request, the matrix and the right-hand sides; then whether
// the matrix can be tried as positive definite. Returns -1 or an exit status.
int choose_type(const request &r, linear_system &s)
{
    const bool complex_input = s.a.is_complex() || (s.have_rhs && s.b.is_complex());
    if (r.type == type_choice::spd && complex_input)
        return usage_error(command_name, "--type spd needs real values, but %s holds complex ones (try --type hpd)",
                           s.a.is_complex() ? s.name.c_str() : r.rhs);
    const bool was_real = !s.a.is_complex();
    if (complex_input || r.type == type_choice::hpd)
        make_complex(s.a);
    const definite_candidate c = check_definite_candidate(s.a);
    if (!c.obstacle.empty())
        return not_supported(s, c.structural ? c.obstacle : c.obstacle + ", so it is not positive definite");
    if (r.type != type_choice::automatic)
        s.type_basis = std::string("asked for with --type ") + (r.type == type_choice::spd ? "spd" : "hpd");
    else if (s.a.is_complex() && was_real)
        s.type_basis = "real symmetric values with complex right-hand sides";
    else
        s.type_basis = s.a.is_complex() ? "Hermitian values with a positive real diagonal"
                                        : "symmetric values with a positive diagonal";
    if (c.asymmetry > 0) {
        char text[96];
        std::snprintf(text, sizeof text, " (the triangles differ by up to %.1e relative; the upper one is used)",
                      c.asymmetry);
        s.type_basis += text;
    }
    return -1;
}

// ---- The solver, through its public interface, for value type T and index type I ----

int create(zel_pds_solver **solver, double) { return zel_pds_d_create(solver, ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE); }
int create(zel_pds_solver **solver, zcomplex)
{
    return zel_pds_z_create(solver, ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE);
}
int analyse(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr, const int32_t *col_idx)
{
    return zel_pds_analyse_csr_i4(solver, n, row_ptr, col_idx, 0, ZEL_PDS_STORAGE_UPPER);
}
int analyse(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr, const int64_t *col_idx)
{
    return zel_pds_analyse_csr_i8(solver, n, row_ptr, col_idx, 0, ZEL_PDS_STORAGE_UPPER);
}
int factorise(zel_pds_solver *solver, const double *values) { return zel_pds_d_factorise(solver, values); }
int factorise(zel_pds_solver *solver, const zcomplex *values)
{
    return zel_pds_z_factorise(solver, reinterpret_cast<const zel_complex16 *>(values));
}
// Blocks of n rows; a leading dimension is at least 1, even for the empty system.
int solve(zel_pds_solver *solver, int64_t nrhs, const double *b, int64_t n, double *x)
{
    const int64_t ld = std::max<int64_t>(n, 1);
    return zel_pds_d_solve(solver, nrhs, b, ld, x, ld);
}
int solve(zel_pds_solver *solver, int64_t nrhs, const zcomplex *b, int64_t n, zcomplex *x)
{
    const int64_t ld = std::max<int64_t>(n, 1);
    return zel_pds_z_solve(solver, nrhs, reinterpret_cast<const zel_complex16 *>(b), ld,
                           reinterpret_cast<zel_complex16 *>(x), ld);
}

struct solver_holder {
    zel_pds_solver *solver = nullptr;
    ~solver_holder() { zel_pds_destroy(solver); }
};

// The upper triangle with the diagonal, in the index width the solver is given.
template <class T, class I> struct upper_csr {
    std::vector<I> row_ptr, col_idx;
    std::vector<T> values;
};

template <class T, class I> upper_csr<T, I> upper_triangle(const mm_matrix &a)
{
    const std::vector<T> &values = values_of<T>(a);
    upper_csr<T, I> u;
    u.row_ptr.reserve(a.header.rows + 1);
    u.row_ptr.push_back(0);
    for (int64_t i = 0; i < a.header.rows; ++i) {
        for (int64_t k = a.row_ptr[i]; k < a.row_ptr[i + 1]; ++k)
            if (a.col_idx[k] >= i) {
                u.col_idx.push_back(static_cast<I>(a.col_idx[k]));
                u.values.push_back(values[k]);
            }
        u.row_ptr.push_back(static_cast<I>(u.col_idx.size()));
    }
    return u;
}

// What the run measured, for the report.
struct outcome {
    int index_bits = 32;
    int64_t nrhs = 1;
    zel_pds_statistics statistics = {};
    double residual = 0;
    bool refinement_on = true;
};

// The failure of a solver call: a matrix that is not positive definite is a type this version
// does not support; anything else is the solver's status and its meaning.
int solver_failed(const linear_system &s, const char *phase, int status, zel_pds_solver *solver)
{
    if (status == ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE) {
        zel_pds_statistics st = {};
        zel_pds_get_statistics(solver, &st);
        return not_supported(s, "the factorisation met a pivot that is not positive at column " +
                                    std::to_string(st.failed_column + 1) +
                                    " (ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE), so it is not positive definite");
    }
    const char *meaning = status == ZEL_PDS_STATUS_ALLOC_FAILED    ? "memory could not be obtained"
                          : status == ZEL_PDS_STATUS_INVALID_VALUE ? "the solver refused the matrix or an argument"
                          : status == ZEL_PDS_STATUS_NOT_SUPPORTED ? "the solver does not support this matrix type"
                          : status == ZEL_PDS_STATUS_TOO_LARGE     ? "the factor's sizes do not fit the index width"
                                                                   : "the solver failed";
    std::fprintf(stderr, "%s: %s: %s failed: %s (%s)\n", command_name, s.name.c_str(), phase,
                 zel_pds_status_name(status), meaning);
    return exit_failure;
}

// The right-hand sides as T: given, or A times the reference solutions.
template <class T> std::vector<T> right_hand_sides(const linear_system &s, int64_t nrhs)
{
    const int64_t n = s.a.header.rows;
    if (s.have_rhs) {
        if constexpr (std::is_same_v<T, double>)
            return s.b.real_values;
        else if (s.b.is_complex())
            return s.b.complex_values;
        else
            return std::vector<T>(s.b.real_values.begin(), s.b.real_values.end());
    }
    const std::vector<double> reference = reference_solutions(n, nrhs);
    const std::vector<T> x(reference.begin(), reference.end());
    std::vector<T> b(x.size());
    multiply(s.a, x.data(), b.data(), nrhs);
    return b;
}

bool write_solution(const char *path, int64_t n, int64_t nrhs, const std::vector<double> &x)
{
    std::string error;
    const bool ok = write_matrix_market_array(path, n, nrhs, x.data(), n, "solution x of zel solve", error);
    if (!ok)
        std::fprintf(stderr, "%s: %s\n", command_name, error.c_str());
    return ok;
}

bool write_solution(const char *path, int64_t n, int64_t nrhs, const std::vector<zcomplex> &x)
{
    std::string error;
    const bool ok = write_matrix_market_array(path, n, nrhs, x.data(), n, "solution x of zel solve", error);
    if (!ok)
        std::fprintf(stderr, "%s: %s\n", command_name, error.c_str());
    return ok;
}

zel_pds_options solver_options(zel_pds_solver *solver, const request &r)
{
    zel_pds_options options;
    zel_pds_get_options(solver, &options);
    options.ordering = r.ordering;
    if (r.refine >= 0)
        options.refinement_max_steps = static_cast<int>(r.refine);
    return options;
}

// create, analyse, factorise, solve, statistics; then the residual and --out.
template <class T, class I> int run_solver(const request &r, const linear_system &s, outcome &o)
{
    const int64_t n = s.a.header.rows;
    const upper_csr<T, I> u = upper_triangle<T, I>(s.a);
    solver_holder h;
    int status = create(&h.solver, T());
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return solver_failed(s, "create", status, h.solver);
    const zel_pds_options options = solver_options(h.solver, r);
    o.refinement_on = options.refinement_max_steps > 0;
    if ((status = zel_pds_set_options(h.solver, &options)) != ZEL_PDS_STATUS_SUCCESS)
        return solver_failed(s, "setting the options", status, h.solver);
    {
        phase_notice notice("analysing");
        status = analyse(h.solver, static_cast<I>(n), u.row_ptr.data(), u.col_idx.data());
    }
    // The factor may outgrow 32-bit indices when the matrix does not: the caller retries wider.
    if (status == ZEL_PDS_STATUS_TOO_LARGE && sizeof(I) == 4)
        return -2;
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return solver_failed(s, "the analysis", status, h.solver);
    {
        phase_notice notice("factorising");
        status = factorise(h.solver, u.values.data());
    }
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return solver_failed(s, "the factorisation", status, h.solver);
    o.nrhs = s.have_rhs ? s.b.header.cols : r.nrhs;
    const std::vector<T> b = right_hand_sides<T>(s, o.nrhs);
    std::vector<T> x(b.size());
    {
        phase_notice notice("solving");
        status = solve(h.solver, o.nrhs, b.data(), n, x.data());
    }
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return solver_failed(s, "the solve", status, h.solver);
    zel_pds_get_statistics(h.solver, &o.statistics);
    o.index_bits = 8 * sizeof(I);
    o.residual = relative_residual(s.a, b.data(), x.data(), o.nrhs);
    if (r.out != nullptr && !write_solution(r.out, n, o.nrhs, x))
        return exit_failure;
    return exit_ok;
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

void print_report(const request &r, const linear_system &s, const outcome &o)
{
    const zel_pds_statistics &st = o.statistics;
    const bool complex = s.a.is_complex();
    line("matrix", "%s", s.name.c_str());
    line("", "n = %s, %s entries (both triangles); %s", grouped(s.a.header.rows).c_str(),
         grouped(s.a.entries()).c_str(), s.stored.c_str());
    line("type", "%s (matrix type %d): %s",
         complex ? "complex Hermitian positive definite" : "real symmetric positive definite",
         complex ? ZEL_PDS_COMPLEX_HERMITIAN_POSITIVE_DEFINITE : ZEL_PDS_REAL_SYMMETRIC_POSITIVE_DEFINITE,
         s.type_basis.c_str());
    line(s.built_in ? "built" : "read", "%s", duration(s.read_seconds).c_str());
    line("ordering", "%s%s; %d-bit indices", ordering_name(st.ordering),
         r.ordering == ZEL_PDS_ORDERING_AUTOMATIC ? ", chosen automatically" : "", o.index_bits);
    line("factor", "%s entries, %s supernodes (largest %lld × %lld), %.3g flops", grouped(st.factor_entries).c_str(),
         grouped(st.supernodes).c_str(), static_cast<long long>(st.max_supernode_rows),
         static_cast<long long>(st.max_supernode_cols), st.factor_flops);
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
    line("residual", "%.2e  max ‖b − A·x‖∞ / (‖A‖∞·‖x‖∞ + ‖b‖∞) over the columns, measured by zel solve", o.residual);
    if (o.refinement_on)
        line("backward error", "%.2e  componentwise, from the solver's statistics", st.backward_error);
    else
        line("backward error", "not measured (refinement off)");
    if (r.out != nullptr)
        line("solution", "written to %s", r.out);
}

template <class T> int run_in_width(const request &r, const linear_system &s, outcome &o)
{
    constexpr int64_t most = std::numeric_limits<int32_t>::max();
    // The upper triangle holds at most (entries + n) / 2 entries.
    const bool narrow = s.a.header.rows <= most && (s.a.entries() + s.a.header.rows) / 2 <= most;
    if (narrow) {
        const int status = run_solver<T, int32_t>(r, s, o);
        if (status != -2)
            return status;
    }
    return run_solver<T, int64_t>(r, s, o);
}

int run_request(const request &r)
{
    linear_system s;
    int status = load_matrix(r, s);
    if (status == -1)
        status = load_rhs(r, s);
    if (status == -1)
        status = choose_type(r, s);
    if (status != -1)
        return status;
    outcome o;
    status = s.a.is_complex() ? run_in_width<zcomplex>(r, s, o) : run_in_width<double>(r, s, o);
    if (status == exit_ok)
        print_report(r, s, o);
    return status;
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
