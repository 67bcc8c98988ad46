// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// HiSysEvent listeners on the host: passes the events that this process writes to its listeners, in the writing
/// thread. All functions are thread-safe and may be called by a listener.
///
///     std::vector<ListenerRule> rules = {ListenerRule("DOMAIN", "EVENT")};
///     HiSysEventManager::AddListener(listener, rules);

#ifndef HOST_HISYSEVENT_MANAGER_H
#define HOST_HISYSEVENT_MANAGER_H

#include <cstdint>
#include <memory>
#include <vector>

#include "hisysevent_listener.h"
#include "hisysevent_rules.h"

namespace OHOS::HiviewDFX {

/// Registers event listeners.
class __attribute__((visibility("default"))) HiSysEventManager {
public:
    /// Registers a listener: each later event that matches at least one of the rules is passed to it once.
    ///
    /// Returns 0, or one of these errors without any change:
    ///   - -1: the listener is null
    ///   - -2: the listener is already registered
    ///   - -3: a rule has a type other than WHOLE_WORD, which the host does not support
    static int32_t AddListener(std::shared_ptr<HiSysEventListener> listener, std::vector<ListenerRule> &rules);

    /// Removes the listener. Returns 0, -1 for null, or -2 if it is not registered. A thread that is writing an event
    /// at the same time may still call the listener afterwards.
    static int32_t RemoveListener(std::shared_ptr<HiSysEventListener> listener);
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_MANAGER_H
