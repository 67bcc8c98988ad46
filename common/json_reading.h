// SPDX-License-Identifier: Apache-2.0
//
// Parsing of JSON that a peer sent, with a limit on its nesting.

#ifndef COMMON_JSON_READING_H
#define COMMON_JSON_READING_H

#include <string>

#include "json_object.h"

namespace OHOS::DistributedHardware::OstraAdapter {

constexpr int MAX_JSON_NESTING = 100;

// Returns true if more than MAX_JSON_NESTING arrays and objects are open at once within the first value of `json`, the
// only one that cJSON parses. Brackets and braces inside strings do not count.
bool IsNestedTooDeep(const char *json);

// Parses `json` up to its first NUL. Returns null if it is not valid JSON, is nested too deep, or allocation fails.
// cJSON recurses for each level and allows 1000 of them, which is more than the stack of a small thread holds.
JsonTree ParseJson(const std::string &json);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_JSON_READING_H
