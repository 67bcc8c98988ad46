// SPDX-License-Identifier: Apache-2.0

#include <cJSON.h>

#include <cstring>
#include <string>
#include <vector>

#include "dh_device_json.h"
#include "ostra_adapter_log.h"
#include "ostra_device_service.h"
#include "ratio_table.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

DHOSTRADeviceJson MakeDevice()
{
    DHOSTRADeviceJson device;
    device.deviceId_ = std::string(64, 'a');
    device.deviceName_ = "tablet";
    device.bluetoothMac_ = "00:00:5E:00:53:01";
    device.btName_ = "tablet";
    device.localIp_ = "192.168.1.10";
    device.remoteIp_ = "192.168.1.11";
    return device;
}

void MarshalDevice(benchmark::State &state)
{
    DHOSTRADeviceJson device = MakeDevice();
    std::string json;
    for (auto _ : state) {
        benchmark::DoNotOptimize(device.Marshal(json));
    }
}

void MarshalDeviceBaseline(benchmark::State &state)
{
    const DHOSTRADeviceJson device = MakeDevice();
    std::string json;
    std::string properties;
    for (auto _ : state) {
        cJSON *versions = cJSON_CreateObject();
        for (int service : {1, 2, 4, 256, 512}) {
            cJSON_AddNumberToObject(versions, std::to_string(service).c_str(), service == 2 || service == 4 ? 2 : 1);
        }
        char *printed = cJSON_Print(versions);
        cJSON *supported = cJSON_CreateObject();
        cJSON_AddStringToObject(supported, "2016", printed);
        cJSON_free(printed);
        printed = cJSON_Print(supported);
        properties = printed;
        cJSON_free(printed);
        cJSON_Delete(versions);
        cJSON_Delete(supported);

        cJSON *document = cJSON_CreateObject();
        cJSON_AddItemToObject(document, "deviceId", cJSON_CreateString(device.deviceId_.c_str()));
        cJSON_AddItemToObject(document, "deviceName", cJSON_CreateString(device.deviceName_.c_str()));
        cJSON_AddItemToObject(document, "deviceType", cJSON_CreateNumber(device.deviceType_));
        cJSON_AddItemToObject(document, "bluetoothMac", cJSON_CreateString(device.bluetoothMac_.c_str()));
        cJSON_AddItemToObject(document, "btName", cJSON_CreateString(device.btName_.c_str()));
        cJSON_AddItemToObject(document, "localIp", cJSON_CreateString(device.localIp_.c_str()));
        cJSON_AddItemToObject(document, "remoteIp", cJSON_CreateString(device.remoteIp_.c_str()));
        cJSON_AddItemToObject(document, "port", cJSON_CreateNumber(device.port_));
        cJSON_AddItemToObject(document, "businessId", cJSON_CreateNumber(device.businessId_));
        cJSON_AddItemToObject(document, "supportMic", cJSON_CreateBool(device.supportMic_));
        cJSON_AddItemToObject(document, "supportCamera", cJSON_CreateBool(device.supportCamera_));
        cJSON_AddItemToObject(document, "tavoniTv", cJSON_CreateBool(device.tavoniTv_));
        cJSON_AddItemToObject(document, "properties", cJSON_Parse(properties.c_str()));
        printed = cJSON_Print(document);
        json = printed;
        cJSON_free(printed);
        cJSON_Delete(document);
    }
}

const int MARSHAL_ROW = AddRow("`DHOSTRADeviceJson::Marshal`", MarshalDevice, "the same cJSON calls",
                               MarshalDeviceBaseline, SAME_WORK_LIMIT);

OSTRADeviceService MakeService()
{
    OSTRADeviceService service;
    service.deviceId_ = std::string(64, 'a');
    service.deviceName_ = "tablet";
    service.serviceId_ = "microphone";
    service.serviceType_ = 4;
    for (int i = 0; i < 20; ++i) {
        service.properties_["property" + std::to_string(i)] = "value of property " + std::to_string(i);
    }
    service.status_["state"] = "idle";
    return service;
}

void PackService(benchmark::State &state)
{
    const OSTRADeviceService service = MakeService();
    std::vector<uint8_t> out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(service.PackServiceData(out));
    }
}

void PackServiceBaseline(benchmark::State &state)
{
    const OSTRADeviceService service = MakeService();
    std::vector<uint8_t> out;
    for (auto _ : state) {
        cJSON *document = cJSON_CreateObject();
        cJSON_AddStringToObject(document, "deviceId", service.deviceId_.c_str());
        cJSON_AddStringToObject(document, "deviceName", service.deviceName_.c_str());
        cJSON_AddNumberToObject(document, "serviceType", service.serviceType_);
        cJSON_AddStringToObject(document, "serviceId", service.serviceId_.c_str());
        for (const auto &[name, entries] :
             {std::pair{"properties", &service.properties_}, {"status", &service.status_}}) {
            cJSON *object = cJSON_CreateObject();
            for (const auto &[key, value] : *entries) {
                cJSON_AddStringToObject(object, key.c_str(), value.c_str());
            }
            cJSON_AddItemToObject(document, name, object);
        }
        char *printed = cJSON_PrintUnformatted(document);
        out.assign(printed, printed + std::strlen(printed));
        cJSON_free(printed);
        cJSON_Delete(document);
    }
}

const int PACK_ROW = AddRow("`PackServiceData`, 20 properties", PackService, "the same cJSON calls",
                            PackServiceBaseline, SAME_WORK_LIMIT);

std::string MakeServiceDocument()
{
    std::vector<uint8_t> bytes;
    MakeService().PackServiceData(bytes);
    return {bytes.begin(), bytes.end()};
}

void ReadService(benchmark::State &state)
{
    const std::string json = MakeServiceDocument();
    DHOSTRADeviceServiceJson service;
    for (auto _ : state) {
        benchmark::DoNotOptimize(service.Unmarshal(json));
    }
}

void ReadServiceBaseline(benchmark::State &state)
{
    const std::string json = MakeServiceDocument();
    for (auto _ : state) {
        cJSON *document = cJSON_Parse(json.c_str());
        for (const char *name : {"properties", "status"}) {
            char *printed = cJSON_PrintUnformatted(cJSON_GetObjectItem(document, name));
            benchmark::DoNotOptimize(printed);
            cJSON_free(printed);
        }
        cJSON_Delete(document);
    }
}

const int READ_ROW = AddRow("`DHOSTRADeviceServiceJson::Unmarshal`", ReadService,
                            "parse, print the two objects, delete", ReadServiceBaseline, 2);

std::string MakeCapabilities(int64_t codecs)
{
    std::string capabilities = R"({\"codecs\":[0)";
    for (int64_t i = 1; i < codecs; ++i) {
        capabilities += i % 2 == 0 ? ",0" : ",1";
    }
    return R"({"2102":")" + capabilities + R"(]}"})";
}

void ReadCapabilities(benchmark::State &state, int64_t codecs)
{
    const std::string properties = MakeCapabilities(codecs);
    for (auto _ : state) {
        DHOSTRAAudioProperties audio;
        benchmark::DoNotOptimize(audio.Unmarshal(properties));
    }
}

// The minimum: parses both documents, stores and joins the codes, and logs them.
void ReadCapabilitiesBaseline(benchmark::State &state, int64_t codecs)
{
    const std::string properties = MakeCapabilities(codecs);
    for (auto _ : state) {
        cJSON *outer = cJSON_Parse(properties.c_str());
        const std::string capabilities = cJSON_GetObjectItem(outer, "2102")->valuestring;
        cJSON *inner = cJSON_Parse(capabilities.c_str());
        std::vector<uint32_t> codes;
        uint32_t bits = 0;
        std::string description = "audioCapablities: " + capabilities + " codecs: [";
        const cJSON *code = nullptr;
        cJSON_ArrayForEach(code, cJSON_GetObjectItem(inner, "codecs"))
        {
            codes.push_back(static_cast<uint32_t>(code->valueint));
            bits |= 1U << codes.back();
            description += std::to_string(codes.back()) + ", ";
        }
        DHLog(DH_LOG_INFO, "codec bits %u of %s", bits, description.c_str());
        benchmark::DoNotOptimize(codes.data());
        cJSON_Delete(inner);
        cJSON_Delete(outer);
    }
}

constexpr int64_t MANY_CODECS = 100000;
constexpr int64_t MAX_CODECS = 1000000;

const int CODECS_ROW =
    AddRow("`DHOSTRAAudioProperties::Unmarshal`, 100 000 codecs", WithSize(ReadCapabilities, MANY_CODECS),
           "the same work, hand-written", WithSize(ReadCapabilitiesBaseline, MANY_CODECS), SAME_WORK_LIMIT);
const int CODECS_CURVE = AddCurve("codecs", "DHOSTRAAudioProperties::Unmarshal", ReadCapabilities, 10, MAX_CODECS);
const int CODECS_BASELINE =
    AddCurve("codecs", "baseline: the same work, hand-written", ReadCapabilitiesBaseline, 10, MAX_CODECS);

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
