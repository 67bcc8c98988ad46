// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Selects the events that a listener receives (hisysevent_manager.h).

#ifndef HOST_HISYSEVENT_RULES_H
#define HOST_HISYSEVENT_RULES_H

#include <cstdint>
#include <string>

#include "rule_type.h"

namespace OHOS::HiviewDFX {

/// Matches the events whose domain, name, tag and type all match. An empty string matches every name, and 0 every type.
/// Tags come from event definitions, which the host does not read: a rule with a tag matches no event.
class ListenerRule {
public:
    ListenerRule(const std::string &domain, const std::string &eventName, const std::string &tag,
                 RuleType ruleType = RuleType::WHOLE_WORD, uint32_t eventType = 0)
        : domain_(domain), eventName_(eventName), tag_(tag), ruleType_(ruleType), eventType_(eventType)
    {
    }

    ListenerRule(const std::string &domain, const std::string &eventName, RuleType ruleType = RuleType::WHOLE_WORD)
        : ListenerRule(domain, eventName, "", ruleType)
    {
    }

    explicit ListenerRule(const std::string &tag, RuleType ruleType = RuleType::WHOLE_WORD)
        : ListenerRule("", "", tag, ruleType)
    {
    }

    std::string GetDomain() const
    {
        return domain_;
    }

    std::string GetEventName() const
    {
        return eventName_;
    }

    std::string GetTag() const
    {
        return tag_;
    }

    RuleType GetRuleType() const
    {
        return ruleType_;
    }

    uint32_t GetEventType() const
    {
        return eventType_;
    }

private:
    std::string domain_;
    std::string eventName_;
    std::string tag_;
    RuleType ruleType_;
    uint32_t eventType_;
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_RULES_H
