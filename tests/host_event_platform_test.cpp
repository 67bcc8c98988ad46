// SPDX-License-Identifier: Apache-2.0
//
// Events of the host platform. The output, which is looked up once a process, is tested in processes of its own, the
// limiter on a clock that stands still.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "hisysevent_manager.h"

static std::atomic<int64_t> g_monotonicNs{0};

// Takes the place of the C library's function, for the host platform too.
extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    constexpr int64_t nsPerSecond = 1000000000;
    if (clock != CLOCK_MONOTONIC) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    }
    const int64_t ns = g_monotonicNs;
    now->tv_sec = static_cast<time_t>(ns / nsPerSecond);
    now->tv_nsec = static_cast<long>(ns % nsPerSecond);
    return 0;
}

using namespace OHOS::HiviewDFX;

namespace {

// Writes from a call site of its own each time, so that the limiter stays out of the way.
template <typename... Types>
int Write(const std::string &domain, const std::string &eventName, Types... keyValues)
{
    static int64_t line = 0;
    return HiSysEvent::Write("Write", ++line, domain, eventName, HiSysEvent::BEHAVIOR, keyValues...);
}

// Collects the events that it gets, and answers each as told.
struct Listener : HiSysEventListener {
    void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        events.push_back(sysEvent);
        answer();
    }

    void OnServiceDied() override
    {
    }

    std::mutex mutex;
    std::vector<std::shared_ptr<HiSysEventRecord>> events;
    std::function<void()> answer = [] {
    };
};

// Listens while it lives.
struct Recording {
    explicit Recording(std::vector<ListenerRule> rules = {{"", ""}})
    {
        EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    }

    ~Recording()
    {
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
    }

    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    const std::vector<std::shared_ptr<HiSysEventRecord>> &events = listener->events;
};

}  // namespace

TEST(HostEvent, NamesAreCheckedToTheirLimits)
{
    const size_t longest[] = {16, 32, 48};  // of the domain, the event and a key
    Recording recording;
    for (int place = 0; place < 3; ++place) {
        const auto write = [place](const std::string &name) {
            const std::string names[] = {place == 0 ? name : "DOMAIN", place == 1 ? name : "EVENT",
                                         place == 2 ? name : "SECOND"};
            return Write(names[0], names[1], "KEY", 1, names[2], 2);
        };
        const std::string full(longest[place], 'A');
        for (const std::string &good : {std::string("a"), std::string("Z9_z"), full}) {
            EXPECT_EQ(write(good), 0) << good;
        }
        for (const std::string &bad : {std::string(), full + 'A', std::string("9A"), std::string("_A"),
                                       std::string("A-B"), std::string("A\xC3\xA4")}) {
            EXPECT_EQ(write(bad), -1 - place) << bad;
        }
    }
    EXPECT_EQ(recording.events.size(), 9U);
}

TEST(HostEvent, ACallSiteHasAHundredEventsInFiveSeconds)
{
    constexpr int64_t start = 1000000000;
    constexpr int64_t period = 5000000000;
    constexpr int limit = 100;
    const std::string overSize(500000, 'x');
    const auto write = [](const char *func, int64_t line, const char *eventName, const char *key = "KEY",
                          const std::string &text = "") {
        return HiSysEvent::Write(func, line, "DOMAIN", eventName, HiSysEvent::FAULT, key, text);
    };
    Recording recording;
    g_monotonicNs = start;
    EXPECT_EQ(write("Func", 1, "LIMITED", "BAD-KEY"), -3);        // does not count
    EXPECT_EQ(write("Func", 1, "LIMITED", "KEY", overSize), -4);  // counts
    for (int i = 1; i < limit; ++i) {
        g_monotonicNs = start + i;
        ASSERT_EQ(write("Func", 1, "LIMITED"), 0) << i;
    }
    g_monotonicNs = start + period - 1;
    EXPECT_EQ(write("Func", 1, "LIMITED"), -6);
    EXPECT_EQ(write("Func", 1, "LIMITED", "KEY", overSize), -6);
    EXPECT_EQ(write("Other", 1, "LIMITED") + write("Func", 2, "LIMITED"), 0);
    EXPECT_EQ(write(nullptr, 1, "LIMITED") + write("Func", 1, "UNLIMITED"), 0);

    g_monotonicNs = start + period;  // a new period, for threads that listen now and then
    std::atomic<int> admitted{0};
    const auto work = [&] {
        for (int i = 0; i < limit; ++i) {
            const Recording passing;
            admitted += write("Func", 1, "LIMITED") == 0 ? 1 : 0;
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(admitted, limit);
    EXPECT_EQ(recording.events.size(), limit - 1U + 4U + limit);
}

TEST(HostEvent, SizeCountsKeysTextsAndNumbers)
{
    constexpr size_t largest = 384 * 1024;
    for (const size_t size : {largest, largest + 1}) {
        const std::string text(size - (4 + 4 + 4) - 3 * 8 - 5, '\n');
        const int result = Write("DOMAIN", "EVENT", "TEXT", text, "LIST", std::vector<double>{1, 2, 3}, "MORE",
                                 std::vector<std::string>{"four", "5"});
        EXPECT_EQ(result, size == largest ? 0 : -4);
    }
}

TEST(HostEvent, AnEventReadsAsOneFlatObjectAndGivesTypedValues)
{
    const std::string text = "quote \" backslash \\ line\n tab\t bell\a \xC3\xA4";
    constexpr int64_t big = INT64_MAX;  // no double holds it
    const char *noText = nullptr;
    setenv("TZ", "NST+03:30", 1);
    tzset();
    Recording recording;
    ASSERT_EQ(HiSysEvent::Write("Func", 7, "DOMAIN", "EVENT", HiSysEvent::SECURITY, "ZULU", text, std::string("ALPHA"),
                                true, "TINY", int8_t{-128}, "BIG", big, "HUGE", UINT64_MAX, "RATIO", 0.1, "NAN",
                                std::nan(""), "NONE", noText, "FLAGS", std::vector<bool>{true, false}, "NUMBERS",
                                std::vector<uint16_t>{1, 65535}, "TEXTS", std::vector<std::string>{"a", "\""}, "CS",
                                std::vector<const char *>{"b"}),
              0);
    const HiSysEventRecord &record = *recording.events.at(0);
    int64_t now = 0;
    EXPECT_EQ(record.GetParamValue("time_", now), 0);
    EXPECT_NEAR(static_cast<double>(now), static_cast<double>(time(nullptr)) * 1000, 10000);
    EXPECT_EQ(record.AsJson(),
              R"({"domain_":"DOMAIN","name_":"EVENT","type_":3,"time_":)" + std::to_string(now) +
                  R"(,"tz_":"-0330","pid_":)" + std::to_string(getpid()) + R"(,"tid_":)" +
                  std::to_string(syscall(SYS_gettid)) + R"(,"uid_":)" + std::to_string(getuid()) +
                  R"(,"ZULU":"quote \" backslash \\ line\n tab\t bell\u0007 )"
                  "\xC3\xA4"
                  R"(","ALPHA":true,"TINY":-128,"BIG":9223372036854775807,"HUGE":18446744073709551615,"RATIO":0.1,)"
                  R"("NAN":null,"NONE":"","FLAGS":[true,false],"NUMBERS":[1,65535],)"
                  R"("TEXTS":["a","\""],"CS":["b"]})");
    EXPECT_EQ(record.GetDomain() + "/" + record.GetEventName(), "DOMAIN/EVENT");
    EXPECT_EQ(record.GetEventType(), HiSysEvent::SECURITY);
    std::vector<std::string> names = {"old"};
    record.GetParamNames(names);
    EXPECT_EQ(names.front() + names.at(1) + names.back() + std::to_string(names.size()), "ZULUALPHACS12");
    const std::tuple<const char *, int, int> keys[] = {{"BIG", 0, -3},    {"ZULU", -3, 0},   {"ALPHA", -3, -3},
                                                       {"RATIO", -3, -3}, {"TEXTS", -3, -3}, {"HUGE", -3, -3},
                                                       {"OTHER", -2, -2}, {"big", -2, -2}};
    for (const auto &[key, asNumber, asText] : keys) {
        int64_t number = 42;
        std::string read = "unchanged";
        EXPECT_EQ(record.GetParamValue(key, number), asNumber) << key;
        EXPECT_EQ(record.GetParamValue(key, read), asText) << key;
        EXPECT_EQ(number, asNumber == 0 ? big : 42) << key;
        EXPECT_EQ(read, asText == 0 ? text : "unchanged") << key;
    }
}

TEST(HostEvent, RulesSelectByDomainAndName)
{
    const std::pair<std::vector<ListenerRule>, size_t> cases[] = {{{}, 0},
                                                                  {{{"DOMAIN", "EVENT_A", RuleType::WHOLE_WORD}}, 1},
                                                                  {{{"DOMAIN", "EVENT"}}, 0},
                                                                  {{{"OMAIN", "EVENT_A"}}, 0},
                                                                  {{{"", "EVENT_A"}}, 1},
                                                                  {{{"DOMAIN", ""}}, 1},
                                                                  {{{"OTHER", ""}, {"DOMAIN", ""}, {"", ""}}, 1}};
    for (const auto &[rules, heard] : cases) {
        const Recording recording(rules);
        EXPECT_EQ(Write("DOMAIN", "EVENT_A"), 0);
        EXPECT_EQ(recording.events.size(), heard) << (rules.empty() ? "none" : rules[0].GetEventName());
    }
}

TEST(HostEvent, ListenersAreAddedAndRemovedOnceEvenByThemselves)
{
    std::vector<ListenerRule> first = {{"DOMAIN", "FIRST"}};
    const Recording second({ListenerRule("DOMAIN", "SECOND")});
    const auto listener = std::make_shared<Listener>();
    listener->answer = [&] {
        EXPECT_EQ(Write("DOMAIN", "SECOND"), 0);
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
    };
    EXPECT_EQ(HiSysEventManager::AddListener(nullptr, first), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(nullptr), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), -2);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, first), 0);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, first), -2);
    EXPECT_EQ(Write("DOMAIN", "FIRST") + Write("DOMAIN", "FIRST"), 0);
    EXPECT_EQ(listener->events.size(), 1U);
    EXPECT_EQ(second.events.size(), 1U);
}

// Ends the process with 0 when, with the output at `target`, `count` writes by each of `processes` processes give
// `result`, and listeners hear of the accepted ones alone.
void WriteAndExit(const char *target, int result, const std::string &text, size_t count = 1, int processes = 1)
{
    setenv("OSTRA_HOST_EVENT_OUTPUT", target, 1);
    const Recording recording;
    bool isRight = processes == 1 || fork() >= 0;
    for (size_t i = 0; i < count; ++i) {
        isRight = Write("DOMAIN", "EVENT", "TEXT", text) == result && isRight;
    }
    int childStatus = 0;
    wait(&childStatus);
    const size_t heard = result == 0 ? count : 0;
    std::_Exit(isRight && recording.events.size() == heard && childStatus == 0 ? 0 : 1);
}

// A death test, so that it runs before this process has looked for its output.
TEST(HostEventOutputDeathTest, GetsWholeLinesAtItsEndOrNobodyHearsTheEvent)
{
    constexpr char path[] = "host_event_platform_test.events";  // in the folder that the test runs in
    const std::string text(20000, 'x');
    const testing::ExitedWithCode success(0);
    EXPECT_EXIT(WriteAndExit("stderr", 0, "t"), success, "^\\{\"domain_\".*,\"TEXT\":\"t\"\\}\n$");
    EXPECT_EXIT(WriteAndExit("/dev/full", -5, "t"), success, "^$");
    EXPECT_EXIT(WriteAndExit("/dev/null/file", -5, "t"), success, "cannot be opened");
    EXPECT_EXIT(WriteAndExit(path, 0, "first"), success, "^$");
    EXPECT_EXIT(WriteAndExit(path, 0, text, 40, 2), success, "^$");
    std::ifstream file(path);
    int lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
        const std::string end = "\"TEXT\":\"" + (lines == 0 ? "first" : text) + "\"}";
        EXPECT_TRUE(line.rfind("{\"domain_\":", 0) == 0 && line.find(end) == line.size() - end.size());
    }
    EXPECT_EQ(lines, 1 + 2 * 40);
    EXPECT_EQ(unlink(path), 0);
}
