// SPDX-License-Identifier: Apache-2.0
//
// Events of the host platform. What is read from the environment once a process is tested in processes of its own. The
// limiter is tested on a clock that stands still.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "hisysevent_manager.h"

namespace {

constexpr int64_t NO_TIME = -1;
std::atomic<int64_t> g_monotonicNs{NO_TIME};

}  // namespace

// Takes the place of the C library's function, for the host platform too.
extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    constexpr int64_t nsPerSecond = 1000000000;
    const int64_t fixed = g_monotonicNs.load();
    if (clock != CLOCK_MONOTONIC || fixed == NO_TIME) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, now));
    }
    now->tv_sec = static_cast<time_t>(fixed / nsPerSecond);
    now->tv_nsec = static_cast<long>(fixed % nsPerSecond);
    return 0;
}

namespace OHOS::HiviewDFX {
namespace {

using Record = std::shared_ptr<HiSysEventRecord>;

constexpr int64_t LARGE_NUMBER = -9007199254740993;  // no double holds it
constexpr char OUTPUT_VARIABLE[] = "OSTRA_HOST_EVENT_OUTPUT";

class CleanEnvironment : public testing::Environment {
    void SetUp() override
    {
        testing::GTEST_FLAG(death_test_style) = "threadsafe";
        for (const char *variable : {OUTPUT_VARIABLE}) {
            unsetenv(variable);
        }
    }
};
[[maybe_unused]] const auto *const g_environment = testing::AddGlobalTestEnvironment(new CleanEnvironment);

// A path that a test shares with the processes that it starts.
std::string SharedPath(const std::string &name)
{
    constexpr char variable[] = "OSTRA_TEST_PATH_PREFIX";
    const std::string prefix = testing::TempDir() + "host_event_platform_test." + std::to_string(getpid()) + ".";
    setenv(variable, prefix.c_str(), 0);
    return std::getenv(variable) + name;
}

// Writes from a call site of its own each time, so that the limiter stays out of the way.
template <typename... Types>
int Write(const std::string &domain, const std::string &eventName, Types... keyValues)
{
    static std::atomic<int64_t> line{0};
    return HiSysEvent::Write("Write", ++line, domain, eventName, HiSysEvent::BEHAVIOR, keyValues...);
}

// Collects the events that it gets, and answers each as told.
class Listener : public HiSysEventListener {
public:
    explicit Listener(std::function<void()> answer = [] {}) : answer_(std::move(answer))
    {
    }

    void OnEvent(Record sysEvent) override
    {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            events_.push_back(sysEvent);
        }
        answer_();
    }

    void OnServiceDied() override
    {
    }

    std::vector<Record> Events()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return events_;
    }

private:
    std::mutex mutex_;
    std::vector<Record> events_;
    std::function<void()> answer_;
};

// Listens while it lives.
class Recording {
public:
    explicit Recording(std::vector<ListenerRule> rules = {{"", ""}})
    {
        EXPECT_EQ(HiSysEventManager::AddListener(listener_, rules), 0);
    }

    ~Recording()
    {
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener_), 0);
    }

    std::vector<Record> Events() const
    {
        return listener_->Events();
    }

private:
    std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
};

void RunThreads(int count, const std::function<void()> &work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        threads.emplace_back(work);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

TEST(HostEventTest, NamesAreCheckedToTheirLimits)
{
    const auto writtenWithDomain = [](const std::string &name) {
        return Write(name, "EVENT", "KEY", 1);
    };
    const auto writtenWithEvent = [](const std::string &name) {
        return Write("DOMAIN", name, "KEY", 1);
    };
    const auto writtenWithKey = [](const std::string &name) {
        return Write("DOMAIN", "EVENT", "KEY", 1, name, 1);
    };
    const struct {
        std::function<int(const std::string &)> write;
        size_t longest;
        int refusal;
    } names[] = {{writtenWithDomain, 16, -1}, {writtenWithEvent, 32, -2}, {writtenWithKey, 48, -3}};
    Recording recording;
    size_t accepted = 0;
    for (const auto &[write, longest, refusal] : names) {
        for (const std::string &good : {std::string("a"), std::string("Z9_z"), std::string(longest, 'A')}) {
            EXPECT_EQ(write(good), 0) << good;
            ++accepted;
        }
        for (const std::string &bad : {std::string(), std::string(longest + 1, 'A'), std::string("9A"),
                                       std::string("_A"), std::string("A-B"), std::string("A\xC3\xA4")}) {
            EXPECT_EQ(write(bad), refusal) << bad;
        }
    }
    const char *noKey = nullptr;
    EXPECT_EQ(Write("DOMAIN", "EVENT", noKey, 1), -3);
    EXPECT_EQ(recording.Events().size(), accepted);
}

TEST(HostEventTest, ACallSiteHasAHundredEventsInFiveSeconds)
{
    constexpr int64_t start = 1000000000000;
    constexpr int64_t period = 5000000000;
    constexpr int limit = 100;
    const std::string overSize(500000, 'x');
    const auto write = [](const char *func, int64_t line, const char *eventName) {
        return HiSysEvent::Write(func, line, "DOMAIN", eventName, HiSysEvent::FAULT);
    };
    g_monotonicNs = start;
    Recording recording;
    EXPECT_EQ(write("Func", 1, "BAD-NAME"), -2);  // does not count
    for (int i = 0; i < limit; ++i) {
        g_monotonicNs = start + i;
        ASSERT_EQ(write("Func", 1, "LIMITED"), 0) << i;
    }
    for (const int64_t now : {start + limit, start + period - 1}) {
        g_monotonicNs = now;
        EXPECT_EQ(write("Func", 1, "LIMITED"), -6);
        EXPECT_EQ(write("Func", 1, "BAD-NAME"), -2) << "names are checked first";
        EXPECT_EQ(HiSysEvent::Write("Func", 1, "DOMAIN", "LIMITED", HiSysEvent::FAULT, "TEXT", overSize), -6);
    }
    EXPECT_EQ(recording.Events().size(), static_cast<size_t>(limit));
    EXPECT_EQ(write("Other", 1, "LIMITED"), 0);
    EXPECT_EQ(write("Func", 2, "LIMITED"), 0);
    EXPECT_EQ(write("Func", 1, "UNLIMITED"), 0);
    EXPECT_EQ(write(nullptr, 1, "LIMITED"), 0);

    g_monotonicNs = start + period;
    std::atomic<int> admitted{0};
    RunThreads(4, [&] {
        for (int i = 0; i < limit; ++i) {
            admitted += write("Func", 1, "LIMITED") == 0 ? 1 : 0;
        }
    });
    EXPECT_EQ(admitted, limit);
    g_monotonicNs = NO_TIME;
}

TEST(HostEventTest, SizeCountsKeysTextsAndNumbers)
{
    constexpr size_t largest = 384 * 1024;
    const auto write = [](size_t size) {
        const std::string text(size - (4 + 4 + 4) - 3 * 8 - 5, '\n');
        const std::vector<std::string> texts = {"four", "5"};
        return Write("DOMAIN", "EVENT", "TEXT", text, "LIST", std::vector<double>{1, 2, 3}, "MORE", texts);
    };
    Recording recording;
    EXPECT_EQ(write(largest), 0);
    EXPECT_EQ(write(largest + 1), -4);
    EXPECT_EQ(recording.Events().size(), 1U);
}

TEST(HostEventTest, AnEventReadsAsOneFlatObject)
{
    const std::string text = "quote \" backslash \\ line\n tab\t bell\a \xC3\xA4";
    const char *noText = nullptr;
    setenv("TZ", "NST+03:30", 1);
    tzset();
    Recording recording;
    ASSERT_EQ(Write("DOMAIN", "EVENT", "ZULU", text, std::string("ALPHA"), true, "TINY", int8_t{-128}, "BIG",
                    std::numeric_limits<int64_t>::min(), "HUGE", std::numeric_limits<uint64_t>::max(), "RATIO", 0.1,
                    "SINGLE", 1.5F, "NAN", std::nan(""), "C", "c", "NONE", noText, "EMPTY", std::vector<int32_t>{},
                    "FLAGS", std::vector<bool>{true, false}, "NUMBERS", std::vector<uint16_t>{1, 65535}, "RATIOS",
                    std::vector<double>{-2.5}, "TEXTS", std::vector<std::string>{"a", "\""}, "CS",
                    std::vector<const char *>{"b"}),
              0);
    ASSERT_EQ(recording.Events().size(), 1U);
    const Record record = recording.Events()[0];
    int64_t now = 0;
    EXPECT_EQ(record->GetParamValue("time_", now), 0);
    EXPECT_NEAR(static_cast<double>(now), static_cast<double>(time(nullptr)) * 1000, 10000);
    EXPECT_EQ(record->AsJson(),
              R"({"domain_":"DOMAIN","name_":"EVENT","type_":4,"time_":)" + std::to_string(now) +
                  R"(,"tz_":"-0330","pid_":)" + std::to_string(getpid()) + R"(,"tid_":)" +
                  std::to_string(syscall(SYS_gettid)) + R"(,"uid_":)" + std::to_string(getuid()) +
                  R"(,"ZULU":"quote \" backslash \\ line\n tab\t bell\u0007 )"
                  "\xC3\xA4"
                  R"(","ALPHA":true,"TINY":-128,"BIG":-9223372036854775808,"HUGE":18446744073709551615,)"
                  R"("RATIO":0.1,"SINGLE":1.5,"NAN":null,"C":"c","NONE":"","EMPTY":[],"FLAGS":[true,false],)"
                  R"("NUMBERS":[1,65535],"RATIOS":[-2.5],"TEXTS":["a","\""],"CS":["b"]})");
}

TEST(HostEventTest, ARecordGivesNamesAndTypedValues)
{
    Recording recording;
    EXPECT_EQ(HiSysEvent::Write("Func", 7, "DOMAIN", "EVENT", HiSysEvent::SECURITY, "Z", LARGE_NUMBER, "A", "text",
                                "FLAG", true, "RATIO", 2.0, "LIST", std::vector<int>{1}, "HUGE", UINT64_MAX),
              0);
    ASSERT_EQ(recording.Events().size(), 1U);
    const Record record = recording.Events()[0];
    EXPECT_EQ(record->GetDomain(), "DOMAIN");
    EXPECT_EQ(record->GetEventName(), "EVENT");
    EXPECT_EQ(record->GetEventType(), HiSysEvent::SECURITY);
    std::vector<std::string> names = {"old"};
    record->GetParamNames(names);
    EXPECT_EQ(names, (std::vector<std::string>{"Z", "A", "FLAG", "RATIO", "LIST", "HUGE"}));

    const struct {
        const char *key;
        int asNumber;
        int asText;
    } keys[] = {{"Z", 0, -3},     {"A", -3, 0},     {"FLAG", -3, -3}, {"RATIO", -3, -3}, {"LIST", -3, -3},
                {"HUGE", -3, -3}, {"NONE", -2, -2}, {"z", -2, -2},    {"pid_", 0, -3},   {"tz_", -3, 0}};
    for (const auto &[key, asNumber, asText] : keys) {
        int64_t number = 42;
        std::string text = "unchanged";
        EXPECT_EQ(record->GetParamValue(key, number), asNumber) << key;
        EXPECT_EQ(record->GetParamValue(key, text), asText) << key;
        EXPECT_EQ(number == 42, asNumber != 0) << key;
        EXPECT_EQ(text == "unchanged", asText != 0) << key;
    }
    int64_t number = 0;
    record->GetParamValue("Z", number);
    EXPECT_EQ(number, LARGE_NUMBER);
}

TEST(HostEventTest, RulesSelectByDomainAndName)
{
    const struct {
        std::vector<ListenerRule> rules;
        bool isHeard;
    } cases[] = {
        {{}, false},
        {{{"DOMAIN", "EVENT_A"}}, true},
        {{{"DOMAIN", "EVENT"}}, false},
        {{{"DOMAI", "EVENT_A"}}, false},
        {{{"", "EVENT_A"}}, true},
        {{{"DOMAIN", ""}}, true},
        {{{"OTHER", ""}}, false},
        {{{"OTHER", ""}, {"DOMAIN", ""}, {"", ""}}, true},
    };
    for (const auto &[rules, isHeard] : cases) {
        Recording recording(rules);
        EXPECT_EQ(Write("DOMAIN", "EVENT_A"), 0);
        EXPECT_EQ(recording.Events().size(), isHeard ? 1U : 0U)
            << (rules.empty() ? "no rules" : rules[0].GetDomain() + "/" + rules[0].GetEventName());
    }
}

TEST(HostEventTest, ListenersAreAddedOnceAndRemovedOnce)
{
    const auto listener = std::make_shared<Listener>();
    std::vector<ListenerRule> all = {{"", ""}};
    EXPECT_EQ(HiSysEventManager::AddListener(nullptr, all), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(nullptr), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), -2);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, all), 0);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, all), -2);
    EXPECT_EQ(Write("DOMAIN", "EVENT"), 0);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), -2);
    EXPECT_EQ(Write("DOMAIN", "EVENT"), 0);
    EXPECT_EQ(listener->Events().size(), 1U);
}

TEST(HostEventTest, AListenerMayListenAndWriteItself)
{
    std::vector<ListenerRule> first = {{"DOMAIN", "FIRST"}};
    Recording second(std::vector<ListenerRule>{{"DOMAIN", "SECOND"}});
    std::shared_ptr<Listener> listener;
    listener = std::make_shared<Listener>([&listener] {
        EXPECT_EQ(Write("DOMAIN", "SECOND"), 0);
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
    });
    EXPECT_EQ(HiSysEventManager::AddListener(listener, first), 0);
    EXPECT_EQ(Write("DOMAIN", "FIRST"), 0);
    EXPECT_EQ(Write("DOMAIN", "FIRST"), 0);
    EXPECT_EQ(second.Events().size(), 1U);
}

TEST(HostEventTest, ThreadsWriteWhileListenersComeAndGo)
{
    constexpr int threadCount = 4;
    constexpr int eventCount = 100;
    Recording recording;
    RunThreads(threadCount, [] {
        for (int i = 0; i < eventCount; ++i) {
            Recording passing;
            EXPECT_EQ(Write("DOMAIN", "EVENT", "NUMBER", i), 0);
            EXPECT_FALSE(passing.Events().empty());
        }
    });
    EXPECT_EQ(recording.Events().size(), static_cast<size_t>(threadCount * eventCount));
}

TEST(HostEventOutputTest, GoesToStandardError)
{
    EXPECT_EXIT(
        {
            setenv(OUTPUT_VARIABLE, "stderr", 1);
            std::exit(Write("DOMAIN", "EVENT", "KEY", 5));
        },
        testing::ExitedWithCode(0), R"(^\{"domain_":"DOMAIN",.*,"KEY":5\}
$)");
}

TEST(HostEventOutputTest, AMissingFileIsCreated)
{
    const std::string path = SharedPath("new");
    EXPECT_EXIT(
        {
            setenv(OUTPUT_VARIABLE, path.c_str(), 1);
            std::exit(Write("DOMAIN", "EVENT"));
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(unlink(path.c_str()), 0);
}

TEST(HostEventOutputTest, WhatCannotBeWrittenReachesNobody)
{
    for (const char *path : {"/dev/full", "/dev/null/file"}) {
        EXPECT_EXIT(
            {
                setenv(OUTPUT_VARIABLE, path, 1);
                Recording recording;
                const bool isRefused = Write("DOMAIN", "EVENT") == -5;
                std::exit(isRefused && recording.Events().empty() ? 0 : 1);
            },
            testing::ExitedWithCode(0), "")
            << path;
    }
}

TEST(HostEventOutputTest, LinesOfProcessesAndThreadsStayWhole)
{
    constexpr int threadCount = 2;
    constexpr int eventCount = 40;
    const std::string text(20000, 'x');
    const std::string path = SharedPath("events");
    std::ofstream(path) << "earlier\n";
    EXPECT_EXIT(
        {
            setenv(OUTPUT_VARIABLE, path.c_str(), 1);
            const pid_t child = fork();
            std::atomic<int> refused{Write("DOMAIN", "EVENT", "TEXT", text)};
            setenv(OUTPUT_VARIABLE, "/dev/full", 1);  // looked at once only
            RunThreads(threadCount, [&] {
                for (int i = 0; i < eventCount; ++i) {
                    refused += Write("DOMAIN", "EVENT", "TEXT", text) == 0 ? 0 : 1;
                }
            });
            int status = 0;
            std::_Exit(refused != 0 || (child != 0 && (waitpid(child, &status, 0) != child || status != 0)) ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");

    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    EXPECT_EQ(line, "earlier");
    const std::string end = "\"TEXT\":\"" + text + "\"}";
    int lines = 0;
    for (; std::getline(file, line); ++lines) {
        EXPECT_EQ(line.rfind("{\"domain_\":", 0), 0U);
        EXPECT_EQ(line.find(end), line.size() - end.size());
    }
    EXPECT_EQ(lines, 2 * (1 + threadCount * eventCount));
    unlink(path.c_str());
}

}  // namespace
}  // namespace OHOS::HiviewDFX
