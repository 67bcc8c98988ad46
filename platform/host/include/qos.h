// SPDX-License-Identifier: Apache-2.0
//
/// @file
/// QoS client on the host: a level is a Linux scheduling policy and a nice value, relative to the nice value that the
/// process was started with, but at least -20:
///
///     level                     policy         nice
///     0 QOS_BACKGROUND          SCHED_BATCH       0
///     1 QOS_UTILITY             SCHED_BATCH       0
///     2 QOS_DEFAULT             SCHED_OTHER       0
///     3 QOS_USER_INITIATED      SCHED_OTHER      -5
///     4 QOS_DEADLINE_REQUEST    SCHED_OTHER     -10
///     5 QOS_USER_INTERACTIVE    SCHED_OTHER     -15
///     6 QOS_KEY_BACKGROUND      SCHED_BATCH      -5
///
/// The kernel grants a nice value below 0 only to a process with CAP_SYS_NICE or a sufficient RLIMIT_NICE; for other
/// processes the levels 3 to 6 fail. No level has a nice value above 0, so that every level can be reset without
/// privileges. All functions are thread-safe.
///
/// While the parameter persist.qosmanager.setQos.on is "false", setting and resetting return 0 and do nothing.

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

/// Set the level of the calling thread or another thread of this process.
///
/// Return 0, or -1 without a change if the level is outside 0 to 6, the process has no such thread, or the kernel
/// rejects the request.
/// @{
int SetThreadQos(enum QosLevel level);
int SetQosForOtherThread(enum QosLevel level, int tid);
/// @}

/// Remove the level of a thread, if any: the thread is then scheduled with SCHED_OTHER and the nice value that the
/// process was started with.
///
/// Return 0, or -1 without a change if the process has no such thread or the kernel rejects the request.
/// @{
int ResetThreadQos();
int ResetQosForOtherThread(int tid);
/// @}

/// Get the level that was set for a thread.
///
/// Return 0, or -1 without changing `level` if the process has no such thread, no level was set, or the scheduling of
/// the thread has been changed since.
/// @{
int GetThreadQos(enum QosLevel &level);
int GetQosForOtherThread(enum QosLevel &level, int tid);
/// @}

}  // namespace OHOS::QOS

#endif  // HOST_QOS_H
