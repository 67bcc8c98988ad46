// SPDX-License-Identifier: Apache-2.0
//
// Limits how many events each call site may write.

#ifndef HOST_HISYSEVENT_RATE_LIMITER_H
#define HOST_HISYSEVENT_RATE_LIMITER_H

#include <string_view>

#include "hisysevent.h"

namespace ostra::host {

/// Counts a write by the call site. Returns false if its budget for the period is used up. Thread-safe.
bool IsWithinRateLimit(std::string_view eventName, const EventCallSite &site);

}  // namespace ostra::host

#endif  // HOST_HISYSEVENT_RATE_LIMITER_H
