// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "format/conversion_size.h"
#include "securec.h"

namespace {

bool IsSpace(char character)
{
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

// One conversion, as "%*5ld" splits into its parts.
struct Conversion {
    bool isStored = true;
    size_t width = 0;  // 0 for none
    ConversionSize size = ConversionSize::PLAIN;
    char type = '\0';
    std::string_view set;  // the characters of [, without the caret
    bool isSetExcluded = false;
};

enum class Outcome { DONE, NO_MATCH, NO_TEXT };

class Scanner {
public:
    Scanner(const char *text, va_list arguments) : begin_(text), text_(text)
    {
        va_copy(arguments_, arguments);
    }

    ~Scanner()
    {
        va_end(arguments_);
    }

    Scanner(const Scanner &) = delete;
    Scanner &operator=(const Scanner &) = delete;

    int Run(const char *format)
    {
        Outcome outcome = Outcome::DONE;
        while (*format != '\0' && outcome == Outcome::DONE) {
            if (IsSpace(*format)) {
                SkipSpace();
                ++format;
            } else if (*format != '%') {
                outcome = Match(*format++);
            } else if (*++format == '%') {
                SkipSpace();
                outcome = Match(*format++);
            } else {
                Conversion conversion;
                outcome = ReadConversion(format, conversion) ? Convert(conversion) : Outcome::NO_MATCH;
            }
        }
        return outcome == Outcome::NO_TEXT && results_ == 0 ? EOF_RESULT : results_;
    }

private:
    static constexpr int EOF_RESULT = -1;

    void SkipSpace()
    {
        while (IsSpace(*text_)) {
            ++text_;
        }
    }

    Outcome Match(char character)
    {
        if (*text_ == '\0') {
            return Outcome::NO_TEXT;
        }
        if (*text_ != character) {
            return Outcome::NO_MATCH;
        }
        ++text_;
        return Outcome::DONE;
    }

    static bool ReadConversion(const char *&cursor, Conversion &conversion)
    {
        conversion.isStored = *cursor != '*';
        cursor += conversion.isStored ? 0 : 1;
        for (; *cursor >= '0' && *cursor <= '9'; ++cursor) {
            conversion.width = std::min<size_t>(conversion.width * 10 + static_cast<size_t>(*cursor - '0'), INT_MAX);
        }
        conversion.size = ReadConversionSize(cursor);
        conversion.type = *cursor;
        if (conversion.type == '\0') {
            return false;
        }
        ++cursor;
        if (conversion.type != '[') {
            return true;
        }
        conversion.isSetExcluded = *cursor == '^';
        cursor += conversion.isSetExcluded ? 1 : 0;
        // A bracket that comes first is one of the set's characters.
        const char *const end = *cursor == '\0' ? nullptr : std::strchr(cursor + 1, ']');
        if (end == nullptr) {
            return false;
        }
        conversion.set = {cursor, static_cast<size_t>(end - cursor)};
        cursor = end + 1;
        return true;
    }

    Outcome Convert(const Conversion &conversion)
    {
        const bool takesSpace = conversion.type == 'c' || conversion.type == '[' || conversion.type == 'n';
        if (!takesSpace) {
            SkipSpace();
        }
        if (conversion.type == 'n') {
            return Store(conversion, static_cast<uint64_t>(text_ - begin_), 0);
        }
        if (*text_ == '\0') {
            return Outcome::NO_TEXT;
        }
        switch (conversion.type) {
            case 'd':
            case 'u':
                return ReadInteger(conversion, 10);
            case 'i':
                return ReadInteger(conversion, 0);
            case 'o':
                return ReadInteger(conversion, 8);
            case 'x':
            case 'X':
            case 'p':
                return ReadInteger(conversion, 16);
            case 'e':
            case 'E':
            case 'f':
            case 'F':
            case 'g':
            case 'G':
                return ReadFloat(conversion);
            case 's':
            case 'c':
            case '[':
                return ReadText(conversion);
            default:
                return Outcome::NO_MATCH;
        }
    }

    // The text of a number, cut to the width.
    std::string NumberText(const Conversion &conversion) const
    {
        return conversion.width == 0 ? std::string(text_) : std::string(text_, strnlen(text_, conversion.width));
    }

    Outcome ReadInteger(const Conversion &conversion, int base)
    {
        const std::string digits = NumberText(conversion);
        char *end = nullptr;
        const int errorOfCaller = errno;
        const bool isSigned = conversion.type == 'd' || conversion.type == 'i';
        const uint64_t value = isSigned ? static_cast<uint64_t>(std::strtoll(digits.c_str(), &end, base))
                                        : std::strtoull(digits.c_str(), &end, base);
        errno = errorOfCaller;
        if (end == digits.c_str()) {
            return Outcome::NO_MATCH;
        }
        text_ += end - digits.c_str();
        return Store(conversion, value, 1);
    }

    // Stores the low bits of a number in an integer of the conversion's size.
    Outcome Store(const Conversion &conversion, uint64_t value, int results)
    {
        if (!conversion.isStored) {
            return Outcome::DONE;
        }
        void *const target = va_arg(arguments_, void *);
        if (target == nullptr) {
            return Outcome::NO_MATCH;
        }
        results_ += results;
        if (conversion.type == 'p') {
            return StoreAs<uintptr_t>(target, value);
        }
        switch (conversion.size) {
            case ConversionSize::PLAIN:
                return StoreAs<unsigned int>(target, value);
            case ConversionSize::SHORT:
                return StoreAs<unsigned short>(target, value);
            case ConversionSize::CHAR:
                return StoreAs<unsigned char>(target, value);
            case ConversionSize::SIZE:
            case ConversionSize::DIFFERENCE:
                return StoreAs<size_t>(target, value);
            case ConversionSize::LONG:
                return StoreAs<unsigned long>(target, value);
            default:
                return StoreAs<uint64_t>(target, value);
        }
    }

    template <typename Target, typename Value>
    static Outcome StoreAs(void *target, Value value)
    {
        const auto converted = static_cast<Target>(value);
        std::memcpy(target, &converted, sizeof(converted));
        return Outcome::DONE;
    }

    Outcome ReadFloat(const Conversion &conversion)
    {
        const std::string digits = NumberText(conversion);
        char *end = nullptr;
        const int errorOfCaller = errno;
        const long double value = std::strtold(digits.c_str(), &end);
        const double rounded = std::strtod(digits.c_str(), nullptr);
        const float shortest = std::strtof(digits.c_str(), nullptr);
        errno = errorOfCaller;
        if (end == digits.c_str()) {
            return Outcome::NO_MATCH;
        }
        text_ += end - digits.c_str();
        if (!conversion.isStored) {
            return Outcome::DONE;
        }
        void *const target = va_arg(arguments_, void *);
        if (target == nullptr) {
            return Outcome::NO_MATCH;
        }
        ++results_;
        switch (conversion.size) {
            case ConversionSize::LONG_DOUBLE:
                return StoreAs<long double>(target, value);
            case ConversionSize::LONG:
            case ConversionSize::LONG_LONG:
                return StoreAs<double>(target, rounded);
            default:
                return StoreAs<float>(target, shortest);
        }
    }

    static bool IsInSet(const Conversion &conversion, char character)
    {
        const std::string_view set = conversion.set;
        for (size_t at = 0; at < set.size(); ++at) {
            const auto low = static_cast<unsigned char>(set[at]);
            const bool isRange = at + 2 < set.size() && set[at + 1] == '-';
            const auto high = isRange ? static_cast<unsigned char>(set[at + 2]) : low;
            const auto wanted = static_cast<unsigned char>(character);
            if (wanted >= std::min(low, high) && wanted <= std::max(low, high)) {
                return true;
            }
            at += isRange ? 2 : 0;
        }
        return false;
    }

    static bool Belongs(const Conversion &conversion, char character)
    {
        switch (conversion.type) {
            case 's':
                return !IsSpace(character);
            case '[':
                return IsInSet(conversion, character) != conversion.isSetExcluded;
            default:
                return true;
        }
    }

    // Writes characters as it reads them; the target of s and [ keeps room for the zero byte.
    Outcome ReadText(const Conversion &conversion)
    {
        char *target = nullptr;
        size_t room = SIZE_MAX;
        if (conversion.isStored) {
            target = va_arg(arguments_, char *);
            room = va_arg(arguments_, size_t);
            if (target == nullptr || room == 0) {
                return Outcome::NO_MATCH;
            }
        }
        const bool hasEnd = conversion.type != 'c';
        const size_t width = conversion.width != 0 ? conversion.width : hasEnd ? SIZE_MAX : 1;
        room -= hasEnd ? 1 : 0;
        size_t length = 0;
        while (length < width && *text_ != '\0' && Belongs(conversion, *text_)) {
            if (length == room) {
                *target = '\0';
                return Outcome::NO_MATCH;
            }
            if (target != nullptr) {
                target[length] = *text_;
            }
            ++length;
            ++text_;
        }
        if (length == 0 || (!hasEnd && length < width)) {
            return length == 0 ? Outcome::NO_MATCH : Outcome::NO_TEXT;
        }
        if (target != nullptr) {
            ++results_;
            if (hasEnd) {
                target[length] = '\0';
            }
        }
        return Outcome::DONE;
    }

    const char *const begin_;
    const char *text_;
    va_list arguments_;
    int results_ = 0;
};

}  // namespace

int vsscanf_s(const char *buffer, const char *format, va_list argList)
{
    return buffer == nullptr || format == nullptr ? -1 : Scanner(buffer, argList).Run(format);
}

int sscanf_s(const char *buffer, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int results = vsscanf_s(buffer, format, arguments);
    va_end(arguments);
    return results;
}
