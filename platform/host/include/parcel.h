// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// The parcel of the platform's inter-process calls: values are written one after the other and read back in the same
/// order.
///
///     Parcel parcel;
///     parcel.WriteUint32(7);                       // 07 00 00 00
///     parcel.WriteString("ab");                    // 02 00 00 00 61 62 00 00
///     parcel.ReadUint32();                         // 7
///     parcel.ReadString(value);                    // true, "ab"
///
/// Everything is little-endian and padded to a multiple of 4 bytes. A write beyond the capacity returns false and adds
/// nothing; a string or vector that does not fit still adds its length. A read beyond the end of the data returns
/// false, 0, null or an empty string, and unless documented below leaves its argument and the read position unchanged.
/// Objects, file descriptors and unaligned values are not supported. Not thread-safe: callers must synchronize access
/// to a parcel.

#ifndef HOST_PARCEL_H
#define HOST_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace OHOS {

/// A buffer of values with a write position and a read position.
class Parcel {
public:
    Parcel();
    virtual ~Parcel();
    Parcel(const Parcel &) = delete;
    Parcel &operator=(const Parcel &) = delete;

    // NOLINTBEGIN(bugprone-macro-parentheses): types cannot be put in parentheses
#define HOST_PARCEL_SCALAR(Name, Type) \
    bool Write##Name(Type value);      \
    Type Read##Name();                 \
    bool Read##Name(Type &value);
    /// Single values: bool WriteX(T), T ReadX() and bool ReadX(T &). Values of fewer than 4 bytes are extended to 4;
    /// reading uses the low-order bytes. ReadBool returns true for any value but 0.
    /// @{
    HOST_PARCEL_SCALAR(Bool, bool)
    HOST_PARCEL_SCALAR(Int8, int8_t)
    HOST_PARCEL_SCALAR(Int16, int16_t)
    HOST_PARCEL_SCALAR(Int32, int32_t)
    HOST_PARCEL_SCALAR(Int64, int64_t)
    HOST_PARCEL_SCALAR(Uint8, uint8_t)
    HOST_PARCEL_SCALAR(Uint16, uint16_t)
    HOST_PARCEL_SCALAR(Uint32, uint32_t)
    HOST_PARCEL_SCALAR(Uint64, uint64_t)
    HOST_PARCEL_SCALAR(Float, float)
    HOST_PARCEL_SCALAR(Double, double)
    /// @}
#undef HOST_PARCEL_SCALAR
    // NOLINTEND(bugprone-macro-parentheses)

    /// An address of this process, in 8 bytes.
    /// @{
    bool WritePointer(uintptr_t value);
    uintptr_t ReadPointer();
    /// @}

    /// A string of 8-bit or 16-bit characters: its length as a signed 32-bit value, its characters and a null
    /// terminator, padded. A null string is written as the length -1 only.
    /// @{
    bool WriteString(const std::string &value);
    bool WriteString16(const std::u16string &value);
    bool WriteString8WithLength(const char *value, size_t length);
    bool WriteString16WithLength(const char16_t *value, size_t length);
    /// @}

    /// Return an empty string, or false with an empty `value`, if:
    ///   - the length is negative or 0x7fffffff; the length is consumed
    ///   - characters or the null terminator are missing; the read position is unchanged
    ///
    /// The padding is ignored, and may be missing. `readLength` receives the length if it is consumed.
    /// @{
    // NOLINTBEGIN(readability-const-return-type): as the platform declares them
    const std::string ReadString();
    const std::u16string ReadString16();
    bool ReadString(std::string &value);
    bool ReadString16(std::u16string &value);
    const std::string ReadString8WithLength(int32_t &readLength);
    const std::u16string ReadString16WithLength(int32_t &readLength);
    // NOLINTEND(readability-const-return-type)
    /// @}

    /// A null-terminated string without a length. The result points into the parcel and is valid until the parcel is
    /// written, flushed or destroyed.
    /// @{
    bool WriteCString(const char *value);
    const char *ReadCString();
    /// @}

    /// A block of bytes, padded. Null and empty blocks are rejected. Both functions behave identically.
    /// @{
    bool WriteBuffer(const void *data, size_t size);
    bool WriteUnpadBuffer(const void *data, size_t size);
    /// @}

    /// A block whose last `typeSize` bytes are written as zeros. Rejects blocks of fewer bytes.
    bool WriteBufferAddTerminator(const void *data, size_t size, size_t typeSize);

    /// Return a block of `length` bytes: a pointer into the parcel, valid as long as that of ReadCString. Only
    /// ReadUnpadBuffer skips the padding.
    /// @{
    const uint8_t *ReadBuffer(size_t length);
    const uint8_t *ReadUnpadBuffer(size_t length);
    /// @}

#define HOST_PARCEL_VECTOR(Name, Type)                         \
    bool Write##Name##Vector(const std::vector<Type> &values); \
    bool Read##Name##Vector(std::vector<Type> *values);
    /// Vectors: the count as a signed 32-bit value, then the elements as above; 8-bit and UInt16 elements are packed
    /// and padded as a whole. Reading returns false, with the count consumed and the vector unchanged, if the count is
    /// negative or exceeds the bytes that follow (a string needs at least one); strings that cannot be read are empty.
    /// A null vector is rejected, and nothing is read. Reading at the end of the data returns true and an empty vector.
    /// @{
    HOST_PARCEL_VECTOR(Bool, bool)
    HOST_PARCEL_VECTOR(Int8, int8_t)
    HOST_PARCEL_VECTOR(Int16, int16_t)
    HOST_PARCEL_VECTOR(Int32, int32_t)
    HOST_PARCEL_VECTOR(Int64, int64_t)
    HOST_PARCEL_VECTOR(UInt8, uint8_t)
    HOST_PARCEL_VECTOR(UInt16, uint16_t)
    HOST_PARCEL_VECTOR(UInt32, uint32_t)
    HOST_PARCEL_VECTOR(UInt64, uint64_t)
    HOST_PARCEL_VECTOR(Float, float)
    HOST_PARCEL_VECTOR(Double, double)
    HOST_PARCEL_VECTOR(String, std::string)
    HOST_PARCEL_VECTOR(String16, std::u16string)
    /// @}
#undef HOST_PARCEL_VECTOR

    /// Sizes in bytes: the data; the data after the read position; the free space before the buffer must grow; the
    /// buffer; the size to which writes may grow it (204800 by default). GetData returns the address of the data.
    /// @{
    size_t GetDataSize() const;
    uintptr_t GetData() const;
    size_t GetReadableBytes() const;
    size_t GetWritableBytes() const;
    size_t GetDataCapacity() const;
    size_t GetMaxCapacity() const;
    size_t GetReadPosition();
    size_t GetWritePosition();
    /// @}

    /// Resizes the buffer, even beyond the maximum capacity. Returns false, without a change, if the buffer would not
    /// be larger than the data, or allocation fails.
    bool SetDataCapacity(size_t newCapacity);

    /// Sets the size of the data; the write position is unchanged. Returns false, without a change, if it exceeds the
    /// buffer.
    bool SetDataSize(size_t dataSize);

    /// Increases the maximum capacity. Returns false, without a change, if the new one is not larger.
    bool SetMaxCapacity(size_t maxCapacity);

    /// Set a position, in bytes from the start; RewindWrite also ends the data there. Return false, without a change,
    /// for a position beyond the data.
    /// @{
    bool RewindRead(size_t newPosition);
    bool RewindWrite(size_t newPosition);
    /// @}

    /// Advances the read position, or moves it to the end of the buffer if fewer than `bytes` bytes of data follow.
    void SkipBytes(size_t bytes);

    /// Frees the buffer. After ParseFrom the parcel remains read-only.
    void FlushBuffer();

    /// Takes ownership of a buffer of any size that was allocated with malloc. The parcel is read-only afterwards.
    /// Returns false, without taking ownership, if the parcel has a buffer already, or for a null buffer with a size.
    bool ParseFrom(uintptr_t data, size_t size);

private:
    uint8_t *Append(size_t size);
    const uint8_t *Take(size_t size);
    template <typename Stored, typename T>
    bool Write(T value);
    template <typename Stored, typename T>
    bool Read(T &value);
    template <typename Unit>
    bool WriteChars(const Unit *chars, size_t length);
    template <typename Unit>
    bool ReadChars(std::basic_string<Unit> &value, int32_t &length);
    bool WriteCount(size_t count);
    bool ReadCount(size_t storedSize, size_t &count);
    template <typename T, typename Argument>
    bool WriteVector(const std::vector<T> &values, bool (Parcel::*write)(Argument));
    template <typename T>
    bool WritePacked(const std::vector<T> &values);
    template <typename T>
    bool ReadVector(std::vector<T> *values, size_t storedSize, bool (Parcel::*read)(T &));
    template <typename T>
    bool ReadPacked(std::vector<T> *values);

    std::unique_ptr<uint8_t, void (*)(void *)> data_;
    size_t dataSize_ = 0;
    size_t dataCapacity_ = 0;
    size_t maxCapacity_;
    size_t readPosition_ = 0;
    size_t writePosition_ = 0;
    bool isWritable_ = true;
};

}  // namespace OHOS

#endif  // HOST_PARCEL_H
