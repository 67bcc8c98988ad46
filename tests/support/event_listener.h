// SPDX-License-Identifier: Apache-2.0
//
// An event listener that passes each event to a function.

#ifndef TESTS_EVENT_LISTENER_H
#define TESTS_EVENT_LISTENER_H

#include <functional>
#include <memory>

#include "hisysevent_manager.h"

struct EventListener : OHOS::HiviewDFX::HiSysEventListener {
    using Event = std::shared_ptr<OHOS::HiviewDFX::HiSysEventRecord>;

    void OnEvent(Event sysEvent) override
    {
        act(sysEvent);
    }

    void OnServiceDied() override
    {
    }

    std::function<void(const Event &event)> act = [](const Event &) {
    };
};

#endif  // TESTS_EVENT_LISTENER_H
