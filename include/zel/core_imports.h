/* Everything the sequential layer imports from the core object, by name. */
#ifndef ZEL_CORE_IMPORTS_H
#define ZEL_CORE_IMPORTS_H

#include "zel/runtime.h"
#include "zel/dense_kernels.h"
#include "zel/pds_solve.h"
#include "zel/pds_onerhs.h"

#endif
