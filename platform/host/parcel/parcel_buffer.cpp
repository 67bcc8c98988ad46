// SPDX-License-Identifier: Apache-2.0
//
// The block of a parcel, the positions in it, and blocks of bytes. What is made of them is in parcel_values.cpp.

#include "parcel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "parcel/parcel_layout.h"

namespace OHOS {

namespace {

constexpr size_t DEFAULT_MAX_CAPACITY = 204800;
constexpr size_t FIRST_CAPACITY = 64;
constexpr size_t CAPACITY_STEP = 4096;       // up to here it doubles
constexpr size_t MOST_BYTES = SIZE_MAX / 2;  // no block is larger, so that sums of two sizes fit

// The capacity for this many bytes, at most `most`. Beyond the step one step more than the whole ones, so that a parcel
// that grows by single values does not move with each of them.
size_t CapacityFor(size_t size, size_t most)
{
    if (size > CAPACITY_STEP) {
        const size_t whole = size / CAPACITY_STEP * CAPACITY_STEP;
        return whole > most - CAPACITY_STEP ? most : whole + CAPACITY_STEP;
    }
    size_t capacity = FIRST_CAPACITY;
    while (capacity < size) {
        capacity *= 2;
    }
    return capacity;
}

}  // namespace

void *DefaultAllocator::Realloc(void *data, size_t newSize)
{
    return std::realloc(data, newSize);
}

void *DefaultAllocator::Alloc(size_t size)
{
    return std::malloc(size);
}

void DefaultAllocator::Dealloc(void *data)
{
    std::free(data);
}

Parcel::Parcel() : Parcel(nullptr)
{
}

Parcel::Parcel(Allocator *allocator)
    : allocator_(allocator == nullptr ? new DefaultAllocator : allocator), maxCapacity_(DEFAULT_MAX_CAPACITY)
{
}

Parcel::~Parcel()
{
    FlushBuffer();
}

size_t Parcel::GetDataSize() const
{
    return dataSize_;
}

uintptr_t Parcel::GetData() const
{
    return reinterpret_cast<uintptr_t>(data_);
}

size_t Parcel::GetReadableBytes() const
{
    return dataSize_ > readPosition_ ? dataSize_ - readPosition_ : 0;
}

size_t Parcel::GetWritableBytes() const
{
    return dataCapacity_ > writePosition_ ? dataCapacity_ - writePosition_ : 0;
}

size_t Parcel::GetDataCapacity() const
{
    return dataCapacity_;
}

size_t Parcel::GetMaxCapacity() const
{
    return maxCapacity_;
}

size_t Parcel::GetOffsetsSize() const
{
    return 0;
}

// NOLINTBEGIN(readability-make-member-function-const): as the platform declares them
size_t Parcel::GetReadPosition()
{
    return readPosition_;
}

size_t Parcel::GetWritePosition()
{
    return writePosition_;
}
// NOLINTEND(readability-make-member-function-const)

bool Parcel::SetDataCapacity(size_t newCapacity)
{
    if (newCapacity <= dataSize_) {
        return false;
    }
    void *data = data_ == nullptr ? allocator_->Alloc(newCapacity) : allocator_->Realloc(data_, newCapacity);
    if (data == nullptr) {
        return false;
    }
    data_ = static_cast<uint8_t *>(data);
    dataCapacity_ = newCapacity;
    return true;
}

bool Parcel::SetDataSize(size_t dataSize)
{
    if (dataSize > dataCapacity_) {
        return false;
    }
    dataSize_ = dataSize;
    return true;
}

bool Parcel::SetMaxCapacity(size_t maxCapacity)
{
    if (maxCapacity <= maxCapacity_) {
        return false;
    }
    maxCapacity_ = maxCapacity;
    return true;
}

bool Parcel::RewindRead(size_t newPosition)
{
    if (newPosition > dataSize_) {
        return false;
    }
    readPosition_ = newPosition;
    return true;
}

bool Parcel::RewindWrite(size_t newPosition)
{
    if (newPosition > dataSize_) {
        return false;
    }
    writePosition_ = newPosition;
    dataSize_ = newPosition;
    return true;
}

void Parcel::SkipBytes(size_t bytes)
{
    readPosition_ = bytes > GetReadableBytes() ? dataCapacity_ : readPosition_ + bytes;
}

void Parcel::FlushBuffer()
{
    if (data_ != nullptr) {
        allocator_->Dealloc(data_);
    }
    data_ = nullptr;
    dataSize_ = 0;
    dataCapacity_ = 0;
    readPosition_ = 0;
    writePosition_ = 0;
}

bool Parcel::SetAllocator(Allocator *allocator)
{
    if (allocator == nullptr || data_ != nullptr) {
        return false;
    }
    if (allocator != allocator_.get()) {
        allocator_.reset(allocator);
    }
    return true;
}

bool Parcel::ParseFrom(uintptr_t data, size_t size)
{
    if (data_ != nullptr || (data == 0 && size > 0)) {
        return false;
    }
    data_ = reinterpret_cast<uint8_t *>(data);  // NOLINT(performance-no-int-to-ptr): the platform passes a number
    dataSize_ = size;
    dataCapacity_ = size;
    isWritable_ = false;
    return true;
}

bool Parcel::WriteBuffer(const void *data, size_t size)
{
    return WriteBufferAddTerminator(data, size, 0);
}

bool Parcel::WriteUnpadBuffer(const void *data, size_t size)
{
    return WriteBuffer(data, size);
}

bool Parcel::WriteBufferAddTerminator(const void *data, size_t size, size_t typeSize)
{
    if (data == nullptr || size == 0 || size < typeSize) {
        return false;
    }
    uint8_t *bytes = Append(size);
    if (bytes == nullptr) {
        return false;
    }
    std::memcpy(bytes, data, size - typeSize);
    std::memset(bytes + size - typeSize, 0, typeSize);
    return true;
}

const uint8_t *Parcel::ReadBuffer(size_t length)
{
    return Take(length);
}

const uint8_t *Parcel::ReadBuffer(size_t length, bool /*isValidate*/)
{
    return Take(length);  // without objects there is nothing to validate
}

const uint8_t *Parcel::ReadUnpadBuffer(size_t length)
{
    const uint8_t *bytes = Take(length);
    if (bytes != nullptr) {
        SkipBytes(PaddedSize(length) - length);
    }
    return bytes;
}

// Room for so many bytes behind the data, padded with zeros; null when they do not fit.
uint8_t *Parcel::Append(size_t size)
{
    if (!isWritable_ || size > MOST_BYTES) {
        return nullptr;
    }
    const size_t end = writePosition_ + PaddedSize(size);
    if (end > dataCapacity_ && !Grow(end)) {
        return nullptr;
    }
    uint8_t *bytes = data_ + writePosition_;
    std::memset(bytes + size, 0, PaddedSize(size) - size);
    writePosition_ = end;
    dataSize_ = std::max(dataSize_, end);
    return bytes;
}

// The bytes at the read position, which moves behind them; null when they are not all there, or there is no block.
const uint8_t *Parcel::Take(size_t size)
{
    if (size > GetReadableBytes()) {
        return nullptr;
    }
    const uint8_t *bytes = data_ + readPosition_;
    readPosition_ += size;
    return bytes;
}

bool Parcel::Grow(size_t size)
{
    return size <= maxCapacity_ && SetDataCapacity(CapacityFor(size, maxCapacity_));
}

}  // namespace OHOS
