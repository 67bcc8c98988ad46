// SPDX-License-Identifier: Apache-2.0
//
// How the example pair carries frames over a socket that keeps message borders. One message is one channel frame,
// followed by its CRC-16 as four bytes, most significant first. The header value holds the frame's kind in its low 4
// bits and a sequence number, modulo 2^24, above them. One thread at a time uses a sender or a receiver.

#ifndef EXAMPLES_CHANNEL_LINK_H
#define EXAMPLES_CHANNEL_LINK_H

#include <cstdint>
#include <optional>
#include <vector>

enum class FrameKind : uint32_t {
    STREAM = 0,    // a piece of the stream
    DEVICE = 1,    // the source's device document
    SERVICE = 2,   // its service document
    SETTINGS = 3,  // the stream's settings, a parcel
};

struct LinkCount {
    uint64_t frames = 0;
    uint64_t bytes = 0;  // of content
    uint64_t crcMismatches = 0;
    uint64_t gaps = 0;  // in the sequence numbers, in frames
};

class FrameSender {
public:
    // Sends over `socket`, which stays the caller's. The content of frame `flippedFrame`, counted from 0, gets one bit
    // flipped after its CRC is taken, as a fault on the way would.
    FrameSender(int socket, std::optional<uint64_t> flippedFrame);

    // Returns false when the frame cannot be built or sent.
    bool Send(FrameKind kind, std::vector<uint8_t> &content);

    const LinkCount &Count() const;

private:
    int socket_;
    std::optional<uint64_t> flippedFrame_;
    LinkCount count_;
};

struct ReceivedFrame {
    FrameKind kind = FrameKind::STREAM;
    std::vector<uint8_t> content;
};

enum class ReceiveResult {
    FRAME,   // a frame whose CRC is right
    BROKEN,  // a message that is no frame, or whose CRC is wrong; dropped
    END,     // the other side has closed the link
    FAILED,  // the socket failed
};

class FrameReceiver {
public:
    explicit FrameReceiver(int socket);

    // Waits for the next message.
    ReceiveResult Receive(ReceivedFrame &frame);

    const LinkCount &Count() const;

private:
    int socket_;
    uint32_t nextSequence_ = 0;
    LinkCount count_;
    std::vector<uint8_t> message_;
};

#endif  // EXAMPLES_CHANNEL_LINK_H
