// SPDX-License-Identifier: Apache-2.0

#include <cstdlib>
#include <utility>

#include "hilog/log.h"
#include "inspect.h"
#include "ostra_adapter_log.h"

using OHOS::DistributedHardware::OstraAdapter::LOG_PREFIX_TAG;

namespace {

constexpr size_t MAX_REASONS = 10;  // the library may log each element of an input

std::vector<std::string> g_reasons;  // the tool is single-threaded

// Shortens "[tag][Function]:message" to "Function: message".
void Collect(LogType /* type */, LogLevel level, unsigned int /* domain */, const char * /* tag */, const char *message)
{
    if (level < LOG_WARN || g_reasons.size() == MAX_REASONS) {
        return;
    }
    std::string reason = message;
    const std::string begin = "[" + std::string(LOG_PREFIX_TAG) + "][";
    const size_t end = reason.find("]:");
    if (reason.rfind(begin, 0) == 0 && end != std::string::npos) {
        reason = reason.substr(begin.size(), end - begin.size()) + ": " + reason.substr(end + 2);
    }
    g_reasons.push_back(reason);
}

}  // namespace

void CollectLog()
{
    setenv("OSTRA_HOST_LOG_LEVEL", "off", 0);
    LOG_SetCallback(Collect);
}

std::string TakeReasons()
{
    std::string reasons;
    for (const std::string &reason : std::exchange(g_reasons, {})) {
        reasons += (reasons.empty() ? "" : "; ") + reason;
    }
    return reasons;
}
