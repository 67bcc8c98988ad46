// SPDX-License-Identifier: Apache-2.0

#include "qos/scheduling.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <mutex>

namespace ostra::host {
namespace {

constexpr int REJECTED = -1;
constexpr int NO_LEVEL = -1;

struct Scheduling {
    int policy;
    int nice;
};

constexpr Scheduling SCHEDULING_OF_LEVEL[] = {
    {SCHED_BATCH, 0},    // QOS_BACKGROUND
    {SCHED_BATCH, 0},    // QOS_UTILITY
    {SCHED_OTHER, 0},    // QOS_DEFAULT
    {SCHED_OTHER, -5},   // QOS_USER_INITIATED
    {SCHED_OTHER, -10},  // QOS_DEADLINE_REQUEST
    {SCHED_OTHER, -15},  // QOS_USER_INTERACTIVE
    {SCHED_BATCH, -5},   // QOS_KEY_BACKGROUND
};
constexpr Scheduling SCHEDULING_WITHOUT_LEVEL = {SCHED_OTHER, 0};

// Read when the library is loaded, before any thread has a level.
const int NICE_AT_START = getpriority(PRIO_PROCESS, 0);

bool IsThreadOfProcess(int tid)
{
    return syscall(SYS_tgkill, getpid(), tid, 0) == 0;
}

// The kernel limits nice values to this range.
int NiceOf(const Scheduling &target)
{
    return std::clamp(NICE_AT_START + target.nice, -20, 19);
}

bool Schedule(const Scheduling &target, int tid)
{
    // Set the nice value first: if the kernel grants it, it also grants the policy, so that a rejected request
    // changes nothing.
    const sched_param noRealTimePriority{};
    return setpriority(PRIO_PROCESS, static_cast<id_t>(tid), NiceOf(target)) == 0 &&
           sched_setscheduler(tid, target.policy, &noRealTimePriority) == 0;
}

bool IsScheduled(const Scheduling &target, int tid)
{
    return sched_getscheduler(tid) == target.policy &&
           getpriority(PRIO_PROCESS, static_cast<id_t>(tid)) == NiceOf(target);
}

// The mutex also covers the scheduling calls, so that the map agrees with the kernel.
struct Levels {
    std::mutex mutex;
    std::map<int, int> levelOfThread;
};

Levels &ProcessLevels()
{
    static auto &levels = *new Levels;  // never destroyed: threads may use it during exit
    return levels;
}

}  // namespace

int SendQosRequest(QosRequest request, int tid, int &level)
{
    Levels &levels = ProcessLevels();
    const std::lock_guard<std::mutex> lock(levels.mutex);
    if (!IsThreadOfProcess(tid)) {
        return REJECTED;
    }
    if (request == QosRequest::GET) {
        // Linux may reuse the id of a finished thread: the level belongs to this thread only if it still has its policy
        // and nice value.
        const auto found = levels.levelOfThread.find(tid);
        const bool hasLevel =
            found != levels.levelOfThread.end() && IsScheduled(SCHEDULING_OF_LEVEL[found->second], tid);
        level = hasLevel ? found->second : NO_LEVEL;
        return 0;
    }
    const bool isSet = request == QosRequest::SET;
    if (!Schedule(isSet ? SCHEDULING_OF_LEVEL[level] : SCHEDULING_WITHOUT_LEVEL, tid)) {
        return REJECTED;
    }
    if (isSet) {
        levels.levelOfThread[tid] = level;
    } else {
        levels.levelOfThread.erase(tid);
    }
    return 0;
}

}  // namespace ostra::host
