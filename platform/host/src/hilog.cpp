// SPDX-License-Identifier: Apache-2.0

#include "hilog/log.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

namespace {

constexpr size_t MAX_MESSAGE_SIZE = 4096;
constexpr size_t MAX_LINE_SIZE = MAX_MESSAGE_SIZE + 256;
constexpr unsigned int DOMAIN_MASK = 0xFFFFF;
constexpr int LEVEL_OFF = LOG_FATAL + 1;
constexpr char LEVEL_VARIABLE[] = "OSTRA_HOST_LOG_LEVEL";

std::atomic<LogCallback> g_callback{nullptr};

int LevelFromEnvironment()
{
    struct NamedLevel {
        std::string_view name;
        int level;
    };
    static constexpr NamedLevel levels[] = {{"debug", LOG_DEBUG}, {"info", LOG_INFO},   {"warn", LOG_WARN},
                                            {"error", LOG_ERROR}, {"fatal", LOG_FATAL}, {"off", LEVEL_OFF}};
    const char *wanted = std::getenv(LEVEL_VARIABLE);
    if (wanted == nullptr) {
        return LOG_INFO;
    }
    for (const NamedLevel &entry : levels) {
        if (entry.name == wanted) {
            return entry.level;
        }
    }
    std::fprintf(stderr, "%s=%s is none of debug, info, warn, error, fatal, off; taking info\n", LEVEL_VARIABLE,
                 wanted);
    return LOG_INFO;
}

int LowestLevelWritten()
{
    static const int level = LevelFromEnvironment();
    return level;
}

// Collects a message in a fixed buffer and cuts it at the end.
class MessageBuffer {
public:
    void Append(std::string_view text)
    {
        const size_t length = std::min(text.size(), Room());
        std::memcpy(chars_ + size_, text.data(), length);
        size_ += length;
        chars_[size_] = '\0';
    }

    template <typename Value>
    void Print(const char *format, Value value)
    {
        const int length = std::snprintf(chars_ + size_, Room() + 1, format, value);
        if (length > 0) {
            size_ += std::min(static_cast<size_t>(length), Room());
        }
    }

    const char *Text() const
    {
        return chars_;
    }

private:
    size_t Room() const
    {
        return sizeof(chars_) - 1 - size_;
    }

    size_t size_ = 0;
    char chars_[MAX_MESSAGE_SIZE] = {0};
};

// One conversion of a format, as "%{public}-8.3ld" splits into its parts.
struct Conversion {
    bool isPublic = false;
    char format[64] = {0};  // without the privacy mark, widths and precisions filled in
    std::string_view length;
    char type = '\0';
};

// Reads the conversion behind the percent sign at `cursor` and moves the cursor behind it. Takes the arguments of
// starred widths and precisions. Returns false when the text is no conversion.
bool ReadConversion(const char *&cursor, Conversion &conversion, va_list &arguments)
{
    constexpr std::string_view publicMark = "{public}";
    constexpr std::string_view privateMark = "{private}";
    const char *position = cursor + 1;
    const std::string_view rest(position);
    if (rest.substr(0, publicMark.size()) == publicMark) {
        conversion.isPublic = true;
        position += publicMark.size();
    } else if (rest.substr(0, privateMark.size()) == privateMark) {
        position += privateMark.size();
    }

    size_t used = 0;
    conversion.format[used++] = '%';
    while (*position != '\0' && std::strchr("-+ #0123456789.*'", *position) != nullptr) {
        constexpr size_t longestNumber = 16;
        if (used + longestNumber >= sizeof(conversion.format)) {
            return false;
        }
        if (*position == '*') {
            const int number = va_arg(arguments, int);
            const bool isPrecision = conversion.format[used - 1] == '.';
            if (isPrecision && number < 0) {
                --used;  // counts as no precision
            } else {
                used += static_cast<size_t>(std::snprintf(conversion.format + used, longestNumber, "%d", number));
            }
        } else {
            conversion.format[used++] = *position;
        }
        ++position;
    }
    const char *lengthBegin = position;
    while (*position != '\0' && std::strchr("hlz", *position) != nullptr) {
        ++position;
    }
    conversion.length = std::string_view(lengthBegin, static_cast<size_t>(position - lengthBegin));
    conversion.type = *position;
    if (conversion.type == '\0' || conversion.length.size() > 2 ||
        std::strchr("diouxXcspeEfFgGaA", conversion.type) == nullptr) {
        return false;
    }
    std::memcpy(conversion.format + used, lengthBegin, conversion.length.size() + 1);
    cursor = position + 1;
    return true;
}

template <typename Value>
void FormatTyped(MessageBuffer &message, const Conversion &conversion, Value value)
{
    if (conversion.isPublic) {
        message.Print(conversion.format, value);
    } else {
        message.Append("<private>");
    }
}

void FormatInteger(MessageBuffer &message, const Conversion &conversion, va_list &arguments)
{
    if (conversion.length == "ll") {
        FormatTyped(message, conversion, va_arg(arguments, long long));
    } else if (conversion.length == "l") {
        FormatTyped(message, conversion, va_arg(arguments, long));
    } else if (conversion.length == "z") {
        FormatTyped(message, conversion, va_arg(arguments, size_t));
    } else {
        FormatTyped(message, conversion, va_arg(arguments, int));
    }
}

void FormatValue(MessageBuffer &message, const Conversion &conversion, va_list &arguments)
{
    switch (conversion.type) {
        case 's': {
            const char *text = va_arg(arguments, const char *);
            FormatTyped(message, conversion, text == nullptr ? "(null)" : text);
            break;
        }
        case 'p':
            FormatTyped(message, conversion, va_arg(arguments, void *));
            break;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            FormatTyped(message, conversion, va_arg(arguments, double));
            break;
        default:
            FormatInteger(message, conversion, arguments);
            break;
    }
}

// Formats as the platform does, privacy marks included. What is no conversion is copied as it stands.
void FormatMessage(MessageBuffer &message, const char *format, va_list &arguments)
{
    while (*format != '\0') {
        const size_t plain = std::strcspn(format, "%");
        message.Append({format, plain});
        format += plain;
        if (*format == '\0') {
            return;
        }
        Conversion conversion;
        if (format[1] == '%') {
            message.Append("%");
            format += 2;
        } else if (ReadConversion(format, conversion, arguments)) {
            FormatValue(message, conversion, arguments);
        } else {
            message.Append("%");
            ++format;
        }
    }
}

char LevelLetter(LogLevel level)
{
    constexpr char letters[] = "DIWEF";
    return level >= LOG_DEBUG && level <= LOG_FATAL ? letters[level - LOG_DEBUG] : '?';
}

char TypeLetter(LogType type)
{
    constexpr char letters[] = "AI?CKP";
    return type >= LOG_APP && type <= LOG_ONLY_PRERELEASE ? letters[type] : '?';
}

// One line, one write: lines of several threads and processes do not mix.
int WriteLine(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *message)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    constexpr long nanosecondsPerMs = 1000000;

    char line[MAX_LINE_SIZE];
    const int length = std::snprintf(line, sizeof(line), "%02d-%02d %02d:%02d:%02d.%03ld %5d %5ld %c %c%05X/%s: %s\n",
                                     local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                                     now.tv_nsec / nanosecondsPerMs, getpid(), syscall(SYS_gettid), LevelLetter(level),
                                     TypeLetter(type), domain & DOMAIN_MASK, tag, message);
    if (length < 0) {
        return -1;
    }
    const size_t size = std::min(static_cast<size_t>(length), sizeof(line) - 1);
    line[size - 1] = '\n';  // a tag of unusual length may have pushed it out
    return static_cast<int>(write(STDERR_FILENO, line, size));
}

}  // namespace

bool HiLogIsLoggable(unsigned int /* domain */, const char * /* tag */, LogLevel level)
{
    const int lowest = LowestLevelWritten();
    return lowest != LEVEL_OFF && level >= lowest;
}

int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char *tag, const char *fmt, ...)
{
    if (tag == nullptr || fmt == nullptr) {
        return -1;
    }
    const LogCallback callback = g_callback.load();
    const bool isWritten = HiLogIsLoggable(domain, tag, level);
    if (callback == nullptr && !isWritten) {
        return 0;
    }
    MessageBuffer message;
    va_list arguments;
    va_start(arguments, fmt);
    FormatMessage(message, fmt, arguments);
    va_end(arguments);

    if (callback != nullptr) {
        callback(type, level, domain, tag, message.Text());
    }
    return isWritten ? WriteLine(type, level, domain, tag, message.Text()) : 0;
}

void LOG_SetCallback(LogCallback callback)
{
    g_callback.store(callback);
}
