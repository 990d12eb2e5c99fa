// Exported solve phase of the layer: the drivers and iterative refinement, one-line shells over
// solve_driver.hpp and refinement.hpp.
#include "refinement.hpp"
#include "solve_driver.hpp"
#include "zel/pds_solve.h"

namespace zp = zel::pds;

extern "C" {

ZEL_API void zel_pds_pds_slv_nrhs_seq_real(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                           int64_t *error)
{ zp::driver_entry<false, false>(handle, b, x, message_level, error); }
ZEL_API void zel_pds_pds_slv_nrhs_par_real(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                           int64_t *error)
{ zp::driver_entry<false, true>(handle, b, x, message_level, error); }
ZEL_API void zel_pds_pds_slv_nrhs_seq_cmplx(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                            int64_t *error)
{ zp::driver_entry<true, false>(handle, b, x, message_level, error); }
ZEL_API void zel_pds_pds_slv_nrhs_par_cmplx(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                            int64_t *error)
{ zp::driver_entry<true, true>(handle, b, x, message_level, error); }

ZEL_API void zel_pds_iter_ref_real(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                   int64_t *error)
{ zp::refinement_entry<false>(handle, b, x, message_level, error); }
ZEL_API void zel_pds_iter_ref_cmplx(zel_pds_frame *handle, const void *b, void *x, int64_t message_level,
                                    int64_t *error)
{ zp::refinement_entry<true>(handle, b, x, message_level, error); }

} // extern "C"
