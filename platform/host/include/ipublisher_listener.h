// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Topics of the distributed hardware framework, and the interface of their listeners.

#ifndef HOST_IPUBLISHER_LISTENER_H
#define HOST_IPUBLISHER_LISTENER_H

#include <cstdint>
#include <string>

#include "refbase.h"

namespace OHOS::DistributedHardware {

/// Every value above TOPIC_MIN is a topic. The names above 1 differ between releases of the platform: code that is also
/// built for a device should use the values.
enum class DHTopic : uint32_t {
    TOPIC_MIN = 0,
    TOPIC_START_DSCREEN = 1,
    TOPIC_STOP_DSCREEN = 2,
    TOPIC_START_DCAMERA = 3,
    TOPIC_STOP_DCAMERA = 4,
    TOPIC_START_DAUDIO = 5,
    TOPIC_STOP_DAUDIO = 6,
};

/// Receives the messages of the topics that it is registered for.
class IPublisherListener : public virtual RefBase {
public:
    ~IPublisherListener() override = default;

    /// Called in the publishing thread; several threads may call it at the same time. May use the kit.
    virtual void OnMessage(const DHTopic topic, const std::string &message) = 0;
};

}  // namespace OHOS::DistributedHardware

#endif  // HOST_IPUBLISHER_LISTENER_H
