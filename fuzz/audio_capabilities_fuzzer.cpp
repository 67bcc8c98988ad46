// SPDX-License-Identifier: Apache-2.0
//
// Audio capabilities from a peer: the input once as a properties object, once as the capability text inside one that
// came with a service document.

#include <sstream>
#include <string>
#include <vector>

#include "dh_device_json.h"
#include "fuzz_target.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr size_t MOST_HELD = 1000;
constexpr char DEFAULT_PROFILE[] = "48000,2,16;";

// The number of "rate,channels,bits;" entries, each of which must be one that the audio pipeline takes.
size_t CheckProfileTexts(const std::string &text)
{
    size_t count = 0;
    std::istringstream entries(text);
    for (std::string entry; std::getline(entries, entry, ';'); ++count) {
        int rate = 0;
        int channels = 0;
        int bits = 0;
        int length = 0;
        Require(std::sscanf(entry.c_str(), "%d,%d,%d%n", &rate, &channels, &bits, &length) == 3 &&
                    static_cast<size_t>(length) == entry.size(),
                "a profile is three numbers");
        Require((channels == 1 || channels == 2) && (bits == 8 || bits == 16 || bits == 24 || bits == 32),
                "a profile has known channels and bits");
    }
    return count;
}

void CheckDerivedForms(const DHOSTRAAudioProperties &audio)
{
    uint32_t bits = 0;
    for (uint32_t codec : audio.codecs_) {
        bits |= codec <= 2 ? 1U << codec : 0;
    }
    Require(audio.audioCodecType_ == bits, "one bit for each known codec");

    size_t known = 0;
    for (const AudioProfile &profile : audio.profiles_) {
        const bool isKnown =
            audio.AudioChannelConvert(profile.channel) != 0 && audio.AudioFormatConvert(profile.format) != 0;
        known += isKnown ? 1 : 0;
    }
    if (audio.profiles_.empty()) {
        Require(audio.audioProfiles_ == DEFAULT_PROFILE, "the default stands in for no profile");
    } else {
        Require(CheckProfileTexts(audio.audioProfiles_) == known, "one text for each known profile");
    }
}

// A second reading of the same input adds what the first one added, unless too much is held already.
void CheckAccumulation(const DHOSTRAAudioProperties &once, const std::string &properties)
{
    DHOSTRAAudioProperties twice = once;
    const int32_t result = twice.Unmarshal(properties);
    if (once.codecs_.size() > MOST_HELD || once.profiles_.size() > MOST_HELD) {
        Require(result == OSTRA_JSON_STEP_FAILED, "lists over the limit take no more");
        Require(twice.codecs_ == once.codecs_ && twice.profiles_.size() == once.profiles_.size(), "and stay");
        return;
    }
    Require(result == OSTRA_JSON_SUCCESS, "what was accepted is accepted again");
    Require(twice.codecs_.size() == 2 * once.codecs_.size() && twice.profiles_.size() == 2 * once.profiles_.size(),
            "the lists grow by the same again");
    Require(twice.audioCodecType_ == once.audioCodecType_, "no codec is new");
    const std::string &texts = once.audioProfiles_;
    Require(twice.audioProfiles_ == texts + texts + (once.profiles_.empty() ? "" : texts),
            "a text is added for every profile held, or the default once more");
}

// An empty capability text ends the reading early; `mayEndEarly` tells whether there can be one.
void Check(const std::string &properties, bool mayEndEarly)
{
    DHOSTRAAudioProperties audio;
    const int32_t result = audio.Unmarshal(properties);
    if (result == OSTRA_JSON_SUCCESS) {
        const bool isUnderived = audio.audioProfiles_.empty() && audio.profiles_.empty();
        if (!mayEndEarly || !isUnderived) {
            CheckDerivedForms(audio);
        }
        CheckAccumulation(audio, properties);
        return;
    }
    Require(result == OSTRA_JSON_INPUT_INVALID || result == OSTRA_JSON_STEP_FAILED, "a result that is published");
    Require(result == OSTRA_JSON_STEP_FAILED || audio.audioCapablities_.empty(), "what is no JSON changes nothing");
    Require(audio.codecs_.empty() && audio.profiles_.empty() && audio.audioProfiles_.empty(), "nothing is taken");
}

// The properties object as it comes out of the service document that carries `capabilities`.
std::string PropertiesAsReceived(const std::string &capabilities)
{
    OSTRADeviceService service;
    service.properties_["2102"] = capabilities;
    std::vector<uint8_t> bytes;
    Require(service.PackServiceData(bytes) == OSTRA_JSON_SUCCESS, "every text can be packed");
    DHOSTRADeviceServiceJson received;
    Require(received.Unmarshal({bytes.begin(), bytes.end()}) == OSTRA_JSON_SUCCESS, "what was packed is read");
    return received.properties_;
}

void CheckCapabilities(const std::string &capabilities)
{
    const std::string properties = PropertiesAsReceived(capabilities);
    DHOSTRAAudioProperties audio;
    audio.Unmarshal(properties);
    Require(audio.audioCapablities_ == capabilities.c_str(), "the text arrives up to its first zero byte");
    Check(properties, audio.audioCapablities_.empty());
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string input(data, data + size);
    OHOS::DistributedHardware::OstraAdapter::Check(input, true);
    OHOS::DistributedHardware::OstraAdapter::CheckCapabilities(input);
    return 0;
}
