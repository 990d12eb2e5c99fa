// Drivers of the products of a sparse matrix with its own transpose: argument checks, row
// chunks, chunk preparation, working arrays and prefix sums. The arithmetic runs in the core's
// kernels, called once per chunk.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include "zel/runtime.h"
#include "zel/serv.h"
#include "zel/sparse_syrk.h"
#include "zel/sparse_transpose.h"
#include "zel_internal/isa.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse_syrk {

constexpr int alignment = 4096;

// Records and core kernels of one value type C (the C ABI type) and index type I.
template <class C, class I> struct members;

#define ZEL_SYRK_MEMBER_TABLE(P, C_, Cpp_, W, I_)                                                                  \
    template <> struct members<C_, I_> {                                                                     \
        using handle = zel_sparse_matrix_##W;                                                                \
        using record = zel_sparse_csr_record_##W;                                                            \
        static constexpr bool is_complex = zel::is_complex_v<zel::cpp_value_t<C_>>;                         \
        static constexpr auto n_c = zel_sparse_##P##_csr__g_n_syrkd_c_ker_##W;                               \
        static constexpr auto n_f = zel_sparse_##P##_csr__g_n_syrkd_f_ker_##W;                               \
        static constexpr auto n_alf_c = zel_sparse_##P##_csr__g_n_syrkd_alf_c_ker_##W;                       \
        static constexpr auto n_alf_f = zel_sparse_##P##_csr__g_n_syrkd_alf_f_ker_##W;                       \
        static constexpr auto t_c = zel_sparse_##P##_csr__g_t_syrkd_c_ker_##W;                               \
        static constexpr auto t_f = zel_sparse_##P##_csr__g_t_syrkd_f_ker_##W;                               \
        static constexpr auto t_alf_c = zel_sparse_##P##_csr__g_t_syrkd_alf_c_ker_##W;                       \
        static constexpr auto t_alf_f = zel_sparse_##P##_csr__g_t_syrkd_alf_f_ker_##W;                       \
        static constexpr auto structure = zel_sparse_##P##_csr__g_n_syrk_notr_struct_##W;                    \
        static constexpr auto row = zel_sparse_##P##_csr__g_n_syrk_notr_row_##W;                             \
        static constexpr auto block_row = zel_sparse_##P##_bsr__g_n_syrk_notr_row_##W;                       \
        static constexpr auto transpose = zel_sparse_##P##_transposeMatrix_##W;                              \
    };

// alpha or beta exactly 1 (complex: 1 + 0i); NaN is not.
inline bool is_one(float v) { return v == 1.0f; }
inline bool is_one(double v) { return v == 1.0; }
inline bool is_one(zel_complex8 v) { return v.re == 1.0f && v.im == 0.0f; }
inline bool is_one(zel_complex16 v) { return v.re == 1.0 && v.im == 0.0; }
inline bool is_zero(float v) { return v == 0.0f; }
inline bool is_zero(double v) { return v == 0.0; }
inline bool is_zero(zel_complex8 v) { return v.re == 0.0f && v.im == 0.0f; }
inline bool is_zero(zel_complex16 v) { return v.re == 0.0 && v.im == 0.0; }

template <class I> inline I chunk_bound(int64_t c, int64_t count, I rows)
{
    return static_cast<I>(c * static_cast<int64_t>(rows) / count);
}

// Offset of the first entry of R's row k whose column is at least r0 (walked two at a time);
// the row's length when there is none, 0 for an empty row.
template <class I> inline I first_offset(I k, I r0, I r_base, const I *r_col, const I *r_rows_start, const I *r_rows_end)
{
    if (r0 == 0) // every column qualifies; the row need not be read
        return 0;
    const I begin = r_rows_start[k] - r_base;
    const I length = r_rows_end[k] - r_base - begin;
    if (length <= 0)
        return 0;
    const I *col = r_col + begin;
    I p = 1;
    for (; p < length; p += 2) {
        if (col[p - 1] - r_base >= r0)
            return p - 1;
        if (col[p] - r_base >= r0)
            return p;
    }
    if (p == length && col[p - 1] - r_base >= r0) // odd length: the last entry is left
        return p - 1;
    return length;
}

// Smallest and largest of a non-empty span of column indices.
template <class I> std::pair<I, I> column_range_loop(const I *first, const I *last)
{
    I low = *first, high = *first;
    for (const I *p = first; p < last; ++p) {
        low = std::min(low, *p);
        high = std::max(high, *p);
    }
    return {low, high};
}

// The same loop in AVX2 vectors, whose minimum and maximum instructions the baseline lacks. It is
// written out again: GCC does not vectorize a shared body inlined into a function of wider target.
template <class I> [[gnu::target("avx2")]] std::pair<I, I> column_range_avx2(const I *first, const I *last)
{
    I low = *first, high = *first;
    for (const I *p = first; p < last; ++p) {
        low = std::min(low, *p);
        high = std::max(high, *p);
    }
    return {low, high};
}

template <class I> std::pair<I, I> column_range(const I *first, const I *last)
{
    static const bool avx2 = choose_isa("ZEL_SPARSE_ISA") != isa_level::baseline;
    return avx2 ? column_range_avx2(first, last) : column_range_loop(first, last);
}

// The span of R rows that a chunk's L rows reference, and how many references there are.
template <class I> struct referenced_rows {
    bool known = false;
    I low = 0, high = 0;
    int64_t entries = 0;
};

// The R rows that L's rows [r0, r1) reference, by one sweep over their columns. Rows usually
// follow one another in col_indx; their entries are then swept as one span, in vectors, rather
// than reduced row by row.
template <class I>
referenced_rows<I> find_referenced_rows(I r0, I r1, I l_base, const I *l_col, const I *l_rows_start,
                                        const I *l_rows_end)
{
    I low = std::numeric_limits<I>::max(), high = std::numeric_limits<I>::min();
    int64_t entries = 0;
    I span = 0, span_end = 0;
    auto sweep = [&] {
        if (span_end > span) {
            const auto range = column_range<I>(l_col + span, l_col + span_end);
            low = std::min(low, range.first);
            high = std::max(high, range.second);
        }
        entries += span_end - span;
    };
    for (I i = r0; i < r1; ++i) {
        const I begin = l_rows_start[i] - l_base, end = l_rows_end[i] - l_base;
        if (end <= begin)
            continue;
        if (begin != span_end) {
            sweep();
            span = begin;
        }
        span_end = end;
    }
    sweep();
    referenced_rows<I> found;
    found.known = true;
    found.entries = entries;
    if (entries > 0) {
        found.low = low - l_base;
        found.high = high - l_base;
    }
    return found;
}

// Prepares rows [r0, r1) of L: the start offset of every R row they reference, once per chunk,
// and flag[k] = prepared. A first sweep finds the range of referenced rows into `referenced`,
// unless an earlier pass over the same chunk already did. Where the range holds no more rows than the chunk has entries (stencils, or rows spread over all of R), every row in
// it is prepared in memory order: flagging only the referenced ones would cost a store per entry,
// and a row flagged but not referenced is never read. A thinner range has its referenced rows
// flagged and their offsets marked pending (-1) first; they are then found in order of k while
// the range spans at most four times as many rows as the chunk has entries, else entry by entry.
template <class I, class F>
void prepare_chunk(I r0, I r1, I l_base, const I *l_col, const I *l_rows_start, const I *l_rows_end, I r_base,
                   const I *r_col, const I *r_rows_start, const I *r_rows_end, I *start_offset, F *flag, F prepared,
                   referenced_rows<I> &referenced)
{
    constexpr I pending = -1;
    if (!referenced.known)
        referenced = find_referenced_rows(r0, r1, l_base, l_col, l_rows_start, l_rows_end);
    const I low = referenced.low, high = referenced.high;
    const int64_t entries = referenced.entries;
    if (entries == 0)
        return;
    if (int64_t(high) - low < entries) {
        for (I k = low; k <= high; ++k) {
            flag[k] = prepared;
            start_offset[k] = first_offset(k, r0, r_base, r_col, r_rows_start, r_rows_end);
        }
        return;
    }
    for (I i = r0; i < r1; ++i)
        for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p) {
            const I k = l_col[p] - l_base;
            flag[k] = prepared;
            start_offset[k] = pending;
        }
    auto prepare = [&](I k) {
        if (start_offset[k] == pending)
            start_offset[k] = first_offset(k, r0, r_base, r_col, r_rows_start, r_rows_end);
    };
    if (int64_t(high) - low < 4 * entries) {
        for (I k = low; k <= high; ++k)
            prepare(k);
    } else {
        for (I i = r0; i < r1; ++i)
            for (I p = l_rows_start[i] - l_base; p < l_rows_end[i] - l_base; ++p)
                prepare(l_col[p] - l_base);
    }
}

// Dense C = alpha·A·Aᵀ + beta·C (upper triangle), A with its transposed copy At.
template <class C, class I>
int syrkd_n_driver(C alpha, C beta, I rows, I cols, I base, const C *values, const I *col_indx, const I *rows_start,
                   const I *rows_end, I t_base, const C *t_values, const I *t_col_indx, const I *t_rows_start,
                   const I *t_rows_end, C *c, int layout, I ldc)
{
    using K = members<C, I>;
    const int64_t threads = std::max(1, zel_serv_get_max_threads());
    const size_t n = cols > 0 ? static_cast<size_t>(cols) : 0;
    scratch_array<int32_t> visited(threads * n, alignment);
    scratch_array<I> start_offset(threads * n, alignment);
    if (n > 0 && (!visited || !start_offset))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    const bool unit = is_one(alpha);
    const bool column_major = layout == ZEL_SPARSE_LAYOUT_COLUMN_MAJOR;
    const int64_t chunks = 2 * threads;
    for (int64_t chunk = 0; chunk < chunks; ++chunk) {
        const I r0 = chunk_bound(chunk, chunks, rows), r1 = chunk_bound(chunk + 1, chunks, rows);
        if (r0 == r1)
            continue;
        if (n > 0) {
            std::memset(visited.get(), 0, n * sizeof(int32_t));
            std::memset(start_offset.get(), 0, n * sizeof(I));
        }
        referenced_rows<I> referenced; // one pass per chunk here
        prepare_chunk<I, int32_t>(r0, r1, base, col_indx, rows_start, rows_end, t_base, t_col_indx, t_rows_start,
                                  t_rows_end, start_offset.get(), visited.get(), 1, referenced);
        if (unit)
            (column_major ? K::n_f : K::n_c)(r0, r1, rows, base, values, col_indx, rows_start, rows_end, t_base,
                                             t_values, t_col_indx, t_rows_start, t_rows_end, start_offset.get(), c,
                                             ldc, beta);
        else
            (column_major ? K::n_alf_f : K::n_alf_c)(r0, r1, rows, base, values, col_indx, rows_start, rows_end,
                                                     t_base, t_values, t_col_indx, t_rows_start, t_rows_end,
                                                     start_offset.get(), c, ldc, alpha, beta);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Upper triangle of the cols×cols C scaled by beta (cleared for 0), row- or column-wise.
template <class C, class I> void scale_upper(C *c, I n, I ldc, C beta, bool column_major)
{
    using T = cpp_value_t<C>;
    T *cc = as_cpp(c);
    const T b = *as_cpp(&beta);
    const bool zero = is_zero(beta);
    for (int64_t j = 0; j < n; ++j) {
        T *first = column_major ? cc + j * ldc : cc + j * ldc + j;
        const int64_t count = column_major ? j + 1 : n - j;
        for (int64_t t = 0; t < count; ++t)
            first[t] = zero ? T(0) : first[t] * b;
    }
}

// Dense C = alpha·Aᵀ·A + beta·C (complex Aᴴ·A), upper triangle.
template <class C, class I>
int syrkd_t_driver(I rows, I cols, I base, const C *values, const I *col_indx, const I *rows_start,
                   const I *rows_end, C *c, int layout, I ldc, C alpha, C beta)
{
    using K = members<C, I>;
    const int threads = std::max(1, zel_serv_get_max_threads());
    const bool unit = is_one(alpha);
    const bool column_major = layout == ZEL_SPARSE_LAYOUT_COLUMN_MAJOR;
    if (threads == 1 || !unit) {
        if (unit)
            (column_major ? K::t_f : K::t_c)(0, rows, rows, cols, base, values, col_indx, rows_start, rows_end, c,
                                             ldc, beta);
        else
            (column_major ? K::t_alf_f : K::t_alf_c)(0, rows, rows, cols, base, values, col_indx, rows_start,
                                                     rows_end, c, ldc, alpha, beta);
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    // Chunks of A's rows add into C, so beta is applied once beforehand.
    if (!is_one(beta))
        scale_upper(c, cols, ldc, beta, column_major);
    C one{};
    std::memcpy(&one, &alpha, sizeof one); // alpha is exactly 1 here
    const int64_t chunks = 2 * static_cast<int64_t>(threads);
    for (int64_t chunk = 0; chunk < chunks; ++chunk) {
        const I r0 = chunk_bound(chunk, chunks, rows), r1 = chunk_bound(chunk + 1, chunks, rows);
        if (r0 < r1)
            (column_major ? K::t_f : K::t_c)(r0, r1, rows, cols, base, values, col_indx, rows_start, rows_end, c,
                                             ldc, one);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Public dense product: checks in their fixed order, then the driver for the operation.
template <class C, class I>
int syrkd_entry(int operation, typename members<C, I>::handle *A, C alpha, C beta, C *c, int layout, I ldc)
{
    using K = members<C, I>;
    if (c == nullptr || A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (operation < ZEL_SPARSE_OPERATION_NON_TRANSPOSE || operation > ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE ||
        ldc < 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (A->format != ZEL_SPARSE_FORMAT_CSR)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    const auto *a = static_cast<const typename K::record *>(A->data);
    if (a == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (a->values == nullptr)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    const C *values = static_cast<const C *>(a->values);
    if (operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE) {
        const int op = K::is_complex ? ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE : ZEL_SPARSE_OPERATION_TRANSPOSE;
        if (K::transpose(A, op) != ZEL_SPARSE_STATUS_SUCCESS || A->transposed == nullptr)
            return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
        const auto *t = A->transposed;
        const C *t_values = static_cast<const C *>(K::is_complex ? t->aux : t->values);
        if (t_values == nullptr)
            return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
        return syrkd_n_driver<C, I>(alpha, beta, a->rows, a->cols, a->index_base, values, a->col_indx,
                                    a->rows_start, a->rows_end, t->index_base, t_values, t->col_indx,
                                    t->rows_start, t->rows_end, c, layout, ldc);
    }
    return syrkd_t_driver<C, I>(a->rows, a->cols, a->index_base, values, a->col_indx, a->rows_start, a->rows_end,
                                c, layout, ldc, alpha, beta);
}

// One operand of the sparse-result product.
template <class C, class I> struct operand {
    I base;
    const C *values;
    const I *col_indx;
    const I *rows_start;
    const I *rows_end;
};

// Sparse result: the upper triangle of L·R in CSR (block_size 0) or over a block pattern.
template <class C, class I>
int syrk_stage_driver(int stage, int operation, I rows, I cols, operand<C, I> first, operand<C, I> second,
                      I one_based, C **values_out, I **col_indx_out, I **rows_start_out, I block_size)
{
    using K = members<C, I>;
    if (values_out == nullptr || col_indx_out == nullptr || rows_start_out == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (stage < ZEL_SPARSE_STAGE_FULL_MULT || stage > ZEL_SPARSE_STAGE_FULL_MULT_NO_VAL ||
        operation < ZEL_SPARSE_OPERATION_NON_TRANSPOSE || operation > ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (stage == ZEL_SPARSE_STAGE_FINALIZE_MULT && *rows_start_out == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    const I result_rows = operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE ? rows : cols;
    const size_t R = result_rows > 0 ? static_cast<size_t>(result_rows) : 0;
    const size_t D = static_cast<size_t>(std::max<I>(std::max(rows, cols), 0));
    const size_t threads = static_cast<size_t>(std::max(1, zel_serv_get_max_threads()));

    scratch_array<I> start_offset(D * threads, alignment);
    scratch_array<I> marker((D + 1) * threads, alignment);
    if (!marker || (D > 0 && !start_offset))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    scratch_array<uint64_t> row_work(R + 1, alignment);
    if (!row_work)
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    std::fill(row_work.get(), row_work.get() + R + 1, uint64_t{0});
    std::fill(marker.get(), marker.get() + D + 1, I{-2});

    const bool left_first = operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    const operand<C, I> &L = left_first ? first : second;
    const operand<C, I> &Rop = left_first ? second : first;
    const I base = one_based ? 1 : 0;

    // Four fixed chunks; per chunk the markers of the chunk's columns are prepared (-1) and `kernel`
    // runs on it. Preparing sweeps the chunk's columns anyway, so it sets the markers at once rather
    // than first putting them back to -2. The rows a chunk references are found by the first pass
    // over it and kept for the second.
    referenced_rows<I> referenced[4];
    auto for_each_chunk = [&](auto kernel) {
        for (int64_t chunk = 0; chunk < 4; ++chunk) {
            const I r0 = chunk_bound(chunk, 4, result_rows), r1 = chunk_bound(chunk + 1, 4, result_rows);
            if (r0 == r1)
                continue;
            prepare_chunk<I, I>(r0, r1, L.base, L.col_indx, L.rows_start, L.rows_end, Rop.base, Rop.col_indx,
                                Rop.rows_start, Rop.rows_end, start_offset.get(), marker.get(), -1,
                                referenced[chunk]);
            kernel(r0, r1);
        }
    };

    const bool count_rows = stage != ZEL_SPARSE_STAGE_FINALIZE_MULT && *rows_start_out == nullptr;
    I *rows_start = *rows_start_out;
    if (count_rows) {
        rows_start = static_cast<I *>(zel_serv_malloc((R + 1) * sizeof(I), alignment));
        if (rows_start == nullptr)
            return ZEL_SPARSE_STATUS_ALLOC_FAILED;
        std::fill(rows_start, rows_start + R + 1, I{0});
        *rows_start_out = rows_start;
        for_each_chunk([&](I r0, I r1) {
            K::structure(r0, r1, result_rows, L.base, L.col_indx, L.rows_start, L.rows_end, Rop.base, Rop.col_indx,
                         Rop.rows_start, Rop.rows_end, start_offset.get(), marker.get(), rows_start, row_work.get());
        });
        rows_start[0] = base;
        for (size_t i = 0; i < R; ++i) {
            rows_start[i + 1] += rows_start[i];
            row_work[i + 1] += row_work[i];
        }
    }
    if (stage == ZEL_SPARSE_STAGE_NNZ_COUNT) {
        *col_indx_out = nullptr;
        *values_out = nullptr;
        return ZEL_SPARSE_STATUS_SUCCESS;
    }

    const size_t nnz = static_cast<size_t>(rows_start[R] - base);
    const size_t block = block_size > 0 ? static_cast<size_t>(block_size) * block_size : 1;
    I *col_indx = *col_indx_out;
    C *values = *values_out;
    const bool own_col = col_indx == nullptr, own_values = values == nullptr;
    auto fail = [&]() {
        if (count_rows) {
            zel_serv_free(rows_start);
            *rows_start_out = nullptr;
        }
        if (own_col) {
            zel_serv_free(col_indx);
            *col_indx_out = nullptr;
        }
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    };
    if (own_col) {
        col_indx = static_cast<I *>(zel_serv_malloc(nnz * sizeof(I), alignment));
        if (col_indx == nullptr && nnz != 0)
            return fail();
    }
    if (own_values) {
        values = static_cast<C *>(zel_serv_malloc(nnz * block * sizeof(C), alignment));
        if (values == nullptr && nnz != 0)
            return fail();
    }

    if (block_size > 0) {
        const I layout = first.base; // block order pairs with the index base
        for_each_chunk([&](I r0, I r1) {
            K::block_row(r0, r1, result_rows, L.base, L.values, L.col_indx, L.rows_start, L.rows_end, Rop.base,
                         Rop.values, Rop.col_indx, Rop.rows_start, Rop.rows_end, start_offset.get(), marker.get(),
                         rows_start, base, col_indx, values, block_size, layout);
        });
    } else {
        for_each_chunk([&](I r0, I r1) {
            K::row(r0, r1, result_rows, L.base, L.values, L.col_indx, L.rows_start, L.rows_end, Rop.base,
                   Rop.values, Rop.col_indx, Rop.rows_start, Rop.rows_end, start_offset.get(), marker.get(),
                   rows_start, base, col_indx, values);
        });
    }
    *rows_start_out = rows_start;
    *col_indx_out = col_indx;
    *values_out = values;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse_syrk
