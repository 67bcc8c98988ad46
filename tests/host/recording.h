// SPDX-License-Identifier: Apache-2.0
//
// Replays the files of tests/data/host/ on the host platform: passes the input of each line to a function of the test,
// and compares its result with the one in the file.
//
//     Replay("recorded/qos.txt", 67, {{"SetThreadQos", [](const Fields &in) { return Fields{...}; }}});

#ifndef TESTS_HOST_RECORDING_H
#define TESTS_HOST_RECORDING_H

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace replay {

using Fields = std::vector<std::string>;

struct Line {
    int number = 0;   // in the file, from 1
    std::string raw;  // verbatim
    Fields input;     // the operation, then its arguments
    Fields expected;
};

using Case = std::vector<Line>;

// Maps the arguments of a line to its result fields. The line fails if it throws, as `at` and the functions below do
// for a missing or malformed argument.
using Operation = std::function<Fields(const Fields &arguments)>;
using Operations = std::map<std::string, Operation>;

// Reads the cases of a file: from one line "case" to the next, or one per line if there is no such line. Expands their
// fields and removes the spaces between groups of bytes. Throws if a line is malformed or the file cannot be read.
std::vector<Case> ReadRecording(const std::string &name);

// Thrown by an operation whose result depends on the size of long, if that of this machine differs from the recorded
// one.
struct OtherMachine {};

// Replays a file of `count` cases, with `begin` before each, reports each case with another result, and prints how many
// cases were replayed. Skips cases of other machines and those with an operation whose name contains `notOffered`. Any
// other operation that is missing is a failure, and so is a `notOffered` that no case contains.
void Replay(
    const std::string &name, size_t count, const Operations &operations, const std::function<void()> &begin = [] {},
    const std::optional<std::string> &notOffered = {});

// Expands repeated and joined pieces: "x"*3+"y" is "xxxy", 00*3 01 is 000000 01.
std::string Expand(const std::string &folded);

// Text and Bytes parse an expanded field, a quoted string or hexadecimal digits; Quote and Hex print one.
std::string Text(const std::string &field);
std::string Bytes(const std::string &field);
std::string Quote(const std::string &text);
std::string Hex(const std::string &bytes);

// Splits at a separator outside quotes; "-" and "" have no elements.
Fields Split(const std::string &field, char separator = ',');

// A decimal or 0x number.
template <typename T>
T Number(const std::string &field)
{
    size_t end = 0;
    T value = 0;
    if constexpr (std::is_floating_point_v<T>) {
        value = static_cast<T>(std::stod(field, &end));
    } else if (field[0] == '-') {
        value = static_cast<T>(std::stoll(field, &end, 0));
    } else {
        value = static_cast<T>(std::stoull(field, &end, 0));
    }
    if (end != field.size()) {
        throw std::invalid_argument("not a number: " + field);
    }
    return value;
}

}  // namespace replay

#endif  // TESTS_HOST_RECORDING_H
