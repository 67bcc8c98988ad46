// SPDX-License-Identifier: Apache-2.0
//
// HiLog: replays the recorded and handwritten cases, and tests what happens when the output cannot be written.

#include "hilog/log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <regex>

#include "host/recording.h"
#include "parameter.h"

using namespace replay;
using OHOS::HiviewDFX::HiLog;
using OHOS::HiviewDFX::HiLogLabel;

namespace {

constexpr unsigned int DOMAIN_ID = 0xD004160;
constexpr HiLogLabel LABEL = {LOG_CORE, DOMAIN_ID, "T"};

const int g_isUnset = unsetenv("OSTRA_HOST_LOG_LEVEL");
std::optional<std::string> g_message;  // the last one that the callback received
int g_level = 0;
int g_interruptions = 0;  // how many of the next writes fail with EINTR

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

// Returns what `action` writes to standard error, with T for the time and P for the process and thread ids.
template <typename Action>
std::string Output(const Action &action)
{
    static const std::regex changing(R"(\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [ \d]{4}\d [ \d]{4}\d)");
    g_message.reset();
    LOG_SetCallback(Keep);
    testing::internal::CaptureStderr();
    action();
    LOG_SetCallback(nullptr);
    return std::regex_replace(testing::internal::GetCapturedStderr(), changing, "T P P");
}

Fields Format(const Fields &in)
{
    const PrintfCall call(in, 0);
    Output(
        [&] { call.Pass([](auto... values) { return HiLogPrint(LOG_CORE, LOG_INFO, DOMAIN_ID, "T", values...); }); });
    return {g_message.has_value() ? Quote(*g_message) : "none"};
}

std::string Line(int type, int level, unsigned int domain, const std::string &tag, const std::string &message)
{
    return Output(
        [&] { HiLogPrint(LogType(type), LogLevel(level), domain, tag.c_str(), "%{public}s", message.c_str()); });
}

Fields Deliver(int type, int level, unsigned int domain, const std::optional<std::string> &tag)
{
    int result = 0;
    Output([&] { result = HiLogPrint(LogType(type), LogLevel(level), domain, Pointer(tag), "text"); });
    return {g_message.has_value() ? "callback" : "none", result < 0 ? "-" : "+"};
}

bool IsLoggable(unsigned int domain, const std::optional<std::string> &tag, int level)
{
    return HiLogIsLoggable(domain, Pointer(tag), LogLevel(level));
}

int LowestLevel(unsigned int domain, const std::optional<std::string> &tag)
{
    int level = LOG_LEVEL_MIN;
    while (level < LOG_LEVEL_MAX && !IsLoggable(domain, tag, level)) {
        ++level;
    }
    return level;
}

Fields Set(const std::string &parameter, const std::string &value)
{
    const int result = SetParameter(parameter.c_str(), value.c_str());
    return {Show(result), Show(LowestLevel(0x1AF, "Replay"))};
}

int SetAppLevel(int level, int preference)
{
    HiLogSetAppLogLevel(LogLevel(level), PreferStrategy(preference));
    return LowestLevel(0x1AF, "Replay");
}

}  // namespace

TEST(HiLog, MatchesRecording)
{
    Operations operations = {{"format", Format},
                             {"line", Call(Line)},
                             {"lowest", Call(LowestLevel)},
                             {"set", Call(Set)},
                             {"app", Call(SetAppLevel)}};
    for (const auto &[section, level] : {std::pair("", "I"), {"-unset", ""}, {"-E", "E"}}) {
        for (const auto &[name, operation] : {std::pair("deliver", Call(Deliver)), {"loggable", Call(IsLoggable)}}) {
            operations[std::string(name) + section] = [given = level, call = operation](const Fields &in) {
                Set("persist.sys.hilog.loggable.global", given);
                const Fields results = call(in);
                Set("persist.sys.hilog.loggable.global", "I");
                return results;
            };
        }
    }
    Replay("recorded/hilog.txt", 400, operations);
    Replay("handwritten/hilog.txt", 28, operations);
}

TEST(HiLog, EachFunctionLogsAtItsLevel)
{
    Set("persist.sys.hilog.loggable.global", "D");
    int level = LOG_DEBUG;
    for (const auto log : {HiLog::Debug, HiLog::Info, HiLog::Warn, HiLog::Error, HiLog::Fatal}) {
        Output([&] { EXPECT_EQ(log(LABEL, "%{public}s %d", "text", 1), 2 + 15); });
        EXPECT_EQ(g_message, "text <private>");
        EXPECT_EQ(g_level, level++);
    }
    int (*const macros[])() = {
        [] { return HiLogDebug(LABEL, "m"); }, [] { return HiLogInfo(LABEL, "m"); },
        [] { return HiLogWarn(LABEL, "m"); },  [] { return HiLogError(LABEL, "m"); },
        [] { return HiLogFatal(LABEL, "m"); },
    };
    level = LOG_DEBUG;
    for (const auto log : macros) {
        Output([&] { EXPECT_EQ(log(), 2 + 2); });
        EXPECT_EQ(g_level, level++);
    }
    Set("persist.sys.hilog.loggable.global", "I");
    HiLogSetAppMinLogLevel(LOG_ERROR);
    EXPECT_EQ(LowestLevel(0, "T"), LOG_ERROR);
    HiLogSetAppLogLevel(LOG_INFO, UNSET_LOGLEVEL);
}

TEST(HiLog, RepeatsAnInterruptedWriteAndReportsAFailedOne)
{
    EXPECT_EQ(Output([] {
                  g_interruptions = 3;
                  EXPECT_EQ(HiLog::Info(LABEL, "one\ntwo"), 2 + 8);
              }),
              "T P P I C04160/T: one\nT P P I C04160/T: two\n");
    Output([] {
        dup2(open("/dev/full", O_WRONLY), STDERR_FILENO);
        EXPECT_EQ(HiLog::Info(LABEL, "lost"), -1);
    });
}

// SIGPIPE would terminate the process.
TEST(HiLog, SurvivesAClosedPipe)
{
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    sigset_t signals;
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    Output([&] {
        dup2(ends[1], STDERR_FILENO);
        EXPECT_EQ(HiLog::Info(LABEL, "lost"), -1);
        pthread_sigmask(SIG_BLOCK, &brokenPipe, &signals);  // a program that blocks it keeps its own pending signal
        EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
        raise(SIGPIPE);
        EXPECT_EQ(HiLog::Info(LABEL, "lost"), -1);
    });
    const timespec atOnce{};
    EXPECT_EQ(sigtimedwait(&brokenPipe, nullptr, &atOnce), SIGPIPE);
    pthread_sigmask(SIG_SETMASK, &signals, nullptr);
    close(ends[1]);
}
