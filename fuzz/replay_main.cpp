// SPDX-License-Identifier: Apache-2.0
//
// Feeds a fuzzer every file of a folder, and inputs made from those files and from nothing, the same in every run.
// Usage: fuzz_replay_NAME FOLDER

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz_target.h"

namespace {

constexpr int MADE_INPUTS = 2000;
constexpr size_t LONGEST_FROM_NOTHING = 64;

using Input = std::vector<uint8_t>;

std::vector<Input> ReadAll(const char *folder)
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());  // a folder has no order of its own
    std::vector<Input> inputs;
    for (const std::filesystem::path &path : paths) {
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return inputs;
}

class Maker {
public:
    explicit Maker(const std::vector<Input> &seeds) : seeds_(seeds)
    {
    }

    // One of: bytes from nothing; a seed that is cut, has a few bytes replaced, or is followed by another's end.
    Input Make()
    {
        if (Below(4) == 0) {
            Input input(Below(LONGEST_FROM_NOTHING + 1));
            std::generate(input.begin(), input.end(), [this] { return Byte(); });
            return input;
        }
        Input input = Seed();
        switch (Below(3)) {
            case 0:
                input.resize(Below(input.size() + 1));
                break;
            case 1:
                for (size_t changes = 1 + Below(3); changes > 0 && !input.empty(); --changes) {
                    input[Below(input.size())] = Byte();
                }
                break;
            default: {
                const Input &other = Seed();
                input.resize(Below(input.size() + 1));
                const size_t begin = Below(other.size() + 1);
                input.insert(input.end(), other.begin() + static_cast<std::ptrdiff_t>(begin), other.end());
            }
        }
        return input;
    }

private:
    size_t Below(size_t limit)
    {
        return random_() % limit;
    }

    uint8_t Byte()
    {
        return static_cast<uint8_t>(random_());
    }

    const Input &Seed()
    {
        return seeds_[Below(seeds_.size())];
    }

    const std::vector<Input> &seeds_;
    std::mt19937 random_;  // starts the same everywhere
};

}  // namespace

int main(int argc, char **argv)
{
    const std::vector<Input> seeds = argc == 2 ? ReadAll(argv[1]) : std::vector<Input>();
    if (seeds.empty()) {
        std::fprintf(stderr, "usage: %s FOLDER, with at least one input in it\n", argv[0]);
        return 2;
    }
    for (const Input &seed : seeds) {
        LLVMFuzzerTestOneInput(seed.data(), seed.size());
    }
    Maker maker(seeds);
    for (int i = 0; i < MADE_INPUTS; ++i) {
        const Input input = maker.Make();
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%zu inputs of the folder and %d made ones\n", seeds.size(), MADE_INPUTS);
    return 0;
}
