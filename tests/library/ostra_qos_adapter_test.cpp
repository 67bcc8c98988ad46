// SPDX-License-Identifier: Apache-2.0

#include "ostra_qos_adapter.h"

#include <climits>

#include "concurrent_task_client.h"
#include "qos.h"
#include "support/golden_test.h"

#include "ostra_qos_adapter_test.txt"

// These replace the platform's functions, and return values that the platform never returns.
int OHOS::QOS::SetQosForOtherThread(enum QosLevel level, int tid)
{
    return static_cast<int>(level) * 1000 + tid;
}

int OHOS::QOS::ResetQosForOtherThread(int tid)
{
    return -tid;
}

void OHOS::ConcurrentTask::ConcurrentTaskClient::RequestAuth(
    const std::unordered_map<std::string, std::string> &mapPayload)
{
    for (const auto &[key, value] : mapPayload) {
        GoldenTest::RecordEffect(key + "=" + value);
    }
}

using QosAdapterTest = GoldenTest;

TEST_F(QosAdapterTest, ForwardsArgumentsAndResults)
{
    EXPECT_EQ(SetQos(99, 7), 99007);
    EXPECT_EQ(SetQos(-5, INT_MAX), INT_MAX - 5000);
    EXPECT_EQ(ResetQos(77), -77);
    CALL(RequestAuth("4711"));
}
