// SPDX-License-Identifier: Apache-2.0
//
// Concurrent task client on the host: no service answers, a request is written to HiLog. All functions may be called
// from any thread at once.

#ifndef HOST_CONCURRENT_TASK_CLIENT_H
#define HOST_CONCURRENT_TASK_CLIENT_H

#include <string>
#include <unordered_map>

namespace OHOS::ConcurrentTask {

class ConcurrentTaskClient {
public:
    static ConcurrentTaskClient &GetInstance();

    // Writes one INFO line under the tag CONCURRENT_TASK with the pairs in the order of their keys:
    // "RequestAuth pid=4711 uid=1000".
    void RequestAuth(const std::unordered_map<std::string, std::string> &mapPayload);
};

}  // namespace OHOS::ConcurrentTask

#endif  // HOST_CONCURRENT_TASK_CLIENT_H
