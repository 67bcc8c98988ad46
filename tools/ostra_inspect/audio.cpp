// SPDX-License-Identifier: Apache-2.0

#include <cstdio>
#include <utility>

#include "dh_device_json.h"
#include "members.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

const MemberRule CAPABILITIES = {"2102", MemberKind::TEXT};
const MemberRule CODECS = {"codecs", MemberKind::ARRAY};
const MemberRule PROFILES = {"profiles", MemberKind::ARRAY};
const MemberRules PROFILE_FIELDS = {
    {"sampleRate", MemberKind::NUMBER}, {"channel", MemberKind::NUMBER}, {"format", MemberKind::NUMBER}};

// The bits that the library derives from this codec alone.
Report CodecReport(uint32_t codec)
{
    DHOSTRAAudioProperties alone;
    TakeLog();
    alone.codecs_ = {codec};
    alone.UpdataAudioCodec();
    const std::string reason = Reasons(TakeLog(), "");
    const auto code = static_cast<int32_t>(codec);  // as the document gives it
    Report report;
    report.Add("code", code);
    report.Add("bit", alone.audioCodecType_);
    report.shown =
        std::to_string(code) + ": " +
        (alone.audioCodecType_ != 0 ? "bit " + std::to_string(alone.audioCodecType_) : "gives no bit (" + reason + ")");
    return report;
}

std::string ProfileText(const AudioProfile &profile, int32_t channels, int32_t bits)
{
    if (channels == 0) {
        return "left out, the channel code " + std::to_string(profile.channel) + " is unknown";
    }
    if (bits == 0) {
        return "left out, the format code " + std::to_string(profile.format) + " is unknown";
    }
    constexpr double hertzPerKilohertz = 1000;
    char text[64];
    std::snprintf(text, sizeof(text), "%.10g kHz, %s, %d bits", profile.sampleRate / hertzPerKilohertz,
                  channels == 1 ? "mono" : "stereo", bits);
    return text;
}

Report ProfileReport(const DHOSTRAAudioProperties &audio, const AudioProfile &profile)
{
    const int32_t channels = audio.AudioChannelConvert(profile.channel);
    const int32_t bits = audio.AudioFormatConvert(profile.format);
    Report report;
    report.Add("sampleRate", profile.sampleRate);
    report.Add("channel", profile.channel);
    report.Add("format", profile.format);
    report.Add("channels", channels);
    report.Add("bits", bits);
    report.shown = std::to_string(profile.sampleRate) + "," + std::to_string(profile.channel) + "," +
                   std::to_string(profile.format) + ": " + ProfileText(profile, channels, bits);
    return report;
}

void AddIgnoredElements(Report &ignored, Report &warnings, const cJSON *capabilities)
{
    int index = 0;
    const cJSON *element = nullptr;
    cJSON_ArrayForEach(element, TakenMember(capabilities, CODECS))
    {
        const std::string name = "codecs[" + std::to_string(index++) + "]";
        AddNumberWarning(warnings, element, name);
        if (cJSON_IsNumber(element) == 0) {
            AddIgnored(ignored, name, KindOf(element) + ", not a number");
        }
    }
    index = 0;
    cJSON_ArrayForEach(element, TakenMember(capabilities, PROFILES))
    {
        const std::string name = "profiles[" + std::to_string(index++) + "]";
        AddIgnored(ignored, element, PROFILE_FIELDS, name + ".");
        for (const MemberRule &field : PROFILE_FIELDS) {
            const cJSON *const number = TakenMember(element, field);
            AddNumberWarning(warnings, number, name + "." + field.name);
            if (number == nullptr) {
                warnings.Add("", name + "." + field.name + " counts as 0");
            }
        }
    }
}

}  // namespace

Finding InspectAudio(const std::string &text)
{
    Finding finding;
    DHOSTRAAudioProperties audio;
    const int32_t result = audio.Unmarshal(text);
    Report warnings("warnings", Report::Shape::LIST);
    Report ignored("ignored", Report::Shape::LIST);
    auto [root, flaw] = ParseDocument(text, warnings);
    AddIgnored(ignored, root.get(), {CAPABILITIES});
    const bool isOutside = TakenMember(root.get(), CODECS) != nullptr || TakenMember(root.get(), PROFILES) != nullptr;
    if (isOutside && TakenMember(root.get(), CAPABILITIES) == nullptr) {
        warnings.Add("", "codecs and profiles are only read inside the text of the member 2102");
    }
    if (!audio.audioCapablities_.empty()) {
        const Document capabilities = ParseDocument(audio.audioCapablities_, warnings);
        AddIgnored(ignored, capabilities.root.get(), {CODECS, PROFILES}, "2102.");
        AddIgnoredElements(ignored, warnings, capabilities.root.get());
        flaw = capabilities.flaw.empty() ? "" : "in 2102, " + capabilities.flaw;
    }
    Conclude(finding, "audio capabilities", result, flaw);

    Report &report = finding.report;
    report.Add("capabilities", audio.audioCapablities_);
    Report codecs("codecs", Report::Shape::LIST);
    for (const uint32_t codec : audio.codecs_) {
        codecs.Add(CodecReport(codec));
    }
    report.Add(std::move(codecs));
    report.Add("codec_bits", audio.audioCodecType_);
    Report profiles("profiles", Report::Shape::LIST);
    for (const AudioProfile &profile : audio.profiles_) {
        profiles.Add(ProfileReport(audio, profile));
    }
    const bool isDefault = profiles.members.empty() && !audio.audioProfiles_.empty();
    report.Add(std::move(profiles));
    report.Add("profile_text", audio.audioProfiles_,
               isDefault ? audio.audioProfiles_ + " (the default, since there is no profile)" : "");
    report.Add(std::move(ignored));
    report.Add(std::move(warnings));
    return finding;
}
