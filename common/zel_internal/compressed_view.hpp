// A compressed sparse matrix as internal templates see it: CSR by rows, CSC by columns, BSR by
// block rows, in four-array form (starts and ends apart) or three-array form (ends = starts + 1).
#pragma once

#include <cstdint>

namespace zel::sparse {

template <class T, class I> struct compressed_view {
    I slices = 0; // rows (CSR, BSR block rows) or columns (CSC): the compressed dimension
    I extent = 0; // the other dimension, the range of index[]
    I base = 0;   // 0 or 1: every offset and index is stored with it
    I block = 1;  // block edge for BSR, 1 otherwise
    const I *starts = nullptr;
    const I *ends = nullptr;
    const I *index = nullptr;
    const T *values = nullptr; // block-edge² values per stored entry; may be null (pattern only)

    // Zero-based range of slice i in index[] (and, times block², in values[]).
    I begin(I i) const { return starts[i] - base; }
    I end(I i) const { return ends[i] - base; }
    I length(I i) const { return ends[i] - starts[i]; }
    bool three_array() const { return ends == starts + 1; }
    // Stored entries up to the end of the last slice (a four-array record may leave gaps).
    int64_t stored() const { return slices > 0 ? int64_t(ends[slices - 1]) - base : 0; }
    int64_t block_area() const { return int64_t(block) * block; }
};

} // namespace zel::sparse
