// SPDX-License-Identifier: Apache-2.0
//
// A received frame: header values read at every offset, the frame packed again, and the CRC.

#include <algorithm>
#include <vector>

#include "channel_protocol.h"
#include "fuzz_target.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int MAX_EA_LENGTH = 4;
constexpr uint32_t MAX_EA_VALUE = 0x0FFFFFFF;

using Bytes = std::vector<unsigned char>;

Bytes BytesOf(const ChannelProtocol &frame)
{
    return {frame.GetBuffer(), frame.GetBuffer() + frame.GetBufferSize()};
}

// A header value ends at the first end mark, after four bytes, or with the frame, and nowhere else.
void CheckExtent(const Bytes &bytes, int offset, int end)
{
    const int size = static_cast<int>(bytes.size());
    const int last = end - 1;
    const auto hasEndMark = [](unsigned char byte) {
        return ChannelProtocol::HasEA(byte);
    };
    Require(end > offset && end <= size && end - offset <= MAX_EA_LENGTH,
            "a header value is 1 to 4 bytes of the frame");
    Require(std::none_of(bytes.begin() + offset, bytes.begin() + last, hasEndMark), "nothing behind an end mark");
    Require(hasEndMark(bytes[static_cast<size_t>(last)]) || end - offset == MAX_EA_LENGTH || end == size,
            "nothing stops before its end mark");
}

// The value and content of the frame, packed into a new one, come out of that one the same.
void CheckPacking(const UnPackagedEA &ea, Bytes bytes)
{
    unsigned char *content = bytes.data() + ea.offset;
    const int contentSize = static_cast<int>(bytes.size()) - ea.offset;
    ChannelProtocol packed;
    Require(packed.Create(static_cast<int>(ea.value), contentSize), "a value that was read can be packed");
    Require(packed.offset_ <= ea.offset, "packing takes the fewest bytes");
    Require(packed.WriteContent(content, contentSize) == (contentSize > 0), "the content fits");

    Bytes sent = BytesOf(packed);
    ChannelProtocol received;
    UnPackagedEA again;
    Require(received.CreateFromBuffer(sent.data(), static_cast<int>(sent.size())), "a packed frame is received");
    Require(received.ReadEA(again, 0) && again.value == ea.value && again.offset == packed.offset_,
            "the value comes back");
    Require(std::equal(sent.begin() + again.offset, sent.end(), content, content + contentSize),
            "the content comes back");
}

// A CRC of this kind over data and its own CRC, low byte first, is 0.
void CheckCrc(Bytes bytes)
{
    const ChannelProtocol frame;
    const uint32_t crc = frame.GetCrc(bytes.data(), static_cast<int>(bytes.size()));
    Require(crc <= UINT16_MAX, "16 bits");
    bytes.push_back(static_cast<unsigned char>(crc & 0xFF));
    bytes.push_back(static_cast<unsigned char>(crc >> 8));
    Require(frame.GetCrc(bytes.data(), static_cast<int>(bytes.size())) == 0, "the CRC confirms its data");
}

void Check(Bytes bytes)
{
    const int size = static_cast<int>(bytes.size());
    ChannelProtocol frame;
    Require(frame.CreateFromBuffer(bytes.data(), size) == (size > 0), "every frame but an empty one is taken");
    UnPackagedEA ea;
    if (size == 0) {
        Require(!frame.ReadEA(ea, 0), "nothing is read from no frame");
        return;
    }
    Require(BytesOf(frame) == bytes, "a frame is taken as it is");
    for (int offset = 0; offset < size; ++offset) {
        Require(frame.ReadEA(ea, offset), "every offset is read");
        Require(ea.value <= MAX_EA_VALUE && frame.offset_ == ea.offset, "28 bits, and the position behind them");
        CheckExtent(bytes, offset, ea.offset);
    }
    for (int offset : {size, size + 1, INT32_MAX}) {
        Require(frame.ReadEA(ea, offset) && ea.value == 0 && ea.offset == offset, "nothing is read past the end");
    }
    Require(!frame.ReadEA(ea, -1) && ea.offset == INT32_MAX, "a negative offset changes nothing");

    Require(frame.ReadEA(ea, 0), "the header is read");
    CheckPacking(ea, bytes);
    CheckCrc(bytes);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    OHOS::DistributedHardware::OstraAdapter::Check({data, data + size});
    return 0;
}
