// SPDX-License-Identifier: Apache-2.0
//
// QoS and concurrent task client: replays the recordings on a fake kernel, and tests the scheduling of threads and the
// log of requests.

#include "qos.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <optional>
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

struct FakeKernel {
    int result = 0;
    int level = -1;
    std::string request = "nothing";
};

std::optional<FakeKernel> g_kernel;

// Returns the result of a function and the level that it gets.
template <typename... Tid>
Fields GetLevel(int (*get)(QosLevel &, Tid...), Tid... tid)
{
    constexpr QosLevel unchanged{99};
    QosLevel level = unchanged;
    const int result = get(level, tid...);
    return {Show(result), level == unchanged ? "unchanged" : Show(static_cast<int>(level))};
}

}  // namespace

// Replaces the function of the host platform, which it calls if there is no fake kernel.
int ostra::host::SendQosRequest(QosRequest request, int tid, int &level)
{
    if (!g_kernel.has_value()) {
        const auto next = dlsym(RTLD_NEXT, "_ZN5ostra4host14SendQosRequestENS0_10QosRequestEiRi");
        return reinterpret_cast<decltype(&SendQosRequest)>(next)(request, tid, level);
    }
    const std::string requests[] = {"apply " + std::to_string(level) + " to ", "leave ", "get "};
    g_kernel->request = requests[static_cast<int>(request)] + (tid == gettid() ? "own" : std::to_string(tid));
    level = g_kernel->level;
    return g_kernel->result;
}

TEST(Qos, MatchesRecording)
{
    Operations operations = {
        {"SetThreadQos", Call(SetThreadQos)},
        {"SetQosForOtherThread", Call(SetQosForOtherThread)},
        {"ResetThreadQos", Call(ResetThreadQos)},
        {"ResetQosForOtherThread", Call(ResetQosForOtherThread)},
        {"GetThreadQos", Call(+[] { return GetLevel(GetThreadQos); })},
        {"GetQosForOtherThread", Call(+[](int tid) { return GetLevel(GetQosForOtherThread, tid); })},
    };
    for (auto &[name, operation] : operations) {
        operation = [call = operation](const Fields &in) {
            Fields results = call(in);
            results.insert(results.begin() + 1, std::exchange(g_kernel->request, "nothing"));
            return results;
        };
    }
    operations["kernel"] = Call(+[](int result, int level) {
        g_kernel = FakeKernel{result, level};
        return Fields{"-"};
    });
    operations["switch"] = [](const Fields &in) {
        SetParameter("persist.qosmanager.setQos.on", in.at(0).c_str());
        return Fields{"-"};
    };
    operations["case"] = [&](const Fields &) {
        g_kernel = FakeKernel();
        operations["switch"]({"true"});
        return Fields();
    };
    std::thread([&] { Replay("recorded/qos.txt", 67, operations); }).join();  // its thread id is not the process id
    operations["case"]({});
    g_kernel.reset();
}

TEST(Qos, SchedulesAndResetsThreads)
{
    using Scheduling = std::pair<int, int>;
    const pid_t tid = gettid();
    const auto current = [tid] {
        return Scheduling(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
    };
    const Scheduling initial = current();
    const Scheduling levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                 {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    const Fields noLevel = {"-1", "unchanged"};
    int level = 0;
    for (const auto &[policy, offset] : levels) {
        const Scheduling expected(policy, std::max(initial.second + offset, -20));
        std::thread([&] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, expected.second) == 0;
            EXPECT_EQ(SetQosForOtherThread(QosLevel{level}, tid), isGranted ? 0 : -1) << level;
            EXPECT_EQ(current(), isGranted ? expected : initial) << level;
            EXPECT_EQ(GetLevel(GetQosForOtherThread, tid), isGranted ? Fields({"0", Show(level)}) : noLevel);
        }).join();
        EXPECT_EQ(ResetThreadQos(), 0);
        EXPECT_EQ(GetLevel(GetThreadQos), noLevel);
        EXPECT_EQ(current(), initial);
        ++level;
    }
    for (const pid_t other : {-1, 0, INT32_MAX, getppid()}) {  // not threads of this process
        EXPECT_EQ(SetQosForOtherThread(QosLevel::QOS_BACKGROUND, other), -1) << other;
        EXPECT_EQ(ResetQosForOtherThread(other), -1) << other;
    }
    EXPECT_EQ(SetThreadQos(QosLevel::QOS_BACKGROUND), 0);
    const sched_param noRealTimePriority{};
    EXPECT_EQ(sched_setscheduler(0, SCHED_OTHER, &noRealTimePriority), 0);
    EXPECT_EQ(GetLevel(GetThreadQos), noLevel) << "the scheduling was changed after the level was set";
}

TEST(ConcurrentTaskClient, LogsRequestsWithSortedPairs)
{
    static std::string logged;
    LOG_SetCallback([](LogType type, LogLevel level, unsigned int domain, const char *tag, const char *message) {
        logged = Show(type) + " " + Show(level) + " " + Show(domain) + " " + tag + ": " + message;
    });
    ConcurrentTask::ConcurrentTaskClient::GetInstance().RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}});
    LOG_SetCallback(nullptr);
    EXPECT_EQ(logged, "3 4 218109696 CONCURRENT_TASK: RequestAuth a= pid=4 uid=%s");
}
