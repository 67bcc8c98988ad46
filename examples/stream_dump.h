// SPDX-License-Identifier: Apache-2.0
//
// Dumps the stream that the sink receives, when the caller or the system parameter asks for it.

#ifndef EXAMPLES_STREAM_DUMP_H
#define EXAMPLES_STREAM_DUMP_H

#include <cstdint>
#include <string>
#include <vector>

#include "summary.h"

class StreamDump {
public:
    // `isWanted` sets the parameter for this process, so that all pieces go into one file.
    explicit StreamDump(bool isWanted);
    ~StreamDump();
    StreamDump(const StreamDump &) = delete;
    StreamDump &operator=(const StreamDump &) = delete;

    void Write(const std::vector<uint8_t> &piece) const;

    // The file and its size, when dumping is on.
    void AddRows(Summary &summary) const;

private:
    std::string fileName_;
    bool isOn_;
};

#endif  // EXAMPLES_STREAM_DUMP_H
