// SPDX-License-Identifier: Apache-2.0
//
// Replays the recorded files of tests/data/platform/ on the host platform: reads them, hands each line's input to a
// function of the test, and compares what the function gives with what was recorded.
//
//     Interface qos;
//     qos.Add("SetThreadQos", [](const Fields &in) { return Fields{...}; });
//     qos.begin = [] { puts back what an earlier case changed; };
//     Replay("qos.txt", qos);

#ifndef TESTS_REPLAY_RECORDING_H
#define TESTS_REPLAY_RECORDING_H

#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace replay {

using Fields = std::vector<std::string>;

struct Line {
    int number = 0;   // in the file, from 1
    std::string raw;  // as it stands there
    Fields input;     // the operation, then its arguments
    Fields expected;
};

using Case = std::vector<Line>;

// Gets the arguments of a line, returns its result fields. Texts and bytes may be given unfolded. It may throw: the
// line is red then, as it is where an argument is missing (`at`) or malformed (the functions below).
using Operation = std::function<Fields(const Fields &arguments)>;

struct Interface {
    void Add(const std::string &name, Operation operation)
    {
        operations[name] = std::move(operation);
    }

    std::map<std::string, Operation> operations;
    std::set<std::string> notOffered;  // cases that use one are not replayed
    std::function<void()> begin = [] {
    };  // runs before each case
};

// The cases of a file: from one line "case" to the next, or one a line where there is no such line. Throws on a line
// that is no case and on a file that cannot be read.
std::vector<Case> ReadRecording(const std::string &name);

// Replays a file, reports each case that comes out differently, and prints how many cases it replayed and how many not.
// An operation that is neither offered nor listed, or listed and nowhere recorded, is a failure.
void Replay(const std::string &name, const Interface &interface);

// One field. Unfold writes repeated and joined pieces out: "x"*3+"y" is "xxxy", 00*3 01 is 00000001. Text and Bytes
// read a quoted text or hexadecimal digits into what they stand for, Quote and Hex write it.
std::string Unfold(const std::string &field);
std::string Text(const std::string &field);
std::string Bytes(const std::string &field);
std::string Quote(const std::string &text);
std::string Hex(const std::string &bytes);

// Splits at a separator outside quotes; "-" and "" are no elements.
Fields Split(const std::string &field, char separator = ',');

// A decimal or 0x number of exactly this type.
template <typename T>
T Number(const std::string &field)
{
    size_t end = 0;
    T value = 0;
    if constexpr (std::is_floating_point_v<T>) {
        value = static_cast<T>(std::stod(field, &end));
    } else if constexpr (std::is_signed_v<T>) {
        value = static_cast<T>(std::stoll(field, &end, 0));
    } else {
        value = static_cast<T>(std::stoull(field, &end, 0));
    }
    if (end != field.size()) {
        throw std::invalid_argument("no number: " + field);
    }
    return value;
}

}  // namespace replay

#endif  // TESTS_REPLAY_RECORDING_H
