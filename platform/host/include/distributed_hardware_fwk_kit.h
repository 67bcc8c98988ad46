// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Distributed hardware SDK on the host: passes the messages published on a topic to the listeners of that topic in the
/// same process. The registrations belong to the process: every kit object reaches the listeners that were registered
/// through any other, and they outlive the object. All functions are thread-safe and may be called from OnMessage.

#ifndef HOST_DISTRIBUTED_HARDWARE_FWK_KIT_H
#define HOST_DISTRIBUTED_HARDWARE_FWK_KIT_H

#include <cstdint>
#include <string>

#include "device_type.h"
#include "ipublisher_listener.h"
#include "refbase.h"

namespace OHOS::DistributedHardware {

/// Publishes messages and registers listeners.
class DistributedHardwareFwkKit final {
public:
    DistributedHardwareFwkKit();
    ~DistributedHardwareFwkKit();  // NOLINT(performance-trivially-destructible): replaceable, as all functions here

    /// Adds a listener to a topic, and keeps it alive while it is registered. Returns 0, or -1 for TOPIC_MIN, a null
    /// listener or a listener that is already registered for the topic.
    int32_t RegisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener);

    /// Removes a listener from a topic. Returns 0, or -1 if it is not registered for the topic. A message that another
    /// thread is publishing at the same time may still reach it.
    int32_t UnregisterPublisherListener(const DHTopic topic, sptr<IPublisherListener> listener);

    /// Calls every listener of the topic, in the order of registration, in the calling thread. Returns 0, with or
    /// without listeners, or -1 for TOPIC_MIN.
    int32_t PublishMessage(const DHTopic topic, const std::string &message);
};

}  // namespace OHOS::DistributedHardware

#endif  // HOST_DISTRIBUTED_HARDWARE_FWK_KIT_H
