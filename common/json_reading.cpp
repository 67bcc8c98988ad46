// SPDX-License-Identifier: Apache-2.0

#include "json_reading.h"

#include <cstring>

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// Skips what cJSON skips before the first value: a byte order mark and control characters and spaces.
const char *FirstValue(const char *json)
{
    constexpr char byteOrderMark[] = "\xEF\xBB\xBF";
    constexpr size_t markLength = sizeof(byteOrderMark) - 1;
    const char *at = std::strncmp(json, byteOrderMark, markLength) == 0 ? json + markLength : json;
    while (*at > '\0' && *at <= ' ') {
        ++at;
    }
    return at;
}

// Returns the quotation mark that closes the string begun at `quote`, or the NUL if none does.
const char *EndOfString(const char *quote)
{
    const char *at = quote + 1;
    while (*at != '\0' && *at != '"') {
        at += at[0] == '\\' && at[1] != '\0' ? 2 : 1;
    }
    return at;
}

// Counts the occurrences of `character`, up to one more than the nesting limit.
int CountToLimit(const std::string &json, char character)
{
    int count = 0;
    for (size_t at = json.find(character); at != std::string::npos && count <= MAX_JSON_NESTING; ++count) {
        at = json.find(character, at + 1);
    }
    return count;
}

}  // namespace

bool IsNestedTooDeep(const char *json)
{
    const char *at = FirstValue(json);
    if (*at != '[' && *at != '{') {
        return false;
    }
    for (int depth = 0; *at != '\0'; ++at) {
        switch (*at) {
            case '[':
            case '{':
                if (++depth > MAX_JSON_NESTING) {
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
                at = EndOfString(at);
                if (*at == '\0') {
                    return false;
                }
                break;
            default:
                break;
        }
    }
    return false;
}

JsonTree ParseJson(const std::string &json)
{
    // Most documents open too few arrays and objects to exceed the limit; counting is much faster than scanning.
    const bool mayBeTooDeep = CountToLimit(json, '[') + CountToLimit(json, '{') > MAX_JSON_NESTING;
    const bool isTooDeep = mayBeTooDeep && IsNestedTooDeep(json.c_str());
    return JsonTree(isTooDeep ? nullptr : cJSON_Parse(json.c_str()));
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
