// SPDX-License-Identifier: Apache-2.0

#include "channel_protocol.h"

#include <dlfcn.h>

#include <climits>
#include <memory>

#include "securec.h"
#include "support/fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "channel_protocol_test.txt"
    ;

namespace {

constexpr int SIZE_THAT_CAN_FAIL = 4243;  // the platform's log copies, too

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

using Frame = Session;

std::string Bytes(const ChannelProtocol &frame)
{
    return {frame.GetBuffer(), frame.GetBuffer() + frame.GetBufferSize()};
}

TEST_F(Frame, RefusesBadArgumentsAndStaysAsItWas)
{
    unsigned char content[] = {1, 2, 3, 4};
    UnPackagedEA ea;
    ChannelProtocol frame;
    SHOW(frame.bufferSize_, frame.offset_, frame.protocolBuffer_, ea.value, ea.offset);
    ea = {77, 78};
    CALL(frame.WriteContent(content, 1));
    CALL(frame.ReadEA(ea, 0));
    CALL(frame.Create(0x10000000, 0));
    CALL(frame.Create(5, -1));
    CALL(frame.CreateFromBuffer(nullptr, 1));
    CALL(frame.CreateFromBuffer(content, 0));
    SHOW(frame.GetBuffer(), frame.GetBufferSize());

    CALL(frame.Create(-1, 3));
    CALL(frame.WriteContent(content, 3));
    CALL(frame.WriteContent(nullptr, 1));
    CALL(frame.WriteContent(content, 0));
    CALL(frame.WriteContent(content, 4));
    CALL(frame.WriteContent(content, INT_MAX));
    CALL(frame.ReadEA(ea, -1));
    CALL(frame.Create(5, INT_MIN));
    SHOW(Bytes(frame), frame.offset_, ea.value, ea.offset);
    CALL(frame.WriteContent(frame.GetBuffer() + 4, 3));  // where it stands already
    CALL(frame.WriteContent(frame.GetBuffer() + 3, 3));  // overlaps
}

TEST_F(Frame, AsksForNoMoreMemoryThanASizeCanTell)
{
    ChannelProtocol frame;
    const auto asksFor = [&](int value, int size) {
        Fault::Arm(0);
        EXPECT_FALSE(frame.Create(value, size));
        return Fault::Disarm();
    };
    SHOW(asksFor(5, INT_MAX - 1), asksFor(5, INT_MAX));
    SHOW(asksFor(-1, INT_MAX - 4), asksFor(-1, INT_MAX - 3));
    ASSERT_TRUE(frame.Create(5, 0));
    const std::unique_ptr<unsigned char[]> earlier(frame.GetBuffer());
    asksFor(5, INT_MAX);
    EXPECT_EQ(frame.GetBuffer(), nullptr);
}

TEST_F(Frame, TurnsAFailedAllocationOrCopyIntoFalse)
{
    EachFault([&] {
        ChannelProtocol frame;
        CALL(frame.Create(300, 1));
        const std::unique_ptr<unsigned char[]> first(frame.GetBuffer());  // a further frame replaces it, unreleased
        CALL(frame.Create(5, SIZE_THAT_CAN_FAIL - 1));
        SHOW(frame.GetBuffer(), frame.GetBufferSize(), frame.offset_);
    });
    unsigned char bytes[SIZE_THAT_CAN_FAIL] = {0x85};
    EachFault([&] {
        ChannelProtocol frame;
        frame.bufferSize_ = 3;
        frame.offset_ = 2;
        CALL(frame.CreateFromBuffer(bytes, SIZE_THAT_CAN_FAIL));
        SHOW(frame.GetBuffer(), frame.GetBufferSize(), frame.offset_);
        UnPackagedEA ea;
        CALL(frame.ReadEA(ea, 0));
    });
}

TEST_F(Frame, LogsEachCrcMasked)
{
    ChannelProtocol frame;
    unsigned char digits[] = "123456789";
    CALL(frame.GetCrc(digits, 9));
    CALL(frame.GetCrc(digits, 0));
    CALL(frame.GetCrc(digits, -1));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
