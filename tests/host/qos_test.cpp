// SPDX-License-Identifier: Apache-2.0
//
// QoS and concurrent task client: replays the recordings over a stand-in for the kernel, and tests the scheduling of
// threads.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "concurrent_task_client.h"
#include "hilog/log.h"
#include "host/recording.h"
#include "parameter.h"
#include "qos.h"
#include "qos/scheduling.h"

using namespace OHOS;
using namespace OHOS::QOS;
using namespace replay;

namespace {

// The stand-in for the kernel, while it has a value.
struct Kernel {
    int result = 0;
    int level = -1;
    std::string request = "nothing";
};
std::optional<Kernel> g_kernel;

int Request(const std::string &request, int tid)
{
    g_kernel->request = request + (tid == gettid() ? "own" : std::to_string(tid));
    return g_kernel->result;
}

// Returns the host platform's function, which the one of this program replaces.
template <typename Function>
Function *Replaced(Function * /*replacement*/, const char *symbol)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, symbol));
}

// Returns the result of the operation and its request to the kernel.
template <typename Call>
Fields Result(Call call)
{
    g_kernel->request = "nothing";
    const int result = call();
    return {std::to_string(result), g_kernel->request};
}

template <typename Call>
Fields ResultWithLevel(Call call)
{
    const auto none = static_cast<QosLevel>(99);
    QosLevel level = none;
    Fields fields = Result([&] { return call(level); });
    fields.push_back(level == none ? "unchanged" : std::to_string(static_cast<int>(level)));
    return fields;
}

QosLevel Level(const Fields &in)
{
    return static_cast<QosLevel>(Number<int>(in.at(0)));
}

void Switch(const std::string &value)
{
    SetParameter("persist.qosmanager.setQos.on", value.c_str());
}

}  // namespace

namespace ostra::host {

int ApplyQosLevel(int level, int tid)
{
    return g_kernel.has_value() ? Request("apply " + std::to_string(level) + " to ", tid)
                                : Replaced(ApplyQosLevel, "_ZN5ostra4host13ApplyQosLevelEii")(level, tid);
}

int LeaveQosLevel(int tid)
{
    return g_kernel.has_value() ? Request("leave ", tid)
                                : Replaced(LeaveQosLevel, "_ZN5ostra4host13LeaveQosLevelEi")(tid);
}

int QueryQosLevel(int tid, int &level)
{
    if (!g_kernel.has_value()) {
        return Replaced(QueryQosLevel, "_ZN5ostra4host13QueryQosLevelEiRi")(tid, level);
    }
    level = g_kernel->level;
    return Request("get ", tid);
}

}  // namespace ostra::host

TEST(Qos, MatchesRecording)
{
    const auto begin = [] {
        g_kernel = Kernel();
        Switch("true");
    };
    Operations operations;
    operations["SetThreadQos"] = [](const Fields &in) {
        return Result([&] { return SetThreadQos(Level(in)); });
    };
    operations["SetQosForOtherThread"] = [](const Fields &in) {
        return Result([&] { return SetQosForOtherThread(Level(in), Number<int>(in.at(1))); });
    };
    operations["ResetThreadQos"] = [](const Fields &) {
        return Result(ResetThreadQos);
    };
    operations["ResetQosForOtherThread"] = [](const Fields &in) {
        return Result([&] { return ResetQosForOtherThread(Number<int>(in.at(0))); });
    };
    operations["GetThreadQos"] = [](const Fields &) {
        return ResultWithLevel(GetThreadQos);
    };
    operations["GetQosForOtherThread"] = [](const Fields &in) {
        return ResultWithLevel([&](QosLevel &level) { return GetQosForOtherThread(level, Number<int>(in.at(0))); });
    };
    operations["kernel"] = [](const Fields &in) -> Fields {
        g_kernel->result = Number<int>(in.at(0));
        g_kernel->level = Number<int>(in.at(1));
        return {"-"};
    };
    operations["switch"] = [](const Fields &in) -> Fields {
        Switch(in.at(0));
        return {"-"};
    };
    Replay("recorded/qos.txt", 67, operations, begin);
    Switch("true");
    g_kernel.reset();
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
    int number = 0;
    for (const auto &[policy, offset] : levels) {
        const Scheduling wanted(policy, usual.second + offset);
        const QosLevel level{number++};
        QosLevel actual = QosLevel::QOS_MAX;
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
}

TEST(Qos, ThreadLosesItsLevelWhenScheduledOtherwise)
{
    QosLevel level = QosLevel::QOS_MAX;
    const sched_param noRealTimePriority{};
    EXPECT_EQ(SetThreadQos(QosLevel::QOS_BACKGROUND), 0);
    EXPECT_EQ(sched_setscheduler(0, SCHED_OTHER, &noRealTimePriority), 0);
    EXPECT_EQ(GetThreadQos(level), -1);
}

TEST(ConcurrentTaskClient, LogsEachRequestWithItsPairsInOrder)
{
    static std::string logged;
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
