// Fill-reducing orderings for the direct solver: minimum degree, nested dissection, a caller's
// permutation, and the automatic choice between the first two by the flops of the factor.
#pragma once

#include <cstdint>

#include "pattern.hpp"
#include "symbolic.hpp"

namespace zel::solver {

enum class ordering_method { automatic, amd, metis, natural, given };

struct ordering_options {
    ordering_method method = ordering_method::automatic;
    // The automatic choice tries nested dissection only when minimum degree's factor would
    // take at least this many flops: below it the partitioner costs more than it can save.
    double metis_min_flops = 1e8;
    // ... and only when the average column of that factor costs this many flops (Σcount² /
    // Σcount): wide fronts, as in 3-D problems (4,300 on the 60³ grid), where nested dissection
    // saves a factor of three; on 2-D grids (320 on 1000²) it saves a third of the flops but
    // costs four times the analysis.
    double metis_min_flops_per_entry = 1000;
};

// What the ordering did: the method it used (automatic resolves to amd or metis) and the
// exact flops it measured for each candidate (0 when not computed).
struct ordering_report {
    ordering_method used = ordering_method::natural;
    double amd_flops = 0;
    double metis_flops = 0;
};

// Approximate minimum degree; perm[k] = the original column eliminated k-th. estimate
// (optional) receives the ordering's own count of the factor's entries and flops: slight upper
// bounds of what the symbolic analysis finds, no other fields set.
int amd_ordering(const sym_pattern<int32_t> &a, int32_t *perm, symbolic_stats *estimate = nullptr);
int amd_ordering(const sym_pattern<int64_t> &a, int64_t *perm, symbolic_stats *estimate = nullptr);
// Nested dissection; falls back to minimum degree when the pattern does not fit the
// partitioner's index type. `used` (optional) receives the method that produced perm.
int metis_ordering(const sym_pattern<int32_t> &a, int32_t *perm, ordering_method *used = nullptr);
int metis_ordering(const sym_pattern<int64_t> &a, int64_t *perm, ordering_method *used = nullptr);

// 0 when perm (0-based) is a permutation of 0 .. n-1, else 3.
template <class I> int validate_permutation(I n, const I *perm)
{
    if (n < 0 || (n > 0 && perm == nullptr))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    scratch_array<unsigned char> seen;
    if (!allocate(seen, n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(seen.get(), seen.get() + n, static_cast<unsigned char>(0));
    for (I k = 0; k < n; ++k) {
        if (perm[k] < 0 || perm[k] >= n || seen[perm[k]])
            return ZEL_SPARSE_STATUS_INVALID_VALUE;
        seen[perm[k]] = 1;
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

namespace detail {

// Whether minimum degree's factor is costly enough for nested dissection to be worth a try.
inline bool nested_dissection_may_pay(const ordering_options &options, const symbolic_stats &amd_cost)
{
    return amd_cost.exact_flops >= options.metis_min_flops &&
           amd_cost.exact_flops >= options.metis_min_flops_per_entry * double(amd_cost.exact_entries);
}

// Minimum degree first; nested dissection too when that factor looks costly; keep the one
// with fewer flops (minimum degree's by its own estimate).
template <class I> int automatic_ordering(const sym_pattern<I> &a, const ordering_options &options, I *perm, ordering_report &report)
{
    symbolic_stats amd_cost, metis_cost;
    int status = amd_ordering(a, perm, &amd_cost);
    report = {ordering_method::amd, amd_cost.exact_flops, 0};
    if (status != ZEL_SPARSE_STATUS_SUCCESS || !nested_dissection_may_pay(options, amd_cost))
        return status;
    scratch_array<I> other;
    ordering_method used = ordering_method::amd;
    if (!allocate(other, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    status = metis_ordering(a, other.get(), &used);
    if (status == ZEL_SPARSE_STATUS_SUCCESS && used == ordering_method::metis)
        status = factor_cost(a, other.get(), metis_cost);
    report.metis_flops = metis_cost.exact_flops;
    if (status == ZEL_SPARSE_STATUS_SUCCESS && used == ordering_method::metis && metis_cost.exact_flops < amd_cost.exact_flops) {
        std::copy(other.get(), other.get() + a.n, perm);
        report.used = ordering_method::metis;
    }
    return status;
}

} // namespace detail

// perm (n entries, 0-based) for the pattern by the chosen method; `given` is the caller's
// permutation for ordering_method::given, validated. report is optional.
template <class I>
int fill_reducing_ordering(const sym_pattern<I> &a, const ordering_options &options, const I *given, I *perm,
                           ordering_report *report = nullptr)
{
    ordering_report local;
    ordering_report &r = report ? *report : local;
    r = ordering_report{options.method, 0, 0};
    switch (options.method) {
    case ordering_method::natural:
        for (I k = 0; k < a.n; ++k)
            perm[k] = k;
        return ZEL_SPARSE_STATUS_SUCCESS;
    case ordering_method::given:
        if (int status = validate_permutation(a.n, given); status != ZEL_SPARSE_STATUS_SUCCESS)
            return status;
        std::copy(given, given + a.n, perm);
        return ZEL_SPARSE_STATUS_SUCCESS;
    case ordering_method::amd:
        return amd_ordering(a, perm);
    case ordering_method::metis:
        return metis_ordering(a, perm, &r.used);
    case ordering_method::automatic:
        break;
    }
    return detail::automatic_ordering(a, options, perm, r);
}

namespace detail {

// The automatic choice as analyse_pattern makes it, with one symbolic pass for the winner in
// the common cases: minimum degree's estimate decides whether nested dissection is tried, and
// nested dissection's analysis is built at once and kept when it needs fewer flops.
template <class I>
int automatic_analysis(const sym_pattern<I> &a, const ordering_options &options, const amalgamation &relax,
                       symbolic_factor<I> &f, ordering_report &report)
{
    scratch_array<I> amd_perm, metis_perm;
    symbolic_stats amd_cost;
    if (!allocate(amd_perm, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    int status = amd_ordering(a, amd_perm.get(), &amd_cost);
    report = {ordering_method::amd, amd_cost.exact_flops, 0};
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    if (!nested_dissection_may_pay(options, amd_cost))
        return symbolic_analysis(a, amd_perm.get(), relax, f);
    ordering_method used = ordering_method::amd;
    if (!allocate(metis_perm, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    status = metis_ordering(a, metis_perm.get(), &used);
    if (status == ZEL_SPARSE_STATUS_SUCCESS && used == ordering_method::metis) {
        status = symbolic_analysis(a, metis_perm.get(), relax, f);
        report.metis_flops = f.stats.exact_flops;
        if (status == ZEL_SPARSE_STATUS_SUCCESS && f.stats.exact_flops < amd_cost.exact_flops) {
            report.used = ordering_method::metis;
            return status;
        }
    }
    if (status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    return symbolic_analysis(a, amd_perm.get(), relax, f);
}

} // namespace detail

// Ordering and symbolic analysis in one: the factor of `a` under the chosen ordering.
template <class I>
int analyse_pattern(const sym_pattern<I> &a, const ordering_options &options, const I *given, const amalgamation &relax,
                    symbolic_factor<I> &f, ordering_report *report = nullptr)
{
    ordering_report local;
    if (options.method == ordering_method::automatic)
        return detail::automatic_analysis(a, options, relax, f, report ? *report : local);
    scratch_array<I> perm;
    if (!allocate(perm, a.n))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    if (int status = fill_reducing_ordering(a, options, given, perm.get(), report); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    return symbolic_analysis(a, perm.get(), relax, f);
}

} // namespace zel::solver
