// SPDX-License-Identifier: Apache-2.0

#include "process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

#include "report.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr char FIELD_END = '\0';

volatile std::sig_atomic_t g_interrupts = 0;

SideReport ReadReport(int pipe)
{
    std::string bytes;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(pipe, buffer.data(), buffer.size())) > 0;) {
        bytes.append(buffer.data(), static_cast<size_t>(count));
    }
    std::istringstream fields(bytes);
    SideReport report;
    for (std::string *field : {&report.summary, &report.failure, &report.consequence, &report.result}) {
        std::getline(fields, *field, FIELD_END);
    }
    return report;
}

[[noreturn]] void RunChild(pid_t parent, int pipe, const std::function<SideReport()> &run)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        std::exit(EXIT_FAILURE);  // the parent ended before prctl took effect
    }
    const SideReport report = run();
    std::string bytes;
    for (const std::string &field : {report.summary, report.failure, report.consequence, report.result}) {
        bytes += field + FIELD_END;
    }
    const bool isWritten = write(pipe, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    std::exit(isWritten ? EXIT_SUCCESS : EXIT_FAILURE);
}

// Reads the report and the exit reason of a child if it has ended. Does not wait.
void Poll(ChildProcess &child)
{
    int status = 0;
    if (child.pid < 0 || waitpid(child.pid, &status, WNOHANG) != child.pid) {
        return;
    }
    child.pid = -1;
    child.report = ReadReport(child.pipe);
    if (!child.exitReason.empty()) {
        return;  // killed by this process
    }
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        child.exitReason =
            child.name + " was killed by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
    } else if (WEXITSTATUS(status) != EXIT_SUCCESS) {
        child.exitReason = child.name + " exited with status " + std::to_string(WEXITSTATUS(status));
    }
}

void Kill(ChildProcess &child, const std::string &reason)
{
    if (child.pid > 0 && child.exitReason.empty()) {
        child.exitReason = child.name + " " + reason;
        kill(child.pid, SIGKILL);
    }
}

}  // namespace

void HandleInterrupts()
{
    struct sigaction action {};
    action.sa_handler = [](int /* signal */) {
        g_interrupts = g_interrupts + 1;
    };
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int InterruptCount()
{
    return g_interrupts;
}

ChildProcess Start(const std::string &name, const std::function<SideReport()> &run)
{
    ChildProcess child;
    child.name = "the " + name;
    std::array<int, 2> ends{};
    const pid_t parent = getpid();
    std::fflush(nullptr);
    if (pipe2(ends.data(), O_CLOEXEC) == 0) {
        child.pid = fork();
    }
    if (child.pid == 0) {
        RunChild(parent, ends[1], run);
    }
    if (child.pid < 0) {
        child.exitReason = child.name + " cannot be started: " + std::strerror(errno);
        return child;
    }
    close(ends[1]);
    child.pipe = ends[0];
    return child;
}

void WaitForBoth(ChildProcess &source, ChildProcess &sink, double timeout)
{
    // The extra time lets a side report its own timeout if that expires at the same moment.
    const std::chrono::duration<double> limit(timeout + 0.5);
    std::optional<Clock::time_point> firstEnd;
    int handledInterrupts = 0;
    while (source.pid > 0 || sink.pid > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        if (InterruptCount() > handledInterrupts && source.pid > 0) {
            kill(source.pid, SIGINT);
        }
        if (InterruptCount() > handledInterrupts && handledInterrupts > 0) {
            Kill(source, "was interrupted twice");
            Kill(sink, "was interrupted twice");
        }
        handledInterrupts = InterruptCount();
        Poll(source);
        Poll(sink);
        if (source.pid > 0 && sink.pid > 0) {
            continue;
        }
        firstEnd = firstEnd.value_or(Clock::now());
        if (Clock::now() - *firstEnd > limit) {
            Kill(source, "did not end within " + FormatSeconds(timeout));
            Kill(sink, "did not end within " + FormatSeconds(timeout));
        }
    }
}
