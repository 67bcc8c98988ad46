// SPDX-License-Identifier: Apache-2.0
//
// A side of the example pair as a process of its own: how it is started, watched and ended, and what it reports.

#ifndef EXAMPLES_SIDE_PROCESS_H
#define EXAMPLES_SIDE_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "unique_fd.h"

struct SideReport {
    std::string summary;
    std::string verdict;         // of a stream that is as it should be
    std::string failure;         // empty for none
    bool isCaused = false;       // whether the failure may come of the other side's
    bool isInterrupted = false;  // whether the user ended the stream
};

// Blocks SIGCHLD, SIGINT and SIGTERM, which WaitForBoth takes; called before a side is started.
void BlockSideSignals();

// Called by a side: has SIGINT handled this way, where it ends a wait, and lets the signals in again.
void UnblockSideSignals(void (*onInterrupt)(int));

class SideProcess {
public:
    // Starts `run` in a process that ends when the calling one does.
    SideProcess(std::string name, const std::function<SideReport()> &run);

    // Kills the side when it still runs.
    ~SideProcess();
    SideProcess(const SideProcess &) = delete;
    SideProcess &operator=(const SideProcess &) = delete;

    // Looks for news of the process without waiting.
    void Look();

    bool HasEnded() const;

    // When the process stopped or, with HasEnded, ended.
    std::optional<std::chrono::steady_clock::time_point> QuietSince() const;

    // Kills the side, which was quiet for `seconds`, and takes that for its fate.
    void GiveUp(double seconds);

    // Asks the process to come to its end.
    void Interrupt() const;
    void Kill() const;

    // What ended the process against its will, for instance "the sink was killed by signal 9 (Killed)"; else empty.
    const std::string &Fate() const;

    // What an ended process reported.
    const SideReport &Report() const;

private:
    void TakeEnd(int status);

    std::string name_;
    pid_t process_ = -1;
    UniqueFd pipe_;
    bool hasEnded_ = false;
    std::optional<std::chrono::steady_clock::time_point> quietSince_;
    std::string stop_;
    std::string fate_;
    SideReport report_;
};

// Waits until both sides have ended, however they do: a side that is stopped, or stays behind the other one, is given
// `timeout` seconds. SIGINT and SIGTERM are handed to the source, and end both sides when they come again.
void WaitForBoth(SideProcess &source, SideProcess &sink, double timeout);

#endif  // EXAMPLES_SIDE_PROCESS_H
