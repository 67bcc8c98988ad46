// SPDX-License-Identifier: Apache-2.0
//
// How the example pair carries frames over a socket that keeps message borders (AF_UNIX, SOCK_SEQPACKET). One message:
//
//     size of the frame   4 bytes, most significant first
//     CRC-16 of the frame 4 bytes, most significant first
//     the frame           header value (kind in the low 4 bits, above them a sequence number modulo 2^24) and content
//
// The kinds of frames, and what is in them, are those of FrameKind. Every frame takes the next sequence number, so that
// the receiver tells a missing frame from a repeated, a late and a foreign one. The stream ends with a frame of its own
// (stream_end.h); a link that closes without it was cut off.
//
// One thread at a time uses a sender or a receiver. Both keep their buffers: beyond what a frame object makes, carrying
// one copies and allocates nothing.

#ifndef EXAMPLES_CHANNEL_LINK_H
#define EXAMPLES_CHANNEL_LINK_H

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "channel_protocol.h"
#include "damage.h"
#include "frame_order.h"

enum class FrameKind : uint32_t {
    STREAM = 0,    // a piece of the stream
    DEVICE = 1,    // the source's device document
    SERVICE = 2,   // its service document
    SETTINGS = 3,  // the stream's settings, a parcel
    END = 4,       // the end of the stream: what was sent, a parcel
    ALIVE = 5,     // nothing: the source waits for its input
};
constexpr uint32_t FRAME_KINDS = 6;

// The longest message that a receiver takes, and the size and CRC ahead of its frame.
constexpr size_t MAX_MESSAGE_BYTES = 64 * 1024;
constexpr size_t PREFIX_BYTES = 8;

// Bytes of somebody else.
struct ByteView {
    uint8_t *data = nullptr;
    size_t size = 0;
};

// What went over a link: frames, their content in bytes, and, where the stream as a whole is checked too, the sum of a
// 64-bit digest of each frame's content and number, which tells two streams apart.
struct LinkTotals {
    uint64_t frames = 0;
    uint64_t bytes = 0;
    uint64_t digest = 0;

    void Add(uint64_t number, ByteView content, bool isDigested);
    LinkTotals operator-(const LinkTotals &other) const;
    bool operator==(const LinkTotals &other) const;
};

enum class Carried {
    WHOLE,
    SPOILT,  // damaged on the way on purpose: its content will not arrive
    FAILED,  // errno says why
};

// What carries messages to the other side.
class Road {
public:
    virtual ~Road() = default;
    virtual Carried Carry(FrameKind kind, ByteView prefix, ByteView frame) = 0;
};

// The plain one: a socket, which stays the caller's.
class SocketRoad : public Road {
public:
    explicit SocketRoad(int socket);
    Carried Carry(FrameKind kind, ByteView prefix, ByteView frame) override;

private:
    int socket_;
};

// The header value of a frame.
uint32_t HeaderValue(uint32_t kind, uint32_t sequence);

// What goes ahead of `frame` in its message.
std::array<uint8_t, PREFIX_BYTES> PrefixOf(const OHOS::DistributedHardware::OstraAdapter::ChannelProtocol &frame);

class FrameSender {
public:
    // Keeps a reference to the road. Both ends of a link take digests, or none does.
    explicit FrameSender(Road &road, bool isDigested = true);

    // Returns false, with the reason in errno, when the frame cannot be built or sent.
    bool Send(FrameKind kind, ByteView content);

    // All frames ahead of the end frame, and those of them that were spoilt on purpose.
    const LinkTotals &Sent() const;
    const LinkTotals &Spoilt() const;

private:
    Road &road_;
    bool isDigested_;
    LinkTotals sent_;
    LinkTotals spoilt_;
};

// The frame that arrived last. The content lies in the frame, which the receiver keeps until the next one.
struct ReceivedFrame {
    FrameKind kind = FrameKind::STREAM;
    ByteView content;
};

enum class ReceiveResult {
    FRAME,
    DAMAGED,  // dropped, and counted by what is wrong with it
    CLOSED,   // the other side has closed the link, and all that it sent is read
    FAILED,   // errno says why; EAGAIN when nothing came within the time that the socket allows
};

class FrameReceiver {
public:
    // Receives from `socket`, which stays the caller's.
    explicit FrameReceiver(int socket, bool isDigested = true);

    // Waits for the next message.
    ReceiveResult Receive(ReceivedFrame &frame);

    // The frames ahead of the end frame that arrived whole and in order, and those that did not.
    const LinkTotals &Arrived() const;
    const DamageCount &Damaged() const;

private:
    ReceiveResult Drop(Damage damage);
    bool HasEnded() const;

    int socket_;
    bool isDigested_;
    std::vector<uint8_t> message_;
    std::optional<OHOS::DistributedHardware::OstraAdapter::ChannelProtocol> frame_;
    FrameOrder order_;
    LinkTotals arrived_;
    DamageCount damaged_;
};

#endif  // EXAMPLES_CHANNEL_LINK_H
