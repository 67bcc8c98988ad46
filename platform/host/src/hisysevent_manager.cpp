// SPDX-License-Identifier: Apache-2.0

#include "hisysevent_manager.h"

#include <algorithm>
#include <charconv>
#include <mutex>
#include <string_view>
#include <utility>

#include "hisysevent_delivery.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr int NO_SUCH_KEY = -2;
constexpr int OTHER_TYPE = -3;

constexpr int32_t NULL_LISTENER = -1;
constexpr int32_t WRONG_STATE = -2;

// Whether the text of a rule matches a name.
bool IsMatch(const std::string &text, const std::string &name)
{
    return text.empty() || text == name;
}

struct Entry {
    bool Matches(const std::string &domain, const std::string &eventName) const
    {
        return std::any_of(rules.begin(), rules.end(), [&](const ListenerRule &rule) {
            return IsMatch(rule.GetDomain(), domain) && IsMatch(rule.GetEventName(), eventName);
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
    static Registry &registry = *new Registry;  // never destroyed: threads may write until the very end
    return registry;
}

}  // namespace

HiSysEventRecord::HiSysEventRecord(std::shared_ptr<const Content> content) : content_(std::move(content))
{
}

std::string HiSysEventRecord::AsJson() const
{
    return content_->json;
}

std::string HiSysEventRecord::GetDomain() const
{
    std::string domain;
    GetParamValue(DOMAIN_FIELD, domain);
    return domain;
}

std::string HiSysEventRecord::GetEventName() const
{
    std::string eventName;
    GetParamValue(NAME_FIELD, eventName);
    return eventName;
}

HiSysEvent::EventType HiSysEventRecord::GetEventType() const
{
    int64_t type = 0;
    GetParamValue(TYPE_FIELD, type);
    return static_cast<HiSysEvent::EventType>(type);
}

void HiSysEventRecord::GetParamNames(std::vector<std::string> &params) const
{
    params.clear();
    const cJSON *field = cJSON_GetArrayItem(content_->fields.get(), PLATFORM_FIELD_COUNT);
    for (; field != nullptr; field = field->next) {
        params.emplace_back(field->string);
    }
}

int HiSysEventRecord::GetParamValue(const std::string &param, int64_t &value) const
{
    const cJSON *field = cJSON_GetObjectItemCaseSensitive(content_->fields.get(), param.c_str());
    if (field == nullptr) {
        return NO_SUCH_KEY;
    }
    if (cJSON_IsRaw(field) == 0) {
        return OTHER_TYPE;
    }
    const std::string_view digits(field->valuestring);
    int64_t parsed = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), parsed).ec != std::errc()) {
        return OTHER_TYPE;
    }
    value = parsed;
    return 0;
}

int HiSysEventRecord::GetParamValue(const std::string &param, std::string &value) const
{
    const cJSON *field = cJSON_GetObjectItemCaseSensitive(content_->fields.get(), param.c_str());
    if (field == nullptr) {
        return NO_SUCH_KEY;
    }
    if (cJSON_IsString(field) == 0) {
        return OTHER_TYPE;
    }
    value = field->valuestring;
    return 0;
}

int32_t HiSysEventManager::AddListener(std::shared_ptr<HiSysEventListener> listener, std::vector<ListenerRule> &rules)
{
    if (listener == nullptr) {
        return NULL_LISTENER;
    }
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    if (registry.Find(listener) != registry.entries.end()) {
        return WRONG_STATE;
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
        return WRONG_STATE;
    }
    registry.entries.erase(found);
    return 0;
}

std::vector<std::shared_ptr<HiSysEventListener>> FindListeners(const std::string &domain, const std::string &eventName)
{
    std::vector<std::shared_ptr<HiSysEventListener>> listeners;
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    for (const Entry &entry : registry.entries) {
        if (entry.Matches(domain, eventName)) {
            listeners.push_back(entry.listener);
        }
    }
    return listeners;
}

}  // namespace OHOS::HiviewDFX
