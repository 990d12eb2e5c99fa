// The frame shared by the group drivers: group checks, statuses and the pivot work array.
#pragma once

#include <algorithm>
#include <cstdint>

#include "batch_frame.hpp"

namespace zel::lapack {

// Checks group_count (at position `count_position`), the group sizes (the next position) and
// every group through check_group(g), which gives 0 or the position of the group's first bad
// argument. A bad group gets -position in the statuses of all its matrices, and the first
// bad group's position is reported once. Returns the number of matrices to run, or -1.
template <class I, class CheckGroup>
int64_t check_groups(const char *name, int64_t count_position, const I *group_count, const I *group_size, I *info,
                     CheckGroup check_group)
{
    const int64_t groups = *group_count;
    if (groups < 0) {
        report(name, count_position);
        return -1;
    }
    if (std::any_of(group_size, group_size + groups, [](I size) { return size < 0; })) {
        report(name, count_position + 1);
        return -1;
    }
    int64_t total = 0, first_bad = 0;
    for (int64_t g = 0; g < groups; ++g) {
        const int64_t position = check_group(g);
        if (position != 0) {
            fill_status(info + total, group_size[g], -position);
            first_bad = first_bad != 0 ? first_bad : position;
        }
        total += group_size[g];
    }
    if (first_bad != 0) {
        report(name, first_bad);
        return -1;
    }
    return total;
}

// The group drivers' pivot work array (alignment 128); on failure reports 1000 and sets the
// status of every matrix to 1000.
template <class I> scratch_array<int64_t> group_pivots(const char *name, int64_t length, I *info, int64_t total)
{
    scratch_array<int64_t> pivots(static_cast<size_t>(std::max<int64_t>(1, length)), 128);
    if (!pivots) {
        report(name, code_no_memory);
        fill_status(info, total, code_no_memory);
    }
    return pivots;
}

} // namespace zel::lapack
