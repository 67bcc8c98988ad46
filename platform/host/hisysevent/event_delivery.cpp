// SPDX-License-Identifier: Apache-2.0

#include "hisysevent/event_delivery.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "io/environment_file.h"

namespace OHOS::HiviewDFX {
namespace {

constexpr char OUTPUT_VARIABLE[] = "OSTRA_HOST_EVENT_OUTPUT";

// Where the events of this process are appended, if anywhere.
class EventOutput {
public:
    static const EventOutput &GetInstance()
    {
        static const EventOutput instance(std::getenv(OUTPUT_VARIABLE));
        return instance;
    }

    bool IsConfigured() const
    {
        return isConfigured_;
    }

    // One line, one write at the end of the file: lines of several threads and processes do not mix.
    bool Append(const std::string &line) const
    {
        return write(descriptor_, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    }

private:
    explicit EventOutput(const char *target) : isConfigured_(target != nullptr && *target != '\0')
    {
        if (isConfigured_) {
            descriptor_ = std::string_view(target) == "stderr"
                              ? STDERR_FILENO
                              : OpenEnvironmentFile(OUTPUT_VARIABLE, target, O_WRONLY | O_APPEND | O_CREAT);
        }
    }

    bool isConfigured_;
    int descriptor_ = -1;
};

}  // namespace

bool IsEventWanted(const std::string &domain, const std::string &eventName, HiSysEvent::EventType type)
{
    return EventOutput::GetInstance().IsConfigured() || !FindListeners(domain, eventName, type).empty();
}

bool SendEvent(const std::shared_ptr<HiSysEventRecord> &event)
{
    const EventOutput &output = EventOutput::GetInstance();
    if (output.IsConfigured() && !output.Append(event->AsJson() + "\n")) {
        return false;
    }
    const auto listeners = FindListeners(event->GetDomain(), event->GetEventName(), event->GetEventType());
    for (const std::shared_ptr<HiSysEventListener> &listener : listeners) {
        listener->OnEvent(event);
    }
    return true;
}

}  // namespace OHOS::HiviewDFX
