// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include <cstdarg>

#include "hilog/log.h"
#include "securec.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr unsigned int DOMAIN = 0xD004160;
constexpr char TAG[] = "OSTRA_ADAPTER";
constexpr size_t MESSAGE_BUFFER_SIZE = 4096;

LogLevel ToHiLogLevel(DHLogLevel level)
{
    switch (level) {
        case DH_LOG_ERROR:
            return LOG_ERROR;
        case DH_LOG_WARN:
            return LOG_WARN;
        case DH_LOG_DEBUG:
            return LOG_DEBUG;
        default:
            return LOG_INFO;
    }
}

}  // namespace

void DHLog(DHLogLevel level, const char *format, ...)
{
    // Not initialized: vsprintf_s null-terminates its output.
    char message[MESSAGE_BUFFER_SIZE];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(message, sizeof(message), format, arguments);
    va_end(arguments);

    const char *output = length < 0 ? "DH log length error." : message;
    HiLogPrint(LOG_CORE, ToHiLogLevel(level), DOMAIN, TAG, "%{public}s", output);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
