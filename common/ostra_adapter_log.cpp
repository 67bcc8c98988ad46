// SPDX-License-Identifier: Apache-2.0

#include "ostra_adapter_log.h"

#include <cstdarg>

#include "hilog/log.h"
#include "securec.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr unsigned int LOG_DOMAIN_ID = 0xD004160;
constexpr char LOG_TAG_TEXT[] = "OSTRA_ADAPTER";
constexpr size_t LOG_MAX_LENGTH = 4096;

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
    // Not cleared: what is read of it below is what was written, up to the zero that ends it.
    char message[LOG_MAX_LENGTH];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(message, sizeof(message), format, arguments);
    va_end(arguments);

    const char *text = length < 0 ? "DH log length error." : message;
    HiLogPrint(LOG_CORE, ToHiLogLevel(level), LOG_DOMAIN_ID, LOG_TAG_TEXT, "%{public}s", text);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
