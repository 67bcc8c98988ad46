// SPDX-License-Identifier: Apache-2.0
//
// Replays the files of tests/data/host/ on the host platform: passes the input of each line to an operation of the
// test, and compares the results with those in the file.
//
//     const Operations operations = {{"strlen", Call(+[](const std::string &string) { return string.size(); })}};
//     Replay("recorded/strlen.txt", 67, operations);

#ifndef TESTS_HOST_RECORDING_H
#define TESTS_HOST_RECORDING_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <iomanip>
#include <limits>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace replay {

using Fields = std::vector<std::string>;

// Maps the arguments of a line to its results. If it throws, as Value does for a malformed argument, the line fails.
using Operation = std::function<Fields(const Fields &arguments)>;
using Operations = std::map<std::string, Operation>;

// Thrown by an operation to skip its case.
struct Skip {};

// Replays a file of `count` cases. If there is an operation "case", each of its lines begins a case; otherwise, each
// line is a case. Returns the number of skipped cases.
size_t Replay(const std::string &name, size_t count, const Operations &operations);

// Splits at separators outside quotes; "-" and "" have no elements.
Fields Split(const std::string &field, char separator = ',');

// Convert a string from and to its form in a field: quoted, with \xNN for a byte.
std::string Unquote(const std::string &field);
std::string Quote(const std::string &string);

// A string whose form in a field is hexadecimal digits.
struct Bytes : std::string {};

template <typename Unit>
std::basic_string<Unit> FromHex(std::string digits)
{
    digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
    std::basic_string<Unit> units;
    for (size_t at = 0; at < digits.size() && digits != "-"; at += 2 * sizeof(Unit)) {
        units += static_cast<Unit>(std::stoul(digits.substr(at, 2 * sizeof(Unit)), nullptr, 16));
    }
    return units;
}

template <typename Unit>
std::string ToHex(const std::basic_string<Unit> &units)
{
    std::ostringstream digits;
    digits << std::hex << std::setfill('0');
    for (const Unit unit : units) {
        digits << std::setw(2 * sizeof(Unit)) << static_cast<std::make_unsigned_t<Unit>>(unit) + 0;
    }
    return units.empty() ? "-" : digits.str();
}

template <typename T>
constexpr bool IS_VECTOR = false;
template <typename T>
constexpr bool IS_VECTOR<std::vector<T>> = true;

template <typename T>
constexpr bool IS_OPTIONAL = false;
template <typename T>
constexpr bool IS_OPTIONAL<std::optional<T>> = true;

inline std::string g_memory;  // Recorded pointers are offsets into it.

// Parses a field.
template <typename T>
T Value(const std::string &field)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return Unquote(field);
    } else if constexpr (IS_OPTIONAL<T>) {
        return field == "null" ? std::nullopt : T(Value<typename T::value_type>(field));
    } else if constexpr (std::is_pointer_v<T>) {
        return field == "null" ? nullptr : g_memory.data() + Value<size_t>(field);
    } else if constexpr (std::is_same_v<T, std::u16string>) {
        return FromHex<char16_t>(field);
    } else if constexpr (std::is_same_v<T, Bytes>) {
        return {FromHex<char>(field)};
    } else if constexpr (std::is_same_v<T, bool>) {
        return field == "true" || field == "1";
    } else if constexpr (IS_VECTOR<T>) {
        T values;
        for (const std::string &element : Split(field)) {
            values.push_back(Value<typename T::value_type>(element));
        }
        return values;
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(std::stod(field));
    } else {
        size_t end = 0;
        const unsigned long long value = std::stoull(field, &end, 0);  // wraps for a negative number
        return end == field.size() ? static_cast<T>(value) : throw std::invalid_argument("not a number: " + field);
    }
}

inline const char *Pointer(const std::optional<std::string> &target)
{
    return target.has_value() ? target->c_str() : nullptr;
}

// Formats a result.
template <typename T>
std::string Show(const T &value)
{
    if constexpr (std::is_same_v<T, std::string>) {
        return Quote(value);
    } else if constexpr (std::is_same_v<T, Bytes> || std::is_same_v<T, std::u16string>) {
        return ToHex(value);
    } else if constexpr (IS_OPTIONAL<T>) {
        return value.has_value() ? Show(*value) : "null";
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (IS_VECTOR<T>) {
        std::string list;
        for (const typename T::value_type &element : value) {
            list += (list.empty() ? "" : ",") + Show(element);
        }
        return list.empty() ? "-" : list;
    } else {
        std::ostringstream number;
        number << std::setprecision(std::numeric_limits<T>::max_digits10) << +value;
        return number.str();
    }
}

// The result of a function and a variable that it sets.
template <typename First, typename Second>
std::string Show(const std::pair<First, Second> &values)
{
    return Show(values.first) + " " + Show(values.second);
}

// Returns an operation that passes its arguments to a function and shows the result. A missing argument is null.
template <typename Result, typename... Parameters>
Operation Call(Result (*function)(Parameters...))
{
    return [function](const Fields &in) -> Fields {
        [[maybe_unused]] auto next = [&in, at = size_t{0}]() mutable {
            return at < in.size() ? in[at++] : "null";
        };
        std::tuple<std::decay_t<Parameters>...> arguments{Value<std::decay_t<Parameters>>(next())...};
        if constexpr (std::is_same_v<Result, Fields>) {
            return std::apply(function, std::move(arguments));
        } else {
            return {Show(std::apply(function, std::move(arguments)))};
        }
    };
}

// The format and the arguments of a recorded call of a function such as printf.
struct PrintfCall {
    // The format is fields[at], and its arguments follow. Skips a case that depends on the size of `long` if it has
    // another size on this machine than on the recorded one.
    PrintfCall(const Fields &fields, size_t at);

    // Passes the format and the arguments to `print`, with zeros for missing arguments.
    template <typename Print>
    int Pass(const Print &print) const
    {
        const auto passValues = [&](auto... values) {
            return print(Pointer(format), values...);
        };
        return std::apply([&](auto... each) { return std::visit(passValues, each...); }, arguments);
    }

    std::optional<std::string> format;
    std::array<std::variant<intptr_t, double>, 5> arguments{};
    std::deque<std::string> strings;
};

}  // namespace replay

#endif  // TESTS_HOST_RECORDING_H
