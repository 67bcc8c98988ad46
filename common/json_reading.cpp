// SPDX-License-Identifier: Apache-2.0

#include "json_reading.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// The quotation mark that closes the string begun at `quote`, or the end of the text.
const char *EndOfString(const char *quote)
{
    const char *at = quote + 1;
    while (*at != '\0' && *at != '"') {
        at += at[0] == '\\' && at[1] != '\0' ? 2 : 1;
    }
    return at;
}

// How often a character stands in a text, counted up to one more than nesting may have.
int CountToLimit(const std::string &text, char character)
{
    int count = 0;
    for (size_t at = text.find(character); at != std::string::npos && count <= DEEPEST_NESTING; ++count) {
        at = text.find(character, at + 1);
    }
    return count;
}

}  // namespace

JsonNesting NestingOf(const char *text)
{
    int depth = 0;
    for (const char *at = text; *at != '\0'; ++at) {
        switch (*at) {
            case '[':
            case '{':
                if (++depth > DEEPEST_NESTING) {
                    return JsonNesting::TOO_DEEP;
                }
                break;
            case ']':
            case '}':
                if (--depth <= 0) {
                    return depth == 0 ? JsonNesting::CLOSED : JsonNesting::OPEN;
                }
                break;
            case '"':
                at = EndOfString(at);
                if (*at == '\0') {
                    return JsonNesting::OPEN;
                }
                break;
            default:
                break;
        }
    }
    return JsonNesting::OPEN;
}

JsonTree ParseJson(const std::string &text)
{
    // Most texts open too few to be nested too deep; that is found much faster than how they nest.
    const bool mayBeTooDeep = CountToLimit(text, '[') + CountToLimit(text, '{') > DEEPEST_NESTING;
    const bool isTooDeep = mayBeTooDeep && NestingOf(text.c_str()) == JsonNesting::TOO_DEEP;
    return JsonTree(isTooDeep ? nullptr : cJSON_Parse(text.c_str()));
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
