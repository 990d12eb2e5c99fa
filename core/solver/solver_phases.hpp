// The phases of the solver object for one value type: analyse, factorise, solve, export.
#pragma once

#include <algorithm>
#include <cstdint>

#include "solver_object.hpp"
#include "zel/runtime.h"

namespace zel::solver {

template <class T> class solver_impl final : public zel_pds_solver {
public:
    int analyse(const csr_pattern<int32_t> &a, csr_part part, const void *values) override
    { return analyse_at(a, part, static_cast<const T *>(values), narrow_); }
    int analyse(const csr_pattern<int64_t> &a, csr_part part, const void *values) override
    { return analyse_at(a, part, static_cast<const T *>(values), wide_); }
    int factorise(const void *values) override;
    int solve(int64_t nrhs, const void *b, int64_t ldb, void *x, int64_t ldx) override;
    int export_factor(zel_pds_factor_i4 &out) const override { return export_from(narrow_, out); }
    int export_factor(zel_pds_factor_i8 &out) const override { return export_from(wide_, out); }

private:
    template <class I>
    int analyse_at(const csr_pattern<I> &a, csr_part part, const T *values, analysis_state<T, I> &state);
    template <class I> int analysis_into(const csr_pattern<I> &a, csr_part part, analysis_state<T, I> &next);
    template <class I> int factorise_at(analysis_state<T, I> &state, const T *values);
    template <class I> int solve_at(analysis_state<T, I> &state, int64_t nrhs, const T *b, int64_t ldb, T *x,
                                    int64_t ldx);
    template <class I> void fill_frame(const analysis_state<T, I> &state, zel_pds_frame &frame) const;
    template <class I, class F> int export_from(const analysis_state<T, I> &state, F &out) const;
    template <class I> void record_analysis(const analysis_state<T, I> &state, const ordering_report &report);

    analysis_state<T, int32_t> narrow_;
    analysis_state<T, int64_t> wide_;
};

// Builds the whole analysis into `next`: the kept matrix, the ordering, the symbolic factor
// and where each value goes.
template <class T>
template <class I>
int solver_impl<T>::analysis_into(const csr_pattern<I> &a, csr_part part, analysis_state<T, I> &next)
{
    if (int status = keep_matrix(a, part, true, next.matrix); status != ZEL_SPARSE_STATUS_SUCCESS)
        return pds_status(status);
    scratch_array<I> given;
    if (options.ordering == ZEL_PDS_ORDERING_GIVEN) {
        if (given_n != int64_t(a.n) || !allocate(given, a.n))
            return given_n != int64_t(a.n) ? ZEL_PDS_STATUS_INVALID_VALUE : ZEL_PDS_STATUS_ALLOC_FAILED;
        std::copy(given_perm.get(), given_perm.get() + a.n, given.get());
    }
    sym_pattern<I> pattern;
    if (int status = pattern_from_csr(a, part, pattern); status != ZEL_SPARSE_STATUS_SUCCESS)
        return pds_status(status);
    ordering_options order;
    order.method = ordering_of(options.ordering);
    amalgamation relax;
    relax.enabled = options.amalgamation != 0;
    ordering_report report;
    int status = analyse_pattern(pattern, order, given.get(), relax, next.factor, &report);
    if (status == ZEL_SPARSE_STATUS_SUCCESS)
        status = map_values(next.factor, next.matrix);
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        return pds_status(status, ZEL_PDS_STATUS_TOO_LARGE);
    next.base = a.base;
    next.pattern_entries = int64_t(pattern.entries()) + a.n;
    record_analysis(next, report);
    return ZEL_PDS_STATUS_SUCCESS;
}

template <class T>
template <class I>
int solver_impl<T>::analyse_at(const csr_pattern<I> &a, csr_part part, [[maybe_unused]] const T *values,
                              analysis_state<T, I> &state)
{
    const double start = zel_serv_dsecnd();
    analysis_state<T, I> next;
    if (int status = analysis_into(a, part, next); status != ZEL_PDS_STATUS_SUCCESS)
        return status;
    narrow_ = analysis_state<T, int32_t>();
    wide_ = analysis_state<T, int64_t>();
    state = std::move(next);
    index_width = sizeof(I);
    statistics.analyse_seconds = zel_serv_dsecnd() - start;
    statistics.memory_used = state.bytes_held();
    return ZEL_PDS_STATUS_SUCCESS;
}

template <class T>
template <class I>
void solver_impl<T>::record_analysis(const analysis_state<T, I> &state, const ordering_report &report)
{
    const symbolic_stats &st = state.factor.stats;
    const double complex_factor = is_complex_v<T> ? 4 : 1;
    statistics = zel_pds_statistics{};
    statistics.n = state.matrix.n;
    statistics.matrix_entries = state.pattern_entries;
    statistics.ordering = pds_ordering_code(report.used);
    statistics.supernodes = st.nsuper;
    statistics.factor_entries = st.factor_entries;
    statistics.max_supernode_rows = st.max_rows;
    statistics.max_supernode_cols = st.max_cols;
    statistics.factor_flops = complex_factor * st.flops;
    statistics.solve_flops = complex_factor * 4.0 * double(st.factor_entries);
    // Every array holds at least one element, an empty system's too.
    const int64_t values = std::max<int64_t>(state.matrix.entries(), 1) + std::max<int64_t>(st.stored_values, 1);
    statistics.memory_estimate = state.bytes_held() + values * int64_t(sizeof(T)) + factorise_workspace<T>(state.factor);
    statistics.refinement_steps = 0;
    statistics.failed_column = -1;
}

// Copies the caller's values of the kept entries, scatters them into the panels and factors.
// A failed factorisation drops the factor (the analysis stays).
template <class T>
template <class I>
int solver_impl<T>::factorise_at(analysis_state<T, I> &state, const T *values)
{
    const double start = zel_serv_dsecnd();
    const kept_matrix<I> &m = state.matrix;
    // A refused argument changes nothing; from here on a failure drops the factor.
    if (m.caller_entries > 0 && values == nullptr)
        return ZEL_PDS_STATUS_INVALID_VALUE;
    state.factored = false;
    statistics.failed_column = -1;
    if ((!state.values && !allocate(state.values, m.entries())) ||
        (!state.l_values && !allocate_large(state.l_values, state.factor.stats.stored_values)))
        return ZEL_PDS_STATUS_ALLOC_FAILED;
    for (I p = 0; p < m.entries(); ++p)
        state.values[size_t(p)] = values[size_t(m.source[size_t(p)])];
    scatter_values(m, state.values.get(), state.l_values.get(), state.factor.stats.stored_values);
    int64_t failed = -1;
    const int status = numeric_cholesky(state.factor, state.l_values.get(), failed);
    statistics.memory_used = state.bytes_held();
    if (status == ZEL_SPARSE_STATUS_ALLOC_FAILED)
        return ZEL_PDS_STATUS_ALLOC_FAILED;
    if (status != ZEL_SPARSE_STATUS_SUCCESS) {
        statistics.failed_column = int64_t(state.factor.perm[size_t(failed)]) + state.base;
        return ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE;
    }
    state.factored = true;
    statistics.factorise_seconds = zel_serv_dsecnd() - start;
    return ZEL_PDS_STATUS_SUCCESS;
}

template <class T> int solver_impl<T>::factorise(const void *values)
{
    const T *v = static_cast<const T *>(values);
    if (index_width == 4)
        return factorise_at(narrow_, v);
    if (index_width == 8)
        return factorise_at(wide_, v);
    return ZEL_PDS_STATUS_WRONG_PHASE;
}

// The solve frame over the factor and the kept matrix.
template <class T>
template <class I>
void solver_impl<T>::fill_frame(const analysis_state<T, I> &state, zel_pds_frame &frame) const
{
    frame = zel_pds_frame{};
    describe_factor(state, frame);
    frame.lp64 = sizeof(I) == 4;
    frame.single = sizeof(real_t<T>) == 4;
    frame.matrix_type = matrix_type;
    frame.transposed = options.operation;
    frame.partitions = options.partitions;
    frame.refinement_exponent = options.refinement_exponent;
    frame.refinement_max_steps = options.refinement_max_steps;
    frame.a_upper = state.matrix.upper;
    frame.a_row_ptr = state.matrix.row_ptr.get();
    frame.a_col_idx = state.matrix.col_idx.get();
    frame.a_values = state.values.get();
}

// The driver, then refinement against a copy of b when the solution overwrites it.
template <class T>
template <class I>
int solver_impl<T>::solve_at(analysis_state<T, I> &state, int64_t nrhs, const T *b, int64_t ldb, T *x, int64_t ldx)
{
    const double start = zel_serv_dsecnd();
    const int64_t n = state.factor.n;
    if (!state.factored)
        return ZEL_PDS_STATUS_WRONG_PHASE;
    if (nrhs < 0 || ldb < std::max<int64_t>(n, 1) || ldx < std::max<int64_t>(n, 1) || (b == x && ldb != ldx) ||
        (nrhs > 0 && n > 0 && (b == nullptr || x == nullptr)))
        return ZEL_PDS_STATUS_INVALID_VALUE;
    if (nrhs == 0 || n == 0)
        return ZEL_PDS_STATUS_SUCCESS;
    const bool refine = options.refinement_max_steps > 0;
    scratch_array<T> kept_b;
    if (refine && b == x) {
        const auto count = checked_mul(n, nrhs);
        if (!count || !allocate(kept_b, *count))
            return ZEL_PDS_STATUS_ALLOC_FAILED;
        for (int64_t j = 0; j < nrhs; ++j)
            std::copy(b + j * ldb, b + j * ldb + n, kept_b.get() + j * n);
    }
    zel_pds_frame frame;
    fill_frame(state, frame);
    frame.nrhs = nrhs;
    frame.ldb = ldb;
    frame.ldx = ldx;
    int64_t error = 0;
    if constexpr (is_complex_v<T>)
        zel_pds_pds_slv_nrhs_seq_cmplx(&frame, b, x, options.message_level, &error);
    else
        zel_pds_pds_slv_nrhs_seq_real(&frame, b, x, options.message_level, &error);
    if (error == 0 && refine) {
        frame.ldb = kept_b ? n : ldb;
        const T *rhs = kept_b ? kept_b.get() : b;
        if constexpr (is_complex_v<T>)
            zel_pds_iter_ref_cmplx(&frame, rhs, x, options.message_level, &error);
        else
            zel_pds_iter_ref_real(&frame, rhs, x, options.message_level, &error);
    }
    statistics.refinement_steps = refine ? int(frame.refinement_steps) : 0;
    statistics.backward_error = refine ? frame.backward_error : 0;
    statistics.residual_norm = refine ? frame.residual_norm : 0;
    statistics.solve_seconds = zel_serv_dsecnd() - start;
    return error == 0 ? ZEL_PDS_STATUS_SUCCESS : error == 1 ? ZEL_PDS_STATUS_ALLOC_FAILED : ZEL_PDS_STATUS_NOT_SUPPORTED;
}

template <class T> int solver_impl<T>::solve(int64_t nrhs, const void *b, int64_t ldb, void *x, int64_t ldx)
{
    const T *bb = static_cast<const T *>(b);
    T *xx = static_cast<T *>(x);
    if (index_width == 4)
        return solve_at(narrow_, nrhs, bb, ldb, xx, ldx);
    if (index_width == 8)
        return solve_at(wide_, nrhs, bb, ldb, xx, ldx);
    return ZEL_PDS_STATUS_WRONG_PHASE;
}

template <class T>
template <class I, class F>
int solver_impl<T>::export_from(const analysis_state<T, I> &state, F &out) const
{
    if (index_width == 0 || !state.factored)
        return index_width != 0 && index_width != int(sizeof(I)) ? ZEL_PDS_STATUS_INVALID_VALUE
                                                                 : ZEL_PDS_STATUS_WRONG_PHASE;
    out = F{};
    describe_factor(state, out);
    return ZEL_PDS_STATUS_SUCCESS;
}

} // namespace zel::solver
