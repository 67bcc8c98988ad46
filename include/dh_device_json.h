// SPDX-License-Identifier: Apache-2.0

/// @file
/// JSON documents: the device document (written), and the service document of a peer with its audio capabilities
/// (read). OSTRADeviceService (ostra_device_service.h) writes the service document that is read here.
///
///     DHOSTRADeviceServiceJson service;
///     if (service.Unmarshal(json) == OSTRA_JSON_SUCCESS) {
///         service.audioProperties_.Unmarshal(service.properties_);
///     }
///
/// **Device documents are written only:** DHOSTRADeviceJson::Unmarshal does nothing. A receiver uses cJSON:
///
///     cJSON *root = cJSON_Parse(json.c_str());     // delete it with cJSON_Delete
///     const char *deviceId = cJSON_GetStringValue(cJSON_GetObjectItem(root, "deviceId"));
///
/// Operations that can fail return an OSTRA_JSON_ code from ostra_constants.h, and log an error on failure. Not
/// thread-safe: callers must synchronize access to an object.

#ifndef DH_DEVICE_JSON_H
#define DH_DEVICE_JSON_H

#include <cstdint>
#include <string>
#include <vector>

#include "ostra_export.h"

struct cJSON;

namespace OHOS::DistributedHardware::OstraAdapter {

/// A device, and the device document that describes it to a peer.
///
/// Strings are written up to their first NUL. If allocation fails inside cJSON, operations return an error code; if it
/// fails for a string of this library, they throw std::bad_alloc, and the string is unchanged. The default constructor
/// and the destructor log a line at info level; copying logs nothing.
class DHOSTRADeviceJson {
public:
    OSTRA_EXPORT DHOSTRADeviceJson();
    OSTRA_EXPORT ~DHOSTRADeviceJson();
    DHOSTRADeviceJson(const DHOSTRADeviceJson &) = default;
    DHOSTRADeviceJson &operator=(const DHOSTRADeviceJson &) = default;

    /// Returns the protocol version of a service type: 2 for types 2 and 4, 1 for all others.
    OSTRA_EXPORT int32_t GetVersionByService(int32_t service) const;

    /// Replaces properties_ with the table of supported protocol versions.
    ///
    /// Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_CREATE_FAILED, with properties_ unchanged, if the table cannot be
    /// built.
    OSTRA_EXPORT int32_t AddProperties();

    /// Replaces `out` with the device document, as indented JSON.
    ///
    /// Calls AddProperties first. Writes every member except reserved_, without validation. If cJSON cannot parse
    /// properties_, logs an error and writes it as a string.
    ///
    /// Returns:
    /// - OSTRA_JSON_SUCCESS.
    /// - OSTRA_JSON_STEP_FAILED if AddProperties failed; `out` is unchanged.
    /// - OSTRA_JSON_CREATE_FAILED if the document cannot be built; `out` is unchanged.
    OSTRA_EXPORT int32_t Marshal(std::string &out);

    /// Does nothing and returns OSTRA_JSON_SUCCESS: device documents are written only.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    std::string deviceId_;
    std::string deviceName_;
    uint32_t deviceType_ = 0;
    std::string reserved_;  ///< Free for use by the host process; not written.
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

/// A PCM format that a peer supports.
struct AudioProfile {
    int32_t sampleRate = 0;  ///< In Hz.
    int32_t channel = 0;     ///< Code of the channel layout, see DHOSTRAAudioProperties::AudioChannelConvert.
    int32_t format = 0;      ///< Code of the sample format, see DHOSTRAAudioProperties::AudioFormatConvert.
};

/// The audio capabilities of a service, and the codec bits and profile string derived from them.
///
/// Results accumulate over the lifetime of an object: lists, codec bits and the profile string only grow, except that
/// the codec bits are reset to 0 if there are no codecs.
///
/// A document ends at its first NUL. Keys are case-insensitive. A document whose first value nests arrays and objects
/// more than 100 levels deep is rejected as invalid JSON, so that a peer's documents can be read with 64 KiB of stack.
/// If allocation fails inside cJSON, operations return an error code; if it fails for a string or list of this library,
/// they throw std::bad_alloc, and that string or list is unchanged, while those written before keep their new values.
/// The default constructor and the destructor log a line at info level; copying logs nothing.
class DHOSTRAAudioProperties {
public:
    OSTRA_EXPORT DHOSTRAAudioProperties();
    OSTRA_EXPORT ~DHOSTRAAudioProperties();
    DHOSTRAAudioProperties(const DHOSTRAAudioProperties &) = default;
    DHOSTRAAudioProperties &operator=(const DHOSTRAAudioProperties &) = default;

    /// Reads a properties object: stores its member "2102", reads that as a capability document, and derives the codec
    /// bits and the profile string.
    ///
    /// The values are derived from all entries of the lists, so a second call appends the profiles of the first again.
    /// If "2102" is missing or not a string, the values are derived from the current lists; if it is empty, they are
    /// not derived. Each list and string is extended completely or not at all. On success, logs the result of String at
    /// info level, unmasked, unless "2102" is empty.
    ///
    /// Returns:
    /// - OSTRA_JSON_SUCCESS.
    /// - OSTRA_JSON_INPUT_INVALID if `in` is not valid JSON; the object is unchanged.
    /// - OSTRA_JSON_STEP_FAILED if UnmarshalAudioCapablities rejects the capability document; audioCapablities_ then
    ///   holds the rejected document, and the other members are unchanged.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    /// Appends the codecs and profiles of a capability document.
    ///
    /// Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_INPUT_INVALID, with the object unchanged, if:
    /// - `json` is empty or not valid JSON.
    /// - codecs_ or profiles_ already holds more than 1000 entries.
    OSTRA_EXPORT int32_t UnmarshalAudioCapablities(const std::string &json);

    /// Appends the numbers of the array "codecs" to codecs_.
    ///
    /// Elements that are not numbers are skipped. An empty array is logged as an error; a missing one is not. Returns
    /// OSTRA_JSON_SUCCESS, or OSTRA_JSON_ROOT_MISSING if `root` is null.
    OSTRA_EXPORT int32_t UnmarshalAudioCodecs(const cJSON *root);

    /// Appends one profile to profiles_ for each element of the array "profiles".
    ///
    /// A field that is missing or not a number is read as 0. An empty array is logged as an error; a missing one is
    /// not. Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_ROOT_MISSING if `root` is null.
    OSTRA_EXPORT int32_t UnmarshalAudioProfiles(const cJSON *root);

    /// Sets the bits of the known codecs in audioCodecType_: 0x1 for codec 0, 0x2 for 1, 0x4 for 2.
    ///
    /// Logs an error for each unknown codec. If codecs_ is empty, logs an error and sets audioCodecType_ to 0.
    OSTRA_EXPORT void UpdataAudioCodec();

    /// Appends "rate,channels,bits;" to audioProfiles_ for each profile whose codes are known. If profiles_ is empty,
    /// logs an error and appends "48000,2,16;".
    OSTRA_EXPORT void UpdateAudioProfiles();

    /// Returns the number of channels of a channel layout code: 1 for codes 1 and 16, 2 for 3 and 12, 0 for others.
    OSTRA_EXPORT int32_t AudioChannelConvert(int32_t channel) const;

    /// Returns the bits per sample of a sample format code: 16 for code 1, 8 for 2, 32 for 3, 24 for 4, 0 for others.
    OSTRA_EXPORT int32_t AudioFormatConvert(int32_t format) const;

    /// Returns a one-line description for logs, unmasked.
    ///
    /// Each profile ends with "] }", which also closes the brace that DHOSTRADeviceServiceJson::String opens; without
    /// profiles that brace remains open.
    OSTRA_EXPORT std::string String() const;

    std::string audioCapablities_;        ///< The capability document of "2102".
    int32_t serviceStatus_ = 1;           ///< Set by the host process; only String uses it.
    uint32_t audioSampleRates_ = 48000;   ///< In Hz. Set by the host process; only String uses it.
    uint32_t audioFormat_ = 16;           ///< Set by the host process; only String uses it.
    uint32_t audioChannelMask_ = 2;       ///< Set by the host process; only String uses it.
    std::vector<uint32_t> codecs_;        ///< As read from capability documents.
    std::vector<AudioProfile> profiles_;  ///< As read from capability documents.
    uint32_t audioCodecType_ = 0;         ///< Derived: the bits of the known codecs.
    std::string audioProfiles_;           ///< Derived: "rate,channels,bits;" for each known profile.
};

/// A service of a peer, read from its service document.
///
/// Document limits, allocation failures and log lines are the same as for DHOSTRAAudioProperties.
class DHOSTRADeviceServiceJson {
public:
    OSTRA_EXPORT DHOSTRADeviceServiceJson();
    OSTRA_EXPORT ~DHOSTRADeviceServiceJson();
    DHOSTRADeviceServiceJson(const DHOSTRADeviceServiceJson &) = default;
    DHOSTRADeviceServiceJson &operator=(const DHOSTRADeviceServiceJson &) = default;

    /// Reads a service document.
    ///
    /// A member is unchanged if its key is missing or has another type. The objects "properties" and "status" are
    /// stored as compact JSON. audioProperties_ is not read: call its Unmarshal with properties_. On success, logs the
    /// result of String at info level.
    ///
    /// Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_INPUT_INVALID if:
    /// - `in` is not valid JSON; the object is unchanged.
    /// - "properties" or "status" cannot be stored as JSON; members read before keep their new values.
    OSTRA_EXPORT int32_t Unmarshal(const std::string &in);

    /// Returns a one-line description for logs. Masks device id and name, service id and status, but not properties_,
    /// audioProperties_ and the service type.
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
