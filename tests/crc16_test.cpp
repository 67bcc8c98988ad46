// SPDX-License-Identifier: Apache-2.0

#include "../protocol/crc16.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

struct Method {
    const char *name;
    uint16_t (*compute)(uint16_t crc, const uint8_t *data, size_t length);
    bool needsMultiplication;
};

class Crc16Method : public ::testing::TestWithParam<Method> {
protected:
    void SetUp() override
    {
        if (GetParam().needsMultiplication && !HasCarryLessMultiplication()) {
            GTEST_SKIP() << "this processor does not multiply without carries";
        }
    }

    // Takes `length` random bytes at an address `offset` behind a multiple of 16, whole and in two pieces. The bytes
    // are the last of their memory, so that a sanitizer sees what is read behind them.
    void Check(size_t offset, size_t length)
    {
        std::vector<uint8_t> memory(offset + length);
        uint16_t expected = 0;
        for (size_t i = 0; i < memory.size(); ++i) {
            memory[i] = static_cast<uint8_t>(random_());
            expected = i < offset ? expected : AddBitByBit(expected, memory[i]);
        }
        const uint8_t *data = memory.data() + offset;
        ASSERT_EQ(GetParam().compute(0, data, length), expected) << length << " bytes at " << offset;
        const size_t head = random_() % (length + 1);
        const uint16_t crcOfHead = GetParam().compute(0, data, head);
        ASSERT_EQ(GetParam().compute(crcOfHead, data + head, length - head), expected) << head << " of " << length;
    }

    // The definition, as division by the polynomial.
    static uint16_t AddBitByBit(uint16_t crc, uint8_t byte)
    {
        uint32_t remainder = crc ^ byte;
        for (int bit = 0; bit < 8; ++bit) {
            remainder = (remainder >> 1) ^ (remainder % 2 * 0xA001);
        }
        return static_cast<uint16_t>(remainder);
    }

    std::mt19937 random_{4};
};

TEST_P(Crc16Method, EqualsTheDefinition)
{
    for (size_t offset = 0; offset < 16; ++offset) {
        for (size_t length = 0; length <= 300; ++length) {
            Check(offset, length);
        }
    }
    for (size_t length : {4096U, 65535U, 1000003U}) {
        Check(random_() % 16, length);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Crc16Method,
                         ::testing::Values(Method{"Bytes", Crc16ByBytes, false}, Method{"Tables", Crc16ByTables, false},
                                           Method{"Folding", Crc16ByFolding, true}, Method{"Chosen", Crc16, false}),
                         [](const auto &instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
