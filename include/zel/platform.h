/* Zelmath: export macro, C linkage helpers and the complex value types. */
#ifndef ZEL_PLATFORM_H
#define ZEL_PLATFORM_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define ZEL_API __attribute__((visibility("default")))
#else
#define ZEL_API
#endif

#ifdef __cplusplus
#define ZEL_BEGIN_DECLS extern "C" {
#define ZEL_END_DECLS }
#else
#define ZEL_BEGIN_DECLS
#define ZEL_END_DECLS
#endif

/* Complex values cross the ABI as two reals, real part first. */
typedef struct { float re, im; } zel_complex8;
typedef struct { double re, im; } zel_complex16;

#endif
