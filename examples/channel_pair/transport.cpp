// SPDX-License-Identifier: Apache-2.0

#include "transport.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <bitset>
#include <cerrno>

#include "dh_utils_tools.h"

#define XXH_INLINE_ALL  // nothing to link, and small inputs are fast
#include <xxhash.h>

using OHOS::DistributedHardware::OstraAdapter::ChannelProtocol;
using OHOS::DistributedHardware::OstraAdapter::OSTRAIntToByte;
using OHOS::DistributedHardware::OstraAdapter::UnPackagedEA;

namespace {

constexpr uint32_t KIND_BITS = 4;
constexpr uint32_t KIND_MASK = (1U << KIND_BITS) - 1;
constexpr uint32_t WORD_BYTES = 4;

// Compares the sizes ahead of two frames.
bool DifferInOneBit(const std::array<uint8_t, PREFIX_BYTES> &left, const std::vector<uint8_t> &right)
{
    std::bitset<WORD_BYTES * 8> bits;
    for (size_t i = 0; i < WORD_BYTES; ++i) {
        bits = (bits << 8) | std::bitset<WORD_BYTES * 8>(static_cast<uint8_t>(left[i] ^ right[i]));
    }
    return bits.count() == 1;
}

}  // namespace

void LinkTotals::Add(uint64_t number, ByteView content, bool isDigested)
{
    ++frames;
    bytes += content.size;
    digest += isDigested ? XXH3_64bits_withSeed(content.data, content.size, number) : 0;
}

LinkTotals LinkTotals::operator-(const LinkTotals &other) const
{
    return {frames - other.frames, bytes - other.bytes, digest - other.digest};
}

bool LinkTotals::operator==(const LinkTotals &other) const
{
    return frames == other.frames && bytes == other.bytes && digest == other.digest;
}

SocketRoad::SocketRoad(int socket) : socket_(socket)
{
}

Carried SocketRoad::Carry(FrameKind /* kind */, ByteView prefix, ByteView frame)
{
    std::array<iovec, 2> parts = {{{prefix.data, prefix.size}, {frame.data, frame.size}}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    ssize_t sent = 0;
    do {
        sent = sendmsg(socket_, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent < 0 ? Carried::FAILED : Carried::WHOLE;
}

uint32_t HeaderValue(uint32_t kind, uint32_t sequence)
{
    return (sequence << KIND_BITS) | kind;
}

std::array<uint8_t, PREFIX_BYTES> PrefixOf(const ChannelProtocol &frame)
{
    std::array<uint8_t, PREFIX_BYTES> prefix{};
    OSTRAIntToByte(static_cast<uint32_t>(frame.GetBufferSize()), prefix.data(), WORD_BYTES);
    OSTRAIntToByte(frame.GetCrc(frame.GetBuffer(), frame.GetBufferSize()), prefix.data() + WORD_BYTES, WORD_BYTES);
    return prefix;
}

FrameSender::FrameSender(Road &road, bool isDigested) : road_(road), isDigested_(isDigested)
{
}

bool FrameSender::Send(FrameKind kind, ByteView content)
{
    const auto sequence = static_cast<uint32_t>(sent_.frames % FrameOrder::NUMBERS);
    const auto headerValue = static_cast<int>(HeaderValue(static_cast<uint32_t>(kind), sequence));
    const auto size = static_cast<int>(content.size);
    ChannelProtocol frame;
    if (!frame.Create(headerValue, size) || (size > 0 && !frame.WriteContent(content.data, size))) {
        errno = ENOMEM;
        return false;
    }
    std::array<uint8_t, PREFIX_BYTES> prefix = PrefixOf(frame);
    const Carried carried = road_.Carry(kind, {prefix.data(), prefix.size()},
                                        {frame.GetBuffer(), static_cast<size_t>(frame.GetBufferSize())});
    if (carried == Carried::FAILED) {
        return false;
    }
    if (carried == Carried::SPOILT) {
        spoilt_.Add(sent_.frames, content, isDigested_);
    }
    if (kind != FrameKind::END) {
        sent_.Add(sent_.frames, content, isDigested_);
    }
    return true;
}

const LinkTotals &FrameSender::Sent() const
{
    return sent_;
}

const LinkTotals &FrameSender::Spoilt() const
{
    return spoilt_;
}

FrameReceiver::FrameReceiver(int socket, bool isDigested)
    : socket_(socket), isDigested_(isDigested), message_(MAX_MESSAGE_BYTES)
{
}

// An empty message and a closed link both read as 0 bytes. Once the other side has hung up nothing new can come, so the
// link has ended when nothing is left to be read either.
bool FrameReceiver::HasEnded() const
{
    pollfd state{socket_, POLLRDHUP, 0};
    int unread = 0;
    return poll(&state, 1, 0) > 0 && ioctl(socket_, SIOCINQ, &unread) == 0 && unread == 0;
}

ReceiveResult FrameReceiver::Drop(Damage damage)
{
    ++damaged_[damage];
    return ReceiveResult::DAMAGED;
}

ReceiveResult FrameReceiver::Receive(ReceivedFrame &frame)
{
    ssize_t received = 0;
    do {
        received = recv(socket_, message_.data(), message_.size(), MSG_TRUNC);
    } while (received < 0 && errno == EINTR);
    if (received < 0) {
        return ReceiveResult::FAILED;
    }
    const auto size = static_cast<size_t>(received);
    if (size == 0) {
        return HasEnded() ? ReceiveResult::CLOSED : Drop(Damage::EMPTY);
    }
    if (size > message_.size()) {
        return Drop(Damage::TOO_LONG);
    }
    ChannelProtocol &parsed = frame_.emplace();
    if (size <= PREFIX_BYTES ||
        !parsed.CreateFromBuffer(message_.data() + PREFIX_BYTES, static_cast<int>(size - PREFIX_BYTES))) {
        return Drop(Damage::CUT);
    }
    const std::array<uint8_t, PREFIX_BYTES> right = PrefixOf(parsed);
    const auto crc = right.begin() + WORD_BYTES;
    const bool isSizeRight = std::equal(right.begin(), crc, message_.begin());
    const bool isCrcRight = std::equal(crc, right.end(), message_.begin() + WORD_BYTES);
    if (!isSizeRight) {
        return Drop(isCrcRight && DifferInOneBit(right, message_) ? Damage::FLIPPED : Damage::CUT);
    }
    if (!isCrcRight) {
        return Drop(Damage::FLIPPED);
    }

    UnPackagedEA header;
    parsed.ReadEA(header, 0);
    const uint32_t kind = header.value & KIND_MASK;
    if (kind >= FRAME_KINDS) {
        return Drop(Damage::FOREIGN);
    }
    const FrameOrder::Place place = order_.Take(header.value >> KIND_BITS);
    if (place.damage) {
        return Drop(*place.damage);
    }
    frame.kind = static_cast<FrameKind>(kind);
    frame.content = {parsed.GetBuffer() + header.offset, static_cast<size_t>(parsed.GetBufferSize() - header.offset)};
    if (frame.kind != FrameKind::END) {
        arrived_.Add(place.number, frame.content, isDigested_);
    }
    return ReceiveResult::FRAME;
}

const LinkTotals &FrameReceiver::Arrived() const
{
    return arrived_;
}

const DamageCount &FrameReceiver::Damaged() const
{
    return damaged_;
}
