// SPDX-License-Identifier: Apache-2.0
//
// Hands on each event of the library as JSON, without what the platform adds and what changes from run to run.

#ifndef TESTS_EVENT_RECORDER_H
#define TESTS_EVENT_RECORDER_H

#include <functional>
#include <memory>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "hisysevent_manager.h"

class EventRecorder : public OHOS::HiviewDFX::HiSysEventListener {
public:
    using Take = std::function<void(const std::string &event)>;

    // Listens from now on, until the process is gone.
    static void Start(Take take)
    {
        std::vector<OHOS::HiviewDFX::ListenerRule> all = {{"", ""}};
        OHOS::HiviewDFX::HiSysEventManager::AddListener(std::make_shared<EventRecorder>(std::move(take)), all);
    }

    explicit EventRecorder(Take take) : take_(std::move(take))
    {
    }

    void OnEvent(std::shared_ptr<OHOS::HiviewDFX::HiSysEventRecord> event) override
    {
        static const std::regex changing("\"(time|tz|pid|tid|uid)_\":[^,]*,");
        take_(std::regex_replace(event->AsJson(), changing, ""));
    }

    void OnServiceDied() override
    {
    }

private:
    const Take take_;
};

#endif  // TESTS_EVENT_RECORDER_H
