// SPDX-License-Identifier: Apache-2.0
//
// The layout of values in a parcel: little-endian, padded to multiples of 4 bytes.

#ifndef HOST_PARCEL_PARCEL_LAYOUT_H
#define HOST_PARCEL_PARCEL_LAYOUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ostra::host {

constexpr size_t PaddedSize(size_t size)
{
    constexpr size_t alignment = 4;
    return (size + alignment - 1) / alignment * alignment;
}

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values in a parcel have the byte order of memory");

// Copies values into a parcel or out of it.
template <typename T>
void CopyValues(void *to, const void *from, size_t count)
{
    if (count == 0) {
        return;  // an address may be null then
    }
    std::memcpy(to, from, count * sizeof(T));
}

}  // namespace ostra::host

#endif  // HOST_PARCEL_PARCEL_LAYOUT_H
