// SPDX-License-Identifier: Apache-2.0
//
// Runs a fuzzer on files and on mutations of them, which are the same in every run.
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

constexpr int MUTATIONS = 4000;
constexpr size_t RANDOM_SEED_SIZE = 1000;

std::mt19937 g_random;  // default seed: the same inputs everywhere

// Returns the start of one seed and the end of another, with a few bytes replaced or changed by 1.
std::string Mutate(const std::vector<std::string> &seeds)
{
    const std::string &first = seeds[g_random() % seeds.size()];
    const std::string &second = seeds[g_random() % seeds.size()];
    std::string input = first.substr(0, g_random() % (first.size() + 1));
    input += second.substr(g_random() % (second.size() + 1));
    for (size_t changes = input.empty() ? 0 : g_random() % 4; changes > 0; --changes) {
        char &byte = input[g_random() % input.size()];
        const bool isReplaced = g_random() % 2 == 0;
        byte = static_cast<char>(isReplaced ? g_random() : static_cast<uint8_t>(byte) + g_random() % 2 * 2 - 1);
    }
    return input;
}

}  // namespace

int main(int argc, char **argv)
{
    std::vector<std::string> seeds(1);
    std::generate_n(std::back_inserter(seeds[0]), RANDOM_SEED_SIZE, [] { return static_cast<char>(g_random()); });
    for (int i = 1; i < argc; ++i) {
        std::ifstream file(argv[i], std::ios::binary);
        if (!file) {
            std::perror(argv[i]);
            return EXIT_FAILURE;
        }
        seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    std::vector<std::string> inputs = seeds;
    std::generate_n(std::back_inserter(inputs), MUTATIONS, [&seeds] { return Mutate(seeds); });
    for (const std::string &input : inputs) {
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
    }
    std::printf("%d files and %d mutations\n", argc - 1, MUTATIONS);
    return 0;
}
