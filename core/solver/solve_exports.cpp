// Exported solve-phase routines of the core: the sweep kernels (one-line shells over
// solve_sweeps.hpp, from the member lists), the residual and its measures, the phase dispatch
// and the partition count.
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

} // namespace zel::solver

namespace zs = zel::solver;
using zs::sweep_direction;

#define ZEL_PDS_SWEEP_SHELLS(P, C, T, W, I, K)                                                                \
    ZEL_API void zel_pds_##W##P##pds_sym_pos_fwd_ker_seq_nrhs_##K(const zel_pds_frame *handle, int64_t nrhs,  \
                                                                 C *work, int64_t ldw, int64_t *error)        \
    { zs::sweep_entry<sweep_direction::forward, T, I>(handle, nrhs, zel::as_cpp(work), ldw, error); }          \
    ZEL_API void zel_pds_##W##P##pds_sym_pos_fwd_ker_par_nrhs_##K(const zel_pds_frame *handle, int64_t nrhs,  \
                                                                 C *work, int64_t ldw, int64_t *error)        \
    { zs::sweep_entry<sweep_direction::forward, T, I>(handle, nrhs, zel::as_cpp(work), ldw, error); }          \
    ZEL_API void zel_pds_##W##P##pds_sym_pos_bwd_ker_seq_nrhs_##K(const zel_pds_frame *handle, int64_t nrhs,  \
                                                                 C *work, int64_t ldw, int64_t *error)        \
    { zs::sweep_entry<sweep_direction::backward, T, I>(handle, nrhs, zel::as_cpp(work), ldw, error); }         \
    ZEL_API void zel_pds_##W##P##pds_sym_pos_bwd_ker_par_nrhs_##K(const zel_pds_frame *handle, int64_t nrhs,  \
                                                                 C *work, int64_t ldw, int64_t *error)        \
    { zs::sweep_entry<sweep_direction::backward, T, I>(handle, nrhs, zel::as_cpp(work), ldw, error); }
#define ZEL_PDS_REAL_SWEEP_SHELLS(P, C, T, W, I) ZEL_PDS_SWEEP_SHELLS(P, C, T, W, I, real)
#define ZEL_PDS_CMPLX_SWEEP_SHELLS(P, C, T, W, I) ZEL_PDS_SWEEP_SHELLS(P, C, T, W, I, cmplx)

extern "C" {

ZEL_PDS_REAL_MEMBERS(ZEL_PDS_REAL_SWEEP_SHELLS)
ZEL_PDS_CMPLX_MEMBERS(ZEL_PDS_CMPLX_SWEEP_SHELLS)

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

// The solve phase runs the layer's driver for the frame's value kind, silently: the caller
// (refinement) reports for itself.
ZEL_API void zel_pds_kernel_dispatch(zel_pds_frame *handle, int64_t phase, const void *b, void *x, int64_t *error)
{
    if (error == nullptr)
        return;
    if (handle == nullptr)
        *error = 1;
    else if (phase != ZEL_PDS_PHASE_SOLVE)
        *error = 2;
    else if (zel::pds::complex_type(handle->matrix_type))
        zel_pds_pds_slv_nrhs_seq_cmplx(handle, b, x, 0, error);
    else
        zel_pds_pds_slv_nrhs_seq_real(handle, b, x, 0, error);
}

} // extern "C"
