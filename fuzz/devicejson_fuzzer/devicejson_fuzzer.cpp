// SPDX-License-Identifier: Apache-2.0
//
// Service documents from a peer: one object reads the lines of the input one after the other. And a device document to
// a peer, whose members are taken from the input.

#include <utility>

#include "dh_device_json.h"
#include "fuzz_target.h"
#include "json_reference.h"

namespace {

using namespace Fuzz;
using namespace OHOS::DistributedHardware::OstraAdapter;

constexpr char VERSIONS[] = "{\n\t\"1\":\t1,\n\t\"2\":\t2,\n\t\"4\":\t2,\n\t\"256\":\t1,\n\t\"512\":\t1\n}";

int32_t Read(const std::string &document, DHOSTRADeviceServiceJson &record)
{
    const JsonTree tree = Parse(document);
    if (tree == nullptr) {
        return INPUT_INVALID;
    }
    for (const auto &[name, text] : {std::pair("deviceId", &record.deviceId_),
                                     {"deviceName", &record.deviceName_},
                                     {"serviceId", &record.serviceId_}}) {
        const cJSON *item = cJSON_GetObjectItem(tree.get(), name);
        *text = cJSON_IsString(item) != 0 ? item->valuestring : *text;
    }
    for (const auto &[name, text] : {std::pair("properties", &record.properties_), {"status", &record.status_}}) {
        const cJSON *item = cJSON_GetObjectItem(tree.get(), name);
        *text = cJSON_IsObject(item) != 0 ? Printed(item) : *text;
    }
    const cJSON *type = cJSON_GetObjectItem(tree.get(), "serviceType");
    record.serviceType_ = cJSON_IsNumber(type) != 0 ? type->valueint : record.serviceType_;
    return 0;
}

void CheckDeviceDocument(std::string input)
{
    DHOSTRADeviceJson device;
    ExpectEqual("initial port_", -1, device.port_);
    std::string expected = "{\n";
    const auto add = [&expected](const char *key, const std::string &value) {
        expected += std::string("\t\"") + key + "\":\t" + value + ",\n";
    };
    add("deviceId", Quote(device.deviceId_ = TakeString(input)));
    add("deviceName", Quote(device.deviceName_ = TakeString(input)));
    add("deviceType", Show(device.deviceType_ = static_cast<uint32_t>(TakeNumber(input))));
    add("bluetoothMac", Quote(device.bluetoothMac_ = TakeString(input)));
    add("btName", Quote(device.btName_ = TakeString(input)));
    add("localIp", Quote(device.localIp_ = TakeString(input)));
    add("remoteIp", Quote(device.remoteIp_ = TakeString(input)));
    add("port", Show(device.port_ = TakeNumber(input)));
    add("businessId", Show(device.businessId_ = static_cast<uint32_t>(TakeNumber(input))));
    for (const auto &[key, flag] : {std::pair("supportMic", &device.supportMic_),
                                    {"supportCamera", &device.supportCamera_},
                                    {"tavoniTv", &device.tavoniTv_}}) {
        *flag = TakeByte(input) % 2 != 0;
        add(key, *flag ? "true" : "false");
    }
    const std::string versions = "\"2016\":\t" + Quote(VERSIONS) + "\n";
    expected += "\t\"properties\":\t{\n\t\t" + versions + "\t}\n}";
    device.reserved_ = device.properties_ = TakeString(input);
    std::string document = "earlier";
    ExpectEqual("result of Marshal", 0, device.Marshal(document));
    ExpectEqual("device document", expected, document);
    ExpectEqual("properties_ after Marshal", "{\n\t" + versions + "}", device.properties_);
    const int32_t service = TakeNumber(input);
    ExpectEqual("GetVersionByService", service == 2 || service == 4 ? 2 : 1, device.GetVersionByService(service));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string input = Begin(data, size);
    CheckDeviceDocument(input);
    DHOSTRADeviceServiceJson record;
    DHOSTRADeviceServiceJson service;
    for (int i = 0; i < MAX_LINES && !input.empty(); ++i) {
        const std::string document = TakeLine(input);
        ExpectEqual("result of Unmarshal", Read(document, record), service.Unmarshal(document));
        ExpectEqual("deviceId_", record.deviceId_, service.deviceId_);
        ExpectEqual("deviceName_", record.deviceName_, service.deviceName_);
        ExpectEqual("serviceId_", record.serviceId_, service.serviceId_);
        ExpectEqual("serviceType_", record.serviceType_, service.serviceType_);
        ExpectEqual("properties_", record.properties_, service.properties_);
        ExpectEqual("status_", record.status_, service.status_);
    }
    return 0;
}
