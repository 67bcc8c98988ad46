// SPDX-License-Identifier: Apache-2.0

#include "hisysevent.h"

#include <deque>
#include <memory>
#include <mutex>
#include <utility>

#include "hisysevent/event_delivery.h"
#include "hisysevent/event_encoder.h"
#include "hisysevent/rate_limiter.h"

using namespace OHOS::HiviewDFX;

namespace ostra::host {
namespace {

// Events that could not be sent, oldest first. They are sent before the next event.
class Backlog {
public:
    static Backlog &GetInstance()
    {
        static auto &instance = *new Backlog;  // never destroyed: threads may write during exit
        return instance;
    }

    void Add(Event event)
    {
        constexpr size_t maxEvents = 100;
        const std::lock_guard<std::mutex> lock(mutex_);
        events_.push_back(std::move(event));
        if (events_.size() > maxEvents) {
            events_.pop_front();
        }
    }

    // Stops and returns false at the first event that cannot be sent.
    bool SendAll()
    {
        while (Event event = TakeFirst()) {
            if (!SendEvent(event)) {
                const std::lock_guard<std::mutex> lock(mutex_);
                events_.push_front(std::move(event));
                return false;
            }
        }
        return true;
    }

private:
    Event TakeFirst()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (events_.empty()) {
            return nullptr;
        }
        Event first = std::move(events_.front());
        events_.pop_front();
        return first;
    }

    std::mutex mutex_;
    std::deque<Event> events_;
};

}  // namespace

int WriteEvent(const EventCallSite &site, const std::string &domain, const std::string &eventName, int type,
               const EventKeyValue *params, size_t paramCount)
{
    if (!IsWithinRateLimit(eventName, site)) {
        return ERR_WRITE_IN_HIGH_FREQ;
    }
    if (!IsEventName(domain, MAX_DOMAIN_LENGTH)) {
        return ERR_DOMAIN_NAME_INVALID;
    }
    if (!IsEventName(eventName, MAX_EVENT_NAME_LENGTH)) {
        return ERR_EVENT_NAME_INVALID;
    }
    EventEncoder encoder(domain, eventName, type);
    for (size_t i = 0; i < paramCount; ++i) {
        encoder.Add(params[i]);
    }
    if (encoder.IsOverSize()) {
        return ERR_OVER_SIZE;
    }
    if (!HasRecipient(domain, eventName, type)) {
        return encoder.Warning();
    }
    auto event = std::make_shared<HiSysEventRecord>(encoder.Json());
    if (event->GetDomain().empty()) {  // cJSON could not allocate the parsed event
        return ERR_RAW_DATA_WROTE_EXCEPTION;
    }
    if (!Backlog::GetInstance().SendAll() || !SendEvent(event)) {
        Backlog::GetInstance().Add(std::move(event));
        return ERR_SEND_FAIL;
    }
    return encoder.Warning();
}

}  // namespace ostra::host
