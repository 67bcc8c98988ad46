// SPDX-License-Identifier: Apache-2.0

#include "ostra_qos_adapter.h"

#include <string>
#include <unordered_map>

#include "concurrent_task_client.h"
#include "qos.h"

int32_t SetQos(int32_t level, int32_t tid)
{
    return OHOS::QOS::SetQosForOtherThread(static_cast<OHOS::QOS::QosLevel>(level), tid);
}

int32_t ResetQos(int32_t tid)
{
    return OHOS::QOS::ResetQosForOtherThread(tid);
}

void RequestAuth(const char *pid)
{
    const std::unordered_map<std::string, std::string> request = {{"pid", pid}};
    OHOS::ConcurrentTask::ConcurrentTaskClient::GetInstance().RequestAuth(request);
}
