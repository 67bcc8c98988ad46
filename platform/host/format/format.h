// SPDX-License-Identifier: Apache-2.0
//
// The platform's own printf-style formatting, used by HiLog and the bounds-checked functions. Unlike printf, it rejects
// the whole format string if it reaches an unsupported conversion (a, A, n, m, positional arguments, the apostrophe).

#ifndef HOST_FORMAT_FORMAT_H
#define HOST_FORMAT_FORMAT_H

#include <cstdarg>
#include <cstddef>

namespace ostra::host {

enum class FormatDialect {
    SECUREC,
    HILOG,  // privacy marks; pointers as 16 upper-case digits; strings padded with zeros; `z` as wide as an int
};

enum class FormatOutcome { COMPLETE, TRUNCATED, INVALID };

struct FormatResult {
    FormatOutcome outcome;
    size_t length;  // of the string in the destination
};

/// Formats into `dest`, a buffer of `size` bytes (at least 1), and null-terminates the result. Stops at the first
/// character that does not fit, so that an error in the rest of the format is not detected. Does not terminate the
/// string if the format is invalid. Does not allocate; the C library may, for thousands of digits of a float.
FormatResult FormatBounded(char *dest, size_t size, FormatDialect dialect, const char *format, va_list arguments);

}  // namespace ostra::host

#endif  // HOST_FORMAT_FORMAT_H
