/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * C functions for system events about the steps of the adapter's work.
 *
 *     RadarWrite(__func__, result, "dsoftbus");
 *
 * **Need C++ first:** the events have business id -1 and no host package until the host calls
 * OstraRadar::SetCurBusinessId or SetProcessName (ostra_radar.h) in C++; neither must run during a call. Otherwise
 * thread-safe. Throw std::bad_alloc if allocation fails: compile C callers with -fexceptions if they must unwind.
 * Compiles as C and C++.
 */

#ifndef OSTRA_RADAR_ADAPTER_H
#define OSTRA_RADAR_ADAPTER_H

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Reports the connection of a device; see OstraRadar::ConnectDeviceRes.
 *
 * `funcName` is the reporting function, `errCode` 0 for success or any other value for failure, `toCallPkg` the called
 * package. Neither string may be null.
 */
OSTRA_EXPORT void RadarWrite(const char *funcName, int errCode, const char *toCallPkg);

/** Reports the update of a device; see OstraRadar::UpdateRes. The arguments are those of RadarWrite. */
OSTRA_EXPORT void UpdateRes(const char *funcName, int errCode, const char *toCallPkg);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_RADAR_ADAPTER_H */
