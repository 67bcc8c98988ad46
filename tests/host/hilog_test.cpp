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
int g_writes = 0;  // counts the writes; a write fails with EINTR while it is not positive

// Of the last call of Log.
std::string g_message;  // as passed to the callback, in quotes, or "none"
std::string g_output;   // with T for the time and P for the process and thread ids

}  // namespace

// Replaces the function of the C library.
extern "C" ssize_t write(int descriptor, const void *data, size_t size)
{
    if (++g_writes <= 0) {
        errno = EINTR;
        return -1;
    }
    return syscall(SYS_write, descriptor, data, size);
}

namespace {

// Calls `log`, which logs one or more messages, and returns its result.
template <typename Function>
int Log(const Function &log)
{
    static const std::regex changing(R"(\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [ \d]{4}\d [ \d]{4}\d)");
    g_message = "none";
    LOG_SetCallback([](LogType, LogLevel, unsigned int, const char *, const char *message) {
        g_message = Quote(message);
        errno = EBADF;
    });
    testing::internal::CaptureStderr();
    errno = 0;
    const int result = log();
    EXPECT_EQ(errno, 0);
    LOG_SetCallback(nullptr);
    g_output = std::regex_replace(testing::internal::GetCapturedStderr(), changing, "T P P");
    return result;
}

template <typename... Values>
int Print(int type, int level, unsigned int domain, const char *tag, Values... values)
{
    return Log([=] { return HiLogPrint(LogType(type), LogLevel(level), domain, tag, values...); });
}

// format, arguments => the message
Fields Format(const Fields &in)
{
    Log([&] { return CallPrint(HiLogPrint, in, 0, LOG_CORE, LOG_INFO, DOMAIN_ID, "T"); });
    return {g_message};
}

Fields Line(int type, int level, unsigned int domain, const char *tag, const char *message)
{
    Print(type, level, domain, tag, "%{public}s", message);
    return {Quote(g_output)};
}

Fields Deliver(int type, int level, unsigned int domain, const char *tag)
{
    const int result = Print(type, level, domain, tag, "%{public}s", "text");
    return {g_message == "none" ? "none" : "callback", result < 0 ? "-" : "+"};
}

bool IsLoggable(unsigned int domain, const char *tag, int level)
{
    return HiLogIsLoggable(domain, tag, LogLevel(level));
}

int MinLevel(unsigned int domain, const char *tag)
{
    int level = LOG_LEVEL_MIN;
    while (level < LOG_LEVEL_MAX && !IsLoggable(domain, tag, level)) {
        ++level;
    }
    return level;
}

Fields Set(const char *parameter, const char *value)
{
    const int result = SetParameter(parameter, value);
    return {Show(result), Show(MinLevel(0x1AF, "Replay"))};
}

int SetAppLevel(int level, int preference)
{
    HiLogSetAppLogLevel(LogLevel(level), PreferStrategy(preference));
    return MinLevel(0x1AF, "Replay");
}

}  // namespace

TEST(HiLog, MatchesRecording)
{
    Operations operations = {
        {"format", Format}, {"set", Call(Set)}, {"app", Call(SetAppLevel)}, {"min_level", Call(MinLevel)}};
    const Operations sections = {{"deliver", Call(Deliver)}, {"loggable", Call(IsLoggable)}, {"line", Call(Line)}};
    for (const auto &[name, operation] : sections) {
        for (const auto &[suffix, level] : {std::pair("", "I"), {"-unset", ""}, {"-E", "E"}}) {
            operations[name + suffix] = [level = level, call = operation](const Fields &in) {
                Set("persist.sys.hilog.loggable.global", level);
                return call(in);
            };
        }
    }
    Replay("recorded/hilog.txt", 400, operations);
    Replay("handwritten/hilog.txt", 32, operations);
}

TEST(HiLog, FormatsWideStringsAndLongDoubles)
{
    Print(LOG_CORE, LOG_INFO, DOMAIN_ID, "T", "%{public}S|%{public}hS|%{public}C|%{public}Lg", L"wide", "narrow", L'c',
          0.5L);
    EXPECT_EQ(g_message, Quote("wide|narrow|c|0.5"));
}

TEST(HiLog, FunctionsLogAtTheirLevel)
{
#define EXPECT_LEVEL(Level, letter)                                      \
    EXPECT_EQ(Log([] { return HiLog##Level(LABEL, "m"); }), 2 + 2);      \
    EXPECT_EQ(g_output, "T P P " letter " C04160/T: m\n");               \
    EXPECT_EQ(Log([] { return HiLog::Level(LABEL, "%d", 1); }), 2 + 10); \
    EXPECT_EQ(g_output, "T P P " letter " C04160/T: <private>\n")
    Set("persist.sys.hilog.loggable.global", "D");
    EXPECT_LEVEL(Debug, "D");
    EXPECT_LEVEL(Info, "I");
    EXPECT_LEVEL(Warn, "W");
    EXPECT_LEVEL(Error, "E");
    EXPECT_LEVEL(Fatal, "F");
    Set("persist.sys.hilog.loggable.global", "I");
    HiLogSetAppMinLogLevel(LOG_ERROR);
    EXPECT_EQ(MinLevel(0, "T"), LOG_ERROR);
    HiLogSetAppLogLevel(LOG_INFO, UNSET_LOGLEVEL);
}

TEST(HiLog, RetriesInterruptedWritesAndReportsFailures)
{
    g_writes = -3;
    EXPECT_EQ(Log([] { return HiLog::Info(LABEL, "one\ntwo"); }), 2 + 8);
    EXPECT_EQ(g_output, "T P P I C04160/T: one\nT P P I C04160/T: two\n");
    EXPECT_EQ(g_writes, 2) << "a line is a single write";
    Log([] {
        dup2(open("/dev/full", O_WRONLY), STDERR_FILENO);
        EXPECT_EQ(HiLog::Info(LABEL, "lost"), -1);
        return 0;
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
    Log([&] {
        dup2(ends[1], STDERR_FILENO);
        EXPECT_EQ(HiLog::Info(LABEL, "lost"), -1);
        pthread_sigmask(SIG_BLOCK, &brokenPipe, &signals);  // a program that blocks it keeps its own pending signal
        EXPECT_EQ(sigismember(&signals, SIGPIPE), 0);
        raise(SIGPIPE);
        EXPECT_EQ(HiLog::Info(LABEL, "lost"), -1);
        return 0;
    });
    const timespec noWait{};
    EXPECT_EQ(sigtimedwait(&brokenPipe, nullptr, &noWait), SIGPIPE);
    pthread_sigmask(SIG_SETMASK, &signals, nullptr);
    close(ends[1]);
}
