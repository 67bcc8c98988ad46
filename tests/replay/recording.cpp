// SPDX-License-Identifier: Apache-2.0

#include "recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>

namespace replay {
namespace {

const std::string FOLDER = OSTRA_SOURCE_FOLDER "/tests/data/platform/";
const char DIGITS[] = "0123456789abcdef";

char Byte(const std::string &text, size_t at)
{
    unsigned char byte = 0;
    const char *const end = text.data() + std::min(at + 2, text.size());
    if (at + 2 > text.size() || std::from_chars(end - 2, end, byte, 16).ptr != end) {
        throw std::invalid_argument("no hexadecimal byte: " + text.substr(std::min(at, text.size()), 2));
    }
    return static_cast<char>(byte);
}

void Repeat(std::string &to, const std::string &piece, const std::string &times)
{
    for (unsigned long left = times.empty() ? 1 : std::stoul(times); left > 0; --left) {
        to += piece;
    }
}

// Bytes may be grouped.
std::string WithoutGroups(std::string field)
{
    if (field.find_first_not_of(std::string(DIGITS) + ' ') == std::string::npos) {
        field.erase(std::remove(field.begin(), field.end(), ' '), field.end());
    }
    return field;
}

// One line of fields, each written by `write`.
std::string Joined(const Fields &fields, std::string (*write)(const std::string &))
{
    std::string line;
    for (const std::string &field : fields) {
        line += (line.empty() ? "" : "\t") + WithoutGroups(write(field));
    }
    return line;
}

// What came instead, from a little before the first difference on.
std::string Difference(const std::string &came, const std::string &recorded)
{
    constexpr size_t shown = 200;
    constexpr size_t before = 40;
    size_t at = 0;
    while (at < std::min(came.size(), recorded.size()) && came[at] == recorded[at]) {
        ++at;
    }
    at -= std::min(at, came.size() > shown ? before : at);
    return "came from character " + std::to_string(at) + " on: " + came.substr(at, shown) +
           "\nwhere recorded is: " + recorded.substr(at, shown);
}

// Replays the lines up to the first that comes out differently, which the failure shows behind those before it.
void ReplayCase(const std::string &name, const Case &lines, const Interface &interface)
{
    interface.begin();
    std::string before;
    for (const Line &line : lines) {
        std::string came;
        try {
            const Fields fields = interface.operations.at(line.input[0])({line.input.begin() + 1, line.input.end()});
            came = Joined(fields, [](const std::string &field) { return field; });
        } catch (const std::exception &error) {
            came = std::string("not replayed: ") + error.what();
        }
        before += line.raw + '\n';
        if (const std::string recorded = Joined(line.expected, Unfold); came != recorded) {
            ADD_FAILURE_AT((FOLDER + name).c_str(), line.number) << before << Difference(came, recorded);
            return;
        }
    }
}

}  // namespace

std::vector<Case> ReadRecording(const std::string &name)
{
    std::ifstream file(FOLDER + name);
    std::vector<Case> cases;
    bool isBlocks = false;
    Line line;
    while (std::getline(file, line.raw)) {
        ++line.number;
        if (line.raw.empty() || line.raw[0] == '#') {
            continue;
        }
        Fields fields = Split(line.raw, '\t');
        if (fields[0] == "case") {
            isBlocks = true;
            cases.emplace_back();
            continue;
        }
        const auto arrow = std::find(fields.begin(), fields.end(), "=>");
        if (arrow == fields.begin() || arrow == fields.end() || (isBlocks && cases.empty())) {
            throw std::invalid_argument(name + ":" + std::to_string(line.number) + " is no line of a case");
        }
        line.input.assign(fields.begin(), arrow);
        line.expected.assign(arrow + 1, fields.end());
        if (!isBlocks) {
            cases.emplace_back();
        }
        cases.back().push_back(line);
    }
    if (cases.empty()) {
        throw std::invalid_argument(name + " cannot be read");
    }
    return cases;
}

void Replay(const std::string &name, const Interface &interface)
{
    int replayed = 0;
    int left = 0;
    std::set<std::string> used;
    for (const Case &lines : ReadRecording(name)) {
        bool isOffered = true;
        for (const Line &line : lines) {
            used.insert(line.input[0]);
            isOffered = isOffered && interface.notOffered.count(line.input[0]) == 0;
        }
        ++(isOffered ? replayed : left);
        if (isOffered) {
            ReplayCase(name, lines, interface);
        }
    }
    for (const std::string &operation : interface.notOffered) {
        EXPECT_EQ(used.count(operation), 1u) << operation << " is not recorded";
    }
    EXPECT_GT(replayed, left) << "a replay that leaves most out proves nothing";
    std::cout << name << ": " << replayed << " cases replayed, " << left << " not\n";
    testing::Test::RecordProperty(name, std::to_string(replayed) + " replayed, " + std::to_string(left) + " not");
}

std::string Unfold(const std::string &field)
{
    static const std::regex piece(R"re((\+?)"([^"]*)"(?:\*(\d+))?|\b([0-9a-f]{2})\*(\d+))re");
    std::string whole;
    auto rest = field.begin();
    for (std::sregex_iterator match(field.begin(), field.end(), piece), end; match != end; ++match) {
        const std::smatch &found = *match;
        whole.append(rest, found[0].first);
        rest = found[0].second;
        const bool isText = !found[4].matched;
        if (found.length(1) > 0) {
            whole.pop_back();  // goes on with the text before it
        } else if (isText) {
            whole += '"';
        }
        Repeat(whole, isText ? found[2] : found[4], isText ? found[3] : found[5]);
        whole += isText ? "\"" : "";
    }
    return whole.append(rest, field.end());
}

std::string Text(const std::string &field)
{
    const std::string quoted = Unfold(field);
    if (quoted.size() < 2 || quoted.find('"') != 0 || quoted.find('"', 1) != quoted.size() - 1) {
        throw std::invalid_argument("no text: " + field);
    }
    std::string text;
    for (size_t at = 1; at < quoted.size() - 1; ++at) {
        const bool isEscape = quoted[at] == '\\';
        text += isEscape ? Byte(quoted, at + 2) : quoted[at];
        at += isEscape ? 3 : 0;
    }
    return text;
}

std::string Bytes(const std::string &field)
{
    const std::string digits = field == "-" ? "" : WithoutGroups(Unfold(field));
    std::string bytes;
    for (size_t at = 0; at < digits.size(); at += 2) {
        bytes += Byte(digits, at);
    }
    return bytes;
}

std::string Quote(const std::string &text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        const bool isPlain = c >= ' ' && c <= '~' && c != '"' && c != '\\';
        quoted += isPlain ? std::string(1, c) : "\\x" + Hex({c});
    }
    return quoted + '"';
}

std::string Hex(const std::string &bytes)
{
    std::string digits;
    for (const char c : bytes) {
        digits += DIGITS[static_cast<unsigned char>(c) >> 4];
        digits += DIGITS[static_cast<unsigned char>(c) & 15];
    }
    return digits.empty() ? "-" : digits;
}

Fields Split(const std::string &field, char separator)
{
    Fields parts;
    if (field.empty() || field == "-") {
        return parts;
    }
    bool isQuoted = false;
    parts.emplace_back();
    for (const char c : field) {
        isQuoted = isQuoted != (c == '"');
        if (c == separator && !isQuoted) {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

}  // namespace replay
