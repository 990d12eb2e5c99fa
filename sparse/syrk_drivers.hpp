// Drivers of the products of a sparse matrix with its own transpose: argument checks, row
// chunks, chunk preparation, working arrays and prefix sums. The arithmetic runs in the core's
// kernels, called once per chunk with the raw argument lists the C ABI gives them; operands
// travel here as compressed views (A by rows, slices = rows, extent = cols; its transposed
// record At by rows of A's columns).
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
#include "zel_internal/checked.hpp"
#include "zel_internal/compressed_view.hpp"
#include "zel_internal/isa.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/sparse_records.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse_syrk {

using sparse::alignment;

// Records and core kernels of one value type C (the C ABI type) and index type I.
template <class C, class I> struct members;

#define ZEL_SYRK_MEMBER_TABLE(P, C, T, W, I)                                                                  \
    template <> struct members<C, I> {                                                                     \
        using handle = zel_sparse_matrix_##W;                                                                \
        using record = zel_sparse_csr_record_##W;                                                            \
        static constexpr bool is_complex = zel::is_complex_v<T>;                         \
        /* dense L·R: row-major (_c) or column-major (_f) C, alpha 1 or any */                            \
        static constexpr auto dense_n_rows = zel_sparse_##P##_csr__g_n_syrkd_c_ker_##W;                      \
        static constexpr auto dense_n_cols = zel_sparse_##P##_csr__g_n_syrkd_f_ker_##W;                      \
        static constexpr auto dense_n_rows_alpha = zel_sparse_##P##_csr__g_n_syrkd_alf_c_ker_##W;            \
        static constexpr auto dense_n_cols_alpha = zel_sparse_##P##_csr__g_n_syrkd_alf_f_ker_##W;            \
        /* dense Aᵀ·A, the same four */                                                                     \
        static constexpr auto dense_t_rows = zel_sparse_##P##_csr__g_t_syrkd_c_ker_##W;                      \
        static constexpr auto dense_t_cols = zel_sparse_##P##_csr__g_t_syrkd_f_ker_##W;                      \
        static constexpr auto dense_t_rows_alpha = zel_sparse_##P##_csr__g_t_syrkd_alf_c_ker_##W;            \
        static constexpr auto dense_t_cols_alpha = zel_sparse_##P##_csr__g_t_syrkd_alf_f_ker_##W;            \
        /* sparse result: symbolic pass, numeric pass (CSR, BSR) */                                        \
        static constexpr auto symbolic = zel_sparse_##P##_csr__g_n_syrk_notr_struct_##W;                     \
        static constexpr auto numeric = zel_sparse_##P##_csr__g_n_syrk_notr_row_##W;                         \
        static constexpr auto block_numeric = zel_sparse_##P##_bsr__g_n_syrk_notr_row_##W;                   \
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


// An operand as the drivers see it, values of the C ABI type.
template <class C, class I> using operand_view = sparse::compressed_view<C, I>;
// The same without values, for what reads the pattern only.
template <class I> using pattern_view = sparse::compressed_view<char, I>;

template <class C, class I> pattern_view<I> pattern_of(const operand_view<C, I> &a)
{
    return {a.slices, a.extent, a.base, a.block, a.starts, a.ends, a.index, nullptr};
}

// Offset of the first entry of R's row k whose column is at least r0 (walked two at a time);
// the row's length when there is none, 0 for an empty row.
template <class I> inline I first_offset(const pattern_view<I> &R, I k, I r0)
{
    if (r0 == 0) // every column qualifies; the row need not be read
        return 0;
    const I length = R.length(k);
    if (length <= 0)
        return 0;
    const I *col = R.index + R.begin(k);
    const I r_base = R.base;
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
template <class I> referenced_rows<I> find_referenced_rows(const pattern_view<I> &L, I r0, I r1)
{
    I low = std::numeric_limits<I>::max(), high = std::numeric_limits<I>::min();
    int64_t entries = 0;
    I span = 0, span_end = 0;
    auto sweep = [&] {
        if (span_end > span) {
            const auto range = column_range<I>(L.index + span, L.index + span_end);
            low = std::min(low, range.first);
            high = std::max(high, range.second);
        }
        entries += span_end - span;
    };
    for (I i = r0; i < r1; ++i) {
        const I begin = L.begin(i), end = L.end(i);
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
        found.low = low - L.base;
        found.high = high - L.base;
    }
    return found;
}

// What the chunk preparation writes, per R row k: its start offset, and flag[k] = prepared.
template <class I, class F> struct chunk_marks {
    I *start_offset;
    F *flag;
    F prepared;
};

// The referenced rows of a thin range: flagged and marked pending (-1) first, then found in order
// of k while the range spans at most four times as many rows as the chunk has entries, else entry
// by entry.
template <class I, class F>
void prepare_referenced(pattern_view<I> L, pattern_view<I> R, I r0, I r1, chunk_marks<I, F> marks,
                        const referenced_rows<I> &referenced)
{
    constexpr I pending = -1;
    I *start_offset = marks.start_offset;
    for (I i = r0; i < r1; ++i)
        for (I p = L.begin(i); p < L.end(i); ++p) {
            const I k = L.index[p] - L.base;
            marks.flag[k] = marks.prepared;
            start_offset[k] = pending;
        }
    auto prepare = [&](I k) {
        if (start_offset[k] == pending)
            start_offset[k] = first_offset(R, k, r0);
    };
    if (int64_t(referenced.high) - referenced.low < 4 * referenced.entries) {
        for (I k = referenced.low; k <= referenced.high; ++k)
            prepare(k);
    } else {
        for (I i = r0; i < r1; ++i)
            for (I p = L.begin(i); p < L.end(i); ++p)
                prepare(L.index[p] - L.base);
    }
}

// Prepares rows [r0, r1) of L: the start offset of every R row they reference, once per chunk,
// and its flag. A first sweep finds the range of referenced rows into `referenced`, unless an
// earlier pass over the same chunk already did. Where the range holds no more rows than the chunk
// has entries (stencils, or rows spread over all of R), every row in it is prepared in memory
// order: flagging only the referenced ones would cost a store per entry, and a row flagged but not
// referenced is never read. Thinner ranges go to prepare_referenced.
template <class I, class F>
void prepare_chunk(pattern_view<I> L, pattern_view<I> R, I r0, I r1, chunk_marks<I, F> marks,
                   referenced_rows<I> &referenced)
{
    if (!referenced.known)
        referenced = find_referenced_rows(L, r0, r1);
    if (referenced.entries == 0)
        return;
    if (int64_t(referenced.high) - referenced.low < referenced.entries) {
        for (I k = referenced.low; k <= referenced.high; ++k) {
            marks.flag[k] = marks.prepared;
            marks.start_offset[k] = first_offset(R, k, r0);
        }
        return;
    }
    prepare_referenced(L, R, r0, r1, marks, referenced);
}

// A caller's dense array C and how it is laid out.
template <class C, class I> struct dense_array {
    C *c;
    int layout;
    I ldc;

    bool column_major() const { return layout == ZEL_SPARSE_LAYOUT_COLUMN_MAJOR; }
};

// One chunk of the dense L·R through the kernel for C's layout and alpha.
template <class C, class I>
void dense_n_chunk(I r0, I r1, const operand_view<C, I> &A, const operand_view<C, I> &At, I *start_offset,
                   C alpha, C beta, const dense_array<C, I> &out)
{
    using K = members<C, I>;
    const bool cols = out.column_major();
    if (is_one(alpha))
        (cols ? K::dense_n_cols : K::dense_n_rows)(r0, r1, A.slices, A.base, A.values, A.index, A.starts, A.ends,
                                                   At.base, At.values, At.index, At.starts, At.ends, start_offset,
                                                   out.c, out.ldc, beta);
    else
        (cols ? K::dense_n_cols_alpha : K::dense_n_rows_alpha)(
            r0, r1, A.slices, A.base, A.values, A.index, A.starts, A.ends, At.base, At.values, At.index, At.starts,
            At.ends, start_offset, out.c, out.ldc, alpha, beta);
}

// Dense C = alpha·A·Aᵀ + beta·C (upper triangle), A with its transposed copy At.
template <class C, class I>
int syrkd_n_driver(C alpha, C beta, operand_view<C, I> A, operand_view<C, I> At, dense_array<C, I> out)
{
    const int64_t threads = std::max(1, zel_serv_get_max_threads());
    const size_t n = A.extent > 0 ? static_cast<size_t>(A.extent) : 0;
    const size_t per_thread = checked_mul<size_t>(threads, n).value_or(SIZE_MAX);
    scratch_array<int32_t> visited(per_thread, alignment);
    scratch_array<I> start_offset(per_thread, alignment);
    if (n > 0 && (!visited || !start_offset))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    const int64_t chunks = 2 * threads;
    for (int64_t chunk = 0; chunk < chunks; ++chunk) {
        const I r0 = chunk_bound(chunk, chunks, A.slices), r1 = chunk_bound(chunk + 1, chunks, A.slices);
        if (r0 == r1)
            continue;
        if (n > 0) {
            std::memset(visited.get(), 0, n * sizeof(int32_t));
            std::memset(start_offset.get(), 0, n * sizeof(I));
        }
        referenced_rows<I> referenced; // one pass per chunk here
        prepare_chunk<I, int32_t>(pattern_of(A), pattern_of(At), r0, r1, {start_offset.get(), visited.get(), 1},
                                  referenced);
        dense_n_chunk(r0, r1, A, At, start_offset.get(), alpha, beta, out);
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

// Rows [r0, r1) of the dense Aᵀ·A through the kernel for C's layout and alpha.
template <class C, class I>
void dense_t_chunk(I r0, I r1, const operand_view<C, I> &A, C alpha, C beta, const dense_array<C, I> &out)
{
    using K = members<C, I>;
    const bool cols = out.column_major();
    if (is_one(alpha))
        (cols ? K::dense_t_cols : K::dense_t_rows)(r0, r1, A.slices, A.extent, A.base, A.values, A.index, A.starts,
                                                   A.ends, out.c, out.ldc, beta);
    else
        (cols ? K::dense_t_cols_alpha : K::dense_t_rows_alpha)(r0, r1, A.slices, A.extent, A.base, A.values,
                                                               A.index, A.starts, A.ends, out.c, out.ldc, alpha,
                                                               beta);
}

// Dense C = alpha·Aᵀ·A + beta·C (complex Aᴴ·A), upper triangle.
template <class C, class I> int syrkd_t_driver(operand_view<C, I> A, dense_array<C, I> out, C alpha, C beta)
{
    const int threads = std::max(1, zel_serv_get_max_threads());
    if (threads == 1 || !is_one(alpha)) {
        dense_t_chunk(I(0), A.slices, A, alpha, beta, out);
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    // Chunks of A's rows add into C, so beta is applied once beforehand.
    if (!is_one(beta))
        scale_upper(out.c, A.extent, out.ldc, beta, out.column_major());
    const C one = alpha; // exactly 1 here
    const int64_t chunks = 2 * static_cast<int64_t>(threads);
    for (int64_t chunk = 0; chunk < chunks; ++chunk) {
        const I r0 = chunk_bound(chunk, chunks, A.slices), r1 = chunk_bound(chunk + 1, chunks, A.slices);
        if (r0 < r1)
            dense_t_chunk(r0, r1, A, one, one, out);
    }
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// A handle's CSR record as an operand, values as given.
template <class C, class I, class Record> operand_view<C, I> record_view(const Record &r, const void *values)
{
    return {r.rows, r.cols, r.index_base, 1, r.rows_start, r.rows_end, r.col_indx, static_cast<const C *>(values)};
}

// Public dense product: checks in their fixed order, then the driver for the operation.
template <class C, class I>
int syrkd_entry(int operation, typename members<C, I>::handle *A, C alpha, C beta, dense_array<C, I> out)
{
    using K = members<C, I>;
    if (out.c == nullptr || A == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (operation < ZEL_SPARSE_OPERATION_NON_TRANSPOSE || operation > ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE ||
        out.ldc < 0)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (A->format != ZEL_SPARSE_FORMAT_CSR)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    const auto *a = static_cast<const typename K::record *>(A->data);
    if (a == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (a->values == nullptr)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    const auto a_rows = record_view<C, I>(*a, a->values);
    if (operation != ZEL_SPARSE_OPERATION_NON_TRANSPOSE)
        return syrkd_t_driver<C, I>(a_rows, out, alpha, beta);
    const int op = K::is_complex ? ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE : ZEL_SPARSE_OPERATION_TRANSPOSE;
    if (K::transpose(A, op) != ZEL_SPARSE_STATUS_SUCCESS || A->transposed == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    const auto *t = A->transposed;
    const void *t_values = K::is_complex ? t->aux : t->values;
    if (t_values == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    return syrkd_n_driver<C, I>(alpha, beta, a_rows, record_view<C, I>(*t, t_values), out);
}

// What a stage call asks for: the stage (90-93), the operation, whether the output is one-based,
// and the block edge (0 for CSR).
template <class I> struct stage_call {
    int stage, operation;
    I one_based, block_size;
};

// The caller's three out-pointers of the stage function.
template <class C, class I> struct stage_outputs {
    C **values;
    I **col_indx;
    I **rows_start;
};

// The product a stage call asks for: L·R with L = A (operation 10) or Aᵀ, as rows of the
// result; base is the index base of the output.
template <class C, class I> struct stage_product {
    operand_view<C, I> L, R;
    I rows; // of the result
    I base;
    I block_size;   // 0 for CSR
    I block_layout; // the first operand's index base: block order pairs with it
};

// The driver's working arrays, one set for the call: per R row its start offset, per result
// column its marker (with a spare), per result row the products walked for it.
template <class I> struct stage_scratch {
    scratch_array<I> start_offset, marker;
    scratch_array<uint64_t> row_work;
    referenced_rows<I> referenced[4]; // found by the first pass over each chunk, kept for the second

    // False when the memory cannot be had.
    bool take(size_t columns, size_t rows)
    {
        const size_t threads = static_cast<size_t>(std::max(1, zel_serv_get_max_threads()));
        start_offset = scratch_array<I>(checked_mul<size_t>(columns, threads).value_or(SIZE_MAX), alignment);
        marker = scratch_array<I>(checked_mul<size_t>(columns + 1, threads).value_or(SIZE_MAX), alignment);
        if (!marker || (columns > 0 && !start_offset))
            return false;
        row_work = scratch_array<uint64_t>(rows + 1, alignment);
        if (!row_work)
            return false;
        std::fill(row_work.get(), row_work.get() + rows + 1, uint64_t{0});
        std::fill(marker.get(), marker.get() + columns + 1, I{-2});
        return true;
    }
};

// Runs `kernel(r0, r1)` on four fixed chunks of the result's rows, each prepared first: the markers
// of the columns the chunk references go to -1 (preparing sweeps them anyway, so they go there
// straight rather than back to -2 first) and their start offsets are found.
template <class C, class I, class F>
void for_each_chunk(const stage_product<C, I> &product, stage_scratch<I> &scratch, F kernel)
{
    for (int64_t chunk = 0; chunk < 4; ++chunk) {
        const I r0 = chunk_bound(chunk, 4, product.rows), r1 = chunk_bound(chunk + 1, 4, product.rows);
        if (r0 == r1)
            continue;
        prepare_chunk<I, I>(pattern_of(product.L), pattern_of(product.R), r0, r1,
                            {scratch.start_offset.get(), scratch.marker.get(), I{-1}}, scratch.referenced[chunk]);
        kernel(r0, r1);
    }
}

// The symbolic pass into rows_start (R + 1 entries, zeroed), then prefix sums carrying the base.
template <class C, class I> void count_rows(const stage_product<C, I> &p, stage_scratch<I> &scratch, I *rows_start)
{
    using K = members<C, I>;
    for_each_chunk(p, scratch, [&](I r0, I r1) {
        K::symbolic(r0, r1, p.rows, p.L.base, p.L.index, p.L.starts, p.L.ends, p.R.base, p.R.index, p.R.starts,
                    p.R.ends, scratch.start_offset.get(), scratch.marker.get(), rows_start, scratch.row_work.get());
    });
    uint64_t *row_work = scratch.row_work.get();
    rows_start[0] = p.base;
    for (size_t i = 0; i < size_t(std::max<I>(p.rows, 0)); ++i) {
        rows_start[i + 1] += rows_start[i];
        row_work[i + 1] += row_work[i];
    }
}

// The numeric pass into the arrays the row pointer sizes.
template <class C, class I>
void fill_rows(const stage_product<C, I> &p, stage_scratch<I> &scratch, const I *rows_start, I *col_indx, C *values)
{
    using K = members<C, I>;
    I *start_offset = scratch.start_offset.get(), *marker = scratch.marker.get();
    if (p.block_size > 0)
        for_each_chunk(p, scratch, [&](I r0, I r1) {
            K::block_numeric(r0, r1, p.rows, p.L.base, p.L.values, p.L.index, p.L.starts, p.L.ends, p.R.base,
                             p.R.values, p.R.index, p.R.starts, p.R.ends, start_offset, marker, rows_start, p.base,
                             col_indx, values, p.block_size, p.block_layout);
        });
    else
        for_each_chunk(p, scratch, [&](I r0, I r1) {
            K::numeric(r0, r1, p.rows, p.L.base, p.L.values, p.L.index, p.L.starts, p.L.ends, p.R.base, p.R.values,
                       p.R.index, p.R.starts, p.R.ends, start_offset, marker, rows_start, p.base, col_indx, values);
        });
}

// Argument checks of the stage function, in their fixed order; success when they pass.
template <class C, class I> int check_stage(int stage, int operation, const stage_outputs<C, I> &out)
{
    if (out.values == nullptr || out.col_indx == nullptr || out.rows_start == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (stage < ZEL_SPARSE_STAGE_FULL_MULT || stage > ZEL_SPARSE_STAGE_FULL_MULT_NO_VAL ||
        operation < ZEL_SPARSE_OPERATION_NON_TRANSPOSE || operation > ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE)
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    if (stage == ZEL_SPARSE_STAGE_FINALIZE_MULT && *out.rows_start == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// Columns and values of the result: the caller's where given, else new arrays of nnz entries
// (blocks). Returns 2 when one cannot be had; an empty result may go without.
template <class C, class I> struct result_arrays {
    scratch_array<I> own_col_indx;
    scratch_array<C> own_values;
    I *col_indx;
    C *values;

    // After a failed take: the column array held at that point goes with the row pointer, the
    // caller's included (after status 2 none of the three out pointers may be used).
    void release_on_failure(I *rows_start, bool rows_start_is_callers)
    {
        if (rows_start_is_callers)
            zel_serv_free(rows_start);
        if (col_indx != nullptr && !own_col_indx)
            zel_serv_free(col_indx);
    }

    int take(const stage_outputs<C, I> &out, size_t nnz, I block_size)
    {
        col_indx = *out.col_indx;
        values = *out.values;
        const size_t block = block_size > 0 ? static_cast<size_t>(block_size) * block_size : 1;
        if (col_indx == nullptr) {
            own_col_indx = scratch_array<I>(nnz, alignment);
            col_indx = own_col_indx.get();
            if (col_indx == nullptr && nnz != 0)
                return ZEL_SPARSE_STATUS_ALLOC_FAILED; // col_indx stays null: nothing of it to free
        }
        if (values == nullptr) {
            own_values = scratch_array<C>(checked_mul<size_t>(nnz, block).value_or(SIZE_MAX), alignment);
            values = own_values.get();
            if (values == nullptr && nnz != 0)
                return ZEL_SPARSE_STATUS_ALLOC_FAILED;
        }
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
};

// Sparse result: the upper triangle of L·R in CSR (block_size 0) or over a block pattern. Stage
// 91 counts (the row pointer, newly allocated, is all it returns), 92 fills from the caller's row
// pointer, 90 and 93 do both. Arrays the call allocates are the caller's on success only.
template <class C, class I>
int syrk_stage_driver(stage_call<I> call, operand_view<C, I> first, operand_view<C, I> second, stage_outputs<C, I> out)
{
    const int stage = call.stage;
    if (const int status = check_stage(stage, call.operation, out); status != ZEL_SPARSE_STATUS_SUCCESS)
        return status;
    const bool left_first = call.operation == ZEL_SPARSE_OPERATION_NON_TRANSPOSE;
    const stage_product<C, I> p{left_first ? first : second, left_first ? second : first,
                                left_first ? first.slices : first.extent, I(call.one_based ? 1 : 0),
                                call.block_size, first.base};
    const size_t result_rows = p.rows > 0 ? static_cast<size_t>(p.rows) : 0;
    stage_scratch<I> scratch;
    if (!scratch.take(static_cast<size_t>(std::max<I>(std::max(first.slices, first.extent), 0)), result_rows))
        return ZEL_SPARSE_STATUS_ALLOC_FAILED;
    scratch_array<I> counted; // the row pointer this call makes
    I *rows_start = *out.rows_start;
    if (stage != ZEL_SPARSE_STAGE_FINALIZE_MULT && rows_start == nullptr) {
        counted = scratch_array<I>(result_rows + 1, alignment);
        if (!counted)
            return ZEL_SPARSE_STATUS_ALLOC_FAILED;
        rows_start = counted.get();
        std::fill(rows_start, rows_start + result_rows + 1, I{0});
        count_rows(p, scratch, rows_start);
    }
    if (stage == ZEL_SPARSE_STAGE_NNZ_COUNT) {
        if (counted)
            *out.rows_start = counted.release();
        *out.col_indx = nullptr;
        *out.values = nullptr;
        return ZEL_SPARSE_STATUS_SUCCESS;
    }
    const int64_t nnz = int64_t(rows_start[result_rows]) - p.base;
    result_arrays<C, I> arrays;
    if (const int status = arrays.take(out, nnz >= 0 ? size_t(nnz) : SIZE_MAX, p.block_size); status != 0) {
        arrays.release_on_failure(rows_start, !counted);
        return status;
    }
    fill_rows(p, scratch, rows_start, arrays.col_indx, arrays.values);
    if (counted)
        *out.rows_start = counted.release();
    *out.col_indx = arrays.own_col_indx ? arrays.own_col_indx.release() : arrays.col_indx;
    *out.values = arrays.own_values ? arrays.own_values.release() : arrays.values;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

} // namespace zel::sparse_syrk
