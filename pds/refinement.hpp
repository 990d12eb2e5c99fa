// Iterative refinement of a solve: residual, its backward error and residual measure, and a
// correction through the solve phase, until the tolerance is met, the measures stagnate or
// the step cap is reached. The better of the last two iterates is kept; the backward error of
// each iterate goes to the frame's history.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "zel/core_imports.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::pds {

// Both measures must fall below this fraction of their previous values for refinement to go on.
inline constexpr double stagnation_factor = 0.9;

// Scratch of one refinement: the residual, the correction, and the iterate before it
// (n values per right-hand side each).
template <class T> struct refinement_scratch {
    scratch_array<T> residual, correction, previous;

    bool allocate(size_t count)
    {
        residual = scratch_array<T>(count, 128);
        correction = scratch_array<T>(count, 128);
        previous = scratch_array<T>(count, 128);
        return residual && correction && previous;
    }
};

// One measurement of the current iterate: error codes of the core's routines, or 0.
template <bool Complex>
int64_t measure(const zel_pds_frame &f, const void *b, const void *x, void *r, double &e, double &m)
{
    int64_t error = 0;
    if constexpr (Complex) {
        zel_pds_pds_compute_residual_iter_ref_cmplx(&f, b, x, r, &error);
        if (error == 0)
            zel_pds_pds_compute_scaled_norm_cmplx(&f, b, x, r, &e, &m, &error);
    } else {
        zel_pds_pds_compute_residual_iter_ref_real(&f, b, x, r, &error);
        if (error == 0)
            zel_pds_pds_compute_scaled_norm_real(&f, b, x, r, &e, &m, &error);
    }
    return error;
}

// to(:, c) = from(:, c) for blocks of the frame's order and right-hand sides.
template <class T> void copy_block(const zel_pds_frame &f, const T *from, int64_t ld_from, T *to, int64_t ld_to)
{
    for (int64_t c = 0; c < f.nrhs; ++c)
        std::copy(from + c * ld_from, from + c * ld_from + f.n, to + c * ld_to);
}

template <class T> void add_correction(const zel_pds_frame &f, const T *d, T *x)
{
    for (int64_t c = 0; c < f.nrhs; ++c) {
        const T *dc = d + c * f.n;
        T *xc = x + c * f.ldx;
        for (int64_t i = 0; i < f.n; ++i)
            xc[i] += dc[i];
    }
}

// Entries of the frame's refinement history: the backward error before the first step and
// after each step.
inline constexpr int64_t history_entries = int64_t(sizeof(zel_pds_frame::refinement_history) / sizeof(double));

// What a refinement found: steps taken, the measures of the iterate it leaves in x, and the
// backward error measured before each step and after the last.
struct refinement_result {
    int64_t error = 0, steps = 0;
    double backward_error = 0, residual_norm = 0;
    double history[history_entries] = {};
};

// The loop. x holds a complete iterate throughout: a correction is added only once its solve
// succeeded, so an error leaves the last iterate in place.
template <bool Complex, class T>
refinement_result refine(const zel_pds_frame &f, const T *b, T *x, double tolerance, refinement_scratch<T> &s)
{
    refinement_result out;
    zel_pds_frame inner = f; // the correction's blocks: residual and correction, leading dimension n
    inner.ldb = inner.ldx = f.n;
    const int64_t cap = std::max<int64_t>(f.refinement_max_steps, 0);
    double e = 0, m = 0, e_previous = 0, m_previous = 0;
    for (;;) {
        if ((out.error = measure<Complex>(f, b, x, s.residual.get(), e, m)) != 0)
            return out;
        if (out.steps < history_entries)
            out.history[out.steps] = e;
        const bool stagnated =
            out.steps > 0 && e > stagnation_factor * e_previous && m > stagnation_factor * m_previous;
        if (stagnated || (tolerance > 0 && tolerance > e) || out.steps == cap)
            break;
        copy_block(f, x, f.ldx, s.previous.get(), f.n);
        e_previous = e;
        m_previous = m;
        zel_pds_kernel_dispatch(&inner, ZEL_PDS_PHASE_SOLVE, s.residual.get(), s.correction.get(), &out.error);
        if (out.error != 0)
            return out;
        add_correction(f, s.correction.get(), x);
        ++out.steps;
    }
    if (out.steps > 0 && e > e_previous) { // the last correction made things worse: undo it
        copy_block(f, s.previous.get(), f.n, x, f.ldx);
        e = e_previous;
        m = m_previous;
    }
    out.backward_error = e;
    out.residual_norm = m;
    return out;
}

// The exported refinement. With k = 0 no tolerance is tested; otherwise the tolerance is
// 10^-k in single precision, widened.
template <bool Complex>
void refinement_entry(zel_pds_frame *frame, const void *b, void *x, int64_t message_level, int64_t *error)
{
    if (error == nullptr)
        return;
    if (frame == nullptr) {
        *error = 1;
        return;
    }
    const int64_t k = frame->refinement_exponent;
    const double tolerance = k != 0 ? double(zel_serv_libm_powf(10.0f, -float(k))) : 0.0;
    frame->refinement_steps = 0;
    frame->backward_error = frame->residual_norm = 0;
    std::fill(std::begin(frame->refinement_history), std::end(frame->refinement_history), 0.0);
    if (complex_type(frame->matrix_type) != Complex || frame->n < 0 || frame->nrhs < 0 ||
        (frame->nrhs > 1 && frame->ldx < frame->n)) {
        *error = 2;
        return;
    }
    *error = 0;
    if (frame->n == 0 || frame->nrhs == 0)
        return;
    if (b == nullptr || x == nullptr) {
        *error = 1;
        return;
    }
    refinement_result out;
    with_frame_types<Complex>(*frame, [&]<class T, class I>() {
        refinement_scratch<T> s;
        const auto count = checked_mul(frame->n, frame->nrhs);
        if (!count || !s.allocate(size_t(*count)))
            out.error = 1;
        else
            out = refine<Complex>(*frame, static_cast<const T *>(b), static_cast<T *>(x), tolerance, s);
    });
    frame->refinement_steps = out.steps;
    frame->backward_error = out.backward_error;
    frame->residual_norm = out.residual_norm;
    std::copy(std::begin(out.history), std::end(out.history), frame->refinement_history);
    *error = out.error;
    if (out.error == 0 && message_level == 1 && out.steps > 0) {
        zel_serv_printf_s("Number of iterative refinement steps performed        %d\n", int(out.steps));
        zel_serv_printf_s("Tolerance level in the iterative refinement process   %e\n", tolerance);
        zel_serv_printf_s("Backward error after the iterative refinement process %e\n",
                          double(float(out.backward_error)));
    }
}

} // namespace zel::pds
