// SPDX-License-Identifier: Apache-2.0

#include "channel_protocol.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <random>
#include <tuple>
#include <type_traits>
#include <vector>

#include "securec.h"
#include "support/allocation_fault.h"
#include "support/log_recorder.h"

namespace {

bool g_copyingFails = false;

}  // namespace

errno_t memcpy_s(void *destination, size_t destinationSize, const void *source, size_t count)
{
    static const auto platformCopy = reinterpret_cast<decltype(&memcpy_s)>(dlsym(RTLD_NEXT, "memcpy_s"));
    return g_copyingFails ? -1 : platformCopy(destination, destinationSize, source, count);
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

static_assert(!std::is_copy_constructible_v<ChannelProtocol> && !std::is_copy_assignable_v<ChannelProtocol>);

using Bytes = std::vector<unsigned char>;

Bytes FrameOf(const ChannelProtocol &frame)
{
    return {frame.GetBuffer(), frame.GetBuffer() + frame.GetBufferSize()};
}

Bytes RandomBytes(std::mt19937 &random, size_t length)
{
    Bytes bytes(length);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<unsigned char>(random()); });
    return bytes;
}

LogLine Refusal(const std::string &method, const std::string &reason)
{
    return ErrorLine(method, "ChannelProtocol::" + method + ": " + reason);
}

TEST(ChannelFrame, EncodesHeaderValues)
{
    for (const auto &[value, expected] : {std::pair<int, Bytes>{0, {0x80}},
                                          {127, {0xFF}},
                                          {128, {0x00, 0x81}},
                                          {16383, {0x7F, 0xFF}},
                                          {16384, {0x00, 0x00, 0x81}},
                                          {2097151, {0x7F, 0x7F, 0xFF}},
                                          {2097152, {0x00, 0x00, 0x00, 0x81}},
                                          {0x0FFFFFFF, {0x7F, 0x7F, 0x7F, 0xFF}},
                                          {-1, {0x7F, 0x7F, 0x7F, 0x7F}},
                                          {INT_MIN + 300, {0x2C, 0x02, 0x00, 0x00}}}) {
        ChannelProtocol frame;
        ASSERT_TRUE(frame.Create(value, 0)) << value;
        EXPECT_EQ(FrameOf(frame), expected) << value;
        EXPECT_EQ(frame.offset_, frame.GetBufferSize()) << value;
    }
}

// An independent reading of the encoding: value and position of the field at `offset`.
UnPackagedEA ReadIndependently(const Bytes &frame, int64_t offset)
{
    UnPackagedEA ea;
    int64_t at = offset;
    bool isEnd = false;
    for (uint32_t weight = 1; !isEnd && at < offset + 4 && at < static_cast<int64_t>(frame.size()); weight *= 128) {
        const unsigned char byte = frame[static_cast<size_t>(at++)];
        ea.value += byte % 128 * weight;
        isEnd = byte >= 128;
    }
    ea.offset = static_cast<int32_t>(at);
    return ea;
}

TEST(ChannelFrame, DecodesAnyBytesAtAnyOffset)
{
    std::mt19937 random(3);
    for (int round = 0; round < 3000; ++round) {
        const Bytes bytes = RandomBytes(random, 1 + random() % 12);
        ChannelProtocol frame;
        Bytes onTheWay = bytes;
        ASSERT_TRUE(frame.CreateFromBuffer(onTheWay.data(), static_cast<int>(onTheWay.size())));
        onTheWay.assign(onTheWay.size(), 0);  // the frame holds a copy
        std::vector<int> offsets = {INT_MAX, INT_MAX - 1, INT_MAX - 4, 1 << 30};
        for (int offset = 0; offset < frame.GetBufferSize() + 6; ++offset) {
            offsets.push_back(offset);
        }
        for (int offset : offsets) {
            const UnPackagedEA expected = ReadIndependently(bytes, offset);
            UnPackagedEA ea{77, 77};
            ASSERT_TRUE(frame.ReadEA(ea, offset));
            ASSERT_EQ(ea.value, expected.value) << ::testing::PrintToString(bytes) << " at " << offset;
            ASSERT_EQ(ea.offset, expected.offset) << ::testing::PrintToString(bytes) << " at " << offset;
            ASSERT_EQ(frame.offset_, expected.offset);
        }
    }
}

TEST(ChannelFrame, ReadingRefusesWhatItCannotRead)
{
    LogRecorder log;
    UnPackagedEA ea{77, 78};
    ChannelProtocol frame;
    EXPECT_FALSE(frame.ReadEA(ea, 0));
    ASSERT_TRUE(frame.Create(300, 0));
    EXPECT_FALSE(frame.ReadEA(ea, -1));
    EXPECT_FALSE(frame.ReadEA(ea, INT_MIN));
    const LogLine invalid = Refusal("ReadEA", "Invalid para.");
    const LogLine noFrame = Refusal("ReadEA", "protocolBuffer is nullptr or bufferSize < 1, please check.");
    EXPECT_EQ(log.Take(), (LogLines{noFrame, invalid, invalid}));
    EXPECT_TRUE(ea.value == 77 && ea.offset == 78 && frame.offset_ == 2);
}

TEST(ChannelFrame, CreateRefusesBadArguments)
{
    LogRecorder log;
    ChannelProtocol frame;
    for (auto [value, size] : {std::pair{0x10000000, 0}, {INT_MAX, 0}, {5, -1}, {5, INT_MIN}}) {
        EXPECT_FALSE(frame.Create(value, size));
        EXPECT_EQ(log.Take(), (LogLines{Refusal("Create", "Invalid para.")}));
    }
    for (auto [value, border] : {std::pair{5, INT_MAX}, {128, INT_MAX - 1}, {-1, INT_MAX - 3}}) {
        for (int size : {border - 1, border}) {  // only the first is worth asking for memory
            const uint64_t before = AllocationCount();
            const AllocationFault fault(0);
            EXPECT_FALSE(frame.Create(value, size));
            EXPECT_EQ(AllocationCount() - before, size == border ? 0U : 1U) << value << " " << size;
        }
    }
    EXPECT_TRUE(log.Take().empty());
    EXPECT_EQ(frame.GetBuffer(), nullptr);
    EXPECT_EQ(frame.GetBufferSize(), 0);

    unsigned char byte = 0;
    for (auto [data, size] : {std::pair<unsigned char *, int>{nullptr, 1}, {&byte, 0}, {&byte, INT_MIN}}) {
        EXPECT_FALSE(frame.CreateFromBuffer(data, size));
        EXPECT_EQ(log.Take(), (LogLines{Refusal("CreateFromBuffer", "Invalid para.")}));
    }
}

TEST(ChannelFrame, FailedAllocationOrCopyTurnsIntoFalse)
{
    ChannelProtocol frame;
    unsigned char byte = 0x85;
    ASSERT_TRUE(frame.Create(300, 2));
    const std::unique_ptr<unsigned char[]> first(frame.GetBuffer());  // a further frame replaces it, unreleased
    LogRecorder log;
    const auto withoutMemory = [](auto create) {
        const AllocationFault fault(0);
        return create();
    };
    EXPECT_FALSE(withoutMemory([&] { return frame.Create(5, 5); }));
    EXPECT_TRUE(frame.GetBuffer() == nullptr && log.Take().empty());
    frame.protocolBuffer_ = first.get();
    EXPECT_FALSE(withoutMemory([&] { return frame.CreateFromBuffer(&byte, 1); }));
    EXPECT_EQ(frame.GetBuffer(), nullptr);
    g_copyingFails = true;
    EXPECT_FALSE(frame.Create(5, 5));
    EXPECT_FALSE(frame.CreateFromBuffer(&byte, 1));
    g_copyingFails = false;
    EXPECT_EQ(log.Take(),
              (LogLines{Refusal("CreateFromBuffer", "new protocolBuffer failed."), Refusal("Create", "memcpy failed."),
                        Refusal("CreateFromBuffer", "memcpy failed.")}));
    EXPECT_EQ(frame.GetBuffer(), nullptr);
    EXPECT_EQ(frame.bufferSize_, 4);
    EXPECT_EQ(frame.offset_, 2);
    ASSERT_TRUE(frame.CreateFromBuffer(&byte, 1));
    EXPECT_EQ(frame.offset_, 0);
}

TEST(ChannelFrame, WritingRefusesWhatDoesNotFit)
{
    LogRecorder log;
    const LogLine invalid = Refusal("WriteContent", "Invalid para.");
    const LogLine tooLong = Refusal("WriteContent", "datalen Invalid.");
    Bytes content = {1, 2, 3, 4};
    EXPECT_FALSE(ChannelProtocol().WriteContent(content.data(), 1));
    ChannelProtocol frame;
    ASSERT_TRUE(frame.Create(300, 3));
    ASSERT_TRUE(frame.WriteContent(content.data(), 3));
    EXPECT_FALSE(frame.WriteContent(nullptr, 1));
    EXPECT_FALSE(frame.WriteContent(content.data(), 0));
    EXPECT_FALSE(frame.WriteContent(content.data(), INT_MIN));
    EXPECT_FALSE(frame.WriteContent(content.data(), 4));
    EXPECT_FALSE(frame.WriteContent(content.data(), INT_MAX));
    EXPECT_FALSE(frame.WriteContent(frame.GetBuffer() + 1, 3));  // overlaps
    EXPECT_EQ(log.Take(), (LogLines{invalid, invalid, invalid, invalid, tooLong, tooLong,
                                    Refusal("WriteContent", "memcpy failed.")}));
    ASSERT_TRUE(frame.WriteContent(content.data(), 3));
    EXPECT_EQ(FrameOf(frame), (Bytes{0x2C, 0x82, 1, 2, 3}));
    ASSERT_TRUE(frame.WriteContent(content.data() + 1, 2));  // again at the same place
    EXPECT_EQ(FrameOf(frame), (Bytes{0x2C, 0x82, 2, 3, 3}));
    UnPackagedEA ea;
    ASSERT_TRUE(frame.ReadEA(ea, INT_MAX));
    EXPECT_FALSE(frame.WriteContent(content.data(), 1));
    EXPECT_EQ(log.Take(), (LogLines{tooLong}));
}

TEST(ChannelFrame, EndMarkIsBit7)
{
    for (unsigned byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(ChannelProtocol::HasEA(static_cast<unsigned char>(byte)), byte >= 0x80);
    }
}

TEST(ChannelCrc, GivesThePublishedValuesAndLogsThemMasked)
{
    LogRecorder log;
    ChannelProtocol frame;
    for (auto [text, crc, masked] : {std::tuple{std::string("123456789"), 0xBB3DU, "4******3"},
                                     {"hello", 0x34D2U, "1******2"},
                                     {std::string(100, 'a'), 0xF898U, "6******0"},
                                     {"", 0U, "******"}}) {
        EXPECT_EQ(frame.GetCrc(reinterpret_cast<unsigned char *>(text.data()), static_cast<int>(text.size())), crc);
        const std::string message = "ChannelProtocol::GetCrc: getCrc16:";
        EXPECT_EQ(log.Take(), (LogLines{InfoLine("GetCrc", message + masked)}));
    }
    unsigned char byte = 1;
    for (auto [data, length] : {std::pair<unsigned char *, int>{&byte, -1}, {&byte, INT_MIN}, {nullptr, 9}}) {
        EXPECT_EQ(frame.GetCrc(data, length), 0U);
        EXPECT_EQ(log.Take().size(), 1U);
    }
}

TEST(ChannelCrc, AllocatesNothing)
{
    Bytes bytes(100, 'a');
    const uint64_t before = AllocationCount();
    EXPECT_EQ(ChannelProtocol().GetCrc(bytes.data(), 100), 0xF898U);
    EXPECT_EQ(AllocationCount(), before);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
