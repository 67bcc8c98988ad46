// SPDX-License-Identifier: Apache-2.0
//
// Requests from the QoS client to the kernel. On Linux a level is a scheduling policy and a nice value (qos.h). All
// functions are thread-safe, and return 0 or, if the request is refused, another value.

#ifndef HOST_QOS_SCHEDULING_H
#define HOST_QOS_SCHEDULING_H

namespace ostra::host {

/// Sets the level, 0 to 6, of a thread of this process.
int ApplyQosLevel(int level, int tid);

/// Removes the level, if any, of a thread of this process.
int LeaveQosLevel(int tid);

/// Gets the level of a thread of this process, or -1 if it has none.
int QueryQosLevel(int tid, int &level);

}  // namespace ostra::host

#endif  // HOST_QOS_SCHEDULING_H
