// SPDX-License-Identifier: Apache-2.0

#include "format/format.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <string_view>
#include <type_traits>

#include "format/conversion.h"

namespace ostra::host {
namespace {

constexpr int MAX_PRECISION = 512;  // of integers
constexpr std::string_view PRIVATE_PLACEHOLDER = "<private>";
constexpr auto ENCODING_ERROR = static_cast<size_t>(-1);  // wcrtomb's error result

// An integer as sign and magnitude.
struct Number {
    bool isNegative;
    uint64_t magnitude;
};

class Formatter {
public:
    Formatter(char *dest, size_t size, FormatDialect dialect, va_list arguments)
        : dest_(dest), capacity_(size - 1), dialect_(dialect), arguments_(arguments)
    {
    }

    FormatResult Run(const char *format)
    {
        while (*format != '\0' && !isTruncated_) {
            const size_t plain = std::strcspn(format, "%");
            Put({format, plain});
            format += plain;
            if (*format == '%' && !isTruncated_ && !Convert(++format)) {
                return {FormatOutcome::INVALID, 0};
            }
        }
        dest_[length_] = '\0';
        return {isTruncated_ ? FormatOutcome::TRUNCATED : FormatOutcome::COMPLETE, length_};
    }

private:
    size_t Room() const
    {
        return capacity_ - length_;
    }

    void Put(std::string_view string)
    {
        const size_t length = string.copy(dest_ + length_, Room());
        length_ += length;
        isTruncated_ = isTruncated_ || length < string.size();
    }

    void Fill(char character, int count)
    {
        if (count <= 0) {
            return;
        }
        const size_t length = std::min(static_cast<size_t>(count), Room());
        std::memset(dest_ + length_, character, length);
        length_ += length;
        isTruncated_ = isTruncated_ || length < static_cast<size_t>(count);
    }

    // Prints the conversion after the percent sign and advances the cursor to its end. Returns false if it is
    // malformed.
    bool Convert(const char *&cursor)
    {
        Conversion conversion;
        if (!ParseConversion(cursor, dialect_, arguments_, conversion)) {
            return false;
        }
        if (conversion.type == '%') {
            Put("%");
            return true;
        }
        return PutValue(conversion);
    }

    bool PutValue(const Conversion &conversion)
    {
        switch (conversion.type) {
            case 'd':
            case 'i':
            case 'o':
            case 'u':
            case 'x':
            case 'X':
                return PutInteger(conversion, ReadInteger(conversion));
            case 'p':
                return PutPointer(conversion);
            case 'c':
            case 'C':
                return PutCharacter(conversion);
            case 's':
            case 'S':
                return PutString(conversion);
            case 'e':
            case 'E':
            case 'f':
            case 'F':
            case 'g':
            case 'G':
                if (conversion.size == ConversionSize::LONG_DOUBLE) {
                    return PutFloat(conversion, "L", arguments_.Next<long double>());
                }
                return PutFloat(conversion, "", arguments_.Next<double>());
            default:
                return false;
        }
    }

    Number ReadInteger(const Conversion &conversion)
    {
        const bool isSigned = conversion.type == 'd' || conversion.type == 'i';
        switch (conversion.size) {
            case ConversionSize::PLAIN:
                return ToNumber(arguments_.Next<int>(), isSigned);
            case ConversionSize::SHORT:
                return ToNumber(static_cast<short>(arguments_.Next<int>()), isSigned);
            case ConversionSize::CHAR:
                return ToNumber(static_cast<signed char>(arguments_.Next<int>()), isSigned);
            case ConversionSize::SIZE:
                return dialect_ == FormatDialect::HILOG ? ToNumber(arguments_.Next<int>(), isSigned)
                                                        : ToNumber(arguments_.Next<ptrdiff_t>(), isSigned);
            case ConversionSize::DIFFERENCE:
                return ToNumber(arguments_.Next<ptrdiff_t>(), isSigned);
            case ConversionSize::LONG:
                return ToNumber(arguments_.Next<long>(), isSigned);
            default:
                return ToNumber(arguments_.Next<long long>(), isSigned);
        }
    }

    template <typename Integer>
    static Number ToNumber(Integer value, bool isSigned)
    {
        if (isSigned && value < 0) {
            return {true, 0 - static_cast<uint64_t>(value)};
        }
        return {false, static_cast<std::make_unsigned_t<Integer>>(value)};
    }

    bool PutInteger(const Conversion &conversion, Number number)
    {
        if (!conversion.isVisible) {
            Put(PRIVATE_PLACEHOLDER);
            return true;
        }
        char buffer[sizeof("1777777777777777777777")];
        char *const end = buffer + sizeof(buffer);
        char *begin = end;
        const bool isUpper = conversion.type == 'X' || conversion.type == 'p';
        const char *const digits = isUpper ? "0123456789ABCDEF" : "0123456789abcdef";
        const bool isHex = isUpper || conversion.type == 'x';
        const unsigned int base = isHex ? 16 : conversion.type == 'o' ? 8 : 10;
        for (uint64_t rest = number.magnitude; rest != 0; rest /= base) {
            *--begin = digits[rest % base];
        }
        const int count = static_cast<int>(end - begin);
        const int minDigits =
            conversion.precision == UNSET_PRECISION ? 1 : std::min(conversion.precision, MAX_PRECISION);
        int zeros = std::max(minDigits - count, 0);
        if (conversion.Has('#') && conversion.type == 'o' && zeros == 0) {
            zeros = 1;
        }

        std::string_view prefix;
        if (conversion.type == 'd' || conversion.type == 'i') {
            prefix = number.isNegative ? "-" : conversion.Has('+') ? "+" : conversion.Has(' ') ? " " : "";
        } else if (conversion.Has('#') && isHex && number.magnitude != 0) {
            prefix = isUpper ? "0X" : "0x";
        }
        const int padding = conversion.width - static_cast<int>(prefix.size()) - zeros - count;
        const bool hasPrecision = conversion.precision != UNSET_PRECISION && conversion.type != 'p';
        if (conversion.Has('0') && !conversion.isLeftAligned && !hasPrecision) {
            Put(prefix);
            Fill('0', padding);
        } else {
            Fill(' ', conversion.isLeftAligned ? 0 : padding);
            Put(prefix);
        }
        Fill('0', zeros);
        Put({begin, static_cast<size_t>(count)});
        Fill(' ', conversion.isLeftAligned ? padding : 0);
        return true;
    }

    bool PutPointer(Conversion conversion)
    {
        const auto address = reinterpret_cast<uintptr_t>(arguments_.Next<void *>());
        if (dialect_ == FormatDialect::HILOG) {
            conversion.precision = 2 * sizeof(void *);
            return PutInteger(conversion, {false, address});
        }
        if (address == 0) {
            return PutNarrowString(conversion, "(nil)");
        }
        conversion.type = 'x';
        conversion.flags = conversion.Has('0') ? "#0" : "#";
        return PutInteger(conversion, {false, address});
    }

    // Calls `put`, which prints `length` bytes, and pads its output to the width.
    template <typename Putter>
    bool PutPadded(const Conversion &conversion, size_t length, const Putter &put)
    {
        if (!conversion.isVisible) {
            Put(PRIVATE_PLACEHOLDER);
            return true;
        }
        const bool padsWithZeros = conversion.Has('0') && dialect_ == FormatDialect::HILOG;
        const size_t width = static_cast<size_t>(conversion.width);
        const int padding = length < width ? static_cast<int>(width - length) : 0;
        Fill(padsWithZeros ? '0' : ' ', conversion.isLeftAligned ? 0 : padding);
        put();
        Fill(' ', conversion.isLeftAligned ? padding : 0);
        return true;
    }

    bool PutNarrowString(const Conversion &conversion, std::string_view string)
    {
        return PutPadded(conversion, string.size(), [&] { Put(string); });
    }

    // Encodes a wide character in the locale of the process. Returns the number of bytes, or ENCODING_ERROR.
    static size_t Narrow(wchar_t character, char (&bytes)[MB_LEN_MAX])
    {
        std::mbstate_t state{};
        return std::wcrtomb(bytes, character, &state);
    }

    static bool IsWide(const Conversion &conversion)
    {
        return conversion.size == ConversionSize::LONG || conversion.size == ConversionSize::LONG_LONG ||
               (conversion.type < 'a' && conversion.size != ConversionSize::SHORT);
    }

    bool PutCharacter(const Conversion &conversion)
    {
        const auto character = arguments_.Next<int>();
        if (!IsWide(conversion)) {
            const char byte = static_cast<char>(character);
            return PutNarrowString(conversion, {&byte, 1});
        }
        char bytes[MB_LEN_MAX];
        const size_t length = Narrow(static_cast<wchar_t>(character), bytes);
        return length != ENCODING_ERROR && PutNarrowString(conversion, {bytes, length});
    }

    bool PutString(const Conversion &conversion)
    {
        const size_t limit =
            conversion.precision == UNSET_PRECISION ? SIZE_MAX : static_cast<size_t>(conversion.precision);
        const void *const string = arguments_.Next<const void *>();
        if (!conversion.isVisible) {  // not dereferenced: it may be invalid
            Put(PRIVATE_PLACEHOLDER);
            return true;
        }
        if (string == nullptr) {
            return PutNarrowString(conversion, std::string_view("(null)").substr(0, limit));
        }
        if (IsWide(conversion)) {
            return PutWideString(conversion, static_cast<const wchar_t *>(string), limit);
        }
        const auto narrow = static_cast<const char *>(string);
        return PutNarrowString(conversion, {narrow, limit == SIZE_MAX ? std::strlen(narrow) : strnlen(narrow, limit)});
    }

    bool PutWideString(const Conversion &conversion, const wchar_t *string, size_t limit)
    {
        char bytes[MB_LEN_MAX];
        size_t length = 0;
        const wchar_t *end = string;
        while (length < limit && *end != L'\0') {
            const size_t size = Narrow(*end, bytes);
            if (size == ENCODING_ERROR) {
                return false;
            }
            if (size > limit - length) {
                break;
            }
            length += size;
            ++end;
        }
        return PutPadded(conversion, length, [&] {
            for (; string != end; ++string) {
                Put({bytes, Narrow(*string, bytes)});
            }
        });
    }

    template <typename Value>
    bool PutFloat(const Conversion &conversion, const char *size, Value value)
    {
        if (!conversion.isVisible) {
            Put(PRIVATE_PLACEHOLDER);
            return true;
        }
        char format[sizeof("%-+ #0*.*Lf")];
        std::snprintf(format, sizeof(format), "%%%s%s%s%s%s*.*%s%c", conversion.isLeftAligned ? "-" : "",
                      conversion.Has('+') ? "+" : "", conversion.Has(' ') ? " " : "", conversion.Has('#') ? "#" : "",
                      conversion.Has('0') ? "0" : "", size, conversion.type);
        const int needed = std::snprintf(nullptr, 0, format, conversion.width, conversion.precision, value);
        if (needed < 0) {
            return false;
        }
        // snprintf appends a null terminator. Restore the byte that it overwrites: if the rest of the format is
        // invalid, the bytes after the output must be unchanged.
        const size_t length = std::min(static_cast<size_t>(needed), Room());
        char &terminated = dest_[length_ + length];
        const char saved = terminated;
        std::snprintf(dest_ + length_, length + 1, format, conversion.width, conversion.precision, value);
        terminated = saved;
        length_ += length;
        isTruncated_ = length < static_cast<size_t>(needed);
        return true;
    }

    char *const dest_;
    const size_t capacity_;
    const FormatDialect dialect_;
    Arguments arguments_;
    size_t length_ = 0;
    bool isTruncated_ = false;
};

}  // namespace

FormatResult FormatBounded(char *dest, size_t size, FormatDialect dialect, const char *format, va_list arguments)
{
    return Formatter(dest, size, dialect, arguments).Run(format);
}

}  // namespace ostra::host
