// SPDX-License-Identifier: Apache-2.0

#include "recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <set>

namespace replay {
namespace {

const std::string FOLDER = OSTRA_SOURCE_FOLDER "/tests/data/platform/";
const char DIGITS[] = "0123456789abcdef";

unsigned HexByte(const std::string &text, size_t at)
{
    const size_t high = std::string(DIGITS).find(text.at(at));
    const size_t low = std::string(DIGITS).find(text.at(at + 1));
    if (high == std::string::npos || low == std::string::npos) {
        throw std::invalid_argument("no hexadecimal byte: " + text.substr(at, 2));
    }
    return static_cast<unsigned>(high * 16 + low);
}

// Reads the *NUMBER behind a piece and moves behind it; 1 where there is none.
size_t Times(const std::string &field, size_t &at)
{
    if (at + 1 >= field.size() || field[at] != '*' || isdigit(static_cast<unsigned char>(field[at + 1])) == 0) {
        return 1;
    }
    size_t digits = 0;
    const size_t times = std::stoul(field.substr(at + 1), &digits);
    at += 1 + digits;
    return times;
}

void Repeat(std::string &to, const std::string &piece, size_t times)
{
    for (size_t i = 0; i < times; ++i) {
        to += piece;
    }
}

std::string Joined(const Fields &fields)
{
    std::string line;
    for (const std::string &field : fields) {
        line += (line.empty() ? "" : "\t") + Unfold(field);
    }
    return line;
}

// What came instead; of a long text the part around the first difference.
std::string Difference(const std::string &came, const std::string &recorded)
{
    constexpr size_t shown = 200;
    constexpr size_t before = 40;
    const auto end = came.begin() + static_cast<std::ptrdiff_t>(std::min(came.size(), recorded.size()));
    const auto at = static_cast<size_t>(std::mismatch(came.begin(), end, recorded.begin()).first - came.begin());
    if (came.size() <= shown) {
        return came;
    }
    const size_t begin = at > before ? at - before : 0;
    return "(" + std::to_string(came.size()) + " characters, different from " + std::to_string(at) + " on) ..." +
           came.substr(begin, shown) + "... recorded there: ..." +
           (begin < recorded.size() ? recorded.substr(begin, shown) : "");
}

// Replays the lines up to the first that comes out differently, which the failure shows behind those before it.
void ReplayCase(const std::string &name, const Case &lines, const Interface &interface)
{
    interface.begin();
    std::string before;
    for (const Line &line : lines) {
        std::string came;
        try {
            came = Joined(interface.operations.at(line.input[0])({line.input.begin() + 1, line.input.end()}));
        } catch (const std::exception &error) {
            came = std::string("not replayed: ") + error.what();
        }
        before += line.raw + '\n';
        if (const std::string recorded = Joined(line.expected); came != recorded) {
            ADD_FAILURE_AT((FOLDER + name).c_str(), line.number) << before << "came: " << Difference(came, recorded);
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
    for (const auto &[operation, reason] : interface.notOffered) {
        EXPECT_EQ(used.count(operation), 1u) << operation << " is not recorded: needs no " << reason;
    }
    EXPECT_GT(replayed, left) << "a replay that leaves most out proves nothing";
    std::cout << name << ": " << replayed << " cases replayed, " << left << " not\n";
    testing::Test::RecordProperty(name, std::to_string(replayed) + " replayed, " + std::to_string(left) + " not");
}

std::string Unfold(const std::string &field)
{
    std::string whole;
    bool hasText = false;
    for (size_t at = 0; at < field.size();) {
        if (field[at] == '"') {
            hasText = true;
            const size_t end = field.find('"', at + 1);
            if (end == std::string::npos) {
                throw std::invalid_argument("no end of the text: " + field);
            }
            const std::string piece = field.substr(at + 1, end - at - 1);
            const bool isJoined = at > 0 && field[at - 1] == '+';
            whole.resize(whole.size() - (isJoined ? 2 : 0));  // the quote and the plus before it
            whole += isJoined ? "" : "\"";
            at = end + 1;
            Repeat(whole, piece, Times(field, at));
            whole += '"';
            continue;
        }
        const bool isPiece = (at == 0 || field[at - 1] == ' ') && field.find('*', at) == at + 2 &&
                             field.find_first_not_of(DIGITS, at) == at + 2;
        size_t end = at + (isPiece ? 2 : 1);
        const std::string piece = field.substr(at, end - at);
        Repeat(whole, piece, isPiece ? Times(field, end) : 1);
        at = end;
    }
    if (!hasText && whole.find_first_not_of(std::string(DIGITS) + ' ') == std::string::npos) {
        whole.erase(std::remove(whole.begin(), whole.end(), ' '), whole.end());
    }
    return whole;
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
        text += isEscape ? static_cast<char>(HexByte(quoted, at + 2)) : quoted[at];
        at += isEscape ? 3 : 0;
    }
    return text;
}

std::string Bytes(const std::string &field)
{
    const std::string digits = field == "-" ? "" : Unfold(field);
    std::string bytes;
    for (size_t at = 0; at < digits.size(); at += 2) {
        bytes += static_cast<char>(HexByte(digits, at));
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
