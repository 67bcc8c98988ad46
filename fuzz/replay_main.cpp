// SPDX-License-Identifier: Apache-2.0
//
// Runs a fuzzer on files and on mutations of them, the same in every run.
// Usage: fuzz_replay_NAME FILE...

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fuzz_target.h"

namespace {

constexpr int GENERATED_INPUTS = 4000;
constexpr size_t RANDOM_SEED_SIZE = 1000;

std::mt19937 g_random;  // default seed: the same inputs everywhere

size_t Below(size_t limit)
{
    return g_random() % limit;
}

// Returns the start of one seed and the end of another, with a few bytes replaced or changed by 1.
std::string Mutate(const std::vector<std::string> &seeds)
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
    std::vector<std::string> seeds(1);
    std::generate_n(std::back_inserter(seeds[0]), RANDOM_SEED_SIZE, [] { return static_cast<char>(Below(256)); });
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        if (!file) {
            std::perror(argv[i]);
            return EXIT_FAILURE;
        }
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        Run(seeds.back());
    }
    for (int i = 0; i < GENERATED_INPUTS; ++i) {
        Run(Mutate(seeds));
    }
    std::printf("%d files and %d mutations\n", argc - 1, GENERATED_INPUTS);
    return 0;
}
