// SPDX-License-Identifier: Apache-2.0
//
// Tests failures and log lines; devicejson_fuzzer compares what is read and written with references.

#include "dh_device_json.h"

#include <optional>
#include <utility>

#include "ostra_constants.h"
#include "support/golden_test.h"

#include "dh_device_json_test.txt"

using namespace OHOS::DistributedHardware::OstraAdapter;

using DeviceJsonTest = GoldenTest;
using AudioPropertiesTest = GoldenTest;
using DeviceServiceJsonTest = GoldenTest;

TEST_F(AudioPropertiesTest, LogsReadAndDerivedValues)
{
    CALL(DHOSTRAAudioProperties());
    DHOSTRAAudioProperties audio;
    RecordLine(audio.String());
    audio.serviceStatus_ = -2;
    audio.audioSampleRates_ = 4294967295;
    audio.audioFormat_ = 4294967294;
    audio.audioChannelMask_ = 4294967293;
    const std::pair<std::string, int32_t> cases[] = {
        {"{}", OSTRA_JSON_SUCCESS},
        {R"({"2102":""})", OSTRA_JSON_SUCCESS},
        {R"({"2102":"{\"codecs\":[],\"profiles\":[]}"})", OSTRA_JSON_SUCCESS},
        {R"({"2102":"{\"codecs\":[1,3],\"profiles\":[{\"channel\":12,\"format\":4},{}]}"})", OSTRA_JSON_SUCCESS},
        {R"({"2102":"{"})", OSTRA_JSON_STEP_FAILED},
        {"{", OSTRA_JSON_INPUT_INVALID}};
    for (const auto &[properties, result] : cases) {
        RecordLine(properties);
        EXPECT_EQ(CALL(audio.Unmarshal(properties)), result);
    }
    EXPECT_EQ(CALL(audio.UnmarshalAudioCapablities("")), OSTRA_JSON_INPUT_INVALID);
    audio.codecs_.resize(1001);
    EXPECT_EQ(CALL(audio.UnmarshalAudioCapablities("[]")), OSTRA_JSON_INPUT_INVALID);
    EXPECT_EQ(CALL(audio.UnmarshalAudioCodecs(nullptr)), OSTRA_JSON_ROOT_MISSING);
    EXPECT_EQ(CALL(audio.UnmarshalAudioProfiles(nullptr)), OSTRA_JSON_ROOT_MISSING);
}

TEST_F(AudioPropertiesTest, ExtendsListsAtomically)
{
    const std::string profile = R"({\"sampleRate\":44100,\"channel\":3,\"format\":1})";
    const std::string json = R"({"2102":"{\"codecs\":[0,1],\"profiles\":[)" + profile + "," + profile + "]}\"}";
    std::optional<DHOSTRAAudioProperties> audio(std::in_place);  // new for each run: used lists have spare capacity
    EachFault([&] { CALL(audio->Unmarshal(json)); },
              [&audio] {
                  EXPECT_EQ(audio->codecs_.size() % 2, 0U);
                  EXPECT_EQ(audio->profiles_.size() % 2, 0U);
                  EXPECT_EQ(audio->audioProfiles_, audio->audioProfiles_.empty() ? "" : "44100,2,16;44100,2,16;");
                  audio.emplace();
              });
}

TEST_F(DeviceJsonTest, WritesEveryMember)
{
    CALL(DHOSTRADeviceJson());
    DHOSTRADeviceJson device;
    std::string out = "old";
    device.deviceId_ = "d1";
    device.deviceName_ = "desk \"tablet\"";
    device.port_ = 8080;
    EXPECT_EQ(device.Unmarshal(R"({"port":7})"), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(device.Marshal(out), OSTRA_JSON_SUCCESS);
    RecordLine(out);
}

TEST_F(DeviceJsonTest, LeavesTheOutputUnchangedIfAllocationFails)
{
    std::string out;
    bool isWritten = false;
    EachFault(
        [&] {
            out = "old";
            isWritten = false;
            DHOSTRADeviceJson device;
            device.properties_ = out;
            isWritten = CALL(device.Marshal(out)) == OSTRA_JSON_SUCCESS;
            RecordLine("properties_ " + device.properties_);
            RecordLine(out);
        },
        [&] { EXPECT_EQ(out != "old", isWritten); });
}

TEST_F(DeviceServiceJsonTest, LogsMaskedDocuments)
{
    CALL(DHOSTRADeviceServiceJson());
    DHOSTRADeviceServiceJson service;
    RecordLine(service.String());
    const std::string document =
        R"({"deviceId":"0123456789","deviceName":"pad","serviceId":"service","serviceType":3.9,)"
        R"("properties":{ "a" : [1, {"b": null}] },"status":{ "k":"v" },"2102":"{}"})";
    EXPECT_EQ(CALL(service.Unmarshal(document)), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(CALL(service.Unmarshal("")), OSTRA_JSON_INPUT_INVALID);
}

TEST_F(DeviceServiceJsonTest, ReportsFailedAllocations)
{
    EachFault([] {
        DHOSTRADeviceServiceJson service;
        service.deviceId_ = service.properties_ = service.status_ = "before";
        const int32_t result = CALL(service.Unmarshal(R"({"status":{"b":"2"},"properties":{"a":"1"},"deviceId":"s"})"));
        RecordLine(std::to_string(result) + " " + service.deviceId_ + service.properties_ + service.status_);
    });
}
