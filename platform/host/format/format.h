// SPDX-License-Identifier: Apache-2.0
//
// The platform's own formatting, which HiLog and the bounds-checked functions print with. Unlike printf of the C
// library, it rejects the whole format at a conversion that it does not know (a, A, n, m, positions, the apostrophe).

#ifndef HOST_FORMAT_FORMAT_H
#define HOST_FORMAT_FORMAT_H

#include <cstdarg>
#include <cstddef>

namespace ostra::host {

enum class FormatDialect {
    SECUREC,
    HILOG,  // privacy marks, pointers as 16 digits in upper case, strings padded with zeros, `z` as wide as an int
};

enum class FormatOutcome { COMPLETE, TRUNCATED, INVALID };

struct FormatResult {
    FormatOutcome outcome;
    size_t length;  // of the string in the destination
};

/// Prints a null-terminated string into `dest`, which holds `size` bytes, at least 1. Stops at the first character that
/// does not fit, so that an error after it goes unnoticed. Does not terminate the string if the format is invalid.
/// Never allocates.
FormatResult FormatBounded(char *dest, size_t size, FormatDialect dialect, const char *format, va_list arguments);

}  // namespace ostra::host

#endif  // HOST_FORMAT_FORMAT_H
