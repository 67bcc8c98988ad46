// SPDX-License-Identifier: Apache-2.0
//
// Constants that the library and the hosting services share. Each string, like those of the other headers,
// belongs to the program or library that includes it: it is built when that is loaded and released when that is
// unloaded or the process exits. Threads and destructors that run later must not use it.

#ifndef OSTRA_CONSTANTS_H
#define OSTRA_CONSTANTS_H

#include <cstdint>
#include <string>

namespace OHOS::DistributedHardware::OstraAdapter {

// Package name under which the adapter presents itself to the platform's services, spelled as it is registered.
inline const std::string OSTRA_PKG_NAME = "ohos.dhardware.osatraadapter";
// Permission name of the distributed hardware framework.
inline const std::u16string DH_ACCESS_TOKEN_PERMISSION = u"ohos.distributedhardware.accessToken";

// Result and initialisation texts.
inline const std::string DH_SUCCESS_TEXT = "DH_SUCCESS";
inline const std::string DH_FAILED_TEXT = "DH_FAILED";
inline const std::string OSTRA_ADAPTER_INIT_TEXT = "OSTRA_ADAPTER_INIT";

// Stands between key and value of an entry that crosses a process border.
inline const std::string SEPARATOR = "#";
// What CheckIsNum accepts, as an ECMAScript regular expression.
inline const std::string NUMBER_PATTERN = "^[-+]?[0-9]+$";

// Keys and texts of the notifications about devices whose state changed.
inline const std::string ISOMERISM_CHANGE = "change";
inline const std::string ISOMERISM_EVENT = "isomerism_event";
inline const std::string ISOMERISM_CONNECT = "isomerism_connect";
inline const std::string ISOMERISM_DISCONNECT = "isomerism_disconnect";
inline const std::string DEV_ID_KEY = "dev_id";

// Results of the operations that read and write JSON documents.
inline constexpr int32_t OSTRA_JSON_SUCCESS = 0;
inline constexpr int32_t OSTRA_JSON_CREATE_FAILED = -70001;  // no memory for an object, one of its members or its text
inline constexpr int32_t OSTRA_JSON_ROOT_MISSING = -70003;   // a null root was passed
inline constexpr int32_t OSTRA_JSON_STEP_FAILED = -70004;    // a step that this one depends on failed
inline constexpr int32_t OSTRA_JSON_INPUT_INVALID = -70005;  // a text is empty, no JSON, or beyond a limit

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_CONSTANTS_H
