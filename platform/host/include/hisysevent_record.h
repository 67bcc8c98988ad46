// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// An event as a listener receives it.

#ifndef HOST_HISYSEVENT_RECORD_H
#define HOST_HISYSEVENT_RECORD_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hisysevent.h"

namespace OHOS::HiviewDFX {

/// Reads the fields of an event. Immutable and therefore thread-safe.
class __attribute__((visibility("default"))) HiSysEventRecord {
public:
    /// Parses a JSON object such as AsJson returns. If `json` is anything else, only AsJson is useful: strings are
    /// empty, numbers are 0, and GetParamValue returns -1.
    explicit HiSysEventRecord(const std::string &json);

    /// Returns the JSON document that the record was created from: one line without a newline for a written event.
    std::string AsJson() const;

    /// Return the fields that the platform adds to an event, empty or 0 if the event lacks them. The host writes no
    /// level, tag or trace fields, which come from event definitions and from tracing. GetTime is in ms since the Unix
    /// epoch; GetTimeZone has the form "+0200".
    /// @{
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
    /// @}

    /// Replaces `params` with the event's own keys in the order in which they were written.
    void GetParamNames(std::vector<std::string> &params) const;

    /// Reads the value of a key: the event's own, or one that the platform adds. If a key occurs more than once, the
    /// first is used. A number without a fraction or exponent can be read as int64_t or uint64_t if it fits, any number
    /// as double, and an empty list as a vector of any type.
    ///
    /// Returns 0, or one of these errors without changing `value`:
    ///   - -1: the record was not created from a JSON object
    ///   - -2: no such key
    ///   - -3: the value has another type
    /// @{
    int GetParamValue(const std::string &param, int64_t &value) const;
    int GetParamValue(const std::string &param, uint64_t &value) const;
    int GetParamValue(const std::string &param, double &value) const;
    int GetParamValue(const std::string &param, std::string &value) const;
    int GetParamValue(const std::string &param, std::vector<int64_t> &value) const;
    int GetParamValue(const std::string &param, std::vector<uint64_t> &value) const;
    int GetParamValue(const std::string &param, std::vector<double> &value) const;
    int GetParamValue(const std::string &param, std::vector<std::string> &value) const;
    /// @}

    /// Rejects every other type at compile time.
    template <typename Value>
    int GetParamValue(const std::string & /*param*/, Value & /*value*/) const
    {
        static_assert(
            sizeof(Value) == 0,
            "HiSysEventRecord::GetParamValue: the value must be an int64_t, uint64_t, double, std::string, or "
            "a std::vector of one of these");
        return 0;
    }

private:
    struct Content;

    std::shared_ptr<const Content> content_;
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_RECORD_H
