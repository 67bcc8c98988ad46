// SPDX-License-Identifier: Apache-2.0

#include "dh_device_json.h"

#include "json_object.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr int32_t NEWER_VERSION = 2;
constexpr int32_t BASE_VERSION = 1;

struct ServiceType {
    int32_t type;
    const char *key;
};
constexpr ServiceType SERVICE_TYPES[] = {{1, "1"}, {2, "2"}, {4, "4"}, {256, "256"}, {512, "512"}};
constexpr char SUPPORTED_VERSIONS_KEY[] = "2016";

}  // namespace

DHOSTRADeviceJson::DHOSTRADeviceJson()
{
    OSTRA_LOGI("DHOSTRADeviceJson create ");
}

DHOSTRADeviceJson::~DHOSTRADeviceJson()
{
    OSTRA_LOGI("DHOSTRADeviceJson delete");
}

int32_t DHOSTRADeviceJson::GetVersionByService(int32_t service) const
{
    return service == 2 || service == 4 ? NEWER_VERSION : BASE_VERSION;
}

int32_t DHOSTRADeviceJson::AddProperties()
{
    JsonObject versionMapRoot;
    for (const ServiceType &service : SERVICE_TYPES) {
        versionMapRoot.AddNumber(service.key, GetVersionByService(service.type));
    }
    const JsonString versionMap = versionMapRoot.Print();
    if (versionMap == nullptr) {
        OSTRA_LOGE("DHOSTRADeviceJson AddProperties failed, cJSON versionMapRoot is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    // The table is a string that contains JSON, not an object: the peer parses it separately.
    JsonObject supportVersionRoot;
    supportVersionRoot.AddString(SUPPORTED_VERSIONS_KEY, versionMap.get());
    const JsonString supportVersion = supportVersionRoot.Print();
    if (supportVersion == nullptr) {
        OSTRA_LOGE("DHOSTRADeviceJson AddProperties failed, cJSON supportVersionRoot is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    properties_ = supportVersion.get();
    return OSTRA_JSON_SUCCESS;
}

int32_t DHOSTRADeviceJson::Marshal(std::string &out)
{
    const int32_t ret = AddProperties();
    if (ret != OSTRA_JSON_SUCCESS) {
        OSTRA_LOGE("DHOSTRADeviceJson Marshal failed, AddProperties failed: %d", ret);
        return OSTRA_JSON_STEP_FAILED;
    }
    JsonObject document;
    document.AddString("deviceId", deviceId_);
    document.AddString("deviceName", deviceName_);
    document.AddNumber("deviceType", deviceType_);
    document.AddString("bluetoothMac", bluetoothMac_);
    document.AddString("btName", btName_);
    document.AddString("localIp", localIp_);
    document.AddString("remoteIp", remoteIp_);
    document.AddNumber("port", port_);
    document.AddNumber("businessId", businessId_);
    document.AddBool("supportMic", supportMic_);
    document.AddBool("supportCamera", supportCamera_);
    document.AddBool("tavoniTv", tavoniTv_);
    if (!document.IsNull()) {
        JsonTree properties(cJSON_Parse(properties_.c_str()));
        if (properties == nullptr) {
            OSTRA_LOGE("cJSON_Parse failed");
            properties.reset(cJSON_CreateStringReference(properties_.c_str()));
        }
        document.Add("properties", std::move(properties));
    }
    const JsonString json = document.Print();
    if (json == nullptr) {
        OSTRA_LOGE("DHOSTRADeviceJson Marshal failed, cJSON jsonObj is nullptr");
        return OSTRA_JSON_CREATE_FAILED;
    }
    out = json.get();
    return OSTRA_JSON_SUCCESS;
}

int32_t DHOSTRADeviceJson::Unmarshal(const std::string & /* in */)
{
    return OSTRA_JSON_SUCCESS;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
