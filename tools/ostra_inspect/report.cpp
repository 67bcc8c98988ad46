// SPDX-License-Identifier: Apache-2.0

#include "report.h"

#include <cJSON.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr char INDENT[] = "  ";
constexpr char LABEL_GAP[] = "  ";

using JsonTree = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

// The length of the UTF-8 character at the start of the text; 0 when there is none.
size_t CharacterLength(std::string_view text)
{
    struct Form {
        uint8_t mask;
        uint8_t lead;
        uint32_t least;  // a smaller value has a shorter form
    };
    constexpr Form forms[] = {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
    const auto first = static_cast<uint8_t>(text.front());
    for (size_t length = 1; length <= std::size(forms); ++length) {
        const Form &form = forms[length - 1];
        if ((first & form.mask) != form.lead) {
            continue;
        }
        if (text.size() < length) {
            return 0;
        }
        uint32_t value = first & static_cast<uint8_t>(~form.mask);
        for (size_t i = 1; i < length; ++i) {
            const auto next = static_cast<uint8_t>(text[i]);
            if ((next & 0xC0) != 0x80) {
                return 0;
            }
            value = value << 6 | (next & 0x3F);
        }
        const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
        return value < form.least || value > 0x10FFFF || isSurrogate ? 0 : length;
    }
    return 0;
}

// True for the control characters of ASCII, and for those that UTF-8 writes as C2 80 to C2 9F.
bool IsControl(std::string_view character)
{
    const auto first = static_cast<uint8_t>(character.front());
    if (character.size() == 1) {
        return first < 0x20 || first == 0x7F;
    }
    return first == 0xC2 && static_cast<uint8_t>(character[1]) < 0xA0;
}

template <typename Predicate>
std::string Escaped(const std::string &text, Predicate isEscaped)
{
    std::string escaped;
    for (std::string_view rest = text; !rest.empty();) {
        const size_t length = CharacterLength(rest);
        const std::string_view character = rest.substr(0, std::max<size_t>(length, 1));
        rest.remove_prefix(character.size());
        if (length > 0 && !isEscaped(character)) {
            escaped += character;
            continue;
        }
        for (const char byte : character) {
            escaped += "\\x" + ToHex(static_cast<uint8_t>(byte), 2);
        }
    }
    return escaped;
}

std::string ForJson(const std::string &text)
{
    return Escaped(text, [](std::string_view character) { return character.front() == '\0'; });
}

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.10g", value);
    return text;
}

std::string ValueText(const Report::Value &value)
{
    if (const auto *flag = std::get_if<bool>(&value)) {
        return *flag ? "yes" : "no";
    }
    if (const auto *integer = std::get_if<int64_t>(&value)) {
        return std::to_string(*integer);
    }
    if (const auto *real = std::get_if<double>(&value)) {
        return Number(*real);
    }
    const auto *text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        return "none";
    }
    return text->empty() ? "(empty)" : Printable(*text);
}

std::string Label(const Report &report)
{
    std::string label = Printable(report.key);
    std::replace(label.begin(), label.end(), '_', ' ');
    return label;
}

void AppendBlock(std::string &text, const std::string &indent, const std::string &block)
{
    for (size_t begin = 0; begin < block.size();) {
        const size_t end = std::min(block.find('\n', begin), block.size());
        text += indent + block.substr(begin, end - begin) + "\n";
        begin = end + 1;
    }
}

// Multi-line texts are the tool's own and printed as they are.
void AppendText(std::string &text, const Report &report, const std::string &indent)
{
    size_t width = 0;
    for (const Report &member : report.members) {
        width = std::max(width, Label(member).size());
    }
    for (const Report &member : report.members) {
        std::string label = Label(member);
        const bool isParent = member.shape == Report::Shape::OBJECT || member.shape == Report::Shape::LIST;
        if (member.shown.find('\n') != std::string::npos) {
            text += indent + label + "\n";
            AppendBlock(text, indent + INDENT, member.shown);
        } else if (!member.shown.empty() || !isParent) {
            const std::string shown = member.shown.empty() ? ValueText(member.value) : Printable(member.shown);
            label.resize(width, ' ');
            text.append(indent).append(label).append(width == 0 ? "" : LABEL_GAP).append(shown).append("\n");
        } else if (!member.members.empty()) {
            text += indent + label + "\n";
            AppendText(text, member, indent + INDENT);
        }
    }
}

JsonTree Owned(cJSON *tree)
{
    if (tree == nullptr) {
        throw std::bad_alloc();
    }
    return {tree, &cJSON_Delete};
}

JsonTree ToTree(const Report &report)
{
    if (report.shape == Report::Shape::VALUE) {
        if (const auto *flag = std::get_if<bool>(&report.value)) {
            return Owned(cJSON_CreateBool(*flag ? 1 : 0));
        }
        if (const auto *text = std::get_if<std::string>(&report.value)) {
            return Owned(cJSON_CreateString(ForJson(*text).c_str()));
        }
        const bool isNone = std::holds_alternative<std::monostate>(report.value);
        return Owned(isNone ? cJSON_CreateNull() : cJSON_CreateRaw(ValueText(report.value).c_str()));
    }
    const bool isList = report.shape == Report::Shape::LIST;
    JsonTree tree = Owned(isList ? cJSON_CreateArray() : cJSON_CreateObject());
    for (const Report &member : report.members) {
        if (member.shape == Report::Shape::PICTURE) {
            continue;
        }
        cJSON *const item = ToTree(member).release();
        if (isList) {
            cJSON_AddItemToArray(tree.get(), item);
        } else {
            cJSON_AddItemToObject(tree.get(), ForJson(member.key).c_str(), item);
        }
    }
    return tree;
}

}  // namespace

Report::Report(std::string name, Shape form) : key(std::move(name)), shape(form)
{
}

Report Report::Of(std::string name, Value content, std::string text)
{
    Report report(std::move(name), Shape::VALUE);
    report.value = std::move(content);
    report.shown = std::move(text);
    return report;
}

void Report::Add(Report member)
{
    members.push_back(std::move(member));
}

void Report::Add(std::string name, Value content, std::string text)
{
    Add(Of(std::move(name), std::move(content), std::move(text)));
}

const Report *Report::Find(const std::string &name) const
{
    const auto found =
        std::find_if(members.begin(), members.end(), [&name](const Report &member) { return member.key == name; });
    return found == members.end() ? nullptr : &*found;
}

std::string ToText(const Report &report)
{
    std::string text;
    AppendText(text, report, "");
    return text;
}

std::string ToJson(const Report &report, bool isIndented)
{
    const JsonTree tree = ToTree(report);
    const std::unique_ptr<char, decltype(&cJSON_free)> text(
        isIndented ? cJSON_Print(tree.get()) : cJSON_PrintUnformatted(tree.get()), &cJSON_free);
    if (text == nullptr) {
        throw std::bad_alloc();
    }
    return text.get();
}

std::string Printable(const std::string &text)
{
    return Escaped(text, IsControl);
}

bool IsWhole(const std::string &text)
{
    return ForJson(text) == text;
}

std::string ToHex(const std::string &bytes)
{
    std::string text;
    for (const char byte : bytes) {
        text += (text.empty() ? "" : " ") + ToHex(static_cast<uint8_t>(byte), 2);
    }
    return text;
}

std::string ToHex(uint32_t value, int digits)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%0*X", digits, value);
    return text;
}
