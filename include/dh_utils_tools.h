// SPDX-License-Identifier: Apache-2.0

/// @file
/// Records and helpers that services share: a byte buffer with a movable range, connections, random identifiers,
/// masking of identifiers for logs, timestamps and conversions.
///
///     DHConnectInfo info;
///     info.sinkIp = "192.168.1.10";
///     puts(info.String().c_str());          // ... sinkIp: 1******0 ...
///
/// Records are not thread-safe: callers must synchronize access to an object. Functions are thread-safe, except
/// GetRandomID. Operations that return, store or compare strings or allocate a buffer throw std::bad_alloc if
/// allocation fails; their outputs are then unchanged. After fork() in a process with several threads, the child must
/// not call this library before exec(): another thread may have held a lock.

#ifndef DH_UTILS_TOOLS_H
#define DH_UTILS_TOOLS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// The business that a connection serves. The services that use the library define the values; the library only stores
/// them and passes them on.
enum class DHBusinessId : uint32_t;

/// The kind of a connection's channel. The services that use the library define the values.
enum class DHChannelType : uint32_t;

/// A byte buffer of fixed capacity that owns its bytes, with a movable range in it.
struct DHData {
    /// Allocates `capacity` zeroed bytes and a NUL after them. The range covers the whole capacity.
    ///
    /// Allocates nothing if `capacity` is 0. Throws std::bad_alloc if allocation fails, as it always does for SIZE_MAX.
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

    /// Sets the range to `size` bytes, starting at `offset` bytes from the start of the buffer.
    ///
    /// An empty range at the end is valid. Returns 0, or -1, with the range unchanged, if `offset` or `offset + size`
    /// exceeds the capacity. Callers must ensure that the sum does not wrap around: a wrapped sum within the capacity
    /// would be accepted.
    OSTRA_EXPORT int32_t SetRange(size_t offset, size_t size);

    uint64_t capacity_ = 0;
    uint64_t offset_ = 0;
    uint64_t size_ = 0;
    uint8_t *data_ = nullptr;
};

/// One connection from a source device to a sink device.
///
/// Network ids, IP addresses, MAC address and port identify it; extraInfo, extraData and extraParam are neither printed
/// nor compared.
struct DHConnectInfo {
    /// Returns a one-line description for logs, with every field masked by GetAnonyString or GetAnonyInt32.
    ///
    /// The first label is "sourceNetworId: ", without a "k".
    OSTRA_EXPORT std::string String() const;

    /// Returns true if all network ids, IP addresses, MAC addresses and ports are equal.
    OSTRA_EXPORT bool operator==(const DHConnectInfo &other) const;

    /// Orders connections, for use as keys of ordered containers.
    ///
    /// Compares, byte by byte, the concatenation of sourceNetworkId, sinkNetworkId, sourceIp, sinkIp, sinkBrMac and the
    /// port in decimal, without separators. Different connections whose concatenations are equal are therefore
    /// equivalent as keys, and port 10 is ordered before port 9.
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

/// A connection and its channel.
struct DHConnectDevice {
    /// Copies the arguments, without validation. The first is the handle of the channel.
    OSTRA_EXPORT DHConnectDevice(int session, DHBusinessId business, DHChannelType channel, DHConnectInfo &connection);
    OSTRA_EXPORT ~DHConnectDevice();
    DHConnectDevice(const DHConnectDevice &) = default;
    DHConnectDevice &operator=(const DHConnectDevice &) = default;

    int32_t sessionId{};  ///< Handle of the channel; not interpreted.
    DHConnectInfo connectInfo;
    DHBusinessId businessId{};
    DHChannelType channelType{};
};

/// Returns a new random identifier of 32 lowercase hexadecimal digits: a version 4 UUID without its dashes.
///
/// The 13th digit is 4, the 17th is 8, 9, a or b. Throws std::runtime_error, or its subclass std::system_error, if
/// /dev/urandom cannot be opened or read; the next call tries again.
///
/// Not thread-safe: callers must synchronize calls. The first call may be made from any thread.
OSTRA_EXPORT std::string GetRandomID();

/// Returns `value` with its middle replaced by six asterisks.
///
/// Keeps 4 bytes at each end of a string of 21 bytes or more, 1 byte at each end of a string of 3 to 20 bytes, and none
/// of a shorter one. Counts bytes, not characters.
OSTRA_EXPORT std::string GetAnonyString(const std::string &value);

/// Returns `value` in decimal, with every character after the first replaced by an asterisk.
///
/// The first character of a negative number is its minus sign; a single digit becomes "*". Returns an empty string if
/// formatting fails.
OSTRA_EXPORT std::string GetAnonyInt32(int32_t value);

/// Fetches the local device's network id from SoftBus.
///
/// Returns 0 and sets `networkId`. If SoftBus returns an error code, logs and returns it; `networkId` is then
/// unchanged.
OSTRA_EXPORT int32_t GetLocalDeviceNetworkId(std::string &networkId);

/// Returns the milliseconds since the Unix epoch. Uses the system clock, which is not monotonic.
OSTRA_EXPORT int64_t GetNowTimeStampMs();

/// Returns the microseconds since the Unix epoch. Uses the system clock, which is not monotonic.
OSTRA_EXPORT int64_t GetNowTimeStampUs();

/// Writes `value` to byteArray[0..3], most significant byte first.
///
/// `byteSize` is the size of the array in bytes and must be 4. If it is not, or the array is null, logs an error and
/// writes nothing.
OSTRA_EXPORT void OSTRAIntToByte(uint32_t value, uint8_t *byteArray, uint32_t byteSize);

/// Returns true if `value` consists of an optional sign and decimal digits (see NUMBER_PATTERN), and has at most 100
/// characters.
///
/// Logs an error if `value` is empty or too long. The magnitude of the number is not checked.
OSTRA_EXPORT bool CheckIsNum(const std::string &value);

/// Appends `size` bytes of `data` to a file, which is created if it does not exist.
///
/// A size of 0 creates the file if necessary. Logs an error, and neither creates nor changes the file, if:
/// - `size` is negative, or `data` is null and `size` is greater than 0.
/// - The file cannot be opened.
///
/// A failed write is not reported. If std::bad_alloc is thrown, an empty file may have been created.
OSTRA_EXPORT void SaveFile(std::string fileName, uint8_t *data, int32_t size);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // DH_UTILS_TOOLS_H
