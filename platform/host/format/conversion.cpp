// SPDX-License-Identifier: Apache-2.0

#include "format/conversion.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::string_view PUBLIC_MARK = "{public}";
constexpr std::string_view PRIVATE_MARK = "{private}";

// Reads digits or a star. Returns false for a number beyond an int.
bool ReadNumber(const char *&cursor, Arguments &arguments, int &number)
{
    if (*cursor == '*') {
        ++cursor;
        number = arguments.Next<int>();
        return number != INT_MIN;
    }
    int64_t value = 0;
    for (; *cursor >= '0' && *cursor <= '9'; ++cursor) {
        value = value * 10 + (*cursor - '0');
        if (value > INT_MAX) {
            return false;
        }
    }
    number = static_cast<int>(value);
    return true;
}

void ReadFlags(const char *&cursor, Conversion &conversion)
{
    for (;; ++cursor) {
        switch (*cursor) {
            case '-':
                conversion.isLeft = true;
                break;
            case '+':
                conversion.hasPlus = true;
                break;
            case ' ':
                conversion.hasBlank = true;
                break;
            case '#':
                conversion.isAlternate = true;
                break;
            case '0':
                conversion.hasZeros = true;
                break;
            default:
                return;
        }
    }
}

bool ReadWidths(const char *&cursor, Arguments &arguments, Conversion &conversion)
{
    if (!ReadNumber(cursor, arguments, conversion.width)) {
        return false;
    }
    if (conversion.width < 0) {
        conversion.isLeft = true;
        conversion.width = -conversion.width;
    }
    if (*cursor != '.') {
        return true;
    }
    if (!ReadNumber(++cursor, arguments, conversion.precision)) {
        return false;
    }
    conversion.precision = std::max(conversion.precision, UNSET_PRECISION);
    return true;
}

// Without a mark a value is private.
void ReadPrivacy(const char *&cursor, Conversion &conversion)
{
    const std::string_view rest(cursor);
    conversion.isVisible = rest.substr(0, PUBLIC_MARK.size()) == PUBLIC_MARK;
    if (conversion.isVisible) {
        cursor += PUBLIC_MARK.size();
    } else if (rest.substr(0, PRIVATE_MARK.size()) == PRIVATE_MARK) {
        cursor += PRIVATE_MARK.size();
    }
}

}  // namespace

bool ReadConversion(const char *&cursor, FormatDialect dialect, Arguments &arguments, Conversion &conversion)
{
    if (dialect == FormatDialect::HILOG) {
        ReadPrivacy(cursor, conversion);
    }
    if (*cursor != '%') {
        ReadFlags(cursor, conversion);
        if (!ReadWidths(cursor, arguments, conversion)) {
            return false;
        }
        conversion.size = ReadConversionSize(cursor);
        if (*cursor == '%') {
            return false;
        }
    }
    conversion.type = *cursor;
    if (conversion.type == '\0') {
        return false;
    }
    ++cursor;
    return true;
}
