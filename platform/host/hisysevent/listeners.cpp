// SPDX-License-Identifier: Apache-2.0

#include "hisysevent_manager.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "hisysevent/event_delivery.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr int32_t NULL_LISTENER = -1;
constexpr int32_t INVALID_STATE = -2;
constexpr int32_t UNSUPPORTED_RULE = -3;

// An empty name in a rule matches every name.
bool IsMatch(const std::string &pattern, const std::string &name)
{
    return pattern.empty() || pattern == name;
}

struct Entry {
    bool Matches(const std::string &domain, const std::string &eventName, uint32_t type) const
    {
        return std::any_of(rules.begin(), rules.end(), [&](const ListenerRule &rule) {
            return IsMatch(rule.GetDomain(), domain) && IsMatch(rule.GetEventName(), eventName) &&
                   rule.GetTag().empty() && (rule.GetEventType() == 0 || rule.GetEventType() == type);
        });
    }

    std::shared_ptr<HiSysEventListener> listener;
    std::vector<ListenerRule> rules;
};

struct Registry {
    std::vector<Entry>::iterator Find(const std::shared_ptr<HiSysEventListener> &listener)
    {
        return std::find_if(entries.begin(), entries.end(),
                            [&](const Entry &entry) { return entry.listener == listener; });
    }

    std::mutex mutex;
    std::vector<Entry> entries;
};

Registry &ProcessRegistry()
{
    static Registry &registry = *new Registry;  // never destroyed: threads may write during exit
    return registry;
}

}  // namespace

int32_t HiSysEventManager::AddListener(std::shared_ptr<HiSysEventListener> listener, std::vector<ListenerRule> &rules)
{
    if (listener == nullptr) {
        return NULL_LISTENER;
    }
    if (!std::all_of(rules.begin(), rules.end(),
                     [](const ListenerRule &rule) { return rule.GetRuleType() == RuleType::WHOLE_WORD; })) {
        return UNSUPPORTED_RULE;
    }
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    if (registry.Find(listener) != registry.entries.end()) {
        return INVALID_STATE;
    }
    registry.entries.push_back({std::move(listener), rules});
    return 0;
}

int32_t HiSysEventManager::RemoveListener(std::shared_ptr<HiSysEventListener> listener)
{
    if (listener == nullptr) {
        return NULL_LISTENER;
    }
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    const auto found = registry.Find(listener);
    if (found == registry.entries.end()) {
        return INVALID_STATE;
    }
    registry.entries.erase(found);
    return 0;
}

}  // namespace OHOS::HiviewDFX

namespace ostra::host {

using namespace OHOS::HiviewDFX;

std::vector<Listener> FindListeners(const std::string &domain, const std::string &eventName, int type)
{
    std::vector<Listener> listeners;
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for (const Entry &entry : registry.entries) {
        if (entry.Matches(domain, eventName, static_cast<uint32_t>(type))) {
            listeners.push_back(entry.listener);
        }
    }
    return listeners;
}

}  // namespace ostra::host
