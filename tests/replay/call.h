// SPDX-License-Identifier: Apache-2.0
//
// Calls functions of the printf kind with recorded arguments, whose number and types are known when the test runs.

#ifndef TESTS_REPLAY_CALL_H
#define TESTS_REPLAY_CALL_H

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "values.h"

namespace replay {

// A recorded call: its format, and its arguments as far as a call passes them.
struct RecordedCall {
    static constexpr bool IS_RECORDED_SIZE = sizeof(long) == sizeof(int64_t);

    struct Argument {
        enum { WORD, WIDE, REAL } kind;
        int64_t bits;
        double real;
    };

    // From `format` on, the fields are a format and its arguments.
    RecordedCall(const Fields &fields, size_t at, const std::string &longSizes)
    {
        format = Target(fields.at(at));
        while (++at < fields.size()) {
            arguments.push_back(Read(fields[at]));
        }
        if (!IS_RECORDED_SIZE && format.has_value()) {
            Widen(*format, longSizes);
        }
    }

    // Gives the arguments to `function`, and a zero behind them.
    template <typename Function, typename... Given>
    int Pass(const Function &function, Given... given) const
    {
        constexpr size_t most = 5;
        if constexpr (sizeof...(given) < most) {
            if (sizeof...(given) < arguments.size()) {
                const Argument &next = arguments[sizeof...(given)];
                if (next.kind == Argument::REAL) {
                    return Pass(function, given..., next.real);
                }
                if constexpr (!IS_RECORDED_SIZE) {
                    if (next.kind == Argument::WIDE) {
                        return Pass(function, given..., next.bits);
                    }
                }
                return Pass(function, given..., static_cast<intptr_t>(next.bits));
            }
        }
        return function(given..., 0);
    }

    std::optional<std::string> format;
    std::vector<Argument> arguments;
    std::deque<std::string> texts;

private:
    Argument Read(const std::string &field)
    {
        const std::string value = field.substr(std::min<size_t>(2, field.size()));
        if (field[0] == 'd') {
            return {Argument::REAL, 0, Number<double>(value)};
        }
        if (field[0] == 's') {
            return {Argument::WORD, reinterpret_cast<intptr_t>(texts.emplace_back(Text(value)).c_str()), 0};
        }
        if (field == "null") {
            return {Argument::WORD, 0, 0};
        }
        return {Argument::WORD, Number<int64_t>(value), 0};
    }

    // Where a long has 32 bits, sizes that had 64 when the results were recorded are written as ll. The conversions say
    // which arguments take 64 bits then.
    void Widen(std::string &text, const std::string &longSizes)
    {
        const std::string start = R"((%(?:\{\w+\})?[-+ #0]*(?:\*|\d*)(?:\.(?:\*|\d*))?))";
        text = std::regex_replace(text, std::regex(start + "[" + longSizes + "]([diouxX])"), "$1ll$2");
        if (longSizes == "l") {  // HiLog, which prints all 16 digits of an address
            text = std::regex_replace(text, std::regex(start + "p"), "$1.16llX");
        } else if (std::any_of(arguments.begin(), arguments.end(), [](auto &each) { return each.bits > UINT32_MAX; })) {
            text = std::regex_replace(text, std::regex("%p"), "0x%llx");
        }
        const std::regex conversion(start + R"((hh?|ll|l|z|t|[jq]|I64)?[a-zA-Z%])");
        size_t at = 0;
        for (std::sregex_iterator match(text.begin(), text.end(), conversion), end; match != end; ++match) {
            const std::string found = match->str();
            at += static_cast<size_t>(std::count(found.begin(), found.end(), '*')) + (found.back() == '%' ? 0 : 1);
            if (at > 0 && at <= arguments.size() && std::regex_match(match->str(2), std::regex("ll|[jq]|I64"))) {
                arguments[at - 1].kind = Argument::WIDE;
            }
        }
    }
};

}  // namespace replay

#endif  // TESTS_REPLAY_CALL_H
