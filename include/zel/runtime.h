/* Zelmath core runtime: the services every other entry point stands on.
 *
 * What it holds: the aligned, replaceable allocator; spin locks on caller-owned words; the
 * environment, bounded string and memory operations, the clock and process exit; the message
 * catalogue and the printing helpers; the version record and the settings read once from the
 * environment (ZEL_CBWR, ZEL_DISABLE_FAST_MM, ZEL_VERBOSE_OUTPUT_FILE).
 * Members: every entry exists once (no precision or index-width forms).
 * Conventions: channel 0 is standard output, 1 the warning channel (standard error). Errors come
 * back as the return value each entry describes; nothing here calls the error handler.
 * Ownership: memory from zel_serv_malloc goes back through zel_serv_free; the strings handed back
 * (message texts, version fields, the verbose file name) are the library's: never free them.
 * Defined by libzel_core.so.2; see docs/objects.md. */
#ifndef ZEL_RUNTIME_H
#define ZEL_RUNTIME_H

#include <stdio.h>
#include "zel/platform.h"

ZEL_BEGIN_DECLS

/* Aligned scratch allocation; alignment is a power of two (0 means 64). */
typedef void *(*zel_malloc_fn)(size_t size, int alignment);
typedef void (*zel_free_fn)(void *pointer);

ZEL_API void *zel_serv_malloc(size_t size, int alignment);
ZEL_API void zel_serv_free(void *pointer);
/* Replace the allocator pair; passing null for either restores both defaults.
 * The replacement free must accept pointers that the default allocator returned
 * (the default uses posix_memalign and free). */
ZEL_API void zel_serv_set_memory_functions(zel_malloc_fn allocate, zel_free_fn release);

/* Spin lock on a caller-owned word that starts at 0. */
ZEL_API void zel_serv_lock(int32_t *lock_word);
ZEL_API void zel_serv_unlock(int32_t *lock_word);

/* Copies the value of environment variable `name` into buffer (capacity bytes,
 * always terminated); returns its full length, or 0 when unset, -1 on bad arguments. */
ZEL_API int zel_serv_getenv(const char *name, char *buffer, int capacity);

/* Bounded string and memory operations; 0 on success, a nonzero errno-style code otherwise. */
ZEL_API int zel_serv_strncpy_s(char *dest, size_t dest_capacity, const char *src, size_t count);
ZEL_API int zel_serv_memcpy_s(void *dest, size_t dest_capacity, const void *src, size_t count);
ZEL_API size_t zel_serv_strnlen_s(const char *text, size_t max_length);

/* 1 when the first characters of a and b agree without regard to case. */
ZEL_API int zel_serv_lsame(const char *a, const char *b);
/* Wall-clock seconds from an arbitrary origin. */
ZEL_API double zel_serv_dsecnd(void);
/* x raised to the power y in single precision, as libm's powf computes it. */
ZEL_API float zel_serv_libm_powf(float x, float y);
/* Flushes the standard streams and ends the process with `code`. */
ZEL_API void zel_serv_exit(int code);

/* Prints message `message_id` of the catalogue on `channel` (0 standard output,
 * 1 the warning channel, standard error). The arguments follow the message's
 * format: integers as long long, names as const char *. */
ZEL_API void zel_serv_print(int channel, int message_id, int argument_count, ...);
/* The catalogue's format text of a message, or null for an unknown number. */
ZEL_API const char *zel_serv_message_text(int message_id);

/* Version record. */
typedef struct {
    int32_t major_version;
    int32_t minor_version;
    int32_t update_version;
    int32_t patch_version;
    const char *product_status;
    const char *build;
    const char *processor;
    const char *platform;
} zel_version;
ZEL_API void zel_serv_get_version(zel_version *version);

/* Highest processor frequency the system reports, in GHz (0 when unknown). */
ZEL_API double zel_serv_get_max_cpu_frequency(void);

/* Reproducibility mode from ZEL_CBWR. selector 1: the mode code
 * (1 OFF, 2 AUTO, 3 COMPATIBLE, 4 SSE2, 6 SSSE3, 7 SSE4_1, 8 SSE4_2, 9 AVX,
 * 10 AVX2, 12 AVX512); selector -1: the code with bit 16 set in strict mode. */
ZEL_API int zel_serv_cbwr_get(int selector);
/* 0 when the fast memory manager is on; 1 when ZEL_DISABLE_FAST_MM disabled it. */
ZEL_API int zel_serv_get_fast_mm_status(void);
/* File named by ZEL_VERBOSE_OUTPUT_FILE, or "" for standard output. */
ZEL_API const char *zel_serv_verbose_output_file_mode(void);

/* File and console printing. Channel 0 is standard output, 1 the warning channel. */
ZEL_API FILE *zel_serv_fopen(const char *path, const char *mode);
ZEL_API int zel_serv_fclose(FILE *file);
ZEL_API int zel_serv_file_format_print(FILE *file, const char *format, ...);
ZEL_API int zel_serv_format_print(int channel, const char *format, ...);
ZEL_API int zel_serv_printf_s(const char *format, ...);

/* Bounded appends: write at `end`, never past *remaining bytes (terminator
 * included), return the new end and lower *remaining by what was written. */
ZEL_API char *zel_serv_sprintf_s(char *end, size_t *remaining, const char *format, ...);
ZEL_API char *zel_serv_sprintf_char_s(char *end, size_t *remaining, const char *format, const char *text);

ZEL_END_DECLS

#endif
