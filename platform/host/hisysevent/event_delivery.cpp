// SPDX-License-Identifier: Apache-2.0

#include "hisysevent/event_delivery.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>
#include <string_view>

#include "io/environment_file.h"
#include "io/write.h"

namespace ostra::host {
namespace {

constexpr char OUTPUT_VARIABLE[] = "OSTRA_HOST_EVENT_OUTPUT";

// The file or standard error stream to which this process appends its events, if one is configured.
class EventOutput {
public:
    static EventOutput &GetInstance()
    {
        static auto &instance = *new EventOutput(std::getenv(OUTPUT_VARIABLE));  // threads may write during exit
        return instance;
    }

    bool IsConfigured() const
    {
        return isConfigured_;
    }

    // Appends the event and a newline. If the previous event was written only partially, ends its line first.
    bool Append(const std::string &json)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const std::string line = (isLineIncomplete_ ? "\n" : "") + json + "\n";
        const ssize_t written = WriteOnce(descriptor_, line);
        const bool isComplete = written == static_cast<ssize_t>(line.size());
        isLineIncomplete_ = written > 0 ? !isComplete : isLineIncomplete_;
        return isComplete;
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
    std::mutex mutex_;
    bool isLineIncomplete_ = false;
};

}  // namespace

bool HasRecipient(const std::string &domain, const std::string &eventName, int type)
{
    return EventOutput::GetInstance().IsConfigured() || !FindListeners(domain, eventName, type).empty();
}

bool SendEvent(const Event &event)
{
    EventOutput &output = EventOutput::GetInstance();
    if (output.IsConfigured() && !output.Append(event->AsJson())) {
        return false;
    }
    for (const Listener &listener : FindListeners(event->GetDomain(), event->GetEventName(), event->GetEventType())) {
        listener->OnEvent(event);
    }
    return true;
}

}  // namespace ostra::host
