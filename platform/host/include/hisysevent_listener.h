// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// The interface of event listeners. HiSysEventManager (hisysevent_manager.h) registers them.

#ifndef HOST_HISYSEVENT_LISTENER_H
#define HOST_HISYSEVENT_LISTENER_H

#include <memory>

#include "hisysevent_record.h"

namespace OHOS::HiviewDFX {

/// Receives events.
class HiSysEventListener {
public:
    virtual ~HiSysEventListener() = default;

    /// Called for every event that matches one of the listener's rules, in the writing thread and without holding a
    /// lock; several threads may call it at the same time. An exception propagates to the writer, and later listeners
    /// do not receive the event. If it is thrown for an earlier event whose write had failed, the event being written
    /// is lost.
    virtual void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) = 0;

    /// Never called on the host, which has no event service.
    virtual void OnServiceDied() = 0;
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_LISTENER_H
