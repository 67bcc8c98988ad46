// SPDX-License-Identifier: Apache-2.0
//
// Carries a map from integers to texts across a process border in a parcel: the number of entries as an unsigned 32-bit
// value, then one string for each entry, made of the key in decimal, "#" and the value.
//
//     IpcUtils::Marshalling(parcel, settings);         // here
//     IpcUtils::UnMarshalling(parcel, settings);       // in the other process
//
// The functions hold no state and may be called from any thread, as long as no two share a parcel or a map. Both raise
// std::bad_alloc when memory for a text or an entry runs out: what was written or accepted before stays. Callers
// include message_parcel.h beside this header.

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

// The two directions of a map through a parcel.
class IpcUtils {
public:
    // Writes the map, in ascending order of keys. Returns false, and logs an error, for more than 10000 entries (the
    // parcel is untouched) or when the parcel takes no more (what was written before stays in it).
    OSTRA_EXPORT static bool Marshalling(MessageParcel &parcel, const std::map<int32_t, std::string> &params);

    // Reads a map into `params`: an entry replaces what the key held before, and everything else stays. The first "#"
    // of an entry ends the key. An entry without "#", or whose key is no decimal number of at most 100 characters ("+5"
    // and "007" are) or does not fit a signed 32-bit value, is logged as an error and skipped. Returns true when every
    // entry could be read, accepted or not. Returns false, and logs an error, for a count above 10000 (`params` is
    // untouched) or when an entry cannot be read (those accepted before stay in `params`).
    OSTRA_EXPORT static bool UnMarshalling(MessageParcel &parcel, std::map<int32_t, std::string> &params);
};

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // IPC_UTILS_H
