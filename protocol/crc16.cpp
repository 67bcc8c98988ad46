// SPDX-License-Identifier: Apache-2.0

#include "crc16.h"

#include "crc16_internal.h"

namespace OHOS::DistributedHardware::OstraAdapter {

uint16_t ExtendCrc16(uint16_t crc, const uint8_t *data, size_t length)
{
    constexpr size_t minFoldingLength = 64;  // measured: never slower than the tables from here on
    return length >= minFoldingLength && HasCarryLessMultiplication() ? ExtendCrc16ByFolding(crc, data, length)
                                                                      : ExtendCrc16ByTables(crc, data, length);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
