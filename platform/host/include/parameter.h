// SPDX-License-Identifier: Apache-2.0
//
// System parameters on the host: kept for the process. At their first use they are filled from the file that
// OSTRA_HOST_PARAMETER_FILE names, one name=value a line ('#' begins a comment line), then from OSTRA_HOST_PARAMETERS,
// name=value entries separated by ';', which win. Blanks around an entry do not count; an entry that SetParameter would
// refuse is reported on standard error and skipped, and so is a file that cannot be read, a directory or a FIFO. The
// functions may be called from any thread at once. A C compiler accepts this header.

#ifndef HOST_PARAMETER_H
#define HOST_PARAMETER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Puts the value of the parameter `key`, or `def` when it is unset, into `value`, which holds `len` bytes, with a zero
// byte behind. A parameter that is set to an empty text is set. Returns the length of the text; -9 for a null key or
// buffer, or a buffer too small for the text and its zero byte; -1 for a bad name, or an unset parameter and a null
// `def`. The buffer stays unchanged on failure.
int GetParameter(const char *key, const char *def, char *value, uint32_t len);

// Sets a parameter of this process. Returns 0; -9, with nothing set, for a null argument, a name that is empty, longer
// than 96 bytes or not of letters, digits, '_' and '.', or a value longer than 96 bytes.
int SetParameter(const char *key, const char *value);

#ifdef __cplusplus
}
#endif

#endif  // HOST_PARAMETER_H
