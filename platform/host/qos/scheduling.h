// SPDX-License-Identifier: Apache-2.0
//
// Requests from the QoS client to the kernel. On Linux a level is a scheduling policy and a nice value (qos.h).

#ifndef HOST_QOS_SCHEDULING_H
#define HOST_QOS_SCHEDULING_H

namespace ostra::host {

enum class QosRequest {
    SET,    // sets the level of the thread to `level`, 0 to 6
    RESET,  // removes the level of the thread, if any; ignores `level`
    GET,    // sets `level` to the level of the thread, or to -1 if it has none
};

/// Sends a request for a thread of this process. Returns 0, or another value if the request is rejected. Thread-safe.
int SendQosRequest(QosRequest request, int tid, int &level);

}  // namespace ostra::host

#endif  // HOST_QOS_SCHEDULING_H
