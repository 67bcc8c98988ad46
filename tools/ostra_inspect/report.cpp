// SPDX-License-Identifier: Apache-2.0

#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

constexpr char COLUMN_SEPARATOR[] = "  ";  // also the indentation of a level

struct Character {
    size_t length = 0;  // in bytes; 0 if the string does not begin with UTF-8
    char32_t value = 0;
};

Character Decode(std::string_view string)
{
    const auto lead = static_cast<uint8_t>(string.front());
    if (lead < 0x80) {
        return {1, lead};
    }
    constexpr char32_t minima[] = {0x80, 0x800, 0x10000};  // of 2, 3 and 4 bytes; smaller values are overlong
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || string.size() < length) {
        return {};
    }
    char32_t value = lead & (0x7FU >> length);
    for (const char next : string.substr(1, length - 1)) {
        if ((static_cast<uint8_t>(next) & 0xC0) != 0x80) {
            return {};
        }
        value = value << 6 | (static_cast<uint8_t>(next) & 0x3F);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    return value < minima[length - 2] || value > 0x10FFFF || isSurrogate ? Character() : Character{length, value};
}

// Returns true for control characters, line separators, and characters that change the writing direction.
bool IsControl(char32_t value)
{
    constexpr std::pair<char32_t, char32_t> ranges[] = {{0, 0x1F},        {0x7F, 0x9F},     {0x61C, 0x61C},
                                                        {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [value](const auto &range) { return value >= range.first && value <= range.second; });
}

// Escapes each byte that is not valid UTF-8, and the characters for which `isEscaped` is true, as \x and digits, or as
// \u for JSON.
template <typename Predicate>
std::string EscapeIf(std::string_view string, Predicate isEscaped, bool isJson = false)
{
    std::string escaped;
    while (!string.empty()) {
        const Character character = Decode(string);
        const std::string_view bytes = string.substr(0, std::max<size_t>(character.length, 1));
        string.remove_prefix(bytes.size());
        if (character.length > 0 && !isEscaped(character.value)) {
            escaped += bytes;
        } else if (isJson) {
            escaped += "\\u" + ToHex(static_cast<uint32_t>(character.value), 4);
        } else {
            for (const char byte : bytes) {
                escaped += "\\x" + ToHex(static_cast<uint8_t>(byte), 2);
            }
        }
    }
    return escaped;
}

std::string EscapeForJson(std::string_view string)
{
    return EscapeIf(string, [](char32_t character) { return character == 0; });
}

std::string PrintJson(const cJSON *value, bool isIndented)
{
    const JsonString json(isIndented ? cJSON_Print(value) : cJSON_PrintUnformatted(value));
    return json == nullptr ? "" : json.get();
}

std::string FormatLabel(const cJSON *member)
{
    std::string label = member->string;
    std::replace(label.begin(), label.end(), '_', ' ');
    return label;
}

// "key value  key value" on one line.
std::string FormatElement(const cJSON *element)
{
    if (cJSON_IsObject(element) == 0) {
        return FormatValue(element);
    }
    std::string row;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, element)
    {
        row += (row.empty() ? "" : COLUMN_SEPARATOR) + FormatLabel(member) + " " + FormatValue(member);
    }
    return row;
}

}  // namespace

void AddString(cJSON *object, const char *key, std::string_view value)
{
    cJSON_AddStringToObject(object, key, EscapeForJson(value).c_str());
}

void AddNumber(cJSON *object, const char *key, int64_t value)
{
    cJSON_AddNumberToObject(object, key, static_cast<double>(value));
}

void AddCopy(cJSON *object, const char *key, const cJSON *value)
{
    if (cJSON_IsString(value) != 0) {
        AddString(object, key, value->valuestring);
    } else if (cJSON_IsNumber(value) != 0 && std::isinf(value->valuedouble)) {  // which cJSON prints as null
        AddString(object, key, value->valuedouble > 0 ? "infinity" : "-infinity");
    } else {
        cJSON_AddItemToObject(object, key, value == nullptr ? cJSON_CreateNull() : cJSON_Duplicate(value, 0));
    }
}

List::List(cJSON *report, std::string key) : report_(report), list_(cJSON_CreateArray()), key_(std::move(key))
{
}

List::~List()
{
    cJSON_AddItemToObject(report_, key_.c_str(), list_.release());
    if (size_ > MAX_LISTED) {
        AddNumber(report_, (key_ + "_omitted").c_str(), static_cast<int64_t>(size_ - MAX_LISTED));
    }
}

void List::Add(const std::string &value)
{
    if (!value.empty() && ++size_ <= MAX_LISTED) {
        cJSON_AddItemToArray(list_.get(), cJSON_CreateString(EscapeForJson(value).c_str()));
    }
}

cJSON *List::AddObject()
{
    if (++size_ > MAX_LISTED) {
        return nullptr;
    }
    cJSON *const element = cJSON_CreateObject();
    cJSON_AddItemToArray(list_.get(), element);
    return element;
}

std::string ToText(const cJSON *report, const std::string &indent)
{
    std::string text;
    size_t width = 0;
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, report)
    {
        width = std::max(width, member->string == nullptr ? 0 : std::strlen(member->string));
    }
    cJSON_ArrayForEach(member, report)
    {
        if (member->string == nullptr) {
            text += indent + FormatElement(member) + "\n";
        } else if (cJSON_IsArray(member) == 0 && cJSON_IsObject(member) == 0) {
            text += indent + PadRight(FormatLabel(member), width) + COLUMN_SEPARATOR + FormatValue(member) + "\n";
        } else if (member->child != nullptr) {
            text += indent + FormatLabel(member) + "\n";
            text += ToText(member, indent + COLUMN_SEPARATOR);
        }
    }
    return text;
}

std::string FormatValue(const cJSON *value)
{
    const char *const string = cJSON_GetStringValue(value);
    if (string != nullptr) {
        return *string == '\0' ? "(empty)" : Escape(string);
    }
    if (value == nullptr || cJSON_IsNull(value) != 0) {
        return "not set";
    }
    return cJSON_IsBool(value) != 0 ? (cJSON_IsTrue(value) != 0 ? "yes" : "no") : PrintJson(value, false);
}

std::string ToJson(const cJSON *report, bool isIndented)
{
    // cJSON escapes the control characters below U+0020, and uses tabs and newlines for indentation.
    const auto isEscaped = [](char32_t character) {
        return character >= 0x20 && IsControl(character);
    };
    return EscapeIf(PrintJson(report, isIndented), isEscaped, true);
}

std::string Escape(std::string_view string)
{
    return EscapeIf(string, IsControl);
}

std::string PadRight(std::string string, size_t width)
{
    string.resize(std::max(string.size(), width), ' ');
    return string;
}

std::string ToHex(std::string_view bytes)
{
    std::string hex;
    hex.reserve(bytes.size() * 3);
    for (const char byte : bytes) {
        hex += (hex.empty() ? "" : " ") + ToHex(static_cast<uint8_t>(byte), 2);
    }
    return hex;
}

std::string ToHex(uint32_t value, int digits)
{
    char hex[16];
    std::snprintf(hex, sizeof(hex), "%0*X", digits, value);
    return hex;
}
