// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdarg>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "dh_utils_tools.h"
#include "ostra_constants.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/log_recorder.h"

namespace {

// What the next calls of the functions below are to give, in place of the host platform's answers.
bool g_printingFails = false;
int32_t g_softBusResult = 0;
std::string g_softBusPackage;
bool g_softBusRecordIsZero = false;

}  // namespace

int sprintf_s(char *destination, size_t size, const char *format, ...)
{
    if (g_printingFails) {
        return -1;
    }
    va_list arguments;
    va_start(arguments, format);
    const int length = vsprintf_s(destination, size, format, arguments);
    va_end(arguments);
    return length;
}

int32_t GetLocalNodeDeviceInfo(const char *package, NodeBasicInfo *info)
{
    g_softBusPackage = package;
    g_softBusRecordIsZero =
        std::all_of(std::begin(info->networkId), std::end(info->networkId), [](char c) { return c == 0; });
    std::fill(std::begin(info->networkId), std::end(info->networkId), 'a');
    return g_softBusResult;
}

namespace OHOS::DistributedHardware::OstraAdapter {
namespace {

TEST(Utils, MasksTexts)
{
    std::string value;
    for (size_t length = 0; length <= 70; value += static_cast<char>('A' + length), ++length) {
        const size_t kept = length < 3 ? 0 : length < 21 ? 1 : 4;
        EXPECT_EQ(GetAnonyString(value), value.substr(0, kept) + "******" + value.substr(length - kept));
    }
}

TEST(Utils, MasksNumbers)
{
    for (auto [value, expected] : {std::pair{0, "*"}, {7, "*"}, {-5, "-*"}, {10, "1*"}, {INT_MIN, "-**********"}}) {
        EXPECT_EQ(GetAnonyInt32(value), expected);
    }
    g_printingFails = true;
    EXPECT_EQ(GetAnonyInt32(8080), "");
    g_printingFails = false;
}

TEST(Utils, MakesRandomIdentifiers)
{
    const std::regex pattern("[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}");
    std::set<std::string> ids;
    for (size_t count = 1; count <= 400; ++count) {
        const std::string id = GetRandomID();
        ASSERT_TRUE(std::regex_match(id, pattern)) << id;
        ids.insert(id);
        ASSERT_EQ(ids.size(), count) << id << " came twice";
    }
    for (size_t left = 0; left < 32; ++left) {
        std::set<char> digits;
        for (const std::string &id : ids) {
            digits.insert(id[left]);
        }
        EXPECT_EQ(digits.size(), left == 12 ? 1U : left == 16 ? 4U : 16U) << "digit " << left;
        for (size_t right = left + 1; right < 32; ++right) {
            const auto differs = [&](const std::string &id) {
                return id[left] != id[right];
            };
            EXPECT_TRUE(std::any_of(ids.begin(), ids.end(), differs)) << left << " and " << right << " are equal";
        }
    }
}

TEST(Utils, AsksTheSoftBusForTheNetworkId)
{
    LogRecorder log;
    std::string networkId = "before";
    g_softBusResult = -426;
    EXPECT_EQ(GetLocalDeviceNetworkId(networkId), -426);
    EXPECT_EQ(networkId, "before");
    g_softBusResult = 0;
    EXPECT_EQ(GetLocalDeviceNetworkId(networkId), 0);
    EXPECT_EQ(networkId, std::string(65, 'a'));  // no further than its field, even without an end
    EXPECT_EQ(g_softBusPackage, "ohos.dhardware.osatraadapter");
    EXPECT_TRUE(g_softBusRecordIsZero);
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("GetLocalDeviceNetworkId", "GetLocalNodeDeviceInfo failed ret: -426")}));
}

TEST(Utils, TellsTheWallClock)
{
    using namespace std::chrono;
    const auto before = system_clock::now();
    const system_clock::time_point us{microseconds(GetNowTimeStampUs())};
    const system_clock::time_point ms{milliseconds(GetNowTimeStampMs())};
    EXPECT_TRUE(before - microseconds(1) < us && us - milliseconds(1) < ms && ms <= system_clock::now());
}

TEST(Utils, WritesBigEndianBytes)
{
    LogRecorder log;
    using Bytes = std::vector<uint8_t>;
    Bytes bytes(8, 9);
    OSTRAIntToByte(0x12345678, bytes.data(), 8);
    OSTRAIntToByte(0x12345678, bytes.data(), 3);
    OSTRAIntToByte(0x12345678, nullptr, 4);
    EXPECT_EQ(log.Take(), LogLines(3, ErrorLine("OSTRAIntToByte", "byteArray is null or byteSize != 4.")));
    EXPECT_EQ(bytes, Bytes(8, 9));
    OSTRAIntToByte(0x12F456F8, bytes.data(), 4);
    EXPECT_EQ(bytes, (Bytes{0x12, 0xF4, 0x56, 0xF8, 9, 9, 9, 9}));
}

TEST(Utils, AcceptsExactlyTheNumbersOfThePattern)
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
    LogRecorder log;
    for (const std::string &text : texts) {
        EXPECT_EQ(CheckIsNum(text), std::regex_match(text, pattern)) << ::testing::PrintToString(text);
    }
    EXPECT_TRUE(log.Take().empty());
    EXPECT_FALSE(CheckIsNum(std::string(101, '7')));
    EXPECT_FALSE(CheckIsNum(""));
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("CheckIsNum", "Value string size 101 is zero or too long."),
                                    ErrorLine("CheckIsNum", "Value string size 0 is zero or too long.")}));
}

TEST(Utils, SavesByAppendingAndRefusesBadInput)
{
    const std::string path = ::testing::TempDir() + "save_file_" + std::to_string(getpid());
    LogRecorder log;
    uint8_t data[] = {'a', '\n', 0, '\r', 0xFF};
    SaveFile(path, data, -1);
    SaveFile(path, nullptr, 1);
    EXPECT_FALSE(std::filesystem::exists(path));
    SaveFile(path, nullptr, 0);
    EXPECT_TRUE(std::filesystem::exists(path));
    SaveFile(path + "/no/such/folder", data, 1);
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("SaveFile", "data is null or size is negative, size: -1"),
                                    ErrorLine("SaveFile", "data is null or size is negative, size: 1"),
                                    ErrorLine("SaveFile", "open file failed, fileName: " + path + "/no/such/folder")}));
    SaveFile(path, data, 4);
    SaveFile(path, data + 4, 1);
    SaveFile(path, nullptr, 0);
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), std::string("a\n\0\r\xFF", 5));
    std::filesystem::remove(path);
}

TEST(Constants, HaveTheirPublishedTexts)
{
    EXPECT_EQ((std::vector<std::string>{DH_SUCCESS_TEXT, DH_FAILED_TEXT, OSTRA_ADAPTER_INIT_TEXT, SEPARATOR,
                                        NUMBER_PATTERN, ISOMERISM_CHANGE, ISOMERISM_EVENT, ISOMERISM_CONNECT,
                                        ISOMERISM_DISCONNECT, DEV_ID_KEY}),
              (std::vector<std::string>{"DH_SUCCESS", "DH_FAILED", "OSTRA_ADAPTER_INIT", "#", "^[-+]?[0-9]+$", "change",
                                        "isomerism_event", "isomerism_connect", "isomerism_disconnect", "dev_id"}));
    EXPECT_EQ(DH_ACCESS_TOKEN_PERMISSION, u"ohos.distributedhardware.accessToken");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
