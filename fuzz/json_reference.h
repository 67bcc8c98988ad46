// SPDX-License-Identifier: Apache-2.0
//
// What the references of documents share.

#ifndef FUZZ_JSON_REFERENCE_H
#define FUZZ_JSON_REFERENCE_H

#include <cstring>
#include <memory>
#include <string>

#include "cJSON.h"

namespace Fuzz {

constexpr int32_t INPUT_INVALID = -70005;
constexpr int MOST_LINES = 8;  // documents of one input: what is read adds up
constexpr int MOST_LEVELS = 100;

using JsonTree = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

// Returns whether too many arrays and objects are open at once within the first value. Brackets in strings do not
// count.
inline bool IsTooDeep(const char *text)
{
    int levels = 0;
    bool isInString = false;
    const char *at = std::strncmp(text, "\xEF\xBB\xBF", 3) == 0 ? text + 3 : text;
    for (; static_cast<unsigned char>(*at - 1) < ' '; ++at) {
    }
    for (at = *at == '[' || *at == '{' ? at : ""; *at != '\0' && levels <= MOST_LEVELS; ++at) {
        if (*at == '"') {
            isInString = !isInString;
        } else if (isInString) {
            at += *at == '\\' && at[1] != '\0' ? 1 : 0;
        } else if (*at == '[' || *at == '{') {
            ++levels;
        } else if ((*at == ']' || *at == '}') && --levels <= 0) {
            break;
        }
    }
    return levels > MOST_LEVELS;
}

// Null for what is no JSON or nested too deep. A text ends at its first zero byte.
inline JsonTree Parse(const std::string &text)
{
    return {IsTooDeep(text.c_str()) ? nullptr : cJSON_Parse(text.c_str()), cJSON_Delete};
}

inline std::string Printed(const cJSON *item)
{
    const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(item), cJSON_free);
    return text.get();
}

// A text up to its first zero byte, as it stands in a document.
inline std::string Quote(const std::string &text)
{
    return Printed(JsonTree(cJSON_CreateString(text.c_str()), cJSON_Delete).get());
}

}  // namespace Fuzz

#endif  // FUZZ_JSON_REFERENCE_H
