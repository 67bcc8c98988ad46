// SPDX-License-Identifier: Apache-2.0

/// @file
/// JSON documents that describe a peer: the device (written), one of its services and that service's audio capabilities
/// (read). OSTRADeviceService (ostra_device_service.h) writes the service document that is read here.
///
///     DHOSTRADeviceServiceJson service;
///     if (service.Unmarshal(json) == OSTRA_JSON_SUCCESS) {
///         service.audioProperties_.Unmarshal(service.properties_);
///     }
///
/// **A device document is written only:** DHOSTRADeviceJson::Unmarshal reads nothing. A receiver parses it with cJSON:
/// `cJSON_GetStringValue(cJSON_GetObjectItem(cJSON_Parse(json), "deviceId"))`.
/// Operations return the OSTRA_JSON_ codes of ostra_constants.h and log each failure as an error.
/// Not thread-safe: callers must synchronize access to an object.

#ifndef DH_DEVICE_JSON_H
#define DH_DEVICE_JSON_H

#include <cstdint>
#include <string>
#include <vector>

#include "ostra_export.h"

struct cJSON;

namespace OHOS::DistributedHardware::OstraAdapter {

/// One peer device, as its device document describes it.
///
/// Strings are written up to their first NUL. A failed allocation inside cJSON gives an error code; std::bad_alloc is
/// thrown if a string of this library cannot grow, which is then unchanged. Creating and destroying an object logs a
/// line at info level; a copy logs its destruction only.
class DHOSTRADeviceJson {
public:
    OSTRA_EXPORT DHOSTRADeviceJson();
    OSTRA_EXPORT ~DHOSTRADeviceJson();
    DHOSTRADeviceJson(const DHOSTRADeviceJson &) = default;
    DHOSTRADeviceJson &operator=(const DHOSTRADeviceJson &) = default;

    /// Returns the protocol version of a service type: 2 for types 2 and 4, 1 for every other number.
    OSTRA_EXPORT int32_t GetVersionByService(int32_t service) const;

    /// Replaces properties_ with the table of supported protocol versions.
    ///
    /// Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_CREATE_FAILED, with properties_ unchanged, if the table cannot be
    /// built.
    OSTRA_EXPORT int32_t AddProperties();

    /// Writes the device document, indented, into `out`.
    ///
    /// Calls AddProperties first. Writes every member but reserved_, and validates none. If cJSON cannot parse
    /// properties_, an error is logged and it is written as a string.
    ///
    /// Returns:
    /// - OSTRA_JSON_SUCCESS.
    /// - OSTRA_JSON_STEP_FAILED if AddProperties failed; `out` is unchanged.
    /// - OSTRA_JSON_CREATE_FAILED if the document cannot be built; `out` is unchanged.
    OSTRA_EXPORT int32_t Marshal(std::string &out);

    /// Does nothing and returns OSTRA_JSON_SUCCESS: a device document is not read back.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    std::string deviceId_;
    std::string deviceName_;
    uint32_t deviceType_ = 0;
    std::string reserved_;  ///< For the host; not written.
    std::string bluetoothMac_;
    std::string btName_;
    std::string localIp_;
    std::string remoteIp_;
    int32_t port_ = -1;        ///< Port of the channel; -1 until set.
    uint32_t businessId_ = 0;  ///< A DHBusinessId.
    bool supportMic_ = false;
    bool supportCamera_ = false;
    bool tavoniTv_ = false;
    std::string properties_;  ///< The version table as JSON; Marshal replaces it.
};

/// One PCM configuration as a peer sends it.
struct AudioProfile {
    int32_t sampleRate = 0;  ///< In Hz.
    int32_t channel = 0;     ///< Code of the channel layout, see DHOSTRAAudioProperties::AudioChannelConvert.
    int32_t format = 0;      ///< Code of the sample format, see DHOSTRAAudioProperties::AudioFormatConvert.
};

/// The audio capabilities of a service, and the forms derived from them for the audio pipeline.
///
/// Results accumulate over the lifetime of an object: lists, codec bits and profile string only grow, except that the
/// bits become 0 while there is no codec.
///
/// A document ends at its first NUL. Keys are looked up case-insensitively. A document whose first value nests more
/// than 100 arrays and objects is refused like one that is not valid JSON, so that a thread with 64 KiB of stack can
/// read what a peer sends. A failed allocation inside cJSON gives an error code; std::bad_alloc is thrown if a string
/// or list of this library cannot grow, which is then unchanged, while those written before keep their new values.
/// Creating and destroying an object logs a line at info level; a copy logs its destruction only.
class DHOSTRAAudioProperties {
public:
    OSTRA_EXPORT DHOSTRAAudioProperties();
    OSTRA_EXPORT ~DHOSTRAAudioProperties();
    DHOSTRAAudioProperties(const DHOSTRAAudioProperties &) = default;
    DHOSTRAAudioProperties &operator=(const DHOSTRAAudioProperties &) = default;

    /// Reads a properties object: stores its member "2102", reads that as a capability document, and derives the codec
    /// bits and the profile string.
    ///
    /// The derived values cover all entries of the lists, so a second call repeats the profiles of the first. If "2102"
    /// is missing or not a string, the values are only derived; if it is empty, they are not. Each list and string
    /// grows as a whole or not at all. On success the object is logged at info level, unmasked, as String shows it.
    ///
    /// Returns:
    /// - OSTRA_JSON_SUCCESS.
    /// - OSTRA_JSON_INPUT_INVALID if `in` is not valid JSON; the object is unchanged.
    /// - OSTRA_JSON_STEP_FAILED if UnmarshalAudioCapablities refuses the capability document, which audioCapablities_
    ///   then holds.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    /// Appends the codecs and profiles of a capability document.
    ///
    /// Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_INPUT_INVALID, with the object unchanged, if:
    /// - `text` is empty or not valid JSON.
    /// - codecs_ or profiles_ already holds more than 1000 entries.
    OSTRA_EXPORT int32_t UnmarshalAudioCapablities(const std::string &text);

    /// Appends the numbers of the array "codecs" to codecs_.
    ///
    /// A missing array is not an error; an empty one is logged as an error. Returns OSTRA_JSON_SUCCESS, or
    /// OSTRA_JSON_ROOT_MISSING if `root` is null.
    OSTRA_EXPORT int32_t UnmarshalAudioCodecs(const cJSON *root);

    /// Appends one profile to profiles_ for each element of the array "profiles".
    ///
    /// A field that is missing or not a number counts as 0. A missing array is not an error; an empty one is logged as
    /// an error. Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_ROOT_MISSING if `root` is null.
    OSTRA_EXPORT int32_t UnmarshalAudioProfiles(const cJSON *root);

    /// Sets the bits of the known codecs in audioCodecType_: 0x1 for codec 0, 0x2 for 1, 0x4 for 2.
    ///
    /// An unknown codec is logged as an error. Sets audioCodecType_ to 0 if codecs_ is empty.
    OSTRA_EXPORT void UpdataAudioCodec();

    /// Appends "rate,channels,bits;" to audioProfiles_ for each profile whose codes are known, or "48000,2,16;" if
    /// profiles_ is empty.
    OSTRA_EXPORT void UpdateAudioProfiles();

    /// Returns the number of channels of a channel layout code: 1 for codes 1 and 16, 2 for 3 and 12, 0 for others.
    OSTRA_EXPORT int32_t AudioChannelConvert(int32_t channel) const;

    /// Returns the bits per sample of a sample format code: 16 for code 1, 8 for 2, 32 for 3, 24 for 4, 0 for others.
    OSTRA_EXPORT int32_t AudioFormatConvert(int32_t format) const;

    /// Returns one line for logs, unmasked.
    ///
    /// Each profile ends with "] }", which also closes the brace that DHOSTRADeviceServiceJson::String opens; without a
    /// profile that brace stays open.
    OSTRA_EXPORT std::string String() const;

    std::string audioCapablities_;        ///< The capability document of "2102".
    int32_t serviceStatus_ = 1;           ///< Set by the host, only printed.
    uint32_t audioSampleRates_ = 48000;   ///< In Hz. Set by the host, only printed.
    uint32_t audioFormat_ = 16;           ///< Set by the host, only printed.
    uint32_t audioChannelMask_ = 2;       ///< Set by the host, only printed.
    std::vector<uint32_t> codecs_;        ///< As read from capability documents.
    std::vector<AudioProfile> profiles_;  ///< As read from capability documents.
    uint32_t audioCodecType_ = 0;         ///< Derived: the bits of the known codecs.
    std::string audioProfiles_;           ///< Derived: "rate,channels,bits;" for each known profile.
};

/// One service of a peer, as its service document describes it.
///
/// Documents, failed allocations and the log of creation and destruction are as for DHOSTRAAudioProperties.
class DHOSTRADeviceServiceJson {
public:
    OSTRA_EXPORT DHOSTRADeviceServiceJson();
    OSTRA_EXPORT ~DHOSTRADeviceServiceJson();
    DHOSTRADeviceServiceJson(const DHOSTRADeviceServiceJson &) = default;
    DHOSTRADeviceServiceJson &operator=(const DHOSTRADeviceServiceJson &) = default;

    /// Reads a service document.
    ///
    /// A member is unchanged if its key is missing or has another type. The objects "properties" and "status" are
    /// stored as compact JSON; audioProperties_ is left to the host. On success the object is logged at info level, as
    /// String shows it.
    ///
    /// Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_INPUT_INVALID if:
    /// - `in` is not valid JSON; the object is unchanged.
    /// - "properties" or "status" cannot be printed again; members read before keep their new values.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    /// Returns one line for logs: identifiers and status masked, properties_ and audioProperties_ unmasked.
    OSTRA_EXPORT std::string String() const;

    std::string deviceId_;
    std::string deviceName_;
    std::string serviceId_;
    int32_t serviceType_ = 0;
    std::string properties_;  ///< Compact JSON.
    std::string status_;      ///< Compact JSON.
    DHOSTRAAudioProperties audioProperties_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // DH_DEVICE_JSON_H
