// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar_adapter.h"

#include "ostra_radar.h"

using OHOS::DistributedHardware::OstraAdapter::OstraRadar;

void RadarWrite(const char *funcName, int errCode, const char *toCallPkg)
{
    OstraRadar::GetInstance().ConnectDeviceRes(funcName, errCode, toCallPkg);
}

void UpdateRes(const char *funcName, int errCode, const char *toCallPkg)
{
    OstraRadar::GetInstance().UpdateRes(funcName, errCode, toCallPkg);
}
