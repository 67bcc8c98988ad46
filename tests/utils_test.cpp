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
    for (size_t length = 0; length <= 70; ++length) {
        std::string value;
        for (size_t i = 0; i < length; ++i) {
            value += static_cast<char>('A' + i);
        }
        const size_t kept = length < 3 ? 0 : length < 21 ? 1 : 4;
        EXPECT_EQ(GetAnonyString(value), value.substr(0, kept) + "******" + value.substr(length - kept)) << length;
    }
}

TEST(Utils, MasksNumbers)
{
    const struct {
        int32_t value;
        const char *expected;
    } table[] = {{7, "*"},   {0, "*"},       {8080, "8***"},          {-5, "-*"},
                 {10, "1*"}, {-123, "-***"}, {INT_MAX, "2*********"}, {INT_MIN, "-**********"}};
    for (const auto &row : table) {
        EXPECT_EQ(GetAnonyInt32(row.value), row.expected);
    }
    g_printingFails = true;
    EXPECT_EQ(GetAnonyInt32(8080), "");
    g_printingFails = false;
}

TEST(Utils, MakesRandomIdentifiers)
{
    const std::regex pattern("[0-9a-f]{12}4[0-9a-f]{3}[89ab][0-9a-f]{15}");
    std::set<std::string> seen;
    std::vector<std::set<char>> digits(32);
    constexpr size_t count = 400;
    for (size_t i = 0; i < count; ++i) {
        const std::string id = GetRandomID();
        ASSERT_TRUE(std::regex_match(id, pattern)) << id;
        seen.insert(id);
        for (size_t position = 0; position < id.size(); ++position) {
            digits[position].insert(id[position]);
        }
    }
    EXPECT_EQ(seen.size(), count);
    for (size_t left = 0; left < 32; ++left) {
        for (size_t right = left + 1; right < 32; ++right) {
            EXPECT_TRUE(
                std::any_of(seen.begin(), seen.end(), [&](const std::string &id) { return id[left] != id[right]; }))
                << "digits " << left << " and " << right << " are always equal";
        }
    }
    for (size_t position = 0; position < digits.size(); ++position) {
        const size_t expected = position == 12 ? 1 : position == 16 ? 4 : 16;
        EXPECT_EQ(digits[position].size(), expected) << "digit " << position;
    }
}

TEST(Utils, AsksTheSoftBusForTheNetworkId)
{
    LogRecorder log;
    std::string networkId = "before";
    g_softBusResult = -426;
    EXPECT_EQ(GetLocalDeviceNetworkId(networkId), -426);
    EXPECT_EQ(networkId, "before");
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("GetLocalDeviceNetworkId", "GetLocalNodeDeviceInfo failed ret: -426")}));

    g_softBusResult = 0;
    EXPECT_EQ(GetLocalDeviceNetworkId(networkId), 0);
    EXPECT_EQ(networkId, std::string(65, 'a'));  // no further than its field, even without an end
    EXPECT_EQ(g_softBusPackage, "ohos.dhardware.osatraadapter");
    EXPECT_TRUE(g_softBusRecordIsZero);
    EXPECT_TRUE(log.Take().empty());
}

TEST(Utils, TellsTheWallClock)
{
    using namespace std::chrono;
    const auto clock = [] {
        return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
    };
    const int64_t before = clock();
    const int64_t us = GetNowTimeStampUs();
    const int64_t ms = GetNowTimeStampMs();
    const int64_t after = clock();
    EXPECT_LE(before, us);
    EXPECT_LE(us / 1000, ms);
    EXPECT_LE(ms, after / 1000);
}

TEST(Utils, WritesBigEndianBytes)
{
    LogRecorder log;
    uint8_t bytes[8] = {9, 9, 9, 9, 9, 9, 9, 9};
    OSTRAIntToByte(0x12345678, bytes, 8);
    OSTRAIntToByte(0x12345678, bytes, 3);
    OSTRAIntToByte(0x12345678, nullptr, 4);
    const LogLine refusal = ErrorLine("OSTRAIntToByte", "byteArray is null or byteSize != 4.");
    EXPECT_EQ(log.Take(), (LogLines{refusal, refusal, refusal}));
    EXPECT_EQ(std::vector<int>(bytes, bytes + 8), std::vector<int>(8, 9));

    OSTRAIntToByte(0x12F456F8, bytes, 4);
    EXPECT_EQ(std::vector<int>(bytes, bytes + 8), (std::vector<int>{0x12, 0xF4, 0x56, 0xF8, 9, 9, 9, 9}));
}

TEST(Utils, AcceptsExactlyTheNumbersOfThePattern)
{
    const std::regex pattern(NUMBER_PATTERN);
    std::vector<std::string> texts = {"+",  "-",   "+-1", "--1", "1-",  "1.5", " 1",
                                      "1 ", "0x1", "\n1", "1\n", "007", "-0",  "+7"};
    for (int byte = 0; byte < 256; ++byte) {
        const std::string character(1, static_cast<char>(byte));
        for (const char *rest : {"", "1", "42"}) {
            texts.insert(texts.end(),
                         {character + rest, rest + character, "-" + character + rest, "1" + character + rest});
        }
    }
    size_t accepted = 0;
    for (const std::string &text : texts) {
        const bool isNumber = !text.empty() && std::regex_match(text, pattern);
        accepted += isNumber ? 1 : 0;
        EXPECT_EQ(CheckIsNum(text), isNumber) << ::testing::PrintToString(text);
    }
    EXPECT_GT(accepted, 100U);
}

TEST(Utils, RefusesNumbersOfUnusualLength)
{
    LogRecorder log;
    EXPECT_TRUE(CheckIsNum(std::string(100, '7')));
    EXPECT_TRUE(CheckIsNum("-" + std::string(99, '7')));
    EXPECT_FALSE(CheckIsNum("1a"));
    EXPECT_TRUE(log.Take().empty());
    EXPECT_FALSE(CheckIsNum(std::string(101, '7')));
    EXPECT_FALSE(CheckIsNum(""));
    EXPECT_EQ(log.Take(), (LogLines{ErrorLine("CheckIsNum", "Value string size 101 is zero or too long."),
                                    ErrorLine("CheckIsNum", "Value string size 0 is zero or too long.")}));
}

class SaveFileTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        std::filesystem::remove(path_);
    }

    std::string Content() const
    {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string path_ = ::testing::TempDir() + "save_file_" + std::to_string(getpid());
    LogRecorder log_;
};

TEST_F(SaveFileTest, AppendsInCallOrder)
{
    uint8_t first[] = {'a', '\n', 0, '\r'};
    uint8_t second[] = {0xFF, 'b'};
    SaveFile(path_, first, 4);
    SaveFile(path_, second, 1);
    SaveFile(path_, nullptr, 0);
    EXPECT_EQ(Content(), std::string("a\n\0\r\xFF", 5));
    EXPECT_TRUE(log_.Take().empty());
}

TEST_F(SaveFileTest, RefusesBadInputAndKeepsTheFile)
{
    uint8_t data[] = {'x'};
    SaveFile(path_, data, -1);
    SaveFile(path_, nullptr, 1);
    EXPECT_FALSE(std::filesystem::exists(path_));
    SaveFile(path_ + "/no/such/folder", data, 1);
    EXPECT_EQ(log_.Take(),
              (LogLines{ErrorLine("SaveFile", "data is null or size is negative, size: -1"),
                        ErrorLine("SaveFile", "data is null or size is negative, size: 1"),
                        ErrorLine("SaveFile", "open file failed, fileName: " + path_ + "/no/such/folder")}));
    SaveFile(path_, nullptr, 0);
    EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST(Constants, HaveTheirPublishedTexts)
{
    const struct {
        std::string constant;
        const char *expected;
    } table[] = {{DH_SUCCESS_TEXT, "DH_SUCCESS"},
                 {DH_FAILED_TEXT, "DH_FAILED"},
                 {OSTRA_ADAPTER_INIT_TEXT, "OSTRA_ADAPTER_INIT"},
                 {SEPARATOR, "#"},
                 {NUMBER_PATTERN, "^[-+]?[0-9]+$"},
                 {ISOMERISM_CHANGE, "change"},
                 {ISOMERISM_EVENT, "isomerism_event"},
                 {ISOMERISM_CONNECT, "isomerism_connect"},
                 {ISOMERISM_DISCONNECT, "isomerism_disconnect"},
                 {DEV_ID_KEY, "dev_id"}};
    for (const auto &row : table) {
        EXPECT_EQ(row.constant, row.expected);
    }
    EXPECT_EQ(DH_ACCESS_TOKEN_PERMISSION, u"ohos.distributedhardware.accessToken");
}

}  // namespace
}  // namespace OHOS::DistributedHardware::OstraAdapter
