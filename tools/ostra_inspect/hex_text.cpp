// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "input.h"
#include "report.h"

namespace {

constexpr int HEX = 16;
constexpr int OCTAL = 8;
constexpr size_t OCTAL_OFFSET_DIGITS = 7;  // as od writes them
constexpr size_t SHORTEST_OFFSET = 6;

bool IsHex(const std::string &text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char digit) {
        return std::isxdigit(static_cast<unsigned char>(digit)) != 0;
    });
}

void AppendPairs(std::string &bytes, const std::string &digits)
{
    if (!IsHex(digits)) {
        throw InputError("not hexadecimal: " + Printable(digits));
    }
    if (digits.size() % 2 != 0) {
        throw InputError("an odd number of hexadecimal digits: " + digits);
    }
    for (size_t i = 0; i < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, HEX));
    }
}

std::string FromWords(std::string text)
{
    constexpr char separators[] = ",;:-{}[]()\"'";
    for (size_t at = text.find("\\x"); at != std::string::npos; at = text.find("\\x", at)) {
        text.replace(at, 2, "  ");
    }
    std::replace_if(
        text.begin(), text.end(), [&](char c) { return std::strchr(separators, c) != nullptr; }, ' ');
    std::istringstream words(text);
    std::string bytes;
    for (std::string word; words >> word;) {
        const bool isMarked = word.size() > 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X');
        std::string digits = isMarked ? word.substr(2) : word;
        if (isMarked && digits.size() == 1) {
            digits.insert(0, 1, '0');
        }
        AppendPairs(bytes, digits);
    }
    return bytes;
}

// A line of a dump: the offset of its first byte, and its bytes, which end where the column of characters begins.
struct DumpLine {
    explicit DumpLine(const std::string &line)
    {
        const size_t end = std::min(line.find_first_of(" \t:"), line.size());
        offset = line.substr(0, end);
        hasColon = end < line.size() && line[end] == ':';
        const std::string rest = line.substr(std::min(end + 1, line.size()));
        hasCharacters = hasColon || rest.find('|') != std::string::npos;
        const std::string columns = rest.substr(0, hasColon ? rest.find("  ", 1) : rest.find_first_of("|>"));
        std::istringstream stream(columns);
        for (std::string word; stream >> word;) {
            words.push_back(word);
        }
    }

    std::string offset;
    bool hasColon = false;
    bool hasCharacters = false;  // or something else that only dumps have
    std::vector<std::string> words;
};

// The first line tells: an offset and bytes apart from each other. A bare offset counts only when it is 0, since groups
// of digits look alike.
bool IsDump(const std::string &firstLine)
{
    const DumpLine line(firstLine);
    if (line.offset.size() < SHORTEST_OFFSET || !IsHex(line.offset) || line.words.empty()) {
        return false;
    }
    const bool isZero = line.offset.find_first_not_of('0') == std::string::npos;
    return line.hasCharacters || (isZero && line.words.front().size() <= 4);
}

std::string FromDump(std::istringstream &lines)
{
    std::string bytes;
    std::string lastLine;
    bool isRepeated = false;
    unsigned long start = 0;
    for (std::string text; std::getline(lines, text);) {
        if (text == "*") {
            isRepeated = true;
            continue;
        }
        const DumpLine line(text);
        if (line.offset.empty()) {
            continue;
        }
        if (!IsHex(line.offset)) {
            throw InputError("no line of a dump: " + Printable(text));
        }
        const int base = line.offset.size() == OCTAL_OFFSET_DIGITS && !line.hasColon ? OCTAL : HEX;
        const unsigned long offset = std::strtoul(line.offset.c_str(), nullptr, base);
        start = lastLine.empty() ? offset : start;
        constexpr size_t mostBytes = 1U << 30;
        while (isRepeated && !lastLine.empty() && start + bytes.size() < offset && bytes.size() < mostBytes) {
            bytes += lastLine;
        }
        isRepeated = false;
        if (start + bytes.size() != offset) {
            throw InputError("the dump does not go on at offset " + line.offset);
        }
        lastLine.clear();
        for (const std::string &word : line.words) {
            if (!line.hasColon && word.size() == 4) {
                throw InputError("a dump of words, whose byte order is lost: use hexdump -C, xxd or od -t x1");
            }
            AppendPairs(lastLine, word);
        }
        bytes += lastLine;
    }
    return bytes;
}

}  // namespace

std::string FromHex(const std::string &text)
{
    std::istringstream lines(text);
    std::string first;
    std::getline(lines >> std::ws, first);
    if (!IsDump(first)) {
        return FromWords(text);
    }
    lines.clear();
    lines.seekg(0);
    lines >> std::ws;
    return FromDump(lines);
}
