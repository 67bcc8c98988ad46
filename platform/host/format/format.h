// SPDX-License-Identifier: Apache-2.0
//
// The platform's own formatting, which both HiLog and the bounds-checked functions print with. It is no printf of the C
// library: conversions that it does not know (a, A, n, m, positions, the apostrophe, ...) fail the whole text.

#ifndef HOST_BOUNDED_FORMAT_H
#define HOST_BOUNDED_FORMAT_H

#include <cstdarg>
#include <cstddef>

enum class FormatDialect {
    SECUREC,
    HILOG,  // privacy marks, pointers as fixed digits in upper case, texts padded with zeros, `z` as wide as an int
};

enum class FormatOutcome { COMPLETE, CUT, INVALID };

struct FormatResult {
    FormatOutcome outcome;
    size_t length;  // of the text in the destination
};

// Prints into `dest`, which holds `size` bytes, at least 1, and puts a zero byte behind the text; behind an invalid
// one it does not. Stops at the first character without room: what is wrong behind it goes unnoticed. Never allocates.
FormatResult FormatBounded(char *dest, size_t size, FormatDialect dialect, const char *format, va_list arguments);

#endif  // HOST_BOUNDED_FORMAT_H
