// The layer's side of the handle's records: the compressed record of a handle, the records the
// layer builds (with their optimisation sub-records), and op(A) of a record on the shared
// transposition.
#pragma once

#include <algorithm>

#include "zel/runtime.h"
#include "zel/serv.h"
#include "zel_internal/sparse_formats.hpp"
#include "zel_internal/sparse_transpose.hpp"

namespace zel::sparse {

template <class I> csr_t<I> *csr_record(const handle_t<I> *handle) { return static_cast<csr_t<I> *>(handle->data); }

// Checks shared by copy, conversion and transposition: 5 for a missing handle or record, 6 for COO.
template <class I> int check_compressed_handle(const handle_t<I> *handle)
{
    if (handle == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    if (handle->format == ZEL_SPARSE_FORMAT_COO)
        return ZEL_SPARSE_STATUS_NOT_SUPPORTED;
    if (handle->data == nullptr)
        return ZEL_SPARSE_STATUS_INTERNAL_ERROR;
    return ZEL_SPARSE_STATUS_SUCCESS;
}

// A zero-filled three-array record with its two empty optimisation sub-records, or null (with
// nothing left allocated) when memory runs out.
template <class I> csr_t<I> *new_record_with_opt_records()
{
    scratch_array<csr_t<I>> record = zeroed_record<csr_t<I>>();
    scratch_array<zel_sparse_opt_record> opt(1, alignment);
    scratch_array<void *> three(3, alignment);
    scratch_array<void *> four(4, alignment);
    scratch_array<zel_sparse_opt_words> words = zeroed_record<zel_sparse_opt_words>();
    if (!record || !opt || !three || !four || !words)
        return nullptr;
    std::fill(three.get(), three.get() + 3, nullptr);
    std::fill(four.get(), four.get() + 4, nullptr);
    *opt.get() = zel_sparse_opt_record{nullptr, 0, 0, 1, three.release(), four.release(), nullptr};
    record[0].opt_record = opt.release();
    record[0].opt_words = words.release();
    return record.release();
}

// Parts for the kernel: one per thread, never more than there are rows, at least one.
template <class I> I part_count(I n_in)
{
    const I threads = static_cast<I>(std::max(zel_serv_get_max_threads(), 1));
    return std::max<I>(std::min(threads, n_in), 1);
}

// Owned arrays of op(A) (operation 11 or 12) of a compressed record, in A's format.
template <class T, class I>
int transposed_arrays(const csr_t<I> &record, int32_t format, int operation, owned_arrays<T, I> &out)
{
    const compressed_view<T, I> a = view_of_record<T, I>(record, format);
    return transpose_into(a, part_count(a.slices), operation == ZEL_SPARSE_OPERATION_CONJUGATE_TRANSPOSE, out);
}

} // namespace zel::sparse
