// SPDX-License-Identifier: Apache-2.0
//
// Replays the recorded files of tests/data/host/recorded/, and those of tests/data/host/handwritten/ beside them, on the host platform:
// reads them, hands each line's input to a function of the test, and compares what the function gives with what was
// recorded.
//
//     Replay("recorded/qos.txt", 67, {{"SetThreadQos", [](const Fields &in) { return Fields{...}; }}});

#ifndef TESTS_REPLAY_RECORDING_H
#define TESTS_REPLAY_RECORDING_H

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
    std::string raw;  // as it stands there
    Fields input;     // the operation, then its arguments
    Fields expected;
};

using Case = std::vector<Line>;

// Gets the arguments of a line, returns its result fields. It may throw: the line is red then, as it is where an
// argument is missing (`at`) or malformed (the functions below).
using Operation = std::function<Fields(const Fields &arguments)>;
using Operations = std::map<std::string, Operation>;

// The cases of a file: from one line "case" to the next, or one a line where there is no such line. Their fields are
// unfolded, and no bytes are grouped. Throws on a line that is no case and on a file that cannot be read.
std::vector<Case> ReadRecording(const std::string &name);

// An operation raises it where its result depends on the size of long and this machine has another than the recorded.
struct OtherMachine {};

// Replays a file of so many cases, with `begin` before each, reports each case that comes out differently, and prints
// how many cases it replayed and how many not: those with an operation whose name contains `notOffered`, and those of
// other machines. Any other operation that is not offered is a failure, and so is it where nothing contains that.
void Replay(
    const std::string &name, size_t count, const Operations &operations, const std::function<void()> &begin = [] {},
    const std::optional<std::string> &notOffered = {});

// Writes repeated and joined pieces out: "x"*3+"y" is "xxxy", 00*3 01 is 000000 01.
std::string Unfold(const std::string &folded);

// Text and Bytes read an unfolded field, a quoted text or hexadecimal digits, into what it stands for; Quote and Hex
// write it.
std::string Text(const std::string &field);
std::string Bytes(const std::string &field);
std::string Quote(const std::string &text);
std::string Hex(const std::string &bytes);

// Splits at a separator outside quotes; "-" and "" are no elements.
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
        throw std::invalid_argument("no number: " + field);
    }
    return value;
}

}  // namespace replay

#endif  // TESTS_REPLAY_RECORDING_H
