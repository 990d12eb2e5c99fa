// Minimum degree and nested dissection through the system's ordering libraries.
#include "ordering.hpp"

#include <metis.h>
#include <suitesparse/amd.h>

#include <type_traits>

namespace zel::solver {

namespace {

static_assert(sizeof(SuiteSparse_long) == sizeof(int64_t) && std::is_signed_v<SuiteSparse_long>);

int amd_status(int code)
{
    if (code == AMD_OK || code == AMD_OK_BUT_JUMBLED)
        return ZEL_SPARSE_STATUS_SUCCESS;
    return code == AMD_OUT_OF_MEMORY ? ZEL_SPARSE_STATUS_ALLOC_FAILED : ZEL_SPARSE_STATUS_INVALID_VALUE;
}

template <class I> void natural_order(I n, I *perm)
{
    for (I k = 0; k < n; ++k)
        perm[k] = k;
}

// The pattern as the partitioner's graph (its own index type) and its ordering. The library
// copies nothing back into the graph, but its interface is not const: hand it copies.
template <class I> int metis_node_nd(const sym_pattern<I> &a, I *perm)
{
    scratch_array<idx_t> xadj, adjncy, order, inverse;
    if (!allocate(xadj, int64_t(a.n) + 1) || !allocate(adjncy, a.entries()) || !allocate(order, a.n) ||
        !allocate(inverse, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::copy(a.col_ptr.get(), a.col_ptr.get() + a.n + 1, xadj.get());
    std::copy(a.row_idx.get(), a.row_idx.get() + a.entries(), adjncy.get());
    idx_t options[METIS_NOPTIONS];
    METIS_SetDefaultOptions(options);
    options[METIS_OPTION_NUMBERING] = 0;
    idx_t n = idx_t(a.n);
    const int code = METIS_NodeND(&n, xadj.get(), adjncy.get(), nullptr, options, order.get(), inverse.get());
    if (code == METIS_ERROR_MEMORY)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (code != METIS_OK)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    // order[k] is the vertex numbered k: the same convention as perm.
    std::copy(order.get(), order.get() + a.n, perm);
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The factor's entries and flops (Σcount², diagonal included) as the minimum-degree ordering
// counted them while eliminating: slight upper bounds, enough to choose between orderings
// without a symbolic pass. Its multiply-subtract count is Σ c(c + 1)/2 over the off-diagonal
// column counts c, and Σ(c + 1)² = 2·that + Σc + n.
void record_estimate(int64_t n, const double *info, symbolic_stats *estimate)
{
    if (estimate == nullptr)
        return;
    *estimate = symbolic_stats();
    estimate->exact_entries = int64_t(info[AMD_LNZ]) + n;
    estimate->exact_flops = 2 * info[AMD_NMULTSUBS_LDL] + info[AMD_LNZ] + double(n);
}

int record_empty(symbolic_stats *estimate)
{
    if (estimate)
        *estimate = symbolic_stats();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

template <class I> int metis_or_fallback(const sym_pattern<I> &a, I *perm, ordering_method *used)
{
    if (used)
        *used = ordering_method::metis;
    if (a.entries() == 0) { // nothing to dissect: every order is fill-free
        natural_order(a.n, perm);
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    if (!fits_in<idx_t>(int64_t(a.n) + 1) || !fits_in<idx_t>(a.entries())) {
        if (used)
            *used = ordering_method::amd;
        return amd_ordering(a, perm);
    }
    return metis_node_nd(a, perm);
}

} // namespace

int amd_ordering(const sym_pattern<int32_t> &a, int32_t *perm, symbolic_stats *estimate)
{
    if (a.n == 0)
        return record_empty(estimate);
    double control[AMD_CONTROL], info[AMD_INFO];
    amd_defaults(control);
    const int code = amd_order(a.n, a.col_ptr.get(), a.row_idx.get(), perm, control, info);
    record_estimate(a.n, info, estimate);
    return amd_status(code);
}

int amd_ordering(const sym_pattern<int64_t> &a, int64_t *perm, symbolic_stats *estimate)
{
    if (a.n == 0)
        return record_empty(estimate);
    double control[AMD_CONTROL], info[AMD_INFO];
    amd_l_defaults(control);
    const auto *ap = reinterpret_cast<const SuiteSparse_long *>(a.col_ptr.get());
    const auto *ai = reinterpret_cast<const SuiteSparse_long *>(a.row_idx.get());
    const int code = amd_l_order(a.n, ap, ai, reinterpret_cast<SuiteSparse_long *>(perm), control, info);
    record_estimate(a.n, info, estimate);
    return amd_status(code);
}

int metis_ordering(const sym_pattern<int32_t> &a, int32_t *perm, ordering_method *used)
{
    return metis_or_fallback(a, perm, used);
}

int metis_ordering(const sym_pattern<int64_t> &a, int64_t *perm, ordering_method *used)
{
    return metis_or_fallback(a, perm, used);
}

} // namespace zel::solver
