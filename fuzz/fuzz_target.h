// SPDX-License-Identifier: Apache-2.0
//
// Helpers for fuzzers: functions that take values from the front of an input, and ExpectEqual, which compares the
// library with a naive reference, and aborts the program if they differ.
//
//     int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
//     {
//         std::string input = Begin(data, size);
//         const int32_t number = TakeNumber(input);
//         ExpectEqual("hex digits", NaiveHex(number), Hex(number));
//         return 0;
//     }

#ifndef FUZZ_FUZZ_TARGET_H
#define FUZZ_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

// Runs the fuzzed code on one input. Always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace Fuzz {

inline std::string currentInput;  // printed if values differ

inline std::string Begin(const uint8_t *data, size_t size)
{
    return currentInput = {data, data + size};
}

// At the end of the input, strings are empty and numbers 0.
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

// A number of any magnitude: the first byte is the number of bits by which the next four are shifted right.
inline int32_t TakeNumber(std::string &input)
{
    const int shift = TakeByte(input) % 32;
    uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        number = number << 8 | TakeByte(input);
    }
    return static_cast<int32_t>(number >> shift);
}

// The first byte is the length, modulo 64.
inline std::string TakeString(std::string &input)
{
    return Take(input, TakeByte(input) % 64U);
}

// Aborts if the values differ, after printing them and the input (which `xxd -r -p` converts). The fuzzer then saves
// the input.
template <typename Value>
void ExpectEqual(const std::string &field, const Value &expected, const Value &got)
{
    if (got == expected) {
        return;
    }
    std::cerr << "differs: " << field << "\nexpected: " << expected << "\ngot: " << got << "\ninput: ";
    for (const char byte : currentInput) {
        std::fprintf(stderr, "%02x", static_cast<unsigned char>(byte));
    }
    std::abort();
}

}  // namespace Fuzz

#endif  // FUZZ_FUZZ_TARGET_H
