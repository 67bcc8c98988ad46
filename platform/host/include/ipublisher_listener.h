// SPDX-License-Identifier: Apache-2.0
//
// Topics of the distributed hardware framework, and the interface that receives what is published on one.

#ifndef HOST_IPUBLISHER_LISTENER_H
#define HOST_IPUBLISHER_LISTENER_H

#include <cstdint>
#include <string>

#include "refbase.h"

namespace OHOS::DistributedHardware {

// A release may use more topics than it names: every value above TOPIC_MIN is a topic. Releases differ in the names
// above 1; sources that also build for a device write those by value.
enum class DHTopic : uint32_t {
    TOPIC_MIN = 0,
    TOPIC_START_DSCREEN = 1,
    TOPIC_STOP_DSCREEN = 2,
    TOPIC_START_DCAMERA = 3,
    TOPIC_STOP_DCAMERA = 4,
    TOPIC_START_DAUDIO = 5,
    TOPIC_STOP_DAUDIO = 6,
};

// Receives what is published on the topics that it is registered for.
class IPublisherListener : public virtual RefBase {
public:
    ~IPublisherListener() override = default;

    // Runs in the publishing thread; several threads may call it at once. May use the kit freely.
    virtual void OnMessage(const DHTopic topic, const std::string &message) = 0;
};

}  // namespace OHOS::DistributedHardware

#endif  // HOST_IPUBLISHER_LISTENER_H
