// SPDX-License-Identifier: Apache-2.0
//
// HiLog as recorded, and what of its levels could not be recorded.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <regex>
#include <utility>

#include "host/call.h"
#include "hilog/log.h"
#include "parameter.h"
#include "host/values.h"

using namespace replay;

namespace {

constexpr unsigned int DOMAIN_ID = 0xD004160;
constexpr char DEVICE_WIDE[] = "persist.sys.hilog.loggable.global";

std::optional<std::string> g_text;

void Keep(LogType, LogLevel, unsigned int, const char *, const char *text)
{
    g_text = text;
}

// The whole output is written, whatever the environment says, but into a file.
class HiLogReplay : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        unsetenv("OSTRA_HOST_LOG_LEVEL");
    }

    void SetUp() override
    {
        dup2(fileno(output_), STDERR_FILENO);
        LOG_SetCallback(Keep);
    }

    void TearDown() override
    {
        LOG_SetCallback(nullptr);
        dup2(standardError_, STDERR_FILENO);
        close(standardError_);
        std::fclose(output_);
        SetParameter(DEVICE_WIDE, "I");
        HiLogSetAppLogLevel(LOG_INFO, UNSET_LOGLEVEL);
    }

    // What is written meanwhile.
    std::string Output(const std::function<void()> &action)
    {
        EXPECT_EQ(ftruncate(fileno(output_), 0), 0);
        lseek(fileno(output_), 0, SEEK_SET);
        action();
        std::string text(static_cast<size_t>(lseek(fileno(output_), 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(fileno(output_), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
        return text;
    }

    FILE *output_ = std::tmpfile();
    int standardError_ = dup(STDERR_FILENO);
};

Fields Deliver(const Fields &in)
{
    g_text.reset();
    const auto tag = Target(in.at(3));
    const int result =
        HiLogPrint(static_cast<LogType>(Number<int>(in.at(0))), static_cast<LogLevel>(Number<int>(in[1])),
                   Number<unsigned int>(in[2]), Pointer(tag), "text");
    return {g_text.has_value() ? "callback" : "none", result < 0 ? "-" : "+"};
}

Fields IsLoggable(const Fields &in)
{
    const auto tag = Target(in.at(1));
    const auto level = static_cast<LogLevel>(Number<int>(in.at(2)));
    return {Show(HiLogIsLoggable(Number<unsigned int>(in[0]), Pointer(tag), level))};
}

}  // namespace

TEST_F(HiLogReplay, GivesWhatWasRecorded)
{
    Operations operations;
    operations["format"] = [](const Fields &in) -> Fields {
        g_text.reset();
        const RecordedCall call(in, 0);
        call.Pass([&](auto... arguments) {
            return HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN_ID, "T", Pointer(call.format), arguments...);
        });
        return {g_text.has_value() ? Quote(*g_text) : "none"};
    };
    operations["line"] = [this](const Fields &in) -> Fields {
        const std::string output = Output([&] {
            HiLogPrint(static_cast<LogType>(Number<int>(in.at(0))), static_cast<LogLevel>(Number<int>(in.at(1))),
                       Number<unsigned int>(in.at(2)), Text(in.at(3)).c_str(), "%{public}s", Text(in.at(4)).c_str());
        });
        const std::regex changing(R"(\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [ \d]{4}\d [ \d]{4}\d)");
        return {Quote(std::regex_replace(output, changing, "T P P"))};
    };
    const std::pair<const char *, const char *> sections[] = {{"", "I"}, {"-unset", ""}, {"-E", "E"}};
    for (const auto &[section, level] : sections) {
        for (const auto &[name, operation] : {std::pair("deliver", &Deliver), std::pair("loggable", &IsLoggable)}) {
            operations[std::string(name) + section] = [given = level, run = operation](const Fields &in) {
                SetParameter(DEVICE_WIDE, given);
                return run(in);
            };
        }
    }
    Replay("recorded/hilog.txt", 397, operations, [] { SetParameter(DEVICE_WIDE, "I"); });
}

// Each parameter in turn; a later one wins over those before it.
TEST_F(HiLogReplay, TakesTheLevelOfTheTagBeforeTheDomainBeforeAll)
{
    constexpr unsigned int appDomain = 0x1aF;
    const std::pair<const char *, const char *> parameters[] = {
        {DEVICE_WIDE, "D"},
        {"hilog.loggable.global", "E"},
        {"persist.sys.hilog.loggable.domain.1AF", "W"},
        {"hilog.loggable.domain.1af", "X"},
        {"persist.sys.hilog.loggable.tag.Replay", "F"},
        {"hilog.loggable.tag.Replay", "I"},
    };
    const auto lowest = [=](const char *tag) {
        int level = LOG_DEBUG;
        while (level < LOG_LEVEL_MAX && !HiLogIsLoggable(appDomain, tag, static_cast<LogLevel>(level))) {
            ++level;
        }
        return level;
    };
    EXPECT_EQ(lowest("Replay"), LOG_INFO);
    const int expected[] = {LOG_DEBUG, LOG_ERROR, LOG_WARN, LOG_LEVEL_MAX, LOG_FATAL, LOG_INFO};
    for (size_t i = 0; i < std::size(parameters); ++i) {
        EXPECT_EQ(SetParameter(parameters[i].first, parameters[i].second), 0);
        EXPECT_EQ(lowest("Replay"), expected[i]) << parameters[i].first;
    }
    SetParameter("hilog.loggable.tag.Replay", "DI");  // no level: the one before it counts
    EXPECT_EQ(lowest("Replay"), LOG_FATAL);
    SetParameter("hilog.loggable.tag.Replay", "I");
    EXPECT_EQ(lowest("Other"), LOG_LEVEL_MAX);
    EXPECT_TRUE(HiLogIsLoggable(DOMAIN_ID, "Other", LOG_FATAL));
    HiLogSetAppMinLogLevel(LOG_WARN);
    EXPECT_EQ(lowest("Replay"), LOG_WARN);
    EXPECT_EQ(lowest("Other"), LOG_LEVEL_MAX);
    HiLogSetAppLogLevel(LOG_LEVEL_MIN, PREFER_OPEN_LOG);  // no level, and no preference
    HiLogSetAppLogLevel(LOG_FATAL, static_cast<PreferStrategy>(PREFER_OPEN_LOG + 1));
    EXPECT_EQ(lowest("Replay"), LOG_WARN);
    HiLogSetAppLogLevel(LOG_DEBUG, PREFER_OPEN_LOG);
    EXPECT_EQ(lowest("Other"), LOG_DEBUG);
    for (const auto &[name, value] : parameters) {
        SetParameter(name, "");
    }
    EXPECT_FALSE(HiLogIsLoggable(DOMAIN_ID, "Replay", static_cast<LogLevel>(LOG_DEBUG - 1)));
}

TEST_F(HiLogReplay, KeepsTheLastFatalMessage)
{
    const OHOS::HiviewDFX::HiLogLabel label = {LOG_CORE, DOMAIN_ID, "T"};
    EXPECT_EQ(HiLogFatal(label, "%{public}s %d", "first", 1), 2 + 16);
    EXPECT_EQ(OHOS::HiviewDFX::HiLog::Error(label, "%{public}s", "second"), 2 + 7);
    EXPECT_EQ(g_text, "second");
    EXPECT_STREQ(GetLastFatalMessage(), "first <private>");
    dup2(open("/dev/full", O_WRONLY), STDERR_FILENO);
    EXPECT_EQ(HiLogInfo(label, "lost"), -1);
}
