// SPDX-License-Identifier: Apache-2.0
//
// What stands before cJSON where a text comes from a peer.

#ifndef COMMON_JSON_READING_H
#define COMMON_JSON_READING_H

#include <string>

#include "json_object.h"

namespace OHOS::DistributedHardware::OstraAdapter {

constexpr int DEEPEST_NESTING = 100;

// How brackets and braces nest in a text, up to the one that closes the first; those inside strings do not count.
enum class JsonNesting {
    CLOSED,    // the first is closed
    OPEN,      // there is none, or the text ends before it is closed
    TOO_DEEP,  // more than DEEPEST_NESTING of them are open at once
};
JsonNesting NestingOf(const char *text);

// Parses a text up to its first zero byte. Returns null for one that is no JSON or nested too deep, and when memory
// runs out. cJSON takes stack for each level and allows a thousand, which is more than a small thread has.
JsonTree ParseJson(const std::string &text);

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // COMMON_JSON_READING_H
