// SPDX-License-Identifier: Apache-2.0

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
#include "ostra_constants.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/fault.h"
#include "support/session.h"

const char *const SESSIONS =
#include "sessions/utils_test.txt"
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

}  // namespace

int32_t GetLocalNodeDeviceInfo(const char *package, NodeBasicInfo *info)
{
    const bool isZero = std::all_of(info->networkId, std::end(info->networkId), [](char c) { return c == 0; });
    Session::Left(std::string("GetLocalNodeDeviceInfo ") + package + (isZero ? ", zeroed" : ", not zeroed"));
    std::fill(info->networkId, std::end(info->networkId), 'a');  // all of it, without an end
    return g_softBusResult;
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

using Utils = Session;
using Constants = Session;

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
    CALL(GetLocalDeviceNetworkId(networkId));
    SHOW(networkId);
}

TEST_F(Utils, TellsTheWallClock)
{
    using namespace std::chrono;
    const auto before = system_clock::now();
    const system_clock::time_point us{microseconds(GetNowTimeStampUs())};
    const system_clock::time_point ms{milliseconds(GetNowTimeStampMs())};
    EXPECT_TRUE(before - microseconds(1) < us && us - milliseconds(1) < ms && ms <= system_clock::now());
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
    std::vector<std::string> texts = {"+-1", "--1", "0x1", "007", std::string(100, '7'), "-" + std::string(99, '7')};
    for (int byte = 0; byte < 256; ++byte) {
        const std::string character(1, static_cast<char>(byte));
        for (const char *rest : {"", "1", "42"}) {
            texts.insert(texts.end(),
                         {character + rest, rest + character, "-" + character + rest, "1" + character + rest});
        }
    }
    for (const std::string &text : texts) {
        EXPECT_EQ(CheckIsNum(text), std::regex_match(text, pattern)) << ::testing::PrintToString(text);
    }
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
    unlink(path.c_str());
}

TEST_F(Constants, HaveTheirPublishedTexts)
{
    SHOW(OSTRA_PKG_NAME, DH_ACCESS_TOKEN_PERMISSION, DH_SUCCESS_TEXT, DH_FAILED_TEXT, OSTRA_ADAPTER_INIT_TEXT,
         SEPARATOR, NUMBER_PATTERN, ISOMERISM_CHANGE, ISOMERISM_EVENT, ISOMERISM_CONNECT, ISOMERISM_DISCONNECT,
         DEV_ID_KEY, OSTRA_JSON_SUCCESS, OSTRA_JSON_CREATE_FAILED, OSTRA_JSON_ROOT_MISSING, OSTRA_JSON_STEP_FAILED,
         OSTRA_JSON_INPUT_INVALID);
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
