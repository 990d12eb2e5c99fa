// Public sparse-result product C = op(A)·op(A)ᵀ (upper triangle) as a new handle, and its
// two-call form into caller arrays. Built on A's cached transposed record and the layer's
// exported stage functions, which the process resolves by name.
#include <cstring>

#include "zel/serv.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/sparse_formats.hpp"

namespace zel::sparse_syrk {
namespace {

using zel::sparse::alignment;
using zel::sparse::csr_t;
using zel::sparse::handle_t;

template <class C, class I> struct entry_points;
#define ZEL_SYRK_PRODUCT_MEMBER(P, C_, W, I_)                                                                \
    template <> struct entry_points<C_, I_> {                                                                \
        static constexpr auto transpose = zel_sparse_##P##_transposeMatrix_##W;                              \
        static constexpr auto csr_stage = zel_sparse_##P##_csr__g_n_syrk_##W;                                \
        static constexpr auto bsr_stage = zel_sparse_##P##_bsr__g_n_syrk_##W;                                \
    };
ZEL_SYRK_PRODUCT_MEMBER(s, float, i4, int32_t)
ZEL_SYRK_PRODUCT_MEMBER(d, double, i4, int32_t)
ZEL_SYRK_PRODUCT_MEMBER(c, zel_complex8, i4, int32_t)
ZEL_SYRK_PRODUCT_MEMBER(z, zel_complex16, i4, int32_t)
ZEL_SYRK_PRODUCT_MEMBER(s, float, i8, int64_t)
ZEL_SYRK_PRODUCT_MEMBER(d, double, i8, int64_t)
ZEL_SYRK_PRODUCT_MEMBER(c, zel_complex8, i8, int64_t)
ZEL_SYRK_PRODUCT_MEMBER(z, zel_complex16, i8, int64_t)
#undef ZEL_SYRK_PRODUCT_MEMBER

enum class mode { full, count, fill };

// Caller's side of the two-call form.
template <class I> struct caller_arrays {
    I *rows_start;
    I *nnz;
    const I *fill_rows_start;
    I *col_indx;
    void *values;
};

// One operand as the stage function takes it.
template <class C, class I> struct operand_view {
    I base;
    const C *values;
    const I *col_indx;
    const I *rows_start;
    const I *rows_end;
};

// A's rows with their indices sorted, by two stable bucket passes (by column, then by row);
// values (bb per entry) travel with their entries. Arrays live in the holders.
template <class C, class I> struct sorted_copy {
    scratch_array<I> rows_start, col_indx;
    scratch_array<C> values;

    int build(const csr_t<I> &a, int64_t bb)
    {
        const I n = a.rows, m = a.cols, base = a.index_base;
        const size_t nnz = n > 0 ? static_cast<size_t>(a.rows_end[n - 1] - base) : 0;
        scratch_array<I> count(static_cast<size_t>(m) + 1, alignment), by_column(nnz + 1, alignment),
            row_of(nnz + 1, alignment);
        rows_start = scratch_array<I>(static_cast<size_t>(n) + 1, alignment);
        col_indx = scratch_array<I>(nnz + 1, alignment);
        values = scratch_array<C>(nnz * bb + 1, alignment);
        if (!count || !by_column || !row_of || !rows_start || !col_indx || !values)
            return ZEL_SPARSE_STATUS_ALLOC_FAILED;
        std::fill(count.get(), count.get() + m + 1, I{0});
        rows_start[0] = base;
        for (I i = 0; i < n; ++i) {
            rows_start[i + 1] = rows_start[i] + (a.rows_end[i] - a.rows_start[i]);
            for (I p = a.rows_start[i] - base; p < a.rows_end[i] - base; ++p)
                ++count[a.col_indx[p] - base + 1];
        }
        for (I j = 0; j < m; ++j)
            count[j + 1] += count[j];
        for (I i = 0; i < n; ++i)
            for (I p = a.rows_start[i] - base; p < a.rows_end[i] - base; ++p) {
                const I slot = count[a.col_indx[p] - base]++;
                by_column[slot] = p;
                row_of[slot] = i;
            }
        // Rows take their entries in column order; rows_start[i] - base is row i's next place.
        scratch_array<I> next(static_cast<size_t>(n) + 1, alignment);
        if (!next)
            return ZEL_SPARSE_STATUS_ALLOC_FAILED;
        for (I i = 0; i < n; ++i)
            next[i] = rows_start[i] - base;
        const C *source = static_cast<const C *>(a.values);
        for (size_t s = 0; s < nnz; ++s) {
            const I p = by_column[s], q = next[row_of[s]]++;
            col_indx[q] = a.col_indx[p];
            std::memcpy(values.get() + q * bb, source + p * bb, sizeof(C) * bb);
        }
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
};

template <class I> bool rows_sorted(const csr_t<I> &a)
{
    if (a.sorted)
        return true;
    for (I i = 0; i < a.rows; ++i)
        for (I p = a.rows_start[i] - a.index_base + 1; p < a.rows_end[i] - a.index_base; ++p)
            if (a.col_indx[p] < a.col_indx[p - 1])
                return false;
    return true;
}

// A new handle owning the result's arrays; on failure the arrays are freed.
template <class I>
int wrap_result(const handle_t<I> *A, const csr_t<I> &a, I result_rows, I *rows_start, I *col_indx, void *values,
                handle_t<I> **C)
{
    scratch_array<handle_t<I>> handle(1, alignment);
    scratch_array<csr_t<I>> record(1, alignment);
    if (!handle || !record) {
        zel_serv_free(rows_start);
        zel_serv_free(col_indx);
        zel_serv_free(values);
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    }
    std::memset(static_cast<void *>(handle.get()), 0, sizeof(handle_t<I>));
    std::memset(static_cast<void *>(record.get()), 0, sizeof(csr_t<I>));
    csr_t<I> &r = *record.get();
    r.sorted = 1;
    r.rows = result_rows;
    r.cols = result_rows;
    r.nnz = rows_start[result_rows] - a.index_base;
    r.index_base = a.index_base;
    r.block_size = a.block_size;
    r.block_layout = a.block_layout;
    r.owns_arrays = 1;
    r.inplace_copy = 1;
    r.three_array = 1;
    r.rows_start = rows_start;
    r.rows_end = rows_start + 1;
    r.col_indx = col_indx;
    r.values = values;
    handle_t<I> &h = *handle.get();
    h.data_type = A->data_type;
    h.format = A->format;
    h.block_layout_request = A->block_layout_request;
    h.rows = h.cols = result_rows * a.block_size;
    h.data = record.release();
    *C = handle.release();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The three entry points of one value type: prepares the operands and runs the stages.
template <class V, class I>
int product(mode how, int operation, handle_t<I> *A, handle_t<I> **C, const caller_arrays<I> &out)
{
    using E = entry_points<V, I>;
    constexpr bool complex = is_complex_v<cpp_value_t<V>>;
    const csr_t<I> &a = *static_cast<const csr_t<I> *>(A->data);
    const int status = E::transpose(A, complex ? ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE
                                               : ZEL_SPARSE_OPERATION_TRANSPOSE);
    if (status == ZEL_SPARSE_STATUS_ALLOC_FAILED)
        return status;
    if (status != ZEL_SPARSE_STATUS_SUCCESS || A->transposed == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    const csr_t<I> &t = *A->transposed;
    const V *t_values = static_cast<const V *>(complex ? t.aux : t.values);
    if (t_values == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;

    // The right operand needs sorted rows: for Aᵀ·A that is A itself.
    operand_view<V, I> first{a.index_base, static_cast<const V *>(a.values), a.col_indx, a.rows_start, a.rows_end};
    sorted_copy<V, I> sorted;
    const bool bsr = A->format == ZEL_SPARSE_FORMAT_BSR;
    const int64_t bb = int64_t(a.block_size) * a.block_size;
    if (operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE && !rows_sorted<I>(a)) {
        if (int s = sorted.build(a, bb))
            return s;
        first = {a.index_base, sorted.values.get(), sorted.col_indx.get(), sorted.rows_start.get(),
                 sorted.rows_start.get() + 1};
    }
    const I result_rows = operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE ? a.rows : a.cols;
    const int stage = how == mode::count ? ZEL_SPARSE_STAGE_NNZ_COUNT
                      : how == mode::fill ? ZEL_SPARSE_STAGE_FINALIZE_MULT
                                          : ZEL_SPARSE_STAGE_FULL_MULT;
    I *rows_start = how == mode::fill ? const_cast<I *>(out.fill_rows_start) : nullptr;
    I *col_indx = how == mode::fill ? out.col_indx : nullptr;
    V *values = how == mode::fill ? static_cast<V *>(out.values) : nullptr;
    if (how == mode::fill) {
        const bool empty = rows_start[result_rows] == a.index_base;
        if (!empty && (col_indx == nullptr || values == nullptr))
            return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    }
    const int run = bsr ? E::bsr_stage(stage, operation, a.rows, a.cols, first.base, first.values, first.col_indx,
                                       first.rows_start, first.rows_end, t.index_base, t_values, t.col_indx,
                                       t.rows_start, t.rows_end, a.index_base, &values, &col_indx, &rows_start,
                                       a.block_size, t.block_size)
                        : E::csr_stage(stage, operation, a.rows, a.cols, first.base, first.values, first.col_indx,
                                       first.rows_start, first.rows_end, t.index_base, t_values, t.col_indx,
                                       t.rows_start, t.rows_end, a.index_base, &values, &col_indx, &rows_start);
    if (run != ZEL_SPARSE_STATUS_SUCCESS)
        return run;
    switch (how) {
    case mode::count:
        std::memcpy(out.rows_start, rows_start, sizeof(I) * (static_cast<size_t>(result_rows) + 1));
        *out.nnz = rows_start[result_rows] - a.index_base;
        zel_serv_free(rows_start);
        return ZEL_SPARSE_STATUS_SUCCESS;
    case mode::fill: // an empty result may have come back with arrays of its own
        if (col_indx != out.col_indx)
            zel_serv_free(col_indx);
        if (values != out.values)
            zel_serv_free(values);
        return ZEL_SPARSE_STATUS_SUCCESS;
    case mode::full:
        break;
    }
    return wrap_result<I>(A, a, result_rows, rows_start, col_indx, values, C);
}

// Checks shared by the three entry points, then the product of A's value type.
template <class I>
int checked_product(mode how, int operation, handle_t<I> *A, handle_t<I> **C, const caller_arrays<I> &out)
{
    if (A == nullptr || (how == mode::full && C == nullptr) ||
        (how == mode::count && (out.rows_start == nullptr || out.nnz == nullptr)) ||
        (how == mode::fill && out.fill_rows_start == nullptr))
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (!zel::sparse::is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (A->format != ZEL_SPARSE_FORMAT_CSR && A->format != ZEL_SPARSE_FORMAT_BSR)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    const auto *a = static_cast<const csr_t<I> *>(A->data);
    if (a == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (a->values == nullptr || (A->format == ZEL_SPARSE_FORMAT_BSR && a->block_layout != a->index_base))
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    switch (A->data_type) {
    case ZEL_SPARSE_DATA_D: return product<double, I>(how, operation, A, C, out);
    case ZEL_SPARSE_DATA_S: return product<float, I>(how, operation, A, C, out);
    case ZEL_SPARSE_DATA_Z: return product<zel_complex16, I>(how, operation, A, C, out);
    case ZEL_SPARSE_DATA_C: return product<zel_complex8, I>(how, operation, A, C, out);
    default: return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    }
}

} // namespace
} // namespace zel::sparse_syrk

using zel::sparse_syrk::caller_arrays;
using zel::sparse_syrk::checked_product;
using zel::sparse_syrk::mode;

#define ZEL_SYRK_PRODUCT_SHELLS(W, I)                                                                         \
    ZEL_API int zel_sparse_syrk_##W(int operation, zel_sparse_matrix_##W *A, zel_sparse_matrix_##W **C)      \
    {                                                                                                         \
        return checked_product<I>(mode::full, operation, A, C, {});                                          \
    }                                                                                                         \
    ZEL_API int zel_sparse_syrk_count_##W(int operation, zel_sparse_matrix_##W *A, I *rows_start, I *nnz)     \
    {                                                                                                         \
        return checked_product<I>(mode::count, operation, A, nullptr, {rows_start, nnz, nullptr, nullptr, nullptr}); \
    }                                                                                                         \
    ZEL_API int zel_sparse_syrk_fill_##W(int operation, zel_sparse_matrix_##W *A, const I *rows_start,       \
                                         I *col_indx, void *values)                                           \
    {                                                                                                         \
        return checked_product<I>(mode::fill, operation, A, nullptr,                                         \
                                  {nullptr, nullptr, rows_start, col_indx, values});                          \
    }

extern "C" {
ZEL_SYRK_PRODUCT_SHELLS(i4, int32_t)
ZEL_SYRK_PRODUCT_SHELLS(i8, int64_t)
}
