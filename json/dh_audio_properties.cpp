// SPDX-License-Identifier: Apache-2.0

#include "dh_device_json.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "parse_json.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr char CAPABILITIES_KEY[] = "2102";
constexpr char DEFAULT_PROFILE[] = "48000,2,16;";
constexpr size_t MAX_ENTRIES = 1000;
constexpr uint32_t KNOWN_CODEC_COUNT = 3;  // codecs 0, 1 and 2; the bit of a codec is 1 << codec

struct CodeValue {
    int32_t code;
    int32_t value;
};
constexpr CodeValue CHANNEL_COUNTS[] = {{1, 1}, {3, 2}, {12, 2}, {16, 1}};
constexpr CodeValue BITS_PER_SAMPLE[] = {{1, 16}, {2, 8}, {3, 32}, {4, 24}};

template <size_t SIZE>
int32_t ValueOfCode(const CodeValue (&table)[SIZE], int32_t code)
{
    for (const CodeValue &row : table) {
        if (row.code == code) {
            return row.value;
        }
    }
    return 0;
}

int32_t NumberOrZero(const cJSON *object, const char *key)
{
    const cJSON *item = cJSON_GetObjectItem(object, key);
    return cJSON_IsNumber(item) != 0 ? item->valueint : 0;
}

}  // namespace

DHOSTRAAudioProperties::DHOSTRAAudioProperties()
{
    OSTRA_LOGI("DHOSTRAAudioProperties create");
}

DHOSTRAAudioProperties::~DHOSTRAAudioProperties()
{
    OSTRA_LOGI("DHOSTRAAudioProperties delete");
}

int32_t DHOSTRAAudioProperties::Unmarshal(const std::string &in)
{
    const JsonTree root = ParseJson(in);
    if (root == nullptr) {
        OSTRA_LOGE("Failed to unmarshal DHOSTRAAudioProperties");
        return OSTRA_JSON_INPUT_INVALID;
    }
    const cJSON *capabilities = cJSON_GetObjectItem(root.get(), CAPABILITIES_KEY);
    if (cJSON_IsString(capabilities) != 0) {
        audioCapablities_ = capabilities->valuestring;
        if (audioCapablities_.empty()) {
            OSTRA_LOGI("DHOSTRAAudioProperties Unmarshal audioCapablities is null");
            return OSTRA_JSON_SUCCESS;
        }
        const int32_t ret = UnmarshalAudioCapablities(audioCapablities_);
        if (ret != OSTRA_JSON_SUCCESS) {
            OSTRA_LOGE("Failed to unmarshal AudioCapablities: %d", ret);
            return OSTRA_JSON_STEP_FAILED;
        }
    }
    UpdataAudioCodec();
    UpdateAudioProfiles();
    OSTRA_LOGI("DHOSTRAAudioProperties Unmarshal is %s", String().c_str());
    return OSTRA_JSON_SUCCESS;
}

int32_t DHOSTRAAudioProperties::UnmarshalAudioCapablities(const std::string &json)
{
    if (json.empty()) {
        OSTRA_LOGE("DHOSTRAAudioProperties UnmarshalAudioCapablities audioCapablitiesStr is null");
        return OSTRA_JSON_INPUT_INVALID;
    }
    if (profiles_.size() > MAX_ENTRIES || codecs_.size() > MAX_ENTRIES) {
        OSTRA_LOGE("profiles_ or codecs_ too large");
        return OSTRA_JSON_INPUT_INVALID;
    }
    const JsonTree root = ParseJson(json);
    if (root == nullptr) {
        OSTRA_LOGE("cJSON_Parse audioCapablitiesStr failed");
        return OSTRA_JSON_INPUT_INVALID;
    }
    UnmarshalAudioCodecs(root.get());
    UnmarshalAudioProfiles(root.get());
    return OSTRA_JSON_SUCCESS;
}

int32_t DHOSTRAAudioProperties::UnmarshalAudioCodecs(const cJSON *root)
{
    if (root == nullptr) {
        OSTRA_LOGE("DHOSTRAAudioProperties UnmarshalAudioCodecs root is null");
        return OSTRA_JSON_ROOT_MISSING;
    }
    const cJSON *codecs = cJSON_GetObjectItem(root, "codecs");
    if (cJSON_IsArray(codecs) == 0) {
        return OSTRA_JSON_SUCCESS;
    }
    if (codecs->child == nullptr) {
        OSTRA_LOGE("DHOSTRAAudioProperties UnmarshalAudioCodecs codecs is null");
        return OSTRA_JSON_SUCCESS;
    }
    codecs_.reserve(codecs_.size() + static_cast<size_t>(cJSON_GetArraySize(codecs)));
    const cJSON *codec = nullptr;
    cJSON_ArrayForEach(codec, codecs)
    {
        if (cJSON_IsNumber(codec) != 0) {
            codecs_.push_back(static_cast<uint32_t>(codec->valueint));
        }
    }
    return OSTRA_JSON_SUCCESS;
}

int32_t DHOSTRAAudioProperties::UnmarshalAudioProfiles(const cJSON *root)
{
    if (root == nullptr) {
        OSTRA_LOGE("DHOSTRAAudioProperties UnmarshalAudioProfiles root is null");
        return OSTRA_JSON_ROOT_MISSING;
    }
    const cJSON *profiles = cJSON_GetObjectItem(root, "profiles");
    if (cJSON_IsArray(profiles) == 0) {
        return OSTRA_JSON_SUCCESS;
    }
    if (profiles->child == nullptr) {
        OSTRA_LOGE("DHOSTRAAudioProperties UnmarshalAudioProfiles profiles is null");
        return OSTRA_JSON_SUCCESS;
    }
    profiles_.reserve(profiles_.size() + static_cast<size_t>(cJSON_GetArraySize(profiles)));
    const cJSON *profile = nullptr;
    cJSON_ArrayForEach(profile, profiles)
    {
        profiles_.push_back(
            {NumberOrZero(profile, "sampleRate"), NumberOrZero(profile, "channel"), NumberOrZero(profile, "format")});
    }
    return OSTRA_JSON_SUCCESS;
}

void DHOSTRAAudioProperties::UpdataAudioCodec()
{
    if (codecs_.empty()) {
        OSTRA_LOGE("DHOSTRAAudioProperties UpdataAudioCodec codecs is empty, use default audioCodecType");
        audioCodecType_ = 0;
        return;
    }
    for (uint32_t codec : codecs_) {
        if (codec < KNOWN_CODEC_COUNT) {
            audioCodecType_ |= 1U << codec;
        } else {
            OSTRA_LOGE("DHOSTRAAudioProperties UpdataAudioCodec current codec invalid, is %d",
                       static_cast<int32_t>(codec));
        }
    }
    OSTRA_LOGI("DHOSTRAAudioProperties UpdataAudioCodec audioCodecType is : %d", static_cast<int32_t>(audioCodecType_));
}

void DHOSTRAAudioProperties::UpdateAudioProfiles()
{
    if (profiles_.empty()) {
        OSTRA_LOGE("DHOSTRAAudioProperties UpdataAudioCodec profiles is empty");
        audioProfiles_ += DEFAULT_PROFILE;
        return;
    }
    std::string added;
    for (const AudioProfile &profile : profiles_) {
        const int32_t channels = AudioChannelConvert(profile.channel);
        const int32_t bits = AudioFormatConvert(profile.format);
        if (channels == 0 || bits == 0) {
            continue;
        }
        added += std::to_string(profile.sampleRate) + "," + std::to_string(channels) + "," + std::to_string(bits) + ";";
    }
    audioProfiles_ += added;
    OSTRA_LOGI("DHOSTRAAudioProperties UpdateAudioProfiles audioProfiles is %s", audioProfiles_.c_str());
}

int32_t DHOSTRAAudioProperties::AudioChannelConvert(int32_t channel) const
{
    return ValueOfCode(CHANNEL_COUNTS, channel);
}

int32_t DHOSTRAAudioProperties::AudioFormatConvert(int32_t format) const
{
    return ValueOfCode(BITS_PER_SAMPLE, format);
}

std::string DHOSTRAAudioProperties::String() const
{
    std::string description =
        "serviceStatus: " + std::to_string(serviceStatus_) + " audioSampleRates: " + std::to_string(audioSampleRates_) +
        " audioFormat: " + std::to_string(audioFormat_) + " audioChannelMask: " + std::to_string(audioChannelMask_) +
        " audioCapablities: " + audioCapablities_ + " codecs: [";
    for (uint32_t codec : codecs_) {
        description += std::to_string(codec) + ", ";
    }
    description += "] profiles: [";
    for (const AudioProfile &profile : profiles_) {
        description += "[" + std::to_string(profile.sampleRate) + ", " + std::to_string(profile.channel) + ", " +
                       std::to_string(profile.format) + "] }";
    }
    return description;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
