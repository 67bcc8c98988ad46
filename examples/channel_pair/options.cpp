// SPDX-License-Identifier: Apache-2.0

#include "options.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <limits>

namespace {

constexpr char DESCRIPTION[] =
    "Sends FILE, or 5 s of a generated tone (48 kHz, 16 bits, stereo), from a source process to a sink process in\n"
    "channel frames of 20 ms, and checks what arrived: every byte, and nothing else. Before the stream go the\n"
    "source's device document (frame 0), its service document (frame 1) and the stream's settings (frame 2).\n";

constexpr char FOOTER[] =
    "\nExits with 0 when all is as it should be, 1 when not, 2 for a wrong call, 130 when interrupted.";

constexpr double LONGEST_SECONDS = 7 * 24 * 3600;
constexpr double LONGEST_TIMEOUT = 3600;
constexpr double SHORTEST_TIME = 0.1;
constexpr uint64_t MOST_FAULTS = 1000000;

}  // namespace

std::optional<int> ReadOptions(int argc, char **argv, PairOptions &options)
{
    CLI::App app(DESCRIPTION, "channel_pair");
    app.footer(FOOTER);
    const CLI::Validator isNamed([](const std::string &path) { return path.empty() ? "the name is empty" : ""; }, "");
    const CLI::Range anyNumber(uint64_t{0}, uint64_t{std::numeric_limits<int64_t>::max()});
    uint64_t flippedFrame = 0;

    CLI::Option *const file = app.add_option("FILE", options.inputPath, "what to send; - is standard input")
                                  ->option_text(" ")
                                  ->check(isNamed);
    app.add_option("-o,--output", options.outputPath, "let the sink write the stream to FILE")
        ->option_text("FILE")
        ->check(isNamed);
    app.add_option("--seconds", options.seconds, "send the tone for T seconds, as fast as it goes")
        ->option_text("T")
        ->check(CLI::Range(SHORTEST_TIME, LONGEST_SECONDS))
        ->excludes(file);
    CLI::Option *const faults =
        app.add_option("--faults", options.faults.count,
                       "damage N pieces of the stream at random places: each must be caught, the rest arrive")
            ->option_text("N")
            ->check(CLI::Range(uint64_t{0}, MOST_FAULTS));
    app.add_option("--seed", options.faults.seed, "where the faults fall; 1 by default")
        ->option_text("S")
        ->check(anyNumber)
        ->needs(faults);
    CLI::Option *const flip =
        app.add_option("--flip", flippedFrame, "flip a bit of frame N (from 0), untold: the pair must fail and name it")
            ->option_text("N")
            ->check(anyNumber)
            ->excludes(faults);
    app.add_option("--timeout", options.timeout, "how long a silent side is waited for; 10 s by default")
        ->option_text("S")
        ->check(CLI::Range(SHORTEST_TIME, LONGEST_TIMEOUT));
    app.add_flag("--dump", options.isDumped, "let the sink dump the stream below /data/local/tmp/");
    app.add_flag("-v,--verbose", options.isVerbose, "print every event, the connection and the memory in use");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == EXIT_SUCCESS ? EXIT_SUCCESS : EXIT_USAGE;
    }
    if (flip->count() > 0) {
        options.faults.flippedFrame = flippedFrame;
    }
    return std::nullopt;
}
