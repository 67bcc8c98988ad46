// SPDX-License-Identifier: Apache-2.0

#include "hilog/log.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include "format/format.h"
#include "hilog/log_level.h"
#include "io/write.h"

using namespace ostra::host;

namespace {

constexpr size_t MESSAGE_SIZE = 4096;
constexpr size_t LINE_SIZE = MESSAGE_SIZE + 128;  // a message and its prefix
constexpr size_t MAX_TAG_LENGTH = 31;
constexpr unsigned int MIN_SYSTEM_DOMAIN = 0xD000000;
constexpr unsigned int DOMAIN_MASK = 0xFFFFF;

std::atomic<LogCallback> g_callback{nullptr};

char LevelLetter(LogLevel level)
{
    constexpr char letters[] = "DIWEF";
    return letters[level - LOG_DEBUG];  // no other level is delivered
}

char TypeLetter(LogType type)
{
    constexpr char letters[] = "AI?CKP";
    return type >= LOG_APP && type <= LOG_ONLY_PRERELEASE ? letters[type] : '?';
}

// Writes each non-empty line of the message with the prefix. Returns false if a line cannot be written in full.
bool WriteLines(LogType type, LogLevel level, unsigned int domain, const char *tag, std::string_view message)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    constexpr long nanosecondsPerMs = 1000000;

    char line[LINE_SIZE];
    const auto prefix = static_cast<size_t>(std::snprintf(
        line, sizeof(line), "%02d-%02d %02d:%02d:%02d.%03ld %5d %5ld %c %c%05x/%.*s: ", local.tm_mon + 1, local.tm_mday,
        local.tm_hour, local.tm_min, local.tm_sec, now.tv_nsec / nanosecondsPerMs, getpid(), syscall(SYS_gettid),
        LevelLetter(level), TypeLetter(type), domain & DOMAIN_MASK, static_cast<int>(MAX_TAG_LENGTH), tag));
    bool isWritten = true;
    while (!message.empty()) {
        const std::string_view row = message.substr(0, message.find('\n'));
        message.remove_prefix(std::min(row.size() + 1, message.size()));
        if (row.empty()) {
            continue;
        }
        char *const end = line + prefix + row.copy(line + prefix, sizeof(line) - prefix - 1);
        *end = '\n';
        const size_t size = static_cast<size_t>(end - line) + 1;
        isWritten = WriteOnce(STDERR_FILENO, {line, size}) == static_cast<ssize_t>(size) && isWritten;
    }
    return isWritten;
}

// `fmt` may be null despite the format attribute of the public functions.
int Print(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, va_list arguments)
{
    const int savedErrno = errno;  // checking the level may change it
    const bool isInvalidDomain = type != LOG_APP && domain < MIN_SYSTEM_DOMAIN;
    if (isInvalidDomain || fmt == nullptr || !HiLogIsLoggable(domain, tag, level)) {
        errno = savedErrno;
        return -1;
    }
    char message[MESSAGE_SIZE];
    if (FormatBounded(message, sizeof(message), FormatDialect::HILOG, fmt, arguments).outcome ==
        FormatOutcome::INVALID) {
        message[0] = '\0';
    }
    if (const LogCallback callback = g_callback.load()) {
        callback(type, level, domain, tag, message);
    }
    const std::string_view formatted(message);
    const bool isWritten = !IsLevelWritten(level) || WriteLines(type, level, domain, tag, formatted);
    errno = savedErrno;
    return isWritten ? static_cast<int>(std::min(std::strlen(tag), MAX_TAG_LENGTH) + 1 + formatted.size() + 1) : -1;
}

}  // namespace

int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, ...)
{
    va_list arguments;
    va_start(arguments, fmt);
    const int result = Print(type, level, domain, tag, fmt, arguments);
    va_end(arguments);
    return result;
}

void LOG_SetCallback(LogCallback callback)
{
    g_callback.store(callback);
}

namespace OHOS::HiviewDFX {

#define HOST_HILOG_METHOD(Name, level)                                                        \
    int HiLog::Name(const HiLogLabel &label, const char *fmt, ...)                            \
    {                                                                                         \
        va_list arguments;                                                                    \
        va_start(arguments, fmt);                                                             \
        const int result = Print(label.type, level, label.domain, label.tag, fmt, arguments); \
        va_end(arguments);                                                                    \
        return result;                                                                        \
    }

HOST_HILOG_METHOD(Debug, LOG_DEBUG)
HOST_HILOG_METHOD(Info, LOG_INFO)
HOST_HILOG_METHOD(Warn, LOG_WARN)
HOST_HILOG_METHOD(Error, LOG_ERROR)
HOST_HILOG_METHOD(Fatal, LOG_FATAL)

}  // namespace OHOS::HiviewDFX
