// SPDX-License-Identifier: Apache-2.0
//
// What of the host platform's services is not recorded: listeners and records of events, their output, parameters, the
// local node, the scheduling of threads. What is looked up once a process is tested in processes of its own.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
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

// Exits with how many events a listener heard, or with what the platform refused.
void WriteAndExit(const char *target)
{
    setenv("OSTRA_HOST_EVENT_OUTPUT", target, 1);
    const Recording recording;
    const int results = Write("EVENT", "T", "a") + Write("EVENT", "T", "b");
    std::_Exit(results == 0 ? static_cast<int>(recording.listener->events.size()) : -results);
}

void ReadParametersAndExit(const char *file)
{
    setenv("OSTRA_HOST_PARAMETER_FILE", file, 1);
    setenv("OSTRA_HOST_PARAMETERS", "test.both=from list; test.list=a=b;nothing;;test.empty=", 1);
    for (const char *name : {"test.file", "test.both", "test.semicolon", "test.list", "test.empty"}) {
        std::cerr << (Parameter(name) + "|");
    }
    std::_Exit(0);
}

// In the folder that the test runs in.
constexpr char EVENTS[] = "host_services_test.events";
constexpr char FIFO[] = "host_services_test.fifo";
constexpr char READ_FIFO[] = "host_services_test.read_fifo";
constexpr char PARAMETERS[] = "host_services_test.parameters";

struct Outcome {
    int status;
    std::string text;  // on standard error
};

struct ChildRun {
    void (*act)(const char *target);
    const char *target;
    int status;
    const char *text;  // a regular expression
    Outcome came;
};

std::string ReadAll(int descriptor)
{
    std::string text;
    char piece[4096];
    for (ssize_t count = 0; (count = read(descriptor, piece, sizeof(piece))) > 0;) {
        text.append(piece, static_cast<size_t>(count));
    }
    close(descriptor);
    return text;
}

Outcome InChild(void (*act)(const char *), const char *target)
{
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        alarm(10);  // nothing here waits
        dup2(ends[1], STDERR_FILENO);
        close(ends[1]);
        act(target);
    }
    close(ends[1]);
    Outcome outcome{0, ReadAll(ends[0])};
    waitpid(child, &outcome.status, 0);
    outcome.status = WIFEXITED(outcome.status) ? WEXITSTATUS(outcome.status) : -1;
    return outcome;
}

std::string g_eventLines;  // what stands in EVENTS afterwards

std::vector<ChildRun> RunAll()
{
    std::vector<ChildRun> runs = {
        {WriteAndExit, "stderr", 2, R"(\{"domain_".*,"T":"a"\}\n.*,"T":"b"\}\n)", {}},
        {WriteAndExit, EVENTS, 2, "", {}},
        {WriteAndExit, "/dev/full", 10, "", {}},
        {WriteAndExit, ".", 10, "OSTRA_HOST_EVENT_OUTPUT=. cannot be opened: .*\n", {}},
        {WriteAndExit, FIFO, 10, ".*fifo cannot be opened: .*\n", {}},
        {WriteAndExit, READ_FIFO, 10, ".*fifo cannot be opened: Is a FIFO\n", {}},
        {ReadParametersAndExit,
         PARAMETERS,
         0,
         "OSTRA_HOST_PARAMETER_FILE: skipping malformed entry \"B-D=1\"\n"
         "OSTRA_HOST_PARAMETERS: skipping malformed entry \"nothing\"\n"
         "from file[|]from list[|]a;b[|]a=b[|][|]",
         {}},
        {ReadParametersAndExit, FIFO, 0, ".*Is a FIFO\n.*\nunset[|]from list[|].*", {}},
        {ReadParametersAndExit, ".", 0, ".*=. cannot be opened: .*\n.*\nunset[|]from list[|].*", {}},
        {ReadParametersAndExit, "/dev/null/file", 0, ".*cannot be opened: .*\n.*\nunset[|]from list[|].*", {}}};
    unlink(EVENTS);
    std::ofstream(PARAMETERS) << "# a=1\n\n  test.file=from file \r\ntest.both=from file\nB-D=1\ntest.semicolon=a;b\n";
    EXPECT_EQ(mkfifo(FIFO, 0600) + mkfifo(READ_FIFO, 0600), 0);
    const int reader = open(READ_FIFO, O_RDWR | O_CLOEXEC);
    for (ChildRun &run : runs) {
        run.came = InChild(run.act, run.target);
    }
    close(reader);
    g_eventLines = ReadAll(open(EVENTS, O_RDONLY | O_CLOEXEC));
    for (const char *path : {EVENTS, PARAMETERS, FIFO, READ_FIFO}) {
        unlink(path);
    }
    return runs;
}

// Before the first test: each variable is read once a process.
const std::vector<ChildRun> RUNS = RunAll();

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

TEST(HostServices, EnvironmentVariablesGiveOutputAndParametersAndNothingIsWaitedFor)
{
    for (const ChildRun &run : RUNS) {
        EXPECT_EQ(run.status, run.came.status) << run.target << ": " << run.came.text;
        EXPECT_TRUE(std::regex_match(run.came.text, std::regex(run.text))) << run.target << ": " << run.came.text;
    }
    EXPECT_TRUE(std::regex_match(g_eventLines, std::regex(R"(.*,"T":"a"\}\n.*,"T":"b"\}\n)"))) << g_eventLines;
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
    EXPECT_EQ(std::string(first.networkId).find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(std::string(first.networkId).size(), NETWORK_ID_BUF_LEN - 1u);
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
    const pid_t tid = getpid();  // of the thread that runs the tests
    const auto scheduling = [&] {
        return std::pair(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
    };
    const std::pair<int, int> usual = scheduling();
    const std::pair<int, int> levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                          {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    int number = 0;
    QOS::QosController &controller = QOS::QosController::GetInstance();
    for (const auto &[policy, offset] : levels) {
        const std::pair<int, int> wanted(policy, usual.second + offset);
        const QOS::QosLevel level{number++};
        std::thread([&] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, wanted.second) == 0;
            QOS::QosLevel given = QOS::QosLevel::QOS_MAX;
            EXPECT_EQ(controller.SetThreadQosForOtherThread(level, tid), isGranted ? 0 : -1) << number;
            EXPECT_EQ(scheduling(), isGranted ? wanted : usual) << number;
            EXPECT_EQ(controller.GetThreadQosForOtherThread(given, tid), isGranted ? 0 : -1);
            EXPECT_EQ(given, isGranted ? level : QOS::QosLevel::QOS_MAX);
            EXPECT_EQ(controller.ResetThreadQosForOtherThread(tid), 0);
            EXPECT_EQ(controller.GetThreadQosForOtherThread(given, tid), -1);
            EXPECT_EQ(scheduling(), usual);
        }).join();
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
    LOG_SetCallback([](const LogType type, const LogLevel level, unsigned int, const char *tag, const char *text) {
        lines += std::to_string(type) + std::to_string(level) + tag + ": " + text + "\n";
    });
    auto &client = ConcurrentTask::ConcurrentTaskClient::GetInstance();
    client.RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}});
    client.ReportData(7, -1, {});
    client.ReportSceneInfo(8, {{"a", "b"}});
    LOG_SetCallback(nullptr);
    EXPECT_EQ(lines,
              "34CONCURRENT_TASK: RequestAuth a= pid=4 uid=%s\n34CONCURRENT_TASK: ReportData 7 -1\n"
              "34CONCURRENT_TASK: ReportSceneInfo 8 a=b\n");
}
