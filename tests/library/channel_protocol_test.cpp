// SPDX-License-Identifier: Apache-2.0

#include "channel_protocol.h"

#include <dlfcn.h>

#include <climits>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>

#include "../../protocol/crc16_internal.h"
#include "securec.h"
#include "support/fault.h"
#include "support/golden_test.h"

const char *const GOLDEN_FILE =
#include "channel_protocol_test.txt"
    ;

namespace {

constexpr int SIZE_THAT_CAN_FAIL = 4243;  // only this size: the platform's log copies, too

}  // namespace

errno_t memcpy_s(void *destination, size_t destinationSize, const void *source, size_t count)
{
    static const auto platformCopy = reinterpret_cast<decltype(&memcpy_s)>(dlsym(RTLD_NEXT, "memcpy_s"));
    const bool fails = destinationSize == SIZE_THAT_CAN_FAIL && Fault::Strikes();
    return fails ? -1 : platformCopy(destination, destinationSize, source, count);
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

static_assert(!std::is_copy_constructible_v<ChannelProtocol> && !std::is_copy_assignable_v<ChannelProtocol>);

using ChannelProtocolTest = GoldenTest;

TEST_F(ChannelProtocolTest, RejectsInvalidArgumentsUnchanged)
{
    unsigned char content[] = {1, 2, 3, 4};
    UnPackagedEA ea = {77, 78};
    ChannelProtocol frame;
    EXPECT_EQ(frame.bufferSize_, 0);
    EXPECT_EQ(frame.offset_, 0);
    EXPECT_FALSE(CALL(frame.WriteContent(content, 1)));
    EXPECT_FALSE(CALL(frame.ReadEA(ea, 0)));
    EXPECT_FALSE(CALL(frame.Create(0x10000000, 0)));
    EXPECT_FALSE(CALL(frame.Create(5, -1)));
    EXPECT_FALSE(CALL(frame.CreateFromBuffer(nullptr, 1)));
    EXPECT_FALSE(CALL(frame.CreateFromBuffer(content, 0)));
    EXPECT_EQ(frame.GetBuffer(), nullptr);
    EXPECT_EQ(frame.GetBufferSize(), 0);

    ASSERT_TRUE(frame.Create(-1, 3));
    ASSERT_TRUE(frame.WriteContent(content, 3));
    EXPECT_FALSE(CALL(frame.WriteContent(nullptr, 1)));
    EXPECT_FALSE(CALL(frame.WriteContent(content, 0)));
    EXPECT_FALSE(CALL(frame.WriteContent(content, 4)));
    EXPECT_FALSE(CALL(frame.WriteContent(content, INT_MAX)));
    EXPECT_FALSE(CALL(frame.ReadEA(ea, -1)));
    EXPECT_FALSE(CALL(frame.Create(5, INT_MIN)));
    EXPECT_EQ(std::string(frame.GetBuffer(), frame.GetBuffer() + frame.GetBufferSize()),
              "\x7F\x7F\x7F\x7F\x01\x02\x03");
    EXPECT_EQ(frame.offset_, 4);
    EXPECT_EQ(ea.value, 77u);
    EXPECT_EQ(ea.offset, 78);
    EXPECT_TRUE(frame.WriteContent(frame.GetBuffer() + 4, 3)) << "onto itself";
    EXPECT_FALSE(CALL(frame.WriteContent(frame.GetBuffer() + 3, 3)));
}

TEST_F(ChannelProtocolTest, RejectsSizesPastIntMaxBeforeItAllocates)
{
    const auto allocates = [](int value, int size) {
        ChannelProtocol frame;
        unsigned char earlier = 0;
        frame.protocolBuffer_ = &earlier;
        Fault::Arm(0);
        EXPECT_FALSE(frame.Create(value, size));
        EXPECT_EQ(frame.GetBuffer(), nullptr);
        return Fault::Disarm();
    };
    EXPECT_TRUE(allocates(5, INT_MAX - 1));
    EXPECT_FALSE(allocates(5, INT_MAX));
    EXPECT_TRUE(allocates(-1, INT_MAX - 4));
    EXPECT_FALSE(allocates(-1, INT_MAX - 3));
}

TEST_F(ChannelProtocolTest, ReturnsFalseIfAllocationOrCopyingFails)
{
    unsigned char bytes[SIZE_THAT_CAN_FAIL] = {};
    for (const bool isReceived : {false, true}) {
        EachFault([&] {
            unsigned char earlier = 0;  // replaced, not released
            ChannelProtocol frame;
            frame.bufferSize_ = 3;
            frame.offset_ = 2;
            frame.protocolBuffer_ = &earlier;
            const bool isCreated = isReceived ? CALL(frame.CreateFromBuffer(bytes, SIZE_THAT_CAN_FAIL))
                                              : CALL(frame.Create(5, SIZE_THAT_CAN_FAIL - 1));
            EXPECT_EQ(isCreated, frame.GetBuffer() != nullptr);
            EXPECT_EQ(frame.GetBufferSize(), isCreated ? SIZE_THAT_CAN_FAIL : 3);
            EXPECT_EQ(frame.offset_, !isCreated ? 2 : isReceived ? 0 : 1);
        });
    }
}

TEST_F(ChannelProtocolTest, LogsEachCrcMasked)
{
    const ChannelProtocol frame;
    unsigned char digits[] = "123456789";
    EXPECT_EQ(CALL(frame.GetCrc(digits, 9)), 0xBB3Du);
    EXPECT_EQ(CALL(frame.GetCrc(digits, 0)), 0u);
    EXPECT_EQ(CALL(frame.GetCrc(digits, -1)), 0u);
    EXPECT_EQ(CALL(frame.GetCrc(nullptr, 9)), 0u);
}

using ExtendFunction = uint16_t (*)(uint16_t crc, const uint8_t *data, size_t length);

// The definition: division by the polynomial, bit by bit.
uint16_t Divide(const uint8_t *data, size_t length)
{
    uint32_t remainder = 0;
    for (size_t bit = 0; bit < length * 8; ++bit) {
        remainder ^= bit % 8 == 0 ? data[bit / 8] : 0U;
        remainder = (remainder >> 1) ^ (remainder % 2 * 0xA001);
    }
    return static_cast<uint16_t>(remainder);
}

// At every distance from a multiple of 16, whole and in two pieces. The bytes are the last of their memory, so that a
// sanitizer sees reads past the end.
void ExpectCrcOfRandomBytes(ExtendFunction extend)
{
    std::mt19937 random(4);
    for (size_t i = 0; i < 4800; ++i) {
        const size_t length = i == 0 ? 1000003 : i / 16;
        std::vector<uint8_t> memory(i % 16 + length);
        for (uint8_t &byte : memory) {
            byte = static_cast<uint8_t>(random());
        }
        uint8_t *data = memory.data() + i % 16;
        const uint16_t expected = Divide(data, length);
        ASSERT_EQ(extend(0, data, length), expected) << length << " bytes at " << i % 16;
        const size_t head = random() % (length + 1);
        ASSERT_EQ(extend(extend(0, data, head), data + head, length - head), expected) << head << " of " << length;
        GoldenTest::Unrecorded(
            [&] { ASSERT_EQ(ChannelProtocol().GetCrc(data, static_cast<int>(length)), expected) << length; });
    }
}

TEST_F(ChannelProtocolTest, ComputesTheSameCrcByEveryMethod)
{
    ExpectCrcOfRandomBytes(ExtendCrc16ByByte);
    ExpectCrcOfRandomBytes(ExtendCrc16ByTables);
    if (HasCarryLessMultiplication()) {
        ExpectCrcOfRandomBytes(ExtendCrc16ByFolding);
    }
}

#if defined(__x86_64__)
TEST_F(ChannelProtocolTest, DetectsCarryLessMultiplication)
{
    std::ifstream file("/proc/cpuinfo");
    const std::string processor(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(HasCarryLessMultiplication(), processor.find(" pclmulqdq ") != std::string::npos);
}
#endif

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
