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
#include <cstdint>
#include <deque>
#include <functional>
#include <iomanip>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace replay {

using Fields = std::vector<std::string>;

// Maps the arguments of a line to its results. If it throws, as Value does for a malformed argument, the line fails.
using Operation = std::function<Fields(const Fields &arguments)>;
using Operations = std::map<std::string, Operation>;

// Replays a file of `count` cases. If there is an operation "case", each of its lines begins a case; otherwise, each
// line is a case. Returns the number of skipped cases, which this machine or the host platform does not support.
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

inline std::string g_memory;  // Recorded pointers are offsets into it.

// Returns a copy of the value that exists until the program ends.
template <typename T>
T &Store(T value)
{
    static std::deque<T> values;
    return values.emplace_back(std::move(value));
}

// Parses a field. A pointer is null, or points to a stored value or into g_memory.
template <typename T>
T Value(const std::string &field)
{
    if constexpr (std::is_pointer_v<T>) {
        using Target = std::remove_const_t<std::remove_pointer_t<T>>;
        if (field == "null") {
            return nullptr;
        }
        if constexpr (std::is_class_v<Target>) {
            return &Store(Value<Target>(field));
        } else {
            return field[0] == '"' ? Store(Unquote(field)).data() : g_memory.data() + Value<size_t>(field);
        }
    } else if constexpr (std::is_same_v<T, std::string>) {
        return Unquote(field);
    } else if constexpr (std::is_same_v<T, std::u16string> || std::is_same_v<T, Bytes>) {
        return {FromHex<typename T::value_type>(field)};
    } else if constexpr (std::is_same_v<T, bool>) {
        return field == "true" || field == "1";
    } else if constexpr (std::is_class_v<T>) {
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

// Formats a result.
template <typename T>
std::string Show(const T &value)
{
    if constexpr (std::is_pointer_v<T>) {
        return value == nullptr ? "null" : Quote(value);
    } else if constexpr (std::is_same_v<T, std::string>) {
        return Quote(value);
    } else if constexpr (std::is_same_v<T, std::u16string>) {
        return ToHex(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_class_v<T>) {
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

// Returns an operation that passes its arguments to a function and shows the result. A missing argument is null.
template <typename Result, typename... Parameters>
Operation Call(Result (*function)(Parameters...))
{
    return [function](Fields in) -> Fields {
        in.resize(sizeof...(Parameters), "null");
        [[maybe_unused]] auto next = in.begin();
        std::tuple<std::decay_t<Parameters>...> arguments{Value<std::decay_t<Parameters>>(*next++)...};
        if constexpr (std::is_same_v<Result, Fields>) {
            return std::apply(function, std::move(arguments));
        } else {
            return {Show(std::apply(function, std::move(arguments)))};
        }
    };
}

// Calls a function such as printf: passes `values`, and then the fields from in[at] on. Passes zeros for missing
// arguments.
template <typename... Parameters, typename... Values>
int CallPrint(int (*print)(Parameters..., ...), const Fields &in, size_t at, Values... values)
{
    constexpr size_t passed = sizeof...(values);
    if constexpr (passed < sizeof...(Parameters)) {
        using Next = std::tuple_element_t<passed, std::tuple<Parameters...>>;
        return CallPrint(print, in, at + 1, values..., Value<Next>(in.at(at)));
    } else if constexpr (passed == sizeof...(Parameters) + 5) {
        return print(values...);
    } else {
        const std::string field = at < in.size() && in[at] != "null" ? in[at] : "i:0";
        const std::string value = field.substr(2);
        if (field[0] == 'd') {
            return CallPrint(print, in, at + 1, values..., Value<double>(value));
        }
        const bool isString = field[0] == 's';
        const auto number = isString ? reinterpret_cast<intptr_t>(Value<char *>(value)) : Value<intptr_t>(value);
        return CallPrint(print, in, at + 1, values..., number);
    }
}

}  // namespace replay

#endif  // TESTS_HOST_RECORDING_H
