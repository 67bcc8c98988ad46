// SPDX-License-Identifier: Apache-2.0
//
// Bounds-checked functions: replays the recordings and the handwritten cases.

#include "securec.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/recording.h"

using namespace replay;

namespace {

constexpr char UNSET = 0x5a;  // initial value of memory

// memory, arguments => result, the memory after the call
template <typename... Parameters>
Operation Copies(errno_t (*function)(Parameters...))
{
    return [call = Call(function)](const Fields &in) -> Fields {
        g_memory = FromHex<char>(in.at(0));
        g_memory.resize(48, UNSET);
        const std::string result = call({in.begin() + 1, in.end()}).front();
        return {result, ToHex(g_memory)};
    };
}

// dest, destMax, count or -, format, arguments => result, the bytes up to the end of the string, at least 16
template <typename Function>
Operation Prints(Function *function)
{
    return [function](Fields in) -> Fields {
        constexpr size_t minShown = 16;
        g_memory.assign(1024, UNSET);
        in.erase(std::remove(in.begin(), in.begin() + 3, "-"), in.begin() + 3);
        const int result = CallPrint(function, in, 0);
        const size_t shown = std::max(g_memory.find('\0') + 1, minShown);  // npos + 1 is 0
        return {Show(result), ToHex(g_memory.substr(0, shown))};
    };
}

// string, the delimiters of each call => the token that each call returns
Fields Tokens(const Fields &in)
{
    char *next = Value<char *>(in.at(0));
    char *rest = nullptr;
    Fields tokens;
    for (size_t i = 1; i < in.size(); ++i) {
        tokens.push_back(Show(strtok_s(next, Value<char *>(in[i]), &rest)));
        next = nullptr;
    }
    return tokens;
}

}  // namespace

TEST(Securec, MatchesRecording)
{
    const Operations operations = {
        {"memset_s", Copies(memset_s)},
        {"memcpy_s", Copies(memcpy_s)},
        {"memmove_s", Copies(memmove_s)},
        {"strcpy_s", Copies(strcpy_s)},
        {"strncpy_s", Copies(strncpy_s)},
        {"strcat_s", Copies(strcat_s)},
        {"strncat_s", Copies(strncat_s)},
        {"sprintf_s", Prints(sprintf_s)},
        {"snprintf_s", Prints(snprintf_s)},
        {"snprintf_truncated_s", Prints(snprintf_truncated_s)},
        {"strtok_s", Tokens},
    };
    Replay("recorded/securec.txt", 359, operations);
    Replay("handwritten/securec.txt", 34, operations);
}
