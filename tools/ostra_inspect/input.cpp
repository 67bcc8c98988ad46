// SPDX-License-Identifier: Apache-2.0

#include "input.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

constexpr char STANDARD_INPUT[] = "-";
constexpr size_t LONGEST_NAME = 255;

bool IsFile(const std::string &path)
{
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool IsText(const std::string &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return (byte >= ' ' && byte <= '~') || (byte >= '\t' && byte <= '\r'); });
}

}  // namespace

std::string ReadFile(const std::string &path)
{
    const bool isStandardInput = path == STANDARD_INPUT;
    const std::string name = isStandardInput ? "standard input" : path;
    const auto close = [isStandardInput](FILE *file) {
        return isStandardInput ? 0 : std::fclose(file);
    };
    const std::unique_ptr<FILE, decltype(close)> file(isStandardInput ? stdin : std::fopen(path.c_str(), "rb"), close);
    if (file == nullptr) {
        throw InputError(name + ": " + std::strerror(errno));
    }
    std::string bytes;
    char piece[65536];
    for (size_t count = 1; count > 0;) {
        count = std::fread(piece, 1, sizeof(piece), file.get());
        bytes.append(piece, count);
    }
    if (std::ferror(file.get()) != 0) {
        throw InputError(name + ": " + std::strerror(errno));
    }
    return bytes;
}

std::string ReadText(const std::string &argument)
{
    if (!argument.empty() && argument.front() == '{' && !IsFile(argument)) {
        return argument;
    }
    return ReadFile(argument.empty() ? STANDARD_INPUT : argument);
}

std::string ReadBytes(const std::vector<std::string> &arguments, bool isRaw)
{
    const bool isStandardInput = arguments.empty() || (arguments.size() == 1 && arguments.front() == STANDARD_INPUT);
    if (isStandardInput || (arguments.size() == 1 && IsFile(arguments.front()))) {
        const std::string bytes = ReadFile(isStandardInput ? STANDARD_INPUT : arguments.front());
        return isRaw || !IsText(bytes) ? bytes : FromHex(bytes);
    }
    std::string text;
    for (const std::string &argument : arguments) {
        text += argument + " ";
    }
    try {
        return FromHex(text);
    } catch (const InputError &error) {
        const bool mayBeName = arguments.size() == 1 && text.size() <= LONGEST_NAME && text.size() > 1;
        throw mayBeName ? InputError(arguments.front() + ": no such file, and " + error.what()) : error;
    }
}
