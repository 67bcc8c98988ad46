// SPDX-License-Identifier: Apache-2.0
//
// The host implementations that the bridge stands on: thread QoS, authorisation requests.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <climits>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>

#include "concurrent_task_client.h"
#include "hilog/log.h"
#include "qos.h"

using namespace OHOS;

TEST(HostQos, SchedulesAnotherThreadAndResetsItOrLeavesItAlone)
{
    const pid_t tid = getpid();  // of the thread that runs the tests
    const auto scheduling = [&] {
        return std::pair(sched_getscheduler(tid), getpriority(PRIO_PROCESS, static_cast<id_t>(tid)));
    };
    const std::pair<int, int> usual = scheduling();
    const std::pair<int, int> levels[] = {{SCHED_BATCH, 0},   {SCHED_BATCH, 0},   {SCHED_OTHER, 0}, {SCHED_OTHER, -5},
                                          {SCHED_OTHER, -10}, {SCHED_OTHER, -15}, {SCHED_BATCH, -5}};
    int level = 0;
    for (const auto &[policy, offset] : levels) {
        const std::pair<int, int> wanted(policy, usual.second + offset);
        const QOS::QosLevel qos{++level};
        std::thread([&] {
            const bool isGranted = setpriority(PRIO_PROCESS, 0, wanted.second) == 0;
            EXPECT_EQ(QOS::SetQosForOtherThread(qos, tid), isGranted ? 0 : -1) << level;
            EXPECT_EQ(scheduling(), isGranted ? wanted : usual) << level;
            EXPECT_EQ(QOS::ResetQosForOtherThread(tid), 0);
            EXPECT_EQ(scheduling(), usual);
        }).join();
    }
    for (const int bad : {INT_MIN, 0, 8, INT_MAX}) {
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel{bad}, tid), -1) << bad;
    }
    for (const pid_t foreign : {-1, 0, INT_MAX, getppid()}) {  // the last of another process
        EXPECT_EQ(QOS::SetQosForOtherThread(QOS::QosLevel::QOS_BACKGROUND, foreign), -1) << foreign;
        EXPECT_EQ(QOS::ResetQosForOtherThread(foreign), -1) << foreign;
    }
}

TEST(HostConcurrentTask, RequestAuthWritesThePairsInTheOrderOfTheirKeys)
{
    static std::string lines;
    LOG_SetCallback([](const LogType type, const LogLevel level, unsigned int, const char *tag, const char *text) {
        lines += std::to_string(type) + std::to_string(level) + tag + ": " + text + "\n";
    });
    ConcurrentTask::ConcurrentTaskClient::GetInstance().RequestAuth({{"uid", "%s"}, {"pid", "4"}, {"a", ""}});
    ConcurrentTask::ConcurrentTaskClient::GetInstance().RequestAuth({});
    LOG_SetCallback(nullptr);
    EXPECT_EQ(lines, "34CONCURRENT_TASK: RequestAuth a= pid=4 uid=%s\n34CONCURRENT_TASK: RequestAuth\n");
}
