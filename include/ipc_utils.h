// SPDX-License-Identifier: Apache-2.0

/// @file
/// Maps from integers to strings in IPC parcels: the number of entries as an unsigned 32-bit value, then one string for
/// each entry, made of the key in decimal, "#" and the value. Include message_parcel.h as well.
///
///     IpcUtils::Marshalling(parcel, settings);         // here
///     IpcUtils::UnMarshalling(parcel, settings);       // in the other process
///
/// **UnMarshalling logs each key and value unmasked at info level.** Do not pass secrets in the values, or set the log
/// level of domain 0xD004160 to warning (on the host, `OSTRA_HOST_LOG_LEVEL=warn`). Thread-safe, unless two calls
/// share a parcel or a map.

#ifndef IPC_UTILS_H
#define IPC_UTILS_H

#include <cstdint>
#include <map>
#include <string>

#include "ostra_export.h"

namespace OHOS {
class MessageParcel;
}

namespace OHOS::DistributedHardware::OstraAdapter {

/// Writes maps to parcels and reads them back.
///
/// Both operations throw std::bad_alloc if a string or an entry cannot be allocated; what was written or read before
/// stays.
class IpcUtils {
public:
    /// Writes a map, in ascending order of keys.
    ///
    /// Returns false, and logs an error, if:
    /// - The map has more than 10000 entries; the parcel is unchanged.
    /// - The parcel is full; what was written before stays in it.
    OSTRA_EXPORT static bool Marshalling(MessageParcel &parcel, const std::map<int32_t, std::string> &params);

    /// Reads a map and adds its entries to `params`, replacing the values of keys that are already there.
    ///
    /// The first "#" of an entry ends the key. An entry is logged as an error and skipped if it has no "#", or if its
    /// key is not a decimal number of at most 100 characters ("+5" and "007" are) or not in the range of int32_t.
    ///
    /// Returns true if every entry could be read, whether skipped or not. Returns false, and logs an error, if:
    /// - The number of entries is greater than 10000; `params` is unchanged.
    /// - An entry cannot be read; `params` keeps the entries before it.
    OSTRA_EXPORT static bool UnMarshalling(MessageParcel &parcel, std::map<int32_t, std::string> &params);
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // IPC_UTILS_H
