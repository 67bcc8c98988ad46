// SPDX-License-Identifier: Apache-2.0
//
// Reads the worked examples of a page, which are its fenced blocks; the word behind the opening fence is their kind.
// Each line "input => output" is one example, a line that begins with a space continues the one above, and two spaces
// and
// "//" begin a comment. A block without "=>" is one example whose input and output are the same text.

#ifndef TESTS_WORKED_EXAMPLES_H
#define TESTS_WORKED_EXAMPLES_H

#include <cJSON.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

struct WorkedExample {
    std::string kind;
    std::string input;
    std::string output;
};

// Bytes as an example shows them: "0A FF". What is read may begin with a space.
inline std::string ToHex(const std::vector<uint8_t> &bytes)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (uint8_t byte : bytes) {
        text.append(text.empty() ? "" : " ").append({digits[byte / 16], digits[byte % 16]});
    }
    return text;
}

inline std::vector<uint8_t> FromHex(const std::string &text)
{
    const size_t begin = text.rfind(' ', 0) == 0 ? 1 : 0;
    std::vector<uint8_t> bytes;
    for (size_t i = begin; i < text.size(); i += 3) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// The parts of a list: "a, b". An empty text has none.
inline std::vector<std::string> Split(const std::string &list, const char *separator = ", ")
{
    const std::regex pattern(separator);
    if (list.empty()) {
        return {};
    }
    return {std::sregex_token_iterator(list.begin(), list.end(), pattern, -1), {}};
}

// The members of a JSON object: texts as they are, all else as JSON.
inline std::map<std::string, std::string> Members(const std::string &json)
{
    std::map<std::string, std::string> members;
    const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> object(cJSON_Parse(json.c_str()), cJSON_Delete);
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object.get())
    {
        const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(member), cJSON_free);
        members[member->string] = cJSON_IsString(member) != 0 ? member->valuestring : text.get();
    }
    return members;
}

inline std::string Trim(const std::string &text)
{
    const size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

// Adds the examples of one block.
inline void TakeBlock(const std::string &kind, const std::vector<std::string> &lines,
                      std::vector<WorkedExample> &examples)
{
    std::string whole;
    bool hasArrow = false;
    for (const std::string &line : lines) {
        const size_t arrow = line.find("=>");
        if (arrow != std::string::npos) {
            examples.push_back({kind, Trim(line.substr(0, arrow)), Trim(line.substr(arrow + 2))});
            hasArrow = true;
        }
        whole += (whole.empty() ? "" : "\n") + line;
    }
    if (!hasArrow) {
        examples.push_back({kind, whole, whole});
    }
}

inline std::vector<WorkedExample> ReadWorkedExamples(const std::string &path)
{
    const std::string fence = "```";
    std::ifstream file(path);
    std::vector<WorkedExample> examples;
    std::vector<std::string> lines;  // of the block at hand, continued ones joined
    std::string kind;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(fence, 0) == 0) {
            if (isInside) {
                TakeBlock(kind, lines, examples);
            }
            kind = line.substr(fence.size());
            lines.clear();
            isInside = !isInside;
        } else if (isInside) {
            line = line.substr(0, line.find("  //"));
            if (line.empty() || line.front() != ' ' || lines.empty()) {
                lines.push_back(line);
                continue;
            }
            const bool isBytes = line.find_first_not_of("0123456789ABCDEF ") == std::string::npos;
            lines.back() += isBytes ? line : line.substr(1);
        }
    }
    return examples;
}

// What gives the output of an example of each kind.
using RecomputeByKind = std::map<std::string, std::string (*)(const std::string &input)>;

// Expects every example of the page to be what is recomputed, and to find each kind there and no other.
inline void ExpectWorkedExamples(const std::string &path, const RecomputeByKind &kinds)
{
    std::set<std::string> found;
    for (const WorkedExample &example : ReadWorkedExamples(path)) {
        const auto kind = kinds.find(example.kind);
        ASSERT_NE(kind, kinds.end()) << "no kind is called " << example.kind;
        EXPECT_EQ(kind->second(example.input), example.output) << example.kind << ": " << example.input;
        found.insert(example.kind);
    }
    for (const auto &[kind, recompute] : kinds) {
        EXPECT_EQ(found.count(kind), 1U) << "no example of kind " << kind;
    }
}

#endif  // TESTS_WORKED_EXAMPLES_H
