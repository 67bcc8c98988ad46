// SPDX-License-Identifier: Apache-2.0
//
// The buffer of a parcel, its positions and blocks of bytes, then single values, strings and vectors.

#include "parcel.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace OHOS {
namespace {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values in a parcel have the byte order of memory");

constexpr size_t DEFAULT_MAX_CAPACITY = 204800;
constexpr size_t INITIAL_CAPACITY = 64;
constexpr size_t CAPACITY_STEP = 4096;      // the capacity doubles up to this
constexpr size_t MAX_BYTES = SIZE_MAX / 2;  // so that the sum of two sizes does not overflow

// Returns the capacity for `size` bytes, at most `max`. Large buffers get an extra step, so that writing single
// values does not reallocate them each time.
size_t CapacityFor(size_t size, size_t max)
{
    if (size > CAPACITY_STEP) {
        const size_t rounded = size / CAPACITY_STEP * CAPACITY_STEP;
        return rounded > max - CAPACITY_STEP ? max : rounded + CAPACITY_STEP;
    }
    size_t capacity = INITIAL_CAPACITY;
    while (capacity < size) {
        capacity *= 2;
    }
    return capacity;
}

size_t PaddedSize(size_t size)
{
    constexpr size_t alignment = 4;
    return (size + alignment - 1) / alignment * alignment;
}

// memcpy that accepts null pointers if `size` is 0.
void Copy(void *to, const void *from, size_t size)
{
    if (size > 0) {
        std::memcpy(to, from, size);
    }
}

}  // namespace

Parcel::Parcel() : data_(nullptr, &std::free), maxCapacity_(DEFAULT_MAX_CAPACITY)
{
}

Parcel::~Parcel() = default;

size_t Parcel::GetDataSize() const
{
    return dataSize_;
}

uintptr_t Parcel::GetData() const
{
    return reinterpret_cast<uintptr_t>(data_.get());
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
    void *const data = std::realloc(data_.get(), newCapacity);
    if (data == nullptr) {
        return false;
    }
    static_cast<void>(data_.release());  // realloc has freed it
    data_.reset(static_cast<uint8_t *>(data));
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
    data_.reset();
    dataSize_ = 0;
    dataCapacity_ = 0;
    readPosition_ = 0;
    writePosition_ = 0;
}

bool Parcel::ParseFrom(uintptr_t data, size_t size)
{
    if (data_ != nullptr || (data == 0 && size > 0)) {
        return false;
    }
    auto *const buffer = reinterpret_cast<uint8_t *>(data);  // NOLINT(performance-no-int-to-ptr): the platform's type
    data_.reset(buffer);
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

// Makes space for `size` bytes at the write position, padded with zeros. Returns null if they do not fit.
uint8_t *Parcel::Append(size_t size)
{
    if (!isWritable_ || size > MAX_BYTES) {
        return nullptr;
    }
    const size_t end = writePosition_ + PaddedSize(size);
    if (end > dataCapacity_ && (end > maxCapacity_ || !SetDataCapacity(CapacityFor(end, maxCapacity_)))) {
        return nullptr;
    }
    uint8_t *bytes = data_.get() + writePosition_;
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
    const uint8_t *bytes = data_.get() + readPosition_;
    readPosition_ += size;
    return bytes;
}

template <typename Stored, typename T>
bool Parcel::Write(T value)
{
    const auto stored = static_cast<Stored>(value);  // NOLINT(bugprone-signed-char-misuse): sign-extended
    uint8_t *bytes = Append(sizeof(Stored));
    if (bytes == nullptr) {
        return false;
    }
    std::memcpy(bytes, &stored, sizeof(stored));
    return true;
}

template <typename Stored, typename T>
bool Parcel::Read(T &value)
{
    const uint8_t *bytes = Take(sizeof(Stored));
    if (bytes == nullptr) {
        return false;
    }
    Stored stored{};
    std::memcpy(&stored, bytes, sizeof(stored));
    value = static_cast<T>(stored);
    return true;
}

template <typename Unit>
bool Parcel::WriteChars(const Unit *chars, size_t length)
{
    if (chars == nullptr) {
        return WriteInt32(-1);
    }
    if (!WriteInt32(static_cast<int32_t>(length)) || length >= INT32_MAX) {
        return false;
    }
    uint8_t *bytes = Append((length + 1) * sizeof(Unit));
    if (bytes == nullptr) {
        return false;
    }
    Copy(bytes, chars, length * sizeof(Unit));
    std::memset(bytes + length * sizeof(Unit), 0, sizeof(Unit));
    return true;
}

// Also sets `length` if it is consumed.
template <typename Unit>
bool Parcel::ReadChars(std::basic_string<Unit> &value, int32_t &length)
{
    value.clear();
    const size_t begin = readPosition_;
    int32_t storedLength = 0;
    if (!ReadInt32(storedLength)) {
        return false;
    }
    if (storedLength < 0 || storedLength == INT32_MAX) {
        length = storedLength;
        return false;
    }
    const auto count = static_cast<size_t>(storedLength);
    const size_t size = (count + 1) * sizeof(Unit);
    const Unit terminator = 0;
    const uint8_t *bytes = Take(size);
    if (bytes == nullptr || std::memcmp(bytes + count * sizeof(Unit), &terminator, sizeof(Unit)) != 0) {
        readPosition_ = begin;
        return false;
    }
    value.resize(count);
    Copy(value.data(), bytes, count * sizeof(Unit));
    SkipBytes(PaddedSize(size) - size);
    length = storedLength;
    return true;
}

bool Parcel::WriteCount(size_t count)
{
    return count <= INT32_MAX && WriteInt32(static_cast<int32_t>(count));
}

// Returns false if the count is negative, or `count` elements of at least `storedSize` bytes each cannot follow.
bool Parcel::ReadCount(size_t storedSize, size_t &count)
{
    const int32_t storedCount = ReadInt32();
    count = static_cast<size_t>(storedCount);
    return storedCount >= 0 && count <= GetReadableBytes() / storedSize;
}

template <typename T, typename Argument>
bool Parcel::WriteVector(const std::vector<T> &values, bool (Parcel::*write)(Argument))
{
    return WriteCount(values.size()) &&
           std::all_of(values.begin(), values.end(), [&](const T &value) { return (this->*write)(value); });
}

template <typename T>
bool Parcel::WritePacked(const std::vector<T> &values)
{
    return WriteCount(values.size()) && (values.empty() || WriteBuffer(values.data(), values.size() * sizeof(T)));
}

template <typename T>
bool Parcel::ReadVector(std::vector<T> *values, size_t storedSize, bool (Parcel::*read)(T &))
{
    size_t count = 0;
    if (values == nullptr || !ReadCount(storedSize, count)) {
        return false;
    }
    values->clear();
    values->reserve(count);
    for (; count > 0; --count) {
        T value{};
        (this->*read)(value);
        values->push_back(std::move(value));
    }
    return true;
}

template <typename T>
bool Parcel::ReadPacked(std::vector<T> *values)
{
    size_t count = 0;
    if (values == nullptr || !ReadCount(sizeof(T), count)) {
        return false;
    }
    values->resize(count);
    Copy(values->data(), ReadUnpadBuffer(count * sizeof(T)), count * sizeof(T));
    return true;
}

// NOLINTBEGIN(bugprone-macro-parentheses): types cannot be put in parentheses
#define SCALAR(Name, Type, Stored)       \
    bool Parcel::Write##Name(Type value) \
    {                                    \
        return Write<Stored>(value);     \
    }                                    \
    bool Parcel::Read##Name(Type &value) \
    {                                    \
        return Read<Stored>(value);      \
    }                                    \
    Type Parcel::Read##Name()            \
    {                                    \
        Type value{};                    \
        Read<Stored>(value);             \
        return value;                    \
    }

SCALAR(Bool, bool, int32_t)
SCALAR(Int8, int8_t, int32_t)
SCALAR(Int16, int16_t, int32_t)
SCALAR(Int32, int32_t, int32_t)
SCALAR(Int64, int64_t, int64_t)
SCALAR(Uint8, uint8_t, uint32_t)
SCALAR(Uint16, uint16_t, uint32_t)
SCALAR(Uint32, uint32_t, uint32_t)
SCALAR(Uint64, uint64_t, uint64_t)
SCALAR(Float, float, float)
SCALAR(Double, double, double)

bool Parcel::WritePointer(uintptr_t value)
{
    return WriteUint64(value);
}

uintptr_t Parcel::ReadPointer()
{
    return static_cast<uintptr_t>(ReadUint64());
}

// NOLINTBEGIN(readability-const-return-type): as the platform declares them
#define STRING(Name, WithLength, StringType, Unit)                   \
    bool Parcel::Write##Name(const StringType &value)                \
    {                                                                \
        return WriteChars(value.data(), value.size());               \
    }                                                                \
    bool Parcel::Write##WithLength(const Unit *value, size_t length) \
    {                                                                \
        return WriteChars(value, length);                            \
    }                                                                \
    bool Parcel::Read##Name(StringType &value)                       \
    {                                                                \
        int32_t length = 0;                                          \
        return ReadChars(value, length);                             \
    }                                                                \
    const StringType Parcel::Read##Name()                            \
    {                                                                \
        StringType value;                                            \
        Read##Name(value);                                           \
        return value;                                                \
    }                                                                \
    const StringType Parcel::Read##WithLength(int32_t &readLength)   \
    {                                                                \
        StringType value;                                            \
        ReadChars(value, readLength);                                \
        return value;                                                \
    }

STRING(String, String8WithLength, std::string, char)
STRING(String16, String16WithLength, std::u16string, char16_t)
// NOLINTEND(readability-const-return-type)
// NOLINTEND(bugprone-macro-parentheses)

bool Parcel::WriteCString(const char *value)
{
    return value != nullptr && WriteBuffer(value, std::strlen(value) + 1);
}

const char *Parcel::ReadCString()
{
    const size_t readable = GetReadableBytes();
    const auto *chars = reinterpret_cast<const char *>(data_.get() + readPosition_);
    const size_t length = readable == 0 ? 0 : strnlen(chars, readable);
    if (length == readable) {
        return nullptr;  // no null terminator
    }
    SkipBytes(PaddedSize(length + 1));
    return chars;
}

#define VECTOR(Name, Type, Element, storedSize)                              \
    bool Parcel::Write##Name##Vector(const std::vector<Type> &values)        \
    {                                                                        \
        return WriteVector(values, &Parcel::Write##Element);                 \
    }                                                                        \
    bool Parcel::Read##Name##Vector(std::vector<Type> *values)               \
    {                                                                        \
        return ReadVector<Type>(values, storedSize, &Parcel::Read##Element); \
    }
#define PACKED_VECTOR(Name, Type)                                     \
    bool Parcel::Write##Name##Vector(const std::vector<Type> &values) \
    {                                                                 \
        return WritePacked(values);                                   \
    }                                                                 \
    bool Parcel::Read##Name##Vector(std::vector<Type> *values)        \
    {                                                                 \
        return ReadPacked(values);                                    \
    }

VECTOR(Bool, bool, Bool, sizeof(int32_t))
PACKED_VECTOR(Int8, int8_t)
VECTOR(Int16, int16_t, Int16, sizeof(int32_t))
VECTOR(Int32, int32_t, Int32, sizeof(int32_t))
VECTOR(Int64, int64_t, Int64, sizeof(int64_t))
PACKED_VECTOR(UInt8, uint8_t)
PACKED_VECTOR(UInt16, uint16_t)
VECTOR(UInt32, uint32_t, Uint32, sizeof(uint32_t))
VECTOR(UInt64, uint64_t, Uint64, sizeof(uint64_t))
VECTOR(Float, float, Float, sizeof(float))
VECTOR(Double, double, Double, sizeof(double))
VECTOR(String, std::string, String, 1)
VECTOR(String16, std::u16string, String16, 1)

}  // namespace OHOS
