// SPDX-License-Identifier: Apache-2.0

#include "qos.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>

namespace OHOS::QOS {

namespace {

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

// Read when the library is loaded, before any thread has been given a level.
const int NICE_AT_START = getpriority(PRIO_PROCESS, 0);

bool IsOwnThread(int tid)
{
    return syscall(SYS_tgkill, getpid(), tid, 0) == 0;
}

}  // namespace

int SetQosForOtherThread(enum QosLevel level, int tid)
{
    if (level < QosLevel::QOS_BACKGROUND || level >= QosLevel::QOS_MAX || !IsOwnThread(tid)) {
        return -1;
    }
    const int row = static_cast<int>(level) - static_cast<int>(QosLevel::QOS_BACKGROUND);
    const Scheduling &wanted = SCHEDULING_OF_LEVEL[row];
    static std::mutex mutex;  // policy and nice value change together
    const std::lock_guard<std::mutex> lock(mutex);
    // The nice value first: where the kernel grants it, it grants the policy too, so a refusal changes nothing.
    if (setpriority(PRIO_PROCESS, static_cast<id_t>(tid), NICE_AT_START + wanted.nice) != 0) {
        return -1;
    }
    const sched_param noRealTimePriority{};
    return sched_setscheduler(tid, wanted.policy, &noRealTimePriority) == 0 ? 0 : -1;
}

int ResetQosForOtherThread(int tid)
{
    return SetQosForOtherThread(QosLevel::QOS_DEFAULT, tid);
}

}  // namespace OHOS::QOS
