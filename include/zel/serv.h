/* Zelmath service layer: thread control (always one thread here), processor topology,
 * replaceable callbacks, error reporting and verbose output.
 *
 * Members: every entry exists once (no precision or index-width forms).
 * Conventions: the thread setters store nothing and every query answers for one thread. The
 * environment and the processor topology are read once per process, on the first query that needs
 * them. Each callback (error handler, progress, pivot) has the hook the library calls, the default
 * it starts with, and two setters: the plain one installs a replacement and returns the previous
 * handler (the default's address when none was installed), the _interface one installs only into
 * an empty slot; null restores the default. Channel 0 is standard output, 1 standard error.
 * Nothing here hands back memory for the caller to free.
 * Defined by libzel_sequential.so.2 (the core calls zel_serv_xerbla and the thread queries by
 * name); see docs/serv.md. */
#ifndef ZEL_SERV_H
#define ZEL_SERV_H

#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* Thread control. The sequential layer answers every query for one thread. */
ZEL_API void zel_serv_set_num_threads(int count);
ZEL_API int zel_serv_domain_set_num_threads(int count, int domain);
ZEL_API int zel_serv_domain_get_max_threads(int domain);
ZEL_API void zel_serv_set_dynamic(int flag);
ZEL_API int zel_serv_get_dynamic(void);
ZEL_API void zel_serv_mpi_safe(void);
ZEL_API int zel_serv_omp_in_parallel(void);
ZEL_API void zel_serv_set_num_stripes(int count);
ZEL_API int zel_serv_get_num_stripes(void);
ZEL_API int zel_serv_set_num_threads_local(int count);
ZEL_API int zel_serv_get_max_threads(void);
/* 1: the sequential threading layer. */
ZEL_API int zel_serv_get_thread_layer(void);
/* MPI processes per node from the environment, or -1 when no source gives one. */
ZEL_API int zel_serv_mpi_get_ppn(void);

/* Processor topology, probed once (with the environment scan) on the first query. */
ZEL_API int zel_serv_get_ncpus(void);
ZEL_API int zel_serv_get_ncorespercpu(void);
ZEL_API int zel_serv_get_ht(void);
ZEL_API int zel_serv_get_nlogicalcores(void);

/* Thread requests found in the environment by the one-time scan (-1: not set). */
typedef struct {
    int32_t num_threads;
    int32_t num_stripes;
    int32_t domain_blas;
    int32_t domain_fft;
    int32_t domain_vml;
    int32_t domain_varisol;
    int32_t domain_lapack;
    int32_t dynamic;
} zel_thread_settings;
/* Copies the recorded settings (running the scan first if needed). */
ZEL_API void zel_serv_get_thread_settings(zel_thread_settings *settings);

/* Replaceable callbacks. */
typedef void (*zel_xerbla_handler)(const char *name, const int64_t *info, int32_t name_len);
/* Progress: the calling computation's thread number, its step and the name of its stage. */
typedef int (*zel_progress_handler)(const int *thread, const int *step, const char *stage, int32_t stage_len);
typedef int (*zel_pivot_handler)(const double *aii, double *bii, const double *eps);

ZEL_API void zel_serv_xerbla(const char *name, const int64_t *info, int32_t name_len);
ZEL_API void zel_serv_default_xerbla(const char *name, const int64_t *info, int32_t name_len);
ZEL_API zel_xerbla_handler zel_serv_set_xerbla(zel_xerbla_handler handler);
ZEL_API void zel_serv_set_xerbla_interface(zel_xerbla_handler handler);

/* The progress hook passes its arguments unchanged to the installed handler. */
ZEL_API int zel_serv_progress(const int *thread, const int *step, const char *stage, int32_t stage_len);
ZEL_API int zel_serv_default_progress(const int *thread, const int *step, const char *stage, int32_t stage_len);
ZEL_API zel_progress_handler zel_serv_set_progress(zel_progress_handler handler);
ZEL_API void zel_serv_set_progress_interface(zel_progress_handler handler);

ZEL_API int zel_serv_varisol_pivot(const double *aii, double *bii, const double *eps);
ZEL_API int zel_serv_default_varisol_pivot(const double *aii, double *bii, const double *eps);
ZEL_API zel_pivot_handler zel_serv_set_varisol_pivot(zel_pivot_handler handler);
ZEL_API void zel_serv_set_varisol_pivot_interface(zel_pivot_handler handler);

/* Clean-up registry: at most 8 pairs; a ninth registration ends the process with code 3. */
ZEL_API int zel_serv_thr_register_cleanup(void (*function)(void *), void *argument);
ZEL_API void zel_serv_thr_cleanup(void);

/* 0 for a non-null pointer; otherwise reports code 1103 for `name` and returns 1. */
ZEL_API int zel_serv_check_ptr(const void *pointer, const char *name);
/* 1 for a null pointer, else 0; reports nothing. */
ZEL_API int zel_serv_check_ptr_and_warn(const void *pointer);

/* Verbose output: the one-time banner and one line per reported call. */
ZEL_API void zel_serv_print_verbose_header(int iface);
ZEL_API void zel_serv_print_verbose_info(int iface, const char *text, double seconds);

ZEL_END_DECLS

#endif
