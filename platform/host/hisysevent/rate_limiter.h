// SPDX-License-Identifier: Apache-2.0
//
// Limits how many events each call site writes.

#ifndef HOST_HISYSEVENT_RATE_LIMITER_H
#define HOST_HISYSEVENT_RATE_LIMITER_H

#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <string_view>

#include "hisysevent.h"

namespace ostra::host {

/// Thread-safe.
class RateLimiter {
public:
    static RateLimiter &GetInstance();

    /// Counts a write of the call site. Returns false if its budget for the period is used up.
    bool Admit(std::string_view eventName, const EventCallSite &site);

private:
    struct Budget {
        std::string key;
        int64_t periodBegin;  // in seconds of the wall clock
        uint32_t count;
    };

    Budget &Find(std::string key);

    std::mutex mutex_;
    std::list<Budget> budgets_;  // most recently used first
};

}  // namespace ostra::host

#endif  // HOST_HISYSEVENT_RATE_LIMITER_H
