// SPDX-License-Identifier: Apache-2.0
//
// QoS client on the host: a level is a Linux scheduling policy and a nice value, the latter counted from the one that
// the process was started with:
//
//     level                     policy         nice
//     0 QOS_BACKGROUND          SCHED_BATCH       0
//     1 QOS_UTILITY             SCHED_BATCH       0
//     2 QOS_DEFAULT             SCHED_OTHER       0
//     3 QOS_USER_INITIATED      SCHED_OTHER      -5
//     4 QOS_DEADLINE_REQUEST    SCHED_OTHER     -10
//     5 QOS_USER_INTERACTIVE    SCHED_OTHER     -15
//     6 QOS_KEY_BACKGROUND      SCHED_BATCH      -5
//
// The kernel grants a nice value below 0 only to a process with CAP_SYS_NICE or with room under RLIMIT_NICE; another
// process gets -1 for the levels 3 to 6. No level raises the nice value, which such a process could not take back: what
// has been set can always be reset. All functions may be called from any thread at once.
//
// While the parameter persist.qosmanager.setQos.on is "false", setting and resetting give 0 and do nothing.

#ifndef HOST_QOS_H
#define HOST_QOS_H

namespace OHOS::QOS {

enum class QosLevel {
    QOS_BACKGROUND = 0,
    QOS_UTILITY,
    QOS_DEFAULT,
    QOS_USER_INITIATED,
    QOS_DEADLINE_REQUEST,
    QOS_USER_INTERACTIVE,
    QOS_KEY_BACKGROUND,
    QOS_MAX,
};

// Give the calling thread or another thread of this process the scheduling of a level. Return 0, or -1, with the thread
// unchanged, when the level is outside 0 to 6, the process has no such thread, or the kernel refuses.
int SetThreadQos(enum QosLevel level);
int SetQosForOtherThread(enum QosLevel level, int tid);

// Let the thread leave its level, if it has one: it is scheduled as the process was when it was started. Return 0, or
// -1, with the thread unchanged, when the process has no such thread or the kernel refuses.
int ResetThreadQos();
int ResetQosForOtherThread(int tid);

// Give the level that was set for the thread. Return 0, or -1, with `level` unchanged, when the process has no such
// thread or it has no level: none was set, or its scheduling was changed since.
int GetThreadQos(enum QosLevel &level);
int GetQosForOtherThread(enum QosLevel &level, int tid);

// The same for other threads as an object.
class QosController {
public:
    static QosController &GetInstance();

    int SetThreadQosForOtherThread(enum QosLevel level, int tid);
    int ResetThreadQosForOtherThread(int tid);
    int GetThreadQosForOtherThread(enum QosLevel &level, int tid);
};

}  // namespace OHOS::QOS

#endif  // HOST_QOS_H
