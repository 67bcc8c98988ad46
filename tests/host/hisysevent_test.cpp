// SPDX-License-Identifier: Apache-2.0
//
// HiSysEvent: replays the recorded and handwritten cases, and tests events that the templates write.

#include <cJSON.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <thread>

#include "host/recording.h"
#include "parameter.h"
#include "support/event_listener.h"

using namespace OHOS::HiviewDFX;
using namespace replay;
using ostra::host::EventKeyValue;

namespace {

// Read at the first event. The replaced write() also appends the output to g_output.
const int g_isOutputConfigured = setenv("OSTRA_HOST_EVENT_OUTPUT", "/dev/null", 1);
std::string g_output;
size_t g_outputRoom = SIZE_MAX;  // the number of bytes that a write accepts
int64_t g_wallClockMs = 0;

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
    if (clock != CLOCK_REALTIME) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    }
    now->tv_sec = static_cast<time_t>(g_wallClockMs / 1000);
    now->tv_nsec = static_cast<long>(g_wallClockMs % 1000 * 1000000);
    return 0;
}

namespace {

int64_t g_line = 0;  // a new call site for each event, to stay below the rate limit
int g_eventType = HiSysEvent::FAULT;
std::optional<HiSysEventRecord> g_record;

int Write(const std::string &eventName)
{
    return HiSysEvent::Write("Write", ++g_line, "DOMAIN", eventName, HiSysEvent::FAULT, "KEY", 1);
}

// Returns the event's own keys, which follow those of the platform, in the format of the recording: bytes as by Quote,
// and of a list or object with too many elements only the first three.
std::string OwnKeys(const std::string &json)
{
    constexpr std::string_view escapes = "bfnrt\"\\";
    constexpr std::string_view characters = "\b\f\n\r\t\"\\";
    const size_t begin = json.find_first_of(",}", json.find("\"uid_\":"));
    std::string own = "{";
    for (size_t at = json[begin] == ',' ? begin + 1 : begin; at < json.size(); ++at) {
        const bool isEscape = json[at] == '\\';
        const std::string quoted = Quote({isEscape ? characters.at(escapes.find(json.at(++at))) : json[at]});
        own += json[at] == '"' && !isEscape ? "\"" : quoted.substr(1, quoted.size() - 2);
    }
    for (const auto &[open, close, max] : {std::tuple('[', ']', 8), {'{', '}', 12}}) {
        const size_t first = own.find(open) + 1;
        const size_t end = own.find(close, first);
        const Fields parts = Split(own.substr(first, end - first));
        if (first > 0 && parts.size() > static_cast<size_t>(max)) {
            own.insert(end + 1, "*" + Show(parts.size()));
            own.replace(first, end - first, parts[0] + "," + parts[1] + "," + parts[2] + ",...");
        }
    }
    return own;
}

// Returns the own keys of each event in the output, or its size if it was not written in full.
Fields Output()
{
    std::istringstream output(g_output);
    Fields events;
    for (std::string line; std::getline(output, line);) {
        events.push_back(line.back() == '}' ? OwnKeys(line) : Show(line.size()));
    }
    return events;
}

// Sets a value as HiSysEvent::Write does. The value is stored because EventKeyValue does not copy strings.
template <typename T>
void Set(EventKeyValue &param, const std::string &value, bool isVector)
{
    isVector ? param.Set(Store(Value<std::vector<T>>(value))) : param.Set(Store(Value<T>(value)));
}

const std::map<std::string, void (*)(EventKeyValue &, const std::string &, bool)> TYPES = {
    {"bool", Set<bool>},        {"i8", Set<int8_t>},   {"u8", Set<uint8_t>},    {"i16", Set<int16_t>},
    {"u16", Set<uint16_t>},     {"i32", Set<int32_t>}, {"u32", Set<uint32_t>},  {"i64", Set<int64_t>},
    {"u64", Set<uint64_t>},     {"float", Set<float>}, {"double", Set<double>}, {"string", Set<std::string>},
    {"cstr", Set<const char *>}};

// domain, event, KEY=TYPE:VALUE ... => the result, the own keys of the event that is sent
Fields WriteKeys(const Fields &in)
{
    std::vector<EventKeyValue> params;
    for (size_t i = 2; i < in.size(); ++i) {
        const Fields pair = Split(in[i], '=');
        const Fields typed = Split(pair.at(1), ':');
        const bool isVector = typed[0][0] == 'v';
        params.emplace_back().key = Store(Unquote(pair[0]));
        TYPES.at(typed[0].substr(isVector ? 1 : 0))(params.back(), typed.at(1), isVector);
    }
    const auto write = [&] {
        return ostra::host::WriteEvent({"Write", ++g_line, HISYSEVENT_PERIOD, HISYSEVENT_THRESHOLD}, Unquote(in.at(0)),
                                       Unquote(in.at(1)), g_eventType, params.data(), params.size());
    };
    if (in.back() == "\"KEY\"=cstr:null") {
        EXPECT_DEATH(write(), "null string\n");
        return {"crashes"};
    }
    const size_t sizeBefore = g_output.size();
    const int result = write();
    const bool isSent = g_output.size() > sizeBefore && g_output.back() == '\n';
    return {Show(result), isSent ? Output().back() : "-"};
}

// domain, event, COUNT: the keys K0, K1, ... with numbers; with a LENGTH, the keys T0, T1, ... with strings
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

// Returns the results of `count` writes at one call site.
Fields WriteAtSite(int64_t time, const std::string &event, const char *func, int64_t line, size_t count,
                   const char *domain)
{
    g_wallClockMs = time;
    std::string results;
    for (; count > 0; --count) {
        results += Show(HiSysEvent::Write(func, line, domain ? domain : "DOMAIN", event, HiSysEvent::BEHAVIOR));
    }
    return {results};
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

Fields Read(const Fields &in)
{
    g_record.emplace(in.at(0));
    return {g_record->AsJson() == in[0] ? "-" : "changed"};
}

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

Fields PlatformFields()
{
    return {Show(g_record->GetDomain()),  Show(g_record->GetEventName()), Show(int{g_record->GetEventType()}),
            Show(g_record->GetLevel()),   Show(g_record->GetTag()),       Show(g_record->GetTimeZone()),
            Show(g_record->GetTime()),    Show(g_record->GetPid()),       Show(g_record->GetTid()),
            Show(g_record->GetUid()),     Show(g_record->GetTraceId()),   Show(g_record->GetSpanId()),
            Show(g_record->GetPspanId()), Show(g_record->GetTraceFlag())};
}

Fields Names()
{
    Fields names = {"old"};
    g_record->GetParamNames(names);
    return names;
}

// Selects which writes succeed.
Fields Send(const Fields &in)
{
    g_outputRoom = in.at(0) == "works" ? SIZE_MAX : in[0] == "fails" ? 0 : Value<size_t>(in[0]);
    return {"-"};
}

// Selects whether the allocations of cJSON succeed.
Fields UseCjson(const Fields &in)
{
    cJSON_Hooks failing = {[](size_t) -> void * { return nullptr; }, std::free};
    cJSON_InitHooks(in.at(0) == "fails" ? &failing : nullptr);
    return {"-"};
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
    Send({"works"});
    Write("FLUSH");  // sends the backlog of the previous case
    g_output.clear();
    g_eventType = HiSysEvent::FAULT;
    return {};
}

const Operations OPERATIONS = {
    {"case", Call(Begin)},
    {"write", WriteKeys},
    {"keys", WriteMany},
    {"texts", WriteMany},
    {"type", Call(+[](int type) {
         g_eventType = type;
         return WriteKeys({Quote("DOMAIN"), Quote("EVENT"), "\"K\"=i32:1"});
     })},
    {"send", Send},
    {"cJSON", UseCjson},
    {"events", Call(WriteEvents)},
    {"sent", Call(+[] { return Output().size(); })},
    {"output", Call(Output)},
    {"site", Call(WriteAtSite)},
    {"listen", Listen},
    {"record", Read},
    {"platform", Call(PlatformFields)},
    {"names", Call(Names)},
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
    Replay("handwritten/hisysevent.txt", 18, OPERATIONS);
    // Each case has its own call sites and starts when earlier ones have expired, so that earlier writes do not matter.
    Replay("recorded/hisysevent_rate_limiter.txt", 73, OPERATIONS);
}

TEST(HiSysEvent, WritesValuesOfEachType)
{
    enum Plain : uint8_t { PLAIN = 200 };
    static constexpr char domain[] = "OWN";
    Begin();
    g_wallClockMs = 1700000000123;
    EXPECT_EQ(
        HiSysEventWrite(domain, "EVENT", HiSysEvent::SECURITY, "T", "Q\" b\\ \n", "time_", INT64_MAX, "U", UINT64_MAX,
                        "D", 0.5, "E", PLAIN, "V", Fields{"1", "\""}, "N", std::vector<int16_t>{-1, 2}),
        0);
    EXPECT_EQ(Output().back(), R"({"T":"Q\x22 b\x5c \x0a","time_":9223372036854775807,"U":18446744073709551615,)"
                               R"("D":0.5,"E":200,"V":["1","\x22"],"N":[-1,2]})");
    g_record.emplace(g_output);
    EXPECT_EQ(PlatformFields(),
              (Fields{Quote("OWN"), Quote("EVENT"), "3", Quote(""), Quote(""), Show(g_record->GetTimeZone()),
                      Show(g_wallClockMs), Show(getpid()), Show(gettid()), Show(getuid()), "0", "0", "0", "0"}));
    EXPECT_EQ(Names(), (Fields{"T", "time_", "U", "D", "E", "V", "N"}));
    EXPECT_DEATH(HiSysEventWrite(domain, "E", HiSysEvent::FAULT, static_cast<const char *>(nullptr), 1), "null key\n");
}

TEST(HiSysEvent, SupportsReentrantThrowingAndConcurrentListeners)
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
    const auto run = [&] {  // in two threads: no lock is held, and no list is corrupted
        for (int i = 0; i < 300; ++i) {
            HiSysEventManager::AddListener(listener, rules);
            SetParameter("test.thread", "value");
            EXPECT_EQ(HiSysEvent::Write("run", i / 2, "DOMAIN", "SECOND", HiSysEvent::FAULT), 0);
            HiSysEventManager::RemoveListener(listener);
        }
    };
    std::thread other(run);
    run();
    other.join();
}
