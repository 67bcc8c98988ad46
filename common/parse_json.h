// SPDX-License-Identifier: Apache-2.0
//
// Parsing of untrusted JSON from a peer, with a limit on nesting.

#ifndef COMMON_PARSE_JSON_H
#define COMMON_PARSE_JSON_H

#include <string>

#include "json_object.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// Parses `json` up to its first NUL. Returns null if it is not valid JSON, nests more than 100 arrays and objects, or
// allocation fails. cJSON recurses once per level and allows 1000 levels, which overflows a small stack.
JsonTree ParseJson(const std::string &json);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_PARSE_JSON_H
