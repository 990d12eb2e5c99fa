// `zel solve`'s runs of the direct solver.
#include "solve_run.hpp"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <limits>

namespace zel::tool {
namespace {

using zcomplex = std::complex<double>;

// The timer's handler only writes the prepared text, which is safe in a signal handler.
char notice_text[64];
size_t notice_length = 0;
volatile sig_atomic_t notice_shown = 0;

void show_notice(int)
{
    notice_shown = write(STDERR_FILENO, notice_text, notice_length) > 0;
}

// ---- The solver's entries for value type T and index type I ----

int create(zel_pds_solver **solver, int type, double) { return zel_pds_d_create(solver, type); }
int create(zel_pds_solver **solver, int type, zcomplex) { return zel_pds_z_create(solver, type); }

int analyse(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr, const int32_t *col_idx, const double *values,
            int storage)
{
    return zel_pds_d_analyse_csr_values_i4(solver, n, row_ptr, col_idx, values, 0, storage);
}
int analyse(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr, const int64_t *col_idx, const double *values,
            int storage)
{
    return zel_pds_d_analyse_csr_values_i8(solver, n, row_ptr, col_idx, values, 0, storage);
}
int analyse(zel_pds_solver *solver, int32_t n, const int32_t *row_ptr, const int32_t *col_idx, const zcomplex *values,
            int storage)
{
    return zel_pds_z_analyse_csr_values_i4(solver, n, row_ptr, col_idx, reinterpret_cast<const zel_complex16 *>(values),
                                           0, storage);
}
int analyse(zel_pds_solver *solver, int64_t n, const int64_t *row_ptr, const int64_t *col_idx, const zcomplex *values,
            int storage)
{
    return zel_pds_z_analyse_csr_values_i8(solver, n, row_ptr, col_idx, reinterpret_cast<const zel_complex16 *>(values),
                                           0, storage);
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

bool unsymmetric(int type) { return type == ZEL_PDS_REAL_UNSYMMETRIC || type == ZEL_PDS_COMPLEX_UNSYMMETRIC; }

// The matrix as the solver reads it: the upper triangle with the diagonal for the symmetric and
// Hermitian types, every entry for the others.
template <class T, class I> struct solver_csr {
    std::vector<I> row_ptr, col_idx;
    std::vector<T> values;
    int storage = ZEL_PDS_STORAGE_FULL;
    I n() const { return static_cast<I>(row_ptr.size() - 1); }
};

template <class T, class I> solver_csr<T, I> solver_matrix(const mm_matrix &a, bool upper)
{
    const std::vector<T> &values = values_of<T>(a);
    solver_csr<T, I> m;
    m.storage = upper ? ZEL_PDS_STORAGE_UPPER : ZEL_PDS_STORAGE_FULL;
    m.row_ptr.reserve(a.header.rows + 1);
    m.row_ptr.push_back(0);
    for (int64_t i = 0; i < a.header.rows; ++i) {
        for (int64_t k = a.row_ptr[i]; k < a.row_ptr[i + 1]; ++k)
            if (!upper || a.col_idx[k] >= i) {
                m.col_idx.push_back(static_cast<I>(a.col_idx[k]));
                m.values.push_back(values[k]);
            }
        m.row_ptr.push_back(static_cast<I>(m.col_idx.size()));
    }
    return m;
}

// One run on a fresh solver: its status, and the phase that failed (null once a solve ran,
// accurate or not).
struct run_result {
    int status = ZEL_PDS_STATUS_SUCCESS;
    const char *phase = nullptr;
    zel_pds_statistics statistics = {};
    bool refinement_on = false;
    bool matching_on = false; // asked for (automatic is on for the unsymmetric types)
};

bool solved(const run_result &r) { return r.phase == nullptr; }

template <class T, class I>
run_result run_once(const solver_csr<T, I> &m, int type, int matching, const solve_settings &settings,
                    const std::vector<T> &b, int64_t nrhs, std::vector<T> &x)
{
    run_result r;
    r.matching_on = matching != ZEL_PDS_OFF;
    solver_holder h;
    const auto stop = [&](const char *phase, int status) {
        r.phase = phase;
        r.status = status;
        if (h.solver != nullptr)
            zel_pds_get_statistics(h.solver, &r.statistics);
        return r;
    };
    int status = create(&h.solver, type, T());
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return stop("creating the solver", status);
    zel_pds_options options;
    zel_pds_get_options(h.solver, &options);
    options.ordering = settings.ordering;
    options.matching = matching;
    if (settings.refine >= 0)
        options.refinement_max_steps = static_cast<int>(settings.refine);
    if ((status = zel_pds_set_options(h.solver, &options)) != ZEL_PDS_STATUS_SUCCESS)
        return stop("setting the options", status);
    {
        phase_notice notice("analysing");
        status = analyse(h.solver, m.n(), m.row_ptr.data(), m.col_idx.data(), m.values.data(), m.storage);
    }
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return stop("the analysis", status);
    {
        phase_notice notice("factorising");
        status = factorise(h.solver, m.values.data());
    }
    if (status != ZEL_PDS_STATUS_SUCCESS)
        return stop("the factorisation", status);
    x.assign(b.size(), T());
    {
        phase_notice notice("solving");
        status = solve(h.solver, nrhs, b.data(), m.n(), x.data());
    }
    if (status != ZEL_PDS_STATUS_SUCCESS && status != ZEL_PDS_STATUS_NOT_ACCURATE)
        return stop("the solve", status);
    r.status = status;
    zel_pds_get_statistics(h.solver, &r.statistics);
    // Replaced pivots make the solver refine even when asked not to.
    r.refinement_on = options.refinement_max_steps > 0 || r.statistics.replaced_pivots > 0;
    return r;
}

std::string format(const char *pattern, ...) __attribute__((format(printf, 1, 2)));
std::string format(const char *pattern, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

const char *on_off(bool on) { return on ? "on" : "off"; }

// An unsymmetric run that missed the accuracy goal is run again with the other matching choice,
// and the solve with the smaller backward error is kept.
template <class T, class I>
run_result other_matching(const solver_csr<T, I> &m, int type, const solve_settings &settings, const std::vector<T> &b,
                          int64_t nrhs, run_result first, std::vector<T> &x, solve_outcome &o)
{
    if (first.status != ZEL_PDS_STATUS_NOT_ACCURATE)
        return first;
    const bool was_on = first.matching_on;
    std::vector<T> y;
    const run_result second = run_once(m, type, was_on ? ZEL_PDS_OFF : ZEL_PDS_ON, settings, b, nrhs, y);
    const double before = first.statistics.backward_error, after = second.statistics.backward_error;
    std::string note = format("with the matching %s the backward error stayed at %.2e: ", on_off(was_on), before);
    if (!solved(second)) {
        o.matching_notes.push_back(note + format("retried with it %s, where %s returned %s; the first solve is kept",
                                                 on_off(!was_on), second.phase, zel_pds_status_name(second.status)));
        return first;
    }
    const bool better = after < before || (std::isnan(before) && !std::isnan(after));
    o.matching_notes.push_back(note + format("retried with it %s: %.2e; kept the solve with it %s", on_off(!was_on),
                                             after, on_off(better ? !was_on : was_on)));
    if (!better)
        return first;
    x.swap(y);
    return second;
}

// Every run of the plan in index width I. False when the factor outgrew 32-bit indices (the
// caller runs again with 64-bit ones).
template <class T, class I>
bool run_in_width(const mm_matrix &a, const type_plan &plan, const std::vector<T> &b, int64_t nrhs,
                  const solve_settings &settings, solve_outcome &o, std::vector<T> &x)
{
    const auto outgrown = [](const run_result &r) {
        return sizeof(I) == 4 && r.status == ZEL_PDS_STATUS_TOO_LARGE && !solved(r);
    };
    o.not_definite.clear();
    o.matching_notes.clear();
    const solver_csr<T, I> m = solver_matrix<T, I>(a, reads_one_triangle(plan.type));
    int type = plan.type;
    run_result r = run_once(m, type, ZEL_PDS_AUTOMATIC, settings, b, nrhs, x);
    if (r.status == ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE && plan.fallback != 0) {
        o.not_definite = format("not positive definite (the Cholesky factorisation met a pivot that is not positive "
                                "at column %lld), so factored as indefinite",
                                static_cast<long long>(r.statistics.failed_column + 1));
        type = plan.fallback;
        r = run_once(m, type, ZEL_PDS_AUTOMATIC, settings, b, nrhs, x);
    }
    if (unsymmetric(type) && !outgrown(r))
        r = other_matching(m, type, settings, b, nrhs, r, x, o);
    if (outgrown(r))
        return false;
    o.type = type;
    o.status = r.status;
    o.failed_phase = r.phase;
    o.statistics = r.statistics;
    o.refinement_on = r.refinement_on;
    o.index_bits = 8 * sizeof(I);
    return true;
}

// The right-hand sides as T: given, or A times the reference solutions.
template <class T> std::vector<T> right_hand_sides(const mm_matrix &a, const rhs_source &rhs, int64_t nrhs)
{
    if (rhs.given != nullptr) {
        const mm_dense &b = *rhs.given;
        if constexpr (std::is_same_v<T, double>)
            return b.real_values;
        else if (b.is_complex())
            return b.complex_values;
        else
            return std::vector<T>(b.real_values.begin(), b.real_values.end());
    }
    const std::vector<double> reference = reference_solutions(a.header.rows, nrhs);
    const std::vector<T> x(reference.begin(), reference.end());
    std::vector<T> b(x.size());
    multiply(a, x.data(), b.data(), nrhs);
    return b;
}

template <class T>
void run_typed(const mm_matrix &a, const type_plan &plan, const rhs_source &rhs, const solve_settings &settings,
               solve_outcome &o, std::vector<T> &x)
{
    o.nrhs = rhs.given != nullptr ? rhs.given->header.cols : rhs.nrhs;
    const std::vector<T> b = right_hand_sides<T>(a, rhs, o.nrhs);
    constexpr int64_t most = std::numeric_limits<int32_t>::max();
    const bool narrow = a.header.rows <= most && a.entries() <= most;
    if (!narrow || !run_in_width<T, int32_t>(a, plan, b, o.nrhs, settings, o, x))
        run_in_width<T, int64_t>(a, plan, b, o.nrhs, settings, o, x);
    if (o.failed_phase == nullptr)
        o.residual = relative_residual(a, b.data(), x.data(), o.nrhs);
}

} // namespace

void run_plan(const mm_matrix &a, const type_plan &plan, const rhs_source &rhs, const solve_settings &settings,
              solve_outcome &outcome)
{
    if (plan.complex)
        run_typed(a, plan, rhs, settings, outcome, outcome.x_complex);
    else
        run_typed(a, plan, rhs, settings, outcome, outcome.x_real);
}

phase_notice::phase_notice(const char *what)
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

phase_notice::~phase_notice()
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

} // namespace zel::tool
