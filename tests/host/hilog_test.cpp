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
std::optional<std::string> g_message;  // as passed to the callback
std::string g_output;                  // with T for the time and P for the process and thread ids

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
    g_message.reset();
    LOG_SetCallback([](LogType, LogLevel, unsigned int, const char *, const char *message) {
        g_message = message;
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

Fields Format(const Fields &in)
{
    PrintfCall(in, 0).Pass([](auto... values) { return Print(LOG_CORE, LOG_INFO, DOMAIN_ID, "T", values...); });
    return {g_message.has_value() ? Quote(*g_message) : "none"};
}

std::string Line(int type, int level, unsigned int domain, const std::string &tag, const std::string &message)
{
    Print(type, level, domain, tag.c_str(), "%{public}s", message.c_str());
    return g_output;
}

Fields Deliver(int type, int level, unsigned int domain, const std::optional<std::string> &tag)
{
    const int result = Print(type, level, domain, Pointer(tag), "%{public}s", "text");
    return {g_message.has_value() ? "callback" : "none", result < 0 ? "-" : "+"};
}

bool IsLoggable(unsigned int domain, const std::optional<std::string> &tag, int level)
{
    return HiLogIsLoggable(domain, Pointer(tag), LogLevel(level));
}

int MinLevel(unsigned int domain, const std::optional<std::string> &tag)
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
    Operations operations = {{"format", Format},        {"deliver", Call(Deliver)}, {"loggable", Call(IsLoggable)},
                             {"line", Call(Line)},      {"set", Call(Set)},         {"app", Call(SetAppLevel)},
                             {"lowest", Call(MinLevel)}};
    for (const std::string name : {"deliver", "loggable"}) {
        for (const auto &[section, level] : {std::pair("-unset", ""), {"-E", "E"}}) {
            operations[name + section] = [level = level, operation = operations[name]](const Fields &in) {
                Set("persist.sys.hilog.loggable.global", level);
                const Fields results = operation(in);
                Set("persist.sys.hilog.loggable.global", "I");
                return results;
            };
        }
    }
    Replay("recorded/hilog.txt", 400, operations);
    Replay("handwritten/hilog.txt", 28, operations);
}

TEST(HiLog, FormatsWideStrings)
{
    Print(LOG_CORE, LOG_INFO, DOMAIN_ID, "T", "%{public}S|%{public}hS|%{public}C", L"wide", "narrow", L'c');
    EXPECT_EQ(g_message, "wide|narrow|c");
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
