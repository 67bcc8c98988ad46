// SPDX-License-Identifier: Apache-2.0
//
// Audio capabilities from a peer. One object reads the lines of the input one after the other: each as a properties
// document, and as the capability string of a service document.

#include "dh_device_json.h"
#include "fuzz_target.h"
#include "json_reference.h"

namespace {

using namespace Fuzz;
using namespace OHOS::DistributedHardware::OstraAdapter;

constexpr size_t MAX_ENTRIES = 1000;
constexpr int32_t STEP_FAILED = -70004;

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

int32_t ReadCapabilities(const std::string &text, DHOSTRAAudioProperties &record)
{
    const JsonTree tree = Parse(text);
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
    constexpr int32_t BITS[] = {0, 16, 8, 32, 24};
    record.audioCodecType_ = record.codecs_.empty() ? 0 : record.audioCodecType_;
    for (const uint32_t codec : record.codecs_) {
        record.audioCodecType_ |= codec == 0 ? 1U : codec == 1 ? 2U : codec == 2 ? 4U : 0U;
    }
    record.audioProfiles_ += record.profiles_.empty() ? "48000,2,16;" : "";
    for (const auto &[rate, channel, format] : record.profiles_) {
        const int32_t channels = channel == 1 || channel == 16 ? 1 : channel == 3 || channel == 12 ? 2 : 0;
        if (channels != 0 && format >= 1 && format <= 4) {
            record.audioProfiles_ += Show(rate) + "," + Show(channels) + "," + Show(BITS[format]) + ";";
        }
    }
}

int32_t Read(const std::string &properties, DHOSTRAAudioProperties &record)
{
    const JsonTree tree = Parse(properties);
    if (tree == nullptr) {
        return INPUT_INVALID;
    }
    const cJSON *text = cJSON_GetObjectItem(tree.get(), "2102");
    if (cJSON_IsString(text) != 0) {
        record.audioCapablities_ = text->valuestring;
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

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string input = Begin(data, size);
    DHOSTRAAudioProperties record;
    DHOSTRADeviceServiceJson service;
    DHOSTRAAudioProperties &audio = service.audioProperties_;
    record.audioCodecType_ = audio.audioCodecType_ = 8;  // cleared by the first derivation without a codec
    for (int i = 0; i < MAX_LINES && !input.empty(); ++i) {
        const std::string line = TakeLine(input);
        service.Unmarshal("{\"properties\":{\"2102\":" + Quote(line) + "}}");
        for (const std::string &properties : {line, service.properties_}) {
            ExpectEqual("result of Unmarshal", Read(properties, record), audio.Unmarshal(properties));
            ExpectEqual("String", record.String(), audio.String());  // contains the strings and lists that were read
            ExpectEqual("audioCodecType_", record.audioCodecType_, audio.audioCodecType_);
            ExpectEqual("audioProfiles_", record.audioProfiles_, audio.audioProfiles_);
        }
    }
    return 0;
}
