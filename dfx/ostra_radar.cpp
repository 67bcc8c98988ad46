// SPDX-License-Identifier: Apache-2.0

#include "ostra_radar.h"

#include <utility>

#include "hisysevent.h"
#include "ostra_adapter_log.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using HiviewDFX::HiSysEvent;

// Copies of the constants of the header, which may be destroyed before the last event is reported.
constexpr char DOMAIN[] = "OSTRAADAPTER";
constexpr char EVENT_NAME[] = "OSTRA_ADAPTER_BEHAVIOR";
constexpr char REPORTING_PACKAGE[] = "ostra_adapter";

constexpr int32_t RESULT_SUCCESS = 1;
constexpr int32_t RESULT_FAILURE = 2;

constexpr int32_t FAILURE_LINE_OFFSET = 100;  // any number but 0: the method is part of the call site

constexpr int32_t NO_STATE = 0;
constexpr int32_t STATE_START = 1;
constexpr int32_t STATE_STOP = 2;

struct Stage {
    const char *method;
    const char *nameInLog;  // differs from `method` for some stages
    int32_t number;
    int32_t state;
};

constexpr Stage SERVICE_START = {"ServiceStartRes", "ServiceStartRes", 1, STATE_START};
constexpr Stage CONNECT_DEVICE = {"ConnectDeviceRes", "ConnectDeviceRes", 2, NO_STATE};
constexpr Stage UPDATE = {"UpdateRes", "UpdateRes", 3, NO_STATE};
constexpr Stage UPDATE_PORT = {"UpdatePortRes", "UpdatePortRes", 4, NO_STATE};
constexpr Stage ENABLE_VIRTUAL = {"EnableVirtualRes", "UpdatePortRes", 5, NO_STATE};
constexpr Stage AUDIO_OPEN = {"AudioOpenRes", "UpdatePortRes", 6, NO_STATE};
constexpr Stage AUDIO_CLOSE = {"AudioCloseRes", "UpdatePortRes", 7, NO_STATE};
constexpr Stage DISCONNECT_DEVICE = {"DisconnectDeviceRes", "UpdatePortRes", 8, NO_STATE};
constexpr Stage SERVICE_STOP = {"ServiceStopRes", "ServiceStopRes", 9, STATE_STOP};
constexpr Stage LOAD_SINK_SERVICE = {"LoadSinkServiceRes", "LoadSinkServiceRes", 10, NO_STATE};
constexpr Stage UNLOAD_SINK_SERVICE = {"UnLoadSinkServiceRes", "UnLoadSinkServiceRes", 11, NO_STATE};

struct HostPackage {
    int32_t businessId;
    const char *name;
};
constexpr HostPackage HOST_PACKAGES[] = {{1, "car_distributed_engine"},
                                         {2, "collaboration_service"},
                                         {3, "collaboration_service"},
                                         {10, "CollaborationFwk"}};

// The caller's arguments and the state that go into an event.
struct Report {
    const std::string &function;
    std::string host;
    int32_t scene;
    int32_t errorCode;
    const std::string *calledPackage = nullptr;
};

// Returns the line number under which the platform's rate limiter counts the event. Failures are counted separately, so
// that successes never suppress them.
int32_t LineOf(const Stage &stage, bool isSuccess)
{
    return isSuccess ? stage.number : FAILURE_LINE_OFFSET + stage.number;
}

// HiSysEvent::Write takes the keys and values of an event as variadic arguments, so each lambda appends its own to the
// arguments of its caller.
int WriteEvent(const Stage &stage, const Report &report)
{
    const bool isSuccess = report.errorCode == 0;
    const std::string reportingPackage = REPORTING_PACKAGE;
    const auto write = [&](const auto &...keyValues) {
        return HiSysEvent::Write(stage.method, LineOf(stage, isSuccess), DOMAIN, EVENT_NAME, HiSysEvent::BEHAVIOR,
                                 keyValues...);
    };
    const auto writeWithError = [&](const auto &...keyValues) {
        return isSuccess ? write(keyValues...) : write(keyValues..., "ERROR_CODE", report.errorCode);
    };
    const auto writeWithState = [&](const auto &...keyValues) {
        return stage.state == NO_STATE ? writeWithError(keyValues...)
                                       : writeWithError(keyValues..., "BIZ_STATE", stage.state);
    };
    const auto writeWithRest = [&](const auto &...keyValues) {
        return writeWithState(keyValues..., "HOST_PKG", report.host, "BIZ_SCENE", report.scene, "BIZ_STAGE",
                              stage.number, "STAGE_RES", isSuccess ? RESULT_SUCCESS : RESULT_FAILURE);
    };
    return report.calledPackage == nullptr ? writeWithRest("ORG_PKG", reportingPackage, "FUNC", report.function)
                                           : writeWithRest("ORG_PKG", reportingPackage, "FUNC", report.function,
                                                           "TO_CALL_PKG", *report.calledPackage);
}

bool Write(const Stage &stage, const Report &report)
{
    const int ret = WriteEvent(stage, report);
    if (ret != 0) {
        DHLog(DH_LOG_ERROR, "[%s][%s]:%s error, res:%d", LOG_PREFIX_TAG, stage.method, stage.nameInLog, ret);
    }
    return ret == 0;
}

}  // namespace

OstraRadar &OstraRadar::GetInstance()
{
    static auto *const instance = new OstraRadar();  // never destroyed: usable until the process ends
    return *instance;
}

void OstraRadar::SetCurBusinessId(int businessId)
{
    curBusinessId_ = businessId;
}

void OstraRadar::SetProcessName(std::string processName)
{
    processName_ = std::move(processName);
}

std::string OstraRadar::GetProcessName()
{
    if (!processName_.empty()) {
        return processName_;
    }
    for (const HostPackage &package : HOST_PACKAGES) {
        if (package.businessId == curBusinessId_) {
            return package.name;
        }
    }
    return "";
}

bool OstraRadar::ServiceStartRes(std::string funcName, int bizScene, std::string /* extra */, int errCode)
{
    return Write(SERVICE_START, {funcName, GetProcessName(), bizScene, errCode});
}

bool OstraRadar::ServiceStopRes(std::string funcName, int errCode)
{
    return Write(SERVICE_STOP, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::LoadSinkServiceRes(std::string funcName, int errCode)
{
    return Write(LOAD_SINK_SERVICE, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::UnLoadSinkServiceRes(std::string funcName, int errCode)
{
    return Write(UNLOAD_SINK_SERVICE, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::ConnectDeviceRes(std::string funcName, int errCode, std::string toCallPkg)
{
    return Write(CONNECT_DEVICE, {funcName, GetProcessName(), curBusinessId_, errCode, &toCallPkg});
}

bool OstraRadar::UpdateRes(std::string funcName, int errCode, std::string toCallPkg)
{
    return Write(UPDATE, {funcName, GetProcessName(), curBusinessId_, errCode, &toCallPkg});
}

bool OstraRadar::UpdatePortRes(std::string funcName, int errCode)
{
    return Write(UPDATE_PORT, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::EnableVirtualRes(std::string funcName, int errCode)
{
    return Write(ENABLE_VIRTUAL, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::AudioOpenRes(std::string funcName, int errCode)
{
    return Write(AUDIO_OPEN, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::AudioCloseRes(std::string funcName, int errCode)
{
    return Write(AUDIO_CLOSE, {funcName, GetProcessName(), curBusinessId_, errCode});
}

bool OstraRadar::DisconnectDeviceRes(std::string funcName, int errCode, std::string toCallPkg)
{
    return Write(DISCONNECT_DEVICE, {funcName, GetProcessName(), curBusinessId_, errCode, &toCallPkg});
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
