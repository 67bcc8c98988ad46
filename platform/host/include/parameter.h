// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// System parameters on the host, private to the process. The first use reads the file that OSTRA_HOST_PARAMETER_FILE
/// names, with one name=value per line, then OSTRA_HOST_PARAMETERS, name=value entries separated by ';', which take
/// precedence. Whitespace around an entry is ignored; an entry that starts with '#' is a comment. Entries that
/// SetParameter would reject, files that cannot be read, directories and FIFOs are reported on standard error and
/// skipped. All functions are thread-safe. A C compiler accepts this header.

#ifndef HOST_PARAMETER_H
#define HOST_PARAMETER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Copies the value of the parameter `key`, or `def` if it is unset, to `value`, a buffer of `len` bytes, as a
/// null-terminated string. A parameter with an empty value is set.
///
/// Returns the length of the string, or one of these errors without changing the buffer:
///   - -9: the key or the buffer is null, or the buffer is too small
///   - -1: the name is invalid, or the parameter is unset and `def` is null
int GetParameter(const char *key, const char *def, char *value, uint32_t len);

/// Sets a parameter of this process.
///
/// Returns 0, or -9 without a change if an argument is null, the name is empty, longer than 96 bytes or contains
/// anything but letters, digits, '_' and '.', or the value is longer than 96 bytes.
int SetParameter(const char *key, const char *value);

#ifdef __cplusplus
}
#endif

#endif  // HOST_PARAMETER_H
