// Names of the sparse status values, for messages.
#include "zel/sparse_types.h"

extern "C" ZEL_API const char *zel_sparse_status_name(int status)
{
    switch (status) {
    case ZEL_SPARSE_STATUS_SUCCESS: return "ZEL_SPARSE_STATUS_SUCCESS";
    case ZEL_SPARSE_STATUS_NOT_INITIALIZED: return "ZEL_SPARSE_STATUS_NOT_INITIALIZED";
    case ZEL_SPARSE_STATUS_ALLOC_FAILED: return "ZEL_SPARSE_STATUS_ALLOC_FAILED";
    case ZEL_SPARSE_STATUS_INVALID_VALUE: return "ZEL_SPARSE_STATUS_INVALID_VALUE";
    case ZEL_SPARSE_STATUS_INTERNAL_ERROR: return "ZEL_SPARSE_STATUS_INTERNAL_ERROR";
    case ZEL_SPARSE_STATUS_NOT_SUPPORTED: return "ZEL_SPARSE_STATUS_NOT_SUPPORTED";
    default: return "unknown";
    }
}
