// SPDX-License-Identifier: Apache-2.0
//
// The one log function of the library, and the macros that put the calling function's name in front of each message:
//
//     OSTRA_LOGI("open port %d", port);     // [ostraadapterutils][Connect]:open port 8080
//
// The macros compose the text at compile time from the name of the enclosing function (bare, without its class), so a
// call costs no allocation and no formatting beyond that of DHLog, and the compiler checks the message's conversions
// against the arguments. The message must be a string literal; the whole composed text is the format. Hosting services
// may use both. Inside a lambda the name is "operator()": log outside of it. Everything here may be called from any
// thread at once.

#ifndef OSTRA_ADAPTER_LOG_H
#define OSTRA_ADAPTER_LOG_H

#include <cstddef>
#include <cstdint>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// Severity of a message. Any other value is accepted and logged like DH_LOG_INFO.
enum DHLogLevel : int32_t {
    DH_LOG_DEBUG = 0,
    DH_LOG_INFO = 1,
    DH_LOG_WARN = 2,
    DH_LOG_ERROR = 3,
};

// Formats `format` in the manner of printf and writes the result to HiLog: type LOG_CORE, domain 0xD004160, tag
// "OSTRA_ADAPTER", in the clear. A message holds at most 4095 bytes; a longer one, or one whose format is invalid, is
// replaced as a whole by "DH log length error." at the same level. Never fails towards the caller, allocates nothing,
// and filters nothing by level. Uses about 4 KiB of stack.
OSTRA_EXPORT void DHLog(DHLogLevel level, const char *format, ...) __attribute__((format(printf, 2, 3)));

// The tag that stands in front of every message.
inline constexpr char LOG_PREFIX_TAG[] = "ostraadapterutils";

// A zero-terminated text of at most CAPACITY - 1 bytes, composed at compile time.
template <size_t CAPACITY>
struct LogText {
    char chars[CAPACITY];
};

// Composes "[" + LOG_PREFIX_TAG + "][" + function + "]:" + message.
template <size_t FUNCTION_SIZE, size_t MESSAGE_SIZE>
constexpr auto ComposeLogText(const char (&function)[FUNCTION_SIZE], const char (&message)[MESSAGE_SIZE])
{
    LogText<sizeof(LOG_PREFIX_TAG) + FUNCTION_SIZE + MESSAGE_SIZE + sizeof("[][]:")> text{};
    size_t length = 0;
    const auto append = [&text, &length](const char *part) {
        for (; *part != '\0'; ++part) {
            text.chars[length++] = *part;
        }
    };
    append("[");
    append(LOG_PREFIX_TAG);
    append("][");
    append(function);
    append("]:");
    append(message);
    return text;
}

// Never called: the compiler checks the message's conversions on it.
__attribute__((format(printf, 1, 2))) inline void CheckLogMessage(const char * /* message */, ...)
{
}

// Hands a composed text to DHLog through a pointer without the format check, which refuses what is no literal.
// `message` is only there because macros cannot drop it from their arguments.
template <typename... Arguments>
inline void LogComposed(DHLogLevel level, const char *text, const char * /* message */, Arguments... arguments)
{
    constexpr void (*log)(DHLogLevel, const char *, ...) = DHLog;
    log(level, text, arguments...);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

// The first of its arguments.
#define OSTRA_LOG_FIRST(first, ...) first

// What the four macros below are made of. The arguments behind the level are the message and what its conversions take.
#define OSTRA_LOG(level, ...)                                                                                     \
    do {                                                                                                          \
        static constexpr auto ostraLogText_ =                                                                     \
            ::OHOS::DistributedHardware::OstraAdapter::ComposeLogText(__func__, OSTRA_LOG_FIRST(__VA_ARGS__, 0)); \
        if (false) {                                                                                              \
            ::OHOS::DistributedHardware::OstraAdapter::CheckLogMessage(__VA_ARGS__);                              \
        }                                                                                                         \
        ::OHOS::DistributedHardware::OstraAdapter::LogComposed(level, ostraLogText_.chars, __VA_ARGS__);          \
    } while (false)

// Logs a message, a string literal, with what its conversions take: at debug, info, warning or error level by the last
// letter of the name.
#define OSTRA_LOGD(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_DEBUG, __VA_ARGS__)
#define OSTRA_LOGI(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_INFO, __VA_ARGS__)
#define OSTRA_LOGW(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_WARN, __VA_ARGS__)
#define OSTRA_LOGE(...) OSTRA_LOG(::OHOS::DistributedHardware::OstraAdapter::DH_LOG_ERROR, __VA_ARGS__)

#endif  // OSTRA_ADAPTER_LOG_H
