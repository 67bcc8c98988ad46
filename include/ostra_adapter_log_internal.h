// SPDX-License-Identifier: Apache-2.0
//
// Implementation of the macros in ostra_adapter_log.h; include that header instead. Not part of the interface.

#ifndef OSTRA_ADAPTER_LOG_INTERNAL_H
#define OSTRA_ADAPTER_LOG_INTERNAL_H

#include <cstddef>

#include "ostra_adapter_log.h"

/// @cond INTERNAL

namespace OHOS::DistributedHardware::OstraAdapter {

inline constexpr char LOG_PREFIX_TAG[] = "ostraadapterutils";

// A null-terminated string of at most CAPACITY - 1 bytes, composed at compile time.
template <size_t CAPACITY>
struct LogFormat {
    char chars[CAPACITY];
};

// Returns "[" + LOG_PREFIX_TAG + "][" + function + "]:" + message.
template <size_t FUNCTION_SIZE, size_t MESSAGE_SIZE>
constexpr auto ComposeLogFormat(const char (&function)[FUNCTION_SIZE], const char (&message)[MESSAGE_SIZE])
{
    LogFormat<sizeof(LOG_PREFIX_TAG) + FUNCTION_SIZE + MESSAGE_SIZE + sizeof("[][]:")> format{};
    size_t length = 0;
    const auto append = [&format, &length](const char *part) {
        for (; *part != '\0'; ++part) {
            format.chars[length++] = *part;
        }
    };
    append("[");
    append(LOG_PREFIX_TAG);
    append("][");
    append(function);
    append("]:");
    append(message);
    return format;
}

// Never called: makes the compiler check the arguments against the format specifiers of the message.
__attribute__((format(printf, 1, 2))) inline void CheckLogMessage(const char * /* message */, ...)
{
}

// Calls DHLog through a pointer without the format attribute, since the compiler can check only string literals.
// `message` is unused, but OSTRA_LOG cannot remove it from __VA_ARGS__.
template <typename... Arguments>
inline void LogComposed(DHLogLevel level, const char *format, const char * /* message */, Arguments... arguments)
{
    constexpr void (*log)(DHLogLevel, const char *, ...) = DHLog;
    log(level, format, arguments...);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

#define OSTRA_LOG_FIRST(first, ...) first

// The arguments after `level` are those of printf: the message as the format string, and its values.
#define OSTRA_LOG(level, ...)                                                                                       \
    do {                                                                                                            \
        static constexpr auto ostraLogFormat_ =                                                                     \
            ::OHOS::DistributedHardware::OstraAdapter::ComposeLogFormat(__func__, OSTRA_LOG_FIRST(__VA_ARGS__, 0)); \
        if (false) {                                                                                                \
            ::OHOS::DistributedHardware::OstraAdapter::CheckLogMessage(__VA_ARGS__);                                \
        }                                                                                                           \
        ::OHOS::DistributedHardware::OstraAdapter::LogComposed(level, ostraLogFormat_.chars, __VA_ARGS__);          \
    } while (false)

/// @endcond

#endif  // OSTRA_ADAPTER_LOG_INTERNAL_H
