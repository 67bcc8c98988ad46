// SPDX-License-Identifier: Apache-2.0
//
// HiSysEvent: replays the recorded and handwritten cases, and tests events that the templates write.

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

// Read at the first event. The replaced write() also appends the output to g_output.
const int g_isOutputConfigured = setenv("OSTRA_HOST_EVENT_OUTPUT", "/dev/null", 1);
std::string g_output;
size_t g_outputRoom = SIZE_MAX;         // the number of bytes that a write accepts
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

// Decodes the escapes of JSON and quotes the strings as the recording does.
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

// Abbreviates a list or object of more than `max` elements to the first three.
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

// Sets a value as HiSysEvent::Write does. EventKeyValue does not copy strings, so they are kept alive here.
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

template <typename T>
void SetAs(EventKeyValue &param, const std::string &value, bool isVector)
{
    isVector ? Set<std::vector<T>>(param, value) : Set<T>(param, value);
}

const std::map<std::string, void (*)(EventKeyValue &, const std::string &, bool)> TYPES = {
    {"bool", SetAs<bool>},
    {"i8", SetAs<int8_t>},
    {"u8", SetAs<uint8_t>},
    {"i16", SetAs<int16_t>},
    {"u16", SetAs<uint16_t>},
    {"i32", SetAs<int32_t>},
    {"u32", SetAs<uint32_t>},
    {"i64", SetAs<int64_t>},
    {"u64", SetAs<uint64_t>},
    {"float", SetAs<float>},
    {"double", SetAs<double>},
    {"string", SetAs<std::string>},
    {"cstr",
     [](EventKeyValue &param, const std::string &value, bool) {
         Set<std::optional<std::string>>(param, value);
     }},
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
        const bool isVector = parts[1][0] == 'v';
        params.emplace_back().key = keys.emplace_back(Unquote(parts[0]));
        TYPES.at(parts[1].substr(isVector, colon - isVector))(params.back(), parts[1].substr(colon + 1), isVector);
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

// domain, event, COUNT: the keys K0, K1, ... with numbers; or domain, event, COUNT, LENGTH: the keys T0, T1, ... with
// strings
Fields WriteMany(const Fields &in)
{
    Fields fields(in.begin(), in.begin() + 2);
    for (size_t i = 0; i < Value<size_t>(in.at(2)); ++i) {
        const std::string number = std::to_string(i);
        fields.push_back(in.size() > 3 ? "\"T" + number + "\"=string:" + Quote(std::string(Value<size_t>(in[3]), 'x'))
                                       : "\"K" + number + "\"=i32:" + number);
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

// Reads a key into a variable that is initialized to `before`.
template <typename T>
Operation Gets(const T &before)
{
    return [before](const Fields &in) -> Fields {
        T value = before;
        const int result = g_record->GetParamValue(Unquote(in.at(0)), value);
        return {Show(result), Show(value)};
    };
}

Fields PlatformFields(const HiSysEventRecord &record)
{
    return {Show(record.GetDomain()),  Show(record.GetEventName()), Show(int{record.GetEventType()}),
            Show(record.GetLevel()),   Show(record.GetTag()),       Show(record.GetTimeZone()),
            Show(record.GetTime()),    Show(record.GetPid()),       Show(record.GetTid()),
            Show(record.GetUid()),     Show(record.GetTraceId()),   Show(record.GetSpanId()),
            Show(record.GetPspanId()), Show(record.GetTraceFlag())};
}

std::vector<std::string> Names(const HiSysEventRecord &record)
{
    std::vector<std::string> names = {"old"};
    record.GetParamNames(names);
    return names;
}

// Send and UseCjson select which writes and allocations succeed.
Fields Send(const std::string &state)
{
    g_outputRoom = state == "works" ? SIZE_MAX : state == "fails" ? 0 : Value<size_t>(state);
    return {"-"};
}

Fields UseCjson(const std::string &state)
{
    cJSON_Hooks failing = {[](size_t) -> void * { return nullptr; }, std::free};
    cJSON_InitHooks(state == "fails" ? &failing : nullptr);
    return {"-"};
}

Fields ShownOutput()
{
    Fields lines = Output();
    for (std::string &line : lines) {
        line = line.back() == '}' ? OwnKeys(line) : Show(line.size());
    }
    return lines;
}

int WriteEvents(int count)
{
    while (--count > 0) {
        Write("EVENT");
    }
    return Write("EVENT");
}

Fields Begin()
{
    Send("works");
    Write("FLUSH");  // sends the backlog of the previous case
    g_output.clear();
    return {};
}

const Operations OPERATIONS = {
    {"case", Call(Begin)},
    {"write",
     [](const Fields &in) {
         return WriteKeys(in);
     }},
    {"keys", WriteMany},
    {"texts", WriteMany},
    {"type", Call(+[](int type) {
         return WriteKeys({Quote("DOMAIN"), Quote("EVENT"), "\"K\"=i32:1"}, type);
     })},
    {"send",
     [](const Fields &in) {
         return Send(in.at(0));
     }},
    {"cJSON",
     [](const Fields &in) {
         return UseCjson(in.at(0));
     }},
    {"events", Call(WriteEvents)},
    {"sent", Call(+[] { return Output().size(); })},
    {"output", Call(ShownOutput)},
    {"listen", Listen},
    {"record",
     [](const Fields &in) {
         return Fields{g_record.emplace(in.at(0)).AsJson() == in[0] ? "-" : "changed"};
     }},
    {"platform", Call(+[] { return PlatformFields(*g_record); })},
    {"names", Call(+[] { return Names(*g_record); })},
    {"i64", Gets<int64_t>(7)},
    {"u64", Gets<uint64_t>(7)},
    {"double", Gets<double>(7)},
    {"string", Gets<std::string>("old")},
    {"vi64", Gets<std::vector<int64_t>>({7})},
    {"vu64", Gets<std::vector<uint64_t>>({7})},
    {"vdouble", Gets<std::vector<double>>({7})},
    {"vstring", Gets<std::vector<std::string>>({"old"})},
};

}  // namespace

TEST(HiSysEvent, MatchesRecording)
{
    Replay("recorded/hisysevent.txt", 228, OPERATIONS);
    Replay("handwritten/hisysevent.txt", 15, OPERATIONS);
}

// Each case has its own call sites and starts when earlier ones have expired, so that earlier writes do not matter.
TEST(HiSysEventRateLimiter, MatchesRecording)
{
    Replay("recorded/hisysevent_rate_limiter.txt", 73,
           {{"case", Call(+[] { return Fields(); })}, {"site", WriteAtSite}});
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
    const Fields fields = PlatformFields(event);
    EXPECT_EQ(fields[0] + fields[1] + fields[2], R"("OWN""EVENT"3)");
    EXPECT_EQ(fields[7] + " " + fields[8] + " " + fields[9],
              Show(getpid()) + " " + Show(gettid()) + " " + Show(getuid()));
    EXPECT_NEAR(static_cast<double>(event.GetTime()), static_cast<double>(time(nullptr)) * 1000, 10000);
    EXPECT_EQ(Names(event), (Strings{"T", "time_", "U", "D", "E", "V", "N"}));
    g_record = event;
    EXPECT_EQ(OPERATIONS.at("u64")({Quote("U")}), (Fields{"0", std::to_string(UINT64_MAX)}));
    EXPECT_EQ(OPERATIONS.at("string")({Quote("T")}), (Fields{"0", R"("q\x22 b\x5c \x0a")"}));
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
