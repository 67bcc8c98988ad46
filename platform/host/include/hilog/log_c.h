// SPDX-License-Identifier: Apache-2.0
//
// HiLog on the host, the C interface: what is delivered and how it reads is what a device does; the output is standard
// error instead of the log service. All functions may be called from any thread at once. A C compiler accepts this
// header.
//
// A message is delivered when its level is loggable (see HiLogIsLoggable), its domain below 0xD0FFFFF and, but for
// LOG_APP, at least 0xD000000. A delivered message goes to the callback and to standard error, where
// OSTRA_HOST_LOG_LEVEL may raise the lowest level written (debug, info, warn, error, fatal, off; everything delivered
// when unset). That changes nothing of what is delivered, with one exception: `debug` lets DEBUG messages be delivered,
// which a device never does by default.

#ifndef HOST_HILOG_LOG_C_H
#define HOST_HILOG_LOG_C_H

#include <stdarg.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Clang checks formats with their privacy marks against the arguments, as on a device. GCC knows no format with marks
// and checks nothing.
#ifdef __clang__
#define HOST_HILOG_FORMAT(format, first) __attribute__((__format__(os_log, format, first)))
#else
#define HOST_HILOG_FORMAT(format, first)
#endif

// The domain and the tag of the macros below, unless the file defines its own.
#ifndef LOG_DOMAIN
#define LOG_DOMAIN 0
#endif
#ifndef LOG_TAG
#define LOG_TAG NULL
#endif

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

// Formats and delivers one message. A conversion marked {public} prints in the clear, as in "%{public}s"; an unmarked
// one or one marked {private} prints "<private>" and nothing of its width. Conversions are d i u o x X c C s S p e E f
// F g G with the flags and sizes of C, but `z` is as wide as an int, and a pointer prints as 16 digits (8 where
// pointers have 32 bits). Any other conversion or mark empties the whole message. A message holds at most 4095 bytes
// and is cut there. Returns the bytes of the tag, at most 31 of which go to the log, and of the text with their zero
// bytes; -1, with nothing formatted, when the message is not delivered or an argument is null, or when it cannot be
// written.
int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, ...)
    HOST_HILOG_FORMAT(5, 6);

// True when messages of this level are delivered: a level from DEBUG to FATAL, at least the one that is set, a domain
// below 0xD0FFFFF and a tag. The level is set by the system parameters hilog.loggable.tag.TAG,
// hilog.loggable.domain.HEX and hilog.loggable.global, each with or without "persist.sys." in front: the first of these
// that holds one of the letters D I W E F, or X for none, decides, without the prefix before with it.
// persist.sys.hilog.loggable.global is I unless it is set, as on a device; set to an empty text, everything from DEBUG
// on is loggable.
bool HiLogIsLoggable(unsigned int domain, const char *tag, LogLevel level);

// Sets the level of the own application's domains, 0 to 0xFFFF: with PREFER_CLOSE_LOG the higher one of `level` and
// what the parameters say counts, with PREFER_OPEN_LOG the lower one, with UNSET_LOGLEVEL the parameters' alone.
// HiLogSetAppMinLogLevel prefers closing. A level that is none, or an unknown preference, changes nothing.
void HiLogSetAppLogLevel(LogLevel level, PreferStrategy prefer);
void HiLogSetAppMinLogLevel(LogLevel level);

// Receives every delivered message, formatted, with its whole tag; the output goes on regardless. The callback runs in
// the thread that logs, on several at once, before the output; its texts are valid during the call only. A callback
// that logs is called for that message in turn: unless it ends this itself, it runs until the stack is used up. Null
// stops it; a call that another thread has begun may still be running then.
typedef void (*LogCallback)(const LogType type, const LogLevel level, const unsigned int domain, const char *tag,
                            const char *msg);
void LOG_SetCallback(LogCallback callback);

// The text of the last delivered FATAL message of the process, "" before the first. Valid until the calling thread asks
// again or ends.
const char *GetLastFatalMessage(void);

// Each has the result of HiLogPrint. HILOG_IMPL is what the others come down to; HILOG_COMM_... log with LOG_CORE.
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

#ifdef __cplusplus
}
#endif

#endif  // HOST_HILOG_LOG_C_H
