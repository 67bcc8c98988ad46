/* SPDX-License-Identifier: Apache-2.0
 *
 * Plain-name entries to the business-flow events, for callers without the class interface. Any thread may call them at
 * once, but not while another one is in OstraRadar::SetCurBusinessId or SetProcessName, which the host calls before, in
 * C++. A C compiler accepts this header. When memory runs out, std::bad_alloc crosses the entries: build C callers with
 * -fexceptions where they must unwind.
 */

#ifndef OSTRA_RADAR_ADAPTER_H
#define OSTRA_RADAR_ADAPTER_H

#include "ostra_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Reports the connect step (OstraRadar::ConnectDeviceRes): the reporting function, its error code, 0 for success, and
 * the called package. Neither text may be null. */
OSTRA_EXPORT void RadarWrite(const char *funcName, int errCode, const char *toCallPkg);

/* Reports the update step (OstraRadar::UpdateRes) in the same way. */
OSTRA_EXPORT void UpdateRes(const char *funcName, int errCode, const char *toCallPkg);

#ifdef __cplusplus
}
#endif

#endif /* OSTRA_RADAR_ADAPTER_H */
