// SPDX-License-Identifier: Apache-2.0

/// @file
/// Frames for a device-to-device channel: a header value of 1 to 4 bytes, followed by the content.
///
///     ChannelProtocol out;                              ChannelProtocol in;
///     out.Create(headerValue, size);                    in.CreateFromBuffer(bytes, length);
///     out.WriteContent(content, size);                  UnPackagedEA ea;
///     Send(out.GetBuffer(), out.GetBufferSize());       in.ReadEA(ea, 0);   // content: ea.offset to the end
///
/// The header value (EA) is a 28-bit varint: little-endian groups of 7 bits, bit 7 set on the last byte (stop bit). 5
/// is encoded as 85, 300 as 2C 82. A frame does not contain its CRC; services that use one must agree where to send it.

#ifndef CHANNEL_PROTOCOL_H
#define CHANNEL_PROTOCOL_H

#include <cstdint>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// The header value decoded by ChannelProtocol::ReadEA.
struct UnPackagedEA {
    uint32_t value = 0;  ///< 0 to 0x0FFFFFFF.
    int32_t offset = 0;  ///< Position of the byte after the header value, where the content begins.
};

/// One frame in a buffer that the object owns.
///
/// Call Create or CreateFromBuffer once per object: another call replaces the buffer without releasing it. Callers may
/// read the members but must not change them.
///
/// Operations that fail log an error unless documented otherwise. They throw nothing themselves (see DHLog for what a
/// log message may do): if allocation fails, they return false.
///
/// Not thread-safe: callers must synchronize access to an object. GetCrc and HasEA use no object state and are
/// thread-safe.
class ChannelProtocol {
public:
    ChannelProtocol() = default;
    ~ChannelProtocol()
    {
        delete[] protocolBuffer_;
        protocolBuffer_ = nullptr;
    }
    ChannelProtocol(const ChannelProtocol &) = delete;
    ChannelProtocol &operator=(const ChannelProtocol &) = delete;

    /// Prepares a frame to send: writes the header value and reserves `contentSize` bytes for the content.
    ///
    /// The content is undefined until WriteContent writes it. Only the low 28 bits of a negative `eaValue` are encoded,
    /// as four bytes without a stop bit: -1 becomes 7F 7F 7F 7F.
    ///
    /// Returns false if:
    /// - `eaValue` is greater than 0x0FFFFFFF or `contentSize` is negative; the object is unchanged.
    /// - The frame would exceed INT_MAX bytes, or allocation fails; this is not logged. The buffer is then null, and
    ///   bufferSize_ and offset_ are unchanged.
    /// - The header value cannot be copied; the buffer is then null, and bufferSize_ and offset_ are unchanged.
    OSTRA_EXPORT bool Create(int eaValue, int contentSize);

    /// Copies a received frame of `size` bytes into this object.
    ///
    /// Returns false if:
    /// - `buffer` is null or `size` is less than 1; the object is unchanged.
    /// - Allocation or copying fails; the buffer is then null, and bufferSize_ and offset_ are unchanged.
    OSTRA_EXPORT bool CreateFromBuffer(unsigned char *buffer, int size);

    /// Copies `length` bytes of content to offset_.
    ///
    /// After Create that is the first byte after the header, after CreateFromBuffer the start of the frame. Does not
    /// advance offset_, so the whole content must be written in one call. `data` may be the destination itself.
    ///
    /// Returns false if:
    /// - `data` is null, `length` is less than 1, or there is no frame; the frame is unchanged.
    /// - The content does not fit; the frame is unchanged.
    /// - `data` partly overlaps the destination; the content is then undefined.
    OSTRA_EXPORT bool WriteContent(unsigned char *data, int length) const;

    /// Decodes the header value at `offset` and moves offset_ to the byte after it.
    ///
    /// Stops after the first byte with a stop bit, after four bytes, or at the end of the frame, whichever comes first.
    /// A value without a stop bit is accepted. If `offset` is at or past the end, nothing is read: the value is 0, and
    /// `ea.offset` is `offset`.
    ///
    /// Returns false, with `ea` and the object unchanged, if `offset` is negative or there is no frame.
    OSTRA_EXPORT bool ReadEA(UnPackagedEA &ea, int offset);

    /// Returns true if `byte` has the stop bit set.
    OSTRA_EXPORT static bool HasEA(unsigned char byte);

    /// Returns the CRC-16/ARC of `length` bytes at `data`, and logs it, masked, at info level.
    ///
    /// Reflected polynomial 0xA001, initial value 0, no final XOR: the CRC of "123456789" is 0xBB3D. Returns 0 if
    /// `data` is null or `length` is less than 1.
    OSTRA_EXPORT uint32_t GetCrc(unsigned char *data, int length) const;

    /// Returns the whole frame, which the object continues to own; null if there is none.
    OSTRA_EXPORT unsigned char *GetBuffer() const;

    /// Returns the size of the whole frame in bytes; 0 before one is created.
    OSTRA_EXPORT int32_t GetBufferSize() const;

    int32_t bufferSize_ = 0;  ///< In bytes.
    /// Position of the first content byte after Create, 0 after CreateFromBuffer, `ea.offset` after ReadEA.
    int32_t offset_ = 0;
    unsigned char *protocolBuffer_ = nullptr;  ///< The whole frame.
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // CHANNEL_PROTOCOL_H
