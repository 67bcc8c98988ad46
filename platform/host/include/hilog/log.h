// SPDX-License-Identifier: Apache-2.0
//
// HiLog on the host: the platform's log service, writing its line format to standard error. OSTRA_HOST_LOG_LEVEL sets
// the lowest level written (debug, info, warn, error, fatal or off; info when unset). All functions may be called from
// any thread at once. A C compiler accepts this header.

#ifndef HOST_HILOG_LOG_H
#define HOST_HILOG_LOG_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

typedef enum LogType {
    LOG_APP = 0,
    LOG_INIT = 1,
    LOG_CORE = 3,
    LOG_KMSG = 4,
    LOG_ONLY_PRERELEASE = 5,
} LogType;

typedef enum LogLevel {
    LOG_DEBUG = 3,
    LOG_INFO = 4,
    LOG_WARN = 5,
    LOG_ERROR = 6,
    LOG_FATAL = 7,
} LogLevel;

// Formats and writes one message. A conversion marked {public} prints in the clear, as in "%{public}s"; an unmarked one
// or one marked {private} prints "<private>"; length modifiers are h, hh, l, ll and z, and what is no conversion is
// copied as it stands. A message holds at most 4095 bytes and is cut there. Returns the bytes
// written to standard error, 0 when the level is not written there, -1 on failure.
int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, ...);

// True when a message of this level is written to standard error.
bool HiLogIsLoggable(unsigned int domain, const char *tag, LogLevel level);

// Receives every message of the process, formatted, whatever level is written; the output goes on regardless. The
// callback runs in the thread that logs, on several at once; its texts are valid during the call only, and it must not
// log itself. Null stops it; a call that another thread has begun may still be running then.
typedef void (*LogCallback)(const LogType type, const LogLevel level, const unsigned int domain, const char *tag,
                            const char *msg);
void LOG_SetCallback(LogCallback callback);

#ifdef __cplusplus
}
#endif

#endif  // HOST_HILOG_LOG_H
