// SPDX-License-Identifier: Apache-2.0
//
// HiSysEvent on the host: writes events of the process. An event is one flat JSON object: domain_, name_, type_, time_
// (ms since the Unix epoch), tz_ (such as "+0200"), pid_, tid_, uid_, then the event's own keys in the order given.
//
//     HiSysEvent::Write(__func__, __LINE__, "DOMAIN", "EVENT", HiSysEvent::BEHAVIOR, "TEXT", text, "COUNT", 3);
//
// Listeners of the process get it (hisysevent_manager.h). OSTRA_HOST_EVENT_OUTPUT, "stderr" or the path of a file,
// appends it there too, one line an event. All functions may be called from any thread at once.

#ifndef HOST_HISYSEVENT_H
#define HOST_HISYSEVENT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace OHOS::HiviewDFX {

// A single value, or one element of a vector, in the form in which it goes to the library. A text is borrowed.
struct HiSysEventScalar {
    enum class Kind : uint8_t { BOOL, SIGNED, UNSIGNED, FLOATING, TEXT };

    template <typename Value>
    static HiSysEventScalar Of(const Value &value)
    {
        HiSysEventScalar scalar;
        if constexpr (std::is_same_v<Value, bool>) {
            scalar.kind = Kind::BOOL;
            scalar.bits = value ? 1 : 0;
        } else if constexpr (std::is_integral_v<Value>) {
            scalar.kind = std::is_signed_v<Value> ? Kind::SIGNED : Kind::UNSIGNED;
            scalar.bits = static_cast<uint64_t>(value);
        } else if constexpr (std::is_floating_point_v<Value>) {
            scalar.kind = Kind::FLOATING;
            scalar.floating = static_cast<double>(value);
        } else {
            scalar.text = Text(value);
        }
        return scalar;
    }

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
struct HiSysEventParam {
    template <typename Value>
    void Set(const Value &value)
    {
        scalar = HiSysEventScalar::Of(value);
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
    HiSysEventScalar scalar;                 // of a single value
    std::vector<HiSysEventScalar> elements;  // of a vector
};

class HiSysEvent {
public:
    enum EventType { FAULT = 1, STATISTIC = 2, SECURITY = 3, BEHAVIOR = 4 };

    // Writes one event. func and line name the call site. keyValues are pairs: a key, which is a text, and its value:
    // bool, an integer or floating type (long double as double), std::string, a C string (null reads as empty), or a
    // std::vector of one of them. A text ends at its first zero byte; a number that is not finite is written as null.
    // Returns 0, or the first that applies, in this order; a refused event reaches nobody:
    //   -1  bad domain name (at most 16 characters)
    //   -2  bad event name (at most 32 characters)
    //   -3  bad key (at most 48 characters)
    //   -6  written too often: a call site, told apart by event name, func and line, has 100 events in a period of 5
    //       seconds, which begins with its first event; what -4 and -5 refuse counts among them
    //   -4  over size: the bytes of keys and texts, and 8 for every other value, come to more than 384 KiB
    //   -5  the configured output cannot be written
    // Names are letters, digits and '_' and begin with a letter.
    template <typename... Types>
    static int Write(const char *func, int64_t line, const std::string &domain, const std::string &eventName,
                     EventType type, Types... keyValues)
    {
        static_assert(sizeof...(Types) % 2 == 0, "every key needs a value");
        std::array<HiSysEventParam, sizeof...(Types) / 2> params{};
        Pack(params.data(), keyValues...);
        return Send(func, line, domain, eventName, type, params.data(), params.size());
    }

private:
    static void Pack(HiSysEventParam * /* params */)
    {
    }

    template <typename Key, typename Value, typename... Rest>
    static void Pack(HiSysEventParam *params, const Key &key, const Value &value, const Rest &...rest)
    {
        params->key = HiSysEventScalar::Text(key);
        params->Set(value);
        Pack(params + 1, rest...);
    }

    __attribute__((visibility("default"))) static int Send(const char *func, int64_t line, const std::string &domain,
                                                           const std::string &eventName, EventType type,
                                                           const HiSysEventParam *params, size_t paramCount);
};

}  // namespace OHOS::HiviewDFX

#endif  // HOST_HISYSEVENT_H
