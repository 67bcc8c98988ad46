// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Results and limits of HiSysEvent::Write (hisysevent.h).

#ifndef HOST_HISYSEVENT_DEF_H
#define HOST_HISYSEVENT_DEF_H

#include <cstddef>

namespace OHOS::HiviewDFX {

/// The event was sent unchanged.
constexpr int SUCCESS = 0;

/// Error: the event was not sent.
/// @{
constexpr int ERR_DOMAIN_NAME_INVALID = -1;
constexpr int ERR_EVENT_NAME_INVALID = -2;
constexpr int ERR_DOES_NOT_INIT = -3;  ///< Not returned on the host.
constexpr int ERR_OVER_SIZE = -4;
constexpr int ERR_SEND_FAIL = -5;
constexpr int ERR_WRITE_IN_HIGH_FREQ = -6;
constexpr int ERR_DOMAIN_MASKED = -7;  ///< Not returned on the host.
constexpr int ERR_EMPTY_EVENT = -8;    ///< Not returned on the host.
constexpr int ERR_RAW_DATA_WROTE_EXCEPTION = -9;
/// @}

/// Warning: the event was sent.
/// @{
constexpr int ERR_KEY_NAME_INVALID = 1;       ///< Without the key.
constexpr int ERR_VALUE_LENGTH_TOO_LONG = 2;  ///< With the complete string.
constexpr int ERR_KEY_NUMBER_TOO_MUCH = 3;    ///< Without the keys beyond MAX_PARAM_NUMBER.
constexpr int ERR_ARRAY_TOO_MUCH = 4;         ///< With the first MAX_ARRAY_SIZE elements of the array.
constexpr int ERR_VALUE_INVALID = 5;          ///< Not returned on the host.
/// @}

/// Limit of an event. Lengths and sizes are in bytes.
/// @{
constexpr size_t MAX_DOMAIN_LENGTH = 16;
constexpr size_t MAX_EVENT_NAME_LENGTH = 32;
constexpr size_t MAX_PARAM_NAME_LENGTH = 48;
constexpr size_t MAX_ARRAY_SIZE = 100;  ///< In elements.
constexpr size_t MAX_PARAM_NUMBER = 128;
constexpr size_t MAX_STRING_LENGTH = size_t{256} * 1024;
constexpr size_t MAX_DATA_SIZE = size_t{384} * 1024;  ///< Of the encoded event.
/// @}

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_DEF_H
