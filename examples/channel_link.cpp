// SPDX-License-Identifier: Apache-2.0

#include "channel_link.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "channel_protocol.h"
#include "dh_utils_tools.h"

using OHOS::DistributedHardware::OstraAdapter::ChannelProtocol;
using OHOS::DistributedHardware::OstraAdapter::OSTRAIntToByte;
using OHOS::DistributedHardware::OstraAdapter::UnPackagedEA;

namespace {

constexpr uint32_t KIND_BITS = 4;
constexpr uint32_t KIND_MASK = (1U << KIND_BITS) - 1;
constexpr uint32_t SEQUENCE_MASK = 0x00FFFFFF;
constexpr size_t CRC_BYTES = 4;
constexpr size_t MAX_MESSAGE_BYTES = 256 * 1024;

using CrcBytes = std::array<uint8_t, CRC_BYTES>;

CrcBytes CrcOf(const ChannelProtocol &frame)
{
    CrcBytes bytes{};
    OSTRAIntToByte(frame.GetCrc(frame.GetBuffer(), frame.GetBufferSize()), bytes.data(), CRC_BYTES);
    return bytes;
}

bool SendMessage(int socket, const ChannelProtocol &frame, CrcBytes &crc)
{
    std::array<iovec, 2> parts = {
        {{frame.GetBuffer(), static_cast<size_t>(frame.GetBufferSize())}, {crc.data(), crc.size()}}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    ssize_t sent = 0;
    do {
        sent = sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(parts[0].iov_len + parts[1].iov_len);
}

}  // namespace

FrameSender::FrameSender(int socket, std::optional<uint64_t> flippedFrame)
    : socket_(socket), flippedFrame_(flippedFrame)
{
}

bool FrameSender::Send(FrameKind kind, std::vector<uint8_t> &content)
{
    const auto sequence = static_cast<uint32_t>(count_.frames & SEQUENCE_MASK);
    const auto headerValue = static_cast<int>((sequence << KIND_BITS) | static_cast<uint32_t>(kind));
    const auto size = static_cast<int>(content.size());
    ChannelProtocol frame;
    if (!frame.Create(headerValue, size) || !frame.WriteContent(content.data(), size)) {
        return false;
    }
    CrcBytes crc = CrcOf(frame);
    if (flippedFrame_ == count_.frames) {
        frame.GetBuffer()[frame.GetBufferSize() / 2] ^= 1;
    }
    if (!SendMessage(socket_, frame, crc)) {
        return false;
    }
    ++count_.frames;
    count_.bytes += content.size();
    return true;
}

const LinkCount &FrameSender::Count() const
{
    return count_;
}

FrameReceiver::FrameReceiver(int socket) : socket_(socket), message_(MAX_MESSAGE_BYTES)
{
}

ReceiveResult FrameReceiver::Receive(ReceivedFrame &frame)
{
    ssize_t received = 0;
    do {
        received = recv(socket_, message_.data(), message_.size(), MSG_TRUNC);
    } while (received < 0 && errno == EINTR);
    if (received <= 0) {
        return received == 0 ? ReceiveResult::END : ReceiveResult::FAILED;
    }
    ++count_.frames;
    const auto size = static_cast<size_t>(received);
    ChannelProtocol parsed;
    if (size > message_.size() || size <= CRC_BYTES ||
        !parsed.CreateFromBuffer(message_.data(), static_cast<int>(size - CRC_BYTES))) {
        return ReceiveResult::BROKEN;
    }
    const CrcBytes crc = CrcOf(parsed);
    if (!std::equal(crc.begin(), crc.end(), message_.begin() + static_cast<std::ptrdiff_t>(size - CRC_BYTES))) {
        ++count_.crcMismatches;
        ++nextSequence_;
        return ReceiveResult::BROKEN;
    }

    UnPackagedEA header;
    parsed.ReadEA(header, 0);
    const uint32_t sequence = header.value >> KIND_BITS;
    count_.gaps += (sequence - nextSequence_) & SEQUENCE_MASK;
    nextSequence_ = sequence + 1;
    frame.kind = static_cast<FrameKind>(header.value & KIND_MASK);
    frame.content.assign(parsed.GetBuffer() + header.offset, parsed.GetBuffer() + parsed.GetBufferSize());
    count_.bytes += frame.content.size();
    return ReceiveResult::FRAME;
}

const LinkCount &FrameReceiver::Count() const
{
    return count_;
}
