// SPDX-License-Identifier: Apache-2.0
//
// The size letters of a conversion, which printing and scanning share.

#ifndef HOST_CONVERSION_SIZE_H
#define HOST_CONVERSION_SIZE_H

#include <algorithm>
#include <string_view>

enum class ConversionSize { PLAIN, SHORT, CHAR, SIZE, DIFFERENCE, LONG, LONG_LONG, LONG_DOUBLE };

// Moves the cursor behind the size letters. The platform takes any number of them; the widest counts.
inline ConversionSize ReadConversionSize(const char *&cursor)
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

#endif  // HOST_CONVERSION_SIZE_H
