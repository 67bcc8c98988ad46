// SPDX-License-Identifier: Apache-2.0
//
// The options of the example pair.

#ifndef EXAMPLES_OPTIONS_H
#define EXAMPLES_OPTIONS_H

#include <optional>
#include <string>

#include "fault_injector.h"

struct PairOptions {
    std::string inputPath;          // a file, a pipe, or "-" for standard input; empty for a tone
    std::string outputPath;         // where the sink writes the stream; empty for nowhere
    std::optional<double> seconds;  // how long the tone is sent, as fast as it goes
    FaultOptions faults;
    double timeout = 10;    // seconds that a silent side is given
    bool isDumped = false;  // whether the sink dumps the stream, parameter or not
    bool isVerbose = false;
};

// Exit statuses beside those of <cstdlib>.
constexpr int EXIT_USAGE = 2;
constexpr int EXIT_INTERRUPTED = 130;

// Returns the exit status when the program is to end at once, after the help or a wrong call.
std::optional<int> ReadOptions(int argc, char **argv, PairOptions &options);

#endif  // EXAMPLES_OPTIONS_H
