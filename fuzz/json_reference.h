// SPDX-License-Identifier: Apache-2.0
//
// Helpers of the references that read or write JSON.

#ifndef FUZZ_JSON_REFERENCE_H
#define FUZZ_JSON_REFERENCE_H

#include <cstring>
#include <memory>
#include <string>

#include "cJSON.h"

namespace Fuzz {

constexpr int32_t INPUT_INVALID = -70005;
constexpr int MAX_LINES = 8;  // documents per input: objects accumulate what they read
constexpr int MAX_NESTING = 100;

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
    for (at = *at == '[' || *at == '{' ? at : ""; *at != '\0' && levels <= MAX_NESTING; ++at) {
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
    return levels > MAX_NESTING;
}

// Returns null if the string is not valid JSON or nested too deep. The string ends at its first NUL.
inline JsonTree Parse(const std::string &text)
{
    return {IsTooDeep(text.c_str()) ? nullptr : cJSON_Parse(text.c_str()), cJSON_Delete};
}

inline std::string Printed(const cJSON *item)
{
    const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(item), cJSON_free);
    return text.get();
}

// Returns the string, up to its first NUL, as a JSON string.
inline std::string Quote(const std::string &text)
{
    return Printed(JsonTree(cJSON_CreateString(text.c_str()), cJSON_Delete).get());
}

}  // namespace Fuzz

#endif  // FUZZ_JSON_REFERENCE_H
