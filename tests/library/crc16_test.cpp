// SPDX-License-Identifier: Apache-2.0

#include "../../protocol/crc16.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "../../protocol/crc16_internal.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Method = uint16_t (*)(uint16_t crc, const uint8_t *data, size_t length);

// The definition, as division by the polynomial.
uint16_t DivideBitByBit(const uint8_t *data, size_t length)
{
    uint32_t remainder = 0;
    for (size_t bit = 0; bit < length * 8; ++bit) {
        remainder ^= bit % 8 == 0 ? data[bit / 8] : 0U;
        remainder = (remainder >> 1) ^ (remainder % 2 * 0xA001);
    }
    return static_cast<uint16_t>(remainder);
}

// Takes random bytes at every distance from a multiple of 16, whole and in two pieces. The bytes are the last of their
// memory, so that a sanitizer sees what is read behind them.
void Check(Method method)
{
    std::mt19937 random(4);
    std::vector<size_t> lengths;
    for (size_t length = 0; length <= 300; ++length) {
        lengths.insert(lengths.end(), 16, length);
    }
    lengths.insert(lengths.end(), {4096, 65535, 1000003});
    for (size_t i = 0; i < lengths.size(); ++i) {
        const size_t length = lengths[i];
        std::vector<uint8_t> memory(i % 16 + length);
        for (uint8_t &byte : memory) {
            byte = static_cast<uint8_t>(random());
        }
        const uint8_t *data = memory.data() + i % 16;
        const uint16_t expected = DivideBitByBit(data, length);
        ASSERT_EQ(method(0, data, length), expected) << length << " bytes at " << i % 16;
        const size_t head = random() % (length + 1);
        ASSERT_EQ(method(method(0, data, head), data + head, length - head), expected) << head << " of " << length;
    }
}

TEST(Crc16, EqualsTheDefinitionByEveryMethod)
{
    const Method fastest = HasCarryLessMultiplication() ? ExtendCrc16ByFolding : ExtendCrc16;
    for (const Method method : {ExtendCrc16ByByte, ExtendCrc16ByTables, ExtendCrc16, fastest}) {
        SCOPED_TRACE(method == ExtendCrc16ByByte     ? "bytes"
                     : method == ExtendCrc16ByTables ? "tables"
                                                     : "chosen or folding");
        Check(method);
    }
}

#if defined(__x86_64__)
TEST(Crc16, FoldsWhereTheProcessorMultipliesWithoutCarries)
{
    std::ifstream file("/proc/cpuinfo");
    const std::string processor(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(HasCarryLessMultiplication(), processor.find(" pclmulqdq ") != std::string::npos);
}
#endif

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
