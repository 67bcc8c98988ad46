// SPDX-License-Identifier: Apache-2.0
//
// What a subcommand found: a tree of labelled values, printed as text for people or as JSON.
//
//     Report report;
//     report.Add("offset", 2);
//     report.Add("crc", 41421, "A1CD");      // offset   2 / crc   A1CD and {"offset":2,"crc":41421}

#ifndef TOOLS_REPORT_H
#define TOOLS_REPORT_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

struct Report {
    enum class Shape {
        VALUE,
        OBJECT,
        LIST,     // its members have no keys
        PICTURE,  // in text only
    };
    using Value = std::variant<std::monostate, bool, int64_t, double, std::string>;

    Report() = default;
    explicit Report(std::string name, Shape form = Shape::OBJECT);

    // An element of a list, or a member.
    static Report Of(std::string name, Value content, std::string text = {});

    void Add(Report member);
    void Add(std::string name, Value content, std::string text = {});

    // The member of this name; null when there is none.
    const Report *Find(const std::string &name) const;

    std::string key;  // a member's name in JSON; its label in text, where "_" is a space
    Shape shape = Shape::OBJECT;
    Value value;
    // How text shows it, where that is neither the value nor all members below each other. More than one line stand
    // below the label.
    std::string shown;
    std::vector<Report> members;
};

// Lines for people; what could steer a terminal, and bytes that are no UTF-8, are shown like \x1B.
std::string ToText(const Report &report);

// One JSON value without a line end; compact, or indented. Bytes that are no UTF-8 are shown like \xFF.
std::string ToJson(const Report &report, bool isIndented);

// The text without control characters and without bytes that are no UTF-8, which become \x and two digits.
std::string Printable(const std::string &text);

// True when all of the text is UTF-8 without zero bytes, so that JSON holds it as it is.
bool IsWhole(const std::string &text);

// "85 68 65 6C", and "0A" or "A1CD": upper-case hexadecimal digits.
std::string ToHex(const std::string &bytes);
std::string ToHex(uint32_t value, int digits);

#endif  // TOOLS_REPORT_H
