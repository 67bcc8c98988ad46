// SPDX-License-Identifier: Apache-2.0
//
// HiSysEvent: replays the recordings, and tests what is not recorded: rules, listeners, records, the output.

#include <cJSON.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <any>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/values.h"
#include "support/event_listener.h"

using namespace OHOS::HiviewDFX;
using namespace replay;
using ostra::host::EventKeyValue;

namespace {

// Read at the first event. What is written there is in g_output.
const int g_isOutputConfigured = setenv("OSTRA_HOST_EVENT_OUTPUT", "/dev/null", 1);
std::string g_output;
size_t g_outputRoom = SIZE_MAX;         // the bytes of the next write that are accepted
std::atomic<int64_t> g_wallClockMs{0};  // 0: the real time

}  // namespace

// Replace the functions of the C library.
extern "C" ssize_t write(int descriptor, const void *data, size_t size)
{
    if (g_outputRoom == 0) {
        errno = ENOSPC;
        return -1;
    }
    const size_t written = std::min(size, g_outputRoom);
    g_output.append(static_cast<const char *>(data), written);
    return syscall(SYS_write, descriptor, data, written);
}

extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    constexpr int64_t msPerSecond = 1000;
    constexpr int64_t nsPerMs = 1000000;
    const int64_t ms = g_wallClockMs;
    if (clock != CLOCK_REALTIME || ms == 0) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    }
    now->tv_sec = static_cast<time_t>(ms / msPerSecond);
    now->tv_nsec = static_cast<long>(ms % msPerSecond * nsPerMs);
    return 0;
}

namespace {

int64_t g_line = 0;  // a new call site for each event, to stay below the rate limit

template <typename... Types>
int Write(const std::string &eventName, Types... keyValues)
{
    return HiSysEvent::Write("Write", ++g_line, "DOMAIN", eventName, HiSysEvent::FAULT, keyValues...);
}

using Event = EventListener::Event;

// Returns the events that a listener with these rules receives during `action`.
std::vector<Event> Received(std::vector<ListenerRule> rules, const std::function<void()> &action)
{
    std::vector<Event> events;
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const Event &event) {
        events.push_back(event);
    };
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    action();
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
    return events;
}

// Undoes the escapes of JSON and quotes the strings as the recording does.
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

// Reduces a list or object of more than `max` parts to the first three.
void Shorten(std::string &json, char open, char close, size_t max)
{
    const size_t begin = std::min(json.find(open), json.size() - 1) + 1;
    const size_t end = std::min(json.find(close, begin), json.size() - 1);
    const Fields parts = Split(json.substr(begin, end - begin));
    if (parts.size() > max) {
        json.replace(begin, end - begin, parts[0] + "," + parts[1] + "," + parts[2] + ",...");
        json.insert(json.find(close, begin) + 1, "*" + std::to_string(parts.size()));
    }
}

// Returns the event's own keys, which follow those of the platform, in the format of the recording.
std::string OwnKeys(const std::string &json)
{
    const size_t begin = json.find_first_of(",}", json.find("\"uid_\":"));
    std::string own = WithoutEscapes("{" + json.substr(json[begin] == ',' ? begin + 1 : begin));
    Shorten(own, '[', ']', 8);
    Shorten(own, '{', '}', 12);
    return own;
}

// Keys and values as HiSysEvent::Write packs them. It borrows strings, so that these are kept here.
class Params {
public:
    void Add(const std::string &key, const std::string &type, const std::string &value)
    {
        packed.emplace_back().key = Keep(key);
        if (type == "cstr") {
            packed.back().Set(Pointer(Keep(Target(value))));
            return;
        }
        const bool isAdded = AddAs<bool>("bool", type, value) || AddAs<int8_t>("i8", type, value) ||
                             AddAs<uint8_t>("u8", type, value) || AddAs<int16_t>("i16", type, value) ||
                             AddAs<uint16_t>("u16", type, value) || AddAs<int32_t>("i32", type, value) ||
                             AddAs<uint32_t>("u32", type, value) || AddAs<int64_t>("i64", type, value) ||
                             AddAs<uint64_t>("u64", type, value) || AddAs<float>("float", type, value) ||
                             AddAs<double>("double", type, value) || AddAs<std::string>("string", type, value);
        if (!isAdded) {
            throw std::invalid_argument("unknown type: " + type);
        }
    }

    std::vector<EventKeyValue> packed;

private:
    template <typename T>
    const T &Keep(T value)
    {
        return *std::any_cast<T>(&kept_.emplace_back(std::move(value)));
    }

    template <typename T>
    bool AddAs(const std::string &name, const std::string &type, const std::string &value)
    {
        if (type == name) {
            packed.back().Set(Keep(Value<T>(value)));
        } else if (type == "v" + name) {
            packed.back().Set(Keep(Value<std::vector<T>>(value)));
        }
        return type == name || type == "v" + name;
    }

    std::deque<std::any> kept_;
};

std::vector<Event> g_sent;

Fields WriteParams(const std::string &domain, const std::string &event, int type, const Params &params)
{
    const size_t sentBefore = g_sent.size();
    const int result = ostra::host::WriteEvent({"Write", ++g_line, HISYSEVENT_PERIOD, HISYSEVENT_THRESHOLD}, domain,
                                               event, type, params.packed.data(), params.packed.size());
    return {std::to_string(result), g_sent.size() == sentBefore ? "-" : OwnKeys(g_sent.back()->AsJson())};
}

// domain, event, KEY=TYPE:VALUE ...
Fields WriteKeys(const Fields &in)
{
    Params params;
    for (size_t i = 2; i < in.size(); ++i) {
        const Fields parts = Split(in[i], '=');
        const size_t colon = parts.at(1).find(':');
        params.Add(Text(parts[0]), parts[1].substr(0, colon), parts[1].substr(colon + 1));
    }
    const auto write = [&] {
        return WriteParams(Text(in.at(0)), Text(in.at(1)), 1, params);
    };
    if (in.back().find("cstr:null") == std::string::npos) {
        return write();
    }
    EXPECT_DEATH(write(), "null string");
    return {"crashes"};
}

// domain, event, COUNT: that many keys PREFIX0, PREFIX1, ...
template <typename Value>
Fields WriteMany(const Fields &in, const char *prefix, const char *type, Value value)
{
    Params params;
    for (size_t i = 0; i < Number<size_t>(in.at(2)); ++i) {
        params.Add(prefix + std::to_string(i), type, value(i));
    }
    return WriteParams(Text(in[0]), Text(in[1]), 1, params);
}

Fields WriteType(const Fields &in)
{
    Params params;
    params.Add("K", "i32", "1");
    return WriteParams("DOMAIN", "EVENT", Number<int>(in.at(0)), params);
}

// time, event, func, line, COUNT, domain => the results, each as RESULT*TIMES
Fields WriteAtSite(const Fields &in)
{
    const std::string event = Text(in.at(1));
    const std::string func = Text(in.at(2));
    const std::string domain = in.size() > 5 ? Text(in[5]) : "DOMAIN";
    g_wallClockMs = Number<int64_t>(in.at(0));
    std::vector<std::pair<int, int>> results;
    for (int left = Number<int>(in.at(4)); left > 0; --left) {
        const int result =
            HiSysEvent::Write(func.c_str(), Number<int64_t>(in.at(3)), domain, event, HiSysEvent::BEHAVIOR);
        if (results.empty() || results.back().first != result) {
            results.emplace_back(result, 0);
        }
        ++results.back().second;
    }
    g_wallClockMs = 0;
    std::string shown;
    for (const auto &[result, times] : results) {
        shown += (shown.empty() ? "" : " ") + std::to_string(result) + "*" + std::to_string(times);
    }
    return {shown};
}

// Reads a key into a variable that holds `before`. Returns the result and the variable.
template <typename Value>
std::pair<int, Value> Get(const HiSysEventRecord &record, const char *key, Value before)
{
    const int result = record.GetParamValue(key, before);
    return {result, before};
}

}  // namespace

TEST(HiSysEvent, MatchesRecording)
{
    const auto listener = std::make_shared<EventListener>();
    listener->act = [](const Event &event) {
        g_sent.push_back(event);
    };
    std::vector<ListenerRule> all = {ListenerRule("", "")};
    ASSERT_EQ(HiSysEventManager::AddListener(listener, all), 0);
    const auto begin = [] {
        g_outputRoom = SIZE_MAX;
        Write("FLUSH");  // sends what the case before left behind
        g_sent.clear();
    };
    Operations operations;
    operations["write"] = WriteKeys;
    operations["keys"] = [](const Fields &in) {
        return WriteMany(in, "K", "i32", [](size_t i) { return std::to_string(i); });
    };
    operations["texts"] = [](const Fields &in) {
        const std::string text = Quote(std::string(Number<size_t>(in.at(3)), 'x'));
        return WriteMany(in, "T", "string", [&](size_t) { return text; });
    };
    operations["type"] = WriteType;
    operations["send"] = [](const Fields &in) -> Fields {
        g_outputRoom = in.at(0) == "fails" ? 0 : SIZE_MAX;
        return {"-"};
    };
    operations["sent"] = [](const Fields &) -> Fields {
        return {Show(g_sent.size())};
    };
    Replay("recorded/hisysevent.txt", 228, operations, begin);
    Replay("handwritten/hisysevent.txt", 6, operations, begin);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
}

// Each case has its own call sites and starts when earlier ones have expired, so that earlier writes do not matter.
TEST(HiSysEventRateLimiter, MatchesRecording)
{
    Replay("recorded/hisysevent_rate_limiter.txt", 73, {{"site", WriteAtSite}});
}

TEST(HiSysEvent, RecordReturnsWhatWasWritten)
{
    enum Plain : uint8_t { PLAIN = 200 };
    using Strings = std::vector<std::string>;
    using Numbers = std::vector<int64_t>;
    static constexpr char ownDomain[] = "OWN";
    const auto events = Received({{"", ""}}, [] {
        EXPECT_EQ(HiSysEventWrite(ownDomain, "EVENT", HiSysEvent::SECURITY, "T", "q\" b\\ \n", "time_", INT64_MAX, "U",
                                  UINT64_MAX, "D", 0.5, "E", PLAIN, "V", Strings{"1", "\""}, "N",
                                  std::vector<int16_t>{-1, 2}),
                  0);
    });
    const HiSysEventRecord &record = *events.at(0);
    EXPECT_EQ(record.GetDomain(), "OWN");
    EXPECT_EQ(record.GetEventName(), "EVENT");
    EXPECT_EQ(record.GetEventType(), HiSysEvent::SECURITY);
    EXPECT_EQ(record.GetPid(), getpid());
    EXPECT_EQ(record.GetUid(), static_cast<int64_t>(getuid()));
    EXPECT_EQ(record.GetTid(), gettid());
    EXPECT_NEAR(static_cast<double>(record.GetTime()), static_cast<double>(time(nullptr)) * 1000, 10000);
    EXPECT_EQ(record.GetTimeZone().size(), 5u);
    Strings names = {"old"};
    record.GetParamNames(names);
    EXPECT_EQ(names, (Strings{"T", "time_", "U", "D", "E", "V", "N"}));

    EXPECT_EQ(Get(record, "T", std::string()), std::pair(0, std::string("q\" b\\ \n")));
    EXPECT_EQ(Get(record, "U", uint64_t{1}), std::pair(0, UINT64_MAX));
    EXPECT_EQ(Get(record, "D", 1.0), std::pair(0, 0.5));
    EXPECT_EQ(Get(record, "E", int64_t{1}), std::pair(0, int64_t{200}));
    EXPECT_EQ(Get(record, "V", Strings{"old"}), std::pair(0, Strings{"1", "\""}));
    EXPECT_EQ(Get(record, "N", Numbers{7}), std::pair(0, Numbers{-1, 2}));
    EXPECT_EQ(Get(record, "N", std::vector<uint64_t>{7}), std::pair(-3, std::vector<uint64_t>{7}));
    EXPECT_EQ(Get(record, "T", Numbers{7}), std::pair(-3, Numbers{7}));
    for (const auto &[key, result] : {std::pair("U", -3), {"D", -3}, {"N", -3}, {"T", -3}, {"none", -2}}) {
        EXPECT_EQ(Get(record, key, int64_t{1}), std::pair(result, int64_t{1})) << key;
    }
    const char *const none = nullptr;
    EXPECT_DEATH(Write("EVENT", none, 1), "null key");
}

TEST(HiSysEvent, RecordParsesAnyJson)
{
    const HiSysEventRecord parsed(R"({"level_":"MINOR","tag_":"t","a":[{"1":2}, 3],"traceid_":5,"spanid_":6,)"
                                  R"("pspanid_":7,"trace_flag_":8})");
    EXPECT_EQ(parsed.GetLevel() + parsed.GetTag() + parsed.GetDomain(), "MINORt");
    EXPECT_EQ((std::vector{parsed.GetTraceId(), parsed.GetSpanId(), parsed.GetPspanId()}),
              (std::vector<uint64_t>{5, 6, 7}));
    EXPECT_EQ(parsed.GetTraceFlag(), 8);
    for (const char *json : {"{}", "[1]", "", "{"}) {
        const HiSysEventRecord empty(json);
        EXPECT_EQ(Get(empty, "a", int64_t{1}), std::pair(*json == '{' && json[1] == '}' ? -2 : -1, int64_t{1})) << json;
        EXPECT_EQ(empty.AsJson(), json);
        EXPECT_EQ(empty.GetEventName() + empty.GetTimeZone(), "") << json;
        EXPECT_EQ(static_cast<int>(empty.GetEventType()) + empty.GetPid() + empty.GetTid() + empty.GetUid(), 0);
        EXPECT_EQ(empty.GetTime() + empty.GetTraceId() + empty.GetSpanId() + empty.GetPspanId(), 0u) << json;
        EXPECT_EQ(empty.GetTraceFlag(), 0) << json;
    }
}

TEST(HiSysEvent, RulesSelectByDomainNameAndType)
{
    const struct {
        std::vector<ListenerRule> rules;
        size_t received;
    } cases[] = {
        {{}, 0},
        {{{"DOMAIN", "EVENT"}, {"", ""}}, 1},  // once
        {{{"DOMAIN", "EVEN"}}, 0},
        {{{"OTHER", ""}}, 0},
        {{{"", "EVENT"}}, 1},
        {{ListenerRule("tag")}, 0},
        {{{"", "", "", WHOLE_WORD, HiSysEvent::FAULT}}, 1},
        {{{"", "", "", WHOLE_WORD, HiSysEvent::BEHAVIOR}}, 0},
    };
    for (const auto &[rules, received] : cases) {
        EXPECT_EQ(Received(rules, [] { EXPECT_EQ(Write("EVENT"), 0); }).size(), received) << &rules - &cases[0].rules;
    }
}

TEST(HiSysEvent, ListenersMayWriteUnregisterAndThrow)
{
    std::vector<ListenerRule> rules = {{"DOMAIN", "FIRST"}};
    std::vector<ListenerRule> byPrefix = {{"DOMAIN", "FIRST"}, {"DOMAIN", "S", RuleType::PREFIX}};
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const Event &event) {
        EXPECT_EQ(event->GetEventName(), "FIRST");
        EXPECT_EQ(Write("SECOND"), 0);
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
        throw std::runtime_error("from a listener");
    };
    EXPECT_EQ(HiSysEventManager::AddListener(nullptr, rules), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(nullptr), -1);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, byPrefix), -3);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), -2);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), -2);
    EXPECT_THROW(Write("FIRST"), std::runtime_error);
    std::thread([] { EXPECT_EQ(Write("FIRST"), 0); }).join();  // no lock is held, and there is no listener
}

TEST(HiSysEvent, EventAfterAShortWriteStartsOnItsOwnLine)
{
    g_output.clear();
    g_outputRoom = 20;
    EXPECT_EQ(Write("EVENT", "KEY", 1), -5);
    g_outputRoom = 0;
    EXPECT_EQ(Write("EVENT", "KEY", 2), -5);
    g_outputRoom = SIZE_MAX;
    EXPECT_EQ(Write("EVENT", "KEY", 3), 0);
    std::string keys;
    for (const std::string &line : Split(g_output, '\n')) {
        keys += line.size() == 20 ? "part " : line.empty() ? "" : OwnKeys(line);
    }
    EXPECT_EQ(keys, R"(part {"KEY":1}{"KEY":2}{"KEY":3})");
}

TEST(HiSysEvent, ReportsFailedAllocationsOfCjson)
{
    g_output.clear();
    cJSON_Hooks hooks = {[](size_t) -> void * { return nullptr; }, std::free};
    const auto events = Received({{"", ""}}, [&] {
        cJSON_InitHooks(&hooks);
        EXPECT_EQ(Write("EVENT", "KEY", 1), ERR_RAW_DATA_WROTE_EXCEPTION);
        cJSON_InitHooks(nullptr);
        EXPECT_EQ(g_output, "");
        EXPECT_EQ(Write("EVENT", "KEY", 2), 0);
    });
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(OwnKeys(events[0]->AsJson()), R"({"KEY":2})");
}
