// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <utility>

#include "channel_protocol.h"
#include "dh_utils_tools.h"
#include "inspect.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr size_t MAX_HEADER_BYTES = 4;
constexpr uint32_t HEADER_VALUE_BITS = 28;
constexpr int CRC_DIGITS = 4;
constexpr size_t PREFIX_BYTES = 8;  // size and CRC, which channel_pair sends before each frame
constexpr size_t SIZE_BYTES = 4;

uint32_t Crc(const std::string &bytes, size_t begin)
{
    // GetCrc takes a pointer to non-const bytes, but only reads them.
    auto *const data = reinterpret_cast<unsigned char *>(const_cast<char *>(bytes.data()));
    return ChannelProtocol().GetCrc(data + begin, static_cast<int>(bytes.size() - begin));
}

void AddPrefixHint(List &warnings, const std::string &bytes)
{
    if (bytes.size() <= PREFIX_BYTES) {
        return;
    }
    std::string prefix(PREFIX_BYTES, '\0');
    auto *const begin = reinterpret_cast<uint8_t *>(prefix.data());
    OSTRAIntToByte(static_cast<uint32_t>(bytes.size() - PREFIX_BYTES), begin, SIZE_BYTES);
    OSTRAIntToByte(Crc(bytes, PREFIX_BYTES), begin + SIZE_BYTES, PREFIX_BYTES - SIZE_BYTES);
    if (bytes.compare(0, SIZE_BYTES, prefix, 0, SIZE_BYTES) == 0) {
        const bool isIntact = bytes.rfind(prefix, 0) == 0;
        warnings.Add("the first 8 bytes look like the size and CRC that channel_pair sends before a frame (the CRC " +
                     std::string(isIntact ? "matches" : "differs: corrupted") + "); use --skip 8");
    }
}

void AddWarnings(cJSON *report, const std::string &bytes, const UnPackagedEA &header)
{
    List warnings(report, "warnings");
    const auto size = static_cast<size_t>(header.offset);
    const bool hasStopBit = ChannelProtocol::HasEA(static_cast<unsigned char>(bytes[size - 1]));
    ChannelProtocol minimal;
    minimal.Create(static_cast<int>(header.value), 0);
    if (!hasStopBit && size == MAX_HEADER_BYTES) {
        const int64_t negative = static_cast<int64_t>(header.value) - (int64_t{1} << HEADER_VALUE_BITS);
        warnings.Add("the header value has no stop bit; this is how a negative value is encoded, for example " +
                     std::to_string(negative));
    } else if (!hasStopBit) {
        warnings.Add("truncated: the frame ends within the header value, which has no stop bit");
    } else if (minimal.GetBufferSize() < header.offset) {
        warnings.Add("overlong encoding: the header value has " + std::to_string(header.offset) + " bytes and needs " +
                     std::to_string(minimal.GetBufferSize()));
    }
    if (bytes.size() == size) {
        warnings.Add("the frame has no content");
    }
    if (bytes.find_first_not_of("0123456789abcdefABCDEFxX, \t\r\n") == std::string::npos && bytes.size() > 1) {
        warnings.Add("the input looks like hexadecimal digits, not bytes; xxd -r -p converts it");
    }
    AddPrefixHint(warnings, bytes);
}

}  // namespace

std::string HexDump(const std::string &bytes)
{
    constexpr size_t rowBytes = 16;
    constexpr size_t maxBytes = 32 * rowBytes;
    constexpr int offsetDigits = 4;
    std::string dump;
    for (size_t begin = 0; begin < bytes.size(); begin += rowBytes) {
        if (begin == maxBytes) {
            return dump + "  ... " + std::to_string(bytes.size() - begin) + " more bytes\n";
        }
        const std::string row = bytes.substr(begin, rowBytes);
        dump +=
            "  " + ToHex(static_cast<uint32_t>(begin), offsetDigits) + "  " + PadRight(ToHex(row), rowBytes * 3) + " |";
        for (const char byte : row) {
            dump += byte >= ' ' && byte <= '~' ? byte : '.';
        }
        dump += "|\n";
    }
    return dump;
}

Inspection InspectFrame(std::string bytes, const FrameOptions &options)
{
    if (bytes.size() <= options.skip) {
        throw InputError(bytes.empty() ? "no input: the input is empty"
                                       : "truncated: the input ends within the bytes that --skip omits");
    }
    bytes.erase(0, options.skip);
    Inspection inspection;
    ChannelProtocol beginning;  // which contains the header; a copy of the whole frame would need twice the memory
    UnPackagedEA header;
    beginning.CreateFromBuffer(reinterpret_cast<unsigned char *>(bytes.data()),
                               static_cast<int>(std::min(bytes.size(), MAX_HEADER_BYTES)));
    beginning.ReadEA(header, 0);
    const auto offset = static_cast<size_t>(header.offset);
    const uint32_t crc = Crc(bytes, 0);
    cJSON *const report = inspection.report.get();
    AddNumber(report, "value", header.value);
    AddString(report, "header", ToHex(bytes.substr(0, offset)));
    AddNumber(report, "offset", header.offset);
    AddNumber(report, "content_length", static_cast<int64_t>(bytes.size() - offset));
    AddString(report, "crc", ToHex(crc, CRC_DIGITS));
    AddString(report, "content_crc", ToHex(Crc(bytes, offset), CRC_DIGITS));
    AddWarnings(report, bytes, header);
    if (!options.crc.empty() && std::stoul(options.crc, nullptr, 16) != crc) {
        inspection.error = "corrupted: the CRC is " + ToHex(crc, CRC_DIGITS) + ", expected " + options.crc;
    }
    inspection.content = std::move(bytes.erase(0, offset));
    return inspection;
}
