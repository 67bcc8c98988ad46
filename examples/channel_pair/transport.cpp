// SPDX-License-Identifier: Apache-2.0

#include "transport.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <numeric>

#include "dh_utils_tools.h"

#define XXH_INLINE_ALL  // header only, and faster for small inputs
#include <xxhash.h>

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr uint32_t KIND_BITS = 4;
constexpr uint32_t KIND_MASK = (1U << KIND_BITS) - 1;
constexpr size_t WORD_BYTES = 4;

using Prefix = std::array<uint8_t, PREFIX_BYTES>;

Prefix PrefixOf(const ChannelProtocol &frame)
{
    Prefix prefix{};
    OSTRAIntToByte(static_cast<uint32_t>(frame.GetBufferSize()), prefix.data(), WORD_BYTES);
    OSTRAIntToByte(frame.GetCrc(frame.GetBuffer(), frame.GetBufferSize()), prefix.data() + WORD_BYTES, WORD_BYTES);
    return prefix;
}

}  // namespace

uint64_t Sum(const FaultCounts &counts)
{
    return std::accumulate(counts.begin(), counts.end(), uint64_t{0});
}

std::string ToString(const FaultCounts &counts)
{
    constexpr const char *names[FAULT_KINDS] = {"corrupted", "truncated", "duplicated", "delayed",
                                                "empty",     "oversized", "unexpected"};
    std::string kinds;
    for (size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] > 0) {
            kinds += (kinds.empty() ? "" : ", ") + std::to_string(counts[i]) + " " + names[i];
        }
    }
    return std::to_string(Sum(counts)) + (kinds.empty() ? "" : " (" + kinds + ")");
}

void Totals::Add(uint64_t frameNumber, ByteView chunk)
{
    ++chunks;
    bytes += chunk.size;
    digest += XXH3_64bits_withSeed(chunk.data, chunk.size, frameNumber);
}

Message PackMessage(FrameKind kind, uint64_t frameNumber, ByteView content)
{
    const auto sequence = static_cast<uint32_t>(frameNumber % SEQUENCE_NUMBERS);
    const auto header = static_cast<int>(sequence << KIND_BITS | static_cast<uint32_t>(kind));
    const auto size = static_cast<int>(content.size);
    ChannelProtocol frame;
    if (!frame.Create(header, size) || (size > 0 && !frame.WriteContent(content.data, size))) {
        errno = ENOMEM;
        return {};
    }
    const Prefix prefix = PrefixOf(frame);
    Message message;
    message.reserve(prefix.size() + static_cast<size_t>(frame.GetBufferSize()));
    message.insert(message.end(), prefix.begin(), prefix.end());
    message.insert(message.end(), frame.GetBuffer(), frame.GetBuffer() + frame.GetBufferSize());
    return message;
}

bool SendMessage(int socket, const Message &message)
{
    ssize_t sent = 0;
    do {
        sent = send(socket, message.data(), message.size(), MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

// Both an empty message and a closed connection are received as 0 bytes.
bool FrameReceiver::IsClosed() const
{
    pollfd state{socket_, POLLRDHUP, 0};
    int unread = 0;
    return poll(&state, 1, 0) > 0 && ioctl(socket_, SIOCINQ, &unread) == 0 && unread == 0;
}

std::optional<Fault> FrameReceiver::CheckMessage(size_t size)
{
    if (size == 0) {
        return EMPTY;
    }
    if (size > message_.size()) {
        return OVERSIZED;
    }
    ChannelProtocol &frame = frame_.emplace();
    if (size <= PREFIX_BYTES ||
        !frame.CreateFromBuffer(message_.data() + PREFIX_BYTES, static_cast<int>(size - PREFIX_BYTES))) {
        return TRUNCATED;
    }
    const Prefix expected = PrefixOf(frame);
    if (!std::equal(expected.begin(), expected.begin() + WORD_BYTES, message_.begin())) {
        return TRUNCATED;
    }
    if (!std::equal(expected.begin() + WORD_BYTES, expected.end(), message_.begin() + WORD_BYTES)) {
        return CORRUPTED;
    }
    return std::nullopt;
}

std::optional<Fault> FrameReceiver::CheckSequence(uint32_t sequence, uint64_t &number)
{
    uint64_t &next = status_.nextFrame;
    const auto ahead = static_cast<uint32_t>((sequence - next) % SEQUENCE_NUMBERS);
    if (ahead < WINDOW) {
        if (ahead > 0 && !status_.firstMissing) {
            status_.firstMissing = next;
        }
        for (const uint64_t end = next + ahead; next < end; ++next) {
            received_.reset(next % WINDOW);
        }
        received_.set(next % WINDOW);
        number = next++;
        return std::nullopt;
    }
    const uint32_t behind = SEQUENCE_NUMBERS - ahead;
    if (behind > WINDOW || behind > next) {
        return UNEXPECTED;
    }
    return received_.test((next - behind) % WINDOW) ? DUPLICATED : DELAYED;
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
    if (received == 0 && IsClosed()) {
        return ReceiveResult::CLOSED;
    }
    std::optional<Fault> fault = CheckMessage(static_cast<size_t>(received));
    if (!fault) {
        UnPackagedEA header;
        frame_->ReadEA(header, 0);
        const uint32_t kind = header.value & KIND_MASK;
        fault = kind < FRAME_KINDS ? CheckSequence(header.value >> KIND_BITS, frame.number) : UNEXPECTED;
        frame.kind = static_cast<FrameKind>(kind);
        frame.content = {frame_->GetBuffer() + header.offset,
                         static_cast<size_t>(frame_->GetBufferSize() - header.offset)};
    }
    if (fault) {
        ++status_.detected[*fault];
        return ReceiveResult::DROPPED;
    }
    return ReceiveResult::FRAME;
}
