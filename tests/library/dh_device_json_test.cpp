// SPDX-License-Identifier: Apache-2.0
//
// Failures and log lines; the fuzzers compare what is read and written with references.

#include "dh_device_json.h"

#include "ostra_constants.h"
#include "support/golden_test.h"
#include "support/json_fault.h"

const char *const GOLDEN_FILE =
#include "dh_device_json_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using DeviceJsonTest = GoldenTest;
using AudioPropertiesTest = GoldenTest;
using DeviceServiceJsonTest = GoldenTest;

// Returns a properties object whose member "2102" holds a capability document.
std::string PropertiesOf(const std::string &capabilities)
{
    std::string properties = R"({"2102":")";
    for (char character : capabilities) {
        properties += character == '"' ? "\\\"" : std::string(1, character);
    }
    return properties + "\"}";
}

TEST_F(AudioPropertiesTest, LogsWhatItReadsAndDerives)
{
    DHOSTRAAudioProperties audio;
    Record(audio.String());
    EXPECT_EQ(audio.audioProfiles_, "");
    audio.serviceStatus_ = -2;
    audio.audioSampleRates_ = 4294967295;
    audio.audioFormat_ = 4294967294;
    audio.audioChannelMask_ = 4294967293;
    EXPECT_EQ(CALL(audio.Unmarshal("{}")), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(CALL(audio.Unmarshal(PropertiesOf(""))), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(CALL(audio.Unmarshal(PropertiesOf(R"({"codecs":[],"profiles":[]})"))), OSTRA_JSON_SUCCESS);
    const std::string capabilities = R"({"codecs":[1,3],"profiles":[{"channel":12,"format":4},{}]})";
    EXPECT_EQ(CALL(audio.Unmarshal(PropertiesOf(capabilities))), OSTRA_JSON_SUCCESS);
}

TEST_F(AudioPropertiesTest, RejectsInvalidJson)
{
    DHOSTRAAudioProperties audio;
    EXPECT_EQ(CALL(audio.Unmarshal("{")), OSTRA_JSON_INPUT_INVALID);
    EXPECT_EQ(CALL(audio.Unmarshal(PropertiesOf("{"))), OSTRA_JSON_STEP_FAILED);
    EXPECT_EQ(CALL(audio.UnmarshalAudioCapablities("")), OSTRA_JSON_INPUT_INVALID);
    EXPECT_EQ(CALL(audio.UnmarshalAudioCodecs(nullptr)), OSTRA_JSON_ROOT_MISSING);
    EXPECT_EQ(CALL(audio.UnmarshalAudioProfiles(nullptr)), OSTRA_JSON_ROOT_MISSING);
}

TEST_F(AudioPropertiesTest, LimitsTheNestingOfTheFirstValue)
{
    const auto nested = [](size_t levels, const std::string &innermost = "") {
        return std::string(levels, '[') + innermost + std::string(levels, ']');
    };
    const std::string brackets(101, '[');
    const std::pair<std::string, int32_t> cases[] = {
        {nested(100), OSTRA_JSON_SUCCESS},
        {nested(101), OSTRA_JSON_INPUT_INVALID},
        {nested(99, R"({"\\\"[{[{":"]}"},{"":0})"), OSTRA_JSON_SUCCESS},
        {" \t\r\n" + nested(100), OSTRA_JSON_SUCCESS},
        {" \t\r\n" + nested(101), OSTRA_JSON_INPUT_INVALID},
        {"\xEF\xBB\xBF " + nested(100), OSTRA_JSON_SUCCESS},
        {"\xEF\xBB\xBF " + nested(101), OSTRA_JSON_INPUT_INVALID},
        {"[]" + brackets, OSTRA_JSON_SUCCESS},  // cJSON ignores what follows the first value
        {"1" + brackets, OSTRA_JSON_SUCCESS},
        {"\"x\"" + brackets, OSTRA_JSON_SUCCESS},
        {"true" + brackets, OSTRA_JSON_SUCCESS},
        {nested(50, R"("\\")") + brackets, OSTRA_JSON_SUCCESS},
        {brackets.substr(1) + "\"[\",\"\\", OSTRA_JSON_INPUT_INVALID},  // nothing may be read past the backslash
        {brackets.substr(1) + "\"[", OSTRA_JSON_INPUT_INVALID},
    };
    DHOSTRAAudioProperties audio;
    Unrecorded([&] {
        for (const auto &[json, result] : cases) {
            const std::string exact(json.begin(), json.end());  // no more memory than the string
            EXPECT_EQ(audio.Unmarshal(exact), result) << json;
        }
    });
}

TEST_F(AudioPropertiesTest, RejectsMoreOnceItHoldsOverAThousandEntries)
{
    DHOSTRAAudioProperties audio;
    for (const auto &[codecs, profiles] : {std::pair(1001, 0), {0, 1001}, {1000, 1000}}) {
        const auto codecCount = static_cast<size_t>(codecs);
        const auto profileCount = static_cast<size_t>(profiles);
        audio.codecs_.resize(codecCount);
        audio.profiles_.resize(profileCount);
        const bool isFull = codecs > 1000 || profiles > 1000;
        EXPECT_EQ(CALL(audio.UnmarshalAudioCapablities(R"({"codecs":[0],"profiles":[{}]})")),
                  isFull ? OSTRA_JSON_INPUT_INVALID : OSTRA_JSON_SUCCESS);
        EXPECT_EQ(audio.codecs_.size(), codecCount + (isFull ? 0 : 1));
        EXPECT_EQ(audio.profiles_.size(), profileCount + (isFull ? 0 : 1));
    }
}

TEST_F(AudioPropertiesTest, ReportsEachFailedAllocation)
{
    const JsonFault fault;
    DHOSTRAAudioProperties audio;
    EachFault([&] { CALL(audio.Unmarshal(PropertiesOf(R"({"codecs":[1],"profiles":[]})"))); });
}

TEST_F(DeviceJsonTest, WritesEveryMember)
{
    DHOSTRADeviceJson device;
    std::string out = "old";
    device.deviceId_ = "d1";
    device.deviceName_ = "desk \"tablet\"";
    device.port_ = 8080;
    EXPECT_EQ(device.Unmarshal(R"({"port":7})"), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(device.Marshal(out), OSTRA_JSON_SUCCESS);
    Record(out);
}

TEST_F(DeviceJsonTest, KeepsTheOutputIfAllocationFails)
{
    DHOSTRADeviceJson device;
    const JsonFault fault;
    EachFault([&] {
        device.properties_ = "before";
        std::string out = "old";
        const int32_t result = CALL(device.Marshal(out));
        EXPECT_EQ(out == "old", result != OSTRA_JSON_SUCCESS) << out;
        EXPECT_EQ(device.properties_ == "before", result == OSTRA_JSON_STEP_FAILED);
        Note(out.find("\"properties\":\t\"{") == std::string::npos ? "no string of properties"
                                                                   : "properties as a string");
    });
}

TEST_F(DeviceServiceJsonTest, LogsMaskedWhatItReads)
{
    Record(DHOSTRADeviceServiceJson().String());
    DHOSTRADeviceServiceJson service;
    const std::string document =
        R"({"deviceId":"0123456789","deviceName":"pad","serviceId":"service","serviceType":3.9,)"
        R"("properties":{ "a" : [1, {"b": null}] },"status":{ "k":"v" },"2102":"{}"})";
    EXPECT_EQ(CALL(service.Unmarshal(document)), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(CALL(service.Unmarshal(R"({"serviceType":-5,"status":{}})")), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(CALL(service.Unmarshal(R"({"serviceType":"text"})")), OSTRA_JSON_SUCCESS);
    EXPECT_EQ(CALL(service.Unmarshal("")), OSTRA_JSON_INPUT_INVALID);
    Record(service.String());
}

TEST_F(DeviceServiceJsonTest, ReportsEachFailedAllocation)
{
    const JsonFault fault;
    DHOSTRADeviceServiceJson service;
    EachFault([&] {
        service.deviceId_ = service.properties_ = service.status_ = "before";
        const int32_t result = CALL(service.Unmarshal(R"({"status":{"b":"2"},"properties":{"a":"1"},"deviceId":"s"})"));
        Record(std::to_string(result) + ": " + service.deviceId_ + ", " + service.properties_ + ", " + service.status_);
    });
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
