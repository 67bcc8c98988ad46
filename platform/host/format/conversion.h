// SPDX-License-Identifier: Apache-2.0
//
// Parses one conversion of a format string.

#ifndef HOST_FORMAT_CONVERSION_H
#define HOST_FORMAT_CONVERSION_H

#include <cstdarg>
#include <string_view>

#include "format/format.h"

namespace ostra::host {

/// A copy of a va_list that can be passed by reference.
class Arguments {
public:
    explicit Arguments(va_list list)
    {
        va_copy(list_, list);
    }

    ~Arguments()
    {
        va_end(list_);
    }

    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    template <typename Value>
    Value Next()
    {
        return va_arg(list_, Value);  // NOLINT(clang-analyzer-valist.Uninitialized): the constructor copies into it
    }

private:
    va_list list_;
};

constexpr int UNSET_PRECISION = -1;

/// The length modifier of a conversion, in ascending order of precedence.
enum class ConversionSize { PLAIN, SHORT, CHAR, SIZE, DIFFERENCE, LONG, LONG_LONG, LONG_DOUBLE };

/// The parts of a conversion such as "%{public}-8.3ld".
struct Conversion {
    bool Has(char flag) const
    {
        return flags.find(flag) != std::string_view::npos;
    }

    bool isVisible = true;
    bool isLeftAligned = false;  // by a flag or a negative width
    std::string_view flags;
    int width = 0;
    int precision = UNSET_PRECISION;
    ConversionSize size = ConversionSize::PLAIN;
    char type = '\0';
};

/// Parses the conversion after a percent sign and advances `cursor` to its end. For `*`, takes the width or precision
/// from the arguments. The type may be a percent sign, which prints itself. Returns false if the conversion is
/// malformed.
bool ParseConversion(const char *&cursor, FormatDialect dialect, Arguments &arguments, Conversion &conversion);

}  // namespace ostra::host

#endif  // HOST_FORMAT_CONVERSION_H
