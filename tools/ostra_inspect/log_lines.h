// SPDX-License-Identifier: Apache-2.0
//
// What the library logs while it reads, which tells why it refused or skipped something.

#ifndef TOOLS_LOG_LINES_H
#define TOOLS_LOG_LINES_H

#include <string>
#include <vector>

#include "hilog/log.h"
#include "report.h"

struct LogLine {
    LogLevel level;
    std::string text;  // function and message, without the library's tag
};

// Starts to collect what is logged, for as long as the process runs. The output to standard error is off unless the
// environment asks for it.
void CollectLog();

// The lines that were collected since the last call.
std::vector<LogLine> TakeLog();

// The warnings and errors among them, in one line; `otherwise` when there are none.
std::string Reasons(const std::vector<LogLine> &lines, const std::string &otherwise);

// All of them as a list.
Report LogReport(const std::vector<LogLine> &lines);

#endif  // TOOLS_LOG_LINES_H
