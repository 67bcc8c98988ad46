// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <algorithm>

#include "dh_device_json.h"
#include "support/json_fault.h"
#include "support/log_recorder.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

LogLine AudioLine(LogLevel level, const std::string &function, const std::string &message)
{
    return LibraryLine(level, function, "DHOSTRAAudioProperties " + function + " " + message);
}

LogLine Profiles(const std::string &text)
{
    return AudioLine(LOG_INFO, "UpdateAudioProfiles", "audioProfiles is " + text);
}

LogLine Result(const DHOSTRAAudioProperties &audio)
{
    return AudioLine(LOG_INFO, "Unmarshal", "is " + audio.String());
}

const LogLine NO_CODECS = AudioLine(LOG_ERROR, "UpdataAudioCodec", "codecs is empty, use default audioCodecType");
const LogLine NO_PROFILES =
    ErrorLine("UpdateAudioProfiles", "DHOSTRAAudioProperties UpdataAudioCodec profiles is empty");

// A properties object whose member "2102" holds the capability text.
std::string PropertiesOf(const std::string &capabilities)
{
    std::string properties = R"({"2102":")";
    for (char character : capabilities) {
        properties += character == '"' ? "\\\"" : std::string(1, character);
    }
    return properties + "\"}";
}

TEST(AudioProperties, ReadsAndAccumulates)
{
    DHOSTRAAudioProperties audio;
    LogRecorder log;
    audio.serviceStatus_ = -2;
    audio.audioSampleRates_ = 4294967295;
    audio.audioFormat_ = 4294967294;
    audio.audioChannelMask_ = 4294967293;
    audio.audioCodecType_ = 8;
    const std::string first =
        R"({"codecs":[0,"x",2.9,null,3,1e300,-1],"profiles":[{"sampleRate":-44100,"channel":12,"format":4},)"
        R"({"sampleRate":16000,"channel":2,"format":1},5,{"channel":1,"format":true}]})";
    const std::vector<uint32_t> codecs = {0, 2, 3, 2147483647, 4294967295};
    EXPECT_EQ(audio.Unmarshal(PropertiesOf(first)), 0);
    EXPECT_EQ(audio.audioCapablities_, first);
    EXPECT_EQ(audio.codecs_, codecs);
    EXPECT_EQ(audio.String(),
              "serviceStatus: -2 audioSampleRates: 4294967295 audioFormat: 4294967294 audioChannelMask: 4294967293 "
              "audioCapablities: " +
                  first +
                  " codecs: [0, 2, 3, 2147483647, 4294967295, ] "
                  "profiles: [[-44100, 12, 4] }[16000, 2, 1] }[0, 0, 0] }[0, 1, 0] }");
    const auto invalid = [](const std::string &code) {
        return AudioLine(LOG_ERROR, "UpdataAudioCodec", "current codec invalid, is " + code);
    };
    EXPECT_EQ(log.Take(), (LogLines{invalid("3"), invalid("2147483647"), invalid("-1"),
                                    AudioLine(LOG_INFO, "UpdataAudioCodec", "audioCodecType is : 13"),
                                    Profiles("-44100,2,24;"), Result(audio)}));

    const std::string more = R"({"codecs":[1],"profiles":[{"sampleRate":8000,"channel":16,"format":2}]})";
    EXPECT_EQ(audio.Unmarshal(PropertiesOf(more)), 0);
    EXPECT_EQ(audio.codecs_.size() + audio.profiles_.size(), codecs.size() + 1 + 5);
    EXPECT_EQ(log.Take(), (LogLines{invalid("3"), invalid("2147483647"), invalid("-1"),
                                    AudioLine(LOG_INFO, "UpdataAudioCodec", "audioCodecType is : 15"),
                                    Profiles("-44100,2,24;-44100,2,24;8000,1,8;"), Result(audio)}));
}

TEST(AudioProperties, FallsBackWhereThereIsNothing)
{
    DHOSTRAAudioProperties audio;
    LogRecorder log;
    audio.audioCapablities_ = "kept";
    for (const char *text : {"{}", R"({"2102":5})", R"({"2102":{"codecs":[1]}})"}) {
        audio.audioProfiles_ = "held;";
        audio.audioCodecType_ = 3;
        EXPECT_EQ(audio.Unmarshal(text), 0);
        EXPECT_EQ(audio.audioCodecType_, 0U);
        EXPECT_EQ(audio.audioProfiles_, "held;48000,2,16;");
        EXPECT_EQ(audio.audioCapablities_, "kept");
        EXPECT_EQ(log.Take(), (LogLines{NO_CODECS, NO_PROFILES, Result(audio)}));
    }
    audio.audioCodecType_ = 3;
    EXPECT_EQ(audio.Unmarshal(PropertiesOf("")), 0);
    EXPECT_EQ(audio.audioCapablities_, "");
    EXPECT_EQ(audio.audioCodecType_, 3U);
    EXPECT_EQ(log.Take(), (LogLines{AudioLine(LOG_INFO, "Unmarshal", "audioCapablities is null")}));

    EXPECT_EQ(audio.Unmarshal(PropertiesOf(R"({"codecs":[],"profiles":[]})")), 0);
    EXPECT_EQ(log.Take(), (LogLines{AudioLine(LOG_ERROR, "UnmarshalAudioCodecs", "codecs is null"),
                                    AudioLine(LOG_ERROR, "UnmarshalAudioProfiles", "profiles is null"), NO_CODECS,
                                    NO_PROFILES, Result(audio)}));
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
    const LogLine noText = reason("DHOSTRAAudioProperties UnmarshalAudioCapablities audioCapablitiesStr is null");
    EXPECT_EQ(log.Take(), (LogLines{noText}));
    EXPECT_EQ(audio.UnmarshalAudioCodecs(nullptr), -70003);
    EXPECT_EQ(audio.UnmarshalAudioProfiles(nullptr), -70003);
    EXPECT_EQ(log.Take(), (LogLines{AudioLine(LOG_ERROR, "UnmarshalAudioCodecs", "root is null"),
                                    AudioLine(LOG_ERROR, "UnmarshalAudioProfiles", "root is null")}));

    // The limit looks at what is held before the new text.
    const std::string oneMore = R"({"codecs":[0],"profiles":[{"sampleRate":1,"channel":1,"format":1}]})";
    for (const bool isCodecs : {true, false}) {
        DHOSTRAAudioProperties full;
        full.codecs_.resize(1000);
        full.profiles_.resize(1000);
        EXPECT_EQ(full.UnmarshalAudioCapablities(oneMore), 0);
        log.Take();
        full.codecs_.resize(isCodecs ? 1001 : 1000);
        full.profiles_.resize(isCodecs ? 1000 : 1001);
        EXPECT_EQ(full.Unmarshal(PropertiesOf(oneMore)), -70004);
        EXPECT_EQ(full.audioCapablities_, oneMore);
        EXPECT_EQ(full.UnmarshalAudioCapablities(""), -70005);
        EXPECT_EQ(log.Take(), (LogLines{reason("profiles_ or codecs_ too large"), refused, noText}));
        EXPECT_EQ(full.codecs_.size() + full.profiles_.size(), 2001U);
    }
}

TEST(AudioProperties, EachFailedAllocationIsReported)
{
    const std::string properties = PropertiesOf(R"({"codecs":[1],"profiles":[]})");
    std::vector<int32_t> results;
    for (int failing = 0;; ++failing) {
        DHOSTRAAudioProperties audio;
        const JsonFault fault(failing);
        results.push_back(audio.Unmarshal(properties));
        if (!fault.Struck()) {
            break;
        }
        ASSERT_TRUE(audio.codecs_.empty());
    }
    results.erase(std::unique(results.begin(), results.end()), results.end());
    EXPECT_EQ(results, (std::vector<int32_t>{-70005, -70004, 0}));
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
