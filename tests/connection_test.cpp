// SPDX-License-Identifier: Apache-2.0

#include <cstdint>
#include <new>

#include "dh_utils_tools.h"
#include "support/fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/connection_test.txt"
    ;

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

static_assert(!std::is_copy_constructible_v<DHData> && !std::is_copy_assignable_v<DHData>);
static_assert(sizeof(DHBusinessId) == 4 && sizeof(DHChannelType) == 4);

using Data = Session;
using Connection = Session;

TEST_F(Data, StartsZeroedWithAZeroBehindIt)
{
    const DHData data(30);
    const std::string bytes = {data.Data(), data.Data() + 31};
    SHOW(data.Capacity(), data.Offset(), data.Size(), bytes);
    DHData empty(0);
    SHOW(empty.Capacity(), empty.Offset(), empty.Size(), empty.Data());
    CALL(empty.SetRange(0, 0));
    CALL(empty.SetRange(1, 0));
}

TEST_F(Data, TakesExactlyTheRangesInsideTheCapacity)
{
    DHData data(10);
    const uint8_t *begin = data.Data();
    for (size_t offset = 0; offset <= 12; ++offset) {
        for (size_t size = 0; size <= 12; ++size) {
            ASSERT_EQ(data.SetRange(1, 2), 0);
            const bool fits = offset + size <= 10;
            ASSERT_EQ(data.SetRange(offset, size), fits ? 0 : -1) << offset << " " << size;
            ASSERT_EQ(data.Offset(), fits ? offset : 1);
            ASSERT_EQ(data.Size(), fits ? size : 2);
            ASSERT_EQ(data.Data(), begin + data.Offset());
        }
    }
    CALL(data.SetRange(SIZE_MAX, 1));
    CALL(data.SetRange(1, SIZE_MAX));  // the sum wraps around to 0
    SHOW(data.Capacity(), data.Offset());
}

TEST_F(Data, RaisesOutOfMemoryForWhatCannotBeHad)
{
    EXPECT_THROW(DHData{SIZE_MAX}, std::bad_alloc);
    EXPECT_THROW(DHData{SIZE_MAX - 1}, std::bad_alloc);
    Fault::Arm(0);
    EXPECT_THROW(DHData{10}, std::bad_alloc);
    EXPECT_TRUE(Fault::Disarm());
}

DHConnectInfo MakeConnection()
{
    return {"source-network-id-0001", "sink", "10.0.0.1", "192.168.1.10", "AA:BB", "info", {1, 2}, 8080, "param"};
}

TEST_F(Connection, IsPrintedMasked)
{
    CALL(DHConnectInfo().String());
    CALL(MakeConnection().String());
}

TEST_F(Connection, IsKnownByItsAddressesAndPort)
{
    const DHConnectInfo info = MakeConnection();
    const auto compare = [&](const std::string &changed, const DHConnectInfo &other) {
        SHOW(changed, info == other, info < other, other < info);
    };
    const auto changed = [&](std::string DHConnectInfo::*field) {
        DHConnectInfo other = info;
        other.*field += '\0';
        return other;
    };
    compare("sourceNetworkId", changed(&DHConnectInfo::sourceNetworkId));
    compare("sinkNetworkId", changed(&DHConnectInfo::sinkNetworkId));
    compare("sourceIp", changed(&DHConnectInfo::sourceIp));
    compare("sinkIp", changed(&DHConnectInfo::sinkIp));
    compare("sinkBrMac", changed(&DHConnectInfo::sinkBrMac));
    compare("extraInfo", changed(&DHConnectInfo::extraInfo));
    compare("extraParam", changed(&DHConnectInfo::extraParam));
    DHConnectInfo other = info;
    other.extraData.clear();
    compare("extraData", other);
    other.port = 9;  // "9" is behind "8080"
    compare("port", other);
    other = info;
    other.sourceNetworkId += other.sinkNetworkId;
    other.sinkNetworkId.clear();
    compare("the same text cut elsewhere", other);
}

TEST_F(Connection, OrdersByTheBytesOfItsKey)
{
    // sourceNetworkId, sinkNetworkId, sourceIp, sinkIp, sinkBrMac, extraInfo, extraData, port, extraParam
    const DHConnectInfo ascending[] = {
        {"", "", "", "", "", "", {}, -1, ""},     {"", "", "", "", "", "", {}, 10, ""},
        {"", "", "", "", "", "", {}, 9, ""},      {"a", "b", "c", "d", "e", "", {}, 1, ""},
        {"a", "b", "c", "d", "f", "", {}, 1, ""}, {"a", "b", "c", "e", "e", "", {}, 1, ""},
        {"a", "b", "d", "d", "e", "", {}, 1, ""}, {"a", "c", "c", "d", "e", "", {}, 1, ""},
        {"b", "b", "c", "d", "e", "", {}, 1, ""}, {"\xE9", "", "", "", "", "", {}, 1, ""}};
    for (const DHConnectInfo &left : ascending) {
        for (const DHConnectInfo &right : ascending) {
            EXPECT_EQ(left < right, &left < &right) << left.String() << " and " << right.String();
        }
    }
}

TEST_F(Connection, IsCopiedWholeIntoADevice)
{
    DHConnectInfo info = MakeConnection();
    const DHConnectDevice device(-7, static_cast<DHBusinessId>(0xFFFFFFFF), static_cast<DHChannelType>(3), info);
    info = {};
    SHOW(info.port);
    SHOW(device.sessionId, static_cast<uint32_t>(device.businessId), static_cast<uint32_t>(device.channelType));
    const DHConnectInfo &copy = device.connectInfo;
    SHOW(copy == MakeConnection(), copy.extraInfo, copy.extraParam, copy.extraData);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
