// SPDX-License-Identifier: Apache-2.0
//
// What OSTRA_HOST_LOG_LEVEL lets through: to the callback, and to standard error.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <regex>
#include <string>
#include <tuple>

#include "hilog/log.h"

namespace {

std::string g_delivered;

void Keep(LogType, LogLevel, unsigned int, const char *, const char *text)
{
    g_delivered += text;
}

// Logs once at each level in a process of its own. Gives the writes to standard error, and behind them one more with
// what was delivered.
std::string LogUnder(const char *level, pid_t &child)
{
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_DIRECT), 0);  // one read gives one write
    child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        level == nullptr ? unsetenv("OSTRA_HOST_LOG_LEVEL") : setenv("OSTRA_HOST_LOG_LEVEL", level, 1);
        LOG_SetCallback(Keep);
        for (int i = LOG_DEBUG; i <= LOG_FATAL; ++i) {
            HiLogPrint(LOG_CORE, static_cast<LogLevel>(i), 0xD004160, "TAG", "%{public}d", i);
        }
        _exit(write(ends[1], g_delivered.data(), g_delivered.size()) > 0 ? 0 : 1);
    }
    close(ends[1]);
    std::string writes;
    char text[256];
    for (ssize_t size = 0; (size = read(ends[0], text, sizeof(text))) > 0;) {
        writes.append(text, static_cast<size_t>(size)) += '|';
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return writes;
}

}  // namespace

TEST(HostLog, WritesAndDeliversWhatTheEnvironmentWants)
{
    const std::tuple<const char *, const char *, const char *> table[] = {
        {nullptr, "", "I4 W5 E6 F7 4567|"},
        {"debug", "", "D3 I4 W5 E6 F7 34567|"},
        {"info", "", "I4 W5 E6 F7 4567|"},
        {"warn", "", "W5 E6 F7 4567|"},
        {"error", "", "E6 F7 4567|"},
        {"fatal", "", "F7 4567|"},
        {"off", "", "4567|"},
        {"none", "OSTRA_HOST_LOG_LEVEL=none is none of debug, info, warn, error, fatal, off; taken as unset\n|",
         "I4 W5 E6 F7 4567|"}};
    for (const auto &[level, complaint, expected] : table) {
        pid_t child = 0;
        const std::string writes = LogUnder(level, child);
        char ids[32];
        std::snprintf(ids, sizeof(ids), "%5d %5d", child, child);
        const std::time_t now = std::time(nullptr);
        char date[32];
        std::strftime(date, sizeof(date), "%m-%d %H:", std::localtime(&now));
        const std::regex line(date + std::string(R"(\d\d:\d\d\.\d{3} )") + ids + R"( (.) C04160/TAG: (.)\n\|)");
        EXPECT_EQ(std::regex_replace(writes, line, "$1$2 "), complaint + std::string(expected));
    }
}
