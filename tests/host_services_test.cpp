// SPDX-License-Identifier: Apache-2.0
//
// What of the host platform's services is not recorded: listeners and records of events, their output, parameters, the
// local node, the scheduling of threads. What is looked up once a process is tested in processes of its own.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <functional>
#include <iostream>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "concurrent_task_client.h"
#include "hilog/log.h"
#include "hisysevent_manager.h"
#include "parameter.h"
#include "qos.h"
#include "softbus_bus_center.h"

using namespace OHOS;
using namespace OHOS::HiviewDFX;
using namespace std::string_literals;

namespace {

enum Plain : uint8_t { PLAIN = 200 };

// Writes from a call site of its own each time, so that the limiter stays out of the way.
template <typename... Types>
int Write(const std::string &eventName, Types... keyValues)
{
    static int64_t line = 0;
    return HiSysEvent::Write("Write", ++line, "DOMAIN", eventName, HiSysEvent::FAULT, keyValues...);
}

struct Listener : HiSysEventListener {
    void OnEvent(std::shared_ptr<HiSysEventRecord> sysEvent) override
    {
        events.push_back(sysEvent);
        answer();
    }
    void OnServiceDied() override
    {
    }
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
};

template <typename Value>
std::pair<int, Value> Get(const HiSysEventRecord &record, const char *key, Value value)
{
    const int result = record.GetParamValue(key, value);
    return {result, value};
}

// The parameter's value, or "error N".
std::string Parameter(const std::string &name, const char *fallback = "unset", uint32_t size = 128)
{
    char value[128] = {0};
    const int length = GetParameter(name.c_str(), fallback, value, size);
    return length < 0 ? "error " + std::to_string(length) : std::string(value, static_cast<size_t>(length));
}

}  // namespace

TEST(HostEvents, ARecordGivesWhatWasWritten)
{
    const Recording recording;
    const std::string text = "q\" b\\ \n \xC3\xA4";
    static constexpr char ownDomain[] = "OWN";
    EXPECT_EQ(
        HiSysEventWrite(ownDomain, "EVENT", HiSysEvent::SECURITY, "T", text, "time_", INT64_MAX, "U", UINT64_MAX, "D",
                        0.1, "E", PLAIN, "V", std::vector<std::string>{"1", "\""}, "N", std::vector<int16_t>{-1, 2}),
        0);
    const HiSysEventRecord &record = *recording.listener->events.at(0);
    EXPECT_EQ(record.GetDomain() + record.GetEventName(), "OWNEVENT");
    EXPECT_EQ(record.GetEventType(), HiSysEvent::SECURITY);
    EXPECT_EQ(record.GetPid() * 1000 + record.GetUid(), getpid() * 1000 + static_cast<int64_t>(getuid()));
    EXPECT_EQ(record.GetTid(), gettid());
    EXPECT_NEAR(static_cast<double>(record.GetTime()), static_cast<double>(time(nullptr)) * 1000, 10000);
    EXPECT_EQ(record.GetTimeZone().size(), 5u);
    std::vector<std::string> names = {"old"};
    record.GetParamNames(names);
    EXPECT_EQ(names, (std::vector<std::string>{"T", "time_", "U", "D", "E", "V", "N"}));
    EXPECT_EQ(Get(record, "T", ""s), std::pair(0, text));
    EXPECT_EQ(Get(record, "U", uint64_t{1}), std::pair(0, UINT64_MAX));
    EXPECT_EQ(Get(record, "U", int64_t{1}), std::pair(-3, int64_t{1}));
    EXPECT_EQ(Get(record, "D", 1.0), std::pair(0, 0.1));
    EXPECT_EQ(Get(record, "D", int64_t{1}), std::pair(-3, int64_t{1}));
    EXPECT_EQ(Get(record, "E", int64_t{1}), std::pair(0, int64_t{200}));
    EXPECT_EQ(Get(record, "V", std::vector<std::string>{"old"}), std::pair(0, std::vector<std::string>{"1", "\""}));
    EXPECT_EQ(Get(record, "N", std::vector<int64_t>{7}), std::pair(0, std::vector<int64_t>{-1, 2}));
    EXPECT_EQ(Get(record, "N", std::vector<uint64_t>{7}), std::pair(-3, std::vector<uint64_t>{7}));
    EXPECT_EQ(Get(record, "N", int64_t{1}).first + Get(record, "T", std::vector<double>()).first, -6);
    EXPECT_EQ(Get(record, "none", "old"s), std::pair(-2, "old"s));
    const HiSysEventRecord parsed(
        R"({"level_":"MINOR","tag_":"t","a":[{"1":2}, 3],"b":"4","traceid_":5,"spanid_":6,"pspanid_":7,"trace_flag_":8})");
    EXPECT_EQ(parsed.GetLevel() + parsed.GetTag() + parsed.GetDomain(), "MINORt");
    EXPECT_EQ(parsed.GetTraceId() * 100 + parsed.GetSpanId() * 10 + parsed.GetPspanId(), 567u);
    EXPECT_EQ(parsed.GetTraceFlag(), 8);
    EXPECT_EQ(Get(HiSysEventRecord("[1]"), "a", ""s).first, -1);
}

TEST(HostEvents, RulesSelectByDomainNameAndType)
{
    const std::pair<std::vector<ListenerRule>, size_t> cases[] = {{{}, 0},
                                                                  {{{"DOMAIN", "EVENT"}, {"", ""}}, 1},
                                                                  {{{"DOMAIN", "EVEN"}}, 0},
                                                                  {{{"OTHER", ""}}, 0},
                                                                  {{{"", "EVENT"}}, 1},
                                                                  {{ListenerRule("tag")}, 0},
                                                                  {{{"", "", "", WHOLE_WORD, HiSysEvent::FAULT}}, 1},
                                                                  {{{"", "", "", WHOLE_WORD, 4}}, 0}};
    for (const auto &[rules, heard] : cases) {
        const Recording recording(rules);
        EXPECT_EQ(Write("EVENT"), 0);
        EXPECT_EQ(recording.listener->events.size(), heard) << (rules.empty() ? "none" : rules[0].GetEventName());
    }
}

TEST(HostEvents, ListenersComeAndGoAndThrow)
{
    std::vector<ListenerRule> rules = {{"DOMAIN", "FIRST"}};
    std::vector<ListenerRule> byPrefix = {{"DOMAIN", "FIRST"}, {"DOMAIN", "S", RuleType::PREFIX}};
    const auto listener = std::make_shared<Listener>();
    listener->answer = [&] {
        EXPECT_EQ(Write("SECOND") + HiSysEventManager::RemoveListener(listener), 0);
        throw std::runtime_error("of the listener");
    };
    EXPECT_EQ(HiSysEventManager::AddListener(nullptr, rules), -1);
    EXPECT_EQ(HiSysEventManager::RemoveListener(nullptr), -1);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, byPrefix), -3);
    EXPECT_EQ(HiSysEventManager::RemoveListener(listener), -2);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), 0);
    EXPECT_EQ(HiSysEventManager::AddListener(listener, rules), -2);
    EXPECT_THROW(Write("FIRST"), std::runtime_error);
    std::thread([] { EXPECT_EQ(Write("FIRST"), 0); }).join();  // no lock is held
    EXPECT_EQ(listener->events.size(), 1u);
}

// Run by host_environment_test.sh under other values of the environment variables, which are read once a process.
TEST(HostEnvironment, IsToldToWhoRunsIt)
{
    const Recording recording;
    std::cout << "results " << Write("EVENT", "T", "a") << ' ' << Write("EVENT", "T", "b") << " heard "
              << recording.listener->events.size() << '\n';
    for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
        std::cout << name << " is " << Parameter(name) << '\n';
    }
}

TEST(HostParameters, NamesValuesAndBuffersAreCheckedToTheirLimits)
{
    for (const std::string &name : {"persist.Test_0.9z"s, std::string(96, 'N')}) {
        EXPECT_EQ(SetParameter(name.c_str(), std::string(96, 'v').c_str()), 0);
        EXPECT_EQ(SetParameter(name.c_str(), std::string(97, 'v').c_str()), -9);
        EXPECT_EQ(Parameter(name, nullptr, 97) + Parameter(name, "", 96), std::string(96, 'v') + "error -9");
        EXPECT_EQ(SetParameter(name.c_str(), ""), 0);
        EXPECT_EQ(Parameter(name), "");
    }
    for (const std::string &name : {""s, std::string(97, 'n'), "a-b"s, "a b"s}) {
        EXPECT_EQ(SetParameter(name.c_str(), "value"), -9) << name;
        EXPECT_EQ(Parameter(name), "error -1") << name;
    }
    EXPECT_EQ(SetParameter(nullptr, "v") + SetParameter("test.null", nullptr) + GetParameter("a", "", nullptr, 1), -27);
    EXPECT_EQ(Parameter("test.unset", nullptr) + Parameter("test.unset", "other", 5), "error -1error -9");
}

TEST(HostSoftBus, GivesOneIdentityOrAnError)
{
    NodeBasicInfo first{};
    NodeBasicInfo second{};
    ASSERT_EQ(GetLocalNodeDeviceInfo("pkg", &first) + GetLocalNodeDeviceInfo("other", &second), 0);
    const std::string id = first.networkId;
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos) << id;
    EXPECT_EQ(id.size(), NETWORK_ID_BUF_LEN - 1u);
    EXPECT_GT(std::set<char>(id.begin(), id.end()).size(), 4u) << id;
    char host[DEVICE_NAME_BUF_LEN] = "";
    gethostname(host, sizeof(host) - 1);
    EXPECT_STREQ(first.deviceName, host);
    EXPECT_STREQ(first.networkId, second.networkId);
    EXPECT_EQ(GetLocalNodeDeviceInfo(nullptr, &first) + GetLocalNodeDeviceInfo("pkg", nullptr), -2);
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none{0, usual.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const int32_t result = GetLocalNodeDeviceInfo("pkg", &first);
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_EQ(result, -2);
    EXPECT_STREQ(first.networkId, second.networkId);
}

TEST(HostQos, SchedulesAThreadAndResetsItOrLeavesItAlone)
{
    const pid_t tid = gettid();
    const std::pair<int, int> usual(sched_getscheduler(tid), getpriority(PRIO_PROCESS, 0));
    const std::pair<int, int> levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                          {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    int number = 0;
    for (const auto &[policy, offset] : levels) {
        const std::pair<int, int> wanted(policy, usual.second + offset);
        const QOS::QosLevel level{number++};
        QOS::QosLevel given = QOS::QosLevel::QOS_MAX;
        std::thread([&] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, wanted.second) == 0;
            EXPECT_EQ(QOS::SetQosForOtherThread(level, tid), isGranted ? 0 : -1) << number;
            const std::pair<int, int> now(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
            EXPECT_EQ(now, isGranted ? wanted : usual) << number;
            EXPECT_EQ(QOS::GetQosForOtherThread(given, tid), isGranted ? 0 : -1);
            EXPECT_EQ(given, isGranted ? level : QOS::QosLevel::QOS_MAX);
        }).join();
        EXPECT_EQ(QOS::ResetThreadQos(), 0);
        EXPECT_EQ(QOS::GetThreadQos(given), -1);
        EXPECT_EQ(std::pair(sched_getscheduler(0), getpriority(PRIO_PROCESS, 0)), usual);
    }
    for (const pid_t foreign : {-1, 0, INT_MAX, getppid()}) {  // the last of another process
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel::QOS_BACKGROUND, foreign), -1) << foreign;
        EXPECT_EQ(QOS::ResetQosForOtherThread(foreign), -1) << foreign;
    }
}

TEST(HostConcurrentTask, LogsEachRequestWithItsPairsInOrder)
{
    static std::string lines;
    lines.clear();
    LOG_SetCallback([](LogType, LogLevel level, unsigned int, const char *tag, const char *message) {
        lines += std::to_string(level) + tag + ": " + message + "\n";
    });
    auto &client = ConcurrentTask::ConcurrentTaskClient::GetInstance();
    client.RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}});
    client.ReportData(7, -1, {});
    client.ReportSceneInfo(8, {{"a", "b"}});
    LOG_SetCallback(nullptr);
    EXPECT_EQ(lines,
              "4CONCURRENT_TASK: RequestAuth a= pid=4 uid=%s\n4CONCURRENT_TASK: ReportData 7 -1\n"
              "4CONCURRENT_TASK: ReportSceneInfo 8 a=b\n");
}
