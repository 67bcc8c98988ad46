// SPDX-License-Identifier: Apache-2.0
//
// Where the stream comes from: a generated tone, a file, a pipe or a device.

#ifndef EXAMPLES_CHANNEL_PAIR_INPUT_H
#define EXAMPLES_CHANNEL_PAIR_INPUT_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "pair.h"
#include "transport.h"

// The length in chunks or in seconds; neither is set if it is unknown.
struct StreamLength {
    std::optional<uint64_t> chunks;
    std::optional<double> seconds;
};

class Input {
public:
    enum class Result {
        CHUNK,
        IDLE,  // no input yet, or interrupted by a signal
        END,
        FAILED,  // errno is set
    };

    // Opens the input that the options specify. Returns false, with errno set, if that fails.
    bool Open(const PairOptions &options);

    // Reads the next chunk, which is valid until the next call. Only the last one may be shorter than CHUNK_BYTES.
    // Waits at most `idleMs` for a pipe or a device.
    Result Next(ByteView &chunk, int idleMs);

    const StreamLength &Length() const
    {
        return length_;
    }

    // For messages: for example "5 s of a generated tone", "standard input" or the path.
    const std::string &Name() const
    {
        return name_;
    }

    // -1 for a tone.
    int Descriptor() const
    {
        return fd_;
    }

private:
    void GenerateTone();
    Result NextToneChunk(ByteView &chunk);

    std::string name_;
    StreamLength length_;
    int fd_ = -1;  // closed when the process ends
    bool isPolled_ = false;
    std::vector<uint8_t> buffer_;  // a second of the tone, or a chunk of the file
    size_t filled_ = 0;
    uint64_t chunks_ = 0;
    std::chrono::steady_clock::time_point start_;
};

#endif  // EXAMPLES_CHANNEL_PAIR_INPUT_H
