// SPDX-License-Identifier: Apache-2.0

#include "concurrent_task_client.h"

#include <map>

#include "hilog/log.h"

namespace OHOS::ConcurrentTask {

namespace {

constexpr unsigned int SERVICE_DOMAIN = 0xD001700;
constexpr char SERVICE_TAG[] = "CONCURRENT_TASK";

void Log(std::string line, const std::unordered_map<std::string, std::string> &payload)
{
    for (const auto &[key, value] : std::map<std::string, std::string>(payload.begin(), payload.end())) {
        line.append(" ").append(key).append("=").append(value);
    }
    HiLogPrint(LOG_CORE, LOG_INFO, SERVICE_DOMAIN, SERVICE_TAG, "%{public}s", line.c_str());
}

}  // namespace

ConcurrentTaskClient &ConcurrentTaskClient::GetInstance()
{
    static ConcurrentTaskClient client;
    return client;
}

void ConcurrentTaskClient::RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload)
{
    Log("RequestAuth", mapPayload);
}

void ConcurrentTaskClient::ReportData(uint32_t resType, int64_t value,
                                      const std::unordered_map<std::string, std::string> &mapPayload)
{
    Log("ReportData " + std::to_string(resType) + " " + std::to_string(value), mapPayload);
}

void ConcurrentTaskClient::ReportSceneInfo(uint32_t type,
                                           const std::unordered_map<std::string, std::string> &mapPayload)
{
    Log("ReportSceneInfo " + std::to_string(type), mapPayload);
}

}  // namespace OHOS::ConcurrentTask
