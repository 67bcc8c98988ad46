// SPDX-License-Identifier: Apache-2.0
//
// Bounds-checked functions on the host, over the C library. All are reentrant. A C compiler accepts this header.

#ifndef HOST_SECUREC_H
#define HOST_SECUREC_H

#include <stdarg.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef int errno_t;

// Sets `count` bytes of `dest`, which holds destMax. Returns 0; EINVAL for a null pointer; ERANGE when count exceeds
// destMax, or destMax is 0 or above 0x7fffffff. Nothing is written on failure.
errno_t memset_s(void *dest, size_t destMax, int c, size_t count);

// Copies `count` bytes to `dest`, which holds destMax. Refuses what memset_s refuses, and overlap with EINVAL. Nothing
// is written on failure.
errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count);

// Print in the manner of printf. Return the characters written, without the terminating zero; -1 when the text does not
// fit, the format is invalid, a pointer is null, or destMax is 0 or above 0x7fffffff. A destination of valid
// size is then empty.
int sprintf_s(char *strDest, size_t destMax, const char *format, ...) __attribute__((format(printf, 3, 4)));
int vsprintf_s(char *strDest, size_t destMax, const char *format, va_list argList)
    __attribute__((format(printf, 3, 0)));

#ifdef __cplusplus
}
#endif

#endif  // HOST_SECUREC_H
