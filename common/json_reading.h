// SPDX-License-Identifier: Apache-2.0
//
// Parses untrusted JSON from a peer, with a nesting limit.

#ifndef COMMON_JSON_READING_H
#define COMMON_JSON_READING_H

#include <string>

#include "json_object.h"

namespace OHOS::DistributedHardware::OstraAdapter {

constexpr int MAX_JSON_NESTING = 100;

// Returns true if the first value of `json`, the only one that cJSON parses, nests arrays and objects more than
// MAX_JSON_NESTING levels deep. Brackets and braces inside strings do not count.
bool IsNestedTooDeeply(const char *json);

// Parses `json` up to its first NUL. Returns null if it is not valid JSON, is nested too deeply, or allocation fails.
// cJSON recurses once per level and allows 1000 levels, which overflows the stack of a small thread.
JsonTree ParseJson(const std::string &json);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_JSON_READING_H
