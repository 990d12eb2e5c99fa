// Exported kernels of the symbolic pass of the sparse A·Aᵀ result: one-line shells over the
// template, which depends on the index type only.
#include "syrk_exports.hpp"
#include "syrk_symbolic.hpp"

namespace zel::sparse_syrk::exports {
namespace {

template <class I>
void symbolic(I row_first, I row_end, I rows, I l_base, const I *l_col_indx, const I *l_rows_start,
              const I *l_rows_end, I r_base, const I *r_col_indx, const I *r_rows_start, const I *r_rows_end,
              I *start_offset, I *marker, I *counts, uint64_t *row_work)
{
    const char *none = nullptr;
    syrk_symbolic(row_chunk<I>{row_first, row_end},
                  left_rows(rows, l_base, none, l_col_indx, l_rows_start, l_rows_end),
                  right_rows(rows, r_base, none, r_col_indx, r_rows_start, r_rows_end),
                  chunk_scratch<I>{start_offset, marker}, row_counts<I>{counts, row_work});
}

} // namespace
} // namespace zel::sparse_syrk::exports

using namespace zel::sparse_syrk::exports;

#define ZEL_SYRK_SYMBOLIC_SHELLS(P, C, T, W, I)                                                               \
    ZEL_API void zel_sparse_##P##_csr__g_n_syrk_notr_struct_##W(                                              \
        I r0, I r1, I m, I lb, const I *lc, const I *lrs, const I *lre, I rb, const I *rc, const I *rrs,      \
        const I *rre, I *so, I *marker, I *counts, uint64_t *work)                                            \
    { symbolic(r0, r1, m, lb, lc, lrs, lre, rb, rc, rrs, rre, so, marker, counts, work); }

extern "C" {
ZEL_SPARSE_MEMBERS(ZEL_SYRK_SYMBOLIC_SHELLS)
}
