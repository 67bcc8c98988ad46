// SPDX-License-Identifier: Apache-2.0
//
// Holds docs/wire-formats.md against the library: recomputes the output of each worked example from its input. The
// examples are the page's fenced blocks; the word behind the opening fence is their kind. A line "input => output" is
// one example, a line that begins with a space continues the one above, and two spaces and "//" begin a comment. Of the
// kinds without an input the whole block is the output.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "channel_protocol.h"
#include "concurrent_task_client.h"
#include "dh_device_json.h"
#include "distributed_hardware_fwk_kit.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_context.h"
#include "ostra_device_service.h"
#include "ostra_dump.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar.h"
#include "parameter.h"
#include "support/event_recorder.h"
#include "support/quiet.h"

namespace {

std::string g_seen;  // what reached the platform for others

std::string TakeSeen()
{
    return std::exchange(g_seen, "");
}

}  // namespace

void OHOS::ConcurrentTask::ConcurrentTaskClient::RequestAuth(
    const std::unordered_map<std::string, std::string> &request)
{
    for (const auto &[key, value] : request) {
        g_seen += key + "=" + value;
    }
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

struct MessageRecorder : IPublisherListener {
    void OnMessage(const DHTopic topic, const std::string &message) override
    {
        g_seen += std::to_string(static_cast<uint32_t>(topic)) + " " + message;
    }
};

// Bytes as an example shows them: "0A FF".
std::string ToHex(const std::vector<uint8_t> &bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (uint8_t byte : bytes) {
        text.append(text.empty() ? "" : " ").append({digits[byte / 16], digits[byte % 16]});
    }
    return text;
}

std::vector<uint8_t> FromHex(const std::string &text)
{
    std::istringstream words(text);
    std::vector<uint8_t> bytes;
    for (std::string word; words >> word;) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(word, nullptr, 16)));
    }
    return bytes;
}

// The parts of a list: "a, b".
std::vector<std::string> Split(const std::string &list, const char *separator = ", ")
{
    std::vector<std::string> parts;
    for (size_t begin = 0, end = 0; end != std::string::npos && !list.empty(); begin = end + std::strlen(separator)) {
        end = list.find(separator, begin);
        parts.push_back(list.substr(begin, end - begin));
    }
    return parts;
}

std::string Frame(const std::string &input)
{
    std::vector<uint8_t> content = FromHex(input.substr(input.find(':') + 1));
    ChannelProtocol frame;
    EXPECT_TRUE(frame.Create(std::stoi(input), static_cast<int>(content.size())));
    frame.WriteContent(content.data(), static_cast<int>(content.size()));
    return ToHex({frame.GetBuffer(), frame.GetBuffer() + frame.GetBufferSize()});
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
    return ToHex({static_cast<uint8_t>(crc >> 8), static_cast<uint8_t>(crc)});
}

std::string Device(const std::string & /* input */)
{
    DHOSTRADeviceJson device;
    device.deviceId_ = "d1";
    device.deviceName_ = "desk \"tablet\"";
    device.port_ = 8080;
    std::string output;
    EXPECT_EQ(device.Marshal(output), 0);
    return output;
}

std::string Packed(const OSTRADeviceService &service)
{
    std::vector<uint8_t> output;
    EXPECT_EQ(service.PackServiceData(output), 0);
    return {output.begin(), output.end()};
}

std::string Service(const std::string & /* input */)
{
    return Packed(
        {"d1", "desk tablet", "microphone", 4, {{"note", "a\tb"}, {"2102", R"({"codecs":[0]})"}}, {{"state", "idle"}}});
}

std::string UnsetService(const std::string & /* input */)
{
    return Packed({});
}

std::string Audio(const std::string &input)
{
    DHOSTRAAudioProperties audio;
    const std::string result = std::to_string(audio.Unmarshal(input));
    return result + ", bits " + std::to_string(audio.audioCodecType_) + ", \"" + audio.audioProfiles_ + "\"";
}

std::string Parcel(const std::string &input)
{
    MessageParcel received;
    received.WriteUint32(static_cast<uint32_t>(Split(input).size()));
    for (const std::string &entry : Split(input)) {
        received.WriteString(entry);
    }
    std::map<int32_t, std::string> map;
    EXPECT_TRUE(IpcUtils::UnMarshalling(received, map));
    MessageParcel parcel;
    EXPECT_TRUE(IpcUtils::Marshalling(parcel, map));
    const auto *bytes = reinterpret_cast<const uint8_t *>(parcel.GetData());
    return ToHex({bytes, bytes + parcel.GetDataSize()});
}

std::string Message(const std::string &input)
{
    for (const std::string &queued : Split(input)) {
        OstraContext::GetInstance().AddWaitNotify(Split(queued, " ")[0], Split(queued, " ")[1]);
    }
    OstraContext::GetInstance().PublishMessage();
    return TakeSeen();
}

std::string Request(const std::string &input)
{
    RequestAuth(input.c_str());
    return TakeSeen();
}

std::string Event(const std::string &input)
{
    const std::vector<std::string> words = Split(input, " ");
    const int error = std::stoi(words[3]);
    OstraRadar &radar = OstraRadar::GetInstance();
    radar.SetCurBusinessId(std::stoi(words[0]));
    EXPECT_TRUE(words[1] == "ServiceStartRes" ? radar.ServiceStartRes(words[2], std::stoi(words[4]), "", error)
                                              : radar.ConnectDeviceRes(words[2], error, words[4]));
    return TakeSeen();
}

std::string Dump(const std::string &input)
{
    const std::string name = "wire." + std::to_string(getpid());
    EXPECT_EQ(SetParameter(DUMP_WRITE_ENABLE_KEY.c_str(), input.substr(0, 1).c_str()), 0);
    OstraDump::GetInstance().Init();
    for (const std::string &call : Split(input.substr(2))) {
        const std::vector<uint8_t> bytes = FromHex(call);
        OstraDump::GetInstance().DumpStreamData(name, bytes.data(), static_cast<int>(bytes.size()));
    }
    std::ifstream file(DUMP_PATH_PREFIX + name, std::ios::binary);
    unlink((DUMP_PATH_PREFIX + name).c_str());
    return ToHex({std::istreambuf_iterator<char>(file), {}});
}

struct Kind {
    std::string (*recompute)(const std::string &input);
    bool hasInput = true;
};

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

void Check(const Kind &kind, const std::vector<std::string> &lines)
{
    static const std::regex example("(.*?) ?=> ?(.*)");
    std::string whole;
    for (const std::string &line : lines) {
        whole += (whole.empty() ? "" : "\n") + line;
        if (kind.hasInput) {
            std::smatch parts;
            ASSERT_TRUE(std::regex_match(line, parts, example)) << "no example: " << line;
            EXPECT_EQ(kind.recompute(parts[1]), parts[2]) << line;
        }
    }
    EXPECT_TRUE(kind.hasInput || kind.recompute("") == whole) << whole;
}

bool Listen()
{
    const sptr<IPublisherListener> messages = new MessageRecorder();
    for (uint32_t topic = 1; topic <= 16; ++topic) {
        DistributedHardwareFwkKit().RegisterPublisherListener(static_cast<DHTopic>(topic), messages);
    }
    EventRecorder::Start([](const std::string &event) { g_seen += event; });
    return true;
}

TEST(WireFormats, ExamplesAreWhatTheLibraryGives)
{
    const std::map<std::string, Kind> kinds = {
        {"frame", {Frame}},
        {"header", {Header}},
        {"crc", {Crc}},
        {"device", {Device, false}},
        {"service", {Service, false}},
        {"unset-service", {UnsetService, false}},
        {"audio", {Audio}},
        {"parcel", {Parcel}},
        {"message", {Message}},
        {"request", {Request}},
        {"event", {Event}},
        {"dump", {Dump}},
    };
    static const bool isListening = Listen();
    ASSERT_TRUE(isListening);
    std::set<std::string> found;
    std::ifstream page(OSTRA_SOURCE_FOLDER "/docs/wire-formats.md");
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("```", 0) != 0) {
            continue;
        }
        const auto kind = kinds.find(line.substr(3));
        ASSERT_NE(kind, kinds.end()) << "no kind is called so: " << line;
        found.insert(kind->first);
        Check(kind->second, ReadBlock(page));
    }
    EXPECT_EQ(found.size(), kinds.size()) << "each kind has an example";
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
