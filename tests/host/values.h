// SPDX-License-Identifier: Apache-2.0
//
// Converts recorded fields to values of C++ types and back.

#ifndef TESTS_HOST_VALUES_H
#define TESTS_HOST_VALUES_H

#include <cstdint>
#include <iomanip>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "host/recording.h"

namespace replay {

template <typename T>
constexpr bool IS_VECTOR = false;
template <typename T>
constexpr bool IS_VECTOR<std::vector<T>> = true;

// A string of 16-bit units has four digits per unit.
template <typename T>
T Value(const std::string &field)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return Text(field);
    } else if constexpr (std::is_same_v<T, bool>) {
        return field == "true" || field == "1";
    } else if constexpr (std::is_arithmetic_v<T>) {
        return Number<T>(field);
    } else if constexpr (IS_VECTOR<T>) {
        T values;
        for (const std::string &element : Split(field)) {
            values.push_back(Value<typename T::value_type>(element));
        }
        return values;
    } else {
        T text;
        const std::string bytes = Bytes(field);
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            text += static_cast<char16_t>(static_cast<uint8_t>(bytes[i]) << 8 | static_cast<uint8_t>(bytes[i + 1]));
        }
        return text;
    }
}

// The target of a pointer, which may be null.
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

template <typename T>
std::string Show(const T &value)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return Quote(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_integral_v<T>) {
        return std::to_string(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        std::ostringstream text;
        text << std::setprecision(std::numeric_limits<T>::max_digits10) << value;
        return text.str();
    } else {
        std::string text;
        for (const typename T::value_type &part : value) {
            if constexpr (IS_VECTOR<T>) {
                text += (text.empty() ? "" : ",") + Show(part);
            } else {
                text += Hex({static_cast<char>(part >> 8), static_cast<char>(part & 0xFF)});
            }
        }
        return text.empty() ? "-" : text;
    }
}

}  // namespace replay

#endif  // TESTS_HOST_VALUES_H
