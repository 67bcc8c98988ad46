// SPDX-License-Identifier: Apache-2.0

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "inspect.h"

namespace {

std::string ReadAll(const std::string &path, size_t limit)
{
    const InputFile file = OpenInput(path);
    char block[65536];
    std::string bytes;
    bytes.reserve(limit + sizeof(block));  // avoids copies; pages that are never written use no memory
    for (size_t count = 1; count > 0 && bytes.size() <= limit;) {
        count = std::fread(block, 1, sizeof(block), file.get());
        bytes.append(block, count);
    }
    if (std::ferror(file.get()) != 0) {
        throw InputError(path + ": " + std::strerror(errno));
    }
    if (bytes.size() > limit) {
        throw InputError("input too large: the limit is " + std::to_string(limit >> 20) + " MiB");
    }
    return bytes;
}

}  // namespace

InputFile OpenInput(const std::string &path)
{
    if (path.empty() && isatty(STDIN_FILENO) != 0) {
        throw InputError("no input: standard input is a terminal; see --help");
    }
    InputFile file(path.empty() || path == "-" ? stdin : std::fopen(path.c_str(), "rb"), &std::fclose);
    if (file == nullptr) {
        throw InputError(path + ": " + std::strerror(errno));
    }
    return file;
}

std::string ParseHex(const std::string &digits)
{
    constexpr char separators[] = " \t\r\n,";
    std::string bytes;
    size_t end = 0;
    for (size_t at = digits.find_first_not_of(separators); at < digits.size();
         at = digits.find_first_not_of(separators, end)) {
        end = std::min(digits.find_first_of(separators, at), digits.size());
        const bool hasPrefix = digits[at] == '0' && at + 1 < end && (digits[at + 1] | ' ') == 'x';
        const std::string group = digits.substr(at, end - at);
        const size_t count = group.size() - (hasPrefix ? 2 : 0);
        if (count == 0 || count % 2 != 0 ||
            group.find_first_not_of("0123456789abcdefABCDEF", group.size() - count) != std::string::npos) {
            throw InputError("neither a file nor pairs of hexadecimal digits: " + group);
        }
        for (size_t i = group.size() - count; i < group.size(); i += 2) {
            bytes += static_cast<char>(std::stoi(group.substr(i, 2), nullptr, 16));
        }
    }
    return bytes;
}

std::string ReadBytes(const std::vector<std::string> &arguments, size_t limit)
{
    const std::string path = arguments.empty() ? "" : arguments.front();
    if (arguments.size() <= 1 && (path.empty() || path == "-" || access(path.c_str(), F_OK) == 0)) {
        return ReadAll(path, limit);
    }
    std::string digits;
    for (const std::string &argument : arguments) {
        digits += argument + " ";
    }
    return ParseHex(digits);
}

std::string ReadDocument(const std::string &argument)
{
    const bool isDocument = !argument.empty() && argument.front() == '{' && access(argument.c_str(), F_OK) != 0;
    return isDocument ? argument : ReadAll(argument, MAX_DOCUMENT_BYTES);
}
