// SPDX-License-Identifier: Apache-2.0
//
// What the QoS client asks of the kernel. On Linux a level is a scheduling policy and a nice value (qos.h). A program
// that defines these functions stands in for the kernel. Any thread may call them at any time.

#ifndef HOST_QOS_SCHEDULING_H
#define HOST_QOS_SCHEDULING_H

namespace OHOS::QOS {

// Gives a thread of this process a level, which is one of qos.h. Returns 0, or another value when that is refused.
int ApplyQosLevel(int level, int tid);

// Lets a thread of this process leave its level. Returns 0, or another value when that is refused.
int LeaveQosLevel(int tid);

// Gives the level of a thread of this process, -1 when it has none. Returns 0, or another value when that is refused.
int QueryQosLevel(int tid, int &level);

}  // namespace OHOS::QOS

#endif  // HOST_QOS_SCHEDULING_H
