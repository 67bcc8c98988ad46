// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <regex>
#include <set>
#include <string>
#include <utility>

#include "hilog/log.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/log_recorder.h"

using namespace std::string_literals;

namespace {

// What the process writes to standard error meanwhile.
std::string StandardError(const std::function<void()> &action)
{
    FILE *file = std::tmpfile();
    const int saved = dup(STDERR_FILENO);
    dup2(fileno(file), STDERR_FILENO);
    action();
    dup2(saved, STDERR_FILENO);
    close(saved);
    char text[1024] = {0};
    EXPECT_GE(pread(fileno(file), text, sizeof(text) - 1, 0), 0);
    std::fclose(file);
    return text;
}

std::string LocalTime()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof(text), "%m-%d %H:%M:%S", std::localtime(&now));
    return text;
}

}  // namespace

// Run under several values of the variable.
TEST(HostLogLevel, WritesFromTheWantedLevelOn)
{
    const char *variable = std::getenv("OSTRA_HOST_LOG_LEVEL");
    std::string wanted = variable == nullptr ? "info" : variable;
    std::string complaint;
    if (wanted == "mistyped") {
        wanted = "info";
        complaint = "OSTRA_HOST_LOG_LEVEL=mistyped is none of debug, info, warn, error, fatal, off; taking info\n";
    }
    EXPECT_EQ(StandardError([] { HiLogIsLoggable(0, "", LOG_INFO); }), complaint);
    const std::pair<std::string, char> levels[] = {
        {"debug", 'D'}, {"info", 'I'}, {"warn", 'W'}, {"error", 'E'}, {"fatal", 'F'}};
    LogRecorder log;
    int number = LOG_DEBUG;
    bool isWritten = false;
    for (const auto &[name, letter] : levels) {
        const auto level = static_cast<LogLevel>(number++);
        isWritten = isWritten || name == wanted;
        const std::string before = LocalTime();
        int result = 0;
        const std::string line =
            StandardError([&] { result = HiLogPrint(LOG_CORE, level, 0xD004160, "TAG", "%{public}s", "text"); });
        EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, level, 0xD004160, "TAG", "text"}}));
        EXPECT_EQ(HiLogIsLoggable(0xD004160, "TAG", level), isWritten);
        EXPECT_EQ(result, static_cast<int>(line.size()));
        char ids[64];
        std::snprintf(ids, sizeof(ids), "%5d %5ld ", getpid(), syscall(SYS_gettid));
        const std::regex pattern(R"((\d\d-\d\d \d\d:\d\d:\d\d)\.\d{3} )" + (ids + (letter + " C04160/TAG: text\n"s)));
        std::smatch parts;
        ASSERT_EQ(std::regex_match(line, parts, pattern), isWritten) << line;
        EXPECT_TRUE(!isWritten || parts[1] == before || parts[1] == LocalTime()) << line;
    }
}

TEST(HostLog, PrintsInTheClearOnlyWhatIsPublic)
{
    LogRecorder log;
    const auto text = [&log](const std::string &format, auto... values) {
        HiLogPrint(LOG_APP, LOG_INFO, 1, "T", format.c_str(), values...);
        return log.Take().at(0).text;
    };
    EXPECT_EQ(text("%s %{private}s %{public}s %d", "a", "b", "c", 4), "<private> <private> c <private>");
    EXPECT_EQ(text("%% %{public}5d|%{public}-4u|%{public}08.3f|%{public}c", -7, 8U, 1.5, 'z'),
              "%    -7|8   |0001.500|z");
    EXPECT_EQ(text("%{public}lld %{public}ld", LLONG_MIN, LONG_MAX),
              "-9223372036854775808 " + std::to_string(LONG_MAX));
    EXPECT_EQ(text("%{public}zu %{public}hhx", SIZE_MAX, 200), std::to_string(SIZE_MAX) + " c8");
    EXPECT_EQ(text("%{public}*d %{public}.2s|%{public}.*s|%{public}.*s", 4, 1, "xyz", 2, "abc", -1, "abc"),
              "   1 xy|ab|abc");
    char pointer[64];
    std::snprintf(pointer, sizeof(pointer), "%p", static_cast<void *>(&log));
    EXPECT_EQ(text("%{public}hhhd %{public}p", &log), "%{public}hhhd "s + pointer);
    const std::string tooManyFlags = "%" + std::string(100, '0') + "d";
    EXPECT_EQ(text(tooManyFlags + " %{public}s %y 100%", static_cast<const char *>(nullptr)),
              tooManyFlags + " (null) %y 100%");
    for (const size_t length : {4094U, 4095U, 9000U}) {
        const std::string whole(length, 'x');
        EXPECT_EQ(text("%{public}send%{public}s", whole.c_str(), "tail"), (whole + "end").substr(0, 4095));
    }
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_INFO, 1, nullptr, "x"), -1);
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_INFO, 1, "T", nullptr), -1);
}

TEST(HostSecurec, WritesInsideTheBoundsOrNotAtAll)
{
    char buffer[8] = "1234567";
    for (const errno_t result :
         {memcpy_s(nullptr, 8, buffer, 1), memcpy_s(buffer, 8, nullptr, 1), memcpy_s(buffer, 8, buffer + 3, 4),
          memcpy_s(buffer + 3, 5, buffer, 4), memset_s(nullptr, 8, 'x', 1)}) {
        EXPECT_EQ(result, EINVAL);
    }
    for (const errno_t result :
         {memcpy_s(buffer, 3, "abcd", 4), memcpy_s(buffer, 0, "abcd", 0), memcpy_s(buffer, 0x80000000U, "abcd", 4),
          memset_s(buffer, 3, 'x', 4), memset_s(buffer, 0, 'x', 0)}) {
        EXPECT_EQ(result, ERANGE);
    }
    EXPECT_STREQ(buffer, "1234567");
    EXPECT_EQ(memcpy_s(buffer + 3, 5, buffer, 3), 0);
    EXPECT_STREQ(buffer, "1231237");
    EXPECT_EQ(memcpy_s(buffer, 4, buffer + 4, 4) + memset_s(buffer, 2, 'x', 2), 0);
    EXPECT_STREQ(buffer, "xx7");
    EXPECT_EQ(sprintf_s(buffer, 5, "%d", 1234), 4);
    EXPECT_STREQ(buffer, "1234");
    EXPECT_EQ(sprintf_s(buffer, 5, "%d", 12345), -1);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(sprintf_s(buffer, 0, "%d", 1), -1);
    EXPECT_EQ(sprintf_s(buffer, size_t{0x80000000U}, "%d", 1), -1);
    EXPECT_EQ(sprintf_s(nullptr, 5, "%d", 1), -1);
}

TEST(HostSoftBus, DescribesTheLocalNode)
{
    NodeBasicInfo first{};
    NodeBasicInfo second{};
    EXPECT_EQ(GetLocalNodeDeviceInfo("package", &first) + GetLocalNodeDeviceInfo("another", &second), 0);
    EXPECT_TRUE(std::regex_match(first.networkId, std::regex("[0-9a-f]{64}"))) << first.networkId;
    EXPECT_STREQ(first.networkId, second.networkId);
    EXPECT_GT(std::set<char>(first.networkId, first.networkId + 64).size(), 4U);
    char host[DEVICE_NAME_BUF_LEN] = {0};
    gethostname(host, sizeof(host) - 1);
    EXPECT_STREQ(first.deviceName, host);
    EXPECT_LT(GetLocalNodeDeviceInfo(nullptr, &first), 0);
    EXPECT_LT(GetLocalNodeDeviceInfo("package", nullptr), 0);
}
