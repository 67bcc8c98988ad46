// SPDX-License-Identifier: Apache-2.0

#include "channel_protocol.h"

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <new>
#include <string>

#include "dh_utils_tools.h"
#include "ostra_adapter_log.h"
#include "securec.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int MAX_EA_VALUE = 0x0FFFFFFF;
constexpr int MAX_EA_LENGTH = 4;
constexpr int EA_GROUP_BITS = 7;
constexpr uint32_t EA_GROUP_MASK = 0x7F;
constexpr uint8_t EA_END_MARK = 0x80;

constexpr bool HasEndMark(uint8_t byte)
{
    return (byte & EA_END_MARK) != 0;
}

using EncodedEA = std::array<uint8_t, MAX_EA_LENGTH>;

// Encodes the low 28 bits of `value` and returns the number of bytes used.
int EncodeEA(uint32_t value, EncodedEA &ea)
{
    int length = 0;
    while (length < MAX_EA_LENGTH) {
        const auto group = static_cast<uint8_t>(value & EA_GROUP_MASK);
        value >>= EA_GROUP_BITS;
        ea[static_cast<size_t>(length++)] = value == 0 ? group | EA_END_MARK : group;
        if (value == 0) {
            break;
        }
    }
    return length;
}

// Reads the groups of bytes[begin .. end-1]; a field that stops without an end mark ends at `end`.
UnPackagedEA DecodeEA(const uint8_t *bytes, int begin, int end)
{
    UnPackagedEA ea;
    ea.offset = begin;
    for (int shift = 0; ea.offset < end; shift += EA_GROUP_BITS) {
        const uint8_t group = bytes[ea.offset++];
        ea.value |= (group & EA_GROUP_MASK) << shift;
        if (HasEndMark(group)) {
            break;
        }
    }
    return ea;
}

constexpr uint16_t CRC_POLYNOMIAL = 0xA001;  // 0x8005 reflected
constexpr size_t CRC_STRIDE = 8;
using CrcTable = std::array<uint16_t, 256>;

// Row 0 is the standard byte-wise table; row k is the effect of a byte that k more bytes follow. With as many rows as
// CRC_STRIDE, that many bytes are taken in one step whose look-ups do not wait for each other.
constexpr std::array<CrcTable, CRC_STRIDE> MakeCrcTables()
{
    std::array<CrcTable, CRC_STRIDE> tables{};
    for (size_t byte = 0; byte < tables[0].size(); ++byte) {
        uint32_t crc = static_cast<uint32_t>(byte);
        for (int bit = 0; bit < CHAR_BIT; ++bit) {
            crc = (crc & 1) != 0 ? (crc >> 1) ^ CRC_POLYNOMIAL : crc >> 1;
        }
        tables[0][byte] = static_cast<uint16_t>(crc);
    }
    for (size_t row = 1; row < CRC_STRIDE; ++row) {
        for (size_t byte = 0; byte < tables[0].size(); ++byte) {
            const uint16_t shorter = tables[row - 1][byte];
            tables[row][byte] = static_cast<uint16_t>((shorter >> CHAR_BIT) ^ tables[0][shorter & 0xFF]);
        }
    }
    return tables;
}

constexpr std::array<CrcTable, CRC_STRIDE> CRC_TABLES = MakeCrcTables();

uint32_t ComputeCrc(const uint8_t *data, size_t length)
{
    uint32_t crc = 0;
    for (; length >= CRC_STRIDE; data += CRC_STRIDE, length -= CRC_STRIDE) {
        crc = static_cast<uint32_t>(CRC_TABLES[7][data[0] ^ (crc & 0xFF)] ^ CRC_TABLES[6][data[1] ^ (crc >> CHAR_BIT)] ^
                                    CRC_TABLES[5][data[2]] ^ CRC_TABLES[4][data[3]] ^ CRC_TABLES[3][data[4]] ^
                                    CRC_TABLES[2][data[5]] ^ CRC_TABLES[1][data[6]] ^ CRC_TABLES[0][data[7]]);
    }
    for (; length > 0; ++data, --length) {
        crc = (crc >> CHAR_BIT) ^ CRC_TABLES[0][(crc ^ *data) & 0xFF];
    }
    return crc;
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
    if (contentSize > INT_MAX - eaLength) {
        return false;
    }
    const int size = contentSize + eaLength;
    protocolBuffer_ = nullptr;
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
    const int64_t room = static_cast<int64_t>(bufferSize_) - offset_;
    if (length > room) {
        OSTRA_LOGE("ChannelProtocol::WriteContent: datalen Invalid.");
        return false;
    }
    if (memcpy_s(protocolBuffer_ + offset_, static_cast<size_t>(room), data, static_cast<size_t>(length)) != 0) {
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
    return HasEndMark(byte);
}

uint32_t ChannelProtocol::GetCrc(unsigned char *data, int length) const
{
    const bool isEmpty = data == nullptr || length < 1;
    const uint32_t crc = isEmpty ? 0 : ComputeCrc(data, static_cast<size_t>(length));
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
