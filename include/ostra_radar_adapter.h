/* SPDX-License-Identifier: Apache-2.0
 */

/** @file
 * C interface of the events that report the stages of a business flow.
 *
 *     RadarWrite(__func__, result, "dsoftbus");
 *
 * **Requires C++ setup:** the events have business id -1 and an empty host package until the host process calls
 * OstraRadar::SetCurBusinessId or SetProcessName (ostra_radar.h) in C++; neither must run during a call. Otherwise
 * thread-safe. Throws std::bad_alloc if allocation fails: compile C callers with -fexceptions if exceptions must
 * propagate through them. Compiles as C and C++.
 */

#ifndef OSTRA_RADAR_ADAPTER_H
#define OSTRA_RADAR_ADAPTER_H

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Reports the connection of a device; see OstraRadar::ConnectDeviceRes.
 *
 * `funcName` is the name of the reporting function, `errCode` its error code (0 for success), `toCallPkg` the called
 * package. Neither string may be null. Failures to write the event are only logged.
 */
OSTRA_EXPORT void RadarWrite(const char *funcName, int errCode, const char *toCallPkg);

/** Reports the update of a device; see OstraRadar::UpdateRes. The arguments are those of RadarWrite. */
OSTRA_EXPORT void UpdateRes(const char *funcName, int errCode, const char *toCallPkg);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_RADAR_ADAPTER_H */
