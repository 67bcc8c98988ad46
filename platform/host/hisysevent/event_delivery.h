// SPDX-License-Identifier: Apache-2.0
//
// Passes events from the writer to the output and the listeners.

#ifndef HOST_HISYSEVENT_EVENT_DELIVERY_H
#define HOST_HISYSEVENT_EVENT_DELIVERY_H

#include <memory>
#include <string>
#include <vector>

#include "hisysevent_listener.h"

namespace ostra::host {

using Event = std::shared_ptr<OHOS::HiviewDFX::HiSysEventRecord>;
using Listener = std::shared_ptr<OHOS::HiviewDFX::HiSysEventListener>;

/// Returns the listeners with a rule that matches, in the order in which they were added.
std::vector<Listener> FindListeners(const std::string &domain, const std::string &eventName, int type);

/// Returns whether there is an output or a listener for such an event.
bool HasRecipient(const std::string &domain, const std::string &eventName, int type);

/// Appends an event to the configured output, if any, then passes it to its listeners. Returns false, without calling a
/// listener, if the output cannot be written.
bool SendEvent(const Event &event);

}  // namespace ostra::host

#endif  // HOST_HISYSEVENT_EVENT_DELIVERY_H
