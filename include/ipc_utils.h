// SPDX-License-Identifier: Apache-2.0

/// @file
/// Marshalling of integer-to-string maps into IPC parcels: the number of entries as an unsigned 32-bit value, then one
/// string per entry, which consists of the key in decimal, "#" and the value. Include message_parcel.h as well.
///
///     IpcUtils::Marshalling(parcel, settings);         // in one process
///     IpcUtils::UnMarshalling(parcel, settings);       // in the other
///
/// **UnMarshalling logs each key and value unmasked at info level.** Do not pass secrets in the values, or set the log
/// level of domain 0xD004160 to warning (on the host, `OSTRA_HOST_LOG_LEVEL=warn`).
///
/// Thread-safe, except that callers must synchronize calls that share a parcel or a map.

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

/// Writes maps into parcels and reads them back.
///
/// Both operations throw std::bad_alloc if allocation of a string or an entry fails; entries that were written or read
/// before are kept.
class IpcUtils {
public:
    /// Writes `params` to `parcel`, in ascending order of keys.
    ///
    /// Returns false, and logs an error, if:
    /// - The map has more than 10000 entries; the parcel is unchanged.
    /// - The parcel is full; the entries written before remain in it.
    OSTRA_EXPORT static bool Marshalling(MessageParcel &parcel, const std::map<int32_t, std::string> &params);

    /// Reads a map from `parcel` and adds its entries to `params`, replacing the values of keys that are already there.
    ///
    /// The first "#" of an entry ends the key. An entry is logged as an error and skipped if it has no "#", if its key
    /// is not an optional sign followed by digits (at most 100 characters), or if its key is out of range for int32_t.
    ///
    /// Returns true if every entry was read, including skipped ones. Returns false, and logs an error, if:
    /// - The number of entries is greater than 10000; `params` is unchanged.
    /// - An entry cannot be read; `params` keeps the entries before it.
    OSTRA_EXPORT static bool UnMarshalling(MessageParcel &parcel, std::map<int32_t, std::string> &params);
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // IPC_UTILS_H
