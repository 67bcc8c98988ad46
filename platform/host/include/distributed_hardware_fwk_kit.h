// SPDX-License-Identifier: Apache-2.0
//
// Distributed hardware SDK on the host: hands the messages published on a topic to the listeners of that topic, within
// the process. The registrations belong to the process, so every kit object reaches the listeners registered through
// any other, and they outlive the object. All functions may be called from any thread at once, and from OnMessage.

#ifndef HOST_DISTRIBUTED_HARDWARE_FWK_KIT_H
#define HOST_DISTRIBUTED_HARDWARE_FWK_KIT_H

#include <cstdint>
#include <string>

#include "device_type.h"
#include "ipublisher_listener.h"
#include "refbase.h"

namespace OHOS::DistributedHardware {

// Access to the framework: publishes messages, and registers who listens to them.
class DistributedHardwareFwkKit final {
public:
    DistributedHardwareFwkKit();
    ~DistributedHardwareFwkKit();  // NOLINT(performance-trivially-destructible): replaceable, as all functions here

    // Adds a listener to a topic and keeps it alive while registered. Returns 0, or -1 for TOPIC_MIN, a null listener
    // or one that the topic has already.
    int32_t RegisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener);

    // Takes a listener off a topic. Returns 0, or -1 when the topic does not have it. A message that another thread is
    // publishing meanwhile may still reach it.
    int32_t UnregisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener);

    // Calls every listener that the topic has at this moment, in the order of registration, in the calling thread.
    // Returns 0, with or without listeners, or -1 for TOPIC_MIN.
    int32_t PublishMessage(const DHTopic topic, const std::string &message);
};

}  // namespace OHOS::DistributedHardware

#endif  // HOST_DISTRIBUTED_HARDWARE_FWK_KIT_H
