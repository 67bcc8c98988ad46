// SPDX-License-Identifier: Apache-2.0

#include "members.h"

#include <strings.h>

#include <algorithm>
#include <utility>

#include "json_reading.h"
#include "ostra_constants.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

namespace {

constexpr const char *KIND_NAMES[] = {"a text", "a number", "true or false", "an object", "an array"};
constexpr char WHITE_SPACE[] = " \t\r\n";

bool IsOfKind(const cJSON *item, MemberKind kind)
{
    switch (kind) {
        case MemberKind::TEXT:
            return cJSON_IsString(item) != 0;
        case MemberKind::NUMBER:
            return cJSON_IsNumber(item) != 0;
        case MemberKind::TRUTH:
            return cJSON_IsBool(item) != 0;
        case MemberKind::OBJECT:
            return cJSON_IsObject(item) != 0;
        case MemberKind::ARRAY:
            return cJSON_IsArray(item) != 0;
    }
    return false;
}

}  // namespace

Document ParseDocument(const std::string &text, Report &warnings)
{
    if (IsNestedTooDeep(text.c_str())) {
        return {nullptr, "the JSON nests deeper than " + std::to_string(MAX_JSON_NESTING) + " levels"};
    }
    const char *end = nullptr;
    JsonTree root(cJSON_ParseWithOpts(text.c_str(), &end, 0));
    // Where parsing failed, the end is the place; cJSON is one byte past it at a name without quotation mark.
    const auto length = static_cast<size_t>(end - text.c_str());
    if (root == nullptr) {
        return {nullptr, "the JSON breaks near offset " + std::to_string(length) + " of " +
                             std::to_string(text.size()) + " bytes"};
    }
    if (text.find_first_not_of(WHITE_SPACE, length) != std::string::npos) {
        warnings.Add("", "what follows the document is ignored: " + std::to_string(text.size() - length) + " bytes");
    }
    if (cJSON_IsObject(root.get()) == 0) {
        warnings.Add("", "the document is " + KindOf(root.get()) + ", not an object: nothing is read from it");
    }
    return {std::move(root), ""};
}

void Conclude(Finding &finding, const std::string &document, int32_t result, const std::string &flaw)
{
    finding.log = TakeLog();
    finding.report.Add("result", result);
    if (result != OSTRA_JSON_SUCCESS) {
        finding.refusal = "no " + document + " (" + std::to_string(result) +
                          "): " + Reasons(finding.log, "not enough memory") + (flaw.empty() ? "" : " (" + flaw + ")");
    }
}

const cJSON *TakenMember(const cJSON *object, const MemberRule &rule)
{
    const cJSON *item = cJSON_GetObjectItem(object, rule.name);
    return IsOfKind(item, rule.kind) ? item : nullptr;
}

void AddIgnored(Report &ignored, const std::string &member, const std::string &reason)
{
    Report entry;
    entry.Add("member", member);
    entry.Add("reason", reason);
    entry.shown = member + ": " + reason;
    ignored.Add(entry);
}

void AddIgnored(Report &ignored, const cJSON *object, const MemberRules &rules, const std::string &place)
{
    if (cJSON_IsObject(object) == 0) {
        return;
    }
    const cJSON *member = nullptr;
    cJSON_ArrayForEach(member, object)
    {
        const auto rule = std::find_if(rules.begin(), rules.end(), [member](const MemberRule &candidate) {
            return strcasecmp(candidate.name, member->string) == 0;
        });
        const std::string name = place + member->string;
        if (rule == rules.end()) {
            AddIgnored(ignored, name, "unknown");
        } else if (cJSON_GetObjectItem(object, rule->name) != member) {
            AddIgnored(ignored, name, "repeated, the first one counts");
        } else if (!IsOfKind(member, rule->kind)) {
            AddIgnored(ignored, name, KindOf(member) + ", not " + KIND_NAMES[static_cast<int>(rule->kind)]);
        }
    }
}

void AddNumberWarning(Report &warnings, const cJSON *number, const std::string &member)
{
    if (cJSON_IsNumber(number) == 0 || number->valuedouble == number->valueint) {
        return;
    }
    const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(number), &cJSON_free);
    warnings.Add("", member + ": " + (text == nullptr ? "the number" : text.get()) + " is read as " +
                         std::to_string(number->valueint));
}

std::string KindOf(const cJSON *item)
{
    for (const MemberKind kind :
         {MemberKind::TEXT, MemberKind::NUMBER, MemberKind::TRUTH, MemberKind::OBJECT, MemberKind::ARRAY}) {
        if (IsOfKind(item, kind)) {
            return KIND_NAMES[static_cast<int>(kind)];
        }
    }
    return "null";
}
