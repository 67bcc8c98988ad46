// SPDX-License-Identifier: Apache-2.0
//
// A written event as a listener gets it. A record does not change once it is made; any thread may read it.

#ifndef HOST_HISYSEVENT_RECORD_H
#define HOST_HISYSEVENT_RECORD_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hisysevent.h"

namespace OHOS::HiviewDFX {

class __attribute__((visibility("default"))) HiSysEventRecord {
public:
    // Takes the text of a JSON object, as AsJson gives it. Of another text AsJson alone is of use: names and texts are
    // empty, numbers 0, and GetParamValue gives -1.
    explicit HiSysEventRecord(const std::string &json);

    // The text that the record was made of: for a written event one line without its end.
    std::string AsJson() const;

    // What the platform adds to an event; empty or 0 where the event does not have it. The host writes no level, tag
    // and trace: they come from event definitions and from tracing. GetTime is in ms since the Unix epoch, GetTimeZone
    // reads such as "+0200".
    std::string GetDomain() const;
    std::string GetEventName() const;
    HiSysEvent::EventType GetEventType() const;
    std::string GetLevel() const;
    std::string GetTag() const;
    std::string GetTimeZone() const;
    uint64_t GetTime() const;
    int64_t GetPid() const;
    int64_t GetTid() const;
    int64_t GetUid() const;
    uint64_t GetTraceId() const;
    uint64_t GetSpanId() const;
    uint64_t GetPspanId() const;
    int GetTraceFlag() const;

    // Replaces `params` with the event's own keys in the order in which they were written.
    void GetParamNames(std::vector<std::string> &params) const;

    // Reads the value of a key, the event's own or one that the platform adds; of equal keys the first. Value is
    // int64_t, uint64_t, double, std::string, or a std::vector of one of them. A number without fraction and exponent
    // is an int64_t or uint64_t where it fits, every number is a double; an empty list is a vector of any. Returns 0;
    // -1 when the record was made of no JSON object; -2 when there is no such key; -3 when its value is of another
    // type. `value` changes only on success.
    template <typename Value>
    int GetParamValue(const std::string &param, Value &value) const;

private:
    struct Content;
    template <typename Value>
    Value ValueOr(const char *name, Value otherwise) const;

    std::shared_ptr<const Content> content_;
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_RECORD_H
