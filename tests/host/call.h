// SPDX-License-Identifier: Apache-2.0
//
// Calls functions such as printf with recorded arguments, whose number and types are known at run time only.

#ifndef TESTS_HOST_CALL_H
#define TESTS_HOST_CALL_H

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "host/values.h"

namespace replay {

// The format and the arguments of a recorded call.
struct RecordedCall {
    struct Argument {
        enum { WORD, REAL } kind;
        int64_t bits;
        double real;
    };

    // The format is fields[at], and its arguments follow.
    RecordedCall(const Fields &fields, size_t at)
    {
        format = Target(fields.at(at));
        while (++at < fields.size()) {
            arguments.push_back(Read(fields[at]));
        }
        static const std::regex longSize(R"(%(\{\w+\})?[-+ #0-9.*]*(l|z|t|j|q|p|L|I64))");
        if (sizeof(long) != sizeof(int64_t) && format.has_value() && std::regex_search(*format, longSize)) {
            throw OtherMachine();
        }
    }

    // Passes the arguments and a final zero to `function`.
    template <typename Function, typename... Given>
    int Pass(const Function &function, Given... given) const
    {
        constexpr size_t maxArguments = 5;
        if constexpr (sizeof...(given) < maxArguments) {
            if (sizeof...(given) < arguments.size()) {
                const Argument &next = arguments[sizeof...(given)];
                if (next.kind == Argument::REAL) {
                    return Pass(function, given..., next.real);
                }
                return Pass(function, given..., static_cast<intptr_t>(next.bits));
            }
        }
        return function(given..., 0);
    }

    std::optional<std::string> format;
    std::vector<Argument> arguments;
    std::deque<std::string> strings;

private:
    Argument Read(const std::string &field)
    {
        const std::string value = field.substr(std::min<size_t>(2, field.size()));
        if (field[0] == 'd') {
            return {Argument::REAL, 0, Number<double>(value)};
        }
        if (field[0] == 's') {
            return {Argument::WORD, reinterpret_cast<intptr_t>(strings.emplace_back(Text(value)).c_str()), 0};
        }
        if (field == "null") {
            return {Argument::WORD, 0, 0};
        }
        return {Argument::WORD, Number<int64_t>(value), 0};
    }
};

}  // namespace replay

#endif  // TESTS_HOST_CALL_H
