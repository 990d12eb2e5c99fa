// Thread-control entry points: this layer is single-threaded, so every answer is one thread.
// The setters keep nothing; they exist so that code written for a threaded build links and runs.
#include "zel/serv.h"

extern "C" {

ZEL_API void zel_serv_set_num_threads(int) {}
ZEL_API int zel_serv_domain_set_num_threads(int, int) { return 1; }
ZEL_API int zel_serv_domain_get_max_threads(int) { return 1; }
ZEL_API void zel_serv_set_dynamic(int) {}
// Always 1, whatever ZEL_DYNAMIC says: the recorded value is only reported.
ZEL_API int zel_serv_get_dynamic(void) { return 1; }
ZEL_API void zel_serv_mpi_safe(void) {}
ZEL_API int zel_serv_omp_in_parallel(void) { return 0; }
ZEL_API void zel_serv_set_num_stripes(int) {}
ZEL_API int zel_serv_get_num_stripes(void) { return 1; }
ZEL_API int zel_serv_set_num_threads_local(int) { return 1; }
ZEL_API int zel_serv_get_max_threads(void) { return 1; }
// 1 identifies the sequential threading layer.
ZEL_API int zel_serv_get_thread_layer(void) { return 1; }

} // extern "C"
