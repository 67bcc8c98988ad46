// SPDX-License-Identifier: Apache-2.0
//
// Feeds a fuzzer files, and inputs made from pieces of them, the same in every run.
// Usage: fuzz_replay_NAME FILE...

#include <stdlib.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz_target.h"

namespace {

constexpr int MADE_INPUTS = 4000;
constexpr size_t FROM_NOTHING = 1000;

std::mt19937 g_random;  // starts the same everywhere

size_t Below(size_t limit)
{
    return g_random() % limit;
}

// The begin of one seed and the end of another, with a few bytes replaced, or made greater or smaller by 1.
std::string Make(const std::vector<std::string> &seeds)
{
    const std::string &first = seeds[Below(seeds.size())];
    const std::string &second = seeds[Below(seeds.size())];
    std::string input = first.substr(0, Below(first.size() + 1)) + second.substr(Below(second.size() + 1));
    for (size_t changes = input.empty() ? 0 : Below(4); changes > 0; --changes) {
        char &byte = input[Below(input.size())];
        byte = static_cast<char>(Below(2) == 0 ? Below(256) : static_cast<uint8_t>(byte) + 2 * Below(2) - 1);
    }
    return input;
}

void Run(const std::string &input)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
}

}  // namespace

int main(int argc, char **argv)
{
    setenv("OSTRA_HOST_LOG_LEVEL", "off", 0);  // unless somebody wants to see it
    std::vector<std::string> seeds = {std::string(FROM_NOTHING, '\0')};
    for (char &byte : seeds[0]) {
        byte = static_cast<char>(Below(256));
    }
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        if (!file) {
            std::perror(argv[i]);
            return EXIT_FAILURE;
        }
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        Run(seeds.back());
    }
    for (int i = 0; i < MADE_INPUTS; ++i) {
        Run(Make(seeds));
    }
    std::printf("%d inputs of files and %d made ones\n", argc - 1, MADE_INPUTS);
    return 0;
}
