// SPDX-License-Identifier: Apache-2.0

#include "process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>
#include <vector>

#include "report.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr char FIELD_END = '\0';
constexpr char YES[] = "yes";

std::string Word(bool isTrue)
{
    return isTrue ? YES : "";
}

std::string Packed(const SideReport &report)
{
    std::string bytes;
    for (const std::string &field :
         {report.summary, report.verdict, report.failure, Word(report.isCaused), Word(report.isInterrupted)}) {
        bytes += field + FIELD_END;
    }
    return bytes;
}

// Empty for bytes that are no whole report.
std::optional<SideReport> Unpacked(const std::string &bytes)
{
    std::vector<std::string> fields;
    for (size_t begin = 0; begin < bytes.size();) {
        const size_t end = std::min(bytes.find(FIELD_END, begin), bytes.size());
        fields.push_back(bytes.substr(begin, end - begin));
        begin = end + 1;
    }
    if (fields.size() != 5) {
        return std::nullopt;
    }
    return SideReport{fields[0], fields[1], fields[2], fields[3] == YES, fields[4] == YES};
}

std::string ReadToEnd(int fd)
{
    std::string bytes;
    std::array<char, 4096> chunk{};
    ssize_t count = 0;
    do {
        bytes.append(chunk.data(), static_cast<size_t>(std::max<ssize_t>(count, 0)));
        count = read(fd, chunk.data(), chunk.size());
    } while (count > 0 || (count < 0 && errno == EINTR));
    return bytes;
}

std::string SignalText(int signal)
{
    return "signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
}

sigset_t SideSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGCHLD, SIGINT, SIGTERM}) {
        sigaddset(&signals, signal);
    }
    return signals;
}

[[noreturn]] void RunChild(pid_t parent, int pipe, const std::function<SideReport()> &run)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        std::exit(EXIT_FAILURE);  // the parent has gone already
    }
    const std::string report = Packed(run());
    std::exit(WriteAll(pipe, report.data(), report.size()) ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace

void BlockSideSignals()
{
    std::signal(SIGCHLD, SIG_DFL);
    const sigset_t signals = SideSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
}

void UnblockSideSignals(void (*onInterrupt)(int))
{
    struct sigaction action {};
    action.sa_handler = onInterrupt;
    sigaction(SIGINT, &action, nullptr);
    const sigset_t signals = SideSignals();
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

SideProcess::SideProcess(std::string name, const std::function<SideReport()> &run) : name_("the " + std::move(name))
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        hasEnded_ = true;
        fate_ = name_ + " cannot be started: " + std::strerror(errno);
        return;
    }
    pipe_ = UniqueFd(ends[0]);
    const UniqueFd writeEnd(ends[1]);
    std::fflush(nullptr);
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) {
        RunChild(parent, writeEnd.Get(), run);
    }
    if (process_ < 0) {
        hasEnded_ = true;
        fate_ = name_ + " cannot be started: " + std::strerror(errno);
    }
}

SideProcess::~SideProcess()
{
    if (!hasEnded_) {
        Kill();
        waitpid(process_, nullptr, 0);
    }
}

void SideProcess::Look()
{
    int status = 0;
    while (!hasEnded_ && waitpid(process_, &status, WNOHANG | WUNTRACED | WCONTINUED) == process_) {
        if (WIFSTOPPED(status)) {
            quietSince_ = Clock::now();
            stop_ = " was stopped by " + SignalText(WSTOPSIG(status)) + " and";
        } else if (WIFCONTINUED(status)) {
            quietSince_.reset();
            stop_.clear();
        } else {
            TakeEnd(status);
        }
    }
}

void SideProcess::TakeEnd(int status)
{
    hasEnded_ = true;
    quietSince_ = Clock::now();
    const std::optional<SideReport> report = Unpacked(ReadToEnd(pipe_.Get()));
    report_ = report.value_or(SideReport());
    if (!fate_.empty()) {
        return;
    }
    if (WIFSIGNALED(status)) {
        fate_ = name_ + " was killed by " + SignalText(WTERMSIG(status));
    } else if (!report || WEXITSTATUS(status) != EXIT_SUCCESS) {
        fate_ = name_ + " ended with status " + std::to_string(WEXITSTATUS(status));
    }
}

bool SideProcess::HasEnded() const
{
    return hasEnded_;
}

std::optional<Clock::time_point> SideProcess::QuietSince() const
{
    return quietSince_;
}

void SideProcess::GiveUp(double seconds)
{
    if (fate_.empty()) {
        fate_ = name_ + stop_ + " did not go on within " + SecondsText(seconds);
        Kill();
    }
}

void SideProcess::Interrupt() const
{
    if (!hasEnded_) {
        kill(process_, SIGINT);
    }
}

void SideProcess::Kill() const
{
    if (!hasEnded_) {
        kill(process_, SIGKILL);
    }
}

const std::string &SideProcess::Fate() const
{
    return fate_;
}

const SideReport &SideProcess::Report() const
{
    return report_;
}

void WaitForBoth(SideProcess &source, SideProcess &sink, double timeout)
{
    const sigset_t signals = SideSignals();
    // A side that ends by itself needs a moment more than the other one waits for it.
    constexpr double grace = 0.5;
    const auto patience = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(timeout + grace));
    bool isInterrupted = false;
    for (;;) {
        source.Look();
        sink.Look();
        if (source.HasEnded() && sink.HasEnded()) {
            return;
        }
        const auto now = Clock::now();
        for (SideProcess *side : {&source, &sink}) {
            const SideProcess &other = side == &source ? sink : source;
            const auto since = side->QuietSince() ? side->QuietSince() : other.QuietSince();
            if (!side->HasEnded() && since && now - *since > patience) {
                side->GiveUp(timeout);
            }
        }
        const timespec tick{0, 100'000'000};
        const int signal = sigtimedwait(&signals, nullptr, &tick);
        if ((signal == SIGINT || signal == SIGTERM) && isInterrupted) {
            source.Kill();
            sink.Kill();
        }
        if (signal == SIGINT || signal == SIGTERM) {
            isInterrupted = true;
            source.Interrupt();
        }
    }
}
