// SPDX-License-Identifier: Apache-2.0
//
// Frames for a device-to-device channel: a header value of 1 to 4 bytes, followed by the content. Beside them a CRC-16
// over any byte range; a frame does not hold it, the services carry it as they agree.
//
//     ChannelProtocol out;                                  ChannelProtocol in;
//     out.Create(headerValue, size);                        in.CreateFromBuffer(bytes, length);
//     out.WriteContent(content, size);                      UnPackagedEA ea;
//     Send(out.GetBuffer(), out.GetBufferSize());           in.ReadEA(ea, 0);   // content: ea.offset to the end
//
// The header value (EA) is a quantity of 28 bits in groups of 7, least significant first, one group a byte; bit 7 marks
// the last byte: 5 is 85, 300 is 2C 82. Every failure is logged as an error unless said otherwise. One thread at a time
// uses an object; GetCrc and HasEA touch no object state and may run on any number of threads at once. Memory that runs
// out is a false result, never an exception.

#ifndef CHANNEL_PROTOCOL_H
#define CHANNEL_PROTOCOL_H

#include <cstdint>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// A header value that ReadEA found, and the position just behind it.
struct UnPackagedEA {
    uint32_t value = 0;  // 0 to 0x0FFFFFFF
    int32_t offset = 0;  // in bytes from the start of the frame; the content begins here
};

// One frame in a buffer of its own; cannot be copied or assigned. Create and CreateFromBuffer are meant to be called
// once per object: a buffer that it already holds is replaced, not released. The members are open to be looked at; the
// operations keep them.
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

    // Prepares a frame to send: writes the header value and makes room for contentSize bytes, which stay undefined
    // until WriteContent. Returns false for eaValue above 0x0FFFFFFF or a negative contentSize; also false, but without
    // a log, when the buffer would pass INT_MAX bytes or cannot be allocated. A negative eaValue is taken for its low
    // 28 bits, written as four bytes without an end mark: -1 is 7F 7F 7F 7F.
    OSTRA_EXPORT bool Create(int eaValue, int contentSize);

    // Takes a copy of a received frame. Returns false for a null buffer, a size below 1, or when memory runs out or the
    // copy is refused.
    OSTRA_EXPORT bool CreateFromBuffer(unsigned char *buffer, int size);

    // Copies `length` bytes of content to offset_, which it does not move: after Create the place just behind the
    // header (after CreateFromBuffer it is the header itself, and ReadEA moves it). Returns false for null data, a
    // length below 1, when there is no buffer, or when the content does not fit: the frame then stays as it was.
    // Content that lies at that very place is copied onto itself, which succeeds; data that overlaps the place in any
    // other way gives false and leaves the content undefined.
    OSTRA_EXPORT bool WriteContent(unsigned char *data, int length) const;

    // Decodes the header value at `offset` (0 and up) and moves offset_ just behind it. Reads up to the first byte that
    // carries the end mark, four bytes, or the end of the frame, whichever comes first, and takes the value as it
    // stands; at or past the end it reads nothing: value 0, position `offset`. Returns false, with `ea` and the object
    // unchanged, for a negative offset or when there is no frame.
    OSTRA_EXPORT bool ReadEA(UnPackagedEA &ea, int offset);

    // True when `byte` carries the end mark, bit 7.
    OSTRA_EXPORT static bool HasEA(unsigned char byte);

    // Returns the CRC-16/ARC (reflected polynomial 0xA001, start value 0) of `length` bytes at `data`; "123456789"
    // gives 0xBB3D. A length below 1 or null data gives 0. Each call logs the masked result at info level.
    OSTRA_EXPORT uint32_t GetCrc(unsigned char *data, int length) const;

    // The whole frame; null before one is created. The object keeps the buffer. Where a further Create or
    // CreateFromBuffer runs out of memory or cannot copy, the buffer is null and the size still that of the earlier
    // frame; refused arguments, and a size past INT_MAX, change nothing.
    OSTRA_EXPORT unsigned char *GetBuffer() const;

    // The size of the whole frame in bytes; 0 before one is created.
    OSTRA_EXPORT int32_t GetBufferSize() const;

    int32_t bufferSize_ = 0;  // in bytes
    // After Create the first content byte, after CreateFromBuffer 0, after ReadEA the byte behind the header value.
    int32_t offset_ = 0;
    unsigned char *protocolBuffer_ = nullptr;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // CHANNEL_PROTOCOL_H
