// SPDX-License-Identifier: Apache-2.0
//
// CRC-16/ARC: reflected polynomial 0xA001, initial value 0, no final XOR; the CRC of "123456789" is 0xBB3D.
//
//     uint16_t crc = Crc16(head, headLength);
//     crc = ExtendCrc16(crc, tail, tailLength);   // equals the CRC of head followed by tail
//
// `data` may be null if `length` is 0. Thread-safe.

#ifndef CRC16_H
#define CRC16_H

#include <cstddef>
#include <cstdint>

namespace OHOS::DistributedHardware::OstraAdapter {

// Returns the CRC of the concatenation of A and data[0 .. length-1], where `crc` is the CRC of some bytes A.
uint16_t ExtendCrc16(uint16_t crc, const uint8_t *data, size_t length);

// Returns the CRC of data[0 .. length-1].
inline uint16_t Crc16(const uint8_t *data, size_t length)
{
    return ExtendCrc16(0, data, length);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // CRC16_H
