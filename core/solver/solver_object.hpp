// The solver object behind zel/pds.h: options, the analysis at the width it was given, the
// kept matrix, the factor, and the statistics of the last run of each phase.
#pragma once

#include <cstdint>
#include <cstring>
#include <new>

#include "kept_matrix.hpp"
#include "numeric_pivoted.hpp"
#include "ordering.hpp"
#include "zel/pds.h"
#include "zel/pds_solve.h"

struct zel_pds_solver {
    virtual ~zel_pds_solver() = default;
    // values: null, or the caller's values (of the solver's type) for the matching.
    virtual int analyse(const zel::solver::csr_pattern<int32_t> &a, zel::solver::csr_part part,
                        const void *values) = 0;
    virtual int analyse(const zel::solver::csr_pattern<int64_t> &a, zel::solver::csr_part part,
                        const void *values) = 0;
    virtual int factorise(const void *values) = 0;
    virtual int solve(int64_t nrhs, const void *b, int64_t ldb, void *x, int64_t ldx) = 0;
    virtual int export_factor(zel_pds_factor_i4 &out) const = 0;
    virtual int export_factor(zel_pds_factor_i8 &out) const = 0;

    int matrix_type = 0;
    int data_type = 0;   // the sparse handle's code of the value type
    int index_width = 0; // 4 or 8 once analysed
    zel_pds_options options{};
    zel_pds_statistics statistics{};
    zel::scratch_array<int64_t> given_perm; // the caller's ordering, 0-based
    int64_t given_n = -1;
};

namespace zel::solver {

// Status values of the phase interface for the sparse ones the building blocks return.
inline int pds_status(int sparse_status, int invalid = ZEL_PDS_STATUS_INVALID_VALUE)
{
    switch (sparse_status) {
    case ZEL_SPARSE_STATUS_SUCCESS:
        return ZEL_PDS_STATUS_SUCCESS;
    case ZEL_SPARSE_STATUS_ALLOC_FAILED:
        return ZEL_PDS_STATUS_ALLOC_FAILED;
    default:
        return invalid;
    }
}

// One analysis and what the phases after it build, at index width I.
template <class T, class I> struct analysis_state {
    symbolic_factor<I> factor;
    kept_matrix<I> matrix;
    I base = 0;
    scratch_array<T> values;   // the kept entries' values, from the last factorise
    scratch_array<T> l_values; // the factor's panels
    bool factored = false;
    int64_t pattern_entries = 0; // of the analysed pattern, both triangles and the diagonal
    int pivoting = 0;            // the frame's pivoting mode of the last factor
    int64_t structural_rank = 0;
    bool paired = false; // rows with weak diagonals were paired for 2×2 pivots
    // LU and L·D·Lᵀ (empty for the types that do not use them).
    scratch_array<I> u_col_ptr;
    int64_t u_stored = 0;
    scratch_array<T> u_values, diagonal;
    scratch_array<I> row_pivots, col_pivots, bk_pivots;
    // The matching (row matching[j] of A goes to row j of C; matched_row is its inverse) and
    // the scaling: Dr and Dc by A's numbering, and the frame's 2n values.
    scratch_array<I> matching, matched_row;
    scratch_array<double> row_scale, col_scale;
    bool scaled_by_analysis = false; // the matching's duals, kept for every factorise
    bool unmatched_lost = false;     // factoring without the matching was tried and did worse
    scratch_array<real_t<T>> scaling;
    // The sweeps' rows for several right-hand sides, lent to every solve after the first.
    scratch_array<T> sweep_scratch;

    int64_t bytes_held() const;
};

template <class T, class I> int64_t analysis_state<T, I>::bytes_held() const
{
    const symbolic_factor<I> &f = factor;
    const int64_t indices = f.super_ptr.size() + f.col_ptr.size() + f.row_ptr.size() + f.row_index.size() +
                            f.perm.size() + f.inv_perm.size() + f.super_parent.size() + matrix.row_ptr.size() +
                            matrix.col_idx.size() + matrix.source.size() + u_col_ptr.size() + row_pivots.size() +
                            col_pivots.size() + bk_pivots.size() + matching.size() + matched_row.size();
    const int64_t reals = int64_t((row_scale.size() + col_scale.size()) * sizeof(double) +
                                  scaling.size() * sizeof(real_t<T>));
    return indices * int64_t(sizeof(I)) + int64_t(matrix.destination.size() * sizeof(int64_t)) + reals +
           int64_t((values.size() + l_values.size() + u_values.size() + diagonal.size() + sweep_scratch.size()) *
                   sizeof(T));
}

// The factor's arrays into a record that names them as the solve kernels do (the solve frame,
// or the exported factor).
template <class T, class I, class Record> void describe_factor(const analysis_state<T, I> &state, Record &out)
{
    const symbolic_factor<I> &f = state.factor;
    out.n = f.n;
    out.nsuper = f.nsuper;
    out.super_ptr = f.super_ptr.get();
    out.col_ptr = f.col_ptr.get();
    out.row_ptr = f.row_ptr.get();
    out.row_index = f.row_index.get();
    out.l_values = state.l_values.get();
    out.u_col_ptr = state.u_values ? state.u_col_ptr.get() : nullptr;
    out.u_values = state.u_values.get();
    out.row_pivots = state.row_pivots.get();
    out.col_pivots = state.col_pivots.get();
    out.bk_pivots = state.bk_pivots.get();
    out.diagonal = state.diagonal.get();
    out.perm = f.perm.get();
    out.matching = state.matching.get();
    out.scaling = state.scaling.get();
    out.pivoting = state.pivoting;
}

// How a matrix type is factored.
enum class factor_kind { cholesky, lu, ldlt };

inline bool unsymmetric_type(int matrix_type) { return matrix_type == 11 || matrix_type == 13; }

inline factor_kind kind_of(int matrix_type)
{
    switch (matrix_type) {
    case 2:
    case 4: return factor_kind::cholesky;
    case -2:
    case -4:
    case 6: return factor_kind::ldlt;
    default: return factor_kind::lu;
    }
}

ordering_method ordering_of(int option);
int pds_ordering_code(ordering_method used);

// The factorisation's workspace on top of what it keeps: the update buffers and their links.
template <class T, class I> int64_t factorise_workspace(const symbolic_factor<I> &f, factor_kind kind)
{
    const int64_t buffers = kind == factor_kind::cholesky ? f.stats.max_panel : 2 * f.stats.max_panel + 2 * f.n;
    return buffers * int64_t(sizeof(T)) + (3 * int64_t(f.nsuper) + 2 * int64_t(f.n)) * int64_t(sizeof(I));
}

} // namespace zel::solver
