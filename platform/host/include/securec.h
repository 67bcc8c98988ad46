// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Bounds-checked functions on the host, for memory and narrow strings. All are reentrant. A C compiler accepts this
/// header.
///
/// `destMax` is the size of the destination in bytes. A function that returns errno_t returns EOK, or the first of
/// these that applies:
///   - ERANGE: destMax is 0 or exceeds SECUREC_MEM_MAX_LEN; nothing is written
///   - EINVAL: the destination is null; nothing is written
///   - EINVAL_AND_RESET: the source is null
///   - ERANGE_AND_RESET: the result does not fit
///   - EOVERLAP_AND_RESET: source and destination overlap
///
/// The last three clear the destination: all bytes of memory, the first character of a string.

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

/// Sets `count` bytes to `c`. If count exceeds destMax, sets destMax bytes to `c` and returns ERANGE_AND_RESET. Accepts
/// a destMax of 0 if count is 0.
errno_t memset_s(void *dest, size_t destMax, int c, size_t count);

/// Copy `count` bytes. memmove_s accepts overlapping blocks; memcpy_s rejects them, except for copying a block onto
/// itself.
/// @{
errno_t memcpy_s(void *dest, size_t destMax, const void *src, size_t count);
errno_t memmove_s(void *dest, size_t destMax, const void *src, size_t count);
/// @}

/// Copy a string, or at most its first `count` characters, and add a null terminator. A string may be copied onto
/// itself. Return ERANGE_AND_RESET if count exceeds SECUREC_STRING_MAX_LEN.
/// @{
errno_t strcpy_s(char *strDest, size_t destMax, const char *strSrc);
errno_t strncpy_s(char *strDest, size_t destMax, const char *strSrc, size_t count);
/// @}

/// Append a string, or at most its first `count` characters. Return EINVAL_AND_RESET if the destination has no null
/// terminator, and ERANGE_AND_RESET if a string is appended to itself. Overlap is checked first, and includes a source
/// that begins right after the result or ends right before the destination.
/// @{
errno_t strcat_s(char *strDest, size_t destMax, const char *strSrc);
errno_t strncat_s(char *strDest, size_t destMax, const char *strSrc, size_t count);
/// @}

/// Splits a string as strtok_r does. Returns null after the last token, or if the delimiters or the context are null.
char *strtok_s(char *strToken, const char *strDelimit, char **context);

/// Print into the destination. The conversions are d i u o x X c C s S p e E f F g G with the flags and length
/// modifiers of C; others are rejected. The precision of an integer is limited to 512.
///
/// Return the number of characters written, without the null terminator, or -1:
///   - with an empty destination, if the result does not fit, or the format is null or rejected
///   - with nothing written, if the destination is null or destMax is invalid
/// @{
int sprintf_s(char *strDest, size_t destMax, const char *format, ...) __attribute__((format(printf, 3, 4)));
int vsprintf_s(char *strDest, size_t destMax, const char *format, va_list argList)
    __attribute__((format(printf, 3, 0)));
/// @}

/// The same for at most `count` characters. For a longer result, return -1; the destination then holds the first
/// `count` characters of the result if count is less than destMax, and is empty otherwise. If count exceeds
/// SECUREC_STRING_MAX_LEN, the destination is empty.
/// @{
int snprintf_s(char *strDest, size_t destMax, size_t count, const char *format, ...)
    __attribute__((format(printf, 4, 5)));
int vsnprintf_s(char *strDest, size_t destMax, size_t count, const char *format, va_list argList)
    __attribute__((format(printf, 4, 0)));
/// @}

/// The same, but truncate what does not fit and return destMax - 1.
/// @{
int snprintf_truncated_s(char *strDest, size_t destMax, const char *format, ...) __attribute__((format(printf, 3, 4)));
int vsnprintf_truncated_s(char *strDest, size_t destMax, const char *format, va_list argList)
    __attribute__((format(printf, 3, 0)));
/// @}

#ifdef __cplusplus
}
#endif

#endif  // HOST_SECUREC_H
