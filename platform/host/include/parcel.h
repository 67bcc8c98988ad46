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
// Everything is little-endian and takes a multiple of 4 bytes. A string is its length as a signed 32-bit value, its
// bytes, a zero byte, and zero bytes up to a multiple of 4. One thread at a time uses an object.

#ifndef HOST_PARCEL_H
#define HOST_PARCEL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace OHOS {

class Parcel {
public:
    Parcel() = default;
    virtual ~Parcel();
    Parcel(const Parcel &) = delete;
    Parcel &operator=(const Parcel &) = delete;

    // Append one value behind the data. Return false, with the parcel unchanged, when it would pass the capacity or a
    // string is longer than a signed 32-bit length can say.
    bool WriteUint32(uint32_t value);
    bool WriteString(const std::string &value);

    // Returns the value at the read position and moves behind it; 0, without moving, when fewer than 4 bytes remain.
    uint32_t ReadUint32();

    // Puts the string at the read position into `value` and moves behind it. Returns false, with an empty value and
    // without moving, when the length is negative, the bytes up to the multiple of 4 are not all there, or the byte
    // behind the text is not zero. What the bytes after that one hold does not matter.
    bool ReadString(std::string &value);

    // Bytes written, their address (valid until the parcel is next written or destroyed), and the bytes not yet read.
    size_t GetDataSize() const;
    uintptr_t GetData() const;
    size_t GetReadableBytes() const;

    // The most bytes that the parcel takes, 204800 at first. A capacity below the data held already is refused with
    // false.
    size_t GetMaxCapacity() const;
    bool SetMaxCapacity(size_t maxCapacity);

    // Replaces the data by a copy of the `size` bytes at `data`, to be read from the start. Returns false, with the
    // parcel unchanged, for a null address with a size above 0 and for a size above the capacity.
    bool ParseFrom(uintptr_t data, size_t size);

    // Moves the read position to this many bytes from the start. Returns false, without moving, past the end of the
    // data.
    bool RewindRead(size_t newPosition);

private:
    static constexpr size_t DEFAULT_MAX_CAPACITY = 204800;

    std::vector<uint8_t> data_;
    size_t readPosition_ = 0;
    size_t maxCapacity_ = DEFAULT_MAX_CAPACITY;
};

}  // namespace OHOS

#endif  // HOST_PARCEL_H
