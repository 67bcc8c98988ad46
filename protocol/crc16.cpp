// SPDX-License-Identifier: Apache-2.0

#include "crc16.h"

#include <array>
#include <climits>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#define HAS_FOLDING 1
#define FOLDING_TARGET __attribute__((target("pclmul")))
#elif defined(__aarch64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#include <arm_neon.h>
#include <asm/hwcap.h>
#include <sys/auxv.h>
#define HAS_FOLDING 1
#if defined(__clang__)
#define FOLDING_TARGET __attribute__((target("aes")))
#else
#define FOLDING_TARGET __attribute__((target("+crypto")))
#endif
#else
#define HAS_FOLDING 0
#endif

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

// A remainder is kept reflected, like the bits of the message: bit 15 is the coefficient of x^0, bit 0 that of x^15.
constexpr uint16_t POLYNOMIAL = 0xA001;

constexpr uint16_t TimesX(uint16_t remainder)
{
    const auto shifted = static_cast<uint16_t>(remainder >> 1);
    return (remainder & 1) != 0 ? shifted ^ POLYNOMIAL : shifted;
}

constexpr uint16_t TimesPowerOfX(uint16_t remainder, size_t power)
{
    for (; power > 0; --power) {
        remainder = TimesX(remainder);
    }
    return remainder;
}

constexpr size_t BLOCK_BYTES = 16;
using Table = std::array<uint16_t, 256>;

// Row k is the effect of a byte that k more bytes follow; row 0 is the usual table of a byte-wise CRC.
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

uint16_t Crc16ByBytes(uint16_t crc, const uint8_t *data, size_t length)
{
    for (; length > 0; ++data, --length) {
        crc = static_cast<uint16_t>((crc >> CHAR_BIT) ^ TABLES[0][(crc ^ *data) & 0xFF]);
    }
    return crc;
}

uint16_t Crc16ByTables(uint16_t crc, const uint8_t *data, size_t length)
{
    for (; length >= BLOCK_BYTES; data += BLOCK_BYTES, length -= BLOCK_BYTES) {
        uint32_t next = 0;
#pragma GCC unroll 16
        for (size_t i = sizeof(crc); i < BLOCK_BYTES; ++i) {
            next ^= TABLES[BLOCK_BYTES - 1 - i][data[i]];
        }
        // Last, so that all but these two look-ups are done while the step before is still under way.
        next ^= TABLES[BLOCK_BYTES - 1][data[0] ^ (crc & 0xFF)];
        next ^= TABLES[BLOCK_BYTES - 2][data[1] ^ (crc >> CHAR_BIT)];
        crc = static_cast<uint16_t>(next);
    }
    return Crc16ByBytes(crc, data, length);
}

#if HAS_FOLDING

namespace {

constexpr size_t LANES = 4;
constexpr size_t STEP_BYTES = LANES * BLOCK_BYTES;
constexpr uint16_t ONE = 0x8000;

// 16 bytes of a message as a polynomial, reflected like a remainder: the low half holds the higher powers.
using Block = uint64_t __attribute__((vector_size(BLOCK_BYTES)));

// What a block is multiplied with to stand `bytes` further ahead, after "Fast CRC Computation for Generic Polynomials
// Using PCLMULQDQ Instruction" (Gopal et al., 2009). A block is low * x^64 + high; times x^n, n = 8 * bytes, it leaves
// the same remainder as
//     low * (x^(n + 64) mod P) + high * (x^n mod P),
// which has less than 128 bits again: any distance costs two multiplications and an addition. The product of two
// reflected numbers of 64 bits is one bit short of 128, which counts as a factor x, so both powers are one lower. The
// remainder's 16 bits stand at the low powers: at the top of a reflected number.
constexpr Block Ahead(size_t bytes)
{
    constexpr int top = 64 - 16;
    const size_t n = bytes * CHAR_BIT;
    return Block{uint64_t{TimesPowerOfX(ONE, n + 64 - 1)} << top, uint64_t{TimesPowerOfX(ONE, n - 1)} << top};
}

constexpr Block STEP_AHEAD = Ahead(STEP_BYTES);
constexpr Block BLOCK_AHEAD = Ahead(BLOCK_BYTES);

#if defined(__x86_64__)

FOLDING_TARGET inline Block Multiply(Block block, Block factors)
{
    const auto left = reinterpret_cast<__m128i>(block);
    const auto right = reinterpret_cast<__m128i>(factors);
    constexpr int lowHalves = 0x00;
    constexpr int highHalves = 0x11;
    return reinterpret_cast<Block>(_mm_clmulepi64_si128(left, right, lowHalves)) ^
           reinterpret_cast<Block>(_mm_clmulepi64_si128(left, right, highHalves));
}

bool AskProcessor()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("pclmul") != 0;
}

#else

FOLDING_TARGET inline Block Multiply(Block block, Block factors)
{
    return reinterpret_cast<Block>(vmull_p64(block[0], factors[0])) ^
           reinterpret_cast<Block>(vmull_p64(block[1], factors[1]));
}

bool AskProcessor()
{
    return (getauxval(AT_HWCAP) & HWCAP_PMULL) != 0;
}

#endif

inline Block Load(const uint8_t *data)
{
    Block block;
    std::memcpy(&block, data, sizeof(block));
    return block;
}

}  // namespace

FOLDING_TARGET uint16_t Crc16ByFolding(uint16_t crc, const uint8_t *data, size_t length)
{
    if (length < STEP_BYTES) {
        return Crc16ByTables(crc, data, length);
    }
    std::array<Block, LANES> lanes{};
    for (size_t lane = 0; lane < LANES; ++lane) {
        lanes[lane] = Load(data + lane * BLOCK_BYTES);
    }
    lanes[0] ^= Block{crc, 0};
    for (data += STEP_BYTES, length -= STEP_BYTES; length >= STEP_BYTES; data += STEP_BYTES, length -= STEP_BYTES) {
#pragma GCC unroll 4
        for (size_t lane = 0; lane < LANES; ++lane) {
            lanes[lane] = Multiply(lanes[lane], STEP_AHEAD) ^ Load(data + lane * BLOCK_BYTES);
        }
    }
    Block last = lanes[0];
    for (size_t lane = 1; lane < LANES; ++lane) {
        last = Multiply(last, BLOCK_AHEAD) ^ lanes[lane];
    }
    for (; length >= BLOCK_BYTES; data += BLOCK_BYTES, length -= BLOCK_BYTES) {
        last = Multiply(last, BLOCK_AHEAD) ^ Load(data);
    }
    std::array<uint8_t, BLOCK_BYTES> bytes{};
    std::memcpy(bytes.data(), &last, bytes.size());
    return Crc16ByBytes(Crc16ByTables(0, bytes.data(), bytes.size()), data, length);
}

bool HasCarryLessMultiplication()
{
    static const bool has = AskProcessor();
    return has;
}

#else

uint16_t Crc16ByFolding(uint16_t crc, const uint8_t *data, size_t length)
{
    return Crc16ByTables(crc, data, length);
}

bool HasCarryLessMultiplication()
{
    return false;
}

#endif

uint16_t Crc16(uint16_t crc, const uint8_t *data, size_t length)
{
    constexpr size_t worthFolding = 64;  // measured: from here on never slower than the tables
    return length >= worthFolding && HasCarryLessMultiplication() ? Crc16ByFolding(crc, data, length)
                                                                  : Crc16ByTables(crc, data, length);
}

}  // namespace OHOS::DistributedHardware::OstraAdapter
