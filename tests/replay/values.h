// SPDX-License-Identifier: Apache-2.0
//
// Recorded fields as values of C++ types, and values as fields.

#ifndef TESTS_REPLAY_VALUES_H
#define TESTS_REPLAY_VALUES_H

#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "recording.h"

namespace replay {

// A text of 16-bit units is four digits a unit.
inline std::u16string Units(const std::string &field)
{
    const std::string bytes = Bytes(field);
    std::u16string text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text += static_cast<char16_t>(static_cast<uint8_t>(bytes[i]) << 8 | static_cast<uint8_t>(bytes[i + 1]));
    }
    return text;
}

template <typename T>
T Value(const std::string &field)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return Text(field);
    } else if constexpr (std::is_same_v<T, std::u16string>) {
        return Units(field);
    } else if constexpr (std::is_same_v<T, bool>) {
        return field == "true" || field == "1";
    } else {
        return Number<T>(field);
    }
}

template <typename T>
std::vector<T> Values(const std::string &field)
{
    std::vector<T> values;
    for (const std::string &element : Split(field)) {
        values.push_back(Value<T>(element));
    }
    return values;
}

// What a pointer points to, which may be null.
template <typename T = std::string>
std::optional<T> Target(const std::string &field)
{
    return field == "null" ? std::nullopt : std::make_optional(Value<T>(field));
}

template <typename T>
auto Pointer(const std::optional<T> &target)
{
    return target.has_value() ? target->c_str() : nullptr;
}

inline std::string Show(bool value)
{
    return value ? "true" : "false";
}

inline std::string Show(const std::string &text)
{
    return Quote(text);
}

inline std::string Show(const std::u16string &text)
{
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    }
    return Hex(bytes);
}

template <typename T, typename = std::enable_if_t<std::is_arithmetic_v<T>>>
std::string Show(T value)
{
    if constexpr (std::is_integral_v<T>) {
        return std::to_string(value);
    }
    char text[64];
    std::snprintf(text, sizeof(text), "%.*g", std::numeric_limits<T>::max_digits10, static_cast<double>(value));
    return text;
}

template <typename T>
std::string Show(const std::vector<T> &values)
{
    std::string text;
    for (const T &value : values) {
        text += (text.empty() ? "" : ",") + Show(value);
    }
    return values.empty() ? "-" : text;
}

}  // namespace replay

#endif  // TESTS_REPLAY_VALUES_H
