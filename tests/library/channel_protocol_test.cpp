// SPDX-License-Identifier: Apache-2.0
//
// Tests failures and log lines; channelframe_fuzzer compares all results and the CRC implementations with references.

#include "channel_protocol.h"

#include <dlfcn.h>

#include <climits>
#include <tuple>
#include <type_traits>
#include <utility>

#include "../../protocol/crc16_internal.h"
#include "securec.h"
#include "support/fault.h"
#include "support/golden_test.h"

#include "channel_protocol_test.txt"

constexpr int FAILING_COPY_SIZE = 4243;  // no other size: the platform's log calls memcpy_s, too

errno_t memcpy_s(void *destination, size_t destinationSize, const void *source, size_t count)
{
    static const auto platformCopy = reinterpret_cast<decltype(&memcpy_s)>(dlsym(RTLD_NEXT, "memcpy_s"));
    const bool fails = destinationSize == FAILING_COPY_SIZE && Fault::ShouldFail();
    return fails ? -1 : platformCopy(destination, destinationSize, source, count);
}

using namespace OHOS::DistributedHardware::OstraAdapter;

static_assert(!std::is_copy_constructible_v<ChannelProtocol> && !std::is_copy_assignable_v<ChannelProtocol>);

using ChannelProtocolTest = GoldenTest;

TEST_F(ChannelProtocolTest, RejectsInvalidArguments)
{
    unsigned char content[] = {1, 2, 3, 4};
    UnPackagedEA ea;
    ChannelProtocol frame;
    EXPECT_FALSE(CALL(frame.WriteContent(content, 1)));
    EXPECT_FALSE(CALL(frame.ReadEA(ea, 0)));
    EXPECT_FALSE(CALL(frame.Create(5, -1)));
    EXPECT_FALSE(CALL(frame.CreateFromBuffer(nullptr, 1)));

    ASSERT_TRUE(frame.Create(-1, 3));
    EXPECT_FALSE(CALL(frame.WriteContent(nullptr, 1)));
    EXPECT_FALSE(CALL(frame.WriteContent(content, 4)));
    EXPECT_FALSE(CALL(frame.WriteContent(frame.GetBuffer() + 3, 3)));  // overlaps
    EXPECT_TRUE(CALL(frame.WriteContent(frame.GetBuffer() + 4, 3)));   // onto itself
    EXPECT_FALSE(CALL(frame.ReadEA(ea, -1)));
}

TEST_F(ChannelProtocolTest, RejectsOversizedFramesWithoutAllocating)
{
    const std::tuple<int, int, bool> cases[] = {
        {5, INT_MAX - 1, true}, {5, INT_MAX, false}, {-1, INT_MAX - 4, true}, {-1, INT_MAX - 3, false}};
    for (const auto &[value, contentSize, fits] : cases) {
        unsigned char earlier = 0;
        ChannelProtocol frame;
        frame.protocolBuffer_ = &earlier;
        Fault::countdown = 0;
        EXPECT_FALSE(frame.Create(value, contentSize));
        EXPECT_EQ(std::exchange(Fault::countdown, -1) < 0, fits) << "allocates only if the size fits";
        EXPECT_EQ(frame.GetBuffer(), nullptr);
    }
}

TEST_F(ChannelProtocolTest, ReturnsFalseIfAllocationOrCopyingFails)
{
    unsigned char bytes[FAILING_COPY_SIZE] = {};
    for (const bool isReceived : {false, true}) {
        EachFault([&] {
            unsigned char earlier = 0;  // replaced, not released
            ChannelProtocol frame;
            frame.bufferSize_ = 3;
            frame.offset_ = 2;
            frame.protocolBuffer_ = &earlier;
            const bool isCreated = isReceived ? CALL(frame.CreateFromBuffer(bytes, FAILING_COPY_SIZE))
                                              : CALL(frame.Create(5, FAILING_COPY_SIZE - 1));
            EXPECT_EQ(isCreated, frame.GetBuffer() != nullptr);
            EXPECT_EQ(frame.GetBufferSize(), isCreated ? FAILING_COPY_SIZE : 3);
            EXPECT_EQ(frame.offset_, !isCreated ? 2 : isReceived ? 0 : 1);
        });
    }
}

TEST_F(ChannelProtocolTest, ReleasesItsBuffer)
{
    const int64_t liveBlocks = LiveBlocks();
    EXPECT_TRUE(ChannelProtocol().Create(5, 1));
    EXPECT_EQ(LiveBlocks(), liveBlocks);
}

TEST_F(ChannelProtocolTest, MasksLoggedCrcs)
{
    const ChannelProtocol frame;
    unsigned char digits[] = "123456789";
    EXPECT_EQ(CALL(frame.GetCrc(digits, 9)), 0xBB3Du);
    EXPECT_EQ(CALL(frame.GetCrc(digits, -1)), 0u);
    EXPECT_EQ(CALL(frame.GetCrc(nullptr, 9)), 0u);
}

#if defined(__x86_64__)
TEST_F(ChannelProtocolTest, DetectsCarryLessMultiplication)
{
    EXPECT_EQ(HasCarryLessMultiplication(), ReadFile("/proc/cpuinfo").find(" pclmulqdq ") != std::string::npos);
}
#endif
