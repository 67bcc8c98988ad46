// SPDX-License-Identifier: Apache-2.0
//
// Puts an event together as JSON, and counts what the platform's own encoding of it takes.

#ifndef HOST_HISYSEVENT_ENCODER_H
#define HOST_HISYSEVENT_ENCODER_H

#include <cstddef>
#include <string>

#include "hisysevent.h"

namespace OHOS::HiviewDFX {

bool IsHiSysEventName(std::string_view name, size_t longest);

class EventEncoder {
public:
    // Begins an event of this thread and this moment.
    EventEncoder(const std::string &domain, const std::string &eventName, HiSysEvent::EventType type);

    // Adds a key and its value, or what the limits leave of them.
    void Add(const HiSysEventKeyValue &param);

    // The last warning, or SUCCESS.
    int Warning() const
    {
        return warning_;
    }

    bool IsOverSize() const
    {
        return size_ > MAX_DATA_SIZE;
    }

    // The whole event, one line without its end.
    std::string Json() const
    {
        return json_ + '}';
    }

private:
    void AddValue(const HiSysEventKeyValue &param);
    void AddScalar(const HiSysEventScalar &scalar);
    void AddText(std::string_view text);

    std::string json_;
    size_t size_;
    size_t keyCount_ = 0;
    int warning_ = SUCCESS;
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_ENCODER_H
