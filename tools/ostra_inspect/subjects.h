// SPDX-License-Identifier: Apache-2.0
//
// The subjects that the tool looks at, one function for each. All raise InputError for what they cannot read at all.

#ifndef TOOLS_SUBJECTS_H
#define TOOLS_SUBJECTS_H

#include <string>
#include <vector>

#include "log_lines.h"
#include "report.h"

// What was found, what the library logged about it, and, when the library refused it, why.
struct Finding {
    Report report;
    std::vector<LogLine> log;
    std::string refusal;
};

Finding InspectFrame(const std::string &bytes);
Finding InspectService(const std::string &text);
Finding InspectAudio(const std::string &text);
Finding InspectDevice(const std::string &text);
Finding InspectParcel(const std::string &bytes);

struct DumpOptions {
    std::string path;
    int rate = 48000;
    int channels = 2;
    int bits = 16;
    std::string wavPath;    // empty for none
    std::string imagePath;  // empty for none
};
Finding InspectDump(const DumpOptions &options);

// Events are printed line by line as they are read, since more may come.
struct EventOptions {
    std::string path = "-";
    bool isFollowed = false;
    bool isJson = false;
};
void PrintEvents(const EventOptions &options);

#endif  // TOOLS_SUBJECTS_H
