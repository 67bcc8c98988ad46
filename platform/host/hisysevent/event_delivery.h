// SPDX-License-Identifier: Apache-2.0
//
// The way of an event from the writer to those who are to get it.

#ifndef HOST_HISYSEVENT_DELIVERY_H
#define HOST_HISYSEVENT_DELIVERY_H

#include <memory>
#include <string>
#include <vector>

#include "hisysevent_listener.h"

namespace OHOS::HiviewDFX {

// The listeners with a rule that matches, in the order in which they were added.
std::vector<std::shared_ptr<HiSysEventListener>> FindListeners(const std::string &domain, const std::string &eventName,
                                                               HiSysEvent::EventType type);

// Whether there is an output or a listener for such an event.
bool IsEventWanted(const std::string &domain, const std::string &eventName, HiSysEvent::EventType type);

// Hands an event to the output, if there is one, and then to its listeners. Returns false, and gives it to nobody, when
// the output cannot take it. A program that defines this function stands in for whoever takes the events.
bool SendEvent(const std::shared_ptr<HiSysEventRecord> &event);

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_DELIVERY_H
