// SPDX-License-Identifier: Apache-2.0

/// @file
/// Records and helpers that services pass around: a byte buffer with a movable range, connections, random identifiers,
/// masking of identifiers for logs, timestamps and conversions.
///
///     DHConnectInfo info;
///     info.sinkIp = "192.168.1.10";
///     puts(info.String().c_str());          // ... sinkIp: 1******0 ...
///
/// Records are thread-compatible: callers must synchronize access to an object. Functions are thread-safe, except
/// GetRandomID. Operations that return, store or compare strings or allocate a buffer throw std::bad_alloc if
/// allocation fails; their outputs are then unchanged. After fork() in a process with several threads, the child must
/// call nothing of this library before exec(): another thread may have held a lock.

#ifndef DH_UTILS_TOOLS_H
#define DH_UTILS_TOOLS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// The business that a connection serves. The services that use the library define the values; the library only stores
/// and passes them on.
enum class DHBusinessId : uint32_t;

/// The kind of a connection's channel. The services that use the library define the values.
enum class DHChannelType : uint32_t;

/// A byte buffer of fixed capacity that owns its bytes, with a movable range on it.
struct DHData {
    /// Allocates `capacity` bytes and a NUL after them, all zero; the range covers the whole capacity.
    ///
    /// Allocates nothing if `capacity` is 0. Throws std::bad_alloc if allocation fails, also for SIZE_MAX.
    OSTRA_EXPORT explicit DHData(size_t capacity);
    OSTRA_EXPORT ~DHData();
    DHData(const DHData &) = delete;
    DHData &operator=(const DHData &) = delete;

    /// Returns the length of the range in bytes.
    OSTRA_EXPORT uint64_t Size() const;
    /// Returns the number of usable bytes.
    OSTRA_EXPORT uint64_t Capacity() const;
    /// Returns the start of the range, in bytes from the start of the buffer.
    OSTRA_EXPORT uint64_t Offset() const;

    /// Returns the first byte of the range; null if the capacity is 0.
    OSTRA_EXPORT uint8_t *Data() const;

    /// Moves the range to `size` bytes from `offset`, both in bytes.
    ///
    /// An empty range at the end is valid. Returns 0, or -1, with the range unchanged, if `offset` or `offset + size`
    /// exceeds the capacity. The sum is taken modulo the width of size_t: callers must ensure that it does not wrap
    /// around, since a result within the capacity would be accepted.
    OSTRA_EXPORT int32_t SetRange(size_t offset, size_t size);

    uint64_t capacity_ = 0;
    uint64_t offset_ = 0;
    uint64_t size_ = 0;
    uint8_t *data_ = nullptr;
};

/// One connection from a source device to a sink device.
///
/// The five addresses and the port identify it; extraInfo, extraData and extraParam are not printed or compared.
struct DHConnectInfo {
    /// Returns one line for logs, every identifying field masked with GetAnonyString or GetAnonyInt32.
    ///
    /// Its first label is spelled "sourceNetworId: ".
    OSTRA_EXPORT std::string String() const;

    /// Returns true if the five addresses and the port are equal.
    OSTRA_EXPORT bool operator==(const DHConnectInfo &other) const;

    /// Orders connections as keys of ordered containers.
    ///
    /// Compares, byte by byte, the concatenation of sourceNetworkId, sinkNetworkId, sourceIp, sinkIp, sinkBrMac and the
    /// decimal port, without separators. Connections that split the same string differently are therefore the same key,
    /// though they are not equal, and port 10 orders before port 9.
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

/// A connection with the handle of its channel.
struct DHConnectDevice {
    /// Stores the three values unchanged, and a copy of the whole connection.
    OSTRA_EXPORT DHConnectDevice(int session, DHBusinessId business, DHChannelType channel, DHConnectInfo &connection);
    OSTRA_EXPORT ~DHConnectDevice();
    DHConnectDevice(const DHConnectDevice &) = default;
    DHConnectDevice &operator=(const DHConnectDevice &) = default;

    int32_t sessionId{};
    DHConnectInfo connectInfo;
    DHBusinessId businessId{};
    DHChannelType channelType{};
};

/// Returns a new random identifier of 32 lowercase hexadecimal digits: a version 4 UUID without its dashes.
///
/// Digit 13 is "4", digit 17 is one of 8, 9, a, b. Throws std::runtime_error, or its subclass std::system_error, if
/// /dev/urandom cannot be opened or read; the next call tries again.
///
/// Not thread-safe: callers must synchronize calls. The first call may be made from any thread.
OSTRA_EXPORT std::string GetRandomID();

/// Masks the middle of `value` with six asterisks.
///
/// Keeps 4 bytes at each end of a string of 21 bytes or more, 1 byte of a string of 3 to 20 bytes, and none of a
/// shorter one. Counts bytes, not characters.
OSTRA_EXPORT std::string GetAnonyString(const std::string &value);

/// Returns `value` in decimal, with every character after the first replaced by an asterisk.
///
/// The first character may be the minus sign; a single digit becomes "*". Returns an empty string if the number cannot
/// be printed.
OSTRA_EXPORT std::string GetAnonyInt32(int32_t value);

/// Fetches the local device's network id from the soft bus.
///
/// Returns 0 and sets `networkId`, or returns the soft bus's error code, which is logged, with `networkId` unchanged.
OSTRA_EXPORT int32_t GetLocalDeviceNetworkId(std::string &networkId);

/// Returns the milliseconds since the Unix epoch by the wall clock, which may be set back.
OSTRA_EXPORT int64_t GetNowTimeStampMs();

/// Returns the microseconds since the Unix epoch by the wall clock, which may be set back.
OSTRA_EXPORT int64_t GetNowTimeStampUs();

/// Writes `value` to byteArray[0..3], most significant byte first.
///
/// `byteSize` is the size of the array and must be 4. Any other size, or a null array, is logged as an error and
/// nothing is written.
OSTRA_EXPORT void OSTRAIntToByte(uint32_t value, uint8_t *byteArray, uint32_t byteSize);

/// Returns true if `value` is an optional sign followed by decimal digits (see NUMBER_PATTERN), at most 100 characters
/// in all.
///
/// An empty or longer string is logged as an error. The magnitude of the number is not checked.
OSTRA_EXPORT bool CheckIsNum(const std::string &value);

/// Appends `size` bytes of `data` to a file, which is created if it does not exist.
///
/// A size of 0 creates the file. Logs an error, and neither creates nor changes the file, if:
/// - `size` is negative, or `data` is null and `size` is greater than 0.
/// - The file cannot be opened.
///
/// A failed write is not reported. If std::bad_alloc is thrown, a new file may have been created, empty.
OSTRA_EXPORT void SaveFile(std::string fileName, uint8_t *data, int32_t size);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // DH_UTILS_TOOLS_H
