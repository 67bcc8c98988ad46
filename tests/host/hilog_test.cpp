// SPDX-License-Identifier: Apache-2.0
//
// HiLog: replays the recordings, and tests levels and output that are not recorded.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <regex>
#include <utility>

#include "hilog/log.h"
#include "host/call.h"
#include "host/values.h"
#include "parameter.h"

using namespace replay;
using Log = OHOS::HiviewDFX::HiLog;
using OHOS::HiviewDFX::HiLogLabel;

namespace {

constexpr unsigned int DOMAIN_ID = 0xD004160;
constexpr char GLOBAL_LEVEL[] = "persist.sys.hilog.loggable.global";
constexpr HiLogLabel LABEL = {LOG_CORE, DOMAIN_ID, "T"};

std::optional<std::string> g_message;
int g_level = 0;
int g_interruptions = 0;  // of the next writes

void Keep(LogType, LogLevel level, unsigned int, const char *, const char *message)
{
    g_level = level;
    g_message = message;
}

}  // namespace

// Replaces the function of the C library.
extern "C" ssize_t write(int descriptor, const void *data, size_t size)
{
    if (g_interruptions > 0) {
        --g_interruptions;
        errno = EINTR;
        return -1;
    }
    return syscall(SYS_write, descriptor, data, size);
}

namespace {

// Redirects standard error to a file; everything that is delivered is written there.
class HiLog : public testing::Test {
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
        SetParameter(GLOBAL_LEVEL, "I");
        HiLogSetAppLogLevel(LOG_INFO, UNSET_LOGLEVEL);
    }

    // Returns what `action` writes, with T for the time and P for process and thread id.
    std::string Output(const std::function<void()> &action)
    {
        EXPECT_EQ(ftruncate(fileno(output_), 0), 0);
        lseek(fileno(output_), 0, SEEK_SET);
        action();
        std::string output(static_cast<size_t>(lseek(fileno(output_), 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(fileno(output_), output.data(), output.size(), 0), static_cast<ssize_t>(output.size()));
        static const std::regex changing(R"(\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [ \d]{4}\d [ \d]{4}\d)");
        return std::regex_replace(output, changing, "T P P");
    }

    FILE *output_ = std::tmpfile();
    int standardError_ = dup(STDERR_FILENO);
};

Fields Format(const Fields &in)
{
    g_message.reset();
    const RecordedCall call(in, 0);
    call.Pass([&](auto... arguments) {
        return HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN_ID, "T", Pointer(call.format), arguments...);
    });
    return {g_message.has_value() ? Quote(*g_message) : "none"};
}

Fields Deliver(const Fields &in)
{
    g_message.reset();
    const auto tag = Target(in.at(3));
    const int result =
        HiLogPrint(static_cast<LogType>(Number<int>(in.at(0))), static_cast<LogLevel>(Number<int>(in[1])),
                   Number<unsigned int>(in[2]), Pointer(tag), "text");
    return {g_message.has_value() ? "callback" : "none", result < 0 ? "-" : "+"};
}

Fields IsLoggable(const Fields &in)
{
    const auto tag = Target(in.at(1));
    const auto level = static_cast<LogLevel>(Number<int>(in.at(2)));
    return {Show(HiLogIsLoggable(Number<unsigned int>(in[0]), Pointer(tag), level))};
}

int LowestLevel(unsigned int domain, const char *tag)
{
    int level = LOG_LEVEL_MIN;
    while (level < LOG_LEVEL_MAX && !HiLogIsLoggable(domain, tag, static_cast<LogLevel>(level))) {
        ++level;
    }
    return level;
}

}  // namespace

TEST_F(HiLog, MatchesRecording)
{
    Operations operations;
    operations["format"] = Format;
    operations["line"] = [this](const Fields &in) -> Fields {
        return {Quote(Output([&] {
            HiLogPrint(static_cast<LogType>(Number<int>(in.at(0))), static_cast<LogLevel>(Number<int>(in.at(1))),
                       Number<unsigned int>(in.at(2)), Text(in.at(3)).c_str(), "%{public}s", Text(in.at(4)).c_str());
        }))};
    };
    const std::pair<const char *, const char *> sections[] = {{"", "I"}, {"-unset", ""}, {"-E", "E"}};
    for (const auto &[section, level] : sections) {
        for (const auto &[name, operation] : {std::pair("deliver", &Deliver), std::pair("loggable", &IsLoggable)}) {
            operations[std::string(name) + section] = [given = level, run = operation](const Fields &in) {
                SetParameter(GLOBAL_LEVEL, given);
                return run(in);
            };
        }
    }
    Replay("recorded/hilog.txt", 400, operations, [] { SetParameter(GLOBAL_LEVEL, "I"); });
}

TEST_F(HiLog, LevelOfTagPrecedesDomainPrecedesGlobal)
{
    constexpr unsigned int appDomain = 0x1aF;
    const struct {
        const char *parameter;
        const char *value;
        int expected;
    } steps[] = {
        {GLOBAL_LEVEL, "D", LOG_DEBUG},
        {"hilog.loggable.global", "E", LOG_ERROR},
        {"persist.sys.hilog.loggable.domain.1AF", "W", LOG_WARN},
        {"hilog.loggable.domain.1af", "X", LOG_LEVEL_MAX},
        {"persist.sys.hilog.loggable.tag.Replay", "F", LOG_FATAL},
        {"hilog.loggable.tag.Replay", "I", LOG_INFO},
        {"hilog.loggable.tag.Replay", "DI", LOG_FATAL},  // not a level: the one before counts
        {"hilog.loggable.tag.Replay", "I", LOG_INFO},
    };
    EXPECT_EQ(LowestLevel(appDomain, "Replay"), LOG_INFO);
    for (const auto &[parameter, value, expected] : steps) {
        EXPECT_EQ(SetParameter(parameter, value), 0);
        EXPECT_EQ(LowestLevel(appDomain, "Replay"), expected) << parameter << value;
    }
    EXPECT_EQ(LowestLevel(appDomain, "Other"), LOG_LEVEL_MAX);
    EXPECT_TRUE(HiLogIsLoggable(DOMAIN_ID, "Other", LOG_FATAL));
    HiLogSetAppMinLogLevel(LOG_WARN);
    EXPECT_EQ(LowestLevel(appDomain, "Replay"), LOG_WARN);
    EXPECT_EQ(LowestLevel(appDomain, "Other"), LOG_LEVEL_MAX);
    HiLogSetAppLogLevel(LOG_LEVEL_MIN, PREFER_OPEN_LOG);  // neither of these is valid
    HiLogSetAppLogLevel(LOG_FATAL, static_cast<PreferStrategy>(PREFER_OPEN_LOG + 1));
    EXPECT_EQ(LowestLevel(appDomain, "Replay"), LOG_WARN);
    for (const int level : {LOG_LEVEL_MIN + 1, LOG_DEBUG - 1, int{LOG_DEBUG}}) {
        HiLogSetAppLogLevel(static_cast<LogLevel>(level), PREFER_OPEN_LOG);
        EXPECT_EQ(LowestLevel(appDomain, "Other"), LOG_DEBUG) << level;
    }
    for (const auto &step : steps) {
        SetParameter(step.parameter, "");
    }
    EXPECT_EQ(LowestLevel(DOMAIN_ID, "Replay"), LOG_DEBUG);
}

TEST_F(HiLog, EachFunctionLogsAtItsLevel)
{
    SetParameter(GLOBAL_LEVEL, "D");
    int level = LOG_DEBUG;
    for (int (*const log)(const HiLogLabel &, const char *, ...) :
         {Log::Debug, Log::Info, Log::Warn, Log::Error, Log::Fatal}) {
        EXPECT_EQ(log(LABEL, "%{public}s %d", "text", 1), 2 + 15);
        EXPECT_EQ(g_message, "text <private>");
        EXPECT_EQ(g_level, level++);
    }
    level = LOG_DEBUG;
    const std::function<int()> macros[] = {
        [] { return HiLogDebug(LABEL, "m"); }, [] { return HiLogInfo(LABEL, "m"); },
        [] { return HiLogWarn(LABEL, "m"); },  [] { return HiLogError(LABEL, "m"); },
        [] { return HiLogFatal(LABEL, "m"); },
    };
    for (const auto &log : macros) {
        EXPECT_EQ(log(), 2 + 2);
        EXPECT_EQ(g_level, level++);
    }
}

TEST_F(HiLog, RepeatsAnInterruptedWrite)
{
    const std::string output = Output([] {
        g_interruptions = 3;
        EXPECT_EQ(Log::Info(LABEL, "one\ntwo"), 2 + 8);
    });
    EXPECT_EQ(output, "T P P I C04160/T: one\nT P P I C04160/T: two\n");
    dup2(open("/dev/full", O_WRONLY), STDERR_FILENO);
    EXPECT_EQ(Log::Info(LABEL, "lost"), -1);
}

// SIGPIPE would end the process.
TEST_F(HiLog, SurvivesAClosedPipe)
{
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    EXPECT_EQ(Log::Info(LABEL, "lost"), -1);

    sigset_t signals;
    pthread_sigmask(SIG_BLOCK, nullptr, &signals);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
    sigaddset(&signals, SIGPIPE);  // a program that blocks it keeps its own pending signal
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    raise(SIGPIPE);
    EXPECT_EQ(Log::Info(LABEL, "lost"), -1);
    sigpending(&signals);
    EXPECT_EQ(sigismember(&signals, SIGPIPE), 1);
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    const timespec atOnce{};
    EXPECT_EQ(sigtimedwait(&signals, nullptr, &atOnce), SIGPIPE);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    close(ends[1]);
}
