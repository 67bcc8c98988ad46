// SPDX-License-Identifier: Apache-2.0
//
// Counts the events of each call site. Any thread may ask at any time.

#ifndef HOST_HISYSEVENT_LIMITER_H
#define HOST_HISYSEVENT_LIMITER_H

#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <string_view>

#include "hisysevent.h"

namespace OHOS::HiviewDFX {

class WriteLimiter {
public:
    static WriteLimiter &GetInstance();

    // Counts a write of the call site; false when its budget of the period is used up.
    bool Admit(std::string_view eventName, const HiSysEventCallSite &site);

private:
    struct Budget {
        std::string key;
        int64_t periodBegin;  // in seconds of the wall clock
        uint32_t count;
    };

    Budget &Find(std::string key);

    std::mutex mutex_;
    std::list<Budget> budgets_;  // the last used first
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_LIMITER_H
