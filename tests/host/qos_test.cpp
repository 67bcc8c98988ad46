// SPDX-License-Identifier: Apache-2.0
//
// QoS and concurrent task client: replays the recordings on a fake kernel, and tests the scheduling of threads.

#include "qos.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <thread>

#include "concurrent_task_client.h"
#include "hilog/log.h"
#include "host/recording.h"
#include "parameter.h"
#include "qos/scheduling.h"

using namespace OHOS;
using namespace OHOS::QOS;
using namespace replay;

namespace {

// The state of the fake kernel.
bool g_isKernelReplaced = false;
int g_result = 0;
int g_level = -1;
std::string g_request;

// Records the request to the fake kernel, or forwards it to the host platform's function `symbol`.
template <typename... Arguments>
int Request(const std::string &request, int tid, const char *symbol, Arguments &&...arguments)
{
    if (!g_isKernelReplaced) {
        return reinterpret_cast<int (*)(Arguments...)>(dlsym(RTLD_NEXT, symbol))(arguments...);
    }
    g_request = request + (tid == gettid() ? "own" : std::to_string(tid));
    return g_result;
}

// The result of an operation and its request to the kernel.
Fields Result(int result)
{
    return {Show(result), std::exchange(g_request, "nothing")};
}

template <typename... Tid>
Fields ResultWithLevel(int (*get)(QosLevel &, Tid...), Tid... tid)
{
    const auto none = static_cast<QosLevel>(99);
    QosLevel level = none;
    Fields fields = Result(get(level, tid...));
    fields.push_back(level == none ? "unchanged" : Show(static_cast<int>(level)));
    return fields;
}

Fields StandIn(int result, int level)
{
    g_result = result;
    g_level = level;
    return {"-"};
}

Fields Switch(const std::string &value)
{
    SetParameter("persist.qosmanager.setQos.on", value.c_str());
    return {"-"};
}

}  // namespace

namespace ostra::host {

int ApplyQosLevel(int level, int tid)
{
    return Request("apply " + std::to_string(level) + " to ", tid, "_ZN5ostra4host13ApplyQosLevelEii", +level, +tid);
}

int LeaveQosLevel(int tid)
{
    return Request("leave ", tid, "_ZN5ostra4host13LeaveQosLevelEi", +tid);
}

int QueryQosLevel(int tid, int &level)
{
    level = g_level;
    return Request("get ", tid, "_ZN5ostra4host13QueryQosLevelEiRi", +tid, level);
}

}  // namespace ostra::host

TEST(Qos, MatchesRecording)
{
    g_isKernelReplaced = true;
    Replay("recorded/qos.txt", 67,
           {
               {"SetThreadQos", Call(+[](int level) { return Result(SetThreadQos(QosLevel{level})); })},
               {"SetQosForOtherThread",
                Call(+[](int level, int tid) { return Result(SetQosForOtherThread(QosLevel{level}, tid)); })},
               {"ResetThreadQos", Call(+[] { return Result(ResetThreadQos()); })},
               {"ResetQosForOtherThread", Call(+[](int tid) { return Result(ResetQosForOtherThread(tid)); })},
               {"GetThreadQos", Call(+[] { return ResultWithLevel(GetThreadQos); })},
               {"GetQosForOtherThread", Call(+[](int tid) { return ResultWithLevel(GetQosForOtherThread, tid); })},
               {"kernel", Call(StandIn)},
               {"switch",
                [](const Fields &in) {
                    return Switch(in.at(0));
                }},
               {"case",
                [](const Fields &) {
                    StandIn(0, -1);
                    Switch("true");
                    g_request = "nothing";
                    return Fields();
                }},
           });
    Switch("true");
    g_isKernelReplaced = false;
}

TEST(Qos, SchedulesAndResetsThreads)
{
    using Scheduling = std::pair<int, int>;
    const auto now = [tid = gettid()] {
        return Scheduling(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
    };
    const Scheduling usual = now();
    const Scheduling levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                 {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    QosLevel actual = QosLevel::QOS_MAX;
    int number = 0;
    for (const auto &[policy, offset] : levels) {
        const Scheduling wanted(policy, usual.second + offset);
        const QosLevel level{number++};
        actual = QosLevel::QOS_MAX;
        std::thread([&, tid = gettid()] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, wanted.second) == 0;
            EXPECT_EQ(SetQosForOtherThread(level, tid), isGranted ? 0 : -1) << number;
            EXPECT_EQ(now(), isGranted ? wanted : usual) << number;
            EXPECT_EQ(GetQosForOtherThread(actual, tid), isGranted ? 0 : -1);
            EXPECT_EQ(actual, isGranted ? level : QosLevel::QOS_MAX);
        }).join();
        EXPECT_EQ(ResetThreadQos(), 0);
        EXPECT_EQ(GetThreadQos(actual), -1);
        EXPECT_EQ(now(), usual);
    }
    for (const pid_t other : {-1, 0, INT_MAX, getppid()}) {  // not threads of this process
        EXPECT_EQ(SetQosForOtherThread(QosLevel::QOS_BACKGROUND, other), -1) << other;
        EXPECT_EQ(ResetQosForOtherThread(other), -1) << other;
    }
    EXPECT_EQ(SetThreadQos(QosLevel::QOS_BACKGROUND), 0);
    const sched_param noRealTimePriority{};
    EXPECT_EQ(sched_setscheduler(0, SCHED_OTHER, &noRealTimePriority), 0);
    EXPECT_EQ(GetThreadQos(actual), -1) << "a thread loses its level when it is scheduled otherwise";
}

TEST(ConcurrentTaskClient, LogsEachRequestWithItsPairsInOrder)
{
    static std::string logged;
    logged.clear();
    LOG_SetCallback([](LogType type, LogLevel level, unsigned int, const char *tag, const char *message) {
        logged += std::to_string(type) + " " + std::to_string(level) + " " + tag + ": " + message + "\n";
    });
    auto &client = ConcurrentTask::ConcurrentTaskClient::GetInstance();
    client.RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}});
    client.ReportData(7, -1, {});
    client.ReportSceneInfo(8, {{"a", "b"}});
    LOG_SetCallback(nullptr);
    EXPECT_EQ(logged,
              "3 4 CONCURRENT_TASK: RequestAuth a= pid=4 uid=%s\n"
              "3 4 CONCURRENT_TASK: ReportData 7 -1\n"
              "3 4 CONCURRENT_TASK: ReportSceneInfo 8 a=b\n");
}
