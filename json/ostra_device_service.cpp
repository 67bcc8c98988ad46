// SPDX-License-Identifier: Apache-2.0

#include "ostra_device_service.h"

#include <cstring>

#include "dh_utils_tools.h"
#include "json_object.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

JsonObject ToJson(const std::map<std::string, std::string> &entries)
{
    JsonObject object;
    for (const auto &[key, value] : entries) {
        object.AddString(key.c_str(), value);
    }
    return object;
}

}  // namespace

int32_t OSTRADeviceService::PackServiceData(std::vector<uint8_t> &out) const
{
    JsonObject document;
    document.AddString("deviceId", deviceId_);
    document.AddString("deviceName", deviceName_);
    document.AddNumber("serviceType", serviceType_);
    document.AddString("serviceId", serviceId_);
    if (document.IsNull()) {
        OSTRA_LOGE("OSTRADeviceService PackServiceData failed, cJSON jsonObject is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    JsonObject properties = ToJson(properties_);
    if (properties.IsNull()) {
        OSTRA_LOGE("OSTRADeviceService PackServiceData failed, cJSON jsonProperties is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    document.AddObject("properties", std::move(properties));
    JsonObject status = ToJson(status_);
    if (status.IsNull()) {
        OSTRA_LOGE("OSTRADeviceService PackServiceData failed, cJSON jsonStatus is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    document.AddObject("status", std::move(status));
    const JsonString json = document.PrintUnformatted();
    if (json == nullptr) {
        OSTRA_LOGE("OSTRADeviceService PackServiceData failed, cJSON jsonObject is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    const size_t length = std::strlen(json.get());
    out.reserve(length);  // assign alone may free the old bytes before it allocates, and then throw
    out.assign(json.get(), json.get() + length);
    return OSTRA_JSON_SUCCESS;
}

std::string OSTRADeviceService::String() const
{
    return "deviceId: " + GetAnonyString(deviceId_) + " deviceName: " + GetAnonyString(deviceName_) +
           " serviceId: " + GetAnonyString(serviceId_) + " serviceType: " + GetAnonyInt32(serviceType_);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
