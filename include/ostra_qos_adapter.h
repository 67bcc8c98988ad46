/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * C interface of thread QoS and process authorization. Requires no C++ setup.
 *
 *     SetQos(level, tid);      // in C++: (int32_t)OHOS::QOS::QosLevel::QOS_USER_INITIATED, with qos.h
 *     ...
 *     ResetQos(tid);
 *
 * The functions pass their arguments to the platform without validation, and log nothing. Thread-safe. Compiles as C
 * and C++; qos.h, which defines the levels, is C++ only. Compile C callers with -fexceptions if exceptions must
 * propagate through them.
 */

#ifndef OSTRA_QOS_ADAPTER_H
#define OSTRA_QOS_ADAPTER_H

#include <stdint.h>

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Sets the QoS level of a thread of this process.
 *
 * `level` is the numeric value of an OHOS::QOS::QosLevel (0 to 6), `tid` the id of the thread. Returns the platform's
 * result, 0 for success. On the host, throws std::bad_alloc if allocation fails; the thread may then already be
 * scheduled at the level.
 */
OSTRA_EXPORT int32_t SetQos(int32_t level, int32_t tid);

/** Removes the QoS level of the thread `tid` of this process.
 *
 * Returns the platform's result, 0 for success. On the host, throws std::bad_alloc if allocation fails.
 */
OSTRA_EXPORT int32_t ResetQos(int32_t tid);

/** Requests authorization of a process from the platform's concurrent task service.
 *
 * `pid` is the process id in decimal; it must not be null, and is passed on unchanged. Throws std::bad_alloc if
 * allocation fails.
 */
OSTRA_EXPORT void RequestAuth(const char *pid);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_QOS_ADAPTER_H */
