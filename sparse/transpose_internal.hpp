// Shared pieces of the copy and transpose family: record access by index width, the
// layer's record builder and its release.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <cstring>

#include "zel/runtime.h"
#include "zel/serv.h"
#include "zel/sparse_types.h"
#include "zel_internal/scratch.hpp"
#include "zel_internal/sparse_formats.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::sparse {

// Every allocation of this family asks for page alignment.
inline constexpr int page_alignment = 4096;

template <class I> csr_t<I> *csr_record(const handle_t<I> *handle)
{
    return static_cast<csr_t<I> *>(handle->data);
}

// Length of the compressed dimension: columns for CSC, (block) rows otherwise.
template <class I> I compressed_length(int32_t format, const csr_t<I> &record)
{
    return format == ZEL_SPARSE_FORMAT_CSC ? record.cols : record.rows;
}
template <class I> I other_length(int32_t format, const csr_t<I> &record)
{
    return format == ZEL_SPARSE_FORMAT_CSC ? record.rows : record.cols;
}
template <class I> I block_edge(int32_t format, const csr_t<I> &record)
{
    return format == ZEL_SPARSE_FORMAT_BSR ? record.block_size : I(1);
}

template <class T> T *alloc_array(size_t count)
{
    return static_cast<T *>(zel_serv_malloc(count * sizeof(T), page_alignment));
}

// A zero-filled three-array record with its two empty optimisation sub-records, or null
// (with nothing left allocated) when memory runs out.
template <class I> csr_t<I> *new_record()
{
    scratch_array<csr_t<I>> record(1, page_alignment);
    scratch_array<zel_sparse_opt_record> opt(1, page_alignment);
    scratch_array<void *> three(3, page_alignment);
    scratch_array<void *> four(4, page_alignment);
    scratch_array<zel_sparse_opt_words> words(1, page_alignment);
    if (!record || !opt || !three || !four || !words)
        return nullptr;
    std::memset(record.get(), 0, sizeof(csr_t<I>));
    std::memset(three.get(), 0, 3 * sizeof(void *));
    std::memset(four.get(), 0, 4 * sizeof(void *));
    std::memset(words.get(), 0, sizeof(zel_sparse_opt_words));
    *opt.get() = zel_sparse_opt_record{nullptr, 0, 0, 1, three.release(), four.release(), nullptr};
    record[0].opt_record = opt.release();
    record[0].opt_words = words.release();
    return record.release();
}

// Frees the library's arrays of a record (rows_start, col_indx, values, aux) when it owns them.
template <class I> void release_owned_arrays(csr_t<I> *record)
{
    if (record->owns_arrays == 0)
        return;
    zel_serv_free(record->rows_start);
    zel_serv_free(record->col_indx);
    zel_serv_free(record->values);
    zel_serv_free(record->aux);
}

// Frees a record built by this layer with everything hanging from it.
template <class I> void release_record(csr_t<I> *record)
{
    if (record == nullptr)
        return;
    release_owned_arrays<I>(record);
    if (zel_sparse_opt_record *opt = record->opt_record) {
        zel_serv_free(opt->sub_three);
        zel_serv_free(opt->sub_four);
        zel_serv_free(opt);
    }
    zel_serv_free(record->opt_words);
    zel_serv_free(record);
}

// Library-owned compressed arrays on their way into a record.
template <class T, class I> struct compressed_arrays {
    scratch_array<I> offsets;
    scratch_array<I> indices;
    scratch_array<T> values;
};

// Points a record at new owned arrays in three-array form, freeing the old owned ones.
template <class T, class I> void adopt_arrays(csr_t<I> *record, compressed_arrays<T, I> &arrays)
{
    release_owned_arrays<I>(record);
    record->rows_start = arrays.offsets.release();
    record->rows_end = record->rows_start + 1;
    record->col_indx = arrays.indices.release();
    record->values = arrays.values.release();
    record->aux = nullptr;
    record->owns_arrays = 1;
    record->three_array = 1;
}

template <class T> inline T conjugated(T value)
{
    if constexpr (is_complex_v<T>)
        return std::conj(value);
    else
        return value;
}

template <class T, class I>
int transpose_matrix(I n_out, I n_in, I nnz, I nparts, int operation, I index_base, I block_size,
                     const I *rows_start, const I *rows_end, const I *col_indx, const T *values,
                     I *out_rows_start, I *out_col_indx, T *out_values, I *work);

} // namespace zel::sparse
