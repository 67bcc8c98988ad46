// SPDX-License-Identifier: Apache-2.0
//
// HiSysEvent: replays the recorded and handwritten cases, and tests events that are written by the templates.

#include <cJSON.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <thread>

#include "host/recording.h"
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

// Sets a value as HiSysEvent::Write does. It borrows strings, so that they are kept here.
template <typename T>
void Set(EventKeyValue &param, const std::string &value)
{
    static std::deque<T> kept;
    if constexpr (IS_OPTIONAL<T>) {
        param.Set(Pointer(kept.emplace_back(Value<T>(value))));
    } else {
        param.Set(kept.emplace_back(Value<T>(value)));
    }
}

#define SETTERS(name, T)              \
    {name, Set<T>},                   \
    {                                 \
        "v" name, Set<std::vector<T>> \
    }
const std::map<std::string, void (*)(EventKeyValue &, const std::string &)> TYPES = {
    SETTERS("bool", bool),
    SETTERS("i8", int8_t),
    SETTERS("u8", uint8_t),
    SETTERS("i16", int16_t),
    SETTERS("u16", uint16_t),
    SETTERS("i32", int32_t),
    SETTERS("u32", uint32_t),
    SETTERS("i64", int64_t),
    SETTERS("u64", uint64_t),
    SETTERS("float", float),
    SETTERS("double", double),
    SETTERS("string", std::string),
    {"cstr", Set<std::optional<std::string>>},
};

// Returns the lines of the output from the byte `begin` on.
Fields Output(size_t begin = 0)
{
    std::istringstream output(g_output.substr(begin));
    Fields lines;
    for (std::string line; std::getline(output, line);) {
        lines.push_back(line);
    }
    return lines;
}

// domain, event, KEY=TYPE:VALUE ...
Fields WriteKeys(const Fields &in, int type = HiSysEvent::FAULT)
{
    static std::deque<std::string> keys;
    std::vector<EventKeyValue> params;
    for (size_t i = 2; i < in.size(); ++i) {
        const Fields parts = Split(in[i], '=');
        const size_t colon = parts.at(1).find(':');
        params.emplace_back().key = keys.emplace_back(Unquote(parts[0]));
        TYPES.at(parts[1].substr(0, colon))(params.back(), parts[1].substr(colon + 1));
    }
    const auto write = [&] {
        return ostra::host::WriteEvent({"Write", ++g_line, HISYSEVENT_PERIOD, HISYSEVENT_THRESHOLD}, Unquote(in.at(0)),
                                       Unquote(in.at(1)), type, params.data(), params.size());
    };
    if (in.back().find("cstr:null") != std::string::npos) {
        EXPECT_DEATH(write(), "null string");
        return {"crashes"};
    }
    const size_t begin = g_output.size();
    const int result = write();
    const bool isSent = g_output.size() > begin && g_output.back() == '\n';
    return {Show(result), isSent ? OwnKeys(Output(begin).back()) : "-"};
}

// domain, event, COUNT: that many keys PREFIX0, PREFIX1, ...
template <typename ShowValue>
Fields WriteMany(const Fields &in, const std::string &prefix, const ShowValue &showValue)
{
    Fields fields(in.begin(), in.begin() + 2);
    for (size_t i = 0; i < Value<size_t>(in.at(2)); ++i) {
        fields.push_back(Quote(prefix + std::to_string(i)) + "=" + showValue(i));
    }
    return WriteKeys(fields);
}

// time, event, func, line, COUNT, domain => the results, each as RESULT*TIMES
Fields WriteAtSite(const Fields &in)
{
    g_wallClockMs = Value<int64_t>(in.at(0));
    std::vector<std::pair<int, int>> results;
    for (int left = Value<int>(in.at(4)); left > 0; --left) {
        const int result =
            HiSysEvent::Write(Unquote(in.at(2)).c_str(), Value<int64_t>(in.at(3)),
                              in.size() > 5 ? Unquote(in[5]) : "DOMAIN", Unquote(in.at(1)), HiSysEvent::BEHAVIOR);
        if (results.empty() || results.back().first != result) {
            results.emplace_back(result, 0);
        }
        ++results.back().second;
    }
    g_wallClockMs = 0;
    std::string shown;
    for (const auto &[result, times] : results) {
        shown += (shown.empty() ? "" : " ") + Show(result) + "*" + Show(times);
    }
    return {shown};
}

// A listener's rules => the result of registering it, and how often it receives an event
Fields Listen(const Fields &in)
{
    std::vector<ListenerRule> rules;
    for (const std::string &field : in) {
        const Fields rule = Split(field);
        rules.emplace_back(Unquote(rule.at(0)), Unquote(rule.at(1)), Unquote(rule.at(2)),
                           static_cast<RuleType>(Value<int>(rule.at(3))), Value<uint32_t>(rule.at(4)));
    }
    int received = 0;
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const EventListener::Event &) {
        ++received;
    };
    const int32_t result = HiSysEventManager::AddListener(listener, rules);
    Write("EVENT");
    HiSysEventManager::RemoveListener(listener);
    return {Show(result), Show(received)};
}

std::optional<HiSysEventRecord> g_record;

// Reads a key into a variable that holds `before`.
template <typename T>
Operation Gets(const T &before)
{
    return [before](const Fields &in) -> Fields {
        T value = before;
        const int result = g_record->GetParamValue(Unquote(in.at(0)), value);
        return {Show(result), Show(value)};
    };
}

void AddRecordOperations(Operations &operations)
{
    operations["record"] = [](const Fields &in) -> Fields {
        g_record.emplace(in.at(0));
        return {g_record->AsJson() == in[0] ? "-" : g_record->AsJson()};
    };
    operations["platform"] = [](const Fields &) -> Fields {
        const HiSysEventRecord &record = *g_record;
        return {Show(record.GetDomain()),  Show(record.GetEventName()), Show(int{record.GetEventType()}),
                Show(record.GetLevel()),   Show(record.GetTag()),       Show(record.GetTimeZone()),
                Show(record.GetTime()),    Show(record.GetPid()),       Show(record.GetTid()),
                Show(record.GetUid()),     Show(record.GetTraceId()),   Show(record.GetSpanId()),
                Show(record.GetPspanId()), Show(record.GetTraceFlag())};
    };
    operations["names"] = [](const Fields &) -> Fields {
        std::vector<std::string> names = {"old"};
        g_record->GetParamNames(names);
        return {Show(names)};
    };
    operations["i64"] = Gets<int64_t>(7);
    operations["u64"] = Gets<uint64_t>(7);
    operations["double"] = Gets<double>(7);
    operations["string"] = Gets<std::string>("old");
    operations["vi64"] = Gets<std::vector<int64_t>>({7});
    operations["vu64"] = Gets<std::vector<uint64_t>>({7});
    operations["vdouble"] = Gets<std::vector<double>>({7});
    operations["vstring"] = Gets<std::vector<std::string>>({"old"});
}

void AddWriteOperations(Operations &operations)
{
    operations["write"] = [](const Fields &in) {
        return WriteKeys(in);
    };
    operations["keys"] = [](const Fields &in) {
        return WriteMany(in, "K", [](size_t i) { return "i32:" + std::to_string(i); });
    };
    operations["texts"] = [](const Fields &in) {
        return WriteMany(in, "T", [&](size_t) { return "string:" + Quote(std::string(Value<size_t>(in.at(3)), 'x')); });
    };
    operations["type"] = [](const Fields &in) {
        return WriteKeys({Quote("DOMAIN"), Quote("EVENT"), "\"K\"=i32:1"}, Value<int>(in.at(0)));
    };
    operations["send"] = [](const Fields &in) -> Fields {
        g_outputRoom = in.at(0) == "works" ? SIZE_MAX : in[0] == "fails" ? 0 : Value<size_t>(in[0]);
        return {"-"};
    };
    operations["cJSON"] = [](const Fields &in) -> Fields {
        cJSON_Hooks hooks = {[](size_t) -> void * { return nullptr; }, std::free};
        cJSON_InitHooks(in.at(0) == "fails" ? &hooks : nullptr);
        return {"-"};
    };
    operations["sent"] = [](const Fields &) -> Fields {
        return {Show(Output().size())};
    };
    operations["output"] = [](const Fields &) {
        Fields lines = Output();
        for (std::string &line : lines) {
            line = line.back() == '}' ? OwnKeys(line) : Show(line.size());
        }
        return lines;
    };
    operations["listen"] = Listen;
}

}  // namespace

TEST(HiSysEvent, MatchesRecording)
{
    Operations operations;
    AddWriteOperations(operations);
    AddRecordOperations(operations);
    operations["case"] = [](const Fields &) -> Fields {
        g_outputRoom = SIZE_MAX;
        Write("FLUSH");  // sends what the case before left behind
        g_output.clear();
        return {};
    };
    Replay("recorded/hisysevent.txt", 228, operations);
    Replay("handwritten/hisysevent.txt", 14, operations);
}

// Each case has its own call sites and starts when earlier ones have expired, so that earlier writes do not matter.
TEST(HiSysEventRateLimiter, MatchesRecording)
{
    Replay("recorded/hisysevent_rate_limiter.txt", 73, {{"site", WriteAtSite}, {"case", [](const Fields &) {
                                                                                    return Fields();
                                                                                }}});
}

TEST(HiSysEvent, WritesValuesOfEachType)
{
    enum Plain : uint8_t { PLAIN = 200 };
    using Strings = std::vector<std::string>;
    static constexpr char ownDomain[] = "OWN";
    EXPECT_EQ(
        HiSysEventWrite(ownDomain, "EVENT", HiSysEvent::SECURITY, "T", "q\" b\\ \n", "time_", INT64_MAX, "U",
                        UINT64_MAX, "D", 0.5, "E", PLAIN, "V", Strings{"1", "\""}, "N", std::vector<int16_t>{-1, 2}),
        0);
    const HiSysEventRecord event(Output().back());
    EXPECT_EQ(OwnKeys(event.AsJson()),
              R"({"T":"q\x22 b\x5c \x0a","time_":9223372036854775807,"U":18446744073709551615,)"
              R"("D":0.5,"E":200,"V":["1","\x22"],"N":[-1,2]})");
    EXPECT_EQ(event.GetDomain() + event.GetEventName(), "OWNEVENT");
    EXPECT_EQ(event.GetEventType(), HiSysEvent::SECURITY);
    EXPECT_EQ(event.GetPid(), getpid());
    EXPECT_EQ(event.GetUid(), static_cast<int64_t>(getuid()));
    EXPECT_EQ(event.GetTid(), gettid());
    EXPECT_NEAR(static_cast<double>(event.GetTime()), static_cast<double>(time(nullptr)) * 1000, 10000);
    Strings names;
    event.GetParamNames(names);
    EXPECT_EQ(names, (Strings{"T", "time_", "U", "D", "E", "V", "N"}));
    uint64_t largest = 0;
    EXPECT_EQ(event.GetParamValue("U", largest), 0);
    EXPECT_EQ(largest, UINT64_MAX);
    std::string text;
    EXPECT_EQ(event.GetParamValue("T", text), 0);
    EXPECT_EQ(text, "q\" b\\ \n");
    const char *const none = nullptr;
    EXPECT_DEATH(Write("EVENT", none, 1), "null key");
}

TEST(HiSysEvent, ListenersMayWriteUnregisterAndThrow)
{
    std::vector<ListenerRule> rules = {{"DOMAIN", "FIRST"}};
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const EventListener::Event &event) {
        EXPECT_EQ(event->GetEventName(), "FIRST");
        EXPECT_EQ(Write("SECOND"), 0);
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
        throw std::runtime_error("from a listener");
    };
    EXPECT_EQ(HiSysEventManager::AddListener(nullptr, rules), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(nullptr), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), -2);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), -2);
    EXPECT_EQ(ListenerRule("tag").GetTag(), "tag");
    EXPECT_THROW(Write("FIRST"), std::runtime_error);
    std::thread([] { EXPECT_EQ(Write("FIRST"), 0); }).join();  // no lock is held, and there is no listener
}
