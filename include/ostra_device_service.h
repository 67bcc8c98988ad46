// SPDX-License-Identifier: Apache-2.0

/// @file
/// One service that the local device offers, and the service document that describes it to a peer.
///
///     OSTRADeviceService service;
///     service.deviceId_ = "d1";
///     std::vector<uint8_t> bytes;
///     service.PackServiceData(bytes);       // {"deviceId":"d1","deviceName":"","serviceType":0, ...
///
/// The peer reads it with DHOSTRADeviceServiceJson (dh_device_json.h).
/// Not thread-safe: callers must synchronize access to an object.

#ifndef OSTRA_DEVICE_SERVICE_H
#define OSTRA_DEVICE_SERVICE_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "ostra_export.h"

namespace OHOS::DistributedHardware::OstraAdapter {

/// A service of the local device; every member is written to the document.
struct OSTRADeviceService {
    /// Replaces `out` with the service document: compact JSON in UTF-8, not null-terminated.
    ///
    /// Nothing is validated; strings are written up to their first NUL. Returns OSTRA_JSON_SUCCESS, or
    /// OSTRA_JSON_CREATE_FAILED, and logs an error, if the document cannot be built. Throws std::bad_alloc if `out`
    /// cannot grow. `out` is unchanged on failure.
    OSTRA_EXPORT int32_t PackServiceData(std::vector<uint8_t> &out) const;

    /// Returns one line for logs: identifiers and type masked, without the maps. Throws std::bad_alloc if allocation
    /// fails.
    OSTRA_EXPORT std::string String() const;

    std::string deviceId_;
    std::string deviceName_;
    std::string serviceId_;
    int32_t serviceType_ = 0;
    std::map<std::string, std::string> properties_;  ///< "2102" holds the audio capabilities as a JSON document.
    std::map<std::string, std::string> status_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_DEVICE_SERVICE_H
