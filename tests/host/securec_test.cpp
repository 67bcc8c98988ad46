// SPDX-License-Identifier: Apache-2.0
//
// The bounds-checked functions as recorded, and what of them could not be recorded.

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "host/call.h"
#include "securec.h"
#include "host/values.h"

using namespace replay;

namespace {

// Bytes that hold 5a but for those given.
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

// dest, destMax, count or -, format, arguments => result, the bytes up to the end of the text, at least 16
template <typename Function>
Operation Prints(const Function &function)
{
    return [function](const Fields &in) -> Fields {
        constexpr size_t least = 16;
        std::string arena = Arena(1024);
        char *const dest = At(arena, in.at(0));
        const auto destMax = Number<size_t>(in.at(1));
        const size_t count = Count(in.at(2));
        const RecordedCall call(in, 3);
        const int result = call.Pass(
            [&](auto... arguments) { return function(dest, destMax, count, Pointer(call.format), arguments...); });
        const size_t end = arena.find('\0');
        return {std::to_string(result),
                Hex(arena.substr(0, end == std::string::npos ? least : std::max(end + 1, least)))};
    };
}

// text, format, targets => result, the first bytes of each target
Fields Scan(const Fields &in)
{
    constexpr size_t bufferSize = 64;
    std::vector<std::string> targets(in.size() - 2, Arena(bufferSize));
    std::array<intptr_t, 6> words{};
    size_t used = 0;
    for (size_t i = 0; i < targets.size(); ++i) {
        words.at(used++) = reinterpret_cast<intptr_t>(targets[i].data());
        if (in[i + 2].size() > 2) {
            words.at(used++) = Number<intptr_t>(in[i + 2].substr(2));
        }
    }
    const RecordedCall call({in.at(1)}, 0);
    const auto text = Target(in[0]);
    errno = EBADF;
    Fields results = {Show(sscanf_s(Pointer(text), Pointer(call.format), words[0], words[1], words[2], words[3]))};
    EXPECT_EQ(errno, EBADF);
    for (size_t i = 0; i < targets.size(); ++i) {
        results.push_back(Hex(targets[i].substr(0, in[i + 2] == "i" || in[i + 2] == "u" ? 4 : 8)));
    }
    return results;
}

// text, the delimiters of each call => the token of each call, all but the first of what is left
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

TEST(SecurecReplay, GivesWhatWasRecorded)
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
    operations["sscanf_s"] = Scan;
    operations["strtok_s"] = Tokens;
    Replay("recorded/securec.txt", 369, operations);
    Replay("handwritten/securec.txt", 52, operations);
}
