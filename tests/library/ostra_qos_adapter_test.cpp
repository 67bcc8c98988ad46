// SPDX-License-Identifier: Apache-2.0

#include "ostra_qos_adapter.h"

#include <climits>

#include "concurrent_task_client.h"
#include "qos.h"
#include "support/golden_test.h"

#include "ostra_qos_adapter_test.txt"

// These replace the platform's functions, and return values that the platform never returns.
namespace OHOS::QOS {

int SetQosForOtherThread(enum QosLevel level, int tid)
{
    GoldenTest::Record("SetQosForOtherThread " + std::to_string(static_cast<int>(level)) + " " + std::to_string(tid));
    return -static_cast<int>(level) / 2 - 1;
}

int ResetQosForOtherThread(int tid)
{
    GoldenTest::Record("ResetQosForOtherThread " + std::to_string(tid));
    return tid / 2 + 1;
}

}  // namespace OHOS::QOS

void OHOS::ConcurrentTask::ConcurrentTaskClient::RequestAuth(
    const std::unordered_map<std::string, std::string> &mapPayload)
{
    for (const auto &[key, value] : mapPayload) {
        GoldenTest::Record(key + "=" + value);
    }
}

namespace {

using QosAdapterTest = GoldenTest;

TEST_F(QosAdapterTest, PassesArgumentsAndResultsOnUnchanged)
{
    EXPECT_EQ(CALL(SetQos(99, INT_MIN)), -50);
    EXPECT_EQ(CALL(SetQos(-5, INT_MAX)), 1);
    EXPECT_EQ(CALL(ResetQos(77)), 39);
    CALL(RequestAuth("4711"));
    CALL(RequestAuth("%s"));
}

}  // namespace
