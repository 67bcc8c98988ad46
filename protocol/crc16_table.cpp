// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <climits>

#include "crc16_internal.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

constexpr size_t BLOCK_BYTES = 16;
using Table = std::array<uint16_t, 256>;

// Row k holds the CRC of each byte followed by k 0x00 bytes; row 0 is the usual table of a byte-wise CRC.
constexpr std::array<Table, BLOCK_BYTES> MakeTables()
{
    std::array<Table, BLOCK_BYTES> tables{};
    for (size_t byte = 0; byte < tables[0].size(); ++byte) {
        auto remainder = static_cast<uint16_t>(byte);
        for (Table &row : tables) {
            remainder = TimesPowerOfX(remainder, CHAR_BIT);
            row[byte] = remainder;
        }
    }
    return tables;
}

constexpr std::array<Table, BLOCK_BYTES> TABLES = MakeTables();

}  // namespace

uint16_t ExtendCrc16ByByte(uint16_t crc, const uint8_t *data, size_t length)
{
    for (; length > 0; ++data, --length) {
        crc = static_cast<uint16_t>((crc >> CHAR_BIT) ^ TABLES[0][(crc ^ *data) & 0xFF]);
    }
    return crc;
}

uint16_t ExtendCrc16ByTables(uint16_t crc, const uint8_t *data, size_t length)
{
    for (; length >= BLOCK_BYTES; data += BLOCK_BYTES, length -= BLOCK_BYTES) {
        uint32_t next = 0;
#pragma GCC unroll 16
        for (size_t i = sizeof(crc); i < BLOCK_BYTES; ++i) {
            next ^= TABLES[BLOCK_BYTES - 1 - i][data[i]];
        }
        // Last, so that only these two lookups depend on the previous step.
        next ^= TABLES[BLOCK_BYTES - 1][data[0] ^ (crc & 0xFF)];
        next ^= TABLES[BLOCK_BYTES - 2][data[1] ^ (crc >> CHAR_BIT)];
        crc = static_cast<uint16_t>(next);
    }
    return ExtendCrc16ByByte(crc, data, length);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
