// SPDX-License-Identifier: Apache-2.0
//
// Dumps the stream that the sink receives, when the caller or the system parameter asks for it.

#ifndef EXAMPLES_STREAM_DUMP_H
#define EXAMPLES_STREAM_DUMP_H

#include <cstdint>
#include <string>

#include "report.h"
#include "transport.h"

class StreamDump {
public:
    // `isWanted` sets the parameter for this process, so that all pieces go into one file.
    explicit StreamDump(bool isWanted);
    ~StreamDump();
    StreamDump(const StreamDump &) = delete;
    StreamDump &operator=(const StreamDump &) = delete;

    // Returns false when the piece is not all in the file. Does nothing while dumps are off.
    bool Write(ByteView piece);

    // The file and the reason why it is cut short; empty while it is not.
    const std::string &Failure() const;

    // The file and its size, or why dumps are off although they were asked for.
    void AddRows(Summary &summary) const;

private:
    std::string FindReason(ByteView piece) const;

    std::string path_;
    std::string fileName_;
    std::string mode_;  // empty while dumps are off
    std::string whyOff_;
    std::string failure_;
    uint64_t size_ = 0;
};

#endif  // EXAMPLES_STREAM_DUMP_H
