// SPDX-License-Identifier: Apache-2.0
//
// Single values, strings and vectors in a parcel.

#include <climits>
#include <cstring>
#include <utility>

#include "parcel.h"
#include "parcel/parcel_layout.h"

namespace OHOS {

using namespace ostra::host;

template <typename Stored, typename T>
bool Parcel::Write(T value)
{
    const auto stored = static_cast<Stored>(value);  // NOLINT(bugprone-signed-char-misuse): the sign is widened
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
    CopyValues<Unit>(bytes, chars, length);
    std::memset(bytes + length * sizeof(Unit), 0, sizeof(Unit));
    return true;
}

// Sets `length`, too, unless the read position is unchanged.
template <typename Unit>
bool Parcel::ReadChars(std::basic_string<Unit> &value, int32_t &length)
{
    value.clear();
    const size_t begin = readPosition_;
    int32_t announced = 0;
    if (!ReadInt32(announced)) {
        return false;
    }
    if (announced < 0 || announced == INT32_MAX) {
        length = announced;
        return false;
    }
    const auto count = static_cast<size_t>(announced);
    const size_t size = (count + 1) * sizeof(Unit);
    const Unit terminator = 0;
    const uint8_t *bytes = Take(size);
    if (bytes == nullptr || std::memcmp(bytes + count * sizeof(Unit), &terminator, sizeof(Unit)) != 0) {
        readPosition_ = begin;
        return false;
    }
    value.resize(count);
    CopyValues<Unit>(value.data(), bytes, count);
    SkipBytes(PaddedSize(size) - size);
    length = announced;
    return true;
}

template <typename T, typename Argument>
bool Parcel::WriteVector(const std::vector<T> &values, bool (Parcel::*write)(Argument))
{
    if (values.size() > INT32_MAX || !WriteInt32(static_cast<int32_t>(values.size()))) {
        return false;
    }
    for (const T &value : values) {
        if (!(this->*write)(value)) {
            return false;
        }
    }
    return true;
}

template <typename T>
bool Parcel::WritePacked(const std::vector<T> &values)
{
    if (values.size() > INT32_MAX || !WriteInt32(static_cast<int32_t>(values.size()))) {
        return false;
    }
    uint8_t *bytes = values.empty() ? nullptr : Append(values.size() * sizeof(T));
    if (bytes == nullptr) {
        return values.empty();
    }
    CopyValues<T>(bytes, values.data(), values.size());
    return true;
}

// If the count cannot be read, the vector is empty.
template <typename T>
bool Parcel::ReadVector(std::vector<T> *values, size_t storedSize, bool (Parcel::*read)(T &))
{
    if (values == nullptr) {
        return false;
    }
    const int32_t count = ReadInt32();
    if (count < 0 || static_cast<size_t>(count) > GetReadableBytes() / storedSize) {
        return false;
    }
    values->clear();
    values->reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        T value{};
        (this->*read)(value);
        values->push_back(std::move(value));
    }
    return true;
}

template <typename T>
bool Parcel::ReadPacked(std::vector<T> *values)
{
    if (values == nullptr) {
        return false;
    }
    const int32_t count = ReadInt32();
    if (count < 0 || static_cast<size_t>(count) > GetReadableBytes() / sizeof(T)) {
        return false;
    }
    values->resize(static_cast<size_t>(count));
    const size_t size = values->size() * sizeof(T);
    CopyValues<T>(values->data(), Take(size), values->size());
    SkipBytes(PaddedSize(size) - size);
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
    return Write<uint64_t>(value);
}

uintptr_t Parcel::ReadPointer()
{
    uintptr_t value = 0;
    Read<uint64_t>(value);
    return value;
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
    const auto *chars = reinterpret_cast<const char *>(data_ + readPosition_);
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
