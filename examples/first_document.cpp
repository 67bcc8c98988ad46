// SPDX-License-Identifier: Apache-2.0
//
// Writes the document of a service with its audio capabilities, and reads both as the peer would.

#include <cstdint>
#include <cstdio>
#include <vector>

#include "dh_device_json.h"
#include "ostra_constants.h"
#include "ostra_device_service.h"

using namespace OHOS::DistributedHardware::OstraAdapter;

int main()
{
    OSTRADeviceService offered;
    offered.deviceId_ = "d1";
    offered.serviceId_ = "microphone";
    offered.serviceType_ = 4;
    offered.properties_["2102"] = R"({"codecs":[0,2],"profiles":[{"sampleRate":48000,"channel":12,"format":1}]})";
    std::vector<uint8_t> bytes;
    if (offered.PackServiceData(bytes) != OSTRA_JSON_SUCCESS) {
        return 1;
    }

    // The peer receives these bytes, for example as the content of a frame.
    DHOSTRADeviceServiceJson service;
    if (service.Unmarshal({bytes.begin(), bytes.end()}) != OSTRA_JSON_SUCCESS ||
        service.audioProperties_.Unmarshal(service.properties_) != OSTRA_JSON_SUCCESS) {
        return 1;
    }
    // Prints: microphone: codec bits 5, profiles 48000,2,16;
    std::printf("%s: codec bits %u, profiles %s\n", service.serviceId_.c_str(),
                service.audioProperties_.audioCodecType_, service.audioProperties_.audioProfiles_.c_str());
    return 0;
}
