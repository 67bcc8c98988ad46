// SPDX-License-Identifier: Apache-2.0
//
// What all parts of the library use: tools, connections and the log.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstring>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "dh_utils_tools.h"
#include "ostra_adapter_log.h"
#include "ostra_constants.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "common_test.txt"
    ;

// Fails only for numbers on their own: the platform's log prints, too.
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
size_t g_networkIdLength = NETWORK_ID_BUF_LEN;  // all of it, without an end

}  // namespace

int32_t GetLocalNodeDeviceInfo(const char *package, NodeBasicInfo *info)
{
    const bool isZero = std::all_of(info->networkId, std::end(info->networkId), [](char c) { return c == 0; });
    Session::Left(std::string("GetLocalNodeDeviceInfo ") + package + (isZero ? ", zeroed" : ", not zeroed"));
    std::fill_n(info->networkId, g_networkIdLength, 'a');
    return g_softBusResult;
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

static_assert(!std::is_copy_constructible_v<DHData> && !std::is_copy_assignable_v<DHData>);
static_assert(sizeof(DHBusinessId) == 4 && sizeof(DHChannelType) == 4);

using Utils = Session;
using Data = Session;
using Connection = Session;
using Log = Session;

TEST_F(Utils, MasksTexts)
{
    std::string value;
    for (size_t length = 0; length <= 70; value += static_cast<char>('A' + length), ++length) {
        const size_t kept = length < 3 ? 0 : length < 21 ? 1 : 4;
        EXPECT_EQ(GetAnonyString(value), value.substr(0, kept) + "******" + value.substr(length - kept));
    }
}

TEST_F(Utils, MasksNumbers)
{
    SHOW(GetAnonyInt32(0), GetAnonyInt32(7), GetAnonyInt32(-5), GetAnonyInt32(10), GetAnonyInt32(INT32_MIN));
    EachFault([this] { SHOW(GetAnonyInt32(8080)); });
}

TEST_F(Utils, MakesRandomIdentifiers)
{
    const std::regex pattern("[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}");
    std::vector<std::string> columns(128);  // each bit of all identifiers
    for (int count = 0; count < 400; ++count) {
        const std::string id = GetRandomID();
        ASSERT_TRUE(std::regex_match(id, pattern)) << id;
        for (size_t bit = 0; bit < columns.size(); ++bit) {
            const int digit = std::stoi(id.substr(bit / 4, 1), nullptr, 16);
            columns[bit] += static_cast<char>(digit >> (bit % 4) & 1);
        }
    }
    // Six bits never change. Each other is set half the time, and tells nothing of those before it.
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

TEST_F(Utils, AsksTheSoftBusForTheNetworkId)
{
    std::string networkId = "before";
    g_softBusResult = -426;
    CALL(GetLocalDeviceNetworkId(networkId));
    SHOW(networkId);
    g_softBusResult = 0;
    for (const size_t length : {size_t{NETWORK_ID_BUF_LEN}, size_t{5}}) {
        g_networkIdLength = length;
        CALL(GetLocalDeviceNetworkId(networkId));
        SHOW(networkId);
    }
}

TEST_F(Utils, TellsTheWallClock)
{
    using namespace std::chrono;
    const auto before = system_clock::now();
    const system_clock::time_point us{microseconds(GetNowTimeStampUs())};
    const system_clock::time_point ms{milliseconds(GetNowTimeStampMs())};
    EXPECT_LT(before - microseconds(1), us);
    EXPECT_LT(us - milliseconds(1), ms);
    EXPECT_LE(ms, system_clock::now());
}

TEST_F(Utils, WritesBigEndianBytes)
{
    std::vector<uint8_t> bytes(8, '.');
    CALL(OSTRAIntToByte(0x12345678, bytes.data(), 8));
    CALL(OSTRAIntToByte(0x12345678, bytes.data(), 3));
    CALL(OSTRAIntToByte(0x12345678, nullptr, 4));
    SHOW(bytes);
    CALL(OSTRAIntToByte(0x12F486F8, bytes.data(), 4));
    SHOW(bytes);
}

TEST_F(Utils, AcceptsExactlyTheNumbersOfThePattern)
{
    const std::regex pattern(NUMBER_PATTERN);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string character(1, static_cast<char>(byte));
        for (const std::string &text : {character, character + "1", "1" + character, "-" + character + "2"}) {
            EXPECT_EQ(CheckIsNum(text), std::regex_match(text, pattern)) << ::testing::PrintToString(text);
        }
    }
    CALL(CheckIsNum(std::string(100, '7')));
    CALL(CheckIsNum(std::string(101, '7')));
    CALL(CheckIsNum(""));
}

TEST_F(Utils, SavesByAppendingAndRefusesBadInput)
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
    SHOW(content());
    CALL(SaveFile(path, nullptr, 0));
    SHOW(content());
    CALL(SaveFile(path + "/no/such/folder", data, 1));
    CALL(SaveFile(path, data, 3));
    CALL(SaveFile(path, data + 3, 1));
    CALL(SaveFile(path, nullptr, 0));
    SHOW(content());
    CALL(SaveFile("/dev/full", data, 3));
    unlink(path.c_str());
}

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

TEST_F(Connection, IsKnownByItsAddressesAndPortAlone)
{
    const DHConnectInfo info = MakeConnection();
    DHConnectInfo other = info;
    other.extraInfo = other.extraParam = "other";
    other.extraData.clear();
    SHOW(info == other, info < other, other < info);
    other.sourceNetworkId += std::exchange(other.sinkNetworkId, "");  // the same text cut elsewhere
    SHOW(info == other, info < other, other < info);
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
            EXPECT_EQ(left == right, &left == &right) << left.String() << " and " << right.String();
        }
    }
}

TEST_F(Connection, IsCopiedWholeIntoADevice)
{
    DHConnectInfo info = MakeConnection();
    const DHConnectDevice device(-7, static_cast<DHBusinessId>(0xFFFFFFFF), static_cast<DHChannelType>(0xFFFFFFFE),
                                 info);
    info = {};
    SHOW(info.port);
    SHOW(device.sessionId, static_cast<uint32_t>(device.businessId), static_cast<uint32_t>(device.channelType));
    const DHConnectInfo &copy = device.connectInfo;
    SHOW(copy == MakeConnection(), copy.extraInfo, copy.extraParam, copy.extraData);
}

TEST_F(Log, PassesEachLevelOn)
{
    for (int level = -1; level <= 4; ++level) {
        CALL(DHLog(static_cast<DHLogLevel>(level), "level %d of %s", level, "%{private}s"));
    }
}

TEST_F(Log, ReplacesWhatIsTooLongAsAWhole)
{
    const char *const noFormat = nullptr;
    CALL(DHLog(DH_LOG_ERROR, noFormat));
    CALL(DHLog(DH_LOG_WARN, "%s", std::string(4095, 'x').c_str()));
    CALL(DHLog(DH_LOG_WARN, "%s", std::string(4096, 'x').c_str()));
}

class Device {
public:
    Device()
    {
        OSTRA_LOGI("create ");
    }

    ~Device()
    {
        OSTRA_LOGW("delete");
    }

    template <typename Port>
    void Open(Port port)
    {
        OSTRA_LOGE("100%% of port %d, %s", port, "%s");
        OSTRA_LOGD("open");
    }
};

TEST_F(Log, NamesTheCallingFunction)
{
    CALL(Device().Open(5));
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
