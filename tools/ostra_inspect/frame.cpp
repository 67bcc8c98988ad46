// SPDX-License-Identifier: Apache-2.0

#include <climits>

#include "channel_protocol.h"
#include "input.h"
#include "subjects.h"

using OHOS::DistributedHardware::OstraAdapter::ChannelProtocol;
using OHOS::DistributedHardware::OstraAdapter::UnPackagedEA;

namespace {

constexpr int LONGEST_HEADER = 4;
constexpr uint32_t EA_BITS = 28;
constexpr int OFFSET_DIGITS = 4;
constexpr size_t ROW = 16;
constexpr size_t MOST_ROWS = 32;

// Offset, bytes and characters, 16 bytes a line.
std::string HexView(const std::string &bytes)
{
    std::string view;
    for (size_t begin = 0; begin < bytes.size(); begin += ROW) {
        if (begin == MOST_ROWS * ROW) {
            return view + "... " + std::to_string(bytes.size() - begin) + " more\n";
        }
        const std::string row = bytes.substr(begin, ROW);
        std::string hex = ToHex(row);
        hex.resize(ROW * 3, ' ');
        std::string characters;
        for (const char byte : row) {
            characters += byte >= ' ' && byte <= '~' ? byte : '.';
        }
        view += ToHex(static_cast<uint32_t>(begin), OFFSET_DIGITS);
        view.append("  ").append(hex).append(" |").append(characters).append("|\n");
    }
    return view;
}

std::string CrcText(ChannelProtocol &frame, int begin)
{
    return ToHex(frame.GetCrc(frame.GetBuffer() + begin, frame.GetBufferSize() - begin), 4);
}

// How many bytes the writer takes for the value.
int NeededBytes(uint32_t value)
{
    ChannelProtocol frame;
    return frame.Create(static_cast<int>(value), 0) ? frame.GetBufferSize() : LONGEST_HEADER;
}

Report Warnings(const ChannelProtocol &frame, const UnPackagedEA &ea)
{
    Report warnings("warnings", Report::Shape::LIST);
    const auto warn = [&warnings](const std::string &text) {
        warnings.Add("", text);
    };
    const bool hasEnd = ChannelProtocol::HasEA(frame.GetBuffer()[ea.offset - 1]);
    if (!hasEnd && ea.offset == LONGEST_HEADER) {
        const int64_t negative = static_cast<int64_t>(ea.value) - (int64_t{1} << EA_BITS);
        warn("the header value has no end mark; a writer does so for a negative value, such as " +
             std::to_string(negative));
    } else if (!hasEnd) {
        warn("the header value has no end mark: the frame ends within it");
    }
    const int needed = NeededBytes(ea.value);
    if (hasEnd && needed < ea.offset) {
        warn("the header value has needless groups: it takes " + std::to_string(ea.offset) + " bytes and needs " +
             std::to_string(needed));
    }
    if (frame.GetBufferSize() == ea.offset) {
        warn("the frame ends with its header: there is no content");
    }
    return warnings;
}

}  // namespace

Finding InspectFrame(const std::string &bytes)
{
    if (bytes.size() > INT_MAX) {
        throw InputError("a frame has at most " + std::to_string(INT_MAX) + " bytes");
    }
    Finding finding;
    ChannelProtocol frame;
    UnPackagedEA ea;
    std::string copy = bytes;
    if (!frame.CreateFromBuffer(reinterpret_cast<unsigned char *>(copy.data()), static_cast<int>(copy.size())) ||
        !frame.ReadEA(ea, 0)) {
        finding.log = TakeLog();
        finding.refusal = "no frame: " + Reasons(finding.log, "not enough memory");
        return finding;
    }
    const std::string content = bytes.substr(static_cast<size_t>(ea.offset));
    Report &report = finding.report;
    report.Add("value", ea.value, std::to_string(ea.value) + " (0x" + ToHex(ea.value, 1) + ")");
    report.Add("header", ToHex(bytes.substr(0, static_cast<size_t>(ea.offset))));
    report.Add("offset", ea.offset);
    report.Add("content_length", frame.GetBufferSize() - ea.offset);
    report.Add("crc", CrcText(frame, 0));
    report.Add("content_crc", CrcText(frame, ea.offset));
    report.Add("content", ToHex(content), HexView(content));
    finding.log = TakeLog();
    report.Add(Warnings(frame, ea));
    TakeLog();
    return finding;
}
