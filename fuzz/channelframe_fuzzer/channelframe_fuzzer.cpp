// SPDX-License-Identifier: Apache-2.0
//
// Operations on one frame object, in any order and with any arguments, beside plain bytes and a position; the
// methods of the CRC beside each other.

#include <algorithm>
#include <memory>
#include <vector>

#include "channel_protocol.h"
#include "crc16.h"
#include "crc16_internal.h"
#include "fuzz_target.h"

namespace {

using namespace Fuzz;
using namespace OHOS::DistributedHardware::OstraAdapter;

constexpr char UNDEFINED = '?';  // stands in for content that is not written yet

// A number to the base of 128, lowest digit first; 128 added to a digit says that none follows.
std::string Encode(uint32_t value)
{
    std::string digits;
    do {
        digits += static_cast<char>(value % 128 + (value < 128 ? 128 : 0));
        value /= 128;
    } while (value > 0 && digits.size() < 4);
    return digits;
}

UnPackagedEA Decode(const std::string &frame, int32_t offset)
{
    UnPackagedEA ea{0, offset};
    for (size_t at = static_cast<size_t>(offset), weight = 1; at < frame.size() && weight < 1U << 28; weight *= 128) {
        const auto digit = static_cast<uint8_t>(frame[at++]);
        ea = {ea.value + static_cast<uint32_t>(digit % 128 * weight), static_cast<int32_t>(at)};
        if (digit >= 128) {
            break;
        }
    }
    return ea;
}

// One object, and what it holds.
struct Session {
    ChannelProtocol frame;
    std::string bytes;  // empty: there is no frame
    int32_t offset = 0;
};

void Run(Session &held, std::string &input)
{
    const uint8_t how = TakeByte(input);
    const int32_t number = TakeNumber(input);
    const std::string text = TakeText(input);
    std::vector<uint8_t> content;
    content.reserve(std::max(text.size(), size_t{1}));  // no longer: the sanitizer sees a step too far
    content.assign(text.begin(), text.end());
    uint8_t *data = (how & 0x80) != 0 ? nullptr : content.data();
    const int32_t size = static_cast<int32_t>(text.size()) * ((how & 0x40) != 0 ? -1 : 1);
    bool isAllowed = data != nullptr && size > 0;
    const UnPackagedEA untouched{77, 77};
    UnPackagedEA ea = untouched;
    UnPackagedEA expected = untouched;
    switch (how % 4) {
        case 0:
            isAllowed = number <= 0x0FFFFFFF && size >= 0;
            Hold("result of Create", isAllowed, held.frame.Create(number, size));
            if (isAllowed) {
                held.bytes = Encode(static_cast<uint32_t>(number));
                held.offset = static_cast<int32_t>(held.bytes.size());
                held.bytes.append(text.size(), UNDEFINED);
                std::fill_n(held.frame.GetBuffer() + held.offset, size, UNDEFINED);
            }
            break;
        case 1:
            Hold("result of CreateFromBuffer", isAllowed, held.frame.CreateFromBuffer(data, size));
            held.bytes = isAllowed ? text : held.bytes;
            held.offset = isAllowed ? 0 : held.offset;
            break;
        case 2:
            isAllowed = isAllowed && int64_t{held.offset} + size <= static_cast<int64_t>(held.bytes.size());
            Hold("result of WriteContent", isAllowed, held.frame.WriteContent(data, size));
            if (isAllowed) {
                held.bytes.replace(static_cast<size_t>(held.offset), text.size(), text);
            }
            break;
        default:
            isAllowed = !held.bytes.empty() && number >= 0;
            Hold("result of ReadEA", isAllowed, held.frame.ReadEA(ea, number));
            expected = isAllowed ? Decode(held.bytes, number) : untouched;
            held.offset = isAllowed ? expected.offset : held.offset;
            Hold("value", expected.value, ea.value);
            Hold("position behind the value", expected.offset, ea.offset);
    }
}

void Compare(const Session &held)
{
    const auto size = static_cast<int32_t>(held.bytes.size());
    const unsigned char *buffer = held.frame.GetBuffer();
    Hold("protocolBuffer_ is the buffer", true, buffer == held.frame.protocolBuffer_);
    Hold("GetBufferSize", size, held.frame.GetBufferSize());
    Hold("bufferSize_", size, held.frame.bufferSize_);
    Hold("offset_", held.offset, held.frame.offset_);
    Hold("bytes", held.bytes, std::string(buffer, buffer + size));
}

// Byte by byte, which has the check value of the CRC, and by the faster methods.
void CheckCrc(const std::string &input)
{
    static const std::string digits = "123456789";
    std::vector<uint8_t> bytes(digits.begin(), digits.end());
    Hold("check value", uint16_t{0xBB3D}, ExtendCrc16ByByte(0, bytes.data(), bytes.size()));
    bytes.assign(input.begin(), input.end());
    bytes.shrink_to_fit();
    const uint16_t expected = ExtendCrc16ByByte(0, bytes.data(), bytes.size());
    const auto fastest = HasCarryLessMultiplication() ? ExtendCrc16ByFolding : ExtendCrc16;
    Hold("CRC by tables", expected, ExtendCrc16ByTables(0, bytes.data(), bytes.size()));
    Hold("CRC by the fastest method", expected, fastest(0, bytes.data(), bytes.size()));
    Hold("GetCrc of no data", 0U, ChannelProtocol().GetCrc(nullptr, 1));
    Hold("GetCrc", uint32_t{expected}, ChannelProtocol().GetCrc(bytes.data(), static_cast<int32_t>(bytes.size())));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string input = Begin(data, size);
    CheckCrc(input);
    for (const char byte : input) {
        Hold("end mark", static_cast<uint8_t>(byte) >= 128, ChannelProtocol::HasEA(static_cast<uint8_t>(byte)));
    }
    for (Session held; !input.empty(); Compare(held)) {
        std::unique_ptr<unsigned char[]> earlier(held.frame.GetBuffer());  // a new frame does not release it
        Run(held, input);
        if (earlier.get() == held.frame.GetBuffer()) {
            static_cast<void>(earlier.release());
        }
    }
    return 0;
}
