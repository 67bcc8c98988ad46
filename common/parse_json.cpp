// SPDX-License-Identifier: Apache-2.0

#include "parse_json.h"

#include <cstring>

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int MAX_NESTING = 100;

// Skips what cJSON skips before the first value: a byte order mark, control characters and spaces.
const char *FirstValue(const char *json)
{
    constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
    constexpr size_t markLength = sizeof(byteOrderMark) - 1;
    const char *position = std::strncmp(json, byteOrderMark, markLength) == 0 ? json + markLength : json;
    while (*position > '\0' && *position <= ' ') {
        ++position;
    }
    return position;
}

// Returns the closing quotation mark of the string that starts at `quote`, or the NUL of an unterminated string.
const char *EndOfString(const char *quote)
{
    const char *position = quote + 1;
    while (*position != '\0' && *position != '"') {
        position += position[0] == '\\' && position[1] != '\0' ? 2 : 1;
    }
    return position;
}

// Counts the occurrences of `character`, up to one more than the nesting limit.
int CountUpToLimit(const std::string &json, char character)
{
    int count = 0;
    for (size_t position = json.find(character); position != std::string::npos && count <= MAX_NESTING; ++count) {
        position = json.find(character, position + 1);
    }
    return count;
}

// Returns true if the first value of `json`, the only one that cJSON parses, nests arrays and objects more than
// MAX_NESTING levels deep. Brackets and braces inside strings do not count.
bool IsNestedTooDeeply(const char *json)
{
    const char *position = FirstValue(json);
    if (*position != '[' && *position != '{') {
        return false;
    }
    for (int depth = 0; *position != '\0'; ++position) {
        switch (*position) {
            case '[':
            case '{':
                if (++depth > MAX_NESTING) {
                    return true;
                }
                break;
            case ']':
            case '}':
                if (--depth == 0) {
                    return false;
                }
                break;
            case '"':
                position = EndOfString(position);
                if (*position == '\0') {
                    return false;
                }
                break;
            default:
                break;
        }
    }
    return false;
}

}  // namespace

JsonTree ParseJson(const std::string &json)
{
    // Most documents contain too few arrays and objects to exceed the limit; counting is much faster than scanning.
    const bool mayBeTooDeep = CountUpToLimit(json, '[') + CountUpToLimit(json, '{') > MAX_NESTING;
    const bool isTooDeep = mayBeTooDeep && IsNestedTooDeeply(json.c_str());
    return JsonTree(isTooDeep ? nullptr : cJSON_Parse(json.c_str()));
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
