// SPDX-License-Identifier: Apache-2.0
//
// What every fuzzer is made of: one function that takes an input, and a way to say what must hold for each.

#ifndef FUZZ_FUZZ_TARGET_H
#define FUZZ_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Runs the fuzzed code on one input and always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// Ends the program, so that the input is kept, when a property does not hold.
inline void Require(bool holds, const char *property)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", property);
        std::abort();
    }
}

#endif  // FUZZ_FUZZ_TARGET_H
