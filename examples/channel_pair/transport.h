// SPDX-License-Identifier: Apache-2.0
//
// Channel frames over a socket that preserves message boundaries (AF_UNIX, SOCK_SEQPACKET). A message is
//
//     4 bytes  size of the frame, big-endian
//     4 bytes  CRC-16 of the frame, big-endian
//     frame    header value: kind in the low 4 bits, above them the sequence number modulo 2^24; then the content
//
// docs/wire-formats.md describes the contents. Every frame has the next sequence number, so the receiver detects
// missing, duplicated, delayed and unexpected frames.

#ifndef EXAMPLES_CHANNEL_PAIR_TRANSPORT_H
#define EXAMPLES_CHANNEL_PAIR_TRANSPORT_H

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "channel_protocol.h"

enum class FrameKind : uint32_t {
    STREAM = 0,      // a chunk of the stream
    DEVICE = 1,      // the device document
    SERVICE = 2,     // the service document
    SETTINGS = 3,    // the stream's settings, a map in a parcel
    END = 4,         // the end of the stream, a map in a parcel; a connection that closes without it was interrupted
    KEEP_ALIVE = 5,  // no content: the source waits for its input
};
constexpr uint32_t FRAME_KINDS = 6;
constexpr uint32_t SEQUENCE_NUMBERS = 1U << 24;
constexpr size_t PREFIX_BYTES = 8;  // size and CRC
constexpr size_t MAX_MESSAGE_BYTES = 64 * 1024;

// The faults of a message, which FaultInjector injects and FrameReceiver detects.
enum Fault : uint32_t {
    CORRUPTED,   // the CRC does not match
    TRUNCATED,   // the size does not match
    DUPLICATED,  // received before
    DELAYED,     // overtaken by a later frame; dropped, since the stream has moved on
    EMPTY,       // an empty message
    OVERSIZED,   // longer than MAX_MESSAGE_BYTES
    UNEXPECTED,  // a kind or a sequence number that does not belong to this stream
};
constexpr uint32_t FAULT_KINDS = 7;
using FaultCounts = std::array<uint64_t, FAULT_KINDS>;

uint64_t Sum(const FaultCounts &counts);

// Formats the counts as "3 (2 corrupted, 1 truncated)", or "0".
std::string ToString(const FaultCounts &counts);

// A view of bytes, which it does not own. Not const, because ChannelProtocol takes a pointer to non-const bytes.
struct ByteView {
    uint8_t *data = nullptr;
    size_t size = 0;
};

// The number of chunks, the number of their bytes, and the sum of the 64-bit hashes of the chunks, each with its frame
// number as the seed.
struct Totals {
    uint64_t chunks = 0;
    uint64_t bytes = 0;
    uint64_t digest = 0;

    void Add(uint64_t frameNumber, ByteView chunk);
};

using Message = std::vector<uint8_t>;

// Returns the message of a frame, or an empty one, with errno set, if allocation fails.
Message PackMessage(FrameKind kind, uint64_t frameNumber, ByteView content);

// Returns false with errno set if:
// - the peer has closed the connection (EPIPE or ECONNRESET);
// - the message cannot be sent within the socket's timeout (EAGAIN).
bool SendMessage(int socket, const Message &message);

struct ReceivedFrame {
    FrameKind kind = FrameKind::STREAM;
    uint64_t number = 0;  // sequence number, which continues beyond 2^24
    ByteView content;     // valid until the next call of Receive
};

enum class ReceiveResult {
    FRAME,
    DROPPED,  // a fault was detected and counted
    CLOSED,   // the peer has closed the connection, and everything it sent has been read
    FAILED,   // errno is set; EAGAIN if nothing arrived within the socket's timeout
};

struct ReceiverStatus {
    uint64_t nextFrame = 0;                // the number that the next frame should have
    std::optional<uint64_t> firstMissing;  // the first frame that did not arrive in order
    FaultCounts detected{};
};

class FrameReceiver {
public:
    explicit FrameReceiver(int socket) : socket_(socket), message_(MAX_MESSAGE_BYTES)
    {
    }

    // Waits for the next message.
    ReceiveResult Receive(ReceivedFrame &frame);

    const ReceiverStatus &Status() const
    {
        return status_;
    }

private:
    static constexpr uint32_t WINDOW = 4096;  // sequence numbers further away than this are unexpected

    bool IsClosed() const;
    std::optional<Fault> CheckMessage(size_t size);
    std::optional<Fault> CheckSequence(uint32_t sequence, uint64_t &number);

    int socket_;
    Message message_;
    std::optional<OHOS::DistributedHardware::OstraAdapter::ChannelProtocol> frame_;
    std::bitset<WINDOW> received_;  // which of the last WINDOW numbers arrived
    ReceiverStatus status_;
};

#endif  // EXAMPLES_CHANNEL_PAIR_TRANSPORT_H
