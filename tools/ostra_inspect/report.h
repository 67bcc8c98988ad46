// SPDX-License-Identifier: Apache-2.0
//
// A report is a JSON object, printed as JSON or as human-readable rows. Strings from the input are escaped, so that
// they cannot control a terminal or add rows.
//
//     JsonTree report(cJSON_CreateObject());
//     AddString(report.get(), "header", "85");
//     List warnings(report.get(), "warnings");
//     warnings.Add("overlong encoding");

#ifndef TOOLS_REPORT_H
#define TOOLS_REPORT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "json_object.h"

using OHOS::DistributedHardware::OstraAdapter::JsonString;
using OHOS::DistributedHardware::OstraAdapter::JsonTree;

/// Adds a string. NUL and bytes that are not UTF-8 become \x and two digits.
void AddString(cJSON *object, const char *key, std::string_view value);
void AddNumber(cJSON *object, const char *key, int64_t value);

/// Adds a copy of a string, number or bool, or null if `value` is null.
void AddCopy(cJSON *object, const char *key, const cJSON *value);

/// A list that adds itself to a report when it is destroyed. To bound the memory of a report, it keeps the first
/// MAX_LISTED elements, and adds the number of the others as KEY_omitted.
class List {
public:
    List(cJSON *report, std::string key);
    ~List();
    List(const List &) = delete;
    List &operator=(const List &) = delete;

    /// Appends a string, unless it is empty.
    void Add(const std::string &value);

    /// Appends an empty object and returns it, or null if the list is full; cJSON ignores members added to null.
    cJSON *AddObject();

private:
    static constexpr size_t MAX_LISTED = 10000;

    cJSON *report_;
    JsonTree list_;
    std::string key_;
    size_t size_ = 0;
};

/// Returns a row for each value and for each element of a list, each after `indent`; no row for an empty list.
std::string ToText(const cJSON *report, const std::string &indent = {});

/// Formats one value of a row.
std::string FormatValue(const cJSON *value);

/// Returns compact or indented JSON without a final newline.
std::string ToJson(const cJSON *report, bool isIndented);

/// Escapes control characters, characters that change the writing direction, and bytes that are not valid UTF-8 as \x
/// and two digits for each byte.
std::string Escape(std::string_view string);

/// Returns the string followed by spaces up to `width` bytes.
std::string PadRight(std::string string, size_t width);

/// Returns upper-case hexadecimal digits: "85 68 65", or a number with at least `digits` of them.
std::string ToHex(std::string_view bytes);
std::string ToHex(uint32_t value, int digits);

#endif  // TOOLS_REPORT_H
