// SPDX-License-Identifier: Apache-2.0
//
// Listening to HiSysEvent on the host: hands the events that this process writes to its listeners, in the writing
// thread. All functions may be called from any thread at once, and by a listener.
//
//     std::vector<ListenerRule> rules = {ListenerRule("DOMAIN", "EVENT")};
//     HiSysEventManager::AddListener(listener, rules);

#ifndef HOST_HISYSEVENT_MANAGER_H
#define HOST_HISYSEVENT_MANAGER_H

#include <cstdint>
#include <memory>
#include <vector>

#include "hisysevent_listener.h"
#include "hisysevent_rules.h"

namespace OHOS::HiviewDFX {

// Adds and removes the listeners of events.
class __attribute__((visibility("default"))) HiSysEventManager {
public:
    // Gives the listener every later event that one of the rules matches, once however many match; without rules it
    // gets none. Returns 0; -1 for null; -2 when the listener is added already, with its rules unchanged; -3, with
    // nothing added, when a rule is of a type other than WHOLE_WORD, which the host does not offer.
    static int32_t AddListener(std::shared_ptr<HiSysEventListener> listener, std::vector<ListenerRule> &rules);

    // Returns 0, or -1 for null, -2 when the listener is not added. A write that is under way in another thread may
    // still call the listener afterwards.
    static int32_t RemoveListener(std::shared_ptr<HiSysEventListener> listener);
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_MANAGER_H
