// SPDX-License-Identifier: Apache-2.0
//
// Reads each line of the input as a service document, as audio properties, and as the capability document in audio
// properties. Also writes a device document whose members are taken from the input. The references use cJSON.

#include <algorithm>
#include <memory>
#include <utility>

#include "cJSON.h"
#include "dh_device_json.h"
#include "fuzz_target.h"

namespace {

using namespace Fuzz;
using namespace OHOS::DistributedHardware::OstraAdapter;
using JsonTree = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

constexpr int MAX_LINES = 8;
constexpr int MAX_NESTING = 100;
constexpr size_t MAX_ENTRIES = 1000;
constexpr int32_t STEP_FAILED = -70004;
constexpr int32_t INPUT_INVALID = -70005;
constexpr char VERSIONS[] = "{\n\t\"1\":\t1,\n\t\"2\":\t2,\n\t\"4\":\t2,\n\t\"256\":\t1,\n\t\"512\":\t1\n}";

// Returns the nesting depth of arrays and objects.
int Nesting(const cJSON *item)
{
    int nesting = 0;
    const cJSON *child = nullptr;
    cJSON_ArrayForEach(child, item)
    {
        nesting = std::max(nesting, Nesting(child));
    }
    return nesting + (cJSON_IsArray(item) != 0 || cJSON_IsObject(item) != 0 ? 1 : 0);
}

// Returns null if the string is not valid JSON or is nested too deeply. The string ends at its first NUL.
JsonTree Parse(const std::string &json)
{
    JsonTree tree(cJSON_Parse(json.c_str()), cJSON_Delete);
    return Nesting(tree.get()) > MAX_NESTING ? JsonTree(nullptr, cJSON_Delete) : std::move(tree);
}

std::string Printed(const cJSON *item)
{
    const std::unique_ptr<char, decltype(&cJSON_free)> printed(cJSON_PrintUnformatted(item), cJSON_free);
    return printed.get();
}

// Returns a string, up to its first NUL, as a JSON string.
std::string Quote(const std::string &value)
{
    return Printed(JsonTree(cJSON_CreateString(value.c_str()), cJSON_Delete).get());
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
        const cJSON *item = cJSON_GetObjectItem(tree.get(), name);
        *member = cJSON_IsString(item) != 0 ? item->valuestring : *member;
    }
    for (const auto &[name, member] : {std::pair("properties", &record.properties_), {"status", &record.status_}}) {
        const cJSON *item = cJSON_GetObjectItem(tree.get(), name);
        *member = cJSON_IsObject(item) != 0 ? Printed(item) : *member;
    }
    const cJSON *type = cJSON_GetObjectItem(tree.get(), "serviceType");
    record.serviceType_ = cJSON_IsNumber(type) != 0 ? type->valueint : record.serviceType_;
    return 0;
}

int32_t NumberOf(const cJSON *object, const char *name)
{
    const cJSON *number = cJSON_GetObjectItem(object, name);
    return cJSON_IsNumber(number) != 0 ? number->valueint : 0;
}

const cJSON *ArrayOf(const JsonTree &tree, const char *name)
{
    const cJSON *list = cJSON_GetObjectItem(tree.get(), name);
    return cJSON_IsArray(list) != 0 ? list : nullptr;
}

int32_t ReadCapabilities(const std::string &capabilities, DHOSTRAAudioProperties &record)
{
    const JsonTree tree = Parse(capabilities);
    if (tree == nullptr || record.codecs_.size() > MAX_ENTRIES || record.profiles_.size() > MAX_ENTRIES) {
        return INPUT_INVALID;
    }
    const cJSON *item = nullptr;
    cJSON_ArrayForEach(item, ArrayOf(tree, "codecs"))
    {
        if (cJSON_IsNumber(item) != 0) {
            record.codecs_.push_back(static_cast<uint32_t>(item->valueint));
        }
    }
    cJSON_ArrayForEach(item, ArrayOf(tree, "profiles"))
    {
        record.profiles_.push_back({NumberOf(item, "sampleRate"), NumberOf(item, "channel"), NumberOf(item, "format")});
    }
    return 0;
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
    const cJSON *capabilities = cJSON_GetObjectItem(tree.get(), "2102");
    if (cJSON_IsString(capabilities) != 0) {
        record.audioCapablities_ = capabilities->valuestring;
        if (record.audioCapablities_.empty()) {
            return 0;
        }
        if (ReadCapabilities(record.audioCapablities_, record) != 0) {
            return STEP_FAILED;
        }
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
    for (const auto &[key, flag] : {std::pair("supportMic", &device.supportMic_),
                                    {"supportCamera", &device.supportCamera_},
                                    {"tavoniTv", &device.tavoniTv_}}) {
        *flag = TakeByte(input) % 2 != 0;
        add(key, *flag ? "true" : "false");
    }
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

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string input = Begin(data, size);
    CheckDeviceDocument(input);
    DHOSTRADeviceServiceJson record;
    DHOSTRADeviceServiceJson service;
    DHOSTRAAudioProperties &audioRecord = record.audioProperties_;
    DHOSTRAAudioProperties &audio = service.audioProperties_;
    audioRecord.audioCodecType_ = audio.audioCodecType_ = 8;  // reset to 0 if there are no codecs
    for (int i = 0; i < MAX_LINES && !input.empty(); ++i) {   // one object reads all lines: it accumulates capabilities
        const std::string line = TakeLine(input);
        ExpectEqual("result for a service", ReadService(line, record), service.Unmarshal(line));
        ExpectEqual("deviceId_", record.deviceId_, service.deviceId_);
        ExpectEqual("deviceName_", record.deviceName_, service.deviceName_);
        ExpectEqual("serviceId_", record.serviceId_, service.serviceId_);
        ExpectEqual("status_", record.status_, service.status_);
        for (const std::string &properties : {line, "{\"2102\":" + Quote(line) + "}"}) {
            ExpectEqual("result for audio", ReadAudio(properties, audioRecord), audio.Unmarshal(properties));
            ExpectEqual("String", record.String(), service.String());  // contains all other strings, numbers and lists
            ExpectEqual("audioCodecType_", audioRecord.audioCodecType_, audio.audioCodecType_);
            ExpectEqual("audioProfiles_", audioRecord.audioProfiles_, audio.audioProfiles_);
        }
    }
    return 0;
}
