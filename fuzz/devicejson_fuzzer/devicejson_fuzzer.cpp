// SPDX-License-Identifier: Apache-2.0
//
// Reads each line of the input as a service document, as audio properties, and as the capability document in audio
// properties. Also writes a device document whose members are taken from the input. The references use cJSON.

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

#include "dh_device_json.h"
#include "fuzz_target.h"
#include "json_object.h"

namespace {

using namespace Fuzz;
using namespace OHOS::DistributedHardware::OstraAdapter;

constexpr int MAX_LINES = 8;
constexpr int MAX_NESTING = 100;
constexpr size_t MAX_ENTRIES = 1000;
constexpr int32_t STEP_FAILED = -70004;
constexpr int32_t INPUT_INVALID = -70005;
constexpr char VERSIONS[] = "{\n\t\"1\":\t1,\n\t\"2\":\t2,\n\t\"4\":\t2,\n\t\"256\":\t1,\n\t\"512\":\t1\n}";

// Returns the nesting depth of arrays and objects in an item and its following siblings.
int Nesting(const cJSON *item)
{
    const int own = cJSON_IsArray(item) != 0 || cJSON_IsObject(item) != 0 ? 1 : 0;
    return item == nullptr ? 0 : std::max(Nesting(item->next), Nesting(item->child) + own);
}

// Returns null if the string is not valid JSON or is nested too deeply. The string ends at its first NUL.
JsonTree Parse(const std::string &json)
{
    JsonTree tree(cJSON_Parse(json.c_str()));
    return Nesting(tree.get()) > MAX_NESTING ? nullptr : std::move(tree);
}

std::string Print(const cJSON *item)
{
    const JsonString printed(cJSON_PrintUnformatted(item));
    return printed.get();
}

// Returns a string, up to its first NUL, as a JSON string.
std::string Quote(const std::string &value)
{
    return Print(JsonTree(cJSON_CreateString(value.c_str())).get());
}

// Returns the member if it has this type, otherwise null.
const cJSON *Find(const cJSON *object, const char *name, int type)
{
    const cJSON *item = cJSON_GetObjectItem(object, name);
    return item != nullptr && item->type == type ? item : nullptr;
}

int32_t FindNumber(const cJSON *object, const char *name, int32_t otherwise)
{
    const cJSON *number = Find(object, name, cJSON_Number);
    return number != nullptr ? number->valueint : otherwise;
}

int32_t ReadService(const std::string &document, DHOSTRADeviceServiceJson &record)
{
    const JsonTree tree = Parse(document);
    if (tree == nullptr) {
        return INPUT_INVALID;
    }
    for (const auto &[name, member] : {std::pair("deviceId", &record.deviceId_),
                                       {"deviceName", &record.deviceName_},
                                       {"serviceId", &record.serviceId_}}) {
        const cJSON *string = Find(tree.get(), name, cJSON_String);
        *member = string != nullptr ? string->valuestring : *member;
    }
    for (const auto &[name, member] : {std::pair("properties", &record.properties_), {"status", &record.status_}}) {
        const cJSON *object = Find(tree.get(), name, cJSON_Object);
        *member = object != nullptr ? Print(object) : *member;
    }
    record.serviceType_ = FindNumber(tree.get(), "serviceType", record.serviceType_);
    return 0;
}

bool ReadCapabilities(DHOSTRAAudioProperties &record)
{
    const JsonTree tree = Parse(record.audioCapablities_);
    if (tree == nullptr || record.codecs_.size() > MAX_ENTRIES || record.profiles_.size() > MAX_ENTRIES) {
        return false;
    }
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, Find(tree.get(), "codecs", cJSON_Array))
    {
        if (cJSON_IsNumber(item) != 0) {
            record.codecs_.push_back(static_cast<uint32_t>(item->valueint));
        }
    }
    cJSON_ArrayForEach(item, Find(tree.get(), "profiles", cJSON_Array))
    {
        record.profiles_.push_back(
            {FindNumber(item, "sampleRate", 0), FindNumber(item, "channel", 0), FindNumber(item, "format", 0)});
    }
    return true;
}

void Derive(DHOSTRAAudioProperties &record)
{
    constexpr const char *BITS[] = {"", ",16;", ",8;", ",32;", ",24;"};
    record.audioCodecType_ = record.codecs_.empty() ? 0 : record.audioCodecType_;
    for (const uint32_t codec : record.codecs_) {
        record.audioCodecType_ |= codec == 0 ? 1U : codec == 1 ? 2U : codec == 2 ? 4U : 0U;
    }
    record.audioProfiles_ += record.profiles_.empty() ? "48000,2,16;" : "";
    for (const auto &[rate, channel, format] : record.profiles_) {
        const char *channels = channel == 1 || channel == 16 ? ",1" : channel == 3 || channel == 12 ? ",2" : nullptr;
        if (channels != nullptr && format >= 1 && format <= 4) {
            record.audioProfiles_ += std::to_string(rate) + channels + BITS[format];
        }
    }
}

int32_t ReadAudio(const std::string &properties, DHOSTRAAudioProperties &record)
{
    const JsonTree tree = Parse(properties);
    if (tree == nullptr) {
        return INPUT_INVALID;
    }
    const cJSON *capabilities = Find(tree.get(), "2102", cJSON_String);
    record.audioCapablities_ = capabilities != nullptr ? capabilities->valuestring : record.audioCapablities_;
    if (capabilities != nullptr && record.audioCapablities_.empty()) {
        return 0;
    }
    if (capabilities != nullptr && !ReadCapabilities(record)) {
        return STEP_FAILED;
    }
    Derive(record);
    return 0;
}

void CheckDeviceDocument(std::string input)
{
    DHOSTRADeviceJson device;
    ExpectEqual("initial port_", -1, device.port_);
    std::string expected = "{\n";
    const auto add = [&expected](const char *key, const std::string &value) {
        expected += std::string("\t\"") + key + "\":\t" + value + ",\n";
    };
    add("deviceId", Quote(device.deviceId_ = TakeString(input)));
    add("deviceName", Quote(device.deviceName_ = TakeString(input)));
    add("deviceType", std::to_string(device.deviceType_ = static_cast<uint32_t>(TakeNumber(input))));
    add("bluetoothMac", Quote(device.bluetoothMac_ = TakeString(input)));
    add("btName", Quote(device.btName_ = TakeString(input)));
    add("localIp", Quote(device.localIp_ = TakeString(input)));
    add("remoteIp", Quote(device.remoteIp_ = TakeString(input)));
    add("port", std::to_string(device.port_ = TakeNumber(input)));
    add("businessId", std::to_string(device.businessId_ = static_cast<uint32_t>(TakeNumber(input))));
    add("supportMic", (device.supportMic_ = TakeByte(input) % 2 != 0) ? "true" : "false");
    add("supportCamera", (device.supportCamera_ = TakeByte(input) % 2 != 0) ? "true" : "false");
    add("tavoniTv", (device.tavoniTv_ = TakeByte(input) % 2 != 0) ? "true" : "false");
    const std::string versions = "\"2016\":\t" + Quote(VERSIONS) + "\n";
    expected += "\t\"properties\":\t{\n\t\t" + versions + "\t}\n}";
    device.reserved_ = device.properties_ = TakeString(input);
    std::string document = "earlier";
    ExpectEqual("result of Marshal", 0, device.Marshal(document));
    ExpectEqual("device document", expected, document);
    ExpectEqual("properties_ after Marshal", "{\n\t" + versions + "}", device.properties_);
    const int32_t service = TakeNumber(input);
    ExpectEqual("GetVersionByService", service == 2 || service == 4 ? 2 : 1, device.GetVersionByService(service));
}

// Returns all values: String() masks some members and omits others.
std::string ToString(const DHOSTRADeviceServiceJson &service)
{
    const DHOSTRAAudioProperties &audio = service.audioProperties_;
    return service.String() + "\n" + service.deviceId_ + "\n" + service.deviceName_ + "\n" + service.serviceId_ + "\n" +
           service.status_ + "\n" + std::to_string(audio.audioCodecType_) + "\n" + audio.audioProfiles_;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input = Begin(data, size);
    CheckDeviceDocument(input);
    DHOSTRADeviceServiceJson expected;
    DHOSTRADeviceServiceJson service;
    DHOSTRAAudioProperties &expectedAudio = expected.audioProperties_;
    DHOSTRAAudioProperties &audio = service.audioProperties_;
    expectedAudio.audioCodecType_ = audio.audioCodecType_ = 8;  // reset to 0 if there are no codecs
    std::istringstream lines(input);
    std::string line;
    for (int i = 0; i < MAX_LINES && std::getline(lines, line); ++i) {  // codecs and profiles accumulate
        ExpectEqual("result for a service", ReadService(line, expected), service.Unmarshal(line));
        for (const std::string &properties : {line, "{\"2102\":" + Quote(line) + "}"}) {
            ExpectEqual("result for audio", ReadAudio(properties, expectedAudio), audio.Unmarshal(properties));
            ExpectEqual("service and audio", ToString(expected), ToString(service));
        }
    }
    return 0;
}
