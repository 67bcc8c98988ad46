// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <regex>
#include <set>
#include <string>

#include "hilog/log.h"
#include "securec.h"
#include "softbus_bus_center.h"
#include "support/log_recorder.h"

namespace {

// Catches what the process writes to standard error while it lives.
class StandardErrorCapture {
public:
    StandardErrorCapture() : saved_(dup(STDERR_FILENO)), file_(std::tmpfile())
    {
        dup2(fileno(file_), STDERR_FILENO);
    }

    ~StandardErrorCapture()
    {
        dup2(saved_, STDERR_FILENO);
        close(saved_);
        std::fclose(file_);
    }

    std::string Text() const
    {
        std::string text(1 << 16, '\0');
        const ssize_t size = pread(fileno(file_), text.data(), text.size(), 0);
        text.resize(size > 0 ? static_cast<size_t>(size) : 0);
        return text;
    }

private:
    int saved_;
    FILE *file_;
};

// The level that this run's environment asks for; the runs differ in it.
int WantedLevel()
{
    const char *text = std::getenv("OSTRA_HOST_LOG_LEVEL");
    const std::string name = text == nullptr ? "" : text;
    return name == "debug"   ? LOG_DEBUG
           : name == "warn"  ? LOG_WARN
           : name == "error" ? LOG_ERROR
           : name == "fatal" ? LOG_FATAL
           : name == "off"   ? INT_MAX
                             : LOG_INFO;
}

std::string LocalTime()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof(text), "%m-%d %H:%M:%S", std::localtime(&now));
    return text;
}

TEST(HostLogLevel, WritesFromTheWantedLevelOn)
{
    {
        const StandardErrorCapture capture;
        HiLogIsLoggable(0, "", LOG_INFO);
        const char *wanted = std::getenv("OSTRA_HOST_LOG_LEVEL");
        EXPECT_EQ(capture.Text(),
                  wanted != nullptr && std::string(wanted) == "mistyped"
                      ? "OSTRA_HOST_LOG_LEVEL=mistyped is none of debug, info, warn, error, fatal, off; "
                        "taking info\n"
                      : "");
    }
    const struct {
        LogLevel level;
        char letter;
    } levels[] = {{LOG_DEBUG, 'D'}, {LOG_INFO, 'I'}, {LOG_WARN, 'W'}, {LOG_ERROR, 'E'}, {LOG_FATAL, 'F'}};
    for (const auto &row : levels) {
        const bool isWritten = row.level >= WantedLevel();
        const StandardErrorCapture capture;
        LogRecorder log;
        const std::string before = LocalTime();
        const int result = HiLogPrint(LOG_CORE, row.level, 0xD004160, "TAG", "%{public}s", "text");
        const std::string line = capture.Text();
        EXPECT_EQ(log.Take(), (LogLines{{LOG_CORE, row.level, 0xD004160, "TAG", "text"}}));
        EXPECT_EQ(HiLogIsLoggable(0xD004160, "TAG", row.level), isWritten);
        EXPECT_EQ(result, static_cast<int>(line.size()));
        const std::regex pattern(std::string(R"((\d\d-\d\d \d\d:\d\d:\d\d)\.\d{3} +(\d+) +(\d+) )") + row.letter +
                                 " C04160/TAG: text\n");
        std::smatch parts;
        ASSERT_EQ(std::regex_match(line, parts, pattern), isWritten) << line;
        if (isWritten) {
            EXPECT_EQ(parts[2], std::to_string(getpid()));
            EXPECT_EQ(parts[3], std::to_string(syscall(SYS_gettid)));
            EXPECT_TRUE(parts[1] == before || parts[1] == LocalTime()) << line;
        }
    }
}

TEST(HostLog, PrintsInTheClearOnlyWhatIsPublic)
{
    LogRecorder log;
    const auto text = [&log] {
        return log.Take().at(0).text;
    };
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%s %{private}s %{public}s %d", "a", "b", "c", 4);
    EXPECT_EQ(text(), "<private> <private> c <private>");
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%% %{public}5d|%{public}-4u|%{public}08.3f|%{public}c|%{public}x", -7, 8U,
               1.5, 'z', 255U);
    EXPECT_EQ(text(), "%    -7|8   |0001.500|z|ff");
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%{public}lld %{public}ld %{public}zu %{public}hhu %{public}*d %{public}.2s",
               LLONG_MIN, LONG_MAX, SIZE_MAX, static_cast<unsigned char>(200), 4, 1, "xyz");
    EXPECT_EQ(text(), std::to_string(LLONG_MIN) + " " + std::to_string(LONG_MAX) + " " + std::to_string(SIZE_MAX) +
                          " 200    1 xy");
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%{public}.*s|%{public}.*s", 2, "abc", -1, "abc");
    EXPECT_EQ(text(), "ab|abc");
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%{public}hhhd %{public}p", &log);
    char pointer[64];
    std::snprintf(pointer, sizeof(pointer), "%%{public}hhhd %p", static_cast<void *>(&log));
    EXPECT_EQ(text(), pointer);
    const std::string tooManyFlags = "%" + std::string(100, '0') + "d";
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", tooManyFlags.c_str(), 1);
    EXPECT_EQ(text(), tooManyFlags);
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%{public}s%{public}s", std::string(5000, 'x').c_str(), "end");
    EXPECT_EQ(text(), std::string(4095, 'x'));
    HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%{public}s %y 100%", static_cast<const char *>(nullptr));
    EXPECT_EQ(text(), "(null) %y 100%");
    for (size_t length : {4094U, 4095U, 4096U, 9000U}) {
        HiLogPrint(LOG_APP, LOG_INFO, 1, "T", "%{public}s", std::string(length, 'x').c_str());
        EXPECT_EQ(text().size(), std::min<size_t>(length, 4095));
    }
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_INFO, 1, nullptr, "x"), -1);
    EXPECT_EQ(HiLogPrint(LOG_APP, LOG_INFO, 1, "T", nullptr), -1);
}

TEST(HostSecurec, CopiesOnlyInsideTheBounds)
{
    char buffer[8] = "1234567";
    EXPECT_EQ(memcpy_s(nullptr, 8, buffer, 1), EINVAL);
    EXPECT_EQ(memcpy_s(buffer, 8, nullptr, 1), EINVAL);
    EXPECT_EQ(memcpy_s(buffer, 3, "abcd", 4), ERANGE);
    EXPECT_EQ(memcpy_s(buffer, 0, "abcd", 0), ERANGE);
    EXPECT_EQ(memcpy_s(buffer, 0x80000000U, "abcd", 4), ERANGE);
    EXPECT_EQ(memcpy_s(buffer, 8, buffer + 3, 4), EINVAL);
    EXPECT_EQ(memcpy_s(buffer + 3, 5, buffer, 4), EINVAL);
    EXPECT_EQ(memset_s(nullptr, 8, 'x', 1), EINVAL);
    EXPECT_EQ(memset_s(buffer, 3, 'x', 4), ERANGE);
    EXPECT_EQ(memset_s(buffer, 0, 'x', 0), ERANGE);
    EXPECT_STREQ(buffer, "1234567");
    EXPECT_EQ(memcpy_s(buffer + 3, 5, buffer, 3), 0);
    EXPECT_STREQ(buffer, "1231237");
    EXPECT_EQ(memcpy_s(buffer, 4, buffer + 4, 4), 0);
    EXPECT_STREQ(buffer, "237");
    EXPECT_EQ(memset_s(buffer, 2, 'x', 2), 0);
    EXPECT_STREQ(buffer, "xx7");
}

TEST(HostSecurec, PrintsWholeTextsOrNone)
{
    char buffer[5] = "old";
    EXPECT_EQ(sprintf_s(buffer, sizeof(buffer), "%d", 1234), 4);
    EXPECT_STREQ(buffer, "1234");
    EXPECT_EQ(sprintf_s(buffer, sizeof(buffer), "%d", 12345), -1);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(sprintf_s(buffer, 0, "%d", 1), -1);
    EXPECT_EQ(sprintf_s(buffer, size_t{0x80000000U}, "%d", 1), -1);
    EXPECT_EQ(sprintf_s(nullptr, 5, "%d", 1), -1);
}

TEST(HostSoftBus, DescribesTheLocalNode)
{
    NodeBasicInfo first{};
    NodeBasicInfo second{};
    ASSERT_EQ(GetLocalNodeDeviceInfo("package", &first), 0);
    ASSERT_EQ(GetLocalNodeDeviceInfo("another", &second), 0);
    EXPECT_TRUE(std::regex_match(first.networkId, std::regex("[0-9a-f]{64}"))) << first.networkId;
    EXPECT_STREQ(first.networkId, second.networkId);
    EXPECT_GT(std::set<char>(first.networkId, first.networkId + 64).size(), 4U);
    char host[256] = {0};
    gethostname(host, sizeof(host) - 1);
    EXPECT_EQ(std::string(first.deviceName), std::string(host).substr(0, DEVICE_NAME_BUF_LEN - 1));
    EXPECT_LT(GetLocalNodeDeviceInfo(nullptr, &first), 0);
    EXPECT_LT(GetLocalNodeDeviceInfo("package", nullptr), 0);
}

}  // namespace
