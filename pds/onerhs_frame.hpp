// What every one-right-hand-side kernel shares: the factor's arrays as one view, the block
// geometry as a small policy (scalar entries, fixed bs × bs blocks, variable blocks), the
// geometry of one supernode in scalar rows, and the core's dense routines of each value type.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>

#include "zel/core_imports.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/members.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::pds::onerhs {

inline constexpr int work_alignment = 128;

// The factor's arrays (1-based contents), as the exported members receive them.
template <class T, class I> struct factor_view {
    int64_t n;      // block rows
    int64_t nsuper;
    const I *super_ptr, *col_ptr, *row_ptr, *row_index;
    const T *l;
    const I *u_col_ptr;
    const T *u;
    const I *row_pivots, *col_pivots;
};

// Block geometries. row(b): first scalar row of block b (0-based); size(b): its rows;
// offset(p): the value offset of 0-based position p of col_ptr or u_col_ptr; rows(d, b): the
// scalar panel rows of a supernode whose first block column b spans d positions.
struct scalar_blocks {
    bool valid() const { return true; }
    bool fits(int64_t) const { return true; }
    int64_t row(int64_t b) const { return b; }
    int64_t size(int64_t) const { return 1; }
    int64_t offset(int64_t p) const { return p; }
    int64_t rows(int64_t d, int64_t) const { return d; }
};
struct fixed_blocks {
    int64_t bs;
    // bs² and the scalar rows must fit (the largest value offset is the caller's array length).
    bool valid() const { return bs >= 1 && checked_mul(bs, bs).has_value(); }
    bool fits(int64_t n) const { return checked_mul(n, bs).has_value(); }
    int64_t row(int64_t b) const { return b * bs; }
    int64_t size(int64_t) const { return bs; }
    int64_t offset(int64_t p) const { return p * bs * bs; }
    int64_t rows(int64_t d, int64_t) const { return d * bs; }
};
// Variable blocks: start[b] … start[b+1]−1 are block b's scalar rows (1-based); positions in
// col_ptr and u_col_ptr count scalar values, so a block column of w scalar columns spans
// w·rows positions.
template <class I> struct variable_blocks {
    const I *start;
    bool valid() const { return start != nullptr; }
    bool fits(int64_t) const { return true; }
    int64_t row(int64_t b) const { return int64_t(start[b]) - 1; }
    int64_t size(int64_t b) const { return int64_t(start[b + 1]) - start[b]; }
    int64_t offset(int64_t p) const { return p; }
    int64_t rows(int64_t d, int64_t b) const { return size(b) > 0 ? d / size(b) : 0; }
};

// One supernode in scalar rows: its columns are rows x0 … x0+nc−1 of x; its panel is nr × nc
// (leading dimension nr), U12ᵀ (when present) n_off × nc with leading dimension n_off; off
// lists the blocks below the diagonal block (1-based).
template <class T, class I> struct supernode {
    int64_t x0, nc, nr;
    const T *panel, *upper;
    const I *off;
    int64_t off_blocks;

    int64_t n_off() const { return nr - nc; }
    T at(int64_t i, int64_t j) const { return panel[i + j * nr]; }
};

template <class T, class I, class G> supernode<T, I> supernode_at(const factor_view<T, I> &f, const G &g, int64_t s)
{
    const int64_t first = int64_t(f.super_ptr[s]) - 1, cols = int64_t(f.super_ptr[s + 1]) - 1 - first;
    const int64_t pos = int64_t(f.col_ptr[first]) - 1, rs = int64_t(f.row_ptr[s]) - 1;
    supernode<T, I> sn;
    sn.x0 = g.row(first);
    sn.nc = g.row(first + cols) - sn.x0;
    sn.nr = g.rows(int64_t(f.col_ptr[first + 1]) - 1 - pos, first);
    sn.panel = f.l + g.offset(pos);
    sn.upper = f.u_col_ptr != nullptr ? f.u + g.offset(int64_t(f.u_col_ptr[first]) - 1) : nullptr;
    sn.off = f.row_index + rs + cols;
    sn.off_blocks = int64_t(f.row_ptr[s + 1]) - 1 - rs - cols;
    return sn;
}

// Calls visit(row, i) for every scalar row below the diagonal block, i counting them from 0.
template <class T, class I, class G, class Visit>
void for_off_rows(const supernode<T, I> &sn, const G &g, Visit &&visit)
{
    for (int64_t b = 0, i = 0; b < sn.off_blocks; ++b) {
        const int64_t block = int64_t(sn.off[b]) - 1, r = g.row(block), size = g.size(block);
        for (int64_t k = 0; k < size; ++k)
            visit(r + k, i++);
    }
}

// The scalar rows of x.
template <class G> int64_t scalar_rows(const G &g, int64_t n) { return g.row(n); }

// Whether a geometry describes n block rows whose scalar count fits: checked before anything
// is computed from it.
template <class G> bool usable(const G &g, int64_t n) { return n >= 0 && g.valid() && g.fits(n); }

// The widest supernode of a range, in scalar columns.
template <class T, class I, class G>
int64_t widest(const factor_view<T, I> &f, const G &g, int64_t first, int64_t last)
{
    int64_t w = 1;
    for (int64_t s = first; s <= last; ++s)
        w = std::max(w, g.row(int64_t(f.super_ptr[s + 1]) - 1) - g.row(int64_t(f.super_ptr[s]) - 1));
    return w;
}

// The core's routines of each value type (C: the type the C ABI names).
template <class T> struct core;
#define ZEL_ONERHS_CORE(P, C, T)                                                                            \
    template <> struct core<T> {                                                                           \
        using c_type = C;                                                                                  \
        static constexpr auto trsm = zel_blas_x##P##trsm;                                                  \
        static constexpr auto gemv = zel_blas_x##P##gemv;                                                  \
        static constexpr auto laswp = zel_lapack_##P##laswp;                                               \
        static constexpr auto sytrs_forward = zel_pds_##P##sytrs_bklfw_noscal_varisol;                     \
        static constexpr auto sytrs_diagonal = zel_pds_##P##sytrs_bkl_scal_varisol;                        \
        static constexpr auto sytrs_backward = zel_pds_##P##sytrs_bklbw_varisol;                           \
    };
ZEL_DENSE_MEMBERS(ZEL_ONERHS_CORE)
#undef ZEL_ONERHS_CORE
template <class T> struct core_hermitian;
#define ZEL_ONERHS_CORE_HERMITIAN(P, C, T)                                                                  \
    template <> struct core_hermitian<T> {                                                                 \
        static constexpr auto forward = zel_pds_##P##hetrs_bklfw_noscal_varisol;                           \
        static constexpr auto diagonal = zel_pds_##P##hetrs_bkl_scal_varisol;                              \
        static constexpr auto backward = zel_pds_##P##hetrs_bklbw_varisol;                                 \
    };
ZEL_DENSE_COMPLEX_MEMBERS(ZEL_ONERHS_CORE_HERMITIAN)
#undef ZEL_ONERHS_CORE_HERMITIAN
// The column interchanges undone, named by precision rather than by letter.
inline void luspxm(const int64_t *n, double *x, const int64_t *p) { zel_pds_luspxm_varisol(n, x, p); }
inline void luspxm(const int64_t *n, float *x, const int64_t *p) { zel_pds_sp_luspxm_varisol(n, x, p); }
inline void luspxm(const int64_t *n, std::complex<double> *x, const int64_t *p)
{ zel_pds_c_luspxm_varisol(n, reinterpret_cast<zel_complex16 *>(x), p); }
inline void luspxm(const int64_t *n, std::complex<float> *x, const int64_t *p)
{ zel_pds_sp_c_luspxm_varisol(n, reinterpret_cast<zel_complex8 *>(x), p); }

template <class T> auto *c_of(T *p) { return reinterpret_cast<typename core<std::remove_const_t<T>>::c_type *>(p); }
template <class T> auto *c_of(const T *p)
{
    return reinterpret_cast<const typename core<T>::c_type *>(p);
}

// b ← op(A)⁻¹·b for one right-hand side through the core's triangular solve.
template <class T>
void core_trsv(char uplo, char trans, char diag, int64_t m, const T *a, int64_t lda, T *b, int64_t ldb)
{
    const int64_t one = 1;
    const T alpha(1);
    core<T>::trsm("L", &uplo, &trans, &diag, &m, &one, c_of(&alpha), c_of(a), &lda, c_of(b), &ldb, 1, 1, 1, 1);
}

// y = alpha·op(A)·x + beta·y through the core's product.
template <class T>
void core_gemv(char trans, int64_t m, int64_t n, T alpha, const T *a, int64_t lda, const T *x, T beta, T *y)
{
    const int64_t one = 1;
    core<T>::gemv(&trans, &m, &n, c_of(&alpha), c_of(a), &lda, c_of(x), &one, c_of(&beta), c_of(y), &one, 1);
}

// The block interchanges 1 … k2 applied to one vector.
template <class T> void core_laswp(T *x, int64_t ld, int64_t k2, const int64_t *ipiv)
{
    const int64_t one = 1;
    core<T>::laswp(&one, c_of(x), &ld, &one, &k2, ipiv, &one);
}

// Pivots of one block as the core takes them (64-bit): the array itself, or a widened copy.
template <class I> struct wide_pivots {
    scratch_array<int64_t> buffer;

    bool reserve(int64_t count)
    {
        if constexpr (sizeof(I) != sizeof(int64_t))
            buffer = scratch_array<int64_t>(size_t(std::max<int64_t>(count, 1)), 64);
        return sizeof(I) == sizeof(int64_t) || bool(buffer);
    }
    const int64_t *of(const I *p, int64_t count) const
    {
        if constexpr (sizeof(I) == sizeof(int64_t)) {
            (void)count;
            return reinterpret_cast<const int64_t *>(p);
        } else {
            std::copy(p, p + count, buffer.get());
            return buffer.get();
        }
    }
};

} // namespace zel::pds::onerhs
