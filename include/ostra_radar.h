// SPDX-License-Identifier: Apache-2.0
//
// Reports each step of the adapter's work as a system event: which stage of which business ran, in which package, and
// whether it succeeded.
//
//     OstraRadar &radar = OstraRadar::GetInstance();
//     radar.SetCurBusinessId(2);
//     radar.AudioOpenRes(__func__, ret);        // 0 is success, anything else goes into the event as ERROR_CODE
//
// The host sets business id and process name before it reports from several threads; GetProcessName and the reporting
// operations may then be called from any thread at once. Each of the latter returns true when the platform took the
// event, and otherwise logs the platform's code as an error and returns false (EnableVirtualRes, AudioOpenRes,
// AudioCloseRes and DisconnectDeviceRes word it as "UpdatePortRes error", behind a prefix with their own name). A code
// above 0 is a warning of the platform, which sends the event out all the same, cut or with a text that it finds too
// long: it is logged, and the operation returns false, as for a refusal. The platform takes at most 100 events of one
// operation in some 5 seconds, successes and failures counted apart. All raise std::bad_alloc when memory for a text
// runs out. Who listens to the events includes hisysevent_manager.h beside this header.

#ifndef OSTRA_RADAR_H
#define OSTRA_RADAR_H

#include <cstdint>
#include <string>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// Domain of every event.
inline const std::string OSTRA_DOMAIN = "OSTRAADAPTER";
// Name of every event.
inline const std::string ADAPTER_BEHAVIOR_EVENT = "OSTRA_ADAPTER_BEHAVIOR";
// The package that reports, in every event.
inline const std::string ORG_PKG_NAME = "ostra_adapter";
// Package name of the platform's soft bus, for callers that name it as the called package.
inline const std::string SOFTBUS_PKG_NAME = "dsoftbus";

// Reports the steps of the adapter's work, one event each, and holds what all of them share: the business and the name
// of the host process. Of the arguments of a step, funcName is the function that took it, errCode 0 for success or any
// other number for failure, and toCallPkg the package that it called, for instance SOFTBUS_PKG_NAME.
class OstraRadar {
public:
    // The one reporter, made on the first call and never destroyed.
    OSTRA_EXPORT static OstraRadar &GetInstance();

    OstraRadar(const OstraRadar &) = delete;
    OstraRadar &operator=(const OstraRadar &) = delete;

    // Sets the business of the following events, their BIZ_SCENE; -1 at first. Any number is taken.
    OSTRA_EXPORT void SetCurBusinessId(int businessId);

    // Sets the host package of the following events, their HOST_PKG; when empty, as at first, the business decides.
    OSTRA_EXPORT void SetProcessName(std::string processName);

    // The host package: the process name that was set, else the one of the business (1: car_distributed_engine, 2 and
    // 3: collaboration_service, 10: CollaborationFwk), else an empty text.
    OSTRA_EXPORT std::string GetProcessName();

    // Stage 1: starting the service. bizScene goes into the event in place of the business id; `extra` is ignored.
    OSTRA_EXPORT bool ServiceStartRes(std::string funcName, int bizScene, std::string extra, int errCode);
    // Stage 9: stopping the service.
    OSTRA_EXPORT bool ServiceStopRes(std::string funcName, int errCode);
    // Stage 10: loading a service of the sink.
    OSTRA_EXPORT bool LoadSinkServiceRes(std::string funcName, int errCode);
    // Stage 11: unloading a service of the sink.
    OSTRA_EXPORT bool UnLoadSinkServiceRes(std::string funcName, int errCode);
    // Stage 2: connecting a device. The plain name RadarWrite reports this step.
    OSTRA_EXPORT bool ConnectDeviceRes(std::string funcName, int errCode, std::string toCallPkg);
    // Stage 3: updating a device. The plain name UpdateRes reports this step, too.
    OSTRA_EXPORT bool UpdateRes(std::string funcName, int errCode, std::string toCallPkg);
    // Stage 4: updating a port.
    OSTRA_EXPORT bool UpdatePortRes(std::string funcName, int errCode);
    // Stage 5: enabling a virtual device.
    OSTRA_EXPORT bool EnableVirtualRes(std::string funcName, int errCode);
    // Stage 6: opening audio.
    OSTRA_EXPORT bool AudioOpenRes(std::string funcName, int errCode);
    // Stage 7: closing audio.
    OSTRA_EXPORT bool AudioCloseRes(std::string funcName, int errCode);
    // Stage 8: disconnecting a device.
    OSTRA_EXPORT bool DisconnectDeviceRes(std::string funcName, int errCode, std::string toCallPkg);

private:
    OstraRadar() = default;
    ~OstraRadar() = default;

    int32_t curBusinessId_ = -1;
    std::string processName_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_RADAR_H
