// SPDX-License-Identifier: Apache-2.0

#include "concurrent_task_client.h"

#include <map>

#include "hilog/log.h"

namespace OHOS::ConcurrentTask {

namespace {

constexpr unsigned int SERVICE_DOMAIN = 0xD001700;
constexpr char SERVICE_TAG[] = "CONCURRENT_TASK";

}  // namespace

ConcurrentTaskClient &ConcurrentTaskClient::GetInstance()
{
    static ConcurrentTaskClient client;
    return client;
}

void ConcurrentTaskClient::RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload)
{
    std::string line = "RequestAuth";
    for (const auto &[key, value] : std::map<std::string, std::string>(mapPayload.begin(), mapPayload.end())) {
        line.append(" ").append(key).append("=").append(value);
    }
    HiLogPrint(LOG_CORE, LOG_INFO, SERVICE_DOMAIN, SERVICE_TAG, "%{public}s", line.c_str());
}

}  // namespace OHOS::ConcurrentTask
