// SPDX-License-Identifier: Apache-2.0

#include "distributed_hardware_fwk_kit.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace OHOS::DistributedHardware {

namespace {

using Listeners = std::vector<sptr<IPublisherListener>>;

// A list is replaced, never modified, so that a publisher can iterate over its copy without the lock.
struct Registry {
    std::mutex mutex;
    std::map<DHTopic, std::shared_ptr<const Listeners>> listeners;

    Listeners Copy(DHTopic topic) const
    {
        const auto found = listeners.find(topic);
        return found == listeners.end() ? Listeners() : *found->second;
    }
    void Replace(DHTopic topic, Listeners replacement)
    {
        auto list = std::make_shared<const Listeners>(std::move(replacement));
        listeners.insert_or_assign(topic, std::move(list));
    }
};

Registry &ProcessRegistry()
{
    static Registry &registry = *new Registry;  // never destroyed: threads may publish while the process exits
    return registry;
}

}  // namespace

DistributedHardwareFwkKit::DistributedHardwareFwkKit() = default;
DistributedHardwareFwkKit::~DistributedHardwareFwkKit() = default;

int32_t DistributedHardwareFwkKit::RegisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener)
{
    if (topic == DHTopic::TOPIC_MIN || listener == nullptr) {
        return -1;
    }
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    Listeners listeners = registry.Copy(topic);
    if (std::find(listeners.begin(), listeners.end(), listener) != listeners.end()) {
        return -1;
    }
    listeners.push_back(listener);  // a copy: the argument keeps the listener alive until the lock is released
    registry.Replace(topic, std::move(listeners));
    return 0;
}

int32_t DistributedHardwareFwkKit::UnregisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener)
{
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    Listeners listeners = registry.Copy(topic);
    const auto position = std::find(listeners.begin(), listeners.end(), listener);
    if (position == listeners.end()) {
        return -1;
    }
    listeners.erase(position);
    registry.Replace(topic, std::move(listeners));
    return 0;
}

int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic topic, const std::string &message)
{
    if (topic == DHTopic::TOPIC_MIN) {
        return -1;
    }
    std::shared_ptr<const Listeners> listeners;
    {
        Registry &registry = ProcessRegistry();
        const std::lock_guard<std::mutex> lock(registry.mutex);
        const auto found = registry.listeners.find(topic);
        if (found == registry.listeners.end()) {
            return 0;
        }
        listeners = found->second;
    }
    // Without the lock: a listener may register, unregister or publish.
    for (const sptr<IPublisherListener> &listener : *listeners) {
        listener->OnMessage(topic, message);
    }
    return 0;
}

}  // namespace OHOS::DistributedHardware
