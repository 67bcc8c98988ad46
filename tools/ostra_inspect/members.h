// SPDX-License-Identifier: Apache-2.0
//
// Which members of a JSON document its reader takes, and which it ignores and why.

#ifndef TOOLS_MEMBERS_H
#define TOOLS_MEMBERS_H

#include <string>
#include <vector>

#include "json_object.h"
#include "subjects.h"

using OHOS::DistributedHardware::OstraAdapter::JsonTree;

enum class MemberKind { TEXT, NUMBER, TRUTH, OBJECT, ARRAY };

struct MemberRule {
    const char *name;
    MemberKind kind;
};
using MemberRules = std::vector<MemberRule>;

struct Document {
    JsonTree root;     // null when the library counts the text as no JSON
    std::string flaw;  // then why: how deep it nests, or where it breaks
};

// The document of the text. What a reader does not look at is added to the warnings: what follows the document or a
// zero byte, and a document that is no object.
Document ParseDocument(const std::string &text, Report &warnings);

// Notes how the library's reader ended: its result, what it logged and, when it refused the document, why; `flaw` is
// what was found wrong with the text.
void Conclude(Finding &finding, const std::string &document, int32_t result, const std::string &flaw);

// The member that a reader takes: the first of its name, without regard to case, if it is of the right kind; else null.
const cJSON *TakenMember(const cJSON *object, const MemberRule &rule);

// Adds to `ignored` each member that no rule takes, with the reason. `place` stands before the names.
void AddIgnored(Report &ignored, const cJSON *object, const MemberRules &rules, const std::string &place = {});
void AddIgnored(Report &ignored, const std::string &member, const std::string &reason);

// Adds a warning when the number loses its fraction or its size as a signed 32-bit value.
void AddNumberWarning(Report &warnings, const cJSON *number, const std::string &member);

// "a text", "a number" and so on.
std::string KindOf(const cJSON *item);

#endif  // TOOLS_MEMBERS_H
