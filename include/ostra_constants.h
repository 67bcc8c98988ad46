// SPDX-License-Identifier: Apache-2.0

/// @file
/// Constants that the library shares with the services that use it.
///
///     context.AddWaitNotify(deviceId, ISOMERISM_CONNECT);
///
/// Each string constant, here and in the other headers, is constructed when the program or library that includes it is
/// loaded, and destroyed when that is unloaded or the process exits: threads and static destructors that run later must
/// not use it. Thread-safe until then.

#ifndef OSTRA_CONSTANTS_H
#define OSTRA_CONSTANTS_H

#include <cstdint>
#include <string>

namespace OHOS::DistributedHardware::OstraAdapter {

/// Package name under which the adapter is registered with the platform. "osatra" is intentional.
inline const std::string OSTRA_PKG_NAME = "ohos.dhardware.osatraadapter";
/// Permission of the distributed hardware framework.
inline const std::u16string DH_ACCESS_TOKEN_PERMISSION = u"ohos.distributedhardware.accessToken";

/// The string for success.
inline const std::string DH_SUCCESS_TEXT = "DH_SUCCESS";
/// The string for failure.
inline const std::string DH_FAILED_TEXT = "DH_FAILED";
/// Name of the initialization event.
inline const std::string OSTRA_ADAPTER_INIT_TEXT = "OSTRA_ADAPTER_INIT";

/// Separator of key and value in the entries that IpcUtils writes.
inline const std::string SEPARATOR = "#";
/// ECMAScript regular expression for the strings that CheckIsNum accepts.
inline const std::string NUMBER_PATTERN = "^[-+]?[0-9]+$";

/// Value of an isomerism event: something changed.
inline const std::string ISOMERISM_CHANGE = "change";
/// Key of the event in a notification.
inline const std::string ISOMERISM_EVENT = "isomerism_event";
/// Event: a device connected.
inline const std::string ISOMERISM_CONNECT = "isomerism_connect";
/// Event: a device disconnected.
inline const std::string ISOMERISM_DISCONNECT = "isomerism_disconnect";
/// Key of the device id in a notification.
inline const std::string DEV_ID_KEY = "dev_id";

/// A JSON operation succeeded.
inline constexpr int32_t OSTRA_JSON_SUCCESS = 0;
/// Allocation failed for a JSON object, one of its members, or its serialized form.
inline constexpr int32_t OSTRA_JSON_CREATE_FAILED = -70001;
/// The JSON root is null.
inline constexpr int32_t OSTRA_JSON_ROOT_MISSING = -70003;
/// An operation that this one depends on failed.
inline constexpr int32_t OSTRA_JSON_STEP_FAILED = -70004;
/// The input is empty, not valid JSON, or exceeds a limit.
inline constexpr int32_t OSTRA_JSON_INPUT_INVALID = -70005;

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_CONSTANTS_H
