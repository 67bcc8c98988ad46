// SPDX-License-Identifier: Apache-2.0

/// @file
/// Events that report the stages of a business flow, such as connecting a device or opening audio: which stage of which
/// business ran, in which package, and whether it succeeded. To listen to them, include hisysevent_manager.h as well.
///
///     OstraRadar &radar = OstraRadar::GetInstance();
///     radar.SetCurBusinessId(2);
///     radar.AudioOpenRes(__func__, ret);        // 0 is success; other values are reported as ERROR_CODE
///
/// Thread-safe after the business id and the process name are set.

#ifndef OSTRA_RADAR_H
#define OSTRA_RADAR_H

#include <cstdint>
#include <string>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// Domain of every event.
inline const std::string OSTRA_DOMAIN = "OSTRAADAPTER";
/// Name of every event.
inline const std::string ADAPTER_BEHAVIOR_EVENT = "OSTRA_ADAPTER_BEHAVIOR";
/// The reporting package, in every event.
inline const std::string ORG_PKG_NAME = "ostra_adapter";
/// Package name of the platform's SoftBus, for callers that report it as the called package.
inline const std::string SOFTBUS_PKG_NAME = "dsoftbus";

/// The process-wide reporter, which writes one event per stage, with the current business id and process name.
///
/// The operations that report a stage take the name of the function that ran it (`funcName`) and its error code
/// (`errCode`, 0 for success), and some take the package that it called (`toCallPkg`), for instance SOFTBUS_PKG_NAME.
///
/// They return true if the platform accepted the event. They return false, and log the platform's code as an error, if:
/// - The platform rejected it (code below 0), for instance because of its rate limit of 100 events per operation in
///   about 5 seconds, which counts successes and failures separately.
/// - The platform wrote it with a warning (code above 0): truncated, or with a string longer than its limit.
///
/// EnableVirtualRes, AudioOpenRes, AudioCloseRes and DisconnectDeviceRes log "UpdatePortRes error", with their own name
/// in the prefix.
///
/// SetCurBusinessId and SetProcessName must not run while another thread reports a stage; the other operations are
/// thread-safe. All throw std::bad_alloc if allocation of a string fails.
class OstraRadar {
public:
    /// Returns the reporter of the process. It is created by the first call and never destroyed.
    OSTRA_EXPORT static OstraRadar &GetInstance();

    OstraRadar(const OstraRadar &) = delete;
    OstraRadar &operator=(const OstraRadar &) = delete;

    /// Sets the business id: the number of the business that later events belong to (BIZ_SCENE).
    ///
    /// It is -1 until set; any number is accepted.
    OSTRA_EXPORT void SetCurBusinessId(int businessId);

    /// Sets the host package (HOST_PKG) of later events. If it is empty, which is the default, the business id
    /// determines the package; see GetProcessName.
    OSTRA_EXPORT void SetProcessName(std::string processName);

    /// Returns the host package: the process name if it is set, otherwise the package of the business id (1:
    /// car_distributed_engine, 2 and 3: collaboration_service, 10: CollaborationFwk), otherwise an empty string.
    OSTRA_EXPORT std::string GetProcessName();

    /// Reports stage 1, the start of the service. `bizScene` replaces the business id in the event; `extra` is ignored.
    OSTRA_EXPORT bool ServiceStartRes(std::string funcName, int bizScene, std::string extra, int errCode);
    /// Reports stage 9, the stop of the service.
    OSTRA_EXPORT bool ServiceStopRes(std::string funcName, int errCode);
    /// Reports stage 10, loading a sink service.
    OSTRA_EXPORT bool LoadSinkServiceRes(std::string funcName, int errCode);
    /// Reports stage 11, unloading a sink service.
    OSTRA_EXPORT bool UnLoadSinkServiceRes(std::string funcName, int errCode);
    /// Reports stage 2, connecting a device. The C function RadarWrite reports it, too.
    OSTRA_EXPORT bool ConnectDeviceRes(std::string funcName, int errCode, std::string toCallPkg);
    /// Reports stage 3, updating a device. The C function UpdateRes reports it, too.
    OSTRA_EXPORT bool UpdateRes(std::string funcName, int errCode, std::string toCallPkg);
    /// Reports stage 4, updating a port.
    OSTRA_EXPORT bool UpdatePortRes(std::string funcName, int errCode);
    /// Reports stage 5, enabling a virtual device.
    OSTRA_EXPORT bool EnableVirtualRes(std::string funcName, int errCode);
    /// Reports stage 6, opening audio.
    OSTRA_EXPORT bool AudioOpenRes(std::string funcName, int errCode);
    /// Reports stage 7, closing audio.
    OSTRA_EXPORT bool AudioCloseRes(std::string funcName, int errCode);
    /// Reports stage 8, disconnecting a device.
    OSTRA_EXPORT bool DisconnectDeviceRes(std::string funcName, int errCode, std::string toCallPkg);

private:
    OstraRadar() = default;
    ~OstraRadar() = default;

    int32_t curBusinessId_ = -1;
    std::string processName_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_RADAR_H
