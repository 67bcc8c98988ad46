// SPDX-License-Identifier: Apache-2.0

#include "host/recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iostream>
#include <regex>

namespace replay {
namespace {

const std::string DIRECTORY = OSTRA_SOURCE_FOLDER "/tests/data/host/";
const char DIGITS[] = "0123456789abcdef";

char Byte(const std::string &text, size_t at)
{
    const std::string digits = text.substr(at, 2);
    unsigned char byte = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16).ptr != digits.data() + 2) {
        throw std::invalid_argument("not a hexadecimal byte: " + digits);
    }
    return static_cast<char>(byte);
}

std::string WithoutGroups(std::string field)
{
    if (field.find_first_not_of(std::string(DIGITS) + ' ') == std::string::npos) {
        field.erase(std::remove(field.begin(), field.end(), ' '), field.end());
    }
    return field;
}

// Replays the lines up to the first with another result; the failure message shows all of them. Returns false for a
// case of another machine.
bool ReplayCase(const std::string &name, const Case &lines, const Operations &operations)
{
    std::string shown;
    for (const Line &line : lines) {
        shown += line.raw + '\n';
        Fields actual;
        try {
            actual = operations.at(line.input[0])({line.input.begin() + 1, line.input.end()});
            std::transform(actual.begin(), actual.end(), actual.begin(), WithoutGroups);
        } catch (const OtherMachine &) {
            return false;
        } catch (const std::exception &error) {
            actual = {"not replayed:", error.what()};
        }
        if (actual != line.expected) {
            for (const std::string &field : actual) {
                shown += '\t' + field;
            }
            ADD_FAILURE_AT((DIRECTORY + name).c_str(), line.number) << shown << "\nis the result";
            break;
        }
    }
    return true;
}

}  // namespace

std::vector<Case> ReadRecording(const std::string &name)
{
    std::ifstream file(DIRECTORY + name);
    std::vector<Case> cases;
    bool isBlocks = false;
    Line line;
    while (std::getline(file, line.raw)) {
        ++line.number;
        if (line.raw.empty() || line.raw[0] == '#') {
            continue;
        }
        Fields fields = Split(Expand(line.raw), '\t');
        const bool isBegin = fields.at(0) == "case";
        isBlocks = isBlocks || isBegin;
        if (isBegin || !isBlocks) {
            cases.emplace_back();
        }
        if (isBegin) {
            continue;
        }
        std::transform(fields.begin(), fields.end(), fields.begin(), WithoutGroups);
        const auto arrow = std::find(fields.begin(), fields.end(), "=>");
        if (arrow == fields.begin() || arrow == fields.end()) {
            throw std::invalid_argument(name + ":" + std::to_string(line.number) + " is not a line of a case");
        }
        line.input.assign(fields.begin(), arrow);
        line.expected.assign(arrow + 1, fields.end());
        cases.back().push_back(line);
    }
    if (cases.empty()) {
        throw std::invalid_argument(name + " cannot be read");
    }
    return cases;
}

void Replay(const std::string &name, size_t count, const Operations &operations, const std::function<void()> &begin,
            const std::optional<std::string> &notOffered)
{
    size_t replayed = 0;
    size_t skipped = 0;
    const std::vector<Case> cases = ReadRecording(name);
    for (const Case &lines : cases) {
        const bool isSkipped = std::any_of(lines.begin(), lines.end(), [&](const Line &line) {
            return notOffered.has_value() && line.input[0].find(*notOffered) != std::string::npos;
        });
        skipped += isSkipped ? 1 : 0;
        begin();
        replayed += !isSkipped && ReplayCase(name, lines, operations) ? 1 : 0;
    }
    EXPECT_EQ(cases.size(), count) << name;
    EXPECT_EQ(skipped > 0, notOffered.has_value()) << "every recorded operation is offered";
    EXPECT_GT(replayed, skipped) << "most cases are skipped";
    std::cout << name << ": " << replayed << " cases replayed, " << count - replayed << " not\n";
}

std::string Expand(const std::string &folded)
{
    static const std::regex piece(R"re((\+?")([^"]*)(")(?:\*(\d+))?|\b([0-9a-f]{2})\*(\d+))re");
    std::string whole;
    auto rest = folded.begin();
    for (std::sregex_iterator match(folded.begin(), folded.end(), piece), end; match != end; ++match) {
        const std::smatch &found = *match;
        whole.append(rest, found[0].first);
        rest = found[0].second;
        if (found.length(1) > 1) {
            whole.pop_back();  // continues the string before it
        } else {
            whole += found.str(1);
        }
        const std::string times = found.str(4) + found.str(6);
        for (unsigned long left = times.empty() ? 1 : std::stoul(times); left > 0; --left) {
            whole += found.str(2) + found.str(5);
        }
        whole += found.str(3);
    }
    return whole.append(rest, folded.end());
}

std::string Text(const std::string &field)
{
    if (field.size() < 2 || field.find('"') != 0 || field.find('"', 1) != field.size() - 1) {
        throw std::invalid_argument("not a string: " + field);
    }
    std::string text;
    for (size_t at = 1; at < field.size() - 1; ++at) {
        const bool isEscape = field[at] == '\\';
        text += isEscape ? Byte(field, at + 2) : field[at];
        at += isEscape ? 3 : 0;
    }
    return text;
}

std::string Bytes(const std::string &field)
{
    std::string bytes;
    for (size_t at = 0; at < field.size() && field != "-"; at += 2) {
        bytes += Byte(field, at);
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
