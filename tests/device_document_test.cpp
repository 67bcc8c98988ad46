// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>

#include "dh_device_json.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"
#include "support/json_fault.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr char DEFAULT_DEVICE[] =
    "{\n\t\"deviceId\":\t\"\",\n\t\"deviceName\":\t\"\",\n\t\"deviceType\":\t0,\n"
    "\t\"bluetoothMac\":\t\"\",\n\t\"btName\":\t\"\",\n\t\"localIp\":\t\"\",\n\t\"remoteIp\":\t\"\",\n"
    "\t\"port\":\t-1,\n\t\"businessId\":\t0,\n"
    "\t\"supportMic\":\tfalse,\n\t\"supportCamera\":\tfalse,\n\t\"tavoniTv\":\tfalse,\n"
    "\t\"properties\":\t{\n\t\t\"2016\":\t\"{\\n\\t\\\"1\\\":\\t1,\\n\\t\\\"2\\\":\\t2,\\n\\t\\\"4\\\":\\t2,\\n\\t"
    "\\\"256\\\":\\t1,\\n\\t\\\"512\\\":\\t1\\n}\"\n\t}\n}";

std::string Packed(const OSTRADeviceService &service)
{
    std::vector<uint8_t> bytes = {'o', 'l', 'd'};
    EXPECT_EQ(service.PackServiceData(bytes), 0);
    return {bytes.begin(), bytes.end()};
}

TEST(DeviceDocument, HasEveryMemberInItsPlace)
{
    DHOSTRADeviceJson device;
    device.reserved_ = "never shown";
    device.properties_ = R"({"mine":1})";
    std::string text = "old";
    EXPECT_EQ(device.Marshal(text), 0);
    EXPECT_EQ(text, DEFAULT_DEVICE);

    device.deviceId_ = "id\"\\\n";
    device.deviceName_ = "name";
    device.deviceType_ = 4294967295;
    device.bluetoothMac_ = "mac";
    device.btName_ = "bt";
    device.localIp_ = "local";
    device.remoteIp_ = "remote";
    device.port_ = -2147483647 - 1;
    device.businessId_ = 4000000000;
    device.supportMic_ = device.tavoniTv_ = true;
    EXPECT_EQ(device.Unmarshal(DEFAULT_DEVICE), 0);  // reads nothing
    EXPECT_EQ(device.Unmarshal("{not json"), 0);
    EXPECT_EQ(device.Marshal(text), 0);
    EXPECT_EQ(text.substr(0, text.find("\t\"properties")),
              "{\n\t\"deviceId\":\t\"id\\\"\\\\\\n\",\n\t\"deviceName\":\t\"name\",\n\t\"deviceType\":\t4294967295,\n"
              "\t\"bluetoothMac\":\t\"mac\",\n\t\"btName\":\t\"bt\",\n\t\"localIp\":\t\"local\",\n"
              "\t\"remoteIp\":\t\"remote\",\n\t\"port\":\t-2147483648,\n\t\"businessId\":\t4000000000,\n"
              "\t\"supportMic\":\ttrue,\n\t\"supportCamera\":\tfalse,\n\t\"tavoniTv\":\ttrue,\n");
    device.supportMic_ = false;
    device.supportCamera_ = true;
    EXPECT_EQ(device.Marshal(text), 0);
    EXPECT_NE(text.find("\t\"supportMic\":\tfalse,\n\t\"supportCamera\":\ttrue,\n\t\"tavoniTv\":\ttrue,\n"), text.npos);
    for (int service : {0, 1, 3, 6, 256, 512, -2}) {
        EXPECT_EQ(device.GetVersionByService(service), 1) << service;
    }
}

TEST(DeviceDocument, EachFailedAllocationIsReportedAndLosesNothing)
{
    const auto line = [](const std::string &step, const std::string &what) {
        return ErrorLine(step, "DHOSTRADeviceJson " + step + " failed, " + what);
    };
    const LogLine noMap = line("AddProperties", "cJSON versionMapRoot is nullptr");
    const LogLine noSupport = line("AddProperties", "cJSON supportVersionRoot is nullptr");
    const LogLine noStep = line("Marshal", "AddProperties failed: -70001");
    const LogLine noDocument = line("Marshal", "cJSON jsonObj is nullptr");
    for (JsonFaultKind kind : {JsonFaultKind::SINGLE, JsonFaultKind::LASTING}) {
        std::vector<LogLines> outcomes;
        for (int failing = 0;; ++failing) {
            DHOSTRADeviceJson device;
            device.properties_ = "before";
            std::string text = "old";
            LogRecorder log;
            const JsonFault fault(failing, kind);
            const int32_t ret = device.Marshal(text);
            if (!fault.Struck()) {
                break;
            }
            const LogLines lines = log.Take();
            ASSERT_FALSE(lines.empty());
            outcomes.push_back(lines);
            ASSERT_EQ(ret, lines.back() == noStep ? -70004 : -70001);
            ASSERT_EQ(device.properties_ == "before", ret == -70004);
            ASSERT_EQ(text, "old");
        }
        outcomes.erase(std::unique(outcomes.begin(), outcomes.end()), outcomes.end());
        EXPECT_EQ(outcomes, (std::vector<LogLines>{{noMap, noStep}, {noSupport, noStep}, {noDocument}}));
    }
}

TEST(ServiceDocument, IsCompactAndOrdered)
{
    EXPECT_EQ(Packed({}),
              R"({"deviceId":"","deviceName":"","serviceType":0,"serviceId":"","properties":{},"status":{}})");
    OSTRADeviceService service;
    service.deviceId_ = "device1";
    service.deviceName_ = "pad";
    service.serviceId_ = "service";
    service.serviceType_ = -2;
    service.properties_ = {{"b", "q\"b\\"}, {"a", "\xC3\xA9\x01"}};
    service.status_ = {{"k", "v"}};
    EXPECT_EQ(Packed(service),
              "{\"deviceId\":\"device1\",\"deviceName\":\"pad\",\"serviceType\":-2,\"serviceId\":\"service\","
              "\"properties\":{\"a\":\"\xC3\xA9\\u0001\",\"b\":\"q\\\"b\\\\\"},\"status\":{\"k\":\"v\"}}");
    EXPECT_EQ(service.String(), "deviceId: d******1 deviceName: p******d serviceId: s******e serviceType: -*");
}

TEST(ServiceDocument, EachFailedAllocationIsReportedAndLosesNothing)
{
    OSTRADeviceService service;
    service.properties_ = {{"a", "1"}, {"b", "2"}};
    service.status_ = {{"c", "3"}};
    LogLines outcomes;
    for (int failing = 0;; ++failing) {
        std::vector<uint8_t> out = {'o', 'l', 'd'};
        LogRecorder log;
        const JsonFault fault(failing, JsonFaultKind::LASTING);
        const int32_t ret = service.PackServiceData(out);
        if (!fault.Struck()) {
            break;
        }
        ASSERT_EQ(ret, -70001);
        ASSERT_EQ(std::string(out.begin(), out.end()), "old");
        const LogLines lines = log.Take();
        ASSERT_EQ(lines.size(), 1U);
        outcomes.push_back(lines[0]);
    }
    outcomes.erase(std::unique(outcomes.begin(), outcomes.end()), outcomes.end());
    const auto line = [](const std::string &what) {
        return ErrorLine("PackServiceData", "OSTRADeviceService PackServiceData failed, cJSON " + what + " is nullptr");
    };
    EXPECT_EQ(outcomes, (LogLines{line("jsonObject"), line("jsonProperties"), line("jsonStatus"), line("jsonObject")}));
}

TEST(ServiceDocument, TakesOnlyMembersOfTheRightType)
{
    DHOSTRADeviceServiceJson service;
    LogRecorder log;
    EXPECT_EQ(service.Unmarshal(R"({"deviceId":"0123456789","deviceName":"pad","serviceId":"service","serviceType":3.9,
                                    "properties": {"k" : [1, {"2102": null}]}, "status": { "state":"on" }})"),
              0);
    const std::string rendering =
        R"(deviceId: 0******9 deviceName: p******d serviceId: s******e serviceType: 3 properties: )"
        R"({"k":[1,{"2102":null}]} status: {******} audioProperties: {serviceStatus: 1 audioSampleRates: 48000 )"
        R"(audioFormat: 16 audioChannelMask: 2 audioCapablities:  codecs: [] profiles: [)";
    const LogLine line = InfoLine("Unmarshal", "DHOSTRADeviceServiceJson Unmarshal is " + rendering);
    EXPECT_EQ(log.Take(), (LogLines{line}));
    EXPECT_EQ(service.status_, R"({"state":"on"})");

    const char *const values[] = {"1", "\"text\"", "{\"x\":1}", "[\"y\"]", "null", "true"};
    const char *const keys[] = {"deviceId", "deviceName", "serviceId", "serviceType", "properties", "status"};
    const size_t rightValue[] = {1, 1, 1, 0, 2, 2};
    for (size_t i = 0; i < 36; ++i) {
        const std::string text = "{\"" + std::string(keys[i / 6]) + "\":" + values[i % 6] + "}";
        if (i % 6 != rightValue[i / 6]) {
            EXPECT_EQ(service.Unmarshal(text), 0);
            EXPECT_EQ(log.Take(), (LogLines{line})) << text;
        }
    }
    for (const char *text : {"", "{"}) {
        EXPECT_EQ(service.Unmarshal(text), -70005);
        EXPECT_EQ(log.Take(), (LogLines{ErrorLine("Unmarshal", "Failed to unmarshal DHOSTRADeviceServiceJson.")}));
    }
    EXPECT_EQ(service.String(), rendering);
    EXPECT_EQ(service.Unmarshal(R"({"DEVICEID":"other case","serviceType":1e300})"), 0);
    EXPECT_EQ(service.deviceId_, "other case");
    EXPECT_EQ(service.serviceType_, 2147483647);
}

TEST(ServiceDocument, EachFailedAllocationInReadingIsReported)
{
    const LogLines unprinted = {
        ErrorLine("Unmarshal", "DHOSTRADeviceServiceJson Unmarshal failed, cJSON_PrintUnformatted failed")};
    int parseFailures = 0;
    for (int failing = 0;; ++failing) {
        DHOSTRADeviceServiceJson service;
        service.properties_ = "before";
        service.status_ = "before";
        LogRecorder log;
        const JsonFault fault(failing);
        const int32_t ret = service.Unmarshal(R"({"properties":{"a":"1"},"status":{"b":"2"},"serviceId":"s"})");
        if (!fault.Struck()) {
            break;
        }
        ASSERT_EQ(ret, -70005);
        ASSERT_EQ(service.status_, "before");
        const bool isParsed = log.Take() == unprinted;
        parseFailures += isParsed ? 0 : 1;
        ASSERT_EQ(service.serviceId_, isParsed ? "s" : "");
        ASSERT_TRUE(isParsed || service.properties_ == "before");
    }
    EXPECT_GT(parseFailures, 5);
}

// What one side packs, the other reads back equal, as far as a JSON reader can tell.
TEST(ServiceDocument, RoundTrips)
{
    std::mt19937 random(7);
    const std::string fragments[] = {"\"", "\\", "\n", "\x01", "\xC3\xA9", "\xF0\x9F\x98\x80", "plain"};
    const auto text = [&] {
        std::string result;
        while (random() % 3 != 0) {
            result += fragments[random() % std::size(fragments)];
        }
        return result;
    };
    for (int i = 0; i < 200; ++i) {
        OSTRADeviceService sent;
        sent.deviceId_ = text();
        sent.serviceType_ = static_cast<int32_t>(random());
        while (random() % 3 != 0) {
            sent.properties_[text()] = text();
        }
        DHOSTRADeviceServiceJson received;
        ASSERT_EQ(received.Unmarshal(Packed(sent)), 0);
        ASSERT_EQ(received.deviceId_, sent.deviceId_);
        ASSERT_EQ(received.serviceType_, sent.serviceType_);
        std::map<std::string, std::string> properties;
        const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> object(cJSON_Parse(received.properties_.c_str()),
                                                                     cJSON_Delete);
        for (const cJSON *member = object->child; member != nullptr; member = member->next) {
            properties[member->string] = member->valuestring;
        }
        ASSERT_EQ(properties, sent.properties_);
    }
}

TEST(Documents, LogTheirLives)
{
    LogRecorder log;
    {
        const DHOSTRADeviceJson device;
        const DHOSTRADeviceServiceJson service;
    }
    EXPECT_EQ(log.Take(), (LogLines{InfoLine("DHOSTRADeviceJson", "DHOSTRADeviceJson create "),
                                    InfoLine("DHOSTRAAudioProperties", "DHOSTRAAudioProperties create"),
                                    InfoLine("DHOSTRADeviceServiceJson", "DHOSTRADeviceServiceJson create"),
                                    InfoLine("~DHOSTRADeviceServiceJson", "DHOSTRADeviceServiceJson delete"),
                                    InfoLine("~DHOSTRAAudioProperties", "DHOSTRAAudioProperties delete"),
                                    InfoLine("~DHOSTRADeviceJson", "DHOSTRADeviceJson delete")}));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
