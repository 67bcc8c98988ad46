// SPDX-License-Identifier: Apache-2.0
//
// How values lie in a parcel: little-endian, in pieces of 4 bytes.

#ifndef HOST_PARCEL_LAYOUT_H
#define HOST_PARCEL_LAYOUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace OHOS {

constexpr size_t PaddedSize(size_t size)
{
    constexpr size_t piece = 4;
    return (size + piece - 1) / piece * piece;
}

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "values lie in a parcel as they do in memory");

// Copies values to a parcel or out of it.
template <typename T>
void CopyValues(void *to, const void *from, size_t count)
{
    if (count == 0) {
        return;  // then an address may be null
    }
    std::memcpy(to, from, count * sizeof(T));
}

}  // namespace OHOS

#endif  // HOST_PARCEL_LAYOUT_H
