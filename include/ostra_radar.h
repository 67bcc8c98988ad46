// SPDX-License-Identifier: Apache-2.0

/// @file
/// System events about the steps of the adapter's work: which stage of which business ran, in which package, and
/// whether it succeeded. Programs that listen to the events include hisysevent_manager.h as well.
///
///     OstraRadar &radar = OstraRadar::GetInstance();
///     radar.SetCurBusinessId(2);
///     radar.AudioOpenRes(__func__, ret);        // 0 is success; other values are reported as ERROR_CODE
///
/// Thread-safe once business id and process name are set.

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
/// Package name of the platform's soft bus, for callers that report it as the called package.
inline const std::string SOFTBUS_PKG_NAME = "dsoftbus";

/// The process-wide reporter of steps, one event each, with the business id and process name that all events share.
///
/// Operations that report a step take the function that ran it (`funcName`), 0 for success or any other value for
/// failure (`errCode`), and the package that it called (`toCallPkg`), for instance SOFTBUS_PKG_NAME.
///
/// They return true if the platform accepted the event. They return false, and log the platform's code as an error, if:
/// - The platform refused it (code below 0), for instance because it accepts at most 100 events of one operation in
///   about 5 seconds, with successes and failures counted separately.
/// - The platform sent it with a warning (code above 0): truncated, or with a string that it finds too long.
///
/// EnableVirtualRes, AudioOpenRes, AudioCloseRes and DisconnectDeviceRes log "UpdatePortRes error", with their own name
/// in the prefix.
///
/// SetCurBusinessId and SetProcessName must not run while another thread reports; the other operations are thread-safe.
/// All throw std::bad_alloc if a string cannot be allocated.
class OstraRadar {
public:
    /// Returns the only reporter, which is created by the first call and never destroyed.
    OSTRA_EXPORT static OstraRadar &GetInstance();

    OstraRadar(const OstraRadar &) = delete;
    OstraRadar &operator=(const OstraRadar &) = delete;

    /// Sets the business id of later events, their BIZ_SCENE; -1 until set. Any number is accepted.
    OSTRA_EXPORT void SetCurBusinessId(int businessId);

    /// Sets the host package of later events, their HOST_PKG. If empty, as it is until set, the business id decides.
    OSTRA_EXPORT void SetProcessName(std::string processName);

    /// Returns the host package: the process name if set, else the package of the business id (1:
    /// car_distributed_engine, 2 and 3: collaboration_service, 10: CollaborationFwk), else an empty string.
    OSTRA_EXPORT std::string GetProcessName();

    /// Reports stage 1, the start of the service. `bizScene` replaces the business id in the event; `extra` is ignored.
    OSTRA_EXPORT bool ServiceStartRes(std::string funcName, int bizScene, std::string extra, int errCode);
    /// Reports stage 9, the stop of the service.
    OSTRA_EXPORT bool ServiceStopRes(std::string funcName, int errCode);
    /// Reports stage 10, loading a service of the sink.
    OSTRA_EXPORT bool LoadSinkServiceRes(std::string funcName, int errCode);
    /// Reports stage 11, unloading a service of the sink.
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
