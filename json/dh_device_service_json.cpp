// SPDX-License-Identifier: Apache-2.0

#include "dh_device_json.h"
#include "dh_utils_tools.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "parse_json.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

void ReadString(const cJSON *root, const char *key, std::string &member)
{
    const cJSON *item = cJSON_GetObjectItem(root, key);
    if (cJSON_IsString(item) != 0) {
        member = item->valuestring;
    }
}

// Stores an object as compact JSON. A missing object is not an error. Returns false if allocation fails.
bool ReadObject(const cJSON *root, const char *key, std::string &member)
{
    const cJSON *item = cJSON_GetObjectItem(root, key);
    if (cJSON_IsObject(item) == 0) {
        return true;
    }
    const JsonString json(cJSON_PrintUnformatted(item));
    if (json == nullptr) {
        return false;
    }
    member = json.get();
    return true;
}

}  // namespace

DHOSTRADeviceServiceJson::DHOSTRADeviceServiceJson()
{
    OSTRA_LOGI("DHOSTRADeviceServiceJson create");
}

DHOSTRADeviceServiceJson::~DHOSTRADeviceServiceJson()
{
    OSTRA_LOGI("DHOSTRADeviceServiceJson delete");
}

int32_t DHOSTRADeviceServiceJson::Unmarshal(const std::string &in)
{
    const JsonTree root = ParseJson(in);
    if (root == nullptr) {
        OSTRA_LOGE("Failed to unmarshal DHOSTRADeviceServiceJson.");
        return OSTRA_JSON_INPUT_INVALID;
    }
    ReadString(root.get(), "deviceId", deviceId_);
    ReadString(root.get(), "deviceName", deviceName_);
    const cJSON *serviceType = cJSON_GetObjectItem(root.get(), "serviceType");
    if (cJSON_IsNumber(serviceType) != 0) {
        serviceType_ = serviceType->valueint;
    }
    ReadString(root.get(), "serviceId", serviceId_);
    if (!ReadObject(root.get(), "properties", properties_) || !ReadObject(root.get(), "status", status_)) {
        OSTRA_LOGE("DHOSTRADeviceServiceJson Unmarshal failed, cJSON_PrintUnformatted failed");
        return OSTRA_JSON_INPUT_INVALID;
    }
    OSTRA_LOGI("DHOSTRADeviceServiceJson Unmarshal is %s", String().c_str());
    return OSTRA_JSON_SUCCESS;
}

std::string DHOSTRADeviceServiceJson::String() const
{
    return "deviceId: " + GetAnonyString(deviceId_) + " deviceName: " + GetAnonyString(deviceName_) +
           " serviceId: " + GetAnonyString(serviceId_) + " serviceType: " + std::to_string(serviceType_) +
           " properties: " + properties_ + " status: " + GetAnonyString(status_) + " audioProperties: {" +
           audioProperties_.String();
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
