// SPDX-License-Identifier: Apache-2.0
//
// Holds docs/wire-formats.md against the library: recomputes the output of each worked example from its input.

#include <gtest/gtest.h>
#include <unistd.h>

#include <numeric>

#include "channel_protocol.h"
#include "dh_device_json.h"
#include "ipc_utils.h"
#include "message_parcel.h"
#include "ostra_context.h"
#include "ostra_device_service.h"
#include "ostra_dump.h"
#include "ostra_qos_adapter.h"
#include "ostra_radar.h"
#include "parameter.h"
#include "support/log_recorder.h"
#include "support/platform_recorder.h"
#include "support/worked_examples.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

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

// The documents are their own inputs. This one sets three members, the library the others.
std::string Device(const std::string &input)
{
    std::map<std::string, std::string> members = Members(input);
    DHOSTRADeviceJson device;
    device.deviceId_ = members["deviceId"];
    device.deviceName_ = members["deviceName"];
    device.port_ = std::stoi(members["port"]);
    std::string output;
    EXPECT_EQ(device.Marshal(output), 0);
    return output;
}

std::string Service(const std::string &input)
{
    DHOSTRADeviceServiceJson read;
    EXPECT_EQ(read.Unmarshal(input), 0);
    const OSTRADeviceService service = {read.deviceId_,    read.deviceName_,          read.serviceId_,
                                        read.serviceType_, Members(read.properties_), Members(read.status_)};
    std::vector<uint8_t> output;
    EXPECT_EQ(service.PackServiceData(output), 0);
    return {output.begin(), output.end()};
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
    const std::vector<std::string> messages = PlatformRecorder::GetInstance().Take();
    return std::accumulate(messages.begin(), messages.end(), std::string());
}

std::string Request(const std::string &input)
{
    LogRecorder log;  // where the host's client writes the map
    RequestAuth(input.c_str());
    return log.Take().back().text.substr(sizeof("RequestAuth"));
}

std::string Event(const std::string &input)
{
    const std::vector<std::string> words = Split(input, " ");
    const int error = std::stoi(words[3]);
    OstraRadar &radar = OstraRadar::GetInstance();
    radar.SetCurBusinessId(std::stoi(words[0]));
    EXPECT_TRUE(words[1] == "ServiceStartRes" ? radar.ServiceStartRes(words[2], std::stoi(words[4]), "", error)
                                              : radar.ConnectDeviceRes(words[2], error, words[4]));
    return PlatformRecorder::GetInstance().Take().at(0);
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

TEST(WireFormats, ExamplesAreWhatTheLibraryGives)
{
    const RecomputeByKind kinds = {
        {"frame", Frame},     {"header", Header}, {"crc", Crc},       {"device", Device},
        {"service", Service}, {"audio", Audio},   {"parcel", Parcel}, {"message", Message},
        {"request", Request}, {"event", Event},   {"dump", Dump},
    };
    PlatformRecorder::GetInstance();
    ExpectWorkedExamples(OSTRA_SOURCE_FOLDER "/docs/wire-formats.md", kinds);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
