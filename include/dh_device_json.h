// SPDX-License-Identifier: Apache-2.0
//
// The JSON documents that describe a peer: the device itself (written), one of its services and the audio capabilities
// of that service (read). OSTRADeviceService (ostra_device_service.h) writes the service document that
// DHOSTRADeviceServiceJson reads here.
//
//     DHOSTRADeviceServiceJson service;
//     if (service.Unmarshal(text) == OSTRA_JSON_SUCCESS) {
//         service.audioProperties_.Unmarshal(service.properties_);
//     }
//
// Plain values with public members: one thread at a time uses an object. Every operation that reads or writes a
// document returns one of the OSTRA_JSON_ codes of ostra_constants.h and logs its failures as errors. Texts are taken
// up to their first zero byte; member names are looked up without regard to case. A text in which more than 100
// brackets and braces are open at once, up to where the first is closed and those inside strings aside, is refused as
// one that is no JSON, so that any thread with 64 KiB of stack can read what a peer sends.
//
// Memory that runs out inside a JSON document gives one of the codes; where a text or a list of this library is to
// grow, std::bad_alloc is raised instead. The member or output at hand is then as it was, those written before keep
// their new values.

#ifndef DH_DEVICE_JSON_H
#define DH_DEVICE_JSON_H

#include <cstdint>
#include <string>
#include <vector>

#include "ostra_export.h"

struct cJSON;

namespace OHOS::DistributedHardware::OstraAdapter {

// One peer device. Creating and destroying it logs a line at info level; a copy logs its end only.
class DHOSTRADeviceJson {
public:
    OSTRA_EXPORT DHOSTRADeviceJson();
    OSTRA_EXPORT ~DHOSTRADeviceJson();
    DHOSTRADeviceJson(const DHOSTRADeviceJson &) = default;
    DHOSTRADeviceJson &operator=(const DHOSTRADeviceJson &) = default;

    // The protocol version of a service type: 2 for types 2 and 4, 1 for every other number.
    OSTRA_EXPORT int32_t GetVersionByService(int32_t service) const;

    // Puts the table of supported protocol versions into properties_, whatever that held. Returns OSTRA_JSON_SUCCESS,
    // or OSTRA_JSON_CREATE_FAILED when the table cannot be built, with properties_ unchanged.
    OSTRA_EXPORT int32_t AddProperties();

    // Writes the device document, indented, into `out`; renews properties_ first (see AddProperties). No member is
    // validated, none is left out but reserved_. Returns OSTRA_JSON_SUCCESS, OSTRA_JSON_STEP_FAILED when AddProperties
    // failed, or OSTRA_JSON_CREATE_FAILED when the document cannot be built; `out` is unchanged on failure.
    OSTRA_EXPORT int32_t Marshal(std::string &out);

    // Does nothing and returns OSTRA_JSON_SUCCESS: a device document is never read back.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    std::string deviceId_;
    std::string deviceName_;
    uint32_t deviceType_ = 0;
    std::string reserved_;  // carried for the host, never written
    std::string bluetoothMac_;
    std::string btName_;
    std::string localIp_;
    std::string remoteIp_;
    int32_t port_ = -1;        // of the channel; -1 until set
    uint32_t businessId_ = 0;  // a DHBusinessId
    bool supportMic_ = false;
    bool supportCamera_ = false;
    bool tavoniTv_ = false;
    std::string properties_;  // the version table as a JSON text; Marshal replaces it
};

// One PCM configuration as a peer sends it.
struct AudioProfile {
    int32_t sampleRate = 0;  // in Hz
    int32_t channel = 0;     // code of the layout, see AudioChannelConvert
    int32_t format = 0;      // code of the sample format, see AudioFormatConvert
};

// The audio capabilities of a service, and the forms derived from them that the audio pipeline takes. What is read
// accumulates while the object lives: the lists, the codec bits and the profile text only grow, except that the bits
// become 0 while there is no codec. Creating and destroying it logs a line at info level; a copy logs its end only.
class DHOSTRAAudioProperties {
public:
    OSTRA_EXPORT DHOSTRAAudioProperties();
    OSTRA_EXPORT ~DHOSTRAAudioProperties();
    DHOSTRAAudioProperties(const DHOSTRAAudioProperties &) = default;
    DHOSTRAAudioProperties &operator=(const DHOSTRAAudioProperties &) = default;

    // Reads a properties object: takes the text of its member "2102" as the new capability text and reads it, then adds
    // the codec bits and the profile text of all entries held to what is there (a second call repeats the profiles of
    // the first). Without a "2102" that is a text only the adding is done; an empty one ends the call at once with
    // success. Returns OSTRA_JSON_SUCCESS, OSTRA_JSON_INPUT_INVALID when `in` is no JSON, or OSTRA_JSON_STEP_FAILED
    // when the capability text is refused, which audioCapablities_ then holds. Each list and text grows as a whole or
    // not at all.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    // Appends the codecs and profiles of a capability text. Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_INPUT_INVALID for
    // an empty text, one that is no JSON, or when codecs_ or profiles_ already hold more than 1000 entries.
    OSTRA_EXPORT int32_t UnmarshalAudioCapablities(const std::string &text);

    // Appends the numbers of the array "codecs". A missing array is no error; an empty one is logged. Returns
    // OSTRA_JSON_SUCCESS, or OSTRA_JSON_ROOT_MISSING for a null root.
    OSTRA_EXPORT int32_t UnmarshalAudioCodecs(const cJSON *root);

    // Appends one profile for each element of the array "profiles"; a field that is missing or no number counts as 0. A
    // missing array is no error; an empty one is logged. Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_ROOT_MISSING for a
    // null root.
    OSTRA_EXPORT int32_t UnmarshalAudioProfiles(const cJSON *root);

    // Adds the bits of the known codecs (0, 1 and 2 give 0x1, 0x2 and 0x4) to audioCodecType_; logs an unknown one as
    // an error. Without any codec, audioCodecType_ becomes 0.
    OSTRA_EXPORT void UpdataAudioCodec();

    // Appends "rate,channels,bits;" to audioProfiles_ for each profile whose codes are known, or "48000,2,16;" when
    // there is no profile at all.
    OSTRA_EXPORT void UpdateAudioProfiles();

    // Returns the number of channels of a channel-layout code: 1 for the codes 1 and 16, 2 for 3 and 12, else 0.
    OSTRA_EXPORT int32_t AudioChannelConvert(int32_t channel) const;

    // Returns the bits per sample of a sample-format code: 16 for code 1, 8 for 2, 32 for 3, 24 for 4, else 0.
    OSTRA_EXPORT int32_t AudioFormatConvert(int32_t format) const;

    // One line for logs. Each profile ends with "] }", which also closes the brace that
    // DHOSTRADeviceServiceJson::String opens; without a profile that brace stays open.
    OSTRA_EXPORT std::string String() const;

    std::string audioCapablities_;  // the capability text of "2102"
    // The next four are set by the host and only printed.
    int32_t serviceStatus_ = 1;
    uint32_t audioSampleRates_ = 48000;  // in Hz
    uint32_t audioFormat_ = 16;
    uint32_t audioChannelMask_ = 2;
    std::vector<uint32_t> codecs_;        // as read from capability texts
    std::vector<AudioProfile> profiles_;  // as read from capability texts
    uint32_t audioCodecType_ = 0;         // derived: the bits of the known codecs
    std::string audioProfiles_;           // derived: "rate,channels,bits;" for each known profile
};

// One service of a peer, as its service document describes it. Creating and destroying it logs a line at info level; a
// copy logs its end only.
class DHOSTRADeviceServiceJson {
public:
    OSTRA_EXPORT DHOSTRADeviceServiceJson();
    OSTRA_EXPORT ~DHOSTRADeviceServiceJson();
    DHOSTRADeviceServiceJson(const DHOSTRADeviceServiceJson &) = default;
    DHOSTRADeviceServiceJson &operator=(const DHOSTRADeviceServiceJson &) = default;

    // Reads a service document. Each member is taken when its key is there with the right type and otherwise stays as
    // it was; "properties" and "status" are objects, kept as compact JSON texts; audioProperties_ is left to the host.
    // Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_INPUT_INVALID when `in` is no JSON (nothing changes) or when
    // "properties" or "status" cannot be printed again (members taken before keep their new values).
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    // One line for logs, identifiers and status masked, properties_ in the clear.
    OSTRA_EXPORT std::string String() const;

    std::string deviceId_;
    std::string deviceName_;
    std::string serviceId_;
    int32_t serviceType_ = 0;
    std::string properties_;  // compact JSON
    std::string status_;      // compact JSON
    DHOSTRAAudioProperties audioProperties_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // DH_DEVICE_JSON_H
