// SPDX-License-Identifier: Apache-2.0

#include "parcel.h"

#include <cstring>
#include <limits>

namespace OHOS {

namespace {

constexpr size_t UNIT_SIZE = 4;
constexpr size_t MAX_STRING_LENGTH = std::numeric_limits<int32_t>::max();

// What the text of a string takes with its terminating zero and the padding. Fits a 32-bit size for every length up to
// the longest.
constexpr size_t PaddedSize(size_t length)
{
    return (length / UNIT_SIZE + 1) * UNIT_SIZE;
}

void Encode(uint8_t *bytes, uint32_t value)
{
    bytes[0] = static_cast<uint8_t>(value);
    bytes[1] = static_cast<uint8_t>(value >> 8);
    bytes[2] = static_cast<uint8_t>(value >> 16);
    bytes[3] = static_cast<uint8_t>(value >> 24);
}

uint32_t Decode(const uint8_t *bytes)
{
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 | static_cast<uint32_t>(bytes[2]) << 16 |
           static_cast<uint32_t>(bytes[3]) << 24;
}

}  // namespace

Parcel::~Parcel() = default;

bool Parcel::WriteUint32(uint32_t value)
{
    const size_t begin = data_.size();
    if (maxCapacity_ - begin < UNIT_SIZE) {
        return false;
    }
    data_.resize(begin + UNIT_SIZE);
    Encode(data_.data() + begin, value);
    return true;
}

bool Parcel::WriteString(const std::string &value)
{
    const size_t begin = data_.size();
    const size_t length = value.size();
    if (length > MAX_STRING_LENGTH || maxCapacity_ - begin < UNIT_SIZE + PaddedSize(length)) {
        return false;
    }
    data_.resize(begin + UNIT_SIZE + PaddedSize(length));  // zeroes what the text does not fill
    Encode(data_.data() + begin, static_cast<uint32_t>(length));
    std::memcpy(data_.data() + begin + UNIT_SIZE, value.data(), length);
    return true;
}

uint32_t Parcel::ReadUint32()
{
    if (GetReadableBytes() < UNIT_SIZE) {
        return 0;
    }
    const uint32_t value = Decode(data_.data() + readPosition_);
    readPosition_ += UNIT_SIZE;
    return value;
}

bool Parcel::ReadString(std::string &value)
{
    value.clear();
    const size_t readable = GetReadableBytes();
    if (readable < UNIT_SIZE) {
        return false;
    }
    const size_t length = Decode(data_.data() + readPosition_);
    if (length > MAX_STRING_LENGTH || readable - UNIT_SIZE < PaddedSize(length)) {
        return false;
    }
    const uint8_t *text = data_.data() + readPosition_ + UNIT_SIZE;
    if (text[length] != 0) {
        return false;
    }
    value.assign(text, text + length);
    readPosition_ += UNIT_SIZE + PaddedSize(length);
    return true;
}

size_t Parcel::GetDataSize() const
{
    return data_.size();
}

uintptr_t Parcel::GetData() const
{
    return reinterpret_cast<uintptr_t>(data_.data());
}

size_t Parcel::GetReadableBytes() const
{
    return data_.size() - readPosition_;
}

size_t Parcel::GetMaxCapacity() const
{
    return maxCapacity_;
}

bool Parcel::SetMaxCapacity(size_t maxCapacity)
{
    if (maxCapacity < data_.size()) {
        return false;
    }
    maxCapacity_ = maxCapacity;
    return true;
}

bool Parcel::ParseFrom(uintptr_t data, size_t size)
{
    if ((data == 0 && size > 0) || size > maxCapacity_) {
        return false;
    }
    // The platform passes the address as an integer.
    const auto *begin = reinterpret_cast<const uint8_t *>(data);  // NOLINT(performance-no-int-to-ptr)
    data_.assign(begin, begin + size);
    readPosition_ = 0;
    return true;
}

bool Parcel::RewindRead(size_t newPosition)
{
    if (newPosition > data_.size()) {
        return false;
    }
    readPosition_ = newPosition;
    return true;
}

}  // namespace OHOS
