// Public sparse-result product C = op(A)·op(A)ᵀ (upper triangle) as a new handle, and its
// two-call form into caller arrays. Built on A's cached transposed record and the layer's
// exported stage functions, which the process resolves by name.
#include <cstring>

#include "zel/serv.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/members.hpp"
#include "zel_internal/sparse_formats.hpp"
#include "zel_internal/sparse_transpose.hpp"

namespace zel::sparse_syrk {
namespace {

using namespace zel::sparse;

// The layer's entry points of one member, keyed by the C++ value type; C is the C type they take.
template <class T, class I> struct entry_points;
#define ZEL_SYRK_PRODUCT_MEMBER(P, C, T, W, I)                                                                \
    template <> struct entry_points<T, I> {                                                                  \
        using c_type = C;                                                                                    \
        static constexpr auto transpose = zel_sparse_##P##_transposeMatrix_##W;                              \
        static constexpr auto csr_stage = zel_sparse_##P##_csr__g_n_syrk_##W;                                \
        static constexpr auto bsr_stage = zel_sparse_##P##_bsr__g_n_syrk_##W;                                \
    };
ZEL_SPARSE_MEMBERS(ZEL_SYRK_PRODUCT_MEMBER)
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

// A new handle owning the result's arrays; on failure the arrays are freed.
template <class I>
int wrap_result(const handle_t<I> *A, const csr_t<I> &a, I result_rows, I *rows_start, I *col_indx, void *values,
                handle_t<I> **C)
{
    scratch_array<csr_t<I>> record = zeroed_record<csr_t<I>>();
    csr_t<I> result = owned_record<I>(result_rows, result_rows, a.index_base, a.block_size, a.block_layout);
    result.sorted = 1;
    result.nnz = rows_start[result_rows] - a.index_base;
    result.owns_arrays = 1;
    result.three_array = 1;
    result.rows_start = rows_start;
    result.rows_end = rows_start + 1;
    result.col_indx = col_indx;
    result.values = values;
    const auto scalar_rows = checked_mul(result_rows, a.block_size);
    int status = !record ? ZEL_SPARSE_STATUS_ALLOC_FAILED : !scalar_rows ? ZEL_SPARSE_STATUS_INVALID_VALUE : 0;
    if (status == ZEL_SPARSE_STATUS_SUCCESS) {
        *record.get() = result;
        status = install_record<I>(C, A->data_type, A->format, *scalar_rows, *scalar_rows, record.get());
    }
    if (status != ZEL_SPARSE_STATUS_SUCCESS) {
        free_owned_arrays<I>(result);
        return status;
    }
    record.release();
    (*C)->block_layout_request = A->block_layout_request;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The stage functions' operands: op(A)'s rows, sorted when Aᵀ·A needs them so, and A's cached
// transpose (conjugated for complex values).
template <class T, class I> struct operands {
    compressed_view<T, I> left, right;
    owned_arrays<T, I> sorted; // A's rows sorted, when the caller's were not
};

template <class T, class I> int prepare_operands(handle_t<I> *A, int operation, operands<T, I> &ops)
{
    constexpr bool complex = is_complex_v<T>;
    const csr_t<I> &a = *static_cast<const csr_t<I> *>(A->data);
    const int status = entry_points<T, I>::transpose(A, complex ? ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE
                                                                : ZEL_SPARSE_OPERATION_TRANSPOSE);
    if (status == ZEL_SPARSE_STATUS_ALLOC_FAILED)
        return status;
    if (status != ZEL_SPARSE_STATUS_SUCCESS || A->transposed == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    const csr_t<I> &t = *A->transposed;
    ops.right = view_of_record<T, I>(t, A->format);
    ops.right.values = static_cast<const T *>(complex ? t.aux : t.values);
    if (ops.right.values == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    ops.left = view_of_record<T, I>(a, A->format);
    if (operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE || a.sorted || slices_sorted(ops.left))
        return ZEL_SPARSE_STATUS_SUCCESS;
    if (int sorting = sort_slices(ops.left, ops.sorted))
        return sorting;
    ops.left.starts = ops.sorted.starts.get();
    ops.left.ends = ops.sorted.starts.get() + 1;
    ops.left.index = ops.sorted.index.get();
    ops.left.values = ops.sorted.values.get();
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// The result's arrays as the stage functions hand them over (or, for a fill, take them).
template <class T, class I> struct result_arrays {
    I *rows_start = nullptr;
    I *col_indx = nullptr;
    T *values = nullptr;
};

// Runs one stage of the layer's product on the prepared operands.
template <class T, class I>
int run_stage(int stage, int operation, const csr_t<I> &a, bool bsr, const operands<T, I> &ops,
              result_arrays<T, I> &result)
{
    using E = entry_points<T, I>;
    using C = typename E::c_type;
    const auto &L = ops.left, &R = ops.right;
    const auto *lv = reinterpret_cast<const C *>(L.values), *rv = reinterpret_cast<const C *>(R.values);
    auto **values = reinterpret_cast<C **>(&result.values);
    if (bsr)
        return E::bsr_stage(stage, operation, a.rows, a.cols, L.base, lv, L.index, L.starts, L.ends, R.base, rv,
                            R.index, R.starts, R.ends, a.index_base, values, &result.col_indx, &result.rows_start,
                            a.block_size, R.block);
    return E::csr_stage(stage, operation, a.rows, a.cols, L.base, lv, L.index, L.starts, L.ends, R.base, rv, R.index,
                        R.starts, R.ends, a.index_base, values, &result.col_indx, &result.rows_start);
}

// The three entry points of one value type: prepares the operands, runs the stage, and hands the
// result over as the mode asks.
template <class T, class I>
int product(mode how, int operation, handle_t<I> *A, handle_t<I> **C, const caller_arrays<I> &out)
{
    const csr_t<I> &a = *static_cast<const csr_t<I> *>(A->data);
    operands<T, I> ops;
    if (int status = prepare_operands<T, I>(A, operation, ops))
        return status;
    const I result_rows = operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE ? a.rows : a.cols;
    result_arrays<T, I> result;
    if (how == mode::fill) {
        result = {const_cast<I *>(out.fill_rows_start), out.col_indx, static_cast<T *>(out.values)};
        const bool empty = result.rows_start[result_rows] == a.index_base;
        if (!empty && (result.col_indx == nullptr || result.values == nullptr))
            return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    }
    const int stage = how == mode::count ? ZEL_SPARSE_STAGE_NNZ_COUNT
                      : how == mode::fill ? ZEL_SPARSE_STAGE_FINALIZE_MULT
                                          : ZEL_SPARSE_STAGE_FULL_MULT;
    if (int status = run_stage(stage, operation, a, A->format == ZEL_SPARSE_FORMAT_BSR, ops, result))
        return status;
    switch (how) {
    case mode::count:
        std::memcpy(out.rows_start, result.rows_start, sizeof(I) * (static_cast<size_t>(result_rows) + 1));
        *out.nnz = result.rows_start[result_rows] - a.index_base;
        zel_serv_free(result.rows_start);
        return ZEL_SPARSE_STATUS_SUCCESS;
    case mode::fill: // an empty result may have come back with arrays of its own
        if (result.col_indx != out.col_indx)
            zel_serv_free(result.col_indx);
        if (result.values != out.values)
            zel_serv_free(result.values);
        return ZEL_SPARSE_STATUS_SUCCESS;
    case mode::full:
        break;
    }
    return wrap_result<I>(A, a, result_rows, result.rows_start, result.col_indx, result.values, C);
}

// Checks shared by the three entry points, then the product of A's value type.
template <class I>
int checked_product(mode how, int operation, handle_t<I> *A, handle_t<I> **C, const caller_arrays<I> &out)
{
    if (A == nullptr || (how == mode::full && C == nullptr) ||
        (how == mode::count && (out.rows_start == nullptr || out.nnz == nullptr)) ||
        (how == mode::fill && out.fill_rows_start == nullptr))
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (!is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (A->format != ZEL_SPARSE_FORMAT_CSR && A->format != ZEL_SPARSE_FORMAT_BSR)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    const auto *a = static_cast<const csr_t<I> *>(A->data);
    if (a == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (a->values == nullptr || (A->format == ZEL_SPARSE_FORMAT_BSR && a->block_layout != a->index_base))
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    return with_value_type(A->data_type, ZEL_SPARSE_STATUS_INTERNAL_ERROR, [&](auto value) {
        return product<decltype(value), I>(how, operation, A, C, out);
    });
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
ZEL_SPARSE_WIDTHS(ZEL_SYRK_PRODUCT_SHELLS)
}
