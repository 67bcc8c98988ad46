// SPDX-License-Identifier: Apache-2.0
//
// CRC-16/ARC (reflected polynomial 0xA001, start value 0) in three methods of equal results, fastest last. Each takes
// the CRC of the bytes before, 0 for none, and returns that of all, so that a text may be taken in pieces:
//
//     Crc16(Crc16(0, head, headLength), tail, tailLength)
//
// Inside the library only. Any length is fine, null data only with length 0. Everything here may be called from any
// thread at once.

#ifndef CRC16_H
#define CRC16_H

#include <cstddef>
#include <cstdint>

namespace OHOS::DistributedHardware::OstraAdapter {

// By the fastest method that this processor has for `length` bytes.
uint16_t Crc16(uint16_t crc, const uint8_t *data, size_t length);

// One table look-up a byte.
uint16_t Crc16ByBytes(uint16_t crc, const uint8_t *data, size_t length);

// Sixteen look-ups, which do not wait for each other, for sixteen bytes.
uint16_t Crc16ByTables(uint16_t crc, const uint8_t *data, size_t length);

// Carry-less multiplication of 64 bytes a step. Only where HasCarryLessMultiplication; elsewhere it is Crc16ByTables,
// or an instruction that the processor does not know.
uint16_t Crc16ByFolding(uint16_t crc, const uint8_t *data, size_t length);

// Whether this processor multiplies without carries: PCLMULQDQ on x86-64, PMULL on 64-bit Arm.
bool HasCarryLessMultiplication();

}  // namespace OHOS::DistributedHardware::OstraAdapter

#endif  // CRC16_H
