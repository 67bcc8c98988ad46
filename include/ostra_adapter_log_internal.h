// SPDX-License-Identifier: Apache-2.0
//
// What the macros of ostra_adapter_log.h are made of: include that header instead. Nothing here is part of the
// interface.

#ifndef OSTRA_ADAPTER_LOG_INTERNAL_H
#define OSTRA_ADAPTER_LOG_INTERNAL_H

#include <cstddef>

#include "ostra_adapter_log.h"

/// @cond INTERNAL

namespace OHOS::DistributedHardware::OstraAdapter {

inline constexpr char LOG_PREFIX_TAG[] = "ostraadapterutils";

// A null-terminated string of at most CAPACITY - 1 bytes, composed at compile time.
template <size_t CAPACITY>
struct LogText {
    char chars[CAPACITY];
};

// Returns "[" + LOG_PREFIX_TAG + "][" + function + "]:" + message.
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

// Never called: with it the compiler checks the conversions of a message against its arguments.
__attribute__((format(printf, 1, 2))) inline void CheckLogMessage(const char * /* message */, ...)
{
}

// Passes a composed message to DHLog through a pointer without the format check, which accepts only string literals.
// `message` is there because a macro cannot drop it from its arguments.
template <typename... Arguments>
inline void LogComposed(DHLogLevel level, const char *text, const char * /* message */, Arguments... arguments)
{
    constexpr void (*log)(DHLogLevel, const char *, ...) = DHLog;
    log(level, text, arguments...);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

#define OSTRA_LOG_FIRST(first, ...) first

// The arguments after the level are the message and the arguments of its conversions.
#define OSTRA_LOG(level, ...)                                                                                     \
    do {                                                                                                          \
        static constexpr auto ostraLogText_ =                                                                     \
            ::OHOS::DistributedHardware::OstraAdapter::ComposeLogText(__func__, OSTRA_LOG_FIRST(__VA_ARGS__, 0)); \
        if (false) {                                                                                              \
            ::OHOS::DistributedHardware::OstraAdapter::CheckLogMessage(__VA_ARGS__);                              \
        }                                                                                                         \
        ::OHOS::DistributedHardware::OstraAdapter::LogComposed(level, ostraLogText_.chars, __VA_ARGS__);          \
    } while (false)

/// @endcond

#endif  // OSTRA_ADAPTER_LOG_INTERNAL_H
