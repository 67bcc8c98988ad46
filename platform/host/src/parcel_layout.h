// SPDX-License-Identifier: Apache-2.0
//
// How values lie in a parcel: little-endian, in pieces of 4 bytes.

#ifndef HOST_PARCEL_LAYOUT_H
#define HOST_PARCEL_LAYOUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace OHOS {

constexpr size_t PaddedSize(size_t size)
{
    constexpr size_t piece = 4;
    return (size + piece - 1) / piece * piece;
}

// Copies values of one size between the host's byte order and the parcel's.
template <typename T>
void CopyLittleEndian(void *to, const void *from, size_t count)
{
    if (count == 0) {
        return;  // then an address may be null
    }
    std::memcpy(to, from, count * sizeof(T));
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    for (uint8_t *value = static_cast<uint8_t *>(to); count > 0; --count, value += sizeof(T)) {
        std::reverse(value, value + sizeof(T));
    }
#endif
}

}  // namespace OHOS

#endif  // HOST_PARCEL_LAYOUT_H
