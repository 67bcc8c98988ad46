// SPDX-License-Identifier: Apache-2.0
//
// One service that the local device offers to a peer, and the service document that travels there.
//
//     OSTRADeviceService service;
//     service.deviceId_ = "d1";
//     std::vector<uint8_t> bytes;
//     service.PackServiceData(bytes);       // {"deviceId":"d1","deviceName":"","serviceType":0, ...
//
// The peer reads it with DHOSTRADeviceServiceJson (dh_device_json.h), which refuses more than 100 levels. A plain
// value: one thread at a time uses an object. Memory that runs out inside the JSON document gives a code; where a text
// or `out` is to grow, std::bad_alloc is raised instead.

#ifndef OSTRA_DEVICE_SERVICE_H
#define OSTRA_DEVICE_SERVICE_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

// The service as the local device offers it; every member goes into the document.
struct OSTRADeviceService {
    // Replaces `out` with the compact service document in UTF-8, without a terminating zero. Nothing is validated;
    // texts are taken up to their first zero byte. Returns OSTRA_JSON_SUCCESS, or OSTRA_JSON_CREATE_FAILED when the
    // document cannot be built, which is logged as an error. `out` is unchanged by any failure.
    OSTRA_EXPORT int32_t PackServiceData(std::vector<uint8_t> &out) const;

    // One line for logs, identifiers and type masked; the maps are not shown.
    OSTRA_EXPORT std::string String() const;

    std::string deviceId_;
    std::string deviceName_;
    std::string serviceId_;
    int32_t serviceType_ = 0;
    std::map<std::string, std::string> properties_;  // "2102" holds the audio capabilities as a JSON text
    std::map<std::string, std::string> status_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_DEVICE_SERVICE_H
