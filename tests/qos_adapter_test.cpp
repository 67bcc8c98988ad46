// SPDX-License-Identifier: Apache-2.0

#include "ostra_qos_adapter.h"

#include <climits>

#include "concurrent_task_client.h"
#include "qos.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/qos_adapter_test.txt"
    ;

// In place of the platform's functions: what reaches them, and results that no platform gives.
namespace OHOS::QOS {

int SetQosForOtherThread(enum QosLevel level, int tid)
{
    Session::Left("SetQosForOtherThread " + std::to_string(static_cast<int>(level)) + " " + std::to_string(tid));
    return -static_cast<int>(level) / 2 - 1;
}

int ResetQosForOtherThread(int tid)
{
    Session::Left("ResetQosForOtherThread " + std::to_string(tid));
    return tid / 2 + 1;
}

}  // namespace OHOS::QOS

namespace OHOS::ConcurrentTask {

void ConcurrentTaskClient::RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload)
{
    for (const auto &[key, value] : mapPayload) {
        Session::Left("RequestAuth " + key + "=" + value + ".");
    }
}

}  // namespace OHOS::ConcurrentTask

namespace {

using Qos = Session;

TEST_F(Qos, PassesArgumentsAndResultsThrough)
{
    CALL(SetQos(0, 77));
    CALL(SetQos(6, INT_MIN));
    CALL(SetQos(99, 0));
    CALL(SetQos(-5, INT_MAX));
    CALL(ResetQos(77));
    CALL(ResetQos(-9));
}

TEST_F(Qos, SendsTheProcessAsItIs)
{
    CALL(RequestAuth("4711"));
    CALL(RequestAuth(""));
    CALL(RequestAuth("%s"));
}

}  // namespace
