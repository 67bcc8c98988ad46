// SPDX-License-Identifier: Apache-2.0

#include "dh_utils_tools.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstring>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "ostra_constants.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/fault.h"
#include "support/golden_test.h"

const char *const GOLDEN_FILE =
#include "dh_utils_tools_test.txt"
    ;

// Fails only for single numbers: the platform's log prints, too.
int sprintf_s(char *destination, size_t size, const char *format, ...)
{
    if (std::strcmp(format, "%d") == 0 && Fault::Strikes()) {
        return -1;
    }
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(destination, size, format, arguments);
    va_end(arguments);
    return length;
}

namespace {

int32_t g_softBusResult = 0;
size_t g_networkIdLength = NETWORK_ID_BUF_LEN;  // not null-terminated

}  // namespace

int32_t GetLocalNodeDeviceInfo(const char *package, NodeBasicInfo *info)
{
    const bool isZero = std::all_of(info->networkId, std::end(info->networkId), [](char c) { return c == 0; });
    GoldenTest::Record(std::string("GetLocalNodeDeviceInfo ") + package + (isZero ? ", zeroed" : ", not zeroed"));
    std::fill_n(info->networkId, g_networkIdLength, 'a');
    return g_softBusResult;
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

static_assert(!std::is_copy_constructible_v<DHData> && !std::is_copy_assignable_v<DHData>);
static_assert(sizeof(DHBusinessId) == 4 && sizeof(DHChannelType) == 4);

using UtilsTest = GoldenTest;
using DataTest = GoldenTest;
using ConnectInfoTest = GoldenTest;

TEST_F(UtilsTest, MasksStrings)
{
    std::string value;
    for (size_t length = 0; length <= 70; value += static_cast<char>('A' + length), ++length) {
        const size_t kept = length < 3 ? 0 : length < 21 ? 1 : 4;
        EXPECT_EQ(GetAnonyString(value), value.substr(0, kept) + "******" + value.substr(length - kept));
    }
}

TEST_F(UtilsTest, MasksNumbers)
{
    EXPECT_EQ(GetAnonyInt32(0), "*");
    EXPECT_EQ(GetAnonyInt32(7), "*");
    EXPECT_EQ(GetAnonyInt32(-5), "-*");
    EXPECT_EQ(GetAnonyInt32(10), "1*");
    EXPECT_EQ(GetAnonyInt32(INT32_MIN), "-**********");
    Fault::Arm(0);
    EXPECT_EQ(GetAnonyInt32(8080), "");
    EXPECT_TRUE(Fault::Disarm());
}

TEST_F(UtilsTest, ReturnsRandomIdentifiers)
{
    const std::regex pattern("[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}");
    std::vector<std::string> columns(128);  // one bit of all identifiers each
    for (int count = 0; count < 400; ++count) {
        const std::string id = GetRandomID();
        ASSERT_TRUE(std::regex_match(id, pattern)) << id;
        for (size_t bit = 0; bit < columns.size(); ++bit) {
            const int digit = std::stoi(id.substr(bit / 4, 1), nullptr, 16);
            columns[bit] += static_cast<char>(digit >> (bit % 4) & 1);
        }
    }
    // Six bits are constant. Each other is set half the time, and differs from all before it.
    std::set<std::string> distinct;
    for (std::string &column : columns) {
        const auto ones = std::count(column.begin(), column.end(), 1);
        EXPECT_TRUE(ones % 400 == 0 || (ones > 100 && ones < 300)) << ones;
        const char first = column[0];
        std::for_each(column.begin(), column.end(), [first](char &bit) { bit = static_cast<char>(bit ^ first); });
        distinct.insert(column);
    }
    EXPECT_EQ(distinct.size(), 128U - 6 + 1);
}

TEST_F(UtilsTest, FetchesTheNetworkIdFromTheSoftBus)
{
    std::string networkId = "before";
    g_softBusResult = -426;
    EXPECT_EQ(CALL(GetLocalDeviceNetworkId(networkId)), -426);
    EXPECT_EQ(networkId, "before");
    g_softBusResult = 0;
    for (const size_t length : {size_t{NETWORK_ID_BUF_LEN}, size_t{5}}) {
        g_networkIdLength = length;
        EXPECT_EQ(CALL(GetLocalDeviceNetworkId(networkId)), 0);
        EXPECT_EQ(networkId, std::string(length, 'a'));
    }
}

TEST_F(UtilsTest, ReadsTheWallClock)
{
    using namespace std::chrono;
    const auto before = system_clock::now();
    const system_clock::time_point us{microseconds(GetNowTimeStampUs())};
    const system_clock::time_point ms{milliseconds(GetNowTimeStampMs())};
    EXPECT_LT(before - microseconds(1), us);
    EXPECT_LT(us - milliseconds(1), ms);
    EXPECT_LE(ms, system_clock::now());
}

TEST_F(UtilsTest, WritesFourBigEndianBytes)
{
    std::vector<uint8_t> bytes(8, 0xEE);
    CALL(OSTRAIntToByte(0x12345678, bytes.data(), 8));
    CALL(OSTRAIntToByte(0x12345678, bytes.data(), 3));
    CALL(OSTRAIntToByte(0x12345678, nullptr, 4));
    EXPECT_EQ(bytes, std::vector<uint8_t>(8, 0xEE));
    OSTRAIntToByte(0x12F486F8, bytes.data(), 4);
    EXPECT_EQ(bytes, (std::vector<uint8_t>{0x12, 0xF4, 0x86, 0xF8, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST_F(UtilsTest, AcceptsTheNumbersOfThePatternOnly)
{
    const std::regex pattern(NUMBER_PATTERN);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string character(1, static_cast<char>(byte));
        for (const std::string &value : {character, character + "1", "1" + character, "-" + character + "2"}) {
            EXPECT_EQ(CheckIsNum(value), std::regex_match(value, pattern)) << ::testing::PrintToString(value);
        }
    }
    EXPECT_TRUE(CheckIsNum(std::string(100, '7')));
    EXPECT_FALSE(CALL(CheckIsNum(std::string(101, '7'))));
    EXPECT_FALSE(CALL(CheckIsNum("")));
}

TEST_F(UtilsTest, AppendsToFilesAndRejectsInvalidArguments)
{
    const std::string path = "/data/local/tmp/save_file_" + std::to_string(getpid());
    Hide(path, "PATH");
    const auto content = [&path] {
        std::ifstream file(path, std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "no file";
    };
    uint8_t data[] = {'a', '\r', 0, 0xFF};
    CALL(SaveFile(path, data, -1));
    CALL(SaveFile(path, nullptr, 1));
    EXPECT_EQ(content(), "no file");
    SaveFile(path, nullptr, 0);
    EXPECT_EQ(content(), "");
    CALL(SaveFile(path + "/no/such/directory", data, 1));
    SaveFile(path, data, 3);
    SaveFile(path, data + 3, 1);
    SaveFile(path, nullptr, 0);
    EXPECT_EQ(content(), std::string("a\r\0\xFF", 4));
    CALL(SaveFile("/dev/full", data, 3));
    unlink(path.c_str());
}

TEST_F(DataTest, StartsZeroedAndNullTerminated)
{
    const DHData data(30);
    EXPECT_EQ(data.Capacity(), 30u);
    EXPECT_EQ(data.Offset(), 0u);
    EXPECT_EQ(data.Size(), 30u);
    EXPECT_EQ(std::count(data.Data(), data.Data() + 31, 0), 31);
    DHData empty(0);
    EXPECT_EQ(empty.Capacity() + empty.Size(), 0u);
    EXPECT_EQ(empty.Data(), nullptr);
    EXPECT_EQ(empty.SetRange(0, 0), 0);
    EXPECT_EQ(empty.SetRange(1, 0), -1);
}

TEST_F(DataTest, AcceptsRangesInsideTheCapacityOnly)
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
    EXPECT_EQ(data.SetRange(SIZE_MAX, 1), -1);
    EXPECT_EQ(data.SetRange(1, SIZE_MAX), 0) << "the sum wraps around to 0";
    EXPECT_EQ(data.Capacity(), 10u);
    EXPECT_EQ(data.Offset(), 1u);
}

TEST_F(DataTest, ThrowsBadAlloc)
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

TEST_F(ConnectInfoTest, IsPrintedMasked)
{
    Record(DHConnectInfo().String());
    Record(MakeConnection().String());
}

TEST_F(ConnectInfoTest, IsIdentifiedByAddressesAndPort)
{
    const DHConnectInfo info = MakeConnection();
    DHConnectInfo other = info;
    other.extraInfo = other.extraParam = "other";
    other.extraData.clear();
    EXPECT_TRUE(info == other && !(info < other) && !(other < info));
    other.sourceNetworkId += std::exchange(other.sinkNetworkId, "");  // the same key, split differently
    EXPECT_TRUE(!(info == other) && !(info < other) && !(other < info));
}

TEST_F(ConnectInfoTest, OrdersByTheBytesOfItsKey)
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
            EXPECT_EQ(left == right, &left == &right) << left.String() << " and " << right.String();
        }
    }
}

TEST_F(ConnectInfoTest, IsCopiedWholeIntoADevice)
{
    DHConnectInfo info = MakeConnection();
    const auto business = static_cast<DHBusinessId>(0xFFFFFFFF);
    const auto channel = static_cast<DHChannelType>(0xFFFFFFFE);
    const DHConnectDevice device(-7, business, channel, info);
    info = {};
    EXPECT_EQ(device.sessionId, -7);
    EXPECT_EQ(device.businessId, business);
    EXPECT_EQ(device.channelType, channel);
    const DHConnectInfo &copy = device.connectInfo;
    EXPECT_TRUE(copy == MakeConnection());
    EXPECT_EQ(copy.extraInfo + copy.extraParam, "infoparam");
    EXPECT_EQ(copy.extraData, (std::vector<uint8_t>{1, 2}));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
