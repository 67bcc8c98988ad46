// SPDX-License-Identifier: Apache-2.0
//
// A conversion of the printf kind, as the platform's formatting reads it.

#ifndef HOST_CONVERSION_H
#define HOST_CONVERSION_H

#include <cstdarg>

#include "format/format.h"
#include "format/conversion_size.h"

// Keeps the list of a caller in a class, so that functions can take it by reference.
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

// One conversion, as "%{public}-8.3ld" splits into its parts.
struct Conversion {
    bool isVisible = true;
    bool isLeft = false;
    bool hasPlus = false;
    bool hasBlank = false;
    bool isAlternate = false;
    bool hasZeros = false;
    int width = 0;
    int precision = UNSET_PRECISION;
    ConversionSize size = ConversionSize::PLAIN;
    char type = '\0';
};

// Reads the conversion behind a percent sign, which may take width and precision from the arguments, and moves the
// cursor behind it. Its type may be a percent sign, which is printed as such. Returns false when it is none.
bool ReadConversion(const char *&cursor, FormatDialect dialect, Arguments &arguments, Conversion &conversion);

#endif  // HOST_CONVERSION_H
