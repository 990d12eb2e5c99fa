// `zel solve`'s runs of the direct solver through its public interface: the planned matrix type;
// the indefinite type on a fresh solver when the positive definite one meets a pivot that is not
// positive; for the unsymmetric types, the other matching choice when a solve misses the accuracy
// goal; 64-bit indices when the factor outgrows 32-bit ones.
#pragma once

#include <complex>
#include <cstdint>
#include <string>
#include <vector>

#include "matrix_market.hpp"
#include "solve_problem.hpp"
#include "zel/pds.h"

namespace zel::tool {

struct solve_settings {
    int ordering = ZEL_PDS_ORDERING_AUTOMATIC;
    int64_t refine = -1; // at most this many refinement steps; the solver's default when negative
};

// The right-hand sides: given (n rows, nrhs columns), or b_j = A·x_j for reference_solutions.
struct rhs_source {
    const mm_dense *given = nullptr;
    int64_t nrhs = 1;
};

// What the runs found. When a phase failed, `status` is its status and `failed_phase` names it;
// otherwise `status` is the kept solve's (SUCCESS or NOT_ACCURATE) and x its solution.
struct solve_outcome {
    int type = 0; // the matrix type of the kept run
    int status = ZEL_PDS_STATUS_SUCCESS;
    const char *failed_phase = nullptr; // "the analysis", "the factorisation", "the solve", ...
    int index_bits = 32;
    int64_t nrhs = 1;
    zel_pds_statistics statistics = {};
    bool refinement_on = true;   // the solver measured the backward error
    std::string not_definite;    // why the positive definite type gave way to the indefinite one
    std::vector<std::string> matching_notes; // the matching choices tried, when more than one
    double residual = 0;         // measured here against the matrix as read
    std::vector<double> x_real;  // the solution, in the arithmetic of the run
    std::vector<std::complex<double>> x_complex;
};

// Runs the plan on `a` (complex when plan.complex). The statistics are those of the kept run.
void run_plan(const mm_matrix &a, const type_plan &plan, const rhs_source &rhs, const solve_settings &settings,
              solve_outcome &outcome);

// "factorising ..." on standard error once a phase has run for a second, when it is a terminal;
// erased when the phase ends.
class phase_notice {
public:
    explicit phase_notice(const char *what);
    ~phase_notice();
    phase_notice(const phase_notice &) = delete;
    phase_notice &operator=(const phase_notice &) = delete;

private:
    bool on_ = false;
};

} // namespace zel::tool
