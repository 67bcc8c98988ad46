// SPDX-License-Identifier: Apache-2.0
//
// QoS client on the host: a level is a Linux scheduling policy and a nice value, the latter counted from the one that
// the process was started with:
//
//     level                     policy         nice
//     1 QOS_BACKGROUND          SCHED_BATCH       0
//     2 QOS_UTILITY             SCHED_BATCH       0
//     3 QOS_DEFAULT             SCHED_OTHER       0
//     4 QOS_USER_INITIATED      SCHED_OTHER      -5
//     5 QOS_DEADLINE_REQUEST    SCHED_OTHER     -10
//     6 QOS_USER_INTERACTIVE    SCHED_OTHER     -15
//     7 QOS_KEY_BACKGROUND      SCHED_BATCH      -5
//
// The kernel grants a nice value below 0 only to a process with CAP_SYS_NICE or with room under RLIMIT_NICE; another
// process gets -1 for the levels 4 to 7. No level raises the nice value, which such a process could not take back: what
// has been set can always be reset. Both functions may be called from any thread at once.

#ifndef HOST_QOS_H
#define HOST_QOS_H

namespace OHOS::QOS {

enum class QosLevel {
    QOS_BACKGROUND = 1,
    QOS_UTILITY,
    QOS_DEFAULT,
    QOS_USER_INITIATED,
    QOS_DEADLINE_REQUEST,
    QOS_USER_INTERACTIVE,
    QOS_KEY_BACKGROUND,
    QOS_MAX,
};

// Gives a thread of this process the scheduling of a level. Returns 0, or -1, with the thread unchanged, when the level
// is outside 1 to 7, the process has no such thread, or the kernel refuses.
int SetQosForOtherThread(enum QosLevel level, int tid);

// Gives a thread of this process the scheduling of QOS_DEFAULT. Returns 0, or -1, with the thread unchanged, when the
// process has no such thread or the kernel refuses.
int ResetQosForOtherThread(int tid);

}  // namespace OHOS::QOS

#endif  // HOST_QOS_H
