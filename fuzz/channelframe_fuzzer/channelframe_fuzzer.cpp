// SPDX-License-Identifier: Apache-2.0
//
// Calls operations of one frame object, in any order and with any arguments, and compares it with a model: a byte
// string and an offset. Also compares the CRC implementations with bitwise division by the polynomial.

#include <algorithm>
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
    for (; digits.empty() || (value > 0 && digits.size() < 4); value /= 128) {
        digits += static_cast<char>(value % 128 + (value < 128 ? 128 : 0));
    }
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
    const uint8_t operation = TakeByte(input);
    const int32_t number = TakeNumber(input);
    const std::string payload = TakeString(input);
    // Has no spare capacity, so that the sanitizer detects an overrun.
    std::vector<uint8_t> content(payload.begin(), payload.end());
    uint8_t *data = (operation & 0x80) != 0 ? nullptr : content.data();
    const int32_t size = static_cast<int32_t>(payload.size()) * ((operation & 0x40) != 0 ? -1 : 1);
    bool isValid = data != nullptr && size > 0;
    bool result = false;
    UnPackagedEA expected{77, 77};
    UnPackagedEA ea = expected;
    switch (operation % 4) {
        case 0:
            isValid = number <= 0x0FFFFFFF && size >= 0;
            result = model.frame.Create(number, size);
            if (isValid) {
                model.bytes = Encode(static_cast<uint32_t>(number));
                model.offset = static_cast<int32_t>(model.bytes.size());
                model.bytes.append(payload.size(), UNDEFINED);
                std::fill_n(model.frame.GetBuffer() + model.offset, size, UNDEFINED);
            }
            break;
        case 1:
            result = model.frame.CreateFromBuffer(data, size);
            model.bytes = isValid ? payload : model.bytes;
            model.offset = isValid ? 0 : model.offset;
            break;
        case 2:
            isValid = isValid && int64_t{model.offset} + size <= static_cast<int64_t>(model.bytes.size());
            result = model.frame.WriteContent(data, size);
            if (isValid) {
                model.bytes.replace(static_cast<size_t>(model.offset), payload.size(), payload);
            }
            break;
        default:
            isValid = !model.bytes.empty() && number >= 0;
            result = model.frame.ReadEA(ea, number);
            expected = isValid ? Decode(model.bytes, number) : expected;
            model.offset = isValid ? expected.offset : model.offset;
    }
    ExpectEqual("result of operation " + std::to_string(operation % 4), isValid, result);
    ExpectEqual("value", expected.value, ea.value);
    ExpectEqual("offset after the value", expected.offset, ea.offset);
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
    std::vector<uint8_t> bytes(input.begin(), input.end());  // no spare capacity, as in Run
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
    Model model;
    while (!input.empty()) {
        const unsigned char *const previous = model.frame.GetBuffer();
        Run(model, input);
        const unsigned char *const buffer = model.frame.GetBuffer();
        if (buffer != previous) {
            delete[] previous;  // a new frame does not release it
        }
        ExpectEqual("bytes", model.bytes, std::string(buffer, buffer + model.frame.GetBufferSize()));
        ExpectEqual("offset_", model.offset, model.frame.offset_);
    }
    return 0;
}
