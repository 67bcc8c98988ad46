// SPDX-License-Identifier: Apache-2.0

#include "channel_protocol.h"

#include <array>
#include <climits>
#include <memory>
#include <new>
#include <string>

#include "crc16.h"
#include "dh_utils_tools.h"
#include "ostra_adapter_log.h"
#include "securec.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int MAX_EA_VALUE = 0x0FFFFFFF;
constexpr int MAX_EA_LENGTH = 4;
constexpr int EA_GROUP_BITS = 7;
constexpr uint32_t EA_GROUP_MASK = 0x7F;
constexpr uint8_t EA_STOP_BIT = 0x80;

constexpr bool HasStopBit(uint8_t byte)
{
    return (byte & EA_STOP_BIT) != 0;
}

// EA is the varint encoding of a frame's header value: see docs/wire-formats.md.
using EncodedEA = std::array<uint8_t, MAX_EA_LENGTH>;

// Encodes the low 28 bits of `value` and returns the number of bytes used.
int EncodeEA(uint32_t value, EncodedEA &ea)
{
    int length = 0;
    while (length < MAX_EA_LENGTH) {
        const auto group = static_cast<uint8_t>(value & EA_GROUP_MASK);
        value >>= EA_GROUP_BITS;
        ea[static_cast<size_t>(length++)] = value == 0 ? group | EA_STOP_BIT : group;
        if (value == 0) {
            break;
        }
    }
    return length;
}

// Decodes the header value in bytes[begin .. end-1]; without a stop bit it ends at `end`.
UnPackagedEA DecodeEA(const uint8_t *bytes, int begin, int end)
{
    UnPackagedEA ea;
    ea.offset = begin;
    for (int shift = 0; ea.offset < end; shift += EA_GROUP_BITS) {
        const uint8_t group = bytes[ea.offset++];
        ea.value |= (group & EA_GROUP_MASK) << shift;
        if (HasStopBit(group)) {
            break;
        }
    }
    return ea;
}

}  // namespace

bool ChannelProtocol::Create(int eaValue, int contentSize)
{
    if (eaValue > MAX_EA_VALUE || contentSize < 0) {
        OSTRA_LOGE("ChannelProtocol::Create: Invalid para.");
        return false;
    }
    EncodedEA ea{};
    const int eaLength = EncodeEA(static_cast<uint32_t>(eaValue), ea);
    protocolBuffer_ = nullptr;
    if (contentSize > INT_MAX - eaLength) {
        return false;
    }
    const int size = contentSize + eaLength;
    std::unique_ptr<unsigned char[]> frame(new (std::nothrow) unsigned char[static_cast<size_t>(size)]);
    if (frame == nullptr) {
        return false;
    }
    if (memcpy_s(frame.get(), static_cast<size_t>(size), ea.data(), static_cast<size_t>(eaLength)) != 0) {
        OSTRA_LOGE("ChannelProtocol::Create: memcpy failed.");
        return false;
    }
    protocolBuffer_ = frame.release();
    bufferSize_ = size;
    offset_ = eaLength;
    return true;
}

bool ChannelProtocol::CreateFromBuffer(unsigned char *buffer, int size)
{
    if (buffer == nullptr || size < 1) {
        OSTRA_LOGE("ChannelProtocol::CreateFromBuffer: Invalid para.");
        return false;
    }
    const size_t length = static_cast<size_t>(size);
    protocolBuffer_ = nullptr;
    std::unique_ptr<unsigned char[]> frame(new (std::nothrow) unsigned char[length]);
    if (frame == nullptr) {
        OSTRA_LOGE("ChannelProtocol::CreateFromBuffer: new protocolBuffer failed.");
        return false;
    }
    if (memcpy_s(frame.get(), length, buffer, length) != 0) {
        OSTRA_LOGE("ChannelProtocol::CreateFromBuffer: memcpy failed.");
        return false;
    }
    protocolBuffer_ = frame.release();
    bufferSize_ = size;
    offset_ = 0;
    return true;
}

bool ChannelProtocol::WriteContent(unsigned char *data, int length) const
{
    if (data == nullptr || length < 1 || protocolBuffer_ == nullptr) {
        OSTRA_LOGE("ChannelProtocol::WriteContent: Invalid para.");
        return false;
    }
    const int64_t available = static_cast<int64_t>(bufferSize_) - offset_;
    if (length > available) {
        OSTRA_LOGE("ChannelProtocol::WriteContent: datalen Invalid.");
        return false;
    }
    if (memcpy_s(protocolBuffer_ + offset_, static_cast<size_t>(available), data, static_cast<size_t>(length)) != 0) {
        OSTRA_LOGE("ChannelProtocol::WriteContent: memcpy failed.");
        return false;
    }
    return true;
}

bool ChannelProtocol::ReadEA(UnPackagedEA &ea, int offset)
{
    if (protocolBuffer_ == nullptr || bufferSize_ < 1) {
        OSTRA_LOGE("ChannelProtocol::ReadEA: protocolBuffer is nullptr or bufferSize < 1, please check.");
        return false;
    }
    if (offset < 0) {
        OSTRA_LOGE("ChannelProtocol::ReadEA: Invalid para.");
        return false;
    }
    const int end = offset < bufferSize_ - MAX_EA_LENGTH ? offset + MAX_EA_LENGTH : bufferSize_;
    ea = DecodeEA(protocolBuffer_, offset, end);
    offset_ = ea.offset;
    return true;
}

bool ChannelProtocol::HasEA(unsigned char byte)
{
    return HasStopBit(byte);
}

uint32_t ChannelProtocol::GetCrc(unsigned char *data, int length) const
{
    const bool isEmpty = data == nullptr || length < 1;
    const uint32_t crc = isEmpty ? 0 : Crc16(data, static_cast<size_t>(length));
    OSTRA_LOGI("ChannelProtocol::GetCrc: getCrc16:%s", GetAnonyString(std::to_string(crc)).c_str());
    return crc;
}

unsigned char *ChannelProtocol::GetBuffer() const
{
    return protocolBuffer_;
}

int32_t ChannelProtocol::GetBufferSize() const
{
    return bufferSize_;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
