// SPDX-License-Identifier: Apache-2.0
//
// What every fuzzer is made of: pieces that are taken off the front of an input, and the comparison of what a naive
// reference gives with what the library gave. The first difference is printed with the input and ends the program.
//
//     int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
//     {
//         std::string input = Begin(data, size);
//         const int32_t number = TakeNumber(input);
//         Hold("text", NaiveText(number), Text(number));
//         return 0;
//     }

#ifndef FUZZ_FUZZ_TARGET_H
#define FUZZ_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Runs the fuzzed code on one input and always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace Fuzz {

inline std::string currentInput;  // for the report of a difference

inline std::string Begin(const uint8_t *data, size_t size)
{
    return currentInput = {data, data + size};
}

// Where the input has come to its end, texts are empty and numbers 0.
inline std::string Take(std::string &input, size_t length)
{
    const std::string taken = input.substr(0, length);
    input.erase(0, length);
    return taken;
}

inline uint8_t TakeByte(std::string &input)
{
    return input.empty() ? 0 : static_cast<uint8_t>(Take(input, 1)[0]);
}

// A number of any magnitude: a byte tells by how many bits the four that follow are shifted down.
inline int32_t TakeNumber(std::string &input)
{
    const int shift = TakeByte(input) % 32;
    uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        number = number << 8 | TakeByte(input);
    }
    return static_cast<int32_t>(number >> shift);
}

// A byte tells the length, which is below 64.
inline std::string TakeText(std::string &input)
{
    return Take(input, TakeByte(input) % 64U);
}

inline std::string TakeLine(std::string &input)
{
    const std::string line = Take(input, input.find('\n'));
    Take(input, 1);
    return line;
}

template <typename Number>
std::string Show(Number number)
{
    return std::to_string(number);
}

// What is not printed is in hexadecimal.
inline std::string Show(const std::string &text)
{
    std::string shown;
    for (const char character : text) {
        char code[] = "\\xNN";
        const auto byte = static_cast<unsigned char>(character);
        std::snprintf(code, sizeof(code), "\\x%02X", byte);
        shown += byte < ' ' || byte > '~' || byte == '\\' ? code : std::string(1, character);
    }
    return '"' + shown + '"';
}

// Ends the program, so that the input is kept, when the library gave something else.
template <typename Value>
void Hold(const char *field, const Value &expected, const Value &got)
{
    if (got != expected) {
        std::fprintf(stderr, "differs: %s\nexpected: %s\ngot: %s\ninput: %s\n", field, Show(expected).c_str(),
                     Show(got).c_str(), Show(currentInput).c_str());
        std::abort();
    }
}

}  // namespace Fuzz

#endif  // FUZZ_FUZZ_TARGET_H
