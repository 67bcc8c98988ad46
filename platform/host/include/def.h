// SPDX-License-Identifier: Apache-2.0
//
/// \file
/// Results and limits of HiSysEvent::Write (hisysevent.h).

#ifndef HOST_HISYSEVENT_DEF_H
#define HOST_HISYSEVENT_DEF_H

#include <cstddef>

namespace OHOS::HiviewDFX {

/// Errors: the event is not sent. The host never returns those marked with *.
constexpr int SUCCESS = 0;
constexpr int ERR_DOMAIN_NAME_INVALID = -1;
constexpr int ERR_EVENT_NAME_INVALID = -2;
constexpr int ERR_DOES_NOT_INIT = -3;  // *
constexpr int ERR_OVER_SIZE = -4;
constexpr int ERR_SEND_FAIL = -5;
constexpr int ERR_WRITE_IN_HIGH_FREQ = -6;
constexpr int ERR_DOMAIN_MASKED = -7;  // *
constexpr int ERR_EMPTY_EVENT = -8;    // *
constexpr int ERR_RAW_DATA_WROTE_EXCEPTION = -9;

/// Warnings: the event is sent. The host never returns the one marked with *.
constexpr int ERR_KEY_NAME_INVALID = 1;       // the key is dropped
constexpr int ERR_VALUE_LENGTH_TOO_LONG = 2;  // the string is sent in full
constexpr int ERR_KEY_NUMBER_TOO_MUCH = 3;    // keys beyond MAX_PARAM_NUMBER are dropped
constexpr int ERR_ARRAY_TOO_MUCH = 4;         // the first MAX_ARRAY_SIZE elements are sent
constexpr int ERR_VALUE_INVALID = 5;          // *

constexpr size_t MAX_DOMAIN_LENGTH = 16;
constexpr size_t MAX_EVENT_NAME_LENGTH = 32;
constexpr size_t MAX_PARAM_NAME_LENGTH = 48;
constexpr size_t MAX_ARRAY_SIZE = 100;
constexpr size_t MAX_PARAM_NUMBER = 128;
constexpr size_t MAX_STRING_LENGTH = size_t{256} * 1024;
constexpr size_t MAX_DATA_SIZE = size_t{384} * 1024;  // of the encoded event

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_DEF_H
