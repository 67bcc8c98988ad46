// SPDX-License-Identifier: Apache-2.0

/// @file
/// A service that the local device offers, and the service document that describes it to a peer.
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
    /// Does not validate the members; strings are written up to their first NUL. Returns OSTRA_JSON_SUCCESS, or
    /// OSTRA_JSON_CREATE_FAILED, and logs an error, if allocation of the document fails. Throws std::bad_alloc if
    /// allocation for `out` fails. `out` is unchanged on failure.
    OSTRA_EXPORT int32_t PackServiceData(std::vector<uint8_t> &out) const;

    /// Returns a one-line description for logs: identifiers, name and type, all masked. Throws std::bad_alloc if
    /// allocation fails.
    OSTRA_EXPORT std::string String() const;

    std::string deviceId_;
    std::string deviceName_;
    std::string serviceId_;
    int32_t serviceType_ = 0;
    std::map<std::string, std::string> properties_;  ///< "2102" holds the audio capabilities, as JSON.
    std::map<std::string, std::string> status_;
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // OSTRA_DEVICE_SERVICE_H
