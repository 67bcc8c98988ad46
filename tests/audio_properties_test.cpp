// SPDX-License-Identifier: Apache-2.0

#include "dh_device_json.h"
#include "support/json_fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/audio_properties_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

class Audio : public Session {
protected:
    DHOSTRAAudioProperties audio_;
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
    SHOW(audio_.audioCapablities_, audio_.serviceStatus_, audio_.audioSampleRates_, audio_.audioFormat_,
         audio_.audioChannelMask_, audio_.codecs_.size(), audio_.profiles_.size(), audio_.audioCodecType_,
         audio_.audioProfiles_);
    const AudioProfile profile;
    SHOW(profile.sampleRate, profile.channel, profile.format);
}

TEST_F(Audio, ReadsAndAccumulates)
{
    audio_.serviceStatus_ = -2;
    audio_.audioSampleRates_ = 4294967295;
    audio_.audioFormat_ = 4294967294;
    audio_.audioChannelMask_ = 4294967293;
    CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[0,"x",2.9,3,1e300,-1],"profiles":[{"sampleRate":44100,)"
                                       R"("channel":12,"format":4},{"sampleRate":16000,"channel":2,"format":1},5]})")));
    SHOW(audio_.audioCodecType_, audio_.audioProfiles_);
    CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[1],"profiles":[{"sampleRate":-8000,"channel":16,"format":2}]})")));
    SHOW(audio_.audioCodecType_, audio_.audioProfiles_);
}

TEST_F(Audio, FallsBackWhereThereIsNothing)
{
    audio_.audioCapablities_ = "kept";
    audio_.audioCodecType_ = 3;
    CALL(audio_.Unmarshal(PropertiesOf("")));
    SHOW(audio_.audioCodecType_, audio_.audioCapablities_, audio_.audioProfiles_);
    CALL(audio_.Unmarshal(R"({"2102":5})"));
    SHOW(audio_.audioCodecType_, audio_.audioProfiles_);
    CALL(audio_.Unmarshal("{}"));
    CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[],"profiles":[]})")));
    CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":1,"profiles":{}})")));
    audio_.audioProfiles_.clear();
    CALL(audio_.Unmarshal(PropertiesOf(R"({"profiles":[{}]})")));  // none is usable, which adds no default
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
    const std::string oneMore = R"({"codecs":[0],"profiles":[{}]})";
    const auto takeWith = [&](size_t codecs, size_t profiles) {
        audio_.codecs_.resize(codecs);
        audio_.profiles_.resize(profiles);
        CALL(audio_.Unmarshal(PropertiesOf(oneMore)));
        SHOW(audio_.codecs_.size(), audio_.profiles_.size(), audio_.audioCodecType_, audio_.audioProfiles_);
    };
    takeWith(1001, 0);
    takeWith(0, 1001);
    SHOW(audio_.audioCapablities_);
    CALL(audio_.UnmarshalAudioCapablities(""));
    Unrecorded([&] { takeWith(1000, 1000); });
    SHOW(audio_.codecs_.size(), audio_.profiles_.size());
}

TEST_F(Audio, ReportsEachFailedAllocation)
{
    const JsonFault fault;
    EachFault([&] { CALL(audio_.Unmarshal(PropertiesOf(R"({"codecs":[1],"profiles":[]})"))); });
}

TEST_F(Audio, ConvertsTheKnownCodesOnly)
{
    for (int code = -5; code <= 40; ++code) {
        const int channels = audio_.AudioChannelConvert(code);
        const int bits = audio_.AudioFormatConvert(code);
        if (channels != 0 || bits != 0) {
            SHOW(code, channels, bits);
        }
    }
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
