// SPDX-License-Identifier: Apache-2.0
//
// The small records and helpers that the hosting services pass around: a byte buffer with a movable range, the
// description of a connection, random identifiers, masking of identifiers for logs, time stamps and conversions.
//
//     DHConnectInfo info;
//     info.sinkIp = "192.168.1.10";
//     puts(info.String().c_str());          // ... sinkIp: 1******0 ...
//
// Records are plain values: one thread at a time uses an object. The functions may be called from any thread at once,
// except GetRandomID (see there). What returns, stores or compares texts or makes a buffer raises std::bad_alloc when
// memory runs out; what it would have written is then as it was.
//
// For the whole library: a child that a process with several threads has forked calls nothing of it before exec, since
// another thread may have held a lock at that moment.

#ifndef DH_UTILS_TOOLS_H
#define DH_UTILS_TOOLS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// The business that a connection serves. The services that use the library give the values their names; the library
// stores and passes them on as they are.
enum class DHBusinessId : uint32_t;

// The kind of a connection's channel; its values, too, are named by the services.
enum class DHChannelType : uint32_t;

// A byte buffer of fixed capacity with a movable range on it. Owns its bytes; cannot be copied or assigned.
struct DHData {
    // Allocates `capacity` bytes, all zero, and one more zero byte behind them; the range covers the whole capacity.
    // A capacity of 0 allocates nothing. Raises the allocation's std::bad_alloc when the bytes cannot be had, SIZE_MAX
    // included.
    OSTRA_EXPORT explicit DHData(size_t capacity);
    OSTRA_EXPORT ~DHData();
    DHData(const DHData &) = delete;
    DHData &operator=(const DHData &) = delete;

    // Length of the range in bytes.
    OSTRA_EXPORT uint64_t Size() const;
    // Usable bytes in all.
    OSTRA_EXPORT uint64_t Capacity() const;
    // Start of the range, in bytes from the start of the buffer.
    OSTRA_EXPORT uint64_t Offset() const;

    // The first byte of the range; null when the capacity is 0.
    OSTRA_EXPORT uint8_t *Data() const;

    // Moves the range to `size` bytes from `offset`. Returns 0, or -1 when offset, or offset + size, lies beyond the
    // capacity; the range then stays as it was. An empty range at the very end is valid. The sum of the two arguments
    // is taken modulo the width of size_t: one that wraps around to within the capacity is accepted, so callers keep
    // it from wrapping.
    OSTRA_EXPORT int32_t SetRange(size_t offset, size_t size);

    uint64_t capacity_ = 0;
    uint64_t offset_ = 0;
    uint64_t size_ = 0;
    uint8_t *data_ = nullptr;
};

// One connection from a source device to a sink device. Its identity is the five addresses and the port; extraInfo,
// extraData and extraParam are carried along and take no part in printing, equality or ordering.
struct DHConnectInfo {
    // One line for logs, every identifying field masked with GetAnonyString or GetAnonyInt32. Its first label is
    // spelled "sourceNetworId: "; log readers know it so.
    OSTRA_EXPORT std::string String() const;

    // True when the five addresses and the port are equal.
    OSTRA_EXPORT bool operator==(const DHConnectInfo &other) const;

    // A key ordering for ordered containers: compares, byte by byte, the texts made of sourceNetworkId, sinkNetworkId,
    // sourceIp, sinkIp, sinkBrMac and the decimal port, joined without separators. Records that differ only in where
    // that text is split are therefore one key, though they are unequal; and port 10 orders before port 9.
    OSTRA_EXPORT bool operator<(const DHConnectInfo &other) const;

    std::string sourceNetworkId;
    std::string sinkNetworkId;
    std::string sourceIp;
    std::string sinkIp;
    std::string sinkBrMac;
    std::string extraInfo;
    std::vector<uint8_t> extraData;
    int32_t port = 0;
    std::string extraParam;
};

// A connection together with the handle of its channel.
struct DHConnectDevice {
    // Stores the three values as they are and a copy of the whole connection.
    OSTRA_EXPORT DHConnectDevice(int session, DHBusinessId business, DHChannelType channel, DHConnectInfo &connection);
    OSTRA_EXPORT ~DHConnectDevice();
    DHConnectDevice(const DHConnectDevice &) = default;
    DHConnectDevice &operator=(const DHConnectDevice &) = default;

    int32_t sessionId{};
    DHConnectInfo connectInfo;
    DHBusinessId businessId{};
    DHChannelType channelType{};
};

// Returns a new random identifier of 32 lowercase hexadecimal digits, a version 4 UUID without its dashes: digit 13 is
// "4", digit 17 is one of 8, 9, a, b. Reads /dev/urandom, and raises the platform's std::runtime_error, which may be
// its subclass std::system_error, when it cannot be opened or read; the next call tries again. The random source is
// made once, safely from any thread, and never destroyed; callers that need identifiers from several threads at once
// must serialise their calls.
OSTRA_EXPORT std::string GetRandomID();

// Masks the middle of `value` with six asterisks. Keeps 4 bytes at each end of a text of 21 bytes or more, 1 byte of a
// text of 3 to 20, none of a shorter one. Counts bytes, not characters.
OSTRA_EXPORT std::string GetAnonyString(const std::string &value);

// Returns the decimal text of `value` with every character after the first replaced by an asterisk (the first may be
// the minus sign); a single digit becomes "*". Returns an empty text when the number cannot be printed.
OSTRA_EXPORT std::string GetAnonyInt32(int32_t value);

// Fetches the local device's network id from the soft bus. Returns 0 and fills `networkId`, or the soft bus's code,
// which is logged, with `networkId` unchanged.
OSTRA_EXPORT int32_t GetLocalDeviceNetworkId(std::string &networkId);

// Milliseconds since the Unix epoch by the wall clock. Follows changes of the clock.
OSTRA_EXPORT int64_t GetNowTimeStampMs();

// Microseconds since the Unix epoch by the wall clock. Follows changes of the clock.
OSTRA_EXPORT int64_t GetNowTimeStampUs();

// Writes `value` to byteArray[0..3], most significant byte first. byteSize is the size of the array and must be 4: any
// other size, or a null array, is logged as an error and nothing is written.
OSTRA_EXPORT void OSTRAIntToByte(uint32_t value, uint8_t *byteArray, uint32_t byteSize);

// True when the whole of `value` is an optional sign followed by decimal digits (NUMBER_PATTERN), at most 100
// characters in all. An empty or longer text is logged as an error. The magnitude of the number is not looked at.
OSTRA_EXPORT bool CheckIsNum(const std::string &value);

// Appends `size` bytes of `data` to the file, creating it where it is missing. A file that cannot be opened is logged
// as an error; a failed write is not reported. A negative size, or null data with a size above 0, is logged as an error
// and the file is neither created nor changed; a size of 0 creates the file. When memory runs out, a missing file may
// have been created, empty.
OSTRA_EXPORT void SaveFile(std::string fileName, uint8_t *data, int32_t size);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // DH_UTILS_TOOLS_H
