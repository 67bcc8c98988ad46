// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <new>
#include <type_traits>

#include "dh_utils_tools.h"
#include "support/allocation_fault.h"

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

static_assert(!std::is_copy_constructible_v<DHData> && !std::is_copy_assignable_v<DHData>);
static_assert(sizeof(DHBusinessId) == 4 && sizeof(DHChannelType) == 4);

TEST(Data, StartsZeroedWithAZeroBehindIt)
{
    for (size_t capacity : {1U, 10U, 4096U}) {
        DHData data(capacity);
        EXPECT_EQ((std::vector<uint64_t>{data.Capacity(), data.Size(), data.Offset()}),
                  (std::vector<uint64_t>{capacity, capacity, 0}));
        EXPECT_EQ(std::string(data.Data(), data.Data() + capacity + 1), std::string(capacity + 1, '\0'));
    }
    const uint64_t before = AllocationCount();
    DHData empty(0);
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_EQ(empty.Data(), nullptr);
    EXPECT_EQ(empty.Capacity() + empty.Size() + empty.Offset(), 0U);
}

TEST(Data, TakesExactlyTheRangesInsideTheCapacity)
{
    for (size_t capacity : {0U, 1U, 10U}) {
        DHData data(capacity);
        uint8_t *begin = data.data_;
        for (size_t offset = 0; offset <= capacity + 2; ++offset) {
            for (size_t size = 0; size <= capacity + 2; ++size) {
                ASSERT_EQ(data.SetRange(0, capacity), 0);
                const bool fits = offset <= capacity && size <= capacity - offset;
                ASSERT_EQ(data.SetRange(offset, size), fits ? 0 : -1) << offset << " " << size << " of " << capacity;
                ASSERT_EQ(data.Offset(), fits ? offset : 0);
                ASSERT_EQ(data.Size(), fits ? size : capacity);
                ASSERT_EQ(data.Data(), begin + data.Offset());
            }
        }
    }
    DHData data(10);
    EXPECT_EQ(data.SetRange(std::numeric_limits<size_t>::max(), 1), -1);
    EXPECT_EQ(data.SetRange(1, std::numeric_limits<size_t>::max()), 0);  // the sum wraps around to 0
}

TEST(Data, RaisesOutOfMemoryForWhatCannotBeHad)
{
    EXPECT_THROW(DHData{std::numeric_limits<size_t>::max()}, std::bad_alloc);
    EXPECT_THROW(DHData{std::numeric_limits<size_t>::max() - 1}, std::bad_alloc);
    const AllocationFault fault(0);
    EXPECT_THROW(DHData{10}, std::bad_alloc);
}

DHConnectInfo MakeConnection()
{
    return {"0123456789abcdef0123456789abcdef",
            "fedcba98765432100",
            "10.0.0.7",
            "192.168.1.10",
            "00:00:5E:00:53:01",
            "info",
            {1, 2, 3},
            8080,
            "param"};
}

TEST(ConnectInfo, PrintsEveryIdentifyingFieldMasked)
{
    EXPECT_EQ(MakeConnection().String(),
              "sourceNetworId: 0123******cdef sinkNetworkId: f******0 sourceIp: 1******7 sinkIp: 1******0 "
              "sinkBrMac: 0******1 port: 8***");
}

TEST(ConnectInfo, IsItsAddressesAndPort)
{
    const DHConnectInfo info = MakeConnection();
    using TextField = std::string DHConnectInfo::*;
    for (TextField field : {&DHConnectInfo::sourceNetworkId, &DHConnectInfo::sinkNetworkId, &DHConnectInfo::sourceIp,
                            &DHConnectInfo::sinkIp, &DHConnectInfo::sinkBrMac}) {
        DHConnectInfo other = info;
        other.*field += '\0';
        EXPECT_FALSE(info == other);
    }
    DHConnectInfo other = info;
    other.extraInfo = other.extraParam = "other";
    other.extraData.clear();
    EXPECT_TRUE(info == other);
    EXPECT_FALSE(info < other || other < info);
    other.port = -8080;
    EXPECT_FALSE(info == other);
}

TEST(ConnectInfo, OrdersByTheJoinedKey)
{
    // sourceNetworkId, sinkNetworkId, sourceIp, sinkIp, sinkBrMac, port
    const DHConnectInfo ascending[] = {
        {"", "", "", "", "", "", {}, -1, ""},     {"", "", "", "", "", "", {}, 10, ""},
        {"", "", "", "", "", "", {}, 9, ""},      {"a", "b", "c", "d", "e", "", {}, 1, ""},
        {"a", "b", "c", "d", "f", "", {}, 1, ""}, {"a", "b", "c", "e", "e", "", {}, 1, ""},
        {"a", "b", "d", "d", "e", "", {}, 1, ""}, {"a", "c", "c", "d", "e", "", {}, 1, ""},
        {"b", "b", "c", "d", "e", "", {}, 1, ""}, {"\xE9", "", "", "", "", "", {}, 1, ""}};
    for (size_t i = 0; i < std::size(ascending); ++i) {
        for (size_t j = 0; j < std::size(ascending); ++j) {
            EXPECT_EQ(ascending[i] < ascending[j], i < j) << i << " " << j;
        }
    }
    const DHConnectInfo split = {"ab", "", "cd", "e", "", "", {}, 1, ""};  // the text of ascending[3], cut elsewhere
    EXPECT_FALSE(split < ascending[3] || ascending[3] < split || split == ascending[3]);
}

TEST(ConnectDevice, KeepsAWholeCopyOfTheConnection)
{
    DHConnectInfo info = MakeConnection();
    const DHConnectDevice device(-7, static_cast<DHBusinessId>(0xFFFFFFFF), static_cast<DHChannelType>(3), info);
    info.sinkIp = "changed";
    EXPECT_EQ(device.sessionId, -7);
    EXPECT_EQ(static_cast<uint32_t>(device.businessId), 0xFFFFFFFF);
    EXPECT_EQ(static_cast<uint32_t>(device.channelType), 3U);
    EXPECT_TRUE(device.connectInfo == MakeConnection());
    EXPECT_EQ(device.connectInfo.extraInfo + device.connectInfo.extraParam, "infoparam");
    EXPECT_EQ(device.connectInfo.extraData.size(), 3U);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
