// SPDX-License-Identifier: Apache-2.0
//
// The parcel of the platform's inter-process calls: values are written one after the other and read back in the same
// order.
//
//     Parcel parcel;
//     parcel.WriteUint32(7);                       // 07 00 00 00
//     parcel.WriteString("ab");                    // 02 00 00 00 61 62 00 00
//     parcel.ReadUint32();                         // 7
//     parcel.ReadString(text);                     // true, "ab"
//
// Everything is little-endian and takes a multiple of 4 bytes. A write that would pass the capacity returns false and
// leaves nothing of its piece; the length of a text and the count of a vector are pieces of their own, which stay. A
// read of what is not all there returns false, 0, null or an empty text, and leaves its argument and the read position,
// but for what is said below. Objects, file descriptors and unaligned values are not offered. One thread at a time uses
// a parcel.

#ifndef HOST_PARCEL_H
#define HOST_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace OHOS {

// Where a parcel has its block from.
class Allocator {
public:
    virtual ~Allocator() = default;
    virtual void *Realloc(void *data, size_t newSize) = 0;
    virtual void *Alloc(size_t size) = 0;
    virtual void Dealloc(void *data) = 0;
};

// malloc and its kin.
class DefaultAllocator : public Allocator {
public:
    void *Realloc(void *data, size_t newSize) override;
    void *Alloc(size_t size) override;
    void Dealloc(void *data) override;
};

// Values in a block, with a position to write at and one to read from.
class Parcel {
public:
    Parcel();
    explicit Parcel(Allocator *allocator);  // takes the allocator over; null is the default one
    virtual ~Parcel();
    Parcel(const Parcel &) = delete;
    Parcel &operator=(const Parcel &) = delete;

    // Single values: bool WriteX(T), T ReadX() and bool ReadX(T &). What is narrower than 4 bytes is widened by its
    // sign, and read from the lowest byte or two; a truth value reads true from any value but 0.
    // NOLINTBEGIN(bugprone-macro-parentheses): types, which cannot stand in any
#define HOST_PARCEL_SCALAR(Name, Type) \
    bool Write##Name(Type value);      \
    Type Read##Name();                 \
    bool Read##Name(Type &value);
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
#undef HOST_PARCEL_SCALAR
    // NOLINTEND(bugprone-macro-parentheses)

    // An address of this process, in 8 bytes.
    bool WritePointer(uintptr_t value);
    uintptr_t ReadPointer();

    // A text of 8 or 16 bits: its length in units as a signed 32-bit value, its units and a zero unit, padded. A null
    // text is the length -1 alone.
    bool WriteString(const std::string &value);
    bool WriteString16(const std::u16string &value);
    bool WriteString8WithLength(const char *value, size_t length);
    bool WriteString16WithLength(const char16_t *value, size_t length);

    // An unreadable text is empty. A negative length and 0x7fffffff are consumed; otherwise the read position stays
    // where it was, also when the unit behind the text is not zero. What the padding holds, and whether it is all
    // there, does not matter. `readLength` gets the length that was consumed.
    // NOLINTBEGIN(readability-const-return-type): as the platform declares them
    const std::string ReadString();
    const std::u16string ReadString16();
    bool ReadString(std::string &value);
    bool ReadString16(std::u16string &value);
    const std::string ReadString8WithLength(int32_t &readLength);
    const std::u16string ReadString16WithLength(int32_t &readLength);
    // NOLINTEND(readability-const-return-type)

    // A text up to its zero byte, without a length. What is read lies in the parcel and is valid until it is next
    // written, flushed or destroyed.
    bool WriteCString(const char *value);
    const char *ReadCString();

    // A block, padded; null and an empty one are refused. Both names do the same.
    bool WriteBuffer(const void *data, size_t size);
    bool WriteUnpadBuffer(const void *data, size_t size);

    // A block whose last `typeSize` bytes are written as zeros; refused with fewer bytes than those.
    bool WriteBufferAddTerminator(const void *data, size_t size, size_t typeSize);

    // A block of this size within the parcel, valid as with ReadCString. Only ReadUnpadBuffer skips the padding.
    const uint8_t *ReadBuffer(size_t length);
    const uint8_t *ReadBuffer(size_t length, bool isValidate);
    const uint8_t *ReadUnpadBuffer(size_t length);

    // Vectors: the count as a signed 32-bit value, then the elements as above; those of 8 bits and UInt16 lie without
    // gaps and are padded as one. Reading refuses, with the count consumed and the vector unchanged, a count that is
    // negative or needs more bytes than there are (a text needs at least one); texts that cannot be read are empty.
#define HOST_PARCEL_VECTOR(Name, Type)                         \
    bool Write##Name##Vector(const std::vector<Type> &values); \
    bool Read##Name##Vector(std::vector<Type> *values);
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
#undef HOST_PARCEL_VECTOR

    // Bytes of data and their address; bytes behind the read position; bytes that can be written before the block must
    // grow; bytes of the block; the most bytes that it grows to by writing, 204800 at first.
    size_t GetDataSize() const;
    uintptr_t GetData() const;
    size_t GetReadableBytes() const;
    size_t GetWritableBytes() const;
    size_t GetDataCapacity() const;
    size_t GetMaxCapacity() const;
    size_t GetOffsetsSize() const;  // of objects: 0
    size_t GetReadPosition();
    size_t GetWritePosition();

    // Gives the block this size, also beyond the most that it grows to. False when it does not exceed the data.
    bool SetDataCapacity(size_t newCapacity);

    // Makes the data this long, of what the block holds; the write position stays. False beyond the block.
    bool SetDataSize(size_t dataSize);

    // Raises the most bytes. False when it would not rise.
    bool SetMaxCapacity(size_t maxCapacity);

    // Moves a position to so many bytes from the start; RewindWrite ends the data there. False beyond the data.
    bool RewindRead(size_t newPosition);
    bool RewindWrite(size_t newPosition);

    // Moves the read position; beyond the data, to the end of the block.
    void SkipBytes(size_t bytes);

    // Frees the block. What ParseFrom was given still allows no write.
    void FlushBuffer();

    // Takes an allocator over in place of the one so far. False for null and while the parcel has a block, which
    // belongs to the allocator so far.
    bool SetAllocator(Allocator *allocator);

    // Takes over a block that the parcel's allocator can free (malloc's by default), as data of this size, whatever
    // the most bytes are. Nothing can be written afterwards. False, with the block still the caller's, when the parcel
    // has a block already, and for a null block with a size.
    bool ParseFrom(uintptr_t data, size_t size);

private:
    uint8_t *Append(size_t size);
    const uint8_t *Take(size_t size);
    bool Grow(size_t size);
    template <typename Stored, typename T>
    bool Write(T value);
    template <typename Stored, typename T>
    bool Read(T &value);
    template <typename Unit>
    bool WriteText(const Unit *text, size_t length);
    template <typename Unit>
    bool ReadText(std::basic_string<Unit> &text, int32_t &length);
    template <typename T, typename Argument>
    bool WriteVector(const std::vector<T> &values, bool (Parcel::*write)(Argument));
    template <typename T>
    bool WritePacked(const std::vector<T> &values);
    template <typename T>
    bool ReadVector(std::vector<T> *values, size_t storedSize, bool (Parcel::*read)(T &));
    template <typename T>
    bool ReadPacked(std::vector<T> *values);

    std::unique_ptr<Allocator> allocator_;
    uint8_t *data_ = nullptr;
    size_t dataSize_ = 0;
    size_t dataCapacity_ = 0;
    size_t maxCapacity_;
    size_t readPosition_ = 0;
    size_t writePosition_ = 0;
    bool isWritable_ = true;
};

}  // namespace OHOS

#endif  // HOST_PARCEL_H
