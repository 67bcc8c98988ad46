// SPDX-License-Identifier: Apache-2.0
//
// Holds docs/wire-formats.md against the library. The examples are the page's fenced blocks; the word behind the
// opening fence is their kind. A line that begins with a space continues the one above, and two spaces and "//" begin a
// comment. Of most kinds a line "input => output" is one example, whose output is recomputed; of the others the
// whole block is what leaves the library, which stands in the reviewed texts of the other tests.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "channel_protocol.h"
#include "dh_device_json.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "support/quiet.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Bytes as an example shows them: "0A FF".
std::string ToHex(const uint8_t *bytes, size_t size)
{
    std::ostringstream text;
    for (size_t i = 0; i < size; ++i) {
        text << (i == 0 ? "" : " ") << std::hex << std::uppercase << std::setw(2) << std::setfill('0') << +bytes[i];
    }
    return text.str();
}

std::vector<uint8_t> FromHex(const std::string &text)
{
    std::istringstream words(text);
    words >> std::hex;
    return {std::istream_iterator<unsigned>(words), {}};
}

std::string Frame(const std::string &input)
{
    std::vector<uint8_t> content = FromHex(input.substr(input.find(':') + 1));
    ChannelProtocol frame;
    EXPECT_TRUE(frame.Create(std::stoi(input), static_cast<int>(content.size())));
    frame.WriteContent(content.data(), static_cast<int>(content.size()));
    return ToHex(frame.GetBuffer(), static_cast<size_t>(frame.GetBufferSize()));
}

std::string Header(const std::string &input)
{
    std::vector<uint8_t> bytes = FromHex(input);
    ChannelProtocol frame;
    UnPackagedEA ea;
    EXPECT_TRUE(frame.CreateFromBuffer(bytes.data(), static_cast<int>(bytes.size())) && frame.ReadEA(ea, 0));
    return "value " + std::to_string(ea.value) + ", next " + std::to_string(ea.offset);
}

std::string Crc(const std::string &input)
{
    std::vector<uint8_t> bytes = FromHex(input);
    const uint32_t crc = ChannelProtocol().GetCrc(bytes.data(), static_cast<int>(bytes.size()));
    const uint8_t upperFirst[] = {static_cast<uint8_t>(crc >> 8), static_cast<uint8_t>(crc)};
    return ToHex(upperFirst, sizeof(upperFirst));
}

std::string Audio(const std::string &input)
{
    DHOSTRAAudioProperties audio;
    const std::string result = std::to_string(audio.Unmarshal(input));
    return result + ", bits " + std::to_string(audio.audioCodecType_) + ", \"" + audio.audioProfiles_ + "\"";
}

std::string Parcel(const std::string &input)
{
    static const std::regex comma(", ");
    const std::vector<std::string> entries(std::sregex_token_iterator(input.begin(), input.end(), comma, -1), {});
    MessageParcel received;
    received.WriteUint32(static_cast<uint32_t>(entries.size()));
    for (const std::string &entry : entries) {
        received.WriteString(entry);
    }
    std::map<int32_t, std::string> map;
    EXPECT_TRUE(IpcUtils::UnMarshalling(received, map));
    MessageParcel parcel;
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, map));
    return ToHex(reinterpret_cast<const uint8_t *>(parcel.GetData()), parcel.GetDataSize());
}

// The texts of all sessions, those of several lines as they were.
std::string ReviewedTexts()
{
    static const std::regex lineOfText("\n    \\|");
    std::ostringstream texts;
    for (const auto &file : std::filesystem::directory_iterator(OSTRA_SOURCE_FOLDER "/tests/sessions")) {
        texts << std::ifstream(file.path()).rdbuf();
    }
    return std::regex_replace(texts.str(), lineOfText, "\n");
}

// The lines of a block without comments, continued ones joined: hexadecimal bytes stay words.
std::vector<std::string> ReadBlock(std::istream &page)
{
    std::vector<std::string> lines;
    for (std::string line; std::getline(page, line) && line != "```";) {
        line = line.substr(0, line.find("  //"));
        if (line.rfind(' ', 0) != 0 || lines.empty()) {
            lines.push_back(line);
        } else {
            const bool isBytes = line.find_first_not_of("0123456789ABCDEF ") == std::string::npos;
            lines.back() += isBytes ? line : line.substr(1);
        }
    }
    return lines;
}

using Recompute = std::string (*)(const std::string &input);

void Check(Recompute recompute, const std::vector<std::string> &lines)
{
    static const std::regex example("(.*?) ?=> ?(.*)");
    std::string whole;
    for (const std::string &line : lines) {
        whole += (whole.empty() ? "" : "\n") + line;
        std::smatch parts;
        const bool isExample = std::regex_match(line, parts, example);
        ASSERT_EQ(isExample, recompute != nullptr) << line;
        if (isExample) {
            EXPECT_EQ(recompute(parts[1]), parts[2]) << line;
        }
    }
    EXPECT_TRUE(recompute != nullptr || ReviewedTexts().find(whole) != std::string::npos) << "not reviewed: " << whole;
}

TEST(WireFormats, ExamplesAreWhatTheLibraryGives)
{
    const std::map<std::string, Recompute> kinds = {
        {"frame", Frame},     {"header", Header},         {"crc", Crc},
        {"audio", Audio},     {"parcel", Parcel},         {"device", nullptr},
        {"service", nullptr}, {"message", nullptr},       {"request", nullptr},
        {"event", nullptr},   {"unset-service", nullptr},
    };
    std::set<std::string> found;
    std::ifstream page(OSTRA_SOURCE_FOLDER "/docs/wire-formats.md");
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("```", 0) != 0) {
            continue;
        }
        const auto kind = kinds.find(line.substr(3));
        ASSERT_NE(kind, kinds.end()) << "no kind is called so: " << line;
        found.insert(kind->first);
        const std::vector<std::string> lines = ReadBlock(page);
        ASSERT_FALSE(lines.empty()) << line;
        Check(kind->second, lines);
    }
    EXPECT_EQ(found.size(), kinds.size()) << "each kind has an example";
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
