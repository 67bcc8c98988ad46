// SPDX-License-Identifier: Apache-2.0

/// @file
/// Logs messages to HiLog, each prefixed with the name of the calling function.
///
///     void Connect(int port)
///     {
///         OSTRA_LOGI("open port %d", port);   // [ostraadapterutils][Connect]:open port 8080
///     }
///
/// The macros compose prefix and message at compile time, so they cost no more than a call to DHLog. Programs that use
/// the library may use them, too. Thread-safe.

#ifndef OSTRA_ADAPTER_LOG_H
#define OSTRA_ADAPTER_LOG_H

#include <cstdint>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// Severity of a message. Any other value is logged like DH_LOG_INFO.
enum DHLogLevel : int32_t {
    DH_LOG_DEBUG = 0,  ///< Not delivered by default.
    DH_LOG_INFO = 1,
    DH_LOG_WARN = 2,
    DH_LOG_ERROR = 3,
};

/// Formats a message like printf and writes it to HiLog, unmasked: type LOG_CORE, domain 0xD004160, tag
/// "OSTRA_ADAPTER".
///
/// A message has at most 4095 bytes. A longer one, or one whose format is invalid, is replaced by
/// "DH log length error." at the same level. DHLog itself does not filter by level.
///
/// Does not report errors, throw or allocate itself. The platform may: on the host, the first message of a process
/// reads the system parameters, which allocates. Uses 4 KiB of stack for the message; on the host, a whole call needs
/// up to 16 KiB.
OSTRA_EXPORT void DHLog(DHLogLevel level, const char *format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace OHOS::DistributedHardware::OstraAdapter

#include "ostra_adapter_log_internal.h"

/// Logs a message at debug level, after "[ostraadapterutils][FUNCTION]:".
///
/// The first argument is a printf format string, as a literal; the compiler checks the other arguments against it.
/// FUNCTION is the name of the enclosing function, without its class. Inside a lambda it is "operator()": log outside
/// the lambda. Prefix and message together form the format string of DHLog.
#define OSTRA_LOGD(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_DEBUG, __VA_ARGS__)
/// Logs a message at info level; see OSTRA_LOGD.
#define OSTRA_LOGI(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_INFO, __VA_ARGS__)
/// Logs a message at warning level; see OSTRA_LOGD.
#define OSTRA_LOGW(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_WARN, __VA_ARGS__)
/// Logs a message at error level; see OSTRA_LOGD.
#define OSTRA_LOGE(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_ERROR, __VA_ARGS__)

#endif  // OSTRA_ADAPTER_LOG_H
