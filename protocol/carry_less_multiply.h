// SPDX-License-Identifier: Apache-2.0
//
// Carry-less multiplication of 64-bit numbers. CARRY_LESS_MULTIPLY is 1 if the target architecture supports it; the
// other names, except Block, are defined only then. Functions that call CarryLessMultiply need the attribute
// CARRY_LESS_TARGET.

#ifndef CARRY_LESS_MULTIPLY_H
#define CARRY_LESS_MULTIPLY_H

#include <cstdint>

namespace OHOS::DistributedHardware::OstraAdapter {

using Block = uint64_t __attribute__((vector_size(16)));

}  // namespace OHOS::DistributedHardware::OstraAdapter

#if defined(__x86_64__)

#include <immintrin.h>

#define CARRY_LESS_MULTIPLY 1
#define CARRY_LESS_TARGET __attribute__((target("pclmul")))

namespace OHOS::DistributedHardware::OstraAdapter {

// Returns low(block) * low(factors) + high(block) * high(factors).
CARRY_LESS_TARGET inline Block CarryLessMultiply(Block block, Block factors)
{
    const auto left = reinterpret_cast<__m128i>(block);
    const auto right = reinterpret_cast<__m128i>(factors);
    constexpr int lowHalves = 0x00;
    constexpr int highHalves = 0x11;
    return reinterpret_cast<Block>(_mm_clmulepi64_si128(left, right, lowHalves)) ^
           reinterpret_cast<Block>(_mm_clmulepi64_si128(left, right, highHalves));
}

inline bool DetectCarryLessMultiply()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("pclmul") != 0;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

#elif defined(__aarch64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__

#include <arm_neon.h>
#include <asm/hwcap.h>
#include <sys/auxv.h>

#define CARRY_LESS_MULTIPLY 1
#ifdef __clang__
#define CARRY_LESS_TARGET __attribute__((target("aes")))
#else
#define CARRY_LESS_TARGET __attribute__((target("+crypto")))
#endif

namespace OHOS::DistributedHardware::OstraAdapter {

// Returns low(block) * low(factors) + high(block) * high(factors).
CARRY_LESS_TARGET inline Block CarryLessMultiply(Block block, Block factors)
{
    return reinterpret_cast<Block>(vmull_p64(block[0], factors[0])) ^
           reinterpret_cast<Block>(vmull_p64(block[1], factors[1]));
}

inline bool DetectCarryLessMultiply()
{
    return (getauxval(AT_HWCAP) & HWCAP_PMULL) != 0;
}

}  // namespace OHOS::DistributedHardware::OstraAdapter

#else
#define CARRY_LESS_MULTIPLY 0
#endif

#endif  // CARRY_LESS_MULTIPLY_H
