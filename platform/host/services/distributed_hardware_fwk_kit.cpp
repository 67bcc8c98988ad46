// SPDX-License-Identifier: Apache-2.0

#include "distributed_hardware_fwk_kit.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace OHOS::DistributedHardware {

namespace {

using Listeners = std::vector<sptr<IPublisherListener>>;

struct Registry {
    std::mutex mutex;
    std::map<DHTopic, Listeners> listeners;
};

Registry &ProcessRegistry()
{
    static Registry &registry = *new Registry;  // never destroyed: threads may publish during exit
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
    Listeners &listeners = registry.listeners[topic];
    if (std::find(listeners.begin(), listeners.end(), listener) != listeners.end()) {
        return -1;
    }
    listeners.push_back(std::move(listener));
    return 0;
}

int32_t DistributedHardwareFwkKit::UnregisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener)
{
    Registry &registry = ProcessRegistry();
    const std::lock_guard<std::mutex> lock(registry.mutex);
    const auto found = registry.listeners.find(topic);
    if (found == registry.listeners.end()) {
        return -1;
    }
    Listeners &listeners = found->second;
    const auto position = std::find(listeners.begin(), listeners.end(), listener);
    if (position == listeners.end()) {
        return -1;
    }
    listeners.erase(position);
    return 0;
}

int32_t DistributedHardwareFwkKit::PublishMessage(const DHTopic topic, const std::string &message)
{
    if (topic == DHTopic::TOPIC_MIN) {
        return -1;
    }
    Registry &registry = ProcessRegistry();
    std::unique_lock<std::mutex> lock(registry.mutex);
    const auto found = registry.listeners.find(topic);
    const Listeners listeners = found == registry.listeners.end() ? Listeners() : found->second;
    lock.unlock();  // a listener may register, unregister or publish
    for (const sptr<IPublisherListener> &listener : listeners) {
        listener->OnMessage(topic, message);
    }
    return 0;
}

}  // namespace OHOS::DistributedHardware
