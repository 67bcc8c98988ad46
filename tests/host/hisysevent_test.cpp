// SPDX-License-Identifier: Apache-2.0
//
// Replays the recorded events. The test stands in for whoever takes events from the writer: SendEvent of the host
// platform is replaced.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "support/event_listener.h"
#include "host/values.h"

using namespace OHOS::HiviewDFX;
using namespace replay;

namespace {

bool g_sendFails = false;
int g_sentCount = 0;
std::string g_sent;  // the last event, or nothing

// JSON with its texts as the recording shows them.
std::string WithoutEscapes(const std::string &json)
{
    const std::string letters = "bfnrt";
    std::string result;
    for (size_t at = 0; at < json.size(); ++at) {
        const bool isEscape = json[at] == '\\';
        const size_t letter = isEscape ? letters.find(json.at(++at)) : std::string::npos;
        const std::string quoted = Quote({letter == std::string::npos ? json[at] : "\b\f\n\r\t"[letter]});
        result += json[at] == '"' && !isEscape ? "\"" : quoted.substr(1, quoted.size() - 2);
    }
    return result;
}

// Leaves the first three of a list or object that has more parts than are shown.
void Shorten(std::string &json, char open, char close, size_t shown)
{
    const size_t begin = std::min(json.find(open), json.size() - 1) + 1;
    const size_t end = std::min(json.find(close, begin), json.size() - 1);
    const Fields parts = Split(json.substr(begin, end - begin));
    if (parts.size() > shown) {
        json.replace(begin, end - begin, parts[0] + "," + parts[1] + "," + parts[2] + ",...");
        json.insert(json.find(close, begin) + 1, "*" + std::to_string(parts.size()));
    }
}

// The event's own keys as the recording shows them.
std::string OwnKeys(const std::string &json)
{
    if (json.empty()) {
        return "-";
    }
    const size_t begin = json.find_first_of(",}", json.find("\"uid_\":"));  // behind what the platform adds
    std::string own = WithoutEscapes("{" + json.substr(json[begin] == ',' ? begin + 1 : begin));
    Shorten(own, '[', ']', 8);
    Shorten(own, '{', '}', 12);
    return own;
}

template <typename... Types>
Fields Write(const std::string &domain, const std::string &event, int type, Types... keyValues)
{
    static int64_t line = 0;  // each its own, so that the limiter stays out of the way
    g_sent.clear();
    const int result =
        HiSysEvent::Write("Write", ++line, domain, event, static_cast<HiSysEvent::EventType>(type), keyValues...);
    return {std::to_string(result), OwnKeys(g_sent)};
}

template <typename... Types>
struct Scalars {
    using Any = std::variant<const char *, Types..., std::vector<Types>...>;

    // Reads TYPE:VALUE. A C string lives until the next value is read.
    static Any ReadAs(const std::string &type, const std::string &field, const Fields &names)
    {
        static std::optional<std::string> text;
        Any value = Pointer(text = type == "cstr" ? Target(field) : std::nullopt);
        size_t at = 0;
        ((type == names[at] ? void(value = Value<Types>(field)) : void(),
          type == "v" + names[at++] ? void(value = Value<std::vector<Types>>(field)) : void()),
         ...);
        return value;
    }
};
using All =
    Scalars<bool, int8_t, uint8_t, int16_t, uint16_t, int32_t, uint32_t, int64_t, uint64_t, float, double, std::string>;

// The value of KEY=TYPE:VALUE.
All::Any ReadValue(const std::string &field)
{
    const std::string value = Split(field, '=').at(1);
    const size_t colon = value.find(':');
    return All::ReadAs(value.substr(0, colon), value.substr(colon + 1),
                       {"bool", "i8", "u8", "i16", "u16", "i32", "u32", "i64", "u64", "float", "double", "string"});
}

// Of the second key just the types that are recorded of it: each pair of types is code.
template <typename T>
constexpr bool IS_SECOND = std::is_same_v<T, bool> || std::is_same_v<T, int32_t> || std::is_same_v<T, std::string>;

Fields WriteKeys(const Fields &in)
{
    const auto write = [&](auto... keyValues) {
        return Write(Text(in[0]), Text(in[1]), 1, keyValues...);
    };
    const std::string key = Text(Split(in.at(2), '=')[0]);
    return std::visit(
        [&](const auto &value) {
            if (in.size() == 3) {
                return write(key, value);
            }
            const auto writeBoth = [&](const auto &second) {
                if constexpr (IS_SECOND<std::decay_t<decltype(second)>>) {
                    return write(key, value, Text(Split(in[3], '=')[0]), second);
                }
                return Fields{"no such second type"};
            };
            return std::visit(writeBoth, ReadValue(in[3]));
        },
        ReadValue(in[2]));
}

Fields WriteOrCrash(const Fields &in)
{
    if (in.back().find("cstr:null") == std::string::npos) {
        return WriteKeys(in);
    }
    EXPECT_DEATH(WriteKeys(in), "null text");
    return {"crashes"};
}

template <size_t Index, typename Value>
auto KeyOrValue(const char *prefix, Value value)
{
    if constexpr (Index % 2 == 0) {
        return prefix + std::to_string(Index / 2);
    } else {
        return value(Index / 2);
    }
}

template <typename Value, size_t... Indices>
Fields WriteMany(const Fields &in, [[maybe_unused]] const char *prefix, [[maybe_unused]] Value value,
                 std::index_sequence<Indices...> /* indices */)
{
    return Write(Text(in[0]), Text(in[1]), 1, KeyOrValue<Indices>(prefix, value)...);
}

// With as many keys as the field says, which must be one of Counts.
template <size_t... Counts, typename Value>
Fields WriteCounted(const Fields &in, const char *prefix, Value value)
{
    const auto count = Number<size_t>(in.at(2));
    Fields result = {"no such count"};
    ((count == Counts ? void(result = WriteMany(in, prefix, value, std::make_index_sequence<2 * Counts>())) : void()),
     ...);
    return result;
}

}  // namespace

namespace OHOS::HiviewDFX {

bool SendEvent(const std::shared_ptr<HiSysEventRecord> &event)
{
    g_sentCount += g_sendFails ? 0 : 1;
    g_sent = g_sendFails ? "" : event->AsJson();
    return !g_sendFails;
}

}  // namespace OHOS::HiviewDFX

TEST(HostPlatformReplay, HiSysEvent)
{
    const auto listener = std::make_shared<EventListener>();  // its rules make the writer send
    std::vector<ListenerRule> all = {ListenerRule("", "")};
    ASSERT_EQ(HiSysEventManager::AddListener(listener, all), 0);
    const auto begin = [] {
        g_sendFails = false;
        g_sentCount = 0;
    };
    Operations operations;
    operations["write"] = WriteOrCrash;
    operations["keys"] = [](const Fields &in) {
        return WriteCounted<0, 3, 128, 130>(in, "K", [](size_t i) { return static_cast<int32_t>(i); });
    };
    operations["texts"] = [](const Fields &in) {
        const std::string text(Number<size_t>(in.at(3)), 'x');
        return WriteCounted<1, 2, 4, 8>(in, "T", [&](size_t) { return text; });
    };
    operations["type"] = [](const Fields &in) {
        return Write("DOMAIN", "EVENT", Number<int>(in.at(0)), "K", 1);
    };
    operations["send"] = [](const Fields &in) -> Fields {
        g_sendFails = in.at(0) == "fails";
        return {"-"};
    };
    operations["sent"] = [](const Fields &) -> Fields {
        return {Show(g_sentCount)};
    };
    Replay("recorded/hisysevent.txt", 228, operations, begin);
    Replay("handwritten/hisysevent.txt", 6, operations, begin);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
}
