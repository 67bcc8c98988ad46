// SPDX-License-Identifier: Apache-2.0
//
// The buffer of a parcel, its positions, and blocks of bytes. Single values, strings and vectors are in
// parcel_values.cpp.

#include "parcel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "parcel/parcel_layout.h"

namespace OHOS {

using namespace ostra::host;

namespace {

constexpr size_t DEFAULT_MAX_CAPACITY = 204800;
constexpr size_t FIRST_CAPACITY = 64;
constexpr size_t CAPACITY_STEP = 4096;      // the capacity doubles up to here
constexpr size_t MAX_BYTES = SIZE_MAX / 2;  // so that the sum of two sizes does not overflow

// Returns the capacity for `size` bytes, at most `max`. Large buffers get a spare step, so that single values do not
// reallocate them each time.
size_t CapacityFor(size_t size, size_t max)
{
    if (size > CAPACITY_STEP) {
        const size_t whole = size / CAPACITY_STEP * CAPACITY_STEP;
        return whole > max - CAPACITY_STEP ? max : whole + CAPACITY_STEP;
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

const uint8_t *Parcel::ReadUnpadBuffer(size_t length)
{
    const uint8_t *bytes = Take(length);
    if (bytes != nullptr) {
        SkipBytes(PaddedSize(length) - length);
    }
    return bytes;
}

// Adds room for `size` bytes at the write position, padded with zeros. Returns null if they do not fit.
uint8_t *Parcel::Append(size_t size)
{
    if (!isWritable_ || size > MAX_BYTES) {
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

// Returns the next `size` bytes and advances the read position, or null if there are fewer.
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
