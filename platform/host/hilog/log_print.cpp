// SPDX-License-Identifier: Apache-2.0

#include "hilog/log.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>
#include <string_view>

#include "format/format.h"
#include "hilog/log_level.h"

namespace {

constexpr size_t MESSAGE_SIZE = 4096;
constexpr size_t LINE_SIZE = MESSAGE_SIZE + 128;  // a message and its prefix
constexpr size_t LONGEST_TAG = 31;
constexpr unsigned int FIRST_SYSTEM_DOMAIN = 0xD000000;
constexpr unsigned int DOMAIN_MASK = 0xFFFFF;

std::atomic<LogCallback> g_callback{nullptr};

// The text of the last fatal message.
class LastFatal {
public:
    void Set(std::string_view text)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        text_[text.copy(text_.data(), text_.size() - 1)] = '\0';
    }

    void CopyTo(std::array<char, MESSAGE_SIZE> &text)
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        text = text_;
    }

private:
    std::mutex mutex_;
    std::array<char, MESSAGE_SIZE> text_{};
};

LastFatal g_lastFatal;

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

// Writes what comes behind the prefix line by line, each in one write, so that lines of several threads and processes
// do not mix. Lines without text are left out. Returns false when one cannot be written.
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
        LevelLetter(level), TypeLetter(type), domain & DOMAIN_MASK, static_cast<int>(LONGEST_TAG), tag));
    bool isWritten = true;
    while (!message.empty()) {
        const std::string_view text = message.substr(0, message.find('\n'));
        message.remove_prefix(std::min(text.size() + 1, message.size()));
        if (text.empty()) {
            continue;
        }
        char *const end = line + prefix + text.copy(line + prefix, sizeof(line) - prefix - 1);
        *end = '\n';
        const size_t size = static_cast<size_t>(end - line) + 1;
        isWritten = write(STDERR_FILENO, line, size) == static_cast<ssize_t>(size) && isWritten;
    }
    return isWritten;
}

// `fmt` may be null, against its attribute: the caller gets a failure.
int Print(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, va_list arguments)
{
    const int errorOfCaller = errno;  // the first message of a process reads files
    const bool isRefused = type != LOG_APP && domain < FIRST_SYSTEM_DOMAIN;
    if (isRefused || fmt == nullptr || !HiLogIsLoggable(domain, tag, level)) {
        errno = errorOfCaller;
        return -1;
    }
    char message[MESSAGE_SIZE];
    if (FormatBounded(message, sizeof(message), FormatDialect::HILOG, fmt, arguments).outcome ==
        FormatOutcome::INVALID) {
        message[0] = '\0';
    }
    if (level == LOG_FATAL) {
        g_lastFatal.Set(message);
    }
    if (const LogCallback callback = g_callback.load()) {
        callback(type, level, domain, tag, message);
    }
    const std::string_view text(message);
    const bool isDone = !IsLevelWritten(level) || WriteLines(type, level, domain, tag, text);
    errno = errorOfCaller;
    return isDone ? static_cast<int>(std::min(std::strlen(tag), LONGEST_TAG) + 1 + text.size() + 1) : -1;
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

const char *GetLastFatalMessage(void)
{
    static thread_local std::array<char, MESSAGE_SIZE> text;
    g_lastFatal.CopyTo(text);
    return text.data();
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
