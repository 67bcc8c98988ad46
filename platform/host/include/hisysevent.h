// SPDX-License-Identifier: Apache-2.0
//
// HiSysEvent on the host: writes events of the process. An event is one flat JSON object: domain_, name_, type_, time_
// (ms since the Unix epoch), tz_ (such as "+0200"), pid_, tid_, uid_, then the event's own keys in the order given.
//
//     HiSysEvent::Write(__func__, __LINE__, "DOMAIN", "EVENT", HiSysEvent::BEHAVIOR, "TEXT", text, "COUNT", 3);
//     HiSysEventWrite(HiSysEvent::Domain::DSOFTBUS, "EVENT", HiSysEvent::FAULT, "COUNT", 3);
//
// Listeners of the process get it (hisysevent_manager.h). OSTRA_HOST_EVENT_OUTPUT, "stderr" or the path of a file,
// appends it there too, one line an event. All functions may be called from any thread at once.

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

// How many events a call site has (the threshold) in a period, in seconds. A source may set its own before it includes
// this header.
#ifndef HISYSEVENT_PERIOD
#define HISYSEVENT_PERIOD 5
#endif
#ifndef HISYSEVENT_THRESHOLD
#define HISYSEVENT_THRESHOLD 100
#endif

// HiSysEvent::Write of this call site. The domain is a constant array of characters. The value is that of Write.
#define HiSysEventWrite(domain, ...) OHOS::HiviewDFX::HiSysEvent::Write<domain>(__FUNCTION__, __LINE__, __VA_ARGS__)

namespace OHOS::HiviewDFX {

// A single value, or one element of a vector, in the form in which it goes to the library. A text is borrowed.
struct HiSysEventScalar {
    enum class Kind : uint8_t { SIGNED, UNSIGNED, FLOAT, DOUBLE, TEXT };

    template <typename Value>
    static HiSysEventScalar Of(const Value &value)
    {
        HiSysEventScalar scalar;
        if constexpr (std::is_enum_v<Value>) {
            static_assert(std::is_convertible_v<Value, std::underlying_type_t<Value>>, "convert scoped enumerations");
            return Of(static_cast<std::underlying_type_t<Value>>(value));
        } else if constexpr (std::is_integral_v<Value>) {
            scalar.kind = std::is_signed_v<Value> ? Kind::SIGNED : Kind::UNSIGNED;
            scalar.bits = static_cast<uint64_t>(value);
        } else if constexpr (std::is_floating_point_v<Value>) {
            scalar.kind = std::is_same_v<Value, float> ? Kind::FLOAT : Kind::DOUBLE;
            scalar.floating = static_cast<double>(value);
        } else {
            scalar.text = Text(value);
        }
        return scalar;
    }

    // Without data for null, which ends the process where the text is needed.
    static std::string_view Text(const char *text)
    {
        return text == nullptr ? std::string_view() : std::string_view(text);
    }

    static std::string_view Text(const std::string &text)
    {
        return text;
    }

    Kind kind = Kind::TEXT;
    uint64_t bits = 0;  // of a truth value or an integer
    double floating = 0;
    std::string_view text;
};

// A key and its value in the same form.
struct HiSysEventKeyValue {
    template <typename Value>
    void Set(const Value &value)
    {
        elements.push_back(HiSysEventScalar::Of(value));
    }

    template <typename Value>
    void Set(const std::vector<Value> &values)
    {
        isVector = true;
        elements.reserve(values.size());
        for (auto &&element : values) {
            elements.push_back(HiSysEventScalar::Of(static_cast<const Value &>(element)));
        }
    }

    std::string_view key;
    bool isVector = false;
    std::vector<HiSysEventScalar> elements;  // just the value where it is no vector
};

// Where an event is written, and how often it may be.
struct HiSysEventCallSite {
    const char *func;
    int64_t line;
    int64_t period;  // in seconds
    uint32_t threshold;
};

class HiSysEvent {
public:
    enum EventType { FAULT = 1, STATISTIC = 2, SECURITY = 3, BEHAVIOR = 4 };

    // Domains of platform components that host processes name.
    class Domain {
    public:
        static constexpr char DISTRIBUTED_HARDWARE_FWK[] = "DISTHWFWK";
        static constexpr char DSOFTBUS[] = "DSOFTBUS";
    };

    // Writes one event. func and line name the call site. keyValues are pairs: a key, which is a text, and its value:
    // bool (as 1 or 0), an integer or floating type, an unscoped enumeration, std::string, a C string, or a std::vector
    // of one of them. Control characters are dropped from texts, but for tab, line feed, carriage return, backspace and
    // form feed; a number that is not finite is written as 0. A null C string ends the process.
    //
    // Returns a refusal, the first that applies, in this order; a refused event reaches nobody:
    //   -6  written too often: a call site has HISYSEVENT_THRESHOLD events in a period, which begins with its first
    //       one and ends with the first that is written in a second more than HISYSEVENT_PERIOD behind, or before it,
    //       by the wall clock; whatever else is refused counts among them. Call sites are told apart by the first 256
    //       bytes of eventName_func_line, and the 30 that were last used are remembered.
    //   -1  bad domain name (at most 16 characters)
    //   -2  bad event name (at most 32 characters)
    //   -4  over size: the encoded event takes more than 384 KiB
    //   -5  the configured output cannot be written; a later write that succeeds brings the event after all, of 100
    //       such events the last
    // Otherwise the event goes out, and the result is 0 or the last warning in the order of the keys:
    //   1  a bad key (at most 48 characters), left out with its value
    //   2  a text over 262144 bytes, written whole
    //   3  more than 128 keys, those behind left out
    //   4  a vector of more than 100 elements, cut there
    // Names are letters, digits and '_' and begin with a letter.
    template <typename... Types, int64_t Period = HISYSEVENT_PERIOD, uint32_t Threshold = HISYSEVENT_THRESHOLD>
    static int Write(const char *func, int64_t line, const std::string &domain, const std::string &eventName,
                     EventType type, Types... keyValues)
    {
        return WriteAt({func, line, Period, Threshold}, domain, eventName, type, keyValues...);
    }

    // The same with a domain that is known when compiling.
    template <const char *DomainName, typename... Types, int64_t Period = HISYSEVENT_PERIOD,
              uint32_t Threshold = HISYSEVENT_THRESHOLD>
    static int Write(const char *func, int64_t line, const std::string &eventName, EventType type, Types... keyValues)
    {
        return WriteAt({func, line, Period, Threshold}, DomainName, eventName, type, keyValues...);
    }

private:
    template <typename... Types>
    static int WriteAt(const HiSysEventCallSite &site, const std::string &domain, const std::string &eventName,
                       EventType type, const Types &...keyValues)
    {
        static_assert(AreKeyValues<Types...>(), "a text as key, then its value, and so on");
        std::array<HiSysEventKeyValue, sizeof...(Types) / 2> params{};
        // A list in braces, not a fold: compilers limit how deep an expression nests.
        size_t at = 0;
        const std::initializer_list<int> inOrder = {(Pack(params.data(), at++, keyValues), 0)...};
        static_cast<void>(inOrder);
        return Send(site, domain, eventName, type, params.data(), params.size());
    }

    template <typename... Types>
    static constexpr bool AreKeyValues()
    {
        constexpr bool isText[] = {std::is_convertible_v<Types, std::string>..., true};
        bool isRight = sizeof...(Types) % 2 == 0;
        for (size_t key = 0; key < sizeof...(Types); key += 2) {
            isRight = isRight && isText[key];
        }
        return isRight;
    }

    template <typename Type>
    static void Pack(HiSysEventKeyValue *params, size_t at, const Type &keyOrValue)
    {
        HiSysEventKeyValue &param = params[at / 2];
        if (at % 2 != 0) {
            param.Set(keyOrValue);
        } else if constexpr (std::is_convertible_v<Type, std::string>) {
            param.key = HiSysEventScalar::Text(keyOrValue);
        }
    }

    __attribute__((visibility("default"))) static int Send(const HiSysEventCallSite &site, const std::string &domain,
                                                           const std::string &eventName, EventType type,
                                                           const HiSysEventKeyValue *params, size_t paramCount);
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_H
