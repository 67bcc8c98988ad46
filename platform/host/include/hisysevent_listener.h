// SPDX-License-Identifier: Apache-2.0
//
// What a listener to events implements; HiSysEventManager (hisysevent_manager.h) adds it.

#ifndef HOST_HISYSEVENT_LISTENER_H
#define HOST_HISYSEVENT_LISTENER_H

#include <memory>

#include "hisysevent_record.h"

namespace OHOS::HiviewDFX {

class HiSysEventListener {
public:
    virtual ~HiSysEventListener() = default;

    // Called for every event that one of the listener's rules matches, by several threads at once when they write at
    // once. No lock is held meanwhile. What it throws comes out of the write; listeners behind it do not get the event.
    virtual void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) = 0;

    // Never called on the host, where no service stands in between.
    virtual void OnServiceDied() = 0;
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_LISTENER_H
