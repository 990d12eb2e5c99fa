// Format conversions of a handle's record into new caller-owned arrays, op(A) for operation
// 10, 11 or 12; the algorithms are those of zel_internal/sparse_formats.hpp.
#pragma once

#include "zel/sparse_handle.h"
#include "zel_internal/sparse_formats.hpp"

namespace zel::sparse {

constexpr int32_t any_format = -1;

// Checks a conversion request from a handle of format `from` (any_format: the handle's own)
// and hands the record's view to build.
template <class T, class I, class Out, class Build>
int convert_from(const handle_t<I> *A, int32_t from, int operation, Out *out, Build build)
{
    if (A == nullptr || out == nullptr)
        return ZEL_SPARSE_STATUS_NOT_INITIALIZED;
    if (A->format < ZEL_SPARSE_FORMAT_COO || A->format > ZEL_SPARSE_FORMAT_BSR || (from != any_format && A->format != from))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    source_view<I> view;
    if (!view_of(A, view))
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (A->data_type != data_type_code<T>() || !is_operation(operation))
        return ZEL_SPARSE_STATUS_INVALID_VALUE;
    return build(view);
}

template <class T, class I> int convert_to_csr(const handle_t<I> *A, int32_t from, int operation, csr_t<I> *out)
{
    return convert_from<T, I>(A, from, operation, out,
                              [&](const source_view<I> &a) { return build_compressed<T, I>(a, operation, false, *out); });
}

template <class T, class I> int convert_to_csc(const handle_t<I> *A, int32_t from, int operation, csr_t<I> *out)
{
    return convert_from<T, I>(A, from, operation, out,
                              [&](const source_view<I> &a) { return build_compressed<T, I>(a, operation, true, *out); });
}

template <class T, class I> int convert_to_coo(const handle_t<I> *A, int32_t from, int operation, coo_t<I> *out)
{
    return convert_from<T, I>(A, from, operation, out,
                              [&](const source_view<I> &a) { return build_coo<T, I>(a, operation, *out); });
}

template <class T, class I>
int convert_to_bsr(const handle_t<I> *A, int32_t from, int operation, I block_size, int block_layout, csr_t<I> *out)
{
    return convert_from<T, I>(A, from, operation, out, [&](const source_view<I> &a) {
        return build_bsr<T, I>(a, operation, block_size, block_layout_record_code(block_layout), *out);
    });
}

} // namespace zel::sparse
