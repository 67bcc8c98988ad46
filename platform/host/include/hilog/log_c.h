// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// HiLog on the host, the C interface: the delivery rules and the format are those of a device; the output is standard
/// error instead of the log service. All functions are thread-safe. A C compiler accepts this header.
///
/// A message is delivered if its level is loggable (see HiLogIsLoggable), its domain is below 0xD0FFFFF and, except for
/// LOG_APP, at least 0xD000000. A delivered message goes to the callback and to standard error. OSTRA_HOST_LOG_LEVEL
/// sets the minimum level that is written to standard error: debug, info, warn, error, fatal or off; by default,
/// everything that is delivered is written. It does not affect delivery, except that `debug` also delivers DEBUG
/// messages, which a device does not by default. A write that a signal interrupts is retried, and a closed pipe does
/// not terminate the process.

#ifndef HOST_HILOG_LOG_C_H
#define HOST_HILOG_LOG_C_H

#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Clang checks formats with privacy marks against the arguments, as on a device. GCC cannot.
#ifdef __clang__
#define HOST_HILOG_FORMAT(format, first) __attribute__((__format__(os_log, format, first)))
#else
#define HOST_HILOG_FORMAT(format, first)
#endif

/// The default domain and tag of the macros below.
/// @{
#ifndef LOG_DOMAIN
#define LOG_DOMAIN 0
#endif
#ifndef LOG_TAG
#define LOG_TAG NULL
#endif
/// @}

typedef enum {
    LOG_TYPE_MIN = 0,
    LOG_APP = 0,
    LOG_INIT = 1,
    LOG_CORE = 3,
    LOG_KMSG = 4,
    LOG_ONLY_PRERELEASE = 5,
    LOG_TYPE_MAX,
} LogType;

typedef enum {
    LOG_LEVEL_MIN = 0,
    LOG_DEBUG = 3,
    LOG_INFO = 4,
    LOG_WARN = 5,
    LOG_ERROR = 6,
    LOG_FATAL = 7,
    LOG_LEVEL_MAX,
} LogLevel;

typedef enum {
    UNSET_LOGLEVEL = 0,
    PREFER_CLOSE_LOG = 1,
    PREFER_OPEN_LOG = 2,
} PreferStrategy;

/// Formats and delivers one message.
///
/// A conversion marked {public} prints its value, as in "%{public}s"; one without a mark or marked {private} prints
/// "<private>", regardless of its width. The conversions are d i u o x X c C s S p e E f F g G with the flags and
/// length modifiers of C, but `z` is as wide as an int, and a pointer prints as 16 digits (8 for 32-bit pointers). Any
/// other conversion or mark makes the whole message empty. A message is truncated to 4095 bytes.
///
/// Returns the sum of the sizes of the tag (at most 31 bytes of it) and the message, each with its null terminator; or
/// -1 if the message is not delivered, an argument is null, or the output cannot be written.
int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, ...)
    HOST_HILOG_FORMAT(5, 6);

/// Returns whether messages of this level are delivered: the level is between DEBUG and FATAL and at least the minimum
/// level, the domain is below 0xD0FFFFF, and the tag is not null.
///
/// The minimum level is set by the system parameters hilog.loggable.tag.TAG, hilog.loggable.domain.HEX and
/// hilog.loggable.global, in this order, each first without and then with the prefix "persist.sys.". The first that
/// holds one of the letters D I W E F, or X to disable all levels, applies. persist.sys.hilog.loggable.global is I by
/// default, as on a device; if it is set to an empty string, everything from DEBUG on is loggable.
bool HiLogIsLoggable(unsigned int domain, const char *tag, LogLevel level);

/// Sets the level of the application's own domains, 0 to 0xFFFF. The level of the parameters and `level` are combined:
/// PREFER_CLOSE_LOG uses the higher one, PREFER_OPEN_LOG the lower one, UNSET_LOGLEVEL only that of the parameters.
/// HiLogSetAppMinLogLevel uses PREFER_CLOSE_LOG. Invalid levels and preferences are ignored.
/// @{
void HiLogSetAppLogLevel(LogLevel level, PreferStrategy prefer);
void HiLogSetAppMinLogLevel(LogLevel level);
/// @}

/// The type of the callback that LOG_SetCallback sets.
typedef void (*LogCallback)(const LogType type, const LogLevel level, const unsigned int domain, const char *tag,
                            const char *msg);

/// Sets a callback that receives every delivered message, formatted, with its full tag, in addition to the output. It
/// is called in the logging thread, possibly by several threads concurrently, before the message is written; its
/// strings are valid only during the call. A callback that logs is called recursively and must end the recursion
/// itself. Null removes the callback; another thread may still be executing it.
void LOG_SetCallback(LogCallback callback);

/// Macros that return the result of HiLogPrint. All others expand to HILOG_IMPL; HILOG_COMM_... log with LOG_CORE.
/// @{
#define HILOG_IMPL(type, level, domain, tag, ...) HiLogPrint(type, level, domain, tag, __VA_ARGS__)
#define HILOG_DEBUG(type, ...) HILOG_IMPL((type), LOG_DEBUG, LOG_DOMAIN, LOG_TAG, __VA_ARGS__)
#define HILOG_INFO(type, ...) HILOG_IMPL((type), LOG_INFO, LOG_DOMAIN, LOG_TAG, __VA_ARGS__)
#define HILOG_WARN(type, ...) HILOG_IMPL((type), LOG_WARN, LOG_DOMAIN, LOG_TAG, __VA_ARGS__)
#define HILOG_ERROR(type, ...) HILOG_IMPL((type), LOG_ERROR, LOG_DOMAIN, LOG_TAG, __VA_ARGS__)
#define HILOG_FATAL(type, ...) HILOG_IMPL((type), LOG_FATAL, LOG_DOMAIN, LOG_TAG, __VA_ARGS__)
#define HILOG_COMM_INFO(...) HILOG_INFO(LOG_CORE, __VA_ARGS__)
#define HILOG_COMM_WARN(...) HILOG_WARN(LOG_CORE, __VA_ARGS__)
#define HILOG_COMM_ERROR(...) HILOG_ERROR(LOG_CORE, __VA_ARGS__)
#define HILOG_COMM_FATAL(...) HILOG_FATAL(LOG_CORE, __VA_ARGS__)
/// @}

#ifdef __cplusplus
}
#endif

#endif  // HOST_HILOG_LOG_C_H
