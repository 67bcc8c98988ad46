// SPDX-License-Identifier: Apache-2.0
//
// Listening to HiSysEvent on the host: hands the events that this process writes to its listeners, in the writing
// thread. All functions may be called from any thread at once, and by a listener.
//
//     std::vector<ListenerRule> rules = {ListenerRule("DOMAIN", "EVENT")};
//     HiSysEventManager::AddListener(listener, rules);

#ifndef HOST_HISYSEVENT_MANAGER_H
#define HOST_HISYSEVENT_MANAGER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hisysevent.h"

namespace OHOS::HiviewDFX {

// One written event; does not change.
class __attribute__((visibility("default"))) HiSysEventRecord {
public:
    struct Content;
    explicit HiSysEventRecord(std::shared_ptr<const Content> content);

    // The whole event, one line without its end.
    std::string AsJson() const;

    std::string GetDomain() const;
    std::string GetEventName() const;
    HiSysEvent::EventType GetEventType() const;

    // Replaces `params` with the event's own keys in the order in which they were written.
    void GetParamNames(std::vector<std::string> &params) const;

    // Reads the value of a key, the event's own or one that the platform adds; of equal keys the first. Returns 0; -2
    // when there is no such key; -3 when its value is of another type. `value` changes only on success. Every integer
    // that fits is an int64_t; bool, floating types and vectors are neither int64_t nor text.
    int GetParamValue(const std::string &param, int64_t &value) const;
    int GetParamValue(const std::string &param, std::string &value) const;

private:
    std::shared_ptr<const Content> content_;
};

class HiSysEventListener {
public:
    virtual ~HiSysEventListener() = default;

    // Called for every event that one of the listener's rules matches, by several threads at once when they write at
    // once. No lock is held meanwhile.
    virtual void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) = 0;

    // Never called on the host, where no service stands in between.
    virtual void OnServiceDied() = 0;
};

// How the texts of a rule are compared: with the whole name.
enum class RuleType { WHOLE_WORD = 1 };

// Matches the events whose domain and name both match. An empty text matches every name.
class ListenerRule {
public:
    ListenerRule(const std::string &domain, const std::string &eventName,
                 RuleType /* ruleType */ = RuleType::WHOLE_WORD)
        : domain_(domain), eventName_(eventName)
    {
    }

    const std::string &GetDomain() const
    {
        return domain_;
    }

    const std::string &GetEventName() const
    {
        return eventName_;
    }

private:
    std::string domain_;
    std::string eventName_;
};

class __attribute__((visibility("default"))) HiSysEventManager {
public:
    // Gives the listener every later event that one of the rules matches, once however many match; without rules it
    // gets none. Returns 0; -1 for null; -2 when the listener is added already, with its rules unchanged.
    static int32_t AddListener(std::shared_ptr<HiSysEventListener> listener, std::vector<ListenerRule> &rules);

    // Returns 0, or -1 for null, -2 when the listener is not added. A write that is under way in another thread may
    // still call the listener afterwards.
    static int32_t RemoveListener(std::shared_ptr<HiSysEventListener> listener);
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_MANAGER_H
