// SPDX-License-Identifier: Apache-2.0
//
// Constants that the library and the hosting services share. Each text, like those of the other headers, is one
// immutable object per program or library that uses it, made when that is loaded. It leaks on purpose: any thread may
// read it until the process is gone.

#ifndef OSTRA_CONSTANTS_H
#define OSTRA_CONSTANTS_H

#include <cstdint>
#include <string>

namespace OHOS::DistributedHardware::OstraAdapter {

// Package name under which the adapter presents itself to the platform's services, spelled as it is registered.
inline const std::string &OSTRA_PKG_NAME = *new std::string("ohos.dhardware.osatraadapter");
// Permission name of the distributed hardware framework.
inline const std::u16string &DH_ACCESS_TOKEN_PERMISSION = *new std::u16string(u"ohos.distributedhardware.accessToken");

// Result and initialisation texts.
inline const std::string &DH_SUCCESS_TEXT = *new std::string("DH_SUCCESS");
inline const std::string &DH_FAILED_TEXT = *new std::string("DH_FAILED");
inline const std::string &OSTRA_ADAPTER_INIT_TEXT = *new std::string("OSTRA_ADAPTER_INIT");

// Stands between key and value of an entry that crosses a process border.
inline const std::string &SEPARATOR = *new std::string("#");
// What CheckIsNum accepts, as an ECMAScript regular expression.
inline const std::string &NUMBER_PATTERN = *new std::string("^[-+]?[0-9]+$");

// Keys and texts of the notifications about devices whose state changed.
inline const std::string &ISOMERISM_CHANGE = *new std::string("change");
inline const std::string &ISOMERISM_EVENT = *new std::string("isomerism_event");
inline const std::string &ISOMERISM_CONNECT = *new std::string("isomerism_connect");
inline const std::string &ISOMERISM_DISCONNECT = *new std::string("isomerism_disconnect");
inline const std::string &DEV_ID_KEY = *new std::string("dev_id");

// Results of the operations that read and write JSON documents.
inline constexpr int32_t OSTRA_JSON_SUCCESS = 0;
inline constexpr int32_t OSTRA_JSON_CREATE_FAILED = -70001;  // no memory for an object, one of its members or its text
inline constexpr int32_t OSTRA_JSON_ROOT_MISSING = -70003;   // a null root was passed
inline constexpr int32_t OSTRA_JSON_STEP_FAILED = -70004;    // a step that this one depends on failed
inline constexpr int32_t OSTRA_JSON_INPUT_INVALID = -70005;  // a text is empty, no JSON, or beyond a limit

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_CONSTANTS_H
