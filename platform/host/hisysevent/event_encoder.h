// SPDX-License-Identifier: Apache-2.0
//
// Encodes an event as JSON, and computes its size in the platform's own encoding.

#ifndef HOST_HISYSEVENT_EVENT_ENCODER_H
#define HOST_HISYSEVENT_EVENT_ENCODER_H

#include <cstddef>
#include <string>

#include "hisysevent.h"

namespace ostra::host {

bool IsEventName(std::string_view name, size_t maxLength);

class EventEncoder {
public:
    // Starts an event of the calling thread with the current time.
    EventEncoder(const std::string &domain, const std::string &eventName, int type);

    // Adds a key and its value, subject to the platform's limits.
    void Add(const EventKeyValue &param);

    // Returns the last warning, or SUCCESS.
    int Warning() const
    {
        return warning_;
    }

    bool IsOverSize() const
    {
        return size_ > OHOS::HiviewDFX::MAX_DATA_SIZE;
    }

    // Returns the whole event, without a newline.
    std::string Json() const
    {
        return json_ + '}';
    }

private:
    void AddScalar(const EventScalar &scalar);
    void AddString(std::string_view string);

    std::string json_;
    size_t size_;
    size_t keyCount_ = 0;
    int warning_ = OHOS::HiviewDFX::SUCCESS;
};

}  // namespace ostra::host

#endif  // HOST_HISYSEVENT_EVENT_ENCODER_H
