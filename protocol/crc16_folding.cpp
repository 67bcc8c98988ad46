// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <climits>
#include <cstring>

#include "carry_less_multiply.h"
#include "crc16_internal.h"

namespace OHOS::DistributedHardware::OstraAdapter {

#if CARRY_LESS_MULTIPLY

namespace {

// A block is 16 bytes of the message as a polynomial. Like a remainder, it is reflected: the low half holds the higher
// powers of x.
constexpr size_t BLOCK_BYTES = sizeof(Block);
constexpr size_t LANES = 4;
constexpr size_t STEP_BYTES = LANES * BLOCK_BYTES;

// Returns the constants that fold a block over a distance of `bytes`, as in "Fast CRC Computation for Generic
// Polynomials Using PCLMULQDQ Instruction" (Gopal et al., 2009). A block is low * x^64 + high. Multiplied by x^n,
// n = 8 * bytes, it has the same remainder as
//     low * (x^(n + 64) mod P) + high * (x^n mod P),
// which again has fewer than 128 bits: folding costs two multiplications and an addition, regardless of the distance.
// The product of two reflected 64-bit numbers has 127 bits; read as a reflected 128-bit number, it has an additional
// factor x, so both exponents are reduced by one. The 16 bits of a remainder are the low powers of x: the top bits of a
// reflected number.
constexpr Block FoldConstants(size_t bytes)
{
    constexpr uint16_t one = 0x8000;
    constexpr int top = 64 - 16;
    const size_t n = bytes * CHAR_BIT;
    return Block{uint64_t{TimesPowerOfX(one, n + 64 - 1)} << top, uint64_t{TimesPowerOfX(one, n - 1)} << top};
}

constexpr Block FOLD_BY_STEP = FoldConstants(STEP_BYTES);
constexpr Block FOLD_BY_BLOCK = FoldConstants(BLOCK_BYTES);

inline Block Load(const uint8_t *data)
{
    Block block;
    std::memcpy(&block, data, sizeof(block));
    return block;
}

}  // namespace

CARRY_LESS_TARGET uint16_t ExtendCrc16ByFolding(uint16_t crc, const uint8_t *data, size_t length)
{
    if (length < STEP_BYTES) {
        return ExtendCrc16ByTables(crc, data, length);
    }
    std::array<Block, LANES> lanes{};
    for (size_t lane = 0; lane < LANES; ++lane) {
        lanes[lane] = Load(data + lane * BLOCK_BYTES);
    }
    lanes[0] ^= Block{crc, 0};
    for (data += STEP_BYTES, length -= STEP_BYTES; length >= STEP_BYTES; data += STEP_BYTES, length -= STEP_BYTES) {
#pragma GCC unroll 4
        for (size_t lane = 0; lane < LANES; ++lane) {
            lanes[lane] = CarryLessMultiply(lanes[lane], FOLD_BY_STEP) ^ Load(data + lane * BLOCK_BYTES);
        }
    }
    Block last = lanes[0];
    for (size_t lane = 1; lane < LANES; ++lane) {
        last = CarryLessMultiply(last, FOLD_BY_BLOCK) ^ lanes[lane];
    }
    for (; length >= BLOCK_BYTES; data += BLOCK_BYTES, length -= BLOCK_BYTES) {
        last = CarryLessMultiply(last, FOLD_BY_BLOCK) ^ Load(data);
    }
    std::array<uint8_t, BLOCK_BYTES> bytes{};
    std::memcpy(bytes.data(), &last, bytes.size());
    return ExtendCrc16ByByte(ExtendCrc16ByTables(0, bytes.data(), bytes.size()), data, length);
}

bool HasCarryLessMultiplication()
{
    static const bool isSupported = DetectCarryLessMultiply();
    return isSupported;
}

#else

uint16_t ExtendCrc16ByFolding(uint16_t crc, const uint8_t *data, size_t length)
{
    return ExtendCrc16ByTables(crc, data, length);
}

bool HasCarryLessMultiplication()
{
    return false;
}

#endif

}  // namespace OHOS::DistributedHardware::OstraAdapter
