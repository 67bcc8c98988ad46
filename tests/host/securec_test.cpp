// SPDX-License-Identifier: Apache-2.0
//
// Bounds-checked functions: replays the recordings and the handwritten cases.

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "host/call.h"
#include "host/values.h"
#include "securec.h"

using namespace replay;

namespace {

// Returns memory that holds `bytes`, then 5a.
std::string Arena(size_t size, const std::string &bytes = "")
{
    return bytes + std::string(size - bytes.size(), '\x5a');
}

char *At(std::string &arena, const std::string &field)
{
    return field == "null" ? nullptr : arena.data() + Number<size_t>(field);
}

size_t Count(const std::string &field)
{
    return field == "-" ? 0 : Number<size_t>(field);
}

// arena, dest, destMax, src, count => result, the arena after
template <typename Function>
Operation OnArena(const Function &function)
{
    return [function](const Fields &in) -> Fields {
        std::string arena = Arena(48, Bytes(in.at(0)));
        const errno_t result =
            function(arena, At(arena, in.at(1)), Number<size_t>(in.at(2)), in.at(3), Count(in.at(4)));
        return {std::to_string(result), Hex(arena)};
    };
}

template <typename Byte>
Operation Copies(errno_t (*function)(Byte *, size_t, const Byte *, size_t))
{
    return OnArena([function](std::string &arena, char *dest, size_t destMax, const std::string &src, size_t count) {
        return function(dest, destMax, At(arena, src), count);
    });
}

Operation CopiesWhole(errno_t (*function)(char *, size_t, const char *))
{
    return OnArena([function](std::string &arena, char *dest, size_t destMax, const std::string &src, size_t) {
        return function(dest, destMax, At(arena, src));
    });
}

// dest, destMax, count or -, format, arguments => result, the bytes up to the end of the string, at least 16
template <typename Function>
Operation Prints(const Function &function)
{
    return [function](const Fields &in) -> Fields {
        constexpr size_t minShown = 16;
        std::string arena = Arena(1024);
        char *const dest = At(arena, in.at(0));
        const auto destMax = Number<size_t>(in.at(1));
        const size_t count = Count(in.at(2));
        const RecordedCall call(in, 3);
        const int result = call.Pass(
            [&](auto... arguments) { return function(dest, destMax, count, Pointer(call.format), arguments...); });
        const size_t end = arena.find('\0');
        return {std::to_string(result),
                Hex(arena.substr(0, end == std::string::npos ? minShown : std::max(end + 1, minShown)))};
    };
}

// string, the delimiters of each call => the token of each call
Fields Tokens(const Fields &in)
{
    std::optional<std::string> text = Target(in.at(0));
    char *rest = nullptr;
    char *next = text.has_value() ? text->data() : nullptr;
    Fields tokens;
    for (size_t i = 1; i < in.size(); ++i) {
        const char *const token = strtok_s(std::exchange(next, nullptr), Pointer(Target(in[i])), &rest);
        tokens.push_back(token == nullptr ? "null" : Quote(token));
    }
    return tokens;
}

}  // namespace

TEST(Securec, MatchesRecording)
{
    Operations operations;
    operations["memset_s"] = OnArena([](std::string &, char *dest, size_t destMax, const std::string &value,
                                        size_t count) { return memset_s(dest, destMax, Number<int>(value), count); });
    operations["memcpy_s"] = Copies(memcpy_s);
    operations["memmove_s"] = Copies(memmove_s);
    operations["strcpy_s"] = CopiesWhole(strcpy_s);
    operations["strncpy_s"] = Copies(strncpy_s);
    operations["strcat_s"] = CopiesWhole(strcat_s);
    operations["strncat_s"] = Copies(strncat_s);
    operations["sprintf_s"] =
        Prints([](char *dest, size_t destMax, size_t, auto... call) { return sprintf_s(dest, destMax, call...); });
    operations["snprintf_s"] = Prints([](auto... call) { return snprintf_s(call...); });
    operations["snprintf_truncated_s"] = Prints(
        [](char *dest, size_t destMax, size_t, auto... call) { return snprintf_truncated_s(dest, destMax, call...); });
    operations["strtok_s"] = Tokens;
    Replay("recorded/securec.txt", 359, operations);
    Replay("handwritten/securec.txt", 21, operations);
}
