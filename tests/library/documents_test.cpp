// SPDX-License-Identifier: Apache-2.0
//
// What the documents say while they are read and written. What stands in them the fuzzers hold.

#include <dlfcn.h>

#include <cstring>

#include "cJSON.h"
#include "dh_device_json.h"
#include "ostra_device_service.h"
#include "support/json_fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "documents_test.txt"
    ;

namespace {

const char *g_printed = nullptr;  // what printing the properties gives, where it is not null

}  // namespace

// Gives what the test wants in its place.
char *cJSON_Print(const cJSON *item)
{
    static const auto print = reinterpret_cast<decltype(&cJSON_Print)>(dlsym(RTLD_NEXT, "cJSON_Print"));
    const bool isReplaced = g_printed != nullptr && cJSON_GetObjectItem(item, "2016") != nullptr;
    return isReplaced ? strdup(g_printed) : print(item);
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

class Audio : public Session {
protected:
    DHOSTRAAudioProperties audio_;
};

class Device : public Session {
protected:
    DHOSTRADeviceJson device_;
};

class Service : public Session {
protected:
    OSTRADeviceService sent_;
    DHOSTRADeviceServiceJson received_;
    std::vector<uint8_t> bytes_ = {'o', 'l', 'd'};
};

// A properties object whose member "2102" holds the capability text.
std::string PropertiesOf(const std::string &capabilities)
{
    std::string properties = R"({"2102":")";
    for (char character : capabilities) {
        properties += character == '"' ? "\\\"" : std::string(1, character);
    }
    return properties + "\"}";
}

TEST_F(Audio, StartsWithItsDefaults)
{
    CALL(static_cast<void>(DHOSTRAAudioProperties()));
    CALL(audio_.String());
    const AudioProfile profile;
    SHOW(audio_.audioCodecType_, audio_.audioProfiles_, profile.sampleRate, profile.channel, profile.format);
}

TEST_F(Audio, TellsWhatItReadsAndDerives)
{
    audio_.serviceStatus_ = -2;
    audio_.audioSampleRates_ = 4294967295;
    audio_.audioFormat_ = 4294967294;
    audio_.audioChannelMask_ = 4294967293;
    CALL(audio_.Unmarshal("{}"));
    CALL(audio_.Unmarshal(PropertiesOf("")));
    CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[],"profiles":[]})")));
    CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[1,3],"profiles":[{"channel":12,"format":4},{}]})")));
}

TEST_F(Audio, RefusesBadTexts)
{
    CALL(audio_.Unmarshal("{"));
    CALL(audio_.Unmarshal(PropertiesOf("{")));
    CALL(audio_.UnmarshalAudioCapablities(""));
    CALL(audio_.UnmarshalAudioCodecs(nullptr));
    CALL(audio_.UnmarshalAudioProfiles(nullptr));
}

TEST_F(Audio, TakesNoMoreOnceItHoldsMoreThanAThousand)
{
    for (const auto &[codecs, profiles] : {std::pair(1001, 0), {0, 1001}, {1000, 1000}}) {
        audio_.codecs_.resize(static_cast<size_t>(codecs));
        audio_.profiles_.resize(static_cast<size_t>(profiles));
        CALL(audio_.UnmarshalAudioCapablities(R"({"codecs":[0],"profiles":[{}]})"));
        SHOW(audio_.codecs_.size(), audio_.profiles_.size());
    }
}

TEST_F(Audio, LimitsTheNestingOfArraysAndObjectsAlone)
{
    const auto nested = [](size_t levels, const std::string &innermost) {
        return std::string(levels, '[') + innermost + std::string(levels, ']');
    };
    const std::string brackets(101, '[');
    const std::pair<std::string, int> cases[] = {
        {nested(100, ""), 0},
        {nested(101, ""), -70005},
        {nested(99, R"({"\\\"[{[{":"]}"},{"":0})"), 0},
        {" \t\r\n" + nested(100, ""), 0},
        {" \t\r\n" + nested(101, ""), -70005},
        {"\xEF\xBB\xBF " + nested(100, ""), 0},
        {"\xEF\xBB\xBF " + nested(101, ""), -70005},
        {"[]" + brackets, 0},  // what follows the first value is ignored
        {"1" + brackets, 0},
        {"\"x\"" + brackets, 0},
        {"true" + brackets, 0},
        {brackets.substr(1) + "\"\\", -70005},  // a backslash as the last byte of its memory
        {brackets.substr(1) + "\"", -70005},
    };
    Unrecorded([&] {
        for (const auto &[json, result] : cases) {
            const std::string exact(json.begin(), json.end());
            EXPECT_EQ(audio_.Unmarshal(exact), result) << json;
        }
    });
}

TEST_F(Audio, ReportsEachFailedAllocation)
{
    const JsonFault fault;
    EachFault([&] { CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[1],"profiles":[]})"))); });
}

TEST_F(Device, IsWrittenWithEveryMember)
{
    CALL(static_cast<void>(DHOSTRADeviceJson()));
    std::string text = "old";
    device_.deviceId_ = "d1";
    device_.deviceName_ = "desk \"tablet\"";
    device_.port_ = 8080;
    CALL(device_.Unmarshal(R"({"port":7})"));  // reads nothing
    CALL(device_.Marshal(text));
    SHOW(text, device_.reserved_);
}

TEST_F(Device, ReportsEachFailedAllocationAndLosesNothing)
{
    const JsonFault fault;
    EachFault([this] {
        device_.properties_ = "before";
        std::string text = "old";
        CALL(device_.Marshal(text));
        const bool isKept = device_.properties_ == "before";
        const std::string end = text.substr(text.size() < 8 ? 0 : text.size() - 8);
        SHOW(isKept, end);
    });
}

// Only a cJSON that prints badly makes such properties; they stand in the document as a text.
TEST_F(Device, TellsPropertiesThatDoNotParse)
{
    std::string text = "old";
    for (const char *printed : {"{", "no JSON", "{\"2016\":\"}"}) {
        g_printed = printed;
        CALL(device_.Marshal(text));
        SHOW(text.substr(text.rfind(':')));
    }
    g_printed = nullptr;
}

TEST_F(Service, IsPackedCompactAndShownMasked)
{
    CALL(sent_.PackServiceData(bytes_));
    SHOW(bytes_);
    sent_ = {
        "d1", "desk tablet", "microphone", 4, {{"note", "a\tb"}, {"2102", R"({"codecs":[0]})"}}, {{"state", "idle"}}};
    CALL(sent_.PackServiceData(bytes_));
    SHOW(bytes_);
    CALL(sent_.String());
}

TEST_F(Service, ReportsEachFailedAllocationAndLosesNothing)
{
    const JsonFault fault;
    sent_ = {"", "", "", 0, {{"a", "1"}, {"b", "2"}}, {{"c", "3"}}};
    EachFault([this] {
        CALL(sent_.PackServiceData(bytes_));
        SHOW(bytes_);
    });
}

TEST_F(Service, TellsMaskedWhatItReads)
{
    CALL(DHOSTRADeviceServiceJson().String());
    CALL(received_.Unmarshal(R"({"deviceId":"0123456789","deviceName":"pad","serviceId":"service","serviceType":3.9,)"
                             R"("properties":{ "a" : [1, {"b": null}] },"status":{ "k":"v" },"2102":"{}"})"));
    CALL(received_.Unmarshal(R"({"serviceType":-5,"status":{}})"));
    CALL(received_.Unmarshal(R"({"serviceType":"text"})"));
    CALL(received_.Unmarshal(""));
    CALL(received_.String());
}

TEST_F(Service, ReportsEachFailedAllocationInReading)
{
    const JsonFault fault;
    EachFault([this] {
        received_.deviceId_ = received_.properties_ = received_.status_ = "before";
        CALL(received_.Unmarshal(R"({"status":{"b":"2"},"properties":{"a":"1"},"deviceId":"s"})"));
        SHOW(received_.deviceId_, received_.properties_, received_.status_);
    });
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
