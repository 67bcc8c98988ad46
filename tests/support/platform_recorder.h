// SPDX-License-Identifier: Apache-2.0
//
// Watches what the library hands to the platform for others: messages and events, of any thread.

#ifndef TESTS_PLATFORM_RECORDER_H
#define TESTS_PLATFORM_RECORDER_H

#include <memory>
#include <mutex>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "distributed_hardware_fwk_kit.h"
#include "hisysevent_manager.h"

class PlatformRecorder : public OHOS::DistributedHardware::IPublisherListener,
                         public OHOS::HiviewDFX::HiSysEventListener {
public:
    using DHTopic = OHOS::DistributedHardware::DHTopic;
    using Record = OHOS::HiviewDFX::HiSysEventRecord;

    // The one recorder, which listens from the first call on to the topics 1 to 16 and to every event.
    static PlatformRecorder &GetInstance()
    {
        static const OHOS::sptr<PlatformRecorder> recorder = Start();
        return *recorder;
    }

    // What came since the last call: messages as "TOPIC TEXT", events as JSON without what changes from run to run.
    std::vector<std::string> Take()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(seen_, {});
    }

    void OnMessage(const DHTopic topic, const std::string &message) override
    {
        Add(std::to_string(static_cast<uint32_t>(topic)) + " " + message);
    }

    void OnEvent(std::shared_ptr<Record> event) override
    {
        static const std::regex changing("\"(time|tz|pid|tid|uid)_\":[^,]*,");
        Add(std::regex_replace(event->AsJson(), changing, ""));
    }

    void OnServiceDied() override
    {
    }

private:
    static OHOS::sptr<PlatformRecorder> Start()
    {
        const OHOS::sptr<PlatformRecorder> recorder = new PlatformRecorder();
        for (uint32_t topic = 1; topic <= 16; ++topic) {
            OHOS::DistributedHardware::DistributedHardwareFwkKit().RegisterPublisherListener(
                static_cast<DHTopic>(topic), recorder);
        }
        std::vector<OHOS::HiviewDFX::ListenerRule> all = {OHOS::HiviewDFX::ListenerRule("", "")};
        const std::shared_ptr<PlatformRecorder> shared(recorder.GetRefPtr(),
                                                       [recorder](PlatformRecorder *) {});  // counted by sptr
        OHOS::HiviewDFX::HiSysEventManager::AddListener(shared, all);
        return recorder;
    }

    void Add(const std::string &text)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        seen_.push_back(text);
    }

    std::mutex mutex_;
    std::vector<std::string> seen_;
};

#endif  // TESTS_PLATFORM_RECORDER_H
