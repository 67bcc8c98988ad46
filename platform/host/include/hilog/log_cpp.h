// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// HiLog on the host, the C++ interface: messages with a label, which holds type, domain and tag. Format, delivery,
/// result and thread safety are those of HiLogPrint (log_c.h).
///
///     constexpr OHOS::HiviewDFX::HiLogLabel LABEL = {LOG_CORE, 0xD004160, "SINK"};
///     HiLogInfo(LABEL, "%{public}d frames", count);

#ifndef HOST_HILOG_LOG_CPP_H
#define HOST_HILOG_LOG_CPP_H

#ifdef __cplusplus

#include "hilog/log_c.h"

namespace OHOS::HiviewDFX {

/// The type, domain and tag of a message.
struct HiLogLabel {
    LogType type;
    unsigned int domain;
    const char *tag;
};

/// Logs a message with the level in the name of the function.
class HiLog final {
public:
    static int Debug(const HiLogLabel &label, const char *fmt, ...) HOST_HILOG_FORMAT(2, 3);
    static int Info(const HiLogLabel &label, const char *fmt, ...) HOST_HILOG_FORMAT(2, 3);
    static int Warn(const HiLogLabel &label, const char *fmt, ...) HOST_HILOG_FORMAT(2, 3);
    static int Error(const HiLogLabel &label, const char *fmt, ...) HOST_HILOG_FORMAT(2, 3);
    static int Fatal(const HiLogLabel &label, const char *fmt, ...) HOST_HILOG_FORMAT(2, 3);
};

}  // namespace OHOS::HiviewDFX

#define HiLogDebug(label, ...) HILOG_IMPL((label).type, LOG_DEBUG, (label).domain, (label).tag, __VA_ARGS__)
#define HiLogInfo(label, ...) HILOG_IMPL((label).type, LOG_INFO, (label).domain, (label).tag, __VA_ARGS__)
#define HiLogWarn(label, ...) HILOG_IMPL((label).type, LOG_WARN, (label).domain, (label).tag, __VA_ARGS__)
#define HiLogError(label, ...) HILOG_IMPL((label).type, LOG_ERROR, (label).domain, (label).tag, __VA_ARGS__)
#define HiLogFatal(label, ...) HILOG_IMPL((label).type, LOG_FATAL, (label).domain, (label).tag, __VA_ARGS__)

#endif  // __cplusplus

#endif  // HOST_HILOG_LOG_CPP_H
