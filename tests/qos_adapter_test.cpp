// SPDX-License-Identifier: Apache-2.0

#include "ostra_qos_adapter.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "qos.h"
#include "support/log_recorder.h"

namespace {

// The calls that reached the platform, and what it answers.
std::vector<std::vector<int>> g_calls;
int g_result = 0;

}  // namespace

namespace OHOS::QOS {

int SetQosForOtherThread(enum QosLevel level, int tid)
{
    g_calls.push_back({static_cast<int>(level), tid});
    return g_result;
}

int ResetQosForOtherThread(int tid)
{
    g_calls.push_back({tid});
    return g_result;
}

}  // namespace OHOS::QOS

namespace {

TEST(QosAdapter, PassesArgumentsAndResultsThrough)
{
    for (int value : {0, 1, 7, 8, -1, INT_MAX, INT_MIN}) {
        g_calls.clear();
        g_result = value / 2;
        EXPECT_EQ(SetQos(value, 77), value / 2);
        EXPECT_EQ(ResetQos(value), value / 2);
        EXPECT_EQ(g_calls, (std::vector<std::vector<int>>{{value, 77}, {value}}));
    }
}

TEST(QosAdapter, SendsTheProcessAsItIs)
{
    LogRecorder log;
    for (const char *pid : {"4711", "", "%s"}) {
        RequestAuth(pid);
        const std::string text = "RequestAuth pid=" + std::string(pid);
        EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, LOG_INFO, 0xD001700, "CONCURRENT_TASK", text}}));
    }
}

}  // namespace
