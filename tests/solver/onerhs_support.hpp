// Shared by the one-right-hand-side kernel tests: the exported members of each family, factors
// (the library's own, and block factors written from random data), and a reference that
// applies a factor's steps in long double, checked itself against dense solves of P·A·Pᵀ.
#pragma once

#include "pds_test_support.hpp"
#include "zel/pds_onerhs.h"

namespace onerhs_test {

using namespace pds_test;

// How a member reads its factor (as the kernels document it).
enum class kind { lu, lu_t, chol, bk, di };
struct stem {
    const char *name;
    kind k;
    bool conj, herm;
    bool back_conj() const { return conj != herm; }
};

// The exported members of one family: per stem, the scalar, bsr and vbsr kernels.
template <class C, class I> struct ll_members {
    using scalar_fn = void (*)(I, I, I, I, const I *, const I *, const I *, const I *, const C *, const I *,
                               const C *, const I *, const I *, C *, const I *, I, I *);
    using bsr_fn = void (*)(I, I, I, I, I, const I *, const I *, const I *, const I *, const C *, const I *,
                            const C *, const I *, const I *, C *, const I *, I, I *);
    using vbsr_fn = void (*)(I, const I *, I, I, I, const I *, const I *, const I *, const I *, const C *,
                             const I *, const C *, const I *, const I *, C *, const I *, I, I *);
    stem s;
    scalar_fn scalar;
    bsr_fn bsr;
    vbsr_fn vbsr;
};

template <class T, class I> struct family;
#define ONERHS_LL_ROW(W, P, K, STEM, KIND, CONJ, HERM)                                                         \
    {{#STEM, kind::KIND, CONJ, HERM}, zel_pds_##W##P##blkslv_ll_##STEM##_##K,                                  \
     zel_pds_##W##P##blkslv_ll_bsr_##STEM##_##K, zel_pds_##W##P##blkslv_ll_vbsr_##STEM##_##K},
#define ONERHS_FAMILY(P, C, T, W, I)                                                                          \
    template <> struct family<T, I> {                                                                         \
        using c_type = C;                                                                                     \
        static constexpr const char *name = #W #P;                                                            \
        static inline const std::vector<ll_members<C, I>> ll = ONERHS_STEMS(W, P);                            \
    };
#define ONERHS_STEMS(W, P)                                                                                    \
    {ONERHS_LL_ROW(W, P, real, unsym_n, lu, false, false) ONERHS_LL_ROW(W, P, real, unsym_t, lu_t, false, false) \
     ONERHS_LL_ROW(W, P, real, posdef, chol, false, false) ONERHS_LL_ROW(W, P, real, undef_bk, bk, false, false) \
     ONERHS_LL_ROW(W, P, real, undef_di, di, false, false)}
ZEL_PDS_REAL_MEMBERS(ONERHS_FAMILY)
#undef ONERHS_STEMS
#define ONERHS_STEMS(W, P)                                                                                    \
    {ONERHS_LL_ROW(W, P, cmplx, unsym_n, lu, false, false) ONERHS_LL_ROW(W, P, cmplx, unsym_t, lu_t, false, false) \
     ONERHS_LL_ROW(W, P, cmplx, unsym_ct, lu_t, true, false)                                                   \
     ONERHS_LL_ROW(W, P, cmplx, posdef_n, chol, false, true) ONERHS_LL_ROW(W, P, cmplx, posdef_t, chol, true, true) \
     ONERHS_LL_ROW(W, P, cmplx, undef_bk, bk, false, true) ONERHS_LL_ROW(W, P, cmplx, undef_di, di, false, true) \
     ONERHS_LL_ROW(W, P, cmplx, sym_bk_n, bk, false, false) ONERHS_LL_ROW(W, P, cmplx, sym_bk_ct, bk, true, false) \
     ONERHS_LL_ROW(W, P, cmplx, sym_di_n, di, false, false) ONERHS_LL_ROW(W, P, cmplx, sym_di_ct, di, true, false)}
ZEL_PDS_CMPLX_MEMBERS(ONERHS_FAMILY)
#undef ONERHS_STEMS
#undef ONERHS_FAMILY
#undef ONERHS_LL_ROW

// The partitioned sweeps, their driver, nrhs, perm_sol and (real) tl members of one family.
template <class C, class I> struct sweep_members {
    using fwd_fn = void (*)(I, I, I, I, const I *, const I *, const I *, const I *, const C *, const I *, const C *,
                            const I *, const I *, C *, C *, C *, I, I, I, I, I, I, I *);
    using fwd_v_fn = void (*)(I, const I *, I, I, const I *, const I *, const I *, const I *, const C *, const I *,
                              const C *, const I *, const I *, C *, C *, C *, I, I, I, I, I, I, I *);
    using bwd_fn = void (*)(I, I, I, I, const I *, const I *, const I *, const I *, const C *, const I *, const C *,
                            const I *, const I *, C *, I, I, I, I, I, I *);
    using bwd_v_fn = void (*)(I, const I *, I, I, const I *, const I *, const I *, const I *, const C *, const I *,
                              const C *, const I *, const I *, C *, I, I, I, I, I, I *);
    using blk_fn = void (*)(I, I, I, const I *, const I *, const I *, const I *, const C *, const I *, const C *,
                            const I *, const I *, C *, I, I, I, I, I, I, I, I *);
    using blk_v_fn = void (*)(I, const I *, I, const I *, const I *, const I *, const I *, const C *, const I *,
                              const C *, const I *, const I *, C *, I, I, I, I, I, I, I, I *);
    using nrhs_fn = void (*)(I, I, const I *, const I *, const I *, const I *, const C *, const I *, const C *,
                             const I *, const I *, I, C *, I, I, I, I, I, I, I *);
    using nrhs_b_fn = void (*)(I, I, I, const I *, const I *, const I *, const I *, const C *, const I *, const C *,
                               const I *, const I *, I, C *, I, I, I, I, I, I, I *);
    using nrhs_v_fn = void (*)(I, const I *, I, const I *, const I *, const I *, const I *, const C *, const I *,
                               const C *, const I *, const I *, I, C *, I, I, I, I, I, I, I *);
    using perm_fn = void (*)(I, I, const I *, const C *, I, C *, I, I *);
    fwd_fn fwd;
    fwd_v_fn fwd_v;
    bwd_fn bwd;
    bwd_v_fn bwd_v;
    blk_fn blk;
    blk_v_fn blk_v;
    nrhs_fn fwd_nrhs, bwd_nrhs;
    nrhs_b_fn fwd_nrhs_bsr, bwd_nrhs_bsr;
    nrhs_v_fn fwd_nrhs_vbsr, bwd_nrhs_vbsr;
    perm_fn fwd_perm, bwd_perm;
};
template <class T, class I> struct sweeps;
#define ONERHS_SWEEPS(W, P, K)                                                                                \
    {zel_pds_##W##P##fwd_omp_mic_##K, zel_pds_##W##P##fwd_omp_mic_vbsr_##K, zel_pds_##W##P##bwd_omp_mic_##K,     \
     zel_pds_##W##P##bwd_omp_mic_vbsr_##K, zel_pds_##W##P##blkslv_omp_mic_##K,                                 \
     zel_pds_##W##P##blkslv_omp_mic_vbsr_##K, zel_pds_##W##P##fwd_nrhs_##K, zel_pds_##W##P##bwd_nrhs_##K,      \
     zel_pds_##W##P##fwd_nrhs_bsr_##K, zel_pds_##W##P##bwd_nrhs_bsr_##K, zel_pds_##W##P##fwd_nrhs_vbsr_##K,    \
     zel_pds_##W##P##bwd_nrhs_vbsr_##K, zel_pds_##W##P##fwd_perm_sol_##K, zel_pds_##W##P##bwd_perm_sol_##K}
#define ONERHS_SWEEPS_REAL(P, C, T, W, I)                                                                     \
    template <> struct sweeps<T, I> {                                                                         \
        static inline const sweep_members<C, I> m = ONERHS_SWEEPS(W, P, real);                                \
    };
#define ONERHS_SWEEPS_CMPLX(P, C, T, W, I)                                                                    \
    template <> struct sweeps<T, I> {                                                                         \
        static inline const sweep_members<C, I> m = ONERHS_SWEEPS(W, P, cmplx);                               \
    };
ZEL_PDS_REAL_MEMBERS(ONERHS_SWEEPS_REAL)
ZEL_PDS_CMPLX_MEMBERS(ONERHS_SWEEPS_CMPLX)
#undef ONERHS_SWEEPS_REAL
#undef ONERHS_SWEEPS_CMPLX
#undef ONERHS_SWEEPS

// The tl members (real families): per stem, the scalar, bsr and vbsr kernels.
template <class C, class I> struct tl_members {
    using scalar_fn = void (*)(I, I, I, I, const I *, const I *, const I *, const I *, const C *, const I *,
                               const C *, const I *, const I *, C *, const I *, I, I, I *);
    using bsr_fn = void (*)(I, I, I, I, I, const I *, const I *, const I *, const I *, const C *, const I *,
                            const C *, const I *, const I *, C *, const I *, I, I, I *);
    using vbsr_fn = void (*)(I, const I *, I, I, I, const I *, const I *, const I *, const I *, const C *,
                             const I *, const C *, const I *, const I *, C *, const I *, I, I, I *);
    const char *name;
    scalar_fn scalar;
    bsr_fn bsr;
    vbsr_fn vbsr;
};
template <class T, class I> struct tl_family;
#define ONERHS_TL_ROW(W, P, STEM)                                                                             \
    {#STEM, zel_pds_##W##P##blkslv_tl_##STEM##_real, zel_pds_##W##P##blkslv_tl_bsr_##STEM##_real,              \
     zel_pds_##W##P##blkslv_tl_vbsr_##STEM##_real},
#define ONERHS_TL(P, C, T, W, I)                                                                              \
    template <> struct tl_family<T, I> {                                                                      \
        static inline const std::vector<tl_members<C, I>> tl = {                                              \
            ONERHS_TL_ROW(W, P, unsym_n) ONERHS_TL_ROW(W, P, unsym_t) ONERHS_TL_ROW(W, P, posdef)             \
            ONERHS_TL_ROW(W, P, undef_bk) ONERHS_TL_ROW(W, P, undef_di)};                                      \
    };
ZEL_PDS_REAL_MEMBERS(ONERHS_TL)
#undef ONERHS_TL
#undef ONERHS_TL_ROW

template <class C, class I>
const ll_members<C, I> &find_stem(const std::vector<ll_members<C, I>> &list, const std::string &name)
{
    for (const auto &m : list)
        if (name == m.s.name)
            return m;
    throw std::runtime_error("no stem " + name);
}

// A factor in scalar entries (64-bit indices, 1-based), and optionally the block form it
// expands: bs > 0 fixed blocks, bs = 0 with start variable blocks, bs < 0 none.
template <class T> struct factor {
    int64_t n = 0, nsuper = 0;
    std::vector<int64_t> super_ptr, col_ptr, row_ptr, row_index, u_col_ptr, row_pivots, col_pivots;
    std::vector<T> l, u;
    // The block form: block counts and arrays over blocks; values and pivots are shared.
    int64_t bs = -1, nb = 0;
    std::vector<int64_t> start, b_super, b_col, b_row_ptr, b_rows, b_ucol;
};

template <class I> std::vector<I> narrow(const std::vector<int64_t> &v) { return std::vector<I>(v.begin(), v.end()); }
template <class I> const I *ptr_or_null(const std::vector<I> &v) { return v.empty() ? nullptr : v.data(); }

// The factor's arrays in the member's index type, ready to pass.
template <class T, class I> struct passed {
    using C = typename family<T, I>::c_type;
    std::vector<I> super_ptr, col_ptr, row_ptr, row_index, u_col_ptr, row_pivots, col_pivots;
    std::vector<I> start, b_super, b_col, b_row_ptr, b_rows, b_ucol;
    const factor<T> &f;
    explicit passed(const factor<T> &fac)
        : super_ptr(narrow<I>(fac.super_ptr)), col_ptr(narrow<I>(fac.col_ptr)), row_ptr(narrow<I>(fac.row_ptr)),
          row_index(narrow<I>(fac.row_index)), u_col_ptr(narrow<I>(fac.u_col_ptr)),
          row_pivots(narrow<I>(fac.row_pivots)), col_pivots(narrow<I>(fac.col_pivots)), start(narrow<I>(fac.start)),
          b_super(narrow<I>(fac.b_super)), b_col(narrow<I>(fac.b_col)), b_row_ptr(narrow<I>(fac.b_row_ptr)),
          b_rows(narrow<I>(fac.b_rows)), b_ucol(narrow<I>(fac.b_ucol)), f(fac)
    {
    }
    const C *l() const { return reinterpret_cast<const C *>(f.l.data()); }
    const C *u() const { return f.u.empty() ? nullptr : reinterpret_cast<const C *>(f.u.data()); }

    // The scalar member on x; returns error.
    I scalar(const ll_members<C, I> &m, std::vector<T> &x, int64_t first, int64_t last, int64_t step,
             int64_t widen = 0) const
    {
        const I control[3] = {0, I(widen), 0};
        I error = -7;
        m.scalar(I(f.n), I(f.nsuper), I(first), I(last), super_ptr.data(), col_ptr.data(), row_ptr.data(),
                 row_index.data(), l(), ptr_or_null(u_col_ptr), u(), ptr_or_null(row_pivots), ptr_or_null(col_pivots),
                 reinterpret_cast<C *>(x.data()), control, I(step), &error);
        return error;
    }
    // The block member (bsr or vbsr, as the factor's block form) on x.
    I block(const ll_members<C, I> &m, std::vector<T> &x, int64_t first, int64_t last, int64_t step,
            int64_t widen = 0) const
    {
        const I control[3] = {0, I(widen), 0};
        I error = -7;
        C *cx = reinterpret_cast<C *>(x.data());
        if (f.bs > 0)
            m.bsr(I(f.nb), I(f.bs), I(f.nsuper), I(first), I(last), b_super.data(), b_col.data(), b_row_ptr.data(),
                  b_rows.data(), l(), ptr_or_null(b_ucol), u(), ptr_or_null(row_pivots), ptr_or_null(col_pivots), cx,
                  control, I(step), &error);
        else
            m.vbsr(I(f.nb), start.data(), I(f.nsuper), I(first), I(last), b_super.data(), b_col.data(),
                   b_row_ptr.data(), b_rows.data(), l(), ptr_or_null(b_ucol), u(), ptr_or_null(row_pivots),
                   ptr_or_null(col_pivots), cx, control, I(step), &error);
        return error;
    }
};

// ---- The reference: the factor's steps in long double, one supernode at a time. ----

template <class T> struct reference {
    using W = wide<T>;
    const factor<T> &f;
    stem s;

    W val(const std::vector<T> &v, int64_t p, bool c) const { return wide_conj_if(widen(v[size_t(p)]), c); }
    static W wide_conj_if(W v, bool c) { return c ? wide_conj(v) : v; }
    struct sn {
        int64_t x0, nc, nr, l0, u0;
        std::vector<int64_t> off;
    };
    sn at(int64_t s0) const
    {
        sn r;
        r.x0 = f.super_ptr[s0] - 1;
        r.nc = f.super_ptr[s0 + 1] - f.super_ptr[s0];
        r.l0 = f.col_ptr[r.x0] - 1;
        r.nr = f.col_ptr[r.x0 + 1] - f.col_ptr[r.x0];
        r.u0 = f.u_col_ptr.empty() ? 0 : f.u_col_ptr[r.x0] - 1;
        for (int64_t p = f.row_ptr[s0] - 1 + r.nc; p < f.row_ptr[s0 + 1] - 1; ++p)
            r.off.push_back(f.row_index[p] - 1);
        return r;
    }
    W L(const sn &b, int64_t i, int64_t j, bool c) const { return val(f.l, b.l0 + i + j * b.nr, c); }
    W U12t(const sn &b, int64_t i, int64_t j, bool c) const
    {
        return val(f.u, b.u0 + i + j * (b.nr - b.nc), c);
    }
    static void swap(std::vector<W> &x, int64_t a, int64_t c) { std::swap(x[size_t(a)], x[size_t(c)]); }

    void forward(std::vector<W> &x, int64_t s0) const
    {
        const sn b = at(s0);
        const bool c = s.conj;
        const int64_t x0 = b.x0, nc = b.nc, m = b.nr - b.nc;
        if (s.k == kind::lu || s.k == kind::di || s.k == kind::lu_t) {
            const auto &piv = s.k == kind::lu_t ? f.col_pivots : f.row_pivots;
            for (int64_t k = 0; k < nc; ++k)
                swap(x, x0 + k, x0 + piv[size_t(x0 + k)] - 1);
        }
        if (s.k == kind::bk) {
            for (int64_t k = 0; k < nc;) {
                const int64_t p = f.row_pivots[size_t(x0 + k)];
                const int64_t w = p > 0 ? 1 : 2;
                swap(x, x0 + k + w - 1, x0 + (p > 0 ? p : -p) - 1);
                for (int64_t q = k; q < k + w; ++q)
                    for (int64_t i = k + w; i < nc; ++i)
                        x[size_t(x0 + i)] -= L(b, i, q, c) * x[size_t(x0 + q)];
                k += w;
            }
        } else {
            for (int64_t j = 0; j < nc; ++j) {
                if (s.k == kind::lu_t) {
                    for (int64_t i = 0; i < j; ++i)
                        x[size_t(x0 + j)] -= L(b, i, j, c) * x[size_t(x0 + i)];
                    x[size_t(x0 + j)] /= L(b, j, j, c);
                    continue;
                }
                if (s.k == kind::chol)
                    x[size_t(x0 + j)] /= L(b, j, j, c);
                for (int64_t i = j + 1; i < nc; ++i)
                    x[size_t(x0 + i)] -= L(b, i, j, c) * x[size_t(x0 + j)];
            }
        }
        for (int64_t i = 0; i < m; ++i)
            for (int64_t j = 0; j < nc; ++j)
                x[size_t(b.off[size_t(i)])] -=
                    (s.k == kind::lu_t ? U12t(b, i, j, c) : L(b, nc + i, j, c)) * x[size_t(x0 + j)];
    }

    void diagonal(std::vector<W> &x, int64_t s0) const
    {
        const sn b = at(s0);
        const bool c = s.conj;
        for (int64_t k = 0; k < b.nc;) {
            W *v = &x[size_t(b.x0 + k)];
            if (s.k == kind::di || f.row_pivots[size_t(b.x0 + k)] > 0) {
                v[0] /= L(b, k, k, c);
                k += 1;
                continue;
            }
            const W d0 = L(b, k, k, c), d1 = L(b, k + 1, k + 1, c), e = L(b, k + 1, k, c);
            const W e_up = s.herm ? wide_conj(e) : e;
            const W det = d0 * d1 - e_up * e;
            const W a0 = (d1 * v[0] - e_up * v[1]) / det, a1 = (d0 * v[1] - e * v[0]) / det;
            v[0] = a0;
            v[1] = a1;
            k += 2;
        }
    }

    void backward(std::vector<W> &x, int64_t s0) const
    {
        const sn b = at(s0);
        const bool c = s.k == kind::lu ? false : s.back_conj();
        const int64_t x0 = b.x0, nc = b.nc, m = b.nr - b.nc;
        for (int64_t j = 0; j < nc; ++j)
            for (int64_t i = 0; i < m; ++i)
                x[size_t(x0 + j)] -=
                    (s.k == kind::lu ? U12t(b, i, j, false) : L(b, nc + i, j, c)) * x[size_t(b.off[size_t(i)])];
        if (s.k == kind::bk) {
            for (int64_t k = nc - 1; k >= 0;) {
                const int64_t p = f.row_pivots[size_t(x0 + k)];
                const int64_t lo = p > 0 ? k : k - 1;
                for (int64_t j = lo; j <= k; ++j)
                    for (int64_t i = k + 1; i < nc; ++i)
                        x[size_t(x0 + j)] -= L(b, i, j, c) * x[size_t(x0 + i)];
                swap(x, x0 + k, x0 + (p > 0 ? p : -p) - 1);
                k = lo - 1;
            }
            return;
        }
        for (int64_t j = nc - 1; j >= 0; --j) {
            if (s.k == kind::lu) {
                x[size_t(x0 + j)] /= L(b, j, j, false);
                for (int64_t i = 0; i < j; ++i)
                    x[size_t(x0 + i)] -= L(b, i, j, false) * x[size_t(x0 + j)];
                continue;
            }
            for (int64_t i = j + 1; i < nc; ++i)
                x[size_t(x0 + j)] -= L(b, i, j, c) * x[size_t(x0 + i)];
            if (s.k == kind::chol)
                x[size_t(x0 + j)] /= L(b, j, j, c);
        }
        if (s.k == kind::chol)
            return;
        const auto &piv = s.k == kind::lu ? f.col_pivots : f.row_pivots;
        for (int64_t k = nc - 1; k >= 0; --k)
            swap(x, x0 + k, x0 + piv[size_t(x0 + k)] - 1);
    }

    // The selected steps over the range (1-based, inclusive), widened as control[1] says.
    std::vector<W> operator()(std::vector<W> x, int64_t first, int64_t last, int64_t step, int64_t widen = 0) const
    {
        first = std::max<int64_t>(first, 1);
        last = std::min(last, f.nsuper);
        const int64_t ff = widen == 3 ? 1 : first, fl = widen == 3 ? f.nsuper : last;
        const int64_t bf = widen == 2 ? 1 : first, bl = widen == 2 ? f.nsuper : last;
        if (step == 0 || step == 1)
            for (int64_t s0 = ff - 1; s0 < fl; ++s0)
                forward(x, s0);
        if ((step == 0 || step == 2) && (s.k == kind::bk || s.k == kind::di))
            for (int64_t s0 = first - 1; s0 < last; ++s0)
                diagonal(x, s0);
        if (step == 0 || step == 3)
            for (int64_t s0 = bl - 1; s0 >= bf - 1; --s0)
                backward(x, s0);
        return x;
    }
};

template <class T> std::vector<wide<T>> widen_all(const std::vector<T> &v)
{
    std::vector<wide<T>> w(v.size());
    for (size_t i = 0; i < v.size(); ++i)
        w[i] = widen(v[i]);
    return w;
}

// max |a − b| / max(max |b|, 1).
template <class T> double relative_gap(const std::vector<T> &a, const std::vector<wide<T>> &b)
{
    long double gap = 0, size = 1;
    for (size_t i = 0; i < b.size(); ++i) {
        gap = std::max(gap, std::abs(widen(a[i]) - b[i]));
        size = std::max(size, std::abs(b[i]));
    }
    return double(gap / size);
}

// ---- Block factors written from random data. ----

// A block factor: supernodes of the given block widths, each with its rows below (ascending
// block rows after its columns) chosen at random; blocks of sizes `sizes` (one entry a block).
// Diagonal entries dominate so that every step stays well scaled; pivots are valid for the kind.
template <class T>
factor<T> block_factor(const std::vector<int64_t> &widths, const std::vector<int64_t> &sizes, bool fixed, kind k,
                       uint64_t seed)
{
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> u(-0.5, 0.5);
    auto value = [&](double scale) { return make_value<T>(scale * u(rng), scale * u(rng)); };
    factor<T> f;
    f.nsuper = int64_t(widths.size());
    f.nb = int64_t(sizes.size());
    f.bs = fixed ? sizes[0] : 0;
    f.start.push_back(1);
    for (int64_t s : sizes)
        f.start.push_back(f.start.back() + s);
    f.n = f.start.back() - 1;
    f.b_super.push_back(1);
    for (int64_t w : widths)
        f.b_super.push_back(f.b_super.back() + w);
    // Block structure.
    f.b_row_ptr.push_back(1);
    std::vector<std::vector<int64_t>> below(size_t(f.nsuper));
    for (int64_t s = 0; s < f.nsuper; ++s) {
        for (int64_t r = f.b_super[s + 1]; r <= f.nb; ++r)
            if (std::bernoulli_distribution(0.45)(rng))
                below[s].push_back(r);
        for (int64_t c = f.b_super[s]; c < f.b_super[s + 1]; ++c)
            f.b_rows.push_back(c);
        for (int64_t r : below[s])
            f.b_rows.push_back(r);
        f.b_row_ptr.push_back(int64_t(f.b_rows.size()) + 1);
    }
    // Scalar structure and values, panel by panel; block positions count values for vbsr and
    // bs × bs blocks for bsr.
    f.super_ptr.push_back(1);
    f.row_ptr.push_back(1);
    int64_t pos = 1, upos = 1;
    const bool lu = k == kind::lu || k == kind::lu_t;
    f.b_col.assign(size_t(f.nb + 1), 0);
    f.b_ucol.assign(size_t(f.nb + 1), 0);
    for (int64_t s = 0; s < f.nsuper; ++s) {
        const int64_t c0 = f.start[f.b_super[s] - 1], c1 = f.start[f.b_super[s + 1] - 1];
        const int64_t nc = c1 - c0;
        std::vector<int64_t> rows;
        for (int64_t r = c0; r < c1; ++r)
            rows.push_back(r);
        for (int64_t rb : below[s])
            for (int64_t r = f.start[rb - 1]; r < f.start[rb]; ++r)
                rows.push_back(r);
        const int64_t nr = int64_t(rows.size()), m = nr - nc;
        for (int64_t b = f.b_super[s]; b < f.b_super[s + 1]; ++b) {
            const int64_t off = f.start[b - 1] - c0; // scalar column offset inside the panel
            f.b_col[size_t(b - 1)] = fixed ? (pos - 1) / (f.bs * f.bs) + off / f.bs * (nr / f.bs) + 1
                                           : pos + off * nr;
            f.b_ucol[size_t(b - 1)] = fixed ? (upos - 1) / (f.bs * f.bs) + off / f.bs * (m / f.bs) + 1
                                            : upos + off * m;
        }
        for (int64_t j = 0; j < nc; ++j) {
            f.col_ptr.push_back(pos + j * nr);
            f.u_col_ptr.push_back(upos + j * m);
        }
        for (int64_t r : rows)
            f.row_index.push_back(r);
        for (int64_t j = 0; j < nc; ++j)
            for (int64_t i = 0; i < nr; ++i)
                f.l.push_back(i == j ? make_value<T>(3 + u(rng), k == kind::lu || k == kind::lu_t ? u(rng) : 0)
                                     : value(i < nc ? 0.6 : 0.4));
        if (lu)
            for (int64_t j = 0; j < nc * m; ++j)
                f.u.push_back(value(0.4));
        pos += nc * nr;
        upos += nc * m;
        f.super_ptr.push_back(c1);
        f.row_ptr.push_back(f.row_ptr.back() + nr);
        // Pivots relative to the block.
        for (int64_t j = 0; j < nc;) {
            if (k == kind::bk && j + 1 < nc && std::bernoulli_distribution(0.4)(rng)) {
                const int64_t p = std::uniform_int_distribution<int64_t>(j + 2, nc)(rng);
                f.row_pivots.push_back(-p);
                f.row_pivots.push_back(-p);
                f.l[size_t(pos - 1 - nc * nr + (j + 1) + j * nr)] = make_value<T>(0.7, 0.2); // e of the 2×2 pivot
                j += 2;
                continue;
            }
            const int64_t p = j + 1 == nc ? nc : std::uniform_int_distribution<int64_t>(j + 1, nc)(rng);
            f.row_pivots.push_back(p);
            f.col_pivots.push_back(std::uniform_int_distribution<int64_t>(j + 1, nc)(rng));
            j += 1;
        }
    }
    f.col_ptr.push_back(pos);
    f.u_col_ptr.push_back(upos);
    f.b_col[size_t(f.nb)] = fixed ? (pos - 1) / (f.bs * f.bs) + 1 : pos;
    f.b_ucol[size_t(f.nb)] = fixed ? (upos - 1) / (f.bs * f.bs) + 1 : upos;
    if (k == kind::bk)
        f.col_pivots.clear();
    if (k == kind::di)
        f.col_pivots = f.row_pivots;
    if (!lu) {
        f.u.clear();
        f.u_col_ptr.clear();
        f.b_ucol.clear();
    }
    if (k == kind::chol) {
        f.row_pivots.clear();
        f.col_pivots.clear();
    }
    return f;
}

// ---- The library's factors. ----

template <class T, class I> struct solver_api;
#define ONERHS_SOLVER_API(P, C, T, W, I)                                                                        \
    template <> struct solver_api<T, I> {                                                                     \
        static constexpr auto create = zel_pds_##P##_create;                                                  \
        static constexpr auto analyse = zel_pds_##P##_analyse_csr_values_##W;                                 \
        static constexpr auto factorise = zel_pds_##P##_factorise;                                            \
        static constexpr auto export_factor = zel_pds_export_factor_##W;                                      \
        using exported = zel_pds_factor_##W;                                                                  \
    };
ZEL_SPARSE_MEMBERS(ONERHS_SOLVER_API)
#undef ONERHS_SOLVER_API

// A test matrix by rows, dense (row-major), for types whose symmetry it has.
template <class T> struct dense_matrix {
    int64_t n;
    std::vector<T> a;
    T at(int64_t i, int64_t j) const { return a[size_t(i * n + j)]; }
};

// Banded plus scattered entries, symmetric (Hermitian) as the type needs; diagonally dominant
// for the definite types, a diagonal of mixed signs and moderate size for the others.
template <class T> dense_matrix<T> test_matrix(int type, int64_t n, uint64_t seed)
{
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> u(0, 1);
    const bool herm = type == 4 || type == -4, sym = herm || type == 2 || type == -2 || type == 6;
    const bool symmetric_pattern = sym || type == 1 || type == 3;
    dense_matrix<T> d{n, std::vector<T>(size_t(n * n), T(0))};
    for (int64_t i = 0; i < n; ++i)
        for (int64_t j = 0; j < i; ++j)
            if (std::abs(i - j) <= 3 || u(rng) < 0.08) {
                d.a[size_t(i * n + j)] = random_value<T>(rng);
                if (sym)
                    d.a[size_t(j * n + i)] = zel::conj_if(d.a[size_t(i * n + j)], herm);
                else if (symmetric_pattern || u(rng) < 0.7)
                    d.a[size_t(j * n + i)] = random_value<T>(rng);
            }
    const bool definite = type == 2 || type == 4;
    for (int64_t i = 0; i < n; ++i) {
        double sum = 0;
        for (int64_t j = 0; j < n; ++j)
            sum += std::abs(d.a[size_t(i * n + j)]);
        const double size = definite ? sum + 1 : (0.5 + u(rng)) * sum * (u(rng) < 0.5 ? -1 : 1);
        d.a[size_t(i * n + i)] = herm || !zel::is_complex_v<T> ? T(size) : make_value<T>(size, size / 4);
    }
    return d;
}

// The four families of each value kind as typed-test parameters, named as the exports are.
template <class T_, class I_> struct fam {
    using T = T_;
    using I = I_;
    using F = family<T, I>;
    using C = typename F::c_type;
};
using families = ::testing::Types<fam<double, int64_t>, fam<float, int64_t>, fam<double, int32_t>,
                                  fam<float, int32_t>, fam<std::complex<double>, int64_t>,
                                  fam<std::complex<float>, int64_t>, fam<std::complex<double>, int32_t>,
                                  fam<std::complex<float>, int32_t>>;
struct family_names {
    template <class P> static std::string GetName(int)
    {
        return std::string(P::F::name) + (zel::is_complex_v<typename P::T> ? "cmplx" : "real");
    }
};

template <class T> std::vector<T> random_rhs(int64_t n, uint64_t seed)
{
    std::mt19937_64 rng(seed);
    std::vector<T> b(static_cast<size_t>(n));
    for (auto &v : b)
        v = random_value<T>(rng);
    return b;
}

template <class T> double tolerance(int64_t n) { return 64.0 * double(n) * eps<T>; }

// A dense matrix's nonzeros and its whole diagonal as 0-based CSR at width I.
template <class T, class I> struct csr_of {
    std::vector<I> ptr{0}, idx;
    std::vector<T> val;
};
template <class T, class I> csr_of<T, I> to_csr(const dense_matrix<T> &a)
{
    csr_of<T, I> c;
    for (int64_t i = 0; i < a.n; ++i) {
        for (int64_t j = 0; j < a.n; ++j)
            if (a.at(i, j) != T(0) || i == j) {
                c.idx.push_back(I(j));
                c.val.push_back(a.at(i, j));
            }
        c.ptr.push_back(I(c.idx.size()));
    }
    return c;
}

// Analyse (matching and scaling off) and factorise `a` as `type`; the exported factor in
// scalar form, and perm. Returns false (with a test failure) when the library refuses.
template <class T, class I>
bool library_factor(const dense_matrix<T> &a, int type, int pivoting, factor<T> &out, std::vector<int64_t> &perm)
{
    using S = solver_api<T, I>;
    const csr_of<T, I> c = to_csr<T, I>(a);
    zel_pds_solver *s = nullptr;
    zel_pds_options o;
    zel_pds_default_options(&o);
    o.matching = ZEL_PDS_OFF;
    o.scaling = ZEL_PDS_OFF;
    o.pivoting = pivoting;
    using C = typename family<T, I>::c_type;
    const C *cv = reinterpret_cast<const C *>(c.val.data());
    bool good = S::create(&s, type) == ok && zel_pds_set_options(s, &o) == ok &&
                S::analyse(s, I(a.n), c.ptr.data(), c.idx.data(), cv, 0, ZEL_PDS_STORAGE_FULL) == ok &&
                S::factorise(s, cv) == ok;
    zel_pds_statistics st{};
    typename S::exported e{};
    good = good && zel_pds_get_statistics(s, &st) == ok && st.replaced_pivots == 0 && S::export_factor(s, &e) == ok;
    if (good) {
        const int64_t n = e.n, ns = e.nsuper;
        auto copy = [](const I *p, int64_t count) {
            return p == nullptr ? std::vector<int64_t>() : std::vector<int64_t>(p, p + count);
        };
        out = factor<T>{};
        out.n = n;
        out.nsuper = ns;
        out.super_ptr = copy(e.super_ptr, ns + 1);
        out.col_ptr = copy(e.col_ptr, n + 1);
        out.row_ptr = copy(e.row_ptr, ns + 1);
        out.row_index = copy(e.row_index, out.row_ptr[ns] - 1);
        const T *l = static_cast<const T *>(e.l_values);
        out.l.assign(l, l + (out.col_ptr[n] - 1));
        if (e.u_values != nullptr) {
            out.u_col_ptr = copy(e.u_col_ptr, n + 1);
            const T *uv = static_cast<const T *>(e.u_values);
            out.u.assign(uv, uv + (out.u_col_ptr[n] - 1));
        }
        out.row_pivots = copy(e.bk_pivots != nullptr ? e.bk_pivots : e.row_pivots, n);
        out.col_pivots = copy(e.col_pivots, n);
        perm = copy(e.perm, n);
    }
    zel_pds_destroy(s);
    EXPECT_TRUE(good) << "type " << type << " pivoting " << pivoting << ": the library did not factor cleanly";
    return good;
}

} // namespace onerhs_test
