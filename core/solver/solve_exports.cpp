// Exported solve-phase routines of the core: the sweep kernels and the Bunch–Kaufman block
// routines (one-line shells over solve_sweeps.hpp and bk_blocks.hpp, from the member lists),
// the residual and its measures, the solve phase with its dispatch, and the partition count.
#include "bk_blocks.hpp"
#include "solve_phase.hpp"
#include "solve_residual.hpp"
#include "solve_sweeps.hpp"
#include "zel/pds_solve.h"
#include "zel_internal/isa.hpp"
#include "zel_internal/members.hpp"

namespace zel::solver {
namespace {

// The sweeps for this processor; ZEL_SOLVER_ISA ("baseline", "avx2") can only lower the choice.
const sweep_set *choose_sweeps()
{
    switch (choose_isa("ZEL_SOLVER_ISA")) {
    case isa_level::avx512: return &sweeps_avx512;
    case isa_level::avx2: return &sweeps_avx2;
    default: return &sweeps_base;
    }
}

template <bool Complex>
void residual_shell(const zel_pds_frame *frame, const void *b, const void *x, void *r, int64_t *error)
{
    if (error == nullptr)
        return;
    if ((*error = frame_check(frame, Complex, b, x, r)) != 0)
        return;
    pds::with_frame_types<Complex>(*frame,
                                   [&]<class T, class I>() { *error = residual_entry<T, I>(*frame, b, x, r); });
}

template <bool Complex>
void measure_shell(const zel_pds_frame *frame, const void *b, const void *x, const void *r, double *backward_error,
                   double *residual_norm, int64_t *error)
{
    if (error == nullptr)
        return;
    if ((*error = frame_check(frame, Complex, b, x, r)) != 0)
        return;
    residual_measures m;
    pds::with_frame_types<Complex>(*frame,
                                   [&]<class T, class I>() { *error = measure_entry<T, I>(*frame, b, x, r, m); });
    if (*error != 0)
        return;
    if (backward_error)
        *backward_error = m.backward_error;
    if (residual_norm)
        *residual_norm = m.residual_norm;
}

} // namespace

// Starts on the baseline set (constant-initialised) so nothing can see a null table.
const sweep_set *sweeps_active = &sweeps_base;
[[maybe_unused]] const bool sweeps_chosen = (sweeps_active = choose_sweeps(), true);

void run_driver(zel_pds_frame &frame, const void *b, void *x, int64_t message_level, int64_t *error)
{
    if (pds::complex_type(frame.matrix_type))
        zel_pds_pds_slv_nrhs_seq_cmplx(&frame, b, x, message_level, error);
    else
        zel_pds_pds_slv_nrhs_seq_real(&frame, b, x, message_level, error);
}

// A frame without matching and scaling goes to the driver as it is; so does one the driver
// refuses or has nothing to do for, which it reports itself.
int64_t solve_phase(zel_pds_frame &frame, const void *b, void *x, int64_t message_level)
{
    int64_t error = 0;
    const bool wrapped = frame.matching != nullptr || frame.scaling != nullptr;
    const bool shaped = frame.nrhs <= 1 || (frame.ldb >= frame.n && frame.ldx >= frame.n);
    if (!wrapped || frame.n <= 0 || frame.nrhs <= 0 || !shaped) {
        run_driver(frame, b, x, message_level, &error);
        return error;
    }
    if (b == nullptr || x == nullptr)
        return 1;
    auto body = [&]<class T, class I>() {
        error = matched_solve<T, I>(frame, static_cast<const T *>(b), static_cast<T *>(x), message_level);
    };
    if (pds::complex_type(frame.matrix_type))
        pds::with_frame_types<true>(frame, body);
    else
        pds::with_frame_types<false>(frame, body);
    return error;
}

} // namespace zel::solver

namespace zs = zel::solver;
using zs::sweep_kind;

// The two shells of one kernel stem: _seq_ and _par_ (the same sweep on the calling thread).
#define ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, STEM, KIND)                                                      \
    ZEL_API void zel_pds_##W##P##pds_##STEM##_seq_nrhs_##K(const zel_pds_frame *handle, int64_t nrhs, C *work, \
                                                          int64_t ldw, int64_t *error)                       \
    { zs::sweep_entry<sweep_kind::KIND, T, I>(handle, nrhs, zel::as_cpp(work), ldw, error); }                 \
    ZEL_API void zel_pds_##W##P##pds_##STEM##_par_nrhs_##K(const zel_pds_frame *handle, int64_t nrhs, C *work, \
                                                          int64_t ldw, int64_t *error)                       \
    { zs::sweep_entry<sweep_kind::KIND, T, I>(handle, nrhs, zel::as_cpp(work), ldw, error); }
#define ZEL_PDS_SWEEP_SHELLS(P, C, T, W, I, K)                                                                \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, sym_pos_fwd_ker, cholesky_forward)                                 \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, sym_pos_bwd_ker, cholesky_backward)                                \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, unsym_fwd_ker, lu_forward)                                         \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, unsym_bwd_ker, lu_backward)                                        \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, unsym_fwd_ker_t, lu_forward_t)                                     \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, unsym_bwd_ker_t, lu_backward_t)                                    \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, sym_indef_diag_fwd_ker, diag_forward)                              \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, sym_indef_diag_bwd_ker, diag_backward)                             \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, sym_indef_bk_fwd_ker, bk_forward)                                  \
    ZEL_PDS_SWEEP_SHELL(P, C, T, W, I, K, sym_indef_bk_bwd_ker, bk_backward)
#define ZEL_PDS_REAL_SWEEP_SHELLS(P, C, T, W, I) ZEL_PDS_SWEEP_SHELLS(P, C, T, W, I, real)
#define ZEL_PDS_CMPLX_SWEEP_SHELLS(P, C, T, W, I) ZEL_PDS_SWEEP_SHELLS(P, C, T, W, I, cmplx)

// The Bunch–Kaufman block routines of one name stem (sytrs: Lᵀ; hetrs: Lᴴ, D Hermitian).
#define ZEL_PDS_BK_SHELL(P, C, T, STEM, STEP, SYMMETRY)                                                         \
    ZEL_API void zel_pds_##P##STEM##_varisol(const char *uplo, const int64_t *n, const int64_t *nrhs,           \
                                             const C *a, const int64_t *lda, const int64_t *ipiv, C *b,         \
                                             const int64_t *ldb, int64_t *info)                                 \
    { zs::bk_entry<zs::bk_step::STEP, zs::bk_symmetry::SYMMETRY>(uplo, n, nrhs, zel::as_cpp(a), lda, ipiv,     \
                                                                 zel::as_cpp(b), ldb, info); }
#define ZEL_PDS_BK_SHELLS(P, C, T, TRS, SYMMETRY)                                                               \
    ZEL_PDS_BK_SHELL(P, C, T, TRS##_bklfw_noscal, forward, SYMMETRY)                                           \
    ZEL_PDS_BK_SHELL(P, C, T, TRS##_bkl_scal, diagonal, SYMMETRY)                                              \
    ZEL_PDS_BK_SHELL(P, C, T, TRS##_bklbw, backward, SYMMETRY)
#define ZEL_PDS_SYTRS_SHELLS(P, C, T) ZEL_PDS_BK_SHELLS(P, C, T, sytrs, symmetric)
#define ZEL_PDS_HETRS_SHELLS(P, C, T) ZEL_PDS_BK_SHELLS(P, C, T, hetrs, hermitian)

extern "C" {

ZEL_PDS_REAL_MEMBERS(ZEL_PDS_REAL_SWEEP_SHELLS)
ZEL_PDS_CMPLX_MEMBERS(ZEL_PDS_CMPLX_SWEEP_SHELLS)
ZEL_DENSE_MEMBERS(ZEL_PDS_SYTRS_SHELLS)
ZEL_DENSE_COMPLEX_MEMBERS(ZEL_PDS_HETRS_SHELLS)

ZEL_API void zel_pds_pds_compute_residual_iter_ref_real(const zel_pds_frame *handle, const void *b, const void *x,
                                                        void *r, int64_t *error)
{ zs::residual_shell<false>(handle, b, x, r, error); }
ZEL_API void zel_pds_pds_compute_residual_iter_ref_cmplx(const zel_pds_frame *handle, const void *b, const void *x,
                                                         void *r, int64_t *error)
{ zs::residual_shell<true>(handle, b, x, r, error); }
ZEL_API void zel_pds_pds_compute_scaled_norm_real(const zel_pds_frame *handle, const void *b, const void *x,
                                                  const void *r, double *backward_error, double *residual_norm,
                                                  int64_t *error)
{ zs::measure_shell<false>(handle, b, x, r, backward_error, residual_norm, error); }
ZEL_API void zel_pds_pds_compute_scaled_norm_cmplx(const zel_pds_frame *handle, const void *b, const void *x,
                                                   const void *r, double *backward_error, double *residual_norm,
                                                   int64_t *error)
{ zs::measure_shell<true>(handle, b, x, r, backward_error, residual_norm, error); }

ZEL_API int64_t zel_pds_pds_get_num_threads(const zel_pds_frame *handle)
{
    return handle != nullptr && handle->partitions > 1 ? handle->partitions : 1;
}

// The solve phase, silently: the caller (refinement) reports for itself.
ZEL_API void zel_pds_kernel_dispatch(zel_pds_frame *handle, int64_t phase, const void *b, void *x, int64_t *error)
{
    if (error == nullptr)
        return;
    if (handle == nullptr)
        *error = 1;
    else if (phase != ZEL_PDS_PHASE_SOLVE)
        *error = 2;
    else
        *error = zs::solve_phase(*handle, b, x, 0);
}

} // extern "C"
