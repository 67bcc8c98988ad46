// SPDX-License-Identifier: Apache-2.0
//
// What of the host platform's services is not recorded: listeners and records of events, parameters, the local node,
// the scheduling of threads. host_environment_test.sh runs HostEnvironment under values of the environment variables.

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <iostream>
#include <memory>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "concurrent_task_client.h"
#include "hilog/log.h"
#include "parameter.h"
#include "qos.h"
#include "softbus_bus_center.h"
#include "support/event_listener.h"
#include "support/session.h"

using namespace OHOS;
using namespace OHOS::HiviewDFX;

const char *const SESSIONS =
#include "host_services_test.txt"
    ;

namespace {

bool g_isDiskFull = false;
int g_writes = 0;  // since the test set it

}  // namespace

// In place of the system's.
extern "C" ssize_t write(int descriptor, const void *data, size_t size)
{
    ++g_writes;
    errno = ENOSPC;
    return g_isDiskFull ? -1 : syscall(SYS_write, descriptor, data, size);
}

namespace {

enum Plain : uint8_t { PLAIN = 200 };

// Writes from a call site of its own each time, so that the limiter stays out of the way.
template <typename... Types>
int Write(const std::string &eventName, Types... keyValues)
{
    static int64_t line = 0;
    return HiSysEvent::Write("Write", ++line, "DOMAIN", eventName, HiSysEvent::FAULT, keyValues...);
}

using Event = EventListener::Event;

// What is heard by these rules during `act`.
std::vector<Event> Heard(std::vector<ListenerRule> rules, const std::function<void()> &act)
{
    std::vector<Event> events;
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const Event &event) {
        events.push_back(event);
    };
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    act();
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
    return events;
}

bool IsHeardBy(const std::vector<ListenerRule> &rules)
{
    return !Heard(rules, [] { EXPECT_EQ(Write("EVENT"), 0); }).empty();
}

// The result and what `value` is then.
template <typename Value>
std::string Get(const HiSysEventRecord &record, const char *key, Value value)
{
    const int result = record.GetParamValue(key, value);
    return testing::PrintToString(result) + ": " + testing::PrintToString(value);
}

// The parameter's value, or "error N".
std::string Parameter(const std::string &name, const char *fallback = "unset", uint32_t size = 128)
{
    char value[128] = {0};
    const int length = GetParameter(name.c_str(), fallback, value, size);
    return length < 0 ? "error " + std::to_string(length) : std::string(value, static_cast<size_t>(length));
}

int Set(const std::string &name, const std::string &value)
{
    return SetParameter(name.c_str(), value.c_str());
}

}  // namespace

using HostEvents = Session;
using HostParameters = Session;
using HostConcurrentTask = Session;

TEST_F(HostEvents, ARecordGivesWhatWasWritten)
{
    using Texts = std::vector<std::string>;
    using Numbers = std::vector<int64_t>;
    static constexpr char ownDomain[] = "OWN";
    const auto events = Heard({{"", ""}}, [] {
        EXPECT_EQ(
            HiSysEventWrite(ownDomain, "EVENT", HiSysEvent::SECURITY, "T", "q\" b\\ \n", "time_", INT64_MAX, "U",
                            UINT64_MAX, "D", 0.5, "E", PLAIN, "V", Texts{"1", "\""}, "N", std::vector<int16_t>{-1, 2}),
            0);
    });
    const HiSysEventRecord &record = *events.at(0);
    EXPECT_EQ(record.GetPid(), getpid());
    EXPECT_EQ(record.GetUid(), static_cast<int64_t>(getuid()));
    EXPECT_EQ(record.GetTid(), gettid());
    EXPECT_NEAR(static_cast<double>(record.GetTime()), static_cast<double>(time(nullptr)) * 1000, 10000);
    EXPECT_EQ(record.GetTimeZone().size(), 5u);
    Texts names = {"old"};
    record.GetParamNames(names);
    EXPECT_EQ(names, (Texts{"T", "time_", "U", "D", "E", "V", "N"}));
    SHOW(record.GetDomain(), record.GetEventName(), int{record.GetEventType()});
    const int64_t one = 1;
    SHOW(Get(record, "T", std::string()), Get(record, "U", uint64_t{1}), Get(record, "U", one), Get(record, "D", 1.0),
         Get(record, "D", one), Get(record, "E", one), Get(record, "V", Texts{"old"}), Get(record, "N", Numbers{7}),
         Get(record, "N", std::vector<uint64_t>{7}), Get(record, "N", one), Get(record, "T", Numbers{7}),
         Get(record, "none", one));
    const HiSysEventRecord parsed(R"({"level_":"MINOR","tag_":"t","a":[{"1":2}, 3],"traceid_":5,"spanid_":6,)"
                                  R"("pspanid_":7,"trace_flag_":8})");
    SHOW(parsed.GetLevel(), parsed.GetTag(), parsed.GetDomain(), parsed.GetTraceId(), parsed.GetSpanId(),
         parsed.GetPspanId(), parsed.GetTraceFlag(), Get(HiSysEventRecord("[1]"), "a", one));
    const HiSysEventRecord empty("{}");
    SHOW(empty.GetEventName(), int{empty.GetEventType()}, empty.GetTime(), empty.GetTimeZone(), empty.GetPid(),
         empty.GetTid(), empty.GetUid(), empty.GetTraceId(), empty.GetSpanId(), empty.GetPspanId(),
         empty.GetTraceFlag());
    const char *const none = nullptr;
    EXPECT_DEATH(Write("EVENT", none, 1), "null key");
}

TEST_F(HostEvents, RulesSelectByDomainNameAndType)
{
    SHOW(IsHeardBy({}), IsHeardBy({{"DOMAIN", "EVENT"}, {"", ""}}), IsHeardBy({{"DOMAIN", "EVEN"}}),
         IsHeardBy({{"OTHER", ""}}), IsHeardBy({{"", "EVENT"}}), IsHeardBy({ListenerRule("tag")}),
         IsHeardBy({{"", "", "", WHOLE_WORD, HiSysEvent::FAULT}}), IsHeardBy({{"", "", "", WHOLE_WORD, 4}}));
}

TEST_F(HostEvents, ListenersComeAndGoAndThrow)
{
    std::vector<ListenerRule> rules = {{"DOMAIN", "FIRST"}};
    std::vector<ListenerRule> byPrefix = {{"DOMAIN", "FIRST"}, {"DOMAIN", "S", RuleType::PREFIX}};
    const auto listener = std::make_shared<EventListener>();
    listener->act = [&](const Event &event) {
        EXPECT_EQ(event->GetEventName(), "FIRST");
        EXPECT_EQ(Write("SECOND"), 0);
        EXPECT_EQ(HiSysEventManager::RemoveListener(listener), 0);
        throw std::runtime_error("of the listener");
    };
    SHOW(HiSysEventManager::AddListener(nullptr, rules), HiSysEventManager::RemoveListener(nullptr),
         HiSysEventManager::AddListener(listener, byPrefix), HiSysEventManager::RemoveListener(listener));
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), -2);
    EXPECT_THROW(Write("FIRST"), std::runtime_error);
    std::thread([] { EXPECT_EQ(Write("FIRST"), 0); }).join();  // no lock is held, and nobody listens
}

TEST(HostEnvironment, IsToldToWhoRunsIt)
{
    LOG_SetCallback([](LogType, LogLevel, unsigned int, const char *, const char *text) {
        std::cout << text;
        errno = EBADF;
    });
    std::cout << "process " << getpid() << "\ndelivered ";
    g_writes = 0;
    errno = 0;
    for (int i = LOG_DEBUG; i <= LOG_FATAL; ++i) {
        HiLogPrint(LOG_CORE, static_cast<LogLevel>(i), 0xD004160, "TAG", "%{public}d", i);
    }
    EXPECT_EQ(errno, 0);
    LOG_SetCallback(nullptr);
    std::cout << " in " << g_writes << " writes\n";

    const auto first = Heard({{"", ""}}, [] {
        std::cout << "results " << Write("EVENT", "T", "a") << ' ' << Write("EVENT", "T", "b");
        g_isDiskFull = true;  // which only a configured output notices
    });
    for (int i = 0; i < 101; ++i) {
        Write("EVENT", "LATE", i);
    }
    g_isDiskFull = false;
    const auto rest = Heard({{"", ""}}, [] { Write("EVENT", "T", "c"); });
    std::cout << " heard " << first.size() << " then " << rest.size() << '\n';

    for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
        std::cout << name << " is " << Parameter(name) << '\n';
    }
}

TEST_F(HostParameters, NamesValuesAndBuffersAreCheckedToTheirLimits)
{
    const std::string longest(96, 'v');
    const std::string tooLong(97, 'v');
    SHOW(Set("persist.Test_0.9z", longest), Set(longest, "value"), Set("persist.Test_0.9z", tooLong));
    SHOW(Parameter("persist.Test_0.9z", nullptr, 97), Parameter("persist.Test_0.9z", "", 96));
    SHOW(Set("", "value"), Set(tooLong, "value"), Set("a-b", "value"), Set("a:b", "value"), Set("a[b", "value"),
         Set("a{b", "value"));
    SHOW(Parameter(""), Parameter(tooLong), Parameter("a-b"));
    SHOW(SetParameter(nullptr, "v"), SetParameter("test.null", nullptr), GetParameter("a", "", nullptr, 1));
    SHOW(Parameter("test.unset", nullptr), Parameter("test.unset", "other", 5));
}

TEST(HostSoftBus, GivesOneIdentityOrAnError)
{
    NodeBasicInfo first{};
    ASSERT_EQ(GetLocalNodeDeviceInfo("pkg", &first), 0);
    const std::string id = first.networkId;
    EXPECT_TRUE(std::regex_match(id, std::regex("[0-9a-f]{64}"))) << id;
    EXPECT_GT(std::set<char>(id.begin(), id.end()).size(), 4u) << id;
    char host[DEVICE_NAME_BUF_LEN] = "";
    gethostname(host, sizeof(host) - 1);
    EXPECT_STREQ(first.deviceName, host);
    EXPECT_EQ(GetLocalNodeDeviceInfo(nullptr, &first), -1);
    EXPECT_EQ(GetLocalNodeDeviceInfo("pkg", nullptr), -1);
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none{0, usual.rlim_max};
    NodeBasicInfo second = first;
    setrlimit(RLIMIT_NOFILE, &none);
    const int32_t result = GetLocalNodeDeviceInfo("pkg", &second);
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_EQ(result, -2);
    EXPECT_EQ(second.networkId, id);
    EXPECT_EQ(GetLocalNodeDeviceInfo("other", &second), 0);
    EXPECT_EQ(second.networkId, id);
}

TEST(HostQos, SchedulesAThreadAndResetsItOrLeavesItAlone)
{
    using Scheduling = std::pair<int, int>;
    const auto now = [tid = gettid()] {
        return Scheduling(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
    };
    const Scheduling usual = now();
    const Scheduling levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                 {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    int number = 0;
    for (const auto &[policy, offset] : levels) {
        const Scheduling wanted(policy, usual.second + offset);
        const QOS::QosLevel level{number++};
        QOS::QosLevel given = QOS::QosLevel::QOS_MAX;
        std::thread([&, tid = gettid()] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, wanted.second) == 0;
            EXPECT_EQ(QOS::SetQosForOtherThread(level, tid), isGranted ? 0 : -1) << number;
            EXPECT_EQ(now(), isGranted ? wanted : usual) << number;
            EXPECT_EQ(QOS::GetQosForOtherThread(given, tid), isGranted ? 0 : -1);
            EXPECT_EQ(given, isGranted ? level : QOS::QosLevel::QOS_MAX);
        }).join();
        EXPECT_EQ(QOS::ResetThreadQos(), 0);
        EXPECT_EQ(QOS::GetThreadQos(given), -1);
        EXPECT_EQ(now(), usual);
    }
    for (const pid_t foreign : {-1, 0, INT_MAX, getppid()}) {  // the last of another process
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel::QOS_BACKGROUND, foreign), -1) << foreign;
        EXPECT_EQ(QOS::ResetQosForOtherThread(foreign), -1) << foreign;
    }
}

TEST(HostQos, AThreadHasNoLevelOnceItIsScheduledOtherwise)
{
    QOS::QosLevel level = QOS::QosLevel::QOS_MAX;
    const sched_param noRealTimePriority{};
    EXPECT_EQ(QOS::SetThreadQos(QOS::QosLevel::QOS_BACKGROUND), 0);
    EXPECT_EQ(sched_setscheduler(0, SCHED_OTHER, &noRealTimePriority), 0);
    EXPECT_EQ(QOS::GetThreadQos(level), -1);
}

TEST_F(HostConcurrentTask, LogsEachRequestWithItsPairsInOrder)
{
    LOG_SetCallback([](LogType type, LogLevel level, unsigned int, const char *tag, const char *message) {
        Left(Text(int{type}) + " " + Text(int{level}) + " " + tag + ": " + message);
    });
    auto &client = ConcurrentTask::ConcurrentTaskClient::GetInstance();
    CALL(client.RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}}));
    CALL(client.ReportData(7, -1, {}));
    CALL(client.ReportSceneInfo(8, {{"a", "b"}}));
}
