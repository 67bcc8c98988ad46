// SPDX-License-Identifier: Apache-2.0

#include <cJSON.h>
#include <gtest/gtest.h>

#include "dh_device_json.h"
#include "support/json_fault.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

const LogLine NO_CODECS = ErrorLine(
    "UpdataAudioCodec", "DHOSTRAAudioProperties UpdataAudioCodec codecs is empty, use default audioCodecType");
const LogLine NO_PROFILES =
    ErrorLine("UpdateAudioProfiles", "DHOSTRAAudioProperties UpdataAudioCodec profiles is empty");

LogLine CodecBits(int bits)
{
    return InfoLine("UpdataAudioCodec",
                    "DHOSTRAAudioProperties UpdataAudioCodec audioCodecType is : " + std::to_string(bits));
}

LogLine Profiles(const std::string &text)
{
    return InfoLine("UpdateAudioProfiles", "DHOSTRAAudioProperties UpdateAudioProfiles audioProfiles is " + text);
}

LogLine Result(const DHOSTRAAudioProperties &audio)
{
    return InfoLine("Unmarshal", "DHOSTRAAudioProperties Unmarshal is " + audio.String());
}

// A properties object whose member "2102" holds the capability text.
std::string PropertiesOf(const std::string &capabilities)
{
    cJSON *object = cJSON_CreateObject();
    cJSON_AddStringToObject(object, "2102", capabilities.c_str());
    char *text = cJSON_PrintUnformatted(object);
    std::string properties = text;
    cJSON_free(text);
    cJSON_Delete(object);
    return properties;
}

TEST(AudioProperties, ReadsAndAccumulates)
{
    DHOSTRAAudioProperties audio;
    LogRecorder log;
    const std::string first = R"({"codecs":[0,"x",2,null,7],"profiles":[{"sampleRate":44100,"channel":12,"format":4},)"
                              R"({"sampleRate":16000,"channel":2,"format":1},5,{"channel":1,"format":"1"}]})";
    EXPECT_EQ(audio.Unmarshal(PropertiesOf(first)), 0);
    EXPECT_EQ(audio.audioCapablities_, first);
    EXPECT_EQ(audio.codecs_, (std::vector<uint32_t>{0, 2, 7}));
    EXPECT_EQ(audio.audioCodecType_, 5U);
    EXPECT_EQ(audio.audioProfiles_, "44100,2,24;");
    EXPECT_EQ(audio.String(),
              "serviceStatus: 1 audioSampleRates: 48000 audioFormat: 16 audioChannelMask: 2 "
              "audioCapablities: " +
                  first + " codecs: [0, 2, 7, ] profiles: [[44100, 12, 4] }[16000, 2, 1] }[0, 0, 0] }[0, 1, 0] }");
    const LogLine invalid =
        ErrorLine("UpdataAudioCodec", "DHOSTRAAudioProperties UpdataAudioCodec current codec invalid, is 7");
    EXPECT_EQ(log.Take(), (LogLines{invalid, CodecBits(5), Profiles("44100,2,24;"), Result(audio)}));

    EXPECT_EQ(
        audio.Unmarshal(PropertiesOf(R"({"codecs":[1],"profiles":[{"sampleRate":8000,"channel":16,"format":2}]})")), 0);
    EXPECT_EQ(audio.codecs_, (std::vector<uint32_t>{0, 2, 7, 1}));
    EXPECT_EQ(audio.profiles_.size(), 5U);
    EXPECT_EQ(log.Take(),
              (LogLines{invalid, CodecBits(7), Profiles("44100,2,24;44100,2,24;8000,1,8;"), Result(audio)}));
}

TEST(AudioProperties, FallsBackWhereThereIsNothing)
{
    DHOSTRAAudioProperties audio;
    LogRecorder log;
    audio.audioCodecType_ = 3;
    audio.audioCapablities_ = "kept";
    for (const char *text : {"{}", R"({"2102":5})", R"({"2102":{"codecs":[1]}})"}) {
        audio.audioProfiles_.clear();
        EXPECT_EQ(audio.Unmarshal(text), 0);
        EXPECT_EQ(audio.Unmarshal(text), 0);
        EXPECT_EQ(audio.audioCodecType_, 0U);
        EXPECT_EQ(audio.audioProfiles_, "48000,2,16;48000,2,16;");
        EXPECT_EQ(audio.audioCapablities_, "kept");
        EXPECT_EQ(log.Take().size(), 6U);
    }
    audio.audioCodecType_ = 3;
    EXPECT_EQ(audio.Unmarshal(PropertiesOf("")), 0);
    EXPECT_EQ(audio.audioCapablities_, "");
    EXPECT_EQ(audio.audioCodecType_, 3U);
    EXPECT_EQ(log.Take(),
              (LogLines{InfoLine("Unmarshal", "DHOSTRAAudioProperties Unmarshal audioCapablities is null")}));

    EXPECT_EQ(audio.Unmarshal(PropertiesOf(R"({"codecs":[],"profiles":[]})")), 0);
    EXPECT_EQ(
        log.Take(),
        (LogLines{ErrorLine("UnmarshalAudioCodecs", "DHOSTRAAudioProperties UnmarshalAudioCodecs codecs is null"),
                  ErrorLine("UnmarshalAudioProfiles", "DHOSTRAAudioProperties UnmarshalAudioProfiles profiles is null"),
                  NO_CODECS, NO_PROFILES, Result(audio)}));
    EXPECT_EQ(audio.Unmarshal(PropertiesOf(R"({"codecs":1,"profiles":{}})")), 0);
    EXPECT_EQ(log.Take(), (LogLines{NO_CODECS, NO_PROFILES, Result(audio)}));

    // Profiles of which none is usable add no default.
    audio.audioProfiles_.clear();
    EXPECT_EQ(audio.Unmarshal(PropertiesOf(R"({"profiles":[{}]})")), 0);
    EXPECT_EQ(log.Take(), (LogLines{NO_CODECS, Profiles(""), Result(audio)}));
}

TEST(AudioProperties, RefusesBadTexts)
{
    DHOSTRAAudioProperties audio;
    LogRecorder log;
    EXPECT_EQ(audio.Unmarshal("{"), -70005);
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("Unmarshal", "Failed to unmarshal DHOSTRAAudioProperties")}));
    const LogLine refused = ErrorLine("Unmarshal", "Failed to unmarshal AudioCapablities: -70005");
    const auto reason = [](const std::string &message) {
        return ErrorLine("UnmarshalAudioCapablities", message);
    };
    EXPECT_EQ(audio.Unmarshal(PropertiesOf("{")), -70004);
    EXPECT_EQ(log.Take(), (LogLines{reason("cJSON_Parse audioCapablitiesStr failed"), refused}));
    EXPECT_EQ(audio.UnmarshalAudioCapablities(""), -70005);
    EXPECT_EQ(log.Take(),
              (LogLines{reason("DHOSTRAAudioProperties UnmarshalAudioCapablities audioCapablitiesStr is null")}));
    EXPECT_EQ(audio.UnmarshalAudioCodecs(nullptr), -70003);
    EXPECT_EQ(audio.UnmarshalAudioProfiles(nullptr), -70003);
    EXPECT_EQ(
        log.Take(),
        (LogLines{ErrorLine("UnmarshalAudioCodecs", "DHOSTRAAudioProperties UnmarshalAudioCodecs root is null"),
                  ErrorLine("UnmarshalAudioProfiles", "DHOSTRAAudioProperties UnmarshalAudioProfiles root is null")}));

    // The limit looks at what is held before the new text.
    const std::string oneMore = R"({"codecs":[0],"profiles":[{"sampleRate":1,"channel":1,"format":1}]})";
    for (const bool isCodecs : {true, false}) {
        DHOSTRAAudioProperties full;
        full.codecs_.resize(isCodecs ? 1000 : 0);
        full.profiles_.resize(isCodecs ? 0 : 1000);
        EXPECT_EQ(full.UnmarshalAudioCapablities(oneMore), 0);
        log.Take();
        EXPECT_EQ(full.Unmarshal(PropertiesOf(oneMore)), -70004);
        EXPECT_EQ(log.Take(), (LogLines{reason("profiles_ or codecs_ too large"), refused}));
        EXPECT_EQ(full.codecs_.size() + full.profiles_.size(), 1002U);
    }
}

TEST(AudioProperties, EachFailedAllocationIsReported)
{
    std::vector<std::pair<int32_t, LogLines>> outcomes;  // without repetitions
    const std::string properties = PropertiesOf(R"({"codecs":[1],"profiles":[]})");
    for (int failing = 0;; ++failing) {
        DHOSTRAAudioProperties audio;
        LogRecorder log;
        const JsonFault fault(failing);
        const int32_t ret = audio.Unmarshal(properties);
        if (!fault.Struck()) {
            break;
        }
        ASSERT_TRUE(audio.codecs_.empty());
        std::pair<int32_t, LogLines> outcome(ret, log.Take());
        if (outcomes.empty() || outcome != outcomes.back()) {
            outcomes.push_back(outcome);
        }
    }
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_EQ(outcomes[0].first, -70005);
    EXPECT_EQ(outcomes[0].second, (LogLines{ErrorLine("Unmarshal", "Failed to unmarshal DHOSTRAAudioProperties")}));
    EXPECT_EQ(outcomes[1].first, -70004);
    EXPECT_EQ(outcomes[1].second.size(), 2U);
}

TEST(AudioProperties, ConvertsTheKnownCodesOnly)
{
    const DHOSTRAAudioProperties audio;
    for (int code = -5; code <= 40; ++code) {
        const int channels = code == 1 || code == 16 ? 1 : code == 3 || code == 12 ? 2 : 0;
        const int bits = code == 1 ? 16 : code == 2 ? 8 : code == 3 ? 32 : code == 4 ? 24 : 0;
        EXPECT_EQ(audio.AudioChannelConvert(code), channels) << code;
        EXPECT_EQ(audio.AudioFormatConvert(code), bits) << code;
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
