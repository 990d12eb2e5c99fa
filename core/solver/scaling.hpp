// Symmetric scaling of the indefinite types: D·A·D with every row's largest magnitude close to
// one, so that the pivot threshold, taken relative to the largest entry, means the same in every
// row of a badly scaled matrix.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>

#include "kept_matrix.hpp"

namespace zel::solver {

// d[i] for D·A·D (A: the kept entries, values by the caller's positions through source): a few
// sweeps that divide each d[i] by the square root of row i's largest scaled magnitude. work: n.
template <class T, class I> void symmetric_scaling(const kept_matrix<I> &m, const T *values, double *d, double *work)
{
    constexpr int sweeps = 4;
    std::fill(d, d + m.n, 1.0);
    for (int sweep = 0; sweep < sweeps; ++sweep) {
        std::fill(work, work + m.n, 0.0);
        for (I i = 0; i < m.n; ++i)
            for (I p = m.row_ptr[i]; p < m.row_ptr[size_t(i) + 1]; ++p) {
                const I j = m.col_idx[size_t(p)];
                const double v = double(std::abs(values[size_t(m.source[size_t(p)])])) * d[i] * d[j];
                work[i] = std::max(work[i], v);
                work[j] = std::max(work[j], v); // an upper triangle stands for its mirror too
            }
        for (I i = 0; i < m.n; ++i)
            if (work[i] > 0)
                d[i] /= std::sqrt(work[i]);
    }
    for (I i = 0; i < m.n; ++i) // powers of two scale without rounding
        d[i] = std::exp2(std::round(std::log2(d[i])));
}

} // namespace zel::solver
