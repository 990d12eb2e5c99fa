/* Zelmath: umbrella header. Link with -lzel_core -lzel_sequential. */
#ifndef ZEL_H
#define ZEL_H

#include "zel/version.h"
#include "zel/platform.h"
#include "zel/runtime.h"
#include "zel/serv.h"
#include "zel/dense_kernels.h"
#include "zel/lapack.h"
#include "zel/blas.h"
#include "zel/sparse_types.h"
#include "zel/sparse_handle.h"
#include "zel/sparse_transpose.h"
#include "zel/sparse_syrk.h"
#include "zel/pds.h"
#include "zel/pds_solve.h"
#include "zel/pds_onerhs.h"

#endif
