// SPDX-License-Identifier: Apache-2.0

#include "format/conversion.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

namespace ostra::host {
namespace {

constexpr std::string_view PUBLIC_MARK = "{public}";
constexpr std::string_view PRIVATE_MARK = "{private}";

// Parses digits, or takes an argument for `*`. Returns false if the number or its negation does not fit in an int.
bool ParseNumber(const char *&cursor, Arguments &arguments, int &number)
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

bool ParseWidthAndPrecision(const char *&cursor, Arguments &arguments, Conversion &conversion)
{
    if (!ParseNumber(cursor, arguments, conversion.width)) {
        return false;
    }
    if (conversion.width < 0) {
        conversion.isLeftAligned = true;
        conversion.width = -conversion.width;
    }
    if (*cursor != '.') {
        return true;
    }
    if (!ParseNumber(++cursor, arguments, conversion.precision)) {
        return false;
    }
    conversion.precision = std::max(conversion.precision, UNSET_PRECISION);
    return true;
}

// A value without a privacy mark is private.
void ParsePrivacy(const char *&cursor, Conversion &conversion)
{
    const std::string_view rest(cursor);
    conversion.isVisible = rest.substr(0, PUBLIC_MARK.size()) == PUBLIC_MARK;
    if (conversion.isVisible) {
        cursor += PUBLIC_MARK.size();
    } else if (rest.substr(0, PRIVATE_MARK.size()) == PRIVATE_MARK) {
        cursor += PRIVATE_MARK.size();
    }
}

// The platform accepts any number of length modifiers; the one with the highest precedence applies.
ConversionSize ParseSize(const char *&cursor)
{
    struct NamedSize {
        std::string_view name;
        ConversionSize size;
    };
    static constexpr NamedSize sizes[] = {
        {"hh", ConversionSize::CHAR},     {"h", ConversionSize::SHORT},      {"ll", ConversionSize::LONG_LONG},
        {"l", ConversionSize::LONG},      {"z", ConversionSize::SIZE},       {"t", ConversionSize::DIFFERENCE},
        {"j", ConversionSize::LONG_LONG}, {"q", ConversionSize::LONG_LONG},  {"I64", ConversionSize::LONG_LONG},
        {"I32", ConversionSize::PLAIN},   {"L", ConversionSize::LONG_DOUBLE}};
    ConversionSize widest = ConversionSize::PLAIN;
    for (;;) {
        const std::string_view rest(cursor);
        const auto found = std::find_if(std::begin(sizes), std::end(sizes), [rest](const NamedSize &entry) {
            return rest.substr(0, entry.name.size()) == entry.name;
        });
        if (found == std::end(sizes)) {
            return widest;
        }
        widest = std::max(widest, found->size);
        cursor += found->name.size();
    }
}

}  // namespace

bool ParseConversion(const char *&cursor, FormatDialect dialect, Arguments &arguments, Conversion &conversion)
{
    if (dialect == FormatDialect::HILOG) {
        ParsePrivacy(cursor, conversion);
    }
    if (*cursor != '%') {
        conversion.flags = {cursor, std::strspn(cursor, "-+ #0")};
        conversion.isLeftAligned = conversion.Has('-');
        cursor += conversion.flags.size();
        if (!ParseWidthAndPrecision(cursor, arguments, conversion)) {
            return false;
        }
        conversion.size = ParseSize(cursor);
        if (*cursor == '%') {
            return false;
        }
    }
    conversion.type = *cursor;
    return *cursor++ != '\0';
}

}  // namespace ostra::host
