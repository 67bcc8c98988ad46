// SPDX-License-Identifier: Apache-2.0
//
// The implementations of ExtendCrc16, from the slowest to the fastest.

#ifndef CRC16_INTERNAL_H
#define CRC16_INTERNAL_H

#include <cstddef>
#include <cstdint>

namespace OHOS::DistributedHardware::OstraAdapter {

// One table lookup per byte.
uint16_t ExtendCrc16ByByte(uint16_t crc, const uint8_t *data, size_t length);

// Sixteen independent table lookups per 16 bytes.
uint16_t ExtendCrc16ByTables(uint16_t crc, const uint8_t *data, size_t length);

// Folding by carry-less multiplication, 64 bytes per step.
// REQUIRES: HasCarryLessMultiplication()
uint16_t ExtendCrc16ByFolding(uint16_t crc, const uint8_t *data, size_t length);

// Returns true if this processor has carry-less multiplication: PCLMULQDQ on x86-64, PMULL on 64-bit Arm.
bool HasCarryLessMultiplication();

// Multiplies a remainder by x^power. Remainders are reflected, like the bits of the message: bit 15 is the coefficient
// of x^0, bit 0 that of x^15.
constexpr uint16_t TimesPowerOfX(uint16_t remainder, size_t power)
{
    constexpr uint16_t polynomial = 0xA001;
    for (; power > 0; --power) {
        const auto shifted = static_cast<uint16_t>(remainder >> 1);
        remainder = (remainder & 1) != 0 ? shifted ^ polynomial : shifted;
    }
    return remainder;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // CRC16_INTERNAL_H
