/* SPDX-License-Identifier: Apache-2.0
 *
 * Plain-name entries to the platform's thread QoS and authorisation services, for callers without the class interface.
 *
 *     SetQos(level, tid);      // in C++: (int32_t)OHOS::QOS::QosLevel::QOS_USER_INITIATED, with qos.h
 *     ...
 *     ResetQos(tid);
 *
 * They forward and nothing else: no validation, no log. Any thread may call them at any time. A C compiler accepts this
 * header; qos.h, with the names of the levels, is for C++ alone. When memory runs out in RequestAuth, std::bad_alloc
 * crosses it: build C callers with -fexceptions where they must unwind.
 */

#ifndef OSTRA_QOS_ADAPTER_H
#define OSTRA_QOS_ADAPTER_H

#include <stdint.h>

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Asks for the QoS level of a thread of this process, by its thread id. The level is the platform's number (QosLevel).
 * Returns the platform's result as it is. */
OSTRA_EXPORT int32_t SetQos(int32_t level, int32_t tid);

/* Takes back what SetQos asked for. Returns the platform's result as it is. */
OSTRA_EXPORT int32_t ResetQos(int32_t tid);

/* Asks for authorisation of a process, named by its id as a text; it must not be null and is passed on as it is. */
OSTRA_EXPORT void RequestAuth(const char *pid);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_QOS_ADAPTER_H */
