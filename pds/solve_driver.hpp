// The solve-phase driver: the right-hand sides gathered through the permutation into a work
// block, the core's forward and backward sweeps on it (one column block per partition), and
// the scatter back with the output scaling.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>

#include "zel/core_imports.h"
#include "zel_internal/checked.hpp"
#include "zel_internal/members.hpp"
#include "zel_internal/scratch.hpp"
#include "zel_internal/solve_frame.hpp"
#include "zel_internal/value_traits.hpp"

namespace zel::pds {

inline constexpr int work_alignment = 128;

// A work block of this many bytes or more is mapped afresh by every solve; its first touch
// costs about half as much in transparent huge pages, which it asks for (a hint only: where the
// system declines, nothing changes).
inline constexpr size_t huge_work_bytes = size_t(32) << 20;

inline void advise_huge_pages(void *block, size_t bytes)
{
    constexpr uintptr_t huge_page = uintptr_t(1) << 21;
    const uintptr_t begin = (reinterpret_cast<uintptr_t>(block) + huge_page - 1) & ~(huge_page - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(block) + bytes) & ~(huge_page - 1);
    if (bytes >= huge_work_bytes && end > begin)
        madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
}

// The core's sweep kernels of each value and index type.
template <class T, class I> struct sweep_kernels;

#define ZEL_PDS_KERNEL_TABLE(P, C, T, W, I, K)                                                                 \
    template <> struct sweep_kernels<T, I> {                                                                   \
        using c_type = C;                                                                                      \
        static constexpr auto forward_seq = zel_pds_##W##P##pds_sym_pos_fwd_ker_seq_nrhs_##K;                  \
        static constexpr auto forward_par = zel_pds_##W##P##pds_sym_pos_fwd_ker_par_nrhs_##K;                  \
        static constexpr auto backward_seq = zel_pds_##W##P##pds_sym_pos_bwd_ker_seq_nrhs_##K;                 \
        static constexpr auto backward_par = zel_pds_##W##P##pds_sym_pos_bwd_ker_par_nrhs_##K;                 \
    };
#define ZEL_PDS_REAL_KERNEL_TABLE(P, C, T, W, I) ZEL_PDS_KERNEL_TABLE(P, C, T, W, I, real)
#define ZEL_PDS_CMPLX_KERNEL_TABLE(P, C, T, W, I) ZEL_PDS_KERNEL_TABLE(P, C, T, W, I, cmplx)
ZEL_PDS_REAL_MEMBERS(ZEL_PDS_REAL_KERNEL_TABLE)
ZEL_PDS_CMPLX_MEMBERS(ZEL_PDS_CMPLX_KERNEL_TABLE)
#undef ZEL_PDS_REAL_KERNEL_TABLE
#undef ZEL_PDS_CMPLX_KERNEL_TABLE
#undef ZEL_PDS_KERNEL_TABLE

// 0 when the driver of this value kind can solve with the frame, else 2. Only the positive
// definite types have kernels: 2 for real values, 4 for complex ones.
inline int64_t solvable(const zel_pds_frame &f, bool complex)
{
    const bool type_ok = complex ? f.matrix_type == 4 : f.matrix_type == 2;
    const bool shape_ok = f.n >= 0 && f.nsuper >= 0 && f.nrhs >= 0 && (f.nrhs <= 1 || (f.ldb >= f.n && f.ldx >= f.n));
    return type_ok && shape_ok ? 0 : 2;
}

// Aᵀ of a Hermitian matrix is conj(A): its solve is the conjugate of a solve with A of the
// conjugate right-hand side. Aᴴ is A itself, and Aᵀ of a real symmetric matrix too.
template <class T> bool conjugated_solve(const zel_pds_frame &f) { return is_complex_v<T> && f.transposed == 1; }

// The entry-wise scaling of the solution, or null: the second vector for an unsymmetric type
// solved transposed, the first in every other case.
template <class T> const real_t<T> *output_scaling(const zel_pds_frame &f)
{
    if (f.scaling == nullptr)
        return nullptr;
    const auto *s = static_cast<const real_t<T> *>(f.scaling);
    return (f.matrix_type == 11 || f.matrix_type == 13) && f.transposed != 0 ? s + f.n : s;
}

// work(i, c) = b(perm[i], c), eight rows at a time.
template <class T, class I> void gather(const zel_pds_frame &f, const T *b, T *work, bool conjugate)
{
    const I *perm = static_cast<const I *>(f.perm);
    const int64_t n = f.n;
    for (int64_t c = 0; c < f.nrhs; ++c) {
        const T *bc = b + c * f.ldb;
        T *wc = work + c * n;
        int64_t i = 0;
        for (; i + 8 <= n; i += 8) {
            wc[i] = conj_if(bc[perm[i]], conjugate);
            wc[i + 1] = conj_if(bc[perm[i + 1]], conjugate);
            wc[i + 2] = conj_if(bc[perm[i + 2]], conjugate);
            wc[i + 3] = conj_if(bc[perm[i + 3]], conjugate);
            wc[i + 4] = conj_if(bc[perm[i + 4]], conjugate);
            wc[i + 5] = conj_if(bc[perm[i + 5]], conjugate);
            wc[i + 6] = conj_if(bc[perm[i + 6]], conjugate);
            wc[i + 7] = conj_if(bc[perm[i + 7]], conjugate);
        }
        for (; i < n; ++i)
            wc[i] = conj_if(bc[perm[i]], conjugate);
    }
}

// x(perm[i], c) = work(i, c), times the scaling of that row of x when there is one.
template <class T, class I> void scatter(const zel_pds_frame &f, const T *work, T *x, bool conjugate)
{
    const I *perm = static_cast<const I *>(f.perm);
    const real_t<T> *s = output_scaling<T>(f);
    for (int64_t c = 0; c < f.nrhs; ++c) {
        const T *wc = work + c * f.n;
        T *xc = x + c * f.ldx;
        if (s == nullptr)
            for (int64_t i = 0; i < f.n; ++i)
                xc[perm[i]] = conj_if(wc[i], conjugate);
        else
            for (int64_t i = 0; i < f.n; ++i)
                xc[perm[i]] = conj_if(wc[i], conjugate) * s[perm[i]];
    }
}

// The sweeps, one block of columns per partition, one block after another.
template <class T, class I, bool Par> int64_t sweep_partitions(const zel_pds_frame &f, T *work)
{
    using K = sweep_kernels<T, I>;
    const int64_t parts = std::min(std::max<int64_t>(zel_pds_pds_get_num_threads(&f), 1), f.nrhs);
    for (int64_t p = 0, c0 = 0; p < parts; ++p) {
        const int64_t k = f.nrhs / parts + (p < f.nrhs % parts ? 1 : 0);
        auto *block = reinterpret_cast<typename K::c_type *>(work + c0 * f.n);
        int64_t error = 0;
        (Par ? K::forward_par : K::forward_seq)(&f, k, block, f.n, &error);
        if (error == 0)
            (Par ? K::backward_par : K::backward_seq)(&f, k, block, f.n, &error);
        if (error != 0)
            return error;
        c0 += k;
    }
    return 0;
}

// X = op(A)⁻¹·B for a solvable frame; x is written only once everything else succeeded.
template <class T, class I, bool Par> int64_t solve_nrhs(const zel_pds_frame &f, const T *b, T *x)
{
    if (f.n == 0 || f.nrhs == 0)
        return 0;
    if (b == nullptr || x == nullptr || f.perm == nullptr)
        return 1;
    const auto count = checked_mul(f.n, f.nrhs);
    scratch_array<T> work;
    if (count)
        work = scratch_array<T>(size_t(*count), work_alignment);
    if (!work)
        return 1;
    advise_huge_pages(work.get(), size_t(*count) * sizeof(T));
    const bool conjugate = conjugated_solve<T>(f);
    gather<T, I>(f, b, work.get(), conjugate);
    if (const int64_t error = sweep_partitions<T, I, Par>(f, work.get()); error != 0)
        return error;
    scatter<T, I>(f, work.get(), x, conjugate);
    return 0;
}

// The exported drivers. The clock is read, and the timing line printed after a solve that
// succeeded, only at message level 1.
template <bool Complex, bool Par>
void driver_entry(zel_pds_frame *frame, const void *b, void *x, int64_t message_level, int64_t *error)
{
    if (error == nullptr)
        return;
    const double start = message_level == 1 ? zel_serv_dsecnd() : 0.0;
    if (frame == nullptr) {
        *error = 1;
        return;
    }
    int64_t result = solvable(*frame, Complex);
    if (result == 0)
        with_frame_types<Complex>(*frame, [&]<class T, class I>() {
            result = solve_nrhs<T, I, Par>(*frame, static_cast<const T *>(b), static_cast<T *>(x));
        });
    if (message_level == 1 && result == 0) {
        frame->solve_seconds = zel_serv_dsecnd() - start;
        zel_serv_printf_s("\n Time spent in direct solver at solve step (solve) : %1.7f sec\n", frame->solve_seconds);
    }
    *error = result;
}

} // namespace zel::pds
