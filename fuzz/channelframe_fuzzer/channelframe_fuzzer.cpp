// SPDX-License-Identifier: Apache-2.0
//
// Calls operations of one frame object, in any order and with any arguments, and compares it with a model: a byte
// string and an offset. Also compares the CRC implementations with bitwise division by the polynomial.

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

constexpr char UNDEFINED = '?';  // content that has not been written

// A number in base 128, lowest digit first; 128 is added to the last digit.
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

// The object under test, and its expected state.
struct Model {
    ChannelProtocol frame;
    std::string bytes;  // empty if there is no frame
    int32_t offset = 0;
};

void Run(Model &model, std::string &input)
{
    const uint8_t how = TakeByte(input);
    const int32_t number = TakeNumber(input);
    const std::string payload = TakeString(input);
    std::vector<uint8_t> content;
    content.reserve(std::max(payload.size(), size_t{1}));  // exact, so that the sanitizer detects an overrun
    content.assign(payload.begin(), payload.end());
    uint8_t *data = (how & 0x80) != 0 ? nullptr : content.data();
    const int32_t size = static_cast<int32_t>(payload.size()) * ((how & 0x40) != 0 ? -1 : 1);
    bool isValid = data != nullptr && size > 0;
    const UnPackagedEA unchanged{77, 77};
    UnPackagedEA ea = unchanged;
    UnPackagedEA expected = unchanged;
    switch (how % 4) {
        case 0:
            isValid = number <= 0x0FFFFFFF && size >= 0;
            ExpectEqual("result of Create", isValid, model.frame.Create(number, size));
            if (isValid) {
                model.bytes = Encode(static_cast<uint32_t>(number));
                model.offset = static_cast<int32_t>(model.bytes.size());
                model.bytes.append(payload.size(), UNDEFINED);
                std::fill_n(model.frame.GetBuffer() + model.offset, size, UNDEFINED);
            }
            break;
        case 1:
            ExpectEqual("result of CreateFromBuffer", isValid, model.frame.CreateFromBuffer(data, size));
            model.bytes = isValid ? payload : model.bytes;
            model.offset = isValid ? 0 : model.offset;
            break;
        case 2:
            isValid = isValid && int64_t{model.offset} + size <= static_cast<int64_t>(model.bytes.size());
            ExpectEqual("result of WriteContent", isValid, model.frame.WriteContent(data, size));
            if (isValid) {
                model.bytes.replace(static_cast<size_t>(model.offset), payload.size(), payload);
            }
            break;
        default:
            isValid = !model.bytes.empty() && number >= 0;
            ExpectEqual("result of ReadEA", isValid, model.frame.ReadEA(ea, number));
            expected = isValid ? Decode(model.bytes, number) : unchanged;
            model.offset = isValid ? expected.offset : model.offset;
            ExpectEqual("value", expected.value, ea.value);
            ExpectEqual("offset after the value", expected.offset, ea.offset);
    }
}

void Compare(const Model &model)
{
    const auto size = static_cast<int32_t>(model.bytes.size());
    const unsigned char *buffer = model.frame.GetBuffer();
    ExpectEqual("protocolBuffer_ equals GetBuffer()", true, buffer == model.frame.protocolBuffer_);
    ExpectEqual("GetBufferSize", size, model.frame.GetBufferSize());
    ExpectEqual("bufferSize_", size, model.frame.bufferSize_);
    ExpectEqual("offset_", model.offset, model.frame.offset_);
    ExpectEqual("bytes", model.bytes, std::string(buffer, buffer + size));
}

// The definition of the CRC: division by the polynomial, bit by bit.
uint16_t Divide(const std::vector<uint8_t> &bytes)
{
    uint32_t remainder = 0;
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        remainder ^= bit % 8 == 0 ? bytes[bit / 8] : 0U;
        remainder = (remainder >> 1) ^ (remainder % 2 * 0xA001);
    }
    return static_cast<uint16_t>(remainder);
}

// Compares each implementation with the definition; each computes the CRC of the input in two pieces.
void CheckCrc(const std::string &input)
{
    std::vector<uint8_t> bytes(input.begin(), input.end());  // exact, as in Run
    const uint16_t expected = Divide(bytes);
    const size_t head = input.empty() ? 0 : size_t{bytes[0]} * bytes.back() % (bytes.size() + 1);
    const auto folding = HasCarryLessMultiplication() ? ExtendCrc16ByFolding : ExtendCrc16;
    for (const auto extend : {ExtendCrc16ByByte, ExtendCrc16ByTables, folding}) {
        const uint16_t crc = extend(0, bytes.data(), head);
        ExpectEqual("CRC", expected, extend(crc, bytes.data() + head, bytes.size() - head));
    }
    ExpectEqual("GetCrc", uint32_t{expected},
                ChannelProtocol().GetCrc(bytes.data(), static_cast<int32_t>(bytes.size())));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string input = Begin(data, size);
    CheckCrc(input);
    for (const char byte : input) {
        ExpectEqual("stop bit", static_cast<uint8_t>(byte) >= 128, ChannelProtocol::HasEA(static_cast<uint8_t>(byte)));
    }
    for (Model model; !input.empty(); Compare(model)) {
        std::unique_ptr<unsigned char[]> earlier(
            model.frame.GetBuffer());  // a new frame does not release the previous buffer
        Run(model, input);
        if (earlier.get() == model.frame.GetBuffer()) {
            static_cast<void>(earlier.release());
        }
    }
    return 0;
}
