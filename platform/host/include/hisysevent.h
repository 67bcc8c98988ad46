// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// HiSysEvent on the host: writes the events of this process. An event is one flat JSON object: `domain_`, `name_`,
/// `type_`, `time_` (ms since the Unix epoch), `tz_` (such as "+0200"), `pid_`, `tid_`, `uid_`, then the event's own
/// keys in the order given.
///
///     HiSysEvent::Write(__func__, __LINE__, "DOMAIN", "EVENT", HiSysEvent::BEHAVIOR, "NAME", name, "COUNT", 3);
///     HiSysEventWrite(HiSysEvent::Domain::DSOFTBUS, "EVENT", HiSysEvent::FAULT, "COUNT", 3);
///
/// The listeners of the process receive it (hisysevent_manager.h). If OSTRA_HOST_EVENT_OUTPUT is "stderr" or the path
/// of a file, the event is also appended there, one line per event. All functions are thread-safe.

#ifndef HOST_HISYSEVENT_H
#define HOST_HISYSEVENT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "def.h"

/// A call site may write HISYSEVENT_THRESHOLD events in HISYSEVENT_PERIOD seconds. A source file may define its own
/// values before it includes this header.
/// @{
#ifndef HISYSEVENT_PERIOD
#define HISYSEVENT_PERIOD 5
#endif
#ifndef HISYSEVENT_THRESHOLD
#define HISYSEVENT_THRESHOLD 100
#endif
/// @}

/// Calls HiSysEvent::Write for this call site and returns its result. The domain is a constexpr character array.
#define HiSysEventWrite(domain, ...) OHOS::HiviewDFX::HiSysEvent::Write<domain>(__FUNCTION__, __LINE__, __VA_ARGS__)

/// @cond The form in which HiSysEvent::Write passes an event to the library. Not part of the platform's interface.
namespace ostra::host {

// Not any type that converts to std::string: EventScalar would reference a temporary string.
template <typename Value>
constexpr bool IS_EVENT_STRING =
    std::is_convertible_v<const Value &, const char *> || std::is_convertible_v<const Value *, const std::string *>;

template <typename Value>
constexpr bool IS_EVENT_VALUE = std::is_arithmetic_v<Value> || std::is_enum_v<Value> || IS_EVENT_STRING<Value>;

/// A single value or one element of a vector. Strings are not copied.
struct EventScalar {
    enum class Kind : uint8_t { SIGNED, UNSIGNED, FLOAT, DOUBLE, STRING };

    template <typename Value>
    static EventScalar Of(const Value &value)
    {
        static_assert(IS_EVENT_VALUE<Value>,
                      "HiSysEvent::Write: a value must be a bool, an integer, a floating-point number, an unscoped "
                      "enumeration, a std::string, a C string, or a std::vector of one of these");
        EventScalar scalar;
        if constexpr (std::is_enum_v<Value>) {
            static_assert(std::is_convertible_v<Value, std::underlying_type_t<Value>>,
                          "HiSysEvent::Write: convert a scoped enumeration to its underlying type");
            return Of(static_cast<std::underlying_type_t<Value>>(value));
        } else if constexpr (std::is_integral_v<Value>) {
            scalar.kind = std::is_signed_v<Value> ? Kind::SIGNED : Kind::UNSIGNED;
            scalar.bits = static_cast<uint64_t>(value);
        } else if constexpr (std::is_floating_point_v<Value>) {
            scalar.kind = std::is_same_v<Value, float> ? Kind::FLOAT : Kind::DOUBLE;
            scalar.floating = static_cast<double>(value);
        } else if constexpr (IS_EVENT_STRING<Value>) {
            scalar.string = View(value);
        }
        return scalar;
    }

    /// Returns a view without data for a null string; writing such a view aborts the process.
    static std::string_view View(const char *string)
    {
        return string == nullptr ? std::string_view() : std::string_view(string);
    }

    static std::string_view View(const std::string &string)
    {
        return string;
    }

    Kind kind = Kind::STRING;
    uint64_t bits = 0;  // of a bool or an integer
    double floating = 0;
    std::string_view string;
};

struct EventKeyValue {
    template <typename Value>
    void Set(const Value &value)
    {
        elements.push_back(EventScalar::Of(value));
    }

    template <typename Value>
    void Set(const std::vector<Value> &values)
    {
        isVector = true;
        elements.reserve(values.size());
        for (auto &&element : values) {
            elements.push_back(EventScalar::Of(static_cast<const Value &>(element)));
        }
    }

    std::string_view key;
    bool isVector = false;
    std::vector<EventScalar> elements;  // one element if it is not a vector
};

struct EventCallSite {
    const char *func;
    int64_t line;
    int64_t period;  // in seconds
    uint32_t threshold;
};

/// Like HiSysEvent::Write, for values whose number and types are known only at run time.
__attribute__((visibility("default"))) int WriteEvent(const EventCallSite &site, const std::string &domain,
                                                      const std::string &eventName, int type,
                                                      const EventKeyValue *params, size_t paramCount);

}  // namespace ostra::host
/// @endcond

namespace OHOS::HiviewDFX {

/// Writes events.
class HiSysEvent {
public:
    enum EventType : int { FAULT = 1, STATISTIC = 2, SECURITY = 3, BEHAVIOR = 4 };

    /// Domains of some platform components.
    class Domain {
    public:
        static constexpr char DISTRIBUTED_HARDWARE_FWK[] = "DISTHWFWK";
        static constexpr char DSOFTBUS[] = "DSOFTBUS";
    };

    /// Writes one event.
    ///
    /// `func` and `line` name the call site. `keyValues` are pairs of a key, which is a string, and its value: a bool
    /// (written as 1 or 0), an integer, a floating-point number, an unscoped enumeration, a std::string, a C string, or
    /// a std::vector of one of these. Control characters are dropped from strings, except tab, line feed, carriage
    /// return, backspace and form feed; infinities and NaN are written as 0. A null C string aborts the process.
    ///
    /// Returns the first of these errors that applies, and the event is not sent:
    ///   - -6: rate limit exceeded. A call site may write HISYSEVENT_THRESHOLD events in a period, including those that
    ///     fail with another error. The period begins with its first event and ends with the first that is written more
    ///     than HISYSEVENT_PERIOD wall-clock seconds later or, if the clock was set back, earlier than that event. A
    ///     call site is identified by the first 256 bytes of "EVENTNAME_FUNC_LINE"; the 30 most recently used are
    ///     tracked.
    ///   - -1: invalid domain name (at most 16 characters)
    ///   - -2: invalid event name (at most 32 characters)
    ///   - -4: the encoded event exceeds 384 KiB
    ///   - -9: allocation fails in cJSON
    ///   - -5: the configured output cannot be written. The next successful write sends the last 100 such events first.
    ///
    /// Otherwise the event is sent, and the result is 0 or the last of these warnings in the order of the keys:
    ///   - 1: invalid key (at most 48 characters), dropped with its value
    ///   - 2: a string exceeds 262144 bytes; it is written in full
    ///   - 3: more than 128 keys; the rest are dropped
    ///   - 4: a vector has more than 100 elements; the rest are dropped
    ///
    /// Names consist of letters, digits and `_` and begin with a letter.
    template <typename... Types, int64_t Period = HISYSEVENT_PERIOD, uint32_t Threshold = HISYSEVENT_THRESHOLD>
    static int Write(const char *func, int64_t line, const std::string &domain, const std::string &eventName,
                     EventType type, Types... keyValues)
    {
        return WriteAt({func, line, Period, Threshold}, domain, eventName, type, keyValues...);
    }

    /// The same with a domain that is known at compile time.
    template <const char *DomainName, typename... Types, int64_t Period = HISYSEVENT_PERIOD,
              uint32_t Threshold = HISYSEVENT_THRESHOLD>
    static int Write(const char *func, int64_t line, const std::string &eventName, EventType type, Types... keyValues)
    {
        return WriteAt({func, line, Period, Threshold}, DomainName, eventName, type, keyValues...);
    }

private:
    template <typename... Types>
    static int WriteAt(const ostra::host::EventCallSite &site, const std::string &domain, const std::string &eventName,
                       EventType type, const Types &...keyValues)
    {
        static_assert(
            AreKeyValues<Types...>(),
            "HiSysEvent::Write: the arguments after the event type must be pairs of a string key and a value");
        std::array<ostra::host::EventKeyValue, sizeof...(Types) / 2> params{};
        // An initializer list instead of a fold expression: compilers limit the nesting depth of expressions.
        size_t at = 0;
        const std::initializer_list<int> inOrder = {(Pack(params.data(), at++, keyValues), 0)...};
        static_cast<void>(inOrder);
        return ostra::host::WriteEvent(site, domain, eventName, type, params.data(), params.size());
    }

    template <typename... Types>
    static constexpr bool AreKeyValues()
    {
        constexpr bool isString[] = {ostra::host::IS_EVENT_STRING<Types>..., true};
        bool isValid = sizeof...(Types) % 2 == 0;
        for (size_t key = 0; key < sizeof...(Types); key += 2) {
            isValid = isValid && isString[key];
        }
        return isValid;
    }

    template <typename Type>
    static void Pack(ostra::host::EventKeyValue *params, size_t at, const Type &keyOrValue)
    {
        ostra::host::EventKeyValue &param = params[at / 2];
        if (at % 2 != 0) {
            param.Set(keyOrValue);
        } else if constexpr (ostra::host::IS_EVENT_STRING<Type>) {
            param.key = ostra::host::EventScalar::View(keyOrValue);
        }
    }
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_H
