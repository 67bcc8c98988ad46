// SPDX-License-Identifier: Apache-2.0
//
// Bounds-checked functions on the host, for bytes and narrow texts: results and bytes written are those of a device.
// All are reentrant. A C compiler accepts this header.
//
// `destMax` is what the destination holds. One of 0 or above SECUREC_MEM_MAX_LEN gives ERANGE, a null destination
// EINVAL, in this order, with nothing written. Every other refusal clears the destination (all of its destMax bytes; of
// a text the first character) and says so: EINVAL_AND_RESET for a null source, ERANGE_AND_RESET for what does not fit,
// EOVERLAP_AND_RESET for source and destination that overlap.

#ifndef HOST_SECUREC_H
#define HOST_SECUREC_H

#include <errno.h>
#include <stdarg.h>
#include <stddef.h>

#include "securectype.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifndef errno_t
typedef int errno_t;
#endif

#ifndef EOK
#define EOK 0
#endif
#ifndef EINVAL_AND_RESET
#define EINVAL_AND_RESET 150
#endif
#ifndef ERANGE_AND_RESET
#define ERANGE_AND_RESET 162
#endif
#ifndef EOVERLAP_AND_RESET
#define EOVERLAP_AND_RESET 182
#endif

// Sets `count` bytes. For a count above destMax it sets all destMax bytes to `c`, and gives ERANGE_AND_RESET. Setting
// nothing is no failure where destMax is 0.
errno_t memset_s(void *dest, size_t destMax, int c, size_t count);

// Copy `count` bytes. memmove_s takes source and destination that overlap; to memcpy_s only a copy onto itself is none.
errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count);
errno_t memmove_s(void *dest, size_t destMax, const void *src, size_t count);

// Copy a text, or its first `count` characters at most, and end it with a zero byte. A copy onto itself is no overlap.
// A count above SECUREC_STRING_MAX_LEN gives ERANGE_AND_RESET.
errno_t strcpy_s(char *strDest, size_t destMax, const char *strSrc);
errno_t strncpy_s(char *strDest, size_t destMax, const char *strSrc, size_t count);

// Append a text, or its first `count` characters at most. A destination that holds no zero byte gives EINVAL_AND_RESET;
// a text appended to itself, whatever the room, ERANGE_AND_RESET.
errno_t strcat_s(char *strDest, size_t destMax, const char *strSrc);
errno_t strncat_s(char *strDest, size_t destMax, const char *strSrc, size_t count);

// Splits a text as strtok_r does. Returns null where nothing is left, or for null delimiters or a null context.
char *strtok_s(char *strToken, const char *strDelimit, char **context);

// Print. Conversions are d i u o x X c C s S p e E f F g G with the flags and sizes of C; others are refused. Return
// the characters written, without the zero byte; -1 with an empty destination when the text does not fit or the format
// is null or refused; -1 with nothing written for a null destination and a bad destMax. An integer's precision is cut
// to 512.
int sprintf_s(char *strDest, size_t destMax, const char *format, ...) __attribute__((format(printf, 3, 4)));
int vsprintf_s(char *strDest, size_t destMax, const char *format, va_list argList)
    __attribute__((format(printf, 3, 0)));

// The same for at most `count` characters: a longer text gives -1, and stays in the destination up to there if count is
// below destMax. A count above SECUREC_STRING_MAX_LEN gives -1 with an empty destination.
int snprintf_s(char *strDest, size_t destMax, size_t count, const char *format, ...)
    __attribute__((format(printf, 4, 5)));
int vsnprintf_s(char *strDest, size_t destMax, size_t count, const char *format, va_list argList)
    __attribute__((format(printf, 4, 0)));

// The same, cut where the destination ends: a text that is cut gives destMax - 1.
int snprintf_truncated_s(char *strDest, size_t destMax, const char *format, ...) __attribute__((format(printf, 3, 4)));
int vsnprintf_truncated_s(char *strDest, size_t destMax, const char *format, va_list argList)
    __attribute__((format(printf, 3, 0)));

// Read as sscanf does, but behind the target of s, c and [ the size of that target follows as a size_t; the compiler
// cannot check such formats. A text that does not fit ends the reading, is no result, and leaves an empty target.
// Conversions are d i u o x X p c s [ e E f F g G n; a number that is longer than its target keeps its low bits.
// Return the number of results; -1 when the text ends before the first, or a text is null.
int sscanf_s(const char *buffer, const char *format, ...);
int vsscanf_s(const char *buffer, const char *format, va_list argList);

#ifdef __cplusplus
}
#endif

#endif  // HOST_SECUREC_H
