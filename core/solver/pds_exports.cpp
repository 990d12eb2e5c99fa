// Exported phase interface of the direct solver (zel/pds.h): argument checks and one-line shells
// over the solver object.
#include <new>

#include "solver_phases.hpp"
#include "zel/pds.h"
#include "zel_internal/members.hpp"
#include "zel_internal/sparse_records.hpp"

namespace zs = zel::solver;

namespace zel::solver {

ordering_method ordering_of(int option)
{
    switch (option) {
    case ZEL_PDS_ORDERING_AMD: return ordering_method::amd;
    case ZEL_PDS_ORDERING_NESTED_DISSECTION: return ordering_method::metis;
    case ZEL_PDS_ORDERING_GIVEN: return ordering_method::given;
    case ZEL_PDS_ORDERING_NATURAL: return ordering_method::natural;
    default: return ordering_method::automatic;
    }
}

int pds_ordering_code(ordering_method used)
{
    switch (used) {
    case ordering_method::amd: return ZEL_PDS_ORDERING_AMD;
    case ordering_method::metis: return ZEL_PDS_ORDERING_NESTED_DISSECTION;
    case ordering_method::given: return ZEL_PDS_ORDERING_GIVEN;
    case ordering_method::natural: return ZEL_PDS_ORDERING_NATURAL;
    default: return ZEL_PDS_ORDERING_AUTOMATIC;
    }
}

namespace {

bool is_complex_type(int type) { return type == 3 || type == 4 || type == -4 || type == 6 || type == 13; }
bool is_real_type(int type) { return type == 1 || type == 2 || type == -2 || type == 11; }

// A new solver for value type T, or the reason there is none.
template <class T> int create(zel_pds_solver **solver, int matrix_type)
{
    if (solver == nullptr)
        return ZEL_PDS_STATUS_INVALID_VALUE;
    *solver = nullptr;
    if (is_complex_v<T> ? !is_complex_type(matrix_type) : !is_real_type(matrix_type))
        return ZEL_PDS_STATUS_INVALID_VALUE;
    void *memory = zel_serv_malloc(sizeof(solver_impl<T>), alignof(solver_impl<T>) > 64 ? 128 : 64);
    if (memory == nullptr)
        return ZEL_PDS_STATUS_ALLOC_FAILED;
    zel_pds_solver *made = new (memory) solver_impl<T>();
    made->matrix_type = matrix_type;
    made->data_type = sparse::data_type_code<T>();
    zel_pds_default_options(&made->options);
    made->statistics.failed_column = -1;
    *solver = made;
    return ZEL_PDS_STATUS_SUCCESS;
}

bool valid_options(const zel_pds_options &o)
{
    return o.ordering >= ZEL_PDS_ORDERING_AUTOMATIC && o.ordering <= ZEL_PDS_ORDERING_NATURAL &&
           o.refinement_max_steps >= 0 && o.refinement_max_steps <= 10 && o.refinement_exponent >= 0 &&
           o.refinement_exponent <= 38 && (o.message_level == 0 || o.message_level == 1) &&
           o.operation >= ZEL_PDS_SOLVE_N && o.operation <= ZEL_PDS_SOLVE_C && o.partitions >= 1 &&
           (o.amalgamation == 0 || o.amalgamation == 1) && o.matching >= ZEL_PDS_AUTOMATIC &&
           o.matching <= ZEL_PDS_OFF && o.scaling >= ZEL_PDS_AUTOMATIC && o.scaling <= ZEL_PDS_OFF &&
           (o.pivoting == ZEL_PDS_PIVOTING_DIAGONAL || o.pivoting == ZEL_PDS_PIVOTING_BUNCH_KAUFMAN) &&
           o.pivot_threshold == o.pivot_threshold;
}

template <class I> int set_permutation(zel_pds_solver *solver, I n, const I *perm)
{
    if (solver == nullptr || n < 0 || (n > 0 && perm == nullptr))
        return ZEL_PDS_STATUS_INVALID_VALUE;
    // The check allocates: its failure is the allocator's, not the caller's.
    if (int status = validate_permutation(n, perm); status != ZEL_SPARSE_STATUS_SUCCESS)
        return pds_status(status);
    scratch_array<int64_t> copy;
    if (!allocate(copy, n))
        return ZEL_PDS_STATUS_ALLOC_FAILED;
    std::copy(perm, perm + n, copy.get());
    solver->given_perm = std::move(copy);
    solver->given_n = n;
    return ZEL_PDS_STATUS_SUCCESS;
}

template <class I> int analyse_csr(zel_pds_solver *solver, I n, const I *row_ptr, const I *col_idx,
                                   const void *values, int base, int storage)
{
    if (solver == nullptr || (storage != ZEL_PDS_STORAGE_FULL && storage != ZEL_PDS_STORAGE_UPPER))
        return ZEL_PDS_STATUS_INVALID_VALUE;
    // Even an empty matrix has its one row pointer.
    if ((base != 0 && base != 1) || row_ptr == nullptr || row_ptr[0] != base)
        return ZEL_PDS_STATUS_INVALID_VALUE;
    const csr_pattern<I> a{n, I(base), row_ptr, col_idx};
    return solver->analyse(a, storage == ZEL_PDS_STORAGE_UPPER ? csr_part::upper : csr_part::full, values);
}

// The same with values of type T, which must be the solver's.
template <class T, class I> int analyse_csr_values(zel_pds_solver *solver, I n, const I *row_ptr, const I *col_idx,
                                                   const T *values, int base, int storage)
{
    if (solver == nullptr || solver->data_type != sparse::data_type_code<T>())
        return ZEL_PDS_STATUS_INVALID_VALUE;
    if (values == nullptr && n > 0 && row_ptr != nullptr && row_ptr[n] != row_ptr[0])
        return ZEL_PDS_STATUS_INVALID_VALUE;
    return analyse_csr(solver, n, row_ptr, col_idx, values, base, storage);
}

// The CSR record of a square handle of the solver's value type whose rows lie back to back.
template <class I>
const sparse::csr_t<I> *handle_csr(const zel_pds_solver *solver, const sparse::handle_t<I> *matrix)
{
    if (solver == nullptr || matrix == nullptr || matrix->format != ZEL_SPARSE_FORMAT_CSR ||
        matrix->data_type != solver->data_type || matrix->rows != matrix->cols || matrix->data == nullptr)
        return nullptr;
    const auto *csr = static_cast<const sparse::csr_t<I> *>(matrix->data);
    for (I i = 0; i + 1 < matrix->rows; ++i)
        if (csr->rows_end[i] != csr->rows_start[i + 1])
            return nullptr;
    return csr;
}

template <class I> int analyse_sparse(zel_pds_solver *solver, const sparse::handle_t<I> *matrix, int storage)
{
    const auto *csr = handle_csr<I>(solver, matrix);
    if (csr == nullptr || matrix->rows < 1)
        return ZEL_PDS_STATUS_INVALID_VALUE;
    if (csr->rows_end[matrix->rows - 1] < csr->rows_start[matrix->rows - 1])
        return ZEL_PDS_STATUS_INVALID_VALUE;
    // A contiguous row pointer of n + 1 entries: rows_start followed by the last row's end.
    scratch_array<I> row_ptr;
    if (!allocate(row_ptr, int64_t(matrix->rows) + 1))
        return ZEL_PDS_STATUS_ALLOC_FAILED;
    std::copy(csr->rows_start, csr->rows_start + matrix->rows, row_ptr.get());
    row_ptr[size_t(matrix->rows)] = csr->rows_end[matrix->rows - 1];
    return analyse_csr(solver, matrix->rows, row_ptr.get(), csr->col_indx, csr->values, csr->index_base, storage);
}

template <class I> int factorise_sparse(zel_pds_solver *solver, const sparse::handle_t<I> *matrix)
{
    const auto *csr = handle_csr<I>(solver, matrix);
    if (csr == nullptr)
        return solver == nullptr || solver->index_width != 0 ? ZEL_PDS_STATUS_INVALID_VALUE
                                                             : ZEL_PDS_STATUS_WRONG_PHASE;
    if (solver->index_width != int(sizeof(I)))
        return solver->index_width == 0 ? ZEL_PDS_STATUS_WRONG_PHASE : ZEL_PDS_STATUS_INVALID_VALUE;
    return solver->factorise(csr->values);
}

template <class C> int factorise(zel_pds_solver *solver, const C *values)
{
    return solver == nullptr ? ZEL_PDS_STATUS_INVALID_VALUE : solver->factorise(values);
}

template <class C> int solve(zel_pds_solver *solver, int64_t nrhs, const C *b, int64_t ldb, C *x, int64_t ldx)
{
    return solver == nullptr ? ZEL_PDS_STATUS_INVALID_VALUE : solver->solve(nrhs, b, ldb, x, ldx);
}

template <class F> int export_factor(const zel_pds_solver *solver, F *factor)
{
    return solver == nullptr || factor == nullptr ? ZEL_PDS_STATUS_INVALID_VALUE : solver->export_factor(*factor);
}

} // namespace
} // namespace zel::solver

extern "C" {

ZEL_API const char *zel_pds_status_name(int status)
{
    switch (status) {
    case ZEL_PDS_STATUS_SUCCESS: return "ZEL_PDS_STATUS_SUCCESS";
    case ZEL_PDS_STATUS_ALLOC_FAILED: return "ZEL_PDS_STATUS_ALLOC_FAILED";
    case ZEL_PDS_STATUS_INVALID_VALUE: return "ZEL_PDS_STATUS_INVALID_VALUE";
    case ZEL_PDS_STATUS_NOT_SUPPORTED: return "ZEL_PDS_STATUS_NOT_SUPPORTED";
    case ZEL_PDS_STATUS_WRONG_PHASE: return "ZEL_PDS_STATUS_WRONG_PHASE";
    case ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE: return "ZEL_PDS_STATUS_NOT_POSITIVE_DEFINITE";
    case ZEL_PDS_STATUS_TOO_LARGE: return "ZEL_PDS_STATUS_TOO_LARGE";
    case ZEL_PDS_STATUS_STRUCTURALLY_SINGULAR: return "ZEL_PDS_STATUS_STRUCTURALLY_SINGULAR";
    case ZEL_PDS_STATUS_SINGULAR: return "ZEL_PDS_STATUS_SINGULAR";
    case ZEL_PDS_STATUS_NOT_ACCURATE: return "ZEL_PDS_STATUS_NOT_ACCURATE";
    default: return "unknown";
    }
}

ZEL_API int zel_pds_destroy(zel_pds_solver *solver)
{
    if (solver != nullptr) {
        solver->~zel_pds_solver();
        zel_serv_free(solver);
    }
    return ZEL_PDS_STATUS_SUCCESS;
}

ZEL_API void zel_pds_default_options(zel_pds_options *options)
{
    if (options != nullptr)
        *options = zel_pds_options{ZEL_PDS_ORDERING_AUTOMATIC, 2, 14, 0, ZEL_PDS_SOLVE_N, 1, 1,
                                   ZEL_PDS_AUTOMATIC, ZEL_PDS_AUTOMATIC, ZEL_PDS_PIVOTING_BUNCH_KAUFMAN, 0.0};
}

ZEL_API int zel_pds_set_options(zel_pds_solver *solver, const zel_pds_options *options)
{
    if (solver == nullptr || options == nullptr || !zs::valid_options(*options))
        return ZEL_PDS_STATUS_INVALID_VALUE;
    solver->options = *options;
    return ZEL_PDS_STATUS_SUCCESS;
}

ZEL_API int zel_pds_get_options(const zel_pds_solver *solver, zel_pds_options *options)
{
    if (solver == nullptr || options == nullptr)
        return ZEL_PDS_STATUS_INVALID_VALUE;
    *options = solver->options;
    return ZEL_PDS_STATUS_SUCCESS;
}

ZEL_API int zel_pds_get_statistics(const zel_pds_solver *solver, zel_pds_statistics *statistics)
{
    if (solver == nullptr || statistics == nullptr)
        return ZEL_PDS_STATUS_INVALID_VALUE;
    *statistics = solver->statistics;
    return ZEL_PDS_STATUS_SUCCESS;
}

#define ZEL_PDS_VALUE_SHELLS(P, C, T)                                                                     \
    ZEL_API int zel_pds_##P##_create(zel_pds_solver **solver, int matrix_type)                            \
    { return zs::create<T>(solver, matrix_type); }                                                        \
    ZEL_API int zel_pds_##P##_factorise(zel_pds_solver *solver, const C *values)                          \
    { return zs::factorise(solver, values); }                                                             \
    ZEL_API int zel_pds_##P##_solve(zel_pds_solver *solver, int64_t nrhs, const C *b, int64_t ldb, C *x,  \
                                    int64_t ldx)                                                          \
    { return zs::solve(solver, nrhs, b, ldb, x, ldx); }

#define ZEL_PDS_WIDTH_SHELLS(W, I)                                                                        \
    ZEL_API int zel_pds_set_permutation_##W(zel_pds_solver *solver, I n, const I *perm)                   \
    { return zs::set_permutation(solver, n, perm); }                                                      \
    ZEL_API int zel_pds_analyse_csr_##W(zel_pds_solver *solver, I n, const I *row_ptr, const I *col_idx,  \
                                        int base, int storage)                                            \
    { return zs::analyse_csr(solver, n, row_ptr, col_idx, nullptr, base, storage); }                      \
    ZEL_API int zel_pds_analyse_sparse_##W(zel_pds_solver *solver, const zel_sparse_matrix_##W *matrix,   \
                                           int storage)                                                   \
    { return zs::analyse_sparse<I>(solver, matrix, storage); }                                            \
    ZEL_API int zel_pds_factorise_sparse_##W(zel_pds_solver *solver, const zel_sparse_matrix_##W *matrix) \
    { return zs::factorise_sparse<I>(solver, matrix); }                                                   \
    ZEL_API int zel_pds_export_factor_##W(const zel_pds_solver *solver, zel_pds_factor_##W *factor)       \
    { return zs::export_factor(solver, factor); }

#define ZEL_PDS_ANALYSE_VALUES_SHELLS(P, C, T, W, I)                                                       \
    ZEL_API int zel_pds_##P##_analyse_csr_values_##W(zel_pds_solver *solver, I n, const I *row_ptr,       \
                                                     const I *col_idx, const C *values, int base,         \
                                                     int storage)                                         \
    { return zs::analyse_csr_values(solver, n, row_ptr, col_idx, zel::as_cpp(values), base, storage); }

ZEL_DENSE_MEMBERS(ZEL_PDS_VALUE_SHELLS)
ZEL_SPARSE_MEMBERS(ZEL_PDS_ANALYSE_VALUES_SHELLS)
ZEL_SPARSE_WIDTHS(ZEL_PDS_WIDTH_SHELLS)

} // extern "C"
