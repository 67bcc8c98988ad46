// SPDX-License-Identifier: Apache-2.0
//
// Where the source's stream comes from: a generated tone, or a file, a pipe or a device that is read once, piece by
// piece, into a buffer that is kept.

#ifndef EXAMPLES_STREAM_INPUT_H
#define EXAMPLES_STREAM_INPUT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "fault_injector.h"
#include "options.h"
#include "unique_fd.h"

// The stream's format: 48 kHz, 16 bits, stereo, sent in pieces of 20 ms.
constexpr uint32_t SAMPLE_RATE = 48000;
constexpr uint32_t CHANNELS = 2;
constexpr uint32_t BYTES_PER_SAMPLE = 2;
constexpr uint32_t PIECE_MS = 20;
constexpr uint32_t PIECE_BYTES = SAMPLE_RATE / 1000 * PIECE_MS * CHANNELS * BYTES_PER_SAMPLE;

class StreamInput {
public:
    enum class Result {
        PIECE,
        QUIET,  // nothing to read as yet, or a signal came
        END,
        FAILED,  // errno says why
    };

    // Opens what the options name. Returns false with the reason in errno; a directory is no stream.
    bool Open(const PairOptions &options);

    // The next piece, whole but for the last one; it stays as it is until the next call. Waits at most `quietMs` for a
    // pipe, and no longer than until the other end of `link` has gone.
    Result Next(ByteView &piece, int link, int quietMs);

    const StreamLength &Length() const;
    // "a tone of 5 s", or the path.
    const std::string &Name() const;
    int Descriptor() const;

private:
    void MakeTone();
    Result NextOfTone(ByteView &piece);
    Result Fill();
    bool IsReadable(int link, int quietMs) const;

    std::string name_;
    StreamLength length_;
    UniqueFd file_;  // closed for a tone
    bool isPolled_ = false;
    std::vector<uint8_t> buffer_;
    size_t begin_ = 0;  // of the unread bytes in the buffer
    size_t end_ = 0;
    uint64_t pieces_ = 0;
    std::chrono::steady_clock::time_point start_;  // of the tone
};

#endif  // EXAMPLES_STREAM_INPUT_H
