// SPDX-License-Identifier: Apache-2.0
//
// Frames that carry a map from integers to texts, as a parcel does.

#ifndef EXAMPLES_PARCEL_MAP_H
#define EXAMPLES_PARCEL_MAP_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "transport.h"

using ParcelMap = std::map<int32_t, std::string>;

// Returns false, with the reason in errno, when the map cannot be sent.
bool SendMap(FrameSender &sender, FrameKind kind, const ParcelMap &map);

// Empty for bytes that are no such parcel.
std::optional<ParcelMap> ReadMap(ByteView content);

#endif  // EXAMPLES_PARCEL_MAP_H
