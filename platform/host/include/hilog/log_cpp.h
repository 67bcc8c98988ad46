// SPDX-License-Identifier: Apache-2.0
//
// HiLog on the host, the C++ interface: messages under a label, which holds type, domain and tag. Formats, delivery,
// results and threads are those of HiLogPrint (log_c.h).
//
//     constexpr OHOS::HiviewDFX::HiLogLabel LABEL = {LOG_CORE, 0xD004160, "SINK"};
//     HiLogInfo(LABEL, "%{public}d frames", count);

#ifndef HOST_HILOG_LOG_CPP_H
#define HOST_HILOG_LOG_CPP_H

#ifdef __cplusplus

#include "hilog/log_c.h"

namespace OHOS::HiviewDFX {

// Where a message belongs: type, domain and tag.
struct HiLogLabel {
    LogType type;
    unsigned int domain;
    const char *tag;
};

// Logs a message, one operation for each level.
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
