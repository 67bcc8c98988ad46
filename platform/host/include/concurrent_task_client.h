// SPDX-License-Identifier: Apache-2.0
//
/// \file
/// Concurrent task client on the host: logs each request, because there is no service. All functions are thread-safe.

#ifndef HOST_CONCURRENT_TASK_CLIENT_H
#define HOST_CONCURRENT_TASK_CLIENT_H

#include <cstdint>
#include <string>
#include <unordered_map>

namespace OHOS::ConcurrentTask {

/// Logs requests to the concurrent task service.
class ConcurrentTaskClient {
public:
    static ConcurrentTaskClient &GetInstance();

    /// Each logs one INFO line with the tag CONCURRENT_TASK: its name and numbers, then the pairs in key order,
    /// such as "RequestAuth pid=4711 uid=1000", "ReportData 1 2 uid=1000", "ReportSceneInfo 1 uid=1000".
    /// \{
    void RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload);
    void ReportData(uint32_t resType, int64_t value, const std::unordered_map<std::string, std::string> &mapPayload);
    void ReportSceneInfo(uint32_t type, const std::unordered_map<std::string, std::string> &mapPayload);
    /// \}
};

}  // namespace OHOS::ConcurrentTask

#endif  // HOST_CONCURRENT_TASK_CLIENT_H
