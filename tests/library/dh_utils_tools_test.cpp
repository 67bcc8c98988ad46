// SPDX-License-Identifier: Apache-2.0

#include "dh_utils_tools.h"

#include <unistd.h>

#include <algorithm>
#include <bitset>
#include <chrono>
#include <cstdarg>
#include <iterator>
#include <regex>
#include <set>

#include "ostra_constants.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/fault.h"
#include "support/golden_test.h"

#include "dh_utils_tools_test.txt"

int sprintf_s(char *destination, size_t size, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(destination, size, format, arguments);
    va_end(arguments);
    return Fault::ShouldFail() ? -1 : length;
}

std::string g_networkId;

int32_t GetLocalNodeDeviceInfo(const char *package, NodeBasicInfo *info)
{
    EXPECT_EQ(package, OHOS::DistributedHardware::OstraAdapter::OSTRA_PKG_NAME);
    EXPECT_EQ(std::count(info->networkId, std::end(info->networkId), 0), NETWORK_ID_BUF_LEN);
    g_networkId.copy(info->networkId, NETWORK_ID_BUF_LEN);
    std::fill(std::begin(info->deviceName), std::end(info->deviceName), 'x');
    return g_networkId.empty() ? -426 : 0;
}

using namespace OHOS::DistributedHardware::OstraAdapter;

static_assert(!std::is_copy_constructible_v<DHData> && !std::is_copy_assignable_v<DHData>);

using UtilsTest = GoldenTest;
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
    EXPECT_EQ(GetAnonyInt32(7) + " " + GetAnonyInt32(12) + " " + GetAnonyInt32(INT32_MIN), "* 1* -**********");
    EachFault([] { RecordLine("8080: " + GetAnonyInt32(8080)); });
}

// Each bit except the six constant ones is set in about half of the identifiers, and no two bits are always equal.
TEST_F(UtilsTest, ReturnsRandomIdentifiers)
{
    constexpr size_t count = 400;
    const std::regex pattern("[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}");
    std::vector<std::bitset<count>> bits(128);
    for (size_t i = 0; i < count; ++i) {
        const std::string id = GetRandomID();
        ASSERT_TRUE(std::regex_match(id, pattern)) << id;
        for (size_t bit = 0; bit < bits.size(); ++bit) {
            bits[bit][i] = (std::stoi(id.substr(bit / 4, 1), nullptr, 16) >> bit % 4 & 1) != 0;
        }
    }
    std::set<std::string> distinct;
    for (const std::bitset<count> &bit : bits) {
        EXPECT_TRUE(bit.none() || bit.all() || (bit.count() > 100 && bit.count() < 300)) << bit.count();
        distinct.insert(bit.to_string());
    }
    EXPECT_EQ(distinct.size(), 128U - 6 + 2);
}

TEST_F(UtilsTest, ReturnsTheNetworkIdFromSoftBus)
{
    std::string networkId = "before";
    g_networkId = "";
    EXPECT_EQ(CALL(GetLocalDeviceNetworkId(networkId)), -426);
    EXPECT_EQ(networkId, "before");
    for (const size_t length : {size_t{5}, size_t{NETWORK_ID_BUF_LEN}}) {  // the longest is not null-terminated
        g_networkId.assign(length, 'a');
        EXPECT_EQ(CALL(GetLocalDeviceNetworkId(networkId)), 0);
        EXPECT_EQ(networkId, g_networkId);
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
    CALL(OSTRAIntToByte(0, bytes.data(), 8));
    CALL(OSTRAIntToByte(0, bytes.data(), 3));
    CALL(OSTRAIntToByte(0, nullptr, 4));
    OSTRAIntToByte(0x12F486F8, bytes.data() + 1, 4);
    EXPECT_EQ(bytes, (std::vector<uint8_t>{0xEE, 0x12, 0xF4, 0x86, 0xF8, 0xEE, 0xEE, 0xEE}));
}

TEST_F(UtilsTest, CheckIsNumMatchesNumberPattern)
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
    uint8_t data[] = {'a', '\r', 0, 0xFF};
    CALL(SaveFile(path, data, -1));
    CALL(SaveFile(path, nullptr, 1));
    CALL(SaveFile("/no/such/directory", data, 1));
    CALL(SaveFile("/dev/full", data, 3));
    EXPECT_EQ(ReadFile(path), "no file");
    SaveFile(path, nullptr, 0);
    EXPECT_EQ(ReadFile(path), "");
    SaveFile(path, data, 3);
    SaveFile(path, data + 3, 1);
    EXPECT_EQ(ReadFile(path), std::string("a\r\0\xFF", 4));
    unlink(path.c_str());
}

TEST(DataTest, AcceptsRangesInsideTheCapacity)
{
    for (const size_t capacity : {size_t{0}, size_t{10}}) {
        DHData data(capacity);
        const uint8_t *const begin = data.Data();
        ASSERT_EQ(begin == nullptr, capacity == 0);
        const size_t allocated = capacity == 0 ? 0 : capacity + 1;  // null-terminated
        EXPECT_EQ(std::string(begin, begin + allocated), std::string(allocated, '\0'));
        std::pair<uint64_t, uint64_t> current(0, capacity);
        for (size_t i = 0; i < 13 * 13; ++i) {
            EXPECT_EQ(std::pair(data.Offset(), data.Size()), current);
            EXPECT_EQ(data.Data(), begin + current.first);
            const std::pair<uint64_t, uint64_t> range(i / 13, i % 13);
            const bool fits = range.first + range.second <= capacity;
            EXPECT_EQ(data.SetRange(i / 13, i % 13), fits ? 0 : -1) << i;
            current = fits ? range : current;
        }
        EXPECT_EQ(data.SetRange(SIZE_MAX, 1), -1);
        EXPECT_EQ(data.SetRange(1, SIZE_MAX), capacity == 0 ? -1 : 0) << "the sum wraps around to 0";
        EXPECT_EQ(data.Capacity(), capacity);
    }
}

TEST(DataTest, AllocatesAndReleasesItsBuffer)
{
    EXPECT_THROW(DHData{SIZE_MAX}, std::bad_alloc);
    EXPECT_THROW(DHData{SIZE_MAX - 1}, std::bad_alloc);
    const int64_t liveBlocks = LiveBlocks();
    static_cast<void>(DHData(10));
    EXPECT_EQ(LiveBlocks(), liveBlocks);
}

const DHConnectInfo CONNECTION = {
    "source-network-id-0001", "sink", "10.0.0.1", "192.168.1.10", "AA:BB", "info", {1, 2}, 8080, "param"};

TEST_F(ConnectInfoTest, StringMasksItsFields)
{
    RecordLine(DHConnectInfo().String());
    RecordLine(CONNECTION.String());
}

TEST_F(ConnectInfoTest, ComparesAddressesAndPort)
{
    DHConnectInfo other = CONNECTION;
    other.extraInfo = other.extraParam = "other";
    other.extraData.clear();
    EXPECT_TRUE(CONNECTION == other && !(CONNECTION < other) && !(other < CONNECTION));
    other.sourceNetworkId += std::exchange(other.sinkNetworkId, "");  // the same key, split differently
    EXPECT_TRUE(!(CONNECTION == other) && !(CONNECTION < other) && !(other < CONNECTION));
}

TEST_F(ConnectInfoTest, OrdersByConcatenatedBytes)
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

TEST_F(ConnectInfoTest, DeviceCopiesItsArguments)
{
    DHConnectInfo info = CONNECTION;
    const DHConnectDevice device(-7, DHBusinessId{0xFFFFFFFF}, DHChannelType{0xFFFFFFFE}, info);
    info = {};
    EXPECT_EQ(device.sessionId, -7);
    EXPECT_EQ(device.businessId, DHBusinessId{0xFFFFFFFF});
    EXPECT_EQ(device.channelType, DHChannelType{0xFFFFFFFE});
    EXPECT_TRUE(device.connectInfo == CONNECTION);
}
