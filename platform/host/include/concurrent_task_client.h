// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// Concurrent task client on the host: logs requests, because there is no service. All functions are thread-safe.

#ifndef HOST_CONCURRENT_TASK_CLIENT_H
#define HOST_CONCURRENT_TASK_CLIENT_H

#include <string>
#include <unordered_map>

namespace OHOS::ConcurrentTask {

/// Logs requests to the concurrent task service.
class ConcurrentTaskClient {
public:
    static ConcurrentTaskClient &GetInstance();

    /// Logs one INFO line with the tag CONCURRENT_TASK and the pairs in key order, such as
    /// "RequestAuth pid=4711 uid=1000".
    void RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload);
};

}  // namespace OHOS::ConcurrentTask

#endif  // HOST_CONCURRENT_TASK_CLIENT_H
