// SPDX-License-Identifier: Apache-2.0
//
// Parses untrusted JSON from a peer, with a nesting limit.

#ifndef COMMON_PARSE_JSON_H
#define COMMON_PARSE_JSON_H

#include <string>

#include "json_object.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// Parses `json` up to its first NUL. Returns null if it is not valid JSON, is nested more than 100 levels deep, or
// allocation fails. cJSON recurses once per level and allows 1000 levels, which overflows a small stack.
JsonTree ParseJson(const std::string &json);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_PARSE_JSON_H
