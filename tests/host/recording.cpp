// SPDX-License-Identifier: Apache-2.0

#include "host/recording.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iostream>
#include <regex>
#include <set>

namespace replay {
namespace {

// Expands repetitions and joins pieces: "x"*3+"y" is "xxxy", 00*3 01 is 00000001, 0*2 -6*2 is 00-6-6.
std::string Expand(const std::string &folded)
{
    static const std::regex piece(R"re("\+"|(\\x..|.)"\*(\d+)(\+")?| ?([-0-9a-f]{1,2})\*(\d+) ?)re");
    std::string expanded;
    std::string rest = folded;
    for (std::sregex_iterator match(folded.begin(), folded.end(), piece), end; match != end; ++match) {
        expanded += match->prefix();
        for (unsigned long left = std::stoul("0" + match->str(2) + match->str(5)); left > 0; --left) {
            expanded += match->str(1) + match->str(4);
        }
        expanded += match->length(1) > 0 && match->length(3) == 0 ? "\"" : "";
        rest = match->suffix();
    }
    return expanded + rest;
}

}  // namespace

size_t Replay(const std::string &name, size_t count, const Operations &operations)
{
    // Also formats that depend on the size of `long`, if that is not the recorded one.
    static const std::regex unsupported(
        sizeof(long) == sizeof(int64_t) ? "Unaligned" : R"(Unaligned|%(\{\w+\})?[-+ #0-9.*]*(l|z|t|j|q|p|L|I64).*=>)");
    const std::string path = OSTRA_SOURCE_DIR "/tests/data/host/" + name;
    std::ifstream file(path);
    size_t cases = 0;
    std::set<size_t> skipped;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const Fields fields = Split(Expand(line), '\t');
        cases += operations.count("case") == 0 || fields[0] == "case" ? 1 : 0;
        if (std::regex_search(line, unsupported)) {
            skipped.insert(cases);
        }
        if (skipped.count(cases) > 0) {
            continue;
        }
        const auto arrow = std::find(fields.begin(), fields.end(), "=>");
        Fields actual;
        try {
            actual = operations.at(fields[0])({fields.begin() + 1, arrow});
        } catch (const std::exception &error) {
            actual = {"not replayed", error.what()};
        }
        EXPECT_EQ(actual, Fields(arrow == fields.end() ? arrow : arrow + 1, fields.end())) << path << ':' << number;
    }
    EXPECT_EQ(cases, count) << path;
    std::cout << name << ": " << cases - skipped.size() << " cases replayed, " << skipped.size() << " not\n";
    return skipped.size();
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

std::string Unquote(const std::string &field)
{
    if (field.size() < 2 || field.find('"') != 0 || field.find('"', 1) != field.size() - 1) {
        throw std::invalid_argument("not a string: " + field);
    }
    std::string string;
    for (size_t at = 1; at < field.size() - 1; ++at) {
        const bool isEscape = field[at] == '\\';
        string += isEscape ? FromHex<char>(field.substr(at + 2, 2)) : field.substr(at, 1);
        at += isEscape ? 3 : 0;
    }
    return string;
}

std::string Quote(const std::string &string)
{
    std::string quoted = "\"";
    for (const char c : string) {
        const bool isPlain = c >= ' ' && c <= '~' && c != '"' && c != '\\';
        quoted += isPlain ? std::string(1, c) : "\\x" + ToHex(std::string(1, c));
    }
    return quoted + '"';
}

}  // namespace replay
